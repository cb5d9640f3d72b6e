// The two dialogs for connecting to an address book: the password dialog on its own, and
// "Adressbuch wählen" checking real local servers (Xandikos without login, Radicale with a
// password and with TLS), a closed port and a server that never answers.

#include "uitest.h"

#include "../books/carddav/davservers.h"
#include "ui/formadressbuch.h"
#include "ui/formpasswort.h"
#include "ui/windowhelpers.h"

#include <QCheckBox>
#include <QFileDialog>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QRadioButton>
#include <QTcpServer>

using namespace zf;
using namespace zf::ui;
using namespace zf::ui::test;
using namespace std::chrono_literals;
using davtest::DavServer;

namespace {

// Answers every password dialog that opens, in turn: types the text and presses OK, or
// Abbrechen for "<cancel>" and when no answers are left. Records whether each dialog said
// that the last password was wrong.
class PasswordTyper : public QObject {
public:
    explicit PasswordTyper(QStringList answers, bool remember = false)
        : m_answers(std::move(answers)), m_remember(remember)
    {
        connect(&m_poll, &QTimer::timeout, this, [this] {
            auto* d = qobject_cast<formPasswort*>(QApplication::activeModalWidget());
            if (!d || d->property("answered").toBool())
                return;
            d->setProperty("answered", true);
            wrongShown << !d->lblFalsch->isHidden();
            texts << d->lblAnmeldung->text();
            if (m_answers.isEmpty() || m_answers.first() == "<cancel>") {
                QTest::mouseClick(d->cmdAbbrechen, Qt::LeftButton);
                return;
            }
            d->txtPasswort->insert(m_answers.takeFirst()); // keyClicks takes ASCII only
            d->chkMerken->setChecked(m_remember);
            QTest::mouseClick(d->cmdOK, Qt::LeftButton);
        });
        m_poll.start(10);
    }

    QList<bool> wrongShown;
    QStringList texts;

private:
    QTimer m_poll;
    QStringList m_answers;
    bool m_remember;
};

QStringList listed(const formAdressbuch& d)
{
    QStringList items;
    for (int i = 0; i < d.lstBuecher->count(); ++i)
        items << d.lstBuecher->item(i)->text();
    return items;
}

} // namespace

class TestBookDialogs : public QObject {
    Q_OBJECT
private slots:
    void initTestCase() { qunsetenv(credentials::PasswordVariable); }

    void passwordDialog_data()
    {
        QTest::addColumn<QString>("user");
        QTest::addColumn<bool>("rejected");
        QTest::addColumn<QString>("typed"); // "<cancel>" presses Abbrechen
        QTest::addColumn<bool>("remember");
        QTest::addColumn<QString>("text");

        QTest::newRow("first ask, remember")
            << "anna" << false << "geheim 🔑" << true
            << "Der Server dav.example.org:8443 verlangt das Passwort für den Benutzer „anna“.";
        QTest::newRow("after a refusal, not remembered")
            << "anna" << true << "neu" << false
            << "Der Server dav.example.org:8443 verlangt das Passwort für den Benutzer „anna“.";
        QTest::newRow("without user") << "" << false << "x" << false
                                      << "Der Server dav.example.org:8443 verlangt ein Passwort.";
        QTest::newRow("cancelled") << "anna" << true << "<cancel>" << true << "";
    }

    void passwordDialog()
    {
        QFETCH(QString, user);
        QFETCH(bool, rejected);
        QFETCH(QString, typed);
        QFETCH(bool, remember);
        QFETCH(QString, text);
        const bool cancel = typed == "<cancel>";
        PasswordTyper typer(cancel ? QStringList{"<cancel>"} : QStringList{typed}, remember);
        // The busy pointer of the check gives way to the dialog and comes back after it.
        SetBusyCursor(true);
        std::optional<Qt::CursorShape> cursorDuring;
        QTimer peek;
        connect(&peek, &QTimer::timeout, this, [&] {
            if (QApplication::activeModalWidget() && !cursorDuring)
                cursorDuring = QGuiApplication::overrideCursor()
                                   ? QGuiApplication::overrideCursor()->shape()
                                   : Qt::ArrowCursor;
        });
        peek.start(1);

        const auto answer = PasswordDialogAsk(nullptr)(credentials::PasswordRequest{
            QUrl("https://dav.example.org:8443/"), user, "dav.example.org:8443", rejected});
        QVERIFY(QGuiApplication::overrideCursor());
        SetBusyCursor(false);
        QCOMPARE(cursorDuring, std::optional(Qt::ArrowCursor));
        QCOMPARE(typer.wrongShown, QList<bool>{rejected});
        QCOMPARE(answer.has_value(), !cancel);
        if (cancel)
            return;
        QCOMPARE(typer.texts.value(0), text);
        QCOMPARE(answer->password, typed);
        QCOMPARE(answer->remember, remember);
    }

