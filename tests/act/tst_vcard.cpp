// vCard 4.0 export: escaping, folding and the mapping of the book's fields.

#include "act/vcard.h"

#include <QtTest>

using namespace zf::act;

namespace {

// Values as "id=value" or "id=value=label", split by "|"; only fields outside the standard
// twenty need labels.
QList<BookValue> bookValues(const QString& values)
{
    QList<BookValue> out;
    for (const QString& v : values.split('|'))
        out.append({v.section('=', 0, 0).toInt(), v.section('=', 2), v.section('=', 1, 1)});
    return out;
}

} // namespace

class TestVCard : public QObject {
    Q_OBJECT
private slots:
    void escaping_data()
    {
        QTest::addColumn<QString>("value");
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("component");
        QTest::newRow("comma") << "Muster, Max" << QString("Muster\\, Max") << "Muster\\, Max";
        QTest::newRow("semicolon only in components") << "a;b" << QString("a;b") << "a\\;b";
        QTest::newRow("backslash") << "C:\\Daten" << QString("C:\\\\Daten") << "C:\\\\Daten";
        QTest::newRow("crlf, lf, cr")
            << "a\r\nb\nc\rd" << QString("a\\nb\\nc\\nd") << "a\\nb\\nc\\nd";
    }

    void escaping()
    {
        QFETCH(QString, value);
        QFETCH(QString, text);
        QFETCH(QString, component);
        QCOMPARE(escapeVCardText(value), text);
        QCOMPARE(escapeVCardComponent(value), component);
    }

    void parameter()
    {
        QCOMPARE(quoteVCardParameter("Sag \"Hi\"^\nTschüss"), "\"Sag ^'Hi^'^^^nTschüss\"");
    }

    void folding_data()
    {
        QTest::addColumn<QString>("line");
        QTest::newRow("exactly 75") << QString(75, 'a');
        QTest::newRow("76") << QString(76, 'a');
        QTest::newRow("long ascii") << "NOTE:" + QString(300, 'x');
        QTest::newRow("three-octet characters") << "X-A:" + QString(100, QChar(0x20AC));
        QTest::newRow("surrogate pairs") << "X-B:" + QString(60, 'a') + QString("😀").repeated(30);
    }

    void folding()
    {
        QFETCH(QString, line);
        QList<QByteArray> physical = foldVCardLine(line).split('\n');
        QCOMPARE(physical.takeLast(), QByteArray()); // ends with a line break
        QCOMPARE(physical.size() > 1, line.toUtf8().size() > 75);
        QByteArray unfolded;
        for (qsizetype i = 0; i < physical.size(); ++i) {
            QVERIFY(physical[i].endsWith('\r') && (i == 0 || physical[i].startsWith(' ')));
            const QByteArray l = physical[i].chopped(1).mid(i == 0 ? 0 : 1);
            QVERIFY2(l.size() <= (i == 0 ? 75 : 74), l.constData());
            QVERIFY(i + 1 == physical.size() || l.size() >= 71); // filled, not cut early
            QVERIFY(QString::fromUtf8(l).toUtf8() == l);         // no character cut
            unfolded += l;
        }
        QCOMPARE(QString::fromUtf8(unfolded), line);
    }

    void mapping()
    {
        const QString values = "25=Beispiel GmbH|88=Einkauf; Lager|40=Herr|26=Max Muster|"
                               "79=Muster|78=Max|27=Hauptstr. 5|28=Hof 2, Stiege 3|32=1010|"
                               "30=Wien|33=Österreich|35=+43 1 234|36=+43 1 235|38=+43 664 1|"
                               "74=+43 1 236|200=max@example.at|94=https://example.at/a,b|46=Dr.|"
                               "117=blau|300=1.1.1970=Geburtstag|301==Leer";
        QCOMPARE(contactToVCard(bookValues(values)),
                 "BEGIN:VCARD\r\n"
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
                 "END:VCARD\r\n");
    }

    void nameFallbacks_data()
    {
        QTest::addColumn<QString>("values");
        QTest::addColumn<QByteArray>("lines");
        QTest::newRow("first and last name")
            << QString("78=Max|79=Muster") << QByteArray("FN:Max Muster\r\nN:Muster;Max;;;\r\n");
        QTest::newRow("company only")
            << QString("25=A, B & Co") << QByteArray("FN:A\\, B & Co\r\nORG:A\\, B & Co\r\n");
        QTest::newRow("department only")
            << QString("88=Einkauf") << QByteArray("FN:\r\nORG:;Einkauf\r\n");
        QTest::newRow("city only") << QString("30=Graz") << QByteArray("FN:\r\nADR:;;;Graz;;;\r\n");
    }

    void nameFallbacks()
    {
        QFETCH(QString, values);
        QFETCH(QByteArray, lines);
        QCOMPARE(contactToVCard(bookValues(values)),
                 "BEGIN:VCARD\r\nVERSION:4.0\r\n" + lines + "END:VCARD\r\n");
    }
};

QTEST_GUILESS_MAIN(TestVCard)
#include "tst_vcard.moc"
