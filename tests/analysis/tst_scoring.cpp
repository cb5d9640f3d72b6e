#include "analysis/analyser.h"

#include "scoreexpect.h"

#include <QTest>

using namespace Qt::StringLiterals;
using namespace zf;

namespace {
LineList listOf(const QStringList& texts)
{
    LineList lines;
    for (const QString& t : texts)
        lines.push_back(clsZeile{t});
    return lines;
}
} // namespace

class TestScoring : public QObject {
    Q_OBJECT
private slots:
    // Labels, position, words and capitals for one record.
    void labelsAndPosition_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<int>("pos");
        QTest::addColumn<QString>("newText");
        QTest::addColumn<QString>("scores");
        QTest::newRow("company label at 3") << "Firma: Muster GmbH" << 3 << "Muster GmbH"
                                            << "Firma=15 Adresse=3 Kontakt=2";
        QTest::newRow("label in capitals") << "COMPANY: ACME Corp" << 7 << "ACME Corp"
                                           << "Firma=18 Kontakt=2";
        QTest::newRow("name") << "Name: Müller" << 7 << "Müller"
                              << "NachName=10 Kontakt=5";
        QTest::newRow("nachname is no name") << "Nachname: Müller" << 7 << "Müller"
                                             << "NachName=10";
        QTest::newRow("plz/ort only group 8") << "PLZ/Ort: 12345 Berlin" << 7 << "12345 Berlin"
                                              << "PLZ=5 Ort=5 Kontakt=2";
        QTest::newRow("second label after blank unseen")
            << "Firma: Name: Muster" << 7 << "Name: Muster"
            << "Firma=15 Kontakt=2";
        QTest::newRow("second label without blank") << "Firma:Name:Muster" << 7 << "Muster"
                                                    << "Firma=15 NachName=10 Kontakt=5";
        QTest::newRow("label without value") << "Land:" << 7 << ""
                                             << "Land=15";
        QTest::newRow("three words at 1") << "Hans Otto Meier" << 1 << "Hans Otto Meier"
                                          << "Firma=5 Kontakt=4";
        QTest::newRow("two words at 2") << "Hans Meier" << 2 << "Hans Meier"
                                        << "Firma=3 Kontakt=6";
        QTest::newRow("position 4") << "x" << 4 << "x"
                                    << "Adresse=3 Ort=2 PLZ=1";
        QTest::newRow("position 5") << "x" << 5 << "x"
                                    << "Adresse=3 Ort=2 PLZ=1";
        QTest::newRow("position 6") << "x" << 6 << "x"
                                    << "";
        QTest::newRow("capitals once") << "IBM Deutschland" << 7 << "IBM Deutschland"
                                       << "Firma=3 Kontakt=2";
        QTest::newRow("accented capitals break pairs") << "ÄÖ ÜB" << 7 << "ÄÖ ÜB"
                                                       << "Kontakt=2";
        QTest::newRow("double blank makes three pieces") << "a  b" << 7 << "a  b"
                                                         << "Kontakt=1 Firma=2";
        QTest::newRow("owner") << "Inhaber: Hans" << 7 << "Hans"
                               << "Kontakt=15";
        QTest::newRow("zip-code") << "zip-code: 1" << 7 << "1"
                                  << "PLZ=15";
    }
    void labelsAndPosition()
    {
        QFETCH(QString, text);
        QFETCH(int, pos);
        QFETCH(QString, newText);
        QFETCH(QString, scores);
        clsZeile z{text};
        stage::ScoreLabelsAndPosition(z, pos);
        QCOMPARE(z.Text, newText);
        QCOMPARE(scoreMismatch(z, scores), QString());
    }

    // Keyword and pattern rules alone, for a line at position 2 of a two-line list (so that
    // the neighbour rules stay quiet unless a case asks for them).
    void keywords_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("scores");
        QTest::newRow("street with number") << "Musterweg 12"
                                            << "Firma=3 Adresse=14 Postfach=3 PLZ=3 EMail=1";
        QTest::newRow("four digits") << "1234"
                                     << "Firma=3 Adresse=3 Postfach=3 PLZ=13 EMail=1";
        QTest::newRow("telefax") << "Telefax: 0711123456"
                                 << "Firma=1 Telefon=16 Fax=18 Mobil=5 Postfach=3";
        QTest::newRow("unlabelled number") << "0711 123456"
                                           << "Firma=1 Telefon=10 Fax=10 Mobil=5 Postfach=3";
        QTest::newRow("salutation alone") << "Herr"
                                          << "Anrede=13";
        QTest::newRow("salutation with title") << "Herr Dr."
                                               << "Anrede=13 Kontakt=4 Titel=3";
        QTest::newRow("salutation and name") << "Herr Hans Meier"
                                             << "Anrede=10 Kontakt=11";
        QTest::newRow("frau inside a street")
            << "Frauenhofer Str. 5"
            << "Anrede=10 Kontakt=11 Adresse=14 Firma=3 Postfach=3 PLZ=3 EMail=1";
        QTest::newRow("mail address") << "info@muster.de"
                                      << "EMail=17 Website=7 Firma=2";
        QTest::newRow("web address") << "www.muster.de"
                                     << "Website=17 EMail=9 Firma=1";
        QTest::newRow("legal form") << "Müller GmbH"
                                    << "Firma=3";
        QTest::newRow("legal form glued") << "MüllerGmbH"
                                          << "";
        QTest::newRow("square") << "Am Marktplatz 3"
                                << "Adresse=19 Postfach=3 PLZ=3 Firma=3 EMail=1";
        QTest::newRow("country inside a word") << "Jerusalem"
                                               << "Land=6";
        QTest::newRow("tel inside a company") << "Telekom AG"
                                              << "Telefon=10 Firma=3";
        QTest::newRow("po box") << "Postfach"
                                << "Postfach=10";
        QTest::newRow("mobile") << "Handy"
                                << "Mobil=10";
        QTest::newRow("https is no web mark") << "https://x"
                                              << "";
        QTest::newRow("empty") << ""
                               << "";
    }
    void keywords()
    {
        QFETCH(QString, text);
        QFETCH(QString, scores);
        LineList lines = listOf({u"first"_s, text});
        stage::PassFlags flags;
        stage::ScoreKeywords(lines, std::next(lines.begin()), 2, flags);
        QCOMPARE(scoreMismatch(lines.back(), scores), QString());
    }

    // A label seen earlier in the run changes how later number lines score.
    void labelFlagsCarryOver_data()
    {
        QTest::addColumn<QString>("earlier");
        QTest::addColumn<int>("telefon");
        QTest::addColumn<int>("fax");
        QTest::newRow("none") << "Muster" << 10 << 10;
        QTest::newRow("phone label") << "Tel. 1" << 6 << 10;
        QTest::newRow("fax label") << "Fax 1" << 10 << 8;
    }
    void labelFlagsCarryOver()
    {
        QFETCH(QString, earlier);
        QFETCH(int, telefon);
        QFETCH(int, fax);
        LineList lines = listOf({earlier, u"0711 123456"_s});
        stage::PassFlags flags;
        stage::ScoreKeywords(lines, lines.begin(), 1, flags);
        stage::ScoreKeywords(lines, std::next(lines.begin()), 2, flags);
        QCOMPARE(int(lines.back().Telefon), telefon);
        QCOMPARE(int(lines.back().Fax), fax);
    }

    // Rules that touch neighbours, and the postcode split.
    void neighbours()
    {
        // Salutation alone gives the next line the contact.
        LineList lines = listOf({u"Herr"_s, u"Hans Meier"_s});
        stage::PassFlags flags;
        stage::ScoreKeywords(lines, lines.begin(), 1, flags);
        QCOMPARE(lines.back().Kontakt, qint16(10));

        // A company marker on line 1 hints that line 2 is the contact, and vice versa.
        lines = listOf({u"Muster & Co"_s, u"Hans"_s});
        stage::ScoreKeywords(lines, lines.begin(), 1, flags);
        QCOMPARE(lines.back().Kontakt, qint16(1));
        lines = listOf({u"Hans"_s, u"Muster & Co"_s});
        stage::ScoreKeywords(lines, std::next(lines.begin()), 2, flags);
        QCOMPARE(lines.front().Kontakt, qint16(1));
        lines = listOf({u"Muster & Co"_s});
        stage::ScoreKeywords(lines, lines.begin(), 1, flags);
        QCOMPARE(scoreMismatch(lines.front(), u"Firma=3"_s), QString());
    }

    void postcodeSplit_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QStringList>("after");
        QTest::newRow("five digits and city") << "80331 München" << QStringList{"80331", "München"};
        QTest::newRow("four digits and city") << "1010  Wien" << QStringList{"1010", "Wien"};
        QTest::newRow("four digits alone") << "1234" << QStringList{"1234"};
        QTest::newRow("five digits alone") << "12345" << QStringList{"12345"};
        QTest::newRow("letter first") << "F-75001 Paris" << QStringList{"F-75001 Paris"};
        QTest::newRow("too many digits") << "12345 678 90" << QStringList{"12345 678 90"};
    }
    void postcodeSplit()
    {
        QFETCH(QString, text);
        QFETCH(QStringList, after);
        LineList lines = listOf({text});
        stage::PassFlags flags;
        stage::ScoreKeywords(lines, lines.begin(), 1, flags);
        QStringList got;
        for (const clsZeile& z : lines)
            got.append(z.Text);
        QCOMPARE(got, after);
        if (after.size() == 2)
            QCOMPARE(scoreMismatch(lines.back(), u"Ort=11"_s), QString());
    }

    // The whole pass: inserted city lines are scored in their turn, with the neighbour bonus.
    void wholePass()
    {
        LineList lines = listOf({u"Muster GmbH"_s, u"Hans Meier"_s, u"Musterweg 12"_s,
                                 u"80331 München"_s, u"Deutschland"_s});
        stage::ScoreLines(lines);
        QStringList got;
        for (const clsZeile& z : lines)
            got.append(z.Text);
        QCOMPARE(got, (QStringList{"Muster GmbH", "Hans Meier", "Musterweg 12", "80331", "München",
                                   "Deutschland"}));
        const clsZeile& city = *std::next(lines.begin(), 4);
        // 11 from the split, 10 behind a short postcode, 2 for position 5
        QCOMPARE(scoreMismatch(city, u"Ort=23 Adresse=3 PLZ=1"_s), QString());
        const clsZeile& country = lines.back();
        QCOMPARE(country.Land, qint16(9)); // country word, and "land" beyond position 3
    }
};

QTEST_GUILESS_MAIN(TestScoring)
#include "tst_scoring.moc"