    void passwordIsHidden()
    {
        formPasswort d(credentials::PasswordRequest{QUrl("https://h/"), "anna", "h", false});
        QCOMPARE(d.txtPasswort->echoMode(), QLineEdit::Password);
        QVERIFY(!d.chkMerken->isChecked());
        QCOMPARE(d.chkMerken->text(), "Passwort merken");
        QCOMPARE(d.cmdAbbrechen->text(), "Abbrechen");
    }

    void bookFile()
    {
        QTemporaryDir dir;
        formAdressbuch d(BookChoice{"/alt/kontakte.sqlite", {}});
        QVERIFY(d.optDatei->isChecked());
        QVERIFY(d.cmdOK->isEnabled());
        QVERIFY(!d.cmdPruefen->isEnabled());

        const QString chosen = dir.filePath("neu.sqlite");
        whenModal<QFileDialog>(&d, [&](QFileDialog* f) {
            QVERIFY(f);
            f->selectFile(chosen);
            static_cast<QDialog*>(f)->accept(); // QFileDialog hides its accept()
        });
        QTest::mouseClick(d.cmdDurchsuchen, Qt::LeftButton);
        QCOMPARE(d.choice(), (BookChoice{chosen, {}}));
        QVERIFY(!QFile::exists(chosen)); // choosing creates nothing

        d.txtDatei->clear();
        QVERIFY(!d.cmdOK->isEnabled());
    }

    void serverChoiceKept()
    {
        const BookChoice current{"https://dav.example.org/anna/kontakte/", "anna"};
        formAdressbuch d(current);
        QVERIFY(d.optServer->isChecked());
        QCOMPARE(d.txtBenutzer->text(), "anna");
        QVERIFY(d.cmdOK->isEnabled());
        QCOMPARE(d.choice(), current);
        // Another address drops what was found for the old one.
        d.txtAdresse->setFocus();
        QTest::keyClick(d.txtAdresse, Qt::Key_Backspace);
        QCOMPARE(d.lstBuecher->count(), 0);
        QVERIFY(!d.cmdOK->isEnabled());
    }

    void xandikos_data()
    {
        QTest::addColumn<QString>("start"); // "" for the server root
        QTest::addColumn<QString>("user");
        QTest::newRow("server root, no user") << ""
                                              << "";
        QTest::newRow("book address, with a user") << "/user/contacts/addressbook/"
                                                   << "anna";
    }

    void xandikos()
    {
        if (DavServer::program(DavServer::Xandikos).isEmpty())
            QSKIP("xandikos is not installed");
        const DavServer& server = running(m_xandikos, DavServer::Xandikos);
        QVERIFY2(server.error().isEmpty(), qPrintable(server.error()));
        QFETCH(QString, start);
        QFETCH(QString, user);

        PasswordTyper typer({});
        credentials::Credentials creds(PasswordDialogAsk(nullptr), std::nullopt);
        formAdressbuch d(BookChoice{}, &creds);
        d.optServer->setChecked(true);
        QTest::keyClicks(d.txtAdresse, server.root().resolved(QUrl(start)).toString());
        QTest::keyClicks(d.txtBenutzer, user);
        QVERIFY(!d.cmdOK->isEnabled());
        QTest::mouseClick(d.cmdPruefen, Qt::LeftButton);

        QCOMPARE(listed(d), QStringList{"addressbook – " + server.book().toString()});
        QCOMPARE(d.lblStatus->text(), "Ein Adressbuch gefunden.");
        QVERIFY(typer.wrongShown.isEmpty()); // no login, no password asked
        QVERIFY(d.cmdOK->isEnabled());
        QCOMPARE(d.choice(), (BookChoice{server.book().toString(), user}));
        QVERIFY(!QGuiApplication::overrideCursor());
    }

    // Radicale wants a password: a wrong one brings the dialog back saying so.
    void passwordAsked_data()
    {
        QTest::addColumn<QStringList>("answers");
        QTest::addColumn<QList<bool>>("wrongShown");
        QTest::addColumn<bool>("found");
        QTest::addColumn<QString>("status");

        QTest::newRow("wrong, then right")
            << QStringList{"falsch", DavServer::password()} << QList<bool>{false, true} << true
            << "Ein Adressbuch gefunden.";
        QTest::newRow("cancelled") << QStringList{"<cancel>"} << QList<bool>{false} << false
                                   << "Ohne Passwort lässt sich die Verbindung nicht prüfen.";
        QTest::newRow("wrong three times")
            << QStringList{"a", "b", "c"} << QList<bool>{false, true, true} << false
            << "Der Server 127.0.0.1:%1 hat die Anmeldung abgelehnt: Benutzername oder "
               "Passwort ist falsch.";
    }

