#pragma once

// The contact an enhanced analysis files, as text the test tables can state:
// "Field=value" per field (the last row's non-blank value), sorted, joined with " | ".

#include "enhanced/enhanced.h"

#include <QMap>
#include <QStringList>
#include <QTest>

namespace zf::test {

struct FreshSession : Session {
    FreshSession() { rows.FillDefaultFieldLists(); }
};

inline QString joinedFields(const QMap<QString, QString>& byField)
{
    QStringList out;
    for (auto it = byField.cbegin(); it != byField.cend(); ++it)
        out.append(it.key() + u'=' + it.value());
    return out.join(QStringLiteral(" | "));
}

inline QMap<QString, QString> filedFields(const Session& s)
{
    QMap<QString, QString> byField;
    for (int r = 0; r < FieldRows::RowCount; ++r) {
        const int pos = s.rows.selected(r);
        if (pos >= 0 && !s.rows.value(r).trimmed().isEmpty())
            byField[s.rows.fields().nameAt(pos)] = s.rows.value(r);
    }
    return byField;
}

inline QString filed(const Session& s)
{
    return joinedFields(filedFields(s));
}

inline QMap<QString, QString> statedFields(const QString& expected)
{
    QMap<QString, QString> byField;
    for (const QString& part : expected.split(QStringLiteral(" | "), Qt::SkipEmptyParts))
        byField[part.section(u'=', 0, 0)] = part.section(u'=', 1);
    return byField;
}

// An expectation in the same order as filed() gives it.
inline QString normalised(const QString& expected)
{
    return joinedFields(statedFields(expected));
}

inline QString analyse(const QString& text)
{
    FreshSession s;
    FetchClipboardTextEnhanced(text, s, Seams{});
    return filed(s);
}

// Only the fields the expectation names, so that a case states what it is about;
// "Field=" there asks that the field stay empty.
inline QString analyseNamed(const QString& text, const QString& expected)
{
    FreshSession s;
    FetchClipboardTextEnhanced(text, s, Seams{});
    const QMap<QString, QString> all = filedFields(s);
    QMap<QString, QString> named = statedFields(expected);
    for (auto it = named.begin(); it != named.end(); ++it)
        it.value() = all.value(it.key());
    return joinedFields(named);
}

inline void textAndExpected()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("expected");
}

inline void addCase(const char* name, const char* text, const char* expected)
{
    QTest::newRow(name) << QString::fromUtf8(text) << QString::fromUtf8(expected);
}

} // namespace zf::test
