#pragma once

// A vCard (3.0 when we write it) kept as its content lines, so that a card written by another
// program comes back byte for byte except for the lines we change.

#include "analysis/fields.h"
#include "books/fieldvalue.h"
#include "books/vcard/vcardtext.h"

#include <QByteArray>
#include <QDateTime>
#include <QList>
#include <QString>
#include <QStringList>

#include <optional>

namespace zf::carddav {

using books::FieldValue;

using zf::BookField;

// Text value escapes (backslash, comma, semicolon, line break). Line breaks of any kind become
// "\n"; other control characters are dropped (a tab becomes a space), so no value can start a
// new content line.
QString escapeText(const QString& value);
QString unescapeText(QStringView value);
// Splits at separators that are not escaped; the parts keep their escapes.
QStringList splitEscaped(QStringView value, QChar separator);
// Parameters and folding as in every card the program writes.
using vcard::foldLine;
using vcard::quoteParameter;
using vcard::unquoteParameter;

class VCard {
public:
    struct Line {
        QList<QByteArray> physical; // as read, without line ends; empty once changed or new
        QString group;              // "item1" of "item1.TEL", else ""
        QString name;               // upper case
        QString params;             // the text between name and ':', starting with ';' or ""
        QString value;              // still escaped
        bool parsed = false;        // false: kept verbatim, never matched

        QStringList types() const; // TYPE values and bare parameters, lower case
        std::optional<QString> param(QStringView name) const; // first value, unquoted
    };

    // Any bytes; CRLF or LF line ends, folded lines, UTF-8.
    static VCard parse(const QByteArray& data);
    // BEGIN, VERSION:3.0, UID, FN, N and END.
    static VCard blank(const QString& uid);

    QByteArray toBytes() const;
    const QList<Line>& lines() const { return m_lines; }

    QString uid() const;
    // The value a field has in the card, unescaped; "" when the card has none.
    QString field(qint32 fieldId) const;
    // Writes one field into its place and leaves every other line as it is. An empty value
    // clears the field: a component is emptied, a property of its own is removed.
    void setField(const FieldValue& field);
    // Gives the card what every card we write carries: UID, N, FN (from the names or the
    // company when empty) and REV.
    void finish(const QDateTime& revision);
    // The fields outside the standard twenty that the card holds, with their labels.
    QList<BookField> userFields() const;

private:
    qsizetype find(const QString& name, const QString& type, int occurrence) const;
    qsizetype endIndex() const;
    void setLine(qsizetype index, const QString& value);
    void insertLine(const QString& name, const QString& params, const QString& value);
    void setComponent(const QString& name, int component, int item, const QString& value);

    QList<Line> m_lines;
};

} // namespace zf::carddav
