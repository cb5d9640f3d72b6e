// vCard 4.0 export: escaping, folding and the mapping of the book's fields.

#include "act/vcard.h"

#include <QtTest>

using namespace zf::act;

class TestVCard : public QObject {
    Q_OBJECT
private slots:
    void escaping_data();
    void escaping();
    void parameter();
    void folding_data();
    void folding();
    void mapping();
    void nameFallbacks_data();
    void nameFallbacks();
};

void TestVCard::escaping_data()
{
    QTest::addColumn<QString>("value");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("component");
    QTest::newRow("plain") << "Wien"
                           << "Wien"
                           << "Wien";
    QTest::newRow("comma") << "Muster, Max"
                           << "Muster\\, Max"
                           << "Muster\\, Max";
    QTest::newRow("semicolon") << "a;b"
                               << "a;b"
                               << "a\\;b";
    QTest::newRow("backslash") << "C:\\Daten"
                               << "C:\\\\Daten"
                               << "C:\\\\Daten";
    QTest::newRow("crlf") << "a\r\nb"
                          << "a\\nb"
                          << "a\\nb";
    QTest::newRow("lf and cr") << "a\nb\rc"
                               << "a\\nb\\nc"
                               << "a\\nb\\nc";
    QTest::newRow("colon stays") << "Tel: 1"
                                 << "Tel: 1"
                                 << "Tel: 1";
}

void TestVCard::escaping()
{
    QFETCH(QString, value);
    QFETCH(QString, text);
    QFETCH(QString, component);
    QCOMPARE(escapeVCardText(value), text);
    QCOMPARE(escapeVCardComponent(value), component);
}

void TestVCard::parameter()
{
    QCOMPARE(quoteVCardParameter("Geburtstag"), "\"Geburtstag\"");
    QCOMPARE(quoteVCardParameter("Sag \"Hi\"^\nTschüss"), "\"Sag ^'Hi^'^^^nTschüss\"");
}

void TestVCard::folding_data()
{
    QTest::addColumn<QString>("line");
    QTest::newRow("short") << "FN:Max";
    QTest::newRow("exactly 75") << QString(75, 'a');
    QTest::newRow("76") << QString(76, 'a');
    QTest::newRow("long ascii") << "NOTE:" + QString(300, 'x');
    QTest::newRow("umlauts across the edge") << "ORG:" + QString(40, QChar(0x00DF));
    QTest::newRow("three-octet characters") << "X-A:" + QString(100, QChar(0x20AC));
    QTest::newRow("surrogate pairs") << "X-B:" + QString(60, 'a') + QString("😀").repeated(30);
}

void TestVCard::folding()
{
    QFETCH(QString, line);
    const QByteArray folded = foldVCardLine(line);
    QVERIFY(folded.endsWith("\r\n"));
    const QList<QByteArray> physical = folded.chopped(2).split('\n');
    for (int i = 0; i < physical.size(); ++i) {
        QByteArray l = physical[i];
        if (i + 1 < physical.size()) {
            QVERIFY(l.endsWith('\r'));
            l.chop(1);
        }
        QVERIFY2(l.size() <= 75, l.constData());
        if (i > 0) {
            QVERIFY(l.startsWith(' '));
            QVERIFY2((quint8(l[1]) & 0xC0) != 0x80, "a character was cut");
        }
        if (i + 1 < physical.size())
            QVERIFY(l.size() >= 72);                 // lines are filled, not cut early
        QVERIFY(QString::fromUtf8(l).toUtf8() == l); // every line is valid UTF-8 by itself
    }
    QCOMPARE(physical.size() > 1, line.toUtf8().size() > 75);
    QByteArray unfolded = folded;
    unfolded.replace("\r\n ", "");
    QCOMPARE(QString::fromUtf8(unfolded.chopped(2)), line);
}

void TestVCard::mapping()
{
    const QList<BookValue> values{
        {25, "Firma", "Beispiel GmbH"},
        {88, "Abteilung", "Einkauf; Lager"},
        {40, "Anrede", "Herr"},
        {26, "Kontakt", "Max Muster"},
        {79, "Nachname", "Muster"},
        {78, "Vorname", "Max"},
        {27, "Adresse", "Hauptstr. 5"},
        {28, "Adresse 2", "Hof 2, Stiege 3"},
        {32, "PLZ", "1010"},
        {30, "Ort", "Wien"},
        {33, "Land", "Österreich"},
        {35, "Telefon", "+43 1 234"},
        {36, "Fax", "+43 1 235"},
        {38, "Mobil", "+43 664 1"},
        {74, "Telefon 2", "+43 1 236"},
        {200, "eMail", "max@example.at"},
        {94, "Website", "https://example.at/a,b"},
        {46, "Titel", "Dr."},
        {117, "", "blau"},
        {300, "Geburtstag", "1.1.1970"},
        {301, "Leer", ""},
    };
    const QByteArray expected = "BEGIN:VCARD\r\n"
                                "VERSION:4.0\r\n"
                                "FN:Max Muster\r\n"
                                "N:Muster;Max;;Herr;\r\n"
                                "ORG:Beispiel GmbH;Einkauf\\; Lager\r\n"
                                "TITLE:Dr.\r\n"
                                "ADR:;;Hauptstr. 5,Hof 2\\, Stiege 3;Wien;;1010;Österreich\r\n"
                                "TEL;TYPE=voice:+43 1 234\r\n"
                                "TEL;TYPE=voice:+43 1 236\r\n"
                                "TEL;TYPE=cell:+43 664 1\r\n"
                                "TEL;TYPE=fax:+43 1 235\r\n"
                                "EMAIL:max@example.at\r\n"
                                "URL:https://example.at/a,b\r\n"
                                "X-ZETTELFISCHER-FIELD-117:blau\r\n"
                                "X-ZETTELFISCHER-FIELD-300;X-LABEL=\"Geburtstag\":1.1.1970\r\n"
                                "END:VCARD\r\n";
    QCOMPARE(contactToVCard(values), expected);
}

void TestVCard::nameFallbacks_data()
{
    QTest::addColumn<QList<BookValue>>("values");
    QTest::addColumn<QByteArray>("lines");
    QTest::newRow("first and last name")
        << QList<BookValue>{{78, "Vorname", "Max"}, {79, "Nachname", "Muster"}}
        << QByteArray("FN:Max Muster\r\nN:Muster;Max;;;\r\n");
    QTest::newRow("company only") << QList<BookValue>{{25, "Firma", "A, B & Co"}}
                                  << QByteArray("FN:A\\, B & Co\r\nORG:A\\, B & Co\r\n");
    QTest::newRow("department only")
        << QList<BookValue>{{88, "Abteilung", "Einkauf"}} << QByteArray("FN:\r\nORG:;Einkauf\r\n");
    QTest::newRow("city only") << QList<BookValue>{{30, "Ort", "Graz"}}
                               << QByteArray("FN:\r\nADR:;;;Graz;;;\r\n");
}

void TestVCard::nameFallbacks()
{
    QFETCH(QList<BookValue>, values);
    QFETCH(QByteArray, lines);
    QCOMPARE(contactToVCard(values), "BEGIN:VCARD\r\nVERSION:4.0\r\n" + lines + "END:VCARD\r\n");
}

QTEST_GUILESS_MAIN(TestVCard)
#include "tst_vcard.moc"
