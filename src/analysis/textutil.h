#pragma once

#include <QString>
#include <QStringView>

namespace zf {

// Removes leading and trailing blanks (code 32) only; tabs and other white space stay.
QString Trim(QStringView s);

// Upper-cases one UTF-16 unit; ASCII without the table look-up.
inline QChar UpperChar(QChar c)
{
    const char16_t u = c.unicode();
    if (u < 0x80)
        return (u >= u'a' && u <= u'z') ? QChar(char16_t(u - 32)) : c;
    return c.toUpper();
}

// Upper-cases each UTF-16 unit on its own, so lengths never change ("ß" stays "ß").
QString UpperEach(QStringView s);

// Number of the characters '0' to '9'. Throws AnalysisFailure beyond 32,767 characters.
qint16 CountDigits(QStringView s);

// Case-insensitive tests: both sides upper-cased character by character, then compared exactly.
bool Contains(QStringView s, QStringView part);
// Exact substring test (both sides already upper-cased where case must not matter).
bool ContainsExact(QStringView haystack, QStringView needle);
bool StartsWith(QStringView s, QStringView prefix);
bool EndsWith(QStringView s, QStringView suffix);

// Drops every character whose code is 30 or lower (tab, line breaks, ...); code 31 stays.
// Throws AnalysisFailure beyond 32,767 characters.
QString StripControlChars(QStringView s);

// Replaces every run of blanks by a single blank (what repeating "  " -> " " ends with).
QString CollapseBlanks(QStringView s);

// 1-based helpers with the forgiving bounds of the classic string functions.
inline QString Left(QStringView s, qsizetype n)
{
    return s.left(n).toString();
}
inline QString Mid(QStringView s, qsizetype pos)
{
    return pos > s.size() ? QString() : s.mid(pos - 1).toString();
}

} // namespace zf
