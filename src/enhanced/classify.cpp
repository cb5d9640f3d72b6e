#include "engine.h"
#include "wordbits.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace zf::enhanced {

namespace {

// A cell that names a reference or order number: "Anfrage Nr.", "Kundennr.", "Aktenzeichen".
bool isReferenceCell(QStringView text)
{
    if (text.size() > 40 || WordCount(text) > 3 || CountDigitsIn(text) > 0)
        return false;
    const LowerKey lowerKey(chopTrailing(text, u" :"));
    const QString& lower = lowerKey.str();
    static const QStringList ends{u"nr."_s, u"nr"_s,      u"nummer"_s, u"number"_s,
                                  u"no."_s, u"zeichen"_s, u"ref."_s,   u"reference"_s,
                                  u"az."_s, u" id"_s,     u"-id"_s};
    static const QStringList calls{u"tel"_s,   u"fon"_s,   u"fax"_s, u"handy"_s,
                                   u"mobil"_s, u"phone"_s, u"ruf"_s, u"wahl"_s};
    for (const QString& e : ends)
        if ((lower.endsWith(e) || lower == u"id"_s) && !knowledge().label(lower))
            return std::none_of(calls.cbegin(), calls.cend(),
                                [&lower](const QString& c) { return lower.contains(c); });
    return false;
}

// Labels of a form's fields that may stand alone over their value; not roles or headings.
bool isFormField(LabelKind k)
{
    switch (k) {
    case LabelKind::Company:
    case LabelKind::Street:
    case LabelKind::Address2:
    case LabelKind::City:
    case LabelKind::Postcode:
    case LabelKind::PostcodeCity:
    case LabelKind::Country:
    case LabelKind::Phone:
    case LabelKind::Email:
    case LabelKind::Web:
    case LabelKind::Name:
    case LabelKind::FirstName:
    case LabelKind::LastName:
    case LabelKind::Department:
        return true;
    default:
        return false;
    }
}

} // namespace

void Analysis::classifyAll()
{
    std::optional<std::pair<Label, QString>> pending; // a label on a line of its own
    // The raw lines are not looked at again: they are moved on, not copied.
    m_lines.reserve(m_raw.size());
    for (Line& raw : m_raw) {
        if (raw.kind == Kind::Blank || raw.kind == Kind::Heading || raw.skipped) {
            if (raw.kind == Kind::Heading)
                pending.reset();
            m_lines.append(std::move(raw));
            continue;
        }
        if (pending && !ParseLabel(raw.text).has_value()) {
            QList<Line> extra;
            Line l = raw;
            applyLabel(l, pending->first, l.text, &extra, 0);
            const LabelKind k = pending->first.kind;
            if (l.kind == Kind::Noise &&
                (k == LabelKind::Contact || k == LabelKind::Role || k == LabelKind::Name)) {
                pending.reset();
                QList<Line> out;
                classifyInto(raw, out, 0);
                m_lines.append(out);
                continue;
            }
            l.why = u"Wert zum Etikett \"%1\" der Zeile davor; "_s.arg(pending->second) + l.why;
            m_lines.append(std::move(l));
            for (Line& e : extra)
                m_lines.append(std::move(e));
            pending.reset();
            continue;
        }
        pending.reset();
        // A form that sets each value under its label, without a colon: a paragraph of
        // "Straße" over "Allmendweg 7a".
        if (const qsizetype at = &raw - m_raw.data();
            raw.text.size() <= 40 && (at == 0 || m_raw[at - 1].kind == Kind::Blank) &&
            at + 1 < m_raw.size() && m_raw[at + 1].kind != Kind::Blank &&
            (at + 2 == m_raw.size() || m_raw[at + 2].kind == Kind::Blank))
            if (const Label* label = knowledge().label(LowerKey(raw.text.trimmed()).str());
                label && isFormField(label->kind) &&
                !knowledge().label(LowerKey(m_raw[at + 1].text.trimmed()).str())) {
                raw.kind = Kind::LabelOnly;
                raw.labelled = true;
                raw.labelKind = label->kind;
                raw.value = label->qualifier;
                raw.why = u"Etikett allein, der Wert folgt in der nächsten Zeile"_s;
                pending = std::pair{*label, raw.text};
                m_lines.append(std::move(raw));
                continue;
            }
        QList<Line> out;
        classifyInto(std::move(raw), out, 0);
        // A form's house number on its own line belongs to the street above.
        if (out.size() == 1 && out[0].labelled && out[0].labelKind == LabelKind::Street &&
            out[0].kind == Kind::Noise && out[0].value.size() <= 8 &&
            CountDigitsIn(out[0].value) > 0) {
            for (qsizetype i = m_lines.size() - 1; i >= 0 && m_lines[i].kind != Kind::Blank; --i) {
                Line& street = m_lines[i];
                if (street.kind != Kind::Street || !street.labelled)
                    continue;
                if (CountDigitsIn(street.value) == 0) {
                    street.value += u' ' + out[0].value;
                    street.why += u"; Hausnummer aus der Zeile darunter"_s;
                    out[0].skipped = true;
                    out[0].skipWhy = u"Hausnummer zur Straße davor"_s;
                }
                break;
            }
        }
        for (Line& l : out) {
            if (l.kind == Kind::LabelOnly && l.labelled)
                pending = std::pair{Label{l.labelKind, l.value}, l.text};
            m_lines.append(std::move(l));
        }
    }
}

