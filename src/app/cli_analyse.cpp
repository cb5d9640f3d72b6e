// The work behind the "analyse" command: read the input, analyse it, print the JSON.

#include "cli.h"

#include "analysis/analyser.h"
#include "enhanced/enhanced.h"
#include "jsonstream.h"
#include "settings/settings.h"

#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QStringDecoder>

#include <algorithm>
#include <array>
#include <cstdio>

using namespace Qt::StringLiterals;
using namespace zf;

QString settingsFileProblem(const QString& path)
{
    const QFileInfo info(path);
    const QString name = u"settings file '%1'"_s.arg(path);
    if (!info.exists())
        return name + u" does not exist"_s;
    if (info.isDir())
        return name + u" is a folder"_s;
    if (!info.isFile()) // a FIFO or a device would block or never end
        return name + u" is not a regular file"_s;
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return name + u" cannot be read: "_s + file.errorString();
    return {};
}

namespace {

// Reads the whole input, at most MaxInputBytes; an error text, or "".
QString readInput(QFile& input, const QString& name, QByteArray& bytes)
{
    const auto tooLarge = [&] {
        return u"%1 is larger than %2 MB"_s.arg(name).arg(MaxInputBytes >> 20);
    };
    if (!input.isSequential() && input.size() > MaxInputBytes)
        return tooLarge();
    constexpr qint64 Chunk = 1 << 20;
    while (true) {
        const qsizetype had = bytes.size();
        bytes.resize(had + Chunk);
        const qint64 got = input.read(bytes.data() + had, Chunk);
        bytes.resize(had + qMax<qint64>(got, 0));
        if (got < 0)
            return u"cannot read '%1': %2"_s.arg(name, input.errorString());
        if (bytes.size() > MaxInputBytes)
            return tooLarge();
        if (got == 0)
            return {};
    }
}

// UTF-16 when the text starts with its byte-order mark, else UTF-8 (whose mark is dropped).
QString decodeInput(const QByteArray& bytes)
{
    const auto utf16 = [&bytes](QStringConverter::Encoding e) {
        QStringDecoder decoder(e, QStringConverter::Flag::Stateless);
        return QString(decoder.decode(bytes));
    };
    if (bytes.startsWith("\xff\xfe"))
        return utf16(QStringConverter::Utf16LE);
    if (bytes.startsWith("\xfe\xff"))
        return utf16(QStringConverter::Utf16BE);
    return QString::fromUtf8(bytes);
}

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

QJsonObject lineToJson(QStringView text, qint16 firma, const clsZeile* z)
{
    QJsonObject scores;
    for (const ScoreMember& m : AllScores)
        scores.insert(QLatin1StringView(m.name),
                      z ? z->*m.member : (m.member == &clsZeile::Firma ? firma : qint16(0)));
    return QJsonObject{{u"text"_s, text.toString()}, {u"scores"_s, scores}};
}

// The line list as it stood: the records the stages took over, then those never reached.
QJsonArray linesToJson(const AnalysisResult& result)
{
    QJsonArray out;
    for (const clsZeile& z : result.lines)
        out.append(lineToJson(z.Text, 0, &z));
    const LineStore& store = result.store;
    for (qsizetype pos = result.unreachedFrom; pos < store.size(); ++pos)
        if (!store.isTaken(pos))
            out.append(lineToJson(store.text(pos), store.isHeading(pos) ? 20 : 0, nullptr));
    return out;
}

// The twenty scores in the order QJsonObject keeps its keys.
const std::array<ScoreMember, 20>& scoresByName()
{
    static const std::array<ScoreMember, 20> sorted = [] {
        std::array<ScoreMember, 20> a = AllScores;
        std::sort(a.begin(), a.end(), [](const ScoreMember& x, const ScoreMember& y) {
            return std::string_view(x.name) < std::string_view(y.name);
        });
        return a;
    }();
    return sorted;
}

template <typename ScoreOf> void writeLine(JsonStream& json, QStringView text, ScoreOf scoreOf)
{
    json.beginObject();
    json.key(u"scores");
    json.beginObject();
    for (const ScoreMember& m : scoresByName()) {
        json.key(QString::fromLatin1(m.name));
        json.value(qint64(scoreOf(m)));
    }
    json.endObject();
    json.key(u"text");
    json.value(text);
    json.endObject();
}

} // namespace

