// The embedded contact book on disk, and the transfer and the field-list loading end to end
// against a real book in a temporary folder.

#include "act/recorder.h"
#include "books/sqlite/contactbook.h"

#include <QtTest>

#include <sqlite3.h>
#include <unistd.h>

#include <future>
#include <thread>

using namespace zf;
using namespace zf::act;
using namespace zf::act::test;

namespace {

QByteArray readAll(const QString& path)
{
    QFile f(path);
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray("<unreadable>");
}

void writeFile(const QString& path, const QByteArray& bytes)
{
    QFile f(path);
    QVERIFY(f.open(QIODevice::WriteOnly));
    f.write(bytes);
}

// Runs SQL on the file with a plain connection, outside the book's own checks.
void rawSql(const QString& path, const char* sql)
{
    sqlite3* db = nullptr;
    QCOMPARE(sqlite3_open(QFile::encodeName(path).constData(), &db), SQLITE_OK);
    QCOMPARE(sqlite3_exec(db, sql, nullptr, nullptr, nullptr), SQLITE_OK);
    sqlite3_close(db);
}

// A book with contacts enough to fill several pages, closed, with its last page overwritten:
// the header still says it is ours, only a look at every page finds the damage.
void damageLastPage(const QString& path)
{
    {
        ContactBook book(path);
        for (int i = 0; i < 40; ++i)
            book.writeContact(std::nullopt, {{25, QString("Firma %1 ").arg(i).repeated(20)}});
    }
    QByteArray bytes = readAll(path);
    QVERIFY(bytes.size() >= 3 * 4096);
    bytes.replace(bytes.size() - 4096, 4096, QByteArray(4096, char(0xA5)));
    writeFile(path, bytes);
}

QMap<qint32, QString> valuesOf(ContactBook& book, qint64 id)
{
    QMap<qint32, QString> out;
    for (const BookValue& v : book.contactValues(id))
        out.insert(v.fieldId, v.value);
    return out;
}

} // namespace

class TestContactBook : public QObject {
    Q_OBJECT
    std::unique_ptr<QTemporaryDir> dir;
    QString path;

private slots:
    void init()
    {
        dir = std::make_unique<QTemporaryDir>();
        path = dir->filePath("k.sqlite");
    }

    void created_data()
    {
        QTest::addColumn<bool>("emptyFile");
        QTest::newRow("missing file in new folders") << false;
        QTest::newRow("empty file") << true;
    }

    void created()
    {
        QFETCH(bool, emptyFile);
        if (emptyFile)
            writeFile(path, {});
        else
            path = dir->filePath("neu/tief/k.sqlite");
        {
            ContactBook book(path);
            QList<BookField> expected;
            for (const FieldEntry& e : defaultFieldEntries())
                expected.append({e.id, e.name});
            QCOMPARE(book.fields(), expected);
            QCOMPARE(book.fieldIdAt(20), std::nullopt);
            QCOMPARE(book.contactIds(), QList<qint64>{});
            QVERIFY(QFile::exists(path + "-wal")); // a reader and a writer may work at once
        }
        // Opening again finds its own marks and does not seed the fields twice.
        QCOMPARE(ContactBook(path).fieldCount(), 20);
    }

    void currentContactAndFields()
    {
        ContactBook book(path);
        const qint64 a = book.addContact();
        const qint64 b = book.addContact();
        QCOMPARE(book.currentContact(), b);
        book.setCurrentContact(a);
        QVERIFY_THROWS_EXCEPTION(BookError, book.setCurrentContact(b + 10));
        QCOMPARE(book.currentContact(), a);
        QVERIFY_THROWS_EXCEPTION(BookError, book.setField(b + 10, 25, "x"));

        // Text goes in as it is: quotes, SQL and non-ASCII characters.
        const QString odd = "O'Brien \"Bob\"'); DROP TABLE contacts; -- Straße ☎";
        book.addField(117, "");
        book.addField(300, odd);
        QCOMPARE(book.fields().mid(20), (QList<BookField>{{117, ""}, {300, odd}}));
        book.setField(a, 300, "1.1.1970");
        book.setField(a, 25, odd); // listed in field order
        QCOMPARE(book.contactValues(a),
                 (QList<BookValue>{{25, "Firma", odd}, {300, odd, "1.1.1970"}}));
    }

    void refusedUntouched_data()
    {
        QTest::addColumn<QString>("kind");
        QTest::addColumn<int>("error");
        QTest::newRow("text file") << "text" << int(BookError::NotABook);
        QTest::newRow("other database") << "foreign" << int(BookError::NotABook);
        QTest::newRow("newer schema") << "newer" << int(BookError::NewerVersion);
        QTest::newRow("damaged first page") << "damaged" << int(BookError::Damaged);
        QTest::newRow("damaged later page") << "damaged page" << int(BookError::Damaged);
        QTest::newRow("folder") << "folder" << int(BookError::NotABook);
        QTest::newRow("read-only, for every user") << "read-only" << int(BookError::ReadOnly);
    }

