// The work behind the "contacts" and "transfer" commands: the embedded contact book or a
// CardDAV address book.

#include "cli.h"

#include "act/contactlink.h"
#include "analysis/fields.h"
#include "analysis/textutil.h"
#include "books/books.h"
#include "books/davbook.h"
#include "books/sqlite/contactbook.h"
#include "books/sqlite/sqlitebook.h"
#include "books/sqlite/vcard.h"
#include "credentials/terminal.h"
#include "duplicates/lookup.h"
#include "duplicates/textsearch.h"
#include "settings/settings.h"

#include <QFileInfo>
#include <QJsonArray>
#include <QJsonObject>
#include <QTimeZone>

#include <algorithm>
#include <cstdio>
#include <functional>
#include <limits>
#include <optional>

using namespace Qt::StringLiterals;
using namespace zf;
using namespace zf::act;
using zf::books::DavBook;
using zf::carddav::DavError;

std::optional<qint64> parseContactId(const QString& text)
{
    bool ok = false;
    const qint64 id = text.toLongLong(&ok);
    if (!ok || id < 1)
        return std::nullopt;
    return id;
}

namespace {

constexpr int ExitFailure = 1;

int failure(const QString& message)
{
    std::fprintf(stderr, "zettelfischer-cli: %s\n", message.toUtf8().constData());
    return ExitFailure;
}

void print(const QString& line)
{
    std::fputs((line + u'\n').toUtf8().constData(), stdout);
}

QString oneLine(QString text)
{
    for (QChar& c : text)
        if (c == u'\t' || c == u'\n' || c == u'\r')
            c = u' ';
    return text;
}

QString valueOf(const QList<BookValue>& values, qint32 fieldId)
{
    for (const BookValue& v : values)
        if (v.fieldId == fieldId)
            return v.value;
    return {};
}

// "ID<TAB>name<TAB>company", and "<TAB>current" for the current contact.
QString listLine(const QString& id, const QList<BookValue>& values, bool current)
{
    QString name = valueOf(values, idOf(FieldId::Kontakt));
    if (name.isEmpty())
        name = QStringList{valueOf(values, idOf(FieldId::Vorname)),
                           valueOf(values, idOf(FieldId::Nachname))}
                   .join(u' ')
                   .trimmed();
    QString line =
        u"%1\t%2\t%3"_s.arg(id).arg(oneLine(name), oneLine(valueOf(values, idOf(FieldId::Firma))));
    if (current)
        line += u"\tcurrent"_s;
    return line;
}

QString listLine(ContactBook& book, qint64 id, std::optional<qint64> current)
{
    return listLine(QString::number(id), book.contactValues(id), current == id);
}

QJsonArray fieldsToJson(const QList<BookValue>& values)
{
    QJsonArray fields;
    for (const BookValue& v : values)
        fields.append(
            QJsonObject{{u"id"_s, v.fieldId}, {u"label"_s, v.label}, {u"value"_s, v.value}});
    return fields;
}

QJsonObject matchToJson(const dup::Match& match, bool withReason)
{
    QJsonObject out{
        {u"id"_s, match.id},
        {u"name"_s, match.name},
        {u"company"_s, match.company},
        {u"email"_s, match.email},
    };
    if (withReason)
        out.insert(u"reason"_s, dup::reasonName(match.reason));
    return out;
}

QJsonArray matchesToJson(const QList<dup::Match>& matches, bool withReason)
{
    QJsonArray out;
    for (const dup::Match& m : matches)
        out.append(matchToJson(m, withReason));
    return out;
}

QJsonObject contactToJson(ContactBook& book, qint64 id)
{
    return QJsonObject{
        {u"id"_s, id},
        {u"current"_s, book.currentContact() == id},
        {u"fields"_s, fieldsToJson(book.contactValues(id))},
    };
}

// The contact the command names, else the current one.
qint64 chosenContact(ContactBook& book, const QStringList& args)
{
    if (!args.isEmpty()) {
        const qint64 id = *parseContactId(args.first());
        if (!book.hasContact(id))
            throw BookError(BookError::NotFound, u"there is no contact %1"_s.arg(id));
        return id;
    }
    const std::optional<qint64> current = book.currentContact();
    if (!current || !book.hasContact(*current))
        throw BookError(BookError::NotFound, u"the contact book has no current contact"_s);
    return *current;
}

int contactsCommand(const QString& command, const QStringList& args, const QString& path)
{
    const bool writes = command == u"add-field"_s || (command == u"current"_s && !args.isEmpty());
    ContactBook book(path, writes ? ContactBook::Access::Write : ContactBook::Access::Read);
    if (command == u"list"_s) {
        const std::optional<qint64> current = book.currentContact();
        for (const qint64 id : book.contactIds())
            print(listLine(book, id, current));
    } else if (command == u"show"_s) {
        printJson(contactToJson(book, chosenContact(book, args)));
    } else if (command == u"current"_s) {
        const qint64 id = chosenContact(book, args);
        if (!args.isEmpty())
            book.setCurrentContact(id);
        print(listLine(book, id, id));
    } else if (command == u"fields"_s) {
        for (const BookField& f : book.fields())
            print(u"%1\t%2"_s.arg(f.id).arg(oneLine(f.label)));
    } else if (command == u"find"_s) {
        QList<dup::Match> matches;
        for (const qint64 id : book.findText(args[0]))
            matches.append(book.matchOf(id));
        printJson(QJsonObject{{u"matches"_s, matchesToJson(matches, false)}});
    } else if (command == u"add-field"_s) {
        book.addField(qint32(args[0].toInt()), args.value(1));
    } else if (command == u"books"_s) {
        print(u"%1\t%2"_s.arg(oneLine(book.path()), oneLine(QFileInfo(book.path()).fileName())));
    } else if (command == u"export"_s) {
        QList<qint64> ids;
        for (const QString& arg : args) {
            const qint64 id = *parseContactId(arg);
            if (!book.hasContact(id))
                throw BookError(BookError::NotFound, u"there is no contact %1"_s.arg(id));
            ids.append(id);
        }
        if (args.isEmpty())
            ids = book.contactIds();
        QByteArray cards;
        for (const qint64 id : ids)
            cards += contactToVCard(book.contactValues(id),
                                    {book.contactUid(id), book.contactModified(id)});
        std::fwrite(cards.constData(), 1, size_t(cards.size()), stdout);
    }
    return 0;
}

// --- CardDAV ---

// The server card's own UID and REV, so that the export names the same contact.
CardStamp cardStamp(const QByteArray& data)
{
    const carddav::VCard card = carddav::VCard::parse(data);
    CardStamp stamp{card.uid(), {}};
    for (const carddav::VCard::Line& line : card.lines()) {
        if (line.name != u"REV"_s)
            continue;
        // Extended ISO as servers write it, or the basic form of our own cards.
        stamp.revision = QDateTime::fromString(line.value, Qt::ISODate);
        if (!stamp.revision.isValid()) {
            stamp.revision = QDateTime::fromString(line.value, u"yyyyMMdd'T'HHmmss'Z'"_s);
            stamp.revision.setTimeZone(QTimeZone::utc());
        }
    }
    return stamp;
}

std::shared_ptr<DavBook> davBook(const books::BookLocation& location)
{
    return std::make_shared<DavBook>(
        location, std::make_shared<credentials::Credentials>(credentials::terminalAsk()));
}

carddav::Card fetchCard(DavBook& dav, const QString& id)
{
    try {
        return dav.book().get(dav.cardUrl(id));
    } catch (const DavError& e) {
        if (e.kind() == DavError::NotFound)
            throw DavError(DavError::NotFound, u"there is no contact %1"_s.arg(id), 404);
        throw;
    }
}

// The contact the command names, else the current one.
QString chosenContact(DavBook& dav, const QStringList& args)
{
    if (!args.isEmpty())
        return args.first();
    const std::optional<QString> current = dav.currentContact();
    if (!current)
        throw DavError(DavError::NotFound, u"the address book has no current contact"_s);
    return *current;
}

QJsonObject contactToJson(DavBook& dav, const carddav::Card& card)
{
    const QString id = books::contactIdOf(card.url);
    return QJsonObject{
        {u"id"_s, id},
        {u"current"_s, dav.currentContact() == id},
        {u"fields"_s, fieldsToJson(books::cardValues(card.data))},
    };
}

// Every card of the book, by contact id.
QList<carddav::Card> allCards(carddav::AddressBook& book)
{
    QList<QUrl> urls;
    for (const carddav::CardRef& ref : book.list())
        urls.append(ref.url);
    QList<carddav::Card> cards = book.multiget(urls);
    std::sort(cards.begin(), cards.end(), [](const carddav::Card& a, const carddav::Card& b) {
        return books::contactIdOf(a.url) < books::contactIdOf(b.url);
    });
    return cards;
}

int davContactsCommand(const QString& command, const QStringList& args, DavBook& dav)
{
    if (command == u"books"_s) {
        for (const carddav::AddressBookInfo& info : dav.addressBooks())
            print(u"%1\t%2"_s.arg(info.url.adjusted(QUrl::RemoveUserInfo).toString(),
                                  oneLine(info.name)));
        return 0;
    }
    if (command == u"add-field"_s)
        return failure(u"a CardDAV address book has no field list of its own: a user field "
                       u"comes with the first contact filed with it"_s);
    carddav::AddressBook& book = dav.book();
    if (command == u"list"_s) {
        const std::optional<QString> current = dav.currentContact();
        for (const carddav::Card& card : allCards(book)) {
            const QString id = books::contactIdOf(card.url);
            print(listLine(id, books::cardValues(card.data), current == id));
        }
    } else if (command == u"show"_s) {
        printJson(contactToJson(dav, fetchCard(dav, chosenContact(dav, args))));
    } else if (command == u"current"_s) {
        const QString id = chosenContact(dav, args);
        const carddav::Card card = fetchCard(dav, id);
        if (!args.isEmpty())
            dav.setCurrentContact(id);
        print(listLine(id, books::cardValues(card.data), true));
    } else if (command == u"find"_s) {
        const QList<dup::Match> matches =
            books::DavDuplicateLookup(dav).search(args[0], std::numeric_limits<int>::max());
        printJson(QJsonObject{{u"matches"_s, matchesToJson(matches, false)}});
    } else if (command == u"fields"_s) {
        for (const carddav::BookField& f : book.fields())
            print(u"%1\t%2"_s.arg(f.id).arg(oneLine(f.label)));
    } else if (command == u"export"_s) {
        QList<carddav::Card> cards;
        if (args.isEmpty())
            cards = allCards(book);
        for (const QString& id : args)
            cards.append(fetchCard(dav, id));
        QByteArray out;
        for (const carddav::Card& card : cards)
            out += contactToVCard(books::cardValues(card.data), cardStamp(card.data));
        std::fwrite(out.constData(), 1, size_t(out.size()), stdout);
    }
    return 0;
}

// One transfer through the contact link as a script runs it: messages recorded, the completion
// prompt answered "back", and the report printed by finish().
struct LinkTransfer {
    ContactLink link;
    QJsonArray messages;
    bool prompted = false;
    QJsonObject out;

