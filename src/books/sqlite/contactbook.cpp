#include "contactbook.h"

#include "analysis/fieldrows.h"
#include "analysis/fields.h"
#include "duplicates/textsearch.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QUuid>

#include <functional>
#include <map>

#include <sqlite3.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace zf::act {

namespace {

// Long enough for the other program's longest write; a transfer never holds a lock longer.
constexpr int BusyTimeoutMs = 10000;
constexpr int WalRetryMs = 20;

const char* const SchemaSql = R"(
CREATE TABLE fields (
    position INTEGER PRIMARY KEY,
    id INTEGER NOT NULL UNIQUE,
    label TEXT NOT NULL DEFAULT ''
);
CREATE TABLE contacts (
    id INTEGER PRIMARY KEY AUTOINCREMENT,
    created TEXT NOT NULL DEFAULT (strftime('%Y-%m-%dT%H:%M:%SZ', 'now')),
    modified TEXT NOT NULL DEFAULT (strftime('%Y-%m-%dT%H:%M:%SZ', 'now'))
);
CREATE TABLE contact_values (
    contact_id INTEGER NOT NULL REFERENCES contacts(id) ON DELETE CASCADE,
    field_id INTEGER NOT NULL REFERENCES fields(id),
    value TEXT NOT NULL,
    PRIMARY KEY (contact_id, field_id)
) WITHOUT ROWID;
CREATE TABLE state (
    key TEXT PRIMARY KEY,
    value
) WITHOUT ROWID;
)";

// Schema version 2: each contact's normalised e-mail addresses, person name (with the company
// it goes with) and mobile numbers, so that finding a duplicate reads a few index entries.
const char* const KeysSql = R"(
CREATE TABLE contact_keys (
    kind INTEGER NOT NULL,
    key TEXT NOT NULL,
    contact_id INTEGER NOT NULL REFERENCES contacts(id) ON DELETE CASCADE,
    company TEXT NOT NULL DEFAULT '',
    PRIMARY KEY (kind, key, contact_id)
) WITHOUT ROWID;
CREATE INDEX contact_keys_contact ON contact_keys (contact_id);
)";

enum KeyKind { EMailKey = 0, PersonKey = 1, MobileKey = 2 };

// The rules of dup::identityOf the keys were made by, kept in the state table: a book keyed by
// other rules is keyed again when it is opened for writing, and searched contact by contact
// until then.
constexpr qint64 KeyRules = 1; // raise books/cardindex.cpp's Version with it

dup::FieldValues fieldValuesOf(const QList<BookValue>& values)
{
    dup::FieldValues out;
    out.reserve(values.size());
    for (const BookValue& v : values)
        out.append({v.fieldId, v.value});
    return out;
}

} // namespace

class ContactBook::Statement {
public:
    Statement(ContactBook& book, const char* sql) : m_book(book)
    {
        const int rc = sqlite3_prepare_v2(book.m_db, sql, -1, &m_stmt, nullptr);
        if (rc != SQLITE_OK) {
            sqlite3_finalize(m_stmt);
            book.fail(rc, u"read"_s);
        }
    }
    ~Statement() { sqlite3_finalize(m_stmt); }
    Statement(const Statement&) = delete;
    Statement& operator=(const Statement&) = delete;

    Statement& bind(int index, qint64 value)
    {
        check(sqlite3_bind_int64(m_stmt, index, value));
        return *this;
    }
    Statement& bind(int index, const QString& value)
    {
        const QByteArray utf8 = value.toUtf8();
        check(
            sqlite3_bind_text(m_stmt, index, utf8.constData(), int(utf8.size()), SQLITE_TRANSIENT));
        return *this;
    }
    // True while there is a row.
    bool step()
    {
        const int rc = sqlite3_step(m_stmt);
        if (rc == SQLITE_ROW)
            return true;
        if (rc == SQLITE_DONE)
            return false;
        m_book.fail(rc, u"use"_s);
    }
    void run()
    {
        while (step()) {
        }
    }
    qint64 integer(int column) { return sqlite3_column_int64(m_stmt, column); }
    bool isNull(int column) { return sqlite3_column_type(m_stmt, column) == SQLITE_NULL; }
    QString text(int column)
    {
        const auto* data = reinterpret_cast<const char*>(sqlite3_column_text(m_stmt, column));
        return QString::fromUtf8(data, sqlite3_column_bytes(m_stmt, column));
    }

private:
    void check(int rc)
    {
        if (rc != SQLITE_OK)
            m_book.fail(rc, u"use"_s);
    }
    ContactBook& m_book;
    sqlite3_stmt* m_stmt = nullptr;
};

