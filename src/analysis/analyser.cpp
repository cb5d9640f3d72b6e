#include "analyser.h"

#include "failure.h"
#include "messages.h"
#include "textutil.h"

#include <QStringList>

#include <algorithm>
#include <iterator>
#include <limits>
#include <new>
#include <numeric>

using namespace Qt::StringLiterals;

namespace zf {

namespace {

clsZeile makeRecord(const QString& text)
{
    clsZeile z;
    z.Text = text;
    return z;
}

QStringView trimmed(QStringView s)
{
    while (!s.isEmpty() && s.front() == u' ')
        s = s.mid(1);
    while (!s.isEmpty() && s.back() == u' ')
        s.chop(1);
    return s;
}

// The text without control characters: the text itself when it has none, else `holder`.
// Fails beyond the helpers' length, as StripControlChars does.
QStringView withoutControlChars(QStringView s, QString& holder)
{
    if (s.size() > MaxHelperTextLength)
        throw AnalysisFailure("StripControlChars: text too long");
    if (std::none_of(s.begin(), s.end(), [](QChar c) { return c.unicode() <= 30; }))
        return s;
    holder = StripControlChars(s);
    return holder;
}

// Calls f with every piece of whole + separator cut at the separator, except the last (the
// rest behind the appended separator), without building either. A separator occurrence
// may run from the end of whole into the appended one.
template <typename F> void forEachPiece(QStringView whole, QStringView sep, F f)
{
    const qsizetype n = whole.size();
    const qsizetype m = sep.size();
    qsizetype from = 0;
    while (true) {
        qsizetype at = whole.indexOf(sep, from);
        if (at < 0) {
            at = qMax(from, n - m + 1);
            while (at < n && !(whole.mid(at) == sep.left(n - at) &&
                               sep.left(m - (n - at)) == sep.mid(n - at)))
                ++at;
            f(whole.mid(from, at - from));
            return;
        }
        f(whole.mid(from, at - from));
        from = at + m;
    }
}

// The first untaken line of a run of positions in an order: a tree of minimums over it.
class FirstUntaken {
public:
    explicit FirstUntaken(const std::vector<quint32>& order)
        : m_size(qsizetype(order.size())), m_tree(2 * order.size(), Taken), m_leafOf(order.size())
    {
        for (qsizetype k = 0; k < m_size; ++k) {
            m_tree[std::size_t(m_size + k)] = order[std::size_t(k)];
            m_leafOf[order[std::size_t(k)]] = quint32(m_size + k);
        }
        for (qsizetype k = m_size - 1; k > 0; --k)
            pull(k);
    }
    // The smallest line position among the untaken ones at order indices [from, to), which
    // is then marked taken; -1 when all are taken.
    qsizetype in(qsizetype from, qsizetype to)
    {
        quint32 best = Taken;
        for (qsizetype l = from + m_size, r = to + m_size; l < r; l /= 2, r /= 2) {
            if (l & 1)
                best = qMin(best, m_tree[std::size_t(l++)]);
            if (r & 1)
                best = qMin(best, m_tree[std::size_t(--r)]);
        }
        if (best == Taken)
            return -1;
        qsizetype k = m_leafOf[best];
        m_tree[std::size_t(k)] = Taken;
        for (k /= 2; k > 0; k /= 2)
            pull(k);
        return qsizetype(best);
    }

private:
    static constexpr quint32 Taken = std::numeric_limits<quint32>::max();
    void pull(qsizetype k)
    {
        m_tree[std::size_t(k)] = qMin(m_tree[std::size_t(2 * k)], m_tree[std::size_t(2 * k + 1)]);
    }
    qsizetype m_size;
    std::vector<quint32> m_tree;
    std::vector<quint32> m_leafOf; // line position -> its leaf
};

} // namespace

namespace stage {

std::optional<QString> ChooseSeparator(const QString& text, SharedState& state, const Seams& seams)
{
    if (!state.ChosenSeparator.isEmpty())
        return state.ChosenSeparator;
    static const QStringList candidates{u"\r\n"_s, u"\n"_s, u"\t"_s, u";"_s, u"#"_s};
    for (const QString& c : candidates)
        if (text.contains(c))
            return c;
    if (seams.showMessage)
        seams.showMessage(msg::NoSeparator, MessageStyle::Exclamation);
    state.ChosenSeparator = seams.chooseSeparator ? seams.chooseSeparator() : QString();
    if (state.ChosenSeparator.isEmpty())
        return std::nullopt;
    return state.ChosenSeparator;
}

void BuildLineList(const QString& text, const QString& separator, LineStore& store,
                   QString* clipText)
{
    static const QString headStart = u"Details der "_s;
    static const QString headEnd = u" schließen"_s;

    // A separator the user chose ends lines as well as line breaks do.
    QString whole = text;
    if (separator != u"\r\n"_s && text.contains(u"\r\n"_s))
        whole.replace(u"\r\n"_s, separator);
    store = LineStore(whole);

    const auto addPiece = [&](QStringView piece) {
        QString collapsed;
        QStringView line = piece;
        if (line.contains(u"  "_s)) {
            collapsed = CollapseBlanks(line);
            line = collapsed;
        }
        line = trimmed(line);
        if (line.isEmpty())
            return;

        if (line.startsWith(headStart) && line.endsWith(headEnd)) {
            // The markers may share their blank ("Details der schließen"): no name then.
            const qsizetype nameLength = line.size() - headStart.size() - headEnd.size();
            QString name;
            store.addHeading(withoutControlChars(
                line.mid(headStart.size(), qMax<qsizetype>(0, nameLength)), name));
            return;
        }

        QString unquoted;
        if (line.startsWith(u'>')) { // quoted mail: drop every quote mark
            unquoted = Trim(line.toString().remove(u'>'));
            line = unquoted;
        }
        QString stripped;
        line = withoutControlChars(line, stripped);
        if (clipText) {
            clipText->append(line);
            clipText->append(u"\r\n"_s);
        }
        store.addLine(line);
    };

    try {
        forEachPiece(whole, separator, addPiece);
    } catch (const AnalysisFailure&) {
        store.applyHeadings(); // the list as it stood: the headings so far have done their part
        throw;
    }
    store.applyHeadings();
}

void TakeExtraDefinitionLines(LineStore& lines, SharedState& state)
{
    state.ExtraFieldValues.clear();
    const auto take = [&](qsizetype pos, const clsZusatzDefs& def) {
        state.ExtraFieldValues.append(
            clsZusatzDefs{def.ID, Trim(lines.text(pos).mid(def.Wert.size()))});
        lines.take(pos);
        lines.countTaken(1);
    };

    // A few labels are quickest tried line by line.
    constexpr qsizetype FewDefinitions = 8;
    if (state.ExtraDefinitions.size() <= FewDefinitions) {
        for (const clsZusatzDefs& def : state.ExtraDefinitions)
            for (qsizetype pos = 0; pos < lines.size(); ++pos)
                if (!lines.isTaken(pos) && lines.text(pos).startsWith(def.Wert)) {
                    take(pos, def);
                    break;
                }
        return;
    }

    // Many labels: the lines sorted by text, so that those beginning with a label form one
    // run, and a tree over that order giving the first untaken line of a run.
    std::vector<quint32> sorted(std::size_t(lines.size()));
    std::iota(sorted.begin(), sorted.end(), quint32(0));
    std::stable_sort(sorted.begin(), sorted.end(),
                     [&](quint32 a, quint32 b) { return lines.text(a) < lines.text(b); });
    FirstUntaken first(sorted);
    for (const clsZusatzDefs& def : state.ExtraDefinitions) {
        const auto from = std::lower_bound(
            sorted.begin(), sorted.end(), def.Wert,
            [&](quint32 p, const QString& label) { return lines.text(p) < QStringView(label); });
        const auto to = std::partition_point(
            from, sorted.end(), [&](quint32 p) { return lines.text(p).startsWith(def.Wert); });
        const qsizetype found = first.in(from - sorted.begin(), to - sorted.begin());
        if (found >= 0)
            take(found, def);
    }
}

void RecogniseCountryPostcodes(LineList& lines)
{
    struct Country {
        QString spacedPrefix;
        qsizetype normalisedChars; // characters whose blanks are removed
        QString letters;
        qint16 digits;
        QString name;
    };
    static const Country countries[] = {
        {u"D -"_s, 4, u"D"_s, 5, u"Deutschland"_s},
        {u"CH -"_s, 5, u"CH"_s, 4, u"Schweiz"_s},
        {u"A -"_s, 4, u"A"_s, 4, u"Österreich"_s},
    };

    for (const Country& c : countries) {
        const std::size_t count = lines.size();
        qint16 pos = 0;
        for (auto it = lines.begin(); std::size_t(pos) < count; ++it) {
            addChecked(pos, 1);
            // Only a line with the spaced prefix needs a normalised copy.
            QString copy = it->Text;
            if (copy.startsWith(c.spacedPrefix))
                copy = copy.left(c.normalisedChars).remove(u' ') + copy.mid(c.normalisedChars);
            // Upper-casing and trimming the copy matter only for its first letters, and
            // digits are the same in either case.
            QStringView trimmed(copy);
            while (!trimmed.isEmpty() && trimmed.front() == u' ')
                trimmed = trimmed.mid(1);
            if (!StartsWith(trimmed, c.letters) || CountDigits(trimmed.left(7)) != c.digits)
                continue;

            qsizetype firstDigit = 0;
            while (firstDigit < copy.size() &&
                   !(copy[firstDigit] >= u'0' && copy[firstDigit] <= u'9'))
                ++firstDigit;
            it->Text = copy.mid(firstDigit);
            clsZeile country = makeRecord(c.name);
            country.Land = 10;
            lines.insert(std::next(it), std::move(country));
            break;
        }
    }
}

} // namespace stage

AnalysisResult AnalyseText(const QString& text, Session& session, const Seams& seams,
                           const RunOptions& options)
{
    AnalysisResult result;
    try {
        session.rows.clearRows();
        const std::optional<QString> separator = stage::ChooseSeparator(text, session.state, seams);
        if (!separator)
            return result;
        stage::BuildLineList(text, *separator, result.store,
                             options.fillClipText ? &session.clipText : nullptr);
        if (session.state.ExtraDefinitionsLoaded)
            stage::TakeExtraDefinitionLines(result.store, session.state);
        // Positions count in 16 bits: a longer list fails in the country walk or in the pass,
        // before any row is written. Only the line list would show where.
        if (!options.keepLines && result.store.untakenCount() > MaxLinePosition) {
            result.completed = false;
            return result;
        }
        // Neither stage reads beyond the position after the last one it can count to.
        result.unreachedFrom = result.store.materialise(result.lines, MaxLinePosition + 1);
        stage::RecogniseCountryPostcodes(result.lines);
        stage::ScoreLines(result.lines);
        stage::AssembleRows(result.lines, session.rows, session.state);
    } catch (const AnalysisFailure&) {
        result.completed = false;
    } catch (const std::bad_alloc&) {
        result.completed = false;
    }
    return result;
}

QString PrepareClipboardText(const QString& clipboard)
{
    static const QString dotBeforeBreak = u" . \r\n"_s;
    if (!clipboard.contains(dotBeforeBreak))
        return clipboard; // shared, not copied
    QString copy = clipboard;
    return copy.replace(dotBeforeBreak, u"\r\n"_s);
}

std::optional<AnalysisResult> FetchClipboardText(const QString& clipboard, Session& session,
                                                 const Seams& seams, bool silent,
                                                 const RunOptions& options)
{
    session.clipText.clear();
    session.state.ClipboardText = clipboard;
    const QString prepared = PrepareClipboardText(clipboard);
    if (std::all_of(prepared.begin(), prepared.end(), [](QChar c) { return c == u' '; })) {
        if (!silent && seams.showMessage)
            seams.showMessage(msg::ClipboardEmpty, MessageStyle::Information);
        return std::nullopt;
    }
    return AnalyseText(prepared, session, seams, options);
}

} // namespace zf
