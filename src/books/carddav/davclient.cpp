#include "davclient.h"

#include <QEventLoop>
#include <QNetworkReply>
#include <QNetworkRequest>
#include <QSslError>
#include <QTimer>
#include <QXmlStreamReader>

using namespace Qt::StringLiterals;

namespace zf::carddav {

namespace {

constexpr int MaxRedirects = 5;

QString clark(QStringView ns, QStringView name)
{
    return u'{' + ns.toString() + u'}' + name.toString();
}

// The address as it may appear in a log: without user name and password.
QString shown(const QUrl& url)
{
    return url.adjusted(QUrl::RemoveUserInfo).toDisplayString();
}

QString statusText(int status)
{
    switch (status) {
    case 401:
        return u"the server refused the user name or password"_s;
    case 403:
        return u"access forbidden"_s;
    case 404:
    case 410:
        return u"not found"_s;
    case 409:
        return u"conflict"_s;
    case 412:
        return u"the resource was changed or created meanwhile"_s;
    default:
        return status >= 500 ? u"server error"_s : u"unexpected answer"_s;
    }
}

DavError::Kind kindOfStatus(int status)
{
    switch (status) {
    case 401:
        return DavError::Unauthorized;
    case 403:
        return DavError::Forbidden;
    case 404:
    case 410:
        return DavError::NotFound;
    case 409:
        return DavError::Conflict;
    case 412:
        return DavError::PreconditionFailed;
    default:
        return status >= 500 ? DavError::Server : DavError::Protocol;
    }
}

bool isRedirect(int status)
{
    return status == 301 || status == 302 || status == 303 || status == 307 || status == 308;
}

int parseStatusLine(QStringView line)
{
    // "HTTP/1.1 404 Not Found"
    const QStringView rest = line.trimmed();
    const qsizetype space = rest.indexOf(u' ');
    return space < 0 ? 0 : rest.mid(space + 1, 3).toInt();
}

// Reads one property element, the reader on its start; leaves it on the matching end.
DavResource::Property readProperty(QXmlStreamReader& xml, const QUrl& base)
{
    DavResource::Property property;
    int depth = 1;
    bool inHref = false;
    QString href;
    while (depth > 0 && !xml.atEnd()) {
        switch (xml.readNext()) {
        case QXmlStreamReader::StartElement:
            if (depth == 1)
                property.children.append(clark(xml.namespaceUri(), xml.name()));
            if (xml.namespaceUri() == DavNs && xml.name() == u"href") {
                inHref = true;
                href.clear();
            }
            ++depth;
            break;
        case QXmlStreamReader::EndElement:
            if (inHref && xml.namespaceUri() == DavNs && xml.name() == u"href") {
                property.hrefs.append(base.resolved(QUrl(href.trimmed())));
                inHref = false;
            }
            --depth;
            break;
        case QXmlStreamReader::Characters:
            property.text += xml.text();
            if (inHref)
                href += xml.text();
            break;
        default:
            break;
        }
    }
    property.text = property.text.trimmed();
    return property;
}

} // namespace

bool DavResource::has(const QString& ns, const QString& name) const
{
    return properties.contains(clark(ns, name));
}

DavResource::Property DavResource::property(const QString& ns, const QString& name) const
{
    return properties.value(clark(ns, name));
}

bool DavResource::isAddressBook() const
{
    return property(DavNs, u"resourcetype"_s).children.contains(clark(CardDavNs, u"addressbook"));
}

bool DavResource::isCollection() const
{
    return property(DavNs, u"resourcetype"_s).children.contains(clark(DavNs, u"collection"));
}

QList<DavResource> parseMultistatus(const QByteArray& body, const QUrl& base)
{
    QList<DavResource> out;
    QXmlStreamReader xml(body);
    DavResource current;
    QHash<QString, DavResource::Property> propstat;
    int propstatStatus = 0;
    QStringList path; // the open DAV: elements above
    while (!xml.atEnd()) {
        const auto token = xml.readNext();
        if (token == QXmlStreamReader::StartElement) {
            const bool dav = xml.namespaceUri() == DavNs;
            const QStringView name = xml.name();
            const QString parent = path.isEmpty() ? QString() : path.back();
            if (parent == u"prop"_s) {
                propstat.insert(clark(xml.namespaceUri(), name), readProperty(xml, base));
                continue;
            }
            if (dav && name == u"response") {
                current = DavResource();
            } else if (dav && name == u"propstat") {
                propstat.clear();
                propstatStatus = 200;
            } else if (dav && name == u"href" && parent == u"response"_s) {
                current.url = base.resolved(QUrl(xml.readElementText().trimmed()));
                continue;
            } else if (dav && name == u"status") {
                const int status = parseStatusLine(xml.readElementText());
                if (parent == u"propstat"_s)
                    propstatStatus = status;
                else if (parent == u"response"_s)
                    current.status = status;
                continue;
            }
            path.append(dav ? name.toString() : QString());
        } else if (token == QXmlStreamReader::EndElement) {
            if (path.isEmpty())
                continue;
            const QString name = path.takeLast();
            if (name == u"propstat"_s && propstatStatus >= 200 && propstatStatus < 300)
                current.properties.insert(propstat);
            else if (name == u"response"_s)
                out.append(current);
        }
    }
    if (xml.hasError())
        throw DavError(DavError::Protocol,
                       u"the multistatus answer from %1 is not well-formed XML: %2"_s.arg(
                           shown(base), xml.errorString()));
    return out;
}

bool sameResource(const QUrl& a, const QUrl& b)
{
    const auto norm = [](const QUrl& u) {
        QUrl n = u.adjusted(QUrl::RemoveUserInfo | QUrl::StripTrailingSlash |
                            QUrl::NormalizePathSegments);
        if (n.path().isEmpty())
            n.setPath(u"/"_s);
        return n;
    };
    return norm(a) == norm(b);
}

DavClient::DavClient(QString user, QString password)
    : m_user(std::move(user)), m_password(std::move(password))
{
    // The client follows redirects itself, and only where it means to.
    m_network.setRedirectPolicy(QNetworkRequest::ManualRedirectPolicy);
}

void DavClient::takeUser(const QUrl& url)
{
    if (m_user.isEmpty())
        m_user = url.userName();
    if (m_password.isEmpty())
        m_password = url.password();
}

DavResponse DavClient::sendOnce(const QByteArray& method, const QUrl& url, const QByteArray& body,
                                const Headers& headers, bool withCredentials)
{
    QNetworkRequest request(url.adjusted(QUrl::RemoveUserInfo));
    for (const auto& [name, value] : headers)
        request.setRawHeader(name, value);
    if (withCredentials && !m_user.isEmpty())
        request.setRawHeader("Authorization",
                             "Basic " + (m_user + u':' + m_password).toUtf8().toBase64());
    // Answers are small; a cache or a second connection only costs time here.
    request.setAttribute(QNetworkRequest::CacheLoadControlAttribute,
                         QNetworkRequest::AlwaysNetwork);

    QNetworkReply* reply = m_network.sendCustomRequest(request, method, body);
    QEventLoop loop;
    QTimer timer;
    timer.setSingleShot(true);
    bool timedOut = false;
    QStringList tlsProblems;
    QObject::connect(reply, &QNetworkReply::finished, &loop, &QEventLoop::quit);
    QObject::connect(&timer, &QTimer::timeout, &loop, [&] {
        timedOut = true;
        reply->abort();
    });
    // Never ignored: an untrusted certificate ends the request.
    QObject::connect(reply, &QNetworkReply::sslErrors, &loop, [&](const QList<QSslError>& errors) {
        for (const QSslError& e : errors)
            tlsProblems.append(e.errorString());
    });
    timer.start(m_timeout);
    if (!reply->isFinished())
        loop.exec(QEventLoop::ExcludeUserInputEvents);
    timer.stop();

    DavResponse response;
    response.status = reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
    response.url = url;
    response.body = reply->isOpen() ? reply->readAll() : QByteArray();
    const QByteArray etag = reply->rawHeader("ETag");
    if (!etag.startsWith("W/"))
        response.etag = etag;
    const QByteArray location = reply->rawHeader("Location");
    const QNetworkReply::NetworkError error = reply->error();
    const QString errorText = reply->errorString();
    reply->deleteLater();

    const QString what = QString::fromLatin1(method) + u' ' + shown(url);
    if (timedOut)
        throw DavError(DavError::Timeout,
                       u"%1: no answer within %2 ms"_s.arg(what).arg(m_timeout.count()));
    if (!tlsProblems.isEmpty())
        throw DavError(DavError::Tls, u"%1: the server's certificate is not trusted (%2)"_s.arg(
                                          what, tlsProblems.join(u"; "_s)));
    if (response.status == 0) {
        switch (error) {
        case QNetworkReply::ConnectionRefusedError:
            throw DavError(DavError::ConnectionRefused, u"%1: connection refused"_s.arg(what));
        case QNetworkReply::HostNotFoundError:
            throw DavError(DavError::HostNotFound, u"%1: host not found"_s.arg(what));
        case QNetworkReply::TimeoutError:
            throw DavError(DavError::Timeout, u"%1: %2"_s.arg(what, errorText));
        case QNetworkReply::SslHandshakeFailedError:
            throw DavError(DavError::Tls, u"%1: TLS failed (%2)"_s.arg(what, errorText));
        default:
            throw DavError(DavError::Network, u"%1: %2"_s.arg(what, errorText));
        }
    }
    if (isRedirect(response.status)) {
        response.url = url.resolved(QUrl(QString::fromUtf8(location)));
        return response; // the caller decides whether to follow
    }
    if (response.status < 200 || response.status >= 300)
        throw DavError(
            kindOfStatus(response.status),
            u"%1: %2 (HTTP %3)"_s.arg(what, statusText(response.status)).arg(response.status),
            response.status);
    return response;
}

DavResponse DavClient::send(const QByteArray& method, const QUrl& url, const QByteArray& body,
                            const Headers& headers, bool followRedirects)
{
    takeUser(url);
    QUrl target = url.adjusted(QUrl::RemoveUserInfo);
    const QString host = target.host();
    for (int hop = 0;; ++hop) {
        DavResponse response = sendOnce(method, target, body, headers, target.host() == host);
        if (!isRedirect(response.status))
            return response;
        const QString what = QString::fromLatin1(method) + u' ' + shown(target);
        if (!followRedirects)
            throw DavError(DavError::Redirect,
                           u"%1: redirected to %2 (HTTP %3)"_s.arg(what, shown(response.url))
                               .arg(response.status),
                           response.status);
        const QUrl next = response.url;
        const bool allowed = next.scheme() == target.scheme() ||
                             (target.scheme() == u"http"_s && next.scheme() == u"https"_s);
        if (!next.isValid() || !allowed)
            throw DavError(DavError::Redirect,
                           u"%1: refused redirect to %2"_s.arg(what, shown(next)), response.status);
        if (hop + 1 >= MaxRedirects)
            throw DavError(DavError::Redirect, u"%1: too many redirects"_s.arg(what),
                           response.status);
        target = next;
    }
}

QList<DavResource> DavClient::propfind(const QUrl& url, int depth, const QStringList& properties,
                                       bool followRedirects)
{
    QByteArray body = "<?xml version=\"1.0\" encoding=\"utf-8\"?>\n"
                      "<d:propfind xmlns:d=\"DAV:\" xmlns:c=\"urn:ietf:params:xml:ns:carddav\">"
                      "<d:prop>";
    for (const QString& p : properties) {
        // {namespace}name -> prefix:name
        const qsizetype close = p.indexOf(u'}');
        const bool dav = QStringView(p).mid(1, close - 1) == DavNs;
        body += (dav ? "<d:" : "<c:") + p.mid(close + 1).toUtf8() + "/>";
    }
    body += "</d:prop></d:propfind>";
    const DavResponse response = send(
        "PROPFIND", url, body,
        {{"Depth", QByteArray::number(depth)}, {"Content-Type", "application/xml; charset=utf-8"}},
        followRedirects);
    if (response.status != 207)
        throw DavError(
            DavError::Protocol,
            u"PROPFIND %1: no multistatus answer (HTTP %2)"_s.arg(shown(url)).arg(response.status),
            response.status);
    return parseMultistatus(response.body, response.url);
}

QList<AddressBookInfo> DavClient::addressBooks(const QUrl& start)
{
    takeUser(start);
    const QUrl url = start.adjusted(QUrl::RemoveUserInfo);
    const QString principalProp = clark(DavNs, u"current-user-principal");
    const QString homeProp = clark(CardDavNs, u"addressbook-home-set");
    const QStringList selfProps{clark(DavNs, u"resourcetype"), clark(DavNs, u"displayname"),
                                principalProp, homeProp};
    const auto info = [](const DavResource& r) {
        QString name = r.property(DavNs, u"displayname"_s).text;
        if (name.isEmpty())
            name = r.url.adjusted(QUrl::StripTrailingSlash).fileName();
        return AddressBookInfo{r.url, name};
    };
    const auto first = [](const QList<DavResource>& answer) {
        return answer.isEmpty() ? DavResource() : answer.front();
    };

    DavResource self;
    const bool serverOnly = url.path().isEmpty() || url.path() == u"/"_s;
    if (serverOnly) {
        try {
            self =
                first(propfind(url.resolved(QUrl(u"/.well-known/carddav"_s)), 0, selfProps, true));
        } catch (const DavError& e) {
            // A server without the well-known address is still asked at its root.
            if (e.kind() == DavError::Unauthorized || e.kind() == DavError::Timeout ||
                e.kind() == DavError::ConnectionRefused || e.kind() == DavError::HostNotFound ||
                e.kind() == DavError::Tls)
                throw;
        }
    }
    if (self.properties.isEmpty())
        self = first(propfind(url, 0, selfProps, true));
    if (self.isAddressBook())
        return {info(self)};

    QList<QUrl> homes = self.property(CardDavNs, u"addressbook-home-set"_s).hrefs;
    const QList<QUrl> principal = self.property(DavNs, u"current-user-principal"_s).hrefs;
    if (homes.isEmpty() && !principal.isEmpty())
        homes = first(propfind(principal.front(), 0, {homeProp}))
                    .property(CardDavNs, u"addressbook-home-set"_s)
                    .hrefs;
    if (homes.isEmpty())
        homes.append(self.url.isEmpty() ? url : self.url);

    QList<AddressBookInfo> books;
    for (const QUrl& home : homes)
        for (const DavResource& r :
             propfind(home, 1, {clark(DavNs, u"resourcetype"), clark(DavNs, u"displayname")}))
            if (r.isAddressBook())
                books.append(info(r));
    if (books.isEmpty())
        throw DavError(DavError::NotFound, u"no address book found at %1"_s.arg(shown(url)));
    return books;
}

AddressBookInfo DavClient::resolve(const QUrl& start)
{
    return addressBooks(start).front();
}

} // namespace zf::carddav
