// Loading the settings file (definitions, field cache, default countries) and saving the
// field cache.

#include "settings/settings.h"

#include <QElapsedTimer>
#include <QFile>
#include <QRandomGenerator>
#include <QTemporaryDir>
#include <QTest>

#include "filebytes.h"

using namespace zf;
using namespace Qt::StringLiterals;

using Definitions = QList<clsZusatzDefs>;
using Entries = QList<FieldEntry>;

namespace {

Entries builtIn()
{
    FieldRows rows;
    rows.FillDefaultFieldLists();
    return rows.fields().entries();
}

struct Loaded {
    SharedState state;
    FieldRows rows;
};

std::unique_ptr<Loaded> load(const QString& path)
{
    auto out = std::make_unique<Loaded>();
    out->rows.FillDefaultFieldLists();
    LoadSettings(path, out->state, out->rows);
    return out;
}

} // namespace

class TestSettings : public QObject {
    Q_OBJECT
private slots:
    void init()
    {
        m_dir = std::make_unique<QTemporaryDir>();
        QVERIFY(m_dir->isValid());
    }

    void definitions_data();
    void definitions();
    void leadingNumber_data();
    void leadingNumber();
    void fieldCache_data();
    void fieldCache();
    void defaultCountries_data();
    void defaultCountries();
    void saveNeedsTheSwitch_data();
    void saveNeedsTheSwitch();
    void saveShorterList();
    void saveThenLoadReproducesTheList();
    void handEditedSurprises_data();
    void handEditedSurprises();

private:
    QString ini() const { return m_dir->filePath(u"zettelfischer.ini"_s); }
    std::unique_ptr<QTemporaryDir> m_dir;
};

void TestSettings::definitions_data()
{
    QTest::addColumn<QByteArray>("section");
    QTest::addColumn<Definitions>("expected");

    QTest::newRow("one") << QByteArray("ID1=12\r\nWert1=Kundennr:\r\n")
                         << Definitions{{12, "Kundennr:"}};
    QTest::newRow("ID without Wert ends the list")
        << QByteArray("ID1=12\r\nID2=13\r\nWert2=Kd:\r\n") << Definitions{};
    QTest::newRow("gap ends the list")
        << QByteArray("ID1=1\nWert1=a\nID2=2\nWert2=b\nID4=4\nWert4=d\n")
        << Definitions{{1, "a"}, {2, "b"}};
    QTest::newRow("empty Wert ends the list")
        << QByteArray("ID1=1\nWert1=\nID2=2\nWert2=b\n") << Definitions{};
    QTest::newRow("leading number and rounding")
        << QByteArray("ID1=12abc\nWert1=a\nID2=abc\nWert2=b\nID3=7.5\nWert3=c\n"
                      "ID4=6.5\nWert4=d\nID5=-2.5\nWert5=e\nID6= 1 2 \nWert6=f\n")
        << Definitions{{12, "a"}, {0, "b"}, {8, "c"}, {6, "d"}, {-2, "e"}, {12, "f"}};
    QTest::newRow("ids outside 16 bits are skipped")
        << QByteArray("ID1=70000\nWert1=a\nID2=32767.5\nWert2=b\nID3=-32768.5\nWert3=c\n"
                      "ID4=1e999\nWert4=d\nID5=32767\nWert5=e\n")
        << Definitions{{-32768, "c"}, {32767, "e"}};
    QTest::newRow("label keeps its inner blanks")
        << QByteArray("ID1=5\nWert1=\"Kd.-Nr.: \"\n") << Definitions{{5, "Kd.-Nr.: "}};
}

void TestSettings::definitions()
{
    QFETCH(QByteArray, section);
    QFETCH(Definitions, expected);
    writeBytes(ini(), "[Config]\r\n[Definitionen]\r\n" + section);
    const auto loaded = load(ini());
    QCOMPARE(loaded->state.ExtraDefinitions, expected);
    QCOMPARE(loaded->state.ExtraDefinitionsLoaded, !expected.isEmpty());
    QCOMPARE(loaded->rows.fields().entries(), builtIn());
}

void TestSettings::leadingNumber_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<double>("expected");
    QTest::newRow("trailing text") << "12abc" << 12.0;
    QTest::newRow("no number") << "abc" << 0.0;
    QTest::newRow("fraction") << "7.5" << 7.5;
    QTest::newRow("only a fraction") << ".25x" << 0.25;
    QTest::newRow("second point ends it") << "1.2.3" << 1.2;
    QTest::newRow("blanks skipped") << " - 1 2.5" << -12.5;
    QTest::newRow("exponent") << "1e3" << 1000.0;
    QTest::newRow("bare e") << "5e" << 5.0;
    QTest::newRow("comma is no point") << "7,5" << 7.0;
}

void TestSettings::leadingNumber()
{
    QFETCH(QString, text);
    QFETCH(double, expected);
    QCOMPARE(LeadingNumber(text), expected);
}