    LinkTransfer(std::shared_ptr<ObjectFactory> factory, bool create, AnalyseRun& run)
        : link(std::move(factory))
    {
        WindowHooks hooks;
        hooks.showMessage = recordMessages(messages);
        hooks.showCompletionPrompt = [this](bool) {
            prompted = true;
            return Completion::Back; // a script decides itself what comes next
        };
        link.TransferContact(create, run.session, hooks);
        out = QJsonObject{
            {u"mode"_s, create ? u"new"_s : u"edit"_s},
            {u"transferred"_s, prompted},
            {u"messages"_s, messages},
            {u"analysis"_s, analysisToJson(run, false)},
        };
    }

    // Prints the report; exit status 0 when the contact was filed, else 1 with the reason.
    int finish()
    {
        printJson(out);
        if (prompted)
            return 0;
        QString reason = messages.isEmpty()
                             ? u"nothing transferred"_s
                             : messages.last().toObject().value(u"text"_s).toString();
        if (!link.lastError().isEmpty())
            reason += u" (%1)"_s.arg(link.lastError());
        return failure(reason);
    }
};

// Looks the new contact up before anything is written, so that a refused duplicate leaves the
// book as it was. Returns the exit status when the transfer ends here. With
// --update-duplicate and one match, that contact becomes the chosen one and the transfer an
// edit of it, whatever another program makes current meanwhile.
std::optional<int> checkDuplicates(bool& create, const AnalyseRun& run, OnDuplicate onDuplicate,
                                   dup::ContactDirectory& lookup, QList<dup::Match>& duplicates)
{
    const dup::Identity identity = dup::identityOfRows(run.session.rows);
    if (!create || onDuplicate == OnDuplicate::Allow || identity.isEmpty() ||
        Trim(run.session.clipText).isEmpty())
        return std::nullopt;
    duplicates = lookup.find(identity);
    if (duplicates.isEmpty())
        return std::nullopt;
    if (onDuplicate == OnDuplicate::Update && duplicates.size() == 1) {
        lookup.setCurrent(duplicates.first().id); // as "Bearbeiten" files into the chosen one
        create = false;
        return std::nullopt;
    }
    printJson(QJsonObject{
        {u"mode"_s, u"new"_s},
        {u"transferred"_s, false},
        {u"duplicates"_s, matchesToJson(duplicates, true)},
    });
    const QString why = onDuplicate == OnDuplicate::Update
                            ? u"the contact book has %1 contacts like this one; "
                              u"--update-duplicate needs exactly one"_s.arg(duplicates.size())
                            : u"the contact book already has this contact; --allow-duplicate "
                              u"files it anyway, --update-duplicate into it"_s;
    std::fprintf(stderr, "zettelfischer-cli: %s\n", why.toUtf8().constData());
    return ExitDuplicate;
}

// The duplicate check, then the transfer through the book's objects; when the rows went into a
// match, the answer names it. Gives the exit status when the check ends the run; the check's
// errors reach the caller.
std::optional<int> fileRows(bool create, AnalyseRun& run, OnDuplicate onDuplicate,
                            const books::OpenedBook& opened, std::optional<LinkTransfer>& t)
{
    QList<dup::Match> duplicates;
    if (const std::optional<int> stop =
            checkDuplicates(create, run, onDuplicate, *opened.directory, duplicates))
        return stop;
    t.emplace(opened.objects, create, run);
    if (!duplicates.isEmpty()) {
        t->out.insert(u"mode"_s, u"new"_s);
        t->out.insert(u"updatedDuplicate"_s, matchToJson(duplicates.first(), true));
    }
    return std::nullopt;
}

int davTransfer(bool create, const books::BookLocation& location, const AnalyseOptions& options,
                OnDuplicate onDuplicate)
{
    const std::shared_ptr<DavBook> dav = davBook(location);
    try {
        dav->book(); // logged in and found: a clear reason before the transfer's short message
    } catch (const DavError& e) {
        return failure(e.message());
    }
    AnalyseRun run;
    if (const QString e = analyseInput(options, run); !e.isEmpty())
        return usageError(e);
    const books::OpenedBook opened = books::openDavBook(dav);
    std::optional<LinkTransfer> t;
    try {
        if (const std::optional<int> stop = fileRows(create, run, onDuplicate, opened, t))
            return *stop;
    } catch (const DavError& e) {
        return failure(e.message());
    } catch (const ActError& e) {
        return failure(e.message());
    }
    try {
        // The contact written, or the chosen one for an edit that wrote nothing.
        const std::optional<QString> edited = dav->editedContact();
        if (t->prompted && !edited)
            throw DavError(DavError::NotFound, u"the address book has no current contact"_s);
        if (t->prompted)
            t->out.insert(u"contact"_s, contactToJson(*dav, fetchCard(*dav, *edited)));
    } catch (const DavError& e) {
        return failure(e.message());
    }
    return t->finish();
}

int sqliteTransfer(bool create, const QString& path, const AnalyseOptions& options,
                   OnDuplicate onDuplicate)
{
    try {
        ContactBook check(path); // a clear reason before the transfer's own short message
    } catch (const BookError& e) {
        return failure(e.message());
    }
    AnalyseRun run;
    if (const QString e = analyseInput(options, run); !e.isEmpty())
        return usageError(e);

    const books::OpenedBook opened = books::openBook({path, {}, {}}, nullptr);
    std::optional<LinkTransfer> t;
    try {
        if (const std::optional<int> stop = fileRows(create, run, onDuplicate, opened, t))
            return *stop;
    } catch (const ActError& e) {
        return failure(e.message());
    }
    try {
        if (t->prompted) {
            // The contact this transfer wrote (or, for an edit that wrote nothing, the one it
            // addressed): the book's current contact may already be another program's.
            const std::optional<dup::Match> written = opened.directory->current();
            if (!written)
                throw BookError(BookError::NotFound, u"the contact book has no current contact"_s);
            ContactBook book(path, ContactBook::Access::Read);
            t->out.insert(u"contact"_s, contactToJson(book, *parseContactId(written->id)));
        }
    } catch (const BookError& e) {
        return failure(e.message());
    } catch (const ActError& e) {
        return failure(e.message());
    }
    return t->finish();
}

} // namespace

