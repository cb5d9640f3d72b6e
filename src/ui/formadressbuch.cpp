#include "formadressbuch.h"

#include "formpasswort.h"
#include "windowhelpers.h"

#include <QButtonGroup>
#include <QDialogButtonBox>
#include <QFileDialog>
#include <QFileInfo>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QRadioButton>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace zf::ui {

namespace {

constexpr int UrlRole = Qt::UserRole;

} // namespace

bool BookChoice::isServerLocation(const QString& location)
{
    const QString start = location.trimmed();
    return start.startsWith(u"http://"_s, Qt::CaseInsensitive) ||
           start.startsWith(u"https://"_s, Qt::CaseInsensitive);
}

QString ConnectionErrorText(const carddav::DavError& error, const QUrl& url)
{
    using carddav::DavError;
    const QString server = credentials::serverName(url);
    switch (error.kind()) {
    case DavError::Unauthorized:
        return u"Der Server %1 hat die Anmeldung abgelehnt: Benutzername oder Passwort ist falsch."_s
            .arg(server);
    case DavError::Forbidden:
        return u"Der Server %1 verweigert den Zugriff auf dieses Adressbuch."_s.arg(server);
    case DavError::NotFound:
        return u"Unter dieser Adresse wurde kein Adressbuch gefunden. Bitte die Adresse prüfen."_s;
    case DavError::Timeout:
        return u"Der Server %1 hat nicht rechtzeitig geantwortet. Bitte Adresse und Netzwerkverbindung prüfen."_s
            .arg(server);
    case DavError::ConnectionRefused:
        return u"Der Server %1 nimmt keine Verbindung an. Stimmen Adresse und Port, und läuft der Dienst?"_s
            .arg(server);
    case DavError::HostNotFound:
        return u"Den Server %1 gibt es nicht. Bitte die Adresse prüfen."_s.arg(url.host());
    case DavError::Tls:
        return u"Die sichere Verbindung zu %1 ist gescheitert: Das Zertifikat des Servers ist ungültig oder nicht vertrauenswürdig."_s
            .arg(server);
    case DavError::Redirect:
        return u"Der Server %1 leitet auf eine Adresse um, der der Zettelfischer nicht folgt."_s
            .arg(server);
    case DavError::Server:
    case DavError::Conflict:
    case DavError::PreconditionFailed:
        return u"Der Server %1 meldet einen Fehler (HTTP %2)."_s.arg(server).arg(error.status());
    case DavError::Protocol:
        return u"Der Server %1 antwortet nicht wie ein CardDAV-Server. Bitte die Adresse prüfen."_s
            .arg(server);
    case DavError::Network:
        break;
    }
    return u"Die Verbindung zum Server %1 ist gescheitert."_s.arg(server);
}

