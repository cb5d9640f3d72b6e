#include "duplicatecheck.h"

#include "act/messages.h"
#include "analysis/textutil.h"
#include "duplicates/identity.h"

namespace zf::ui {

TransferPlan CheckBeforeCreate(const Session& session, dup::ContactDirectory* directory,
                               const DuplicateQuestion& ask, const MessageFunction& showMessage)
{
    // Without text the transfer refuses with its own message; there is nobody to look for.
    if (!directory || !session.state.KontakteDublettenpruefung || !ask ||
        Trim(session.clipText).isEmpty())
        return TransferPlan::Create;
    const dup::Identity identity = dup::identityOfRows(session.rows);
    if (identity.isEmpty())
        return TransferPlan::Create;

    QList<dup::Match> matches;
    try {
        matches = directory->find(identity);
    } catch (const std::exception&) {
        // The rows stay in the window either way; the user decides whether to risk a twin.
        const MessageAnswer answer = showMessage
                                         ? showMessage(msg::LookupFailed, MessageStyle::Question)
                                         : MessageAnswer::No;
        return answer == MessageAnswer::Yes ? TransferPlan::Create : TransferPlan::Nothing;
    }
    if (matches.isEmpty())
        return TransferPlan::Create;

    const DuplicateAnswer answer = ask(matches);
    switch (answer.kind) {
    case DuplicateAnswer::CreateAnyway:
        return TransferPlan::Create;
    case DuplicateAnswer::UpdateInstead:
        try {
            directory->setCurrent(answer.id);
        } catch (const std::exception&) {
            if (showMessage)
                showMessage(msg::EditFailed, MessageStyle::Exclamation);
            return TransferPlan::Nothing;
        }
        return TransferPlan::Edit;
    case DuplicateAnswer::Cancel:
        break;
    }
    return TransferPlan::Nothing;
}

} // namespace zf::ui
