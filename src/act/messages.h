#pragma once

// What the contact link tells the user.

#include <QString>

namespace zf::msg {
inline const QString FieldsNotLoaded = QStringLiteral(
    "Die Felder konnten nicht aus der Datenbank gelesen werden. Möglicherweise ist ACT! "
    "geschlossen.");
inline const QString CreateFailed = QStringLiteral("Kontakt konnte nicht angelegt werden.");
inline const QString EditFailed = QStringLiteral("Kontakt konnte nicht bearbeitet werden.");
inline const QString NoData = QStringLiteral("Keine Daten vorhanden.");
} // namespace zf::msg
