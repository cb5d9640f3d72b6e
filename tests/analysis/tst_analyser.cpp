#include "analysis/analyser.h"

#include <QTest>

using namespace Qt::StringLiterals;
using namespace zf;

namespace {

struct Recorder {
    QList<std::pair<QString, int>> messages;
    int chooserOpened = 0;
    QString chooserAnswer;
    Seams seams()
    {
        Seams s;
        s.showMessage = [this](const QString& t, int style) {
            messages.append({t, style});
            return 1;
        };
        s.chooseSeparator = [this] {
            ++chooserOpened;
            return chooserAnswer;
        };
        return s;
    }
};

QStringList shownRows(const FieldRows& rows)
{
    QStringList out;
    for (int r = 0; r < FieldRows::RowCount; ++r) {
        const int pos = rows.selected(r);
        out.append(rows.value(r) + u':' + (pos < 0 ? u"-"_s : rows.fields().nameAt(pos)));
    }
    while (!out.isEmpty() && out.last() == u":-"_s)
        out.removeLast();
    return out;
}

} // namespace

class TestAnalyser : public QObject {
    Q_OBJECT
private slots:
    void endToEnd_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QStringList>("rows");
        QTest::newRow("signature")
            << "Muster GmbH\r\nHerr Hans Meier\r\nMusterweg 12\r\n80331 München\r\n"
               "Tel. 089 123456\r\nFax 089 123457\r\ninfo@muster.de\r\nwww.muster.de\r\n"
            << QStringList{"Muster GmbH:Firma",     "Herr Hans Meier:Kontakt",
                           "Musterweg 12:Adresse",  "80331:PLZ",
                           "München:Ort",           "089123456:Telefon",
                           "089123457:Fax",         "info@muster.de:eMail",
                           "www.muster.de:Website", "Deutschland:Land"};
        QTest::newRow("prefixed swiss postcode")
            << "Beispiel AG\nAnna Muster\nBahnhofstrasse 1\nCH-8000 Zürich\n"
            << QStringList{"Beispiel AG:Firma", "Anna Muster:Kontakt", "Bahnhofstrasse 1:Adresse",
                           "8000:PLZ",          "Zürich:Ort",          "Schweiz:Land"};
        QTest::newRow("labelled form")
            << "Firma: Muster GmbH\nName: Meier\nVorname: Hans\nStraße: Weg 1\nPLZ: 12345\n"
               "Ort: Bonn\nLand: Germany\n"
            // "Name:" on line 2 ties last name and contact; the tie goes to the contact.
            << QStringList{"Muster GmbH:Firma", "Meier:Kontakt", "Hans:Vorname",    "Weg 1:Adresse",
                           "12345:PLZ",         "Bonn:Ort",      "Deutschland:Land"};
        QTest::newRow("single line with break")
            << "Muster GmbH\r\n"
            << QStringList{"Muster GmbH:Firma", "Deutschland:Land"};
        QTest::newRow("only a break") << "\r\n" << QStringList{"Deutschland:Land"};
    }
    void endToEnd()
    {
        QFETCH(QString, text);
        QFETCH(QStringList, rows);
        Session session;
        session.rows.FillDefaultFieldLists();
        Recorder rec;
        const AnalysisResult r = AnalyseText(text, session, rec.seams());
        QVERIFY(r.completed);
        QCOMPARE(shownRows(session.rows), rows);
        QVERIFY(rec.messages.isEmpty());
    }

    void noSeparatorEndsTheRun()
    {
        Session session;
        session.rows.FillDefaultFieldLists();
        session.rows.setValue(3, u"old"_s);
        Recorder rec;
        const AnalysisResult r =
            AnalyseText(u"Muster GmbH, Hauptstr. 5, 12345 Berlin"_s, session, rec.seams());
        QVERIFY(r.completed);
        QCOMPARE(rec.chooserOpened, 1);
        QCOMPARE(rec.messages.size(), 1);
        QCOMPARE(rec.messages[0].first, msg::NoSeparator);
        QCOMPARE(shownRows(session.rows), QStringList{});
        QCOMPARE(session.clipText, QString());
    }

    void chooserAnswerIsUsedAndKept()
    {
        Session session;
        session.rows.FillDefaultFieldLists();
        Recorder rec;
        rec.chooserAnswer = u","_s;
        AnalyseText(u"Muster GmbH, Hauptstr. 5, 12345 Berlin"_s, session, rec.seams());
        QCOMPARE(session.clipText, u"Muster GmbH\r\nHauptstr. 5\r\n12345 Berlin\r\n"_s);
        QCOMPARE(session.state.ChosenSeparator, u","_s);
        // The next run uses it without asking.
        session.clipText.clear();
        AnalyseText(u"A,B"_s, session, rec.seams());
        QCOMPARE(rec.chooserOpened, 1);
        QCOMPARE(session.clipText, u"A\r\nB\r\n"_s);
    }

    void secondRunStartsClean()
    {
        Session session;
        session.rows.FillDefaultFieldLists();
        Recorder rec;
        AnalyseText(u"A\nB\nC\nD\n"_s, session, rec.seams());
        session.clipText.clear();
        AnalyseText(u"X\n"_s, session, rec.seams());
        QCOMPARE(shownRows(session.rows), (QStringList{"X:Firma", "Deutschland:Land"}));
        QCOMPARE(session.clipText, u"X\r\n"_s);
    }

    void extraDefinitions()
    {
        Session session;
        session.rows.FillDefaultFieldLists();
        session.state.ExtraDefinitionsLoaded = true;
        session.state.ExtraDefinitions = {{88, u"Abteilung:"_s},
                                          {-1, u"Gruß:"_s},
                                          {12, u"Kundennr:"_s},
                                          {13, u"Kundennr:"_s},
                                          {14, u"Fehlt:"_s}};
        Recorder rec;
        AnalyseText(u"abteilung: Vertrieb\nAbteilung:  Einkauf \nGruß: Hallo\nKundennr: 1\n"
                    "Kundennr: 2\nMuster GmbH\n"_s,
                    session, rec.seams());
        const QList<clsZusatzDefs> expected{
            {88, u"Einkauf"_s}, {-1, u"Hallo"_s}, {12, u"1"_s}, {13, u"2"_s}};
        QCOMPARE(session.state.ExtraFieldValues, expected);
        // Taken lines leave the analysis but stay in the box.
        QCOMPARE(shownRows(session.rows).size(), 3);
        QVERIFY(session.clipText.contains(u"Abteilung:  Einkauf"_s) == false);
        QVERIFY(session.clipText.contains(u"Abteilung: Einkauf"_s));
    }

    // A run-time failure ends the run where it is: rows stay cleared, the box keeps its lines.
    void failureEndsTheRunQuietly()
    {
        Session session;
        session.rows.FillDefaultFieldLists();
        session.rows.setValue(0, u"old"_s);
        Recorder rec;
        const QString tooLong(40000, u'x');
        const AnalysisResult r =
            AnalyseText(u"Erste Zeile\n"_s + tooLong + u"\nDritte\n"_s, session, rec.seams());
        QVERIFY(!r.completed);
        QVERIFY(rec.messages.isEmpty());
        QCOMPARE(session.clipText, u"Erste Zeile\r\n"_s);
        QCOMPARE(shownRows(session.rows), QStringList{});
    }

    void fetchClipboard_data()
    {
        QTest::addColumn<QString>("clipboard");
        QTest::addColumn<bool>("silent");
        QTest::addColumn<bool>("analysed");
        QTest::addColumn<int>("messages");
        QTest::newRow("empty") << "" << false << false << 1;
        QTest::newRow("blanks only") << "   " << false << false << 1;
        QTest::newRow("blanks, silent") << "   " << true << false << 0;
        QTest::newRow("line break counts") << " \r\n " << false << true << 0;
        QTest::newRow("tab counts") << "\t" << false << true << 0; // and is a separator
        QTest::newRow("text") << "A\r\nB" << false << true << 0;
    }
    void fetchClipboard()
    {
        QFETCH(QString, clipboard);
        QFETCH(bool, silent);
        QFETCH(bool, analysed);
        QFETCH(int, messages);
        Session session;
        session.rows.FillDefaultFieldLists();
        session.clipText = u"stale"_s;
        Recorder rec;
        const auto r = FetchClipboardText(clipboard, session, rec.seams(), silent);
        QCOMPARE(r.has_value(), analysed);
        QCOMPARE(rec.messages.size(), messages);
        if (!analysed && messages)
            QCOMPARE(rec.messages[0], std::make_pair(msg::ClipboardEmpty, 64));
        QCOMPARE(session.state.ClipboardText, clipboard);
        QVERIFY(session.clipText != u"stale"_s);
    }

    void dotBeforeLineBreak()
    {
        QCOMPARE(PrepareClipboardText(u"Muster . \r\nA . B\r\nC . "_s),
                 u"Muster\r\nA . B\r\nC . "_s);
        Session session;
        session.rows.FillDefaultFieldLists();
        Recorder rec;
        FetchClipboardText(u"Muster GmbH . \r\nBonn\r\n"_s, session, rec.seams());
        QCOMPARE(session.clipText, u"Muster GmbH\r\nBonn\r\n"_s);
        QCOMPARE(session.state.ClipboardText, u"Muster GmbH . \r\nBonn\r\n"_s);
    }
};

QTEST_GUILESS_MAIN(TestAnalyser)
#include "tst_analyser.moc"