namespace {

// BEGIN IMMEDIATE takes the write lock up front, so a busy book waits here instead of
// failing half-way; anything not committed is rolled back.
class Transaction {
public:
    explicit Transaction(const std::function<void(const char*)>& exec) : m_exec(exec)
    {
        m_exec("BEGIN IMMEDIATE");
    }
    ~Transaction()
    {
        if (!m_done) {
            try {
                m_exec("ROLLBACK");
            } catch (const BookError&) { // already rolled back by the failure
            }
        }
    }
    void commit()
    {
        m_exec("COMMIT");
        m_done = true;
    }

private:
    std::function<void(const char*)> m_exec;
    bool m_done = false;
};

} // namespace

ContactBook::ContactBook(const QString& path, Access access) : m_path(path)
{
    if (path.isEmpty())
        throw BookError(BookError::CannotOpen, u"no contact book file given"_s);
    // A CardDAV address reaching the file book would otherwise become folders named "http:".
    if (path.startsWith(u"http://"_s, Qt::CaseInsensitive) ||
        path.startsWith(u"https://"_s, Qt::CaseInsensitive))
        throw BookError(
            BookError::CannotOpen,
            u"'%1' is the address of a CardDAV book, not a contact book file"_s.arg(path));
    const QByteArray native = QFile::encodeName(path);
    struct stat st {};
    const bool exists = ::stat(native.constData(), &st) == 0;
    if (exists && !S_ISREG(st.st_mode))
        throw BookError(BookError::NotABook,
                        u"'%1' is not a contact book (not a file)"_s.arg(path));
    // The superuser may write anywhere; a file without any write permission is still meant
    // to stay as it is, so the mode bits decide, not only what SQLite is allowed.
    if (exists && ((st.st_mode & (S_IWUSR | S_IWGRP | S_IWOTH)) == 0 ||
                   ::access(native.constData(), W_OK) != 0))
        throw BookError(BookError::ReadOnly,
                        u"the contact book '%1' is read-only (no write permission)"_s.arg(path));
    if (!exists && !QDir().mkpath(QFileInfo(path).absolutePath()))
        throw BookError(BookError::CannotOpen,
                        u"cannot create the folder of the contact book '%1'"_s.arg(path));
    const int flags = SQLITE_OPEN_READWRITE | (exists ? 0 : SQLITE_OPEN_CREATE);
    const int rc = sqlite3_open_v2(native.constData(), &m_db, flags, nullptr);
    if (rc != SQLITE_OK) {
        const QString reason = m_db ? QString::fromUtf8(sqlite3_errmsg(m_db)) : QString();
        sqlite3_close(m_db);
        m_db = nullptr;
        throw BookError(BookError::CannotOpen,
                        (exists ? u"cannot open the contact book '%1': %2"_s
                                : u"cannot create the contact book '%1': %2"_s)
                            .arg(path, reason));
    }
    try {
        sqlite3_extended_result_codes(m_db, 1);
        sqlite3_busy_timeout(m_db, BusyTimeoutMs);
        // A write-protected file is opened read-only without a word; refuse it here.
        if (sqlite3_db_readonly(m_db, "main") == 1)
            throw BookError(BookError::ReadOnly, u"the contact book '%1' is read-only"_s.arg(path));
        // Recognised first: nothing is changed in a file that is not ours.
        const bool created = checkFormat();
        m_keyed = m_schema >= 2 && keyRules() == KeyRules;
        if (access == Access::Write) {
            checkIntegrity();
            useWal();
            if (!m_keyed)
                migrate();
            keepBookUid();
        } else if (created) {
            useWal();
        }
        // FULL makes every commit durable.
        exec("PRAGMA synchronous=FULL");
        exec("PRAGMA foreign_keys=ON");
    } catch (...) {
        sqlite3_close(m_db);
        m_db = nullptr;
        throw;
    }
}

ContactBook::~ContactBook()
{
    sqlite3_close(m_db);
}

