// The embedded contact book on disk, and the transfer and the field-list loading end to end
// against a real book in a temporary folder.

#include "act/contactbook.h"
#include "recorder.h"

#include <QElapsedTimer>
#include <QtTest>

#include <sqlite3.h>
#include <unistd.h>

#include <future>
#include <thread>

using namespace zf;
using namespace zf::act;

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

qint64 pragma(const QString& path, const char* sql)
{
    sqlite3* db = nullptr;
    sqlite3_open(QFile::encodeName(path).constData(), &db);
    sqlite3_stmt* st = nullptr;
    sqlite3_prepare_v2(db, sql, -1, &st, nullptr);
    sqlite3_step(st);
    const qint64 v = sqlite3_column_int64(st, 0);
    sqlite3_finalize(st);
    sqlite3_close(db);
    return v;
}

void fillRows(Session& session, const QStringList& rows)
{
    session.rows.FillDefaultFieldLists();
    session.clipText = "Adresse";
    for (int row = 0; row < rows.size(); ++row) {
        session.rows.setValue(row, rows[row].section('=', 1));
        session.rows.SelectRowField(row, qint16(rows[row].section('=', 0, 0).toInt()));
    }
}

QMap<qint32, QString> valuesOf(ContactBook& book, qint64 id)
{
    QMap<qint32, QString> out;
    for (const BookValue& v : book.contactValues(id))
        out.insert(v.fieldId, v.value);
    return out;
}

const QString CreateFailed = "message(Kontakt konnte nicht angelegt werden.,48)";
const QString FieldsFailed = "message(Die Felder konnten nicht aus der Datenbank gelesen werden. "
                             "Möglicherweise ist ACT! geschlossen.,48)";

} // namespace

class TestContactBook : public QObject {
    Q_OBJECT
private slots:
    void createdWithSchema();
    void emptyFileBecomesBook();
    void valuesStoredAsText_data();
    void valuesStoredAsText();
    void currentContactAndFields();
    void refusedUntouched_data();
    void refusedUntouched();
    void readOnly_data();
    void readOnly();
    void sharedBetweenConnections();
    void waitsForOtherWriter();

    void transferCreateThenEdit();
    void editFollowsCurrentChosenElsewhere();
    void editOnEmptyBookFails();
    void refusedFieldKeepsEarlierWrites();
    void loadFieldListWithUserFields();
    void unusableBookThroughLink();
    void bookPath();
};

void TestContactBook::createdWithSchema()
{
    QTemporaryDir dir;
    const QString path = dir.filePath("neu/tief/kontakte.sqlite");
    {
        ContactBook book(path);
        QList<BookField> expected;
        for (const FieldEntry& e : defaultFieldEntries())
            expected.append({e.id, e.name});
        QCOMPARE(book.fields(), expected);
        QCOMPARE(book.fieldCount(), 20);
        QCOMPARE(book.fieldIdAt(13), 200);
        QCOMPARE(book.fieldIdAt(20), std::nullopt);
        QCOMPARE(book.contactIds(), QList<qint64>{});
        QCOMPARE(book.currentContact(), std::nullopt);
    }
    QCOMPARE(pragma(path, "PRAGMA user_version"), ContactBook::SchemaVersion);
    QCOMPARE(pragma(path, "PRAGMA application_id"), ContactBook::ApplicationId);
    sqlite3* db = nullptr;
    sqlite3_open(QFile::encodeName(path).constData(), &db);
    sqlite3_stmt* st = nullptr;
    sqlite3_prepare_v2(db, "PRAGMA journal_mode", -1, &st, nullptr);
    sqlite3_step(st);
    QCOMPARE(QByteArray(reinterpret_cast<const char*>(sqlite3_column_text(st, 0))), "wal");
    sqlite3_finalize(st);
    sqlite3_close(db);
    // Opening again neither seeds twice nor loses anything.
    ContactBook again(path);
    QCOMPARE(again.fieldCount(), 20);
}

void TestContactBook::emptyFileBecomesBook()
{
    QTemporaryDir dir;
    const QString path = dir.filePath("k.sqlite");
    writeFile(path, {});
    ContactBook book(path);
    QCOMPARE(book.fieldCount(), 20);
}

void TestContactBook::valuesStoredAsText_data()
{
    QTest::addColumn<QString>("value");
    QTest::newRow("injection") << "'); DROP TABLE contacts; --";
    QTest::newRow("quotes") << "O'Brien \"Bob\"";
    QTest::newRow("umlauts") << "Straße 5, Österreich – ☎";
    QTest::newRow("line breaks") << "Zeile 1\r\nZeile 2";
    QTest::newRow("percent and question mark") << "100% ? %s";
    QTest::newRow("empty") << "";
}

