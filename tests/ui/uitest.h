#pragma once

// Shared by the window tests: messages captured through the message seam, acting inside a
// modal dialog once its own event loop runs, and marking in the separator chooser.

#include "ui/formtrenner.h"
#include "ui/messages.h"

#include <QApplication>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTimer>
#include <QtTest>

namespace zf::ui::test {

inline QString message(const QString& text, MessageStyle style)
{
    return QStringLiteral("%1|%2").arg(text).arg(int(style));
}

// Records every message as "text|style" and answers with the queued answers (OK when empty).
struct MessageLog {
    QStringList messages;
    QList<MessageAnswer> answers;

    MessageFunction function()
    {
        return [this](const QString& text, MessageStyle style) {
            messages << message(text, style);
            return answers.isEmpty() ? MessageAnswer::Ok : answers.takeFirst();
        };
    }
};

// Runs the action on the first modal dialog that opens (or with nullptr when the event loop
// turns without one), then closes a dialog it left open so that no test hangs. Nothing runs
// once the context is gone.
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

// Marks count characters of the chooser's text from position from and takes them.
inline void takeMarked(formTrenner& d, int from, int count = 1)
{
    QTextCursor c = d.txtClipText->textCursor();
    c.setPosition(from);
    c.setPosition(from + count, QTextCursor::KeepAnchor);
    d.txtClipText->setTextCursor(c);
    QTest::mouseClick(d.cmdTrennerNeu, Qt::LeftButton);
}

} // namespace zf::ui::test
