#include "analysis/cleanup.h"

#include <QTest>

using namespace zf;

class TestCleanup : public QObject {
    Q_OBJECT
private slots:
    void email_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("expected");
        QTest::newRow("label") << "E-Mail: info@muster.de"
                               << "info@muster.de";
        QTest::newRow("mailto") << "mailto:info@muster.de"
                                << "info@muster.de";
        QTest::newRow("words behind") << "info@muster.de bitte melden"
                                      << "info@muster.de";
        QTest::newRow("angle brackets stay") << "Hans <hans@muster.de>"
                                             << "<hans@muster.de>";
        QTest::newRow("comma stays") << "a@b.de, c@d.de"
                                     << "c@d.de";
        QTest::newRow("comma behind first") << "a@b.de, Telefon"
                                            << "a@b.de,";
        QTest::newRow("quoted") << "\"a@b.de\""
                                << "a@b.de";
        QTest::newRow("no at") << "Muster GmbH"
                               << "Muster GmbH";
        QTest::newRow("empty") << ""
                               << "";
        QTest::newRow("lone at") << "@"
                                 << "@";
    }
    void email()
    {
        QFETCH(QString, text);
        QFETCH(QString, expected);
        QCOMPARE(ExtractEMailAddress(text), expected);
    }

    void web_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("expected");
        QTest::newRow("label") << "Internet: www.muster.de"
                               << "www.muster.de";
        QTest::newRow("http and path") << "http://www.muster.de/impressum"
                                       << "www.muster.de";
        QTest::newRow("http without www") << "Web: http://muster.de/kontakt"
                                          << "muster.de/kontakt";
        QTest::newRow("capitals unchanged") << "WWW.MUSTER.DE"
                                            << "WWW.MUSTER.DE";
        QTest::newRow("https is no http://") << "https://muster.de"
                                             << "https://muster.de";
        QTest::newRow("last www wins") << "www.a.de www.b.de"
                                       << "www.b.de";
        QTest::newRow("nothing") << "Muster"
                                 << "Muster";
    }
    void web()
    {
        QFETCH(QString, text);
        QFETCH(QString, expected);
        QCOMPARE(ExtractWebAddress(text), expected);
    }

    void phone_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("expected");
        QTest::newRow("full") << "Tel.: +49 (0)711 / 12 34-56"
                              << "(0)711/1234-56";
        QTest::newRow("fax") << "Fax 0711 123456"
                             << "0711123456";
        QTest::newRow("no zero added") << "+49 711 123456"
                                       << "711123456";
        QTest::newRow("0049 stays") << "0049 711 123456"
                                    << "0049711123456";
        QTest::newRow("+49 anywhere") << "0711 +49 1"
                                      << "07111";
        QTest::newRow("brackets kept") << "[0711] 1"
                                       << "[0711]1";
        QTest::newRow("no phone char") << "Telefon"
                                       << "Telefon";
        QTest::newRow("only +49") << "+49"
                                  << "";
        QTest::newRow("empty") << ""
                               << "";
    }
    void phone()
    {
        QFETCH(QString, text);
        QFETCH(QString, expected);
        QCOMPARE(CleanPhoneNumber(text), expected);
    }
};

QTEST_GUILESS_MAIN(TestCleanup)
#include "tst_cleanup.moc"
