// zettelfischer-cli contacts and transfer against a book in a temporary folder, and the
// book's safety with real processes: several at once, killed half-way, a book that must not
// be written.

#include <QCryptographicHash>
#include <QElapsedTimer>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRandomGenerator>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>

#include "clirun.h"

#include <sqlite3.h>
#include <unistd.h>

#include <memory>
#include <vector>

namespace {

const QByteArray Signature = "Beispiel GmbH\nMax Muster\nHauptstr. 5\n1010 Wien\n"
                             "Tel: 01 234567\nmax@example.at\n";

// A signature whose company, name, phone and e-mail all carry the tag "W<w>N<n>".
QByteArray taggedSignature(int w, int n)
{
    return QString("Firma W%1N%2 GmbH\nAnna Wn%1x%2\nHauptstr. 17\n10115 Berlin\n"
                   "Tel: 0%3 %4\nanna.w%1n%2@example.de\n")
        .arg(w)
        .arg(n)
        .arg(w, 2, 10, QChar('0'))
        .arg(n, 5, 10, QChar('0'))
        .toUtf8();
}

// The tag a value of a tagged signature carries, "" for an untagged value.
QString tagOf(int fieldId, const QString& value)
{
    static const QMap<int, QRegularExpression> patterns{
        {25, QRegularExpression("^Firma W(\\d+)N(\\d+) GmbH$")},
        {26, QRegularExpression("^Anna Wn(\\d+)x(\\d+)$")},
        {35, QRegularExpression("^0(\\d\\d)(\\d{5})$")},
        {200, QRegularExpression("^anna\\.w(\\d+)n(\\d+)@example\\.de$")},
    };
    if (!patterns.contains(fieldId))
        return {};
    const QRegularExpressionMatch m = patterns[fieldId].match(value);
    return m.hasMatch() ? QString("W%1N%2").arg(m.captured(1).toInt()).arg(m.captured(2).toInt())
                        : QString();
}

// Every contact of the book: field id -> value, read past the program.
QMap<qint64, QMap<int, QString>> bookContents(const QString& path, QString* integrity = nullptr)
{
    QMap<qint64, QMap<int, QString>> out;
    sqlite3* db = nullptr;
    if (sqlite3_open_v2(QFile::encodeName(path).constData(), &db, SQLITE_OPEN_READONLY, nullptr) ==
        SQLITE_OK) {
        sqlite3_stmt* st = nullptr;
        sqlite3_prepare_v2(db, "SELECT id FROM contacts", -1, &st, nullptr);
        while (sqlite3_step(st) == SQLITE_ROW)
            out[sqlite3_column_int64(st, 0)];
        sqlite3_finalize(st);
        sqlite3_prepare_v2(db, "SELECT contact_id, field_id, value FROM contact_values", -1, &st,
                           nullptr);
        while (sqlite3_step(st) == SQLITE_ROW)
            out[sqlite3_column_int64(st, 0)].insert(
                sqlite3_column_int(st, 1),
                QString::fromUtf8(reinterpret_cast<const char*>(sqlite3_column_text(st, 2))));
        sqlite3_finalize(st);
        if (integrity) {
            QStringList lines;
            sqlite3_prepare_v2(db, "PRAGMA integrity_check", -1, &st, nullptr);
            while (sqlite3_step(st) == SQLITE_ROW)
                lines << reinterpret_cast<const char*>(sqlite3_column_text(st, 0));
            sqlite3_finalize(st);
            *integrity = lines.join("; ");
        }
    }
    sqlite3_close(db);
    return out;
}

// The one tag all values of a contact carry; "" when none, "mixed" when more than one.
QString contactTag(const QMap<int, QString>& values)
{
    QString tag;
    for (auto it = values.begin(); it != values.end(); ++it) {
        const QString t = tagOf(it.key(), it.value());
        if (t.isEmpty() || t == tag)
            continue;
        if (!tag.isEmpty())
            return "mixed";
        tag = t;
    }
    return tag;
}

QByteArray fileHash(const QString& path)
{
    QFile f(path);
    return f.open(QIODevice::ReadOnly)
               ? QCryptographicHash::hash(f.readAll(), QCryptographicHash::Sha256)
               : QByteArray();
}

// A transfer started in the background, for several at once.
std::unique_ptr<QProcess> startTransfer(const QString& book, const QByteArray& input)
{
    auto p = std::make_unique<QProcess>();
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.remove("ZETTELFISCHER_CONTACTS");
    p->setProcessEnvironment(env);
    p->start(ZF_CLI_PATH, {"transfer", "--new", "--contacts", book});
    // The input is on its way before the caller sleeps or kills: writes wait for events.
    p->waitForStarted();
    p->write(input);
    p->waitForBytesWritten();
    p->closeWriteChannel();
    return p;
}

QMap<int, QString> fieldsOf(const QJsonObject& contact)
{
    QMap<int, QString> out;
    for (const QJsonValue& v : contact["fields"].toArray())
        out.insert(v.toObject()["id"].toInt(), v.toObject()["value"].toString());
    return out;
}

} // namespace

