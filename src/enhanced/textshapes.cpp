#include "recognise.h"
#include "wordbits.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace zf::enhanced {

namespace {

// The label table entry for "telefon zentrale", "telefon / phone": each word a phone label.
std::optional<Label> combinedPhoneLabel(const QString& lowerLabel)
{
    const Knowledge& k = knowledge();
    const QStringList parts =
        QString(lowerLabel).replace(u'/', u' ').split(u' ', Qt::SkipEmptyParts);
    if (parts.size() < 2 || parts.size() > 4)
        return std::nullopt;
    Label out{LabelKind::Phone, {}};
    for (const QString& p : parts) {
        const Label* l = k.label(p);
        if (!l || (l->kind != LabelKind::Phone && l->kind != LabelKind::Email &&
                   l->kind != LabelKind::Web))
            return std::nullopt;
        if (l->kind != LabelKind::Phone) {
            // "E-Mail / Mail" is a mail label; a mix with phone words is not a label.
            if (out.kind == LabelKind::Phone && !out.qualifier.isEmpty())
                return std::nullopt;
            out.kind = l->kind;
            continue;
        }
        if (!l->qualifier.isEmpty() &&
            (out.qualifier.isEmpty() || l->qualifier == u"fax"_s || l->qualifier == u"mobile"_s))
            out.qualifier = l->qualifier;
    }
    return out;
}

// A phone label word, also as the end of a compound ("Rezepthotline", "Notfall-Handy").
const Label* phoneWord(const QString& lowerWord)
{
    const Knowledge& k = knowledge();
    if (const Label* l = k.label(lowerWord))
        return l->kind == LabelKind::Phone ? l : nullptr;
    if (const qsizetype dash = lowerWord.lastIndexOf(u'-'); dash > 0)
        return phoneWord(lowerWord.mid(dash + 1));
    // Long words only: "Steuernummer" and "Kundennr." end in no phone word.
    static const QStringList stems{u"telefon"_s, u"hotline"_s, u"handy"_s,
                                   u"telefax"_s, u"mobil"_s,   u"phone"_s};
    for (const QString& stem : stems)
        if (lowerWord.size() > stem.size() + 2 && lowerWord.endsWith(stem))
            return k.label(stem);
    return nullptr;
}

// A label not in the list that still names a phone or mail: "Telefon tagsüber", "Telefon
// Geschäftsstelle", "Notfall-Handy", "Our phone number remains unchanged", "General
// mailbox". Only with a value that is nothing but a number or an address when the label
// does not start with the phone word.
std::optional<Label> looseLabel(const QString& lowerLabel, QStringView value)
{
    const Knowledge& k = knowledge();
    // "Straße / Hausnr.", "PLZ & Ort": the list has them with "/" and "und".
    QString tight = lowerLabel;
    tight.replace(u" / "_s, u"/"_s).replace(u" & "_s, u" und "_s).replace(u" + "_s, u" und "_s);
    if (const Label* l = k.label(tight); l && tight != lowerLabel)
        return *l;
    const QStringList words =
        QString(lowerLabel).replace(u'/', u' ').split(u' ', Qt::SkipEmptyParts);
    if (words.isEmpty() || words.size() > 6 || value.isEmpty())
        return std::nullopt;
    std::optional<Label> phone;
    bool mail = false;
    bool leading = false;
    const auto qualify = [&phone](const Label* l) {
        if (!phone)
            phone = Label{LabelKind::Phone, {}};
        // An emergency mobile is an emergency line; a fax number is a fax whatever else.
        const QString& q = l->qualifier;
        const QString& have = phone->qualifier;
        if (!q.isEmpty() &&
            (have.isEmpty() || q == u"fax"_s || (q == u"second"_s && have != u"fax"_s)))
            phone->qualifier = q;
    };
    // Words of a sentence that leads to a number: "Sie erreichen uns unter:", "Our new
    // number:".
    static const QSet<QString> calling{u"nummer"_s,     u"number"_s,  u"erreichen"_s,
                                       u"erreichbar"_s, u"anrufen"_s, u"call"_s,
                                       u"reach"_s,      u"numéro"_s,  u"numero"_s};
    static const Label plain{LabelKind::Phone, {}};
    // "Company Registration Number:", "VAT number:": a register's number, never a phone.
    if (std::any_of(words.cbegin(), words.cend(), [](const QString& w) {
            return w.startsWith(u"regist"_s) || w == u"vat"_s || w == u"tax"_s;
        }))
        return std::nullopt;
    for (qsizetype i = 0; i < words.size(); ++i) {
        const QString& w = words[i];
        mail = mail || w.contains(u"mail"_s) || w == u"courriel"_s;
        const Label* l = phoneWord(w);
        if (!l && calling.contains(w) && i > 0)
            l = &plain;
        if (!l)
            continue;
        leading = leading || i == 0;
        qualify(l);
        // "Notfall-Handy": the part in front qualifies too.
        if (const qsizetype dash = w.indexOf(u'-'); dash > 0)
            if (const Label* head = k.label(w.left(dash)); head && head->kind == LabelKind::Phone)
                qualify(head);
    }
    if (phone) {
        const bool number =
            leading ? ParsePhone(value, false).has_value() : ParsePhone(value, true).has_value();
        if (number)
            return phone;
    }
    if (mail && Words(value).size() == 1 && !FindEMail(value).isEmpty())
        return Label{LabelKind::Email, {}};
    // "Buchung: +43 512 …", "Werkstatt: 0821 …": a short label of a department with nothing
    // but a number behind it, written with its area code as only phone numbers are; not an
    // account, customer or tax number, not opening hours.
    static const QStringList notPhone{u"nummer"_s, u"nr"_s,  u"number"_s, u"no."_s,
                                      u"konto"_s,  u"blz"_s, u"iban"_s,   u"bic"_s,
                                      u"steuer"_s, u"ust"_s, u"zeit"_s,   u"id"_s};
    const auto areaCode = [&value] {
        qsizetype i = value.startsWith(u'+') ? 1 : value.startsWith(u"(0"_s) ? 1 : 0;
        if (i == 0 && !value.startsWith(u'0'))
            return false;
        const qsizetype from = i;
        while (i < value.size() && isDigit(value[i]))
            ++i;
        // "0000123456" is a register number: a phone number has a real area code and is
        // written in groups.
        const bool grouped = value.contains(u' ') || value.contains(u'/') || value.contains(u'-');
        if (!grouped || value.mid(from).startsWith(u"00"_s))
            return false;
        return i - from >= (from == 1 ? 2 : 3);
    };
    if (words.size() <= 2 && areaCode() && ParsePhone(value, true).has_value() &&
        std::none_of(notPhone.cbegin(), notPhone.cend(),
                     [&lowerLabel](const QString& w) { return lowerLabel.contains(w); }))
        return Label{LabelKind::Phone, u"second"_s};
    return std::nullopt;
}

// A form's label in another dress: a required-field mark ("Firma*", "Name *"), a house
// number beside the street ("Strasse, Nr.") or alternatives of which one is known ("Firma /
// Organisation", "Town/City").
std::optional<Label> formLabel(QStringView lowerLabel)
{
    const Knowledge& k = knowledge();
    QStringView s = lowerLabel;
    while (!s.isEmpty() && (s.back() == u'*' || s.back() == u' '))
        s.chop(1);
    if (s.isEmpty())
        return std::nullopt;
    const bool marked = s.size() != lowerLabel.size();
    const auto usable = [](const Label* l) {
        return l && l->kind != LabelKind::SkipBlock && l->kind != LabelKind::SkipLine;
    };
    if (marked)
        if (const Label* l = k.label(s.toString()); usable(l))
            return *l;
    static const QStringList numbers{u", nr."_s,        u" nr."_s,     u"/nr."_s,
                                     u", hausnr."_s,    u" hausnr."_s, u", no."_s,
                                     u", hausnummer"_s, u", number"_s, u" no."_s};
    for (const QString& n : numbers)
        if (s.size() > n.size() && s.endsWith(n)) {
            const Label* l = k.label(s.left(s.size() - n.size()).trimmed().toString());
            if (l && l->kind == LabelKind::Street)
                return Label{LabelKind::Street, {}};
        }
    if (!s.contains(u'/'))
        return std::nullopt;
    for (QStringView part : s.split(u'/')) {
        part = part.trimmed();
        if (part.isEmpty() || part.size() == s.size())
            continue;
        if (const Label* l = k.label(part.toString()); usable(l) && l->kind != LabelKind::Role)
            return *l;
    }
    return std::nullopt;
}

} // namespace

