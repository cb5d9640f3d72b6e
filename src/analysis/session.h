#pragma once

#include "fieldrows.h"
#include "zeile.h"

#include <QList>
#include <QString>

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
    // [Kontakte]: the contact book when neither --contacts nor the environment names one; a
    // path or a CardDAV URL, its user, and how long one request may take, in seconds.
    QString KontakteAdressbuch;
    QString KontakteBenutzer;
    int KontakteTimeout = 15;
    // [Kontakte] Dublettenpruefung=0: a new contact is filed without looking for duplicates.
    bool KontakteDublettenpruefung = true;
};

// What the main window shows and the analysis writes: the field rows and the clipboard box.
struct Session {
    FieldRows rows;
    QString clipText;
    SharedState state;
};

} // namespace zf
