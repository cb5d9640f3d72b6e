// The command-line tool's whole run, from process start to its JSON on stdout.

#include <QByteArray>
#include <QProcess>
#include <QString>
#include <QStringList>

#include <benchmark/benchmark.h>

#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <QTemporaryFile>

namespace {

void BM_CliAnalyseSignature(benchmark::State& state)
{
    const QByteArray signature =
        "Muster GmbH\r\nHerr Hans Meier\r\nMusterweg 12\r\n80331 M\xc3\xbcnchen\r\n"
        "Tel. 089 123456\r\nFax 089 123457\r\ninfo@muster.de\r\nwww.muster.de\r\n";
    for (auto _ : state) {
        QProcess p;
        p.start(QStringLiteral(ZF_CLI_PATH), {QStringLiteral("analyse")});
        p.write(signature);
        p.closeWriteChannel();
        if (!p.waitForFinished(10000) || p.exitCode() != 0 || p.readAllStandardOutput().isEmpty())
            state.SkipWithError("zettelfischer-cli failed");
    }
}
BENCHMARK(BM_CliAnalyseSignature)->Unit(benchmark::kMillisecond)->UseRealTime();

// 50 MB of signature lines through the whole tool: time and the child's peak memory.
void BM_CliAnalyse50MB(benchmark::State& state)
{
    const bool trace = state.range(0) != 0;
    QTemporaryFile input;
    if (!input.open()) {
        state.SkipWithError("no temporary file");
        return;
    }
    const QByteArray block = "Muster GmbH & Co. KG\r\nHerr Dr. Hans Meier\r\nMusterweg 12\r\n"
                             "80331 M\xc3\xbcnchen\r\nTel. +49 (0)89 123456-0\r\n";
    while (input.size() < (qint64(50) << 20))
        input.write(block.repeated(1000));
    input.flush();
    long peakKb = 0;
    for (auto _ : state) {
        const pid_t child = fork();
        if (child == 0) {
            std::freopen("/dev/null", "w", stdout);
            execl(ZF_CLI_PATH, ZF_CLI_PATH, "analyse", "--file", qPrintable(input.fileName()),
                  trace ? "--trace" : nullptr, nullptr);
            _exit(127);
        }
        int status = 0;
        rusage usage{};
        wait4(child, &status, 0, &usage);
        if (!WIFEXITED(status) || WEXITSTATUS(status) != 0)
            state.SkipWithError("zettelfischer-cli failed");
        peakKb = std::max(peakKb, usage.ru_maxrss);
    }
    state.counters["peak_MB"] = double(peakKb) / 1024;
    state.counters["input_MB"] = double(input.size()) / (1 << 20);
}
BENCHMARK(BM_CliAnalyse50MB)
    ->Arg(0)
    ->Arg(1)
    ->Unit(benchmark::kSecond)
    ->Iterations(1)
    ->UseRealTime();

} // namespace

BENCHMARK_MAIN();