void ContactBook::exec(const char* sql)
{
    char* error = nullptr;
    const int rc = sqlite3_exec(m_db, sql, nullptr, nullptr, &error);
    sqlite3_free(error);
    if (rc != SQLITE_OK)
        fail(rc, u"use"_s);
}

void ContactBook::fail(int rc, const QString& doing)
{
    const QString reason = QString::fromUtf8(sqlite3_errmsg(m_db));
    switch (rc & 0xff) {
    case SQLITE_NOTADB:
        throw BookError(BookError::NotABook,
                        u"'%1' is not a contact book (not a database)"_s.arg(m_path));
    case SQLITE_CORRUPT:
        throw BookError(BookError::Damaged,
                        u"the contact book '%1' is damaged: %2"_s.arg(m_path, reason));
    case SQLITE_READONLY:
        throw BookError(BookError::ReadOnly,
                        u"the contact book '%1' cannot be written: %2"_s.arg(m_path, reason));
    case SQLITE_BUSY:
    case SQLITE_LOCKED:
        throw BookError(BookError::Busy,
                        u"the contact book '%1' is locked by another program"_s.arg(m_path));
    case SQLITE_CANTOPEN:
        throw BookError(BookError::CannotOpen,
                        u"cannot open the contact book '%1' (is its folder writable?): %2"_s.arg(
                            m_path, reason));
    default:
        throw BookError(BookError::CannotOpen,
                        u"cannot %1 the contact book '%2': %3"_s.arg(doing, m_path, reason));
    }
}

bool ContactBook::checkFormat()
{
    bool attempted = false;
    bool created = false;
    for (;;) {
        qint64 id = 0;
        qint64 schema = 0;
        qint64 objects = 0;
        {
            // One read transaction, ended before anything is written: a connection that still
            // reads cannot wait for the write lock, it fails at once instead.
            Statement query(*this, "SELECT (SELECT application_id FROM pragma_application_id), "
                                   "(SELECT user_version FROM pragma_user_version), "
                                   "(SELECT count(*) FROM sqlite_schema)");
            query.step();
            id = query.integer(0);
            schema = query.integer(1);
            objects = query.integer(2);
        }
        if (id == ApplicationId) {
            if (schema > SchemaVersion)
                throw BookError(
                    BookError::NewerVersion,
                    u"the contact book '%1' was written by a newer version "
                    u"(schema %2, this program knows %3)"_s.arg(m_path, QString::number(schema),
                                                                QString::number(SchemaVersion)));
            if (schema < 1)
                throw BookError(BookError::Damaged,
                                u"the contact book '%1' has no schema version"_s.arg(m_path));
            m_schema = schema;
            return created;
        }
        if (id == 0 && schema == 0 && objects == 0 && !attempted) {
            attempted = true;
            created = createSchema();
            continue;
        }
        throw BookError(BookError::NotABook, u"'%1' is not a contact book"_s.arg(m_path));
    }
}

bool ContactBook::createSchema()
{
    Transaction transaction([this](const char* sql) { exec(sql); });
    {
        // Another program may have created it while this one waited for the lock.
        Statement objects(*this, "SELECT count(*) FROM sqlite_schema");
        objects.step();
        if (objects.integer(0) != 0) {
            transaction.commit();
            return false;
        }
    }
    exec(SchemaSql);
    for (const FieldEntry& e : defaultFieldEntries()) {
        Statement insert(*this, "INSERT INTO fields (id, label) VALUES (?, ?)");
        insert.bind(1, e.id).bind(2, e.name).run();
    }
    exec(KeysSql);
    Statement(*this, "INSERT INTO state (key, value) VALUES ('duplicate_keys', ?)")
        .bind(1, KeyRules)
        .run();
    exec(QByteArray("PRAGMA application_id = " + QByteArray::number(ApplicationId)).constData());
    exec(QByteArray("PRAGMA user_version = " + QByteArray::number(SchemaVersion)).constData());
    transaction.commit();
    return true;
}