void TestSettings::fieldCache_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<Entries>("expected"); // empty: the built-in list stays

    QTest::newRow("two entries")
        << QByteArray("[Config]\r\nCacheFelder=1\r\n[Felder]\r\nZeile1=25;Firma\r\n"
                      "Zeile2=79;Nachname\r\n")
        << Entries{{"Firma", 25}, {"Nachname", 79}};
    QTest::newRow("no Felder section") << QByteArray("[Config]\r\nCacheFelder=1\r\n") << Entries{};
    QTest::newRow("switch is not exactly 1")
        << QByteArray("[Config]\r\nCacheFelder=ja\r\n[Felder]\r\nZeile1=25;Firma\r\n") << Entries{};
    QTest::newRow("empty Zeile1")
        << QByteArray("[Config]\r\nCacheFelder=1\r\n[Felder]\r\nZeile1=\r\nZeile2=25;Firma\r\n")
        << Entries{};
    QTest::newRow("name may hold semicolons")
        << QByteArray("[Config]\nCacheFelder=1\n[Felder]\nZeile1=94;Web;Seite\n")
        << Entries{{"Web;Seite", 94}};
    QTest::newRow("shown sorted")
        << QByteArray("[Config]\nCacheFelder=1\n[Felder]\nZeile1=79;nachname\nZeile2=25;Firma\n"
                      "Zeile3=-1;(keins)\nZeile4=26;firma\n")
        << Entries{{"(keins)", -1}, {"Firma", 25}, {"firma", 26}, {"nachname", 79}};
    QTest::newRow("unusable lines skipped")
        << QByteArray("[Config]\nCacheFelder=1\n[Felder]\nZeile1=Firma\nZeile2=70000;Gross\n"
                      "Zeile3=abc;Text\nZeile4=2.5;Halb\nZeile5= 30 ;Ort\nZeile6=;Leer\n"
                      "Zeile7=-32768;Min\nZeile8=99999999999999999999;Riesig\n")
        << Entries{{"Min", -32768}, {"Ort", 30}};
    QTest::newRow("only unusable lines") << QByteArray("[Config]\nCacheFelder=1\n[Felder]\n"
                                                       "Zeile1=Firma\nZeile2=x;y\n")
                                         << Entries{};
    QTest::newRow("end marker") << QByteArray("[Config]\nCacheFelder=1\n[Felder]\nZeile1=1;a\n"
                                              "Zeile2=\nZeile3=3;c\n")
                                << Entries{{"a", 1}};
}

void TestSettings::fieldCache()
{
    QFETCH(QByteArray, content);
    QFETCH(Entries, expected);
    writeBytes(ini(), content);
    const auto loaded = load(ini());
    QCOMPARE(loaded->rows.fields().entries(), expected.isEmpty() ? builtIn() : expected);
}

void TestSettings::defaultCountries_data()
{
    QTest::addColumn<QByteArray>("content"); // "<missing>": no file
    QTest::addColumn<QString>("land4");
    QTest::addColumn<QString>("land5");
    QTest::newRow("no file") << QByteArray("<missing>") << "Österreich"
                             << "Deutschland";
    QTest::newRow("keys missing") << QByteArray("[Config]\r\n") << "Österreich"
                                  << "Deutschland";
    QTest::newRow("set") << QByteArray("[Config]\r\nStandardLand4PLZ=Schweiz\r\n"
                                       "StandardLand5PLZ=Frankreich\r\n")
                         << "Schweiz"
                         << "Frankreich";
    QTest::newRow("empty value") << QByteArray("[Config]\r\nStandardLand4PLZ=\r\n") << ""
                                 << "Deutschland";
    QTest::newRow("Windows-1252") << QByteArray("[config]\r\nstandardland5plz=D\xE4nemark\r\n")
                                  << "Österreich"
                                  << "Dänemark";
}

void TestSettings::defaultCountries()
{
    QFETCH(QByteArray, content);
    QFETCH(QString, land4);
    QFETCH(QString, land5);
    if (content != "<missing>")
        writeBytes(ini(), content);
    Loaded loaded;
    loaded.state.StandardLand4PLZ = u"vorher"_s;
    loaded.state.StandardLand5PLZ = u"vorher"_s;
    LoadSettings(ini(), loaded.state, loaded.rows);
    QCOMPARE(loaded.state.StandardLand4PLZ, land4);
    QCOMPARE(loaded.state.StandardLand5PLZ, land5);
    QCOMPARE(readBytes(ini()), content);
}

void TestSettings::saveNeedsTheSwitch_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::newRow("no file") << QByteArray("<missing>");
    QTest::newRow("no switch") << QByteArray("[Config]\r\n");
    QTest::newRow("switch off") << QByteArray("[Config]\r\nCacheFelder=0\r\n");
    QTest::newRow("switch ja") << QByteArray("[Config]\r\nCacheFelder=ja\r\n[Felder]\r\n");
}

