// The command-line tool's whole run, from process start to its JSON on stdout.

#include <QByteArray>
#include <QProcess>
#include <QString>
#include <QStringList>

#include <benchmark/benchmark.h>

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

} // namespace

BENCHMARK_MAIN();
