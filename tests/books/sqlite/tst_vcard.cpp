// vCard 4.0 export: escaping, folding, and whole cards compared with the expected files in
// data/ (a mismatch leaves the actual card beside its file as NAME.vcf.actual).

#include "books/sqlite/vcard.h"

#include <QtTest>

using namespace Qt::StringLiterals;
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
        QTest::newRow("cr lf cr: two breaks") << "a\r\n\rb" << QString("a\\n\\nb") << "a\\n\\nb";
        QTest::newRow("tab a space, other controls dropped")
            << u"a\tb\0c\x7f\x85"
               u"d\x1b;"_s
            << QString("a bcd\x1b;").remove(QChar(0x1b)) << "a bcd\\;";
    }

    void escaping()
    {
        QFETCH(QString, value);
        QFETCH(QString, text);
        QFETCH(QString, component);
        QCOMPARE(escapeVCardText(value), text);
        QCOMPARE(escapeVCardComponent(value), component);
    }

    // The values ("id=value" or "id=value=label", split by "|"; only fields outside the
    // standard twenty need labels) and the file with the card they give.
    void cards_data()
    {
        QTest::addColumn<QString>("values");
        QTest::newRow("all-fields")
            << u"25=Beispiel GmbH|88=Einkauf; Lager|40=Herr|26=Max Muster|79=Muster|78=Max|"
               u"27=Hauptstr. 5|28=Hof 2, Stiege 3|32=1010|30=Wien|33=Österreich|35=+43 1 234|"
               u"36=+43 1 235|38=+43 664 1|74=+43 1 236|200=max@example.at|"
               u"94=https://example.at/a,b|46=Dr.|117=blau|300=1.1.1970=Geburtstag|301==Leer"_s;
        QTest::newRow("first-and-last-name") << u"78=Max|79=Muster"_s;
        QTest::newRow("company-only") << u"25=A, B & Co"_s;
        QTest::newRow("department-only") << u"88=Einkauf"_s;
        QTest::newRow("city-only") << u"30=Graz"_s;
        QTest::newRow("salutation-and-third-phone") << u"40=Frau|77=+49 30 1|28=Hof 2"_s;
        // NUL, BEL, ESC, DEL and NEL go, a tab is a space, every line break stays visible.
        QTest::newRow("control-characters")
            << u"26=Max\0 Muster\7|25=A\tB\x1b GmbH|27=Hauptstr. 5\r\nHof 2|"
               u"94=https://example.at/\r\nseite\x7f|200=max@\x85"
               u"example.at|"
               u"300=eins\rzwei=Notiz\0\nneu"_s;
        QTest::newRow("long-values-folded")
            << u"25=Österreichische Gesellschaft für Beispiele und Musterwesen mit "
               u"beschränkter Haftung|117=€€€€€€€€€€€€€€€€€€€€€€€€€€€€€€€€€€€€€€€€"_s;
    }

    void cards()
    {
        QFETCH(QString, values);
        matchesFile(contactToVCard(bookValues(values)), QTest::currentDataTag());
    }

    // UID and REV close the card, REV in the basic UTC form.
    void stampedCard()
    {
        const QDateTime revision(QDate(2026, 11, 23), QTime(14, 5, 9), QTimeZone::utc());
        matchesFile(contactToVCard(bookValues(u"25=Muster GmbH|26=Max Muster"_s),
                                   {u"urn:uuid:0f3c2a4e-1b5d-5c6e-8f70-9a1b2c3d4e5f"_s,
                                    revision.toTimeZone(QTimeZone(3600))}),
                    "stamped");
    }

private:
    // Compares with data/NAME.vcf; a difference is written beside it for review.
    static void matchesFile(const QByteArray& card, const QString& name)
    {
        const QString expected = QStringLiteral(ZF_TEST_DATA "/") + name + ".vcf";
        QFile file(expected);
        const QByteArray wanted = file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
        QFile actual(expected + ".actual");
        if (card == wanted) {
            actual.remove();
            return;
        }
        QVERIFY(actual.open(QIODevice::WriteOnly));
        actual.write(card);
        QFAIL(qPrintable("the card differs from " + expected + "; see " + actual.fileName()));
    }
};

QTEST_GUILESS_MAIN(TestVCard)
#include "tst_vcard.moc"
