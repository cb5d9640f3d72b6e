#include "analysis/cleanup.h"

#include <QTest>

using namespace Qt::StringLiterals;
using namespace zf;

class TestCleanup : public QObject {
    Q_OBJECT
private slots:
    void extract_data()
    {
        QTest::addColumn<char>("kind");
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("expected");
        const auto row = [](const char* name, char kind, const QString& text, const QString& out) {
            QTest::newRow(name) << kind << text << out;
        };
        row("mail: label, words behind", 'm', "E-Mail: info@muster.de bitte", "info@muster.de");
        row("mail: mailto", 'm', "mailto:info@muster.de", "info@muster.de");
        row("mail: quoted", 'm', "\"a@b.de\"", "a@b.de");
        row("mail: angle brackets stay", 'm', "Hans <hans@muster.de>", "<hans@muster.de>");
        row("mail: comma behind stays", 'm', "a@b.de, Telefon", "a@b.de,");
        row("mail: the last of two", 'm', "a@b.de, c@d.de", "c@d.de");
        row("mail: no at", 'm', "Muster GmbH", "Muster GmbH");
        row("web: label", 'w', "Internet: www.muster.de", "www.muster.de");
        row("web: http and path", 'w', "http://www.muster.de/impressum", "www.muster.de");
        row("web: http, no www", 'w', "Web: http://muster.de/kontakt", "muster.de/kontakt");
        row("web: capitals unchanged", 'w', "WWW.MUSTER.DE", "WWW.MUSTER.DE");
        row("web: https is no http://", 'w', "https://muster.de", "https://muster.de");
        row("web: last www wins", 'w', "www.a.de www.b.de", "www.b.de");
        row("phone: full", 'p', "Tel.: +49 (0)711 / 12 34-56", "(0)711/1234-56");
        row("phone: no zero added", 'p', "+49 711 123456", "711123456");
        row("phone: 0049 stays", 'p', "0049 711 123456", "0049711123456");
        row("phone: +49 anywhere", 'p', "0711 +49 1", "07111");
        row("phone: brackets kept", 'p', "[0711] 1", "[0711]1");
        row("phone: no phone char", 'p', "Telefon", "Telefon");
        row("phone: only +49", 'p', "+49", QString());
    }
    void extract()
    {
        QFETCH(char, kind);
        QFETCH(QString, text);
        QFETCH(QString, expected);
        const QString got = kind == 'm'   ? ExtractEMailAddress(text)
                            : kind == 'w' ? ExtractWebAddress(text)
                                          : CleanPhoneNumber(text);
        QCOMPARE(got, expected);
    }
};

QTEST_GUILESS_MAIN(TestCleanup)
#include "tst_cleanup.moc"
