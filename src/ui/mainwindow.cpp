#include "mainwindow.h"

#include "formkontakt.h"
#include "formpasswort.h"

#include <QFileInfo>
#include <QLabel>
#include <QLayout>
#include <QMenu>
#include <QMenuBar>
#include <QSettings>
#include <QStandardPaths>
#include <QUrl>

using namespace Qt::StringLiterals;

namespace zf::ui {

namespace {

const QString KeyEnhanced = u"Fenster/ErweiterteAnalyse"_s;
const QString KeyBook = u"Fenster/Adressbuch"_s;
const QString KeyUser = u"Fenster/Benutzer"_s;

QSettings choices()
{
    return QSettings(windowChoicesPath(), QSettings::IniFormat);
}

} // namespace

QString windowChoicesPath()
{
    return QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) +
           u"/zettelfischer/fenster.conf"_s;
}

std::optional<bool> rememberedEnhancedAnalysis()
{
    const QVariant value = choices().value(KeyEnhanced);
    if (!value.isValid())
        return std::nullopt;
    return value.toBool();
}

void rememberEnhancedAnalysis(bool on)
{
    choices().setValue(KeyEnhanced, on);
}

std::optional<BookChoice> rememberedBook()
{
    const QSettings store = choices();
    const QString location = store.value(KeyBook).toString();
    if (location.isEmpty())
        return std::nullopt;
    return BookChoice{location, store.value(KeyUser).toString()};
}

void rememberBook(const BookChoice& choice)
{
    QSettings store = choices();
    store.setValue(KeyBook, choice.location);
    store.setValue(KeyUser, choice.user);
}

QString BookLabel(const BookChoice& book)
{
    if (!book.isServer())
        return QFileInfo(book.location).fileName();
    const QUrl url(book.location.trimmed());
    const QString user = book.user.isEmpty() ? url.userName() : book.user;
    const QString server = credentials::serverName(url);
    return user.isEmpty() ? server : user + u'@' + server;
}

MainWindow::MainWindow(MainOptions options, BookChoice book,
                       std::shared_ptr<credentials::Credentials> credentials, QWidget* parent)
    : QMainWindow(parent), m_form(new formMain(std::move(options), this)), m_book(std::move(book)),
      m_credentials(std::move(credentials))
{
    setObjectName(u"MainWindow"_s);
    setCentralWidget(m_form);
    // As fixed as the form inside: no room to resize into.
    layout()->setSizeConstraint(QLayout::SetFixedSize);
    // The title and icon are the form's.
    setWindowIcon(m_form->windowIcon());
    connect(m_form, &QWidget::windowTitleChanged, this, &QWidget::setWindowTitle);

    mnuAnalyse = menuBar()->addMenu(u"&Analyse"_s);
    mnuAnalyse->setObjectName(u"mnuAnalyse"_s);
    mnuErweiterteAnalyse = mnuAnalyse->addAction(u"&Erweiterte Analyse"_s);
    mnuErweiterteAnalyse->setObjectName(u"mnuErweiterteAnalyse"_s);
    mnuErweiterteAnalyse->setCheckable(true);
    mnuErweiterteAnalyse->setChecked(m_form->EnhancedAnalysis());
    connect(mnuErweiterteAnalyse, &QAction::toggled, this, [this](bool on) {
        rememberEnhancedAnalysis(on);
        m_form->SetEnhancedAnalysis(on);
    });

    mnuAdressbuch = menuBar()->addMenu(u"A&dressbuch"_s);
    mnuAdressbuch->setObjectName(u"mnuAdressbuch"_s);
    mnuAktuellesBuch = mnuAdressbuch->addAction(QString());
    mnuAktuellesBuch->setObjectName(u"mnuAktuellesBuch"_s);
    mnuAktuellesBuch->setEnabled(false);
    mnuAdressbuch->addSeparator();
    mnuAdressbuchWaehlen = mnuAdressbuch->addAction(u"Adressbuch &wählen …"_s);
    mnuAdressbuchWaehlen->setObjectName(u"mnuAdressbuchWaehlen"_s);
    connect(mnuAdressbuchWaehlen, &QAction::triggered, this, &MainWindow::ChooseContactBook);

    mnuKontakt = menuBar()->addMenu(u"&Kontakt"_s);
    mnuKontakt->setObjectName(u"mnuKontakt"_s);
    mnuAktuellerKontakt = mnuKontakt->addAction(QString());
    mnuAktuellerKontakt->setObjectName(u"mnuAktuellerKontakt"_s);
    mnuAktuellerKontakt->setEnabled(false);
    mnuKontakt->addSeparator();
    mnuKontaktWaehlen = mnuKontakt->addAction(u"Kontakt &wählen …"_s);
    mnuKontaktWaehlen->setObjectName(u"mnuKontaktWaehlen"_s);
    connect(mnuKontaktWaehlen, &QAction::triggered, m_form, [this] { m_form->ChooseContact(); });

    lblAktuellerKontakt = new QLabel(menuBar());
    lblAktuellerKontakt->setObjectName(u"lblAktuellerKontakt"_s);
    lblAktuellerKontakt->setTextFormat(Qt::PlainText);
    lblAktuellerKontakt->setContentsMargins(0, 0, 8, 0);
    lblAktuellerKontakt->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    // Beside the three menus, whatever it says, so that the menu bar never lays out anew; a
    // long name is cut short, the tooltip has it whole.
    lblAktuellerKontakt->setFixedWidth(380);
    menuBar()->setCornerWidget(lblAktuellerKontakt, Qt::TopRightCorner);
    connect(m_form, &formMain::currentContactChanged, this, &MainWindow::showCurrentContact);

    showBook();
    showCurrentContact();
}

