// The duplicate check of transfer --new and contacts find, end to end: the real command line
// against a contact book in a temporary folder.

#include <QJsonArray>
#include <QTemporaryDir>
#include <QTest>

#include "clirun.h"

#include <memory>

namespace {

const QByteArray Signature = "Beispiel GmbH\nMax Muster\nHauptstr. 5\n1010 Wien\n"
                             "Tel: 01 234567\nmax@example.at\n";

QByteArray readAll(const QString& path)
{
    QFile f(path);
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray("<unreadable>");
}

// "id:reason" of each duplicate the answer names.
QStringList duplicatesOf(const CliRun& r)
{
    QStringList out;
    for (const QJsonValue& v : r.json()["duplicates"].toArray())
        out << v["id"].toString() + ':' + v["reason"].toString();
    return out;
}

} // namespace

class TestCliDuplicates : public QObject {
    Q_OBJECT

    std::unique_ptr<QTemporaryDir> m_dir;

    QString book() const { return m_dir->filePath("k.sqlite"); }
    CliRun create(const QByteArray& input, const QStringList& extra = {})
    {
        return runCli(QStringList{"transfer", "--new", "--contacts", book()} + extra, input);
    }
    QByteArray list() { return runCli({"contacts", "list", "--contacts", book()}).out; }

private slots:
    void init()
    {
        m_dir = std::make_unique<QTemporaryDir>();
        QVERIFY(m_dir->isValid());
    }

    void sameSignatureRefused()
    {
        QCOMPARE(create(Signature).exitCode, 0);
        const QByteArray before = readAll(book());
        const CliRun r = create(Signature);
        QCOMPARE(r.exitCode, 3);
        QCOMPARE(duplicatesOf(r), QStringList{"1:email"});
        QCOMPARE(r.json()["duplicates"][0]["name"].toString(), "Max Muster");
        QCOMPARE(r.json()["duplicates"][0]["company"].toString(), "Beispiel GmbH");
        QCOMPARE(r.json()["transferred"].toBool(), false);
        QVERIFY(r.err.contains("already has this contact"));
        QCOMPARE(readAll(book()), before);
        QVERIFY(!QFile::exists(book() + "-wal"));
    }

    void allowDuplicate()
    {
        QCOMPARE(create(Signature).exitCode, 0);
        const CliRun r = create(Signature, {"--allow-duplicate"});
        QCOMPARE(r.exitCode, 0);
        QCOMPARE(r.json()["contact"].toObject()["id"].toInt(), 2);
        QCOMPARE(list(), "1\tMax Muster\tBeispiel GmbH\n2\tMax Muster\tBeispiel GmbH\tcurrent\n");
    }

    void checkSwitchedOff()
    {
        const QString ini = m_dir->filePath("zf.ini");
        QFile f(ini);
        QVERIFY(f.open(QIODevice::WriteOnly));
        f.write("[Kontakte]\nDublettenpruefung=0\n");
        f.close();
        QCOMPARE(create(Signature, {"--ini", ini}).exitCode, 0);
        QCOMPARE(create(Signature, {"--ini", ini}).exitCode, 0);
        QCOMPARE(list().count('\n'), 2);
    }

    void updateDuplicate()
    {
        QCOMPARE(create(Signature).exitCode, 0);
        QCOMPARE(create("Andere AG\nEva Roth\neva@roth.de\n").exitCode, 0);
        const CliRun r =
            create(QByteArray(Signature).replace("01 234567", "01 999888"), {"--update-duplicate"});
        QCOMPARE(r.exitCode, 0);
        QCOMPARE(r.json()["updatedDuplicate"].toObject()["id"].toString(), "1");
        QCOMPARE(r.json()["contact"].toObject()["id"].toInt(), 1);
        QCOMPARE(r.json()["contact"].toObject()["current"].toBool(), true);
        QCOMPARE(list(), "1\tMax Muster\tBeispiel GmbH\tcurrent\n2\tEva Roth\tAndere AG\n");
        const CliRun shown = runCli({"contacts", "show", "1", "--contacts", book()});
        QVERIFY2(shown.out.contains("01999888"), shown.out.constData());
    }