QString analyseInput(const AnalyseOptions& o, AnalyseRun& run)
{
    QString text;
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
        QByteArray bytes;
        if (const QString error = readInput(input, inputName, bytes); !error.isEmpty())
            return error;
        text = decodeInput(bytes);
    }

    Session& session = run.session;
    session.rows.FillDefaultFieldLists();
    LoadSettings(o.iniFile.isEmpty() ? settingsFilePath() : o.iniFile, session.state, session.rows);
    session.state.ChosenSeparator = o.separator;

    Seams seams;
    seams.showMessage = recordMessages(run.messages);
    seams.chooseSeparator = [] { return QString(); }; // as if closed without a choice

    const AnalysisMode mode = o.enhanced ? AnalysisMode::Enhanced : ModeOf(session.state);
    // The enhanced analysis writes the box itself; only the classic one can leave it to the store.
    if (mode == AnalysisMode::Enhanced)
        run.options.fillClipText = true;
    if (o.raw) {
        run.result = AnalyseTextIn(mode, text, session, seams, o.trace, run.options);
    } else if (auto fetched =
                   FetchClipboardTextIn(mode, text, session, seams, false, o.trace, run.options)) {
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
        out.insert(u"lines"_s, linesToJson(run.result));
    if (withTrace && !run.result.notes.isEmpty())
        out.insert(u"recognised"_s, run.result.notes);
    return out;
}

void printJson(const QJsonObject& object)
{
    const QByteArray json = QJsonDocument(object).toJson(QJsonDocument::Indented);
    std::fwrite(json.constData(), 1, size_t(json.size()), stdout);
}

void writeAnalysisJson(const AnalyseRun& run, bool withTrace, std::FILE* out)
{
    const Session& session = run.session;
    const LineStore& store = run.result.store;
    JsonStream json(out);
    json.beginObject();

    json.key(u"clipText");
    json.beginString();
    if (run.options.fillClipText) {
        json.appendString(session.clipText);
    } else {
        for (qsizetype i = 0; i < store.lineCount(); ++i) {
            json.appendString(store.builtLine(i));
            json.appendString(u"\r\n");
        }
    }
    json.endString();

    json.key(u"completed");
    json.value(run.result.completed);

    json.key(u"extraFieldValues");
    json.beginArray();
    for (const clsZusatzDefs& v : session.state.ExtraFieldValues) {
        json.beginObject();
        json.key(u"id");
        json.value(qint64(v.ID));
        json.key(u"value");
        json.value(v.Wert);
        json.endObject();
    }
    json.endArray();

    if (withTrace) {
        json.key(u"lines");
        json.beginArray();
        for (const clsZeile& z : run.result.lines)
            writeLine(json, z.Text, [&z](const ScoreMember& m) { return z.*m.member; });
        for (qsizetype pos = run.result.unreachedFrom; pos < store.size(); ++pos)
            if (!store.isTaken(pos))
                writeLine(json, store.text(pos), [&](const ScoreMember& m) {
                    return store.isHeading(pos) && m.member == &clsZeile::Firma ? qint16(20)
                                                                                : qint16(0);
                });
        json.endArray();
    }

    json.key(u"messages");
    json.beginArray();
    for (const QJsonValue& m : run.messages) {
        json.beginObject();
        json.key(u"style");
        json.value(qint64(m[u"style"_s].toInt()));
        json.key(u"text");
        json.value(m[u"text"_s].toString());
        json.endObject();
    }
    json.endArray();

    if (withTrace && !run.result.notes.isEmpty()) {
        json.key(u"recognised");
        json.document(run.result.notes);
    }

    json.key(u"rows");
    json.beginArray();
    for (int r = 0; r < FieldRows::RowCount; ++r) {
        json.beginObject();
        json.key(u"field");
        const int pos = session.rows.selected(r);
        if (pos < 0)
            json.null();
        else
            json.value(session.rows.fields().nameAt(pos));
        json.key(u"fieldId");
        if (const std::optional<qint32> id = session.rows.fieldId(r))
            json.value(qint64(*id));
        else
            json.null();
        json.key(u"value");
        json.value(session.rows.value(r));
        json.endObject();
    }
    json.endArray();

    json.endObject();
}

int runAnalyse(const AnalyseOptions& o)
{
    AnalyseRun run;
    // The box's lines are written from the run's store, and the line list only kept for --trace.
    run.options.fillClipText = false;
    run.options.keepLines = o.trace;
    if (const QString error = analyseInput(o, run); !error.isEmpty())
        return usageError(error);
    writeAnalysisJson(run, o.trace, stdout);
    return 0;
}
