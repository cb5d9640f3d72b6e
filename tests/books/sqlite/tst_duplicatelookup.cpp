// The SQLite book's duplicate lookup and text search, and the migration that adds the keys to
// a book of schema version 1.

#include "books/sqlite/contactbook.h"

#include <QtTest>

#include <sqlite3.h>

using namespace zf;
using namespace zf::act;

namespace {

// The book as schema version 1 wrote it.
const char* const SchemaV1 = R"(
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
INSERT INTO fields (id, label) VALUES (25, 'Firma'), (26, 'Kontakt'), (33, 'Land'),
    (35, 'Telefon'), (36, 'Fax'), (38, 'Mobil'), (78, 'Vorname'), (79, 'Nachname'),
    (200, 'eMail');
PRAGMA application_id = 1514556226;
PRAGMA user_version = 1;
)";

using Contact = QList<FieldValue>;

// 1: Anna Berg at Muster GmbH; 2: her colleague with the same switchboard and fax; 3: a
// namesake at another firm; 4: an Austrian mobile number.
const QList<Contact> Contacts{
    {{78, "Anna"},
     {79, "Berg"},
     {26, "Anna Berg"},
     {25, "Muster GmbH"},
     {200, "Anna.Berg@Muster.de"},
     {38, "0171 1234567"},
     {35, "089 555-0"},
     {36, "089 555-99"}},
    {{78, "Bernd"},
     {79, "Kurz"},
     {26, "Bernd Kurz"},
     {25, "Muster GmbH"},
     {200, "b.kurz@muster.de"},
     {35, "089 555-0"},
     {36, "089 555-99"}},
    {{26, "Dr. Carla Wendt"}, {25, "Alpha AG"}},
    {{26, "Dora Ost"}, {33, "Österreich"}, {38, "0664 7654321"}},
};

dup::Identity identity(const Contact& contact)
{
    dup::FieldValues values;
    for (const FieldValue& v : contact)
        values.append({v.fieldId, v.value});
    return dup::identityOf(values);
}

QStringList idsOf(const QList<dup::Match>& matches)
{
    QStringList ids;
    for (const dup::Match& m : matches)
        ids << m.id + ':' + dup::reasonName(m.reason);
    return ids;
}

qint64 pragma(const QString& path, const char* sql)
{
    sqlite3* db = nullptr;
    sqlite3_open(QFile::encodeName(path).constData(), &db);
    sqlite3_stmt* st = nullptr;
    sqlite3_prepare_v2(db, sql, -1, &st, nullptr);
    const qint64 value = sqlite3_step(st) == SQLITE_ROW ? sqlite3_column_int64(st, 0) : -1;
    sqlite3_finalize(st);
    sqlite3_close(db);
    return value;
}

QByteArray readAll(const QString& path)
{
    QFile f(path);
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
}

} // namespace

class TestDuplicateLookup : public QObject {
    Q_OBJECT

    std::unique_ptr<QTemporaryDir> dir;
    QString path;

    // A version-1 book with the contacts, written past the program.
    void writeVersion1Book()
    {
        sqlite3* db = nullptr;
        QCOMPARE(sqlite3_open(QFile::encodeName(path).constData(), &db), SQLITE_OK);
        QCOMPARE(sqlite3_exec(db, SchemaV1, nullptr, nullptr, nullptr), SQLITE_OK);
        QCOMPARE(sqlite3_exec(db, "BEGIN", nullptr, nullptr, nullptr), SQLITE_OK);
        for (const Contact& contact : Contacts) {
            QCOMPARE(
                sqlite3_exec(db, "INSERT INTO contacts DEFAULT VALUES", nullptr, nullptr, nullptr),
                SQLITE_OK);
            const qint64 id = sqlite3_last_insert_rowid(db);
            for (const FieldValue& v : contact) {
                sqlite3_stmt* st = nullptr;
                sqlite3_prepare_v2(db, "INSERT INTO contact_values VALUES (?, ?, ?)", -1, &st,
                                   nullptr);
                const QByteArray value = v.value.toUtf8();
                sqlite3_bind_int64(st, 1, id);
                sqlite3_bind_int(st, 2, v.fieldId);
                sqlite3_bind_text(st, 3, value.constData(), int(value.size()), SQLITE_TRANSIENT);
                QCOMPARE(sqlite3_step(st), SQLITE_DONE);
                sqlite3_finalize(st);
            }
        }
        QCOMPARE(sqlite3_exec(db, "COMMIT", nullptr, nullptr, nullptr), SQLITE_OK);
        sqlite3_close(db);
    }

