// The INI class and its private-profile layer: lookups, defaults, in-place writes, the
// Windows-1252 file text and the read buffer.

#include "settings/clsini.h"
#include "settings/privateprofile.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include "filebytes.h"

#include <sys/stat.h>

using namespace zf;
using namespace Qt::StringLiterals;

class TestClsIni : public QObject {
    Q_OBJECT
private slots:
    void init()
    {
        m_dir = std::make_unique<QTemporaryDir>();
        QVERIFY(m_dir->isValid());
    }

    void read_data();
    void read();
    void readMissingFileCreatesNothing();
    void readBuffer();
    void rewriteOfSameSizeIsSeen();
    void write_data();
    void write();
    void writeSectionEqualsSingleWrites_data();
    void writeSectionEqualsSingleWrites();
    void deleteSection_data();
    void deleteSection();
    void refusedWritesAreLost_data();
    void refusedWritesAreLost();
    void fileExists_data();
    void fileExists();
    void codePage();

private:
    QString path(const QString& name = QStringLiteral("test.ini")) const
    {
        return m_dir->filePath(name);
    }
    std::unique_ptr<QTemporaryDir> m_dir;
};

void TestClsIni::read_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QString>("section");
    QTest::addColumn<QString>("key");
    QTest::addColumn<QString>("fallback");
    QTest::addColumn<QString>("expected");

    const QByteArray config = "; Einstellungen\r\n[Config]\r\nCacheFelder=1\r\nLand=\r\n";
    QTest::newRow("present") << config << "Config"
                             << "CacheFelder"
                             << "0"
                             << "1";
    QTest::newRow("missing section") << config << "Felder"
                                     << "Zeile1"
                                     << "d"
                                     << "d";
    QTest::newRow("missing key") << config << "Config"
                                 << "Nix"
                                 << "0"
                                 << "0";
    QTest::newRow("empty value is not the default") << config << "Config"
                                                    << "Land"
                                                    << "x"
                                                    << "";
    QTest::newRow("names ignore case") << config << "CONFIG"
                                       << "cachefelder"
                                       << "0"
                                       << "1";
    QTest::newRow("default loses trailing blanks") << config << "Config"
                                                   << "Nix"
                                                   << " ab  "
                                                   << " ab";
    QTest::newRow("blanks around names and value")
        << QByteArray("[ Config ]\n  Key  =  a b  \n") << "Config"
        << "Key"
        << ""
        << "a b";
    QTest::newRow("quotes keep blanks") << QByteArray("[S]\nK=\"  a  \"\n") << "S"
                                        << "K"
                                        << ""
                                        << "  a  ";
    QTest::newRow("unpaired quote stays") << QByteArray("[S]\nK=\"a\n") << "S"
                                          << "K"
                                          << ""
                                          << "\"a";
    QTest::newRow("value holds = and ;") << QByteArray("[S]\nK=a=b;c\n") << "S"
                                         << "K"
                                         << ""
                                         << "a=b;c";
    QTest::newRow("LF lines") << QByteArray("[S]\nA=1\nB=2\n") << "S"
                              << "B"
                              << ""
                              << "2";
    QTest::newRow("no final line break") << QByteArray("[S]\r\nB=2") << "S"
                                         << "B"
                                         << ""
                                         << "2";
    QTest::newRow("first of two equal keys") << QByteArray("[S]\nK=1\nk=2\n") << "S"
                                             << "K"
                                             << ""
                                             << "1";
    QTest::newRow("key of another section") << QByteArray("[A]\nK=1\n[B]\nX=2\n") << "B"
                                            << "K"
                                            << "d"
                                            << "d";
    QTest::newRow("key before any section") << QByteArray("K=1\n[S]\n") << "S"
                                            << "K"
                                            << "d"
                                            << "d";
    QTest::newRow("comment is no key") << QByteArray("[S]\n;K=1\n") << "S"
                                       << "K"
                                       << "d"
                                       << "d";
    QTest::newRow("header with comment") << QByteArray("[S] ; alt\nK=1\n") << "S"
                                         << "K"
                                         << ""
                                         << "1";
    QTest::newRow("Windows-1252") << QByteArray("[S]\nK=\xD6sterreich \x80 \x84x\x93\n") << "S"
                                  << "K"
                                  << ""
                                  << "Österreich € „x“";
    QTest::newRow("undefined byte") << QByteArray("[S]\nK=a\x81z\n") << "S"
                                    << "K"
                                    << ""
                                    << "a\u0081z";
    QTest::newRow("umlaut in key") << QByteArray("[S]\n\xC4nderung=ja\n") << "S"
                                   << "änderung"
                                   << ""
                                   << "ja";
    QTest::newRow("NUL ends the value") << QByteArray("[S]\nK=ab\0cd\n", 13) << "S"
                                        << "K"
                                        << ""
                                        << "ab";
    QTest::newRow("UTF-8 with byte-order mark")
        << QByteArray("\xEF\xBB\xBF[S]\r\nK=\xC3\x96sterreich\r\n") << "S"
        << "K"
        << ""
        << "Österreich";
    QTest::newRow("binary") << QByteArray("\x00\xFF[\x01=\n]]]==\r\r\n[S\n", 17) << "S"
                            << "K"
                            << "d"
                            << "d";
}

