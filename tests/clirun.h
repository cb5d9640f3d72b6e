#pragma once

// Runs the built zettelfischer-cli (ZF_CLI_PATH, or a copy of it) as scripts do: arguments,
// standard input, exit status, both outputs. The contact book comes only from the arguments,
// and no settings file of the user or the system is found unless the environment given
// names a config folder.

#include <QByteArray>
#include <QDir>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QStringList>

struct CliRun {
    int exitCode = -1;
    QByteArray out;
    QByteArray err;
    QJsonObject json() const { return QJsonDocument::fromJson(out).object(); }
};

inline CliRun runCli(const QStringList& args, const QByteArray& input = {},
                     const QString& program = QStringLiteral(ZF_CLI_PATH),
                     const QProcessEnvironment& extra = {})
{
    QProcess p;
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.remove(QStringLiteral("ZETTELFISCHER_CONTACTS"));
    const QString nowhere = QDir::temp().filePath(QStringLiteral("zettelfischer-test-no-config"));
    env.insert(QStringLiteral("XDG_CONFIG_HOME"), nowhere);
    env.insert(QStringLiteral("XDG_CONFIG_DIRS"), nowhere);
    env.insert(extra);
    p.setProcessEnvironment(env);
    p.start(program, args);
    p.write(input);
    p.closeWriteChannel();
    if (!p.waitForFinished(30000))
        p.kill();
    return {p.exitStatus() == QProcess::NormalExit ? p.exitCode() : -1, p.readAllStandardOutput(),
            p.readAllStandardError()};
}
