#include "recognise.h"
#include "wordbits.h"

using namespace Qt::StringLiterals;

namespace zf::enhanced {

namespace {

bool isParticle(const QString& lower)
{
    static const QSet<QString> particles{
        u"von"_s, u"van"_s, u"de"_s, u"der"_s, u"den"_s, u"del"_s, u"della"_s,  u"di"_s,
        u"da"_s,  u"du"_s,  u"le"_s, u"la"_s,  u"zu"_s,  u"zur"_s, u"vom"_s,    u"ten"_s,
        u"ter"_s, u"bin"_s, u"al"_s, u"el"_s,  u"dos"_s, u"das"_s, u"van der"_s};
    return particles.contains(lower);
}

bool isInitial(QStringView w)
{
    return w.size() == 2 && w[0].isLetter() && w[0].isUpper() && w[1] == u'.';
}

// A word that may be part of a name: letters, hyphens and apostrophes, capital first.
bool isNameWord(QStringView w)
{
    if (w.isEmpty() || !w[0].isLetter() || !w[0].isUpper())
        return false;
    for (QChar c : w)
        if (!c.isLetter() && c != u'-' && c != u'\'' && c != u'’')
            return false;
    return !w.endsWith(u'-');
}

bool isDegree(QStringView w, bool allCaps)
{
    const Knowledge& k = knowledge();
    const QString s = keyOf(w);
    return k.degrees.contains(s) || (allCaps && k.degreesUpper.contains(s.toUpper()));
}

bool isDegreeFollow(QStringView w, bool allCaps)
{
    const Knowledge& k = knowledge();
    const QString s = keyOf(w);
    return k.degreeFollows.contains(s) || (allCaps && k.degreesUpper.contains(s.toUpper()));
}

} // namespace

QString PersonName::kontakt() const
{
    if (vorname.isEmpty())
        return nachname;
    if (nachname.isEmpty())
        return vorname;
    return vorname + u' ' + nachname;
}

bool HasLegalForm(QStringView text)
{
    const Knowledge& k = knowledge();
    const bool caps = IsAllCaps(text);
    for (QStringView w : Words(text)) {
        const QString s = stripTrailing(w, u",;");
        if (k.legalForms.contains(s) || (caps && k.legalFormsUpper.contains(s.toUpper())))
            return true;
        // "Verwaltungs-GmbH"
        if (const qsizetype dash = s.lastIndexOf(u'-'); dash > 0) {
            const QString tail = s.mid(dash + 1);
            if (tail.size() >= 2 && k.legalForms.contains(tail))
                return true;
        }
    }
    return false;
}

bool IsCompanyWordLine(QStringView text)
{
    const Knowledge& k = knowledge();
    const WordViews w = Words(text);
    if (w.size() < 2)
        return false;
    for (QStringView word : w) {
        const BareKey bareKey(word);
        const QString& bare = bareKey.str();
        if (word[0].isUpper() && k.companyWords.has(bare))
            return true;
    }
    return false;
}

bool IsDepartmentLine(QStringView text)
{
    const Knowledge& k = knowledge();
    const WordViews w = Words(text);
    if (w.size() == 1) {
        // A compound on its own ("Bauamt", "Personalabteilung"), unless it names an authority.
        const BareKey bareKey(w[0]);
        const QString& bare = bareKey.str();
        return w[0][0].isUpper() && !k.departmentWords.words.contains(bare) &&
               k.departmentWords.has(bare) && !k.companyWords.words.contains(bare);
    }
    return k.departmentWords.words.contains(BareKey(w[0]).str()) ||
           k.departmentWords.words.contains(Bare(w[0]) + u' ' + Bare(w[1]));
}

bool IsJobLine(QStringView text)
{
    const Knowledge& k = knowledge();
    const WordViews w = Words(text);
    if (w.isEmpty() || w.size() > 8)
        return false;
    for (QStringView word : w) {
        const BareKey bareKey(word);
        const QString& bare = bareKey.str();
        if (k.jobWords.has(bare))
            return true;
    }
    return false;
}

bool IsKnownGivenName(QStringView word)
{
    const LowerKey lowerKey(word);
    const QString& lower = lowerKey.str();
    if (knowledge().givenNames.contains(lower))
        return true;
    // "Kai-Uwe", "Hans-Peter"
    const qsizetype dash = lower.indexOf(u'-');
    return dash > 0 && knowledge().givenNames.contains(lower.left(dash));
}

std::optional<PersonName> ParsePerson(QStringView text, bool needMarker)
{
    const Knowledge& k = knowledge();
    const bool caps = IsAllCaps(text);
    WordViews w = Words(text);
    PersonName p;
    qsizetype i = 0;
    // "Ihr", "Ihre", "i. A."
    for (int round = 0; round < 2 && i < w.size(); ++round) {
        if (i + 1 < w.size() && k.signWords.contains(BareKey(joined(w, i, i + 2)).str()))
            i += 2;
        else if (k.signWords.contains(BareKey(w[i]).str()))
            ++i;
    }
    QStringList titles;
    bool jobSeen = false;
    while (i < w.size()) {
        const BareKey bareKey(w[i]);
        const QString& bare = bareKey.str();
        if (const auto it = k.salutations.constFind(bare); it != k.salutations.cend()) {
            p.anrede = it->german;
            p.addressee = it->addressee;
            p.marked = true;
            ++i;
        } else if (isDegree(stripTrailing(w[i], u","), caps)) {
            titles.append(stripTrailing(w[i], u","));
            p.marked = true;
            ++i;
            while (i < w.size() && isDegreeFollow(stripTrailing(w[i], u","), caps))
                titles.append(stripTrailing(w[i++], u","));
        } else if (k.jobWords.has(bare) && i + 2 < w.size()) {
            jobSeen = true;
            ++i;
        } else {
            break;
        }
    }
    if (needMarker && !p.marked)
        return std::nullopt;
    if (jobSeen && !p.marked)
        return std::nullopt;
    // Degrees written behind the name: "Jane Doe, MBA", "John Smith PhD"
    qsizetype end = w.size();
    while (end > i && (isDegree(stripTrailing(w[end - 1], u","), caps) ||
                       isDegreeFollow(stripTrailing(w[end - 1], u","), caps)))
        --end;
    // A degree behind the name marks it as one as well as a degree in front.
    if (end < w.size() && isDegree(stripTrailing(w[end], u","), caps))
        p.marked = true;
    QList<QString> names;
    for (qsizetype j = i; j < end; ++j)
        names.append(stripTrailing(w[j], u","));
    if (names.size() < 2 || names.size() > 4)
        return std::nullopt;
    // A comma inside ("Meier, Hans") or behind the first word turns the order.
    for (qsizetype j = 0; j < names.size(); ++j) {
        const QString& n = names[j];
        const LowerKey lowerKey(n);
        const QString& lower = lowerKey.str();
        const bool particle = j > 0 && j + 1 < names.size() && isParticle(lower);
        const bool initial = j > 0 && j + 1 < names.size() && isInitial(n);
        if (!particle && !initial && !isNameWord(n))
            return std::nullopt;
        if (particle || initial)
            continue;
        if (k.notNameWords.contains(lower) || k.legalForms.contains(n))
            return std::nullopt;
    }
    if (isParticle(LowerKey(names.back()).str()) || isInitial(names.back()))
        return std::nullopt;
    qsizetype first = 1;
    if (names.size() >= 3 && IsKnownGivenName(names[1]) && !isInitial(names[1]) &&
        !isParticle(LowerKey(names[1]).str()))
        first = 2;
    QStringList given;
    for (qsizetype j = 0; j < first; ++j)
        given.append(names[j]);
    qsizetype rest = first;
    while (rest < names.size() - 1 && isInitial(names[rest]))
        ++rest;
    QStringList family;
    for (qsizetype j = rest; j < names.size(); ++j)
        family.append(names[j]);
    p.vorname = given.join(u' ');
    p.nachname = family.join(u' ');
    p.titel = titles.join(u' ');
    p.knownGiven = IsKnownGivenName(names[0]);
    return p;
}

QStringView WithoutProxyMark(QStringView text)
{
    static const QStringList marks{u"i. A. "_s, u"i.A. "_s, u"i. V. "_s, u"i.V. "_s,
                                   u"ppa. "_s,  u"pp. "_s,  u"p.p. "_s,  u"i. Auftr. "_s};
    // An ASCII first letter that differs from a mark's in more than case rules the mark out
    // without the case-blind compare.
    const char16_t c = text.isEmpty() ? 0 : text.front().unicode();
    for (const QString& m : marks) {
        const char16_t f = m.front().unicode();
        if (c < 0x80 && f < 0x80 && (c | 0x20) != (f | 0x20))
            continue;
        if (text.startsWith(m, Qt::CaseInsensitive))
            return text.mid(m.size()).trimmed();
    }
    return {};
}

QString SalutationOnly(QStringView text)
{
    const WordViews w = Words(text);
    if (w.size() != 1)
        return {};
    const auto it = knowledge().salutations.constFind(BareKey(w[0]).str());
    return it == knowledge().salutations.cend() ? QString() : it->german;
}

QString DegreeOnly(QStringView text)
{
    const bool caps = IsAllCaps(text);
    const WordViews w = Words(text);
    if (w.isEmpty() || w.size() > 4 || !isDegree(w[0], caps))
        return {};
    for (qsizetype i = 1; i < w.size(); ++i)
        if (!isDegree(w[i], caps) && !isDegreeFollow(w[i], caps))
            return {};
    return text.toString();
}

} // namespace zf::enhanced