    void lookupTable()
    {
        QTest::addColumn<Contact>("contact");
        QTest::addColumn<QStringList>("expected");
        QTest::newRow("e-mail, other case")
            << Contact{{200, "anna.berg@MUSTER.de"}} << QStringList{"1:email"};
        QTest::newRow("e-mail wins over the name")
            << Contact{{26, "Anna Berg"}, {200, "anna.berg@muster.de"}} << QStringList{"1:email"};
        QTest::newRow("name, same company")
            << Contact{{26, "Frau Anna Berg"}, {25, "muster gmbh"}} << QStringList{"1:name"};
        QTest::newRow("name from first and last")
            << Contact{{78, "Anna"}, {79, "Berg"}} << QStringList{"1:name"};
        QTest::newRow("name, no company") << Contact{{26, "Carla Wendt"}} << QStringList{"3:name"};
        QTest::newRow("name, other company")
            << Contact{{26, "Anna Berg"}, {25, "Beta KG"}} << QStringList{};
        QTest::newRow("one word names too many") << Contact{{26, "Berg"}} << QStringList{};
        QTest::newRow("mobile, international")
            << Contact{{38, "+49 (0)171 123 45 67"}} << QStringList{"1:mobile"};
        QTest::newRow("mobile, 0049")
            << Contact{{38, "0049 171/1234567"}} << QStringList{"1:mobile"};
        QTest::newRow("mobile of another country")
            << Contact{{38, "0664 7654321"}} << QStringList{}; // +49 664..., not +43
        QTest::newRow("mobile, Austrian")
            << Contact{{38, "0664 7654321"}, {33, "Österreich"}} << QStringList{"4:mobile"};
        QTest::newRow("colleague: switchboard and fax") << Contact{{26, "Clara Neu"},
                                                                   {25, "Muster GmbH"},
                                                                   {35, "089 555-0"},
                                                                   {36, "089 555-99"},
                                                                   {200, "c.neu@muster.de"}}
                                                        << QStringList{};
        QTest::newRow("several") << Contact{{26, "Bernd Kurz"}, {200, "anna.berg@muster.de"}}
                                 << QStringList{"1:email", "2:name"};
    }

private slots:
    void init()
    {
        dir = std::make_unique<QTemporaryDir>();
        path = dir->filePath("k.sqlite");
    }

    // The keys of a migrated book and those the scan of an unmigrated one finds agree.
    void migratedBook_data() { lookupTable(); }
    void migratedBook()
    {
        QFETCH(Contact, contact);
        QFETCH(QStringList, expected);
        writeVersion1Book();
        ContactBook book(path);
        QCOMPARE(pragma(path, "PRAGMA user_version"), qint64(ContactBook::SchemaVersion));
        QVERIFY(pragma(path, "SELECT count(*) FROM contact_keys") > 0);
        QCOMPARE(idsOf(BookDuplicateLookup(book).find(identity(contact))), expected);
    }
    void readVersion1Book_data() { lookupTable(); }
    void readVersion1Book()
    {
        QFETCH(Contact, contact);
        QFETCH(QStringList, expected);
        writeVersion1Book();
        const QByteArray before = readAll(path);
        {
            ContactBook book(path, ContactBook::Access::Read);
            QCOMPARE(idsOf(book.findDuplicates(identity(contact))), expected);
        }
        QCOMPARE(readAll(path), before);
    }

