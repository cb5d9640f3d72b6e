// The CardDAV book against real servers (Radicale with a bcrypt password, Xandikos without),
// and against sockets that refuse, redirect or never answer.

#include "books/carddav/addressbook.h"

#include "analysis/fields.h"
#include "davservers.h"

#include <QElapsedTimer>
#include <QtTest>

using namespace zf;
using namespace zf::carddav;
using davtest::DavServer;

namespace {

// A local socket that answers every request with one canned reply, or never.
class CannedServer : public QObject {
public:
    explicit CannedServer(QByteArray reply = {}) : m_reply(std::move(reply))
    {
        m_server.listen(QHostAddress::LocalHost, 0);
        QObject::connect(&m_server, &QTcpServer::newConnection, this, [this] {
            while (QTcpSocket* socket = m_server.nextPendingConnection()) {
                QObject::connect(socket, &QTcpSocket::readyRead, socket, [this, socket] {
                    socket->readAll();
                    if (!m_reply.isEmpty())
                        socket->write(m_reply);
                });
            }
        });
    }
    QUrl root() const
    {
        return QUrl(QStringLiteral("http://127.0.0.1:%1/").arg(m_server.serverPort()));
    }

private:
    QTcpServer m_server;
    QByteArray m_reply;
};

QByteArray redirectTo(const QString& location)
{
    return "HTTP/1.1 301 Moved Permanently\r\nLocation: " + location.toUtf8() +
           "\r\nContent-Length: 0\r\n\r\n";
}

qint32 id(FieldId f)
{
    return idOf(f);
}

// Every physical line of a card ends with CRLF, holds no other CR and, where we wrote it, at
// most 75 octets.
void checkFrame(const QByteArray& card, bool folded = true)
{
    QVERIFY2(card.endsWith("\r\n"), card);
    for (const QByteArray& line : card.chopped(1).split('\n')) {
        QVERIFY2(line.endsWith('\r'), line);
        QVERIFY2(!line.chopped(1).contains('\r'), line);
        QVERIFY2(!folded || line.size() - 1 <= 75, line);
    }
}

} // namespace

class TestCardDav : public QObject {
    Q_OBJECT

    std::unique_ptr<DavServer> m_radicale;
    std::unique_ptr<DavServer> m_xandikos;

    DavServer& server(const QString& name)
    {
        return name == "radicale" ? *m_radicale : *m_xandikos;
    }
    std::shared_ptr<DavClient> client(const DavServer& s)
    {
        return s.needsPassword() ? std::make_shared<DavClient>(s.user(), s.password())
                                 : std::make_shared<DavClient>();
    }
    AddressBook book(const DavServer& s) { return AddressBook(client(s), s.book()); }
    void serverColumn()
    {
        QTest::addColumn<QString>("name");
        if (m_radicale)
            QTest::newRow("radicale") << "radicale";
        if (m_xandikos)
            QTest::newRow("xandikos") << "xandikos";
    }
    void putRaw(const DavServer& s, const QUrl& url, const QByteArray& card)
    {
        client(s)->send("PUT", url, card, {{"Content-Type", "text/vcard; charset=utf-8"}});
    }

private slots:
    void initTestCase()
    {
        for (auto kind : {DavServer::Radicale, DavServer::Xandikos}) {
            if (DavServer::program(kind).isEmpty())
                continue;
            auto s = std::make_unique<DavServer>(kind);
            QVERIFY2(s->error().isEmpty(), qPrintable(s->error()));
            (kind == DavServer::Radicale ? m_radicale : m_xandikos) = std::move(s);
        }
        if (!m_radicale && !m_xandikos)
            QSKIP("neither radicale nor xandikos is installed (scripts/install-deps)");
    }

    void discoveryFromServerRoot_data() { serverColumn(); }
    void discoveryFromServerRoot()
    {
        QFETCH(QString, name);
        const DavServer& s = server(name);
        // /.well-known/carddav redirects (301 or 302), then principal and home set.
        const QList<AddressBookInfo> books = client(s)->addressBooks(s.root());
        QCOMPARE(books.size(), 1);
        QVERIFY2(sameResource(books[0].url, s.book()), qPrintable(books[0].url.toString()));
        QCOMPARE(books[0].name, s.bookName());
        // A book URL names itself; the user may sit in the URL.
        QUrl withUser = s.book();
        withUser.setUserName(s.user());
        const auto c = s.needsPassword() ? std::make_shared<DavClient>(QString(), s.password())
                                         : std::make_shared<DavClient>();
        QVERIFY(sameResource(c->resolve(withUser).url, s.book()));
    }

