#pragma once

#include <QDialog>

class QLabel;
class QPushButton;

namespace zf::ui {

// The prompt after a transfer: back to the main window for the next address, or leave.
class formFertigAbfrage : public QDialog {
    Q_OBJECT
public:
    explicit formFertigAbfrage(bool created, QWidget* parent = nullptr);

    // 0 = closed without an answer, 1 = leave, 2 = back.
    quint8 CompletionChoice() const { return m_choice; }

    QLabel* Label1;
    QPushButton* cmdNeueRunde;
    QPushButton* cmdRaus;

private:
    void answer(quint8 choice);

    quint8 m_choice = 0;
};

// Shows the prompt modally and returns its answer.
quint8 ShowCompletionPrompt(bool created, QWidget* parent);

} // namespace zf::ui