class TestCliContacts : public QObject {
    Q_OBJECT
    std::unique_ptr<QTemporaryDir> m_dir;
    QString book() const { return m_dir->filePath("kontakte.sqlite"); }
    // The fields a transfer of a tagged signature files.
    QList<int> taggedFields()
    {
        QList<int> ids;
        const CliRun r = runCli({"analyse"}, taggedSignature(1, 1));
        for (const QJsonValue& row : r.json()["rows"].toArray())
            if (!row.toObject()["fieldId"].isNull())
                ids << row.toObject()["fieldId"].toInt();
        std::sort(ids.begin(), ids.end());
        return ids;
    }
    CliRun contacts(const QStringList& args)
    {
        return runCli(QStringList{"contacts", "--contacts", book()} + args);
    }
    CliRun create(const QByteArray& input)
    {
        return runCli({"transfer", "--new", "--contacts", book()}, input);
    }

private slots:
    void init()
    {
        m_dir = std::make_unique<QTemporaryDir>();
        QVERIFY(m_dir->isValid());
    }

    void transferAndContacts()
    {
        CliRun r = create(Signature);
        QCOMPARE(r.exitCode, 0);
        QCOMPARE(r.json()["mode"].toString(), "new");
        QCOMPARE(r.json()["transferred"].toBool(), true);
        QCOMPARE(r.json()["contact"].toObject()["id"].toInt(), 1);
        const QMap<int, QString> filed = fieldsOf(r.json()["contact"].toObject());
        QCOMPARE(filed.value(30), "Wien");
        r = runCli({"contacts", "show", "--contacts=" + book()});
        QCOMPARE(fieldsOf(r.json()), filed);
        QCOMPARE(r.json()["current"].toBool(), true);

        QCOMPARE(create("Zweite Firma GmbH\n").exitCode, 0);
        QCOMPARE(contacts({"current"}).out, "2\t\tZweite Firma GmbH\tcurrent\n");
        r = contacts({"current", "7"});
        QCOMPARE(r.exitCode, 1);
        QVERIFY(r.err.contains("no contact 7"));
        // Edit writes into the contact chosen as current; no contact is added.
        QCOMPARE(contacts({"current", "1"}).exitCode, 0);
        r = runCli({"transfer", "--edit", "--contacts", book(), "--raw"}, "Neue Firma AG\n");
        QCOMPARE(r.exitCode, 0);
        QCOMPARE(r.json()["mode"].toString(), "edit");
        QCOMPARE(contacts({"list"}).out,
                 "1\tMax Muster\tNeue Firma AG\tcurrent\n2\t\tZweite Firma GmbH\n");

        QCOMPARE(contacts({"add-field", "32767"}).exitCode, 0);
        QCOMPARE(contacts({"add-field", "300", "Geburtstag"}).exitCode, 0);
        QCOMPARE(contacts({"add-field", "25", "Firma"}).exitCode, 1);
        QCOMPARE(contacts({"fields"}).out.split('\n').mid(20),
                 (QList<QByteArray>{"32767\t", "300\tGeburtstag", ""}));

        // The card, then its stamp: a UID that stays the contact's and the time of its last write.
        const QByteArray second = contacts({"export", "2"}).out;
        const QByteArray body = "BEGIN:VCARD\r\nVERSION:4.0\r\nFN:Zweite Firma GmbH\r\nN:;;;;\r\n"
                                "ORG:Zweite Firma GmbH\r\nADR:;;;;;;Deutschland\r\nUID:urn:uuid:";
        QVERIFY2(second.startsWith(body), second.constData());
        QVERIFY(QRegularExpression("\r\nREV:\\d{8}T\\d{6}Z\r\nEND:VCARD\r\n$")
                    .match(second)
                    .hasMatch());
        const auto uids = [](const QByteArray& cards) {
            return QRegularExpression("UID:(\\S+)").globalMatch(QString::fromUtf8(cards));
        };
        r = contacts({"export"});
        QCOMPARE(r.out.count("BEGIN:VCARD"), 2);
        QVERIFY(r.out.contains("ADR:;;Hauptstr. 5;Wien;;1010;"));
        QStringList all;
        for (auto it = uids(r.out); it.hasNext();)
            all << it.next().captured(1);
        QCOMPARE(all.size(), 2);
        QVERIFY(all[0] != all[1]);
        QVERIFY(second.contains(all[1].toUtf8())); // the same UID on every export
        r = contacts({"export", "1", "9"});
        QCOMPARE(r.exitCode, 1);
        QVERIFY(r.out.isEmpty());
    }

