#pragma once

// Directories for the window tests: the real one of a SQLite book file, and a stand-in that
// answers as told and records what it was asked.

#include "act/automation.h"
#include "books/sqlite/contactbook.h"
#include "books/sqlite/sqlitebook.h"
#include "duplicates/directory.h"

#include <QStringList>

#include <optional>

namespace zf::ui::test {

// The book's real directory, with a way to fill the book and to look as if there were no
// current contact until one is chosen (forgetCurrent). Hand chosen() to the book's objects so
// that they edit the contact the directory chose.
class SqliteDirectory : public dup::ContactDirectory {
public:
    explicit SqliteDirectory(const QString& path)
        : m_book(path), m_chosen(std::make_shared<act::ChosenContact>()),
          m_directory(act::makeContactBookDirectory(path, m_chosen))
    {
    }

    act::ContactBook& book() { return m_book; }
    const std::shared_ptr<act::ChosenContact>& chosen() const { return m_chosen; }
    void forgetCurrent() { m_forgotten = true; }

    QList<dup::Match> find(const dup::Identity& identity) override
    {
        return m_directory->find(identity);
    }
    QList<dup::Match> search(const QString& text, int limit) override
    {
        return m_directory->search(text, limit);
    }
    std::optional<dup::Match> current() override
    {
        return m_forgotten ? std::nullopt : m_directory->current();
    }
    void setCurrent(const QString& id) override
    {
        m_directory->setCurrent(id);
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
    std::shared_ptr<act::ChosenContact> m_chosen;
    std::shared_ptr<dup::ContactDirectory> m_directory;
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
