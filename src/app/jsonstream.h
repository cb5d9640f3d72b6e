#pragma once

// Writes JSON as it goes, byte for byte as QJsonDocument::toJson(Indented) lays it out
// (four blanks per level, "key": value, an empty container as "[\n" and its closing line),
// so that output of any size needs no document held whole. Keys must be written in the
// order QJsonObject keeps them: sorted.

#include <QByteArray>
#include <QJsonArray>
#include <QJsonObject>
#include <QJsonValue>
#include <QLocale>
#include <QStringView>

#include <cstdio>
#include <vector>

class JsonStream {
public:
    explicit JsonStream(std::FILE* out) : m_out(out) {}
    JsonStream(const JsonStream&) = delete;
    JsonStream& operator=(const JsonStream&) = delete;
    ~JsonStream() { flush(); }

    void beginObject() { open('{'); }
    void endObject() { close('}'); }
    void beginArray() { open('['); }
    void endArray() { close(']'); }

    void key(QStringView name)
    {
        nextItem();
        m_buf += '"';
        escape(name);
        m_buf += "\": ";
        m_afterKey = true;
    }
    void value(QStringView s)
    {
        beginString();
        appendString(s);
        endString();
    }
    void value(qint64 n) { item(QByteArray::number(n)); }
    void value(bool b) { item(b ? "true" : "false"); }
    void null() { item("null"); }
    // A small value built in memory, laid out as its document would be.
    void document(const QJsonValue& v)
    {
        switch (v.type()) {
        case QJsonValue::Object: {
            const QJsonObject object = v.toObject();
            beginObject();
            for (auto it = object.begin(); it != object.end(); ++it) {
                key(it.key());
                document(it.value());
            }
            endObject();
            break;
        }
        case QJsonValue::Array:
            beginArray();
            for (const QJsonValue& element : v.toArray())
                document(element);
            endArray();
            break;
        case QJsonValue::String:
            value(QStringView(v.toString()));
            break;
        case QJsonValue::Bool:
            value(v.toBool());
            break;
        case QJsonValue::Double:
            if (const double d = v.toDouble(); d == double(qint64(d)))
                value(qint64(d));
            else
                item(QByteArray::number(d, 'g', QLocale::FloatingPointShortest));
            break;
        default:
            null();
            break;
        }
    }

    // A string written in parts; the parts must not split a surrogate pair.
    void beginString()
    {
        nextItem();
        m_buf += '"';
    }
    void appendString(QStringView part)
    {
        escape(part);
        if (m_buf.size() >= FlushAt)
            flush();
    }
    void endString() { m_buf += '"'; }

    void flush()
    {
        if (!m_buf.isEmpty())
            std::fwrite(m_buf.constData(), 1, std::size_t(m_buf.size()), m_out);
        m_buf.clear();
    }

    // How Qt escapes a string: the seven short escapes, other control characters and
    // unpaired surrogates as \u with lower-case hex digits, everything else as UTF-8.
    static void escapeInto(QByteArray& out, QStringView s)
    {
        const auto hex = [](unsigned v) { return char(v < 10 ? '0' + v : 'a' + v - 10); };
        const auto uEscape = [&](unsigned u) {
            out += "\\u";
            for (int shift = 12; shift >= 0; shift -= 4)
                out += hex((u >> shift) & 0xf);
        };
        for (qsizetype i = 0; i < s.size(); ++i) {
            const unsigned u = s[i].unicode();
            if (u < 0x80) {
                switch (u) {
                case '"':
                    out += "\\\"";
                    break;
                case '\\':
                    out += "\\\\";
                    break;
                case '\b':
                    out += "\\b";
                    break;
                case '\f':
                    out += "\\f";
                    break;
                case '\n':
                    out += "\\n";
                    break;
                case '\r':
                    out += "\\r";
                    break;
                case '\t':
                    out += "\\t";
                    break;
                default:
                    if (u < 0x20)
                        uEscape(u);
                    else
                        out += char(u);
                }
            } else if (u < 0x800) {
                out += char(0xc0 | (u >> 6));
                out += char(0x80 | (u & 0x3f));
            } else if (u < 0xd800 || u > 0xdfff) {
                out += char(0xe0 | (u >> 12));
                out += char(0x80 | ((u >> 6) & 0x3f));
                out += char(0x80 | (u & 0x3f));
            } else if (u < 0xdc00 && i + 1 < s.size() && s[i + 1].isLowSurrogate()) {
                const unsigned c = 0x10000 + ((u - 0xd800) << 10) + (s[++i].unicode() - 0xdc00);
                out += char(0xf0 | (c >> 18));
                out += char(0x80 | ((c >> 12) & 0x3f));
                out += char(0x80 | ((c >> 6) & 0x3f));
                out += char(0x80 | (c & 0x3f));
            } else {
                uEscape(u);
            }
        }
    }

private:
    static constexpr qsizetype FlushAt = 1 << 16;

    void escape(QStringView s) { escapeInto(m_buf, s); }
    // Separator and indentation before a member or an element (a value after its key needs
    // neither).
    void nextItem()
    {
        if (m_afterKey) {
            m_afterKey = false;
            return;
        }
        if (!m_items.empty()) {
            if (m_items.back()++ > 0)
                m_buf += ",\n";
            m_buf += QByteArray(4 * qsizetype(m_items.size()), ' ');
        }
    }
    void item(const QByteArray& literal)
    {
        nextItem();
        m_buf += literal;
    }
    void open(char bracket)
    {
        nextItem();
        m_buf += bracket;
        m_buf += '\n';
        m_items.push_back(0);
    }
    void close(char bracket)
    {
        const bool any = m_items.back() > 0;
        m_items.pop_back();
        if (any)
            m_buf += '\n';
        m_buf += QByteArray(4 * qsizetype(m_items.size()), ' ');
        m_buf += bracket;
        if (m_items.empty())
            m_buf += '\n';
        if (m_buf.size() >= FlushAt)
            flush();
    }

    std::FILE* m_out;
    QByteArray m_buf;
    std::vector<int> m_items; // per open container: members or elements written
    bool m_afterKey = false;
};
