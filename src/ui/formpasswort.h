#pragma once

#include "credentials/credentials.h"

#include <QDialog>

class QCheckBox;
class QLabel;
class QLineEdit;
class QPushButton;

namespace zf::ui {

// Asks for the password of an address book account; after a refused password it says so.
class formPasswort : public QDialog {
    Q_OBJECT
public:
    explicit formPasswort(const credentials::PasswordRequest& request, QWidget* parent = nullptr);

    QString password() const;
    bool remember() const;

    QLabel* lblAnmeldung;
    QLabel* lblFalsch; // shown only after a refused password
    QLineEdit* txtPasswort;
    QCheckBox* chkMerken;
    QPushButton* cmdOK;
    QPushButton* cmdAbbrechen;
};

// The window's way of asking: the dialog, modal over parent, with the busy pointer lifted
// while it is open.
credentials::AskFunction PasswordDialogAsk(QWidget* parent);

} // namespace zf::ui
