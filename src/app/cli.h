#pragma once

#include "analysis/analyser.h"

#include <QJsonArray>
#include <QJsonObject>
#include <QString>
#include <QStringList>

#include <optional>

// Exit status for a usage error or unreadable input.
constexpr int ExitUsage = 2;

// Prints "zettelfischer-cli: MESSAGE" and a hint at the help to stderr; returns ExitUsage.
int usageError(const QString& message);
// The command whose help that hint names; "" for the overview of all commands.
void setUsageCommand(const QString& name);

struct AnalyseOptions {
    bool raw = false;
    bool trace = false;
    QString separator;
    QString iniFile;
    QString inputFile;
};

// One analysis of the command line's input, with the messages it showed.
struct AnalyseRun {
    zf::Session session;
    QJsonArray messages;
    zf::AnalysisResult result;
};

// Reads the input and analyses it as the options say; returns an error text, or "".
QString analyseInput(const AnalyseOptions& options, AnalyseRun& run);

// A message seam that records each message as {text, style} and answers No to a question,
// as a user who is not there would.
zf::MessageFunction recordMessages(QJsonArray& messages);

// The analysis output object: rows, clipText, extraFieldValues, messages, completed (lines).
QJsonObject analysisToJson(const AnalyseRun& run, bool withTrace);
void printJson(const QJsonObject& object);

// The work behind the commands, once their arguments are checked (commands/*.h read them).
// Each returns the exit status.

// Analyses the input and prints the JSON.
int runAnalyse(const AnalyseOptions& options);
// A contact id as the contacts commands take it (1 or more); nullopt for anything else.
std::optional<qint64> parseContactId(const QString& text);
// Contacts subcommand COMMAND with its checked arguments, on the book FILE (see contactBookPath).
int runContacts(const QString& command, const QStringList& args, const QString& file);
// Analyses the input, then files the rows as a new contact (create) or into the current one.
int runTransfer(bool create, const QString& file, const AnalyseOptions& options);