void TestContactBook::valuesStoredAsText()
{
    QFETCH(QString, value);
    QTemporaryDir dir;
    ContactBook book(dir.filePath("k.sqlite"));
    const qint64 id = book.addContact();
    book.setField(id, 25, value);
    book.addField(300, value);
    QCOMPARE(book.contactIds(), QList<qint64>{id});
    QCOMPARE(book.fieldLabel(300), value);
    if (value.isEmpty())
        QCOMPARE(book.contactValues(id), QList<BookValue>{});
    else
        QCOMPARE(book.contactValues(id), (QList<BookValue>{{25, "Firma", value}}));
}

void TestContactBook::currentContactAndFields()
{
    QTemporaryDir dir;
    ContactBook book(dir.filePath("k.sqlite"));
    const qint64 a = book.addContact();
    const qint64 b = book.addContact();
    QCOMPARE(book.currentContact(), b);
    book.setCurrentContact(a);
    QCOMPARE(book.currentContact(), a);
    QVERIFY_THROWS_EXCEPTION(BookError, book.setCurrentContact(b + 10));
    QCOMPARE(book.currentContact(), a);
    QVERIFY_THROWS_EXCEPTION(BookError, book.setField(b + 10, 25, "x"));
    QVERIFY_THROWS_EXCEPTION(BookError, book.setField(a, 999, "x"));

    book.addField(117, "");
    book.addField(300, "Geburtstag");
    QVERIFY_THROWS_EXCEPTION(BookError, book.addField(25, "Nochmal"));
    QCOMPARE(book.fieldCount(), 22);
    QCOMPARE(book.fields().mid(20), (QList<BookField>{{117, ""}, {300, "Geburtstag"}}));
    book.setField(a, 300, "1.1.1970");
    book.setField(a, 25, "Firma A");
    book.setField(a, 25, "Firma B"); // overwritten, not doubled
    QCOMPARE(book.contactValues(a),
             (QList<BookValue>{{25, "Firma", "Firma B"}, {300, "Geburtstag", "1.1.1970"}}));
}

void TestContactBook::refusedUntouched_data()
{
    QTest::addColumn<QString>("kind");
    QTest::addColumn<int>("error");
    QTest::newRow("text file") << "text" << int(BookError::NotABook);
    QTest::newRow("other database") << "foreign" << int(BookError::NotABook);
    QTest::newRow("newer schema") << "newer" << int(BookError::NewerVersion);
    QTest::newRow("damaged") << "damaged" << int(BookError::Damaged);
    QTest::newRow("folder") << "folder" << int(BookError::NotABook);
}

void TestContactBook::refusedUntouched()
{
    QFETCH(QString, kind);
    QFETCH(int, error);
    QTemporaryDir dir;
    const QString path = dir.filePath("k.sqlite");
    if (kind == "text") {
        writeFile(path, "Vorname;Nachname\nMax;Muster\n");
    } else if (kind == "foreign") {
        rawSql(path, "CREATE TABLE notes (text TEXT); INSERT INTO notes VALUES ('wichtig');");
    } else if (kind == "newer") {
        {
            ContactBook book(path);
        }
        rawSql(path, "PRAGMA user_version = 2");
    } else if (kind == "damaged") {
        {
            ContactBook book(path);
        }
        QByteArray bytes = readAll(path);
        for (qsizetype i = 100; i < 4096 && i < bytes.size(); ++i)
            bytes[i] = char(0xA5);
        writeFile(path, bytes);
    } else {
        QVERIFY(QDir().mkpath(path));
    }
    const QByteArray before = readAll(path);
    try {
        ContactBook book(path);
        QFAIL("opened");
    } catch (const BookError& e) {
        QCOMPARE(int(e.kind()), error);
        QVERIFY2(e.message().contains(path), qPrintable(e.message()));
    }
    QCOMPARE(readAll(path), before);
}

void TestContactBook::readOnly_data()
{
    QTest::addColumn<bool>("fileExists");
    QTest::addColumn<bool>("protectFile");
    QTest::newRow("write-protected book") << true << true;
    QTest::newRow("book in a read-only folder") << true << false;
    QTest::newRow("new book in a read-only folder") << false << false;
}

