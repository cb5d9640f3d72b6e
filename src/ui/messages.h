#pragma once

#include <QString>

#include <functional>

class QMessageBox;
class QWidget;

namespace zf::ui {

// Shows a message and returns the code of the button that closed it (1 OK, 6 Yes, 7 No).
using MessageFunction = std::function<int(QWidget* parent, const QString& text, int style)>;

// The one way the program shows a message box: title "Zettelfischer", style 36, 48 or 64.
int ShowMessage(const QString& text, int style, QWidget* parent = nullptr);

// Replaces what ShowMessage does (tests record instead of showing); an empty function
// brings back the real message box. Returns the function that was in place.
MessageFunction setMessageFunction(MessageFunction function);

// The box ShowMessage would show, not yet shown; the caller owns it.
QMessageBox* makeMessageBox(QWidget* parent, const QString& text, int style);
// The platform's code of the button that closed a box.
int answerCode(int standardButton);

} // namespace zf::ui
