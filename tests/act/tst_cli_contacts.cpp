// zettelfischer-cli contacts and transfer against a book in a temporary folder.

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
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
private slots:
    void init()
    {
        m_dir = std::make_unique<QTemporaryDir>();
        QVERIFY(m_dir->isValid());
    }
    void transferThenContacts();
    void contactsSubcommands();
    void usageErrors_data();
    void usageErrors();
    void unusableBook_data();
    void unusableBook();
    void transferWithoutData();

private:
    QString book() const { return m_dir->filePath("kontakte.sqlite"); }
    std::unique_ptr<QTemporaryDir> m_dir;
};

void TestCliContacts::transferThenContacts()
{
    QTemporaryDir dir;
    const QString path = dir.filePath("neu/kontakte.sqlite");
    CliRun r = runCli({"transfer", "--new", "--contacts", path}, Signature);
    QCOMPARE(r.exitCode, 0);
    QJsonObject json = r.json();
    QCOMPARE(json["mode"].toString(), "new");
    QCOMPARE(json["transferred"].toBool(), true);
    QCOMPARE(json["contact"].toObject()["id"].toInt(), 1);
    const QMap<int, QString> filed = fieldsOf(json["contact"].toObject());
    QCOMPARE(filed.value(25), "Beispiel GmbH");
    QCOMPARE(filed.value(30), "Wien");
    QCOMPARE(filed.value(200), "max@example.at");

    r = runCli({"contacts", "show", "--contacts=" + path});
    QCOMPARE(r.exitCode, 0);
    QCOMPARE(fieldsOf(r.json()), filed);
    QCOMPARE(r.json()["current"].toBool(), true);
    QCOMPARE(r.json()["fields"].toArray()[0].toObject()["label"].toString(), "Firma");

    // Edit writes into the current contact; no second contact appears.
    r = runCli({"transfer", "--edit", "--contacts", path, "--raw"}, "Neue Firma AG\n");
    QCOMPARE(r.exitCode, 0);
    QCOMPARE(r.json()["mode"].toString(), "edit");
    r = runCli({"contacts", "--contacts", path, "list"});
    QCOMPARE(r.exitCode, 0);
    QCOMPARE(r.out, "1\tMax Muster\tNeue Firma AG\tcurrent\n");
}

void TestCliContacts::contactsSubcommands()
{
    const QString path = book();
    QCOMPARE(runCli({"transfer", "--new", "--contacts", path}, Signature).exitCode, 0);
    QCOMPARE(runCli({"transfer", "--new", "--contacts", path}, "Zweite Firma GmbH\n").exitCode, 0);

    CliRun r = runCli({"contacts", "--contacts", path, "current"});
    QCOMPARE(r.out, "2\t\tZweite Firma GmbH\tcurrent\n");
    r = runCli({"contacts", "--contacts", path, "current", "1"});
    QCOMPARE(r.exitCode, 0);
    r = runCli({"contacts", "--contacts", path, "list"});
    QCOMPARE(r.out, "1\tMax Muster\tBeispiel GmbH\tcurrent\n2\t\tZweite Firma GmbH\n");
    r = runCli({"contacts", "--contacts", path, "current", "7"});
    QCOMPARE(r.exitCode, 1);
    QVERIFY(r.err.contains("no contact 7"));

    QCOMPARE(runCli({"contacts", "--contacts", path, "add-field", "117"}).exitCode, 0);
    QCOMPARE(runCli({"contacts", "--contacts", path, "add-field", "300", "Geburtstag"}).exitCode,
             0);
    r = runCli({"contacts", "--contacts", path, "add-field", "25", "Firma"});
    QCOMPARE(r.exitCode, 1);
    r = runCli({"contacts", "--contacts", path, "fields"});
    const QList<QByteArray> lines = r.out.split('\n');
    QCOMPARE(lines.size(), 23);
    QCOMPARE(lines[0], "25\tFirma");
    QCOMPARE(lines[20], "117\t");
    QCOMPARE(lines[21], "300\tGeburtstag");

    r = runCli({"contacts", "--contacts", path, "export", "2"});
    QCOMPARE(r.exitCode, 0);
    QCOMPARE(r.out, "BEGIN:VCARD\r\nVERSION:4.0\r\nFN:Zweite Firma GmbH\r\n"
                    "ORG:Zweite Firma GmbH\r\nADR:;;;;;;Deutschland\r\nEND:VCARD\r\n");
    r = runCli({"contacts", "--contacts", path, "export"});
    QCOMPARE(r.out.count("BEGIN:VCARD"), 2);
    QVERIFY(r.out.contains("ADR:;;Hauptstr. 5;Wien;;1010;"));
    r = runCli({"contacts", "--contacts", path, "export", "1", "9"});
    QCOMPARE(r.exitCode, 1);
    QVERIFY(r.out.isEmpty());
}

