#include "analysis/failure.h"
#include "analysis/textutil.h"

#include <QTest>

using namespace Qt::StringLiterals;
using namespace zf;

class TestTextUtil : public QObject {
    Q_OBJECT
private slots:
    void caseInsensitiveTests_data()
    {
        QTest::addColumn<QString>("test");
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("part");
        QTest::addColumn<bool>("expected");
        QTest::newRow("starts: shorter text") << "starts"
                                              << "Tel"
                                              << "Telefon" << false;
        QTest::newRow("starts: any case") << "starts"
                                          << "TELEFON 1"
                                          << "telefon" << true;
        QTest::newRow("starts: equal length") << "starts"
                                              << "Fax"
                                              << "fax" << true;
        QTest::newRow("starts: empty text") << "starts"
                                            << ""
                                            << "Tel" << false;
        QTest::newRow("ends: capital suffix") << "ends"
                                              << "muster.de"
                                              << ".DE" << true;
        QTest::newRow("ends: shorter text") << "ends"
                                            << "de"
                                            << ".de" << false;
        QTest::newRow("contains: sharp s is no ss") << "contains"
                                                    << "Straße"
                                                    << "Strasse" << false;
        QTest::newRow("contains: ss is no sharp s") << "contains"
                                                    << "STRASSE"
                                                    << "straße" << false;
        QTest::newRow("contains: umlaut case") << "contains"
                                               << "ÖSTERREICH"
                                               << "Österreich" << true;
        QTest::newRow("contains: lower umlaut") << "contains"
                                                << "österreich"
                                                << "Österreich" << true;
        QTest::newRow("contains: inside a word") << "contains"
                                                 << "Jerusalem"
                                                 << "USA" << true;
        QTest::newRow("contains: empty text") << "contains"
                                              << ""
                                              << "x" << false;
    }
    void caseInsensitiveTests()
    {
        QFETCH(QString, test);
        QFETCH(QString, text);
        QFETCH(QString, part);
        QFETCH(bool, expected);
        const bool got = test == u"starts"_s ? StartsWith(text, part)
                         : test == u"ends"_s ? EndsWith(text, part)
                                             : Contains(text, part);
        QCOMPARE(got, expected);
    }

    void upperKeepsLength()
    {
        QCOMPARE(UpperEach(u"straße"_s), u"STRAßE"_s);
        QCOMPARE(UpperEach(u"müller"_s), u"MÜLLER"_s);
    }

    void trimAndCollapse_data()
    {
        QTest::addColumn<QString>("input");
        QTest::addColumn<QString>("trimmed");
        QTest::addColumn<QString>("collapsed");
        QTest::newRow("blanks") << "  a  b  "
                                << "a  b"
                                << " a b ";
        QTest::newRow("tabs stay") << "\ta \t"
                                   << "\ta \t"
                                   << "\ta \t";
        QTest::newRow("long run") << "a      b"
                                  << "a      b"
                                  << "a b";
        QTest::newRow("only blanks") << "    "
                                     << ""
                                     << " ";
        QTest::newRow("empty") << ""
                               << ""
                               << "";
    }
    void trimAndCollapse()
    {
        QFETCH(QString, input);
        QFETCH(QString, trimmed);
        QFETCH(QString, collapsed);
        QCOMPARE(Trim(input), trimmed);
        QCOMPARE(CollapseBlanks(input), collapsed);
    }

    void stripControlChars_data()
    {
        QTest::addColumn<QString>("input");
        QTest::addColumn<QString>("expected");
        QTest::newRow("tab and breaks inside") << "Tel.\t0711\r\n1"
                                               << "Tel.07111";
        QTest::newRow("code 30 goes, 31 stays") << u"a\x1e"
                                                   "b\x1f"
                                                   "c"_s
                                                << u"ab\x1f"
                                                   "c"_s;
        QTest::newRow("NUL goes") << QString(QChar(0)) + u"x"_s << "x";
        QTest::newRow("umlauts stay") << "Müller"
                                      << "Müller";
    }
    void stripControlChars()
    {
        QFETCH(QString, input);
        QFETCH(QString, expected);
        QCOMPARE(StripControlChars(input), expected);
    }

    void countDigits_data()
    {
        QTest::addColumn<QString>("input");
        QTest::addColumn<int>("expected");
        QTest::newRow("phone") << "+49 (0)711 / 12 34-56" << 12;
        QTest::newRow("none") << "Muster GmbH" << 0;
        QTest::newRow("superscript is no digit") << "m² 2" << 1;
        QTest::newRow("arabic-indic is no digit") << u"\x0663"_s << 0;
    }
    void countDigits()
    {
        QFETCH(QString, input);
        QFETCH(int, expected);
        QCOMPARE(int(CountDigits(input)), expected);
    }

    // The 16-bit helpers take 32,767 characters and fail beyond.
    void helperLimits()
    {
        const QString atLimit(MaxHelperTextLength, u'1');
        QCOMPARE(int(CountDigits(atLimit)), 32767);
        QCOMPARE(StripControlChars(atLimit).size(), 32767);
        const QString over = atLimit + u'1';
        QVERIFY_THROWS_EXCEPTION(AnalysisFailure, CountDigits(over));
        QVERIFY_THROWS_EXCEPTION(AnalysisFailure, StripControlChars(over));
    }

    void checkedAddition()
    {
        qint16 s = 32760;
        addChecked(s, 7);
        QCOMPARE(s, qint16(32767));
        QVERIFY_THROWS_EXCEPTION(AnalysisFailure, addChecked(s, 1));
        QCOMPARE(s, qint16(32767));
    }

    void midAndLeft()
    {
        QCOMPARE(Mid(u"12345 Berlin"_s, 6), u" Berlin"_s);
        QCOMPARE(Mid(u"abc"_s, 4), QString());
        QCOMPARE(Mid(u"abc"_s, 9), QString());
        QCOMPARE(Left(u"abc"_s, 5), u"abc"_s);
    }
};

QTEST_GUILESS_MAIN(TestTextUtil)
#include "tst_textutil.moc"
