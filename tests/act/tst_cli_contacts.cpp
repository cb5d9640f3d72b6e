// zettelfischer-cli contacts and transfer against a book in a temporary folder.

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>
#include <QTest>

#include "clirun.h"

namespace {

const QByteArray Signature = "Beispiel GmbH\nMax Muster\nHauptstr. 5\n1010 Wien\n"
                             "Tel: 01 234567\nmax@example.at\n";

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

        QCOMPARE(contacts({"export", "2"}).out,
                 "BEGIN:VCARD\r\nVERSION:4.0\r\nFN:Zweite Firma GmbH\r\n"
                 "ORG:Zweite Firma GmbH\r\nADR:;;;;;;Deutschland\r\nEND:VCARD\r\n");
        r = contacts({"export"});
        QCOMPARE(r.out.count("BEGIN:VCARD"), 2);
        QVERIFY(r.out.contains("ADR:;;Hauptstr. 5;Wien;;1010;"));
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
