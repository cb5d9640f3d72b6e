#pragma once

// Runs the built zettelfischer-cli (ZF_CLI_PATH) as scripts do: arguments, standard input,
// exit status, both outputs. The contact book comes only from the arguments.

#include <QByteArray>
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

inline CliRun runCli(const QStringList& args, const QByteArray& input = {})
{
    QProcess p;
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.remove(QStringLiteral("ZETTELFISCHER_CONTACTS"));
    p.setProcessEnvironment(env);
    p.start(QStringLiteral(ZF_CLI_PATH), args);
    p.write(input);
    p.closeWriteChannel();
    if (!p.waitForFinished(30000))
        p.kill();
    return {p.exitStatus() == QProcess::NormalExit ? p.exitCode() : -1, p.readAllStandardOutput(),
            p.readAllStandardError()};
}
