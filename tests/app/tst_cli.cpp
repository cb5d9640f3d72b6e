// Runs the real zettelfischer-cli and reads its JSON, as scripts and checks do.

#include <QJsonArray>
#include <QSysInfo>
#include <QTemporaryDir>
#include <QTest>

#include <sys/stat.h>

#include "clirun.h"

using namespace Qt::StringLiterals;

namespace {

QString dataPath(const QString& name)
{
    return QStringLiteral(ZF_TEST_DATA) + u'/' + name;
}

QByteArray utf16(const QString& text, QSysInfo::Endian order)
{
    QByteArray out;
    for (QChar c : text) {
        const char16_t u = c.unicode();
        const char hi = char(u >> 8), lo = char(u & 0xff);
        out += order == QSysInfo::LittleEndian ? QByteArray{&lo, 1} + hi : QByteArray{&hi, 1} + lo;
    }
    return out;
}

} // namespace

class TestCli : public QObject {
    Q_OBJECT
private slots:
    // Whole outputs, byte for byte: data/NAME.txt analysed with the row's options must give
    // data/EXPECTED.json. A mismatch leaves EXPECTED.json.actual beside it for review.
    void golden_data()
    {
        QTest::addColumn<QString>("input");
        QTest::addColumn<QStringList>("options");
        QTest::addColumn<QString>("expected");
        const auto row = [](const char* input, const QStringList& options, const char* expected) {
            QTest::newRow(expected)
                << QString::fromLatin1(input) << options << QString::fromLatin1(expected);
        };
        row("signature", {}, "signature");
        row("signature", {"--trace"}, "signature.trace");
        row("imprint", {}, "imprint");
        row("form", {"--ini", dataPath("form.ini")}, "form");
        row("alpine", {"--trace"}, "alpine.trace");
        row("chooser", {}, "chooser");
        row("chooser", {"--separator", ","}, "chooser.comma");
    }
    void golden()
    {
        QFETCH(QString, input);
        QFETCH(QStringList, options);
        QFETCH(QString, expected);
        const CliRun r =
            runCli(QStringList{u"analyse"_s, u"--file"_s, dataPath(input + u".txt"_s)} + options);
        QCOMPARE(r.exitCode, 0);
        QFile want(dataPath(expected + u".json"_s));
        QVERIFY(want.open(QIODevice::ReadOnly));
        QFile actual(want.fileName() + u".actual"_s);
        if (r.out != want.readAll()) {
            QVERIFY(actual.open(QIODevice::WriteOnly));
            actual.write(r.out);
            QFAIL(qPrintable(u"output differs, see "_s + actual.fileName()));
        }
        actual.remove();
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
        row("UTF-8 mark dropped", {},
            "\xef\xbb\xbf"
            "A\nB",
            "A\r\nB\r\n");
        row("UTF-16 little-endian by its mark", {},
            "\xff\xfe" + utf16(u"Grüße\r\nB"_s, QSysInfo::LittleEndian), "Grüße\r\nB\r\n");
        row("UTF-16 big-endian by its mark", {},
            "\xfe\xff" + utf16(u"Grüße\r\nB"_s, QSysInfo::BigEndian), "Grüße\r\nB\r\n");
        row("UTF-16 odd last byte", {}, "\xff\xfe" + utf16(u"A\nB"_s, QSysInfo::LittleEndian) + 'x',
            "A\r\nB\xef\xbf\xbd\r\n");
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

    // Each refusal names what is wrong, and nothing is written to standard output.
    void usageErrors_data()
    {
        QTest::addColumn<QStringList>("args");
        QTest::addColumn<QString>("error");
        const auto row = [](const char* name, const QStringList& args, const QString& error) {
            QTest::newRow(name) << args << error;
        };
        static QTemporaryDir dir;
        const QString fifo = dir.filePath(u"fifo"_s);
        ::mkfifo(qPrintable(fifo), 0600);
        QFile big(dir.filePath(u"big.txt"_s));
        if (big.open(QIODevice::WriteOnly))
            big.resize((qint64(64) << 20) + 1); // sparse: nothing is written
        row("no command", {}, "missing command");
        row("unknown command", {"analyze"}, "unknown command 'analyze'");
        row("missing ini", {"analyse", "--ini", "/nonexistent/z.ini"},
            "settings file '/nonexistent/z.ini' does not exist");
        row("folder as ini", {"analyse", "--ini", dir.path()},
            u"settings file '%1' is a folder"_s.arg(dir.path()));
        row("FIFO as ini", {"analyse", "--ini", fifo},
            u"settings file '%1' is not a regular file"_s.arg(fifo));
        row("missing file", {"analyse", "--file", "/nonexistent/in.txt"},
            "cannot read '/nonexistent/in.txt': No such file or directory");
        row("folder as file", {"analyse", "--file", "/"}, "cannot read '/'");
        row("file over 64 MB", {"analyse", "--file", big.fileName()},
            big.fileName() + u" is larger than 64 MB"_s);
        row("endless input", {"analyse", "--file", "/dev/zero"}, "/dev/zero is larger than 64 MB");
    }
    void usageErrors()
    {
        QFETCH(QStringList, args);
        QFETCH(QString, error);
        const CliRun r = runCli(args, "A\n");
        QCOMPARE(r.exitCode, 2);
        QVERIFY(r.out.isEmpty());
        const QList<QByteArray> lines = r.err.split('\n');
        QCOMPARE(lines.size(), 3); // the error, the hint and the final line break
        QVERIFY2(lines[0].startsWith("zettelfischer-cli: " + error.toUtf8()), lines[0]);
        // Once a command is known, the hint names its own help.
        const bool known = !args.isEmpty() && args[0] == "analyse";
        QCOMPARE(lines[1], known ? "Try 'zettelfischer-cli analyse --help'."
                                 : "Try 'zettelfischer-cli --help'.");
    }
};

QTEST_GUILESS_MAIN(TestCli)
#include "tst_cli.moc"