    void usageErrors_data()
    {
        QTest::addColumn<QStringList>("args");
        QTest::newRow("no subcommand") << QStringList{"contacts"};
        QTest::newRow("unknown subcommand") << QStringList{"contacts", "delete"};
        QTest::newRow("zero id") << QStringList{"contacts", "show", "0"};
        QTest::newRow("two ids") << QStringList{"contacts", "current", "1", "2"};
        QTest::newRow("field id 0") << QStringList{"contacts", "add-field", "0"};
        QTest::newRow("field id 32768") << QStringList{"contacts", "add-field", "32768"};
        QTest::newRow("add-field without id") << QStringList{"contacts", "add-field"};
        QTest::newRow("list argument") << QStringList{"contacts", "list", "x"};
        QTest::newRow("missing book name") << QStringList{"contacts", "list", "--contacts"};
        QTest::newRow("transfer without mode") << QStringList{"transfer"};
        QTest::newRow("transfer both modes") << QStringList{"transfer", "--new", "--edit"};
        QTest::newRow("transfer bad option") << QStringList{"transfer", "--new", "--bogus"};
    }

    void usageErrors()
    {
        QFETCH(QStringList, args);
        if (!args.contains("--contacts"))
            args << "--contacts=" + book();
        const CliRun r = runCli(args);
        QCOMPARE(r.exitCode, 2);
        QVERIFY(r.err.startsWith("zettelfischer-cli: "));
        QVERIFY(!QFile::exists(book())); // nothing is created for a wrong command line
    }

    void unusableBook_data()
    {
        QTest::addColumn<QStringList>("args");
        QTest::newRow("contacts") << QStringList{"contacts", "list"};
        QTest::newRow("transfer") << QStringList{"transfer", "--new"};
    }

    void unusableBook()
    {
        QFETCH(QStringList, args);
        QFile f(book());
        QVERIFY(f.open(QIODevice::WriteOnly));
        f.write("Name;Telefon\nMax;123\n");
        f.close();
        const CliRun r = runCli(args << "--contacts" << book(), Signature);
        QCOMPARE(r.exitCode, 1);
        QVERIFY2(r.err.contains("is not a contact book"), r.err.constData());
        QVERIFY(f.open(QIODevice::ReadOnly));
        QCOMPARE(f.readAll(), "Name;Telefon\nMax;123\n");
    }