void TestContactBook::readOnly()
{
    if (geteuid() == 0)
        QSKIP("file permissions do not bind the superuser");
    QFETCH(bool, fileExists);
    QFETCH(bool, protectFile);
    QTemporaryDir dir;
    const QString folder = dir.filePath("ro");
    const QString path = folder + "/k.sqlite";
    QVERIFY(QDir().mkpath(folder));
    if (fileExists) {
        ContactBook book(path);
        book.addContact();
    }
    if (protectFile)
        QFile::setPermissions(path, QFileDevice::ReadOwner);
    else
        QFile::setPermissions(folder, QFileDevice::ReadOwner | QFileDevice::ExeOwner);
    const QByteArray before = readAll(path);
    QVERIFY_THROWS_EXCEPTION(BookError, ContactBook{path});
    QCOMPARE(readAll(path), before);
    QFile::setPermissions(folder,
                          QFileDevice::ReadOwner | QFileDevice::WriteOwner | QFileDevice::ExeOwner);
    QFile::setPermissions(path, QFileDevice::ReadOwner | QFileDevice::WriteOwner);
}

void TestContactBook::sharedBetweenConnections()
{
    QTemporaryDir dir;
    const QString path = dir.filePath("k.sqlite");
    ContactBook window(path);
    ContactBook cli(path);
    const qint64 id = window.addContact();
    QCOMPARE(cli.currentContact(), id);
    cli.setField(id, 30, "Wien");
    window.setField(id, 25, "Beispiel");
    cli.addField(117, "");
    window.setField(id, 117, "x");
    QCOMPARE(valuesOf(cli, id),
             (QMap<qint32, QString>{{25, "Beispiel"}, {30, "Wien"}, {117, "x"}}));
}

void TestContactBook::waitsForOtherWriter()
{
    QTemporaryDir dir;
    const QString path = dir.filePath("k.sqlite");
    ContactBook book(path);
    std::promise<void> locked;
    std::thread other([&] {
        sqlite3* db = nullptr;
        sqlite3_open(QFile::encodeName(path).constData(), &db);
        sqlite3_exec(db, "BEGIN IMMEDIATE; INSERT INTO contacts DEFAULT VALUES;", nullptr, nullptr,
                     nullptr);
        locked.set_value();
        std::this_thread::sleep_for(std::chrono::milliseconds(400));
        sqlite3_exec(db, "COMMIT", nullptr, nullptr, nullptr);
        sqlite3_close(db);
    });
    locked.get_future().wait();
    QElapsedTimer timer;
    timer.start();
    qint64 id = 0;
    try {
        id = book.addContact();
    } catch (const BookError& e) {
        other.join();
        QFAIL(qPrintable(e.message()));
    }
    other.join();
    QVERIFY(timer.elapsed() >= 300);
    QCOMPARE(book.contactIds(), (QList<qint64>{1, 2}));
    QCOMPARE(id, 2);
}

void TestContactBook::transferCreateThenEdit()
{
    QTemporaryDir dir;
    const QString path = dir.filePath("daten/kontakte.sqlite");
    ContactLink link(makeContactBookFactory(path));
    test::Recorder r;
    WindowHooks hooks = r.hooks();
    QMap<qint32, QString> onDiskAtPrompt;
    hooks.showCompletionPrompt = [&](bool) -> quint8 {
        ContactBook reader(path); // another connection: what is on disk
        onDiskAtPrompt = valuesOf(reader, *reader.currentContact());
        return 2;
    };
    Session s;
    fillRows(s, {"25=Beispiel GmbH", "78=Max", "79=Muster", "30=Wien", "200=max@example.at"});
    link.TransferContact(true, s, hooks);
    QCOMPARE(r.calls.filter("message"), QStringList{});
    const QMap<qint32, QString> created{{25, "Beispiel GmbH"}, {26, "Max Muster"},
                                        {78, "Max"},           {79, "Muster"},
                                        {30, "Wien"},          {200, "max@example.at"}};
    QCOMPARE(onDiskAtPrompt, created);

    s.rows.setValue(3, "Graz");
    s.rows.setValue(0, "");
    link.TransferContact(false, s, hooks);
    ContactBook book(path);
    QCOMPARE(book.contactIds().size(), 1);
    QMap<qint32, QString> edited = created;
    edited.remove(25);
    edited[30] = "Graz";
    QCOMPARE(valuesOf(book, book.contactIds().first()), edited);
}