void ContactBook::migrate()
{
    Transaction transaction([this](const char* sql) { exec(sql); });
    qint64 schema = 0;
    {
        // Another program may have migrated it while this one waited for the lock.
        Statement version(*this, "PRAGMA user_version");
        version.step();
        schema = version.integer(0);
    }
    if (schema < 2)
        exec(KeysSql);
    if (schema < 2 || keyRules() != KeyRules) {
        exec("DELETE FROM contact_keys");
        for (const qint64 id : contactIds())
            indexContact(id);
        Statement(*this, "INSERT OR REPLACE INTO state (key, value) VALUES ('duplicate_keys', ?)")
            .bind(1, KeyRules)
            .run();
    }
    exec(QByteArray("PRAGMA user_version = " + QByteArray::number(SchemaVersion)).constData());
    transaction.commit();
    m_schema = SchemaVersion;
    m_keyed = true;
}

qint64 ContactBook::keyRules()
{
    Statement query(*this, "SELECT value FROM state WHERE key = 'duplicate_keys'");
    return query.step() ? query.integer(0) : 0;
}

void ContactBook::indexContact(qint64 contactId)
{
    const dup::Identity identity = dup::identityOf(fieldValuesOf(contactValues(contactId)));
    Statement(*this, "DELETE FROM contact_keys WHERE contact_id = ?").bind(1, contactId).run();
    const auto insert = [&](KeyKind kind, const QString& key, const QString& company) {
        Statement(*this, "INSERT OR IGNORE INTO contact_keys (kind, key, contact_id, company) "
                         "VALUES (?, ?, ?, ?)")
            .bind(1, qint64(kind))
            .bind(2, key)
            .bind(3, contactId)
            .bind(4, company)
            .run();
    };
    for (const QString& email : identity.emails)
        insert(EMailKey, email, {});
    // A single word never makes a match, so it needs no key.
    if (identity.person.contains(u' '))
        insert(PersonKey, identity.person, identity.company);
    for (const QString& mobile : identity.mobiles)
        insert(MobileKey, mobile, {});
}

QList<dup::Match> ContactBook::findDuplicates(const dup::Identity& identity)
{
    // By id, the strongest reason first found: e-mail, then name, then mobile.
    std::map<qint64, dup::Reason> found;
    if (!m_keyed) {
        for (const qint64 id : contactIds()) {
            const std::optional<dup::Reason> reason =
                dup::sameContact(identity, dup::identityOf(fieldValuesOf(contactValues(id))));
            if (reason)
                found.emplace(id, *reason);
        }
    } else {
        const auto lookUp = [&](KeyKind kind, const QString& key, dup::Reason reason) {
            Statement query(*this, "SELECT contact_id, company FROM contact_keys "
                                   "WHERE kind = ? AND key = ?");
            query.bind(1, qint64(kind)).bind(2, key);
            while (query.step()) {
                const QString company = query.text(1);
                if (kind == PersonKey && !identity.company.isEmpty() && !company.isEmpty() &&
                    company != identity.company)
                    continue;
                found.emplace(query.integer(0), reason);
            }
        };
        for (const QString& email : identity.emails)
            lookUp(EMailKey, email, dup::Reason::EMail);
        if (identity.person.contains(u' '))
            lookUp(PersonKey, identity.person, dup::Reason::Name);
        for (const QString& mobile : identity.mobiles)
            lookUp(MobileKey, mobile, dup::Reason::Mobile);
    }
    QList<dup::Match> matches;
    for (const auto& [id, reason] : found)
        matches.append(matchOf(id, reason));
    return matches;
}

QList<qint64> ContactBook::findText(const QString& text)
{
    const dup::TextSearch search(text);
    if (search.isEmpty())
        return {};
    QList<qint64> ids;
    Statement query(*this, "SELECT contact_id, field_id, value FROM contact_values "
                           "WHERE field_id IN (SELECT value FROM json_each(?)) "
                           "ORDER BY contact_id");
    QStringList fields;
    for (const qint32 id : dup::TextSearch::fields())
        fields.append(QString::number(id));
    query.bind(1, u'[' + fields.join(u',') + u']');
    while (query.step()) {
        const qint64 id = query.integer(0);
        if ((ids.isEmpty() || ids.last() != id) &&
            search.matches(qint32(query.integer(1)), query.text(2)))
            ids.append(id);
    }
    return ids;
}

dup::Match ContactBook::matchOf(qint64 contactId, dup::Reason reason)
{
    return dup::matchOf(QString::number(contactId), fieldValuesOf(contactValues(contactId)),
                        reason);
}

