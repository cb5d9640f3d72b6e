#include "analysis/analyser.h"
#include "analysis/messages.h"

#include "rowview.h"

#include <QTest>

using namespace Qt::StringLiterals;
using namespace zf;

namespace {

using Shown = QList<std::pair<QString, int>>;

// A session with the built-in field list; messages and separator choices are recorded.
struct Run {
    Session session;
    Shown messages;
    int chooserOpened = 0;
    QString chooserAnswer;
    Seams seams{[this](const QString& text, MessageStyle style) {
                    messages.append({text, int(style)});
                    return MessageAnswer::Ok;
                },
                [this] { return ++chooserOpened, chooserAnswer; }};

    Run() { session.rows.FillDefaultFieldLists(); }
    // As the callers do: the box is emptied first.
    AnalysisResult analyse(const QString& text)
    {
        session.clipText.clear();
        return AnalyseText(text, session, seams);
    }
};

} // namespace

class TestAnalyser : public QObject {
    Q_OBJECT
private slots:
    void endToEnd_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QStringList>("rows");
        const auto row = [](const char* name, const QString& text, const QStringList& rows) {
            QTest::newRow(name) << text << rows;
        };
        row("signature",
            "Muster GmbH\r\nHerr Hans Meier\r\nMusterweg 12\r\n80331 München\r\nTel. 089 123456\r\n"
            "Fax 089 123457\r\ninfo@muster.de\r\nwww.muster.de\r\n",
            {"Muster GmbH:Firma", "Herr Hans Meier:Kontakt", "Musterweg 12:Adresse", "80331:PLZ",
             "München:Ort", "089123456:Telefon", "089123457:Fax", "info@muster.de:eMail",
             "www.muster.de:Website", "Deutschland:Land"});
        row("single line with break", "Muster GmbH\r\n", {"Muster GmbH:Firma", "Deutschland:Land"});
        row("only a break", "\r\n", {"Deutschland:Land"});
    }
    void endToEnd()
    {
        QFETCH(QString, text);
        QFETCH(QStringList, rows);
        Run run;
        run.session.rows.setValue(15, u"old"_s); // left from an earlier run
        QVERIFY(run.analyse(text).completed);
        QCOMPARE(shownRows(run.session.rows), rows);
        QCOMPARE(run.messages, Shown{});
    }

    // Without a candidate the user is told and asked; a marked separator is kept for later runs.
    void noSeparatorAsksTheUser()
    {
        Run run;
        run.session.rows.setValue(3, u"old"_s);
        const QString text = u"Muster GmbH, Hauptstr. 5, 12345 Berlin"_s;
        QVERIFY(run.analyse(text).completed); // the chooser closed without a choice
        QCOMPARE(run.messages, (Shown{{msg::NoSeparator, 48}}));
        QCOMPARE(shownRows(run.session.rows), QStringList{});
        QCOMPARE(run.session.clipText, QString());
        run.chooserAnswer = u","_s;
        run.analyse(text);
        QCOMPARE(run.session.clipText, u"Muster GmbH\r\nHauptstr. 5\r\n12345 Berlin\r\n"_s);
        run.analyse(u"A,B"_s);
        QCOMPARE(run.chooserOpened, 2);
    }

    void extraDefinitions()
    {
        Run run;
        run.session.state.ExtraDefinitionsLoaded = true;
        run.session.state.ExtraDefinitions = {
            {88, u"Abteilung:"_s}, {12, u"Kundennr:"_s}, {13, u"Kundennr:"_s}, {14, u"Fehlt:"_s}};
        run.analyse(
            u"abteilung: Vertrieb\nAbteilung:  Einkauf \nKundennr: 1\nKundennr: 2\nACME\n"_s);
        // An exact match, the value trimmed; a label twice takes a line each.
        const QList<clsZusatzDefs> expected{{88, u"Einkauf"_s}, {12, u"1"_s}, {13, u"2"_s}};
        QCOMPARE(run.session.state.ExtraFieldValues, expected);
        // Taken lines leave the analysis but stay in the box.
        QCOMPARE(shownRows(run.session.rows).size(), 3);
        QVERIFY(run.session.clipText.contains(u"Abteilung: Einkauf"_s));
    }

    // A run-time failure ends the run where it is, silently: the box keeps its lines.
    void failureEndsTheRunQuietly()
    {
        Run run;
        const QString tooLong(40000, u'x');
        QVERIFY(!run.analyse(u"Erste Zeile\n"_s + tooLong + u"\nDritte\n"_s).completed);
        QCOMPARE(run.messages, Shown{});
        QCOMPARE(run.session.clipText, u"Erste Zeile\r\n"_s);
        QCOMPARE(shownRows(run.session.rows), QStringList{});
    }

    // Only blanks make an empty clipboard; " . " before a line break goes.
    void fetchClipboard_data()
    {
        QTest::addColumn<QString>("clipboard");
        QTest::addColumn<bool>("silent");
        QTest::addColumn<bool>("analysed");
        QTest::addColumn<QString>("clipText");
        QTest::newRow("blanks only") << u"   "_s << false << false << QString();
        QTest::newRow("blanks, silent") << u"   "_s << true << false << QString();
        QTest::newRow("tab is no blank") << u"\t"_s << false << true << QString();
        QTest::newRow("dot before a break")
            << u"Muster . \r\nA . B\r\nC . "_s << false << true << u"Muster\r\nA . B\r\nC .\r\n"_s;
    }
    void fetchClipboard()
    {
        QFETCH(QString, clipboard);
        QFETCH(bool, silent);
        QFETCH(bool, analysed);
        QFETCH(QString, clipText);
        Run run;
        run.session.clipText = u"stale"_s;
        const auto r = FetchClipboardText(clipboard, run.session, run.seams, silent);
        QCOMPARE(r.has_value(), analysed);
        const Shown told{{msg::ClipboardEmpty, 64}};
        QCOMPARE(run.messages, analysed || silent ? Shown{} : told);
        QCOMPARE(run.session.state.ClipboardText, clipboard);
        QCOMPARE(run.session.clipText, clipText);
    }
};

QTEST_GUILESS_MAIN(TestAnalyser)
#include "tst_analyser.moc"
