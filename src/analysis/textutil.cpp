#include "textutil.h"

#include "failure.h"

#include <string_view>

namespace zf {

QString Trim(QStringView s)
{
    qsizetype b = 0;
    qsizetype e = s.size();
    while (b < e && s[b] == u' ')
        ++b;
    while (e > b && s[e - 1] == u' ')
        --e;
    return s.mid(b, e - b).toString();
}

QString UpperEach(QStringView s)
{
    QString out(s.size(), Qt::Uninitialized);
    QChar* d = out.data();
    for (qsizetype i = 0; i < s.size(); ++i)
        d[i] = UpperChar(s[i]);
    return out;
}

bool ContainsExact(QStringView haystack, QStringView needle)
{
    // Keywords are a few characters long: a plain search beats the library's set-up cost.
    const std::u16string_view h(reinterpret_cast<const char16_t*>(haystack.utf16()),
                                std::size_t(haystack.size()));
    const std::u16string_view n(reinterpret_cast<const char16_t*>(needle.utf16()),
                                std::size_t(needle.size()));
    return h.find(n) != std::u16string_view::npos;
}

qint16 CountDigits(QStringView s)
{
    if (s.size() > MaxHelperTextLength)
        throw AnalysisFailure("CountDigits: text too long");
    qint16 n = 0;
    for (QChar c : s)
        if (c >= u'0' && c <= u'9')
            ++n;
    return n;
}

bool Contains(QStringView s, QStringView part)
{
    return ContainsExact(UpperEach(s), UpperEach(part));
}

namespace {
bool equalUpper(QStringView a, QStringView b)
{
    for (qsizetype i = 0; i < a.size(); ++i)
        if (UpperChar(a[i]) != UpperChar(b[i]))
            return false;
    return true;
}
} // namespace

bool StartsWith(QStringView s, QStringView prefix)
{
    return s.size() >= prefix.size() && equalUpper(s.left(prefix.size()), prefix);
}

bool EndsWith(QStringView s, QStringView suffix)
{
    return s.size() >= suffix.size() && equalUpper(s.right(suffix.size()), suffix);
}

QString StripControlChars(QStringView s)
{
    if (s.size() > MaxHelperTextLength)
        throw AnalysisFailure("StripControlChars: text too long");
    QString out(s.size(), Qt::Uninitialized);
    QChar* d = out.data();
    for (QChar c : s)
        if (c.unicode() > 30)
            *d++ = c;
    out.truncate(d - out.constData());
    return out;
}

QString CollapseBlanks(QStringView s)
{
    QString out(s.size(), Qt::Uninitialized);
    QChar* d = out.data();
    for (qsizetype i = 0; i < s.size(); ++i)
        if (s[i] != u' ' || i == 0 || s[i - 1] != u' ')
            *d++ = s[i];
    out.truncate(d - out.constData());
    return out;
}

} // namespace zf
