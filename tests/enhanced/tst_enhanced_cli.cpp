// The command line's switch to the enhanced analysis: --enhanced, the settings key, and the
// trace of what each line was taken for.

#include "clirun.h"

#include <QJsonArray>
#include <QTemporaryDir>
#include <QTest>

namespace {

const QByteArray Signature = "Mit freundlichen Grüßen\nAnna Roth\nRoth GmbH\nRosenweg 2\n"
                             "65183 Wiesbaden\n";

QStringList fields(const QJsonObject& json)
{
    QStringList out;
    for (const QJsonValue& row : json[QStringLiteral("rows")].toArray())
        if (!row[QStringLiteral("field")].isNull())
            out.append(row[QStringLiteral("field")].toString() + u'=' +
                       row[QStringLiteral("value")].toString());
    return out;
}

} // namespace

class TestEnhancedCli : public QObject {
    Q_OBJECT

private slots:
    void flagChoosesTheEnhancedAnalysis()
    {
        const CliRun classic = runCli({QStringLiteral("analyse")}, Signature);
        const CliRun enhanced =
            runCli({QStringLiteral("analyse"), QStringLiteral("--enhanced")}, Signature);
        QCOMPARE(classic.exitCode, 0);
        QCOMPARE(enhanced.exitCode, 0);
        // Only the enhanced analysis splits the name.
        QVERIFY(fields(enhanced.json()).contains(QStringLiteral("Vorname=Anna")));
        QVERIFY(!fields(classic.json()).contains(QStringLiteral("Vorname=Anna")));
        QCOMPARE(enhanced.json()[QStringLiteral("clipText")],
                 classic.json()[QStringLiteral("clipText")]);
        // Without --trace neither prints its explanation.
        QVERIFY(!enhanced.json().contains(QStringLiteral("recognised")));
    }

    void settingsKeyChoosesIt()
    {
        QTemporaryDir dir;
        const QString ini = dir.filePath(QStringLiteral("z.ini"));
        QFile f(ini);
        QVERIFY(f.open(QIODevice::WriteOnly));
        f.write("[Config]\r\nErweiterteAnalyse=1\r\n");
        f.close();
        const CliRun run =
            runCli({QStringLiteral("analyse"), QStringLiteral("--ini"), ini}, Signature);
        QCOMPARE(run.exitCode, 0);
        QVERIFY(fields(run.json()).contains(QStringLiteral("Vorname=Anna")));
    }

    void traceSaysWhy()
    {
        const CliRun run = runCli(
            {QStringLiteral("analyse"), QStringLiteral("--enhanced"), QStringLiteral("--trace")},
            Signature);
        QCOMPARE(run.exitCode, 0);
        const QJsonArray notes = run.json()[QStringLiteral("recognised")].toArray();
        QCOMPARE(notes.size(), 5);
        for (const QJsonValue& n : notes) {
            QVERIFY(n[QStringLiteral("line")].toInt() > 0);
            QVERIFY(!n[QStringLiteral("kind")].toString().isEmpty());
            QVERIFY(!n[QStringLiteral("why")].toString().isEmpty());
        }
        QCOMPARE(notes[4][QStringLiteral("fields")].toArray().first().toString(),
                 QStringLiteral("PLZ/Ort"));
    }

    void flagTakesNoValue()
    {
        const CliRun run = runCli({QStringLiteral("analyse"), QStringLiteral("--enhanced=1")});
        QCOMPARE(run.exitCode, 2);
    }
};

QTEST_GUILESS_MAIN(TestEnhancedCli)
#include "tst_enhanced_cli.moc"
