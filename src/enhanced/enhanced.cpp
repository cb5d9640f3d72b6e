#include "enhanced.h"

#include "analysis/failure.h"
#include "analysis/fields.h"
#include "analysis/messages.h"
#include "analysis/textutil.h"
#include "engine.h"

#include <QJsonObject>

#include <new>

using namespace Qt::StringLiterals;

namespace zf {

AnalysisResult AnalyseTextEnhanced(const QString& input, Session& session, const Seams& seams,
                                   bool explain)
{
    AnalysisResult result;
    try {
        session.rows.clearRows();
        // Old Mac line ends (a CR alone) are line breaks too.
        const auto loneCr = [&input](qsizetype i) {
            return input[i] == u'\r' && (i + 1 >= input.size() || input[i + 1] != u'\n');
        };
        QString text;
        if (!input.contains(u'\r')) {
            text = input;
        } else {
            qsizetype lone = 0;
            for (qsizetype i = 0; i < input.size(); ++i)
                lone += loneCr(i);
            text.resize(input.size() + lone);
            QChar* to = text.data();
            for (qsizetype i = 0; i < input.size(); ++i) {
                *to++ = input[i];
                if (loneCr(i))
                    *to++ = u'\n';
            }
        }
        // A text without any line separator is one line: there is nothing to choose.
        static const QString lineBreak = u"\r\n"_s;
        const bool oneLine = session.state.ChosenSeparator.isEmpty() && !text.contains(u'\n') &&
                             !text.contains(u'\t') && !text.contains(u';') && !text.contains(u'#');
        const std::optional<QString> separator =
            oneLine ? std::optional<QString>(lineBreak)
                    : stage::ChooseSeparator(text, session.state, seams);
        if (!separator)
            return result;
        // The classic cut gives the box its text and takes out the configured labels.
        LineStore classic;
        try {
            stage::BuildLineList(text, *separator, classic, &session.clipText);
        } catch (const AnalysisFailure&) {
            // An over-long line ends the classic cut; the box keeps what it had, the
            // enhanced lines are bounded on their own.
        }
        enhanced::Analysis analysis(session.state);
        analysis.cut(text, *separator);
        if (session.state.ExtraDefinitionsLoaded) {
            stage::TakeExtraDefinitionLines(classic, session.state);
            analysis.takeDefinitions(session.state.ExtraDefinitions);
        }
        analysis.classifyAll();
        analysis.context();
        analysis.assemble();
        analysis.fillRows(session.rows);
        if (explain)
            result.notes = analysis.notes();
    } catch (const AnalysisFailure&) {
        result.completed = false;
    } catch (const std::bad_alloc&) {
        result.completed = false;
    }
    return result;
}

std::optional<AnalysisResult> FetchClipboardTextEnhanced(const QString& clipboard, Session& session,
                                                         const Seams& seams, bool silent,
                                                         bool explain)
{
    session.clipText.clear();
    session.state.ClipboardText = clipboard;
    const QString prepared = PrepareClipboardText(clipboard);
    if (Trim(prepared).isEmpty()) {
        if (!silent && seams.showMessage)
            seams.showMessage(msg::ClipboardEmpty, MessageStyle::Information);
        return std::nullopt;
    }
    return AnalyseTextEnhanced(prepared, session, seams, explain);
}

AnalysisResult AnalyseTextIn(AnalysisMode mode, const QString& text, Session& session,
                             const Seams& seams, bool explain, const RunOptions& options)
{
    return mode == AnalysisMode::Enhanced ? AnalyseTextEnhanced(text, session, seams, explain)
                                          : AnalyseText(text, session, seams, options);
}

std::optional<AnalysisResult> FetchClipboardTextIn(AnalysisMode mode, const QString& clipboard,
                                                   Session& session, const Seams& seams,
                                                   bool silent, bool explain,
                                                   const RunOptions& options)
{
    return mode == AnalysisMode::Enhanced
               ? FetchClipboardTextEnhanced(clipboard, session, seams, silent, explain)
               : FetchClipboardText(clipboard, session, seams, silent, options);
}

} // namespace zf
