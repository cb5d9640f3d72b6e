// The vCard model: escapes, folding, and writes that leave everything else as it was.

#include "books/carddav/vcard3.h"

#include "analysis/fields.h"

#include <QtTest>

using namespace zf;
using namespace zf::carddav;

namespace {

// A card as another program writes it: folded lines, a photo, groups, unknown parameters.
const QByteArray Foreign =
    "BEGIN:VCARD\r\n"
    "VERSION:3.0\r\n"
    "PRODID:-//Anderes Programm//DE\r\n"
    "UID:fremd-1\r\n"
    "N:Muster;Erika;;Dr.;\r\n"
    "FN:Dr. Erika Muster\r\n"
    "ORG:Alt GmbH;Einkauf\r\n"
    "ADR;TYPE=WORK:;;Hauptstr. 1,Hinterhaus;Berlin;;10115;Deutschland\r\n"
    "TEL;TYPE=WORK,VOICE:+49 30 1\r\n"
    "TEL;TYPE=CELL:+49 170 2\r\n"
    "TEL:+49 30 3\r\n"
    "item1.TEL;type=pref:+49 30 9\r\n"
    "item1.X-ABLabel:Zentrale\r\n"
    "EMAIL;TYPE=INTERNET:erika@example.org\r\n"
    "NOTE:Eine lange Notiz\\, die über mehr als fünfundsiebzig Oktette g\r\n"
    " eht und daher gefaltet ist.\r\n"
    "PHOTO;ENCODING=b;TYPE=JPEG:/9j/4AAQSkZJRgABAQAAAQABAAD/2wBDAAgGBgcGBQ\r\n"
    " gHBwcJCQgKDBQNDAsLDBkSEw8UHRofHh0aHBwgJC4nICIsIxwcKDcpLDAxNDQ0Hyc5PTgyPC\r\n"
    "CATEGORIES:Kunden,Berlin\r\n"
    "X-FOO;param=x;X-UNBEKANNT=\"a:b;c\":wert\r\n"
    "END:VCARD\r\n";

qint32 id(FieldId f)
{
    return idOf(f);
}

// The physical lines of a card, each with its CRLF.
QList<QByteArray> physicalLines(const QByteArray& card)
{
    QList<QByteArray> out;
    for (const QByteArray& l : card.split('\n'))
        if (!l.isEmpty())
            out.append(l + '\n');
    return out;
}

} // namespace

class TestVCard3 : public QObject {
    Q_OBJECT
private slots:
    void escapes_data()
    {
        QTest::addColumn<QString>("value");
        QTest::addColumn<QString>("escaped");
        QTest::addColumn<QString>("readBack");
        QTest::newRow("separators") << "a;b,c\\d"
                                    << "a\\;b\\,c\\\\d"
                                    << "a;b,c\\d";
        QTest::newRow("line breaks") << "a\r\nb\rc\nd"
                                     << "a\\nb\\nc\\nd"
                                     << "a\nb\nc\nd";
        QTest::newRow("controls dropped, tab a space")
            << QString("a\tb") + QChar(0) + QChar(0x1B) + QChar(0x7F) + "c"
            << "a bc"
            << "a bc";
        QTest::newRow("quotes and XML stay") << "\"<&>\" ]]>"
                                             << "\"<&>\" ]]>"
                                             << "\"<&>\" ]]>";
    }
    void escapes()
    {
        QFETCH(QString, value);
        QFETCH(QString, escaped);
        QFETCH(QString, readBack);
        QCOMPARE(escapeText(value), escaped);
        QCOMPARE(unescapeText(escaped), readBack);
    }

    void unescapeForeign_data()
    {
        QTest::addColumn<QString>("escaped");
        QTest::addColumn<QString>("value");
        QTest::newRow("upper N") << "a\\Nb"
                                 << "a\nb";
        QTest::newRow("escaped colon") << "a\\:b"
                                       << "a:b";
        QTest::newRow("lone backslash at end") << "a\\"
                                               << "a\\";
    }
    void unescapeForeign()
    {
        QFETCH(QString, escaped);
        QFETCH(QString, value);
        QCOMPARE(unescapeText(escaped), value);
    }

