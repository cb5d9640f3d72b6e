// zettelfischer-cli analyse loads the settings file: --ini FILE, else the file beside it.

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

#include "filebytes.h"

using namespace Qt::StringLiterals;

namespace {

const QByteArray Settings = "; von Hand gepflegt\r\n"
                            "[Config]\r\nCacheFelder=1\r\nStandardLand4PLZ=Schweiz\r\n\r\n"
                            "[Definitionen]\r\nID1=77\r\nWert1=Kundennr:\r\n"
                            "[Felder]\r\nZeile1=25;Firma\r\nZeile2=30;Stadt\r\n"
                            "Zeile3=32;Postleitzahl\r\nZeile4=33;Staat\r\n";

// The analysis of an address without a country; empty when the program fails.
QJsonObject analyse(const QString& program, const QStringList& args)
{
    QProcess p;
    p.start(program, QStringList{u"analyse"_s} + args);
    p.write("Beispiel AG\nKundennr: 4711\nBahnhofstr. 1\n8000 Z\xC3\xBCrich\n");
    p.closeWriteChannel();
    if (!p.waitForFinished(30000))
        p.kill();
    if (p.exitStatus() != QProcess::NormalExit || p.exitCode() != 0)
        return {};
    return QJsonDocument::fromJson(p.readAllStandardOutput()).object();
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
    // --ini names the file, else the one beside the program counts; loading never writes.
    void settingsFile()
    {
        QTemporaryDir dir;
        const QString program = dir.filePath(u"zettelfischer-cli"_s);
        QVERIFY(QFile::copy(QStringLiteral(ZF_CLI_PATH), program));
        const QString beside = dir.filePath(u"zettelfischer.ini"_s);
        const QString other = dir.filePath(u"eigene.ini"_s);
        writeBytes(other, Settings);

        QVERIFY(hasRow(analyse(program, {}), u"Österreich"_s, u"Land"_s, 33));
        QVERIFY(!QFile::exists(beside));

        // The file's default country under the cached name of its field; the labelled value.
        const QJsonObject json = analyse(program, {u"--ini"_s, other});
        QVERIFY(hasRow(json, u"Schweiz"_s, u"Staat"_s, 33));
        QCOMPARE(json[u"extraFieldValues"_s].toArray(),
                 (QJsonArray{QJsonObject{{u"id"_s, 77}, {u"value"_s, u"4711"_s}}}));
        QCOMPARE(readBytes(other), Settings);

        QVERIFY(QFile::rename(other, beside));
        QVERIFY(hasRow(analyse(program, {}), u"Schweiz"_s, u"Staat"_s, 33));
    }
};

QTEST_GUILESS_MAIN(TestCliSettings)
#include "tst_cli_settings.moc"