WordViews Words(QStringView text)
{
    WordViews out;
    qsizetype start = -1;
    for (qsizetype i = 0; i <= text.size(); ++i) {
        const bool blank = i == text.size() || text[i] == u' ';
        if (blank && start >= 0) {
            out.append(text.mid(start, i - start));
            start = -1;
        } else if (!blank && start < 0) {
            start = i;
        }
    }
    return out;
}

qsizetype WordCount(QStringView text)
{
    qsizetype count = 0;
    for (qsizetype i = 0; i < text.size(); ++i)
        count += text[i] != u' ' && (i == 0 || text[i - 1] == u' ');
    return count;
}

QString Bare(QStringView word)
{
    return lowered(chopTrailing(word, u",;:"));
}

bool IsAllCaps(QStringView text)
{
    bool letters = false;
    for (QChar c : text) {
        if (c.isLower())
            return false;
        letters = letters || c.isLetter();
    }
    return letters;
}

int CountDigitsIn(QStringView text)
{
    int n = 0;
    for (QChar c : text)
        n += isDigit(c);
    return n;
}

namespace {

// Greetings carry neither digits nor mail addresses; most address lines do, and are passed
// over before any lower-casing.
bool hasDigitOrAt(QStringView text)
{
    for (QChar c : text)
        if (isDigit(c) || c == u'@')
            return true;
    return false;
}

} // namespace

