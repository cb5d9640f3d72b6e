#pragma once

#include "analysis/seams.h"

#include <QString>

class QMessageBox;
class QWidget;

namespace zf::ui {

// The real message seam of the window: boxes titled "Zettelfischer", owned by parent.
MessageFunction messageBoxes(QWidget* parent);

// The box a message of that style shows, not yet shown; the caller owns it.
QMessageBox* makeMessageBox(QWidget* parent, const QString& text, MessageStyle style);
// The answer for the standard button that closed a box.
MessageAnswer answerCode(int standardButton);

} // namespace zf::ui

namespace zf::msg {
inline const QString MarkOneChar =
    QStringLiteral("Sie müssen vorher 1 Zeichen im unteren Fenster mit der Maus markieren.");
inline const QString UpdateConfirm =
    QStringLiteral("Nach dem Start des Online-Update Programms wird der Zettelfischer "
                   "geschlossen. Trotzdem weiter?");
inline const QString UpdateMissing = QStringLiteral("Update.exe nicht gefunden.");
inline const QString UpdateFailed = QStringLiteral("Konnte Online-Update Programm nicht öffnen.");
inline const QString BookNotOpened = QStringLiteral(
    "Dieses Adressbuch kann nicht geöffnet werden. Das bisherige bleibt in Gebrauch.");
inline const QString NoCurrentContact = QStringLiteral(
    "Es gibt keinen aktuellen Kontakt. Welchen Kontakt soll „Bearbeiten“ überschreiben?");
inline const QString ContactNotChosen = QStringLiteral(
    "Dieser Kontakt kann nicht gewählt werden. Bearbeiten überschreibt weiter den bisherigen.");
} // namespace zf::msg