void TestClsIni::read()
{
    QFETCH(QByteArray, content);
    QFETCH(QString, section);
    QFETCH(QString, key);
    QFETCH(QString, fallback);
    QFETCH(QString, expected);
    writeBytes(path(), content);
    clsINI ini;
    ini.setFileName(path());
    QCOMPARE(ini.ReadData(section, key, fallback), expected);
}

void TestClsIni::readMissingFileCreatesNothing()
{
    clsINI ini;
    ini.setFileName(path());
    QCOMPARE(ini.ReadData(u"Config"_s, u"StandardLand4PLZ"_s, u"Österreich"_s), "Österreich");
    QCOMPARE(ini.ReadData(u"Config"_s, u"X"_s), QString());
    QCOMPARE(ini.ReadData(u"Config"_s, u"X"_s, 42), "42");
    QVERIFY(!QFile::exists(path()));
    QVERIFY(!ini.FileAvailable());
}

void TestClsIni::readBuffer()
{
    const QString longValue = QString(9000, u'x');
    writeBytes(path(), "[S]\r\nLang=" + longValue.toLatin1() + "\r\nKurz=ab\r\n");
    clsINI ini;
    ini.setFileName(path());
    QCOMPARE(ini.ReadData(u"S"_s, u"Lang"_s, u""_s), QString(8191, u'x'));
    // The buffer is refilled before each read: nothing of the long value leaks through.
    QCOMPARE(ini.ReadData(u"S"_s, u"Kurz"_s, u""_s), "ab");
    QCOMPARE(ini.ReadData(u"S"_s, u"Nix"_s, QString(9000, u'd')), QString(8191, u'd'));
    QCOMPARE(ini.ReadData(u"S"_s, u"Nix"_s, u""_s), QString());
}

void TestClsIni::rewriteOfSameSizeIsSeen()
{
    clsINI ini;
    ini.setFileName(path());
    writeBytes(path(), "[S]\nK=1\n");
    QCOMPARE(ini.ReadData(u"S"_s, u"K"_s, u""_s), "1");
    writeBytes(path(), "[S]\nK=2\n");
    QCOMPARE(ini.ReadData(u"S"_s, u"K"_s, u""_s), "2");
    QFile::remove(path());
    QCOMPARE(ini.ReadData(u"S"_s, u"K"_s, u"weg"_s), "weg");
}

