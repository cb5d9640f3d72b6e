// The per-line pass: labels, position, words and capitals, then keywords and numbers.

#include "analyser.h"

#include "failure.h"
#include "textutil.h"

#include <QStringList>

#include <iterator>

using namespace Qt::StringLiterals;

namespace zf {

namespace {

// Keywords are compared against an upper-cased copy of the line, so they are upper-cased
// once, here, with the same per-character rule.
QStringList upperList(std::initializer_list<QString> words)
{
    QStringList out;
    for (const QString& w : words)
        out.append(UpperEach(w));
    return out;
}

// The working text of one line and its upper-cased twin, for the case-insensitive tests.
struct Probe {
    QString text;
    QString upper;
    Probe(QString t, QString u) : text(std::move(t)), upper(std::move(u)) {}
    explicit Probe(const QString& t) : text(t), upper(UpperEach(t)) {}
    // The same line with a blank at both ends, from what is already upper-cased.
    Probe padded() const { return Probe(u' ' + text + u' ', u' ' + upper + u' '); }

    bool contains(const QStringList& upperWords) const
    {
        for (const QString& w : upperWords)
            if (ContainsExact(upper, w))
                return true;
        return false;
    }
    bool startsWith(const QStringList& upperWords) const
    {
        for (const QString& w : upperWords)
            if (upper.startsWith(w))
                return true;
        return false;
    }
    bool endsWith(const QStringList& upperWords) const
    {
        for (const QString& w : upperWords)
            if (upper.endsWith(w))
                return true;
        return false;
    }
};

struct Keywords {
    QStringList companySigns = upperList({u"*"_s, u"!"_s, u"+"_s, u"?"_s, u"&"_s});
    QStringList legalForms = upperList({u" gmbh "_s, u" ohg "_s, u" ag "_s, u" firma "_s});
    QStringList countryWords = upperList({u"deutschland"_s, u"germany"_s, u"Österreich"_s,
                                          u"oesterreich"_s, u"Schweiz"_s, u"USA"_s});
    QStringList land = upperList({u"land"_s});
    QStringList salutations = upperList({u"Herr"_s, u"Frau"_s});
    QStringList titles = upperList(
        {u"Doktor"_s, u"Professor"_s, u"Dipl.Ing."_s, u"Dipl. Ing."_s, u"Dr."_s, u"Prof."_s});
    QStringList closingTitles = upperList(
        {u"Dr."_s, u"Prof."_s, u"Dipl.Ing."_s, u"Dipl. Ing."_s, u"Doktor"_s, u"Professor"_s});
    QStringList streetWords = upperList(
        {u"Strasse"_s, u"Straße"_s, u"weg"_s, u"allee"_s, u"platz"_s, u"gasse"_s, u"str."_s});
    QStringList placePrepositions = upperList({u"In "_s, u"Im "_s, u"Am "_s, u"An "_s});
    QStringList placeWords = upperList({u"garten"_s, u"park"_s, u"platz"_s});
    QStringList poBox = upperList({u"postfach"_s});
    QStringList phoneLabels = upperList({u"Telefon"_s, u"Phone"_s, u"Tel"_s});
    QStringList faxLabels = upperList({u"Fax"_s, u"Telefax"_s});
    QStringList mobileLabels = upperList({u"Mobil"_s, u"Handy"_s});
    QStringList webMarks = upperList({u"www"_s, u"http://"_s});
    QStringList at = upperList({u"@"_s});
    QStringList domainEndings =
        upperList({u".biz"_s, u".com"_s, u".de"_s, u".net"_s, u".at"_s, u".eu"_s, u".org"_s});
};

const Keywords& keywords()
{
    static const Keywords k;
    return k;
}

// One line of the pass: the record, its 1-based position and the list around it.
struct LineAt {
    LineList& lines;
    LineList::iterator cur;
    int pos;
    qsizetype count; // records in the list when the line's rules start
};

// A short number of four or more digits next to a line is most likely a split-off
// postcode, which makes the line its city.
void scoreCityBesidePostcode(const LineAt& line, qint16 digits)
{
    clsZeile& z = *line.cur;
    const auto shortNumber = [](const QString& t) { return t.size() < 6 && CountDigits(t) > 3; };
    if (line.pos > 3 && shortNumber(std::prev(line.cur)->Text) && digits <= 5)
        addChecked(z.Ort, 10);
    if (line.pos < line.count && shortNumber(std::next(line.cur)->Text) && digits <= 5)
        addChecked(z.Ort, 10);
}

// A company sign or legal form; on the first two lines it also makes the other the contact.
void scoreCompanyMarkers(const LineAt& line, const Probe& w)
{
    const Keywords& k = keywords();
    if (!w.contains(k.companySigns) && !w.padded().contains(k.legalForms))
        return;
    addChecked(line.cur->Firma, 3);
    if (line.pos == 2)
        addChecked(line.lines.front().Kontakt, 1);
    if (line.pos == 1 && line.count > 1)
        addChecked(std::next(line.lines.begin())->Kontakt, 1);
}

// "Herr" or "Frau": with a name on the same line it is the contact; alone, or ending in a
// title, the name follows on the next line.
void scoreSalutation(const LineAt& line, const Probe& w)
{
    const Keywords& k = keywords();
    if (!w.contains(k.salutations))
        return;
    clsZeile& z = *line.cur;
    addChecked(z.Anrede, 10);
    if (w.text.size() > 4 && !w.endsWith(k.closingTitles)) {
        addChecked(z.Kontakt, 11);
        return;
    }
    if (line.pos + 1 <= line.count)
        addChecked(std::next(line.cur)->Kontakt, 10);
    addChecked(z.Anrede, 3);
}

// Words that name what the line is: country, title, street, PO box, phone and fax labels,
// web and mail addresses. Phone and fax labels are remembered for the rest of the run.
void scoreKeywordHits(const LineAt& line, const Probe& w, stage::PassFlags& flags)
{
    const Keywords& k = keywords();
    clsZeile& z = *line.cur;
    if (w.contains(k.countryWords))
        addChecked(z.Land, 6);
    if (w.contains(k.land) && line.pos > 3) // "…land" further down is likelier a country
        addChecked(z.Land, 3);
    scoreSalutation(line, w);
    if (w.contains(k.titles)) {
        addChecked(z.Kontakt, 4);
        addChecked(z.Titel, 3);
    }
    if (w.contains(k.streetWords))
        addChecked(z.Adresse, 10);
    if (w.startsWith(k.placePrepositions) && w.contains(k.placeWords)) // "Am Marktplatz"
        addChecked(z.Adresse, 5);
    if (w.contains(k.poBox))
        addChecked(z.Postfach, 10);
    if (w.startsWith(k.phoneLabels)) {
        addChecked(z.Telefon, 10);
        flags.phoneLabel = true;
    }
    if (w.startsWith(k.faxLabels)) {
        addChecked(z.Fax, 10);
        flags.faxLabel = true;
    }
    if (w.startsWith(k.mobileLabels))
        addChecked(z.Mobil, 10);
    if (w.contains(k.webMarks)) {
        addChecked(z.Website, 10);
        addChecked(z.EMail, 2);
        addChecked(z.Firma, 1);
    }
    if (w.contains(k.at)) {
        addChecked(z.EMail, 10);
        addChecked(z.Firma, 2);
    }
    if (w.endsWith(k.domainEndings)) {
        addChecked(z.EMail, 7);
        addChecked(z.Website, 7);
    }
}

// Many digits look like a phone, fax or mobile number; a label seen earlier in the run makes
// the other kinds likelier. A few digits look like a house number, postcode or PO box.
void scoreDigits(clsZeile& z, qint16 d, const stage::PassFlags& flags)
{
    if (d > 5) {
        addChecked(z.Telefon, flags.phoneLabel ? 3 : 5);
        addChecked(z.Fax, flags.faxLabel ? 3 : 5);
        addChecked(z.Telefon, flags.phoneLabel ? 3 : 5);
        addChecked(z.Fax, 5);
        addChecked(z.Mobil, 5);
        addChecked(z.Postfach, 3);
    } else if (d >= 1) {
        if (d <= 3)
            addChecked(z.Adresse, 1);
        addChecked(z.Adresse, 3);
        addChecked(z.Postfach, 3);
        if (d == 4)
            addChecked(z.PLZ, 2);
        addChecked(z.PLZ, 3);
        addChecked(z.Firma, 2);
        addChecked(z.EMail, 1);
    }
}

// A line that starts with a five- or four-digit postcode keeps the postcode; the city behind
// it becomes a record of its own, scored next.
void splitPostcode(const LineAt& line, const QString& w, qint16 d)
{
    if (w.size() < 4 || d > 6)
        return;
    for (const qsizetype len : {5, 4}) {
        if (CountDigits(Left(w, len)) != len)
            continue;
        addChecked(line.cur->PLZ, 8);
        if (w.size() > len) {
            clsZeile city;
            city.Text = Trim(Mid(w, len + 1));
            city.Ort = 11;
            line.lines.insert(std::next(line.cur), std::move(city));
            line.cur->Text = Left(w, len);
        }
        return;
    }
}

} // namespace

namespace stage {

void ScoreLabelsAndPosition(clsZeile& z, int pos)
{
    struct LabelGroup {
        QStringList labels;
        std::initializer_list<std::pair<qint16 clsZeile::*, int>> points;
    };
    static const LabelGroup groups[] = {
        {{u"Firma:"_s, u"Company:"_s}, {{&clsZeile::Firma, 15}}},
        {{u"Name:"_s}, {{&clsZeile::NachName, 10}, {&clsZeile::Kontakt, 5}}},
        {{u"Nachname:"_s, u"Surname:"_s, u"lastname:"_s}, {{&clsZeile::NachName, 10}}},
        {{u"Kontakt:"_s, u"Contact:"_s}, {{&clsZeile::Kontakt, 15}}},
        {{u"Vorname:"_s, u"Firstname:"_s}, {{&clsZeile::Vorname, 15}}},
        {{u"Strasse:"_s, u"Straße:"_s, u"Adresse:"_s, u"address:"_s}, {{&clsZeile::Adresse, 15}}},
        {{u"PLZ:"_s, u"Postleitzahl:"_s, u"ZIP:"_s, u"ZIP-Code:"_s, u"ZIPCode:"_s},
         {{&clsZeile::PLZ, 15}}},
        {{u"PLZ/Ort:"_s}, {{&clsZeile::PLZ, 5}, {&clsZeile::Ort, 5}}},
        {{u"Stadt:"_s, u"Ort:"_s, u"City:"_s}, {{&clsZeile::Ort, 15}}},
        {{u"Land:"_s, u"Country:"_s}, {{&clsZeile::Land, 15}}},
        {{u"Titel:"_s}, {{&clsZeile::Titel, 15}}},
        {{u"Anrede:"_s}, {{&clsZeile::Anrede, 15}}},
        {{u"Inhaber:"_s}, {{&clsZeile::Kontakt, 15}}},
    };

    QString w = z.Text;
    for (const LabelGroup& g : groups) {
        bool hit = false;
        for (const QString& label : g.labels)
            hit = hit || StartsWith(w, label);
        if (!hit)
            continue;
        w = w.mid(w.indexOf(u':') + 1);
        for (const auto& [member, points] : g.points)
            addChecked(z.*member, points);
    }
    w = Trim(w);
    z.Text = w;

    if (pos == 1) {
        addChecked(z.Firma, 3);
        addChecked(z.Kontakt, 3);
    } else if (pos == 2) {
        addChecked(z.Firma, 3);
        addChecked(z.Kontakt, 4);
    }
    if (pos >= 3 && pos <= 5)
        addChecked(z.Adresse, 3);
    if (pos == 4 || pos == 5) {
        addChecked(z.Ort, 2);
        addChecked(z.PLZ, 1);
    }

    // Words: pieces between single blanks; empty pieces between two blanks count too.
    if (!w.isEmpty()) {
        const qsizetype pieces = w.count(u' ') + 1;
        if (pieces == 2) {
            addChecked(z.Kontakt, 2);
        } else if (pieces >= 3) {
            addChecked(z.Kontakt, 1);
            addChecked(z.Firma, 2);
        }
    }

    // Two ASCII capitals in a row look like an acronym or a legal form: a company hint.
    const auto isAsciiCapital = [](QChar c) { return c >= u'A' && c <= u'Z'; };
    for (qsizetype k = 1; k < w.size(); ++k)
        if (isAsciiCapital(w[k]) && isAsciiCapital(w[k - 1])) {
            addChecked(z.Firma, 3);
            break;
        }
}

void ScoreKeywords(LineList& lines, LineList::iterator cur, int pos, PassFlags& flags)
{
    const LineAt line{lines, cur, pos, qsizetype(lines.size())};
    const Probe w(cur->Text);
    const qint16 d = CountDigits(w.text);

    if (d > 0) // numbers and hyphens are more common in company names than in people's
        addChecked(cur->Firma, 1);
    if (w.upper.contains(u'-'))
        addChecked(cur->Firma, 1);
    scoreCityBesidePostcode(line, d);
    scoreCompanyMarkers(line, w);
    scoreKeywordHits(line, w, flags);
    scoreDigits(*cur, d, flags);
    splitPostcode(line, w.text, d);
}

void ScoreLines(LineList& lines)
{
    PassFlags flags;
    qint16 pos = 0;
    // Records inserted behind the current one are visited in their turn.
    for (auto it = lines.begin(); it != lines.end(); ++it) {
        addChecked(pos, 1);
        ScoreLabelsAndPosition(*it, pos);
        ScoreKeywords(lines, it, pos, flags);
    }
}

} // namespace stage

} // namespace zf
