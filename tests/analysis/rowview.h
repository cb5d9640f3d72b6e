#pragma once

#include "analysis/fieldrows.h"

#include <QStringList>

// The rows as "value:Field" ("value:-" without a field, "" when untouched), trailing empty
// rows left off, so that a whole result fits in one list.
inline QStringList shownRows(const zf::FieldRows& rows)
{
    QStringList out;
    for (int r = 0; r < zf::FieldRows::RowCount; ++r) {
        const int pos = rows.selected(r);
        const QString field = pos < 0 ? QStringLiteral("-") : rows.fields().nameAt(pos);
        out.append(rows.value(r).isEmpty() && pos < 0 ? QString() : rows.value(r) + u':' + field);
    }
    while (!out.isEmpty() && out.last().isEmpty())
        out.removeLast();
    return out;
}
