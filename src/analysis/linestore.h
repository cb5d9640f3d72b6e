#pragma once

#include "zeile.h"

#include <QString>
#include <QStringView>

#include <vector>

namespace zf {

// The records of a run from the cut text up to the scoring: ordinary lines in input order
// and company heading records, which stand in front of them, last heading first. A record
// costs eight bytes beside its text: a text left unchanged by the cleaning is a slice of the
// source, any other goes to one shared buffer. This keeps a long text near its own size;
// only the records the scoring can reach become full line records (Materialise).
class LineStore {
public:
    LineStore() = default;
    explicit LineStore(const QString& source) : m_source(source) {}

    // Appends a cleaned line; its text may be a slice of the source or any other text.
    void addLine(QStringView text);
    // A company heading: its record, and the name it removes from every record before it.
    void addHeading(QStringView name);
    // Removes each heading's name from every record made before the heading and trims it;
    // once, when all records are made (or the cutting failed).
    void applyHeadings();

    // Records in list order: heading records (last one first), then the lines; taken
    // records keep their place and are skipped by the readers below.
    qsizetype size() const { return qsizetype(m_heads.size() + m_lines.size()); }
    QStringView text(qsizetype pos) const { return view(at(pos)); }
    bool isHeading(qsizetype pos) const { return pos < qsizetype(m_heads.size()); }
    bool isTaken(qsizetype pos) const { return at(pos).taken; }
    void take(qsizetype pos) { at(pos).taken = 1; }
    qsizetype untakenCount() const { return size() - m_takenCount; }
    void countTaken(qsizetype n) { m_takenCount += n; }

    // The lines as they were cut and cleaned, before any heading touched them: the text of
    // the clipboard box, one "\r\n" behind each.
    qsizetype lineCount() const { return qsizetype(m_lines.size()); }
    QStringView builtLine(qsizetype i) const
    {
        return view((m_builtLines.empty() ? m_lines : m_builtLines)[std::size_t(i)]);
    }

    // The first `limit` untaken records as line records (heading records with Firma 20);
    // returns the list position where the rest begins.
    qsizetype materialise(LineList& lines, qsizetype limit) const;

    struct Slice {
        quint64 offset : 46;
        quint64 length : 16; // a record is at most 32,767 characters long
        quint64 inBuffer : 1;
        quint64 taken : 1;
    };
    static_assert(sizeof(Slice) == 8);
    QStringView view(const Slice& s) const
    {
        const QString& from = s.inBuffer ? m_buffer : m_source;
        return QStringView(from).mid(qsizetype(s.offset), qsizetype(s.length));
    }

private:
    Slice& at(qsizetype pos)
    {
        const qsizetype heads = qsizetype(m_heads.size());
        return pos < heads ? m_heads[std::size_t(heads - 1 - pos)]
                           : m_lines[std::size_t(pos - heads)];
    }
    const Slice& at(qsizetype pos) const { return const_cast<LineStore*>(this)->at(pos); }
    Slice slice(QStringView text);

    QString m_source;
    QString m_buffer;
    std::vector<Slice> m_heads;                 // in the order the headings came
    std::vector<Slice> m_lines;                 // current texts
    std::vector<Slice> m_builtLines;            // as built, kept only once a heading edits a line
    std::vector<std::size_t> m_linesBeforeHead; // per heading: lines made before it
    qsizetype m_takenCount = 0;
};

} // namespace zf
