#pragma once

// A synchronous WebDAV/CardDAV client: every call waits for its answer in a local event loop
// that leaves user input queued, so a window keeps painting but cannot be used meanwhile.

#include <QByteArray>
#include <QHash>
#include <QList>
#include <QNetworkAccessManager>
#include <QString>
#include <QStringList>
#include <QUrl>

#include <chrono>
#include <stdexcept>
#include <utility>

namespace zf::carddav {

inline const QString DavNs = QStringLiteral("DAV:");
inline const QString CardDavNs = QStringLiteral("urn:ietf:params:xml:ns:carddav");

// Every failure of a request: what went wrong as a kind the caller can act on, and a message
// in English for logs that names the method and the address.
class DavError : public std::runtime_error {
public:
    enum Kind {
        Unauthorized,       // 401
        Forbidden,          // 403
        NotFound,           // 404, 410, or no address book where one was looked for
        Conflict,           // 409
        PreconditionFailed, // 412: the card changed meanwhile (or exists already)
        Timeout,
        ConnectionRefused,
        HostNotFound,
        Tls,      // handshake failed or the certificate was not trusted
        Redirect, // to another scheme, or too many
        Server,   // 5xx
        Network,  // anything else below HTTP
        Protocol, // an answer we cannot use
    };
    DavError(Kind kind, const QString& message, int status = 0)
        : std::runtime_error(message.toStdString()), m_kind(kind), m_status(status)
    {
    }
    Kind kind() const { return m_kind; }
    int status() const { return m_status; } // the HTTP status, 0 when there was none
    QString message() const { return QString::fromStdString(what()); }

private:
    Kind m_kind;
    int m_status;
};

struct DavResponse {
    int status = 0;
    QUrl url; // where the answer came from, after redirects
    QByteArray body;
    QByteArray etag; // as sent, quotes included; "" when none or weak
};

// One <response> of a multistatus answer, with the properties its 2xx propstats returned.
struct DavResource {
    struct Property {
        QString text;         // all text inside, trimmed
        QList<QUrl> hrefs;    // every DAV:href inside, resolved
        QStringList children; // the child elements, as {namespace}name
    };
    QUrl url;
    int status = 200;                    // of the response itself, when it names one
    QHash<QString, Property> properties; // keyed {namespace}name

    bool has(const QString& ns, const QString& name) const;
    Property property(const QString& ns, const QString& name) const;
    bool isAddressBook() const;
    bool isCollection() const;
};

// The <response> elements of a multistatus body; hrefs resolved against base.
QList<DavResource> parseMultistatus(const QByteArray& body, const QUrl& base);
// Same resource, ignoring a trailing slash and user info.
bool sameResource(const QUrl& a, const QUrl& b);

struct AddressBookInfo {
    QUrl url;
    QString name; // the display name, else the last path segment
};

class DavClient {
public:
    using Headers = QList<std::pair<QByteArray, QByteArray>>;
    static constexpr std::chrono::milliseconds DefaultTimeout{15000};

    // The user name may also come from the user part of the URLs; the password only from here
    // or from the URL.
    explicit DavClient(QString user = {}, QString password = {});

    void setTimeout(std::chrono::milliseconds timeout) { m_timeout = timeout; }
    std::chrono::milliseconds timeout() const { return m_timeout; }

    // One request and its answer. Anything but 2xx is a DavError. With followRedirects,
    // 301/302/303/307/308 are followed (same scheme, or http to https; at most five) with the
    // same method and body; credentials go only to the host they were meant for.
    DavResponse send(const QByteArray& method, const QUrl& url, const QByteArray& body = {},
                     const Headers& headers = {}, bool followRedirects = false);
    // PROPFIND for the named properties ({namespace}name), depth 0 or 1.
    QList<DavResource> propfind(const QUrl& url, int depth, const QStringList& properties,
                                bool followRedirects = false);

    // The address books a URL leads to: the book itself, or for a server or account URL those
    // of the account, found by /.well-known/carddav, current-user-principal and
    // addressbook-home-set. None is a NotFound error.
    QList<AddressBookInfo> addressBooks(const QUrl& start);
    // The book the URL names, else the first the account has.
    AddressBookInfo resolve(const QUrl& start);

private:
    DavResponse sendOnce(const QByteArray& method, const QUrl& url, const QByteArray& body,
                         const Headers& headers, bool withCredentials);
    void takeUser(const QUrl& url);

    QNetworkAccessManager m_network;
    QString m_user;
    QString m_password;
    std::chrono::milliseconds m_timeout = DefaultTimeout;
};

} // namespace zf::carddav
