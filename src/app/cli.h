#pragma once

#include "analysis/analyser.h"

#include <QJsonArray>
#include <QJsonObject>
#include <QString>
#include <QStringList>

#include <cstdio>

// Exit status for a usage error or unreadable input.
constexpr int ExitUsage = 2;
// Input beyond this is refused rather than read: the analysis fails on far less anyway.
constexpr qint64 MaxInputBytes = qint64(64) << 20;

// Prints "zettelfischer-cli: MESSAGE" and a hint to stderr; returns ExitUsage.
int usageError(const QString& message);

struct AnalyseOptions {
    bool raw = false;
    bool trace = false;
    bool enhanced = false; // --enhanced (else as the settings say)
    QString separator;
    QString iniFile;
    QString inputFile;
};

// Parses the analyse options; returns an error text, or "" when they are fine.
QString parseAnalyseOptions(const QStringList& args, AnalyseOptions& options);

// One analysis of the command line's input, with the messages it showed.
struct AnalyseRun {
    zf::RunOptions options;
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
// The same object written as it goes, so that no document of the whole is held; the box's
// lines come from the run's store when the run did not fill it.
void writeAnalysisJson(const AnalyseRun& run, bool withTrace, std::FILE* out);

// zettelfischer-cli analyse ...
int runAnalyse(const QStringList& args);
// zettelfischer-cli contacts ... (the embedded contact book)
int runContacts(const QStringList& args);
// zettelfischer-cli transfer --new|--edit ...: analyse, then file the rows as a contact.
int runTransfer(const QStringList& args);
