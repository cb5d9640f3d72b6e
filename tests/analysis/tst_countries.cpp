#include "analysis/analyser.h"

#include <QTest>

using namespace Qt::StringLiterals;
using namespace zf;

class TestCountries : public QObject {
    Q_OBJECT
private slots:
    // Input lines -> lines afterwards; a country line is marked "=Name" (Land 10, rest 0).
    void prefixedPostcodes_data()
    {
        QTest::addColumn<QStringList>("input");
        QTest::addColumn<QStringList>("expected");
        QTest::newRow("germany") << QStringList{"D-12345 Berlin"}
                                 << QStringList{"12345 Berlin", "=Deutschland"};
        QTest::newRow("spaced") << QStringList{"D - 12345 Berlin"}
                                << QStringList{"12345 Berlin", "=Deutschland"};
        QTest::newRow("spaced before digits")
            << QStringList{"D -12345 Berlin"} << QStringList{"12345 Berlin", "=Deutschland"};
        QTest::newRow("lower-case letter")
            << QStringList{"d-12345 Berlin"} << QStringList{"12345 Berlin", "=Deutschland"};
        QTest::newRow("four digits are no German code")
            << QStringList{"D-1234 Berlin"} << QStringList{"D-1234 Berlin"};
        QTest::newRow("switzerland")
            << QStringList{"CH-8000 Zürich"} << QStringList{"8000 Zürich", "=Schweiz"};
        QTest::newRow("switzerland spaced")
            << QStringList{"CH - 8000 Zürich"} << QStringList{"8000 Zürich", "=Schweiz"};
        QTest::newRow("austria") << QStringList{"A-1010 Wien"}
                                 << QStringList{"1010 Wien", "=Österreich"};
        QTest::newRow("only the first german line")
            << QStringList{"D-12345 Berlin", "D-54321 Bonn"}
            << QStringList{"12345 Berlin", "=Deutschland", "D-54321 Bonn"};
        QTest::newRow("german and austrian")
            << QStringList{"Firma", "D-12345 Berlin", "A-1010 Wien"}
            << QStringList{"Firma", "12345 Berlin", "=Deutschland", "1010 Wien", "=Österreich"};
        QTest::newRow("doctor untouched")
            << QStringList{"Dr. Hans Müller"} << QStringList{"Dr. Hans Müller"};
        QTest::newRow("france untouched")
            << QStringList{"F-75001 Paris"} << QStringList{"F-75001 Paris"};
        QTest::newRow("empty list") << QStringList{} << QStringList{};
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
        for (const clsZeile& z : lines) {
            got.append(z.Land ? u"="_s + z.Text : z.Text);
            QCOMPARE(z.Land, qint16(z.Land ? 10 : 0));
        }
        QCOMPARE(got, expected);
    }
};

QTEST_GUILESS_MAIN(TestCountries)
#include "tst_countries.moc"