    void refusedUntouched()
    {
        QFETCH(QString, kind);
        QFETCH(int, error);
        if (kind == "newer") // a placeholder in the path stays as it is in the message
            path = dir->filePath("a%2b/k.sqlite");
        if (kind == "newer" || kind == "damaged" || kind == "read-only")
            ContactBook{path};
        if (kind == "text")
            writeFile(path, "Vorname;Nachname\nMax;Muster\n");
        else if (kind == "foreign")
            rawSql(path, "CREATE TABLE notes (text TEXT)");
        else if (kind == "newer")
            rawSql(path, "PRAGMA user_version = 3");
        else if (kind == "damaged")
            writeFile(path, readAll(path).replace(100, 3996, QByteArray(3996, char(0xA5))));
        else if (kind == "damaged page")
            damageLastPage(path);
        else if (kind == "read-only")
            QVERIFY(QFile::setPermissions(path, QFileDevice::ReadOwner | QFileDevice::ReadGroup));

        else
            QVERIFY(QDir().mkpath(path));
        const QByteArray before = readAll(path);
        try {
            ContactBook book(path);
            QFAIL("opened");
        } catch (const BookError& e) {
            QCOMPARE(int(e.kind()), error);
            QVERIFY2(e.message().contains(path), qPrintable(e.message()));
        }
        QCOMPARE(readAll(path), before);
        if (kind == "damaged page") { // readers find the damage where they meet it
            QVERIFY_THROWS_NO_EXCEPTION(ContactBook(path, ContactBook::Access::Read));
            QCOMPARE(readAll(path), before);
        }
    }

    // The window's transfer on a book that must not be written: the mode's failure message,
    // the reason for the log, the file as it was.
    void refusedInWindow_data()
    {
        QTest::addColumn<QString>("kind");
        QTest::newRow("read-only") << "read-only";
        QTest::newRow("damaged page") << "damaged page";
    }

    void refusedInWindow()
    {
        QFETCH(QString, kind);
        if (kind == "read-only") {
            ContactBook(path).addContact();
            QVERIFY(QFile::setPermissions(path, QFileDevice::ReadOwner));
        } else {
            damageLastPage(path);
        }
        const QByteArray before = readAll(path);
        Rig t({"25=Beispiel GmbH", "30=Wien"}, path);
        QCOMPARE(t.transfer(true).last(), CreateFailed);
        QVERIFY2(t.link.lastError().contains(kind == "read-only" ? "read-only" : "damaged"),
                 qPrintable(t.link.lastError()));
        QCOMPARE(t.transfer(false).last(), EditFailed);
        QCOMPARE(readAll(path), before);
    }

    void waitsForOtherWriter()
    {
        ContactBook book(path);
        sqlite3* db = nullptr;
        sqlite3_open(QFile::encodeName(path).constData(), &db);
        QCOMPARE(sqlite3_exec(db, "BEGIN IMMEDIATE; INSERT INTO contacts DEFAULT VALUES;", nullptr,
                              nullptr, nullptr),
                 SQLITE_OK);
        const auto other = std::async(std::launch::async, [db] {
            std::this_thread::sleep_for(std::chrono::milliseconds(400));
            sqlite3_exec(db, "COMMIT", nullptr, nullptr, nullptr);
            sqlite3_close(db);
        });
        // Only a call that waited for the other commit can get the id after it.
        qint64 id = 0;
        QVERIFY_THROWS_NO_EXCEPTION(id = book.addContact());
        QCOMPARE(id, 2);
    }

    void linkOnBook()
    {
        Rig t({"25=Beispiel GmbH", "78=Max", "79=Muster", "30=Wien"}, path);
        QCOMPARE(t.transfer(false).last(), EditFailed);
        QVERIFY2(t.link.lastError().contains("current contact"), qPrintable(t.link.lastError()));

        QCOMPARE(t.transfer(true).last(), "focus");
        QCOMPARE(t.transfer(true).last(), "focus");
        ContactBook other(path); // another connection: what is on disk
        const QMap<qint32, QString> created{
            {25, "Beispiel GmbH"}, {26, "Max Muster"}, {78, "Max"}, {79, "Muster"}, {30, "Wien"}};
        QCOMPARE(valuesOf(other, 2), created);

        // Edit overwrites the contact chosen elsewhere (e.g. on the command line).
        other.setCurrentContact(1);
        t.s.rows.setValue(0, "");
        t.s.rows.setValue(3, "Graz");
        QCOMPARE(t.transfer(false).last(), "focus");
        QMap<qint32, QString> edited = created;
        edited.remove(25);
        edited[30] = "Graz";
        QCOMPARE(valuesOf(other, 1), edited);
        QCOMPARE(valuesOf(other, 2), created);

        // A refused field ends the transfer and leaves no trace: the book does better than the
        // contact manager, which keeps the new contact and what was written before.
        t.s.state.ExtraDefinitionsLoaded = true;
        t.s.state.ExtraFieldValues = {{999, "unbekannt"}};
        QCOMPARE(t.transfer(true).last(), CreateFailed);
        QVERIFY(t.link.lastError().contains("999"));
        QCOMPARE(other.contactIds(), (QList<qint64>{1, 2}));
        QCOMPARE(valuesOf(other, 1), edited);

        // The field list comes from the book, user fields included.
        other.addField(117, "");
        QCOMPARE(t.load().last(), "saveFieldCache");
        const FieldList& list = t.s.rows.fields();
        QCOMPARE(list.count(), 21);
        QCOMPARE(list.nameAt(list.positionOf(117)), "Feld 117");
        QCOMPARE(list.nameAt(list.positionOf(200)), "eMail");
    }

