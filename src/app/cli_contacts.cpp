// The "contacts" and "transfer" commands of zettelfischer-cli: the embedded contact book.

#include "cli.h"

#include "act/contactbook.h"
#include "act/contactlink.h"
#include "act/vcard.h"
#include "analysis/fields.h"

#include <QJsonArray>
#include <QJsonObject>

#include <cstdio>
#include <limits>

using namespace Qt::StringLiterals;
using namespace zf;
using namespace zf::act;

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

// Takes --contacts FILE (or --contacts=FILE) out of the arguments; "" when the value is missing.
bool takeContactsOption(QStringList& args, QString& file, QString& error)
{
    for (qsizetype i = 0; i < args.size(); ++i) {
        if (args[i] == u"--contacts"_s) {
            if (i + 1 >= args.size() || args[i + 1].isEmpty()) {
                error = u"--contacts needs a file name"_s;
                return false;
            }
            file = args[i + 1];
            args.remove(i, 2);
            --i;
        } else if (args[i].startsWith(u"--contacts="_s)) {
            file = args[i].mid(qsizetype(sizeof("--contacts=")) - 1);
            if (file.isEmpty()) {
                error = u"--contacts needs a file name"_s;
                return false;
            }
            args.remove(i);
            --i;
        }
    }
    return true;
}

std::optional<qint64> parseId(const QString& text)
{
    bool ok = false;
    const qint64 id = text.toLongLong(&ok);
    if (!ok || id < 1)
        return std::nullopt;
    return id;
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
        const qint64 id = *parseId(args.first());
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
    ContactBook book(path);
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
            const qint64 id = *parseId(arg);
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

int runContacts(const QStringList& arguments)
{
    QStringList args = arguments;
    QString file;
    QString error;
    if (!takeContactsOption(args, file, error))
        return usageError(error);
    if (args.isEmpty())
        return usageError(u"contacts: missing subcommand"_s);
    const QString command = args.takeFirst();
    for (const QString& arg : args)
        if (arg.startsWith(u"--"_s))
            return usageError(u"contacts: unknown option '%1'"_s.arg(arg));

    static const QStringList idCommands{u"show"_s, u"current"_s, u"export"_s};
    if (idCommands.contains(command)) {
        if (command != u"export"_s && args.size() > 1)
            return usageError(u"contacts %1: at most one contact id"_s.arg(command));
        for (const QString& arg : args)
            if (!parseId(arg))
                return usageError(u"contacts %1: '%2' is not a contact id"_s.arg(command, arg));
    } else if (command == u"list"_s || command == u"fields"_s) {
        if (!args.isEmpty())
            return usageError(u"contacts %1: unexpected argument '%2'"_s.arg(command, args[0]));
    } else if (command == u"add-field"_s) {
        if (args.isEmpty() || args.size() > 2)
            return usageError(u"contacts add-field: needs ID and an optional LABEL"_s);
        bool ok = false;
        const int id = args[0].toInt(&ok);
        if (!ok || id < 1 || id > std::numeric_limits<qint16>::max())
            return usageError(
                u"contacts add-field: '%1' is not a field id (1 to 32767)"_s.arg(args[0]));
    } else {
        return usageError(u"contacts: unknown subcommand '%1'"_s.arg(command));
    }

    try {
        return contactsCommand(command, args, contactBookPath(file));
    } catch (const BookError& e) {
        return failure(e.message());
    }
}

int runTransfer(const QStringList& arguments)
{
    QStringList args = arguments;
    QString file;
    QString error;
    if (!takeContactsOption(args, file, error))
        return usageError(error);
    const bool create = args.removeAll(u"--new"_s) > 0;
    const bool edit = args.removeAll(u"--edit"_s) > 0;
    if (create == edit)
        return usageError(u"transfer: give exactly one of --new and --edit"_s);
    AnalyseOptions options;
    if (const QString e = parseAnalyseOptions(args, options); !e.isEmpty())
        return usageError(e);

    const QString path = contactBookPath(file);
    try {
        ContactBook check(path); // a clear reason before the transfer's own short message
    } catch (const BookError& e) {
        return failure(e.message());
    }
    AnalyseRun run;
    if (const QString e = analyseInput(options, run); !e.isEmpty())
        return usageError(e);

    ContactLink link(makeContactBookFactory(path));
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
        ContactBook book(path);
        if (prompted)
            out.insert(u"contact"_s, contactToJson(book, chosenContact(book, {})));
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
