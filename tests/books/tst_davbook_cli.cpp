// zettelfischer-cli with a CardDAV address book: a real Radicale with a password, a stopped
// and a silent server, and a real client (vdirsyncer, khard) reading what was written.

#include "books/carddav/davclient.h"
#include "carddav/davservers.h"

#include <QElapsedTimer>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QTcpServer>
#include <QTemporaryDir>
#include <QtTest>

#include <unistd.h>

#include <memory>

using davtest::DavServer;

namespace {

struct Run {
    int exitCode = -1;
    QByteArray out;
    QByteArray err;
    qint64 ms = 0;
    QJsonObject json() const { return QJsonDocument::fromJson(out).object(); }
};

// Without a controlling terminal (setsid), as from a script or a service; the keyring's bus
// is out of reach, so only the environment can give a password.
Run runCli(const QStringList& args, const QProcessEnvironment& extra = {})
{
    QProcess p;
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.remove("ZETTELFISCHER_CONTACTS");
    env.remove("ZETTELFISCHER_PASSWORD");
    env.insert("XDG_CONFIG_HOME", QDir::temp().filePath("zettelfischer-test-no-config"));
    env.insert("XDG_CONFIG_DIRS", QDir::temp().filePath("zettelfischer-test-no-config"));
    env.insert("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nonexistent/bus");
    env.insert(extra);
    p.setProcessEnvironment(env);
    p.setChildProcessModifier([] { ::setsid(); });
    QElapsedTimer clock;
    clock.start();
    p.start(ZF_CLI_PATH, args);
    p.closeWriteChannel();
    if (!p.waitForFinished(30000))
        p.kill();
    return {p.exitStatus() == QProcess::NormalExit ? p.exitCode() : -1, p.readAllStandardOutput(),
            p.readAllStandardError(), clock.elapsed()};
}

QString data(const char* name)
{
    return QStringLiteral(ZF_TEST_DATA "/") + QLatin1StringView(name);
}

QString fieldValue(const QJsonObject& contact, int id)
{
    for (const QJsonValue& f : contact.value("fields").toArray())
        if (f.toObject().value("id").toInt() == id)
            return f.toObject().value("value").toString();
    return {};
}

} // namespace

class TestDavBookCli : public QObject {
    Q_OBJECT

    std::unique_ptr<DavServer> m_server;
    QTemporaryDir m_state;
    QString m_book;

    QProcessEnvironment env(const QString& password = DavServer::password()) const
    {
        QProcessEnvironment e;
        e.insert("XDG_STATE_HOME", m_state.path());
        e.insert("XDG_CACHE_HOME", m_state.filePath("cache"));
        if (!password.isNull())
            e.insert("ZETTELFISCHER_PASSWORD", password);
        return e;
    }
    // The tests share one book and file the same texts again: not the duplicate check's case.
    Run transfer(const char* mode, const char* input, const QString& book)
    {
        QStringList args{"transfer", mode, "--contacts", book, "--file", data(input)};
        if (QByteArray(mode) == "--new")
            args << "--allow-duplicate";
        return runCli(args, env());
    }

private slots:
    void initTestCase()
    {
        if (DavServer::program(DavServer::Radicale).isEmpty())
            QSKIP("radicale is not installed");
        m_server = std::make_unique<DavServer>(DavServer::Radicale);
        QVERIFY2(m_server->error().isEmpty(), qPrintable(m_server->error()));
        m_book = QString("http://anna@127.0.0.1:%1/anna/kontakte/").arg(m_server->port());
    }

