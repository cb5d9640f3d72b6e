#pragma once

#include "fieldrows.h"
#include "zeile.h"

#include <QList>
#include <QString>

#include <functional>

namespace zf {

// State that outlives one analysis run and is shared by the window, the analysis, the
// settings and the contact transfer.
struct SharedState {
    QString ClipboardText;   // raw text of the last clipboard fetch
    QString ChosenSeparator; // "" = choose automatically
    QString StandardLand4PLZ = QStringLiteral("Österreich");
    QString StandardLand5PLZ = QStringLiteral("Deutschland");
    QList<clsZusatzDefs> ExtraDefinitions;
    bool ExtraDefinitionsLoaded = false;
    QList<clsZusatzDefs> ExtraFieldValues;
    bool ErweiterteAnalyse = false; // [Config] ErweiterteAnalyse=1: the enhanced analysis
};

// What the main window shows and the analysis writes: the field rows and the clipboard box.
struct Session {
    FieldRows rows;
    QString clipText;
    SharedState state;
};

// Message-box styles: buttons plus icon, as the platform numbers them.
enum MessageStyle : int {
    StyleQuestion = 36,    // Yes/No, question icon
    StyleExclamation = 48, // OK, exclamation icon
    StyleInformation = 64, // OK, information icon
};
// Answers of a message box.
enum MessageAnswer : int { AnswerOk = 1, AnswerYes = 6, AnswerNo = 7 };

// The two places where an analysis needs the user: a message, and the separator chooser.
struct Seams {
    // Shows a message and returns the button that closed it.
    std::function<int(const QString& text, int style)> showMessage;
    // Lets the user mark a separator; "" when the chooser was closed without a choice.
    std::function<QString()> chooseSeparator;
};

namespace msg {
inline const QString FieldsNotLoaded = QStringLiteral(
    "Die Felder konnten nicht aus der Datenbank gelesen werden. Möglicherweise ist ACT! "
    "geschlossen.");
inline const QString ClipboardEmpty = QStringLiteral("Die Zwischenablage ist leer.");
inline const QString NoSeparator =
    QStringLiteral("Kein geeignetes Zeilentrennungszeichen gefunden. Zwischenablage konnte "
                   "nicht verarbeitet werden.");
inline const QString CreateFailed = QStringLiteral("Kontakt konnte nicht angelegt werden.");
inline const QString EditFailed = QStringLiteral("Kontakt konnte nicht bearbeitet werden.");
inline const QString NoData = QStringLiteral("Keine Daten vorhanden.");
inline const QString MarkOneChar =
    QStringLiteral("Sie müssen vorher 1 Zeichen im unteren Fenster mit der Maus markieren.");
inline const QString UpdateConfirm =
    QStringLiteral("Nach dem Start des Online-Update Programms wird der Zettelfischer "
                   "geschlossen. Trotzdem weiter?");
inline const QString UpdateMissing = QStringLiteral("Update.exe nicht gefunden.");
inline const QString UpdateFailed = QStringLiteral("Konnte Online-Update Programm nicht öffnen.");
} // namespace msg

} // namespace zf
