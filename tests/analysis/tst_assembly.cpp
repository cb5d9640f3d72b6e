#include "analysis/analyser.h"

#include "rowview.h"

#include <QTest>

using namespace Qt::StringLiterals;
using namespace zf;

namespace {

// "Text|Firma=9 Ort=2": a record with these scores, every other score 0.
clsZeile record(const QString& line)
{
    const qsizetype bar = line.indexOf(u'|');
    clsZeile z{line.left(bar)};
    for (const QString& item : line.mid(bar + 1).split(u' ', Qt::SkipEmptyParts)) {
        const QStringList kv = item.split(u'=');
        for (const ScoreMember& m : AllScores)
            if (QLatin1StringView(m.name) == kv[0])
                z.*m.member = qint16(kv[1].toInt());
    }
    return z;
}

// The rows after assembling the records. The default countries get names that tell them
// apart from a country found in the text.
QStringList assembled(const QStringList& records,
                      const QList<FieldEntry>& fields = defaultFieldEntries())
{
    LineList lines;
    for (const QString& r : records)
        lines.push_back(record(r));
    Session session;
    for (const FieldEntry& f : fields)
        session.rows.addField(f.name, f.id);
    session.state.StandardLand4PLZ = u"Land4"_s;
    session.state.StandardLand5PLZ = u"Land5"_s;
    stage::AssembleRows(lines, session.rows, session.state);
    return shownRows(session.rows);
}

} // namespace

class TestAssembly : public QObject {
    Q_OBJECT
private slots:
    void assemble_data()
    {
        QTest::addColumn<QStringList>("records");
        QTest::addColumn<QStringList>("rows");
        const auto row = [](const char* name, const QStringList& records, const QStringList& rows) {
            QTest::newRow(name) << records << rows;
        };
        row("five lines and the 5-digit default",
            {"ACME|Firma=9", "Hans|Kontakt=9", "Weg 1|Adresse=9", "12345|PLZ=9", "Bonn|Ort=9"},
            {"ACME:Firma", "Hans:Kontakt", "Weg 1:Adresse", "12345:PLZ", "Bonn:Ort", "Land5:Land"});
        row("4-digit default", {"1234|PLZ=9"}, {"1234:PLZ", "Land4:Land"});
        row("all zero from line 3 is a company", {"a|Ort=2", "b|Ort=2", "c|"},
            {"a:Ort", "b:Ort", "c:Firma", "Land5:Land"});
        row("phone wins a tie with fax", {"1|Telefon=10 Fax=10", "2|Telefon=10 Fax=11"},
            {"1:Telefon", "2:Fax", "Land5:Land"});
        row("both first lines tied", {"A|Firma=5 Kontakt=5", "B|Firma=5 Kontakt=5"},
            {"A:Firma", "B:Kontakt", "Land5:Land"});
        row("tied first next to a company", {"A|Firma=5 Kontakt=5", "B|Firma=6 Kontakt=5"},
            {"A:Kontakt", "B:Firma", "Land5:Land"});
        row("germany replaced in any case, a blank country gets the default",
            {"GERMANY|Land=9", "germanys|Land=9", " |Land=9"},
            {"Deutschland:Land", "Deutschlands:Land", "Land5:Land"});
        row("four phone lines, two fax lines",
            {"1|Telefon=9", "2|Telefon=9", "3|Telefon=9", "4|Telefon=9", "5|Fax=9", "6|Fax=9"},
            {"1:Telefon", "2:Telefon 2", "3:Telefon 3", "4:-", "5:Fax", "6:Fax", "Land5:Land"});
        row("four addresses", {"a|Adresse=9", "b|Adresse=9", "c|Adresse=9", "d|Adresse=9"},
            {"a:Adresse", "b:Adresse 2", "c:Adresse 3", "d:-", "Land5:Land"});
        row("po box leaves its row empty", {"Postfach 1|Postfach=9", "Bonn|Ort=9"},
            {"", "Bonn:Ort", "Land5:Land"});
        row("cleaned values, fixed ids",
            {"Tel. 0711 1|Telefon=9", "Fax 0711 2|Fax=9", "Handy: 0171 3|Mobil=9",
             "E-Mail: a@b.de|EMail=9", "Web: www.b.de|Website=9", "Meier|NachName=9",
             "Hans|Vorname=9", "Dr.|Titel=9", "Herr|Anrede=9"},
            {"07111:Telefon", "07112:Fax", "01713:Mobil", "a@b.de:eMail", "www.b.de:Website",
             "Meier:Nachname", "Hans:Vorname", "Dr.:Titel", "Herr:Anrede", "Land5:Land"});
        // 15 lines leave the last row to the country; with 16 there is no free row.
        const auto numbered = [](int n, const QString& tail) {
            QStringList out;
            for (int i = 1; i <= n; ++i)
                out.append(u"L%1"_s.arg(i) + tail);
            return out;
        };
        row("15 lines", numbered(15, u"|Ort=9"_s), numbered(15, u":Ort"_s) << u"Land5:Land"_s);
        row("16 lines", numbered(16, u"|Ort=9"_s), numbered(16, u":Ort"_s));
        row("17 lines: 16 shown", numbered(17, u"|Ort=9"_s), numbered(16, u":Ort"_s));
    }
    void assemble()
    {
        QFETCH(QStringList, records);
        QFETCH(QStringList, rows);
        QCOMPARE(assembled(records), rows);
    }

    // A list reloaded without an id: the value is written, the field stays unchosen.
    void unknownFieldId()
    {
        QCOMPARE(assembled({"ACME|Firma=9", "Bonn|Ort=9"}, {{u"Firma"_s, 25}}),
                 (QStringList{"ACME:Firma", "Bonn:-", "Land5:-"}));
    }
};

QTEST_GUILESS_MAIN(TestAssembly)
#include "tst_assembly.moc"
