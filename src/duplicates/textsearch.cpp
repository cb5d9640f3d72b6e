#include "textsearch.h"

#include "analysis/fields.h"
#include "identity.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace zf::dup {

namespace {

QString digitsOf(QStringView text)
{
    QString digits;
    for (const QChar c : text)
        if (c.isDigit())
            digits.append(QChar(u'0' + c.digitValue()));
    return digits;
}

bool isPhoneField(qint32 fieldId)
{
    return fieldId == idOf(FieldId::Telefon) || fieldId == idOf(FieldId::Telefon2) ||
           fieldId == idOf(FieldId::Telefon3) || fieldId == idOf(FieldId::Mobil) ||
           fieldId == idOf(FieldId::Fax);
}

} // namespace

TextSearch::TextSearch(const QString& text) : m_needle(text.simplified().toCaseFolded())
{
    const QString digits = digitsOf(m_needle);
    const bool number =
        digits.size() >= 3 && std::all_of(m_needle.begin(), m_needle.end(), [](QChar c) {
            return c.isDigit() || QStringView(u" +-/().").contains(c);
        });
    if (!number)
        return;
    m_digits = digits;
    m_international = normalisePhone(m_needle);
    // Past "+" and a calling code of at most three digits, the international form holds only
    // digits a matching number has itself: a cheap test before normalising each number.
    if (m_international.startsWith(u'+'))
        m_beyondCode = m_international.mid(4).right(4);
}

const QList<qint32>& TextSearch::fields()
{
    static const QList<qint32> ids{
        idOf(FieldId::Kontakt),  idOf(FieldId::Vorname),  idOf(FieldId::Nachname),
        idOf(FieldId::Firma),    idOf(FieldId::EMail),    idOf(FieldId::Telefon),
        idOf(FieldId::Telefon2), idOf(FieldId::Telefon3), idOf(FieldId::Mobil),
        idOf(FieldId::Fax),
    };
    return ids;
}

bool TextSearch::matches(qint32 fieldId, const QString& value) const
{
    if (m_needle.isEmpty() || !fields().contains(fieldId))
        return false;
    if (value.toCaseFolded().simplified().contains(m_needle))
        return true;
    if (m_digits.isEmpty() || !isPhoneField(fieldId))
        return false;
    const QString valueDigits = digitsOf(value);
    return valueDigits.contains(m_digits) ||
           (valueDigits.contains(m_beyondCode) && normalisePhone(value).contains(m_international));
}

} // namespace zf::dup