    // Keys made by other rules are not trusted: searched contact by contact when read, made
    // again when opened for writing.
    void keysOfOtherRules()
    {
        {
            ContactBook book(path);
            for (const Contact& contact : Contacts)
                book.writeContact(std::nullopt, contact);
        }
        const QByteArray stale = "DELETE FROM contact_keys; "
                                 "UPDATE state SET value = 0 WHERE key = 'duplicate_keys'";
        sqlite3* db = nullptr;
        QCOMPARE(sqlite3_open(QFile::encodeName(path).constData(), &db), SQLITE_OK);
        QCOMPARE(sqlite3_exec(db, stale.constData(), nullptr, nullptr, nullptr), SQLITE_OK);
        sqlite3_close(db);
        const dup::Identity anna = identity({{38, "+49 171 1234567"}});
        const QByteArray before = readAll(path);
        {
            ContactBook book(path, ContactBook::Access::Read);
            QCOMPARE(idsOf(book.findDuplicates(anna)), QStringList{"1:mobile"});
        }
        QCOMPARE(readAll(path), before);
        ContactBook book(path);
        QVERIFY(pragma(path, "SELECT count(*) FROM contact_keys") > 0);
        QCOMPARE(pragma(path, "SELECT value FROM state WHERE key = 'duplicate_keys'"), 1);
        QCOMPARE(idsOf(book.findDuplicates(anna)), QStringList{"1:mobile"});
    }

    void matchCarriesTheContact()
    {
        writeVersion1Book();
        ContactBook book(path);
        const QList<dup::Match> matches =
            book.findDuplicates(identity({{200, "anna.berg@muster.de"}}));
        QCOMPARE(matches.size(), 1);
        QCOMPARE(matches[0], (dup::Match{"1", "Anna Berg", "Muster GmbH", "Anna.Berg@Muster.de",
                                         dup::Reason::EMail}));
    }

    // writeContact and setField keep the keys with the values.
    void keysFollowWrites()
    {
        ContactBook book(path);
        const qint64 id = book.writeContact(std::nullopt, Contacts[0]);
        const dup::Identity old = identity({{200, "anna.berg@muster.de"}});
        const dup::Identity changed = identity({{200, "anna@berg.de"}});
        QCOMPARE(book.findDuplicates(old).size(), 1);
        book.writeContact(id, {{200, "anna@berg.de"}});
        QCOMPARE(book.findDuplicates(old).size(), 0);
        QCOMPARE(book.findDuplicates(changed).size(), 1);
        book.setField(id, 38, "");
        QCOMPARE(book.findDuplicates(identity({{38, "0171 1234567"}})).size(), 0);
        book.setField(id, 26, "Anna Maria Berg");
        QCOMPARE(book.findDuplicates(identity({{26, "Anna Berg"}})).size(), 1); // first + last
        book.setField(id, 78, "");
        QCOMPARE(book.findDuplicates(identity({{26, "Anna Berg"}})).size(), 0);
        QCOMPARE(book.findDuplicates(identity({{26, "Anna Maria Berg"}})).size(), 1);
    }

    void findText_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QList<qint64>>("expected");
        QTest::newRow("part of a name") << "BERG" << QList<qint64>{1};
        QTest::newRow("company") << "muster gmbh" << QList<qint64>{1, 2};
        QTest::newRow("e-mail") << "kurz@" << QList<qint64>{2};
        QTest::newRow("digits of a number") << "1234567" << QList<qint64>{1};
        QTest::newRow("spaced number") << "0171 123 4567" << QList<qint64>{1};
        QTest::newRow("international number") << "+49 171 1234567" << QList<qint64>{1};
        QTest::newRow("switchboard") << "089/555" << QList<qint64>{1, 2};
        QTest::newRow("nobody") << "Zacharias" << QList<qint64>{};
    }
    void findText()
    {
        QFETCH(QString, text);
        QFETCH(QList<qint64>, expected);
        writeVersion1Book();
        ContactBook book(path);
        QCOMPARE(book.findText(text), expected);
    }
};

QTEST_GUILESS_MAIN(TestDuplicateLookup)
#include "tst_duplicatelookup.moc"