formAdressbuch::formAdressbuch(const BookChoice& current, credentials::Credentials* credentials,
                               QWidget* parent)
    : QDialog(parent), m_credentials(credentials)
{
    if (!m_credentials) {
        m_ownCredentials = std::make_unique<credentials::Credentials>(PasswordDialogAsk(this));
        m_credentials = m_ownCredentials.get();
    }

    setWindowTitle(u"Adressbuch wählen"_s);
    setFont(ClassicFont(8.25));

    optDatei = new QRadioButton(u"Kontaktbuch-Datei auf diesem Rechner"_s, this);
    optDatei->setObjectName(u"optDatei"_s);
    txtDatei = new QLineEdit(this);
    txtDatei->setObjectName(u"txtDatei"_s);
    cmdDurchsuchen = new QPushButton(u"Durchsuchen …"_s, this);
    cmdDurchsuchen->setObjectName(u"cmdDurchsuchen"_s);
    cmdDurchsuchen->setAutoDefault(false);

    optServer = new QRadioButton(u"Adressbuch auf einem Server (CardDAV)"_s, this);
    optServer->setObjectName(u"optServer"_s);
    txtAdresse = new QLineEdit(this);
    txtAdresse->setObjectName(u"txtAdresse"_s);
    txtAdresse->setPlaceholderText(u"https://server.example/"_s);
    txtBenutzer = new QLineEdit(this);
    txtBenutzer->setObjectName(u"txtBenutzer"_s);
    cmdPruefen = new QPushButton(u"Verbindung prüfen"_s, this);
    cmdPruefen->setObjectName(u"cmdPruefen"_s);
    cmdPruefen->setAutoDefault(false);
    lstBuecher = new QListWidget(this);
    lstBuecher->setObjectName(u"lstBuecher"_s);
    lstBuecher->setMinimumHeight(90);
    lblStatus = new QLabel(this);
    lblStatus->setObjectName(u"lblStatus"_s);
    lblStatus->setWordWrap(true);
    lblStatus->setTextFormat(Qt::PlainText);

    auto* group = new QButtonGroup(this);
    group->addButton(optDatei);
    group->addButton(optServer);

    auto* buttons = new QDialogButtonBox(this);
    cmdOK = buttons->addButton(u"OK"_s, QDialogButtonBox::AcceptRole);
    cmdOK->setObjectName(u"cmdOK"_s);
    cmdAbbrechen = buttons->addButton(u"Abbrechen"_s, QDialogButtonBox::RejectRole);
    cmdAbbrechen->setObjectName(u"cmdAbbrechen"_s);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);

    auto* fileRow = new QHBoxLayout;
    fileRow->addWidget(txtDatei, 1);
    fileRow->addWidget(cmdDurchsuchen);

    auto* server = new QGridLayout;
    server->addWidget(new QLabel(u"Adresse:"_s, this), 0, 0);
    server->addWidget(txtAdresse, 0, 1, 1, 2);
    server->addWidget(new QLabel(u"Benutzer:"_s, this), 1, 0);
    server->addWidget(txtBenutzer, 1, 1);
    server->addWidget(cmdPruefen, 1, 2);
    server->addWidget(new QLabel(u"Adressbücher:"_s, this), 2, 0, Qt::AlignTop);
    server->addWidget(lstBuecher, 2, 1, 1, 2);
    server->addWidget(lblStatus, 3, 1, 1, 2);
    server->setColumnStretch(1, 1);

    auto* layout = new QVBoxLayout(this);
    layout->addWidget(optDatei);
    layout->addLayout(fileRow);
    layout->addSpacing(8);
    layout->addWidget(optServer);
    layout->addLayout(server);
    layout->addWidget(buttons);
    resize(520, sizeHint().height());

    if (current.isServer()) {
        optServer->setChecked(true);
        const QUrl url(current.location.trimmed());
        txtAdresse->setText(url.toString());
        txtBenutzer->setText(current.user);
        // The book in use stays choosable without checking again.
        auto* item = new QListWidgetItem(url.toDisplayString(), lstBuecher);
        item->setData(UrlRole, url);
        lstBuecher->setCurrentItem(item);
    } else {
        optDatei->setChecked(true);
        txtDatei->setText(current.location);
    }

    connect(optDatei, &QRadioButton::toggled, this, &formAdressbuch::updateState);
    connect(txtDatei, &QLineEdit::textChanged, this, &formAdressbuch::updateState);
    connect(cmdDurchsuchen, &QPushButton::clicked, this, &formAdressbuch::browse);
    connect(cmdPruefen, &QPushButton::clicked, this, &formAdressbuch::checkConnection);
    // Books found belong to the address and user they were found with.
    const auto forgetBooks = [this] {
        lstBuecher->clear();
        lblStatus->clear();
        updateState();
    };
    connect(txtAdresse, &QLineEdit::textEdited, this, forgetBooks);
    connect(txtBenutzer, &QLineEdit::textEdited, this, forgetBooks);
    connect(lstBuecher, &QListWidget::currentItemChanged, this, &formAdressbuch::updateState);
    connect(lstBuecher, &QListWidget::itemDoubleClicked, this, [this] {
        if (cmdOK->isEnabled())
            accept();
    });
    updateState();
}

formAdressbuch::~formAdressbuch() = default;

BookChoice formAdressbuch::choice() const
{
    if (optDatei->isChecked())
        return BookChoice{txtDatei->text().trimmed(), {}};
    const QListWidgetItem* item = lstBuecher->currentItem();
    if (!item)
        return BookChoice{};
    QUrl url = item->data(UrlRole).toUrl();
    url.setUserInfo({});
    return BookChoice{url.toString(), txtBenutzer->text().trimmed()};
}

QUrl formAdressbuch::serverUrl() const
{
    QString text = txtAdresse->text().trimmed();
    if (!text.isEmpty() && !text.contains(u"://"_s))
        text.prepend(u"https://"_s);
    const QUrl url(text, QUrl::StrictMode);
    if (!url.isValid() || url.host().isEmpty() ||
        (url.scheme() != u"http"_s && url.scheme() != u"https"_s))
        return {};
    return url;
}

