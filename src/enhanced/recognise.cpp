#include "recognise.h"

using namespace Qt::StringLiterals;

namespace zf::enhanced {

namespace {

bool isDigit(QChar c)
{
    return c >= u'0' && c <= u'9';
}

// Letters that OCR mistakes for digits.
bool isDigitLike(QChar c)
{
    return c == u'O' || c == u'o' || c == u'l' || c == u'I';
}

QChar asDigit(QChar c)
{
    return (c == u'O' || c == u'o') ? u'0' : (c == u'l' || c == u'I') ? u'1' : c;
}

// A word of digits in which OCR slips are mended: "2O" -> "20", "l6816" -> "16816".
QString mendedNumber(QStringView word)
{
    int digits = 0;
    for (QChar c : word) {
        if (isDigit(c))
            ++digits;
        else if (!isDigitLike(c))
            return {};
    }
    if (digits == 0 || digits * 2 < word.size())
        return {};
    QString out;
    for (QChar c : word)
        out.append(asDigit(c));
    return out;
}

QString stripTrailing(QStringView w, QStringView chars)
{
    while (!w.isEmpty() && chars.contains(w.back()))
        w.chop(1);
    return w.toString();
}

bool startsWithWord(const QString& lower, const QString& word)
{
    if (!lower.startsWith(word))
        return false;
    if (lower.size() == word.size())
        return true;
    const QChar next = lower[word.size()];
    return !next.isLetterOrNumber();
}

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
    const QString s = w.toString();
    return k.degrees.contains(s) || (allCaps && k.degreesUpper.contains(s.toUpper()));
}

bool isDegreeFollow(QStringView w, bool allCaps)
{
    const Knowledge& k = knowledge();
    const QString s = w.toString();
    return k.degreeFollows.contains(s) || (allCaps && k.degreesUpper.contains(s.toUpper()));
}

QString joined(const QList<QStringView>& words, qsizetype from, qsizetype to)
{
    QString out;
    for (qsizetype i = from; i < to; ++i) {
        if (!out.isEmpty())
            out.append(u' ');
        out.append(words[i]);
    }
    return out;
}

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

PhoneRole roleOf(const QString& qualifier)
{
    if (qualifier == u"fax"_s)
        return PhoneRole::Fax;
    if (qualifier == u"mobile"_s)
        return PhoneRole::Mobile;
    if (qualifier == u"direct"_s)
        return PhoneRole::Direct;
    if (qualifier == u"main"_s)
        return PhoneRole::Main;
    if (qualifier == u"second"_s)
        return PhoneRole::Second;
    return PhoneRole::Plain;
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

QList<QStringView> Words(QStringView text)
{
    QList<QStringView> out;
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

QString Bare(QStringView word)
{
    return stripTrailing(word, u",;:").toLower();
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

bool IsClosing(QStringView text)
{
    const Knowledge& k = knowledge();
    if (text.count(u' ') > 6)
        return false;
    const QString lower = stripTrailing(text, u" ,.!").toLower();
    if (k.closings.contains(lower))
        return true;
    for (const QString& stem : k.closingStems)
        if (lower.contains(stem))
            return true;
    return false;
}

bool IsOpening(QStringView text)
{
    const Knowledge& k = knowledge();
    if (text.isEmpty() || !text[0].isLetter())
        return false;
    const QString lower = text.toString().toLower();
    for (const QString& o : k.openings)
        if (startsWithWord(lower, o))
            return lower.endsWith(u',') || lower.endsWith(u'!') || Words(lower).size() <= 4;
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
    const QString lower = text.toString().toLower();
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
    const QString lower = text.toString().toLower();
    for (const QString& p : k.noisePhrases)
        if (lower.startsWith(p)) {
            *why = u"Hinweis \"%1\""_s.arg(p);
            return true;
        }
    for (QStringView w : Words(lower)) {
        const QString bare = Bare(w);
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
        const QStringView name = text.left(colon).trimmed();
        if (!name.isEmpty() && CountDigitsIn(name) == 0 && !name.contains(u'@') &&
            Words(name).size() <= 6) {
            LabelHit hit;
            hit.name = name.toString();
            hit.rest = text.mid(colon + 1).trimmed().toString();
            const QString lower = hit.name.toLower();
            if (const Label* l = k.label(lower)) {
                hit.known = true;
                hit.label = *l;
            } else if (const auto combined = combinedPhoneLabel(lower)) {
                hit.known = true;
                hit.label = *combined;
            }
            return hit;
        }
    }
    // Phone, mail and web labels also stand without a colon: "Tel. 0711 1234", "Fax 0711".
    const QList<QStringView> words = Words(text);
    if (words.size() < 2 || !k.label(words[0].toString().toLower()))
        return std::nullopt;
    for (qsizetype n = std::min<qsizetype>(3, words.size() - 1); n >= 1; --n) {
        const QString lower = joined(words, 0, n).toLower();
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

std::optional<PhoneNumber> ParsePhone(QStringView value, bool strict)
{
    value = value.trimmed();
    if (value.isEmpty())
        return std::nullopt;
    const auto digitAt = [&value](qsizetype i) {
        if (i < 0 || i >= value.size())
            return false;
        if (isDigit(value[i]))
            return true;
        // An OCR slip counts when a real digit or another slip stands beside it.
        return isDigitLike(value[i]) && ((i > 0 && isDigit(value[i - 1])) ||
                                         (i + 1 < value.size() && isDigit(value[i + 1])) ||
                                         (i > 0 && isDigitLike(value[i - 1]) &&
                                          i + 1 < value.size() && isDigit(value[i + 1])));
    };
    const QChar first = value[0];
    if (!(first == u'+' || first == u'(' || digitAt(0)))
        return std::nullopt;
    static const QString numberChars = u" +()/-.–"_s;
    QString number;
    qsizetype i = 0;
    int digits = 0;
    for (; i < value.size(); ++i) {
        const QChar c = value[i];
        if (digitAt(i)) {
            number.append(asDigit(c));
            ++digits;
        } else if (numberChars.contains(c)) {
            // A bracket that opens words is a note, not an area code.
            if (c == u'(' && i + 1 < value.size() && value[i + 1].isLetter())
                break;
            number.append(c);
        } else {
            break;
        }
    }
    number = stripTrailing(number, u" /-.–(");
    if (number.count(u'(') != number.count(u')'))
        return std::nullopt;
    if (digits < 6 || digits > 16)
        return std::nullopt;
    PhoneNumber out;
    out.value = number;
    QStringView rest = value.mid(i).trimmed();
    if (rest.startsWith(u'(') && rest.endsWith(u')')) {
        const QString note = rest.mid(1, rest.size() - 2).trimmed().toString().toLower();
        if (const Label* l = knowledge().label(note); l && l->kind == LabelKind::Phone)
            out.role = roleOf(l->qualifier);
        rest = {};
    }
    if (strict && !rest.isEmpty())
        return std::nullopt;
    return out;
}

namespace {

// The national number without trunk zero, and the country when the code is written.
QString nationalDigits(const QString& number, QString* country)
{
    QString digits;
    QString s = number;
    s.remove(u"(0)"_s);
    const bool international = s.startsWith(u'+') || s.startsWith(u"00"_s);
    for (QChar c : s)
        if (isDigit(c))
            digits.append(c);
    if (international) {
        if (digits.startsWith(u"00"_s))
            digits = digits.mid(2);
        for (const DialCode& d : knowledge().dialCodes) {
            const QString code = d.code.mid(1);
            if (digits.startsWith(code)) {
                *country = d.country;
                return digits.mid(code.size());
            }
        }
        return {};
    }
    return digits.startsWith(u'0') ? digits.mid(1) : QString();
}

} // namespace

bool IsMobileNumber(const QString& number, const QString& country)
{
    QString written;
    const QString national = nationalDigits(number, &written);
    const QString& land = written.isEmpty() ? country : written;
    for (const DialCode& d : knowledge().dialCodes) {
        if (d.country != land)
            continue;
        for (const QString& p : d.mobilePrefixes)
            if (national.startsWith(p))
                return true;
        return false;
    }
    return false;
}

QString CountryOfNumber(const QString& number)
{
    QString country;
    nationalDigits(number, &country);
    return country;
}

QString FindEMail(QStringView text)
{
    const qsizetype at = text.indexOf(u'@');
    if (at <= 0)
        return {};
    const auto localChar = [](QChar c) {
        return c.isLetterOrNumber() || QStringView(u"._%+-'").contains(c);
    };
    const auto domainChar = [](QChar c) { return c.isLetterOrNumber() || c == u'.' || c == u'-'; };
    qsizetype from = at;
    while (from > 0 && localChar(text[from - 1]))
        --from;
    qsizetype to = at + 1;
    while (to < text.size() && domainChar(text[to]))
        ++to;
    QString domain = stripTrailing(text.mid(at + 1, to - at - 1), u".-");
    if (from == at || !domain.contains(u'.') || domain.startsWith(u'.'))
        return {};
    const qsizetype tld = domain.lastIndexOf(u'.');
    if (domain.size() - tld - 1 < 2)
        return {};
    return text.mid(from, at - from).toString() + u'@' + domain;
}

QString FindWebHost(QStringView text, bool bare)
{
    for (QStringView w : Words(text)) {
        QStringView host = w;
        bool marked = false;
        for (const QString& scheme : {u"https://"_s, u"http://"_s}) {
            const qsizetype at = w.indexOf(scheme, 0, Qt::CaseInsensitive);
            if (at >= 0) {
                host = w.mid(at + scheme.size());
                marked = true;
                break;
            }
        }
        if (!marked && w.startsWith(u"www."_s, Qt::CaseInsensitive))
            marked = true;
        if (!marked && !bare)
            continue;
        while (!host.isEmpty() &&
               (host.front() == u'(' || host.front() == u'<' || host.front() == u'['))
            host = host.mid(1);
        qsizetype end = 0;
        while (end < host.size() &&
               (host[end].isLetterOrNumber() || host[end] == u'.' || host[end] == u'-'))
            ++end;
        QString h = stripTrailing(host.left(end), u".-");
        if (h.contains(u'@') || !h.contains(u'.'))
            continue;
        const qsizetype tld = h.lastIndexOf(u'.');
        const QStringView ending = QStringView(h).mid(tld + 1);
        bool letters = ending.size() >= 2;
        for (QChar c : ending)
            letters = letters && c.isLetter();
        if (!letters)
            continue;
        // A lone domain must be the whole word (not "z.B." or "Dr.med").
        if (!marked && (end != host.size() && host[end] != u'/'))
            continue;
        if (!marked && h.count(u'.') < 1)
            continue;
        return h;
    }
    return {};
}

std::optional<Place> ParsePostcodeCity(QStringView text)
{
    const Knowledge& k = knowledge();
    QString t = text.toString();
    // "CH - 9000" and "D -12345": the prefix joined to its number.
    {
        const QList<QStringView> w = Words(t);
        if (w.size() >= 3 && (w[1] == u"-"_s || w[1] == u"–"_s) &&
            k.postalPrefixes.contains(w[0].toString().toUpper()))
            t = w[0].toString() + u'-' + t.mid(w[2].data() - t.constData());
        else if (w.size() >= 2 && w[0].size() <= 3 && w[0].endsWith(u'-') &&
                 k.postalPrefixes.contains(w[0].chopped(1).toString().toUpper()))
            t = w[0].toString() + t.mid(w[1].data() - t.constData());
    }
    const QList<QStringView> w = Words(t);
    if (w.isEmpty())
        return std::nullopt;

    // US: "Chicago, IL 60601"
    if (w.size() >= 3) {
        const QStringView zip = w.back();
        const QStringView state = w[w.size() - 2];
        const bool zipOk = (zip.size() == 5 && CountDigitsIn(zip) == 5) ||
                           (zip.size() == 10 && zip[5] == u'-' && CountDigitsIn(zip) == 9);
        if (zipOk && k.usStates.contains(state.toString()) && w[w.size() - 3].endsWith(u',')) {
            Place p;
            p.plz = zip.toString();
            p.ort = t.left(zip.data() - t.constData()).trimmed();
            p.land = u"USA"_s;
            p.system = u"us"_s;
            return p;
        }
    }
    // UK: "Leeds LS2 9ZZ", "SW1A 1AA"
    if (w.size() >= 2) {
        const QStringView out = w[w.size() - 2];
        const QStringView in = w.back();
        const auto upperLetter = [](QChar c) { return c >= u'A' && c <= u'Z'; };
        bool outOk = out.size() >= 2 && out.size() <= 4 && upperLetter(out[0]);
        if (outOk) {
            qsizetype i = 1;
            if (upperLetter(out[i]))
                ++i;
            outOk = i < out.size() && isDigit(out[i]);
            for (qsizetype j = i + 1; outOk && j < out.size(); ++j)
                outOk = isDigit(out[j]) || upperLetter(out[j]);
        }
        const bool inOk =
            in.size() == 3 && isDigit(in[0]) && upperLetter(in[1]) && upperLetter(in[2]);
        if (outOk && inOk) {
            Place p;
            p.plz = out.toString() + u' ' + in.toString();
            p.ort = stripTrailing(t.left(out.data() - t.constData()).trimmed(), u",");
            p.land = u"Großbritannien"_s;
            p.system = u"uk"_s;
            return p;
        }
    }

    // Prefix, digits, city: "D-12345 Stadt", "12345 Stadt", "1012 AB Amsterdam"
    QString land;
    QString system;
    int wantDigits = 0;
    QString code = w[0].toString();
    if (const qsizetype dash = code.indexOf(u'-'); dash > 0 && dash <= 2) {
        const auto it = k.postalPrefixes.constFind(code.left(dash).toUpper());
        if (it == k.postalPrefixes.cend())
            return std::nullopt;
        land = it->country;
        wantDigits = it->digits;
        system = land;
        code = code.mid(dash + 1);
    }
    const QString digits = mendedNumber(code);
    if (digits.isEmpty() || (digits.size() != 4 && digits.size() != 5) ||
        (wantDigits && digits.size() != wantDigits))
        return std::nullopt;
    if (CountDigitsIn(code) < 3)
        return std::nullopt;
    qsizetype cityFrom = 1;
    QString plz = digits;
    if (digits.size() == 4 && w.size() >= 3 && w[1].size() == 2 && IsAllCaps(w[1]) &&
        (land.isEmpty() || land == u"Niederlande"_s)) {
        plz += u' ' + w[1].toString();
        cityFrom = 2;
        land = u"Niederlande"_s;
        system = u"nl"_s;
    }
    if (cityFrom >= w.size())
        return std::nullopt;
    const QStringView firstCity = w[cityFrom];
    if (!firstCity[0].isLetter() || !firstCity[0].isUpper())
        return std::nullopt;
    QString city = t.mid(firstCity.data() - t.constData()).trimmed();
    if (CountDigitsIn(city) > 0)
        return std::nullopt;
    // "1200 Market Street" is a street with its number in front.
    const QList<QStringView> cityWords = Words(city);
    for (qsizetype i = 1; i < cityWords.size(); ++i) // "St. Gallen" is a saint's town
        if (k.streetWords.words.contains(Bare(cityWords[i])))
            return std::nullopt;
    // "Berlin, Germany"
    if (const qsizetype comma = city.lastIndexOf(u", "_s); comma > 0) {
        const QString country = CountryName(QStringView(city).mid(comma + 2));
        if (!country.isEmpty()) {
            land = country;
            city = city.left(comma).trimmed();
        }
    }
    if (Words(city).size() > 5)
        return std::nullopt;
    Place p;
    p.plz = plz;
    p.ort = city;
    p.land = land;
    p.system = system.isEmpty() ? QString::number(digits.size()) : system;
    return p;
}

std::optional<Place> ParsePostcodeOnly(QStringView text)
{
    const QList<QStringView> w = Words(text);
    if (w.size() != 1)
        return std::nullopt;
    QString code = w[0].toString();
    Place p;
    if (const qsizetype dash = code.indexOf(u'-'); dash > 0 && dash <= 2) {
        const auto it = knowledge().postalPrefixes.constFind(code.left(dash).toUpper());
        if (it == knowledge().postalPrefixes.cend())
            return std::nullopt;
        p.land = it->country;
        code = code.mid(dash + 1);
    }
    if ((code.size() != 4 && code.size() != 5) || CountDigitsIn(code) != code.size())
        return std::nullopt;
    p.plz = code;
    p.system = p.land.isEmpty() ? QString::number(code.size()) : p.land;
    return p;
}

int StreetStrength(QStringView text, QString* value)
{
    const Knowledge& k = knowledge();
    const QList<QStringView> w = Words(text);
    if (w.size() < 2 || w.size() > 8)
        return 0;
    const auto houseNumber = [](QStringView s, QString* mended) {
        // "12", "2a", "8–10", "18/4", "2O"
        qsizetype i = 0;
        QString out;
        int digits = 0;
        while (i < s.size() && (isDigit(s[i]) || isDigitLike(s[i]))) {
            out.append(asDigit(s[i]));
            digits += isDigit(s[i]);
            ++i;
        }
        if (digits == 0 || i > 4)
            return false;
        if (i < s.size() && s[i].isLetter() && s[i].isLower() && i + 1 == s.size()) {
            out.append(s[i]);
            ++i;
        }
        if (i < s.size() && QStringView(u"-–/").contains(s[i])) {
            out.append(s[i++]);
            const qsizetype start = i;
            while (i < s.size() && isDigit(s[i]))
                out.append(s[i++]);
            if (i == start || i - start > 4)
                return false;
            if (i < s.size() && s[i].isLetter() && i + 1 == s.size())
                out.append(s[i++]);
        }
        if (i != s.size())
            return false;
        *mended = out;
        return true;
    };
    const auto streetWord = [&k](QStringView word) {
        const QString lower = Bare(word);
        return k.streetWords.has(lower) || k.streetWords.words.contains(lower);
    };
    for (QStringView word : w) {
        const QString bare = Bare(word);
        if (bare == u"nr."_s || bare == u"nr"_s || bare == u"no."_s || bare == u"tel."_s ||
            bare.contains(u'@'))
            return 0;
    }

    QString number;
    // "Name 12" and "Name 12 a"
    qsizetype last = w.size() - 1;
    QString suffix;
    if (w.size() >= 3 && w[last].size() == 1 && w[last][0].isLetter() && w[last][0].isLower()) {
        suffix = w[last].toString();
        --last;
    }
    if (houseNumber(w[last], &number) && w[0][0].isLetter()) {
        bool named = true;
        bool word = false;
        for (qsizetype i = 0; i < last; ++i) {
            if (CountDigitsIn(w[i]) > 0)
                named = false;
            word = word || streetWord(w[i]);
        }
        if (named && (w[0][0].isUpper())) {
            const QStringView head = text.left(w[last].data() - text.data()).trimmed();
            *value = head.toString() + u' ' + number + (suffix.isEmpty() ? u""_s : u' ' + suffix);
            if (word)
                return 2;
            if (k.streetLeadWords.contains(Bare(w[0])))
                return 2;
            return last <= 4 ? 1 : 0;
        }
    }
    // "14 Cathedral Close", "200 W. Harbor Drive, Suite 1200", "12 rue de Rivoli"
    if (houseNumber(w[0], &number) && w[1][0].isLetter()) {
        bool word = false;
        for (qsizetype i = 1; i < w.size(); ++i)
            word = word || streetWord(w[i]) || k.streetLeadWords.contains(Bare(w[i]));
        *value = text.toString();
        return word ? 2 : (w.size() <= 5 ? 1 : 0);
    }
    return 0;
}

bool IsPoBox(QStringView text)
{
    static const QStringList heads{u"postfach"_s,        u"postf."_s,        u"pf"_s,
                                   u"p.o. box"_s,        u"po box"_s,        u"p. o. box"_s,
                                   u"p.o.box"_s,         u"postbus"_s,       u"case postale"_s,
                                   u"casella postale"_s, u"boîte postale"_s, u"bp"_s};
    const QString lower = text.toString().toLower();
    for (const QString& h : heads) {
        if (!startsWithWord(lower, h))
            continue;
        const QStringView rest = QStringView(lower).mid(h.size()).trimmed();
        if (rest.isEmpty())
            return false;
        for (QChar c : rest)
            if (!isDigit(c) && c != u' ' && c != u'.' && c != u'-')
                return false;
        return true;
    }
    return false;
}

bool IsAddressExtra(QStringView text)
{
    static const QSet<QString> words{
        u"gebäude"_s, u"haus"_s,     u"campus"_s, u"eingang"_s,    u"hintereingang"_s,
        u"etage"_s,   u"stock"_s,    u"og"_s,     u"hinterhaus"_s, u"vorderhaus"_s,
        u"aufgang"_s, u"building"_s, u"floor"_s,  u"suite"_s,      u"unit"_s,
        u"apt."_s,    u"wing"_s,     u"bau"_s,    u"trakt"_s,      u"halle"_s};
    const QString lower = text.toString().toLower();
    if (lower.startsWith(u"c/o"_s))
        return true;
    const QList<QStringView> w = Words(lower);
    if (w.size() > 6)
        return false;
    for (QStringView word : w)
        if (words.contains(Bare(word)))
            return true;
    return false;
}

QString CountryName(QStringView text)
{
    const QString lower = stripTrailing(text.trimmed(), u".").toLower();
    return knowledge().countries.value(lower);
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
    const QList<QStringView> w = Words(text);
    if (w.size() < 2)
        return false;
    for (QStringView word : w) {
        const QString bare = Bare(word);
        if (word[0].isUpper() && k.companyWords.has(bare))
            return true;
    }
    return false;
}

bool IsDepartmentLine(QStringView text)
{
    const QList<QStringView> w = Words(text);
    return w.size() >= 2 && knowledge().departmentWords.words.contains(Bare(w[0]));
}

bool IsJobLine(QStringView text)
{
    const Knowledge& k = knowledge();
    const QList<QStringView> w = Words(text);
    if (w.isEmpty() || w.size() > 8)
        return false;
    for (QStringView word : w) {
        const QString bare = Bare(word);
        if (k.jobWords.has(bare))
            return true;
    }
    return false;
}

bool IsKnownGivenName(QStringView word)
{
    const QString lower = word.toString().toLower();
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
    QList<QStringView> w = Words(text);
    PersonName p;
    qsizetype i = 0;
    // "Ihr", "Ihre", "i. A."
    for (int round = 0; round < 2 && i < w.size(); ++round) {
        if (i + 1 < w.size() && k.signWords.contains(Bare(joined(w, i, i + 2))))
            i += 2;
        else if (k.signWords.contains(Bare(w[i])))
            ++i;
    }
    QStringList titles;
    bool jobSeen = false;
    while (i < w.size()) {
        const QString bare = Bare(w[i]);
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
    QList<QString> names;
    for (qsizetype j = i; j < end; ++j)
        names.append(stripTrailing(w[j], u","));
    if (names.size() < 2 || names.size() > 4)
        return std::nullopt;
    // A comma inside ("Meier, Hans") or behind the first word turns the order.
    for (qsizetype j = 0; j < names.size(); ++j) {
        const QString& n = names[j];
        const QString lower = n.toLower();
        const bool particle = j > 0 && j + 1 < names.size() && isParticle(lower);
        const bool initial = j > 0 && j + 1 < names.size() && isInitial(n);
        if (!particle && !initial && !isNameWord(n))
            return std::nullopt;
        if (particle || initial)
            continue;
        if (k.companyWords.words.contains(lower) || k.jobWords.words.contains(lower) ||
            k.legalForms.contains(n) || k.streetWords.words.contains(lower) ||
            k.countries.contains(lower) || k.departmentWords.words.contains(lower) ||
            k.salutations.contains(lower) || k.noiseWords.contains(lower))
            return std::nullopt;
    }
    if (isParticle(names.back().toLower()) || isInitial(names.back()))
        return std::nullopt;
    qsizetype first = 1;
    if (names.size() >= 3 && IsKnownGivenName(names[1]) && !isInitial(names[1]) &&
        !isParticle(names[1].toLower()))
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

QString SalutationOnly(QStringView text)
{
    const QList<QStringView> w = Words(text);
    if (w.size() != 1)
        return {};
    const auto it = knowledge().salutations.constFind(Bare(w[0]));
    return it == knowledge().salutations.cend() ? QString() : it->german;
}

QString DegreeOnly(QStringView text)
{
    const bool caps = IsAllCaps(text);
    const QList<QStringView> w = Words(text);
    if (w.isEmpty() || w.size() > 4 || !isDegree(w[0], caps))
        return {};
    for (qsizetype i = 1; i < w.size(); ++i)
        if (!isDegree(w[i], caps) && !isDegreeFollow(w[i], caps))
            return {};
    return text.toString();
}

} // namespace zf::enhanced
