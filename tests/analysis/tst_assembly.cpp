#include "analysis/analyser.h"

#include <QTest>

using namespace Qt::StringLiterals;
using namespace zf;

namespace {

// "Text|Field=points Other=points"
clsZeile record(const QString& line)
{
    const qsizetype bar = line.indexOf(u'|');
    clsZeile z{line.left(bar)};
    for (const QString& item : line.mid(bar + 1).split(u' ', Qt::SkipEmptyParts)) {
        const QStringList kv = item.split(u'=');
        for (const ScoreMember& m : AllScores)
            if (QString::fromLatin1(m.name) == kv[0])
                z.*m.member = qint16(kv[1].toInt());
    }
    return z;
}

// "value:Field" per used row, "value:-" for a value without field, "" for an empty row.
QStringList shownRows(const FieldRows& rows)
{
    QStringList out;
    for (int r = 0; r < FieldRows::RowCount; ++r) {
        const int pos = rows.selected(r);
        if (rows.value(r).isEmpty() && pos < 0)
            out.append(QString());
        else
            out.append(rows.value(r) + u':' + (pos < 0 ? u"-"_s : rows.fields().nameAt(pos)));
    }
    while (!out.isEmpty() && out.last().isEmpty())
        out.removeLast();
    return out;
}

} // namespace

class TestAssembly : public QObject {
    Q_OBJECT
private slots:
    void assemble_data()
    {
        QTest::addColumn<QStringList>("records");
        QTest::addColumn<QStringList>("rows");
        const QStringList fiveLines{"ACME|Firma=9", "Hans|Kontakt=9", "Weg 1|Adresse=9",
                                    "12345|PLZ=9", "Bonn|Ort=9"};
        QTest::newRow("five lines and a 5-digit default")
            << fiveLines << QStringList{"ACME:Firma", "Hans:Kontakt", "Weg 1:Adresse",
                                        "12345:PLZ",  "Bonn:Ort",     "Deutschland:Land"};
        QStringList four = fiveLines;
        four[3] = u"1234|PLZ=9"_s;
        QTest::newRow("4-digit default")
            << four << QStringList{"ACME:Firma", "Hans:Kontakt", "Weg 1:Adresse",
                                   "1234:PLZ",   "Bonn:Ort",     "Österreich:Land"};
        QTest::newRow("a country line, no default")
            << fiveLines + QStringList{"Schweiz|Land=9"}
            << QStringList{"ACME:Firma", "Hans:Kontakt", "Weg 1:Adresse",
                           "12345:PLZ",  "Bonn:Ort",     "Schweiz:Land"};
        QTest::newRow("all zero is a company")
            << QStringList{"a|Ort=2", "b|Ort=2", "c|"}
            << QStringList{"a:Ort", "b:Ort", "c:Firma", "Deutschland:Land"};
        QTest::newRow("phone wins a tie with fax")
            << QStringList{"x|Ort=2", "y|Ort=2", "Tel 0711 1|Telefon=10 Fax=10",
                           "Fax 0711 2|Telefon=10 Fax=11"}
            << QStringList{"x:Ort", "y:Ort", "07111:Telefon", "07112:Fax", "Deutschland:Land"};
        QTest::newRow("both first lines tied")
            << QStringList{"A|Firma=5 Kontakt=5", "B|Firma=5 Kontakt=5"}
            << QStringList{"A:Firma", "B:Kontakt", "Deutschland:Land"};
        QTest::newRow("tied first next to a company")
            << QStringList{"A|Firma=5 Kontakt=5", "B|Firma=6 Kontakt=5"}
            << QStringList{"A:Kontakt", "B:Firma", "Deutschland:Land"};
        QTest::newRow("germany replaced in any case")
            << QStringList{"x|Ort=2", "y|Ort=2", "GERMANY|Land=9", "Germanys|Land=9",
                           "germany|Land=9"}
            << QStringList{"x:Ort", "y:Ort", "Deutschland:Land", "Deutschlands:Land",
                           "Deutschland:Land"};
        QTest::newRow("blank country gets the default")
            << QStringList{"x|Ort=2", "y|Ort=2", " |Land=9"}
            << QStringList{"x:Ort", "y:Ort", "Deutschland:Land"};
        QTest::newRow("four phone lines, two fax lines")
            << QStringList{"x|Ort=2",     "y|Ort=2",     "1|Telefon=9", "2|Telefon=9",
                           "3|Telefon=9", "4|Telefon=9", "5|Fax=9",     "6|Fax=9"}
            << QStringList{"x:Ort", "y:Ort", "1:Telefon", "2:Telefon 2",     "3:Telefon 3",
                           "4:-",   "5:Fax", "6:Fax",     "Deutschland:Land"};
        QTest::newRow("four addresses")
            << QStringList{"x|Ort=2",     "y|Ort=2",     "a|Adresse=9",
                           "b|Adresse=9", "c|Adresse=9", "d|Adresse=9"}
            << QStringList{"x:Ort",       "y:Ort", "a:Adresse",       "b:Adresse 2",
                           "c:Adresse 3", "d:-",   "Deutschland:Land"};
        QTest::newRow("po box leaves its row empty")
            << QStringList{"x|Ort=2", "y|Ort=2", "Postfach 1|Postfach=9", "Bonn|Ort=9"}
            << QStringList{"x:Ort", "y:Ort", "", "Bonn:Ort", "Deutschland:Land"};
        QTest::newRow("cleaned values")
            << QStringList{"x|Ort=2", "y|Ort=2", "E-Mail: a@b.de|EMail=9",
                           "Web: www.b.de|Website=9", "Handy: 0171 1|Mobil=9"}
            << QStringList{"x:Ort",       "y:Ort",           "a@b.de:eMail", "www.b.de:Website",
                           "01711:Mobil", "Deutschland:Land"};
        QTest::newRow("names and title")
            << QStringList{"x|Ort=2",        "y|Ort=2",     "Meier|NachName=9",
                           "Hans|Vorname=9", "Dr.|Titel=9", "Herr|Anrede=9"}
            << QStringList{"x:Ort",     "y:Ort",       "Meier:Nachname",  "Hans:Vorname",
                           "Dr.:Titel", "Herr:Anrede", "Deutschland:Land"};
        QTest::newRow("empty list") << QStringList{} << QStringList{"Deutschland:Land"};
    }
    void assemble()
    {
        QFETCH(QStringList, records);
        QFETCH(QStringList, rows);
        LineList lines;
        for (const QString& r : records)
            lines.push_back(record(r));
        Session session;
        session.rows.FillDefaultFieldLists();
        stage::AssembleRows(lines, session.rows, session.state);
        QCOMPARE(shownRows(session.rows), rows);
    }

