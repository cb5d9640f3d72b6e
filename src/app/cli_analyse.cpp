// The work behind the "analyse" command: read the input, analyse it, print the JSON.

#include "cli.h"

#include "analysis/analyser.h"
#include "settings/settings.h"

#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <cstdio>

using namespace Qt::StringLiterals;
using namespace zf;

namespace {

QJsonValue orNull(const std::optional<qint32>& id)
{
    return id ? QJsonValue(*id) : QJsonValue(QJsonValue::Null);
}

QJsonObject toJson(const Session& session, const QJsonArray& messages, bool completed)
{
    QJsonArray rows;
    for (int r = 0; r < FieldRows::RowCount; ++r) {
        const int pos = session.rows.selected(r);
        rows.append(QJsonObject{
            {u"value"_s, session.rows.value(r)},
            {u"fieldId"_s, orNull(session.rows.fieldId(r))},
            {u"field"_s, pos < 0 ? QJsonValue(QJsonValue::Null)
                                 : QJsonValue(session.rows.fields().nameAt(pos))},
        });
    }
    QJsonArray extras;
    for (const clsZusatzDefs& v : session.state.ExtraFieldValues)
        extras.append(QJsonObject{{u"id"_s, v.ID}, {u"value"_s, v.Wert}});
    return QJsonObject{
        {u"rows"_s, rows},
        {u"clipText"_s, session.clipText},
        {u"extraFieldValues"_s, extras},
        {u"messages"_s, messages},
        {u"completed"_s, completed},
    };
}

QJsonArray linesToJson(const LineList& lines)
{
    QJsonArray out;
    for (const clsZeile& z : lines) {
        QJsonObject scores;
        for (const ScoreMember& m : AllScores)
            scores.insert(QLatin1StringView(m.name), z.*m.member);
        out.append(QJsonObject{{u"text"_s, z.Text}, {u"scores"_s, scores}});
    }
    return out;
}

} // namespace

QString analyseInput(const AnalyseOptions& o, AnalyseRun& run)
{
    QFile input;
    bool opened = false;
    if (o.inputFile.isEmpty()) {
        opened = input.open(stdin, QIODevice::ReadOnly);
    } else {
        input.setFileName(o.inputFile);
        opened = input.open(QIODevice::ReadOnly);
    }
    const QString inputName = o.inputFile.isEmpty() ? u"standard input"_s : o.inputFile;
    if (!opened || QFileInfo(o.inputFile).isDir())
        return u"cannot read '%1': %2"_s.arg(inputName, input.errorString());
    const QByteArray bytes = input.readAll();
    if (input.error() != QFileDevice::NoError)
        return u"cannot read '%1': %2"_s.arg(inputName, input.errorString());
    const QString text = QString::fromUtf8(bytes);

    Session& session = run.session;
    session.rows.FillDefaultFieldLists();
    LoadSettings(o.iniFile.isEmpty() ? settingsFilePath() : o.iniFile, session.state, session.rows);
    session.state.ChosenSeparator = o.separator;

    Seams seams;
    seams.showMessage = recordMessages(run.messages);
    seams.chooseSeparator = [] { return QString(); }; // as if closed without a choice

    if (o.raw) {
        run.result = AnalyseText(text, session, seams);
    } else if (auto fetched = FetchClipboardText(text, session, seams)) {
        run.result = std::move(*fetched);
    }
    return {};
}

MessageFunction recordMessages(QJsonArray& messages)
{
    return [&messages](const QString& text, MessageStyle style) {
        messages.append(QJsonObject{{u"text"_s, text}, {u"style"_s, int(style)}});
        return style == MessageStyle::Question ? MessageAnswer::No : MessageAnswer::Ok;
    };
}

QJsonObject analysisToJson(const AnalyseRun& run, bool withTrace)
{
    QJsonObject out = toJson(run.session, run.messages, run.result.completed);
    if (withTrace)
        out.insert(u"lines"_s, linesToJson(run.result.lines));
    return out;
}

void printJson(const QJsonObject& object)
{
    const QByteArray json = QJsonDocument(object).toJson(QJsonDocument::Indented);
    std::fwrite(json.constData(), 1, size_t(json.size()), stdout);
}

int runAnalyse(const AnalyseOptions& o)
{
    AnalyseRun run;
    if (const QString error = analyseInput(o, run); !error.isEmpty())
        return usageError(error);
    printJson(analysisToJson(run, o.trace));
    return 0;
}
