#include "analysecommand.h"

using namespace Qt::StringLiterals;

namespace zf::cli {

AnalyseOptionSet::AnalyseOptionSet()
    : m_raw(u"raw"_s, u"Analyses the text as typed into the clipboard box (no clipboard fetch: "
                      u"\" . \" before line breaks stays, an empty text is analysed as well)."_s),
      m_separator(u"separator"_s, u"Line separator to use instead of the automatic choice."_s,
                  u"TEXT"_s),
      m_ini(u"ini"_s,
            u"Settings file (default: zettelfischer.ini beside this program, else in "
            u"~/.config/zettelfischer/, else in /etc/xdg/zettelfischer/)."_s,
            u"FILE"_s),
      m_file(u"file"_s, u"Reads the text from FILE instead of standard input."_s, u"FILE"_s),
      m_trace(u"trace"_s, u"Also prints the line list with all twenty scores per line."_s),
      m_enhanced(u"enhanced"_s,
                 u"The enhanced analysis (also [Config] ErweiterteAnalyse=1); with --trace it "
                 u"adds \"recognised\": what each line was taken for, and why."_s)
{
}

QList<QCommandLineOption> AnalyseOptionSet::options(bool showTrace) const
{
    QCommandLineOption trace = m_trace;
    if (!showTrace)
        trace.setFlags(QCommandLineOption::HiddenFromHelp);
    return {m_raw, m_separator, m_ini, m_file, trace, m_enhanced};
}

QString AnalyseOptionSet::read(const QCommandLineParser& parser, AnalyseOptions& o) const
{
    o.raw = parser.isSet(m_raw);
    o.trace = parser.isSet(m_trace);
    o.enhanced = parser.isSet(m_enhanced);
    o.separator = parser.value(m_separator); // "" keeps the automatic choice
    o.iniFile = parser.value(m_ini);
    o.inputFile = parser.value(m_file);
    if (parser.values(m_ini).contains(QString()))
        return u"--ini needs a file name"_s;
    if (parser.values(m_file).contains(QString()))
        return u"--file needs a file name"_s;
    return o.iniFile.isEmpty() ? QString() : settingsFileProblem(o.iniFile);
}

AnalyseCommand::AnalyseCommand()
    : Command(u"analyse"_s, u"Analyses address text and prints the sixteen field rows as JSON."_s)
{
    setDescription(
        u"Analyses address text (FILE, else standard input: UTF-16 when it starts with a\n"
        u"UTF-16 byte-order mark, else UTF-8; at most 64 MB) and prints the sixteen field\n"
        u"rows as one JSON object: rows, clipText, extraFieldValues, messages, completed (and\n"
        u"with --trace the final line list with every line's scores)."_s);
    addOptions(m_options.options());
}

QString AnalyseCommand::details() const
{
    return u"Exit status: 0 when the analysis could start, 2 for a usage error or\n"
           u"unreadable input.\n"_s;
}

int AnalyseCommand::execute(const QCommandLineParser& parser)
{
    AnalyseOptions options;
    if (const QString error = m_options.read(parser, options); !error.isEmpty())
        return usageError(error);
    return runAnalyse(options);
}

} // namespace zf::cli
