// The enhanced analysis's string helpers stand in for Qt's own calls to save time: they must
// answer exactly as the calls they replace, or the analysis would change its results.

#include "enhanced/recognise.h"
#include "enhanced/wordbits.h"

#include <QTest>

using namespace zf::enhanced;

class TestEnhancedWordBits : public QObject {
    Q_OBJECT

private slots:
    void lowerCasingOfEveryCharacter();
    void lowerCasing_data();
    void lowerCasing();
    void containsText_data();
    void containsText();
    void words_data();
    void words();
};

// Every character of the Basic Multilingual Plane, inside a word as the recognisers see it.
void TestEnhancedWordBits::lowerCasingOfEveryCharacter()
{
    int wrong = 0;
    for (int c = 1; c < 0x10000; ++c) {
        if (c >= 0xd800 && c < 0xe000)
            continue;
        const QString s = QStringLiteral("Ab") + QChar(char16_t(c)) + QStringLiteral("Z");
        const QString want = s.toLower();
        const LowerKey key(s);
        if (lowered(s) != want || key.str() != want) {
            if (++wrong <= 5)
                qWarning("U+%04X: \"%s\" instead of \"%s\"", c, qPrintable(lowered(s)),
                         qPrintable(want));
        }
    }
    QCOMPARE(wrong, 0);
}

void TestEnhancedWordBits::lowerCasing_data()
{
    QTest::addColumn<QString>("text");
    QTest::newRow("empty") << QString();
    QTest::newRow("umlauts") << QStringLiteral("GRÜSSE AUS MÜNCHEN, Grüße");
    QTest::newRow("latin-1 edges") << QStringLiteral("ÀÖ×ØÞßÿµ");
    // Beyond Latin-1 Qt's tables decide, also where one letter becomes two.
    QTest::newRow("dotted capital I") << QStringLiteral("İSTANBUL");
    QTest::newRow("greek") << QStringLiteral("ΑΘΗΝΑ");
    QTest::newRow("longer than the key's buffer") << QStringLiteral("ABCDEFGHIJ").repeated(8);
    QTest::newRow("long with a non-latin letter")
        << QStringLiteral("ABCDEFGHIJ").repeated(8) + u'Ω';
}

void TestEnhancedWordBits::lowerCasing()
{
    QFETCH(QString, text);
    const LowerKey key(text);
    QCOMPARE(lowered(text), text.toLower());
    QCOMPARE(key.str(), text.toLower());
    // "Grüße," as a word and as a key: trailing , ; : go.
    QCOMPARE(BareKey(text + QStringLiteral(",;:")).str(), Bare(text));
    QCOMPARE(Bare(text + QStringLiteral(",;:")), text.toLower());
}

void TestEnhancedWordBits::containsText_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("part");
    QTest::newRow("inside") << QStringLiteral("mit freundlichen grüßen") << QStringLiteral("grüß");
    QTest::newRow("at the end") << QStringLiteral("beste grüße") << QStringLiteral("grüße");
    QTest::newRow("at the start") << QStringLiteral("gruss") << QStringLiteral("gru");
    QTest::newRow("overlapping start") << QStringLiteral("aaab") << QStringLiteral("aab");
    QTest::newRow("longer than the text") << QStringLiteral("ab") << QStringLiteral("abc");
    QTest::newRow("missing") << QStringLiteral("viele grüße") << QStringLiteral("regards");
    QTest::newRow("empty part") << QStringLiteral("abc") << QString();
    QTest::newRow("empty text") << QString() << QStringLiteral("a");
    QTest::newRow("both empty") << QString() << QString();
}

void TestEnhancedWordBits::containsText()
{
    QFETCH(QString, text);
    QFETCH(QString, part);
    QCOMPARE(zf::enhanced::containsText(text, part), text.contains(part));
}

void TestEnhancedWordBits::words_data()
{
    QTest::addColumn<QString>("text");
    QTest::newRow("empty") << QString();
    QTest::newRow("blanks only") << QStringLiteral("   ");
    QTest::newRow("blanks around") << QStringLiteral("  Tel.  0711 / 12 34  ");
    QTest::newRow("a tab is no blank") << QStringLiteral("Name:\tMeier Hans");
    // More words than the list keeps on the stack.
    QTest::newRow("forty words") << QStringLiteral("wort ").repeated(40);
}

void TestEnhancedWordBits::words()
{
    QFETCH(QString, text);
    const QStringList want = text.split(u' ', Qt::SkipEmptyParts);
    const WordViews got = Words(text);
    QStringList gotText;
    for (QStringView w : got)
        gotText.append(w.toString());
    QCOMPARE(gotText, want);
    QCOMPARE(WordCount(text), want.size());
}

QTEST_APPLESS_MAIN(TestEnhancedWordBits)
#include "tst_enhanced_wordbits.moc"
