#pragma once

// The enhanced analysis: a second way of turning address text into field rows, chosen
// explicitly (command line --enhanced, [Config] ErweiterteAnalyse=1). It fills the fields
// the way a careful person would file the contact and leaves a line it cannot place as a
// row without a field. The classic analysis stays the default and is not touched.

#include "analysis/analyser.h"

#include <QString>

#include <optional>

namespace zf {

enum class AnalysisMode { Classic, Enhanced };

// Same contract as AnalyseText: the rows, clipText (identical to the classic run's, the
// lines cut the same way), ExtraFieldValues and the messages. With explain, result.notes
// says for every line what it was taken for and why. result.lines stays empty.
AnalysisResult AnalyseTextEnhanced(const QString& text, Session& session, const Seams& seams,
                                   bool explain = false);

// Same contract as FetchClipboardText.
std::optional<AnalysisResult> FetchClipboardTextEnhanced(const QString& clipboard, Session& session,
                                                         const Seams& seams, bool silent = false,
                                                         bool explain = false);

// The one switch for callers that offer both modes (the window, the command line).
// The run options apply to the classic analysis only; the enhanced one always fills the box.
AnalysisResult AnalyseTextIn(AnalysisMode mode, const QString& text, Session& session,
                             const Seams& seams, bool explain = false,
                             const RunOptions& options = {});
std::optional<AnalysisResult> FetchClipboardTextIn(AnalysisMode mode, const QString& clipboard,
                                                   Session& session, const Seams& seams,
                                                   bool silent = false, bool explain = false,
                                                   const RunOptions& options = {});

// The mode the settings ask for.
inline AnalysisMode ModeOf(const SharedState& state)
{
    return state.ErweiterteAnalyse ? AnalysisMode::Enhanced : AnalysisMode::Classic;
}

} // namespace zf
