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
        LineList list;
        QString clip;
        stage::BuildLineList(text, *separator, list, clip);
        QStringList got;
        for (const clsZeile& z : list)
            got.append(z.Firma == 20 ? u'*' + z.Text : z.Text);
        QCOMPARE(got, lines);
        QCOMPARE(clip, clipText.isEmpty() ? lines.join(u"\r\n"_s) + u"\r\n"_s : clipText);
    }
};

QTEST_GUILESS_MAIN(TestSplitting)
#include "tst_splitting.moc"