// One line, maybe several pieces: dividers, "street, postcode city", two labels.
void Analysis::classifyInto(Line line, QList<Line>& out, int depth)
{
    // Rating stars mark a hotel's or restaurant's own name.
    bool starred = false;
    if (depth == 0) {
        const QString plain = WithoutDecoration(line.text);
        starred = plain.size() != line.text.size();
        line.text = plain;
    }
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
        // "Name:<tab>Meier, Hans": a known label and its value in the next cell.
        for (qsizetype i = 0; i + 1 < pieces.size(); ++i) {
            if (isReferenceCell(pieces[i].text)) {
                // "Anfrage Nr.<tab>20260417-0931": the number stays with its label.
                pieces[i].text += u' ' + pieces[i + 1].text;
                pieces.removeAt(i + 1);
                continue;
            }
            if (!pieces[i].text.endsWith(u':'))
                continue;
            const auto hit = ParseLabel(pieces[i].text);
            if (!hit || !hit->known || !hit->rest.isEmpty() ||
                hit->label.kind == LabelKind::SkipBlock || ParseLabel(pieces[i + 1].text))
                continue;
            pieces[i].text += u' ' + pieces[i + 1].text;
            pieces.removeAt(i + 1);
        }
        QList<Line> result;
        bool placed = false;
        for (Line& p : pieces) {
            QList<Line> sub;
            classifyInto(p, sub, depth + 1);
            for (Line& s : sub) {
                placed = placed || (s.kind != Kind::Unknown && s.kind != Kind::Prose);
                result.append(std::move(s));
            }
        }
        if (placed) {
            out.append(result);
            return;
        }
        line.text.replace(u'\t', u' ');
    }
    // "fon 0221 987 654 0 / durchwahl -23": the direct line is the switchboard's number with
    // the extension in place of its 0.
    if (depth < 3 && line.text.contains(u" -"_s)) {
        const WordViews w = Words(line.text);
        const qsizetype n = w.size();
        const QStringView ext = n >= 4 ? w[n - 1] : QStringView();
        if (ext.size() >= 2 && ext.size() <= 5 && ext[0] == u'-' &&
            CountDigitsIn(ext) == ext.size() - 1) {
            const Label* l = knowledge().label(LowerKey(chopTrailing(w[n - 2], u":")).str());
            const QStringView head = chopTrailing(
                QStringView(line.text).left(w[n - 2].data() - line.text.data()), u" /,;");
            const auto hit = l && l->kind == LabelKind::Phone && l->qualifier == u"direct"_s
                                 ? ParseLabel(head)
                                 : std::nullopt;
            const auto number = hit && hit->known && hit->label.kind == LabelKind::Phone
                                    ? ParsePhone(hit->rest, true)
                                    : std::nullopt;
            if (number && number->value.size() > 2 &&
                QStringView(u" -.").contains(number->value[number->value.size() - 2]) &&
                number->value.back() == u'0') {
                const QString direct =
                    w[n - 2].toString() + u' ' + number->value.chopped(2) + ext.toString();
                for (Line& p : piecesOf({head.toString(), direct}))
                    classifyInto(p, out, depth + 1);
                return;
            }
        }
    }
    // Two labelled numbers on one line: "Tel. 0711 123 Fax 0711 124".
    if (depth < 3) {
        const WordViews w = Words(line.text);
        for (qsizetype i = 2; i < w.size(); ++i) {
            // Also with a comma between: "Handy 0151 123, Mail eva@…".
            const QStringView before = chopTrailing(w[i - 1], u",;");
            if (before.isEmpty() || !before.back().isDigit())
                continue;
            const QStringView rest = QStringView(line.text).mid(w[i].data() - line.text.data());
            const auto hit = ParseLabel(rest);
            if (!hit || !hit->known ||
                (hit->label.kind != LabelKind::Phone && hit->label.kind != LabelKind::Email &&
                 hit->label.kind != LabelKind::Web))
                continue;
            const QStringView head = QStringView(line.text).left(w[i].data() - line.text.data());
            QList<Line> pieces =
                piecesOf({chopTrailing(head.trimmed(), u",;").toString(), rest.toString()});
            for (Line& p : pieces)
                classifyInto(p, out, depth + 1);
            return;
        }
    }
    const auto hit = ParseLabel(line.text);
    // "Telefon und Fax bleiben unverändert: Tel. …, Fax …": a sentence in front of labels.
    if (hit && !hit->known && depth < 3 && !hit->rest.isEmpty())
        if (const auto inner = ParseLabel(hit->rest);
            inner && inner->known &&
            (inner->label.kind == LabelKind::Phone || inner->label.kind == LabelKind::Email ||
             inner->label.kind == LabelKind::Web)) {
            Line rest = line;
            rest.text = hit->rest;
            classifyInto(rest, out, depth + 1);
            return;
        }
    if (hit && hit->known && hit->label.kind == LabelKind::Street && !hit->rest.isEmpty() &&
        !IsThreadCut(line.text)) {
        QList<Line> extra;
        Line l = line;
        applyLabel(l, hit->label, hit->rest, &extra, depth);
        out.append(std::move(l));
        out.append(extra);
        return;
    }
    Line whole = line;
    classifyOne(whole, &hit);
    if (starred && whole.kind == Kind::Unknown) {
        whole.kind = Kind::Company;
        whole.strength = 2;
        whole.why = u"Name mit Sternen: Hotel oder Restaurant"_s;
    }
    // "Marketing Lead, Muster GmbH" and "Eva Roth, Inhaberin": a job beside a firm or name.
    if ((whole.kind == Kind::Job || (whole.kind == Kind::Company && !whole.labelled)) &&
        depth < 3 && line.text.count(u", "_s) == 1) {
        QList<Line> pieces = piecesOf(line.text.split(u", "_s));
        if (pieces.size() == 2) {
            classifyOne(pieces[0]);
            classifyOne(pieces[1]);
            const bool jobThenFirm = pieces[0].kind == Kind::Job && pieces[1].kind == Kind::Company;
            const bool nameThenJob =
                pieces[1].kind == Kind::Job && pieces[0].nameShaped &&
                (pieces[0].kind == Kind::Unknown || pieces[0].kind == Kind::Person);
            if (jobThenFirm || nameThenJob) {
                out.append(pieces);
                return;
            }
        }
    }
    // "Muster AG, Herr Max Muster, Hauptstrasse 1, 9490 Vaduz, Tel. …": a whole contact on
    // one line, each part between commas a field of its own.
    if ((whole.kind == Kind::Prose || whole.kind == Kind::Unknown) && depth < 2 &&
        line.text.count(u", "_s) >= 3) {
        const QStringList parts = line.text.split(u", "_s);
        if (parts.size() <= 10 && std::all_of(parts.cbegin(), parts.cend(),
                                              [](const QString& p) { return WordCount(p) <= 6; })) {
            QList<Line> result;
            int placed = 0;
            bool postal = false;
            for (Line& p : piecesOf(parts)) {
                QList<Line> sub;
                classifyInto(p, sub, depth + 1);
                for (const Line& x : sub) {
                    placed += x.kind != Kind::Unknown && x.kind != Kind::Prose;
                    postal = postal || x.kind == Kind::PostcodeCity || x.kind == Kind::Phone ||
                             x.kind == Kind::Email;
                }
                result.append(sub);
            }
            if (postal && placed >= 3 && placed == result.size()) {
                out.append(result);
                return;
            }
        }
    }
    // "Street 1, 12345 City" and "Postfach 12, 12345 City"; behind a label also when the
    // town ends in a dot ("Weißenburg i. Bay.").
    if ((whole.kind == Kind::Unknown || whole.kind == Kind::Noise ||
         (whole.kind == Kind::Prose && depth > 0)) &&
        line.text.contains(u", "_s) && depth < 3) {
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
    out.append(std::move(whole));
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
        // "Verantwortlich:" over the firm's own line; "Inhaberin: Eva Roth e. K." is her.
        const QString owner = label.kind == LabelKind::Role && HasLegalForm(value)
                                  ? WithoutSoleTraderForm(value)
                                  : value;
        if (owner.isEmpty() || (owner.size() < value.size() && !ParsePerson(owner, false))) {
            l.kind = Kind::Company;
            l.strength = 3;
            l.why += u"Firma hinter dem Etikett"_s;
            return;
        }
        // A list of people: the first one counts.
        QString first = owner;
        // "1. Vorsitzende: Name" under "Vertreten durch:".
        if (const qsizetype colon = first.indexOf(u": "_s); colon > 0)
            first = first.mid(colon + 2);
        // "Eva Roth, Dr. Jan Hahn (Präsident)": the chair before the first named.
        for (const QString& part : first.split(u", "_s))
            if (part.contains(u" ("_s) && IsChairLine(part)) {
                first = part;
                break;
            }
        for (const QString& sep : {u", "_s, u" und "_s, u" and "_s, u" & "_s, u"; "_s}) {
            // "Meier, Hans" is one person, written surname first.
            if (sep == u", "_s && label.kind != LabelKind::Role) {
                const QStringList parts = first.split(sep);
                if (parts.size() == 2 && WordCount(parts[0]) == 1 && WordCount(parts[1]) == 1) {
                    first = parts[1] + u' ' + parts[0];
                    continue;
                }
            }
            const qsizetype at = first.indexOf(sep);
            if (at > 0)
                first = first.left(at);
        }
        // "Dr. Hans Meier (Vorsitzender)": the note is no part of the name.
        if (const qsizetype open = first.indexOf(u" ("_s); open > 0 && first.endsWith(u')'))
            first = first.left(open);
        // Nor is a generation: "Anton Huber jun.".
        for (const QString& suffix : {u" jun."_s, u" sen."_s, u" jr."_s, u" sr."_s})
            if (first.endsWith(suffix, Qt::CaseInsensitive))
                first.chop(suffix.size());
        if (auto p = ParsePerson(first, false)) {
            l.kind = Kind::Person;
            l.person = *p;
            l.personSource =
                label.kind == LabelKind::Role ? PersonSource::Role : PersonSource::Form;
            l.why += label.kind == LabelKind::Role ? u"Person mit Rolle (Impressum)"_s
                                                   : u"Person hinter dem Etikett"_s;
        } else if (label.kind == LabelKind::Name && WordCount(first) == 1) {
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
        if (label.qualifier == u"number"_s) {
            l.kind = Kind::Noise;
            l.why += u"Hausnummer hinter dem Etikett"_s;
            return;
        }
        // "Neu:" announces a moved address as often as a new product.
        const bool onlyIfAddress = label.qualifier == u"moved"_s;
        if (!extra || depth > 2) {
            QString street;
            if (onlyIfAddress && StreetStrength(value, &street) == 0) {
                l.kind = Kind::Noise;
                l.why += u"hinter dem Etikett keine Anschrift"_s;
                return;
            }
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
            if (onlyIfAddress) {
                // "NEU: Praxis Eva Roth": no address, but a line of the contact all the same.
                l = parts[0];
                l.why = u"hinter dem Etikett keine Anschrift: "_s + l.why;
                return;
            }
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
    case LabelKind::Address2: {
        // "Address line 2: 45 Mill Street" under the unit, "Postfach: Postfach 118".
        QString street;
        if (!IsAddressExtra(value) && StreetStrength(value, &street) == 2) {
            l.kind = Kind::Street;
            l.value = street;
            l.strength = 3;
            l.why += u"Straße hinter dem Etikett eines Adresszusatzes"_s;
            return;
        }
        if (IsPoBox(value)) {
            l.kind = Kind::PoBox;
            l.why += u"Postfach hinter dem Etikett"_s;
            return;
        }
        l.kind = Kind::Address2;
        l.why += u"Adresszusatz hinter dem Etikett"_s;
        return;
    }
    case LabelKind::City:
        l.kind = Kind::City;
        // "State: ME" belongs behind the city of a US form, as its address writes it.
        if (label.qualifier == u"state"_s) {
            l.kind = Kind::Noise;
            l.why += u"Bundesstaat, zum Ort"_s;
        }
        return;
    case LabelKind::PostcodeCity:
        if (const auto pc = ParsePostcodeCity(value)) {
            l.kind = Kind::PostcodeCity;
            l.place = *pc;
        } else {
            const WordViews w = Words(value);
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

bool Analysis::classifyOne(Line& l, const std::optional<LabelHit>* known)
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
    std::optional<LabelHit> parsed;
    if (!known)
        parsed = ParseLabel(t);
    if (const std::optional<LabelHit>& hit = known ? *known : parsed) {
        // A fax's or a memo's sender: "Von: Autohaus Kern GmbH", without a mail address.
        if (!hit->known && hit->rest.size() > 4 && !hit->rest.contains(u'@') &&
            (hit->name.compare(u"von"_s, Qt::CaseInsensitive) == 0 ||
             hit->name.compare(u"from"_s, Qt::CaseInsensitive) == 0 ||
             hit->name.compare(u"absender"_s, Qt::CaseInsensitive) == 0) &&
            HasLegalForm(hit->rest) && !IsRegisterLine(hit->rest)) {
            applyLabel(l, Label{LabelKind::Company, {}}, hit->rest, nullptr, 0);
            return true;
        }
        if (!hit->known) {
            // "Termine auch online: www.praxis.de": a sentence for a label, an address behind it.
            // A page behind it ("ec.europa.eu/consumers/odr", a profile) is someone else's.
            QStringView bare = hit->rest;
            if (const qsizetype scheme = bare.indexOf(u"://"_s); scheme >= 0)
                bare = bare.mid(scheme + 3);
            if (WordCount(hit->name) >= 2 && WordCount(bare) == 1 &&
                !chopTrailing(bare, u"/").contains(u'/')) {
                if (const QString host = FindWebHost(hit->rest, true); !host.isEmpty()) {
                    l.value = host;
                    return is(Kind::Website, u"Webadresse hinter einem Satz"_s);
                }
            }
            return is(Kind::Noise, u"Etikett \"%1\" gehört zu keinem Feld"_s.arg(hit->name));
        }
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
    const WordViews tw = Words(t);
    // "Ihr Ansprechpartner" over the name, without a colon.
    if (const Label* label = knowledge().label(LowerKey(t).str());
        label && label->kind == LabelKind::Contact && tw.size() >= 2) {
        l.kind = Kind::LabelOnly;
        l.labelled = true;
        l.labelKind = label->kind;
        return is(Kind::LabelOnly, u"Etikett allein, der Wert folgt"_s);
    }
    if (const QString mail = FindEMail(t); !mail.isEmpty() && tw.size() <= 3) {
        l.value = mail;
        return is(Kind::Email, u"E-Mail-Adresse"_s);
    }
    if (const QString host = FindWebHost(t, tw.size() == 1); !host.isEmpty() && tw.size() <= 3) {
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
    if (const QStringView signer = WithoutProxyMark(t); !signer.isEmpty()) {
        if (const auto p = ParsePerson(signer, false)) {
            l.person = *p;
            l.nameShaped = true;
            l.personSource = PersonSource::Marked;
            return is(Kind::Person, u"Name hinter \"i. A.\" oder \"ppa.\""_s);
        }
    }
    // "lic. iur. Anna Meier" starts small and is a name, "wortwerk kommunikation GmbH" a firm.
    if (t[0].isLetter() && t[0].isLower() && !t.startsWith(u"c/o"_s) &&
        DegreeOnly(tw.front()).isEmpty() && !(t.count(u' ') < 5 && HasLegalForm(t)) &&
        !knowledge().streetLeadWords.contains(BareKey(tw.front()).str()))
        return is(Kind::Prose, u"beginnt klein: Satz"_s);
    const int words = int(tw.size());
    const bool firmFirst = knowledge().companyWords.has(BareKey(tw.front()).str()) &&
                           t[0].isUpper() && !t.endsWith(u'.');
    if (words > 9 && !(firmFirst && words <= 14))
        return is(Kind::Prose, u"mehr als neun Wörter: Satz"_s);
    if (HasLegalForm(t)) {
        // "HRB 198876 B, AG Charlottenburg": the court, not a firm.
        if (IsRegisterLine(t))
            return is(Kind::Noise, u"Registereintrag"_s);
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
        l.person.addressee = knowledge().salutations.value(BareKey(t).str()).addressee;
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
    // "Ella Lindqvist und Tobias Sauer" sign together: the first named is the contact.
    if (words == 5 && IsKnownGivenName(tw[0]) && IsKnownGivenName(tw[3])) {
        static const QSet<QString> joins{u"und"_s, u"and"_s, u"&"_s, u"+"_s, u"et"_s, u"e"_s};
        if (joins.contains(LowerKey(tw[2]).str()))
            if (const auto first =
                    ParsePerson(t.left(tw[1].data() + tw[1].size() - t.data()), false);
                first && first->knownGiven) {
                l.person = *first;
                l.nameShaped = true;
                return is(Kind::Unknown, u"zwei Namen, der erste zählt"_s);
            }
    }
    if (words <= 6 && CountDigitsIn(t) == 0 &&
        (t.contains(u" & "_s) || t.contains(u" + "_s) || t.contains(u" und "_s))) {
        l.strength = 1;
        return is(Kind::Company, u"mit \"&\" verbundene Namen"_s);
    }
    return is(Kind::Unknown, u"nicht zuzuordnen"_s);
}

} // namespace zf::enhanced
