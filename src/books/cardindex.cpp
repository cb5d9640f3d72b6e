#include "cardindex.h"

#include "analysis/fields.h"
#include "davbook.h"
#include "duplicates/textsearch.h"

#include <QCryptographicHash>
#include <QDataStream>
#include <QDir>
#include <QFile>
#include <QSaveFile>
#include <QSet>
#include <QXmlStreamReader>

using namespace Qt::StringLiterals;

namespace zf::books {

using carddav::DavError;

namespace {

constexpr quint32 Magic = 0x5A464349; // "ZFCI"
// Raised whenever what is stored per card changes, and with the SQLite book's KeyRules (how an
// identity is made): the identities are stored as made.
constexpr qint32 Version = 2;

// What identityOf, matchOf and the text search read.
const QSet<qint32>& indexedFields()
{
    static const QSet<qint32> fields = [] {
        QSet<qint32> out(dup::TextSearch::fields().cbegin(), dup::TextSearch::fields().cend());
        out.insert(idOf(FieldId::Land));
        return out;
    }();
    return fields;
}

IndexedCard indexed(const QByteArray& etag, const QByteArray& data)
{
    IndexedCard card{etag, {}, {}};
    for (const act::BookValue& v : cardValues(data))
        if (indexedFields().contains(v.fieldId))
            card.values.append({v.fieldId, v.value});
    card.identity = dup::identityOf(card.values);
    return card;
}

// The sync-token of a multistatus answer: the one DAV:sync-token directly in it.
QByteArray syncTokenOf(const QByteArray& body)
{
    QXmlStreamReader xml(body);
    int depth = 0;
    while (!xml.atEnd()) {
        const auto token = xml.readNext();
        if (token == QXmlStreamReader::StartElement) {
            ++depth;
            if (depth == 2 && xml.namespaceUri() == u"DAV:"_s && xml.name() == u"sync-token")
                return xml.readElementText().trimmed().toUtf8();
        } else if (token == QXmlStreamReader::EndElement) {
            --depth;
        }
    }
    return {};
}

// Failures that say nothing about the server's support of sync-collection.
bool isTransportFailure(const DavError& e)
{
    switch (e.kind()) {
    case DavError::Unauthorized:
    case DavError::Timeout:
    case DavError::ConnectionRefused:
    case DavError::HostNotFound:
    case DavError::Tls:
    case DavError::Network:
        return true;
    default:
        return false;
    }
}

} // namespace

QString cacheFolder()
{
    QString base = qEnvironmentVariable("XDG_CACHE_HOME");
    if (base.isEmpty() || !QDir::isAbsolutePath(base))
        base = QDir::home().filePath(u".cache"_s);
    return QDir(base).filePath(u"zettelfischer"_s);
}

CardIndex::CardIndex(const QUrl& book, const QString& user)
    : m_key(book.adjusted(QUrl::RemoveUserInfo).toString() + u'\n' + user)
{
    const QByteArray hash = QCryptographicHash::hash(m_key.toUtf8(), QCryptographicHash::Sha1);
    m_file = QDir(cacheFolder())
                 .filePath(u"carddav/"_s + QString::fromLatin1(hash.toHex()) + u".index"_s);
    load();
}

void CardIndex::refresh(carddav::AddressBook& book)
{
    m_changed = false;
    Sync sync = m_syncs ? syncCollection(book) : Sync::Unsupported;
    if (sync == Sync::TokenRefused) { // expired, or the book was replaced: start over
        m_token.clear();
        m_cards.clear();
        m_changed = true;
        sync = syncCollection(book);
    }
    // A server may hand out a long list of changes in parts.
    for (int part = 0; sync == Sync::Done && m_truncated && part < 1000; ++part)
        sync = syncCollection(book);
    if (sync != Sync::Done) {
        m_changed = m_changed || m_syncs;
        m_syncs = false;
        m_token.clear();
        compareListing(book);
    }
    if (m_changed)
        save();
}

CardIndex::Sync CardIndex::syncCollection(carddav::AddressBook& book)
{
    const QByteArray body = "<?xml version=\"1.0\" encoding=\"utf-8\"?>\n"
                            "<d:sync-collection xmlns:d=\"DAV:\" "
                            "xmlns:c=\"urn:ietf:params:xml:ns:carddav\"><d:sync-token>" +
                            QString::fromUtf8(m_token).toHtmlEscaped().toUtf8() +
                            "</d:sync-token><d:sync-level>1</d:sync-level>"
                            "<d:prop><d:getetag/><c:address-data/></d:prop></d:sync-collection>";
    carddav::DavResponse response;
    try {
        response = book.client().send(
            "REPORT", book.url(), body,
            {{"Depth", "0"}, {"Content-Type", "application/xml; charset=utf-8"}});
    } catch (const DavError& e) {
        if (isTransportFailure(e))
            throw;
        return m_token.isEmpty() ? Sync::Unsupported : Sync::TokenRefused;
    }
    const QByteArray token = syncTokenOf(response.body);
    if (token.isEmpty())
        return Sync::Unsupported;
    m_truncated = false;
    QList<carddav::Card> fetched;
    QList<QUrl> missing; // changed, but the server sent no data with it
    for (const carddav::DavResource& r : carddav::parseMultistatus(response.body, response.url)) {
        if (carddav::sameResource(r.url, book.url())) {
            m_truncated = r.status == 507;
            continue;
        }
        if (r.isCollection())
            continue;
        const QString id = contactIdOf(r.url);
        if (r.status == 404 || r.status == 410) {
            m_changed = m_cards.remove(id) > 0 || m_changed;
            continue;
        }
        if (r.status >= 300)
            continue;
        const QByteArray etag = r.property(carddav::DavNs, u"getetag"_s).text.toUtf8();
        if (!etag.isEmpty() && m_cards.contains(id) && m_cards.value(id).etag == etag)
            continue;
        if (r.has(carddav::CardDavNs, u"address-data"_s))
            fetched.append(
                {r.url, etag, r.property(carddav::CardDavNs, u"address-data"_s).text.toUtf8()});
        else
            missing.append(r.url);
    }
    if (!missing.isEmpty())
        fetched += book.multiget(missing);
    take(fetched);
    if (token != m_token) {
        m_token = token;
        m_changed = true;
    }
    return Sync::Done;
}

void CardIndex::compareListing(carddav::AddressBook& book)
{
    QSet<QString> present;
    QList<QUrl> changed;
    for (const carddav::CardRef& ref : book.list()) {
        const QString id = contactIdOf(ref.url);
        present.insert(id);
        const auto it = m_cards.constFind(id);
        if (ref.etag.isEmpty() || it == m_cards.cend() || it->etag != ref.etag)
            changed.append(ref.url);
    }
    for (auto it = m_cards.begin(); it != m_cards.end();) {
        if (present.contains(it.key())) {
            ++it;
        } else {
            it = m_cards.erase(it);
            m_changed = true;
        }
    }
    take(book.multiget(changed));
}

void CardIndex::take(const QList<carddav::Card>& cards)
{
    for (const carddav::Card& card : cards) {
        m_cards.insert(contactIdOf(card.url), indexed(card.etag, card.data));
        m_changed = true;
    }
}

void CardIndex::load()
{
    QFile f(m_file);
    if (!f.open(QIODevice::ReadOnly))
        return;
    QDataStream in(&f);
    quint32 magic = 0;
    qint32 version = 0;
    QString key;
    in >> magic >> version;
    if (magic != Magic || version != Version)
        return;
    in >> key;
    if (key != m_key) // a hash collision, however unlikely: not this book's cards
        return;
    QByteArray token;
    bool syncs = true;
    qint32 count = 0;
    in >> token >> syncs >> count;
    QMap<QString, IndexedCard> cards;
    for (qint32 i = 0; i < count && in.status() == QDataStream::Ok; ++i) {
        QString id;
        IndexedCard card;
        qint32 values = 0;
        in >> id >> card.etag >> values;
        for (qint32 v = 0; v < values && in.status() == QDataStream::Ok; ++v) {
            qint32 field = 0;
            QString value;
            in >> field >> value;
            card.values.append({field, value});
        }
        // Stored as made: normalising 10,000 cards' numbers again would cost most of a run.
        in >> card.identity.person >> card.identity.company >> card.identity.emails >>
            card.identity.mobiles;
        cards.insert(id, std::move(card));
    }
    if (in.status() != QDataStream::Ok || cards.size() != count)
        return; // damaged: read afresh
    m_token = token;
    m_syncs = syncs;
    m_cards = std::move(cards);
}

void CardIndex::save()
{
    if (!QDir().mkpath(QFileInfo(m_file).absolutePath()))
        return;
    QSaveFile f(m_file);
    if (!f.open(QIODevice::WriteOnly))
        return;
    QDataStream out(&f);
    out << Magic << Version << m_key << m_token << m_syncs << qint32(m_cards.size());
    for (auto it = m_cards.cbegin(); it != m_cards.cend(); ++it) {
        out << it.key() << it->etag << qint32(it->values.size());
        for (const auto& [field, value] : it->values)
            out << field << value;
        out << it->identity.person << it->identity.company << it->identity.emails
            << it->identity.mobiles;
    }
    if (out.status() == QDataStream::Ok)
        f.commit();
}

} // namespace zf::books
