#include "recognise.h"
#include "wordbits.h"

using namespace Qt::StringLiterals;

namespace zf::enhanced {

std::optional<Place> ParsePostcodeCity(QStringView text)
{
    const Knowledge& k = knowledge();
    QString t = text.toString();
    // "CH - 9000" and "D -12345": the prefix joined to its number.
    {
        const WordViews w = Words(t);
        if (w.size() >= 3 && (w[1] == u"-"_s || w[1] == u"–"_s) &&
            k.postalPrefixes.contains(w[0].toString().toUpper()))
            t = w[0].toString() + u'-' + t.mid(w[2].data() - t.constData());
        else if (w.size() >= 2 && w[0].size() <= 3 && w[0].endsWith(u'-') &&
                 k.postalPrefixes.contains(w[0].chopped(1).toString().toUpper()))
            t = w[0].toString() + t.mid(w[1].data() - t.constData());
    }
    const WordViews w = Words(t);
    if (w.isEmpty())
        return std::nullopt;

    // US: "Chicago, IL 60601"
    if (w.size() >= 3) {
        const QStringView zip = w.back();
        const QStringView state = w[w.size() - 2];
        const bool zipOk = (zip.size() == 5 && CountDigitsIn(zip) == 5) ||
                           (zip.size() == 10 && zip[5] == u'-' && CountDigitsIn(zip) == 9);
        if (zipOk && k.usStates.contains(keyOf(state)) && w[w.size() - 3].endsWith(u',')) {
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
    const WordViews cityWords = Words(city);
    for (qsizetype i = 1; i < cityWords.size(); ++i) // "St. Gallen" is a saint's town
        if (k.streetWords.words.contains(BareKey(cityWords[i]).str()))
            return std::nullopt;
    // "Berlin, Germany"
    if (const qsizetype comma = city.lastIndexOf(u", "_s); comma > 0) {
        const QString country = CountryName(QStringView(city).mid(comma + 2));
        if (!country.isEmpty()) {
            land = country;
            city = city.left(comma).trimmed();
        }
    }
    if (WordCount(city) > 5)
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
    const WordViews w = Words(text);
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
    const WordViews w = Words(text);
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
        const BareKey lowerKey(word);
        const QString& lower = lowerKey.str();
        // "Rd," and "Ave" are "Rd." and "Ave." with the dot left out.
        return k.streetWords.has(lower) || k.streetWords.words.contains(lower + u'.');
    };
    for (QStringView word : w) {
        const BareKey bareKey(word);
        const QString& bare = bareKey.str();
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
            if (k.streetLeadWords.contains(BareKey(w[0]).str()))
                return 2;
            return last <= 4 ? 1 : 0;
        }
    }
    // "14 Cathedral Close", "200 W. Harbor Drive, Suite 1200", "12, rue de Rivoli"
    if (houseNumber(stripTrailing(w[0], u","), &number) && w[1][0].isLetter()) {
        bool word = false;
        for (qsizetype i = 1; i < w.size(); ++i)
            word = word || streetWord(w[i]) || k.streetLeadWords.contains(BareKey(w[i]).str());
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
    const LowerKey lowerKey(text);
    const QString& lower = lowerKey.str();
    for (const QString& h : heads) {
        if (!startsWithWord(lower, h))
            continue;
        const QStringView rest = QStringView(lower).mid(h.size()).trimmed();
        if (rest.isEmpty())
            return h == u"postfach"_s || h == u"case postale"_s || h == u"casella postale"_s;
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
    // A branch in front of its town ("Filiale Nord") stands between the firm and the street.
    static const QSet<QString> branches{
        u"niederlassung"_s, u"zweigniederlassung"_s, u"filiale"_s,    u"zweigstelle"_s,
        u"außenstelle"_s,   u"geschäftsstelle"_s,    u"succursale"_s, u"branch"_s};
    const LowerKey lowerKey(text);
    const QString& lower = lowerKey.str();
    if (lower.startsWith(u"c/o"_s))
        return true;
    const WordViews w = Words(lower);
    if (w.size() > 6)
        return false;
    if (w.size() >= 2 && w.size() <= 4 && branches.contains(BareKey(w[0]).str()))
        return true;
    for (QStringView word : w)
        if (words.contains(BareKey(word).str()))
            return true;
    return false;
}

QString CountryName(QStringView text)
{
    return knowledge().countries.value(LowerKey(chopTrailing(text.trimmed(), u".")).str());
}

} // namespace zf::enhanced
