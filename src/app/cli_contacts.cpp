// The work behind the "contacts" and "transfer" commands: the embedded contact book.

#include "cli.h"

#include "act/contactbook.h"
#include "act/contactlink.h"
#include "act/vcard.h"
#include "analysis/fields.h"

#include <QJsonArray>
#include <QJsonObject>

#include <cstdio>
#include <limits>
#include <optional>

using namespace Qt::StringLiterals;
using namespace zf;
using namespace zf::act;

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
QString listLine(ContactBook& book, qint64 id, std::optional<qint64> current)
{
    const QList<BookValue> values = book.contactValues(id);
    QString name = valueOf(values, idOf(FieldId::Kontakt));
    if (name.isEmpty())
        name = QStringList{valueOf(values, idOf(FieldId::Vorname)),
                           valueOf(values, idOf(FieldId::Nachname))}
                   .join(u' ')
                   .trimmed();
    QString line =
        u"%1\t%2\t%3"_s.arg(id).arg(oneLine(name), oneLine(valueOf(values, idOf(FieldId::Firma))));
    if (current == id)
        line += u"\tcurrent"_s;
    return line;
}

QJsonObject contactToJson(ContactBook& book, qint64 id)
{
    QJsonArray fields;
    for (const BookValue& v : book.contactValues(id))
        fields.append(
            QJsonObject{{u"id"_s, v.fieldId}, {u"label"_s, v.label}, {u"value"_s, v.value}});
    return QJsonObject{
        {u"id"_s, id},
        {u"current"_s, book.currentContact() == id},
        {u"fields"_s, fields},
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
    } else if (command == u"add-field"_s) {
        book.addField(qint32(args[0].toInt()), args.value(1));
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
            cards += contactToVCard(book.contactValues(id));
        std::fwrite(cards.constData(), 1, size_t(cards.size()), stdout);
    }
    return 0;
}

} // namespace

int runContacts(const QString& command, const QStringList& args, const QString& file)
{
    try {
        return contactsCommand(command, args, contactBookPath(file));
    } catch (const BookError& e) {
        return failure(e.message());
    }
}

int runTransfer(bool create, const QString& file, const AnalyseOptions& options)
{
    const QString path = contactBookPath(file);
    try {
        ContactBook check(path); // a clear reason before the transfer's own short message
    } catch (const BookError& e) {
        return failure(e.message());
    }
    AnalyseRun run;
    if (const QString e = analyseInput(options, run); !e.isEmpty())
        return usageError(e);

    // The contact this transfer wrote: the book's current contact may already be another
    // program's by the time the answer is printed.
    std::optional<qint64> written;
    ContactLink link(makeContactBookFactory(path, [&written](qint64 id) { written = id; }));
    QJsonArray messages;
    bool prompted = false;
    WindowHooks hooks;
    hooks.showMessage = recordMessages(messages);
    hooks.showCompletionPrompt = [&prompted](bool) {
        prompted = true;
        return Completion::Back; // a script decides itself what comes next
    };
    link.TransferContact(create, run.session, hooks);

    QJsonObject out{
        {u"mode"_s, create ? u"new"_s : u"edit"_s},
        {u"transferred"_s, prompted},
        {u"messages"_s, messages},
        {u"analysis"_s, analysisToJson(run, false)},
    };
    try {
        if (prompted) {
            ContactBook book(path, ContactBook::Access::Read);
            // An edit without a single field wrote nothing: it addressed the current contact.
            out.insert(u"contact"_s,
                       contactToJson(book, written ? *written : chosenContact(book, {})));
        }
    } catch (const BookError& e) {
        return failure(e.message());
    }
    printJson(out);
    if (prompted)
        return 0;
    QString reason = messages.isEmpty() ? u"nothing transferred"_s
                                        : messages.last().toObject().value(u"text"_s).toString();
    if (!link.lastError().isEmpty())
        reason += u" (%1)"_s.arg(link.lastError());
    return failure(reason);
}
