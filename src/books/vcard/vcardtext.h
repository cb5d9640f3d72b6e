#pragma once

// The text rules of every vCard the program writes (the export and the cards it files on a
// server): no card holds a control character except the CRLF that ends or folds its lines.

#include <QByteArray>
#include <QString>
#include <QStringView>

namespace zf::vcard {

// Line breaks of any kind (CRLF, LF, CR) as one LF, a tab as a space; every other control
// character (U+0000 to U+001F, U+007F to U+009F) dropped.
QString cleanControls(const QString& value);

// A text value with backslash, comma and line breaks escaped, and the semicolon where it
// would divide a structured value.
QString escapeValue(const QString& value, bool semicolon);

// A parameter value, quoted, with ^ escapes for caret, quote and line break (RFC 6868).
QString quoteParameter(const QString& value);
QString unquoteParameter(QStringView value);

// The content line in UTF-8, folded into lines of at most 75 octets, each ended by CRLF;
// a multi-octet character is never cut.
QByteArray foldLine(const QString& line);

} // namespace zf::vcard
