#pragma once

#include "analysis/analyser.h"

#include <QJsonArray>
#include <QJsonObject>
#include <QString>
#include <QStringList>

#include <cstdio>
#include <optional>

// Exit status for a usage error or unreadable input.
constexpr int ExitUsage = 2;
// Exit status for a new contact that the book already has (nothing written).
constexpr int ExitDuplicate = 3;
// Input beyond this is refused rather than read: the analysis fails on far less anyway.
constexpr qint64 MaxInputBytes = qint64(64) << 20;

// What is wrong with the settings file named by --ini, or "" when it can be read.
QString settingsFileProblem(const QString& path);

// Prints "zettelfischer-cli: MESSAGE" and a hint at the help to stderr; returns ExitUsage.
int usageError(const QString& message);
// The command whose help that hint names; "" for the overview of all commands.
void setUsageCommand(const QString& name);

struct AnalyseOptions {
    bool raw = false;
    bool trace = false;
    bool enhanced = false; // --enhanced (else as the settings say)
    QString separator;
    QString iniFile;
    QString inputFile;
};

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

// The work behind the commands, once their arguments are checked (commands/*.h read them).
// Each returns the exit status.

// Analyses the input and prints the JSON.
int runAnalyse(const AnalyseOptions& options);
// A contact id as the contacts commands take it (1 or more); nullopt for anything else.
std::optional<qint64> parseContactId(const QString& text);
// Whether the contacts commands use a CardDAV book (--contacts FILE, the environment, the
// settings): its contact ids are resource names rather than numbers.
bool contactsOnServer(const QString& file);
// Contacts subcommand COMMAND with its checked arguments, on the book FILE (a path or a URL;
// else as books::bookLocation chooses).
int runContacts(const QString& command, const QStringList& args, const QString& file);
// What a new contact does when the book already has the same person: refuse (unless the
// settings switch the check off), file it anyway, or file it into that one contact.
enum class OnDuplicate { Refuse, Allow, Update };
// Analyses the input, then files the rows as a new contact (create) or into the current one.
int runTransfer(bool create, const QString& file, const AnalyseOptions& options,
                OnDuplicate onDuplicate = OnDuplicate::Refuse);
