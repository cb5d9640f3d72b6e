#pragma once

// What the duplicate check and the search need of a CardDAV book's cards, kept current at
// the cost of one small request when nothing changed, so that a lookup does not read the
// whole book. Kept in the user's cache folder between runs.

#include "books/carddav/addressbook.h"
#include "duplicates/identity.h"

#include <QMap>

namespace zf::books {

struct IndexedCard {
    QByteArray etag;
    dup::FieldValues values; // only the fields a lookup or a search reads
    dup::Identity identity;
};

// The folder for what can be fetched again: $XDG_CACHE_HOME/zettelfischer, ~/.cache/zettelfischer
// when unset.
QString cacheFolder();

class CardIndex {
public:
    // The index of the book at that URL as seen by that user, loaded from the cache file.
    CardIndex(const QUrl& book, const QString& user);

    // Brings the index up to date with the book: with sync-collection the changes since the
    // last call, else a listing of the ETags and the changed cards. The cache file is written
    // when something changed; a cache that cannot be written only costs the next run time.
    void refresh(carddav::AddressBook& book);

    // The cards by contact id.
    const QMap<QString, IndexedCard>& cards() const { return m_cards; }
    // Whether the last refresh could use sync-collection.
    bool syncs() const { return m_syncs; }
    QString file() const { return m_file; }

private:
    enum class Sync { Done, TokenRefused, Unsupported };
    Sync syncCollection(carddav::AddressBook& book);
    void compareListing(carddav::AddressBook& book);
    void take(const QList<carddav::Card>& cards);
    void load();
    void save();

    QString m_key;
    QString m_file;
    QByteArray m_token; // "" before the first sync
    QMap<QString, IndexedCard> m_cards;
    bool m_syncs = true;      // else the listing is compared
    bool m_truncated = false; // the server holds back more changes
    bool m_changed = false;
};

} // namespace zf::books
