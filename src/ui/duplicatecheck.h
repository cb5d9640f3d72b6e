#pragma once

// What "Neu Anlegen" asks before it writes: whether the book has the person already. Kept
// apart from any dialog, so that the answers can be given by a test as by the user.

#include "analysis/seams.h"
#include "analysis/session.h"
#include "duplicates/directory.h"

#include <QList>
#include <QString>

#include <functional>

namespace zf::ui {

// The user's answer to the duplicate question.
struct DuplicateAnswer {
    enum Kind { CreateAnyway, UpdateInstead, Cancel };
    Kind kind = Cancel;
    QString id; // with UpdateInstead: the match to file the rows into
};

// Names the matches and lets the user choose; the real one is AskDuplicate (formdublette.h).
using DuplicateQuestion = std::function<DuplicateAnswer(const QList<dup::Match>& matches)>;

// How a transfer goes on after the check.
enum class TransferPlan { Create, Edit, Nothing };

// The check before a new contact: nothing to ask when it is switched off, there is no
// directory, the rows name nobody or the book has nobody like them. "Stattdessen diesen
// aktualisieren" makes the match the current contact before the rows go into it. A book
// that cannot be searched is said so through showMessage, which then asks whether to file
// anyway. Nothing is written here but the choice of the current contact.
TransferPlan CheckBeforeCreate(const Session& session, dup::ContactDirectory* directory,
                               const DuplicateQuestion& ask, const MessageFunction& showMessage);

} // namespace zf::ui

namespace zf::msg {
inline const QString LookupFailed =
    QStringLiteral("Ob das Adressbuch diesen Kontakt schon enthält, ließ sich nicht prüfen: "
                   "Das Adressbuch ist nicht erreichbar.\n\nTrotzdem neu anlegen?");
} // namespace zf::msg
