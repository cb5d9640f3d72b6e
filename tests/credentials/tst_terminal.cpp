// The command line's password prompt on a real pseudo-terminal: the child process has it as
// its controlling terminal, the test types on the other side and reads what was shown.

#include "credentials/terminal.h"

#include <QtTest>

#include <csignal>
#include <fcntl.h>
#include <poll.h>
#include <pty.h>
#include <sys/wait.h>
#include <termios.h>
#include <unistd.h>

using namespace zf::credentials;
using namespace Qt::StringLiterals;

namespace {

struct Run {
    QByteArray shown;                     // everything the terminal showed
    std::optional<PasswordAnswer> answer; // what the child got
    int signal = 0;                       // the child died of it
    bool echoAfter = false;               // the terminal echoes again afterwards
};

using ChildBody = std::function<std::optional<PasswordAnswer>()>;

// The answer through a pipe: "-" for none, else the remember flag and the UTF-8 text.
void report(int fd, const std::optional<PasswordAnswer>& answer)
{
    QByteArray out = answer ? QByteArray(answer->remember ? "1" : "0") + answer->password.toUtf8()
                            : QByteArray("-");
    [[maybe_unused]] auto n = ::write(fd, out.constData(), size_t(out.size()));
}

std::optional<PasswordAnswer> parse(const QByteArray& data)
{
    if (data.isEmpty() || data == "-")
        return std::nullopt;
    return PasswordAnswer{QString::fromUtf8(data.mid(1)), data.startsWith('1')};
}

QByteArray readAll(int fd)
{
    QByteArray data;
    char buf[256];
    for (ssize_t n; (n = ::read(fd, buf, sizeof buf)) > 0;)
        data.append(buf, n);
    return data;
}

// Runs body in a child whose controlling terminal is a new pseudo-terminal; types each input
// once the terminal has shown the text before it.
Run onTerminal(const ChildBody& body, const QList<std::pair<QByteArray, QByteArray>>& typing)
{
    Run run;
    int pipeFds[2];
    if (::pipe(pipeFds) != 0)
        return run;
    int master = -1;
    const pid_t pid = forkpty(&master, nullptr, nullptr, nullptr);
    if (pid == 0) {
        ::close(pipeFds[0]);
        report(pipeFds[1], body());
        ::_exit(0);
    }
    ::close(pipeFds[1]);
    if (pid < 0)
        return run;

    qsizetype next = 0;
    QElapsedTimer clock;
    clock.start();
    while (clock.elapsed() < 5000) {
        if (next < typing.size() && run.shown.contains(typing[next].first)) {
            [[maybe_unused]] auto n = ::write(master, typing[next].second.constData(),
                                              size_t(typing[next].second.size()));
            ++next;
        }
        pollfd p{master, POLLIN, 0};
        if (::poll(&p, 1, 50) > 0) {
            char buf[256];
            const ssize_t n = ::read(master, buf, sizeof buf);
            if (n <= 0)
                break; // the child closed its side
            run.shown.append(buf, n);
        }
    }
    int status = 0;
    if (::waitpid(pid, &status, WNOHANG) == 0) {
        ::kill(pid, SIGKILL);
        ::waitpid(pid, &status, 0);
    }
    if (WIFSIGNALED(status))
        run.signal = WTERMSIG(status);
    termios after{};
    run.echoAfter = tcgetattr(master, &after) == 0 && (after.c_lflag & ECHO);
    ::close(master);
    run.answer = parse(readAll(pipeFds[0]));
    ::close(pipeFds[0]);
    return run;
}

ChildBody secretLine()
{
    return []() -> std::optional<PasswordAnswer> {
        const std::optional<QString> line = readSecretLine(u"Passwort: "_s);
        if (!line)
            return std::nullopt;
        return PasswordAnswer{*line, false};
    };
}

} // namespace

