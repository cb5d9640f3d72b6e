// zettelfischer-cli analyse loads the settings file: --ini FILE, else the first found beside
// the program, in the user's config folder, in the system's config folders.

#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QTemporaryDir>
#include <QTest>

#include "clirun.h"
#include "filebytes.h"

using namespace Qt::StringLiterals;

namespace {

// The default country tells which file was read.
QByteArray settings(const QByteArray& country)
{
    return "; von Hand gepflegt\r\n"
           "[Config]\r\nCacheFelder=1\r\nStandardLand4PLZ=" +
           country +
           "\r\n\r\n"
           "[Definitionen]\r\nID1=77\r\nWert1=Kundennr:\r\n"
           "[Felder]\r\nZeile1=25;Firma\r\nZeile2=30;Stadt\r\n"
           "Zeile3=32;Postleitzahl\r\nZeile4=33;Staat\r\n";
}

bool hasRow(const QJsonObject& json, const QString& value, const QString& field, int id)
{
    return json[u"rows"_s].toArray().contains(
        QJsonObject{{u"value"_s, value}, {u"field"_s, field}, {u"fieldId"_s, id}});
}

} // namespace

class TestCliSettings : public QObject {
    Q_OBJECT
private slots:
    void settingsFile_data()
    {
        QTest::addColumn<QStringList>("present"); // "beside", "home", "system", "other"
        QTest::addColumn<bool>("iniOption");      // --ini names "other"
        QTest::addColumn<QString>("read");        // the file read, "" for none

        QTest::newRow("none") << QStringList{} << false << "";
        QTest::newRow("--ini") << QStringList{"beside", "other"} << true << "other";
        QTest::newRow("beside the program")
            << QStringList{"beside", "home", "system"} << false << "beside";
        QTest::newRow("user's config folder") << QStringList{"home", "system"} << false << "home";
        QTest::newRow("system config folder") << QStringList{"system"} << false << "system";
    }
    // Loading never writes, and never creates a file.
    void settingsFile()
    {
        QFETCH(QStringList, present);
        QFETCH(bool, iniOption);
        QFETCH(QString, read);

        QTemporaryDir dir;
        const QDir d(dir.path());
        QVERIFY(d.mkpath(u"programm"_s) && d.mkpath(u"home/zettelfischer"_s) &&
                d.mkpath(u"system/zettelfischer"_s));
        const QString program = d.filePath(u"programm/zettelfischer-cli"_s);
        QVERIFY(QFile::copy(QStringLiteral(ZF_CLI_PATH), program));
        const QHash<QString, QString> files{
            {u"beside"_s, d.filePath(u"programm/zettelfischer.ini"_s)},
            {u"home"_s, d.filePath(u"home/zettelfischer/zettelfischer.ini"_s)},
            {u"system"_s, d.filePath(u"system/zettelfischer/zettelfischer.ini"_s)},
            {u"other"_s, d.filePath(u"eigene.ini"_s)}};
        for (const QString& where : present)
            writeBytes(files[where], settings(where.toLatin1()));

        QProcessEnvironment env;
        env.insert(u"XDG_CONFIG_HOME"_s, d.filePath(u"home"_s));
        env.insert(u"XDG_CONFIG_DIRS"_s, d.filePath(u"leer"_s) + u':' + d.filePath(u"system"_s));
        const QStringList args = iniOption
                                     ? QStringList{u"analyse"_s, u"--ini"_s, files[u"other"_s]}
                                     : QStringList{u"analyse"_s};
        const CliRun r = runCli(
            args, "Beispiel AG\nKundennr: 4711\nBahnhofstr. 1\n8000 Z\xC3\xBCrich\n", program, env);
        QCOMPARE(r.exitCode, 0);
        const QJsonObject json = r.json();

        if (read.isEmpty()) {
            QVERIFY(hasRow(json, u"Österreich"_s, u"Land"_s, 33));
            QCOMPARE(json[u"extraFieldValues"_s].toArray(), QJsonArray());
        } else {
            // The file's default country under the cached name of its field; the labelled value.
            QVERIFY(hasRow(json, read, u"Staat"_s, 33));
            QCOMPARE(json[u"extraFieldValues"_s].toArray(),
                     (QJsonArray{QJsonObject{{u"id"_s, 77}, {u"value"_s, u"4711"_s}}}));
        }
        for (auto it = files.cbegin(); it != files.cend(); ++it)
            QCOMPARE(readBytes(it.value()),
                     present.contains(it.key()) ? settings(it.key().toLatin1()) : "<missing>");
    }
};

QTEST_GUILESS_MAIN(TestCliSettings)
#include "tst_cli_settings.moc"