void TestClsIni::write_data()
{
    QTest::addColumn<QByteArray>("before"); // "<missing>": no file
    QTest::addColumn<QString>("section");
    QTest::addColumn<QString>("key");
    QTest::addColumn<QString>("value");
    QTest::addColumn<QByteArray>("after");

    const QByteArray file = "; Kopf\r\n[Config]\r\nCacheFelder=1\r\n\r\n"
                            "[Felder]\n; Liste\nZeile1=25;Firma\n\n[Ende]\r\n";
    QTest::newRow("creates the file")
        << QByteArray("<missing>") << "Felder"
        << "Zeile1"
        << "25;Firma" << QByteArray("[Felder]\r\nZeile1=25;Firma\r\n");
    QTest::newRow("replaces in place")
        << file << "felder"
        << "ZEILE1"
        << "79;Nachname"
        << QByteArray("; Kopf\r\n[Config]\r\nCacheFelder=1\r\n\r\n"
                      "[Felder]\n; Liste\nZeile1=79;Nachname\r\n\n[Ende]\r\n");
    QTest::newRow("new key behind the section's last line")
        << file << "Felder"
        << "Zeile2"
        << "30;Ort"
        << QByteArray("; Kopf\r\n[Config]\r\nCacheFelder=1\r\n\r\n"
                      "[Felder]\n; Liste\nZeile1=25;Firma\nZeile2=30;Ort\r\n\n[Ende]\r\n");
    QTest::newRow("new section at the end") << file << "Definitionen"
                                            << "ID1"
                                            << "12" << file + "[Definitionen]\r\nID1=12\r\n";
    QTest::newRow("new section, no final line break")
        << QByteArray("[A]\nX=1") << "B"
        << "Y"
        << "2" << QByteArray("[A]\nX=1\r\n[B]\r\nY=2\r\n");
    QTest::newRow("new key, no final line break") << QByteArray("[A]\r\nX=1") << "A"
                                                  << "Y"
                                                  << "2" << QByteArray("[A]\r\nX=1\r\nY=2\r\n");
    QTest::newRow("new key in an empty section") << QByteArray("[A]\r\n\r\n[B]\r\n") << "A"
                                                 << "Y"
                                                 << "2" << QByteArray("[A]\r\nY=2\r\n\r\n[B]\r\n");
    QTest::newRow("file's spelling of the key stays")
        << QByteArray("[A]\r\n  zeile1 = alt  \r\n") << "A"
        << "Zeile1"
        << "neu" << QByteArray("[A]\r\nzeile1=neu\r\n");
    QTest::newRow("Windows-1252") << QByteArray("<missing>") << "Config"
                                  << "StandardLand4PLZ"
                                  << "Österreich € Ł"
                                  << QByteArray(
                                         "[Config]\r\nStandardLand4PLZ=\xD6sterreich \x80 ?\r\n");
    QTest::newRow("value stays on its line") << QByteArray("[A]\r\n") << "A"
                                             << "K"
                                             << "a\r\nb\nc" << QByteArray("[A]\r\nK=a  b c\r\n");
    QTest::newRow("empty value") << QByteArray("[A]\r\nK=1\r\n") << "A"
                                 << "K"
                                 << "" << QByteArray("[A]\r\nK=\r\n");
    QTest::newRow("rewritten line ends in CR LF") << QByteArray("[A]\nK = 1\nL=2\n") << "A"
                                                  << "K"
                                                  << "1" << QByteArray("[A]\nK=1\r\nL=2\n");
    QTest::newRow("UTF-8 file stays UTF-8")
        << QByteArray("\xEF\xBB\xBF[A]\r\n") << "A"
        << "K"
        << "Ö" << QByteArray("\xEF\xBB\xBF[A]\r\nK=\xC3\x96\r\n");
}

void TestClsIni::write()
{
    QFETCH(QByteArray, before);
    QFETCH(QString, section);
    QFETCH(QString, key);
    QFETCH(QString, value);
    QFETCH(QByteArray, after);
    if (before != "<missing>")
        writeBytes(path(), before);
    clsINI ini;
    ini.setFileName(path());
    ini.WriteData(section, key, value);
    QCOMPARE(readBytes(path()), after);
}

