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

namespace {

// "<missing>" leaves the file absent.
clsINI iniAt(const QString& file, const QByteArray& content = "<missing>")
{
    if (content != "<missing>")
        writeBytes(file, content);
    clsINI ini;
    ini.setFileName(file);
    return ini;
}

} // namespace

class TestClsIni : public QObject {
    Q_OBJECT
    std::unique_ptr<QTemporaryDir> m_dir;
    QString path(const QString& name = u"test.ini"_s) const { return m_dir->filePath(name); }

private slots:
    void init()
    {
        m_dir = std::make_unique<QTemporaryDir>();
        QVERIFY(m_dir->isValid());
    }

    void read_data()
    {
        QTest::addColumn<QByteArray>("content");
        QTest::addColumn<QString>("fallback");
        QTest::addColumn<QString>("expected");
        const auto row = [](const char* name, const QByteArray& content, const QString& fallback,
                            const QString& expected) {
            QTest::newRow(name) << content << fallback << expected;
        };
        row("no file", "<missing>", "Österreich", "Österreich");
        row("names ignore case", "[s]\r\nk=1\r\n", "d", "1");
        row("blanks around names and value", "[ S ]\n  K  =  a b  \n", "d", "a b");
        row("missing section", "[A]\nK=1\n", "d", "d");
        row("key of another section", "[S]\nX=1\n[B]\nK=1\n", "d", "d");
        row("key before any section", "K=1\n[S]\n", "d", "d");
        row("empty value is not the default", "[S]\nK=\n", "d", "");
        row("default loses trailing blanks", "[S]\n", " ab  ", " ab");
        row("quotes keep blanks", "[S]\nK=\"  a  \"\n", "d", "  a  ");
        row("unpaired quote stays", "[S]\nK=\"a\n", "d", "\"a");
        row("value holds = and ;", "[S]\nK=a=b;c\n", "d", "a=b;c");
        row("no final line break", "[S]\r\nK=2", "d", "2");
        row("first of two equal keys", "[S]\nK=1\nk=2\n", "d", "1");
        row("header with comment", "[S] ; alt\nK=1\n", "d", "1");
        row("Windows-1252", "[S]\nK=\xD6sterreich \x80 \x84x\x93\n", "d", "Österreich € „x“");
        row("NUL ends the value", QByteArray("[S]\nK=ab\0cd\n", 13), "d", "ab");
        row("UTF-8 with byte-order mark", "\xEF\xBB\xBF[S]\r\nK=\xC3\x96\r\n", "d", "Ö");
    }
    // Reading never writes or creates the file.
    void read()
    {
        QFETCH(QByteArray, content);
        QFETCH(QString, fallback);
        QFETCH(QString, expected);
        QCOMPARE(iniAt(path(), content).ReadData(u"S"_s, u"K"_s, fallback), expected);
        QCOMPARE(readBytes(path()), content);
    }

    void readBuffer()
    {
        clsINI ini = iniAt(path(), "[S]\r\nLang=" + QByteArray(9000, 'x') + "\r\nKurz=ab\r\n");
        QCOMPARE(ini.ReadData(u"S"_s, u"Lang"_s), QString(8191, u'x'));
        // The buffer is refilled before each read: nothing of the long value leaks through.
        QCOMPARE(ini.ReadData(u"S"_s, u"Kurz"_s), "ab");
        QCOMPARE(ini.ReadData(u"S"_s, u"Nix"_s, QString(9000, u'd')), QString(8191, u'd'));
    }

    void rewriteOfSameSizeIsSeen()
    {
        clsINI ini = iniAt(path(), "[S]\nK=1\n");
        QCOMPARE(ini.ReadData(u"S"_s, u"K"_s), "1");
        writeBytes(path(), "[S]\nK=2\n");
        QCOMPARE(ini.ReadData(u"S"_s, u"K"_s), "2");
        QFile::remove(path());
        QCOMPARE(ini.ReadData(u"S"_s, u"K"_s, u"weg"_s), "weg");
    }

    void write_data()
    {
        QTest::addColumn<QByteArray>("before");
        QTest::addColumn<QString>("section");
        QTest::addColumn<QString>("key");
        QTest::addColumn<QString>("value");
        QTest::addColumn<QByteArray>("after");
        const auto row = [](const char* name, const QByteArray& before, const QString& section,
                            const QString& key, const QString& value, const QByteArray& after) {
            QTest::newRow(name) << before << section << key << value << after;
        };
        const QByteArray file = "; Kopf\r\n[Config]\r\nCacheFelder=1\r\n\r\n"
                                "[Felder]\n; Liste\n  zeile1 = 25;Firma  \n\n[Ende]\r\n";
        row("creates the file, Windows-1252", "<missing>", "A", "K", "Österreich € Ł",
            "[A]\r\nK=\xD6sterreich \x80 ?\r\n");
        row("replaces in place, key as the file spells it", file, "felder", "ZEILE1", "79;Nachname",
            QByteArray(file).replace("  zeile1 = 25;Firma  \n", "zeile1=79;Nachname\r\n"));
        row("new key behind the section's last line", file, "Felder", "Zeile2", "30;Ort",
            QByteArray(file).replace("Firma  \n", "Firma  \nZeile2=30;Ort\r\n"));
        row("new section, no final line break", "[A]\nX=1", "B", "Y", "2",
            "[A]\nX=1\r\n[B]\r\nY=2\r\n");
        row("new key, no final line break", "[A]\r\nX=1", "A", "Y", "2", "[A]\r\nX=1\r\nY=2\r\n");
        row("new key in an empty section", "[A]\r\n\r\n[B]\r\n", "A", "Y", "2",
            "[A]\r\nY=2\r\n\r\n[B]\r\n");
        row("value stays on its line", "[A]\r\n", "A", "K", "a\r\nb\nc", "[A]\r\nK=a  b c\r\n");
        row("empty value", "[A]\r\nK=1\r\n", "A", "K", "", "[A]\r\nK=\r\n");
        row("UTF-8 file stays UTF-8", "\xEF\xBB\xBF[A]\r\n", "A", "K", "Ö",
            "\xEF\xBB\xBF[A]\r\nK=\xC3\x96\r\n");
    }
    void write()
    {
        QFETCH(QByteArray, before);
        QFETCH(QString, section);
        QFETCH(QString, key);
        QFETCH(QString, value);
        QFETCH(QByteArray, after);
        iniAt(path(), before).WriteData(section, key, value);
        QCOMPARE(readBytes(path()), after);
    }