    // Filed new, shown, on the server's disk; then another client adds a note and a photo,
    // and "Bearbeiten" with another text changes the rows' fields and keeps both lines.
    void newThenEditKeepsOtherClientsLines()
    {
        const Run created = transfer("--new", "signature.txt", m_book);
        QVERIFY2(created.exitCode == 0, created.err.constData());
        const QJsonObject contact = created.json().value("contact").toObject();
        const QString id = contact.value("id").toString();
        QVERIFY(id.endsWith(".vcf"));
        QCOMPARE(fieldValue(contact, 25), "Holzbau Wallbrecht GmbH & Co. KG");

        const Run shown = runCli({"contacts", "show", id, "--contacts", m_book}, env());
        QCOMPARE(shown.exitCode, 0);
        QCOMPARE(shown.json().value("id").toString(), id);
        QCOMPARE(shown.json().value("current").toBool(), true);
        QCOMPARE(fieldValue(shown.json(), 26), "Kerstin Wallbrecht");
        QCOMPARE(fieldValue(shown.json(), 200), "k.wallbrecht@holzbau-wallbrecht.de");

        QFile stored(QDir(m_server->storedBook()).filePath(id));
        QVERIFY2(stored.open(QIODevice::ReadOnly), qPrintable(stored.fileName()));
        const QByteArray onDisk = stored.readAll();
        QVERIFY(onDisk.contains("VERSION:3.0"));
        QVERIFY(onDisk.contains("FN:Kerstin Wallbrecht"));

        // Another client adds its own lines.
        zf::carddav::DavClient other(DavServer::user(), DavServer::password());
        const QUrl card = QUrl(m_book).resolved(QUrl(id));
        const zf::carddav::DavResponse before = other.send("GET", card);
        const QByteArray note = "NOTE:Rückruf erbeten\\, bitte vormittags";
        const QByteArray photo = "PHOTO;ENCODING=b;TYPE=JPEG:/9j/4AAQSkZJRgABAQAAAQABAAD/2wBDAAgG"
                                 "BgcGBQgHBwcJCQgKDBQNDAsLDBkSEw8UHRofHh0aHBwgJC4nICIsIxwcKDcpLDA"
                                 "xNDQ0Hyc5PTgyPC4zNDL/";
        QByteArray changed = before.body;
        changed.replace("END:VCARD", note + "\r\n" + photo + "\r\nEND:VCARD");
        other.send("PUT", card, changed,
                   {{"Content-Type", "text/vcard"}, {"If-Match", before.etag}});

        QFile text(m_state.filePath("edit.txt"));
        QVERIFY(text.open(QIODevice::WriteOnly));
        text.write("Muster AG\r\nHerr Hans Meier\r\nMusterweg 12\r\n80331 München\r\n");
        text.close();
        const Run edited =
            runCli({"transfer", "--edit", "--contacts", m_book, "--file", text.fileName()}, env());
        QVERIFY2(edited.exitCode == 0, edited.err.constData());
        const QJsonObject after = edited.json().value("contact").toObject();
        QCOMPARE(after.value("id").toString(), id);
        QCOMPARE(fieldValue(after, 25), "Muster AG");
        QCOMPARE(fieldValue(after, 30), "München");
        // Fields the new text has no row for keep their values.
        QCOMPARE(fieldValue(after, 200), "k.wallbrecht@holzbau-wallbrecht.de");
        const QByteArray now = other.send("GET", card).body;
        QVERIFY2(now.contains(note + "\r\n"), now.constData());
        QVERIFY2(now.contains(photo + "\r\n"), now.constData());
        QVERIFY(!now.contains("ORG:Holzbau"));
    }

