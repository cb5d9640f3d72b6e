#include "credentials.h"

#include <QtGlobal>

using namespace Qt::StringLiterals;

namespace zf::credentials {

namespace {

QString effectiveUser(const QUrl& book, const QString& user)
{
    return user.isEmpty() ? book.userName() : user;
}

} // namespace

QString serverName(const QUrl& book)
{
    const QString host = book.host();
    return book.port() == -1 ? host : u"%1:%2"_s.arg(host).arg(book.port());
}

QString keyringKey(const QUrl& book, const QString& user)
{
    const QString who = effectiveUser(book, user);
    return who.isEmpty() ? serverName(book) : who + u'@' + serverName(book);
}

Credentials::Credentials(AskFunction ask, std::optional<Keyring> keyring)
    : m_ask(std::move(ask)), m_keyring(std::move(keyring))
{
}

std::optional<Password> Credentials::known(const QUrl& book, const QString& user) const
{
    // Set but empty counts as set: a script may mean an account without a password.
    if (qEnvironmentVariableIsSet(PasswordVariable))
        return Password{qEnvironmentVariable(PasswordVariable), PasswordSource::Environment};
    const QString key = keyringKey(book, user);
    if (auto it = m_session.constFind(key); it != m_session.constEnd())
        return Password{*it, PasswordSource::Session};
    if (m_keyring && !m_keyringSilent) {
        const KeyringResult found = m_keyring->read(key);
        if (found.status == KeyringResult::TimedOut)
            m_keyringSilent = true;
        if (found.ok())
            return Password{found.password, PasswordSource::Keyring};
    }
    return std::nullopt;
}

std::optional<Password> Credentials::password(const QUrl& book, const QString& user) const
{
    if (auto p = known(book, user))
        return p;
    return ask(book, user, false);
}

std::optional<Password> Credentials::askAgain(const QUrl& book, const QString& user) const
{
    return ask(book, user, true);
}

std::optional<Password> Credentials::ask(const QUrl& book, const QString& user, bool rejected) const
{
    if (!m_ask)
        return std::nullopt;
    QUrl bare = book;
    bare.setUserInfo({});
    const auto answer =
        m_ask(PasswordRequest{bare, effectiveUser(book, user), serverName(book), rejected});
    if (!answer)
        return std::nullopt;
    return Password{answer->password, PasswordSource::Asked, answer->remember};
}

LoginResult Credentials::logIn(const QUrl& book, const QString& user,
                               const std::function<bool(const QString&)>& attempt, int maxAsks)
{
    LoginResult result;
    const std::optional<Password> first = known(book, user);
    const bool keyringTried = first && first->source == PasswordSource::Keyring;
    if (attempt(first ? first->password : QString())) {
        result.outcome = LoginResult::Accepted;
        result.password = first.value_or(Password{});
        return result;
    }

    const QString key = keyringKey(book, user);
    // A password that was refused is not offered again in this session.
    m_session.remove(key);
    for (int i = 0; i < maxAsks; ++i) {
        // Told "wrong password" only when one was sent.
        const std::optional<Password> given = ask(book, user, i > 0 || first.has_value());
        if (!given)
            return result;
        if (!attempt(given->password))
            continue;
        result.outcome = LoginResult::Accepted;
        result.password = *given;
        m_session.insert(key, given->password);
        if (m_keyring && given->remember) {
            if (m_keyringSilent) {
                result.keyringError = u"the keyring did not answer"_s;
                return result;
            }
            const KeyringResult stored = m_keyring->write(key, given->password);
            if (!stored.ok())
                result.keyringError = stored.error;
        } else if (m_keyring && keyringTried) {
            // The stored one is wrong, and the user chose not to keep the right one.
            const KeyringResult removed = m_keyring->remove(key);
            if (!removed.ok() && removed.status != KeyringResult::NotFound)
                result.keyringError = removed.error;
        }
        return result;
    }
    result.outcome = LoginResult::GaveUp;
    return result;
}

KeyringResult Credentials::remember(const QUrl& book, const QString& user,
                                    const QString& password) const
{
    if (!m_keyring)
        return KeyringResult{KeyringResult::Unavailable, {}, u"no keyring in use"_s};
    return m_keyring->write(keyringKey(book, user), password);
}

KeyringResult Credentials::forget(const QUrl& book, const QString& user)
{
    const QString key = keyringKey(book, user);
    m_session.remove(key);
    if (!m_keyring)
        return KeyringResult{KeyringResult::Unavailable, {}, u"no keyring in use"_s};
    return m_keyring->remove(key);
}

} // namespace zf::credentials
