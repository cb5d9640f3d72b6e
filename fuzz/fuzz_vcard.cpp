// Any field values: the export must stay one well-formed card of folded UTF-8 lines.
//
// Input: records behind 0x01 bytes, each a field byte, then label and value divided by the
// first NUL byte (later ones belong to the value). Field bytes 'A' to 'T' pick one of the
// twenty standard fields, others any other id.

#include "analysis/fields.h"
#include "books/sqlite/vcard.h"

#include "require.h"

#include <cstddef>
#include <cstdint>

using namespace zf::act;

namespace {

qint32 fieldId(uint8_t b)
{
    return b >= 'A' && b < 'A' + 20 ? zf::idOf(zf::StandardFields[b - 'A'].id)
                                    : qint32(int8_t(b)) * 1009;
}

bool isStandard(qint32 id)
{
    return zf::standardField(id) != nullptr;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    QList<BookValue> values;
    int extraLines = 0;
    const QByteArray all(reinterpret_cast<const char*>(data), qsizetype(size));
    for (const QByteArray& record : all.split('\x01')) {
        if (record.isEmpty())
            continue;
        const QByteArray body = record.mid(1);
        const qsizetype split = body.indexOf('\0');
        const BookValue v{fieldId(uint8_t(record[0])),
                          QString::fromUtf8(split < 0 ? body : body.left(split)),
                          split < 0 ? QString() : QString::fromUtf8(body.mid(split + 1))};
        extraLines += !v.value.isEmpty() && !isStandard(v.fieldId);
        values.append(v);
    }

    const QByteArray card = contactToVCard(values);
    require(card.startsWith("BEGIN:VCARD\r\nVERSION:4.0\r\nFN:"));
    require(card.endsWith("\r\nEND:VCARD\r\n"));
    require(QString::fromUtf8(card).toUtf8() == card); // no character cut by the folding
    // Line breaks only as CRLF and no other control character; every physical line holds at
    // most 75 octets.
    require(card.count('\r') == card.count('\n') && card.count("\r\n") == card.count('\n'));
    for (const char c : card)
        require(c == '\r' || c == '\n' || (uchar(c) >= 0x20 && uchar(c) != 0x7F));
    for (const QChar c : QString::fromUtf8(card))
        require(c.unicode() < 0x80 || c.unicode() > 0x9F);
    for (const QByteArray& line : card.split('\n'))
        require(line.size() <= 76); // 75 octets and the CR

    // Unfolded, every content line is a property: a name, then a colon.
    QByteArray unfolded = card;
    unfolded.replace("\r\n ", "");
    int extrasSeen = 0;
    const QList<QByteArray> lines = unfolded.split('\n');
    for (qsizetype i = 0; i + 1 < lines.size(); ++i) {
        const QByteArray& line = lines[i];
        require(!line.isEmpty() && line.front() >= 'A' && line.front() <= 'Z' &&
                line.contains(':'));
        extrasSeen += line.startsWith("X-ZETTELFISCHER-FIELD-");
    }
    require(extrasSeen == extraLines);
    return 0;
}
