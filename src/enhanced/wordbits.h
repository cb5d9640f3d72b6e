#pragma once

// Small word and digit helpers the recognisers share.

#include <QList>
#include <QString>
#include <QStringView>
#include <QVarLengthArray>

namespace zf::enhanced {

inline bool isDigit(QChar c)
{
    return c >= u'0' && c <= u'9';
}

// Letters that OCR mistakes for digits.
inline bool isDigitLike(QChar c)
{
    return c == u'O' || c == u'o' || c == u'l' || c == u'I';
}

inline QChar asDigit(QChar c)
{
    return (c == u'O' || c == u'o') ? u'0' : (c == u'l' || c == u'I') ? u'1' : c;
}

// A word of digits in which OCR slips are mended: "2O" -> "20", "l6816" -> "16816".
inline QString mendedNumber(QStringView word)
{
    int digits = 0;
    for (QChar c : word) {
        if (isDigit(c))
            ++digits;
        else if (!isDigitLike(c))
            return {};
    }
    if (digits == 0 || digits * 2 < word.size())
        return {};
    QString out;
    for (QChar c : word)
        out.append(asDigit(c));
    return out;
}

inline bool oneOf(QChar c, QStringView chars)
{
    for (QChar x : chars)
        if (x == c)
            return true;
    return false;
}

inline QStringView chopTrailing(QStringView w, QStringView chars)
{
    while (!w.isEmpty() && oneOf(w.back(), chars))
        w.chop(1);
    return w;
}

inline QString stripTrailing(QStringView w, QStringView chars)
{
    return chopTrailing(w, chars).toString();
}

// QString::toLower() with the Latin-1 letters (nearly every address line) mapped directly;
// anything beyond goes through Qt's tables, so the result is the same.
inline QString lowered(QStringView text)
{
    if (text.isEmpty())
        return text.toString().toLower();
    QString out(text.size(), Qt::Uninitialized);
    QChar* to = out.data();
    for (qsizetype i = 0; i < text.size(); ++i) {
        const char16_t c = text[i].unicode();
        if (c >= 0x100)
            return text.toString().toLower();
        const bool upper = (c >= u'A' && c <= u'Z') || (c >= 0xc0 && c <= 0xde && c != 0xd7);
        to[i] = QChar(upper ? char16_t(c + 0x20) : c);
    }
    return out;
}

// QString::contains for the short lines and words compared here: a plain scan costs less
// than the setup of Qt's general search.
inline bool containsText(QStringView text, QStringView part)
{
    if (part.isEmpty())
        return text.contains(part);
    const QChar first = part.front();
    for (qsizetype i = 0; i + part.size() <= text.size(); ++i)
        if (text[i] == first && text.mid(i, part.size()) == part)
            return true;
    return false;
}

// A QString over a view's characters, for one look-up in a hash: no copy is made, so it
// must not outlive the characters.
inline QString keyOf(QStringView text)
{
    return QString::fromRawData(text.data(), text.size());
}

// lowered() for a look-up or a comparison: short words are lower-cased into a buffer on the
// stack, so most look-ups allocate nothing. str() lives as long as the key.
class LowerKey {
public:
    explicit LowerKey(QStringView text)
    {
        if (text.isEmpty() || text.size() > Capacity) {
            m_key = lowered(text);
            return;
        }
        for (qsizetype i = 0; i < text.size(); ++i) {
            const char16_t c = text[i].unicode();
            if (c >= 0x100) {
                m_key = lowered(text);
                return;
            }
            const bool upper = (c >= u'A' && c <= u'Z') || (c >= 0xc0 && c <= 0xde && c != 0xd7);
            m_buffer[i] = QChar(upper ? char16_t(c + 0x20) : c);
        }
        m_key = QString::fromRawData(m_buffer, text.size());
    }
    LowerKey(const LowerKey&) = delete;
    LowerKey& operator=(const LowerKey&) = delete;
    const QString& str() const { return m_key; }

private:
    static constexpr qsizetype Capacity = 64;
    QChar m_buffer[Capacity];
    QString m_key;
};

// Bare() as a LowerKey.
class BareKey : public LowerKey {
public:
    explicit BareKey(QStringView word) : LowerKey(chopTrailing(word, u",;:")) {}
};

inline bool startsWithWord(const QString& lower, const QString& word)
{
    // Most candidates differ in the first letter; that is decided without a call.
    if (!word.isEmpty() && (lower.isEmpty() || lower.front() != word.front()))
        return false;
    if (!lower.startsWith(word))
        return false;
    if (lower.size() == word.size())
        return true;
    const QChar next = lower[word.size()];
    return !next.isLetterOrNumber();
}
inline QString joined(const QVarLengthArray<QStringView, 16>& words, qsizetype from, qsizetype to)
{
    QString out;
    for (qsizetype i = from; i < to; ++i) {
        if (!out.isEmpty())
            out.append(u' ');
        out.append(words[i]);
    }
    return out;
}

} // namespace zf::enhanced
