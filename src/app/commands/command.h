#pragma once

#include <QCommandLineOption>
#include <QCommandLineParser>
#include <QList>
#include <QString>
#include <QStringList>

#include <utility>

namespace zf::cli {

// Help lines "  NAME  TEXT" with the texts aligned and wrapped as Qt lists the options.
QString helpList(const QList<std::pair<QString, QString>>& rows);

// One command of zettelfischer-cli ("zettelfischer-cli NAME ..."): its options, its help and
// its run. A command declares its options in its constructor and does its work in execute().
class Command {
public:
    Command(QString name, QString summary);
    virtual ~Command() = default;
    Command(const Command&) = delete;
    Command& operator=(const Command&) = delete;

    const QString& name() const { return m_name; }
    // One line for the overview of all commands.
    const QString& summary() const { return m_summary; }

    // Runs the command on the arguments after its name; returns the exit status.
    int run(const QStringList& args);
    QString helpText() const;

protected:
    void addOptions(const QList<QCommandLineOption>& options);
    // Lets the command take positional arguments, shown as SYNTAX in the usage line; without
    // this call any positional argument is a usage error.
    void takeArguments(const QString& syntax);
    // A few lines below the usage line; the summary unless set.
    void setDescription(const QString& text);
    // The usage line after "zettelfischer-cli "; by default the name, options and arguments.
    virtual QString synopsis() const;
    // "[--raw] [--ini FILE] ..." for the options, without those named in leaveOut.
    QString optionsSynopsis(const QStringList& leaveOut = {}) const;
    // What --help shows below the options.
    virtual QString details() const { return {}; }
    // Runs after a clean parse without --help.
    virtual int execute(const QCommandLineParser& parser) = 0;
    // "zettelfischer-cli: MESSAGE" and a hint at this command's help; returns the usage status.
    int usageError(const QString& message) const;

private:
    QString m_name;
    QString m_summary;
    QString m_argumentSyntax;
    bool m_takesArguments = false;
    QList<QCommandLineOption> m_options;
    QCommandLineParser m_parser;
    QCommandLineOption m_help;
};

} // namespace zf::cli
