#pragma once

#include "analysis/fields.h"
#include "books/fieldvalue.h"
#include "duplicates/lookup.h"

#include <QDateTime>
#include <QList>
#include <QString>

#include <optional>
#include <stdexcept>

struct sqlite3;

namespace zf::act {

// Why the book could not be used. The file is left exactly as it was found.
class BookError : public std::runtime_error {
public:
    enum Kind { CannotOpen, NotABook, Damaged, NewerVersion, ReadOnly, Busy, NotFound, Invalid };
    BookError(Kind kind, const QString& message)
        : std::runtime_error(message.toStdString()), m_kind(kind)
    {
    }
    Kind kind() const { return m_kind; }
    QString message() const { return QString::fromStdString(what()); }

private:
    Kind m_kind;
};

using zf::BookField;

struct BookValue {
    qint32 fieldId = 0;
    QString label;
    QString value;
    friend bool operator==(const BookValue&, const BookValue&) = default;
};

// A field id and the text for it, as one transfer writes them (the label is the book's).
using books::FieldValue;

// The embedded contact book: one SQLite file holding contacts as field id -> text, the
// book's field definitions and the current contact. A missing file is created with its
// schema; anything else that is not a book of a known schema version is refused untouched,
// and so is a book opened for writing that has no write permission (whoever runs the
// program) or fails the quick integrity check. Every write is its own synchronous
// transaction, so it is on disk when the call returns, and other programs may use the same
// file at the same time.
class ContactBook {
public:
    // 2: the duplicate keys (normalised e-mail, person name, mobile) beside the values.
    static constexpr int SchemaVersion = 2;
    static constexpr qint32 ApplicationId = 0x5A464B42; // marks the file as ours

    // Reading never changes an existing book, not even its journal mode.
    enum class Access { Read, Write };

    // Opening a book of an older schema version (or with duplicate keys made by other rules)
    // for writing migrates it; reading leaves it.
    explicit ContactBook(const QString& path, Access access = Access::Write);
    ~ContactBook();
    ContactBook(const ContactBook&) = delete;
    ContactBook& operator=(const ContactBook&) = delete;

    const QString& path() const { return m_path; }

    // Adds an empty contact and makes it the current one; returns its id.
    qint64 addContact();
    // One transaction: the values in order (a later value of the same field wins) into the
    // contact, or into a new one when there is no id; then that contact becomes the current
    // one. Returns its id. Either all of it is written or nothing.
    qint64 writeContact(std::optional<qint64> contactId, const QList<FieldValue>& values);
    void setField(qint64 contactId, qint32 fieldId, const QString& value);
    std::optional<qint64> currentContact();
    void setCurrentContact(qint64 contactId);
    bool hasContact(qint64 contactId);
    QList<qint64> contactIds();
    // The contact's values in the book's field order; fields without a value are left out.
    QList<BookValue> contactValues(qint64 contactId);

    // The contacts that are the same person, by the duplicate keys; a book read in an older
    // schema version has none and is searched contact by contact.
    QList<dup::Match> findDuplicates(const dup::Identity& identity);
    // The contacts with TEXT in a name, the company, the e-mail or a phone number (case
    // insensitive; a number by its digits); each once, by id.
    QList<qint64> findText(const QString& text);
    // Id, name, company and e-mail of the contact, for a list of matches.
    dup::Match matchOf(qint64 contactId, dup::Reason reason = dup::Reason::EMail);

    QList<BookField> fields();
    int fieldCount();
    std::optional<qint32> fieldIdAt(int position);
    std::optional<QString> fieldLabel(qint32 fieldId);
    // Appends a field definition; "" for a field without a label.
    void addField(qint32 fieldId, const QString& label);

    // The contact's UID in vCards ("urn:uuid:..."): the same for the contact's whole life, and
    // another in every other book.
    QString contactUid(qint64 contactId);
    // When the contact was last written; invalid when there is no such contact.
    QDateTime contactModified(qint64 contactId);

private:
    class Statement;
    friend class Statement;
    void exec(const char* sql);
    [[noreturn]] void fail(int rc, const QString& doing);
    // True when this connection created the schema.
    bool checkFormat();
    void migrate();
    void indexContact(qint64 contactId);
    qint64 keyRules();
    bool createSchema();
    void checkIntegrity();
    void useWal();
    void touch(qint64 contactId);
    // What tells this book from every other one, as the contacts' UIDs need it.
    QString bookUid();
    void keepBookUid();
    void storeValue(qint64 contactId, qint32 fieldId, const QString& value);

    QString m_path;
    sqlite3* m_db = nullptr;
    qint64 m_schema = 0;  // as found, before any migration
    bool m_keyed = false; // the duplicate keys are there and made by this program's rules
};

// The SQLite book's duplicate lookup.
class BookDuplicateLookup : public dup::DuplicateLookup {
public:
    explicit BookDuplicateLookup(ContactBook& book) : m_book(book) {}
    QList<dup::Match> find(const dup::Identity& identity) override
    {
        return m_book.findDuplicates(identity);
    }

private:
    ContactBook& m_book;
};

} // namespace zf::act
