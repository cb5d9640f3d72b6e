// The INI class and its private-profile layer: lookups, defaults, writes that change only
// their own lines and replace the file safely, the file's encoding and the read buffer.

#include "settings/clsini.h"
#include "settings/privateprofile.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <QTest>

#include "filebytes.h"

#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace zf;
using namespace Qt::StringLiterals;

Q_DECLARE_METATYPE(zf::profile::WriteStep)

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
        row("UTF-8 from a Linux editor", "[S]\nK=\xC3\x96sterreich \xE2\x82\xAC\n", "d",
            "Österreich €");
        row("one invalid sequence: Windows-1252", "[S]\nA=\xC3\x96\nK=\xC3\x96\xC3\n", "d", "Ã–Ã");
        row("overlong form: Windows-1252", "[S]\nK=\xC0\xAF\n", "d", "À¯");
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
        row("new section, no final line break", "[A]\nX=1", "B", "Y", "2", "[A]\nX=1\n[B]\nY=2\n");
        row("line ends as the first line's", "[A]\nX=1\r\n", "A", "X", "2", "[A]\nX=2\n");
        row("one line, no line break", "[A]", "A", "X", "2", "[A]\r\nX=2\r\n");
        row("new key, no final line break", "[A]\r\nX=1", "A", "Y", "2", "[A]\r\nX=1\r\nY=2\r\n");
        row("new key in an empty section", "[A]\r\n\r\n[B]\r\n", "A", "Y", "2",
            "[A]\r\nY=2\r\n\r\n[B]\r\n");
        row("value stays on its line", "[A]\r\n", "A", "K", "a\r\nb\nc", "[A]\r\nK=a  b c\r\n");
        row("empty value", "[A]\r\nK=1\r\n", "A", "K", "", "[A]\r\nK=\r\n");
        row("UTF-8 file stays UTF-8", "\xEF\xBB\xBF[A]\r\n", "A", "K", "Ö",
            "\xEF\xBB\xBF[A]\r\nK=\xC3\x96\r\n");
        row("UTF-8 without mark stays UTF-8", "; \xC3\xA4\n[A]\n", "A", "K", "Łódź",
            "; \xC3\xA4\n[A]\nK=\xC5\x81\xC3\xB3"
            "d\xC5\xBA\n");
        row("ASCII stays Windows-1252", "[A]\n", "A", "K", "Größe",
            "[A]\nK=Gr\xF6\xDF"
            "e\n");
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

    void utf8Detection_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<bool>("utf8");
        QTest::newRow("ASCII only") << QByteArray("[Config]\r\nK=a\r\n") << false;
        QTest::newRow("two, three and four bytes")
            << QByteArray("\xC3\xB6 \xE2\x82\xAC \xF0\x9F\x90\x9F") << true;
        QTest::newRow("highest code point") << QByteArray("\xF4\x8F\xBF\xBF") << true;
        QTest::newRow("above U+10FFFF") << QByteArray("\xF4\x90\x80\x80") << false;
        QTest::newRow("Windows-1252 umlaut") << QByteArray("Gr\xF6\xDF"
                                                           "e")
                                             << false;
        QTest::newRow("cut at the end") << QByteArray("ab\xE2\x82") << false;
        QTest::newRow("continuation byte alone") << QByteArray("a\x80"
                                                               "b")
                                                 << false;
        QTest::newRow("overlong two bytes") << QByteArray("\xC1\xBF") << false;
        QTest::newRow("overlong three bytes") << QByteArray("\xE0\x9F\xBF") << false;
        QTest::newRow("surrogate") << QByteArray("\xED\xA0\x80") << false;
        QTest::newRow("lead byte before ASCII") << QByteArray("\xC3"
                                                              "A")
                                                << false;
    }
    void utf8Detection()
    {
        QFETCH(QByteArray, bytes);
        QFETCH(bool, utf8);
        QCOMPARE(profile::IsUtf8Text(bytes), utf8);
    }

    // Beyond the limit the file counts as unreadable: defaults, and no write touches it.
    void oversizedFile_data()
    {
        QTest::addColumn<qint64>("size");
        QTest::addColumn<QString>("expected");
        QTest::newRow("at the limit") << profile::MaxFileSize << "gelesen";
        QTest::newRow("one byte more") << profile::MaxFileSize + 1 << "d";
    }
    void oversizedFile()
    {
        QFETCH(qint64, size);
        QFETCH(QString, expected);
        QByteArray content = "[S]\r\nK=gelesen\r\n;";
        content += QByteArray(size - content.size(), 'x');
        clsINI ini = iniAt(path(), content);
        QCOMPARE(ini.ReadData(u"S"_s, u"K"_s, u"d"_s), expected);
        ini.WriteData(u"S"_s, u"K"_s, u"neu"_s);
        QCOMPARE(ini.ReadData(u"S"_s, u"K"_s, u"d"_s), expected == "d" ? "d" : "neu");
        if (expected == "d")
            QCOMPARE(readBytes(path()), content);
    }

    // The program stopped at every step of a write: the file holds the old text or the new
    // one, never a part.
    void interruptedWrite()
    {
        QByteArray before = "[Felder]\r\n";
        QList<std::pair<QString, QString>> lines;
        for (int n = 1; n <= 3000; ++n)
            lines.append({u"Zeile%1"_s.arg(n), u"%1;Feld %1"_s.arg(n)});
        // The new text: as an uninterrupted write leaves it.
        iniAt(path(u"neu.ini"_s), before).WriteSection(u"Felder"_s, lines);
        const QByteArray after = readBytes(path(u"neu.ini"_s));
        QVERIFY(after.size() > 3 * 16 * 1024); // written in several pieces

        QStringList seen;
        for (int stopAt = 1;; ++stopAt) {
            writeBytes(path(), before);
            const pid_t child = ::fork();
            QVERIFY(child >= 0);
            if (child == 0) {
                int step = 0;
                profile::setWriteStepHook([stopAt, &step](profile::WriteStep) {
                    if (++step == stopAt)
                        ::_exit(3);
                    return true;
                });
                iniAt(path()).WriteSection(u"Felder"_s, lines);
                ::_exit(0);
            }
            int status = 0;
            QCOMPARE(::waitpid(child, &status, 0), child);
            QVERIFY(WIFEXITED(status));
            const QByteArray now = readBytes(path());
            QVERIFY2(now == before || now == after,
                     qPrintable(u"stopped at step %1"_s.arg(stopAt)));
            seen << (now == before ? u"alt"_s : u"neu"_s);
            if (WEXITSTATUS(status) == 0)
                break;
        }
        // Old until the rename, new from then on; the last run was not stopped.
        QCOMPARE(seen.count(u"neu"_s), 2);
        QVERIFY(seen.size() > 6);
    }

    // A failing step loses the write and leaves the old file and no temporary file behind.
    void failedWriteStep_data()
    {
        QTest::addColumn<profile::WriteStep>("failing");
        QTest::newRow("temporary file") << profile::WriteStep::TempCreated;
        QTest::newRow("writing") << profile::WriteStep::PartWritten;
        QTest::newRow("flush to disk") << profile::WriteStep::Synced;
        QTest::newRow("closing") << profile::WriteStep::Closed;
    }
    void failedWriteStep()
    {
        QFETCH(profile::WriteStep, failing);
        const QByteArray content = "[A]\r\nK=alt\r\n";
        clsINI ini = iniAt(path(), content);
        profile::setWriteStepHook([failing](profile::WriteStep step) { return step != failing; });
        ini.WriteData(u"A"_s, u"K"_s, u"neu"_s);
        profile::setWriteStepHook({});
        QCOMPARE(readBytes(path()), content);
        QCOMPARE(ini.ReadData(u"A"_s, u"K"_s), "alt");
        QCOMPARE(QDir(m_dir->path()).entryList(QDir::Files | QDir::Hidden),
                 QStringList{"test.ini"});
    }

    // The new file takes the old one's place: same mode, a link stays a link to it.
    void replacedFileKeepsModeAndLink()
    {
        writeBytes(path(), "[A]\r\nK=1\r\n");
        QVERIFY(QFile::setPermissions(path(), QFile::ReadOwner | QFile::WriteOwner |
                                                  QFile::ReadGroup | QFile::ReadOther));
        QVERIFY(QFile::link(path(), path(u"link.ini"_s)));
        clsINI ini = iniAt(path(u"link.ini"_s));
        ini.WriteData(u"A"_s, u"K"_s, u"2"_s);
        QCOMPARE(readBytes(path()), "[A]\r\nK=2\r\n");
        QCOMPARE(QFileInfo(path(u"link.ini"_s)).symLinkTarget(), path());
        struct stat st {};
        QCOMPARE(::stat(QFile::encodeName(path()).constData(), &st), 0);
        QCOMPARE(st.st_mode & 0777, mode_t(0644));
        QCOMPARE(QDir(m_dir->path()).entryList(QDir::Files | QDir::Hidden | QDir::System),
                 (QStringList{"link.ini", "test.ini"}));
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