    // Processes filing into one book at once, each starting its next transfer as soon as the
    // last one ended: every contact holds exactly its own transfer's values, none is lost,
    // and each process prints the contact it filed.
    void concurrentTransfers()
    {
        QCOMPARE(create(Signature).exitCode, 0); // an existing book with a current contact
        const QList<int> fields = taggedFields();
        QVERIFY(fields.contains(25) && fields.contains(26) && fields.contains(35));
        constexpr int Processes = 8;
        constexpr int Each = 6;
        std::vector<std::unique_ptr<QProcess>> running(Processes);
        std::vector<int> started(Processes, 0);
        QStringList printed;
        for (int w = 0; w < Processes; ++w)
            running[size_t(w)] =
                startTransfer(book(), taggedSignature(w + 1, started[size_t(w)]++));
        for (int finished = 0; finished < Processes * Each;) {
            for (int w = 0; w < Processes; ++w) {
                auto& p = running[size_t(w)];
                if (!p || !p->waitForFinished(5))
                    continue;
                ++finished;
                QCOMPARE(p->exitCode(), 0);
                const QJsonObject contact =
                    QJsonDocument::fromJson(p->readAllStandardOutput())["contact"].toObject();
                QMap<int, QString> values;
                for (const QJsonValue& v : contact["fields"].toArray())
                    values.insert(v["id"].toInt(), v["value"].toString());
                QCOMPARE(contactTag(values),
                         QString("W%1N%2").arg(w + 1).arg(started[size_t(w)] - 1));
                printed << QString::number(contact["id"].toInteger());
                p.reset();
                if (started[size_t(w)] < Each)
                    p = startTransfer(book(), taggedSignature(w + 1, started[size_t(w)]++));
            }
        }
        QCOMPARE(printed.removeDuplicates(), 0);
        const auto contents = bookContents(book());
        QCOMPARE(contents.size(), 1 + Processes * Each);
        QSet<QString> tags;
        for (auto it = std::next(contents.begin()); it != contents.end(); ++it) {
            const QString tag = contactTag(*it);
            QVERIFY2(tag.startsWith('W'),
                     qPrintable(QString("contact %1: %2").arg(it.key()).arg(tag)));
            QCOMPARE(it->keys(), fields);
            tags << tag;
        }
        QCOMPARE(tags.size(), Processes * Each);
    }

    // Several processes using a book that does not exist yet wait for each other: all
    // succeed and the schema is made once.
    void concurrentFirstUse()
    {
        constexpr int Processes = 8;
        for (int round = 0; round < 5; ++round) {
            const QString path = m_dir->filePath(QString("neu%1/kontakte.sqlite").arg(round));
            std::vector<std::unique_ptr<QProcess>> running;
            for (int w = 0; w < Processes; ++w)
                running.push_back(startTransfer(path, "Firma " + QByteArray::number(w) + "\n"));
            for (auto& p : running) {
                QVERIFY(p->waitForFinished(30000));
                QVERIFY2(p->exitCode() == 0, p->readAllStandardError().constData());
            }
            QCOMPARE(bookContents(path).size(), Processes);
            const CliRun fields = runCli({"contacts", "fields", "--contacts", path});
            QCOMPARE(fields.out.count('\n'), 20);
        }
    }

