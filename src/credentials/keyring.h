#pragma once

// The desktop keyring (Secret Service or KWallet, through QtKeychain) as plain calls. Each waits
// for its answer in a local event loop with a timeout: a keyring that never answers, or waits
// for an unlock prompt nobody sees, costs the timeout and no more. Needs a QCoreApplication.

#include <QString>

#include <chrono>

namespace zf::credentials {

struct KeyringResult {
    enum Status {
        Done,        // read: found; write, remove: done
        NotFound,    // no entry under that key (for remove: nothing to remove)
        Unavailable, // no keyring, or it refused
        TimedOut,
    };
    Status status = Unavailable;
    QString password; // read only
    QString error;    // what the keyring said, in English; "" when Done or NotFound

    bool ok() const { return status == Done; }
};

class Keyring {
public:
    static constexpr std::chrono::milliseconds DefaultTimeout{5000};

    explicit Keyring(QString service = QStringLiteral("zettelfischer"),
                     std::chrono::milliseconds timeout = DefaultTimeout);

    const QString& service() const { return m_service; }
    std::chrono::milliseconds timeout() const { return m_timeout; }

    KeyringResult read(const QString& key) const;
    KeyringResult write(const QString& key, const QString& password) const;
    KeyringResult remove(const QString& key) const;

private:
    QString m_service;
    std::chrono::milliseconds m_timeout;
};

} // namespace zf::credentials
