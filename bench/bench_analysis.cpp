// Speed of the address analysis: a typical signature, a labelled form, long texts.

#include "analysis/analyser.h"
#include "analysis/failure.h"

#include <benchmark/benchmark.h>

using namespace Qt::StringLiterals;
using namespace zf;

namespace {

const QString Signature = u"Muster GmbH\r\nHerr Hans Meier\r\nMusterweg 12\r\n80331 München\r\n"
                          "Tel. 089 123456\r\nFax 089 123457\r\ninfo@muster.de\r\n"
                          "www.muster.de\r\n"_s;

const QString Form = u"Firma: Muster GmbH\r\nName: Meier\r\nVorname: Hans\r\nStraße: Weg 1\r\n"
                     "PLZ: 12345\r\nOrt: Bonn\r\nLand: Germany\r\nTelefon: 0228 123456\r\n"
                     "Fax: 0228 123457\r\nE-Mail: hans.meier@muster.de\r\n"_s;

// A long text of mixed address lines, every fifth a postcode line that gets split.
QString manyLines(int count)
{
    static const QString kinds[] = {u"Muster GmbH & Co. KG"_s, u"Herr Dr. Hans Meier"_s,
                                    u"Musterweg 12"_s, u"80331 München"_s,
                                    u"Tel. +49 (0)89 123456-0"_s};
    QString text;
    text.reserve(count * 24);
    for (int i = 0; i < count; ++i) {
        text += kinds[i % 5];
        text += u"\r\n"_s;
    }
    return text;
}

QString oneLongLine()
{
    QString line;
    for (int i = 0; line.size() < MaxHelperTextLength - 2; ++i)
        line += (i % 7 == 0) ? u' ' : QChar(u'a' + i % 26);
    line.truncate(MaxHelperTextLength - 2);
    return line + u"\r\n"_s; // 32,767 characters in all
}

void analyse(benchmark::State& state, const QString& text)
{
    Session session;
    session.rows.FillDefaultFieldLists();
    const Seams seams;
    for (auto _ : state) {
        session.clipText.clear();
        AnalysisResult r = AnalyseText(text, session, seams);
        benchmark::DoNotOptimize(r);
        if (!r.completed)
            state.SkipWithError("analysis did not complete");
    }
    state.SetBytesProcessed(state.iterations() * text.size() * 2);
}

void BM_Signature(benchmark::State& state)
{
    analyse(state, Signature);
}
BENCHMARK(BM_Signature);

void BM_LabelledForm(benchmark::State& state)
{
    analyse(state, Form);
}
BENCHMARK(BM_LabelledForm);

void BM_5000Lines(benchmark::State& state)
{
    analyse(state, manyLines(5000));
}
BENCHMARK(BM_5000Lines)->Unit(benchmark::kMillisecond);

void BM_OneLineOf32767(benchmark::State& state)
{
    analyse(state, oneLongLine());
}
BENCHMARK(BM_OneLineOf32767)->Unit(benchmark::kMicrosecond);

// Repeated company headings: each removes its name from every line before it.
void BM_100000Headings(benchmark::State& state)
{
    QString text;
    for (int i = 0; i < 100000; ++i)
        text +=
            u"Details der Muster GmbH %1 schließen\r\nMuster GmbH %1 Vertrieb\r\n"_s.arg(i % 500);
    Session session;
    session.rows.FillDefaultFieldLists();
    for (auto _ : state) {
        session.clipText.clear();
        benchmark::DoNotOptimize(AnalyseText(text, session, Seams{}));
    }
}
BENCHMARK(BM_100000Headings)->Unit(benchmark::kMillisecond);

// Cutting the text into the line list and the box text alone must grow linearly.
void BM_BuildLineList(benchmark::State& state)
{
    const QString text = manyLines(int(state.range(0)));
    for (auto _ : state) {
        LineStore lines;
        QString clip;
        stage::BuildLineList(text, u"\r\n"_s, lines, &clip);
        benchmark::DoNotOptimize(clip);
    }
    state.SetComplexityN(state.range(0));
}
BENCHMARK(BM_BuildLineList)
    ->RangeMultiplier(4)
    ->Range(256, 16384)
    ->Complexity(benchmark::oN)
    ->Unit(benchmark::kMicrosecond);

} // namespace

BENCHMARK_MAIN();