    // Transfers killed at random moments leave a sound book holding only whole contacts.
    void killedTransfers()
    {
        QCOMPARE(create(Signature).exitCode, 0);
        const QList<int> fields = taggedFields();
        QElapsedTimer timer;
        timer.start();
        QCOMPARE(create(taggedSignature(1, 0)).exitCode, 0);
        const int span = int(timer.elapsed() * 12 / 10) + 1;
        const quint32 seed = QRandomGenerator::global()->generate();
        QRandomGenerator random(seed);
        for (int n = 1; n <= 40; ++n) {
            const auto p = startTransfer(book(), taggedSignature(1, n));
            QTest::qSleep(int(random.bounded(span)));
            p->kill();
            p->waitForFinished(30000);
        }
        QString integrity;
        const auto contents = bookContents(book(), &integrity);
        QCOMPARE(integrity, "ok");
        for (auto it = std::next(contents.begin()); it != contents.end(); ++it)
            QVERIFY2(
                it->keys() == fields && contactTag(*it).startsWith('W'),
                qPrintable(QString("contact %1 after kills (seed %2)").arg(it.key()).arg(seed)));
    }

    // What must not be written is refused by every command that writes, whoever runs it;
    // the reason is printed and the file stays byte for byte.
    void refusedBook_data()
    {
        QTest::addColumn<QString>("kind");
        QTest::addColumn<QStringList>("args");
        QTest::addColumn<QString>("reason");
        const QList<QStringList> writing{{"transfer", "--new"},
                                         {"transfer", "--edit"},
                                         {"contacts", "current", "1"},
                                         {"contacts", "add-field", "300"}};
        for (const QString kind : {"read-only", "damaged"})
            for (const QStringList& args : writing)
                QTest::addRow("%s: %s", qPrintable(kind), qPrintable(args.join(' ')))
                    << kind << args << (kind == "damaged" ? "is damaged" : "is read-only");
        QTest::newRow("damaged: list")
            << "damaged" << QStringList{"contacts", "list"} << "is damaged";
    }

    void refusedBook()
    {
        QFETCH(QString, kind);
        QFETCH(QStringList, args);
        QFETCH(QString, reason);
        if (kind == "read-only" && geteuid() != 0)
            QSKIP("shows the mode bits binding the superuser; run as root (as CI does)");
        QCOMPARE(create(Signature).exitCode, 0);
        if (kind == "damaged") {
            // Contacts enough for several pages, then the last page overwritten: the file
            // still looks like a contact book at its start.
            sqlite3* db = nullptr;
            QCOMPARE(sqlite3_open(QFile::encodeName(book()).constData(), &db), SQLITE_OK);
            QCOMPARE(sqlite3_exec(db,
                                  "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n "
                                  "WHERE i < 40) INSERT INTO contact_values SELECT 1, 300 + i, "
                                  "printf('%.500c', 'x') FROM n",
                                  nullptr, nullptr, nullptr),
                     SQLITE_OK);
            sqlite3_close(db);
            QFile f(book());
            QVERIFY(f.open(QIODevice::ReadWrite) && f.size() >= 3 * 4096);
            f.seek(f.size() - 4096);
            f.write(QByteArray(4096, char(0xA5)));
        } else {
            QVERIFY(QFile::setPermissions(book(), QFileDevice::ReadOwner | QFileDevice::ReadGroup |
                                                      QFileDevice::ReadOther));
        }
        const QByteArray before = fileHash(book());
        const CliRun r = runCli(args << "--contacts" << book(), Signature);
        QCOMPARE(r.exitCode, 1);
        QVERIFY2(r.err.contains(reason.toUtf8()), r.err.constData());
        QCOMPARE(fileHash(book()), before);
        QVERIFY(!QFile::exists(book() + "-wal") || QFileInfo(book() + "-wal").size() == 0);
    }

    void transferWithoutData()
    {
        const CliRun r = runCli({"transfer", "--edit", "--raw", "--contacts", book()}, "   ");
        QCOMPARE(r.exitCode, 1);
        QVERIFY2(r.err.contains("Keine Daten vorhanden."), r.err.constData());
        QCOMPARE(r.json()["transferred"].toBool(), false);
        QCOMPARE(r.json()["messages"].toArray()[0].toObject()["text"].toString(),
                 "Keine Daten vorhanden.");
    }
};

QTEST_GUILESS_MAIN(TestCliContacts)
#include "tst_cli_contacts.moc"
