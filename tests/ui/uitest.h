#pragma once

// Shared by the window tests: messages captured through the message seam, and a way to act
// inside a modal dialog once its own event loop runs.

#include "ui/messages.h"

#include <QApplication>
#include <QList>
#include <QStringList>
#include <QTimer>
#include <QWidget>

#include <functional>

namespace zf::ui::test {

// Records every message as "text|style" and answers with the queued codes (OK when empty).
class MessageLog {
public:
    MessageLog()
    {
        m_previous = setMessageFunction([this](QWidget*, const QString& text, int style) {
            messages << QStringLiteral("%1|%2").arg(text).arg(style);
            if (onMessage)
                onMessage();
            return answers.isEmpty() ? 1 : answers.takeFirst();
        });
    }
    ~MessageLog() { setMessageFunction(std::move(m_previous)); }
    MessageLog(const MessageLog&) = delete;
    MessageLog& operator=(const MessageLog&) = delete;

    QStringList messages;
    QList<int> answers;
    std::function<void()> onMessage;

private:
    MessageFunction m_previous;
};

inline QString message(const QString& text, int style)
{
    return QStringLiteral("%1|%2").arg(text).arg(style);
}

// Runs the action on the first modal dialog that opens (or with nullptr when the event loop
// turns without one), and closes a dialog the action left open so that no test hangs. Nothing
// runs once the context is gone.
template <typename Dialog>
void whenModal(const QObject* context, std::function<void(Dialog*)> action)
{
    QTimer::singleShot(0, context, [action] {
        QWidget* modal = QApplication::activeModalWidget();
        action(qobject_cast<Dialog*>(modal));
        if (QWidget* still = QApplication::activeModalWidget(); still && still == modal)
            still->close();
    });
}

} // namespace zf::ui::test
