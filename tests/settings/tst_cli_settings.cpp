// zettelfischer-cli analyse loads the settings file: --ini FILE, else the file beside it.

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

using namespace Qt::StringLiterals;

namespace {

const QByteArray Settings = "; von Hand gepflegt\r\n"
                            "[Config]\r\nCacheFelder=1\r\nStandardLand4PLZ=Schweiz\r\n\r\n"
                            "[Definitionen]\r\nID1=77\r\nWert1=Kundennr:\r\n"
                            "[Felder]\r\nZeile1=25;Firma\r\nZeile2=30;Stadt\r\n"
                            "Zeile3=32;Postleitzahl\r\nZeile4=33;Staat\r\n";

const QByteArray Address = "Beispiel AG\nKundennr: 4711\nBahnhofstr. 1\n8000 Z\xC3\xBCrich\n";

struct Run {
    int exitCode = -1;
    QJsonObject json;
};

Run runCli(const QString& program, const QStringList& args)
{
    QProcess p;
    p.start(program, args);
    p.write(Address);
    p.closeWriteChannel();
    if (!p.waitForFinished(30000))
        p.kill();
    return {p.exitStatus() == QProcess::NormalExit ? p.exitCode() : -1,
            QJsonDocument::fromJson(p.readAllStandardOutput()).object()};
}

// "value:field" of the used rows.
QStringList rows(const QJsonObject& json)
{
    QStringList out;
    for (const QJsonValue& v : json[u"rows"_s].toArray()) {
        const QJsonObject row = v.toObject();
        if (row[u"value"_s].toString().isEmpty())
            continue;
        const QJsonValue field = row[u"field"_s];
        out.append(row[u"value"_s].toString() + u':' +
                   (field.isNull() ? u"-"_s : field.toString()));
    }
    return out;
}

QJsonArray extras(const QJsonObject& json)
{
    return json[u"extraFieldValues"_s].toArray();
}

void writeBytes(const QString& path, const QByteArray& bytes)
{
    QFile f(path);
    QVERIFY(f.open(QIODevice::WriteOnly | QIODevice::Truncate));
    QCOMPARE(f.write(bytes), bytes.size());
}

} // namespace

class TestCliSettings : public QObject {
    Q_OBJECT
private slots:
    void iniOption();
    void fileBesideTheProgram();
};

void TestCliSettings::iniOption()
{
    QTemporaryDir dir;
    const QString ini = dir.filePath(u"eigene.ini"_s);
    writeBytes(ini, Settings);
    const Run r = runCli(QStringLiteral(ZF_CLI_PATH), {u"analyse"_s, u"--ini"_s, ini});
    QCOMPARE(r.exitCode, 0);
    QCOMPARE(rows(r.json),
             (QStringList{u"Beispiel AG:Firma"_s, u"Bahnhofstr. 1:-"_s, u"8000:Postleitzahl"_s,
                          u"Zürich:Stadt"_s, u"Schweiz:Staat"_s}));
    QCOMPARE(extras(r.json), (QJsonArray{QJsonObject{{u"id"_s, 77}, {u"value"_s, u"4711"_s}}}));
    QVERIFY(!r.json[u"clipText"_s].toString().isEmpty());
    // Loading never writes.
    QFile f(ini);
    QVERIFY(f.open(QIODevice::ReadOnly));
    QCOMPARE(f.readAll(), Settings);
}

void TestCliSettings::fileBesideTheProgram()
{
    QTemporaryDir dir;
    const QString program = dir.filePath(u"zettelfischer-cli"_s);
    QVERIFY(QFile::copy(QStringLiteral(ZF_CLI_PATH), program));

    const Run without = runCli(program, {u"analyse"_s});
    QCOMPARE(without.exitCode, 0);
    QVERIFY(extras(without.json).isEmpty());
    QVERIFY(rows(without.json).contains(u"Österreich:Land"_s));
    QVERIFY(!QFile::exists(dir.filePath(u"zettelfischer.ini"_s)));

    writeBytes(dir.filePath(u"zettelfischer.ini"_s), Settings);
    const Run with = runCli(program, {u"analyse"_s});
    QCOMPARE(with.exitCode, 0);
    QCOMPARE(extras(with.json).size(), 1);
    QVERIFY(rows(with.json).contains(u"Schweiz:Staat"_s));
}

QTEST_GUILESS_MAIN(TestCliSettings)
#include "tst_cli_settings.moc"
