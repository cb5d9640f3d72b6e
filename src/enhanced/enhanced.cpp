#include "enhanced.h"

#include "analysis/failure.h"
#include "analysis/fields.h"
#include "analysis/messages.h"
#include "analysis/textutil.h"
#include "recognise.h"

#include <QJsonObject>

#include <new>

using namespace Qt::StringLiterals;

namespace zf {

namespace enhanced {
namespace {

// Beyond these a text is no longer an address block; the rest is cut off (and noted) so
// that time and memory stay bounded.
constexpr int MaxLines = 4000;
constexpr qsizetype MaxLineLength = 600;

enum class Kind {
    Blank,
    Unknown,
    Noise,
    Prose,
    Closing,
    Opening,
    Cut,
    Heading,
    LabelOnly,
    Company,
    Department,
    Job,
    Person,
    NamePart,
    Salutation,
    Title,
    Street,
    Address2,
    PoBox,
    PostcodeCity,
    Postcode,
    City,
    Country,
    Phone,
    Email,
    Website,
};

const char* kindName(Kind k)
{
    switch (k) {
    case Kind::Blank:
        return "Leerzeile";
    case Kind::Unknown:
        return "unbestimmt";
    case Kind::Noise:
        return "Beiwerk";
    case Kind::Prose:
        return "Fließtext";
    case Kind::Closing:
        return "Grußformel";
    case Kind::Opening:
        return "Anrede im Text";
    case Kind::Cut:
        return "ältere Nachricht";
    case Kind::Heading:
        return "Überschrift";
    case Kind::LabelOnly:
        return "Etikett";
    case Kind::Company:
        return "Firma";
    case Kind::Department:
        return "Abteilung";
    case Kind::Job:
        return "Funktion";
    case Kind::Person:
        return "Person";
    case Kind::NamePart:
        return "Namensteil";
    case Kind::Salutation:
        return "Anrede";
    case Kind::Title:
        return "Titel";
    case Kind::Street:
        return "Straße";
    case Kind::Address2:
        return "Adresszusatz";
    case Kind::PoBox:
        return "Postfach";
    case Kind::PostcodeCity:
        return "PLZ und Ort";
    case Kind::Postcode:
        return "PLZ";
    case Kind::City:
        return "Ort";
    case Kind::Country:
        return "Land";
    case Kind::Phone:
        return "Rufnummer";
    case Kind::Email:
        return "E-Mail";
    case Kind::Website:
        return "Website";
    }
    return "";
}

// How a person was found, strongest first.
enum class PersonSource { Form, Closing, Marked, Evidence, Role, None };

struct Line {
    QString text;
    int source = 0; // 1-based line of the text
    int block = 0;  // blank lines separate blocks
    bool quoted = false;
    Kind kind = Kind::Unknown;
    QString value;
    QString why;
    int strength = 0;
    bool labelled = false;
    LabelKind labelKind = LabelKind::SkipLine;
    PersonName person;
    bool nameShaped = false;
    PersonSource personSource = PersonSource::None;
    Place place;
    PhoneRole phone = PhoneRole::Plain;
    bool skipped = false;
    QString skipWhy;
    QStringList taken;
};

bool isDivider(QChar c)
{
    return c == u'\t' || c == u'|' || c == u'·' || c == u'•' || c == u'∙' || c == QChar(0x1f);
}

// Control and invisible characters go; odd blanks become blanks; tabs stay as dividers.
QString cleaned(QStringView raw)
{
    QString out;
    out.reserve(raw.size());
    bool blank = false;
    for (QChar c : raw) {
        const char16_t u = c.unicode();
        if (u == u'\t' || u == 0x1f) {
            out.append(u'\t');
            blank = false;
            continue;
        }
        if (u < 0x20 || (u >= 0x7f && u < 0xa0) || (u >= 0x200b && u <= 0x200f) || u == 0xfeff ||
            u == 0xad || u == 0x2028 || u == 0x2029)
            continue;
        if (u == 0xa0 || (u >= 0x2000 && u <= 0x200a) || u == 0x202f || u == u' ') {
            blank = true;
            continue;
        }
        if (blank && !out.isEmpty() && out.back() != u'\t')
            out.append(u' ');
        blank = false;
        out.append(c);
    }
    // Blanks around dividers are not part of any value.
    QString tidy;
    tidy.reserve(out.size());
    for (qsizetype i = 0; i < out.size(); ++i) {
        if (out[i] == u' ' && ((i + 1 < out.size() && out[i + 1] == u'\t') ||
                               (!tidy.isEmpty() && tidy.back() == u'\t')))
            continue;
        tidy.append(out[i]);
    }
    return tidy;
}

// Markdown emphasis, code marks and angle brackets around a lone address.
QString withoutMarkup(QString s)
{
    for (const QString& mark : {u"**"_s, u"__"_s, u"`"_s})
        s.remove(mark);
    if (s.size() > 2 && (s.front() == u'*' || s.front() == u'_') && s.back() == s.front())
        s = s.mid(1, s.size() - 2);
    if (s.size() > 2 && s.front() == u'<' && s.back() == u'>' && !s.mid(1).contains(u'<'))
        s = s.mid(1, s.size() - 2);
    // "[Text](https://host)": the text and the address become two pieces.
    const qsizetype open = s.indexOf(u"]("_s);
    if (s.startsWith(u'[') && open > 0 && s.endsWith(u')'))
        s = s.mid(1, open - 1) + u'\t' + s.mid(open + 2, s.size() - open - 3);
    return s.trimmed();
}

class Analysis {
public:
    Analysis(const SharedState& state) : m_state(state) {}

    void cut(const QString& text, const QString& separator);
    void takeDefinitions(const QList<clsZusatzDefs>& definitions);
    void classifyAll();
    void context();
    void assemble();
    void fillRows(FieldRows& rows) const;
    QJsonArray notes() const;

private:
    void classifyInto(Line line, QList<Line>& out, int depth);
    bool classifyOne(Line& l);
    void applyLabel(Line& l, const Label& label, const QString& value, QList<Line>* extra,
                    int depth);
    bool hasContactData(int from, int to) const;
    int nextInBlock(int i) const;
    int prevInBlock(int i) const;
    void take(int line, const QString& field);

