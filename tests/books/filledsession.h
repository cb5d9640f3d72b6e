#pragma once

// A session whose first rows hold those fields and values, as an analysis would leave them.

#include "analysis/session.h"

#include <QList>
#include <QString>

#include <utility>

namespace zf::test {

inline void fill(Session& session, const QList<std::pair<FieldId, QString>>& rows)
{
    session.rows.FillDefaultFieldLists();
    for (int row = 0; row < rows.size(); ++row) {
        session.rows.SelectRowField(row, rows[row].first);
        session.rows.setValue(row, rows[row].second);
    }
    session.clipText = "Muster GmbH";
}

} // namespace zf::test
