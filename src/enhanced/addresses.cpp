#include "recognise.h"
#include "wordbits.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace zf::enhanced {

namespace {

// How many leading words of w form a postcode of one of the known shapes ("60-104",
// "851 02", "H91 X2K7"), 0 when none; the countries of the shape in *land, "|" between.
qsizetype shapedPostcode(const WordViews& w, qsizetype from, QString* land)
{
    const auto fits = [](QStringView word, QStringView shape) {
        if (word.size() != shape.size())
            return false;
        for (qsizetype i = 0; i < word.size(); ++i) {
            const QChar c = word[i];
            const bool upper = c >= u'A' && c <= u'Z';
            const bool ok = shape[i] == u'N'   ? isDigit(c)
                            : shape[i] == u'A' ? upper
                            : shape[i] == u'X' ? upper || isDigit(c)
                                               : c == shape[i];
            if (!ok)
                return false;
        }
        return true;
    };
    static const QList<std::pair<QStringList, QString>> shapes = [] {
        QList<std::pair<QStringList, QString>> out;
        for (const auto& [shape, country] : knowledge().postalFormats)
            out.append({shape.split(u' ', Qt::SkipEmptyParts), country});
        return out;
    }();
    // Most words carry no digit; when every shape opens with one, they are passed over.
    static const bool digitFirst = std::all_of(shapes.cbegin(), shapes.cend(), [](const auto& s) {
        return !s.first.isEmpty() && s.first.front().contains(u'N');
    });
    if (from >= w.size() || (digitFirst && CountDigitsIn(w[from]) == 0))
        return 0;
    for (const auto& [parts, country] : shapes) {
        if (from + parts.size() > w.size())
            continue;
        bool all = true;
        for (qsizetype i = 0; all && i < parts.size(); ++i)
            all = fits(w[from + i], parts[i]);
        if (all) {
            *land = country;
            return parts.size();
        }
    }
    return 0;
}

// "Milano (MI)": the province code behind an Italian (or Spanish) town is no part of it;
// "Lingen (Ems)" keeps its river.
QString withoutProvince(const QString& city)
{
    if (city.size() > 5 && city.endsWith(u')') && city[city.size() - 5] == u' ' &&
        city[city.size() - 4] == u'(' && IsAllCaps(QStringView(city).mid(city.size() - 3, 2)))
        return city.left(city.size() - 5);
    return city;
}

// A town's name has no digits but for the number of its post office or district behind
// it: "8021 Zürich 1", "110 00 Praha 1".
bool hasDigitsBeyondDistrict(const QString& city)
{
    const int digits = CountDigitsIn(city);
    if (digits == 0)
        return false;
    const WordViews w = Words(city);
    return !(w.size() >= 2 && w.back().size() <= 2 && CountDigitsIn(w.back()) == w.back().size() &&
             digits == w.back().size());
}

// A scanned l or o read as a digit in a town's name: "Kasse1", "B0nn".
QString mendedTown(const QString& city)
{
    QString out = city;
    for (qsizetype i = 1; i < out.size(); ++i) {
        const QChar c = out[i];
        if ((c != u'1' && c != u'0') || !out[i - 1].isLetter() || !out[i - 1].isLower())
            continue;
        if (i + 1 == out.size() || out[i + 1] == u' ' || out[i + 1].isLetter())
            out[i] = c == u'1' ? u'l' : u'o';
    }
    return out;
}

} // namespace

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

    // A postcode of another shape, in front of the town ("60-104 Poznań", "851 02 Sundsvall",
    // "PL-60-104 Poznań") or behind it ("Galway H91 X2K7").
    if (w.size() >= 2) {
        QString land;
        qsizetype from = 0;
        QString head = w[0].toString();
        if (const qsizetype dash = head.indexOf(u'-'); dash > 0 && dash <= 3) {
            const auto it = k.postalPrefixes.constFind(head.left(dash).toUpper());
            if (it != k.postalPrefixes.cend() && !isDigit(head[0])) {
                const WordViews rest =
                    Words(QStringView(t).mid(w[0].data() - t.constData() + dash + 1));
                if (const qsizetype n = shapedPostcode(rest, 0, &land);
                    n > 0 && land.split(u'|').contains(it->country) && n < rest.size()) {
                    Place p;
                    p.plz = joined(rest, 0, n);
                    p.ort = withoutProvince(t.mid(rest[n].data() - t.constData()).trimmed());
                    p.land = it->country;
                    p.system = p.land;
                    if (p.ort[0].isUpper() && !hasDigitsBeyondDistrict(p.ort))
                        return p;
                }
            }
        }
        qsizetype n = shapedPostcode(w, from, &land);
        bool behind = false;
        if (n == 0) {
            for (qsizetype s = 1; s < w.size() && n == 0; ++s)
                if (const qsizetype m = shapedPostcode(w, s, &land);
                    m > 0 && s + m == w.size() && CountDigitsIn(w[s]) < w[s].size()) {
                    n = m;
                    from = s;
                    behind = true;
                }
        }
        if (n > 0 && (behind || n < w.size())) {
            Place p;
            p.plz = joined(w, from, from + n);
            p.ort = behind ? stripTrailing(t.left(w[from].data() - t.constData()).trimmed(), u",")
                           : t.mid(w[n].data() - t.constData()).trimmed();
            p.ort = withoutProvince(p.ort);
            p.land = land.section(u'|', 0, 0);
            p.system = p.land;
            p.shared = land.contains(u'|');
            bool street = false;
            for (QStringView cw : Words(p.ort))
                street = street || k.streetWords.words.contains(Bare(cw));
            if (!p.ort.isEmpty() && p.ort[0].isLetter() && p.ort[0].isUpper() &&
                !hasDigitsBeyondDistrict(p.ort) && !street && Words(p.ort).size() <= 5)
                return p;
        }
    }

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
    if (hasDigitsBeyondDistrict(city))
        city = mendedTown(city);
    if (hasDigitsBeyondDistrict(city))
        return std::nullopt;
    // "1200 Market Street" is a street with its number in front.
    const WordViews cityWords = Words(city);
    for (qsizetype i = 1; i < cityWords.size(); ++i) // "St. Gallen" is a saint's town
        if (k.streetWords.words.contains(BareKey(cityWords[i]).str()))
            return std::nullopt;
    // "Berlin, Germany", "Lyon – France", "Wien / Austria"
    for (const QString& mark : {u", "_s, u" – "_s, u" - "_s, u" / "_s}) {
        const qsizetype at = city.lastIndexOf(mark);
        if (at <= 0)
            continue;
        const QString country = CountryName(QStringView(city).mid(at + mark.size()));
        if (!country.isEmpty()) {
            land = country;
            city = city.left(at).trimmed();
            break;
        }
    }
    if (WordCount(city) > 5)
        return std::nullopt;
    Place p;
    p.plz = plz;
    p.ort = withoutProvince(city);
    // Only Italy puts a province code behind the town of a five-digit postcode.
    if (land.isEmpty() && digits.size() == 5 && p.ort.size() < city.size()) {
        land = u"Italien"_s;
        system = land;
    }
    p.land = land;
    p.system = system.isEmpty() ? QString::number(digits.size()) : system;
    return p;
}