    void updateNeedsOneMatch()
    {
        QCOMPARE(create(Signature).exitCode, 0);
        QCOMPARE(create(Signature, {"--allow-duplicate"}).exitCode, 0);
        const QByteArray before = readAll(book());
        const CliRun r = create(Signature, {"--update-duplicate"});
        QCOMPARE(r.exitCode, 3);
        QCOMPARE(duplicatesOf(r), (QStringList{"1:email", "2:email"}));
        QVERIFY(r.err.contains("needs exactly one"));
        QCOMPARE(readAll(book()), before);
        // Without a match it is an ordinary new contact.
        QCOMPARE(create("Andere AG\nEva Roth\neva@roth.de\n", {"--update-duplicate"}).exitCode, 0);
        QCOMPARE(list().count('\n'), 3);
    }

    void colleagueIsNoDuplicate()
    {
        QCOMPARE(create(Signature).exitCode, 0);
        const CliRun r = create("Beispiel GmbH\nJulia Sommer\nHauptstr. 5\n1010 Wien\n"
                                "Tel: 01 234567\nFax: 01 234567-9\njulia@example.at\n");
        QCOMPARE(r.exitCode, 0);
        QCOMPARE(list().count('\n'), 2);
    }

    void mobileFormats_data()
    {
        QTest::addColumn<QByteArray>("first");
        QTest::addColumn<QByteArray>("second");
        QTest::addColumn<int>("exitCode");
        const QByteArray linz = "Ringstr. 1\n4020 Linz\n";
        const QByteArray berlin = "Ringstr. 1\n10115 Berlin\n";
        const QByteArray austrian = linz + "Mobil: +43 664 1234567\n";
        QTest::newRow("national, slashed") << austrian << linz + "Mobil: 0664 / 123 45 67\n" << 3;
        QTest::newRow("0043") << austrian << linz + "Mobil: 0043 664 1234567\n" << 3;
        QTest::newRow("(0) after the code") << austrian << linz + "Mobil: +43 (0) 664-123 45 67\n"
                                            << 3;
        QTest::newRow("another number") << austrian << linz + "Mobil: 0664 1234568\n" << 0;
        QTest::newRow("home calling code") << berlin + "Mobil: +49 170 2223334\n"
                                           << berlin + "Mobil: 0170-222 33 34\n"
                                           << 3;
    }
    void mobileFormats()
    {
        QFETCH(QByteArray, first);
        QFETCH(QByteArray, second);
        QFETCH(int, exitCode);
        QCOMPARE(create("Huber KG\nKarl Huber\n" + first + "karl@huber.at\n").exitCode, 0);
        const CliRun r = create("Gruber OG\nAnton Gruber\n" + second + "anton@gruber.at\n");
        QCOMPARE(r.exitCode, exitCode);
        if (exitCode == 3)
            QCOMPARE(duplicatesOf(r), QStringList{"1:mobile"});
    }

    void find()
    {
        QCOMPARE(create(Signature).exitCode, 0);
        QCOMPARE(create("Andere AG\nEva Roth\nTel: 089 12345\neva@roth.de\n").exitCode, 0);
        const auto ids = [this](const QString& text) {
            const CliRun r = runCli({"contacts", "find", text, "--contacts", book()});
            QStringList out;
            for (const QJsonValue& v : r.json()["matches"].toArray())
                out << v["id"].toString();
            return out;
        };
        QCOMPARE(ids("muster"), QStringList{"1"});
        QCOMPARE(ids("EXAMPLE.AT"), QStringList{"1"});
        QCOMPARE(ids("+49 89 12345"), QStringList{"2"});
        QCOMPARE(ids("a"), (QStringList{"1", "2"}));
        QCOMPARE(ids("niemand"), QStringList{});
        const CliRun r = runCli({"contacts", "find", "--contacts", book()});
        QCOMPARE(r.exitCode, 2);
    }

    void usage_data()
    {
        QTest::addColumn<QStringList>("args");
        QTest::newRow("with --edit") << QStringList{"transfer", "--edit", "--allow-duplicate"};
        QTest::newRow("both") << QStringList{"transfer", "--new", "--allow-duplicate",
                                             "--update-duplicate"};
    }
    void usage()
    {
        QFETCH(QStringList, args);
        const CliRun r = runCli(args << "--contacts" << book(), Signature);
        QCOMPARE(r.exitCode, 2);
        QVERIFY(!QFile::exists(book()));
    }
};

QTEST_GUILESS_MAIN(TestCliDuplicates)
#include "tst_cli_duplicates.moc"
