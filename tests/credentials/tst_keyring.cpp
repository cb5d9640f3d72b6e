// The keyring through a real Secret Service: run by keyring-session.sh inside a D-Bus session
// of its own with a new GNOME keyring in a temporary home.

#include "credentials/credentials.h"

#include <QDirIterator>
#include <QtTest>

using namespace zf::credentials;
using namespace Qt::StringLiterals;

namespace {

const QUrl Book(u"http://127.0.0.1:5232/anna/kontakte/"_s);
const QString Key = u"anna@127.0.0.1:5232"_s;

AskFunction answering(QStringList answers, bool remember, int* asked = nullptr)
{
    return [answers, remember,
            asked](const PasswordRequest&) mutable -> std::optional<PasswordAnswer> {
        if (asked)
            ++*asked;
        if (answers.isEmpty())
            return std::nullopt;
        return PasswordAnswer{answers.takeFirst(), remember};
    };
}

} // namespace

class TestKeyring : public QObject {
    Q_OBJECT
private slots:
    void initTestCase()
    {
        if (qEnvironmentVariableIsSet("ZF_TEST_KEYRING_SKIP"))
            QSKIP(qgetenv("ZF_TEST_KEYRING_SKIP").constData());
        if (!qEnvironmentVariableIsSet("ZF_TEST_KEYRING"))
            QSKIP("needs dbus-run-session and gnome-keyring-daemon (packages dbus, gnome-keyring)");
        qunsetenv(PasswordVariable);
        // The daemon was just started: the first call may wait for it to come up.
        QCOMPARE(Keyring(u"zettelfischer"_s, std::chrono::seconds(20)).read(u"probe"_s).status,
                 KeyringResult::NotFound);
    }

    void init() { Keyring().remove(Key); }

    void roundTrip_data()
    {
        QTest::addColumn<QString>("password");
        QTest::newRow("plain") << u"geheim"_s;
        QTest::newRow("umlauts, space, emoji") << u"Grüße aus Köln 🔑"_s;
        QTest::newRow("empty") << QString();
    }

    void roundTrip()
    {
        QFETCH(QString, password);
        const Keyring keyring;
        QCOMPARE(keyring.write(Key, password).status, KeyringResult::Done);
        const KeyringResult read = keyring.read(Key);
        QCOMPARE(read.status, KeyringResult::Done);
        QCOMPARE(read.password, password);
        // Writing again replaces, never adds a second entry.
        QCOMPARE(keyring.write(Key, password + u'2').status, KeyringResult::Done);
        QCOMPARE(keyring.read(Key).password, password + u'2');
        QCOMPARE(keyring.remove(Key).status, KeyringResult::Done);
        QCOMPARE(keyring.read(Key).status, KeyringResult::NotFound);
    }

    void entriesApart()
    {
        const Keyring ours;
        const Keyring other(u"zettelfischer-andere"_s);
        QVERIFY(ours.write(Key, u"a"_s).ok());
        QVERIFY(ours.write(u"bert@127.0.0.1:5232"_s, u"b"_s).ok());
        QCOMPARE(other.read(Key).status, KeyringResult::NotFound);
        QCOMPARE(ours.read(Key).password, u"a"_s);
        QVERIFY(ours.remove(u"bert@127.0.0.1:5232"_s).ok());
        QCOMPARE(ours.read(Key).password, u"a"_s);
    }

    // "Passwort merken": the next program run finds it without asking; the environment
    // still wins over it.
    void rememberedForNextRun()
    {
        {
            Credentials first(answering({u"geheim"_s}, true));
            const LoginResult login =
                first.logIn(Book, u"anna"_s, [](const QString& p) { return p == u"geheim"_s; });
            QCOMPARE(login.outcome, LoginResult::Accepted);
            QVERIFY2(login.keyringError.isEmpty(), qPrintable(login.keyringError));
        }
        int asked = 0;
        Credentials next(answering({}, false, &asked));
        QStringList tried;
        const LoginResult login = next.logIn(Book, u"anna"_s, [&](const QString& p) {
            tried << p;
            return p == u"geheim"_s;
        });
        QCOMPARE(login.outcome, LoginResult::Accepted);
        QCOMPARE(login.password.source, PasswordSource::Keyring);
        QCOMPARE(tried, QStringList{u"geheim"_s});
        QCOMPARE(asked, 0);

        qputenv(PasswordVariable, "aus der Umgebung");
        const std::optional<Password> env = Credentials(AskFunction()).known(Book, u"anna"_s);
        qunsetenv(PasswordVariable);
        QCOMPARE(env->source, PasswordSource::Environment);
        QCOMPARE(env->password, u"aus der Umgebung"_s);
    }

    // A stored password the server refuses: replaced with "Passwort merken", else taken out.
    void stalePassword_data()
    {
        QTest::addColumn<bool>("remember");
        QTest::addColumn<int>("afterwards");
        QTest::newRow("remember the new one") << true << int(KeyringResult::Done);
        QTest::newRow("do not remember") << false << int(KeyringResult::NotFound);
    }

    void stalePassword()
    {
        QFETCH(bool, remember);
        const Keyring keyring;
        QVERIFY(keyring.write(Key, u"alt"_s).ok());
        Credentials credentials(answering({u"neu"_s}, remember));
        const LoginResult login =
            credentials.logIn(Book, u"anna"_s, [](const QString& p) { return p == u"neu"_s; });
        QCOMPARE(login.outcome, LoginResult::Accepted);
        QVERIFY(login.keyringError.isEmpty());
        const KeyringResult read = keyring.read(Key);
        QFETCH(int, afterwards);
        QCOMPARE(int(read.status), afterwards);
        if (remember)
            QCOMPARE(read.password, u"neu"_s);
    }

    void forget()
    {
        Credentials credentials{AskFunction()};
        QVERIFY(credentials.remember(Book, u"anna"_s, u"geheim"_s).ok());
        QCOMPARE(credentials.known(Book, u"anna"_s)->password, u"geheim"_s);
        QVERIFY(credentials.forget(Book, u"anna"_s).ok());
        QVERIFY(!credentials.known(Book, u"anna"_s));
    }

    // The keyring keeps it encrypted; no file in the home folder holds it readable.
    void noFileHoldsThePassword()
    {
        const QByteArray secret = "Unverwechselbar-7f3a-Passwort";
        QVERIFY(Keyring().write(Key, QString::fromUtf8(secret)).ok());
        int files = 0;
        QDirIterator it(QDir::homePath(), QDir::Files | QDir::Hidden, QDirIterator::Subdirectories);
        while (it.hasNext()) {
            QFile f(it.next());
            if (!f.open(QIODevice::ReadOnly))
                continue;
            ++files;
            QVERIFY2(!f.readAll().contains(secret), qPrintable(f.fileName()));
        }
        QVERIFY(files > 0); // the keyring file at least
    }
};

QTEST_GUILESS_MAIN(TestKeyring)
#include "tst_keyring.moc"
