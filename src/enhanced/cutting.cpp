#include "engine.h"
#include "wordbits.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace zf::enhanced {

// Control and invisible characters go; odd blanks become blanks; tabs stay as dividers.
QString cleaned(QStringView raw)
{
    // Both passes write into buffers of the greatest size needed (every character, one blank
    // per character at most) and are cut to length once; an append per character costs more
    // than the rest of the work.
    QString out(raw.size() * 2, Qt::Uninitialized);
    QChar* const outBegin = out.data();
    QChar* o = outBegin;
    bool blank = false;
    for (QChar c : raw) {
        const char16_t u = c.unicode();
        // Printable ASCII, nearly every character, needs none of the tests below.
        if (u > 0x20 && u < 0x7f) {
            if (blank && o != outBegin && o[-1] != u'\t')
                *o++ = u' ';
            blank = false;
            *o++ = c;
            continue;
        }
        if (u == u'\t' || u == 0x1f) {
            *o++ = u'\t';
            blank = false;
            continue;
        }
        if (u < 0x20 || (u >= 0x7f && u < 0xa0) || (u >= 0x200b && u <= 0x200f) || u == 0xfeff ||
            u == 0xad || u == 0x2028 || u == 0x2029)
            continue;
        if (u == 0xa0 || (u >= 0x2000 && u <= 0x200a) || u == 0x202f || u == u' ') {
            blank = true;
            continue;
        }
        if (blank && o != outBegin && o[-1] != u'\t')
            *o++ = u' ';
        blank = false;
        *o++ = c;
    }
    const qsizetype length = o - outBegin;
    // Blanks around dividers are not part of any value.
    QString tidy(length, Qt::Uninitialized);
    QChar* const tidyBegin = tidy.data();
    QChar* t = tidyBegin;
    for (qsizetype i = 0; i < length; ++i) {
        const QChar c = outBegin[i];
        if (c == u' ' &&
            ((i + 1 < length && outBegin[i + 1] == u'\t') || (t != tidyBegin && t[-1] == u'\t')))
            continue;
        *t++ = c;
    }
    tidy.truncate(t - tidyBegin);
    return tidy;
}

// Markdown emphasis, code marks and angle brackets around a lone address.
QString withoutMarkup(QString s)
{
    bool marks = false;
    for (QChar c : std::as_const(s))
        marks = marks || c == u'*' || c == u'_' || c == u'`';
    if (marks)
        for (const QString& mark : {u"**"_s, u"__"_s, u"`"_s})
            s.remove(mark);
    if (s.size() > 2 && (s.front() == u'*' || s.front() == u'_') && s.back() == s.front())
        s = s.mid(1, s.size() - 2);
    if (s.size() > 2 && s.front() == u'<' && s.back() == u'>' && !s.mid(1).contains(u'<'))
        s = s.mid(1, s.size() - 2);
    // "[Text](https://host)": the text and the address become two pieces.
    const qsizetype open = s.startsWith(u'[') && s.endsWith(u')') ? s.indexOf(u"]("_s) : -1;
    if (open > 0)
        s = s.mid(1, open - 1) + u'\t' + s.mid(open + 2, s.size() - open - 3);
    return s.trimmed();
}

