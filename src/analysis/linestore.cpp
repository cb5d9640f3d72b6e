#include "linestore.h"

#include "textutil.h"

#include <algorithm>
#include <limits>
#include <unordered_map>

namespace zf {

namespace {

constexpr std::size_t None = std::numeric_limits<std::size_t>::max();

// Polynomial hashes modulo the prime 2^61 - 1, so that windows of a text can be rolled.
constexpr quint64 Prime = (quint64(1) << 61) - 1;
constexpr quint64 Base = 1'000'003;

quint64 mulMod(quint64 a, quint64 b)
{
    __extension__ using u128 = unsigned __int128;
    const u128 product = u128(a) * b;
    quint64 r = quint64(product & Prime) + quint64(product >> 61);
    r = (r & Prime) + (r >> 61);
    return r >= Prime ? r - Prime : r;
}

quint64 addMod(quint64 a, quint64 b)
{
    const quint64 r = a + b;
    return r >= Prime ? r - Prime : r;
}

quint64 hashOf(QStringView s)
{
    quint64 h = 0;
    for (QChar c : s)
        h = addMod(mulMod(h, Base), c.unicode());
    return h;
}

// Which heading names occur in a text, without trying every heading: the distinct names by
// length and hash, each with the headings that carry it in their order.
class HeadingIndex {
public:
    HeadingIndex(const LineStore& store, std::vector<LineStore::Slice> heads)
        : m_store(store), m_heads(std::move(heads))
    {
        std::unordered_map<qsizetype, std::size_t> groupOfLength;
        for (std::size_t j = 0; j < m_heads.size(); ++j) {
            const QStringView name = this->name(j);
            if (name.isEmpty())
                continue;
            m_lastNamed = j;
            auto [g, isNew] = groupOfLength.try_emplace(name.size(), m_groups.size());
            if (isNew)
                m_groups.push_back(Group{name.size(), power(name.size()), {}});
            const quint64 h = hashOf(name);
            mark(h, name.size());
            std::vector<std::size_t>& sameHash = m_groups[g->second].names[h];
            const auto known = std::find_if(sameHash.begin(), sameHash.end(), [&](std::size_t id) {
                return this->name(m_names[id].front()) == name;
            });
            if (known != sameHash.end()) {
                m_names[*known].push_back(j);
            } else {
                sameHash.push_back(m_names.size());
                m_names.push_back({j});
            }
        }
        std::sort(m_groups.begin(), m_groups.end(),
                  [](const Group& a, const Group& b) { return a.length < b.length; });
    }

    std::size_t count() const { return m_heads.size(); }
    // The name heading j removes (its company name as the heading gave it).
    QStringView name(std::size_t j) const { return m_store.view(m_heads[j]); }

    // The first heading after `after` whose name is not empty and occurs in text, or None.
    std::size_t nextIn(QStringView text, std::size_t after) const
    {
        if (m_lastNamed == None || after >= m_lastNamed)
            return None;
        std::size_t best = None;
        for (const Group& g : m_groups) {
            if (g.length > text.size() || best == after + 1)
                break;
            quint64 h = hashOf(text.left(g.length));
            for (qsizetype start = 0;; ++start) {
                // Most windows are no name: the filter spares their table look-up.
                const auto it = marked(h, g.length) ? g.names.find(h) : g.names.end();
                if (it != g.names.end())
                    for (std::size_t id : it->second) {
                        const std::vector<std::size_t>& carriers = m_names[id];
                        const auto next = std::upper_bound(carriers.begin(), carriers.end(), after);
                        if (next != carriers.end() && *next < best &&
                            text.mid(start, g.length) == name(carriers.front()))
                            best = *next;
                    }
                if (start + g.length >= text.size())
                    break;
                // Roll the window one character on.
                const quint64 out = mulMod(text[start].unicode(), g.power);
                h = addMod(mulMod(addMod(h, Prime - out), Base), text[start + g.length].unicode());
            }
        }
        return best;
    }

private:
    struct Group {
        qsizetype length;
        quint64 power; // Base^(length - 1), for the character leaving a window
        std::unordered_map<quint64, std::vector<std::size_t>> names;
    };
    static quint64 power(qsizetype length)
    {
        quint64 p = 1;
        for (qsizetype k = 1; k < length; ++k)
            p = mulMod(p, Base);
        return p;
    }

