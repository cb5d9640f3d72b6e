#pragma once

#include "seams.h"
#include "session.h"
#include "zeile.h"

#include <QString>

#include <optional>

namespace zf {

struct AnalysisResult {
    bool completed = true; // false when a run-time failure ended the run early
    LineList lines;        // the line list as it stood when the run ended
};

// One analysis run: clears the rows, cuts the text into lines, scores them and fills the
// rows. The text is never changed; the rows, the clipboard box and ExtraFieldValues are.
// The caller empties session.clipText first (the box shows exactly what the run wrote).
AnalysisResult AnalyseText(const QString& text, Session& session, const Seams& seams);

// Removes " . " in front of every line break, as signatures often end lines that way.
QString PrepareClipboardText(const QString& clipboard);

// The clipboard fetch once the clipboard is read: keeps the raw text, empties the box and
// analyses the prepared text; an empty (blank-only) clipboard is reported unless silent.
// Returns the run, or nothing when there was nothing to analyse.
std::optional<AnalysisResult> FetchClipboardText(const QString& clipboard, Session& session,
                                                 const Seams& seams, bool silent = false);

// The stages of a run, in order; public so that each can be tested on its own.
namespace stage {

// The separator for this run, or nothing when none is found and the user chooses none.
std::optional<QString> ChooseSeparator(const QString& text, SharedState& state, const Seams& seams);
// Cuts, cleans and collects the lines; every kept line also goes to clipText.
void BuildLineList(const QString& text, const QString& separator, LineList& lines,
                   QString& clipText);
// Takes the lines that begin with a configured label out of the list, keeping their values.
void TakeExtraDefinitionLines(LineList& lines, SharedState& state);
// Strips the first German, Swiss and Austrian prefixed postcode and adds its country line.
void RecogniseCountryPostcodes(LineList& lines);

struct PassFlags {
    bool phoneLabel = false;
    bool faxLabel = false;
};
// Built-in labels, position, words and capitals for the record at 1-based position pos.
void ScoreLabelsAndPosition(clsZeile& record, int pos);
// Keywords, digits and the postcode split for the record at cur (1-based position pos).
void ScoreKeywords(LineList& lines, LineList::iterator cur, int pos, PassFlags& flags);
// The per-line pass over the whole list, including records inserted during it.
void ScoreLines(LineList& lines);
// Gives every line its best field and fills the rows; adds a default country.
void AssembleRows(LineList& lines, FieldRows& rows, const SharedState& state);

} // namespace stage

} // namespace zf
