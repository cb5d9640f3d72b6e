#pragma once

// The contact view of the SQLite and the CardDAV book: it collects a transfer's values and
// files them once at its end, so that a transfer failed or killed half-way leaves no trace.

#include "act/automation.h"
#include "books/fieldvalue.h"

#include <QList>
#include <QString>

#include <functional>
#include <optional>
#include <utility>

namespace zf::books {

// Without AddNewContact a transfer edits the contact editedContact() names, taken once at its
// first value: a later change of the book's current contact does not redirect it.
template <typename Id> class CollectingContactView : public act::ContactViewObject {
public:
    void AddNewContact() override { m_transfer = Transfer{}; }
    void SetField(qint32 fieldId, const QString& value) override
    {
        failing([&] {
            if (!m_transfer)
                m_transfer = Transfer{editedContact(), {}};
            checkField(fieldId);
            m_transfer->values.append({fieldId, value, {}});
        });
    }
    void EndTransfer() override
    {
        if (!m_transfer) // an edit that wrote nothing
            return;
        failing([&] {
            Transfer transfer = *std::exchange(m_transfer, std::nullopt);
            file(transfer.contact, std::move(transfer.values));
        });
    }

protected:
    // The contact an edit writes into; an error when there is none.
    virtual Id editedContact() = 0;
    // An error for a field the book cannot hold.
    virtual void checkField(qint32 fieldId) = 0;
    // Writes the values into that contact, or into a new one.
    virtual void file(const std::optional<Id>& contact, QList<FieldValue> values) = 0;
    // Runs f with the book's own errors turned into act::ActError.
    virtual void guarded(const std::function<void()>& f) = 0;

private:
    struct Transfer {
        std::optional<Id> contact; // empty: a new one
        QList<FieldValue> values;
    };
    // A failed call ends the transfer: its values are dropped, the next call starts afresh.
    template <typename F> void failing(F&& f)
    {
        try {
            guarded(std::forward<F>(f));
        } catch (...) {
            m_transfer.reset();
            throw;
        }
    }
    std::optional<Transfer> m_transfer;
};

} // namespace zf::books