void ContactBook::checkIntegrity()
{
    QStringList problems;
    {
        Statement check(*this, "PRAGMA quick_check");
        while (check.step())
            problems.append(check.text(0));
    }
    if (problems != QStringList{u"ok"_s})
        throw BookError(BookError::Damaged, u"the contact book '%1' is damaged: %2"_s.arg(
                                                m_path, problems.join(u"; "_s)));
}

void ContactBook::useWal()
{
    // WAL lets a reader and a writer work at once.
    {
        Statement mode(*this, "PRAGMA journal_mode");
        if (mode.step() && mode.text(0) == u"wal"_s)
            return;
    }
    // The switch needs the book to itself. While another program reads it (as at first use by
    // several at once) it answers the old mode or "busy", without waiting: ask again until the
    // busy timeout has passed.
    for (int waited = 0;; waited += WalRetryMs) {
        try {
            Statement mode(*this, "PRAGMA journal_mode=WAL");
            if (mode.step() && mode.text(0) == u"wal"_s)
                return;
        } catch (const BookError& e) {
            if (e.kind() != BookError::Busy)
                throw;
        }
        if (waited >= BusyTimeoutMs)
            throw BookError(BookError::Busy,
                            u"the contact book '%1' is locked by another program"_s.arg(m_path));
        sqlite3_sleep(WalRetryMs);
    }
}

qint64 ContactBook::addContact()
{
    return writeContact(std::nullopt, {});
}

qint64 ContactBook::writeContact(std::optional<qint64> contactId, const QList<FieldValue>& values)
{
    Transaction transaction([this](const char* sql) { exec(sql); });
    qint64 id = 0;
    if (contactId) {
        if (!hasContact(*contactId))
            throw BookError(BookError::NotFound, u"there is no contact %1"_s.arg(*contactId));
        id = *contactId;
    } else {
        Statement(*this, "INSERT INTO contacts DEFAULT VALUES").run();
        id = sqlite3_last_insert_rowid(m_db);
    }
    for (const FieldValue& v : values)
        storeValue(id, v.fieldId, v.value);
    if (!values.isEmpty() && m_keyed) // else keyed when the book is migrated
        indexContact(id);
    if (contactId && !values.isEmpty())
        touch(id);
    Statement(*this, "INSERT OR REPLACE INTO state (key, value) VALUES ('current_contact', ?)")
        .bind(1, id)
        .run();
    transaction.commit();
    return id;
}

void ContactBook::setField(qint64 contactId, qint32 fieldId, const QString& value)
{
    Transaction transaction([this](const char* sql) { exec(sql); });
    if (!hasContact(contactId))
        throw BookError(BookError::NotFound, u"there is no contact %1"_s.arg(contactId));
    storeValue(contactId, fieldId, value);
    if (m_keyed)
        indexContact(contactId);
    touch(contactId);
    transaction.commit();
}

void ContactBook::touch(qint64 contactId)
{
    Statement(*this, "UPDATE contacts SET modified = strftime('%Y-%m-%dT%H:%M:%SZ', 'now') "
                     "WHERE id = ?")
        .bind(1, contactId)
        .run();
}

void ContactBook::storeValue(qint64 contactId, qint32 fieldId, const QString& value)
{
    if (!fieldLabel(fieldId))
        throw BookError(BookError::NotFound, u"the contact book has no field %1"_s.arg(fieldId));
    Statement(*this, "INSERT INTO contact_values (contact_id, field_id, value) VALUES (?, ?, ?) "
                     "ON CONFLICT (contact_id, field_id) DO UPDATE SET value = excluded.value")
        .bind(1, contactId)
        .bind(2, fieldId)
        .bind(3, value)
        .run();
}

std::optional<qint64> ContactBook::currentContact()
{
    Statement query(*this, "SELECT value FROM state WHERE key = 'current_contact'");
    if (!query.step() || query.isNull(0))
        return std::nullopt;
    return query.integer(0);
}

void ContactBook::setCurrentContact(qint64 contactId)
{
    Transaction transaction([this](const char* sql) { exec(sql); });
    if (!hasContact(contactId))
        throw BookError(BookError::NotFound, u"there is no contact %1"_s.arg(contactId));
    Statement(*this, "INSERT OR REPLACE INTO state (key, value) VALUES ('current_contact', ?)")
        .bind(1, contactId)
        .run();
    transaction.commit();
}