    const SharedState& m_state;
    QList<Line> m_raw;
    QList<Line> m_lines;
    bool m_truncated = false;
    int m_from = 0;
    int m_to = 0;

public:
    struct Value {
        FieldId field;
        QString value;
    };
    QList<Value> m_values;
};

void Analysis::cut(const QString& text, const QString& separator)
{
    static const QString headStart = u"Details der "_s;
    static const QString headEnd = u" schließen"_s;
    QString whole = text;
    whole.replace(u"\r\n"_s, separator);
    const QStringList pieces = whole.split(separator, Qt::KeepEmptyParts);
    int source = 0;
    int block = 0;
    bool lastBlank = true;
    for (const QString& piece : pieces) {
        // Stray line breaks inside a piece still end a line.
        qsizetype from = 0;
        for (qsizetype i = 0; i <= piece.size(); ++i) {
            if (i < piece.size() && piece[i] != u'\r' && piece[i] != u'\n')
                continue;
            const QStringView rawLine = QStringView(piece).mid(from, i - from);
            from = i + 1;
            if (++source > MaxLines) {
                m_truncated = true;
                return;
            }
            QString t = cleaned(rawLine.left(MaxLineLength * 4));
            bool quoted = false;
            while (!t.isEmpty() && (t.front() == u'>' || t.front() == u' ')) {
                quoted = quoted || t.front() == u'>';
                t.remove(0, 1);
            }
            while (!t.isEmpty() && (t.back() == u' ' || t.back() == u'\t'))
                t.chop(1);
            if (t.endsWith(u" ."_s))
                t.chop(2);
            t = withoutMarkup(t);
            if (t.isEmpty() || t == u"."_s) {
                if (!lastBlank) {
                    Line b;
                    b.kind = Kind::Blank;
                    b.source = source;
                    b.block = block;
                    m_raw.append(b);
                    ++block;
                }
                lastBlank = true;
                continue;
            }
            lastBlank = false;
            Line l;
            l.source = source;
            l.block = block;
            l.quoted = quoted;
            if (t.startsWith(headStart) && t.endsWith(headEnd)) {
                const qsizetype n = t.size() - headStart.size() - headEnd.size();
                l.kind = Kind::Heading;
                l.value = n > 0 ? t.mid(headStart.size(), n).trimmed() : QString();
                l.text = t;
                l.why = u"Kopfzeile \"Details der … schließen\""_s;
            } else {
                l.text = t;
            }
            m_raw.append(l);
        }
    }
}

// Lines that begin with a configured label went to their extra field: each label takes the
// first such line, as in the classic run.
void Analysis::takeDefinitions(const QList<clsZusatzDefs>& definitions)
{
    for (const clsZusatzDefs& def : definitions)
        for (Line& l : m_raw)
            if (!l.skipped && l.kind != Kind::Blank && l.text.startsWith(def.Wert)) {
                l.kind = Kind::Noise;
                l.skipped = true;
                l.why = u"Zusatzfeld aus den Einstellungen"_s;
                l.skipWhy = l.why;
                break;
            }
}

void Analysis::classifyAll()
{
    std::optional<std::pair<Label, QString>> pending; // a label on a line of its own
    for (Line& raw : m_raw) {
        if (raw.kind == Kind::Blank || raw.kind == Kind::Heading || raw.skipped) {
            m_lines.append(raw);
            if (raw.kind == Kind::Heading)
                pending.reset();
            continue;
        }
        if (pending && !ParseLabel(raw.text).has_value()) {
            QList<Line> extra;
            Line l = raw;
            applyLabel(l, pending->first, l.text, &extra, 0);
            l.why = u"Wert zum Etikett \"%1\" der Zeile davor; "_s.arg(pending->second) + l.why;
            m_lines.append(l);
            for (Line& e : extra)
                m_lines.append(e);
            pending.reset();
            continue;
        }
        pending.reset();
        QList<Line> out;
        classifyInto(raw, out, 0);
        for (Line& l : out) {
            if (l.kind == Kind::LabelOnly && l.labelled)
                pending = std::pair{Label{l.labelKind, l.value}, l.text};
            m_lines.append(l);
        }
    }
}

// One line, maybe several pieces: dividers, "street, postcode city", two labels.
void Analysis::classifyInto(Line line, QList<Line>& out, int depth)
{
    if (line.text.size() > MaxLineLength) {
        line.kind = Kind::Prose;
        line.why = u"zu lang für eine Adresszeile"_s;
        out.append(line);
        return;
    }
    const auto piecesOf = [&line](const QStringList& parts) {
        QList<Line> pieces;
        for (const QString& p : parts) {
            const QString t = p.trimmed();
            if (t.isEmpty())
                continue;
            Line piece = line;
            piece.text = t;
            pieces.append(piece);
        }
        return pieces;
    };
    bool hasDivider = false;
    for (QChar c : line.text)
        hasDivider = hasDivider || isDivider(c);
    if (hasDivider && depth < 2) {
        QStringList parts;
        qsizetype from = 0;
        for (qsizetype i = 0; i <= line.text.size(); ++i)
            if (i == line.text.size() || isDivider(line.text[i])) {
                parts.append(line.text.mid(from, i - from));
                from = i + 1;
            }
        QList<Line> pieces = piecesOf(parts);
        QList<Line> result;
        bool placed = false;
        for (Line& p : pieces) {
            QList<Line> sub;
            classifyInto(p, sub, depth + 1);
            for (Line& s : sub) {
                placed = placed || (s.kind != Kind::Unknown && s.kind != Kind::Prose);
                result.append(s);
            }
        }
        if (placed) {
            out.append(result);
            return;
        }
        line.text.replace(u'\t', u' ');
    }
    // Two labelled numbers on one line: "Tel. 0711 123 Fax 0711 124".
    if (depth < 3) {
        const QList<QStringView> w = Words(line.text);
        for (qsizetype i = 2; i < w.size(); ++i) {
            if (!w[i - 1].back().isDigit())
                continue;
            const QStringView rest = QStringView(line.text).mid(w[i].data() - line.text.data());
            const auto hit = ParseLabel(rest);
            if (!hit || !hit->known ||
                (hit->label.kind != LabelKind::Phone && hit->label.kind != LabelKind::Email &&
                 hit->label.kind != LabelKind::Web))
                continue;
            QList<Line> pieces =
                piecesOf({line.text.left(w[i].data() - line.text.data()), rest.toString()});
            for (Line& p : pieces)
                classifyInto(p, out, depth + 1);
            return;
        }
    }
    if (const auto hit = ParseLabel(line.text); hit && hit->known &&
                                                hit->label.kind == LabelKind::Street &&
                                                !hit->rest.isEmpty() && !IsThreadCut(line.text)) {
        QList<Line> extra;
        Line l = line;
        applyLabel(l, hit->label, hit->rest, &extra, depth);
        out.append(l);
        out.append(extra);
        return;
    }
    Line whole = line;
    classifyOne(whole);
    // "Street 1, 12345 City" and "Postfach 12, 12345 City"
    if ((whole.kind == Kind::Unknown || whole.kind == Kind::Noise) && line.text.contains(u", "_s) &&
        depth < 3) {
        QList<Line> pieces = piecesOf(line.text.split(u", "_s));
        bool postal = false;
        for (Line& p : pieces) {
            classifyOne(p);
            postal = postal || p.kind == Kind::PostcodeCity;
        }
        const Kind head = pieces.isEmpty() ? Kind::Unknown : pieces.front().kind;
        if (postal && (head == Kind::Street || head == Kind::PoBox || head == Kind::Address2 ||
                       head == Kind::PostcodeCity)) {
            out.append(pieces);
            return;
        }
    }
    out.append(whole);
}

void Analysis::applyLabel(Line& l, const Label& label, const QString& value, QList<Line>* extra,
                          int depth)
{
    l.labelled = true;
    l.labelKind = label.kind;
    l.value = value;
    switch (label.kind) {
    case LabelKind::Phone:
        if (const auto p = ParsePhone(value, false)) {
            l.kind = Kind::Phone;
            l.value = p->value;
            l.phone = p->role;
            if (l.phone == PhoneRole::Plain)
                l.phone = label.qualifier == u"fax"_s      ? PhoneRole::Fax
                          : label.qualifier == u"mobile"_s ? PhoneRole::Mobile
                          : label.qualifier == u"direct"_s ? PhoneRole::Direct
                          : label.qualifier == u"main"_s   ? PhoneRole::Main
                          : label.qualifier == u"second"_s ? PhoneRole::Second
                                                           : PhoneRole::Plain;
            l.why += u"Rufnummer hinter dem Etikett"_s;
        } else if (const QString mail = FindEMail(value); !mail.isEmpty()) {
            l.kind = Kind::Email;
            l.value = mail;
        } else {
            l.kind = Kind::Noise;
            l.why += u"Etikett ohne Rufnummer"_s;
        }
        return;
    case LabelKind::Email:
    case LabelKind::Contact:
        if (const QString mail = FindEMail(value); !mail.isEmpty()) {
            l.kind = Kind::Email;
            l.value = mail;
            l.why += u"E-Mail-Adresse hinter dem Etikett"_s;
            return;
        }
        if (label.kind == LabelKind::Email) {
            l.kind = Kind::Noise;
            return;
        }
        if (const auto p = ParsePhone(value, true)) {
            l.kind = Kind::Phone;
            l.value = p->value;
            return;
        }
        [[fallthrough]];
    case LabelKind::Name:
    case LabelKind::Role: {
        // A list of people: the first one counts.
        QString first = value;
        for (const QString& sep : {u", "_s, u" und "_s, u" and "_s, u" & "_s, u"; "_s}) {
            // "Meier, Hans" is one person, written surname first.
            if (sep == u", "_s && label.kind != LabelKind::Role) {
                const QStringList parts = first.split(sep);
                if (parts.size() == 2 && Words(parts[0]).size() == 1 &&
                    Words(parts[1]).size() == 1) {
                    first = parts[1] + u' ' + parts[0];
                    continue;
                }
            }
            const qsizetype at = first.indexOf(sep);
            if (at > 0)
                first = first.left(at);
        }
        if (auto p = ParsePerson(first, false)) {
            l.kind = Kind::Person;
            l.person = *p;
            l.personSource =
                label.kind == LabelKind::Role ? PersonSource::Role : PersonSource::Form;
            l.why += label.kind == LabelKind::Role ? u"Person mit Rolle (Impressum)"_s
                                                   : u"Person hinter dem Etikett"_s;
        } else if (label.kind == LabelKind::Name && Words(first).size() == 1) {
            l.kind = Kind::NamePart;
            l.labelKind = LabelKind::LastName;
            l.value = first;
            l.why += u"Nachname hinter \"Name\""_s;
        } else {
            l.kind = Kind::Noise;
            l.why += u"kein Name hinter dem Etikett"_s;
        }
        return;
    }
    case LabelKind::FirstName:
    case LabelKind::LastName:
        l.kind = Kind::NamePart;
        l.why += u"Namensteil hinter dem Etikett"_s;
        return;
    case LabelKind::Web: {
        const QString host = FindWebHost(value, true);
        l.kind = host.isEmpty() ? Kind::Noise : Kind::Website;
        l.value = host;
        return;
    }
    case LabelKind::Company:
        l.kind = Kind::Company;
        l.strength = 4;
        l.why += u"Firma hinter dem Etikett"_s;
        return;
    case LabelKind::Department:
        l.kind = Kind::Department;
        l.why += u"Abteilung hinter dem Etikett"_s;
        return;
    case LabelKind::Salutation: {
        const QString s = SalutationOnly(value);
        l.kind = Kind::Salutation;
        l.value = s.isEmpty() ? value : s;
        return;
    }
    case LabelKind::Title:
        l.kind = Kind::Title;
        return;
    case LabelKind::Street: {
        if (!extra || depth > 2) {
            l.kind = Kind::Street;
            l.strength = 3;
            return;
        }
        Line inner = l;
        inner.text = value;
        inner.labelled = false;
        QList<Line> parts;
        classifyInto(inner, parts, depth + 1);
        if (parts.size() == 1 && (parts[0].kind == Kind::Unknown || parts[0].kind == Kind::Noise)) {
            l.kind = Kind::Street;
            l.strength = 3;
            l.why += u"Straße hinter dem Etikett"_s;
            return;
        }
        for (Line& p : parts) {
            if (p.kind == Kind::Street)
                p.strength = 3;
            p.why = u"hinter dem Etikett \"Adresse\": "_s + p.why;
        }
        l = parts.takeFirst();
        extra->append(parts);
        return;
    }
    case LabelKind::Postcode:
        if (const auto p = ParsePostcodeOnly(value)) {
            l.kind = Kind::Postcode;
            l.place = *p;
        } else if (const auto pc = ParsePostcodeCity(value)) {
            l.kind = Kind::PostcodeCity;
            l.place = *pc;
        } else {
            l.kind = Kind::Postcode;
            l.place.plz = value;
        }
        return;
    case LabelKind::City:
        l.kind = Kind::City;
        return;
    case LabelKind::PostcodeCity:
        if (const auto pc = ParsePostcodeCity(value)) {
            l.kind = Kind::PostcodeCity;
            l.place = *pc;
        } else {
            const QList<QStringView> w = Words(value);
            l.kind = Kind::PostcodeCity;
            l.place.plz = w.isEmpty() ? QString() : w[0].toString();
            l.place.ort = w.size() > 1
                              ? QStringView(value).mid(w[1].data() - value.data()).toString()
                              : QString();
        }
        l.why += u"PLZ und Ort hinter dem Etikett"_s;
        return;
    case LabelKind::Country: {
        const QString c = CountryName(value);
        l.kind = Kind::Country;
        l.value = c.isEmpty() ? value : c;
        return;
    }
    case LabelKind::Job:
        l.kind = Kind::Job;
        return;
    case LabelKind::SkipBlock:
        l.kind = Kind::LabelOnly;
        l.why += u"ab hier ein anderer Block (Liefer- oder alte Anschrift)"_s;
        return;
    case LabelKind::SkipLine:
        l.kind = Kind::Noise;
        l.why += u"Etikett ohne Kontaktwert"_s;
        return;
    }
}

bool Analysis::classifyOne(Line& l)
{
    const QString& t = l.text;
    QString why;
    const auto is = [&l](Kind k, const QString& reason) {
        l.kind = k;
        l.why = reason;
        return true;
    };
    if (IsThreadCut(t))
        return is(Kind::Cut, u"Beginn einer älteren Nachricht"_s);
    if (IsClosing(t))
        return is(Kind::Closing, u"Grußformel"_s);
    if (IsOpening(t))
        return is(Kind::Opening, u"Anrede eines Briefs oder einer Mail"_s);
    if (const auto hit = ParseLabel(t)) {
        if (!hit->known)
            return is(Kind::Noise, u"Etikett \"%1\" gehört zu keinem Feld"_s.arg(hit->name));
        if (hit->rest.isEmpty()) {
            l.kind = Kind::LabelOnly;
            l.labelled = true;
            l.labelKind = hit->label.kind;
            l.value = hit->label.qualifier;
            l.why = u"Etikett allein, der Wert folgt"_s;
            if (hit->label.kind == LabelKind::SkipBlock)
                l.why = u"ab hier ein anderer Block (Liefer- oder alte Anschrift)"_s;
            return true;
        }
        QList<Line> extra;
        applyLabel(l, hit->label, hit->rest, nullptr, 0);
        return true;
    }
    if (t.endsWith(u':'))
        return is(Kind::Noise, u"Überschrift mit Doppelpunkt"_s);
    if (const QString mail = FindEMail(t); !mail.isEmpty() && Words(t).size() <= 3) {
        l.value = mail;
        return is(Kind::Email, u"E-Mail-Adresse"_s);
    }
    if (const QString host = FindWebHost(t, Words(t).size() == 1);
        !host.isEmpty() && Words(t).size() <= 3) {
        l.value = host;
        return is(Kind::Website, u"Webadresse"_s);
    }
    if (IsPoBox(t)) {
        l.value = t;
        return is(Kind::PoBox, u"Postfach"_s);
    }
    if (const auto p = ParsePostcodeCity(t)) {
        l.place = *p;
        return is(Kind::PostcodeCity, u"Postleitzahl (%1) und Ort"_s.arg(p->system));
    }
    if (const auto p = ParsePostcodeOnly(t)) {
        l.place = *p;
        return is(Kind::Postcode, u"Postleitzahl allein"_s);
    }
    if (const auto p = ParsePhone(t, true)) {
        l.value = p->value;
        l.phone = p->role;
        return is(Kind::Phone, u"Rufnummer ohne Etikett"_s);
    }
    if (const QString c = CountryName(t); !c.isEmpty()) {
        l.value = c;
        return is(Kind::Country, u"Ländername"_s);
    }
    if (t[0].isLetter() && t[0].isLower() && !t.startsWith(u"c/o"_s))
        return is(Kind::Prose, u"beginnt klein: Satz"_s);
    const int words = int(Words(t).size());
    const bool firmFirst =
        knowledge().companyWords.has(Bare(Words(t).front())) && t[0].isUpper() && !t.endsWith(u'.');
    if (words > 9 && !(firmFirst && words <= 14))
        return is(Kind::Prose, u"mehr als neun Wörter: Satz"_s);
    if (HasLegalForm(t)) {
        l.strength = 3;
        return is(Kind::Company, u"Rechtsform"_s);
    }
    const auto person = ParsePerson(t, false);
    if (person && person->marked) {
        const auto p = person;
        l.person = *p;
        l.nameShaped = true;
        l.personSource = PersonSource::Marked;
        return is(Kind::Person, u"Name mit Anrede oder Titel"_s);
    }
    if (const QString s = SalutationOnly(t); !s.isEmpty()) {
        l.value = s;
        l.person.addressee = knowledge().salutations.value(Bare(t)).addressee;
        return is(Kind::Salutation, u"Anrede allein"_s);
    }
    if (const QString d = DegreeOnly(t); !d.isEmpty()) {
        l.value = d;
        return is(Kind::Title, u"Titel allein"_s);
    }
    if (IsNoise(t, &why))
        return is(Kind::Noise, why);
    if ((t.endsWith(u'.') || t.endsWith(u'?')) && words >= 4)
        return is(Kind::Prose, u"Satzende"_s);
    QString street;
    const int streetStrength = StreetStrength(t, &street);
    if (streetStrength == 2) {
        l.value = street;
        l.strength = 2;
        return is(Kind::Street, u"Straßenwort und Hausnummer"_s);
    }
    if (IsAddressExtra(t))
        return is(Kind::Address2, u"Adresszusatz (Gebäude, c/o)"_s);
    if (streetStrength == 1) {
        l.value = street;
        l.strength = 1;
        return is(Kind::Street, u"Name und Hausnummer"_s);
    }
    if (IsDepartmentLine(t))
        return is(Kind::Department, u"Wort einer Organisationseinheit"_s);
    // A person whose name also reads like a firm ("Sabine Neuhaus") stays a person.
    if (IsJobLine(t) && !(person && person->knownGiven && !IsJobLine(person->nachname)))
        return is(Kind::Job, u"Berufs- oder Funktionsbezeichnung"_s);
    if (IsCompanyWordLine(t) && !(person && person->knownGiven)) {
        l.strength = 2;
        return is(Kind::Company, u"Wort einer Firma oder Einrichtung"_s);
    }
    if (person) {
        l.person = *person;
        l.nameShaped = true;
        return is(Kind::Unknown, u"wie ein Name gebaut"_s);
    }
    if (words <= 6 && CountDigitsIn(t) == 0 &&
        (t.contains(u" & "_s) || t.contains(u" + "_s) || t.contains(u" und "_s))) {
        l.strength = 1;
        return is(Kind::Company, u"mit \"&\" verbundene Namen"_s);
    }
    return is(Kind::Unknown, u"nicht zuzuordnen"_s);
}

int Analysis::nextInBlock(int i) const
{
    for (int j = i + 1; j < m_to; ++j) {
        if (m_lines[j].kind == Kind::Blank)
            return -1;
        if (!m_lines[j].skipped)
            return j;
    }
    return -1;
}

int Analysis::prevInBlock(int i) const
{
    for (int j = i - 1; j >= m_from; --j) {
        if (m_lines[j].kind == Kind::Blank)
            return -1;
        if (!m_lines[j].skipped)
            return j;
    }
    return -1;
}

bool Analysis::hasContactData(int from, int to) const
{
    for (int i = from; i < to; ++i) {
        const Kind k = m_lines[i].kind;
        if (!m_lines[i].skipped &&
            (k == Kind::Email || k == Kind::Phone || k == Kind::PostcodeCity ||
             (k == Kind::Street && m_lines[i].strength >= 2)))
            return true;
    }
    return false;
}

void Analysis::context()
{
    const int n = int(m_lines.size());
    // Delivery and former addresses: their block is not the contact's.
    for (int i = 0; i < n; ++i) {
        Line& l = m_lines[i];
        if (!(l.labelled && l.labelKind == LabelKind::SkipBlock))
            continue;
        l.skipped = true;
        for (int j = i + 1; j < n && m_lines[j].kind != Kind::Blank; ++j) {
            m_lines[j].skipped = true;
            m_lines[j].skipWhy = u"gehört zu \"%1\""_s.arg(l.text);
        }
    }

    // Mails: the topmost message that carries contact data. A second "Details der"
    // heading starts another contact.
    QList<int> starts{0};
    bool heading = false;
    for (int i = 0; i < n; ++i) {
        if (m_lines[i].kind == Kind::Cut ||
            (m_lines[i].kind == Kind::Heading && std::exchange(heading, true)))
            starts.append(i);
    }
    starts.append(n);
    m_from = 0;
    m_to = starts.size() > 1 ? starts[1] : n;
    for (qsizetype r = 0; r + 1 < starts.size(); ++r)
        if (hasContactData(starts[r], starts[r + 1])) {
            m_from = starts[r];
            m_to = starts[r + 1];
            break;
        }
    for (int i = 0; i < n; ++i)
        if (i < m_from || i >= m_to) {
            m_lines[i].skipped = true;
            if (m_lines[i].skipWhy.isEmpty())
                m_lines[i].skipWhy = u"andere Nachricht oder anderer Kontakt"_s;
        }

    // A letter's recipient block ("Herrn", "z. Hd.", "Firma" on a line of its own) is not
    // the sender, as long as the sender's address is in the text too.
    {
        QList<int> recipientBlocks;
        int blockStart = m_from;
        for (int i = m_from; i <= m_to; ++i) {
            if (i < m_to && m_lines[i].kind != Kind::Blank)
                continue;
            bool recipient = false;
            for (int j = blockStart; j < i; ++j) {
                const Line& l = m_lines[j];
                const QString lower = l.text.toLower();
                if (l.person.addressee || lower.startsWith(u"z. hd"_s) ||
                    lower.startsWith(u"z.hd"_s) || lower.startsWith(u"zu händen"_s) ||
                    lower.startsWith(u"attn"_s) ||
                    (j == blockStart && (lower == u"firma"_s || lower == u"an"_s)))
                    recipient = true;
            }
            if (recipient)
                recipientBlocks.append(blockStart);
            blockStart = i + 1;
        }
        const auto isAddress = [this](int i) {
            return !m_lines[i].skipped &&
                   (m_lines[i].kind == Kind::PostcodeCity ||
                    (m_lines[i].kind == Kind::Street && m_lines[i].strength >= 2));
        };
        int addresses = 0;
        for (int i = m_from; i < m_to; ++i)
            addresses += isAddress(i);
        for (int start : recipientBlocks) {
            int end = start;
            int own = 0;
            for (; end < m_to && m_lines[end].kind != Kind::Blank; ++end)
                own += isAddress(end);
            if (addresses - own <= 0)
                continue; // no sender's address: the recipient is the contact
            addresses -= own;
            for (int i = start; i < end; ++i) {
                m_lines[i].skipped = true;
                m_lines[i].skipWhy = u"Empfänger eines Briefs"_s;
            }
        }
    }

    for (int i = m_from; i < m_to; ++i) {
        Line& l = m_lines[i];
        if (l.skipped)
            continue;
        const int next = nextInBlock(i);
        // "Herr" / "Dipl.-Kffr." on their own lines, the name behind them.
        if (l.kind == Kind::Salutation || l.kind == Kind::Title) {
            int j = next;
            QString anrede = l.kind == Kind::Salutation ? l.value : QString();
            QString titel = l.kind == Kind::Title ? l.value : QString();
            if (j >= 0 && m_lines[j].kind == Kind::Title && titel.isEmpty()) {
                titel = m_lines[j].value;
                m_lines[j].why += u"; gehört zur Person"_s;
                j = nextInBlock(j);
            }
            if (j < 0)
                continue;
            Line& name = m_lines[j];
            if (name.kind == Kind::Person || name.nameShaped) {
                if (name.person.anrede.isEmpty())
                    name.person.anrede = anrede;
                if (name.person.titel.isEmpty())
                    name.person.titel = titel;
                name.kind = Kind::Person;
                if (name.personSource == PersonSource::None)
                    name.personSource = PersonSource::Marked;
                name.why = u"Name unter Anrede oder Titel"_s;
                continue;
            }
            const int k = nextInBlock(j);
            const auto single = [](const Line& x) {
                return x.kind == Kind::Unknown && Words(x.text).size() == 1 &&
                       CountDigitsIn(x.text) == 0;
            };
            if (k >= 0 && single(name) && single(m_lines[k])) {
                if (auto p = ParsePerson(name.text + u' ' + m_lines[k].text, false)) {
                    p->anrede = anrede;
                    p->titel = titel;
                    name.kind = Kind::Person;
                    name.person = *p;
                    name.personSource = PersonSource::Marked;
                    name.why = u"Vorname; der Nachname folgt in der nächsten Zeile"_s;
                    m_lines[k].kind = Kind::NamePart;
                    m_lines[k].labelKind = LabelKind::LastName;
                    m_lines[k].value = m_lines[k].text;
                    m_lines[k].why = u"Nachname zur Zeile davor"_s;
                    m_lines[k].skipped = true;
                    m_lines[k].skipWhy = u"im Namen der Zeile davor enthalten"_s;
                }
            }
        }
        // A postcode alone, the city on the next line.
        if (l.kind == Kind::Postcode && next >= 0) {
            Line& city = m_lines[next];
            if (city.kind == Kind::City ||
                (city.kind == Kind::Unknown && Words(city.text).size() <= 3 &&
                 CountDigitsIn(city.text) == 0)) {
                l.kind = Kind::PostcodeCity;
                l.place.ort = city.kind == Kind::City ? city.value : city.text;
                l.why += u"; Ort aus der nächsten Zeile"_s;
                city.kind = Kind::City;
                city.skipped = true;
                city.skipWhy = u"Ort zur Postleitzahl davor"_s;
            }
        }
        // UK: town on its own line, county in front of the postcode.
        if (l.kind == Kind::PostcodeCity && l.place.system == u"uk"_s) {
            const int prev = prevInBlock(i);
            if (prev >= 0 && m_lines[prev].kind == Kind::Unknown &&
                CountDigitsIn(m_lines[prev].text) == 0 && Words(m_lines[prev].text).size() <= 3) {
                const int before = prevInBlock(prev);
                if (before >= 0 && m_lines[before].kind == Kind::Street) {
                    l.place.ort = m_lines[prev].text;
                    l.why += u"; Ort aus der Zeile davor, vor der Postleitzahl die Grafschaft"_s;
                    m_lines[prev].kind = Kind::City;
                    m_lines[prev].skipped = true;
                    m_lines[prev].skipWhy = u"Ort zur Postleitzahl danach"_s;
                }
            }
        }
    }

    // A plain "Name 12" is a street when its postcode follows.
    for (int i = m_from; i < m_to; ++i) {
        Line& l = m_lines[i];
        if (l.skipped || l.kind != Kind::Street || l.strength != 1)
            continue;
        const int next = nextInBlock(i);
        const bool sameLineNext = i + 1 < m_to && m_lines[i + 1].source == l.source &&
                                  m_lines[i + 1].kind == Kind::PostcodeCity;
        if (sameLineNext || (next >= 0 && (m_lines[next].kind == Kind::PostcodeCity ||
                                           m_lines[next].kind == Kind::Postcode))) {
            l.strength = 2;
            l.why += u"; die Postleitzahl folgt"_s;
        }
    }

    // People: behind a closing formula, or a name with more evidence.
    QStringList mailLocals;
    for (int i = m_from; i < m_to; ++i)
        if (!m_lines[i].skipped && m_lines[i].kind == Kind::Email)
            if (mailLocals.size() < 8)
                mailLocals.append(m_lines[i].value.section(u'@', 0, 0).toLower());
    const auto fold = [](const QString& s) {
        QString out;
        for (QChar c : s.toLower()) {
            switch (c.unicode()) {
            case u'ä':
                out += u"ae"_s;
                break;
            case u'ö':
                out += u"oe"_s;
                break;
            case u'ü':
                out += u"ue"_s;
                break;
            case u'ß':
                out += u"ss"_s;
                break;
            default: {
                const QString d = QString(c).normalized(QString::NormalizationForm_D);
                if (!d.isEmpty() && d[0].isLetter())
                    out += d[0];
            }
            }
        }
        return out;
    };
    // The surname in a mail address ("j.tannhaeuser@") speaks for a person; a first word
    // alone does not, firms are named after their owners too.
    const auto inMail = [&](const PersonName& p) {
        const QString last = fold(p.nachname.section(u' ', -1));
        for (const QString& local : mailLocals)
            if (last.size() >= 3 && local.contains(last))
                return true;
        return false;
    };
    for (int i = m_from; i < m_to; ++i) {
        Line& l = m_lines[i];
        if (l.skipped || l.kind != Kind::Closing)
            continue;
        int seen = 0;
        for (int j = i + 1; j < m_to && seen < 4; ++j) {
            Line& c = m_lines[j];
            if (c.kind == Kind::Blank || c.skipped || c.kind == Kind::Closing)
                continue;
            ++seen;
            if ((c.kind == Kind::Unknown || c.kind == Kind::Noise) && Words(c.text).size() == 1)
                continue; // a first name alone ("Florian"), then the full name
            if (c.kind == Kind::Person || c.nameShaped) {
                if (c.person.addressee)
                    break;
                c.kind = Kind::Person;
                c.personSource = PersonSource::Closing;
                c.why = u"Name unter der Grußformel"_s;
            }
            break;
        }
    }
    for (int i = m_from; i < m_to; ++i) {
        Line& l = m_lines[i];
        if (l.skipped || l.kind != Kind::Unknown || !l.nameShaped)
            continue;
        int evidence = 0;
        QStringList reasons;
        if (l.person.knownGiven) {
            evidence += 2;
            reasons.append(u"bekannter Vorname"_s);
        }
        if (inMail(l.person)) {
            evidence += 2;
            reasons.append(u"Name in der E-Mail-Adresse"_s);
        }
        const int next = nextInBlock(i);
        if (next >= 0 && m_lines[next].kind == Kind::Job) {
            evidence += 1;
            reasons.append(u"Funktion darunter"_s);
        }
        if (evidence >= 2) {
            l.kind = Kind::Person;
            l.personSource = PersonSource::Evidence;
            l.why = u"wie ein Name gebaut: "_s + reasons.join(u", "_s);
        }
    }

    // A firm's name over two lines: "RAMMELSBERG" / "BRÜCKENBAU GMBH",
    // "Ingenieurbüro für Tragwerksplanung" / "Beckenbauer-Sailer".
    for (int i = m_from; i < m_to; ++i) {
        Line& l = m_lines[i];
        if (l.skipped || l.kind != Kind::Company || l.labelled)
            continue;
        const int prev = prevInBlock(i);
        if (l.strength == 3 && prev >= 0) {
            Line& p = m_lines[prev];
            if (p.kind == Kind::Unknown && !p.nameShaped && CountDigitsIn(p.text) == 0 &&
                (Words(p.text).size() == 1 || IsAllCaps(p.text)) && Words(p.text).size() <= 5) {
                l.text = p.text + u' ' + l.text;
                l.why += u"; mit der Zeile davor ein Name"_s;
                p.skipped = true;
                p.skipWhy = u"Teil des Firmennamens darunter"_s;
                continue;
            }
        }
        const int next = nextInBlock(i);
        if (l.strength == 2 && next >= 0) {
            Line& x = m_lines[next];
            if (x.kind == Kind::Unknown && Words(x.text).size() == 1 &&
                CountDigitsIn(x.text) == 0 && x.text[0].isUpper() && !IsKnownGivenName(x.text)) {
                l.text += u' ' + x.text;
                l.why += u"; mit der Zeile darunter ein Name"_s;
                x.skipped = true;
                x.skipWhy = u"Teil des Firmennamens darüber"_s;
            }
        }
    }
}

void Analysis::take(int line, const QString& field)
{
    if (line >= 0)
        m_lines[line].taken.append(field);
}

void Analysis::assemble()
{
    const auto usable = [this](int i) { return !m_lines[i].skipped; };
    const auto add = [this](FieldId f, const QString& v) {
        if (!v.trimmed().isEmpty())
            m_values.append({f, v});
    };
    const auto first = [&](auto pred) {
        for (int i = m_from; i < m_to; ++i)
            if (usable(i) && pred(m_lines[i]))
                return i;
        return -1;
    };
    const auto last = [&](auto pred) {
        for (int i = m_to - 1; i >= m_from; --i)
            if (usable(i) && pred(m_lines[i]))
                return i;
        return -1;
    };

    // The address: the first street, its postcode line, a PO box or building beside it.
    int street = first([](const Line& l) { return l.kind == Kind::Street && l.strength >= 2; });
    int place = -1;
    if (street >= 0) {
        for (int i = street; i < m_to && i <= street + 4; ++i)
            if (usable(i) && m_lines[i].kind == Kind::PostcodeCity) {
                place = i;
                break;
            }
    }
    int poBox = first([](const Line& l) { return l.kind == Kind::PoBox; });
    if (place < 0 && street < 0 && poBox >= 0)
        for (int i = poBox; i < m_to && i <= poBox + 3; ++i)
            if (usable(i) && m_lines[i].kind == Kind::PostcodeCity) {
                place = i;
                break;
            }
    if (place < 0)
        place = first([](const Line& l) { return l.kind == Kind::PostcodeCity; });
    int extraLine = -1;
    if (street >= 0) {
        for (int d : {-1, 1, -2, 2}) {
            const int j = street + d;
            if (j >= m_from && j < m_to && usable(j) && m_lines[j].kind == Kind::Address2 &&
                m_lines[j].block == m_lines[street].block) {
                extraLine = j;
                break;
            }
        }
    }

    // The person: a form's name, the signer under the closing, a marked name, an imprint's
    // first managing director.
    int person = -1;
    for (PersonSource s : {PersonSource::Form, PersonSource::Closing, PersonSource::Marked,
                           PersonSource::Evidence, PersonSource::Role}) {
        person =
            first([s](const Line& l) { return l.kind == Kind::Person && l.personSource == s; });
        if (person >= 0)
            break;
    }
    PersonName name = person >= 0 ? m_lines[person].person : PersonName();
    const int firstName = last([](const Line& l) {
        return l.kind == Kind::NamePart && l.labelKind == LabelKind::FirstName;
    });
    const int lastName = last([](const Line& l) {
        return l.kind == Kind::NamePart && l.labelKind == LabelKind::LastName && l.labelled;
    });
    if (firstName >= 0 && (person < 0 || m_lines[person].personSource != PersonSource::Form)) {
        name.vorname = m_lines[firstName].value;
        take(firstName, u"Vorname"_s);
    }
    if (lastName >= 0 && (person < 0 || m_lines[person].personSource != PersonSource::Form)) {
        name.nachname = m_lines[lastName].value;
        take(lastName, u"Nachname"_s);
    }
    if (const int s = last([](const Line& l) { return l.kind == Kind::Salutation && l.labelled; });
        s >= 0) {
        name.anrede = m_lines[s].value;
        take(s, u"Anrede"_s);
    }
    if (const int t = last([](const Line& l) { return l.kind == Kind::Title && l.labelled; });
        t >= 0) {
        name.titel = m_lines[t].value;
        take(t, u"Titel"_s);
    }

    // The firm: a heading, a label, a legal form, a firm word, else the line above the
    // address.
    int company =
        first([](const Line& l) { return l.kind == Kind::Heading && !l.value.isEmpty(); });
    QString companyText = company >= 0 ? m_lines[company].value : QString();
    if (company < 0) {
        for (int s : {4, 3, 2, 1}) {
            company =
                first([s](const Line& l) { return l.kind == Kind::Company && l.strength == s; });
            if (company >= 0)
                break;
        }
        if (company >= 0)
            companyText =
                m_lines[company].labelled ? m_lines[company].value : m_lines[company].text;
    }
    int department = last([](const Line& l) { return l.kind == Kind::Department && l.labelled; });
    if (department < 0)
        department = first([](const Line& l) { return l.kind == Kind::Department; });
    if (company < 0) {
        const int anchor = street >= 0 ? street : place;
        for (int i = anchor - 1; anchor >= 0 && i >= m_from && i >= anchor - 4; --i) {
            if (!usable(i))
                continue;
            const Line& l = m_lines[i];
            if (l.kind == Kind::Address2 || l.kind == Kind::Noise || l.kind == Kind::Job ||
                l.kind == Kind::Blank || l.kind == Kind::Department)
                continue;
            const bool loose =
                l.kind == Kind::Unknown ||
                (l.kind == Kind::Person && l.personSource == PersonSource::Evidence && i != person);
            if (loose && CountDigitsIn(l.text) == 0 && Words(l.text).size() <= 6) {
                company = i;
                companyText = l.text;
                m_lines[i].why += u"; über der Anschrift: Firma"_s;
            }
            break;
        }
    }
    if (company < 0 && department >= 0) {
        company = department;
        companyText =
            m_lines[department].labelled ? m_lines[department].value : m_lines[department].text;
        department = -1;
    }

    // The country: named with the address, or a country line, else from the postcode and
    // what the numbers and domains say.
    QString land;
    int countryLine = first([](const Line& l) { return l.kind == Kind::Country; });
    if (place >= 0 && !m_lines[place].place.land.isEmpty())
        land = m_lines[place].place.land;
    else if (countryLine >= 0)
        land = m_lines[countryLine].value;
    else if (place >= 0 || street >= 0 || poBox >= 0) {
        const QString system = place >= 0 ? m_lines[place].place.system : QString();
        QString hinted;
        for (int i = m_from; i < m_to && hinted.isEmpty(); ++i)
            if (usable(i) && m_lines[i].kind == Kind::Phone)
                hinted = CountryOfNumber(m_lines[i].value);
        if (hinted.isEmpty()) {
            for (int i = m_from; i < m_to && hinted.isEmpty(); ++i) {
                if (!usable(i) ||
                    (m_lines[i].kind != Kind::Email && m_lines[i].kind != Kind::Website))
                    continue;
                const QString host = m_lines[i].value.section(u'@', -1).toLower();
                hinted = knowledge().topLevelDomains.value(host.mid(host.lastIndexOf(u'.')));
            }
        }
        static const QSet<QString> fourDigit{u"Österreich"_s, u"Schweiz"_s,   u"Liechtenstein"_s,
                                             u"Belgien"_s,    u"Luxemburg"_s, u"Dänemark"_s};
        static const QSet<QString> fiveDigit{u"Deutschland"_s, u"Frankreich"_s, u"Italien"_s};
        if (system == u"4"_s)
            land = fourDigit.contains(hinted) ? hinted : m_state.StandardLand4PLZ;
        else if (system == u"5"_s)
            land = fiveDigit.contains(hinted) ? hinted : m_state.StandardLand5PLZ;
        else if (!system.isEmpty())
            land = m_lines[place].place.land;
    }

    // Phones: direct line first, then plain, secretariat or hotline, switchboard.
    struct Number {
        int line;
        PhoneRole role;
    };
    QList<Number> voice;
    int fax = -1;
    int mobile = -1;
    QList<int> mobileGuesses;
    for (int i = m_from; i < m_to; ++i) {
        if (!usable(i) || m_lines[i].kind != Kind::Phone)
            continue;
        const Line& l = m_lines[i];
        if (l.phone == PhoneRole::Fax) {
            if (fax < 0)
                fax = i;
        } else if (l.phone == PhoneRole::Mobile) {
            if (mobile < 0)
                mobile = i;
        } else if (l.phone == PhoneRole::Plain &&
                   IsMobileNumber(l.value, land.isEmpty() ? m_state.StandardLand5PLZ : land)) {
            mobileGuesses.append(i);
        } else {
            bool dup = voice.size() >= 8; // three are filed; more only cost time
            for (const Number& v : voice)
                dup = dup || m_lines[v.line].value == l.value;
            if (!dup)
                voice.append({i, l.phone});
        }
    }
    if (mobile < 0 && !mobileGuesses.isEmpty()) {
        mobile = mobileGuesses.takeFirst();
        m_lines[mobile].why += u"; Mobilfunkvorwahl"_s;
    }
    for (int g : mobileGuesses)
        if (voice.size() < 8)
            voice.append({g, PhoneRole::Plain});
    int plain = 0;
    for (const Number& v : voice)
        plain += v.role == PhoneRole::Plain;
    if (plain >= 2)
        for (Number& v : voice)
            if (v.role == PhoneRole::Plain && m_lines[v.line].value.endsWith(u"-0"_s))
                v.role = PhoneRole::Main;
    const auto rank = [](PhoneRole r) {
        return r == PhoneRole::Direct   ? 0
               : r == PhoneRole::Plain  ? 1
               : r == PhoneRole::Second ? 2
                                        : 3;
    };
    std::stable_sort(voice.begin(), voice.end(), [&rank](const Number& a, const Number& b) {
        return rank(a.role) < rank(b.role);
    });

    const int mail = first([](const Line& l) { return l.kind == Kind::Email; });
    const int web = first([](const Line& l) { return l.kind == Kind::Website; });

    // In field order; the rows are filled in this order.
    if (company >= 0) {
        add(FieldId::Firma, companyText);
        take(company, u"Firma"_s);
    }
    if (department >= 0) {
        add(FieldId::Abteilung,
            m_lines[department].labelled ? m_lines[department].value : m_lines[department].text);
        take(department, u"Abteilung"_s);
    }
    add(FieldId::Anrede, name.anrede);
    add(FieldId::Titel, name.titel);
    add(FieldId::Vorname, name.vorname);
    add(FieldId::Nachname, name.nachname);
    add(FieldId::Kontakt, name.kontakt());
    if (person >= 0)
        take(person, u"Kontakt"_s);
    QStringList secondLines;
    if (street >= 0) {
        const Line& s = m_lines[street];
        add(FieldId::Adresse,
            s.labelled && s.value.isEmpty() ? s.text : (s.value.isEmpty() ? s.text : s.value));
        take(street, u"Adresse"_s);
        if (extraLine >= 0) {
            secondLines.append(m_lines[extraLine].text);
            take(extraLine, u"Adresse 2"_s);
        }
        if (poBox >= 0) {
            secondLines.append(m_lines[poBox].value);
            take(poBox, u"Adresse 2"_s);
        }
    } else if (poBox >= 0) {
        add(FieldId::Adresse, m_lines[poBox].value);
        take(poBox, u"Adresse"_s);
    }
    if (!secondLines.isEmpty())
        add(FieldId::Adresse2, secondLines[0]);
    if (secondLines.size() > 1)
        add(FieldId::Adresse3, secondLines[1]);
    if (place >= 0) {
        add(FieldId::Plz, m_lines[place].place.plz);
        add(FieldId::Ort, m_lines[place].place.ort);
        take(place, u"PLZ/Ort"_s);
    } else {
        // A form's separate postcode and city.
        const int pc = last([](const Line& l) { return l.kind == Kind::Postcode; });
        const int city = last([](const Line& l) { return l.kind == Kind::City && l.labelled; });
        if (pc >= 0) {
            add(FieldId::Plz, m_lines[pc].place.plz);
            take(pc, u"PLZ"_s);
        }
        if (city >= 0) {
            add(FieldId::Ort, m_lines[city].value);
            take(city, u"Ort"_s);
        }
        if (land.isEmpty() && pc >= 0)
            land = m_lines[pc].place.plz.size() == 4 ? m_state.StandardLand4PLZ
                                                     : m_state.StandardLand5PLZ;
    }
    add(FieldId::Land, land);
    if (countryLine >= 0)
        take(countryLine, u"Land"_s);
    const FieldId voiceFields[] = {FieldId::Telefon, FieldId::Telefon2, FieldId::Telefon3};
    for (qsizetype v = 0; v < voice.size() && v < 3; ++v) {
        add(voiceFields[v], m_lines[voice[v].line].value);
        take(voice[v].line, v == 0 ? u"Telefon"_s : u"Telefon %1"_s.arg(v + 1));
    }
    if (fax >= 0) {
        add(FieldId::Fax, m_lines[fax].value);
        take(fax, u"Fax"_s);
    }
    if (mobile >= 0) {
        add(FieldId::Mobil, m_lines[mobile].value);
        take(mobile, u"Mobil"_s);
    }
    if (mail >= 0) {
        add(FieldId::EMail, m_lines[mail].value);
        take(mail, u"eMail"_s);
    }
    if (web >= 0) {
        add(FieldId::Website, m_lines[web].value);
        take(web, u"Website"_s);
    }
}

void Analysis::fillRows(FieldRows& rows) const
{
    // More values than rows: the least needed give way.
    QList<Value> values = m_values;
    for (FieldId drop : {FieldId::Adresse3, FieldId::Telefon3, FieldId::Abteilung, FieldId::Anrede,
                         FieldId::Titel, FieldId::Telefon2, FieldId::Adresse2, FieldId::Website}) {
        if (values.size() <= FieldRows::RowCount)
            break;
        values.removeIf([drop](const Value& v) { return v.field == drop; });
    }
    int row = 0;
    for (const Value& v : values) {
        if (row >= FieldRows::RowCount)
            return;
        rows.setValue(row, v.value);
        rows.SelectRowField(row, qint16(idOf(v.field)));
        ++row;
    }
    // What could not be placed is offered without a field, for the user to choose.
    for (int i = m_from; i < m_to && row < FieldRows::RowCount; ++i) {
        const Line& l = m_lines[i];
        if (l.skipped || !l.taken.isEmpty() || l.kind != Kind::Unknown)
            continue;
        rows.setValue(row, l.text);
        rows.setSelected(row, -1);
        ++row;
    }
}

QJsonArray Analysis::notes() const
{
    QJsonArray out;
    for (const Line& l : m_lines) {
        if (l.kind == Kind::Blank)
            continue;
        QJsonObject note{
            {u"line"_s, l.source},
            {u"text"_s, l.text},
            {u"kind"_s, QString::fromUtf8(kindName(l.kind))},
            {u"why"_s, l.why},
        };
        if (!l.taken.isEmpty())
            note.insert(u"fields"_s, QJsonArray::fromStringList(l.taken));
        if (l.skipped)
            note.insert(u"skipped"_s, l.skipWhy.isEmpty() ? u"übergangen"_s : l.skipWhy);
        if (l.quoted)
            note.insert(u"quoted"_s, true);
        out.append(note);
    }
    if (m_truncated)
        out.append(
            QJsonObject{{u"why"_s, u"Text nach %1 Zeilen nicht mehr untersucht"_s.arg(MaxLines)}});
    return out;
}

} // namespace
} // namespace enhanced

AnalysisResult AnalyseTextEnhanced(const QString& input, Session& session, const Seams& seams,
                                   bool explain)
{
    AnalysisResult result;
    try {
        session.rows.clearRows();
        // Old Mac line ends (a CR alone) are line breaks too.
        QString text;
        if (!input.contains(u'\r'))
            text = input;
        else
            text.reserve(input.size() + 64);
        for (qsizetype i = text.isEmpty() ? 0 : input.size(); i < input.size(); ++i) {
            text.append(input[i]);
            if (input[i] == u'\r' && (i + 1 >= input.size() || input[i + 1] != u'\n'))
                text.append(u'\n');
        }
        // A text without any line separator is one line: there is nothing to choose.
        static const QString lineBreak = u"\r\n"_s;
        const bool oneLine = session.state.ChosenSeparator.isEmpty() && !text.contains(u'\n') &&
                             !text.contains(u'\t') && !text.contains(u';') && !text.contains(u'#');
        const std::optional<QString> separator =
            oneLine ? std::optional<QString>(lineBreak)
                    : stage::ChooseSeparator(text, session.state, seams);
        if (!separator)
            return result;
        // The classic cut gives the box its text and takes out the configured labels.
        LineStore classic;
        try {
            stage::BuildLineList(text, *separator, classic, &session.clipText);
        } catch (const AnalysisFailure&) {
            // An over-long line ends the classic cut; the box keeps what it had, the
            // enhanced lines are bounded on their own.
        }
        enhanced::Analysis analysis(session.state);
        analysis.cut(text, *separator);
        if (session.state.ExtraDefinitionsLoaded) {
            stage::TakeExtraDefinitionLines(classic, session.state);
            analysis.takeDefinitions(session.state.ExtraDefinitions);
        }
        analysis.classifyAll();
        analysis.context();
        analysis.assemble();
        analysis.fillRows(session.rows);
        if (explain)
            result.notes = analysis.notes();
    } catch (const AnalysisFailure&) {
        result.completed = false;
    } catch (const std::bad_alloc&) {
        result.completed = false;
    }
    return result;
}

std::optional<AnalysisResult> FetchClipboardTextEnhanced(const QString& clipboard, Session& session,
                                                         const Seams& seams, bool silent,
                                                         bool explain)
{
    session.clipText.clear();
    session.state.ClipboardText = clipboard;
    const QString prepared = PrepareClipboardText(clipboard);
    if (Trim(prepared).isEmpty()) {
        if (!silent && seams.showMessage)
            seams.showMessage(msg::ClipboardEmpty, MessageStyle::Information);
        return std::nullopt;
    }
    return AnalyseTextEnhanced(prepared, session, seams, explain);
}

AnalysisResult AnalyseTextIn(AnalysisMode mode, const QString& text, Session& session,
                             const Seams& seams, bool explain, const RunOptions& options)
{
    return mode == AnalysisMode::Enhanced ? AnalyseTextEnhanced(text, session, seams, explain)
                                          : AnalyseText(text, session, seams, options);
}

std::optional<AnalysisResult> FetchClipboardTextIn(AnalysisMode mode, const QString& clipboard,
                                                   Session& session, const Seams& seams,
                                                   bool silent, bool explain,
                                                   const RunOptions& options)
{
    return mode == AnalysisMode::Enhanced
               ? FetchClipboardTextEnhanced(clipboard, session, seams, silent, explain)
               : FetchClipboardText(clipboard, session, seams, silent, options);
}

} // namespace zf