namespace {

constexpr int ColumnGap = 3; // blanks in a row that may part two columns

// "Firma *      Muster AG", "Name<TAB>Eva Roth", "Telefon Geschäft    052 386 11 22": a
// form's label in the cell before its value, as one labelled line ("Firma *: Muster AG").
QString withFormLabel(QStringView line)
{
    qsizetype from = 0;
    while (from < line.size() && line[from] == u' ')
        ++from;
    const qsizetype tab = line.indexOf(u'\t', from);
    const qsizetype run = line.indexOf(u"   "_s, from);
    const qsizetype at = tab < 0 ? run : run < 0 ? tab : std::min(tab, run);
    if (at <= from)
        return QString();
    const QStringView head = line.mid(from, at - from).trimmed();
    const QStringView value = line.mid(at).trimmed();
    // One value to a line: more cells make a table or a footer in columns.
    if (value.isEmpty() || value.front() == u':' || value.contains(u'\t') ||
        value.contains(u"   "_s) || head.isEmpty() || head.contains(u':') || WordCount(head) > 4 ||
        CountDigitsIn(head) > 0)
        return QString();
    QString out = head.toString() + u": "_s + value.toString();
    const auto hit = ParseLabel(out);
    if (!hit || !hit->known || hit->rest != value)
        return QString();
    switch (hit->label.kind) {
    case LabelKind::Role:
    case LabelKind::Job:
    case LabelKind::SkipBlock:
    case LabelKind::SkipLine:
        return QString();
    default:
        return out;
    }
}

// Where the runs of blanks inside a line end that may part columns: not behind a label
// ("Tel.     0711", "Firma   :  Muster") and not in front of a colon.
QList<qsizetype> gapEnds(QStringView line)
{
    QList<qsizetype> out;
    const auto blank = [](QChar c) { return c == u' ' || c == QChar(0xa0); };
    qsizetype cell = -1; // start of the text in front of the run
    for (qsizetype i = 0; i < line.size();) {
        if (!blank(line[i])) {
            if (cell < 0)
                cell = i;
            ++i;
            continue;
        }
        qsizetype j = i;
        while (j < line.size() && blank(line[j]))
            ++j;
        if (cell >= 0 && j - i >= ColumnGap && j < line.size() && line[j] != u':') {
            const QStringView before = line.mid(cell, i - cell);
            // Only phone, mail and web labels stand before their value without a colon.
            const Label* l = Words(before).size() <= 3 && !before.contains(u": "_s)
                                 ? knowledge().label(before.toString().toLower())
                                 : nullptr;
            // A phone label keeps only a number beside it: "Durchwahl     Datum" are two heads
            // of a letter's reference table.
            const QChar next = line[j];
            const bool number = isDigit(next) || next == u'+' || next == u'(';
            const bool label = (l && ((l->kind == LabelKind::Phone && number) ||
                                      l->kind == LabelKind::Email || l->kind == LabelKind::Web)) ||
                               (out.isEmpty() && !withFormLabel(line).isEmpty());
            if (!before.endsWith(u':') && !label) {
                out.append(j);
                cell = -1;
            }
        }
        i = j;
    }
    return out;
}

} // namespace

