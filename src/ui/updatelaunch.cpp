#include "updatelaunch.h"

#include "messages.h"
#include "settings/clsini.h"

#include <QDir>
#include <QProcess>

using namespace Qt::StringLiterals;

namespace zf::ui {

UpdateOutcome LaunchUpdate(const QString& programDir, const MessageFunction& showMessage)
{
    if (showMessage(msg::UpdateConfirm, MessageStyle::Question) != MessageAnswer::Yes)
        return UpdateOutcome::Declined;
    const QString program = QDir(programDir).filePath(QString::fromUtf16(UpdateProgramName));
    // The same test as for the settings file: a folder or a hidden file is no program.
    if (!FileExists(program)) {
        showMessage(msg::UpdateMissing, MessageStyle::Exclamation);
        return UpdateOutcome::Missing;
    }
    qint64 pid = 0;
    if (!QProcess::startDetached(program, {QString(), u"small"_s}, QString(), &pid) || pid == 0) {
        showMessage(msg::UpdateFailed, MessageStyle::Exclamation);
        return UpdateOutcome::StartFailed;
    }
    return UpdateOutcome::Started;
}

} // namespace zf::ui
