#pragma once

#include "analysis/seams.h"
#include "analysis/session.h"

#include <QDialog>

class QLabel;
class QLineEdit;
class QPlainTextEdit;
class QPushButton;

namespace zf::ui {

// The split preview: the text with every CR LF turned into the separator, cut at every
// separator, each piece trimmed and ended by CR LF (empty pieces give empty lines).
QString SeparatorPreview(const QString& clipboardText, const QString& separator);

// The separator chooser: the user marks a character in the raw clipboard text, previews the
// split and hands the character on through ChosenSeparator. Opening it clears that choice.
class formTrenner : public QDialog {
    Q_OBJECT
public:
    formTrenner(SharedState& state, MessageFunction showMessage, QWidget* parent = nullptr);

    // The chosen character; txtTrenner shows it, line breaks and tabs made visible.
    const QString& chosen() const { return m_chosen; }

    QLabel* Label1;
    QPushButton* cmdTrennerNeu;
    QPushButton* cmdTrennerVerwerfen;
    QPlainTextEdit* txtClipText;
    QLabel* Label2;
    QLineEdit* txtTrenner;
    QPushButton* cmdWeiter;

private:
    void takeSeparator();
    void discardSeparator();
    void continueWithSeparator();

    SharedState& m_state;
    MessageFunction m_showMessage;
    QString m_chosen;
};

// Opens the chooser modally and returns ChosenSeparator ("" when nothing was chosen).
QString ChooseSeparator(SharedState& state, const MessageFunction& showMessage, QWidget* parent);

} // namespace zf::ui
