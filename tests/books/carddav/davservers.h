#pragma once

// Real CardDAV servers for the tests and the benchmark: each started on 127.0.0.1 at a free
// port with its storage in a temporary folder, and stopped when the object goes.

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QStandardPaths>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTemporaryDir>
#include <QThread>
#include <QUrl>

#include <chrono>
#include <memory>

namespace davtest {

inline quint16 freePort()
{
    QTcpServer probe;
    probe.listen(QHostAddress::LocalHost, 0);
    return probe.serverPort();
}

class DavServer {
public:
    enum Kind { Radicale, Xandikos };

    // The server program, or "" when it is not installed.
    static QString program(Kind kind)
    {
        return QStandardPaths::findExecutable(kind == Radicale ? QStringLiteral("radicale")
                                                               : QStringLiteral("xandikos"));
    }

    explicit DavServer(Kind kind, bool tls = false) : m_kind(kind), m_port(freePort())
    {
        const QString dir = m_dir.path();
        QStringList args;
        if (kind == Radicale) {
            // A real password check (bcrypt) on one account with one address book.
            QProcess htpasswd;
            htpasswd.start(QStringLiteral("htpasswd"),
                           {"-B", "-C", "5", "-b", "-c", dir + "/users", user(), password()});
            htpasswd.waitForFinished();
            m_error = htpasswd.exitCode() == 0 ? QString() : QStringLiteral("htpasswd failed");
            const QString book = dir + "/store/collection-root/" + user() + "/kontakte";
            QDir().mkpath(book);
            QFile props(book + "/.Radicale.props");
            props.open(QIODevice::WriteOnly);
            props.write(R"({"tag": "VADDRESSBOOK", "D:displayname": "Kontakte"})");
            props.close();
            args = {"--config",
                    "",
                    "--server-hosts",
                    QStringLiteral("127.0.0.1:%1").arg(m_port),
                    "--storage-filesystem-folder",
                    dir + "/store",
                    "--auth-type",
                    "htpasswd",
                    "--auth-htpasswd-filename",
                    dir + "/users",
                    "--auth-htpasswd-encryption",
                    "bcrypt",
                    "--auth-delay",
                    "0",
                    "--rights-type",
                    "owner_only"};
            if (tls) {
                QProcess openssl;
                openssl.start(QStringLiteral("openssl"),
                              {"req", "-x509", "-newkey", "rsa:2048", "-nodes", "-days", "1",
                               "-subj", "/CN=127.0.0.1", "-keyout", dir + "/key.pem", "-out",
                               dir + "/cert.pem"});
                openssl.waitForFinished(30000);
                args << "--ssl"
                     << "--certificate" << dir + "/cert.pem"
                     << "--key" << dir + "/key.pem";
            }
        } else {
            args = {"-d",        dir + "/data", "--defaults",           "-l",
                    "127.0.0.1", "-p",          QString::number(m_port)};
        }
        m_process.setProcessChannelMode(QProcess::MergedChannels);
        m_process.setStandardOutputFile(dir + "/server.log");
        m_process.start(program(kind), args);
        // Ready once it accepts connections.
        for (int i = 0; i < 200 && m_error.isEmpty(); ++i) {
            if (m_process.state() == QProcess::NotRunning) {
                m_error = QStringLiteral("the server stopped at start: ") + log();
                break;
            }
            QTcpSocket probe;
            probe.connectToHost(QHostAddress::LocalHost, m_port);
            if (probe.waitForConnected(100))
                return;
            QThread::msleep(50);
        }
        if (m_error.isEmpty())
            m_error = QStringLiteral("the server did not start listening: ") + log();
    }

    ~DavServer()
    {
        m_process.terminate();
        if (!m_process.waitForFinished(5000)) {
            m_process.kill();
            m_process.waitForFinished(5000);
        }
    }

    // "" when the server runs.
    const QString& error() const { return m_error; }
    QString log() const
    {
        QFile f(m_dir.filePath(QStringLiteral("server.log")));
        return f.open(QIODevice::ReadOnly) ? QString::fromUtf8(f.readAll()) : QString();
    }
    quint16 port() const { return m_port; }
    // Where Radicale keeps a book's cards, one file each.
    QString storedBook(const QString& path = QStringLiteral("anna/kontakte")) const
    {
        return m_dir.filePath(QStringLiteral("store/collection-root/") + path);
    }
    // Where Xandikos keeps its one book: a git repository, one file per card.
    QString xandikosBook() const
    {
        return m_dir.filePath(QStringLiteral("data/user/contacts/addressbook"));
    }
    static QString user() { return QStringLiteral("anna"); }
    static QString password() { return QStringLiteral("geheim 🔑"); }

    QUrl root(const QString& scheme = QStringLiteral("http")) const
    {
        return QUrl(QStringLiteral("%1://127.0.0.1:%2/").arg(scheme).arg(m_port));
    }
    QUrl book() const
    {
        return root().resolved(
            QUrl(m_kind == Radicale ? "/anna/kontakte/" : "/user/contacts/addressbook/"));
    }
    QString bookName() const
    {
        return m_kind == Radicale ? QStringLiteral("Kontakte") : QStringLiteral("addressbook");
    }
    bool needsPassword() const { return m_kind == Radicale; }

private:
    Kind m_kind;
    quint16 m_port;
    QTemporaryDir m_dir;
    QProcess m_process;
    QString m_error;
};

} // namespace davtest