    void currentAndUnknownIds()
    {
        const Run first = transfer("--new", "signature.txt", m_book);
        const Run second = transfer("--new", "imprint.txt", m_book);
        QVERIFY(first.exitCode == 0 && second.exitCode == 0);
        const QString firstId = first.json().value("contact").toObject().value("id").toString();
        const QString secondId = second.json().value("contact").toObject().value("id").toString();

        Run current = runCli({"contacts", "current", "--contacts", m_book}, env());
        QVERIFY(current.out.startsWith(secondId.toUtf8() + "\t"));
        current = runCli({"contacts", "current", firstId, "--contacts", m_book}, env());
        QCOMPARE(current.exitCode, 0);
        const Run shown = runCli({"contacts", "show", "--contacts", m_book}, env());
        QCOMPARE(shown.json().value("id").toString(), firstId);
        const Run list = runCli({"contacts", "list", "--contacts", m_book}, env());
        QVERIFY(list.out.contains(firstId.toUtf8() + "\tKerstin Wallbrecht\tHolzbau Wallbrecht "
                                                     "GmbH & Co. KG\tcurrent\n"));
        QVERIFY(list.out.contains(secondId.toUtf8() + "\t"));

        const Run missing = runCli({"contacts", "show", "fehlt.vcf", "--contacts", m_book}, env());
        QCOMPARE(missing.exitCode, 1);
        QVERIFY(missing.err.contains("there is no contact fehlt.vcf"));
        const Run bad = runCli({"contacts", "show", "../x", "--contacts", m_book}, env());
        QCOMPARE(bad.exitCode, 2);

        const Run exported = runCli({"contacts", "export", firstId, "--contacts", m_book}, env());
        QVERIFY(exported.out.startsWith("BEGIN:VCARD\r\nVERSION:4.0\r\n"));
        QVERIFY(exported.out.contains("ORG:Holzbau Wallbrecht GmbH & Co. KG"));
        const Run fields = runCli({"contacts", "fields", "--contacts", m_book}, env());
        QVERIFY(fields.out.startsWith("25\tFirma\n"));
    }

    // A state folder that cannot be made: the contact is filed all the same, and only the
    // next run does not know it as the current one.
    void stateFolderUnwritable()
    {
        QProcessEnvironment e = env();
        e.insert("XDG_STATE_HOME", "/dev/null/state");
        const Run filed = runCli({"transfer", "--new", "--allow-duplicate", "--contacts", m_book,
                                  "--file", data("signature.txt")},
                                 e);
        QVERIFY2(filed.exitCode == 0, filed.err.constData());
        const QString id = filed.json().value("contact").toObject().value("id").toString();
        QVERIFY(QFile::exists(QDir(m_server->storedBook()).filePath(id)));
        const Run current = runCli({"contacts", "current", "--contacts", m_book}, e);
        QCOMPARE(current.exitCode, 1);
        QVERIFY(current.err.contains("no current contact"));
    }

    void booksFromTheServerRoot()
    {
        const QString root = QString("http://anna@127.0.0.1:%1/").arg(m_server->port());
        const Run books = runCli({"contacts", "books", "--contacts", root}, env());
        QCOMPARE(books.exitCode, 0);
        QCOMPARE(books.out,
                 QString("http://127.0.0.1:%1/anna/kontakte/\tKontakte\n").arg(m_server->port()));
        // A transfer to the server root files into the first book.
        const Run filed = transfer("--new", "signature.txt", root);
        QVERIFY2(filed.exitCode == 0, filed.err.constData());
        const QString id = filed.json().value("contact").toObject().value("id").toString();
        QVERIFY(QFile::exists(QDir(m_server->storedBook()).filePath(id)));
    }

    void loginFailures_data()
    {
        QTest::addColumn<QString>("password"); // null: none in the environment
        QTest::addColumn<QByteArray>("message");
        QTest::newRow("wrong password") << "falsch" << QByteArray("refused the password of anna");
        QTest::newRow("no password, no terminal")
            << QString() << QByteArray("no password for anna at 127.0.0.1:");
    }
    void loginFailures()
    {
        QFETCH(QString, password);
        QFETCH(QByteArray, message);
        const Run run =
            runCli({"transfer", "--new", "--contacts", m_book, "--file", data("signature.txt")},
                   env(password));
        QCOMPARE(run.exitCode, 1);
        QVERIFY2(run.err.contains(message), run.err.constData());
        QVERIFY(!run.err.contains("falsch"));
        QVERIFY(run.out.isEmpty());
    }

