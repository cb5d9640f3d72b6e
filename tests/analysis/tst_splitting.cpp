#include "analysis/analyser.h"

#include <QTest>

using namespace Qt::StringLiterals;
using namespace zf;

class TestSplitting : public QObject {
    Q_OBJECT
private slots:
    // Records as texts, a company record from a heading marked "*". Without a clipText the
    // box must hold exactly the records' lines.
    void splitting_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QStringList>("lines");
        QTest::addColumn<QString>("clipText");
        QTest::addColumn<QString>("chosen");
        const auto row = [](const char* name, const QString& text, const QStringList& lines,
                            const QString& clipText = {}, const QString& chosen = {}) {
            QTest::newRow(name) << text << lines << clipText << chosen;
        };
        row("three lines", "Muster GmbH\r\nHauptstr. 5\r\n12345 Berlin",
            {"Muster GmbH", "Hauptstr. 5", "12345 Berlin"});
        row("crlf first, lone line feed dropped", "A\r\nB\nC;D", {"A", "BC;D"});
        row("tab before semicolon", "A\tB;C", {"A", "B;C"});
        row("semicolon before hash", "A;B#C", {"A", "B#C"});
        row("hash", "A#B", {"A", "B"});
        row("chosen wins", "A,B;C", {"A", "B;C"}, {}, ",");
        row("chosen comma and breaks", "A, B\r\nC", {"A", "B", "C"}, {}, ",");
        row("blank runs", "  Muster    GmbH  \n", {"Muster GmbH"});
        row("quote marks", "> > Hallo > Welt\n", {"Hallo  Welt"});
        row("blank piece skipped, quote-only and control-only kept", "A\n   \n>>\n\t\nB",
            {"A", "", "", "B"});
        row("heading as third line",
            "Muster GmbH Berlin\nTel Muster GmbH\nDetails der Muster GmbH schließen\nMuster GmbH",
            {"*Muster GmbH", "Berlin", "Tel", "Muster GmbH"},
            "Muster GmbH Berlin\r\nTel Muster GmbH\r\nMuster GmbH\r\n");
        row("two headings: last processed first",
            "Details der X schließen\nDetails der Y schließen\nZ", {"*Y", "*X", "Z"}, "Z\r\n");
        row("lower-case d is ordinary", "details der X schließen\n", {"details der X schließen"});
        row("quoted heading is ordinary", "> Details der X schließen\n",
            {"Details der X schließen"});
        row("markers share their blank", "A\nDetails der schließen", {"*", "A"}, "A\r\n");
        // An empty name removes nothing but still trims what stripping left.
        row("name of control characters only", "\x01 D - 12345 Berlin\nDetails der \x01 schließen",
            {"*", "D - 12345 Berlin"}, " D - 12345 Berlin\r\n");
        row("later heading edits an earlier heading record",
            "A X\nDetails der X schließen\nDetails der A schließen", {"*A", "*X", ""}, "A X\r\n");
        row("a removal can make the next name appear",
            "aXb\nDetails der X schließen\nDetails der ab schließen", {"*ab", "*X", ""}, "aXb\r\n");
    }
    void splitting()
    {
        QFETCH(QString, text);
        QFETCH(QStringList, lines);
        QFETCH(QString, clipText);
        QFETCH(QString, chosen);
        SharedState state;
        state.ChosenSeparator = chosen;
        const std::optional<QString> separator = stage::ChooseSeparator(text, state, Seams{});
        QVERIFY(separator);
        LineStore store;
        QString clip;
        stage::BuildLineList(text, *separator, store, &clip);
        QStringList got;
        for (qsizetype pos = 0; pos < store.size(); ++pos)
            got.append((store.isHeading(pos) ? u"*"_s : QString()) + store.text(pos).toString());
        QCOMPARE(got, lines);
        QCOMPARE(clip, clipText.isEmpty() ? lines.join(u"\r\n"_s) + u"\r\n"_s : clipText);
        // The box's lines are also kept as built, before any heading edited them.
        QString built;
        for (qsizetype i = 0; i < store.lineCount(); ++i)
            built += store.builtLine(i).toString() + u"\r\n"_s;
        QCOMPARE(built, clip);
    }
};

QTEST_GUILESS_MAIN(TestSplitting)
#include "tst_splitting.moc"