    void folding_data()
    {
        QTest::addColumn<QString>("line");
        QTest::newRow("ascii, exactly 75") << "NOTE:" + QString(70, QChar(0x61));
        QTest::newRow("ascii, 76") << "NOTE:" + QString(71, QChar(0x61));
        QTest::newRow("umlauts across the cut") << "NOTE:" + QString(200, QChar(0xFC));
        QTest::newRow("surrogate pairs") << "NOTE:x" + QString("😀").repeated(60);
    }
    void folding()
    {
        QFETCH(QString, line);
        const QByteArray folded = foldLine(line);
        QVERIFY(folded.endsWith("\r\n"));
        for (const QByteArray& physical : folded.chopped(2).split('\n')) {
            const QByteArray p = physical.endsWith('\r') ? physical.chopped(1) : physical;
            QVERIFY2(p.size() <= 75, p);
            QVERIFY2(QString::fromUtf8(p).toUtf8() == p, "a character was cut");
        }
        const VCard card = VCard::parse(folded);
        QCOMPARE(card.lines().size(), 1);
        QCOMPARE(card.lines()[0].name + ':' + card.lines()[0].value, line);
    }

    void untouchedCardComesBackByteForByte()
    {
        QCOMPARE(VCard::parse(Foreign).toBytes(), Foreign);
        // LF-only line ends become CRLF, nothing else changes.
        QCOMPARE(VCard::parse(QByteArray(Foreign).replace("\r\n", "\n")).toBytes(), Foreign);
    }

    void readsFieldsFromTheirSlots_data()
    {
        QTest::addColumn<qint32>("field");
        QTest::addColumn<QString>("value");
        QTest::newRow("Nachname") << id(FieldId::Nachname) << "Muster";
        QTest::newRow("Anrede") << id(FieldId::Anrede) << "Dr.";
        QTest::newRow("Abteilung") << id(FieldId::Abteilung) << "Einkauf";
        QTest::newRow("Adresse") << id(FieldId::Adresse) << "Hauptstr. 1";
        QTest::newRow("Adresse 2") << id(FieldId::Adresse2) << "Hinterhaus";
        QTest::newRow("Adresse 3") << id(FieldId::Adresse3) << "";
        QTest::newRow("PLZ") << id(FieldId::Plz) << "10115";
        QTest::newRow("Telefon: typed voice") << id(FieldId::Telefon) << "+49 30 1";
        QTest::newRow("Telefon 2: untyped counts as voice") << id(FieldId::Telefon2) << "+49 30 3";
        QTest::newRow("Telefon 3: grouped entry is not ours") << id(FieldId::Telefon3) << "";
        QTest::newRow("Mobil") << id(FieldId::Mobil) << "+49 170 2";
        QTest::newRow("Fax: none") << id(FieldId::Fax) << "";
        QTest::newRow("eMail") << id(FieldId::EMail) << "erika@example.org";
    }
    void readsFieldsFromTheirSlots()
    {
        QFETCH(qint32, field);
        QFETCH(QString, value);
        QCOMPARE(VCard::parse(Foreign).field(field), value);
    }

    // Each write changes exactly the expected lines; all others stay byte for byte.
    void writesOnlyItsLine_data()
    {
        QTest::addColumn<qint32>("field");
        QTest::addColumn<QString>("value");
        QTest::addColumn<QByteArrayList>("removed");
        QTest::addColumn<QByteArrayList>("added");
        QTest::newRow("Vorname in N")
            << id(FieldId::Vorname) << "Eva" << QByteArrayList{"N:Muster;Erika;;Dr.;\r\n"}
            << QByteArrayList{"N:Muster;Eva;;Dr.;\r\n"};
        QTest::newRow("Adresse 3 appended to the street list")
            << id(FieldId::Adresse3) << "3. OG"
            << QByteArrayList{"ADR;TYPE=WORK:;;Hauptstr. "
                              "1,Hinterhaus;Berlin;;10115;Deutschland\r\n"}
            << QByteArrayList{"ADR;TYPE=WORK:;;Hauptstr. 1,Hinterhaus,3. OG;Berlin;;10115;Deutsc"
                              "hland\r\n"};
        QTest::newRow("Adresse with a comma stays one item")
            << id(FieldId::Adresse) << "Weg 2, Hof"
            << QByteArrayList{"ADR;TYPE=WORK:;;Hauptstr. "
                              "1,Hinterhaus;Berlin;;10115;Deutschland\r\n"}
            << QByteArrayList{
                   "ADR;TYPE=WORK:;;Weg 2\\, Hof,Hinterhaus;Berlin;;10115;Deutschland\r\n"};
        QTest::newRow("Telefon 2 keeps the untyped line's place")
            << id(FieldId::Telefon2) << "+49 30 33" << QByteArrayList{"TEL:+49 30 3\r\n"}
            << QByteArrayList{"TEL:+49 30 33\r\n"};
        QTest::newRow("Fax is new, before END")
            << id(FieldId::Fax) << "+49 30 4" << QByteArrayList{}
            << QByteArrayList{"TEL;TYPE=fax:+49 30 4\r\n"};
        QTest::newRow("empty eMail removes the line")
            << id(FieldId::EMail) << ""
            << QByteArrayList{"EMAIL;TYPE=INTERNET:erika@example.org\r\n"} << QByteArrayList{};
        QTest::newRow("empty Abteilung keeps the company")
            << id(FieldId::Abteilung) << "" << QByteArrayList{"ORG:Alt GmbH;Einkauf\r\n"}
            << QByteArrayList{"ORG:Alt GmbH\r\n"};
        QTest::newRow("same value: nothing changes")
            << id(FieldId::Ort) << "Berlin" << QByteArrayList{} << QByteArrayList{};
        QTest::newRow("user field with its label")
            << 117 << "K-4711" << QByteArrayList{}
            << QByteArrayList{"X-ZETTELFISCHER-FIELD-117;X-LABEL=\"Kunden-Nr.\":K-4711\r\n"};
        QTest::newRow("injection stays in one line")
            << id(FieldId::Titel) << "x\r\nEND:VCARD\r\nBEGIN:VCARD" << QByteArrayList{}
            << QByteArrayList{"TITLE:x\\nEND:VCARD\\nBEGIN:VCARD\r\n"};
    }
    void writesOnlyItsLine()
    {
        QFETCH(qint32, field);
        QFETCH(QString, value);
        QFETCH(QByteArrayList, removed);
        QFETCH(QByteArrayList, added);
        VCard card = VCard::parse(Foreign);
        card.setField({field, value, "Kunden-Nr."});
        QList<QByteArray> expected = physicalLines(Foreign);
        for (const QByteArray& line : removed)
            QVERIFY2(expected.removeOne(line), line);
        for (const QByteArray& line : added)
            expected.insert(expected.size() - 1, line); // before END:VCARD
        QList<QByteArray> actual = physicalLines(card.toBytes());
        std::sort(expected.begin(), expected.end());
        std::sort(actual.begin(), actual.end());
        QCOMPARE(actual, expected);
        QCOMPARE(card.field(field), QString(value).replace("\r\n", "\n"));
    }