bool IsClosing(QStringView text)
{
    const Knowledge& k = knowledge();
    if (text.size() > 80 || text.count(u' ') > 6 || hasDigitOrAt(text))
        return false;
    const LowerKey lowerKey(chopTrailing(text, u" ,.!"));
    const QString& lower = lowerKey.str();
    if (k.closings.contains(lower))
        return true;
    for (const QString& stem : k.closingStems)
        if (containsText(lower, stem))
            return true;
    return false;
}

bool IsOpening(QStringView text)
{
    const Knowledge& k = knowledge();
    if (text.isEmpty() || !text[0].isLetter() || hasDigitOrAt(text))
        return false;
    const LowerKey lowerKey(text);
    const QString& lower = lowerKey.str();
    for (const QString& o : k.openings)
        if (startsWithWord(lower, o))
            return lower.endsWith(u',') || lower.endsWith(u'!') || WordCount(lower) <= 4;
    return false;
}

bool IsThreadCut(QStringView text)
{
    if (text.startsWith(u"-----"_s) || text.startsWith(u"_____"_s)) {
        for (QChar c : text)
            if (c.isLetter())
                return true;
        return text.size() >= 10 && text.startsWith(u"_____"_s);
    }
    if (!text.endsWith(u':') && !text.contains(u'@'))
        return false;
    const LowerKey lowerKey(text);
    const QString& lower = lowerKey.str();
    if ((lower.startsWith(u"von:"_s) || lower.startsWith(u"from:"_s)) && lower.contains(u'@'))
        return true;
    if (lower.endsWith(u':') && (lower.contains(u" schrieb"_s) || lower.contains(u" wrote"_s)))
        return true;
    return false;
}

bool IsDate(QStringView text)
{
    // d.m.yy or d.m.yyyy anywhere
    for (qsizetype i = 0; i < text.size(); ++i) {
        if (!isDigit(text[i]) || (i > 0 && isDigit(text[i - 1])))
            continue;
        qsizetype j = i;
        int groups = 0;
        while (groups < 3) {
            const qsizetype s = j;
            while (j < text.size() && isDigit(text[j]))
                ++j;
            const qsizetype len = j - s;
            if (len == 0 || len > 4 || (groups < 2 && len > 2))
                break;
            ++groups;
            if (groups == 3)
                return len == 2 || len == 4;
            if (j >= text.size() || text[j] != u'.')
                break;
            ++j;
            if (j < text.size() && text[j] == u' ')
                ++j;
        }
    }
    return false;
}

bool IsNoise(QStringView text, QString* why)
{
    const Knowledge& k = knowledge();
    const LowerKey lowerKey(text);
    const QString& lower = lowerKey.str();
    for (const QString& p : k.noisePhrases)
        if (lower.startsWith(p)) {
            *why = u"Hinweis \"%1\""_s.arg(p);
            return true;
        }
    for (QStringView w : Words(lower)) {
        const BareKey bareKey(w);
        const QString& bare = bareKey.str();
        if (k.noiseWords.contains(bare) || k.noiseWords.contains(stripTrailing(bare, u"."))) {
            *why = u"Wort \"%1\""_s.arg(bare);
            return true;
        }
    }
    if (lower.contains(u'!') || lower.contains(u"+++"_s)) {
        *why = u"Ausruf"_s;
        return true;
    }
    if (IsDate(text)) {
        *why = u"Datum"_s;
        return true;
    }
    return false;
}

