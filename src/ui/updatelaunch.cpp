#include "updatelaunch.h"

#include "analysis/session.h"
#include "messages.h"
#include "settings/clsini.h"

#include <QDir>
#include <QProcess>

using namespace Qt::StringLiterals;

namespace zf::ui {

UpdateOutcome LaunchUpdate(const QString& programDir, QWidget* parent)
{
    if (ShowMessage(msg::UpdateConfirm, StyleQuestion, parent) != AnswerYes)
        return UpdateOutcome::Declined;
    const QString program = QDir(programDir).filePath(QString::fromUtf16(UpdateProgramName));
    // The same test as for the settings file: a folder or a hidden file is no program.
    if (!FileExists(program)) {
        ShowMessage(msg::UpdateMissing, StyleExclamation, parent);
        return UpdateOutcome::Missing;
    }
    qint64 pid = 0;
    if (!QProcess::startDetached(program, {QString(), u"small"_s}, QString(), &pid) || pid == 0) {
        ShowMessage(msg::UpdateFailed, StyleExclamation, parent);
        return UpdateOutcome::StartFailed;
    }
    return UpdateOutcome::Started;
}

} // namespace zf::ui
