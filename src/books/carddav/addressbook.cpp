#include "addressbook.h"

#include "analysis/fields.h"

#include <QDateTime>
#include <QMap>
#include <QUuid>

using namespace Qt::StringLiterals;

namespace zf::carddav {

namespace {

const DavClient::Headers VCardType{{"Content-Type", "text/vcard; charset=utf-8"}};

QByteArray hrefPath(const QUrl& url)
{
    return url.path(QUrl::FullyEncoded).toHtmlEscaped().toUtf8();
}

} // namespace

AddressBook::AddressBook(std::shared_ptr<DavClient> client, QUrl url)
    : m_client(std::move(client)), m_url(std::move(url))
{
    // Card names are resolved against the book, which needs its trailing slash.
    if (!m_url.path().endsWith(u'/'))
        m_url.setPath(m_url.path() + u'/');
}

QList<CardRef> AddressBook::list()
{
    QList<CardRef> out;
    for (const DavResource& r :
         m_client->propfind(m_url, 1, {u"{DAV:}getetag"_s, u"{DAV:}resourcetype"_s}))
        if (!sameResource(r.url, m_url) && !r.isCollection())
            out.append({r.url, r.property(DavNs, u"getetag"_s).text.toUtf8()});
    return out;
}

Card AddressBook::get(const QUrl& card)
{
    const DavResponse response = m_client->send("GET", card);
    return {card, response.etag, response.body};
}

QList<Card> AddressBook::multiget(const QList<QUrl>& cards)
{
    if (cards.isEmpty())
        return {};
    QByteArray body = "<?xml version=\"1.0\" encoding=\"utf-8\"?>\n"
                      "<c:addressbook-multiget xmlns:d=\"DAV:\" "
                      "xmlns:c=\"urn:ietf:params:xml:ns:carddav\">"
                      "<d:prop><d:getetag/><c:address-data/></d:prop>";
    for (const QUrl& card : cards)
        body += "<d:href>" + hrefPath(card) + "</d:href>";
    body += "</c:addressbook-multiget>";
    const DavResponse response =
        m_client->send("REPORT", m_url, body,
                       {{"Depth", "1"}, {"Content-Type", "application/xml; charset=utf-8"}});
    QList<Card> out;
    for (const DavResource& r : parseMultistatus(response.body, response.url))
        if (r.status < 300 && r.has(CardDavNs, u"address-data"_s))
            out.append({r.url, r.property(DavNs, u"getetag"_s).text.toUtf8(),
                        r.property(CardDavNs, u"address-data"_s).text.toUtf8()});
    return out;
}

CardRef AddressBook::put(const QUrl& card, const QByteArray& data, const QByteArray& condition,
                         const QByteArray& value)
{
    if (m_beforeWrite)
        m_beforeWrite(card);
    DavClient::Headers headers = VCardType;
    if (!value.isEmpty())
        headers.append({condition, value});
    const DavResponse response = m_client->send("PUT", card, data, headers);
    return {card, response.etag};
}

CardRef AddressBook::create(const QList<FieldValue>& values)
{
    const QString uid = QUuid::createUuid().toString(QUuid::WithoutBraces);
    VCard card = VCard::blank(uid);
    for (const FieldValue& v : values)
        card.setField(v);
    card.finish(QDateTime::currentDateTimeUtc());
    return put(m_url.resolved(QUrl(uid + u".vcf"_s)), card.toBytes(), "If-None-Match", "*");
}

CardRef AddressBook::update(const QUrl& url, const QList<FieldValue>& values,
                            const std::optional<Card>& known)
{
    Card current = known ? *known : get(url);
    for (int attempt = 0;; ++attempt) {
        VCard card = VCard::parse(current.data);
        const QByteArray before = card.toBytes();
        for (const FieldValue& v : values)
            card.setField(v);
        if (card.toBytes() == before)
            return {url, current.etag};
        card.finish(QDateTime::currentDateTimeUtc());
        try {
            return put(url, card.toBytes(), "If-Match", current.etag);
        } catch (const DavError& e) {
            if (e.kind() != DavError::PreconditionFailed || attempt > 0)
                throw;
        }
        current = get(url);
    }
}

QList<BookField> AddressBook::fields()
{
    QList<BookField> out;
    for (const StandardField& f : StandardFields)
        out.append({idOf(f.id), fieldName(f)});
    QList<QUrl> urls;
    for (const CardRef& ref : list())
        urls.append(ref.url);
    QMap<qint32, QString> user;
    for (const Card& card : multiget(urls))
        for (const BookField& f : VCard::parse(card.data).userFields())
            if (user.value(f.id).isEmpty())
                user.insert(f.id, f.label);
    for (auto it = user.cbegin(); it != user.cend(); ++it)
        out.append({it.key(), it.value()});
    return out;
}

} // namespace zf::carddav
