#pragma once

// What "contacts find TEXT" looks for: TEXT in a name, the company, the e-mail address or a
// phone number, case-insensitive; a number also by its digits and its international form.

#include <QList>
#include <QString>

namespace zf::dup {

class TextSearch {
public:
    explicit TextSearch(const QString& text);
    bool isEmpty() const { return m_needle.isEmpty(); }
    // Whether the value of that field holds the text; false for a field not searched.
    bool matches(qint32 fieldId, const QString& value) const;
    // The fields searched.
    static const QList<qint32>& fields();

private:
    QString m_needle;        // folded
    QString m_digits;        // of a text that is a number, else ""
    QString m_international; // "+" and digits, or the plain digits
    QString m_beyondCode;    // digits a number matching m_international holds itself
};

} // namespace zf::dup
