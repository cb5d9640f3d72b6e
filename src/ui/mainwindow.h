#pragma once

#include "credentials/credentials.h"
#include "formadressbuch.h"
#include "formmain.h"

#include <QMainWindow>

#include <optional>

class QAction;
class QLabel;
class QMenu;

namespace zf::ui {

// What the window remembers between runs of its own menu choices. It lives in fenster.conf in
// the user's config folder ($XDG_CONFIG_HOME/zettelfischer/, ~/.config/zettelfischer/ when
// unset), apart from zettelfischer.ini, which people edit by hand. A password is never kept.
QString windowChoicesPath();
std::optional<bool> rememberedEnhancedAnalysis();
void rememberEnhancedAnalysis(bool on);
// The book last chosen in "Adressbuch wählen"; nullopt before any choice.
std::optional<BookChoice> rememberedBook();
void rememberBook(const BookChoice& choice);

// How the book is named in the menu: the file name, or user@host for a server.
QString BookLabel(const BookChoice& book);

// The frame around formMain: a menu bar above it and nothing else, so the form keeps its size
// and the window grows by the menu bar's height only.
class MainWindow : public QMainWindow {
    Q_OBJECT
public:
    // book: the one options.contacts was made for, shown in the menu.
    // The credentials are those the books log in with; the book dialog asks through them too.
    MainWindow(MainOptions options, BookChoice book,
               std::shared_ptr<credentials::Credentials> credentials, QWidget* parent = nullptr);
    ~MainWindow() override;

    formMain& form() { return *m_form; }
    const BookChoice& book() const { return m_book; }

    // The form's start-up; the menu then shows the analysis the settings chose.
    void StartUp();
    // "Adressbuch wählen …".
    void ChooseContactBook();
    // What the menu and the menu bar's corner say "Bearbeiten" overwrites.
    QString CurrentContactText() const;

    QMenu* mnuAnalyse = nullptr;
    QAction* mnuErweiterteAnalyse = nullptr;
    QMenu* mnuAdressbuch = nullptr;
    QAction* mnuAktuellesBuch = nullptr; // disabled: names the book in use
    QAction* mnuAdressbuchWaehlen = nullptr;
    QMenu* mnuKontakt = nullptr;
    QAction* mnuAktuellerKontakt = nullptr; // disabled: names the contact "Bearbeiten" overwrites
    QAction* mnuKontaktWaehlen = nullptr;
    QLabel* lblAktuellerKontakt = nullptr; // the same, always in sight at the menu bar's right

private:
    void showBook();
    void showCurrentContact();

    formMain* m_form;
    BookChoice m_book;
    // One for the whole run, so a password given once is not asked for again.
    std::shared_ptr<credentials::Credentials> m_credentials;
};

} // namespace zf::ui
