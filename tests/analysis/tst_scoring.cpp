#include "analysis/analyser.h"

#include <QTest>

using namespace Qt::StringLiterals;
using namespace zf;

namespace {

LineList listOf(const QString& text)
{
    LineList lines;
    for (const QString& t : text.split(u'\n'))
        lines.push_back(clsZeile{t});
    return lines;
}

// "Firma=3 Kontakt=4": the record's non-zero scores in declaration order.
QString scores(const clsZeile& z)
{
    QStringList out;
    for (const ScoreMember& m : AllScores)
        if (z.*m.member != 0)
            out.append(u"%1=%2"_s.arg(QLatin1StringView(m.name)).arg(z.*m.member));
    return out.join(u' ');
}

// The keyword rules over every record in turn, as the pass runs them but without the label
// and position scores; records inserted on the way are visited too.
LineList keywordPass(const QString& text)
{
    LineList lines = listOf(text);
    stage::PassFlags flags;
    int pos = 0;
    for (auto it = lines.begin(); it != lines.end(); ++it)
        stage::ScoreKeywords(lines, it, ++pos, flags);
    return lines;
}

} // namespace

class TestScoring : public QObject {
    Q_OBJECT
private slots:
    // Labels, position, words and capitals for one record: "new text|scores".
    void labelsAndPosition_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<int>("pos");
        QTest::addColumn<QString>("expected");
        const auto row = [](const char* name, const QString& text, int pos, const QString& out) {
            QTest::newRow(name) << text << pos << out;
        };
        row("company label at 3", "Firma: Muster GmbH", 3,
            "Muster GmbH|Firma=15 Kontakt=2 Adresse=3");
        row("label in capitals", "COMPANY: ACME Corp", 7, "ACME Corp|Firma=18 Kontakt=2");
        row("name", "Name: Müller", 7, "Müller|Kontakt=5 NachName=10");
        row("nachname is no name", "Nachname: Müller", 7, "Müller|NachName=10");
        row("plz/ort label is not the plz label", "PLZ/Ort: 12345 Berlin", 7,
            "12345 Berlin|Kontakt=2 PLZ=5 Ort=5");
        row("second label after blank unseen", "Firma: Name: Muster", 7,
            "Name: Muster|Firma=15 Kontakt=2");
        row("second label without blank", "Firma:Name:Muster", 7,
            "Muster|Firma=15 Kontakt=5 NachName=10");
        row("label without value", "Land:", 7, "|Land=15");
        row("three words at 1", "Hans Otto Meier", 1, "Hans Otto Meier|Firma=5 Kontakt=4");
        row("two words at 2", "Hans Meier", 2, "Hans Meier|Firma=3 Kontakt=6");
        row("position 5", "x", 5, "x|Adresse=3 PLZ=1 Ort=2");
        row("position 6", "x", 6, "x|");
        row("capitals once", "IBM Deutschland", 7, "IBM Deutschland|Firma=3 Kontakt=2");
        row("accented capitals break pairs", "ÄÖ ÜB", 7, "ÄÖ ÜB|Kontakt=2");
        row("double blank makes three pieces", "a  b", 7, "a  b|Firma=2 Kontakt=1");
    }
    void labelsAndPosition()
    {
        QFETCH(QString, text);
        QFETCH(int, pos);
        QFETCH(QString, expected);
        clsZeile z{text};
        stage::ScoreLabelsAndPosition(z, pos);
        QCOMPARE(z.Text + u'|' + scores(z), expected);
    }

    // Lines separated by "\n"; the scores of each record afterwards, separated by "|".
    void keywords_data()
    {
        QTest::addColumn<QString>("lines");
        QTest::addColumn<QString>("expected");
        const auto row = [](const char* name, const QString& lines, const QString& out) {
            QTest::newRow(name) << lines << out;
        };
        row("four digits, no split", "1234", "Firma=3 Postfach=3 Adresse=3 PLZ=13 EMail=1");
        row("postcode and city split", "80331 München",
            "Firma=3 Postfach=3 Adresse=3 PLZ=11 EMail=1|Ort=11");
        row("telefax", "Telefax: 0711123456", "Firma=1 Postfach=3 Telefon=16 Fax=18 Mobil=5");
        row("number after a phone label", "Telefon\n0711 123456",
            "Telefon=10|Firma=1 Postfach=3 Telefon=6 Fax=10 Mobil=5");
        row("number after a fax label", "Fax\n0711 123456",
            "Fax=10|Firma=1 Postfach=3 Telefon=10 Fax=8 Mobil=5");
        row("salutation alone", "Herr\nHans Meier", "Anrede=13|Kontakt=10");
        row("salutation with a name, then with a title", "Herr Hans Meier\nHerr Dr.",
            "Kontakt=11 Anrede=10|Kontakt=4 Anrede=13 Titel=3");
        row("frau inside a street", "Frauenhofer Str. 5",
            "Firma=3 Kontakt=11 Anrede=10 Postfach=3 Adresse=14 PLZ=3 EMail=1");
        row("mail and web address", "info@muster.de\nwww.muster.de",
            "Firma=2 EMail=17 Website=7|Firma=1 EMail=9 Website=17");
        row("po box, mobile, USA inside a word", "Postfach\nHandy\nJerusalem",
            "Postfach=10|Mobil=10|Land=6");
        row("legal form glued", "MüllerGmbH", QString());
        row("tel inside a company", "Telekom AG", "Firma=3 Telefon=10");
        row("square", "Am Marktplatz 3", "Firma=3 Postfach=3 Adresse=19 PLZ=3 EMail=1");
        row("land beyond position 3", "a\nb\nLand\nLand", "|||Land=3");
        row("city in front of a postcode", "Berlin\n12345",
            "Ort=10|Firma=3 Postfach=3 Adresse=3 PLZ=11 EMail=1");
        row("company sign on line 1", "Muster & Co\nHans", "Firma=3|Kontakt=1");
        row("company sign on line 2", "Hans\nMuster & Co", "Kontakt=1|Firma=3");
        row("company sign on the only line", "Muster & Co", "Firma=3");
    }
    void keywords()
    {
        QFETCH(QString, lines);
        QFETCH(QString, expected);
        QStringList got;
        for (const clsZeile& z : keywordPass(lines))
            got.append(scores(z));
        QCOMPARE(got.join(u'|'), expected);
    }

    // The texts after the postcode split, separated by "|".
    void postcodeSplit_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("expected");
        const auto row = [](const char* name, const QString& text, const QString& out) {
            QTest::newRow(name) << text << out;
        };
        row("five digits", "80331 München", "80331|München");
        row("four digits, blanks trimmed", "1010  Wien", "1010|Wien");
        row("six digits split", "12345 6", "12345|6");
        row("seven digits stay", "12345 67", "12345 67");
        row("letter first", "F-75001 Paris", "F-75001 Paris");
    }
    void postcodeSplit()
    {
        QFETCH(QString, text);
        QFETCH(QString, expected);
        QStringList got;
        for (const clsZeile& z : keywordPass(text))
            got.append(z.Text);
        QCOMPARE(got.join(u'|'), expected);
    }

    // The whole pass visits the inserted city, which also gets the bonus behind a postcode.
    void wholePass()
    {
        LineList lines =
            listOf(u"Muster GmbH\nHans Meier\nMusterweg 12\n80331 München\nDeutschland"_s);
        stage::ScoreLines(lines);
        const clsZeile& city = *std::next(lines.begin(), 4);
        // 11 from the split, 10 behind a short postcode, 2 (and 3, 1) for position 5
        QCOMPARE(city.Text + u'|' + scores(city), u"München|Adresse=3 PLZ=1 Ort=23"_s);
        // the country word, and "land" beyond position 3
        QCOMPARE(lines.back().Text + u'|' + scores(lines.back()), u"Deutschland|Land=9"_s);
    }
};

QTEST_GUILESS_MAIN(TestScoring)
#include "tst_scoring.moc"