void formAdressbuch::checkConnection()
{
    lstBuecher->clear();
    const QUrl url = serverUrl();
    if (!url.isValid()) {
        showStatus(u"Bitte die Adresse des Servers eingeben, z. B. https://server.example/."_s,
                   true);
        updateState();
        return;
    }
    const QString user = txtBenutzer->text().trimmed();
    showStatus(u"Verbindung zu %1 wird geprüft …"_s.arg(credentials::serverName(url)), false);

    QList<carddav::AddressBookInfo> books;
    QString problem;
    QString keyringNote;
    SetBusyCursor(true);
    try {
        const credentials::LoginResult login =
            m_credentials->logIn(url, user, [&](const QString& password) {
                carddav::DavClient client(user, password);
                client.setTimeout(m_timeout);
                try {
                    books = client.addressBooks(url);
                    return true;
                } catch (const carddav::DavError& e) {
                    if (e.kind() == carddav::DavError::Unauthorized)
                        return false;
                    throw;
                }
            });
        if (login.outcome == credentials::LoginResult::Cancelled)
            problem = u"Ohne Passwort lässt sich die Verbindung nicht prüfen."_s;
        else if (login.outcome == credentials::LoginResult::GaveUp)
            problem = ConnectionErrorText(
                carddav::DavError(carddav::DavError::Unauthorized, {}, 401), url);
        if (!login.keyringError.isEmpty())
            keyringNote = u"Das Passwort konnte nicht im Schlüsselbund abgelegt werden (%1)."_s.arg(
                login.keyringError);
    } catch (const carddav::DavError& e) {
        problem = ConnectionErrorText(e, url);
        lblStatus->setToolTip(e.message());
    }
    SetBusyCursor(false);

    if (!problem.isEmpty()) {
        showStatus(problem, true);
        updateState();
        return;
    }
    for (const carddav::AddressBookInfo& book : books) {
        auto* item = new QListWidgetItem(
            u"%1 – %2"_s.arg(book.name, book.url.toDisplayString(QUrl::RemoveUserInfo)),
            lstBuecher);
        item->setData(UrlRole, book.url);
    }
    lstBuecher->setCurrentRow(0);
    QString found = books.size() == 1
                        ? u"Ein Adressbuch gefunden."_s
                        : u"%1 Adressbücher gefunden. Bitte eines wählen."_s.arg(books.size());
    if (!keyringNote.isEmpty())
        found += u' ' + keyringNote;
    showStatus(found, !keyringNote.isEmpty());
    lblStatus->setToolTip({});
    updateState();
}

void formAdressbuch::browse()
{
    QFileDialog dialog(this, u"Kontaktbuch wählen"_s);
    // The book may not exist yet: it is created on first use.
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    dialog.setFileMode(QFileDialog::AnyFile);
    dialog.setOption(QFileDialog::DontConfirmOverwrite);
    dialog.setNameFilters({u"Kontaktbuch (*.sqlite)"_s, u"Alle Dateien (*)"_s});
    dialog.setDefaultSuffix(u"sqlite"_s);
    const QFileInfo current(txtDatei->text().trimmed());
    if (!txtDatei->text().trimmed().isEmpty()) {
        dialog.setDirectory(current.absolutePath());
        dialog.selectFile(current.fileName());
    }
    if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty())
        return;
    txtDatei->setText(QDir::toNativeSeparators(dialog.selectedFiles().constFirst()));
    optDatei->setChecked(true);
}

void formAdressbuch::updateState()
{
    const bool file = optDatei->isChecked();
    txtDatei->setEnabled(file);
    cmdDurchsuchen->setEnabled(file);
    for (QWidget* w : {static_cast<QWidget*>(txtAdresse), static_cast<QWidget*>(txtBenutzer),
                       static_cast<QWidget*>(cmdPruefen), static_cast<QWidget*>(lstBuecher)})
        w->setEnabled(!file);
    cmdOK->setEnabled(file ? !txtDatei->text().trimmed().isEmpty()
                           : lstBuecher->currentItem() != nullptr);
    cmdOK->setDefault(true);
}

void formAdressbuch::showStatus(const QString& text, bool error)
{
    lblStatus->setText(text);
    lblStatus->setStyleSheet(error ? u"color: #b00000;"_s : QString());
}

std::optional<BookChoice> ChooseBook(const BookChoice& current,
                                     credentials::Credentials* credentials, QWidget* parent)
{
    formAdressbuch dialog(current, credentials, parent);
    if (dialog.exec() != QDialog::Accepted)
        return std::nullopt;
    return dialog.choice();
}

} // namespace zf::ui
