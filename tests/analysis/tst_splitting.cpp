#include "analysis/analyser.h"

#include <QTest>

using namespace Qt::StringLiterals;
using namespace zf;

namespace {
QStringList texts(const LineList& lines)
{
    QStringList out;
    for (const clsZeile& z : lines)
        out.append(z.Text);
    return out;
}
} // namespace

class TestSplitting : public QObject {
    Q_OBJECT
private slots:
    void chooseSeparator_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("chosen");
        QTest::addColumn<QString>("expected");
        QTest::newRow("crlf first") << "a\r\nb\nc;d"
                                    << ""
                                    << "\r\n";
        QTest::newRow("line feeds") << "a\nb"
                                    << ""
                                    << "\n";
        QTest::newRow("tab") << "a\tb;c"
                             << ""
                             << "\t";
        QTest::newRow("semicolon") << "a;b#c"
                                   << ""
                                   << ";";
        QTest::newRow("hash") << "a#b"
                              << ""
                              << "#";
        QTest::newRow("chosen wins") << "a\r\nb"
                                     << ","
                                     << ",";
    }
    void chooseSeparator()
    {
        QFETCH(QString, text);
        QFETCH(QString, chosen);
        QFETCH(QString, expected);
        SharedState state;
        state.ChosenSeparator = chosen;
        int messages = 0;
        Seams seams;
        seams.showMessage = [&](const QString&, int) { return ++messages, 1; };
        QCOMPARE(stage::ChooseSeparator(text, state, seams), std::optional<QString>(expected));
        QCOMPARE(messages, 0);
    }

    // Without a candidate the user is told and asked; the answer becomes the chosen one.
    void noSeparatorAsksTheUser_data()
    {
        QTest::addColumn<QString>("answer");
        QTest::newRow("closed without choice") << "";
        QTest::newRow("comma marked") << ",";
    }
    void noSeparatorAsksTheUser()
    {
        QFETCH(QString, answer);
        SharedState state;
        QList<std::pair<QString, int>> shown;
        Seams seams;
        seams.showMessage = [&](const QString& t, int s) { return shown.append({t, s}), 1; };
        seams.chooseSeparator = [&] { return answer; };
        const auto sep = stage::ChooseSeparator(u"Muster GmbH, Hauptstr. 5"_s, state, seams);
        QCOMPARE(shown.size(), 1);
        QCOMPARE(shown[0].first, msg::NoSeparator);
        QCOMPARE(shown[0].second, 48);
        QCOMPARE(sep.has_value(), !answer.isEmpty());
        QCOMPARE(state.ChosenSeparator, answer);
    }

    void buildLineList_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("separator");
        QTest::addColumn<QStringList>("lines");
        QTest::addColumn<QString>("clipText");
        QTest::newRow("three lines") << "Muster GmbH\r\nHauptstr. 5\r\n12345 Berlin"
                                     << "\r\n"
                                     << QStringList{"Muster GmbH", "Hauptstr. 5", "12345 Berlin"}
                                     << "Muster GmbH\r\nHauptstr. 5\r\n12345 Berlin\r\n";
        QTest::newRow("lone line feed dropped") << "A\r\nB\nC"
                                                << "\r\n"
                                                << QStringList{"A", "BC"} << "A\r\nBC\r\n";
        QTest::newRow("tab dropped") << "Tel.\t0711 123\r\n"
                                     << "\r\n"
                                     << QStringList{"Tel.0711 123"} << "Tel.0711 123\r\n";
        QTest::newRow("chosen comma and breaks")
            << "A, B\r\nC"
            << "," << QStringList{"A", "B", "C"} << "A\r\nB\r\nC\r\n";
        QTest::newRow("blank runs") << "  Muster    GmbH  \n"
                                    << "\n"
                                    << QStringList{"Muster GmbH"} << "Muster GmbH\r\n";
        QTest::newRow("quote marks") << "> > Hallo > Welt\n"
                                     << "\n"
                                     << QStringList{"Hallo  Welt"} << "Hallo  Welt\r\n";
        QTest::newRow("blank piece skipped") << "A\n   \nB"
                                             << "\n"
                                             << QStringList{"A", "B"} << "A\r\nB\r\n";
        QTest::newRow("quote-only piece kept empty")
            << "A\n>>\nB"
            << "\n"
            << QStringList{"A", "", "B"} << "A\r\n\r\nB\r\n";
        QTest::newRow("control-only piece kept empty")
            << "A\r\n\t\r\nB"
            << "\r\n"
            << QStringList{"A", "", "B"} << "A\r\n\r\nB\r\n";
        QTest::newRow("empty text") << ""
                                    << "," << QStringList{} << "";
        QTest::newRow("multi-character separator")
            << "A--B----C"
            << "--" << QStringList{"A", "B", "C"} << "A\r\nB\r\nC\r\n";
    }
    void buildLineList()
    {
        QFETCH(QString, text);
        QFETCH(QString, separator);
        QFETCH(QStringList, lines);
        QFETCH(QString, clipText);
        LineList list;
        QString clip;
        stage::BuildLineList(text, separator, list, clip);
        QCOMPARE(texts(list), lines);
        QCOMPARE(clip, clipText);
        for (const clsZeile& z : list)
            QCOMPARE(z.Firma, qint16(0));
    }

    void companyHeading_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QStringList>("lines");
        QTest::addColumn<QString>("clipText");
        QTest::newRow("third line") << "Muster GmbH Berlin\nTel Muster GmbH\n"
                                       "Details der Muster GmbH schließen\nMuster GmbH"
                                    << QStringList{"Muster GmbH", "Berlin", "Tel", "Muster GmbH"}
                                    << "Muster GmbH Berlin\r\nTel Muster GmbH\r\nMuster GmbH\r\n";
        QTest::newRow("first line")
            << "Details der ACME schließen\nA\nB" << QStringList{"ACME", "A", "B"} << "A\r\nB\r\n";
        QTest::newRow("two headings: last processed first")
            << "Details der X schließen\nDetails der Y schließen\nZ" << QStringList{"Y", "X", "Z"}
            << "Z\r\n";
        QTest::newRow("lower-case d is ordinary")
            << "details der Muster GmbH schließen\n"
            << QStringList{"details der Muster GmbH schließen"}
            << "details der Muster GmbH schließen\r\n";
        QTest::newRow("quoted heading is ordinary")
            << "> Details der Muster GmbH schließen\n"
            << QStringList{"Details der Muster GmbH schließen"}
            << "Details der Muster GmbH schließen\r\n";
        QTest::newRow("markers share their blank") << "A\nDetails der schließen\n"
                                                   << QStringList{"", "A"} << "A\r\n";
    }
    void companyHeading()
    {
        QFETCH(QString, text);
        QFETCH(QStringList, lines);
        QFETCH(QString, clipText);
        LineList list;
        QString clip;
        stage::BuildLineList(text, u"\n"_s, list, clip);
        QCOMPARE(texts(list), lines);
        QCOMPARE(clip, clipText);
        const bool heading = text.startsWith(u"Details der "_s) || text.contains(u"\nDetails"_s);
        QCOMPARE(list.front().Firma, qint16(heading ? 20 : 0));
    }
};

QTEST_GUILESS_MAIN(TestSplitting)
#include "tst_splitting.moc"
