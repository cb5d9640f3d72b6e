// zettelfischer-cli: the address analysis for scripts and checks, without a window.

#include "cli.h"

#include <QCoreApplication>
#include <QStringList>

#include <cstdio>

using namespace Qt::StringLiterals;

namespace {

const char* const HelpText =
    R"(Usage: zettelfischer-cli analyse [--raw] [--enhanced] [--separator TEXT] [--ini FILE] [--file FILE] [--trace]

Analyses address text (FILE, else standard input: UTF-16 when it starts with a UTF-16
byte-order mark, else UTF-8; at most 64 MB) and prints the sixteen
field rows as one JSON object: rows, clipText, extraFieldValues, messages, completed
(and with --trace the final line list with every line's scores).

  --raw             analyse the text as typed into the clipboard box (no clipboard fetch:
                    " . " before line breaks stays, an empty text is analysed as well)
  --separator TEXT  line separator to use instead of the automatic choice
  --ini FILE        settings file (default: zettelfischer.ini beside this program, else
                    in ~/.config/zettelfischer/, else in /etc/xdg/zettelfischer/)
  --file FILE       read the text from FILE instead of standard input
  --trace           also print the line list with all twenty scores per line
  --enhanced        the enhanced analysis (also [Config] ErweiterteAnalyse=1); with
                    --trace it adds "recognised": what each line was taken for, and why
  -h, --help        show this help

Usage: zettelfischer-cli contacts [--contacts FILE] COMMAND
       zettelfischer-cli transfer --new|--edit [--contacts FILE] [analyse options]

contacts: the contact book (--contacts FILE, else $ZETTELFISCHER_CONTACTS, else
zettelfischer/kontakte.sqlite in the user's data folder; created on first use).
  list              one line per contact: ID, name, company ("current" marks the current one)
  show [ID]         the contact (default: the current one) as JSON: field id, label, value
  current [ID]      show the current contact, or make contact ID the current one
  fields            the book's fields: ID and label
  add-field ID [LABEL]  add a field to the book
  export [ID...]    the contacts (default: all) as vCard 4.0
transfer: analyses the input like analyse and files the rows as a new contact (--new) or
into the current contact (--edit); prints what it did as JSON.

Exit status: 0 on success, 1 when the contact book cannot be used or a transfer failed,
2 for a usage error or unreadable input.
)";

} // namespace

int usageError(const QString& message)
{
    std::fprintf(stderr, "zettelfischer-cli: %s\n", qPrintable(message));
    std::fprintf(stderr, "Try 'zettelfischer-cli --help'.\n");
    return ExitUsage;
}

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    const QStringList args = app.arguments().mid(1);
    if (args.contains(u"--help"_s) || args.contains(u"-h"_s)) {
        std::fputs(HelpText, stdout);
        return 0;
    }
    if (args.isEmpty())
        return usageError(u"missing command"_s);
    if (args.first() == u"analyse"_s)
        return runAnalyse(args.mid(1));
    if (args.first() == u"contacts"_s)
        return runContacts(args.mid(1));
    if (args.first() == u"transfer"_s)
        return runTransfer(args.mid(1));
    return usageError(u"unknown command '%1'"_s.arg(args.first()));
}
