#pragma once

// Directories for the window tests: one over a real SQLite book file, shared with the book's
// objects through the file, and a stand-in that answers as told and records what it was asked.

#include "act/automation.h"
#include "books/sqlite/contactbook.h"
#include "duplicates/directory.h"

#include <QStringList>

#include <optional>

namespace zf::ui::test {

// The book's own current contact, as the objects edit it. forgetCurrent() makes it look as
// if there were none until a contact is chosen.
class SqliteDirectory : public dup::ContactDirectory {
public:
    explicit SqliteDirectory(const QString& path) : m_book(path) {}

    act::ContactBook& book() { return m_book; }
    void forgetCurrent() { m_forgotten = true; }

    QList<dup::Match> find(const dup::Identity& identity) override
    {
        return m_book.findDuplicates(identity);
    }
    QList<dup::Match> search(const QString& text, int limit) override
    {
        QList<dup::Match> out;
        for (const qint64 id : m_book.findText(text).mid(0, limit))
            out << m_book.matchOf(id);
        return out;
    }
    std::optional<dup::Match> current() override
    {
        const std::optional<qint64> id = m_book.currentContact();
        if (m_forgotten || !id || !m_book.hasContact(*id))
            return std::nullopt;
        return m_book.matchOf(*id);
    }
    void setCurrent(const QString& id) override
    {
        bool ok = false;
        const qint64 number = id.toLongLong(&ok);
        if (!ok || !m_book.hasContact(number))
            throw act::ActError(QStringLiteral("no contact %1").arg(id));
        m_book.setCurrentContact(number);
        m_forgotten = false;
    }

    // A contact written straight into the book (it becomes the book's current one).
    qint64 add(const QList<std::pair<qint32, QString>>& values)
    {
        QList<act::FieldValue> fields;
        for (const auto& [field, value] : values)
            fields << act::FieldValue{field, value};
        return m_book.writeContact(std::nullopt, fields);
    }

private:
    act::ContactBook m_book;
    bool m_forgotten = false;
};

// Answers with the matches and contacts it is given; throws where told to, as an unreachable
// server would.
class FakeDirectory : public dup::ContactDirectory {
public:
    QList<dup::Match> matches;  // what find gives
    QList<dup::Match> contacts; // what search filters by name, company and e-mail
    std::optional<dup::Match> currentContact;
    bool findFails = false;
    bool setCurrentFails = false;
    int finds = 0;
    QStringList searches;
    QStringList madeCurrent;

    QList<dup::Match> find(const dup::Identity&) override
    {
        ++finds;
        if (findFails)
            throw act::ActError(QStringLiteral("server unreachable"));
        return matches;
    }
    QList<dup::Match> search(const QString& text, int limit) override
    {
        searches << text;
        QList<dup::Match> out;
        for (const dup::Match& c : contacts)
            if (out.size() < limit &&
                (c.name + '|' + c.company + '|' + c.email).contains(text, Qt::CaseInsensitive))
                out << c;
        return out;
    }
    std::optional<dup::Match> current() override { return currentContact; }
    void setCurrent(const QString& id) override
    {
        if (setCurrentFails)
            throw act::ActError(QStringLiteral("cannot write the state"));
        madeCurrent << id;
        for (const dup::Match& c : contacts + matches)
            if (c.id == id)
                currentContact = c;
    }
};

} // namespace zf::ui::test
