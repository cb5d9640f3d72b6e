#pragma once

#include "command.h"

namespace zf::cli {

// --contacts FILE: the contact book, for contacts and transfer.
QCommandLineOption contactsFileOption();
// The book the option names ("" for the default); an error text when it is given empty.
QString readContactsFile(const QCommandLineParser& parser, const QCommandLineOption& option,
                         QString& file);

// zettelfischer-cli contacts SUBCOMMAND: reads and edits the embedded contact book.
class ContactsCommand : public Command {
public:
    ContactsCommand();

protected:
    QString details() const override;
    int execute(const QCommandLineParser& parser) override;

private:
    QCommandLineOption m_contacts;
};

} // namespace zf::cli
