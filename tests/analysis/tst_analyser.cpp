#include "analysis/analyser.h"
#include "analysis/failure.h"
#include "analysis/fields.h"
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
    AnalysisResult analyse(const QString& text, const RunOptions& options = {})
    {
        session.clipText.clear();
        return AnalyseText(text, session, seams, options);
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
        // A heading whose name is only control characters still trims the lines before it.
        row("heading name of control characters",
            "\x01 D - 12345 Berlin\nDetails der \x01 schließen\n",
            {":Firma", "12345:PLZ", "Berlin:Ort", "Deutschland:Land"});
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
        const qint16 department = qint16(FieldId::Abteilung);
        run.session.state.ExtraDefinitions = {{department, u"Abteilung:"_s},
                                              {12, u"Kundennr:"_s},
                                              {13, u"Kundennr:"_s},
                                              {14, u"Fehlt:"_s}};
        run.analyse(
            u"abteilung: Vertrieb\nAbteilung:  Einkauf \nKundennr: 1\nKundennr: 2\nACME\n"_s);
        // An exact match, the value trimmed; a label twice takes a line each.
        const QList<clsZusatzDefs> expected{{department, u"Einkauf"_s}, {12, u"1"_s}, {13, u"2"_s}};
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

    // Past 32,767 lines the run fails before any row; stopping as soon as that is certain
    // changes nothing the caller sees, and the kept list holds every line.
    void tooManyLines()
    {
        // Each country walk stops early, so the pass is what fails.
        QString text = u"D-12345 Berlin\nCH-8000 Zürich\nA-1010 Wien\n"_s;
        for (int i = 0; i < 40000; ++i)
            text += u"Zeile %1\n"_s.arg(i);
        Run kept;
        kept.session.state.ExtraDefinitionsLoaded = true;
        kept.session.state.ExtraDefinitions = {{12, u"Zeile 39999"_s}};
        const AnalysisResult full = kept.analyse(text);
        QVERIFY(!full.completed);
        // Three countries and three split-off cities inserted; scored up to where the count
        // failed.
        QCOMPARE(qsizetype(full.lines.size()), MaxLinePosition + 1 + 6);
        QCOMPARE(full.lines.front().Text, u"12345"_s);
        QCOMPARE(std::next(full.lines.begin(), 1)->Kontakt, 4); // the city, at position 2
        QCOMPARE(full.lines.back().Text, u"Zeile 32764"_s);
        QCOMPARE(full.lines.back().Firma, 0);
        qsizetype rest = 0;
        for (qsizetype pos = full.unreachedFrom; pos < full.store.size(); ++pos)
            rest += full.store.isTaken(pos) ? 0 : 1;
        QCOMPARE(qsizetype(full.lines.size()) + rest, 40003 - 1 + 6); // one line taken

        Run quick;
        quick.session.state = kept.session.state;
        const AnalysisResult early = quick.analyse(text, RunOptions{true, false});
        QVERIFY(!early.completed);
        QVERIFY(early.lines.empty());
        QCOMPARE(shownRows(quick.session.rows), QStringList{});
        QCOMPARE(quick.session.clipText, kept.session.clipText);
        QCOMPARE(quick.session.state.ExtraFieldValues, (QList<clsZusatzDefs>{{12, u""_s}}));
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