void TestClsIni::writeSectionEqualsSingleWrites_data()
{
    QTest::addColumn<QByteArray>("before");
    QTest::newRow("no file") << QByteArray("<missing>");
    QTest::newRow("no section") << QByteArray("[Config]\nCacheFelder=1");
    QTest::newRow("longer list") << QByteArray(
        "[Felder]\r\nZeile1=1;a\r\nZeile2=2;b\r\nZeile3=3;c\r\n"
        "Zeile4=4;d\r\n\r\n[Config]\r\n");
    QTest::newRow("mixed") << QByteArray("[felder]\nzeile2=x\n;c\n\n\n");
}

void TestClsIni::writeSectionEqualsSingleWrites()
{
    QFETCH(QByteArray, before);
    const QList<std::pair<QString, QString>> values{{u"Zeile1"_s, u"25;Firma"_s},
                                                    {u"Zeile2"_s, u"30;Ort"_s},
                                                    {u"ZEILE1"_s, u"26;Kontakt"_s},
                                                    {u"Zeile3"_s, u""_s}};
    if (before != "<missing>") {
        writeBytes(path(u"a.ini"_s), before);
        writeBytes(path(u"b.ini"_s), before);
    }
    clsINI single;
    single.setFileName(path(u"a.ini"_s));
    for (const auto& [k, v] : values)
        single.WriteData(u"Felder"_s, k, v);
    clsINI batch;
    batch.setFileName(path(u"b.ini"_s));
    batch.WriteSection(u"Felder"_s, values);
    QCOMPARE(readBytes(path(u"b.ini"_s)), readBytes(path(u"a.ini"_s)));
}

void TestClsIni::deleteSection_data()
{
    QTest::addColumn<QByteArray>("before");
    QTest::addColumn<QString>("section");
    QTest::addColumn<QByteArray>("after");
    QTest::newRow("middle") << QByteArray("[A]\r\nX=1\r\n[B]\r\n;c\r\nY=2\r\n\r\n[C]\r\nZ=3\r\n")
                            << "b" << QByteArray("[A]\r\nX=1\r\n[C]\r\nZ=3\r\n");
    QTest::newRow("last") << QByteArray("[A]\nX=1\n[B]\nY=2") << "B" << QByteArray("[A]\nX=1\n");
    QTest::newRow("missing") << QByteArray("[A]\nX=1\n") << "B" << QByteArray("[A]\nX=1\n");
    QTest::newRow("no file") << QByteArray("<missing>") << "A" << QByteArray("<missing>");
}

void TestClsIni::deleteSection()
{
    QFETCH(QByteArray, before);
    QFETCH(QString, section);
    QFETCH(QByteArray, after);
    if (before != "<missing>")
        writeBytes(path(), before);
    clsINI ini;
    ini.setFileName(path());
    ini.DeleteSection(section);
    QCOMPARE(readBytes(path()), after);
}

void TestClsIni::refusedWritesAreLost_data()
{
    QTest::addColumn<QString>("kind");
    QTest::newRow("read-only file") << "readonly";
    QTest::newRow("missing folder") << "nofolder";
    QTest::newRow("folder") << "folder";
    QTest::newRow("below a file") << "belowfile";
    QTest::newRow("empty path") << "empty";
}

