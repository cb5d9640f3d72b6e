// How zettelfischer-cli reads its command line: help, version and usage errors of every command,
// and the spellings of an option that must mean the same.

#include <QTemporaryDir>
#include <QTest>

#include "clirun.h"
#include "version.h"

using namespace Qt::StringLiterals;

namespace {

QByteArray usage(const QByteArray& message, const QByteArray& command = {})
{
    const QByteArray help = command.isEmpty() ? "--help" : command + " --help";
    return "zettelfischer-cli: " + message + "\nTry 'zettelfischer-cli " + help + "'.\n";
}

} // namespace

class TestCliParsing : public QObject {
    Q_OBJECT
private slots:
    void commandLine_data()
    {
        QTest::addColumn<QStringList>("args");
        QTest::addColumn<int>("exitCode");
        QTest::addColumn<QByteArray>("outStart");
        QTest::addColumn<QByteArray>("outHas");
        QTest::addColumn<QByteArray>("err");
        const auto ok = [](const char* name, const QStringList& args, const QByteArray& outStart,
                           const QByteArray& outHas = {}) {
            QTest::newRow(name) << args << 0 << outStart << outHas << QByteArray();
        };
        const auto bad = [](const char* name, const QStringList& args, const QByteArray& err) {
            QTest::newRow(name) << args << 2 << QByteArray() << QByteArray() << err;
        };

        ok("overview", {"--help"}, "Usage: zettelfischer-cli COMMAND",
           "\n  analyse   Analyses address text");
        ok("overview short", {"-h"}, "Usage: zettelfischer-cli COMMAND", "\n  transfer  ");
        ok("analyse help", {"analyse", "--help"},
           "Usage: zettelfischer-cli analyse [--raw] [--separator TEXT] [--ini FILE]\n"
           "                                 [--file FILE] [--trace] [--enhanced]\n",
           "\n  --separator <TEXT>  Line separator");
        ok("help among other options", {"analyse", "--raw", "-h", "--ini=/nonexistent"},
           "Usage: zettelfischer-cli analyse ");
        ok("contacts help", {"contacts", "-h"},
           "Usage: zettelfischer-cli contacts [--contacts FILE] SUBCOMMAND [ARGUMENTS]\n",
           "\n  add-field ID [LABEL]  Adds a field to the book.\n");
        ok("contacts help after a subcommand", {"contacts", "list", "--help"},
           "Usage: zettelfischer-cli contacts ");
        ok("transfer help", {"transfer", "--help"},
           "Usage: zettelfischer-cli transfer --new|--edit [--contacts FILE] [--raw]\n",
           "\n  --edit              Files the rows into the current contact");
        ok("version", {"--version"},
           "zettelfischer-cli " + QString::fromUtf16(zf::Version).toUtf8() + "\n");

        bad("no command", {}, usage("missing command"));
        bad("unknown command", {"analyze"}, usage("unknown command 'analyze'"));
        bad("option before the command", {"--raw", "analyse"}, usage("Unknown option 'raw'."));
        bad("unknown option", {"analyse", "--fast"}, usage("Unknown option 'fast'.", "analyse"));
        bad("short unknown option", {"analyse", "-x"}, usage("Unknown option 'x'.", "analyse"));
        bad("version after the command", {"analyse", "--version"},
            usage("Unknown option 'version'.", "analyse"));
        bad("transfer unknown option", {"transfer", "--new", "--bogus"},
            usage("Unknown option 'bogus'.", "transfer"));
        bad("missing value", {"analyse", "--separator"},
            usage("Missing value after '--separator'.", "analyse"));
        bad("missing book", {"contacts", "list", "--contacts"},
            usage("Missing value after '--contacts'.", "contacts"));
        bad("transfer missing file", {"transfer", "--new", "--file"},
            usage("Missing value after '--file'.", "transfer"));
        bad("empty settings name", {"analyse", "--ini="},
            usage("--ini needs a file name", "analyse"));
        bad("empty book name", {"contacts", "--contacts=", "list"},
            usage("--contacts needs a file name", "contacts"));
        bad("value on a flag", {"analyse", "--raw=x"},
            usage("Unexpected value after '--raw'.", "analyse"));
        bad("empty value on a flag", {"analyse", "--trace="},
            usage("Unexpected value after '--trace'.", "analyse"));
        bad("value on the mode", {"transfer", "--new=yes"},
            usage("Unexpected value after '--new'.", "transfer"));
        bad("positional argument", {"analyse", "in.txt"},
            usage("unexpected argument 'in.txt'", "analyse"));
        bad("option after --", {"analyse", "--", "--raw"},
            usage("unexpected argument '--raw'", "analyse"));
        bad("transfer positional", {"transfer", "--new", "x"},
            usage("unexpected argument 'x'", "transfer"));
        bad("contacts subcommand argument", {"contacts", "fields", "x"},
            usage("contacts fields: unexpected argument 'x'", "contacts"));
        bad("both modes", {"transfer", "--edit", "--new"},
            usage("transfer: give exactly one of --new and --edit", "transfer"));
    }
    void commandLine()
    {
        QFETCH(QStringList, args);
        QFETCH(int, exitCode);
        QFETCH(QByteArray, outStart);
        QFETCH(QByteArray, outHas);
        QFETCH(QByteArray, err);
        const CliRun r = runCli(args, "A\n");
        QCOMPARE(r.exitCode, exitCode);
        QCOMPARE(r.err, err);
        if (outStart.isEmpty())
            QCOMPARE(r.out, QByteArray());
        else
            QCOMPARE(r.out.left(outStart.size()), outStart);
        QVERIFY2(r.out.contains(outHas), r.out.constData());
    }

