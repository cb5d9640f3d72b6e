// Which book a location names, the [Kontakte] settings, and the CardDAV book behind the
// automation interface as the window drives it (ContactLink), against a real Xandikos.

#include "act/recorder.h"
#include "books/books.h"
#include "books/davbook.h"
#include "carddav/davservers.h"
#include "settings/settings.h"

#include "filledsession.h"

#include <QtTest>

using namespace zf;
using namespace zf::books;
using davtest::DavServer;
using zf::test::fill;

namespace {

} // namespace

class TestBooks : public QObject {
    Q_OBJECT

    std::unique_ptr<DavServer> m_server;
    QTemporaryDir m_state;

    std::shared_ptr<DavBook> davBook(const QUrl& url)
    {
        return std::make_shared<DavBook>(
            BookLocation{url.toString(), {}, std::chrono::seconds(5)},
            std::make_shared<credentials::Credentials>(credentials::AskFunction{}, std::nullopt));
    }

private slots:
    void initTestCase()
    {
        qputenv("XDG_STATE_HOME", m_state.path().toUtf8());
        qunsetenv("ZETTELFISCHER_PASSWORD");
    }

    void location_data()
    {
        QTest::addColumn<QString>("explicitLocation");
        QTest::addColumn<QString>("environment");
        QTest::addColumn<QString>("settings");
        QTest::addColumn<QString>("remembered");
        QTest::addColumn<QString>("expected");
        QTest::newRow("explicit first") << "/a.sqlite"
                                        << "/b.sqlite"
                                        << "http://c/"
                                        << "/d"
                                        << "/a.sqlite";
        QTest::newRow("then the environment") << ""
                                              << "https://b/"
                                              << "http://c/"
                                              << "/d"
                                              << "https://b/";
        QTest::newRow("then the settings") << ""
                                           << ""
                                           << "http://c/"
                                           << "/d"
                                           << "http://c/";
        QTest::newRow("then the window's") << ""
                                           << ""
                                           << ""
                                           << "/d"
                                           << "/d";
        QTest::newRow("else the default") << ""
                                          << ""
                                          << ""
                                          << "" << act::defaultContactBookPath();
    }
    void location()
    {
        QFETCH(QString, explicitLocation);
        QFETCH(QString, environment);
        QFETCH(QString, settings);
        QFETCH(QString, remembered);
        QFETCH(QString, expected);
        qputenv("ZETTELFISCHER_CONTACTS", environment.toUtf8());
        SharedState state;
        state.KontakteAdressbuch = settings;
        QCOMPARE(bookLocation(explicitLocation, state, {remembered, "ben", {}}).location, expected);
        qunsetenv("ZETTELFISCHER_CONTACTS");
    }

    void settingsKeys_data()
    {
        QTest::addColumn<QByteArray>("ini");
        QTest::addColumn<QString>("book");
        QTest::addColumn<QString>("user");
        QTest::addColumn<int>("timeout");
        QTest::newRow("all three") << QByteArray("[Kontakte]\r\nAdressbuch=https://dav.example.de/"
                                                 "\r\nBenutzer=anna\r\nTimeout=4\r\n")
                                   << "https://dav.example.de/"
                                   << "anna" << 4;
        QTest::newRow("no section") << QByteArray("[Config]\r\nCacheFelder=0\r\n") << ""
                                    << "" << 15;
        QTest::newRow("timeout not a number") << QByteArray("[Kontakte]\r\nTimeout=bald\r\n") << ""
                                              << "" << 15;
        QTest::newRow("timeout zero") << QByteArray("[Kontakte]\r\nTimeout=0\r\n") << ""
                                      << "" << 15;
    }
    void settingsKeys()
    {
        QFETCH(QByteArray, ini);
        QFETCH(QString, book);
        QFETCH(QString, user);
        QFETCH(int, timeout);
        QTemporaryDir dir;
        const QString path = dir.filePath("zettelfischer.ini");
        QFile f(path);
        QVERIFY(f.open(QIODevice::WriteOnly));
        f.write(ini);
        f.close();
        Session session;
        LoadSettings(path, session.state, session.rows);
        QCOMPARE(session.state.KontakteAdressbuch, book);
        QCOMPARE(session.state.KontakteBenutzer, user);
        QCOMPARE(session.state.KontakteTimeout, timeout);
        const BookLocation location = bookLocation("http://x/", session.state);
        QCOMPARE(location.timeout, std::chrono::milliseconds(timeout * 1000));
        QCOMPARE(location.user, user);
        QFile::remove(path);
        QVERIFY(!QFile::exists(path)); // the program never wrote it back
    }

    void kinds()
    {
        QVERIFY(isServerLocation("HTTPS://dav.example.de/"));
        QVERIFY(isServerLocation("http://anna@127.0.0.1:5232/"));
        QVERIFY(!isServerLocation("/home/anna/http://x"));
        QVERIFY(!isServerLocation("kontakte.sqlite"));
        QVERIFY(!isServerLocation("ftp://dav.example.de/"));
    }