    void redirects_data()
    {
        QTest::addColumn<QString>("location");
        QTest::addColumn<bool>("followed");
        QTest::newRow("to the real server") << "http://127.0.0.1:%1/" << true;
        QTest::newRow("to another scheme") << "ftp://127.0.0.1:%1/" << false;
    }
    void redirects()
    {
        QFETCH(QString, location);
        QFETCH(bool, followed);
        if (!m_xandikos)
            QSKIP("xandikos is not installed");
        const QUrl target = QUrl(location.arg(m_xandikos->port()));
        CannedServer redirector(redirectTo(target.toString()));
        const QUrl start = redirector.root();
        DavClient c;
        c.setTimeout(std::chrono::seconds(5));
        if (followed) {
            QVERIFY(sameResource(c.resolve(start).url, m_xandikos->book()));
            return;
        }
        try {
            c.addressBooks(start);
            QFAIL("the redirect was followed");
        } catch (const DavError& e) {
            QCOMPARE(e.kind(), DavError::Redirect);
            QVERIFY2(e.message().contains("ftp://"), qPrintable(e.message()));
        }
    }

    void createThenRead_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QList<FieldValue>>("values");
        const QList<std::pair<const char*, QList<FieldValue>>> rows{
            {"plain",
             {{id(FieldId::Firma), "Muster GmbH", {}},
              {id(FieldId::Vorname), "Max", {}},
              {id(FieldId::Nachname), "Muster", {}},
              {id(FieldId::Adresse), "Hauptstr. 1", {}},
              {id(FieldId::Plz), "10115", {}},
              {id(FieldId::Ort), "Berlin", {}},
              {id(FieldId::Telefon), "+49 30 1234", {}},
              {id(FieldId::Telefon2), "+49 30 5678", {}},
              {id(FieldId::Mobil), "+49 170 1", {}},
              {id(FieldId::EMail), "max@example.org", {}},
              {id(FieldId::Website), "https://example.org/?a=1;b=2,3", {}}}},
            {"quotes, separators, backslash",
             {{id(FieldId::Kontakt), "Max \"Der Hammer\" Muster", {}},
              {id(FieldId::Firma), "A; B, C \\ D", {}},
              {id(FieldId::Abteilung), "x;y", {}}}},
            {"CRLF injection",
             {{id(FieldId::Kontakt), "Max\r\nEND:VCARD\r\nBEGIN:VCARD\r\nFN:Böse", {}},
              {id(FieldId::Titel), "a\rb\nc", {}}}},
            {"XML specials",
             {{id(FieldId::Kontakt), "<d:href>&amp;</d:href> ]]> <!--", {}},
              {id(FieldId::Ort), "&lt;", {}}}},
            {"non-ASCII, folded",
             {{id(FieldId::Kontakt), QString("Ærøskøbing 東京 😀 ").repeated(8), {}},
              {id(FieldId::Land), "Österreich", {}}}},
            {"user fields",
             {{id(FieldId::Kontakt), "X", {}},
              {117, "K-4711", {}},
              {300, "wert; mit\r\nUmbruch", "Kunden \"Nr.\" ^"}}},
        };
        for (const QString& server : {QString("radicale"), QString("xandikos")})
            if (server == "radicale" ? bool(m_radicale) : bool(m_xandikos))
                for (const auto& [row, values] : rows)
                    QTest::addRow("%s: %s", qPrintable(server), row) << server << values;
    }
    void createThenRead()
    {
        QFETCH(QString, name);
        QFETCH(QList<FieldValue>, values);
        AddressBook b = book(server(name));
        const CardRef ref = b.create(values);
        const Card card = b.get(ref.url);
        checkFrame(card.data);
        const VCard parsed = VCard::parse(card.data);
        QCOMPARE(ref.url.fileName(), parsed.uid() + ".vcf");
        QVERIFY(card.data.contains("\r\nVERSION:3.0\r\n"));
        for (const char* required : {"\r\nUID:", "\r\nN:", "\r\nFN:", "\r\nREV:"})
            QVERIFY2(card.data.contains(required), required);
        QCOMPARE(card.data.count("BEGIN:VCARD\r\n"), 1);
        for (const FieldValue& v : values)
            QCOMPARE(parsed.field(v.fieldId),
                     QString(v.value).replace("\r\n", "\n").replace('\r', '\n'));
        // The same values again give a second card, not an overwrite.
        QVERIFY(b.create(values).url != ref.url);
    }

    void editKeepsForeignProperties_data() { serverColumn(); }
    void editKeepsForeignProperties()
    {
        QFETCH(QString, name);
        const DavServer& s = server(name);
        AddressBook b = book(s);
        const QByteArray foreign =
            "BEGIN:VCARD\r\n"
            "VERSION:3.0\r\n"
            "UID:fremd-" +
            name.toUtf8() +
            "\r\n"
            "N:Muster;Erika;;;\r\n"
            "FN:Erika Muster\r\n"
            "TEL;TYPE=CELL:+49 170 2\r\n"
            "item1.TEL;type=pref:+49 30 9\r\n"
            "item1.X-ABLabel:Zentrale\r\n"
            "EMAIL;TYPE=INTERNET:alt@example.org\r\n"
            "NOTE:Eine lange Notiz\\, die über mehr als fünfundsiebzig Oktette g\r\n"
            " eht und daher gefaltet ist.\r\n"
            "PHOTO;ENCODING=b;TYPE=JPEG:/9j/4AAQSkZJRgABAQAAAQABAAD/2wBDAAgGBgcGBQgHBwcJ\r\n"
            " CQgKDBQNDAsLDBkSEw8UHRofHh0aHBwgJC4nICIsIxwcKDcpLDAxNDQ0Hyc5PTgyPC==\r\n"
            "CATEGORIES:Kunden,Berlin\r\n"
            "X-FOO;param=x:wert\r\n"
            "END:VCARD\r\n";
        const QUrl url = s.book().resolved(QUrl("fremd.vcf"));
        putRaw(s, url, foreign);
        const QByteArray stored = b.get(url).data;

        b.update(url, {{id(FieldId::Firma), "Neu AG", {}},
                       {id(FieldId::Vorname), "Eva", {}},
                       {id(FieldId::Telefon), "+49 30 1", {}},
                       {id(FieldId::EMail), "neu@example.org", {}}});
        const QByteArray updated = b.get(url).data;
        checkFrame(updated, false); // Radicale stores long lines unfolded
        // Everything the rows did not touch is still there as the server had it.
        for (const QByteArray& line : VCard::parse(stored).toBytes().split('\n')) {
            if (line.startsWith("N:") || line.startsWith("EMAIL") || line.startsWith("REV:"))
                continue;
            QVERIFY2(updated.contains(line + '\n'), line);
        }
        const VCard card = VCard::parse(updated);
        QCOMPARE(card.field(id(FieldId::Vorname)), QString("Eva"));
        QCOMPARE(card.field(id(FieldId::Nachname)), QString("Muster"));
        QCOMPARE(card.field(id(FieldId::Firma)), QString("Neu AG"));
        QCOMPARE(card.field(id(FieldId::Telefon)), QString("+49 30 1"));
        QCOMPARE(card.field(id(FieldId::EMail)), QString("neu@example.org"));
        QCOMPARE(card.field(id(FieldId::Kontakt)), QString("Erika Muster"));
        QVERIFY(updated.contains("\r\nREV:"));
    }

    void concurrentChange_data() { serverColumn(); }
    void concurrentChange()
    {
        QFETCH(QString, name);
        const DavServer& s = server(name);
        AddressBook b = book(s);
        const CardRef ref = b.create({{id(FieldId::Nachname), "Alt", {}}});
        const Card seen = b.get(ref.url);

        // Another client writes between our read and our write: 412, read again, merge.
        putRaw(s, ref.url,
               QByteArray(seen.data).replace("END:VCARD", "NOTE:von dort\r\nEND:VCARD"));
        b.update(ref.url, {{id(FieldId::Vorname), "Neu", {}}}, seen);
        VCard merged = VCard::parse(b.get(ref.url).data);
        QCOMPARE(merged.field(id(FieldId::Vorname)), QString("Neu"));
        QVERIFY(b.get(ref.url).data.contains("\r\nNOTE:von dort\r\n"));

        // A change before each of our two writes: the second 412 is the caller's.
        int writes = 0;
        b.setBeforeWrite([&](const QUrl& url) {
            ++writes;
            const Card now = b.get(url);
            putRaw(s, url, QByteArray(now.data).replace("END:VCARD", "NOTE:x\r\nEND:VCARD"));
        });
        try {
            b.update(ref.url, {{id(FieldId::Vorname), "Zweiter", {}}});
            QFAIL("no error after two concurrent changes");
        } catch (const DavError& e) {
            QCOMPARE(e.kind(), DavError::PreconditionFailed);
            QCOMPARE(e.status(), 412);
        }
        QCOMPARE(writes, 2);
    }

    void existingNameIsNotOverwritten_data() { serverColumn(); }
    void existingNameIsNotOverwritten()
    {
        QFETCH(QString, name);
        const DavServer& s = server(name);
        AddressBook b = book(s);
        const CardRef ref = b.create({{id(FieldId::Nachname), "Eins", {}}});
        const QByteArray before = b.get(ref.url).data;
        try {
            client(s)->send("PUT", ref.url, before, {{"If-None-Match", "*"}});
            QFAIL("an existing card was overwritten");
        } catch (const DavError& e) {
            QCOMPARE(e.kind(), DavError::PreconditionFailed);
        }
    }

    void fieldsOfTheBook()
    {
        if (!m_xandikos)
            QSKIP("xandikos is not installed");
        // A book of its own, so that other tests' cards do not count.
        DavClient mk;
        const QUrl url = m_xandikos->book().resolved(QUrl("../felder/"));
        mk.send("MKCOL", url,
                "<?xml version=\"1.0\"?><d:mkcol xmlns:d=\"DAV:\" "
                "xmlns:c=\"urn:ietf:params:xml:ns:carddav\"><d:set><d:prop><d:resourcetype>"
                "<d:collection/><c:addressbook/></d:resourcetype></d:prop></d:set></d:mkcol>",
                {{"Content-Type", "application/xml"}});
        AddressBook b(std::make_shared<DavClient>(), url);
        QCOMPARE(b.fields().size(), 20);
        b.create({{300, "a", "Kunden-Nr."}, {117, "b", {}}});
        b.create({{300, "c", {}}, {id(FieldId::Firma), "d", {}}});
        const QList<BookField> fields = b.fields();
        QCOMPARE(fields.size(), 22);
        QCOMPARE(fields[0], (BookField{id(FieldId::Firma), "Firma"}));
        QCOMPARE(fields.mid(20), (QList<BookField>{{117, ""}, {300, "Kunden-Nr."}}));
    }

    void failures_data()
    {
        QTest::addColumn<QString>("situation");
        QTest::addColumn<int>("kind");
        QTest::newRow("wrong password (radicale)") << "password" << int(DavError::Unauthorized);
        QTest::newRow("no such card (radicale)") << "404 radicale" << int(DavError::NotFound);
        QTest::newRow("no such card (xandikos)") << "404 xandikos" << int(DavError::NotFound);
        QTest::newRow("no such path (xandikos)") << "no book" << int(DavError::NotFound);
        QTest::newRow("connection refused") << "refused" << int(DavError::ConnectionRefused);
        QTest::newRow("never answers") << "silent" << int(DavError::Timeout);
        QTest::newRow("not multistatus") << "html" << int(DavError::Protocol);
        QTest::newRow("untrusted certificate") << "tls" << int(DavError::Tls);
    }
    void failures()
    {
        QFETCH(QString, situation);
        QFETCH(int, kind);
        if ((situation.contains("radicale") || situation == "password" || situation == "tls") &&
            !m_radicale)
            QSKIP("radicale is not installed");
        if ((situation.contains("xandikos") || situation == "no book") && !m_xandikos)
            QSKIP("xandikos is not installed");
        CannedServer silent;
        CannedServer html("HTTP/1.1 200 OK\r\nContent-Type: text/html\r\nContent-Length: 5\r\n\r\n"
                          "<p/>\n");
        std::unique_ptr<DavServer> tlsServer;
        QElapsedTimer clock;
        clock.start();
        try {
            if (situation == "password") {
                DavClient c(DavServer::user(), "falsch");
                c.addressBooks(m_radicale->root());
            } else if (situation.startsWith("404")) {
                const DavServer& s = server(situation.mid(4));
                book(s).get(s.book().resolved(QUrl("gibt-es-nicht.vcf")));
            } else if (situation == "no book") {
                DavClient().addressBooks(m_xandikos->root().resolved(QUrl("/nichts/")));
            } else if (situation == "refused") {
                DavClient().addressBooks(
                    QUrl(QString("http://127.0.0.1:%1/").arg(davtest::freePort())));
            } else if (situation == "silent") {
                DavClient c;
                c.setTimeout(std::chrono::milliseconds(300));
                c.addressBooks(silent.root());
            } else if (situation == "html") {
                DavClient().addressBooks(html.root().resolved(QUrl("/dav/")));
            } else if (situation == "tls") {
                tlsServer = std::make_unique<DavServer>(DavServer::Radicale, true);
                QVERIFY2(tlsServer->error().isEmpty(), qPrintable(tlsServer->error()));
                DavClient(DavServer::user(), DavServer::password())
                    .addressBooks(tlsServer->root("https"));
            }
            QFAIL("no error");
        } catch (const DavError& e) {
            QVERIFY2(e.kind() == kind, qPrintable(e.message()));
            QVERIFY(!e.message().isEmpty());
            QVERIFY2(!e.message().contains(DavServer::password()), qPrintable(e.message()));
        }
        QVERIFY2(clock.elapsed() < 20000, "a failure took too long");
    }
};

QTEST_GUILESS_MAIN(TestCardDav)
#include "tst_carddav.moc"