    void sixteenAndMoreLines_data()
    {
        QTest::addColumn<int>("lines");
        QTest::newRow("15: country row last") << 15;
        QTest::newRow("16: no free row") << 16;
        QTest::newRow("20: only 16 shown") << 20;
    }
    void sixteenAndMoreLines()
    {
        QFETCH(int, lines);
        LineList list;
        for (int i = 0; i < lines; ++i)
            list.push_back(record(u"L%1|Ort=1"_s.arg(i)));
        Session session;
        session.rows.FillDefaultFieldLists();
        stage::AssembleRows(list, session.rows, session.state);
        const QStringList shown = shownRows(session.rows);
        QCOMPARE(shown.size(), 16);
        QCOMPARE(shown.last(), lines == 15 ? u"Deutschland:Land"_s : u"L15:Ort"_s);
    }

    // A list reloaded without an id: the value is written, the field stays unchosen.
    void unknownFieldId()
    {
        Session session;
        session.rows.addField(u"Firma"_s, 25);
        LineList lines{record(u"ACME|Firma=9"_s), record(u"Bonn|Ort=9"_s)};
        stage::AssembleRows(lines, session.rows, session.state);
        QCOMPARE(shownRows(session.rows), (QStringList{"ACME:Firma", "Bonn:-", "Deutschland:-"}));
    }

    void configuredDefaults()
    {
        Session session;
        session.rows.FillDefaultFieldLists();
        session.state.StandardLand4PLZ = u"Schweiz"_s;
        LineList lines{record(u"8000|PLZ=9"_s)};
        stage::AssembleRows(lines, session.rows, session.state);
        QCOMPARE(shownRows(session.rows), (QStringList{"8000:PLZ", "Schweiz:Land"}));
    }
};

QTEST_GUILESS_MAIN(TestAssembly)
#include "tst_assembly.moc"
