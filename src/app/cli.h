#pragma once

#include <QString>
#include <QStringList>

// Exit status for a usage error or unreadable input.
constexpr int ExitUsage = 2;

// Prints "zettelfischer-cli: MESSAGE" and a hint to stderr; returns ExitUsage.
int usageError(const QString& message);

struct AnalyseOptions {
    bool raw = false;
    bool trace = false;
    QString separator;
    QString iniFile;
    QString inputFile;
};

// Parses the analyse options; returns an error text, or "" when they are fine.
QString parseAnalyseOptions(const QStringList& args, AnalyseOptions& options);

// zettelfischer-cli analyse ...
int runAnalyse(const QStringList& args);
