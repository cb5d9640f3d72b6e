#pragma once

#include "books/carddav/davclient.h"
#include "credentials/credentials.h"

#include <QDialog>
#include <QString>

#include <memory>
#include <optional>

class QLabel;
class QLineEdit;
class QListWidget;
class QPushButton;
class QRadioButton;

namespace zf::ui {

// Where contacts are filed: a contact book file on this computer, or a CardDAV address book.
struct BookChoice {
    QString location; // a path, or the http(s) address of a CardDAV book
    QString user;     // the account on the server; "" for a file

    // An http:// or https:// address (any case) rather than a path.
    static bool isServerLocation(const QString& location);
    bool isServer() const { return isServerLocation(location); }
    bool operator==(const BookChoice&) const = default;
};

// The German sentence for a failed connection to the server at url.
QString ConnectionErrorText(const carddav::DavError& error, const QUrl& url);

// "Adressbuch wählen": a file, or a server whose address books "Verbindung prüfen" lists to
// pick from. Stores nothing; the caller takes choice() after OK.
class formAdressbuch : public QDialog {
    Q_OBJECT
public:
    // Without credentials the dialog asks for passwords itself (environment, keyring, dialog).
    explicit formAdressbuch(const BookChoice& current,
                            credentials::Credentials* credentials = nullptr,
                            QWidget* parent = nullptr);
    ~formAdressbuch() override;

    BookChoice choice() const;
    // For each request of the check; the tests shorten it.
    void setTimeout(std::chrono::milliseconds timeout) { m_timeout = timeout; }
    // "Verbindung prüfen": the discovery, with the busy pointer while it runs.
    void checkConnection();

    QRadioButton* optDatei;
    QLineEdit* txtDatei;
    QPushButton* cmdDurchsuchen;
    QRadioButton* optServer;
    QLineEdit* txtAdresse;
    QLineEdit* txtBenutzer;
    QPushButton* cmdPruefen;
    QListWidget* lstBuecher;
    QLabel* lblStatus;
    QPushButton* cmdOK;
    QPushButton* cmdAbbrechen;

private:
    void browse();
    void updateState();
    void showStatus(const QString& text, bool error);
    // The typed address as a URL, https:// added when no scheme was typed; invalid when unusable.
    QUrl serverUrl() const;

    std::unique_ptr<credentials::Credentials> m_ownCredentials;
    credentials::Credentials* m_credentials;
    std::chrono::milliseconds m_timeout = carddav::DavClient::DefaultTimeout;
};

// Shows the dialog modally; the choice after OK, nullopt after Abbrechen.
std::optional<BookChoice> ChooseBook(const BookChoice& current,
                                     credentials::Credentials* credentials, QWidget* parent);

} // namespace zf::ui
