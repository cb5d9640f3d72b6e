#pragma once

// What the analysis tells the user.

#include <QString>

namespace zf::msg {
inline const QString ClipboardEmpty = QStringLiteral("Die Zwischenablage ist leer.");
inline const QString NoSeparator =
    QStringLiteral("Kein geeignetes Zeilentrennungszeichen gefunden. Zwischenablage konnte "
                   "nicht verarbeitet werden.");
} // namespace zf::msg