    // A URL that reaches the file book (a program not yet choosing by location) is refused
    // rather than made into folders.
    void fileBookRefusesUrls()
    {
        QTemporaryDir dir;
        const QString before = QDir::currentPath();
        QDir::setCurrent(dir.path());
        try {
            act::ContactBook book("http://anna@127.0.0.1:5232/anna/kontakte/");
            QFAIL("opened");
        } catch (const act::BookError& e) {
            QCOMPARE(e.kind(), act::BookError::CannotOpen);
            QVERIFY(e.message().contains("CardDAV"));
        }
        QCOMPARE(QDir(dir.path()).entryList(QDir::NoDotAndDotDot | QDir::AllEntries),
                 QStringList());
        QDir::setCurrent(before);
    }

    // The window's path: field list, "Neu Anlegen", "Bearbeiten", through ContactLink.
    void transferThroughTheAutomationInterface()
    {
        if (DavServer::program(DavServer::Xandikos).isEmpty())
            QSKIP("xandikos is not installed");
        m_server = std::make_unique<DavServer>(DavServer::Xandikos);
        QVERIFY2(m_server->error().isEmpty(), qPrintable(m_server->error()));
        const auto book = davBook(m_server->root()); // discovery picks the one book
        QStringList written;
        book->setWritten([&](const QString& id) { written << id; });
        act::ContactLink link(makeDavBookFactory(book));
        act::test::Recorder recorder;

        // Edit before anything was filed: the edit's failure message, nothing written.
        Session none;
        fill(none, {{FieldId::Firma, "Muster GmbH"}});
        link.TransferContact(false, none, recorder.hooks());
        QVERIFY(recorder.calls.contains(act::test::EditFailed));
        QVERIFY(link.lastError().contains("no current contact"));
        QCOMPARE(book->book().list().size(), 0);

        Session session;
        fill(session, {{FieldId::Firma, "Muster GmbH"},
                       {FieldId::Vorname, "Hans"},
                       {FieldId::Nachname, "Meier"},
                       {FieldId::EMail, "hans@muster.de"}});
        session.state.ExtraDefinitionsLoaded = true;
        session.state.ExtraFieldValues = {{117, "K-4711"}, {-1, "übersprungen"}};
        recorder.calls.clear();
        link.TransferContact(true, session, recorder.hooks());
        QVERIFY2(recorder.calls.contains("prompt(1)"), qPrintable(recorder.calls.join(" ")));
        QCOMPARE(written.size(), 1);
        QCOMPARE(book->currentContact(), written.first());
        const QByteArray card = book->book().get(book->cardUrl(written.first())).data;
        QVERIFY(card.contains("FN:Hans Meier\r\n"));
        QVERIFY(card.contains("X-ZETTELFISCHER-FIELD-117"));
        QVERIFY(!card.contains("übersprungen"));

        // The field list now holds the user field the card uses.
        recorder.calls.clear();
        Session loaded;
        link.LoadFieldList(loaded, recorder.hooks());
        QVERIFY2(!recorder.calls.contains(act::test::FieldsFailed), qPrintable(link.lastError()));
        QCOMPARE(loaded.rows.fields().count(), 21);
        QVERIFY(loaded.rows.fields().positionOf(117) >= 0);
        QCOMPARE(loaded.rows.fields().nameAt(loaded.rows.fields().positionOf(117)), "Feld 117");

        // "Bearbeiten" writes into the same card; the other fields stay.
        Session edit;
        fill(edit, {{FieldId::Firma, "Muster AG"}});
        recorder.calls.clear();
        link.TransferContact(false, edit, recorder.hooks());
        QVERIFY2(recorder.calls.contains("prompt(0)"), qPrintable(link.lastError()));
        QCOMPARE(written.size(), 2);
        QCOMPARE(written.last(), written.first());
        const QList<act::BookValue> values =
            cardValues(book->book().get(book->cardUrl(written.first())).data);
        QVERIFY(values.contains(act::BookValue{idOf(FieldId::Firma), "Firma", "Muster AG"}));
        QVERIFY(values.contains(act::BookValue{idOf(FieldId::EMail), "eMail", "hans@muster.de"}));
    }

    // A server that is gone: the failure message, the rows stay, nothing remembered.
    void serverGone()
    {
        const quint16 port = davtest::freePort();
        const auto book = davBook(QUrl(QString("http://127.0.0.1:%1/book/").arg(port)));
        act::ContactLink link(makeDavBookFactory(book));
        act::test::Recorder recorder;
        Session session;
        fill(session, {{FieldId::Firma, "Muster GmbH"}});
        link.TransferContact(true, session, recorder.hooks());
        QVERIFY(recorder.calls.contains(act::test::CreateFailed));
        QVERIFY(link.lastError().contains("connection refused"));
        QCOMPARE(session.rows.value(0), "Muster GmbH");
        recorder.calls.clear();
        link.LoadFieldList(session, recorder.hooks());
        QVERIFY(recorder.calls.contains(act::test::FieldsFailed));
    }
};

QTEST_GUILESS_MAIN(TestBooks)
#include "tst_books.moc"
