// Any text, any chosen separator, any settings: the analysis must finish, never crash, and
// leave the rows and the clipboard box consistent.
//
// Input: one mode byte, then the clipboard text (UTF-8), then settings records, each behind a
// 0xFF byte (never part of UTF-8 text, so the text loses nothing it could carry):
//   'S' text        chosen separator
//   '4' text        default country for 4-digit postcodes ('5' for 5-digit ones)
//   'D' id text    a labelled definition: the field id in digits, a blank, the label
//   'F' id text    a field of the field list; the first one replaces the built-in list
// A record whose id is not a 16-bit number is left out.
// Mode bits: 1 analyse directly (else the clipboard fetch), 2 the separator chooser answers
// ",", 4 the fetch is the silent one of the start-up.

#include "analysis/analyser.h"

#include "require.h"

#include <QByteArray>
#include <QStringList>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <utility>

using namespace Qt::StringLiterals;
using namespace zf;

namespace {

// "D88 Abteilung:" -> 88 and "Abteilung:".
std::optional<std::pair<qint16, QString>> idAndText(const QByteArray& record)
{
    const qsizetype blank = record.indexOf(' ');
    bool ok = false;
    const qint16 id = record.mid(1, blank < 0 ? -1 : blank - 1).toShort(&ok);
    if (!ok)
        return std::nullopt;
    return std::pair{id, blank < 0 ? QString() : QString::fromUtf8(record.mid(blank + 1))};
}

void applySettings(const QList<QByteArray>& records, Session& session)
{
    bool ownFieldList = false;
    for (const QByteArray& r : records) {
        if (r.isEmpty())
            continue;
        const QString text = QString::fromUtf8(r.mid(1));
        switch (r.at(0)) {
        case 'S':
            session.state.ChosenSeparator = text;
            break;
        case '4':
            session.state.StandardLand4PLZ = text;
            break;
        case '5':
            session.state.StandardLand5PLZ = text;
            break;
        case 'D':
            if (const auto def = idAndText(r)) {
                session.state.ExtraDefinitions.append({def->first, def->second});
                session.state.ExtraDefinitionsLoaded = true;
            }
            break;
        case 'F':
            if (const auto field = idAndText(r)) {
                if (!ownFieldList)
                    session.rows.clearFields();
                ownFieldList = true;
                session.rows.addField(field->second, field->first);
            }
            break;
        default:
            break;
        }
    }
}

struct Outcome {
    QStringList values;
    QList<int> selected;
    QString clipText;
    QList<clsZusatzDefs> extraValues;
    friend bool operator==(const Outcome&, const Outcome&) = default;
};

Outcome outcome(const Session& session)
{
    Outcome o{{}, {}, session.clipText, session.state.ExtraFieldValues};
    for (int row = 0; row < FieldRows::RowCount; ++row) {
        o.values.append(session.rows.value(row));
        o.selected.append(session.rows.selected(row));
    }
    return o;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    if (size < 1)
        return 0;
    const uint8_t mode = data[0];
    const QList<QByteArray> parts =
        QByteArray(reinterpret_cast<const char*>(data + 1), qsizetype(size - 1)).split('\xff');
    const QString text = QString::fromUtf8(parts.front());

    Session session;
    session.rows.FillDefaultFieldLists();
    applySettings(parts.mid(1), session);

    int messages = 0;
    Seams seams;
    seams.showMessage = [&messages](const QString&, MessageStyle) {
        ++messages;
        return MessageAnswer::Ok;
    };
    seams.chooseSeparator = [mode] { return (mode & 2) ? u","_s : QString(); };

    const bool analysed = (mode & 1)
                              ? (AnalyseText(text, session, seams), true)
                              : FetchClipboardText(text, session, seams, mode & 4).has_value();

    require(messages <= 1);
    for (int row = 0; row < FieldRows::RowCount; ++row)
        require(session.rows.selected(row) < session.rows.fields().count());
    // Every line in the box ends with a line break.
    require(session.clipText.isEmpty() || session.clipText.endsWith(u"\r\n"_s));
    // A found value belongs to a configured label.
    for (const clsZusatzDefs& found : session.state.ExtraFieldValues)
        require(std::any_of(session.state.ExtraDefinitions.cbegin(),
                            session.state.ExtraDefinitions.cend(),
                            [&found](const clsZusatzDefs& d) { return d.ID == found.ID; }));

    // The same text analysed again gives the same result: nothing of a run outlives it.
    if (analysed) {
        const Outcome first = outcome(session);
        session.clipText.clear();
        AnalyseText((mode & 1) ? text : PrepareClipboardText(text), session, seams);
        require(outcome(session) == first);
    }
    return 0;
}
