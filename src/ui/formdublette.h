#pragma once

#include "duplicatecheck.h"

#include <QDialog>

class QLabel;
class QListWidget;
class QPushButton;

namespace zf::ui {

// The question before "Neu Anlegen" files a person the book has already: the matches with
// name, company and e-mail, and the three ways on. Looks like the program's message boxes.
class formDublette : public QDialog {
    Q_OBJECT
public:
    explicit formDublette(const QList<dup::Match>& matches, QWidget* parent = nullptr);

    // Abbrechen, Escape and the close box: Cancel.
    DuplicateAnswer answer() const { return m_answer; }

    QLabel* lblSymbol;
    QLabel* lblFrage;
    QListWidget* lstTreffer;
    QPushButton* cmdNeu;
    QPushButton* cmdAktualisieren;
    QPushButton* cmdAbbrechen;

private:
    QList<dup::Match> m_matches;
    DuplicateAnswer m_answer;
};

// Why the book takes the contact for the same person, as the list says it.
QString ReasonText(dup::Reason reason);

// The real duplicate question: formDublette, modal on parent.
DuplicateAnswer AskDuplicate(const QList<dup::Match>& matches, QWidget* parent);

} // namespace zf::ui
