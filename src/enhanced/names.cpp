#include "recognise.h"
#include "wordbits.h"

#include <algorithm>

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

// OCR reads the capital I of "Ing." as a small l: "Dipl.-lng.", "lng."
qsizetype scannedIng(QStringView w, qsizetype from = 0)
{
    for (qsizetype at = from; at + 2 < w.size(); ++at)
        if (w[at] == u'l' && w[at + 1] == u'n' && w[at + 2] == u'g' &&
            (at == 0 || w[at - 1] == u'-' || w[at - 1] == u'.'))
            return at;
    return -1;
}

// ... and a small l as a one: "Dip1.-Ing."
qsizetype scannedOne(QStringView w)
{
    for (qsizetype at = 1; at < w.size(); ++at)
        if (w[at] == u'1' && w[at - 1].isLower())
            return at;
    return -1;
}

QString mendDegree(QStringView w)
{
    QString s = w.toString();
    for (qsizetype at = scannedIng(w); at >= 0; at = scannedIng(w, at + 1))
        s[at] = u'I';
    for (qsizetype at = scannedOne(s); at >= 0; at = scannedOne(s))
        s[at] = u'l';
    return s;
}

bool isDegree(QStringView w, bool allCaps)
{
    const Knowledge& k = knowledge();
    const QString s = keyOf(w);
    if (k.degrees.contains(s) || (allCaps && k.degreesUpper.contains(s.toUpper())))
        return true;
    return (scannedIng(w) >= 0 || scannedOne(w) >= 0) && k.degrees.contains(mendDegree(w));
}

bool isDegreeFollow(QStringView w, bool allCaps)
{
    const Knowledge& k = knowledge();
    const QString s = keyOf(w);
    return k.degreeFollows.contains(s) || (allCaps && k.degreesUpper.contains(s.toUpper()));
}

bool isPostNominal(QStringView w, bool allCaps)
{
    const QSet<QString>& letters = knowledge().postNominals;
    return w.size() >= 2 && w[0].isUpper() &&
           (letters.contains(keyOf(w)) || (allCaps && letters.contains(w.toString().toUpper())));
}

// OCR reads a small l as a capital I: "SchIegel". Left alone after the prefixes that do take a
// capital ("McIntosh", "MacInnes", "DiIorio").
QString mendCapitalI(const QString& w)
{
    qsizetype at = w.indexOf(u'I', 1);
    if (at < 0)
        return w;
    QString out = w;
    for (; at > 0 && at + 1 < out.size(); at = out.indexOf(u'I', at + 1)) {
        // "KIein": also behind the capital that opens the word.
        if (!(out[at - 1].isLower() || at == 1) || !out[at + 1].isLower())
            continue;
        const QStringView head = QStringView(out).left(at);
        if (head == u"Mc" || head == u"Mac" || head == u"Di" || head == u"De" || head == u"Da" ||
            head.endsWith(u"-Mc") || head.endsWith(u"-Mac"))
            continue;
        out[at] = u'l';
    }
    return out;
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
    const auto known = [&k, caps](const QString& s) {
        return k.legalForms.contains(s) || (caps && k.legalFormsUpper.contains(s.toUpper()));
    };
    // Forms of several words ("S.à r.l.", "Sp. z o.o."), by their first word.
    static const QHash<QString, QStringList> spaced = [&k] {
        QHash<QString, QStringList> out;
        for (const QString& f : k.legalForms)
            if (f.contains(u' '))
                out[f.section(u' ', 0, 0)].append(f);
        return out;
    }();
    static const qsizetype spacedLead = [] {
        qsizetype longest = 0;
        for (auto it = spaced.cbegin(); it != spaced.cend(); ++it)
            longest = std::max(longest, it.key().size());
        return longest;
    }();
    const WordViews words = Words(text);
    // "oberhuber strasser architektur zt gmbh": a firm written small ends in its form.
    if (!caps && !words.isEmpty() && words.size() <= 8 && text[0].isLower() &&
        std::none_of(text.cbegin(), text.cend(), [](QChar c) { return c.isUpper(); })) {
        // Only forms that are no word of a sentence as well ("ab", "as", "spa", "e.g.").
        static const QSet<QString> lowered = [&k] {
            static const QSet<QString> words{u"e.g."_s,           u"stiftung"_s, u"anstalt"_s,
                                             u"genossenschaft"_s, u"limited"_s,  u"corporation"_s,
                                             u"privatstiftung"_s};
            QSet<QString> out{u"ag"_s,  u"kg"_s,  u"og"_s,  u"ohg"_s, u"gbr"_s, u"ltd"_s,
                              u"llc"_s, u"inc"_s, u"mbh"_s, u"plc"_s, u"ug"_s};
            for (const QString& f : k.legalForms)
                if (!f.contains(u' ') && f.size() >= 4 && !words.contains(f.toLower()))
                    out.insert(f.toLower());
            return out;
        }();
        if (lowered.contains(stripTrailing(words.back(), u",;")) && CountDigitsIn(text) == 0)
            return true;
    }
    for (qsizetype i = 0; i < words.size(); ++i) {
        const QStringView w = words[i];
        const QString s = stripTrailing(w, u",;");
        if (known(s))
            return true;
        // "e. V.", "e. K.": an abbreviation written apart.
        if (i + 1 < words.size() && s.size() == 2 && s[1] == u'.' && words[i + 1].size() <= 5 &&
            known(s + stripTrailing(words[i + 1], u",;")))
            return true;
        if (const auto it = s.size() <= spacedLead ? spaced.constFind(s) : spaced.cend();
            it != spaced.cend())
            for (const QString& form : *it)
                if (QStringView(text).mid(w.data() - text.data()).startsWith(form))
                    return true;
        // "Verwaltungs-GmbH"
        if (const qsizetype dash = s.lastIndexOf(u'-'); dash > 0) {
            const QString tail = s.mid(dash + 1);
            if (tail.size() >= 2 && k.legalForms.contains(tail))
                return true;
        }
    }
    // "Brightwater Marine Supply Co.", "HARTLEY & SONS CO": the firm's last word; the county
    // of "Tralee, Co. Kerry" leads, the state of "Denver, CO" follows a comma.
    if (words.size() >= 3 && !text.contains(u',') && CountDigitsIn(text) == 0) {
        const QStringView last = words.back();
        if (last == u"Co."_s || last == u"CO."_s || (caps && last == u"CO"_s))
            return true;
    }
    return false;
}

