// Loading the settings file (definitions, field cache, default countries) and saving the
// field cache.

#include "settings/settings.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include "filebytes.h"

using namespace zf;
using namespace Qt::StringLiterals;

using Definitions = QList<clsZusatzDefs>;
using Entries = QList<FieldEntry>;

// The list stays as built in.
const Entries BuiltIn{{"<eingebaut>", 0}};

namespace {

const QByteArray CacheOn = "[Config]\r\nCacheFelder=1\r\n[Felder]\r\n";

struct Loaded {
    SharedState state;
    FieldRows rows;
    const Entries& entries() const { return rows.fields().entries(); }
};

std::unique_ptr<Loaded> loadFrom(const QString& path)
{
    auto out = std::make_unique<Loaded>();
    out->rows.FillDefaultFieldLists();
    // Stale values that loading must replace.
    out->state.StandardLand4PLZ = out->state.StandardLand5PLZ = u"vorher"_s;
    out->state.ExtraDefinitionsLoaded = true;
    LoadSettings(path, out->state, out->rows);
    return out;
}

} // namespace

class TestSettings : public QObject {
    Q_OBJECT
    std::unique_ptr<QTemporaryDir> m_dir;
    QString ini() const { return m_dir->filePath(u"zettelfischer.ini"_s); }

private slots:
    void init()
    {
        m_dir = std::make_unique<QTemporaryDir>();
        QVERIFY(m_dir->isValid());
    }

    void load_data()
    {
        QTest::addColumn<QByteArray>("content");
        QTest::addColumn<Definitions>("definitions");
        QTest::addColumn<Entries>("entries");

        const auto row = [](const char* name, const QByteArray& content,
                            const Definitions& definitions, const Entries& entries = BuiltIn) {
            QTest::newRow(name) << content << definitions << entries;
        };
        const QByteArray defs = "[Config]\r\n[Definitionen]\r\n";
        row("one definition", defs + "ID1=12\r\nWert1=Kundennr:\r\n", {{12, "Kundennr:"}});
        row("ID without Wert ends the definitions", defs + "ID1=12\r\nID2=13\r\nWert2=Kd:\r\n", {});
        row("gap ends the definitions", defs + "ID1=1\nWert1=a\nID2=2\nWert2=b\nID4=4\nWert4=d\n",
            {{1, "a"}, {2, "b"}});
        row("leading number and rounding",
            defs + "ID1=12abc\nWert1=a\nID2=abc\nWert2=b\nID3=7.5\nWert3=c\n"
                   "ID4=6.5\nWert4=d\nID5=-2.5\nWert5=e\nID6= 1 2 \nWert6=f\n",
            {{12, "a"}, {0, "b"}, {8, "c"}, {6, "d"}, {-2, "e"}, {12, "f"}});
        row("leading-number forms",
            defs + "ID1=.75x\nWert1=a\nID2=2.5.9\nWert2=b\nID3= - 1 2.5\nWert3=c\n"
                   "ID4=1e3\nWert4=d\nID5=5e\nWert5=e\nID6=7,5\nWert6=f\n",
            {{1, "a"}, {2, "b"}, {-12, "c"}, {1000, "d"}, {5, "e"}, {7, "f"}});
        row("ids outside 16 bits are skipped",
            defs + "ID1=70000\nWert1=a\nID2=32767.5\nWert2=b\nID3=-32768.5\nWert3=c\n"
                   "ID4=1e999\nWert4=d\nID5=32767\nWert5=e\n",
            {{-32768, "c"}, {32767, "e"}});

        row("two cache entries", CacheOn + "Zeile1=25;Firma\r\nZeile2=79;Nachname\r\n", {},
            {{"Firma", 25}, {"Nachname", 79}});
        row("no Felder section", "[Config]\r\nCacheFelder=1\r\n", {});
        row("switch is not exactly 1",
            "[Config]\r\nCacheFelder=ja\r\n[Felder]\r\nZeile1=25;Firma\r\n", {});
        row("empty Zeile1", CacheOn + "Zeile1=\r\nZeile2=25;Firma\r\n", {});
        row("name may hold semicolons", CacheOn + "Zeile1=94;Web;Seite\r\n", {},
            {{"Web;Seite", 94}});
        row("shown sorted",
            CacheOn + "Zeile1=79;nachname\nZeile2=25;Firma\nZeile3=-1;(keins)\nZeile4=26;firma\n",
            {}, {{"(keins)", -1}, {"Firma", 25}, {"firma", 26}, {"nachname", 79}});
        row("sorted as in German",
            CacheOn + "Zeile1=1;Gz\nZeile2=2;Größe\nZeile3=3;Zeitung\nZeile4=4;Ärzte\n"
                      "Zeile5=5;Abteilung\nZeile6=6;Grösse\nZeile7=7;ärzte\n",
            {},
            {{"Abteilung", 5},
             {"Ärzte", 4},
             {"ärzte", 7},
             {"Grösse", 6},
             {"Größe", 2},
             {"Gz", 1},
             {"Zeitung", 3}});
        row("unusable cache lines skipped",
            CacheOn + "Zeile1=Firma\nZeile2=70000;Gross\nZeile3=abc;Text\nZeile4=2.5;Halb\n"
                      "Zeile5= 30 ;Ort\nZeile6=;Leer\nZeile7=-32768;Min\n"
                      "Zeile8=99999999999999999999;Riesig\n",
            {}, {{"Min", -32768}, {"Ort", 30}});
        row("only unusable cache lines", CacheOn + "Zeile1=Firma\nZeile2=x;y\n", {}, {});
    }
    void load()
    {
        QFETCH(QByteArray, content);
        QFETCH(Definitions, definitions);
        QFETCH(Entries, entries);
        writeBytes(ini(), content);
        const auto loaded = loadFrom(ini());
        QCOMPARE(loaded->state.ExtraDefinitions, definitions);
        QCOMPARE(loaded->state.ExtraDefinitionsLoaded, !definitions.isEmpty());
        QCOMPARE(loaded->entries(), entries == BuiltIn ? loadFrom({})->entries() : entries);
    }

