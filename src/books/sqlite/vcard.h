#pragma once

#include "contactbook.h"

#include <QByteArray>
#include <QDateTime>
#include <QList>
#include <QString>

namespace zf::act {

// vCard 4.0 (RFC 6350) for the contact book's export.
//
// A card holds no control character except the CRLF that ends or folds its lines: in every
// value and parameter a line break (CRLF, LF or CR) is kept as "\n" ("^n" in a parameter),
// a tab becomes a space, and every other control character (U+0000 to U+001F, U+007F to
// U+009F) is dropped.

// A text value: backslash, comma and line breaks escaped.
QString escapeVCardText(const QString& value);
// One component of a structured value (N, ADR, ORG): also the semicolon.
QString escapeVCardComponent(const QString& value);

// One card of the contact's values (those with a value; others are left out). The twenty
// standard fields go where the standard field table puts them (N, FN, ORG, TITLE, ADR, TEL,
// EMAIL and URL, the last without text escapes), any other field to an
// X-ZETTELFISCHER-FIELD-<id> property that carries the field's label.
//
// With a stamp the card also carries UID and REV, so that a program importing the export twice
// updates its contacts instead of doubling them.
struct CardStamp {
    QString uid;        // a URI, e.g. "urn:uuid:..."
    QDateTime revision; // the contact's last change
};
QByteArray contactToVCard(const QList<BookValue>& values, const CardStamp& stamp = {});

} // namespace zf::act
