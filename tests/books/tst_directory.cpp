// The contact directory of both books as the window and the commands use it through
// openBook: the chosen contact that an edit overwrites whatever another program makes
// current, and the CardDAV card index kept current while other clients change the book.

#include "act/recorder.h"
#include "analysis/fields.h"
#include "books/books.h"
#include "books/carddav/addressbook.h"
#include "books/davbook.h"
#include "books/sqlite/contactbook.h"
#include "carddav/davservers.h"

#include "filledsession.h"

#include <QtTest>

#include <sqlite3.h>

#include <map>

using namespace zf;
using namespace zf::books;
using davtest::DavServer;
using zf::test::fill;

namespace {

dup::Identity byEmail(const QString& email)
{
    return dup::identityOf({{idOf(FieldId::EMail), email}});
}

QStringList idsOf(const QList<dup::Match>& matches)
{
    QStringList out;
    for (const dup::Match& m : matches)
        out << m.id;
    return out;
}

// One book as this program and as another program on the same machine see it.
struct Book {
    OpenedBook opened;
    std::function<void(const QString&)> otherMakesCurrent;
    std::function<void(const QString&)> otherDeletes;
    std::function<QString(const QString&, FieldId)> valueOf; // read afresh
    std::function<int()> count;
};

} // namespace

class TestDirectory : public QObject {
    Q_OBJECT

    QTemporaryDir m_dir;
    std::map<QString, std::unique_ptr<DavServer>> m_servers;
    int m_books = 0;

    DavServer* server(const QString& kind)
    {
        const auto which = kind == "radicale" ? DavServer::Radicale : DavServer::Xandikos;
        if (DavServer::program(which).isEmpty())
            return nullptr;
        auto& server = m_servers[kind];
        if (!server)
            server = std::make_unique<DavServer>(which);
        return server->error().isEmpty() ? server.get() : nullptr;
    }

    static QUrl withPassword(QUrl url)
    {
        url.setUserName(DavServer::user());
        url.setPassword(DavServer::password());
        return url;
    }

    static std::shared_ptr<DavBook> davBook(const QUrl& url)
    {
        return std::make_shared<DavBook>(
            BookLocation{withPassword(url).toString(), {}, std::chrono::seconds(10)}, nullptr);
    }

    // A book without contacts; "" as kind: the SQLite book.
    std::optional<Book> open(const QString& kind)
    {
        if (kind == "sqlite") {
            const QString path = m_dir.filePath(QString("book-%1.sqlite").arg(++m_books));
            return Book{
                openBook({path, {}, {}}, nullptr),
                [path](const QString& id) {
                    act::ContactBook(path).setCurrentContact(id.toLongLong());
                },
                [path](const QString& id) {
                    sqlite3* db = nullptr;
                    sqlite3_open(QFile::encodeName(path).constData(), &db);
                    const QByteArray sql =
                        "PRAGMA foreign_keys = ON; DELETE FROM contacts WHERE id = " +
                        id.toLatin1();
                    QCOMPARE(sqlite3_exec(db, sql.constData(), nullptr, nullptr, nullptr),
                             SQLITE_OK);
                    sqlite3_close(db);
                },
                [path](const QString& id, FieldId field) {
                    for (const act::BookValue& v :
                         act::ContactBook(path, act::ContactBook::Access::Read)
                             .contactValues(id.toLongLong()))
                        if (v.fieldId == idOf(field))
                            return v.value;
                    return QString();
                },
                [path] {
                    return int(
                        act::ContactBook(path, act::ContactBook::Access::Read).contactIds().size());
                },
            };
        }
        DavServer* dav = server(kind);
        if (!dav)
            return std::nullopt;
        auto other = davBook(dav->book());
        for (const carddav::CardRef& ref : other->book().list())
            other->book().client().send("DELETE", ref.url);
        return Book{
            openBook({withPassword(dav->book()).toString(), {}, std::chrono::seconds(10)}, nullptr),
            [other](const QString& id) { other->setCurrentContact(id); },
            [other](const QString& id) {
                other->book().client().send("DELETE", other->cardUrl(id));
            },
            [other](const QString& id, FieldId field) {
                for (const act::BookValue& v :
                     cardValues(other->book().get(other->cardUrl(id)).data))
                    if (v.fieldId == idOf(field))
                        return v.value;
                return QString();
            },
            [other] { return int(other->book().list().size()); },
        };
    }

    // Files a new contact through the automation objects as "Neu Anlegen" does; its id.
    static QString file(Book& book, const QString& first, const QString& last, const QString& email)
    {
        act::ContactLink link(book.opened.objects);
        act::test::Recorder recorder;
        Session session;
        fill(session,
             {{FieldId::Vorname, first}, {FieldId::Nachname, last}, {FieldId::EMail, email}});
        link.TransferContact(true, session, recorder.hooks());
        if (!recorder.calls.contains("prompt(1)"))
            return {};
        const std::optional<dup::Match> current = book.opened.directory->current();
        return current ? current->id : QString();
    }

