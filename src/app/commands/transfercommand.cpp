#include "transfercommand.h"

#include "contactscommand.h"

using namespace Qt::StringLiterals;

namespace zf::cli {

TransferCommand::TransferCommand()
    : Command(u"transfer"_s,
              u"Analyses address text and files the rows as a new or the current contact."_s),
      m_new(u"new"_s, u"Files the rows as a new contact (\"Neu Anlegen\")."_s),
      m_edit(u"edit"_s, u"Files the rows into the current contact (\"Bearbeiten\")."_s),
      m_contacts(contactsFileOption())
{
    setDescription(
        u"Analyses the input like analyse and files the rows as a new contact (--new) or\n"
        u"into the current contact (--edit); prints what it did as JSON."_s);
    addOptions({m_new, m_edit, m_contacts});
    addOptions(m_options.options(false));
}

QString TransferCommand::synopsis() const
{
    return u"transfer --new|--edit "_s + optionsSynopsis({u"--new"_s, u"--edit"_s});
}

QString TransferCommand::details() const
{
    return u"Exit status: 0 when the contact was filed, 1 when the contact book cannot be\n"
           u"used or the transfer failed, 2 for a usage error or unreadable input.\n"_s;
}

int TransferCommand::execute(const QCommandLineParser& parser)
{
    QString file;
    if (const QString error = readContactsFile(parser, m_contacts, file); !error.isEmpty())
        return usageError(error);
    const bool create = parser.isSet(m_new);
    if (create == parser.isSet(m_edit))
        return usageError(u"transfer: give exactly one of --new and --edit"_s);
    AnalyseOptions options;
    if (const QString error = m_options.read(parser, options); !error.isEmpty())
        return usageError(error);
    return runTransfer(create, file, options);
}

} // namespace zf::cli
