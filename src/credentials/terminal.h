#pragma once

// Asking for a password on the command line: on the controlling terminal, never on standard
// input or output (those may be a pipe or a file), and without echo.

#include "credentials.h"

#include <QString>

#include <optional>

namespace zf::credentials {

// Whether the process has a controlling terminal to ask on.
bool hasTerminal();

// Shows the prompt on the controlling terminal and reads one line with echo off; the echo
// comes back afterwards, also on Ctrl+C. nullopt without a terminal, or at end of input.
std::optional<QString> readSecretLine(const QString& prompt);

// The command line's way of asking, in English like the rest of it. With offerRemember a
// second question (with echo) asks whether the keyring should keep the password.
AskFunction terminalAsk(bool offerRemember = false);

} // namespace zf::credentials