void TestContactBook::editFollowsCurrentChosenElsewhere()
{
    QTemporaryDir dir;
    const QString path = dir.filePath("k.sqlite");
    ContactLink link(makeContactBookFactory(path));
    test::Recorder r;
    Session s;
    fillRows(s, {"30=Linz"});
    link.TransferContact(true, s, r.hooks());
    link.TransferContact(true, s, r.hooks());
    ContactBook other(path);
    other.setCurrentContact(1);
    s.rows.setValue(0, "Salzburg");
    link.TransferContact(false, s, r.hooks());
    QCOMPARE(valuesOf(other, 1).value(30), "Salzburg");
    QCOMPARE(valuesOf(other, 2).value(30), "Linz");
}

void TestContactBook::editOnEmptyBookFails()
{
    QTemporaryDir dir;
    ContactLink link(makeContactBookFactory(dir.filePath("k.sqlite")));
    test::Recorder r;
    Session s;
    fillRows(s, {"30=Linz"});
    link.TransferContact(false, s, r.hooks());
    QCOMPARE(r.calls.last(), "message(Kontakt konnte nicht bearbeitet werden.,48)");
    QVERIFY2(link.lastError().contains("current contact"), qPrintable(link.lastError()));
}

void TestContactBook::refusedFieldKeepsEarlierWrites()
{
    QTemporaryDir dir;
    const QString path = dir.filePath("k.sqlite");
    ContactLink link(makeContactBookFactory(path));
    test::Recorder r;
    Session s;
    fillRows(s, {"25=Beispiel", "30=Wien"});
    s.state.ExtraDefinitionsLoaded = true;
    s.state.ExtraFieldValues = {{999, "unbekannt"}};
    link.TransferContact(true, s, r.hooks());
    QCOMPARE(r.calls.last(), CreateFailed);
    QVERIFY(link.lastError().contains("999"));
    ContactBook book(path);
    QCOMPARE(valuesOf(book, 1), (QMap<qint32, QString>{{25, "Beispiel"}, {30, "Wien"}}));
}

void TestContactBook::loadFieldListWithUserFields()
{
    QTemporaryDir dir;
    const QString path = dir.filePath("k.sqlite");
    {
        ContactBook book(path);
        book.addField(117, "");
        book.addField(300, "Geburtstag");
    }
    ContactLink link(makeContactBookFactory(path));
    test::Recorder r;
    Session s;
    s.rows.FillDefaultFieldLists();
    link.LoadFieldList(s, r.hooks());
    QCOMPARE(r.calls.mid(r.calls.size() - 2), (QStringList{"fetchClipboard", "saveFieldCache"}));
    const FieldList& list = s.rows.fields();
    QCOMPARE(list.count(), 22);
    QCOMPARE(list.nameAt(list.positionOf(117)), "Feld 117");
    QCOMPARE(list.nameAt(list.positionOf(300)), "Geburtstag");
    QCOMPARE(list.nameAt(list.positionOf(200)), "eMail");

    // A field added while the program runs shows up in the next load.
    ContactBook(path).addField(301, "Hobby");
    link.LoadFieldList(s, r.hooks());
    QCOMPARE(s.rows.fields().count(), 23);
}

void TestContactBook::unusableBookThroughLink()
{
    QTemporaryDir dir;
    const QString path = dir.filePath("k.sqlite");
    writeFile(path, "keine Datenbank\n");
    ContactLink link(makeContactBookFactory(path));
    test::Recorder r;
    Session s;
    fillRows(s, {"25=Beispiel"});
    link.TransferContact(true, s, r.hooks());
    QCOMPARE(r.calls.last(), CreateFailed);
    QVERIFY2(link.lastError().contains("not a contact book"), qPrintable(link.lastError()));
    r.calls.clear();
    link.LoadFieldList(s, r.hooks());
    QCOMPARE(r.calls.mid(r.calls.size() - 2), (QStringList{FieldsFailed, "saveFieldCache"}));
    QCOMPARE(s.rows.fields().count(), 20);
    QCOMPARE(readAll(path), "keine Datenbank\n");
}

void TestContactBook::bookPath()
{
    qputenv("ZETTELFISCHER_CONTACTS", "/tmp/aus-der-umgebung.sqlite");
    QCOMPARE(contactBookPath("/x/explizit.sqlite"), "/x/explizit.sqlite");
    QCOMPARE(contactBookPath(), "/tmp/aus-der-umgebung.sqlite");
    qunsetenv("ZETTELFISCHER_CONTACTS");
    QVERIFY(contactBookPath().endsWith("/zettelfischer/kontakte.sqlite"));
    QVERIFY(QFileInfo(contactBookPath()).isAbsolute());
}

QTEST_GUILESS_MAIN(TestContactBook)
#include "tst_contactbook.moc"
