#include "davbook.h"

#include "analysis/fields.h"
#include "books/contactview.h"
#include "credentials/credentials.h"
#include "duplicates/textsearch.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <QMap>

#include <algorithm>
#include <cstdio>
#include <limits>
#include <utility>

using namespace Qt::StringLiterals;

namespace zf::books {

using carddav::DavError;

namespace {

QString stateFile()
{
    return QDir(stateFolder()).filePath(u"carddav.json"_s);
}

QJsonObject readState()
{
    QFile f(stateFile());
    if (!f.open(QIODevice::ReadOnly))
        return {};
    return QJsonDocument::fromJson(f.readAll()).object();
}

QString userOf(const BookLocation& location)
{
    const QString fromUrl = QUrl(location.location).userName();
    return fromUrl.isEmpty() ? location.user : fromUrl;
}

} // namespace

QString stateFolder()
{
    QString base = qEnvironmentVariable("XDG_STATE_HOME");
    if (base.isEmpty() || !QDir::isAbsolutePath(base))
        base = QDir::home().filePath(u".local/state"_s);
    return QDir(base).filePath(u"zettelfischer"_s);
}

QString contactIdOf(const QUrl& card)
{
    return card.fileName();
}

bool isDavContactId(const QString& id)
{
    return !id.isEmpty() && !id.contains(u'/') && id != u"."_s && id != u".."_s;
}

QList<act::BookValue> cardValues(const QByteArray& data)
{
    const carddav::VCard card = carddav::VCard::parse(data);
    QList<act::BookValue> out;
    for (const StandardField& f : StandardFields) {
        const QString value = card.field(idOf(f.id));
        if (!value.isEmpty())
            out.append({idOf(f.id), fieldName(f), value});
    }
    QMap<qint32, QString> user;
    for (const carddav::BookField& f : card.userFields())
        user.insert(f.id, f.label);
    for (auto it = user.cbegin(); it != user.cend(); ++it)
        if (const QString value = card.field(it.key()); !value.isEmpty())
            out.append({it.key(), it.value(), value});
    return out;
}

DavBook::DavBook(BookLocation location, std::shared_ptr<credentials::Credentials> credentials)
    : m_location(std::move(location)), m_credentials(std::move(credentials))
{
}

std::shared_ptr<carddav::DavClient>
DavBook::logIn(const std::function<void(carddav::DavClient&)>& use)
{
    const QUrl start(m_location.location);
    const QString user = userOf(m_location);
    QUrl bare = start;
    bare.setUserInfo({});
    if (!m_credentials) {
        auto client = std::make_shared<carddav::DavClient>(user, start.password());
        client->setTimeout(m_location.timeout);
        use(*client);
        return client;
    }
    std::shared_ptr<carddav::DavClient> taken;
    bool refused = false; // a password was sent and the server said no
    const credentials::LoginResult login =
        m_credentials->logIn(start, user, [&](const QString& password) {
            auto client = std::make_shared<carddav::DavClient>(user, password);
            client->setTimeout(m_location.timeout);
            try {
                use(*client);
            } catch (const DavError& e) {
                if (e.kind() != DavError::Unauthorized)
                    throw;
                refused = refused || !password.isEmpty();
                return false;
            }
            taken = client;
            return true;
        });
    if (login.outcome == credentials::LoginResult::Accepted)
        return taken;
    const QString account =
        u"%1 at %2"_s.arg(user.isEmpty() ? u"(no user)"_s : user, credentials::serverName(start));
    if (refused)
        throw DavError(
            DavError::Unauthorized,
            u"the server refused the password of %1 (HTTP 401, %2)"_s.arg(account, bare.toString()),
            401);
    throw DavError(
        DavError::Unauthorized,
        u"no password for %1: set %2, store it in the keyring, or run the command "
        u"on a terminal to be asked (HTTP 401, %3)"_s.arg(
            account, QString::fromLatin1(credentials::PasswordVariable), bare.toString()),
        401);
}

carddav::AddressBook& DavBook::book()
{
    if (!m_book) {
        QUrl found;
        const QUrl start(m_location.location);
        m_client = logIn([&](carddav::DavClient& client) { found = client.resolve(start).url; });
        m_book = std::make_unique<carddav::AddressBook>(m_client, found);
    }
    return *m_book;
}

QList<carddav::AddressBookInfo> DavBook::addressBooks()
{
    QList<carddav::AddressBookInfo> books;
    const QUrl start(m_location.location);
    logIn([&](carddav::DavClient& client) { books = client.addressBooks(start); });
    return books;
}

QUrl DavBook::cardUrl(const QString& contactId)
{
    return book().url().resolved(QUrl(QString::fromUtf8(QUrl::toPercentEncoding(contactId))));
}

QString DavBook::stateKey()
{
    return book().url().adjusted(QUrl::RemoveUserInfo).toString();
}

std::optional<QString> DavBook::currentContact()
{
    const QString id = readState().value(u"current"_s).toObject().value(stateKey()).toString();
    if (!isDavContactId(id))
        return m_current;
    return id;
}

void DavBook::setCurrentContact(const QString& contactId)
{
    m_current = contactId;
    const QString key = stateKey();
    QJsonObject state = readState();
    QJsonObject current = state.value(u"current"_s).toObject();
    current.insert(key, contactId);
    state.insert(u"current"_s, current);
    if (!QDir().mkpath(stateFolder()))
        throw act::ActError(u"cannot create the state folder %1"_s.arg(stateFolder()));
    // A new file renamed over the old one: never half written. Not flushed to disk, as a
    // current contact lost in a crash costs nothing, while the flush would cost every transfer.
    const QString target = stateFile();
    QFile f(target + u".tmp-"_s + QString::number(QCoreApplication::applicationPid()));
    const bool written = f.open(QIODevice::WriteOnly | QIODevice::Truncate) &&
                         f.write(QJsonDocument(state).toJson()) >= 0 && f.flush();
    f.close();
    if (!written || ::rename(QFile::encodeName(f.fileName()).constData(),
                             QFile::encodeName(target).constData()) != 0) {
        f.remove();
        throw act::ActError(u"cannot write %1"_s.arg(target));
    }
}

std::optional<QString> DavBook::editedContact()
{
    if (editsChoice())
        return m_chosen;
    return currentContact();
}

void DavBook::choose(const QString& contactId)
{
    if (!isDavContactId(contactId))
        throw act::ActError(u"there is no contact %1"_s.arg(contactId));
    try {
        book().get(cardUrl(contactId));
    } catch (const DavError& e) {
        if (e.kind() == DavError::NotFound)
            throw act::ActError(u"there is no contact %1"_s.arg(contactId));
        throw act::ActError(e.message());
    }
    setCurrentContact(contactId);
    m_chosen = contactId;
}

void DavBook::filed(const QString& contactId)
{
    // The card is filed: a state folder we cannot write must not turn that into a failure,
    // which would invite a second "Neu Anlegen". This run still knows it.
    try {
        setCurrentContact(contactId);
    } catch (const act::ActError&) {
    }
    if (m_keepsChoice)
        m_chosen = contactId;
    written(contactId);
}

const CardIndex& DavBook::index()
{
    carddav::AddressBook& dav = book();
    if (!m_index)
        m_index = std::make_unique<CardIndex>(dav.url(), userOf(m_location));
    m_index->refresh(dav);
    return *m_index;
}

namespace {

using DavBookPtr = std::shared_ptr<DavBook>;

// Every server failure reaches the caller as the one automation error.
template <typename F> auto guarded(F&& f)
{
    try {
        return f();
    } catch (const DavError& e) {
        throw act::ActError(e.message());
    }
}

// One PUT for a new contact, a read and one conditional PUT for an edit.
class DavContactView : public CollectingContactView<QString> {
public:
    explicit DavContactView(DavBookPtr book) : m_book(std::move(book)) {}

protected:
    QString editedContact() override
    {
        const std::optional<QString> current = m_book->editedContact();
        if (!current)
            throw act::ActError(u"the address book has no current contact"_s);
        return *current;
    }
    void checkField(qint32 fieldId) override
    {
        if (fieldId < 1 || fieldId > std::numeric_limits<qint16>::max())
            throw act::ActError(u"the address book has no field %1"_s.arg(fieldId));
    }
    void file(const std::optional<QString>& contact, QList<FieldValue> values) override
    {
        carddav::AddressBook& book = m_book->book();
        labelUserFields(book, values);
        const carddav::CardRef written =
            contact ? edit(book, *contact, values) : book.create(values);
        m_book->filed(contactIdOf(written.url));
    }
    void guarded(const std::function<void()>& f) override { books::guarded(f); }

private:
    // The chosen card read afresh and written with If-Match: never another card in its place,
    // and none created when it is gone.
    carddav::CardRef edit(carddav::AddressBook& book, const QString& contact,
                          const QList<FieldValue>& values)
    {
        try {
            return book.update(m_book->cardUrl(contact), values);
        } catch (const DavError& e) {
            if (e.kind() != DavError::NotFound || !m_book->editsChoice())
                throw;
            throw act::ActError(
                u"the contact %1 chosen for editing no longer exists"_s.arg(contact));
        }
    }
    // User fields carry their label in the card; the book knows the labels already used.
    static void labelUserFields(carddav::AddressBook& book, QList<FieldValue>& values)
    {
        bool any = false;
        for (const FieldValue& v : values)
            any = any || !standardField(v.fieldId);
        if (!any)
            return;
        QMap<qint32, QString> labels;
        for (const carddav::BookField& f : book.fields())
            labels.insert(f.id, f.label);
        for (FieldValue& v : values)
            if (!standardField(v.fieldId))
                v.label = labels.value(v.fieldId);
    }
    DavBookPtr m_book;
};

class DavViews : public act::ViewsObject {
public:
    explicit DavViews(DavBookPtr book) : m_book(std::move(book)) {}
    std::shared_ptr<act::ContactViewObject> Create(qint16 viewType,
                                                   const QString& viewName) override
    {
        if (viewType != act::ContactViewType || viewName != act::ContactViewName)
            throw act::ActError(u"no view %1 \"%2\""_s.arg(viewType).arg(viewName));
        return std::make_shared<DavContactView>(m_book);
    }

private:
    DavBookPtr m_book;
};

class DavApplication : public act::ApplicationObject {
public:
    explicit DavApplication(DavBookPtr book) : m_book(std::move(book)) {}
    std::shared_ptr<act::ViewsObject> Views() override
    {
        return std::make_shared<DavViews>(m_book);
    }

private:
    DavBookPtr m_book;
};

using FieldList = std::shared_ptr<const QList<carddav::BookField>>;

class DavFields : public act::FieldsObject {
public:
    explicit DavFields(FieldList fields) : m_fields(std::move(fields)) {}
    qint32 FieldIdAt(qint16 position) override
    {
        if (position < 0 || position >= m_fields->size())
            throw act::ActError(u"no field at position %1"_s.arg(position));
        return m_fields->at(position).id;
    }
    QString Label(qint32 fieldId) override
    {
        for (const carddav::BookField& f : *m_fields)
            if (f.id == fieldId)
                return f.label;
        throw act::ActError(u"no field %1"_s.arg(fieldId));
    }

private:
    FieldList m_fields;
};

class DavContact : public act::ContactObject {
public:
    explicit DavContact(FieldList fields) : m_fields(std::move(fields)) {}
    std::shared_ptr<act::FieldsObject> Fields() override
    {
        return std::make_shared<DavFields>(m_fields);
    }
    qint16 FieldCount() override
    {
        if (m_fields->size() > std::numeric_limits<qint16>::max())
            throw act::ActError(u"too many fields (%1)"_s.arg(m_fields->size()));
        return qint16(m_fields->size());
    }

private:
    FieldList m_fields;
};

// Opening reads the field list once: the standard fields and the user fields the cards use.
class DavDatabase : public act::DatabaseObject {
public:
    explicit DavDatabase(DavBookPtr book) : m_book(std::move(book)) {}
    void OpenEx(const QString&) override
    {
        m_fields = guarded([&] {
            return std::make_shared<const QList<carddav::BookField>>(m_book->book().fields());
        });
    }
    std::optional<bool> IsOpen() override { return m_fields != nullptr; }
    std::shared_ptr<act::ContactObject> Contact() override
    {
        if (!m_fields)
            throw act::ActError(u"no address book is open"_s);
        return std::make_shared<DavContact>(m_fields);
    }

private:
    DavBookPtr m_book;
    FieldList m_fields;
};

// A server is asked when the book is opened; there is no program to wait for.
class DavEvents : public act::EventControl {
public:
    std::optional<bool> IsActRunning() override { return true; }
};

class DavFactory : public act::ObjectFactory {
public:
    explicit DavFactory(DavBookPtr book) : m_book(std::move(book)) {}
    std::shared_ptr<act::AutomationObject> CreateObject(const QString& progId) override
    {
        if (progId == act::ProgIdApplication)
            return std::make_shared<DavApplication>(m_book);
        if (progId == act::ProgIdDatabase)
            return std::make_shared<DavDatabase>(m_book);
        throw act::ActError(u"cannot create object \"%1\""_s.arg(progId));
    }
    act::EventControl& eventControl() override { return m_events; }

private:
    DavBookPtr m_book;
    DavEvents m_events;
};

} // namespace

std::shared_ptr<act::ObjectFactory> makeDavBookFactory(std::shared_ptr<DavBook> book)
{
    return std::make_shared<DavFactory>(std::move(book));
}

QList<dup::Match> DavDuplicateLookup::find(const dup::Identity& identity)
{
    QList<dup::Match> matches;
    const QMap<QString, IndexedCard>& cards = m_book.index().cards();
    for (auto it = cards.cbegin(); it != cards.cend(); ++it)
        if (const std::optional<dup::Reason> reason = dup::sameContact(identity, it->identity))
            matches.append(dup::matchOf(it.key(), it->values, *reason));
    return matches;
}

QList<dup::Match> DavDuplicateLookup::search(const QString& text, int limit)
{
    const dup::TextSearch needle(text);
    if (needle.isEmpty())
        return {};
    QList<dup::Match> matches;
    const QMap<QString, IndexedCard>& cards = m_book.index().cards();
    for (auto it = cards.cbegin(); it != cards.cend() && matches.size() < limit; ++it)
        if (std::any_of(it->values.cbegin(), it->values.cend(),
                        [&needle](const auto& v) { return needle.matches(v.first, v.second); }))
            matches.append(dup::matchOf(it.key(), it->values));
    return matches;
}

namespace {

class DavDirectory : public dup::ContactDirectory {
public:
    explicit DavDirectory(DavBookPtr book) : m_book(std::move(book)), m_lookup(*m_book)
    {
        m_book->keepChoice();
    }
    QList<dup::Match> find(const dup::Identity& identity) override
    {
        return guarded([&] { return m_lookup.find(identity); });
    }
    QList<dup::Match> search(const QString& text, int limit) override
    {
        return guarded([&] { return m_lookup.search(text, limit); });
    }
    std::optional<dup::Match> current() override
    {
        return guarded([&]() -> std::optional<dup::Match> {
            const std::optional<QString> id = m_book->editedContact();
            if (!id)
                return std::nullopt;
            carddav::Card card;
            try {
                card = m_book->book().get(m_book->cardUrl(*id));
            } catch (const DavError& e) {
                if (e.kind() == DavError::NotFound)
                    return std::nullopt;
                throw;
            }
            dup::FieldValues values;
            for (const act::BookValue& v : cardValues(card.data))
                values.append({v.fieldId, v.value});
            return dup::matchOf(*id, values);
        });
    }
    void setCurrent(const QString& id) override { m_book->choose(id); }

private:
    DavBookPtr m_book;
    DavDuplicateLookup m_lookup;
};

} // namespace

std::shared_ptr<dup::ContactDirectory> makeDavDirectory(std::shared_ptr<DavBook> book)
{
    return std::make_shared<DavDirectory>(std::move(book));
}

OpenedBook openDavBook(std::shared_ptr<DavBook> book)
{
    auto directory = makeDavDirectory(book);
    return {makeDavBookFactory(std::move(book)), std::move(directory)};
}

} // namespace zf::books