    // One bit per (hash, length) of every name, small enough to stay in the cache.
    static constexpr int FilterBits = 20;
    static std::size_t filterIndex(quint64 h, qsizetype length)
    {
        return std::size_t(((h + quint64(length)) * 0x9e3779b97f4a7c15ULL) >> (64 - FilterBits));
    }
    void mark(quint64 h, qsizetype length)
    {
        const std::size_t i = filterIndex(h, length);
        m_filter[i / 64] |= quint64(1) << (i % 64);
    }
    bool marked(quint64 h, qsizetype length) const
    {
        const std::size_t i = filterIndex(h, length);
        return (m_filter[i / 64] >> (i % 64)) & 1;
    }

    const LineStore& m_store;
    std::vector<quint64> m_filter = std::vector<quint64>((std::size_t(1) << FilterBits) / 64);
    std::vector<LineStore::Slice> m_heads; // the names as the headings gave them
    std::vector<Group> m_groups;
    std::vector<std::vector<std::size_t>> m_names; // per distinct name: its headings
    std::size_t m_lastNamed = None;
};

// A record's text after the headings from `first` to the last, each removing its name and
// trimming. Only the first can change a text without its name occurring (by trimming), so
// after it only the headings whose names occur need to be applied.
QString afterHeadings(QStringView original, std::size_t first, const HeadingIndex& index)
{
    QString text = original.toString();
    const auto apply = [&](std::size_t j) {
        const QStringView name = index.name(j);
        if (!name.isEmpty())
            text.remove(name.toString());
        text = Trim(text);
    };
    apply(first);
    for (std::size_t j = index.nextIn(text, first); j != None; j = index.nextIn(text, j))
        apply(j);
    return text;
}

} // namespace

LineStore::Slice LineStore::slice(QStringView text)
{
    Slice s{};
    s.length = quint64(text.size());
    const QChar* begin = m_source.constData();
    if (text.data() >= begin && text.data() + text.size() <= begin + m_source.size()) {
        s.offset = quint64(text.data() - begin);
    } else {
        s.offset = quint64(m_buffer.size());
        s.inBuffer = 1;
        m_buffer.append(text);
    }
    return s;
}

void LineStore::addLine(QStringView text)
{
    m_lines.push_back(slice(text));
}

void LineStore::addHeading(QStringView name)
{
    m_heads.push_back(slice(name));
    m_linesBeforeHead.push_back(m_lines.size());
}

void LineStore::applyHeadings()
{
    if (m_heads.empty())
        return;
    const HeadingIndex index(*this, m_heads);
    const auto update = [&](Slice& s, std::size_t first) {
        if (first >= index.count())
            return false;
        const QString text = afterHeadings(view(s), first, index);
        if (text == view(s))
            return false;
        s = slice(text);
        return true;
    };
    for (std::size_t j = 0; j < m_heads.size(); ++j)
        update(m_heads[j], j + 1);
    for (std::size_t i = 0; i < m_lines.size(); ++i) {
        const Slice built = m_lines[i];
        const std::size_t first =
            std::size_t(std::upper_bound(m_linesBeforeHead.begin(), m_linesBeforeHead.end(), i) -
                        m_linesBeforeHead.begin());
        if (update(m_lines[i], first)) {
            if (m_builtLines.empty())
                m_builtLines = m_lines;
            m_builtLines[i] = built;
        }
    }
}

qsizetype LineStore::materialise(LineList& lines, qsizetype limit) const
{
    qsizetype pos = 0;
    for (qsizetype made = 0; pos < size() && made < limit; ++pos) {
        if (isTaken(pos))
            continue;
        clsZeile z;
        z.Text = text(pos).toString();
        if (isHeading(pos))
            z.Firma = 20;
        lines.push_back(std::move(z));
        ++made;
    }
    return pos;
}

} // namespace zf
