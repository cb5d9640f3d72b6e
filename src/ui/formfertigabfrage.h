#pragma once

#include "act/contactlink.h"

#include <QDialog>

class QLabel;
class QPushButton;

namespace zf::ui {

// The prompt after a transfer: back to the main window for the next address, or leave.
class formFertigAbfrage : public QDialog {
    Q_OBJECT
public:
    explicit formFertigAbfrage(bool created, QWidget* parent = nullptr);

    act::Completion CompletionChoice() const { return m_choice; }

    QLabel* Label1;
    QPushButton* cmdNeueRunde;
    QPushButton* cmdRaus;

private:
    void answer(act::Completion choice);

    act::Completion m_choice = act::Completion::None;
};

// Shows the prompt modally and returns its answer.
act::Completion ShowCompletionPrompt(bool created, QWidget* parent);

} // namespace zf::ui
