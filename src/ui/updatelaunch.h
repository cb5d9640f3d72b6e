#pragma once

#include "analysis/seams.h"

#include <QString>

namespace zf::ui {

enum class UpdateOutcome { Declined, Missing, StartFailed, Started };

// The file name of the update program beside this one.
inline constexpr char16_t UpdateProgramName[] = u"update.exe";

// Asks, then starts the update program of that folder detached with the arguments "" and
// "small". Started means the caller must end the program so the update can replace it.
UpdateOutcome LaunchUpdate(const QString& programDir, const MessageFunction& showMessage);

} // namespace zf::ui