    // A stopped server, one that takes the connection and never answers, and one with a
    // certificate nobody trusts: exit 1 with the reason, within the timeout of the settings.
    void unreachable_data()
    {
        QTest::addColumn<QString>("server");
        QTest::addColumn<QByteArray>("message");
        QTest::newRow("stopped") << "stopped" << QByteArray("connection refused");
        QTest::newRow("silent") << "silent" << QByteArray("no answer within 1000 ms");
        QTest::newRow("untrusted certificate")
            << "tls" << QByteArray("the server's certificate is not trusted");
    }
    void unreachable()
    {
        QFETCH(QString, server);
        QFETCH(QByteArray, message);
        QTcpServer quiet;
        std::unique_ptr<DavServer> tls;
        QString url = "http://anna@127.0.0.1:%1/anna/kontakte/";
        quint16 port = 0;
        if (server == "silent") {
            QVERIFY(quiet.listen(QHostAddress::LocalHost));
            port = quiet.serverPort();
        } else if (server == "tls") {
            tls = std::make_unique<DavServer>(DavServer::Radicale, true);
            QVERIFY2(tls->error().isEmpty(), qPrintable(tls->error()));
            port = tls->port();
            url = "https://anna@127.0.0.1:%1/anna/kontakte/";
        } else {
            auto stopped = std::make_unique<DavServer>(DavServer::Radicale);
            QVERIFY(stopped->error().isEmpty());
            port = stopped->port();
        }
        QTemporaryDir dir;
        QFile ini(dir.filePath("zettelfischer.ini"));
        QVERIFY(ini.open(QIODevice::WriteOnly));
        ini.write("[Kontakte]\r\nTimeout=1\r\n");
        ini.close();
        const Run run = runCli({"transfer", "--new", "--ini", ini.fileName(), "--contacts",
                                url.arg(port), "--file", data("signature.txt")},
                               env());
        QCOMPARE(run.exitCode, 1);
        QVERIFY2(run.err.contains(message), run.err.constData());
        QVERIFY2(run.ms < 5000, qPrintable(QString::number(run.ms)));
        QVERIFY(run.out.isEmpty());
    }

    // The duplicate check against a server book: refused with exit 3 and nothing written,
    // filed into the one match with --update-duplicate.
    void duplicateOnServer()
    {
        if (DavServer::program(DavServer::Xandikos).isEmpty())
            QSKIP("xandikos is not installed");
        const DavServer server(DavServer::Xandikos);
        QVERIFY2(server.error().isEmpty(), qPrintable(server.error()));
        const QString book = server.book().toString();
        QTemporaryDir dir;
        const auto file = [&dir](const QByteArray& text) {
            const QString path = dir.filePath(QString::number(qHash(text)) + ".txt");
            QFile f(path);
            f.open(QIODevice::WriteOnly);
            f.write(text);
            return path;
        };
        const QByteArray lena = "Vogt Design\nLena Vogt\nMobil: 0170 2223334\nlena@vogt.de\n";
        const auto create = [&](const QByteArray& text, const QStringList& extra = {}) {
            return runCli(
                QStringList{"transfer", "--new", "--contacts", book, "--file", file(text)} + extra,
                env());
        };
        const auto cards = [&] {
            return runCli({"contacts", "list", "--contacts", book}, env()).out.count('\n');
        };
        const Run first = create(lena);
        QVERIFY2(first.exitCode == 0, first.err.constData());
        const QString id = first.json().value("contact").toObject().value("id").toString();
        QCOMPARE(create("Kern AG\nMax Kern\nmax@kern.de\n").exitCode, 0);

        const Run refused = create(QByteArray(lena).replace("Lena Vogt", "L. Vogt"));
        QCOMPARE(refused.exitCode, 3);
        const QJsonArray duplicates = refused.json().value("duplicates").toArray();
        QCOMPARE(duplicates.size(), 1);
        QCOMPARE(duplicates[0].toObject().value("id").toString(), id);
        QCOMPARE(duplicates[0].toObject().value("reason").toString(), "email");
        QCOMPARE(cards(), 2);
        const Run found = runCli({"contacts", "find", "0170 222", "--contacts", book}, env());
        QCOMPARE(found.exitCode, 0);
        const QJsonArray matches = found.json().value("matches").toArray();
        QCOMPARE(matches.size(), 1);
        QCOMPARE(matches[0].toObject().value("id").toString(), id);
        // The mobile number alone, written another way.
        QCOMPARE(create("Lena V.\nMobil: 0170/222 33 34\n").exitCode, 3);

        const Run updated = create(lena + "Tel: 030 123456\n", {"--update-duplicate"});
        QVERIFY2(updated.exitCode == 0, updated.err.constData());
        QCOMPARE(updated.json().value("contact").toObject().value("id").toString(), id);
        QVERIFY(fieldValue(updated.json().value("contact").toObject(), 35).endsWith("123456"));
        QCOMPARE(cards(), 2);
    }