class TestTerminal : public QObject {
    Q_OBJECT
private slots:
    void secretLine_data()
    {
        QTest::addColumn<QByteArray>("typed");
        QTest::addColumn<bool>("answered");
        QTest::addColumn<QString>("password");

        QTest::newRow("typed") << QByteArray("geheim \xf0\x9f\x94\x91\n") << true << u"geheim 🔑"_s;
        QTest::newRow("empty line") << QByteArray("\n") << true << QString();
        QTest::newRow("end of input") << QByteArray("\x04") << false << QString();
    }

    void secretLine()
    {
        QFETCH(QByteArray, typed);
        QFETCH(bool, answered);
        const Run run = onTerminal(::secretLine(), {{"Passwort: ", typed}});
        QVERIFY2(run.shown.startsWith("Passwort: "), run.shown.constData());
        QCOMPARE(run.answer.has_value(), answered);
        QFETCH(QString, password);
        if (answered)
            QCOMPARE(run.answer->password, password);
        // Nothing typed was shown, and the echo is back.
        QVERIFY2(!run.shown.contains("geheim"), run.shown.constData());
        QVERIFY(run.echoAfter);
    }

    void interruptGivesEchoBack()
    {
        const Run run = onTerminal(::secretLine(), {{"Passwort: ", "gehe\x03"}});
        QCOMPARE(run.signal, SIGINT);
        QVERIFY(!run.answer);
        QVERIFY(run.echoAfter);
    }

    void askAfterRefusal()
    {
        const Run run = onTerminal(
            [] {
                return terminalAsk(true)(PasswordRequest{QUrl(u"http://127.0.0.1:5232/"_s),
                                                         u"anna"_s, u"127.0.0.1:5232"_s, true});
            },
            {{"Password for anna on 127.0.0.1:5232: ", "neu\n"}, {"[y/N] ", "j\n"}});
        QVERIFY2(run.shown.startsWith("The server refused the password.\r\n"),
                 run.shown.constData());
        QVERIFY(run.answer);
        QCOMPARE(run.answer->password, u"neu"_s);
        // Only "y" means yes.
        QVERIFY(!run.answer->remember);
        QVERIFY2(run.shown.endsWith("[y/N] j\r\n"), run.shown.constData());
        QVERIFY(!run.shown.contains("neu"));
    }

    void rememberYes()
    {
        const Run run = onTerminal(
            [] {
                return terminalAsk(true)(
                    PasswordRequest{QUrl(u"https://dav.example.org/"_s), {}, u"dav.example.org"_s});
            },
            {{"Password for dav.example.org: ", "pw\n"}, {"[y/N] ", "Yes\n"}});
        QVERIFY(run.answer);
        QCOMPARE(run.answer->password, u"pw"_s);
        QVERIFY(run.answer->remember);
        QVERIFY(!run.shown.contains("refused"));
    }

    // A process without a controlling terminal (a cron job, a service) gets no answer, at once.
    void noTerminal()
    {
        int pipeFds[2];
        QCOMPARE(::pipe(pipeFds), 0);
        const pid_t pid = ::fork();
        if (pid == 0) {
            ::close(pipeFds[0]);
            ::setsid();
            QByteArray out = hasTerminal() ? "T" : "-";
            const auto answer = terminalAsk(true)(PasswordRequest{{}, u"anna"_s, u"h"_s});
            out += answer ? "A" : "-";
            out += readSecretLine(u"x"_s) ? "L" : "-";
            [[maybe_unused]] auto n = ::write(pipeFds[1], out.constData(), size_t(out.size()));
            ::_exit(0);
        }
        ::close(pipeFds[1]);
        QVERIFY(pid > 0);
        int status = 0;
        ::waitpid(pid, &status, 0);
        QCOMPARE(readAll(pipeFds[0]), QByteArray("---"));
        ::close(pipeFds[0]);
    }
};

QTEST_APPLESS_MAIN(TestTerminal)
#include "tst_terminal.moc"