void TestCliContacts::usageErrors_data()
{
    QTest::addColumn<QStringList>("args");
    QTest::newRow("no subcommand") << QStringList{"contacts"};
    QTest::newRow("unknown subcommand") << QStringList{"contacts", "delete"};
    QTest::newRow("bad id") << QStringList{"contacts", "show", "abc"};
    QTest::newRow("zero id") << QStringList{"contacts", "show", "0"};
    QTest::newRow("two ids") << QStringList{"contacts", "current", "1", "2"};
    QTest::newRow("field id too big") << QStringList{"contacts", "add-field", "40000"};
    QTest::newRow("add-field without id") << QStringList{"contacts", "add-field"};
    QTest::newRow("list argument") << QStringList{"contacts", "list", "x"};
    QTest::newRow("missing book name") << QStringList{"contacts", "list", "--contacts"};
    QTest::newRow("transfer without mode") << QStringList{"transfer"};
    QTest::newRow("transfer both modes") << QStringList{"transfer", "--new", "--edit"};
    QTest::newRow("transfer bad option") << QStringList{"transfer", "--new", "--bogus"};
}

void TestCliContacts::usageErrors()
{
    QFETCH(QStringList, args);
    args << "--contacts=" + book();
    if (args.contains("--contacts"))
        args.removeLast();
    const CliRun r = runCli(args);
    QCOMPARE(r.exitCode, 2);
    QVERIFY(r.err.startsWith("zettelfischer-cli: "));
    QVERIFY(!QFile::exists(book())); // nothing is created for a wrong command line
}

void TestCliContacts::unusableBook_data()
{
    QTest::addColumn<QStringList>("args");
    QTest::newRow("list") << QStringList{"contacts", "list"};
    QTest::newRow("add-field") << QStringList{"contacts", "add-field", "117"};
    QTest::newRow("transfer") << QStringList{"transfer", "--new"};
}

void TestCliContacts::unusableBook()
{
    QFETCH(QStringList, args);
    const QString path = book();
    QFile f(path);
    QVERIFY(f.open(QIODevice::WriteOnly));
    f.write("Name;Telefon\nMax;123\n");
    f.close();
    const CliRun r = runCli(args << "--contacts" << path, Signature);
    QCOMPARE(r.exitCode, 1);
    QVERIFY2(r.err.contains("is not a contact book"), r.err.constData());
    QVERIFY(f.open(QIODevice::ReadOnly));
    QCOMPARE(f.readAll(), "Name;Telefon\nMax;123\n");
    QFile::remove(path);
}

void TestCliContacts::transferWithoutData()
{
    const CliRun r = runCli({"transfer", "--edit", "--raw", "--contacts", book()}, "   ");
    QCOMPARE(r.exitCode, 1);
    QVERIFY2(r.err.contains("Keine Daten vorhanden."), r.err.constData());
    QCOMPARE(r.json()["transferred"].toBool(), false);
    QCOMPARE(r.json()["messages"].toArray()[0].toObject()["text"].toString(),
             "Keine Daten vorhanden.");
}

QTEST_GUILESS_MAIN(TestCliContacts)
#include "tst_cli_contacts.moc"