    void countriesAndNoWrites_data()
    {
        QTest::addColumn<QByteArray>("content"); // "<missing>": no file
        QTest::addColumn<QString>("land4");
        QTest::addColumn<QString>("land5");
        QTest::newRow("no file") << QByteArray("<missing>") << u"Österreich"_s << u"Deutschland"_s;
        QTest::newRow("set") << QByteArray("[Config]\r\nStandardLand4PLZ=Schweiz\r\n"
                                           "StandardLand5PLZ=D\xE4nemark\r\n")
                             << u"Schweiz"_s << u"Dänemark"_s;
        QTest::newRow("empty value")
            << QByteArray("[Config]\r\nStandardLand4PLZ=\r\n") << QString() << u"Deutschland"_s;
        QTest::newRow("cache switch ja") << QByteArray("[Config]\r\nCacheFelder=ja\r\n[Felder]\r\n")
                                         << u"Österreich"_s << u"Deutschland"_s;
    }
    // Loading never writes; saving writes only when the file switches the cache on.
    void countriesAndNoWrites()
    {
        QFETCH(QByteArray, content);
        QFETCH(QString, land4);
        QFETCH(QString, land5);
        if (content != "<missing>")
            writeBytes(ini(), content);
        const auto loaded = loadFrom(ini());
        QCOMPARE(loaded->state.StandardLand4PLZ, land4);
        QCOMPARE(loaded->state.StandardLand5PLZ, land5);
        SaveFieldCache(ini(), loaded->rows);
        QCOMPARE(readBytes(ini()), content);
    }