namespace {

SharedState loadedSettings(const QString& iniFile = {})
{
    SharedState state;
    FieldRows rows;
    LoadSettings(iniFile.isEmpty() ? settingsFilePath() : iniFile, state, rows);
    return state;
}

books::BookLocation contactsLocation(const QString& file)
{
    return books::bookLocation(file, loadedSettings());
}

} // namespace

bool contactsOnServer(const QString& file)
{
    return books::isServerLocation(contactsLocation(file).location);
}

int runContacts(const QString& command, const QStringList& args, const QString& file)
{
    const books::BookLocation location = contactsLocation(file);
    try {
        if (books::isServerLocation(location.location))
            return davContactsCommand(command, args, *davBook(location));
        return contactsCommand(command, args, location.location);
    } catch (const BookError& e) {
        return failure(e.message());
    } catch (const DavError& e) {
        return failure(e.message());
    } catch (const ActError& e) {
        return failure(e.message());
    }
}

int runTransfer(bool create, const QString& file, const AnalyseOptions& options,
                OnDuplicate onDuplicate)
{
    const SharedState settings = loadedSettings(options.iniFile);
    const books::BookLocation location = books::bookLocation(file, settings);
    if (!settings.KontakteDublettenpruefung && onDuplicate == OnDuplicate::Refuse)
        onDuplicate = OnDuplicate::Allow;
    if (books::isServerLocation(location.location))
        return davTransfer(create, location, options, onDuplicate);
    return sqliteTransfer(create, location.location, options, onDuplicate);
}
