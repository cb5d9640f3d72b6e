#include "transfercommand.h"

#include "contactscommand.h"

using namespace Qt::StringLiterals;

namespace zf::cli {

TransferCommand::TransferCommand()
    : Command(u"transfer"_s,
              u"Analyses address text and files the rows as a new or the current contact."_s),
      m_new(u"new"_s, u"Files the rows as a new contact (\"Neu Anlegen\")."_s),
      m_edit(u"edit"_s, u"Files the rows into the current contact (\"Bearbeiten\")."_s),
      m_allowDuplicate(u"allow-duplicate"_s,
                       u"With --new: files the contact even when the book already has it."_s),
      m_updateDuplicate(u"update-duplicate"_s,
                        u"With --new: files the rows into the one contact of the book that is "
                        u"the same person, as --edit would; a new contact when there is none."_s),
      m_contacts(contactsFileOption())
{
    setDescription(
        u"Analyses the input like analyse and files the rows as a new contact (--new) or\n"
        u"into the current contact (--edit); prints what it did as JSON."_s);
    addOptions({m_new, m_edit, m_contacts});
    addOptions(m_options.options(false));
    addOptions({m_allowDuplicate, m_updateDuplicate});
}

QString TransferCommand::synopsis() const
{
    return u"transfer --new|--edit "_s + optionsSynopsis({u"--new"_s, u"--edit"_s});
}

QString TransferCommand::details() const
{
    return u"A new contact is first looked for in the book (the same e-mail, the same name at\n"
           u"the same company, or the same mobile number; [Kontakte] Dublettenpruefung=0 in the\n"
           u"settings switches this off). When the book has it, nothing is written and the\n"
           u"matches are printed as JSON.\n\n"
           u"Exit status: 0 when the contact was filed, 1 when the contact book cannot be\n"
           u"used or the transfer failed, 2 for a usage error or unreadable input, 3 when the\n"
           u"book already has the new contact.\n"_s;
}

int TransferCommand::execute(const QCommandLineParser& parser)
{
    QString file;
    if (const QString error = readContactsFile(parser, m_contacts, file); !error.isEmpty())
        return usageError(error);
    const bool create = parser.isSet(m_new);
    if (create == parser.isSet(m_edit))
        return usageError(u"transfer: give exactly one of --new and --edit"_s);
    const bool allow = parser.isSet(m_allowDuplicate);
    const bool update = parser.isSet(m_updateDuplicate);
    if ((allow || update) && !create)
        return usageError(u"transfer: --allow-duplicate and --update-duplicate go with --new"_s);
    if (allow && update)
        return usageError(u"transfer: give at most one of --allow-duplicate and "
                          u"--update-duplicate"_s);
    AnalyseOptions options;
    if (const QString error = m_options.read(parser, options); !error.isEmpty())
        return usageError(error);
    return runTransfer(create, file, options,
                       allow    ? OnDuplicate::Allow
                       : update ? OnDuplicate::Update
                                : OnDuplicate::Refuse);
}

} // namespace zf::cli
