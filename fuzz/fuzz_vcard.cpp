// Any field values: the export must produce folded UTF-8 lines of at most 75 octets.

#include "act/vcard.h"

#include "require.h"

#include <cstddef>
#include <cstdint>

using namespace zf::act;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    // Records of: field id byte, then label and value separated by NUL bytes.
    QList<BookValue> values;
    const QByteArray all(reinterpret_cast<const char*>(data), qsizetype(size));
    for (const QByteArray& record : all.split('\x01')) {
        if (record.isEmpty())
            continue;
        const QList<QByteArray> parts = record.mid(1).split('\0');
        values.append(BookValue{qint32(uint8_t(record[0])) * 3 - 100,
                                QString::fromUtf8(parts.value(0)),
                                QString::fromUtf8(parts.value(1))});
    }
    const QByteArray card = contactToVCard(values);
    require(card.isEmpty() || card.endsWith("\r\n"));
    for (const QByteArray& line : card.split('\n'))
        require(line.size() <= 76); // 75 octets and the CR
    require(QString::fromUtf8(card).toUtf8() == card);
    return 0;
}