    // "Bearbeiten" with one company; whether it was filed.
    static bool edit(Book& book, const QString& company, QString* error = nullptr)
    {
        act::ContactLink link(book.opened.objects);
        act::test::Recorder recorder;
        Session session;
        fill(session, {{FieldId::Firma, company}});
        link.TransferContact(false, session, recorder.hooks());
        if (error)
            *error = link.lastError();
        return recorder.calls.contains("prompt(0)");
    }

    static void books()
    {
        QTest::addColumn<QString>("kind");
        QTest::newRow("sqlite") << "sqlite";
        QTest::newRow("radicale") << "radicale";
        QTest::newRow("xandikos") << "xandikos";
    }

private slots:
    void initTestCase()
    {
        QVERIFY(m_dir.isValid());
        qputenv("XDG_STATE_HOME", m_dir.filePath("state").toUtf8());
        qputenv("XDG_CACHE_HOME", m_dir.filePath("cache").toUtf8());
        qunsetenv("ZETTELFISCHER_PASSWORD");
    }

    void chosenContact_data() { books(); }
    // What this program chose or filed is what its edits overwrite: another program making
    // another contact current between the choice and the edit changes nothing.
    void chosenContact()
    {
        QFETCH(QString, kind);
        std::optional<Book> book = open(kind);
        if (!book)
            QSKIP("the server is not installed or did not start");
        dup::ContactDirectory& directory = *book->opened.directory;
        QVERIFY(!directory.current());

        const QString hans = file(*book, "Hans", "Meier", "hans@muster.de");
        QVERIFY(!hans.isEmpty());
        QCOMPARE(directory.current(),
                 (dup::Match{hans, "Hans Meier", "", "hans@muster.de", dup::Reason::EMail}));
        const QString eva = file(*book, "Eva", "Koch", "eva@muster.de");
        QCOMPARE(directory.current()->id, eva);

        // Filed last, then made current elsewhere: the edit still goes to the one filed.
        book->otherMakesCurrent(hans);
        QCOMPARE(directory.current()->id, eva);
        QVERIFY(edit(*book, "Koch AG"));
        QCOMPARE(book->valueOf(eva, FieldId::Firma), "Koch AG");
        QCOMPARE(book->valueOf(hans, FieldId::Firma), "");

        // Chosen, then made current elsewhere (as --update-duplicate pins its match).
        directory.setCurrent(hans);
        book->otherMakesCurrent(eva);
        QCOMPARE(directory.current()->id, hans);
        QVERIFY(edit(*book, "Meier GmbH"));
        QCOMPARE(book->valueOf(hans, FieldId::Firma), "Meier GmbH");
        QCOMPARE(book->valueOf(eva, FieldId::Firma), "Koch AG");

        // An id the book does not have is refused and changes no choice.
        QVERIFY_THROWS_EXCEPTION(act::ActError,
                                 directory.setCurrent(kind == "sqlite" ? "999" : "fehlt.vcf"));
        QVERIFY_THROWS_EXCEPTION(act::ActError, directory.setCurrent("kein/kontakt"));
        QCOMPARE(directory.current()->id, hans);

        // The chosen contact deleted elsewhere: the edit fails and writes nothing anywhere.
        book->otherDeletes(hans);
        QVERIFY(!directory.current());
        QString error;
        QVERIFY(!edit(*book, "Falsch GmbH", &error));
        QVERIFY2(error.contains("no longer exists"), qPrintable(error));
        QCOMPARE(book->count(), 1);
        QCOMPARE(book->valueOf(eva, FieldId::Firma), "Koch AG");
    }

    void lookups_data() { books(); }
    // find by identity and search by text, with the limit, in the book's order.
    void lookups()
    {
        QFETCH(QString, kind);
        std::optional<Book> book = open(kind);
        if (!book)
            QSKIP("the server is not installed or did not start");
        dup::ContactDirectory& directory = *book->opened.directory;
        QVERIFY(directory.find(byEmail("hans@muster.de")).isEmpty());
        const QString a = file(*book, "Hans", "Meier", "hans@muster.de");
        const QString b = file(*book, "Hanna", "Meier", "HANNA@muster.de");
        const QString c = file(*book, "Eva", "Koch", "eva@koch.de");
        QCOMPARE(idsOf(directory.find(byEmail("Hans@Muster.de"))), QStringList{a});
        QCOMPARE(directory.find(byEmail("hanna@muster.de")).value(0).email, "HANNA@muster.de");
        QStringList meier{a, b};
        std::sort(meier.begin(), meier.end(), [&](const QString& x, const QString& y) {
            return kind == "sqlite" ? x.toLongLong() < y.toLongLong() : x < y;
        });
        QCOMPARE(idsOf(directory.search("meier", 10)), meier);
        QCOMPARE(idsOf(directory.search("meier", 1)), meier.mid(0, 1));
        QCOMPARE(idsOf(directory.search("koch.de", 10)), QStringList{c});
        QVERIFY(directory.search("", 10).isEmpty());
        QVERIFY(directory.search("Schulz", 10).isEmpty());
    }