    // Three entries over a cache of five: the end marker stops the loader before the fifth.
    void saveShorterListThenLoad()
    {
        const QByteArray head = "; von Hand\r\n[Config]\r\nCacheFelder=1\r\n\r\n[Felder]\r\n";
        const QByteArray tail = "Zeile5=5;e\r\n\r\n[Definitionen]\r\nID1=7\r\nWert1=X:\r\n";
        writeBytes(ini(), head + "Zeile1=1;a\r\nZeile2=2;b\r\nZeile3=3;c\r\nZeile4=4;d\r\n" + tail);
        FieldRows rows;
        rows.addField(u"Ort "_s, 30);
        rows.addField(u"Firma"_s, 25);
        rows.addField(u"Land"_s, 32767);
        SaveFieldCache(ini(), rows);
        // A name ending in a blank is quoted, or reading would drop the blank.
        const QByteArray saved =
            head + "Zeile1=25;Firma\r\nZeile2=32767;Land\r\nZeile3=\"30;Ort \"\r\nZeile4=\r\n" +
            tail;
        QCOMPARE(readBytes(ini()), saved);
        const auto loaded = loadFrom(ini());
        QCOMPARE(loaded->entries(), rows.fields().entries());
        QCOMPARE(loaded->state.ExtraDefinitions, (Definitions{{7, "X:"}}));
        SaveFieldCache(ini(), loaded->rows);
        QCOMPARE(readBytes(ini()), saved);
    }

    // Several entries for one id: the first in the German order is chosen, after a save and
    // a restart as well.
    void severalEntriesForOneId()
    {
        writeBytes(ini(),
                   CacheOn + "Zeile1=25;Zeitung\r\nZeile2=26;Firma\r\nZeile3=25;Ölfirma\r\n");
        for (int start = 1; start <= 2; ++start) {
            auto loaded = loadFrom(ini());
            loaded->rows.SelectRowField(3, 25);
            QCOMPARE(loaded->rows.fields().nameAt(loaded->rows.selected(3)), "Ölfirma");
            QCOMPARE(loaded->rows.fieldId(3), 25);
            SaveFieldCache(ini(), loaded->rows);
        }
        QVERIFY(readBytes(ini()).contains("Zeile1=26;Firma\r\nZeile2=25;\xC3\x96lfirma\r\n"));
    }

    void lookupOrder_data()
    {
        QTest::addColumn<QStringList>("present"); // folders, below the test folder, with a file
        QTest::addColumn<QString>("found");
        QTest::addColumn<bool>("xdgSet"); // XDG_CONFIG_HOME and XDG_CONFIG_DIRS set

        const QString home = "home/zettelfischer", sys1 = "sys1/zettelfischer",
                      sys2 = "sys2/zettelfischer", dotConfig = "heim/.config/zettelfischer";
        QTest::newRow("beside the program first")
            << QStringList{"programm", home, sys1} << "programm" << true;
        QTest::newRow("user's config folder") << QStringList{home, sys1, sys2} << home << true;
        QTest::newRow("first system folder") << QStringList{sys1, sys2} << sys1 << true;
        QTest::newRow("second system folder") << QStringList{sys2} << sys2 << true;
        QTest::newRow("none: beside the program") << QStringList{} << "programm" << true;
        QTest::newRow("~/.config without XDG_CONFIG_HOME")
            << QStringList{dotConfig} << dotConfig << false;
        QTest::newRow("a folder of that name is no file")
            << QStringList{"programm/zettelfischer.ini", sys2} << sys2 << true;
    }
    void lookupOrder()
    {
        QFETCH(QStringList, present);
        QFETCH(QString, found);
        QFETCH(bool, xdgSet);
        const QDir dir(m_dir->path());
        const auto env = [](const char* name, const QString& value) {
            if (value.isEmpty())
                qunsetenv(name);
            else
                qputenv(name, value.toLocal8Bit());
        };
        env("HOME", dir.filePath("heim"));
        env("XDG_CONFIG_HOME", xdgSet ? dir.filePath("home") : QString());
        env("XDG_CONFIG_DIRS",
            xdgSet ? dir.filePath("sys1") + ':' + dir.filePath("sys2") : QString());
        QVERIFY(dir.mkpath("programm"));
        for (const QString& folder : present) {
            QVERIFY(dir.mkpath(folder));
            if (!folder.endsWith(".ini"))
                writeBytes(dir.filePath(folder + "/zettelfischer.ini"), "[Config]\r\n");
        }
        QCOMPARE(settingsFilePath(dir.filePath("programm")),
                 dir.filePath(found + "/zettelfischer.ini"));
    }
};

QTEST_GUILESS_MAIN(TestSettings)
#include "tst_settings.moc"
