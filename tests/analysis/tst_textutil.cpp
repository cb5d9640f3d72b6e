#include "analysis/failure.h"
#include "analysis/textutil.h"

#include <QTest>

using namespace Qt::StringLiterals;
using namespace zf;

class TestTextUtil : public QObject {
    Q_OBJECT
private slots:
    // Case-insensitive per character; the prefix and suffix tests need the whole part.
    void caseInsensitiveTests()
    {
        QVERIFY(StartsWith(u"TELEFON 1", u"telefon"));
        QVERIFY(StartsWith(u"Fax", u"fax"));
        QVERIFY(!StartsWith(u"Tel", u"Telefon"));
        QVERIFY(EndsWith(u"muster.de", u".DE"));
        QVERIFY(!EndsWith(u"de", u".de"));
        QVERIFY(Contains(u"österreich", u"Österreich"));
        QVERIFY(!Contains(u"STRASSE", u"straße")); // "ß" is not folded to "ss"
    }

    // Only blanks are trimmed and collapsed, runs of any length.
    void trimAndCollapse()
    {
        QCOMPARE(Trim(u"  a      b  "_s), u"a      b"_s);
        QCOMPARE(CollapseBlanks(u"  a      b  "_s), u" a b "_s);
        QCOMPARE(Trim(u"\ta \t"_s), u"\ta \t"_s);
        QCOMPARE(Trim(u"    "_s), QString());
    }

    void stripControlChars()
    {
        QCOMPARE(StripControlChars(u"Tel.\t0711\r\n1"_s), u"Tel.07111"_s);
        QCOMPARE(StripControlChars(u"a\036b\037Ü"_s), u"ab\037Ü"_s); // code 30 goes, 31 stays
    }

    void countDigits()
    {
        QCOMPARE(CountDigits(u"+49 (0)711 / 12 34-56"_s), qint16(12));
        QCOMPARE(CountDigits(u"\x0663 ²"_s), qint16(0)); // only '0' to '9'
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
};

QTEST_GUILESS_MAIN(TestTextUtil)
#include "tst_textutil.moc"
