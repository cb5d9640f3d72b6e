#pragma once

// The two encodings a settings file can have: UTF-8 as a Linux editor saves it, else the
// one-byte Windows-1252 of hand-edited files from elsewhere.

#include <QByteArray>
#include <QByteArrayView>
#include <QString>
#include <QStringView>

namespace zf::profile {

// Valid UTF-8 (no overlong forms, no surrogates, nothing above U+10FFFF) that holds at least
// one byte beyond ASCII.
bool IsUtf8Text(QByteArrayView bytes);

// Windows-1252. The five bytes that the code page leaves undefined map to U+0081, U+008D,
// U+008F, U+0090 and U+009D and back, so any file survives a read and a rewrite unchanged.
QString DecodeAnsi(QByteArrayView bytes);
QByteArray EncodeAnsi(QStringView text);

} // namespace zf::profile