    // Both spellings of a value, a repeated flag and a repeated value give the same output, and
    // one that differs from the analysis without them.
    void sameMeaning_data()
    {
        QTest::addColumn<QStringList>("args");
        QTest::addColumn<QStringList>("same");
        QTest::newRow("inline value")
            << QStringList{"--separator=,"} << QStringList{"--separator", ","};
        QTest::newRow("value with '='")
            << QStringList{"--separator==,"} << QStringList{"--separator", "=,"};
        QTest::newRow("value that looks like an option")
            << QStringList{"--separator", "--raw"} << QStringList{"--separator=--raw"};
        QTest::newRow("flag twice")
            << QStringList{"--raw", "--trace", "--raw"} << QStringList{"--trace", "--raw"};
        QTest::newRow("last value counts") << QStringList{"--separator", ";", "--separator", ","}
                                           << QStringList{"--separator", ","};
        QTest::newRow("file inline") << QStringList{"--file=@in"} << QStringList{"--file", "@in"};
    }
    void sameMeaning()
    {
        QFETCH(QStringList, args);
        QFETCH(QStringList, same);
        QTemporaryDir dir;
        QFile file(dir.filePath(u"in.txt"_s));
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write("Muster GmbH, Hauptstr. 5; =, 12345 Berlin --raw x\n");
        file.close();
        for (QStringList* list : {&args, &same})
            list->replaceInStrings(u"@in"_s, file.fileName());
        const QByteArray input = "Beispiel AG, Ring 1; =, 1010 Wien --raw y\n";
        const CliRun a = runCli(QStringList{u"analyse"_s} + args, input);
        const CliRun b = runCli(QStringList{u"analyse"_s} + same, input);
        QCOMPARE(a.exitCode, 0);
        QCOMPARE(b.exitCode, 0);
        QCOMPARE(a.out, b.out);
        QVERIFY(a.out != runCli({u"analyse"_s}, input).out);
        QCOMPARE(a.err, b.err);
    }
};

QTEST_GUILESS_MAIN(TestCliParsing)
#include "tst_cli_parsing.moc"
