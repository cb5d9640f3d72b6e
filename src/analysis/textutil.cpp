#include "textutil.h"

#include "failure.h"

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
        d[i] = s[i].toUpper();
    return out;
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
    return UpperEach(s).contains(UpperEach(part));
}

namespace {
bool equalUpper(QStringView a, QStringView b)
{
    for (qsizetype i = 0; i < a.size(); ++i)
        if (a[i].toUpper() != b[i].toUpper())
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
    QString out;
    out.reserve(s.size());
    for (QChar c : s)
        if (c.unicode() > 30)
            out.append(c);
    return out;
}

QString CollapseBlanks(QStringView s)
{
    QString out;
    out.reserve(s.size());
    for (qsizetype i = 0; i < s.size(); ++i)
        if (s[i] != u' ' || i == 0 || s[i - 1] != u' ')
            out.append(s[i]);
    return out;
}

} // namespace zf
