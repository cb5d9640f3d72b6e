#include "messages.h"

#include "analysis/session.h"

#include <QMessageBox>

#include <memory>

using namespace Qt::StringLiterals;

namespace zf::ui {

namespace {

int showMessageBox(QWidget* parent, const QString& text, int style)
{
    const std::unique_ptr<QMessageBox> box(makeMessageBox(parent, text, style));
    return answerCode(box->exec());
}

MessageFunction& currentFunction()
{
    static MessageFunction function = showMessageBox;
    return function;
}

} // namespace

int ShowMessage(const QString& text, int style, QWidget* parent)
{
    return currentFunction()(parent, text, style);
}

MessageFunction setMessageFunction(MessageFunction function)
{
    MessageFunction previous = std::move(currentFunction());
    currentFunction() = function ? std::move(function) : MessageFunction(showMessageBox);
    return previous;
}

QMessageBox* makeMessageBox(QWidget* parent, const QString& text, int style)
{
    auto* box = new QMessageBox(parent);
    box->setWindowTitle(u"Zettelfischer"_s);
    box->setText(text);
    switch (style) {
    case StyleQuestion:
        box->setIcon(QMessageBox::Question);
        box->setStandardButtons(QMessageBox::Yes | QMessageBox::No);
        box->setDefaultButton(QMessageBox::Yes);
        break;
    case StyleInformation:
        box->setIcon(QMessageBox::Information);
        box->setStandardButtons(QMessageBox::Ok);
        break;
    default:
        box->setIcon(QMessageBox::Warning);
        box->setStandardButtons(QMessageBox::Ok);
        break;
    }
    return box;
}

int answerCode(int standardButton)
{
    switch (standardButton) {
    case QMessageBox::Yes:
        return AnswerYes;
    case QMessageBox::No:
        return AnswerNo;
    default:
        return AnswerOk;
    }
}

} // namespace zf::ui