    void cardIndex_data()
    {
        QTest::addColumn<QString>("kind");
        QTest::newRow("radicale") << "radicale";
        QTest::newRow("xandikos") << "xandikos";
    }
    // Another client adds, changes and deletes cards: each lookup sees it, in this process
    // and in the next one, which starts from the cache file.
    void cardIndex()
    {
        QFETCH(QString, kind);
        const QString cacheHome = m_dir.filePath("cache-" + kind);
        qputenv("XDG_CACHE_HOME", cacheHome.toUtf8());
        std::optional<Book> book = open(kind);
        if (!book)
            QSKIP("the server is not installed or did not start");
        dup::ContactDirectory& directory = *book->opened.directory;
        const QString hans = file(*book, "Hans", "Meier", "hans@muster.de");
        QCOMPARE(idsOf(directory.find(byEmail("hans@muster.de"))), QStringList{hans});

        DavServer* dav = server(kind);
        const auto other = davBook(dav->book());
        QVERIFY(other->index().syncs()); // both servers answer sync-collection
        carddav::AddressBook& otherBook = other->book();
        const carddav::CardRef eva = otherBook.create({{idOf(FieldId::Vorname), "Eva", {}},
                                                       {idOf(FieldId::Nachname), "Koch", {}},
                                                       {idOf(FieldId::EMail), "eva@koch.de", {}},
                                                       {idOf(FieldId::Mobil), "0171 2345678", {}}});
        const QString evaId = contactIdOf(eva.url);
        QCOMPARE(idsOf(directory.find(byEmail("eva@koch.de"))), QStringList{evaId});
        QCOMPARE(idsOf(directory.search("+49 171 2345678", 10)), QStringList{evaId});

        otherBook.update(eva.url, {{idOf(FieldId::EMail), "eva.neu@koch.de", {}}});
        QVERIFY(directory.find(byEmail("eva@koch.de")).isEmpty());
        QCOMPARE(idsOf(directory.find(byEmail("eva.neu@koch.de"))), QStringList{evaId});

        // The next run starts from the cache file and still hears of what changed since.
        const QDir cache(cacheHome + "/zettelfischer/carddav");
        QCOMPARE(cache.entryList(QDir::Files).size(), 1);
        otherBook.client().send("DELETE", eva.url);
        const OpenedBook next =
            openBook({withPassword(dav->book()).toString(), {}, std::chrono::seconds(10)}, nullptr);
        QVERIFY(next.directory->find(byEmail("eva.neu@koch.de")).isEmpty());
        QCOMPARE(idsOf(next.directory->find(byEmail("hans@muster.de"))), QStringList{hans});
        QVERIFY(directory.search("Koch", 10).isEmpty());

        // A card changed after the last lookup: the edit reads it afresh and keeps the change.
        QCOMPARE(idsOf(directory.search("Meier", 10)), QStringList{hans});
        otherBook.update(other->cardUrl(hans), {{idOf(FieldId::Telefon), "089 123456", {}}});
        QVERIFY(edit(*book, "Meier GmbH"));
        QCOMPARE(book->valueOf(hans, FieldId::Telefon), "089 123456");
        QCOMPARE(book->valueOf(hans, FieldId::Firma), "Meier GmbH");
        QCOMPARE(idsOf(directory.search("Meier GmbH", 10)), QStringList{hans});
    }

    // A book replaced by a new one at the same address: its old sync token is refused and the
    // index starts over instead of keeping cards that are gone.
    void replacedBook()
    {
        DavServer* dav = server("radicale");
        if (!dav)
            QSKIP("radicale is not installed or did not start");
        std::optional<Book> book = open("radicale");
        const QString hans = file(*book, "Hans", "Meier", "hans@muster.de");
        QCOMPARE(idsOf(book->opened.directory->find(byEmail("hans@muster.de"))), QStringList{hans});

        QDir stored(dav->storedBook());
        QVERIFY(stored.removeRecursively());
        QVERIFY(QDir().mkpath(dav->storedBook()));
        QFile props(stored.filePath(".Radicale.props"));
        QVERIFY(props.open(QIODevice::WriteOnly));
        props.write(R"({"tag": "VADDRESSBOOK", "D:displayname": "Kontakte"})");
        props.close();
        QVERIFY(book->opened.directory->find(byEmail("hans@muster.de")).isEmpty());
        const QString eva = file(*book, "Eva", "Koch", "eva@koch.de");
        QCOMPARE(idsOf(book->opened.directory->search("Koch", 10)), QStringList{eva});
    }
};

QTEST_GUILESS_MAIN(TestDirectory)
#include "tst_directory.moc"
