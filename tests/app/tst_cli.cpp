// Runs the real zettelfischer-cli and reads its JSON, as scripts and checks do.

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

#include "clirun.h"

using namespace Qt::StringLiterals;

namespace {

QString rowText(const QJsonObject& row)
{
    const QJsonValue field = row[u"field"_s];
    return row[u"value"_s].toString() + u':' + (field.isNull() ? u"-"_s : field.toString());
}

QStringList usedRows(const QJsonObject& json)
{
    QStringList out;
    for (const QJsonValue& v : json[u"rows"_s].toArray())
        out.append(rowText(v.toObject()));
    while (!out.isEmpty() && out.last() == u":-"_s)
        out.removeLast();
    return out;
}

} // namespace

class TestCli : public QObject {
    Q_OBJECT
private slots:
    void signatureEndToEnd()
    {
        const CliRun r =
            runCli({u"analyse"_s},
                   "Muster GmbH\r\nHerr Hans Meier\r\nMusterweg 12\r\n80331 M\xc3\xbcnchen\r\n"
                   "Tel. 089 123456\r\nFax 089 123457\r\ninfo@muster.de\r\nwww.muster.de\r\n");
        QCOMPARE(r.exitCode, 0);
        const QJsonObject json = r.json();
        QCOMPARE(json[u"rows"_s].toArray().size(), 16);
        QCOMPARE(
            usedRows(json),
            (QStringList{"Muster GmbH:Firma", "Herr Hans Meier:Kontakt", "Musterweg 12:Adresse",
                         "80331:PLZ", "München:Ort", "089123456:Telefon", "089123457:Fax",
                         "info@muster.de:eMail", "www.muster.de:Website", "Deutschland:Land"}));
        QCOMPARE(json[u"rows"_s].toArray()[7].toObject()[u"fieldId"_s].toInt(), 200);
        QVERIFY(json[u"rows"_s].toArray()[10].toObject()[u"fieldId"_s].isNull());
        QCOMPARE(json[u"completed"_s].toBool(), true);
        QCOMPARE(json[u"messages"_s].toArray().size(), 0);
        QVERIFY(json[u"clipText"_s].toString().startsWith(u"Muster GmbH\r\nHerr Hans Meier\r\n"_s));
    }

    void messagesAndModes_data()
    {
        QTest::addColumn<QStringList>("args");
        QTest::addColumn<QByteArray>("input");
        QTest::addColumn<QString>("message");
        QTest::addColumn<int>("style");
        QTest::addColumn<QString>("clipText");
        QTest::newRow("empty clipboard")
            << QStringList{} << QByteArray("   ") << "Die Zwischenablage ist leer." << 64 << "";
        QTest::newRow("raw empty text asks for a separator")
            << QStringList{"--raw"} << QByteArray()
            << "Kein geeignetes Zeilentrennungszeichen gefunden. Zwischenablage konnte nicht "
               "verarbeitet werden."
            << 48 << "";
        QTest::newRow("no separator") << QStringList{} << QByteArray("A, B")
                                      << "Kein geeignetes Zeilentrennungszeichen gefunden. "
                                         "Zwischenablage konnte nicht verarbeitet werden."
                                      << 48 << "";
        QTest::newRow("chosen separator")
            << QStringList{"--separator", ","} << QByteArray("A, B") << "" << 0 << "A\r\nB\r\n";
        QTest::newRow("fetch drops dot before break")
            << QStringList{} << QByteArray("A . \r\nB") << "" << 0 << "A\r\nB\r\n";
        QTest::newRow("raw keeps it")
            << QStringList{"--raw"} << QByteArray("A . \r\nB") << "" << 0 << "A .\r\nB\r\n";
        QTest::newRow("invalid UTF-8 becomes U+FFFD")
            << QStringList{} << QByteArray("A\xff\nB") << "" << 0 << "A\xef\xbf\xbd\r\nB\r\n";
    }
    void messagesAndModes()
    {
        QFETCH(QStringList, args);
        QFETCH(QByteArray, input);
        QFETCH(QString, message);
        QFETCH(int, style);
        QFETCH(QString, clipText);
        const CliRun r = runCli(QStringList{u"analyse"_s} + args, input);
        QCOMPARE(r.exitCode, 0);
        const QJsonObject json = r.json();
        const QJsonArray messages = json[u"messages"_s].toArray();
        QCOMPARE(messages.size(), message.isEmpty() ? 0 : 1);
        if (!message.isEmpty()) {
            QCOMPARE(messages[0].toObject()[u"text"_s].toString(), message);
            QCOMPARE(messages[0].toObject()[u"style"_s].toInt(), style);
        }
        QCOMPARE(json[u"clipText"_s].toString(), clipText);
    }

    void traceShowsTheLineList()
    {
        QTemporaryDir dir;
        const QString file = dir.filePath(u"in.txt"_s);
        QFile f(file);
        QVERIFY(f.open(QIODevice::WriteOnly));
        f.write("D-12345 Berlin\n");
        f.close();
        const CliRun r = runCli({u"analyse"_s, u"--trace"_s, u"--file"_s, file});
        QCOMPARE(r.exitCode, 0);
        const QJsonArray lines = r.json()[u"lines"_s].toArray();
        QCOMPARE(lines.size(), 3);
        QCOMPARE(lines[0].toObject()[u"text"_s].toString(), u"12345"_s);
        QCOMPARE(lines[1].toObject()[u"text"_s].toString(), u"Berlin"_s);
        QCOMPARE(lines[2].toObject()[u"text"_s].toString(), u"Deutschland"_s);
        const QJsonObject scores = lines[2].toObject()[u"scores"_s].toObject();
        QCOMPARE(scores.size(), 20);
        QVERIFY(scores.contains(u"Telefon3"_s));
        QCOMPARE(scores[u"Land"_s].toInt(), 16); // 10 from the prefix, 6 for the word
    }

    void failureIsReported()
    {
        const CliRun r = runCli({u"analyse"_s}, "A\n" + QByteArray(40000, 'x') + "\n");
        QCOMPARE(r.exitCode, 0);
        QCOMPARE(r.json()[u"completed"_s].toBool(), false);
        QCOMPARE(r.json()[u"clipText"_s].toString(), u"A\r\n"_s);
    }

    void usageErrors_data()
    {
        QTest::addColumn<QStringList>("args");
        QTest::newRow("no command") << QStringList{};
        QTest::newRow("unknown command") << QStringList{"analyze"};
        QTest::newRow("unknown option") << QStringList{"analyse", "--fast"};
        QTest::newRow("separator without value") << QStringList{"analyse", "--separator"};
        QTest::newRow("missing ini") << QStringList{"analyse", "--ini", "/nonexistent/z.ini"};
        QTest::newRow("missing file") << QStringList{"analyse", "--file", "/nonexistent/in.txt"};
        QTest::newRow("folder as file") << QStringList{"analyse", "--file", "/"};
    }
    void usageErrors()
    {
        QFETCH(QStringList, args);
        const CliRun r = runCli(args, "A\n");
        QCOMPARE(r.exitCode, 2);
        QVERIFY(r.out.isEmpty());
        QCOMPARE(r.err.count('\n'), 2); // the error and the hint
        QVERIFY(r.err.startsWith("zettelfischer-cli: "));
    }

    void help()
    {
        const CliRun r = runCli({u"--help"_s});
        QCOMPARE(r.exitCode, 0);
        QVERIFY(r.out.contains("--separator"));
        QVERIFY(r.out.contains("--trace"));
    }
};

QTEST_GUILESS_MAIN(TestCli)
#include "tst_cli.moc"
