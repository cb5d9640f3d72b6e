#include "command.h"

#include "../cli.h"

#include <algorithm>
#include <cstdio>

using namespace Qt::StringLiterals;

namespace zf::cli {

namespace {

constexpr qsizetype HelpWidth = 79; // as Qt wraps the option list

QString longName(const QCommandLineOption& option)
{
    for (const QString& name : option.names())
        if (name.size() > 1)
            return u"--"_s + name;
    return u"-"_s + option.names().constFirst();
}

// Breaks the usage line, which starts at column start, between its parts ("[--ini FILE]" stays
// whole); the lines after the first start at column indent.
QString wrapUsage(const QString& usage, qsizetype start, qsizetype indent)
{
    QStringList parts;
    int depth = 0;
    QString part;
    for (const QChar c : usage) {
        if (c == u'[')
            ++depth;
        else if (c == u']')
            --depth;
        if (c == u' ' && depth == 0) {
            parts.append(part);
            part.clear();
        } else {
            part += c;
        }
    }
    parts.append(part);

    QString out;
    qsizetype column = start;
    for (const QString& p : std::as_const(parts)) {
        if (column > indent && column + 1 + p.size() > HelpWidth) {
            out += u'\n' + QString(indent, u' ');
            column = indent;
        } else if (!out.isEmpty()) {
            out += u' ';
            ++column;
        }
        out += p;
        column += p.size();
    }
    return out;
}

} // namespace

QString helpList(const QList<std::pair<QString, QString>>& rows)
{
    qsizetype nameWidth = 0;
    for (const auto& [name, text] : rows)
        nameWidth = std::max(nameWidth, name.size());
    const qsizetype indent = 2 + nameWidth + 2;
    QString out;
    for (const auto& [name, text] : rows) {
        QString line = u"  "_s + name.leftJustified(nameWidth + 2);
        for (const QString& word : text.split(u' ', Qt::SkipEmptyParts)) {
            if (line.size() > indent && line.size() + 1 + word.size() > HelpWidth) {
                out += line + u'\n';
                line = QString(indent, u' ');
            } else if (line.size() > indent) {
                line += u' ';
            }
            line += word;
        }
        out += line + u'\n';
    }
    return out;
}

Command::Command(QString name, QString summary)
    : m_name(std::move(name)), m_summary(std::move(summary)),
      m_help(QStringList{u"h"_s, u"help"_s}, u"Shows this help."_s)
{
    m_parser.setApplicationDescription(m_summary);
    m_parser.addOption(m_help);
}

void Command::addOptions(const QList<QCommandLineOption>& options)
{
    for (const QCommandLineOption& option : options) {
        m_parser.addOption(option);
        m_options.append(option);
    }
}

void Command::takeArguments(const QString& syntax)
{
    m_takesArguments = true;
    m_argumentSyntax = syntax;
}

void Command::setDescription(const QString& text)
{
    m_parser.setApplicationDescription(text);
}

QString Command::optionsSynopsis(const QStringList& leaveOut) const
{
    QStringList parts;
    for (const QCommandLineOption& option : m_options) {
        const QString name = longName(option);
        if (leaveOut.contains(name) || option.flags() & QCommandLineOption::HiddenFromHelp)
            continue;
        parts.append(option.valueName().isEmpty() ? u"[%1]"_s.arg(name)
                                                  : u"[%1 %2]"_s.arg(name, option.valueName()));
    }
    return parts.join(u' ');
}

QString Command::synopsis() const
{
    QStringList parts{m_name};
    if (!m_options.isEmpty())
        parts.append(optionsSynopsis());
    if (m_takesArguments)
        parts.append(m_argumentSyntax);
    return parts.join(u' ');
}

QString Command::helpText() const
{
    QString text = m_parser.helpText();
    // Qt's first line names the program by the path it was started from.
    const QString usage = u"Usage: zettelfischer-cli "_s;
    text.replace(0, text.indexOf(u'\n'),
                 usage + wrapUsage(synopsis(), usage.size(), usage.size() + m_name.size() + 1) +
                     u'\n');
    if (const QString more = details(); !more.isEmpty())
        text += u'\n' + more;
    return text;
}

int Command::run(const QStringList& args)
{
    setUsageCommand(m_name);
    if (!m_parser.parse(QStringList{m_name} + args))
        return usageError(m_parser.errorText());
    if (m_parser.isSet(m_help)) {
        std::fputs(helpText().toUtf8().constData(), stdout);
        return 0;
    }
    const QStringList positional = m_parser.positionalArguments();
    if (!m_takesArguments && !positional.isEmpty())
        return usageError(u"unexpected argument '%1'"_s.arg(positional.constFirst()));
    return execute(m_parser);
}

int Command::usageError(const QString& message) const
{
    return ::usageError(message);
}

} // namespace zf::cli
