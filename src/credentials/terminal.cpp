#include "terminal.h"

#include <csignal>
#include <fcntl.h>
#include <termios.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace zf::credentials {

namespace {

// What an interrupt needs to give the terminal its echo back: plain data, set only while a
// line is read without echo.
int g_ttyFd = -1;
termios g_saved{};

extern "C" void restoreAndReraise(int signal)
{
    if (g_ttyFd >= 0)
        tcsetattr(g_ttyFd, TCSAFLUSH, &g_saved);
    std::signal(signal, SIG_DFL);
    std::raise(signal);
}

const int InterruptSignals[] = {SIGINT, SIGTERM, SIGQUIT, SIGHUP};

class Tty {
public:
    Tty() : m_fd(::open("/dev/tty", O_RDWR | O_NOCTTY | O_CLOEXEC)) {}
    ~Tty()
    {
        if (m_fd >= 0)
            ::close(m_fd);
    }
    Tty(const Tty&) = delete;
    Tty& operator=(const Tty&) = delete;

    int fd() const { return m_fd; }

    void write(const QString& text) const
    {
        const QByteArray bytes = text.toLocal8Bit();
        qsizetype done = 0;
        while (done < bytes.size()) {
            const ssize_t n = ::write(m_fd, bytes.constData() + done, size_t(bytes.size() - done));
            if (n < 0 && errno == EINTR)
                continue;
            if (n <= 0)
                return;
            done += n;
        }
    }

    // One line without its end; nullopt at end of input before any character.
    std::optional<QByteArray> readLine() const
    {
        QByteArray line;
        for (;;) {
            char c = 0;
            const ssize_t n = ::read(m_fd, &c, 1);
            if (n < 0 && errno == EINTR)
                continue;
            if (n <= 0)
                return line.isEmpty() ? std::nullopt : std::optional(line);
            if (c == '\n')
                return line;
            line.append(c);
        }
    }

private:
    int m_fd;
};

std::optional<QString> readLine(const QString& prompt, bool echo)
{
    const Tty tty;
    if (tty.fd() < 0)
        return std::nullopt;
    termios saved{};
    const bool isTerminal = tcgetattr(tty.fd(), &saved) == 0;
    struct sigaction previous[std::size(InterruptSignals)] = {};
    const bool quiet = isTerminal && !echo;
    if (quiet) {
        g_saved = saved;
        g_ttyFd = tty.fd();
        struct sigaction restore = {};
        restore.sa_handler = restoreAndReraise;
        sigemptyset(&restore.sa_mask);
        for (size_t i = 0; i < std::size(InterruptSignals); ++i)
            sigaction(InterruptSignals[i], &restore, &previous[i]);
        termios silent = saved;
        silent.c_lflag &= tcflag_t(~(ECHO | ECHOE | ECHOK | ECHONL));
        silent.c_lflag |= ICANON;
        tcsetattr(tty.fd(), TCSAFLUSH, &silent);
    }
    tty.write(prompt);
    std::optional<QByteArray> line = tty.readLine();
    if (quiet) {
        tcsetattr(tty.fd(), TCSAFLUSH, &saved);
        g_ttyFd = -1;
        for (size_t i = 0; i < std::size(InterruptSignals); ++i)
            sigaction(InterruptSignals[i], &previous[i], nullptr);
        // The Enter the user typed was not echoed either.
        tty.write(u"\n"_s);
    }
    if (!line)
        return std::nullopt;
    if (line->endsWith('\r'))
        line->chop(1);
    return QString::fromLocal8Bit(*line);
}

} // namespace

bool hasTerminal()
{
    return Tty().fd() >= 0;
}

std::optional<QString> readSecretLine(const QString& prompt)
{
    return readLine(prompt, false);
}

AskFunction terminalAsk(bool offerRemember)
{
    return [offerRemember](const PasswordRequest& request) -> std::optional<PasswordAnswer> {
        if (!hasTerminal())
            return std::nullopt;
        if (request.rejected) {
            const Tty tty;
            tty.write(u"The server refused the password.\n"_s);
        }
        const QString who =
            request.user.isEmpty() ? request.server : request.user + u" on "_s + request.server;
        const std::optional<QString> password = readSecretLine(u"Password for %1: "_s.arg(who));
        if (!password)
            return std::nullopt;
        PasswordAnswer answer{*password, false};
        if (offerRemember) {
            const std::optional<QString> keep =
                readLine(u"Remember it in the keyring? [y/N] "_s, true);
            answer.remember = keep && keep->trimmed().toLower().startsWith(u'y');
        }
        return answer;
    };
}

} // namespace zf::credentials
