#include "encoding.h"

namespace zf::profile {

namespace {

// Bytes 0x80 to 0x9F of Windows-1252; the undefined ones stand for themselves.
constexpr char16_t HighTable[32] = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x008D, 0x017D, 0x008F, 0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178,
};

char encodeChar(char16_t c)
{
    if (c < 0x80 || (c >= 0xA0 && c <= 0xFF))
        return char(c);
    for (int i = 0; i < 32; ++i)
        if (HighTable[i] == c)
            return char(0x80 + i);
    return '?';
}

} // namespace

QString DecodeAnsi(QByteArrayView bytes)
{
    QString out(bytes.size(), Qt::Uninitialized);
    QChar* d = out.data();
    for (qsizetype i = 0; i < bytes.size(); ++i) {
        const auto b = static_cast<unsigned char>(bytes[i]);
        d[i] = QChar(b >= 0x80 && b < 0xA0 ? HighTable[b - 0x80] : char16_t(b));
    }
    return out;
}

bool IsUtf8Text(QByteArrayView bytes)
{
    bool beyondAscii = false;
    const auto* p = reinterpret_cast<const unsigned char*>(bytes.data());
    const auto* const end = p + bytes.size();
    while (p < end) {
        const unsigned char b = *p;
        if (b < 0x80) {
            ++p;
            continue;
        }
        beyondAscii = true;
        int more = 0;
        char32_t c = 0;
        if (b >= 0xC2 && b <= 0xDF) {
            more = 1;
            c = b & 0x1F;
        } else if (b >= 0xE0 && b <= 0xEF) {
            more = 2;
            c = b & 0x0F;
        } else if (b >= 0xF0 && b <= 0xF4) {
            more = 3;
            c = b & 0x07;
        } else {
            return false;
        }
        if (end - p <= more)
            return false;
        for (int i = 1; i <= more; ++i) {
            if ((p[i] & 0xC0) != 0x80)
                return false;
            c = (c << 6) | (p[i] & 0x3F);
        }
        if ((more == 2 && c < 0x800) || (more == 3 && c < 0x10000) || c > 0x10FFFF ||
            (c >= 0xD800 && c <= 0xDFFF))
            return false;
        p += more + 1;
    }
    return beyondAscii;
}

QByteArray EncodeAnsi(QStringView text)
{
    QByteArray out;
    out.reserve(text.size());
    for (qsizetype i = 0; i < text.size(); ++i) {
        const char16_t c = text[i].unicode();
        // One "?" for a character outside the basic plane, not one per half.
        if (QChar::isHighSurrogate(c) && i + 1 < text.size() &&
            QChar::isLowSurrogate(text[i + 1].unicode()))
            ++i;
        out.append(encodeChar(c));
    }
    return out;
}

} // namespace zf::profile