    void passwordAsked()
    {
        if (DavServer::program(DavServer::Radicale).isEmpty())
            QSKIP("radicale is not installed");
        const DavServer& server = running(m_radicale, DavServer::Radicale);
        QVERIFY2(server.error().isEmpty(), qPrintable(server.error()));
        QFETCH(QStringList, answers);
        QFETCH(QList<bool>, wrongShown);
        QFETCH(bool, found);
        QFETCH(QString, status);

        PasswordTyper typer(answers);
        credentials::Credentials creds(PasswordDialogAsk(nullptr), std::nullopt);
        formAdressbuch d(BookChoice{}, &creds);
        d.optServer->setChecked(true);
        d.txtAdresse->setText(server.root().toString());
        d.txtBenutzer->setText(DavServer::user());
        QTest::mouseClick(d.cmdPruefen, Qt::LeftButton);

        QCOMPARE(typer.wrongShown, wrongShown);
        QCOMPARE(d.lblStatus->text(), status.contains("%1") ? status.arg(server.port()) : status);
        QCOMPARE(d.cmdOK->isEnabled(), found);
        if (found)
            QCOMPARE(d.choice(), (BookChoice{server.book().toString(), DavServer::user()}));
        QVERIFY(!QGuiApplication::overrideCursor());
    }

    void failures_data()
    {
        QTest::addColumn<QString>("kind");
        QTest::addColumn<QString>("status");
        QTest::newRow("closed port") << "closed"
                                     << "Der Server 127.0.0.1:%1 nimmt keine Verbindung an. "
                                        "Stimmen Adresse und Port, und läuft der Dienst?";
        QTest::newRow("no answer") << "silent"
                                   << "Der Server 127.0.0.1:%1 hat nicht rechtzeitig geantwortet. "
                                      "Bitte Adresse und Netzwerkverbindung prüfen.";
        QTest::newRow("untrusted certificate")
            << "tls"
            << "Die sichere Verbindung zu 127.0.0.1:%1 ist gescheitert: Das Zertifikat des "
               "Servers ist ungültig oder nicht vertrauenswürdig.";
        QTest::newRow("no address") << "empty"
                                    << "Bitte die Adresse des Servers eingeben, z. B. "
                                       "https://server.example/.";
    }

    void failures()
    {
        QFETCH(QString, kind);
        QFETCH(QString, status);
        QTcpServer silent;
        std::unique_ptr<DavServer> tls;
        QString address;
        quint16 port = 0;
        if (kind == "closed") {
            port = davtest::freePort();
            address = QString("http://127.0.0.1:%1/").arg(port);
        } else if (kind == "silent") {
            QVERIFY(silent.listen(QHostAddress::LocalHost));
            port = silent.serverPort();
            address = QString("http://127.0.0.1:%1/").arg(port);
        } else if (kind == "tls") {
            if (DavServer::program(DavServer::Radicale).isEmpty())
                QSKIP("radicale is not installed");
            tls = std::make_unique<DavServer>(DavServer::Radicale, true);
            QVERIFY2(tls->error().isEmpty(), qPrintable(tls->error()));
            port = tls->port();
            address = tls->root("https").toString();
        }

        PasswordTyper typer({});
        credentials::Credentials creds(PasswordDialogAsk(nullptr), std::nullopt);
        formAdressbuch d(BookChoice{}, &creds);
        d.setTimeout(500ms);
        d.optServer->setChecked(true);
        d.txtAdresse->setText(address);
        QTest::mouseClick(d.cmdPruefen, Qt::LeftButton);

        QCOMPARE(d.lblStatus->text(), status.contains("%1") ? status.arg(port) : status);
        QCOMPARE(d.lstBuecher->count(), 0);
        QVERIFY(!d.cmdOK->isEnabled());
        QVERIFY(typer.wrongShown.isEmpty());
        QVERIFY(!QGuiApplication::overrideCursor());
    }

private:
    // One server for all rows of a test: the checks only read.
    static const DavServer& running(std::unique_ptr<DavServer>& server, DavServer::Kind kind)
    {
        if (!server)
            server = std::make_unique<DavServer>(kind);
        return *server;
    }

    std::unique_ptr<DavServer> m_xandikos;
    std::unique_ptr<DavServer> m_radicale;
};

QTEST_MAIN(TestBookDialogs)
#include "tst_bookdialogs.moc"
