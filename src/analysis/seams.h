#pragma once

// The two places where the program needs the user: a message box, and the separator chooser.
// The window fills them with dialogs, the command line and the tests answer themselves.

#include <QString>

#include <functional>

namespace zf {

// Buttons plus icon, numbered as the platform's message boxes number them.
enum class MessageStyle : int {
    Question = 36,    // Yes/No, question icon
    Exclamation = 48, // OK, exclamation icon
    Information = 64, // OK, information icon
};

// The button that closed a message box.
enum class MessageAnswer : int { Ok = 1, Yes = 6, No = 7 };

// Shows a message and returns the button that closed it.
using MessageFunction = std::function<MessageAnswer(const QString& text, MessageStyle style)>;

struct Seams {
    MessageFunction showMessage;
    // Lets the user mark a separator; "" when the chooser was closed without a choice.
    std::function<QString()> chooseSeparator;
};

} // namespace zf