    void finishGivesRequiredProperties_data()
    {
        QTest::addColumn<QList<FieldValue>>("values");
        QTest::addColumn<QString>("fn");
        QTest::newRow("contact name")
            << QList<FieldValue>{{26, "Max M.", {}}, {78, "Max", {}}} << "Max M.";
        QTest::newRow("from the names")
            << QList<FieldValue>{{78, "Max", {}}, {79, "Muster", {}}} << "Max Muster";
        QTest::newRow("from the company")
            << QList<FieldValue>{{25, "A; B GmbH", {}}} << "A; B GmbH";
        QTest::newRow("nothing") << QList<FieldValue>{} << "";
    }
    void finishGivesRequiredProperties()
    {
        QFETCH(QList<FieldValue>, values);
        QFETCH(QString, fn);
        VCard card = VCard::blank("u-1");
        for (const FieldValue& v : values)
            card.setField(v);
        card.finish(QDateTime(QDate(2026, 1, 2), QTime(3, 4, 5), Qt::UTC));
        const QByteArray bytes = card.toBytes();
        QVERIFY(bytes.startsWith("BEGIN:VCARD\r\nVERSION:3.0\r\nUID:u-1\r\n"));
        QVERIFY(bytes.endsWith("REV:2026-01-02T03:04:05Z\r\nEND:VCARD\r\n"));
        QVERIFY(bytes.contains("\r\nN:"));
        QCOMPARE(card.field(26), fn);
        QCOMPARE(card.uid(), QString("u-1"));
    }

    void foreignCardWithoutRequiredPropertiesGetsThem()
    {
        VCard card = VCard::parse("BEGIN:VCARD\r\nVERSION:3.0\r\nORG:Firma\r\nEND:VCARD\r\n");
        card.finish(QDateTime::currentDateTimeUtc());
        QVERIFY(!card.uid().isEmpty());
        QCOMPARE(card.field(26), QString("Firma"));
        QVERIFY(card.toBytes().contains("\r\nN:;;;;\r\n"));
        QVERIFY(card.toBytes().contains("\r\nREV:"));
    }

    void userFields()
    {
        const VCard card = VCard::parse("BEGIN:VCARD\r\n"
                                        "X-ZETTELFISCHER-FIELD-117:a\r\n"
                                        "x.X-ZETTELFISCHER-FIELD-300;X-LABEL=\"Nr ^'1^'\":b\r\n"
                                        "X-ZETTELFISCHER-FIELD-35:standard, not a user field\r\n"
                                        "X-ZETTELFISCHER-FIELD-abc:no id\r\n"
                                        "END:VCARD\r\n");
        QCOMPARE(card.userFields(), (QList<BookField>{{117, ""}, {300, "Nr \"1\""}}));
    }
};

QTEST_GUILESS_MAIN(TestVCard3)
#include "tst_vcard3.moc"
