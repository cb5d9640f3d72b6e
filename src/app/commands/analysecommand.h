#pragma once

#include "../cli.h"
#include "command.h"

namespace zf::cli {

// How the input is read and analysed: the options analyse and transfer share.
class AnalyseOptionSet {
public:
    AnalyseOptionSet();
    // With showTrace false, --trace is taken but left out of the help (transfer prints no lines).
    QList<QCommandLineOption> options(bool showTrace = true) const;
    // Fills options from a parse; returns an error text, or "" when they are fine.
    QString read(const QCommandLineParser& parser, AnalyseOptions& options) const;

private:
    QCommandLineOption m_raw;
    QCommandLineOption m_separator;
    QCommandLineOption m_ini;
    QCommandLineOption m_file;
    QCommandLineOption m_trace;
    QCommandLineOption m_enhanced;
};

// zettelfischer-cli analyse: the sixteen field rows of the input as JSON.
class AnalyseCommand : public Command {
public:
    AnalyseCommand();

protected:
    QString details() const override;
    int execute(const QCommandLineParser& parser) override;

private:
    AnalyseOptionSet m_options;
};

} // namespace zf::cli
