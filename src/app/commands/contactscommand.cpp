#include "contactscommand.h"

#include "../cli.h"
#include "books/davbook.h"

#include <limits>

using namespace Qt::StringLiterals;

namespace zf::cli {

namespace {

// What a subcommand takes after its name.
enum class Takes { Nothing, OneId, Ids, FieldAndLabel, Text };

struct Subcommand {
    QString name;
    QString syntax;
    QString summary;
    Takes takes;
};

const QList<Subcommand>& subcommands()
{
    static const QList<Subcommand> list{
        {u"list"_s,
         {},
         u"One line per contact: ID, name, company (\"current\" marks the current one)."_s,
         Takes::Nothing},
        {u"show"_s, u"[ID]"_s,
         u"The contact (default: the current one) as JSON: field id, label, value."_s,
         Takes::OneId},
        {u"current"_s, u"[ID]"_s,
         u"Shows the current contact, or makes contact ID the current one."_s, Takes::OneId},
        {u"find"_s, u"TEXT"_s,
         u"The contacts with TEXT in a name, the company, the e-mail or a phone number, as "
         u"JSON."_s,
         Takes::Text},
        {u"fields"_s, {}, u"The book's fields: ID and label."_s, Takes::Nothing},
        {u"add-field"_s, u"ID [LABEL]"_s, u"Adds a field to the book."_s, Takes::FieldAndLabel},
        {u"export"_s, u"[ID...]"_s, u"The contacts (default: all) as vCard 4.0."_s, Takes::Ids},
        {u"books"_s,
         {},
         u"The address books a server or account URL leads to: URL and name (for a file: its "
         u"path and name)."_s,
         Takes::Nothing},
    };
    return list;
}

const Subcommand* findSubcommand(const QString& name)
{
    for (const Subcommand& sub : subcommands())
        if (sub.name == name)
            return &sub;
    return nullptr;
}

// An error text for arguments the subcommand cannot take, or "".
// A CardDAV book names its contacts by resource name ("<uid>.vcf").
QString checkArguments(const Subcommand& sub, const QStringList& args, bool server)
{
    switch (sub.takes) {
    case Takes::Nothing:
        if (!args.isEmpty())
            return u"contacts %1: unexpected argument '%2'"_s.arg(sub.name, args[0]);
        break;
    case Takes::OneId:
        if (args.size() > 1)
            return u"contacts %1: at most one contact id"_s.arg(sub.name);
        [[fallthrough]];
    case Takes::Ids:
        for (const QString& arg : args)
            if (server ? !books::isDavContactId(arg) : !parseContactId(arg))
                return u"contacts %1: '%2' is not a contact id"_s.arg(sub.name, arg);
        break;
    case Takes::Text:
        if (args.size() != 1 || args[0].trimmed().isEmpty())
            return u"contacts %1: needs one TEXT to look for"_s.arg(sub.name);
        break;
    case Takes::FieldAndLabel: {
        if (args.isEmpty() || args.size() > 2)
            return u"contacts %1: needs ID and an optional LABEL"_s.arg(sub.name);
        bool ok = false;
        const int id = args[0].toInt(&ok);
        if (!ok || id < 1 || id > std::numeric_limits<qint16>::max())
            return u"contacts %1: '%2' is not a field id (1 to 32767)"_s.arg(sub.name, args[0]);
        break;
    }
    }
    return {};
}

} // namespace

QCommandLineOption contactsFileOption()
{
    return QCommandLineOption(
        u"contacts"_s,
        u"Contact book to use: a file, or the http(s) URL of a CardDAV address book, account "
        u"or server (default: $ZETTELFISCHER_CONTACTS, else [Kontakte] Adressbuch= of the "
        u"settings, else zettelfischer/kontakte.sqlite in the user's data folder; created on "
        u"first use)."_s,
        u"FILE"_s);
}

QString readContactsFile(const QCommandLineParser& parser, const QCommandLineOption& option,
                         QString& file)
{
    if (parser.values(option).contains(QString()))
        return u"--contacts needs a file name"_s;
    file = parser.value(option);
    return {};
}

ContactsCommand::ContactsCommand()
    : Command(u"contacts"_s, u"Reads and edits the contact book."_s),
      m_contacts(contactsFileOption())
{
    addOptions({m_contacts});
    takeArguments(u"SUBCOMMAND [ARGUMENTS]"_s);
}

QString ContactsCommand::details() const
{
    QList<std::pair<QString, QString>> rows;
    for (const Subcommand& sub : subcommands())
        rows.append({QStringList{sub.name, sub.syntax}.join(u' ').trimmed(), sub.summary});
    return u"Subcommands:\n"_s + helpList(rows) +
           u"\nExit status: 0 on success, 1 when the contact book cannot be used, 2 for a\n"
           u"usage error.\n"_s;
}

int ContactsCommand::execute(const QCommandLineParser& parser)
{
    QString file;
    if (const QString error = readContactsFile(parser, m_contacts, file); !error.isEmpty())
        return usageError(error);
    QStringList args = parser.positionalArguments();
    if (args.isEmpty())
        return usageError(u"contacts: missing subcommand"_s);
    const QString name = args.takeFirst();
    const Subcommand* sub = findSubcommand(name);
    if (!sub)
        return usageError(u"contacts: unknown subcommand '%1'"_s.arg(name));
    const bool server =
        sub->takes == Takes::OneId || sub->takes == Takes::Ids ? contactsOnServer(file) : false;
    if (const QString error = checkArguments(*sub, args, server); !error.isEmpty())
        return usageError(error);
    return runContacts(sub->name, args, file);
}

} // namespace zf::cli