std::optional<LabelHit> ParseLabel(QStringView text)
{
    const Knowledge& k = knowledge();
    const qsizetype colon = text.indexOf(u':');
    if (colon > 0 && colon <= 60 && !text.mid(colon).startsWith(u"://"_s)) {
        QStringView name = text.left(colon).trimmed();
        // "Bereitschaft (24 h):": a note in brackets qualifies the label, it is no value.
        if (const qsizetype open = name.indexOf(u" ("_s);
            open > 0 && name.endsWith(u')') && name.count(u'(') == 1)
            name = name.left(open);
        // An ordinal may open a label ("1. Vorsitzende:"), other digits make it a value.
        const bool ordinal = name.size() > 3 && isDigit(name[0]) && name[1] == u'.' &&
                             name[2] == u' ' && CountDigitsIn(name) == 1;
        // So may the number of a form's line: "Address line 1:", "Adresszeile 2:".
        const bool lineNumber = name.size() > 3 && isDigit(name.back()) &&
                                name[name.size() - 2] == u' ' && CountDigitsIn(name) == 1;
        // A scanned label keeps its slip: "Te1.:", "Mobi1:".
        const bool scanned = name.size() <= 8 && CountDigitsIn(name) == 1 &&
                             k.label(LowerKey(name).str()) != nullptr;
        if (!name.isEmpty() && (CountDigitsIn(name) == 0 || ordinal || lineNumber || scanned) &&
            !name.contains(u'@') && WordCount(name) <= 6) {
            LabelHit hit;
            hit.name = name.toString();
            hit.rest = text.mid(colon + 1).trimmed().toString();
            const LowerKey lowerKey(hit.name);
            const QString& lower = lowerKey.str();
            if (const Label* l = k.label(lower)) {
                hit.known = true;
                hit.label = *l;
            } else if (const auto combined = combinedPhoneLabel(lower)) {
                hit.known = true;
                hit.label = *combined;
            } else if (const auto loose = looseLabel(lower, hit.rest)) {
                hit.known = true;
                hit.label = *loose;
            } else if (const auto form = formLabel(lower)) {
                hit.known = true;
                hit.label = *form;
            }
            // "Halle 3: Eingang Süd" is no label but a place.
            const bool numbered = lineNumber && !ordinal && CountDigitsIn(name) > 0;
            if (hit.known || !numbered) {
                // "Tel. (Zentrale):"
                const QStringView note = text.left(colon).mid(name.size()).trimmed();
                if (hit.known && hit.label.kind == LabelKind::Phone && note.size() > 2 &&
                    note.front() == u'(' && note.back() == u')')
                    if (const Label* q =
                            k.label(note.mid(1, note.size() - 2).trimmed().toString().toLower());
                        q && q->kind == LabelKind::Phone && !q->qualifier.isEmpty())
                        hit.label.qualifier = q->qualifier;
                return hit;
            }
        }
    }
    // Phone, mail and web labels also stand without a colon: "Tel. 0711 1234", "Fax 0711".
    // Most lines fail on the first word; the line is split only behind a label.
    {
        qsizetype from = 0;
        while (from < text.size() && text[from] == u' ')
            ++from;
        qsizetype to = from;
        while (to < text.size() && text[to] != u' ')
            ++to;
        qsizetype next = to;
        while (next < text.size() && text[next] == u' ')
            ++next;
        if (next == text.size() || !k.label(LowerKey(text.mid(from, to - from)).str()))
            return std::nullopt;
    }
    const WordViews words = Words(text);
    for (qsizetype n = std::min<qsizetype>(3, words.size() - 1); n >= 1; --n) {
        const LowerKey lowerKey(joined(words, 0, n));
        const QString& lower = lowerKey.str();
        std::optional<Label> label;
        if (const Label* l = k.label(lower))
            label = *l;
        else
            label = combinedPhoneLabel(lower);
        if (!label)
            continue;
        const QStringView rest = text.mid(words[n].data() - text.data()).trimmed();
        bool fits = false;
        if (label->kind == LabelKind::Phone)
            fits = rest.front() == u'+' || rest.front() == u'(' || isDigit(rest.front()) ||
                   (rest.size() > 1 && isDigitLike(rest[0]) && isDigit(rest[1]));
        else if (label->kind == LabelKind::Email)
            fits = !FindEMail(rest).isEmpty();
        else if (label->kind == LabelKind::Web)
            fits = !FindWebHost(rest, true).isEmpty();
        else if (label->kind == LabelKind::Role)
            // An abbreviated role in front of a name: "Inh. Eva Roth".
            fits = n == 1 && words[0].endsWith(u'.') && ParsePerson(rest, false).has_value();
        if (!fits)
            continue;
        LabelHit hit;
        hit.known = true;
        hit.label = *label;
        hit.name = joined(words, 0, n);
        hit.rest = rest.toString();
        return hit;
    }
    return std::nullopt;
}

} // namespace zf::enhanced