std::optional<Place> ParsePostcodeOnly(QStringView text)
{
    const WordViews w = Words(text);
    if (QString land; !w.isEmpty() && shapedPostcode(w, 0, &land) == w.size()) {
        Place p;
        p.plz = joined(w, 0, w.size());
        p.land = land.section(u'|', 0, 0);
        p.system = p.land;
        p.shared = land.contains(u'|');
        return p;
    }
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

namespace {

// A scanned l or o read as a digit inside a word: "Marktp1atz" is "Marktplatz".
QString withLettersMended(QStringView text)
{
    QString out;
    for (qsizetype i = 0; i < text.size(); ++i) {
        const QChar c = text[i];
        // "A1lee": an upper-case letter may stand in front.
        const bool inWord = i > 0 && i + 1 < text.size() && text[i - 1].isLetter() &&
                            text[i + 1].isLetter() && text[i + 1].isLower();
        if (inWord && (c == u'1' || c == u'0')) {
            if (out.isEmpty())
                out = text.toString();
            out[i] = c == u'1' ? u'l' : u'o';
        }
    }
    return out;
}

// "bus 5", "box 5", "bte 5" behind a Belgian or Dutch house number: the letter box.
qsizetype letterBoxWords(const WordViews& w)
{
    // Vienna's door and staircase may stand there too: "Stiege 2", "Top 7", "Tür 4".
    static const QSet<QString> heads{u"bus"_s,   u"box"_s,    u"bte"_s, u"bte."_s,
                                     u"boîte"_s, u"stiege"_s, u"top"_s, u"tür"_s};
    const qsizetype n = w.size();
    if (n >= 4 && w[n - 2].size() <= 5 && heads.contains(w[n - 2].toString().toLower()) &&
        CountDigitsIn(w[n - 1]) > 0 && CountDigitsIn(w[n - 1]) + 1 >= w[n - 1].size() &&
        CountDigitsIn(w[n - 3]) > 0)
        return 2;
    return 0;
}

} // namespace

int StreetStrength(QStringView text, QString* value)
{
    const Knowledge& k = knowledge();
    if (const QString mended = withLettersMended(text); !mended.isEmpty())
        return StreetStrength(mended, value);
    WordViews w = Words(text);
    if (w.size() < 2 || w.size() > 8)
        return 0;
    QString letterBox;
    if (const qsizetype n = letterBoxWords(w); n > 0) {
        letterBox = text.mid(w[w.size() - n].data() - text.data()).toString();
        w.resize(w.size() - n);
        if (w.back().endsWith(u',')) {
            letterBox.prepend(u", "_s);
            w.back().chop(1);
        } else {
            letterBox.prepend(u' ');
        }
    }
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
        // "3a", and "3A" as all-caps letterheads and many forms write it.
        if (i < s.size() && s[i].isLetter() && i + 1 == s.size()) {
            out.append(s[i]);
            ++i;
        }
        // Vienna writes staircase and door too: "17/2/7".
        for (int group = 0; group < 3 && i < s.size() && QStringView(u"-–/").contains(s[i]);
             ++group) {
            if (group > 0 && s[i] != u'/')
                return false;
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
    // "12 a", "60 C", and the French and Dutch "12 bis", "45 hs" (ground floor).
    static const QSet<QString> suffixWords{u"bis"_s, u"ter"_s, u"hs"_s};
    if (w.size() >= 3 && CountDigitsIn(w[last - 1]) > 0 &&
        suffixWords.contains(w[last].toString())) {
        suffix = w[last].toString();
        --last;
    } else if (w.size() >= 3 && w[last].size() == 1 && w[last][0].isLetter() &&
               (w[last][0].isLower() || (w[last][0].isUpper() && CountDigitsIn(w[last - 1]) > 0))) {
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
        if (named && (w[0][0].isUpper() || k.streetLeadWords.contains(Bare(w[0])))) {
            const QStringView head = text.left(w[last].data() - text.data()).trimmed();
            *value = head.toString() + u' ' + number + (suffix.isEmpty() ? u""_s : u' ' + suffix) +
                     letterBox;
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
    static const QStringList heads{
        u"postfach"_s,        u"postf."_s,  u"pf"_s,      u"p.o. box"_s,     u"po box"_s,
        u"p. o. box"_s,       u"p.o.box"_s, u"postbus"_s, u"case postale"_s, u"casella postale"_s,
        u"boîte postale"_s,   u"bp"_s,      u"box"_s,     u"postboks"_s,     u"postbox"_s,
        u"skrytka pocztowa"_s};
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
        u"gebäude"_s, u"haus"_s,      u"campus"_s,     u"eingang"_s,    u"hintereingang"_s,
        u"etage"_s,   u"stock"_s,     u"og"_s,         u"hinterhaus"_s, u"vorderhaus"_s,
        u"aufgang"_s, u"building"_s,  u"floor"_s,      u"suite"_s,      u"unit"_s,
        u"apt."_s,    u"wing"_s,      u"bau"_s,        u"trakt"_s,      u"halle"_s,
        u"flat"_s,    u"apartment"_s, u"appartement"_s};
    // Words that also name firms count only with their number: "Studio 5", "Raum 2.14".
    static const QSet<QString> numbered{u"studio"_s, u"level"_s, u"room"_s, u"zimmer"_s, u"raum"_s};
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
    for (qsizetype i = 0; i < w.size(); ++i) {
        const BareKey bare(w[i]);
        if (words.contains(bare.str()))
            return true;
        if (i + 1 < w.size() && isDigit(w[i + 1].front()) && numbered.contains(bare.str()))
            return true;
    }
    return false;
}

QString CountryName(QStringView text)
{
    return knowledge().countries.value(LowerKey(chopTrailing(text.trimmed(), u".")).str());
}

} // namespace zf::enhanced