bool IsRegisterLine(QStringView text)
{
    static const QSet<QString> marks{u"hrb"_s,
                                     u"hra"_s,
                                     u"vr"_s,
                                     u"gnr"_s,
                                     u"prr"_s,
                                     u"fn"_s,
                                     u"amtsgericht"_s,
                                     u"registergericht"_s,
                                     u"handelsregister"_s,
                                     u"firmenbuch"_s,
                                     u"rcs"_s,
                                     u"r.c.s."_s,
                                     u"kvk"_s,
                                     u"krs"_s,
                                     u"cvr"_s};
    if (CountDigitsIn(text) == 0)
        return false;
    const WordViews w = Words(text);
    return std::any_of(w.cbegin(), w.cend(),
                       [](QStringView word) { return marks.contains(Bare(word)); });
}

QString WithoutDecoration(const QString& text)
{
    const auto ornament = [](QChar c) {
        return c == u'★' || c == u'☆' || c == u'✩' || c == u'✪' || c == u'✭' || c == u'✮' ||
               c == u'✯' || c == u'⭐';
    };
    if (std::none_of(text.cbegin(), text.cend(),
                     [&ornament](QChar c) { return c.unicode() >= 0x2600 && ornament(c); }))
        return text;
    QString out;
    for (QChar c : text)
        if (!ornament(c))
            out.append(c);
    while (out.contains(u"  "_s))
        out.replace(u"  "_s, u" "_s);
    out = out.trimmed();
    return out.isEmpty() ? text : out;
}

