// Runs the real zettelfischer-cli and reads its JSON, as scripts and checks do.

#include <QJsonArray>
#include <QTemporaryDir>
#include <QTest>

#include "clirun.h"

using namespace Qt::StringLiterals;

namespace {

// "value:field" per row ("value:-" without a field), trailing empty rows left off.
QStringList usedRows(const QJsonObject& json)
{
    QStringList out;
    for (const QJsonValue& v : json[u"rows"_s].toArray()) {
        const QJsonValue field = v[u"field"_s];
        out.append(v[u"value"_s].toString() + u':' + (field.isNull() ? u"-"_s : field.toString()));
    }
    while (!out.isEmpty() && out.last() == u":-"_s)
        out.removeLast();
    return out;
}

} // namespace

class TestCli : public QObject {
    Q_OBJECT
private slots:
    // Rows with field names and ids (null without a field), and with --trace every line's
    // twenty scores; the input from a file.
    void analysisAsJson()
    {
        QTemporaryDir dir;
        QFile f(dir.filePath(u"in.txt"_s));
        QVERIFY(f.open(QIODevice::WriteOnly));
        f.write("ACME GmbH\nD-12345 Berlin\n");
        f.close();
        const CliRun r = runCli({u"analyse"_s, u"--trace"_s, u"--file"_s, f.fileName()});
        QCOMPARE(r.exitCode, 0);
        const QJsonObject json = r.json();
        const QJsonArray rows = json[u"rows"_s].toArray();
        QCOMPARE(rows.size(), 16);
        QCOMPARE(usedRows(json),
                 (QStringList{"ACME GmbH:Firma", "12345:PLZ", "Berlin:Ort", "Deutschland:Land"}));
        QCOMPARE(rows[0][u"fieldId"_s].toInt(), 25);
        QVERIFY(rows[4][u"fieldId"_s].isNull());
        QCOMPARE(json[u"completed"_s].toBool(), true);
        const QJsonObject country = json[u"lines"_s][3].toObject();
        QCOMPARE(country[u"text"_s].toString(), u"Deutschland"_s);
        QCOMPARE(country[u"scores"_s].toObject().size(), 20);
        // 10 from the prefix, 6 for the word, 3 for "land" beyond position 3
        QCOMPARE(country[u"scores"_s][u"Land"_s].toInt(), 19);
    }

    // The box's text, and the messages as "style:text".
    void modes_data()
    {
        QTest::addColumn<QStringList>("args");
        QTest::addColumn<QByteArray>("input");
        QTest::addColumn<QString>("clipText");
        QTest::addColumn<QString>("messages");
        const auto row = [](const char* name, const QStringList& args, const QByteArray& input,
                            const QString& clipText, const QString& messages = {}) {
            QTest::newRow(name) << args << input << clipText << messages;
        };
        row("fetch drops dot before break", {}, "A . \r\nB", "A\r\nB\r\n");
        row("raw keeps it", {"--raw"}, "A . \r\nB", "A .\r\nB\r\n");
        row("chosen separator", {"--separator", ","}, "A, B", "A\r\nB\r\n");
        row("invalid UTF-8 becomes U+FFFD", {}, "A\xff\nB", "A\xef\xbf\xbd\r\nB\r\n");
        row("empty clipboard", {}, "   ", "", "64:Die Zwischenablage ist leer.");
        row("raw empty text asks for a separator", {"--raw"}, "", "",
            "48:Kein geeignetes Zeilentrennungszeichen gefunden. Zwischenablage konnte nicht "
            "verarbeitet werden.");
    }
    void modes()
    {
        QFETCH(QStringList, args);
        QFETCH(QByteArray, input);
        QFETCH(QString, clipText);
        QFETCH(QString, messages);
        const CliRun r = runCli(QStringList{u"analyse"_s} + args, input);
        QCOMPARE(r.exitCode, 0);
        QCOMPARE(r.json()[u"clipText"_s].toString(), clipText);
        QStringList shown;
        for (const QJsonValue& m : r.json()[u"messages"_s].toArray())
            shown.append(u"%1:%2"_s.arg(m[u"style"_s].toInt()).arg(m[u"text"_s].toString()));
        QCOMPARE(shown.join(u'\n'), messages);
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
};

QTEST_GUILESS_MAIN(TestCli)
#include "tst_cli.moc"