    // The book's contact view: each transfer writes its own contact, whole, at its end.
    void viewTransfers()
    {
        QList<qint64> written;
        const auto factory = makeContactBookFactory(path, [&](qint64 id) { written << id; });
        const auto makeView = [&] {
            return createAs<ApplicationObject>(*factory, ProgIdApplication)
                ->Views()
                ->Create(ContactViewType, ContactViewName);
        };
        auto a = makeView();
        auto b = makeView(); // another program at the same time
        ContactBook other(path);
        a->AddNewContact();
        a->SetField(25, "A GmbH");
        b->AddNewContact();
        b->SetField(25, "B AG");
        b->EndTransfer();
        QCOMPARE(other.contactIds(), QList<qint64>{1}); // nothing of a's yet
        a->SetField(35, "111");
        a->EndTransfer();
        using Values = QMap<qint32, QString>;
        QCOMPARE(valuesOf(other, 1), (Values{{25, "B AG"}}));
        QCOMPARE(valuesOf(other, 2), (Values{{25, "A GmbH"}, {35, "111"}}));
        QCOMPARE(other.currentContact(), 2);
        QCOMPARE(written, (QList<qint64>{1, 2}));

        // An edit keeps the contact that was current at its first write.
        a->SetField(35, "222");
        other.setCurrentContact(1);
        a->SetField(30, "Wien");
        a->EndTransfer();
        QCOMPARE(valuesOf(other, 2), (Values{{25, "A GmbH"}, {30, "Wien"}, {35, "222"}}));
        QCOMPARE(valuesOf(other, 1), (Values{{25, "B AG"}}));
        QCOMPARE(other.currentContact(), 2);

        // A failed call drops its transfer: the next call starts a new one (here an edit of
        // the current contact). A view released half-way writes nothing.
        a->AddNewContact();
        a->SetField(25, "verloren");
        QVERIFY_THROWS_EXCEPTION(ActError, a->SetField(999, "x"));
        a->SetField(46, "Dr.");
        a->EndTransfer();
        QCOMPARE(other.contactIds(), (QList<qint64>{1, 2}));
        QCOMPARE(valuesOf(other, 2).value(25), "A GmbH");
        QCOMPARE(valuesOf(other, 2).value(46), "Dr.");
        b->AddNewContact();
        b->SetField(25, "halb");
        b.reset();
        QCOMPARE(other.contactIds(), (QList<qint64>{1, 2}));
        QCOMPARE(written, (QList<qint64>{1, 2, 2, 2}));
    }

    // Reading a book never changes the file, not even its journal mode; writing switches it.
    void readingChangesNothing()
    {
        ContactBook(path).addContact();
        rawSql(path, "PRAGMA journal_mode=DELETE");
        const QByteArray before = readAll(path);
        QCOMPARE(before.at(18), 1); // rollback journal
        QCOMPARE(ContactBook(path, ContactBook::Access::Read).contactIds(), QList<qint64>{1});
        QCOMPARE(readAll(path), before);
        ContactBook{path};
        QCOMPARE(readAll(path).at(18), 2); // write-ahead log
    }

    void bookPath()
    {
        qputenv("ZETTELFISCHER_CONTACTS", "/tmp/aus-der-umgebung.sqlite");
        QCOMPARE(contactBookPath("/x/explizit.sqlite"), "/x/explizit.sqlite");
        QCOMPARE(contactBookPath(), "/tmp/aus-der-umgebung.sqlite");
        qunsetenv("ZETTELFISCHER_CONTACTS");
        QVERIFY(contactBookPath().endsWith("/zettelfischer/kontakte.sqlite"));
        QVERIFY(QFileInfo(contactBookPath()).isAbsolute());
    }
};

QTEST_GUILESS_MAIN(TestContactBook)
#include "tst_contactbook.moc"
