#pragma once

#include <QString>

#include <utility>

namespace zf::books {

// One value a transfer sets: a field id, its text, and for fields outside the standard twenty
// the field's label, which a card keeps next to the value (the SQLite book has its own list).
struct FieldValue {
    FieldValue() = default;
    FieldValue(qint32 fieldId, QString value, QString label = {})
        : fieldId(fieldId), value(std::move(value)), label(std::move(label))
    {
    }
    qint32 fieldId = 0;
    QString value;
    QString label;
    friend bool operator==(const FieldValue&, const FieldValue&) = default;
};

} // namespace zf::books
