// Any text, any chosen separator, any definitions: the analysis must finish, never crash,
// and leave the rows consistent.

#include "analysis/analyser.h"

#include "require.h"

#include <cstddef>
#include <cstdint>

using namespace Qt::StringLiterals;
using namespace zf;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    if (size < 1)
        return 0;
    // The first byte picks the mode; the rest is the clipboard text.
    const uint8_t mode = data[0];
    const QString text =
        QString::fromUtf8(reinterpret_cast<const char*>(data + 1), qsizetype(size - 1));

    static const QString separators[] = {u""_s,   u","_s, u" "_s,  u"\n"_s,
                                         u"ab"_s, u"."_s, u"\r"_s, u"\u00df"_s};
    Session session;
    session.rows.FillDefaultFieldLists();
    session.state.ChosenSeparator = separators[mode & 7];
    if (mode & 8) {
        session.state.ExtraDefinitionsLoaded = true;
        session.state.ExtraDefinitions = {{88, u"Abteilung:"_s}, {-1, u"A"_s}, {12, u"Kd"_s}};
    }
    int messages = 0;
    Seams seams;
    seams.showMessage = [&messages](const QString&, int) { return ++messages, 1; };
    seams.chooseSeparator = [mode] { return (mode & 16) ? u","_s : QString(); };

    if (mode & 32)
        AnalyseText(text, session, seams);
    else
        FetchClipboardText(text, session, seams);

    require(messages <= 1);
    for (int row = 0; row < FieldRows::RowCount; ++row)
        require(session.rows.selected(row) < session.rows.fields().count());
    // Every line in the box ends with a line break.
    require(session.clipText.isEmpty() || session.clipText.endsWith(u"\r\n"_s));
    return 0;
}
