// zettelfischer-cli: the address analysis and the contact book for scripts and checks, without
// a window. Each command is a class in commands/; this file lists them and reads what comes
// before the command's name.

#include "cli.h"
#include "commands/analysecommand.h"
#include "commands/command.h"
#include "commands/contactscommand.h"
#include "commands/transfercommand.h"
#include "version.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QStringList>

#include <cstdio>
#include <memory>
#include <vector>

using namespace Qt::StringLiterals;
using namespace zf::cli;

namespace {

QString usageCommand;

std::vector<std::unique_ptr<Command>> allCommands()
{
    std::vector<std::unique_ptr<Command>> commands;
    commands.push_back(std::make_unique<AnalyseCommand>());
    commands.push_back(std::make_unique<ContactsCommand>());
    commands.push_back(std::make_unique<TransferCommand>());
    return commands;
}

QString overview(const std::vector<std::unique_ptr<Command>>& commands)
{
    QList<std::pair<QString, QString>> rows;
    for (const auto& command : commands)
        rows.append({command->name(), command->summary()});
    return u"Usage: zettelfischer-cli COMMAND [OPTIONS] [ARGUMENTS]\n"
           u"       zettelfischer-cli --help | --version\n\n"
           u"Analyses address text into field rows and files them in the contact book, for\n"
           u"scripts and checks, without a window.\n\n"
           u"Commands:\n"_s +
           helpList(rows) + u"\nOptions:\n"_s +
           helpList({{u"-h, --help"_s, u"Shows this help."_s},
                     {u"--version"_s, u"Shows the program's version."_s}}) +
           u"\n'zettelfischer-cli COMMAND --help' shows a command's options.\n\n"
           u"Exit status: 0 on success, 1 when the contact book cannot be used or a transfer\n"
           u"failed, 2 for a usage error or unreadable input.\n"_s;
}

} // namespace

void setUsageCommand(const QString& name)
{
    usageCommand = name;
}

int usageError(const QString& message)
{
    const QString help = usageCommand.isEmpty() ? u"--help"_s : u"%1 --help"_s.arg(usageCommand);
    std::fprintf(stderr, "zettelfischer-cli: %s\nTry 'zettelfischer-cli %s'.\n",
                 message.toUtf8().constData(), help.toUtf8().constData());
    return ExitUsage;
}

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    QCoreApplication::setApplicationName(u"zettelfischer-cli"_s);
    QCoreApplication::setApplicationVersion(QString::fromUtf16(zf::Version));
    const std::vector<std::unique_ptr<Command>> commands = allCommands();

    // Options before the command's name; everything from the name on is the command's.
    QCommandLineParser parser;
    parser.setOptionsAfterPositionalArgumentsMode(QCommandLineParser::ParseAsPositionalArguments);
    const QCommandLineOption help(QStringList{u"h"_s, u"help"_s});
    const QCommandLineOption version(u"version"_s);
    parser.addOptions({help, version});
    if (!parser.parse(QCoreApplication::arguments()))
        return usageError(parser.errorText());
    if (parser.isSet(help)) {
        std::fputs(overview(commands).toUtf8().constData(), stdout);
        return 0;
    }
    if (parser.isSet(version)) {
        std::printf("zettelfischer-cli %s\n", QString::fromUtf16(zf::Version).toUtf8().constData());
        return 0;
    }
    const QStringList args = parser.positionalArguments();
    if (args.isEmpty())
        return usageError(u"missing command"_s);
    for (const auto& command : commands)
        if (command->name() == args.first())
            return command->run(args.mid(1));
    return usageError(u"unknown command '%1'"_s.arg(args.first()));
}
