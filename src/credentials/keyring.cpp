#include "keyring.h"

#include <QEventLoop>
#include <QTimer>
#include <qt6keychain/keychain.h>

using namespace Qt::StringLiterals;

namespace zf::credentials {

namespace {

// Starts the job and waits for it. The job has no parent and deletes itself when it finishes:
// after a timeout it may still be talking to the keyring, and must not answer into a loop or
// a result that are gone (the connection dies with the loop).
KeyringResult run(QKeychain::Job* job, std::chrono::milliseconds timeout)
{
    job->setAutoDelete(true);
    // Never a plain-text copy in a settings file when the keyring is missing.
    job->setInsecureFallback(false);

    KeyringResult result;
    result.status = KeyringResult::TimedOut;
    result.error = u"the keyring did not answer within %1 ms"_s.arg(timeout.count());
    bool finished = false;
    QEventLoop loop;
    QObject::connect(job, &QKeychain::Job::finished, &loop, [&](QKeychain::Job* done) {
        finished = true;
        switch (done->error()) {
        case QKeychain::NoError:
            result.status = KeyringResult::Done;
            result.error.clear();
            if (auto* read = qobject_cast<QKeychain::ReadPasswordJob*>(done))
                result.password = read->textData();
            break;
        case QKeychain::EntryNotFound:
            result.status = KeyringResult::NotFound;
            result.error.clear();
            break;
        default:
            result.status = KeyringResult::Unavailable;
            result.error = done->errorString();
            if (result.error.isEmpty())
                result.error = u"keyring error %1"_s.arg(int(done->error()));
            break;
        }
        loop.quit();
    });
    QTimer::singleShot(timeout, &loop, &QEventLoop::quit);
    job->start();
    if (!finished)
        loop.exec(QEventLoop::ExcludeUserInputEvents);
    return result;
}

} // namespace

Keyring::Keyring(QString service, std::chrono::milliseconds timeout)
    : m_service(std::move(service)), m_timeout(timeout)
{
}

KeyringResult Keyring::read(const QString& key) const
{
    auto* job = new QKeychain::ReadPasswordJob(m_service);
    job->setKey(key);
    return run(job, m_timeout);
}

KeyringResult Keyring::write(const QString& key, const QString& password) const
{
    auto* job = new QKeychain::WritePasswordJob(m_service);
    job->setKey(key);
    job->setTextData(password);
    return run(job, m_timeout);
}

KeyringResult Keyring::remove(const QString& key) const
{
    auto* job = new QKeychain::DeletePasswordJob(m_service);
    job->setKey(key);
    return run(job, m_timeout);
}

} // namespace zf::credentials