QString WithoutSoleTraderForm(QStringView text)
{
    static const QSet<QString> forms{u"e.k."_s, u"e.kfm."_s, u"e.kfr."_s, u"e.u."_s};
    const WordViews w = Words(text);
    for (qsizetype n = 1; n <= 2 && n < w.size(); ++n) {
        QString tail;
        for (qsizetype i = w.size() - n; i < w.size(); ++i)
            tail += w[i].toString().toLower();
        if (forms.contains(tail))
            return stripTrailing(text.left(w[w.size() - n].data() - text.data()).trimmed(), u",");
    }
    return {};
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

namespace {

// "Leiter Institut für Sensorik", "Head of Marketing Department": the unit behind its head.
qsizetype unitLeadSize(const WordViews& w)
{
    static const QSet<QString> heads{
        u"leiter"_s, u"leiterin"_s, u"leitung"_s, u"direktor"_s, u"direktorin"_s, u"chef"_s,
        u"chefin"_s, u"dekan"_s,    u"dekanin"_s, u"vorstand"_s, u"sprecher"_s,   u"sprecherin"_s};
    static const QSet<QString> headsOf{u"head"_s, u"director"_s, u"directeur"_s, u"directrice"_s,
                                       u"responsable"_s};
    // Most lines fail on the first letter.
    if (w.size() < 2 || w[0].size() < 4 || w[0].size() > 11)
        return 0;
    const char16_t c = w[0][0].toLower().unicode();
    if (c != u'l' && c != u'd' && c != u'c' && c != u'v' && c != u's' && c != u'h' && c != u'r')
        return 0;
    const LowerKey first(w[0]);
    if (heads.contains(first.str()))
        return 1;
    if (w.size() >= 3 && headsOf.contains(first.str())) {
        const LowerKey second(w[1]);
        if (second.str() == u"of"_s || second.str() == u"du"_s || second.str() == u"de"_s)
            return 2;
    }
    return 0;
}

bool isUnitLine(const WordViews& w);

} // namespace

bool IsDepartmentLine(QStringView text)
{
    const WordViews w = Words(text);
    if (const qsizetype lead = unitLeadSize(w); lead > 0) {
        const QStringView rest = text.mid(w[lead].data() - text.data());
        return rest[0].isUpper() && isUnitLine(Words(rest));
    }
    return !w.isEmpty() && isUnitLine(w);
}

namespace {

bool isUnitLine(const WordViews& w)
{
    const Knowledge& k = knowledge();
    if (w.size() == 1) {
        // A compound on its own ("Bauamt", "Personalabteilung"), unless it names an authority.
        const BareKey bareKey(w[0]);
        const QString& bare = bareKey.str();
        return w[0][0].isUpper() && !k.departmentWords.words.contains(bare) &&
               k.departmentWords.has(bare) && !k.companyWords.words.contains(bare);
    }
    // "Sales Department", "Marketing Division": English names the unit last.
    const QString tail = Bare(w.back());
    return k.departmentWords.words.contains(BareKey(w[0]).str()) ||
           k.departmentWords.words.contains(Bare(w[0]) + u' ' + Bare(w[1])) ||
           (w.size() <= 4 && (tail == u"department"_s || tail == u"division"_s) &&
            w[0][0].isUpper());
}

} // namespace

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

bool IsSloganLine(QStringView text)
{
    static const QSet<QString> addressed{u"ihr"_s,   u"ihre"_s, u"ihrem"_s, u"ihren"_s, u"dein"_s,
                                         u"deine"_s, u"your"_s, u"votre"_s, u"vos"_s,   u"uw"_s};
    const auto w = Words(text);
    // "Ihr Max Muster" under a closing is the signer, not a slogan.
    return w.size() >= 3 && addressed.contains(Bare(w[0])) && !ParsePerson(text, false);
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

QString MailKey(QStringView text)
{
    QString out;
    out.reserve(text.size() + 2);
    for (QChar c : text) {
        const char16_t u = c.toLower().unicode();
        if (u >= u'a' && u <= u'z')
            out.append(QChar(u));
        else if (u == u'ä' || u == u'ö' || u == u'ü')
            out.append(QChar(u == u'ä' ? u'a' : u == u'ö' ? u'o' : u'u')).append(u'e');
        else if (u == u'ß')
            out.append(u"ss");
        else if (u >= 0xC0 && c.isLetter()) {
            const QString base = QString(c.toLower()).normalized(QString::NormalizationForm_D);
            if (!base.isEmpty() && base[0].unicode() < 0x80 && base[0].isLetter())
                out.append(base[0]);
        }
    }
    return out;
}

bool IsChairLine(QStringView text)
{
    static const QStringList chairs{u"präsident"_s, u"president"_s,  u"vorsitz"_s,
                                    u"chairman"_s,  u"chairwoman"_s, u"obmann"_s,
                                    u"obfrau"_s,    u"présiden"_s,   u"presidente"_s};
    static const QStringList deputies{u"vize"_s,     u"vice"_s, u"stellv"_s,
                                      u"aufsicht"_s, u"2. "_s,  u"3. "_s};
    const QString lower = text.toString().toLower();
    const auto in = [&lower](const QString& w) { return lower.contains(w); };
    return std::any_of(chairs.cbegin(), chairs.cend(), in) &&
           std::none_of(deputies.cbegin(), deputies.cend(), in);
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
        // Dutch lawyers write "mr." small; the English salutation is "Mr."
        if (const auto it = k.salutations.constFind(bare);
            it != k.salutations.cend() && !isDegree(w[i], false)) {
            p.anrede = it->german;
            p.addressee = it->addressee;
            p.marked = true;
            ++i;
        } else if (isDegree(stripTrailing(w[i], u","), caps)) {
            titles.append(mendDegree(stripTrailing(w[i], u",")));
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
    // A role behind a comma: "Ueli Meier, Verwaltungsratspräsident"; the team behind the signer:
    // "Jutta Kern und das Team der Druckerei Kern", "Tom Fry & team"
    static const QSet<QString> joins{u"und"_s, u"&"_s,  u"and"_s, u"+"_s,
                                     u"et"_s,  u"en"_s, u"e"_s,   u"y"_s};
    static const QSet<QString> teams{u"team"_s, u"équipe"_s, u"l'équipe"_s, u"crew"_s};
    qsizetype end = w.size();
    for (qsizetype j = i + 1; j < end; ++j) {
        // "Markus Fink (Obmann)", "Tanja Wolf – Geschäftsführerin"
        if (j >= i + 2 && w[j].startsWith(u'(') && w.back().endsWith(u')')) {
            end = j;
            break;
        }
        if (j + 1 == end)
            break;
        if (w[j].endsWith(u',') && !isDegree(w[j + 1], caps) &&
            IsJobLine(text.mid(w[j + 1].data() - text.data()))) {
            end = j + 1;
            break;
        }
        if (j >= i + 2 && w[j].size() == 1 &&
            (w[j][0] == u'–' || w[j][0] == u'—' || w[j][0] == u'-' || w[j][0] == u'|' ||
             w[j][0] == u'·' || w[j][0] == u'/') &&
            IsJobLine(text.mid(w[j + 1].data() - text.data()))) {
            end = j;
            break;
        }
        if (j >= i + 2 && w[j].size() <= 3 && joins.contains(LowerKey(w[j]).str()) &&
            (teams.contains(LowerKey(w[j + 1]).str()) ||
             (j + 2 < end && teams.contains(LowerKey(w[j + 2]).str())))) {
            end = j;
            break;
        }
    }
    // Degrees and letters written behind the name: "Jane Doe, MBA", "John Smith PhD", "Ann Fry
    // RIBA"
    for (; end > i; --end) {
        const QStringView x = chopTrailing(w[end - 1], u",");
        if (!isDegree(x, caps) && !isDegreeFollow(x, caps) && !isPostNominal(x, caps))
            break;
    }
    // A degree behind the name marks it as one as well as a degree in front.
    if (end < w.size() && isDegree(stripTrailing(w[end], u","), caps))
        p.marked = true;
    QList<QString> names;
    for (qsizetype j = i; j < end; ++j)
        names.append(stripTrailing(w[j], u","));
    if (names.size() < 2 || names.size() > 4)
        return std::nullopt;
    // OCR reads "l" and "o" as digits: "Ma1te" is Malte when that is a known given name.
    // A family name is mended when the digit stands inside a word of letters: "Stemm1er".
    for (qsizetype n = 0; n < names.size(); ++n) {
        if (CountDigitsIn(names[n]) == 0)
            continue;
        QString mended = names[n];
        qsizetype letters = 0;
        bool inside = true;
        for (qsizetype j = 0; j < mended.size(); ++j) {
            if (mended[j] == u'0')
                mended[j] = j == 0 ? u'O' : u'o';
            else if (mended[j] == u'1')
                mended[j] = j == 0 ? u'I' : u'l';
            else if (mended[j].isLetter())
                ++letters;
            if (!mended[j].isLetter() && mended[j] != u'-')
                inside = false;
        }
        if (n == 0 ? IsKnownGivenName(mended)
                   : inside && letters >= 3 && mended[0].isUpper() && !isDigit(names[n][0]))
            names[n] = mended;
    }
    for (QString& n : names)
        n = mendCapitalI(n);
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
    return mendDegree(text);
}

QString WithoutUnitWord(const QString& text)
{
    if (const qsizetype lead = unitLeadSize(Words(text)); lead > 0)
        return WithoutUnitWord(
            QStringView(text).mid(Words(text)[lead].data() - text.data()).toString());
    const WordViews w = Words(text);
    if (w.size() < 2 || !w[1][0].isUpper())
        return text; // "Abteilung für Kardiologie" keeps its word
    const QString first = Bare(w[0]);
    if (first != u"abteilung"_s && first != u"abt."_s)
        return text;
    return QStringView(text).mid(w[1].data() - text.data()).toString();
}

std::optional<PersonName> OwnerInFirmName(QStringView text)
{
    const Knowledge& k = knowledge();
    const WordViews w = Words(text);
    qsizetype i = 0;
    while (i < w.size() && w[i][0].isUpper() && k.companyWords.has(Bare(w[i])))
        ++i;
    if (i == 0 || w.size() - i < 2 || w.size() - i > 6)
        return std::nullopt;
    // "Praxis Dr. med. Jonas Keller": a degree marks the name as well as a known given name.
    auto p = ParsePerson(text.mid(w[i].data() - text.data()), false);
    if (!p || !(p->knownGiven || !p->titel.isEmpty()) || !p->anrede.isEmpty())
        return std::nullopt;
    return p;
}

} // namespace zf::enhanced
