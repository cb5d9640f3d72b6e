// Classic and enhanced analysis side by side: a typical signature, and growing texts to
// show that the time grows in step with the text.

#include "enhanced/enhanced.h"

#include <benchmark/benchmark.h>

using namespace Qt::StringLiterals;
using namespace zf;

namespace {

const QString Signature =
    u"Mit freundlichen Grüßen\r\n\r\nJörg Tannberg\r\nVertriebsleiter\r\n\r\n"
    "Kupferwerk Maschinenbau GmbH\r\nAmselweg 14\r\n70565 Stuttgart\r\n\r\n"
    "Tel.: +49 (0)711 / 12 34-56\r\nFax: +49 (0)711 / 12 34-99\r\n"
    "E-Mail: j.tannberg@kupferwerk.example.de\r\nwww.kupferwerk.example.de\r\n"_s;

// A long mail thread: the signature again and again behind prose and quoted lines.
QString growing(int blocks)
{
    QString text;
    for (int i = 0; i < blocks; ++i) {
        text += u"wie besprochen anbei die Unterlagen zum Termin am Donnerstag.\r\n"_s;
        text += u"> Viele Grüße\r\n> Anna Roth\r\n> Roth GmbH | Rosenweg 2 | 65183 Wiesbaden\r\n"_s;
        text += Signature;
    }
    return text;
}

struct FreshSession : Session {
    FreshSession() { rows.FillDefaultFieldLists(); }
};

void run(benchmark::State& state, AnalysisMode mode, const QString& text)
{
    FreshSession session;
    const Seams seams;
    for (auto _ : state) {
        session.clipText.clear();
        AnalysisResult r = AnalyseTextIn(mode, text, session, seams);
        benchmark::DoNotOptimize(r);
    }
    state.SetBytesProcessed(state.iterations() * text.size() * 2);
}

void BM_ClassicSignature(benchmark::State& state)
{
    run(state, AnalysisMode::Classic, Signature);
}
BENCHMARK(BM_ClassicSignature);

void BM_EnhancedSignature(benchmark::State& state)
{
    run(state, AnalysisMode::Enhanced, Signature);
}
BENCHMARK(BM_EnhancedSignature);

void BM_ClassicGrowing(benchmark::State& state)
{
    run(state, AnalysisMode::Classic, growing(int(state.range(0))));
    state.SetComplexityN(state.range(0));
}
BENCHMARK(BM_ClassicGrowing)
    ->RangeMultiplier(4)
    ->Range(4, 256)
    ->Complexity()
    ->Unit(benchmark::kMicrosecond);

void BM_EnhancedGrowing(benchmark::State& state)
{
    run(state, AnalysisMode::Enhanced, growing(int(state.range(0))));
    state.SetComplexityN(state.range(0));
}
BENCHMARK(BM_EnhancedGrowing)
    ->RangeMultiplier(4)
    ->Range(4, 256)
    ->Complexity()
    ->Unit(benchmark::kMicrosecond);

} // namespace

BENCHMARK_MAIN();
