#include "engine.h"

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
    m_raw.reserve(pieces.size());
    int source = 0;
    int block = 0;
    bool lastBlank = true;
    for (QStringView piece : std::as_const(pieces)) {
        // Stray line breaks inside a piece still end a line.
        qsizetype from = 0;
        for (qsizetype i = 0; i <= piece.size(); ++i) {
            if (i < piece.size() && piece[i] != u'\r' && piece[i] != u'\n')
                continue;
            const QStringView rawLine = QStringView(piece).mid(from, i - from);
            from = i + 1;
            if (++source > MaxLines) {
                m_truncated = true;
                return;
            }
            QString t = cleaned(rawLine.left(MaxLineLength * 4));
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
                const qsizetype n = t.size() - headStart.size() - headEnd.size();
                l.kind = Kind::Heading;
                l.value = n > 0 ? t.mid(headStart.size(), n).trimmed() : QString();
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
