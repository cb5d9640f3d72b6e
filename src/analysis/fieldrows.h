#pragma once

#include "fields.h"

#include <QAbstractListModel>
#include <QList>
#include <QString>

#include <array>
#include <optional>

namespace zf {

struct FieldEntry {
    QString name;
    qint32 id = 0;
    friend bool operator==(const FieldEntry&, const FieldEntry&) = default;
};

// Alphabetical order of field names as a German reader expects it ("Größe" before "Gz"),
// ignoring case.
bool FieldNameLess(const QString& a, const QString& b);

// The field-name list that every row offers, kept in display order (sorted by FieldNameLess;
// names equal by it keep the order they were added in). One instance serves all sixteen
// rows, so views can share it as their model.
class FieldList : public QAbstractListModel {
    Q_OBJECT
public:
    static constexpr int IdRole = Qt::UserRole;

    using QAbstractListModel::QAbstractListModel;

    int rowCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;

    int count() const { return int(m_entries.size()); }
    const QString& nameAt(int pos) const { return m_entries[pos].name; }
    qint32 idAt(int pos) const { return m_entries[pos].id; }
    const QList<FieldEntry>& entries() const { return m_entries; }
    // First position carrying the id, or -1.
    int positionOf(qint32 id) const;

private:
    friend class FieldRows;
    int add(const QString& name, qint32 id);
    void clear();

    QList<FieldEntry> m_entries;
};

// The sixteen field rows: a value each and the position of the chosen entry of the shared
// field list (-1 = no field chosen). The window binds its widgets to this; the analysis,
// the settings and the contact link only ever talk to it.
class FieldRows : public QObject {
    Q_OBJECT
public:
    static constexpr int RowCount = 16;

    explicit FieldRows(QObject* parent = nullptr);

    const FieldList& fields() const { return m_fields; }
    FieldList* fieldModel() { return &m_fields; }

    // Adds the entry to every row's list; chosen entries stay chosen.
    void addField(const QString& name, qint32 id);
    // Empties every row's list; no row keeps a chosen field.
    void clearFields();
    // The twenty built-in field names with their ids.
    void FillDefaultFieldLists();

    const QString& value(int row) const { return m_values[row]; }
    void setValue(int row, const QString& value);
    int selected(int row) const { return m_selected[row]; }
    void setSelected(int row, int pos);
    // The chosen entry's field id, if a field is chosen.
    std::optional<qint32> fieldId(int row) const;

    // Chooses the first entry with this id; leaves the row as it is when none carries it.
    void SelectRowField(int row, qint16 id);
    void SelectRowField(int row, FieldId id) { SelectRowField(row, qint16(id)); }
    // Every value empty and no field chosen.
    void clearRows();

signals:
    void valueChanged(int row);
    void selectionChanged(int row);

private:
    FieldList m_fields;
    std::array<QString, RowCount> m_values;
    std::array<int, RowCount> m_selected;
};

// The built-in list: names and ids in the order they are added.
const QList<FieldEntry>& defaultFieldEntries();

} // namespace zf
