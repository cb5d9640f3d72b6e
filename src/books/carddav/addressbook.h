#pragma once

// One CardDAV address book: its cards, and the contact writes of a transfer, each a single
// request where the protocol allows.

#include "davclient.h"
#include "vcard3.h"

#include <functional>
#include <memory>
#include <optional>

namespace zf::carddav {

struct CardRef {
    QUrl url;
    QByteArray etag; // "" when the server gave none
};

struct Card {
    QUrl url;
    QByteArray etag;
    QByteArray data;
};

class AddressBook {
public:
    AddressBook(std::shared_ptr<DavClient> client, QUrl url);

    const QUrl& url() const { return m_url; }
    DavClient& client() { return *m_client; }

    // The cards with their ETags (PROPFIND, depth 1).
    QList<CardRef> list();
    Card get(const QUrl& card);
    // The data of many cards in one REPORT (addressbook-multiget); cards the server does not
    // return are left out.
    QList<Card> multiget(const QList<QUrl>& cards);

    // A new vCard 3.0 with a fresh UID as <uid>.vcf, never over an existing one.
    CardRef create(const QList<FieldValue>& values);
    // Writes the values into the card and leaves every other line as it was. Starts from
    // `known` when the caller has the card already, else fetches it. When the card changed
    // meanwhile, fetches it again, writes the values into that and tries once more; a second
    // change is a PreconditionFailed error. Nothing to change means no write.
    CardRef update(const QUrl& card, const QList<FieldValue>& values,
                   const std::optional<Card>& known = std::nullopt);

    // The twenty standard fields, then the other fields the book's cards hold, by id.
    QList<BookField> fields();

    // Called just before every card is written: lets a test change the card in between.
    void setBeforeWrite(std::function<void(const QUrl&)> hook) { m_beforeWrite = std::move(hook); }

private:
    CardRef put(const QUrl& card, const QByteArray& data, const QByteArray& condition,
                const QByteArray& value);

    std::shared_ptr<DavClient> m_client;
    QUrl m_url;
    std::function<void(const QUrl&)> m_beforeWrite;
};

} // namespace zf::carddav