    // What was written, read by real clients: vdirsyncer copies the book, khard shows it.
    void readByRealClient()
    {
        const QString vdirsyncer = QStandardPaths::findExecutable("vdirsyncer");
        const QString khard = QStandardPaths::findExecutable("khard");
        if (vdirsyncer.isEmpty() || khard.isEmpty())
            QSKIP("vdirsyncer or khard is not installed");
        // Xandikos without a login: vdirsyncer sends passwords as Latin-1 only, and the
        // fixture's has an emoji.
        if (DavServer::program(DavServer::Xandikos).isEmpty())
            QSKIP("xandikos is not installed");
        const DavServer server(DavServer::Xandikos);
        QVERIFY2(server.error().isEmpty(), qPrintable(server.error()));
        const Run filed = transfer("--new", "signature.txt", server.book().toString());
        QVERIFY2(filed.exitCode == 0, filed.err.constData());
        const QString uid =
            filed.json().value("contact").toObject().value("id").toString().chopped(4);

        QTemporaryDir dir;
        QDir().mkpath(dir.filePath("cards"));
        QFile config(dir.filePath("vdirsyncer.conf"));
        QVERIFY(config.open(QIODevice::WriteOnly));
        config.write(QString("[general]\nstatus_path = \"%1/status/\"\n"
                             "[pair book]\na = \"server\"\nb = \"folder\"\ncollections = null\n"
                             "[storage server]\ntype = \"carddav\"\nurl = \"%2\"\n"
                             "[storage folder]\ntype = \"filesystem\"\npath = \"%1/cards/\"\n"
                             "fileext = \".vcf\"\n")
                         .arg(dir.path(), server.book().toString())
                         .toUtf8());
        config.close();
        QFile khardConfig(dir.filePath("khard.conf"));
        QVERIFY(khardConfig.open(QIODevice::WriteOnly));
        khardConfig.write(QString("[addressbooks]\n[[kontakte]]\npath = %1/cards/\n"
                                  "[general]\ndefault_action = list\neditor = true\n"
                                  "merge_editor = true\n")
                              .arg(dir.path())
                              .toUtf8());
        khardConfig.close();

        QProcess sync;
        sync.setProcessChannelMode(QProcess::MergedChannels);
        sync.start(vdirsyncer, {"-c", config.fileName(), "discover"});
        sync.write("y\ny\n");
        sync.closeWriteChannel();
        QVERIFY(sync.waitForFinished(30000));
        sync.start(vdirsyncer, {"-c", config.fileName(), "sync"});
        QVERIFY(sync.waitForFinished(30000));
        QVERIFY2(sync.exitCode() == 0, sync.readAll().constData());

        QProcess show;
        show.setProcessChannelMode(QProcess::MergedChannels);
        show.start(khard, {"-c", khardConfig.fileName(), "show", "--format", "yaml", "uid:" + uid});
        QVERIFY(show.waitForFinished(30000));
        const QString shown = QString::fromUtf8(show.readAll());
        QVERIFY2(show.exitCode() == 0, qPrintable(shown));
        for (const char* line :
             {"Formatted name: Kerstin Wallbrecht\n", "  -   - Holzbau Wallbrecht GmbH & Co. KG\n",
              "    cell: '01714455667'\n", "    fax: (0)77615512-99\n",
              "    internet: k.wallbrecht@holzbau-wallbrecht.de\n", "        Code: '79713'\n",
              "        City: Bad Säckingen\n", "          - Sägewerkstraße 7\n",
              "Webpage: www.holzbau-wallbrecht.de\n"})
            QVERIFY2(shown.contains(QString::fromUtf8(line)), qPrintable(shown));
    }
};

QTEST_GUILESS_MAIN(TestDavBookCli)
#include "tst_davbook_cli.moc"