void TestClsIni::refusedWritesAreLost()
{
    QFETCH(QString, kind);
    QString target = path();
    const QByteArray content = "[A]\r\nK=alt\r\n";
    if (kind == "readonly") {
        writeBytes(target, content);
        QVERIFY(QFile::setPermissions(target, QFile::ReadOwner | QFile::ReadGroup));
    } else if (kind == "nofolder") {
        target = path(u"fehlt/test.ini"_s);
    } else if (kind == "folder") {
        QVERIFY(QDir(m_dir->path()).mkdir(u"ordner.ini"_s));
        target = path(u"ordner.ini"_s);
    } else if (kind == "belowfile") {
        writeBytes(target, content);
        target += u"/x.ini"_s;
    } else {
        target.clear();
    }
    clsINI ini;
    ini.setFileName(target);
    ini.WriteData(u"A"_s, u"K"_s, u"neu"_s);
    ini.WriteSection(u"A"_s, {{u"L"_s, u"1"_s}});
    ini.DeleteSection(u"A"_s);
    QCOMPARE(ini.ReadData(u"A"_s, u"K"_s, u"d"_s), kind == "readonly" ? "alt" : "d");
    if (kind == "readonly" || kind == "belowfile")
        QCOMPARE(readBytes(path()), content);
    QVERIFY(!QFile::exists(path(u"fehlt"_s)));
}

void TestClsIni::fileExists_data()
{
    QTest::addColumn<QString>("relative");
    QTest::addColumn<bool>("expected");
    QTest::newRow("file") << "zettelfischer.ini" << true;
    QTest::newRow("missing") << "fehlt.ini" << false;
    QTest::newRow("folder") << "ordner" << false;
    QTest::newRow("hidden") << ".versteckt.ini" << false;
    QTest::newRow("link to file") << "link.ini" << true;
    QTest::newRow("dangling link") << "tot.ini" << false;
    QTest::newRow("fifo") << "rohr" << false;
    QTest::newRow("below a file") << "zettelfischer.ini/x" << false;
    QTest::newRow("trailing slash") << "zettelfischer.ini/" << false;
    QTest::newRow("pattern") << "*.ini" << true;
    QTest::newRow("pattern with ?") << "zettelfische?.ini" << true;
    QTest::newRow("pattern, no match") << "*.exe" << false;
    QTest::newRow("pattern matches only hidden") << ".vers*" << false;
    QTest::newRow("pattern in a folder name") << "ord*/a.ini" << false;
    QTest::newRow("empty") << "<empty>" << false;
}

void TestClsIni::fileExists()
{
    QFETCH(QString, relative);
    QFETCH(bool, expected);
    QDir dir(m_dir->path());
    writeBytes(path(u"zettelfischer.ini"_s), "[Config]\r\n");
    writeBytes(path(u".versteckt.ini"_s), "[Config]\r\n");
    QVERIFY(dir.mkdir(u"ordner"_s));
    writeBytes(path(u"ordner/a.ini"_s), "");
    QVERIFY(QFile::link(path(u"zettelfischer.ini"_s), path(u"link.ini"_s)));
    QVERIFY(QFile::link(path(u"fehlt.ini"_s), path(u"tot.ini"_s)));
    QCOMPARE(::mkfifo(QFile::encodeName(path(u"rohr"_s)).constData(), 0600), 0);

    const QString target = relative == "<empty>" ? QString() : path(relative);
    QCOMPARE(FileExists(target), expected);
    clsINI ini;
    ini.setFileName(target);
    QCOMPARE(ini.FileName(), target);
    QCOMPARE(ini.FileAvailable(), expected);
}

void TestClsIni::codePage()
{
    QByteArray all;
    for (int b = 0; b < 256; ++b)
        all.append(char(b));
    const QString text = profile::DecodeAnsi(all);
    QCOMPARE(text.size(), 256);
    QCOMPARE(profile::EncodeAnsi(text), all);
    QCOMPARE(text[0x80], QChar(0x20AC));
    QCOMPARE(text[0x9F], QChar(0x0178));
    QCOMPARE(text[0xD6], QChar(u'Ö'));
    QCOMPARE(profile::EncodeAnsi(u"Österreich"), QByteArray("\xD6sterreich"));
    QCOMPARE(profile::EncodeAnsi(u"\u0080\u0100"), QByteArray("??"));
}

QTEST_GUILESS_MAIN(TestClsIni)
#include "tst_clsini.moc"
