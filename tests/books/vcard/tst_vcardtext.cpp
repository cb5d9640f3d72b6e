#include "books/vcard/vcardtext.h"

#include <QTest>

using namespace Qt::StringLiterals;
using namespace zf::vcard;

class TestVCardText : public QObject {
    Q_OBJECT
private slots:
    void controls_data()
    {
        QTest::addColumn<QString>("value");
        QTest::addColumn<QString>("cleaned");
        QTest::newRow("line breaks of every kind") << u"a\r\nb\rc\nd"_s << u"a\nb\nc\nd"_s;
        QTest::newRow("tab") << u"a\tb"_s << u"a b"_s;
        QTest::newRow("C0, DEL and C1 dropped") << u"a\0b\x1b"
                                                   u"c\x7f"
                                                   u"d\x85"
                                                   u"e\x9f"_s
                                                << u"abcde"_s;
        QTest::newRow("beyond C1 kept") << u"\xa0ü€😀"_s << u"\xa0ü€😀"_s;
    }
    void controls()
    {
        QFETCH(QString, value);
        QFETCH(QString, cleaned);
        QCOMPARE(cleanControls(value), cleaned);
    }

    void parameters_data()
    {
        QTest::addColumn<QString>("value");
        QTest::addColumn<QString>("quoted");
        QTest::newRow("plain") << "Kunden-Nr."
                               << "\"Kunden-Nr.\"";
        QTest::newRow("quote, caret, break") << "Sag \"Hi\"^\r\nTschüss"
                                             << "\"Sag ^'Hi^'^^^nTschüss\"";
        QTest::newRow("separators need no escape") << "a;b:c,d"
                                                   << "\"a;b:c,d\"";
        QTest::newRow("controls dropped, tab a space") << u"a\0\tb"_s << "\"a b\"";
    }
    void parameters()
    {
        QFETCH(QString, value);
        QFETCH(QString, quoted);
        QCOMPARE(quoteParameter(value), quoted);
        QCOMPARE(unquoteParameter(quoted), cleanControls(value));
    }

    void folding_data()
    {
        QTest::addColumn<QString>("line");
        QTest::newRow("exactly 75") << QString(75, 'a');
        QTest::newRow("76") << QString(76, 'a');
        QTest::newRow("long ascii") << "NOTE:" + QString(300, 'x');
        QTest::newRow("umlauts across the cut") << "NOTE:" + QString(200, QChar(0xFC));
        QTest::newRow("three-octet characters") << "X-A:" + QString(100, QChar(0x20AC));
        QTest::newRow("surrogate pairs") << "X-B:" + QString(60, 'a') + QString("😀").repeated(30);
    }
    void folding()
    {
        QFETCH(QString, line);
        QList<QByteArray> physical = foldLine(line).split('\n');
        QCOMPARE(physical.takeLast(), QByteArray()); // ends with a line break
        QCOMPARE(physical.size() > 1, line.toUtf8().size() > 75);
        QByteArray unfolded;
        for (qsizetype i = 0; i < physical.size(); ++i) {
            QVERIFY(physical[i].endsWith('\r') && (i == 0 || physical[i].startsWith(' ')));
            const QByteArray l = physical[i].chopped(1).mid(i == 0 ? 0 : 1);
            QVERIFY2(l.size() <= (i == 0 ? 75 : 74), l.constData());
            QVERIFY(i + 1 == physical.size() || l.size() >= 71); // filled, not cut early
            QVERIFY(QString::fromUtf8(l).toUtf8() == l);         // no character cut
            unfolded += l;
        }
        QCOMPARE(QString::fromUtf8(unfolded), line);
    }
};

QTEST_GUILESS_MAIN(TestVCardText)
#include "tst_vcardtext.moc"
