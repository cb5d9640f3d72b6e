#include "identity.h"

#include "analysis/fields.h"

#include <QRegularExpression>

using namespace Qt::StringLiterals;

namespace zf::dup {

namespace {

QString valueOf(const FieldValues& values, FieldId field)
{
    for (const auto& [id, value] : values)
        if (id == idOf(field))
            return value.trimmed();
    return {};
}

QString fold(QStringView text)
{
    return text.toString().toCaseFolded().simplified();
}

// Salutations and degrees ("Herr", "Dr.", "Dipl.-Ing.") say nothing about who it is.
QString personName(QStringView name)
{
    static const QStringList salutations{u"herr"_s, u"frau"_s, u"mr"_s, u"mrs"_s, u"ms"_s};
    QStringList kept;
    for (const QString& word : fold(name).split(u' ', Qt::SkipEmptyParts))
        if (!word.endsWith(u'.') && !salutations.contains(word))
            kept.append(word);
    return kept.join(u' ');
}

} // namespace

QString normalisePhone(QStringView number, QStringView callingCode)
{
    QString text = number.toString();
    text.remove(QRegularExpression(u"\\(\\s*0\\s*\\)"_s));
    QString digits;
    for (const QChar c : text)
        if (c.isDigit())
            digits.append(QChar(u'0' + c.digitValue()));
    const qsizetype plus = text.indexOf(u'+');
    const qsizetype firstDigit = text.indexOf(QRegularExpression(u"\\d"_s));
    if (plus >= 0 && (firstDigit < 0 || plus < firstDigit))
        return u'+' + digits;
    if (digits.startsWith(u"00"_s))
        return u'+' + digits.mid(2);
    if (digits.startsWith(u'0')) {
        // Italy dials its leading zero from abroad too.
        const QString national = callingCode == u"39" ? digits : digits.mid(1);
        return u'+' + callingCode.toString() + national;
    }
    return digits;
}

QString callingCodeOf(QStringView country)
{
    static const std::pair<QStringView, QStringView> codes[] = {
        {u"deutschland", u"49"},    {u"germany", u"49"},
        {u"österreich", u"43"},     {u"austria", u"43"},
        {u"schweiz", u"41"},        {u"switzerland", u"41"},
        {u"liechtenstein", u"423"}, {u"italien", u"39"},
        {u"italy", u"39"},          {u"frankreich", u"33"},
        {u"france", u"33"},         {u"niederlande", u"31"},
        {u"netherlands", u"31"},    {u"großbritannien", u"44"},
        {u"united kingdom", u"44"}, {u"usa", u"1"},
    };
    const QString folded = fold(country);
    for (const auto& [name, code] : codes)
        if (folded == name.toString().toCaseFolded())
            return code.toString();
    return {};
}

Identity identityOf(const FieldValues& values)
{
    Identity identity;
    const QString first = valueOf(values, FieldId::Vorname);
    const QString last = valueOf(values, FieldId::Nachname);
    identity.person =
        personName(!first.isEmpty() && !last.isEmpty() ? first + u' ' + last
                                                       : valueOf(values, FieldId::Kontakt));
    identity.company = fold(valueOf(values, FieldId::Firma));
    const QString email = valueOf(values, FieldId::EMail).toLower();
    if (!email.isEmpty())
        identity.emails.append(email);
    QString callingCode = callingCodeOf(valueOf(values, FieldId::Land));
    if (callingCode.isEmpty())
        callingCode = u"49"_s;
    QString mobile = normalisePhone(valueOf(values, FieldId::Mobil), callingCode);
    // A mobile number always has its network prefix: plain digits this long are a national
    // number without its leading zero, as the analysis writes one given with the home calling
    // code ("+49 170 …" -> "170…").
    if (mobile.size() >= 9 && !mobile.startsWith(u'+'))
        mobile = u'+' + callingCode + mobile;
    if (mobile.size() > 6) // shorter is no full number
        identity.mobiles.append(mobile);
    return identity;
}

std::optional<Reason> sameContact(const Identity& a, const Identity& b)
{
    for (const QString& email : a.emails)
        if (b.emails.contains(email))
            return Reason::EMail;
    // One word ("Meier") names too many people to call it the same one.
    if (a.person.contains(u' ') && a.person == b.person &&
        (a.company.isEmpty() || b.company.isEmpty() || a.company == b.company))
        return Reason::Name;
    for (const QString& mobile : a.mobiles)
        if (b.mobiles.contains(mobile))
            return Reason::Mobile;
    return std::nullopt;
}

Identity identityOfRows(const FieldRows& rows)
{
    FieldValues values;
    for (int row = 0; row < FieldRows::RowCount; ++row) {
        const std::optional<qint32> id = rows.fieldId(row);
        if (!id)
            continue;
        values.removeIf([&](const auto& v) { return v.first == *id; });
        values.append({*id, rows.value(row)});
    }
    return identityOf(values);
}

} // namespace zf::dup
