#include "messages.h"

#include <QMessageBox>
#include <QPointer>

#include <memory>

using namespace Qt::StringLiterals;

namespace zf::ui {

MessageFunction messageBoxes(QWidget* parent)
{
    return [owner = QPointer<QWidget>(parent)](const QString& text, MessageStyle style) {
        const std::unique_ptr<QMessageBox> box(makeMessageBox(owner, text, style));
        return answerCode(box->exec());
    };
}

QMessageBox* makeMessageBox(QWidget* parent, const QString& text, MessageStyle style)
{
    auto* box = new QMessageBox(parent);
    box->setWindowTitle(u"Zettelfischer"_s);
    box->setText(text);
    switch (style) {
    case MessageStyle::Question:
        box->setIcon(QMessageBox::Question);
        box->setStandardButtons(QMessageBox::Yes | QMessageBox::No);
        box->setDefaultButton(QMessageBox::Yes);
        break;
    case MessageStyle::Information:
        box->setIcon(QMessageBox::Information);
        box->setStandardButtons(QMessageBox::Ok);
        break;
    case MessageStyle::Exclamation:
        box->setIcon(QMessageBox::Warning);
        box->setStandardButtons(QMessageBox::Ok);
        break;
    }
    return box;
}

MessageAnswer answerCode(int standardButton)
{
    switch (standardButton) {
    case QMessageBox::Yes:
        return MessageAnswer::Yes;
    case QMessageBox::No:
        return MessageAnswer::No;
    default:
        return MessageAnswer::Ok;
    }
}

} // namespace zf::ui