void TestSettings::saveNeedsTheSwitch()
{
    QFETCH(QByteArray, content);
    if (content != "<missing>")
        writeBytes(ini(), content);
    FieldRows rows;
    rows.FillDefaultFieldLists();
    SaveFieldCache(ini(), rows);
    QCOMPARE(readBytes(ini()), content);
}

void TestSettings::saveShorterList()
{
    const QByteArray head = "; von Hand\r\n[Config]\r\nCacheFelder=1\r\n\r\n";
    writeBytes(ini(), head + "[Felder]\r\nZeile1=1;a\r\nZeile2=2;b\r\nZeile3=3;c\r\n"
                             "Zeile4=4;d\r\nZeile5=5;e\r\n\r\n[Definitionen]\r\nID1=7\r\n"
                             "Wert1=X:\r\n");
    FieldRows rows;
    rows.addField(u"Ort"_s, 30);
    rows.addField(u"Firma"_s, 25);
    rows.addField(u"Land"_s, 33);
    SaveFieldCache(ini(), rows);
    QCOMPARE(readBytes(ini()),
             head + "[Felder]\r\nZeile1=25;Firma\r\nZeile2=33;Land\r\nZeile3=30;Ort\r\n"
                    "Zeile4=\r\nZeile5=5;e\r\n\r\n[Definitionen]\r\nID1=7\r\nWert1=X:\r\n");
    const auto loaded = load(ini());
    QCOMPARE(loaded->rows.fields().entries(), (Entries{{"Firma", 25}, {"Land", 33}, {"Ort", 30}}));
    QCOMPARE(loaded->state.ExtraDefinitions, (Definitions{{7, "X:"}}));
}

void TestSettings::saveThenLoadReproducesTheList()
{
    writeBytes(ini(), "[Config]\nCacheFelder=1\n");
    const Entries list{{"Firma", 25},        {"Web;Seite", 94},  {"Straße = Weg", 27},
                       {"Österreich €", 33}, {"\"zitiert\"", 1}, {"Ende mit Blank ", 2},
                       {" vorne", 3},        {"'x'", 4},         {"", 5},
                       {"Firma", -1},        {"Min", -32768},    {"Max", 32767}};
    FieldRows rows;
    for (const FieldEntry& e : list)
        rows.addField(e.name, e.id);
    SaveFieldCache(ini(), rows);
    const auto loaded = load(ini());
    QCOMPARE(loaded->rows.fields().entries(), rows.fields().entries());
    QCOMPARE(loaded->rows.fields().count(), list.size());

    // Saving what was loaded changes nothing.
    const QByteArray saved = readBytes(ini());
    SaveFieldCache(ini(), loaded->rows);
    QCOMPARE(readBytes(ini()), saved);
}

void TestSettings::handEditedSurprises_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<int>("fieldCount");
    QTest::addColumn<QString>("land5");

    QTest::newRow("not valid Windows-1252")
        << QByteArray("[Config]\r\nCacheFelder=1\r\nStandardLand5PLZ=\x81\x8D\x8F\x90\x9D\r\n"
                      "[Felder]\r\nZeile1=1;\x90\r\n")
        << 1 << "\u0081\u008D\u008F\u0090\u009D";

    // Ten megabytes of numbered keys: the 16-bit counter ends the list.
    QByteArray big = "[Config]\r\nCacheFelder=1\r\nStandardLand5PLZ=Gro\xDF\r\n"
                     "[Definitionen]\r\nID1=1\r\nWert1=a\r\n[Felder]\r\n";
    for (int n = 1; big.size() < 10'000'000; ++n)
        big += "Zeile" + QByteArray::number(n) + '=' + QByteArray::number(n % 30000) + ";Feld " +
               QByteArray::number(100000000 - n) + "\r\n";
    QTest::newRow("10 MB") << big << 32767 << "Groß";

    QByteArray binary(1 << 20, '\0');
    QRandomGenerator rng(4711);
    for (char& c : binary)
        c = char(rng.bounded(256));
    QTest::newRow("binary") << binary << int(builtIn().size()) << "Deutschland";
    QTest::newRow("binary, then settings")
        << binary + "\n[Config]\nStandardLand5PLZ=DE\nCacheFelder=1\n[Felder]\nZeile1=1;a\n"
        << 1 << "DE";
}

void TestSettings::handEditedSurprises()
{
    QFETCH(QByteArray, content);
    QFETCH(int, fieldCount);
    QFETCH(QString, land5);
    writeBytes(ini(), content);
    QElapsedTimer timer;
    timer.start();
    const auto loaded = load(ini());
    qDebug("loaded in %lld ms", timer.elapsed());
    QCOMPARE(loaded->rows.fields().count(), fieldCount);
    QCOMPARE(loaded->state.StandardLand5PLZ, land5);
    // A failed connection saves the list back: the file may be huge, the save still ends.
    SaveFieldCache(ini(), loaded->rows);
    QCOMPARE(load(ini())->rows.fields().entries(), loaded->rows.fields().entries());
}

QTEST_GUILESS_MAIN(TestSettings)
#include "tst_settings.moc"
