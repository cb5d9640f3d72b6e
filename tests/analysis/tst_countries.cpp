#include "analysis/analyser.h"

#include <QTest>

using namespace Qt::StringLiterals;
using namespace zf;

class TestCountries : public QObject {
    Q_OBJECT
private slots:
    // Input lines -> lines afterwards; an inserted country record (Land 10) is marked "=".
    void prefixedPostcodes_data()
    {
        QTest::addColumn<QStringList>("input");
        QTest::addColumn<QStringList>("expected");
        const auto row = [](const char* name, const QStringList& in, const QStringList& out) {
            QTest::newRow(name) << in << out;
        };
        row("germany", {"D-12345 Berlin"}, {"12345 Berlin", "=Deutschland"});
        row("spaced", {"D - 12345 Berlin"}, {"12345 Berlin", "=Deutschland"});
        row("lower-case letter", {"d-12345 Berlin"}, {"12345 Berlin", "=Deutschland"});
        row("four digits are no German code", {"D-1234 Berlin"}, {"D-1234 Berlin"});
        row("switzerland spaced", {"CH - 8000 Zürich"}, {"8000 Zürich", "=Schweiz"});
        row("only the first german line", {"D-12345 Berlin", "D-54321 Bonn"},
            {"12345 Berlin", "=Deutschland", "D-54321 Bonn"});
        row("german and austrian", {"Firma", "D-12345 Berlin", "A-1010 Wien"},
            {"Firma", "12345 Berlin", "=Deutschland", "1010 Wien", "=Österreich"});
    }
    void prefixedPostcodes()
    {
        QFETCH(QStringList, input);
        QFETCH(QStringList, expected);
        LineList lines;
        for (const QString& t : input)
            lines.push_back(clsZeile{t});
        stage::RecogniseCountryPostcodes(lines);
        QStringList got;
        for (const clsZeile& z : lines)
            got.append(z.Land == 10 ? u'=' + z.Text : z.Text);
        QCOMPARE(got, expected);
    }
};

QTEST_GUILESS_MAIN(TestCountries)
#include "tst_countries.moc"
