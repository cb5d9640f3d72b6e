#include "formpasswort.h"

#include "windowhelpers.h"

#include <QCheckBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QGuiApplication>
#include <QLabel>
#include <QLineEdit>
#include <QPointer>
#include <QPushButton>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace zf::ui {

formPasswort::formPasswort(const credentials::PasswordRequest& request, QWidget* parent)
    : QDialog(parent)
{
    setWindowTitle(u"Anmeldung am Adressbuch"_s);
    setFont(ClassicFont(8.25));

    lblAnmeldung =
        new QLabel(request.user.isEmpty()
                       ? u"Der Server %1 verlangt ein Passwort."_s.arg(request.server)
                       : u"Der Server %1 verlangt das Passwort für den Benutzer „%2“."_s.arg(
                             request.server, request.user),
                   this);
    lblAnmeldung->setObjectName(u"lblAnmeldung"_s);
    lblAnmeldung->setWordWrap(true);
    lblAnmeldung->setTextFormat(Qt::PlainText);

    lblFalsch = new QLabel(u"Das Passwort war falsch. Bitte noch einmal eingeben."_s, this);
    lblFalsch->setObjectName(u"lblFalsch"_s);
    lblFalsch->setWordWrap(true);
    lblFalsch->setStyleSheet(u"color: #b00000;"_s);
    lblFalsch->setVisible(request.rejected);

    txtPasswort = new QLineEdit(this);
    txtPasswort->setObjectName(u"txtPasswort"_s);
    txtPasswort->setEchoMode(QLineEdit::Password);
    txtPasswort->setMinimumWidth(220);

    chkMerken = new QCheckBox(u"Passwort merken"_s, this);
    chkMerken->setObjectName(u"chkMerken"_s);
    chkMerken->setToolTip(u"Legt das Passwort im Schlüsselbund des Desktops ab."_s);

    auto* buttons = new QDialogButtonBox(this);
    cmdOK = buttons->addButton(u"OK"_s, QDialogButtonBox::AcceptRole);
    cmdOK->setObjectName(u"cmdOK"_s);
    cmdOK->setDefault(true);
    cmdAbbrechen = buttons->addButton(u"Abbrechen"_s, QDialogButtonBox::RejectRole);
    cmdAbbrechen->setObjectName(u"cmdAbbrechen"_s);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);

    auto* form = new QFormLayout;
    form->addRow(u"Passwort:"_s, txtPasswort);
    form->addRow(QString(), chkMerken);

    auto* layout = new QVBoxLayout(this);
    layout->addWidget(lblAnmeldung);
    layout->addWidget(lblFalsch);
    layout->addLayout(form);
    layout->addWidget(buttons);
    layout->setSizeConstraint(QLayout::SetFixedSize);

    txtPasswort->setFocus();
}

QString formPasswort::password() const
{
    return txtPasswort->text();
}

bool formPasswort::remember() const
{
    return chkMerken->isChecked();
}

credentials::AskFunction PasswordDialogAsk(QWidget* parent)
{
    QPointer<QWidget> owner(parent);
    return [owner](const credentials::PasswordRequest& request)
               -> std::optional<credentials::PasswordAnswer> {
        const bool busy = QGuiApplication::overrideCursor() != nullptr;
        SetBusyCursor(false);
        formPasswort dialog(request, owner.data());
        const bool ok = dialog.exec() == QDialog::Accepted;
        if (busy)
            SetBusyCursor(true);
        if (!ok)
            return std::nullopt;
        return credentials::PasswordAnswer{dialog.password(), dialog.remember()};
    };
}

} // namespace zf::ui
