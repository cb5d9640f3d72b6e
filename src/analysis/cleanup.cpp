#include "cleanup.h"

using namespace Qt::StringLiterals;

namespace zf {

namespace {

bool isAddressDelimiter(QChar c)
{
    return c == u' ' || c == u':' || c == u'/' || c == u'"';
}

// The address around the marker at index p (0-based; the marker holds no delimiter):
// the nearest delimiter on either side ends it.
QString cutAround(QStringView s, qsizetype p)
{
    qsizetype start = p;
    while (start > 0 && !isAddressDelimiter(s[start - 1]))
        --start;
    qsizetype end = p;
    while (end < s.size() && !isAddressDelimiter(s[end]))
        ++end;
    return s.mid(start, end - start).toString();
}

} // namespace

QString ExtractEMailAddress(QStringView text)
{
    const qsizetype at = text.lastIndexOf(u'@');
    return at < 0 ? text.toString() : cutAround(text, at);
}

QString ExtractWebAddress(QStringView text)
{
    const qsizetype www = text.lastIndexOf(u"www"_s);
    if (www >= 0)
        return cutAround(text, www);
    const QString http = u"http://"_s;
    const qsizetype h = text.lastIndexOf(http);
    return h < 0 ? text.toString() : text.mid(h + http.size()).toString();
}

QString CleanPhoneNumber(QStringView text)
{
    static const QString phoneChars = u"0123456789()/-+[]"_s;
    QString kept;
    kept.reserve(text.size());
    for (QChar c : text)
        if (phoneChars.contains(c))
            kept.append(c);
    if (kept.isEmpty())
        return text.toString();
    return kept.remove(u"+49"_s);
}

} // namespace zf
