#include "fieldrows.h"

#include <QCollator>
#include <QLocale>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace zf {

bool FieldNameLess(const QString& a, const QString& b)
{
    static const QCollator collator = [] {
        QCollator c(QLocale(QLocale::German, QLocale::Germany));
        c.setCaseSensitivity(Qt::CaseInsensitive);
        // Set up here, once: the first comparison would otherwise do it behind a const call.
        c.compare(u"a"_s, u"b"_s);
        return c;
    }();
    return collator.compare(a, b) < 0;
}

int FieldList::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : count();
}

QVariant FieldList::data(const QModelIndex& index, int role) const
{
    if (!index.isValid() || index.row() >= count())
        return {};
    const FieldEntry& e = m_entries[index.row()];
    if (role == Qt::DisplayRole || role == Qt::EditRole)
        return e.name;
    if (role == IdRole)
        return e.id;
    return {};
}

int FieldList::positionOf(qint32 id) const
{
    for (int i = 0; i < count(); ++i)
        if (m_entries[i].id == id)
            return i;
    return -1;
}

int FieldList::add(const QString& name, qint32 id)
{
    // upper_bound: a new entry goes behind all entries of an equal name.
    const auto it = std::upper_bound(
        m_entries.cbegin(), m_entries.cend(), name,
        [](const QString& n, const FieldEntry& e) { return FieldNameLess(n, e.name); });
    const int pos = int(it - m_entries.cbegin());
    beginInsertRows({}, pos, pos);
    m_entries.insert(pos, FieldEntry{name, id});
    endInsertRows();
    return pos;
}

void FieldList::clear()
{
    beginResetModel();
    m_entries.clear();
    endResetModel();
}

FieldRows::FieldRows(QObject* parent) : QObject(parent)
{
    m_selected.fill(-1);
}

void FieldRows::addField(const QString& name, qint32 id)
{
    const int pos = m_fields.add(name, id);
    for (int row = 0; row < RowCount; ++row)
        if (m_selected[row] >= pos) {
            ++m_selected[row];
            emit selectionChanged(row);
        }
}

void FieldRows::clearFields()
{
    m_fields.clear();
    for (int row = 0; row < RowCount; ++row)
        setSelected(row, -1);
}

void FieldRows::FillDefaultFieldLists()
{
    for (const FieldEntry& e : defaultFieldEntries())
        addField(e.name, e.id);
}

void FieldRows::setValue(int row, const QString& value)
{
    if (m_values[row] == value)
        return;
    m_values[row] = value;
    emit valueChanged(row);
}

void FieldRows::setSelected(int row, int pos)
{
    if (pos < -1 || pos >= m_fields.count())
        pos = -1;
    if (m_selected[row] == pos)
        return;
    m_selected[row] = pos;
    emit selectionChanged(row);
}

std::optional<qint32> FieldRows::fieldId(int row) const
{
    const int pos = m_selected[row];
    if (pos < 0)
        return std::nullopt;
    return m_fields.idAt(pos);
}

void FieldRows::SelectRowField(int row, qint16 id)
{
    const int pos = m_fields.positionOf(id);
    if (pos >= 0)
        setSelected(row, pos);
}

void FieldRows::clearRows()
{
    for (int row = 0; row < RowCount; ++row) {
        setSelected(row, -1);
        setValue(row, QString());
    }
}

const QList<FieldEntry>& defaultFieldEntries()
{
    static const QList<FieldEntry> entries = [] {
        QList<FieldEntry> list;
        for (const StandardField& f : StandardFields)
            list.append(FieldEntry{fieldName(f), idOf(f.id)});
        return list;
    }();
    return entries;
}

} // namespace zf
