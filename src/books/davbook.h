#pragma once

// A CardDAV address book as the program uses it: logged in once, its contacts named by their
// resource names, and the current contact remembered per book in the user's state folder.

#include "books.h"
#include "books/carddav/addressbook.h"
#include "books/cardindex.h"
#include "books/sqlite/contactbook.h"

#include <QUrl>

#include <functional>
#include <memory>
#include <optional>

namespace zf::books {

// The folder for what the program remembers between runs: $XDG_STATE_HOME/zettelfischer,
// ~/.local/state/zettelfischer when unset.
QString stateFolder();

// The contact id of a card: its resource name ("<uid>.vcf").
QString contactIdOf(const QUrl& card);
// Whether a text can be a contact id of a CardDAV book.
bool isDavContactId(const QString& id);

// The card's values as the SQLite book gives them: the standard fields in their order, then
// the user fields by id.
QList<act::BookValue> cardValues(const QByteArray& card);

class DavBook {
public:
    DavBook(BookLocation location, std::shared_ptr<credentials::Credentials> credentials);

    const BookLocation& location() const { return m_location; }
    // Logs in and finds the book on first use; a DavError when that fails (Unauthorized for
    // a password refused or not to be had).
    carddav::AddressBook& book();
    // The address books the location leads to (a server, account or book URL).
    QList<carddav::AddressBookInfo> addressBooks();

    QUrl cardUrl(const QString& contactId);
    // The contact last filed through the program into this book, or chosen as current; kept
    // in the state folder, and for this object's life also when that cannot be written.
    std::optional<QString> currentContact();
    // An ActError when the state file cannot be written.
    void setCurrentContact(const QString& contactId);

    // From now on this object remembers the contact this program chose or filed last, and
    // edits write into that one whatever other programs make current meanwhile.
    void keepChoice() { m_keepsChoice = true; }
    // The contact an edit overwrites: this program's choice when it keeps one, else the
    // current contact.
    std::optional<QString> editedContact();
    // Whether the contact to edit is this program's own choice, not the book's marker.
    bool editsChoice() const { return m_keepsChoice && m_chosen.has_value(); }
    // Makes the contact, which must exist, this program's choice and the current contact.
    void choose(const QString& contactId);
    // A transfer wrote that contact: it becomes the current one (kept for this run when the
    // state file cannot be written) and this program's choice.
    void filed(const QString& contactId);

    // The identity keys of the book's cards, brought up to date with the server.
    const CardIndex& index();

    // Told the contact id after every transfer that wrote (tests, the command line).
    void setWritten(std::function<void(const QString&)> written) { m_written = std::move(written); }
    void written(const QString& contactId) const
    {
        if (m_written)
            m_written(contactId);
    }

private:
    std::shared_ptr<carddav::DavClient> logIn(const std::function<void(carddav::DavClient&)>& use);
    QString stateKey();

    BookLocation m_location;
    std::shared_ptr<credentials::Credentials> m_credentials;
    std::unique_ptr<carddav::AddressBook> m_book;
    std::shared_ptr<carddav::DavClient> m_client;
    std::function<void(const QString&)> m_written;
    std::optional<QString> m_current; // when the state file has none for this book
    bool m_keepsChoice = false;
    std::optional<QString> m_chosen;
    std::unique_ptr<CardIndex> m_index;
};

std::shared_ptr<act::ObjectFactory> makeDavBookFactory(std::shared_ptr<DavBook> book);

// The CardDAV book's duplicate lookup and search: the book's cards compared here, as a
// server's text-match cannot fold names or normalise numbers, from the card index.
class DavDuplicateLookup : public dup::DuplicateLookup {
public:
    explicit DavDuplicateLookup(DavBook& book) : m_book(book) {}
    QList<dup::Match> find(const dup::Identity& identity) override;
    QList<dup::Match> search(const QString& text, int limit);

private:
    DavBook& m_book;
};

// The directory of a CardDAV book; the book keeps this program's choice from now on.
std::shared_ptr<dup::ContactDirectory> makeDavDirectory(std::shared_ptr<DavBook> book);

// The book's objects and directory, sharing this program's choice.
OpenedBook openDavBook(std::shared_ptr<DavBook> book);

} // namespace zf::books
