#pragma once

// Where the password of a CardDAV account comes from, in this order: the environment variable
// ZETTELFISCHER_PASSWORD (scripts, tests), the passwords given earlier to the same object, the
// desktop keyring, and last the user through the seam the caller provides (a dialog, the
// terminal). The password is never written to a file of ours; only the keyring keeps it, and
// only when the user asks for that ("Passwort merken").
//
// Keyring entries: service "zettelfischer", key "user@host" (with ":port" when the address
// names one), so every book of one account on one server shares one entry.

#include "keyring.h"

#include <QHash>
#include <QString>
#include <QUrl>

#include <functional>
#include <optional>

namespace zf::credentials {

inline constexpr char PasswordVariable[] = "ZETTELFISCHER_PASSWORD";

// The keyring key of an account; the user part of the address counts when user is "".
QString keyringKey(const QUrl& book, const QString& user);
// What to call the server to the user: host, with ":port" when the address names one.
QString serverName(const QUrl& book);

struct PasswordRequest {
    QUrl book;
    QString user;
    QString server;        // serverName(book)
    bool rejected = false; // the last password tried was refused
};

struct PasswordAnswer {
    QString password;
    bool remember = false; // "Passwort merken"
};

// Asks the user; nullopt when they cancel or there is no way to ask.
using AskFunction = std::function<std::optional<PasswordAnswer>(const PasswordRequest&)>;

enum class PasswordSource { None, Environment, Session, Keyring, Asked };

struct Password {
    QString password;
    PasswordSource source = PasswordSource::None;
    bool remember = false; // asked, with "Passwort merken"
};

struct LoginResult {
    enum Outcome {
        Accepted,
        Cancelled, // nothing to try: the user cancelled, or there was no way to ask
        GaveUp,    // refused every time the user was asked
    };
    Outcome outcome = Cancelled;
    Password password;    // the one the server took
    QString keyringError; // "Passwort merken" or forgetting failed: why, in English
};

class Credentials {
public:
    // Without a keyring (nullopt) the environment and the user alone are asked.
    explicit Credentials(AskFunction ask = {}, std::optional<Keyring> keyring = Keyring());

    void setAsk(AskFunction ask) { m_ask = std::move(ask); }
    bool hasKeyring() const { return m_keyring.has_value(); }

    // The environment, the session, else the keyring; never asks.
    std::optional<Password> known(const QUrl& book, const QString& user) const;
    // known(), else the user.
    std::optional<Password> password(const QUrl& book, const QString& user) const;
    // The user, told that the last password was refused.
    std::optional<Password> askAgain(const QUrl& book, const QString& user) const;

    // Tries attempt with passwords until the server takes one: first the known one (or none,
    // so a book without login never asks), then what the user gives, at most maxAsks times.
    // attempt returns false for a refused password (HTTP 401) and throws for anything else.
    // The password taken is kept for this object's life; an asked one goes into the keyring
    // with "Passwort merken", and out of it without, when the keyring had one that failed.
    LoginResult logIn(const QUrl& book, const QString& user,
                      const std::function<bool(const QString& password)>& attempt, int maxAsks = 3);

    KeyringResult remember(const QUrl& book, const QString& user, const QString& password) const;
    KeyringResult forget(const QUrl& book, const QString& user);

private:
    std::optional<Password> ask(const QUrl& book, const QString& user, bool rejected) const;

    AskFunction m_ask;
    std::optional<Keyring> m_keyring;
    // A keyring that timed out once is not waited for again.
    mutable bool m_keyringSilent = false;
    QHash<QString, QString> m_session;
};

} // namespace zf::credentials
