#pragma once

#include "duplicates/directory.h"

#include <QDialog>
#include <QTimer>

#include <optional>

class QLabel;
class QLineEdit;
class QListWidget;
class QPushButton;

namespace zf::ui {

// "Anna Roth, Roth GmbH": how the window names a contact; its e-mail address when it has
// neither name nor company.
QString ContactLabel(const dup::Match& contact);
// Name, company and e-mail address, those it has, for a list.
QString ContactLine(const dup::Match& contact);

// "Kontakt wählen": the contacts of the book that hold the typed text, found again as the user
// types; Enter or a double click takes the selected one. Stores nothing.
class formKontakt : public QDialog {
    Q_OBJECT
public:
    static constexpr int Limit = 50; // contacts listed at most

    // prompt: shown above the search box; the dialog's own question when empty.
    formKontakt(dup::ContactDirectory& directory, const QString& prompt = {},
                QWidget* parent = nullptr);

    // The contact taken; nullopt before one was.
    const std::optional<dup::Match>& choice() const { return m_choice; }
    // Lists the contacts for the text now, without waiting for the pause in typing.
    void search();

    void accept() override;

    QLabel* lblFrage;
    QLineEdit* txtSuche;
    QListWidget* lstKontakte;
    QPushButton* cmdOK;
    QPushButton* cmdAbbrechen;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void showNote(const QString& text);
    void updateState();

    dup::ContactDirectory& m_directory;
    QTimer m_pause;
    QList<dup::Match> m_found; // the list's contacts, by row
    std::optional<dup::Match> m_choice;
};

// Shows the dialog modally; the contact taken, nullopt after Abbrechen or Escape.
std::optional<dup::Match> ChooseContact(dup::ContactDirectory& directory, const QString& prompt,
                                        QWidget* parent);

} // namespace zf::ui