void Analysis::cut(const QString& text, const QString& separator)
{
    static const QString headStart = u"Details der "_s;
    static const QString headEnd = u" schließen"_s;
    QString whole = text;
    whole.replace(u"\r\n"_s, separator);
    // Views into the text instead of a list of copies; an empty separator is left to Qt,
    // which splits it its own way.
    QStringList parts;
    QList<QStringView> pieces;
    if (separator.isEmpty()) {
        parts = whole.split(separator, Qt::KeepEmptyParts);
        for (const QString& p : std::as_const(parts))
            pieces.append(p);
    } else {
        const QStringView all(whole);
        const QChar first = separator.front();
        qsizetype from = 0;
        for (qsizetype i = 0; i + separator.size() <= all.size();) {
            if (all[i] == first && all.mid(i, separator.size()) == separator) {
                pieces.append(all.mid(from, i - from));
                i += separator.size();
                from = i;
            } else {
                ++i;
            }
        }
        pieces.append(all.mid(from));
    }
    QList<QStringView> rawLines;
    rawLines.reserve(pieces.size());
    for (QStringView piece : std::as_const(pieces)) {
        // Stray line breaks inside a piece still end a line.
        qsizetype from = 0;
        for (qsizetype i = 0; i <= piece.size() && rawLines.size() <= MaxLines; ++i) {
            if (i < piece.size() && piece[i] != u'\r' && piece[i] != u'\n')
                continue;
            rawLines.append(QStringView(piece).mid(from, i - from));
            from = i + 1;
        }
    }
    // A footer in columns: runs of blanks that end at the same place in neighbouring lines
    // part its cells. Such lines are read column by column, each column a block of its own,
    // so that a firm, its street and its town stand under each other again.
    QList<QList<qsizetype>> gaps;
    if (whole.contains(u"   "_s)) {
        QList<QList<qsizetype>> ends(rawLines.size());
        for (qsizetype n = 0; n < rawLines.size(); ++n)
            if (rawLines[n].size() <= MaxLineLength && rawLines[n].contains(u"   "_s))
                ends[n] = gapEnds(rawLines[n]);
        gaps.resize(rawLines.size());
        for (qsizetype n = 0; n < rawLines.size(); ++n)
            for (qsizetype end : ends[n])
                if ((n > 0 && ends[n - 1].contains(end)) ||
                    (n + 1 < ends.size() && ends[n + 1].contains(end)))
                    gaps[n].append(end);
    }
    struct Unit {
        QStringView text;
        int source;
    };
    QList<Unit> units;
    units.reserve(rawLines.size());
    for (qsizetype n = 0; n < rawLines.size(); ++n) {
        if (gaps.isEmpty() || gaps[n].isEmpty()) {
            units.append({rawLines[n], int(n + 1)});
            continue;
        }
        qsizetype last = n;
        QList<qsizetype> starts;
        for (; last < rawLines.size() && !gaps[last].isEmpty(); ++last)
            for (qsizetype end : gaps[last])
                if (!starts.contains(end))
                    starts.append(end);
        std::sort(starts.begin(), starts.end());
        units.append({QStringView(), int(n + 1)});
        for (qsizetype column = 0; column <= starts.size(); ++column) {
            for (qsizetype m = n; m < last; ++m) {
                const QStringView line = rawLines[m];
                qsizetype from = 0;
                for (qsizetype g = 0; g <= gaps[m].size(); ++g) {
                    qsizetype to = g < gaps[m].size() ? gaps[m][g] : line.size();
                    const qsizetype next = to;
                    while (g < gaps[m].size() && to > from && line[to - 1].isSpace())
                        --to;
                    const qsizetype at =
                        std::upper_bound(starts.cbegin(), starts.cend(), from) - starts.cbegin();
                    if (at == column)
                        units.append({line.mid(from, to - from), int(m + 1)});
                    from = next;
                }
            }
            units.append({QStringView(), int(last)});
        }
        n = last - 1;
    }
    if (rawLines.size() > MaxLines)
        m_truncated = true;
    int block = 0;
    bool lastBlank = true;
    for (const Unit& unit : units) {
        {
            const QStringView rawLine = unit.text;
            const int source = unit.source;
            if (source > MaxLines)
                return;
            const QStringView kept = rawLine.left(MaxLineLength * 4);
            QString t;
            if (kept.contains(u'\t') || kept.contains(u"   "_s))
                t = withFormLabel(kept);
            t = cleaned(t.isEmpty() ? kept : QStringView(t));
            bool quoted = false;
            while (!t.isEmpty() && (t.front() == u'>' || t.front() == u' ')) {
                quoted = quoted || t.front() == u'>';
                t.remove(0, 1);
            }
            while (!t.isEmpty() && (t.back() == u' ' || t.back() == u'\t'))
                t.chop(1);
            if (t.endsWith(u" ."_s))
                t.chop(2);
            t = withoutMarkup(t);
            if (t.isEmpty() || t == u"."_s) {
                if (!lastBlank) {
                    Line b;
                    b.kind = Kind::Blank;
                    b.source = source;
                    b.block = block;
                    m_raw.append(b);
                    ++block;
                }
                lastBlank = true;
                continue;
            }
            lastBlank = false;
            Line l;
            l.source = source;
            l.block = block;
            l.quoted = quoted;
            if (t.startsWith(headStart) && t.endsWith(headEnd)) {
                const qsizetype len = t.size() - headStart.size() - headEnd.size();
                l.kind = Kind::Heading;
                l.value = len > 0 ? t.mid(headStart.size(), len).trimmed() : QString();
                l.text = t;
                l.why = u"Kopfzeile \"Details der … schließen\""_s;
            } else {
                l.text = t;
            }
            m_raw.append(l);
        }
    }
}

// Lines that begin with a configured label went to their extra field: each label takes the
// first such line, as in the classic run.
void Analysis::takeDefinitions(const QList<clsZusatzDefs>& definitions)
{
    for (const clsZusatzDefs& def : definitions)
        for (Line& l : m_raw)
            if (!l.skipped && l.kind != Kind::Blank && l.text.startsWith(def.Wert)) {
                l.kind = Kind::Noise;
                l.skipped = true;
                l.why = u"Zusatzfeld aus den Einstellungen"_s;
                l.skipWhy = l.why;
                break;
            }
}

} // namespace zf::enhanced
