#include "recognise.h"
#include "wordbits.h"

using namespace Qt::StringLiterals;

namespace zf::enhanced {

namespace {

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

namespace {

// "16.03.2026", "1.4.26": a date in a letter's reference line, never a number to call.
bool isDateShaped(QStringView number)
{
    int group = 0;
    int length = 0;
    for (QChar c : number) {
        if (isDigit(c)) {
            ++length;
        } else if (c == u'.' && length >= 1 && length <= 2 && group < 2) {
            ++group;
            length = 0;
        } else {
            return false;
        }
    }
    return group == 2 && (length == 2 || length == 4);
}

} // namespace

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
        // A scanned 5 read as S ends a digit group: "66 41 0S".
        if (value[i] == u'S' && i > 0 && isDigit(value[i - 1]) &&
            (i + 1 == value.size() || value[i + 1] == u' '))
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
            number.append(c == u'S' ? u'5' : asDigit(c));
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
    if (digits < 6 || digits > 16 || isDateShaped(number))
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
    // "(617) 555-0143 office", "0711 2345-0 fax": a phone label behind the number names its
    // line.
    if (!rest.isEmpty() && !rest.contains(u' ') && rest.size() <= 12)
        if (const Label* l = knowledge().label(LowerKey(chopTrailing(rest, u".:")).str());
            l && l->kind == LabelKind::Phone) {
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
            const QStringView code = QStringView(d.code).mid(1);
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
    // Only Switzerland writes its numbers "044 123 45 67": a two-digit area code behind the
    // trunk zero, then three, two and two digits.
    static const QString swiss = u"0NN NNN NN NN"_s;
    if (country.isEmpty() && number.size() == swiss.size()) {
        bool fits = true;
        for (qsizetype i = 0; fits && i < number.size(); ++i)
            fits = swiss[i] == u'N' ? isDigit(number[i]) : number[i] == swiss[i];
        if (fits && number[1] != u'0')
            country = u"Schweiz"_s;
    }
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
        // Without a colon no scheme can match; the case-blind search is not needed then.
        for (const QString& scheme : {u"https://"_s, u"http://"_s}) {
            if (!w.contains(u':'))
                break;
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

} // namespace zf::enhanced