    void writeSectionEqualsSingleWrites_data()
    {
        QTest::addColumn<QByteArray>("before");
        QTest::newRow("no file") << QByteArray("<missing>");
        QTest::newRow("mixed") << QByteArray("[felder]\nzeile2=x\n;c\n\n\n");
    }
    // The last value of a repeated key goes where the key first appears.
    void writeSectionEqualsSingleWrites()
    {
        QFETCH(QByteArray, before);
        const QList<std::pair<QString, QString>> values{
            {"Zeile1", "25;Firma"}, {"Zeile2", "30;Ort"}, {"ZEILE1", "26;Kontakt"}, {"Zeile3", ""}};
        clsINI single = iniAt(path(u"a.ini"_s), before);
        for (const auto& [k, v] : values)
            single.WriteData(u"Felder"_s, k, v);
        iniAt(path(u"b.ini"_s), before).WriteSection(u"Felder"_s, values);
        QCOMPARE(readBytes(path(u"b.ini"_s)), readBytes(path(u"a.ini"_s)));
    }

    void deleteSection()
    {
        clsINI ini = iniAt(path(), "[A]\r\nX=1\r\n[b]\r\n;c\r\nY=2\r\n\r\n[C]\r\nZ=3");
        ini.DeleteSection(u"B"_s); // with its comment and blank line
        QCOMPARE(readBytes(path()), "[A]\r\nX=1\r\n[C]\r\nZ=3");
        ini.DeleteSection(u"C"_s); // the last, without a final line break
        ini.DeleteSection(u"B"_s); // no longer there
        QCOMPARE(readBytes(path()), "[A]\r\nX=1\r\n");
    }

    void refusedWritesAreLost()
    {
        const QByteArray content = "[A]\r\nK=alt\r\n";
        writeBytes(path(), content);
        QVERIFY(QFile::setPermissions(path(), QFile::ReadOwner | QFile::ReadGroup));
        QVERIFY(QDir().mkdir(path(u"ordner.ini"_s)));
        for (const QString& target : {path(), path(u"fehlt/test.ini"_s), path(u"ordner.ini"_s)}) {
            clsINI ini = iniAt(target);
            ini.WriteData(u"A"_s, u"K"_s, u"neu"_s);
            ini.WriteSection(u"A"_s, {{u"L"_s, u"1"_s}});
            ini.DeleteSection(u"A"_s);
        }
        QCOMPARE(readBytes(path()), content);
        QVERIFY(!QFile::exists(path(u"fehlt"_s)));
        QVERIFY(QDir(path(u"ordner.ini"_s)).isEmpty());
    }

    void fileExists_data()
    {
        QTest::addColumn<QString>("relative");
        QTest::addColumn<bool>("expected");
        QTest::newRow("file") << "zettelfischer.ini" << true;
        QTest::newRow("missing") << "fehlt.ini" << false;
        QTest::newRow("folder") << "ordner" << false;
        QTest::newRow("hidden") << ".versteckt.ini" << false;
        QTest::newRow("link to file") << "link.ini" << true;
        QTest::newRow("fifo") << "rohr" << false;
        QTest::newRow("pattern") << "*.ini" << true;
        QTest::newRow("pattern with ?") << "zettelfische?.ini" << true;
        QTest::newRow("pattern, no match") << "*.exe" << false;
        QTest::newRow("pattern matches only hidden") << ".vers*" << false;
        QTest::newRow("empty") << "<empty>" << false;
    }
    void fileExists()
    {
        QFETCH(QString, relative);
        QFETCH(bool, expected);
        writeBytes(path(u"zettelfischer.ini"_s), "[Config]\r\n");
        writeBytes(path(u".versteckt.ini"_s), "[Config]\r\n");
        QVERIFY(QDir().mkdir(path(u"ordner"_s)));
        QVERIFY(QFile::link(path(u"zettelfischer.ini"_s), path(u"link.ini"_s)));
        QCOMPARE(::mkfifo(QFile::encodeName(path(u"rohr"_s)).constData(), 0600), 0);

        const QString target = relative == "<empty>" ? QString() : path(relative);
        QCOMPARE(FileExists(target), expected);
        QCOMPARE(iniAt(target).FileAvailable(), expected);
    }

    void codePage()
    {
        QByteArray all;
        for (int b = 0; b < 256; ++b)
            all.append(char(b));
        const QString text = profile::DecodeAnsi(all);
        QCOMPARE(profile::EncodeAnsi(text), all);
        QCOMPARE(text[0x80], QChar(0x20AC));
        QCOMPARE(text[0x9F], QChar(0x0178));
        // One "?" per character the code page lacks, also outside the basic plane.
        QCOMPARE(profile::EncodeAnsi(u"\u0080\u0100\U0001F41F"), QByteArray("???"));
    }
};

QTEST_GUILESS_MAIN(TestClsIni)
#include "tst_clsini.moc"