MainWindow::~MainWindow() = default;

void MainWindow::StartUp()
{
    m_form->StartUp();
    // Only the user's toggling is remembered, not what the settings file chose.
    const QSignalBlocker quiet(mnuErweiterteAnalyse);
    mnuErweiterteAnalyse->setChecked(m_form->EnhancedAnalysis());
}

void MainWindow::ChooseContactBook()
{
    const std::optional<BookChoice> choice = ChooseBook(m_book, m_credentials.get(), this);
    if (!choice || !m_form->UseBook(*choice))
        return;
    m_book = *choice;
    rememberBook(m_book);
    showBook();
}

QString MainWindow::CurrentContactText() const
{
    const QString lead = u"Bearbeiten überschreibt: "_s;
    dup::ContactDirectory* directory = m_form->directory();
    if (!directory)
        return lead + u"den aktuellen Kontakt des Adressbuchs"_s;
    try {
        const std::optional<dup::Match> current = directory->current();
        return lead + (current ? ContactLabel(*current) : u"(kein aktueller Kontakt)"_s);
    } catch (const std::exception&) {
        return lead + u"(Adressbuch nicht erreichbar)"_s;
    }
}

void MainWindow::showCurrentContact()
{
    const QString text = CurrentContactText();
    // A firm "Müller & Söhne" keeps its ampersand.
    mnuAktuellerKontakt->setText(QString(text).replace(u'&', u"&&"_s));
    mnuKontaktWaehlen->setEnabled(m_form->directory() != nullptr);
    const int room = lblAktuellerKontakt->contentsRect().width();
    lblAktuellerKontakt->setText(
        lblAktuellerKontakt->fontMetrics().elidedText(text, Qt::ElideRight, room));
    lblAktuellerKontakt->setToolTip(text);
}

void MainWindow::showBook()
{
    const QString label = BookLabel(m_book);
    mnuAktuellesBuch->setText(u"Aktuell: "_s + (label.isEmpty() ? u"(keines)"_s : label));
    mnuAktuellesBuch->setToolTip(m_book.location);
}

} // namespace zf::ui