bool ContactBook::hasContact(qint64 contactId)
{
    Statement query(*this, "SELECT 1 FROM contacts WHERE id = ?");
    query.bind(1, contactId);
    return query.step();
}

QList<qint64> ContactBook::contactIds()
{
    QList<qint64> ids;
    Statement query(*this, "SELECT id FROM contacts ORDER BY id");
    while (query.step())
        ids.append(query.integer(0));
    return ids;
}

QList<BookValue> ContactBook::contactValues(qint64 contactId)
{
    QList<BookValue> values;
    Statement query(*this, "SELECT v.field_id, f.label, v.value FROM contact_values v "
                           "JOIN fields f ON f.id = v.field_id "
                           "WHERE v.contact_id = ? AND v.value <> '' ORDER BY f.position");
    query.bind(1, contactId);
    while (query.step())
        values.append(BookValue{qint32(query.integer(0)), query.text(1), query.text(2)});
    return values;
}

QList<BookField> ContactBook::fields()
{
    QList<BookField> result;
    Statement query(*this, "SELECT id, label FROM fields ORDER BY position");
    while (query.step())
        result.append(BookField{qint32(query.integer(0)), query.text(1)});
    return result;
}

int ContactBook::fieldCount()
{
    Statement query(*this, "SELECT count(*) FROM fields");
    query.step();
    return int(query.integer(0));
}

std::optional<qint32> ContactBook::fieldIdAt(int position)
{
    if (position < 0)
        return std::nullopt;
    Statement query(*this, "SELECT id FROM fields ORDER BY position LIMIT 1 OFFSET ?");
    query.bind(1, position);
    if (!query.step())
        return std::nullopt;
    return qint32(query.integer(0));
}

std::optional<QString> ContactBook::fieldLabel(qint32 fieldId)
{
    Statement query(*this, "SELECT label FROM fields WHERE id = ?");
    query.bind(1, fieldId);
    if (!query.step())
        return std::nullopt;
    return query.text(0);
}

void ContactBook::addField(qint32 fieldId, const QString& label)
{
    Transaction transaction([this](const char* sql) { exec(sql); });
    if (fieldLabel(fieldId))
        throw BookError(BookError::Invalid,
                        u"the contact book already has a field %1"_s.arg(fieldId));
    Statement(*this, "INSERT INTO fields (id, label) VALUES (?, ?)")
        .bind(1, fieldId)
        .bind(2, label)
        .run();
    transaction.commit();
}

QString ContactBook::bookUid()
{
    {
        Statement kept(*this, "SELECT value FROM state WHERE key = 'book_uid'");
        if (kept.step() && !kept.isNull(0))
            return kept.text(0);
    }
    // A book from before it kept one: derived from its first contact, the same on every read,
    // and what keepBookUid stores at the next write.
    Statement first(*this, "SELECT id, created FROM contacts ORDER BY id LIMIT 1");
    if (first.step())
        return u"%1/%2"_s.arg(first.text(1)).arg(first.integer(0));
    return {};
}

void ContactBook::keepBookUid()
{
    {
        Statement kept(*this, "SELECT 1 FROM state WHERE key = 'book_uid'");
        if (kept.step())
            return;
    }
    Transaction transaction([this](const char* sql) { exec(sql); });
    QString uid = bookUid(); // another program's, once it has stored one meanwhile
    if (uid.isEmpty())
        uid = QUuid::createUuid().toString(QUuid::WithoutBraces);
    Statement(*this, "INSERT OR IGNORE INTO state (key, value) VALUES ('book_uid', ?)")
        .bind(1, uid)
        .run();
    transaction.commit();
}

QString ContactBook::contactUid(qint64 contactId)
{
    // Any fixed namespace will do; it only has to stay the same.
    static const QUuid space(u"9a3f6c1e-5b2d-4e8f-a7c4-1d6e2b9f0c53"_s);
    return u"urn:uuid:"_s + QUuid::createUuidV5(space, u"%1/%2"_s.arg(bookUid()).arg(contactId))
                                .toString(QUuid::WithoutBraces);
}

QDateTime ContactBook::contactModified(qint64 contactId)
{
    Statement query(*this, "SELECT modified FROM contacts WHERE id = ?");
    query.bind(1, contactId);
    if (!query.step())
        return {};
    return QDateTime::fromString(query.text(0), Qt::ISODate);
}

} // namespace zf::act
