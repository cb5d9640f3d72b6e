// Settings loading with a large field cache, the longest cache loaded and saved, an oversized
// settings file refused, and filing a contact in the SQLite book.

#include "act/contactlink.h"
#include "analysis/session.h"
#include "books/sqlite/sqlitebook.h"
#include "settings/settings.h"

#include <QFile>
#include <QTemporaryDir>

#include <benchmark/benchmark.h>

#include <sys/resource.h>

using namespace Qt::StringLiterals;
using namespace zf;

namespace {

void BM_LoadSettings1000CacheEntries(benchmark::State& state)
{
    QTemporaryDir dir;
    const QString path = dir.filePath(u"zettelfischer.ini"_s);
    QByteArray ini = "[Config]\r\nCacheFelder=1\r\n\r\n[Felder]\r\n";
    for (int i = 1; i <= 1000; ++i)
        ini += "Zeile" + QByteArray::number(i) + '=' + QByteArray::number(1000 + i) + ";Feld " +
               QByteArray::number(i) + "\r\n";
    QFile f(path);
    if (!f.open(QIODevice::WriteOnly) || f.write(ini) != ini.size())
        state.SkipWithError("cannot write the settings file");
    f.close();
    for (auto _ : state) {
        Session session;
        session.rows.FillDefaultFieldLists();
        LoadSettings(path, session.state, session.rows);
        if (session.rows.fields().count() != 1000)
            state.SkipWithError("cache not loaded");
    }
}
BENCHMARK(BM_LoadSettings1000CacheEntries)->Unit(benchmark::kMillisecond);

// A hand-made list longer than the 16-bit counter: loading stops at entry 32,767, and saving
// it back and loading again gives the same list.
void BM_LoadAndSaveLongestCache(benchmark::State& state)
{
    QTemporaryDir dir;
    const QString path = dir.filePath(u"zettelfischer.ini"_s);
    QByteArray ini = "[Config]\r\nCacheFelder=1\r\n[Felder]\r\n";
    for (int n = 1; n <= 40000; ++n)
        ini += "Zeile" + QByteArray::number(n) + '=' + QByteArray::number(n % 30000) + ";Feld " +
               QByteArray::number(100000000 - n) + "\r\n";
    for (auto _ : state) {
        state.PauseTiming();
        QFile f(path);
        if (!f.open(QIODevice::WriteOnly | QIODevice::Truncate) || f.write(ini) != ini.size())
            state.SkipWithError("cannot write the settings file");
        f.close();
        state.ResumeTiming();
        Session first;
        LoadSettings(path, first.state, first.rows);
        SaveFieldCache(path, first.rows);
        Session again;
        LoadSettings(path, again.state, again.rows);
        if (first.rows.fields().count() != 32767 ||
            again.rows.fields().entries() != first.rows.fields().entries())
            state.SkipWithError("cache not loaded or not saved whole");
    }
    state.counters["fileBytes"] = double(ini.size());
}
BENCHMARK(BM_LoadAndSaveLongestCache)->Unit(benchmark::kMillisecond)->Iterations(3);

// A settings file far beyond the size limit is not read: the built-in settings, at once and
// without taking its size in memory (peakRssMiB: the process's high-water mark afterwards).
void BM_LoadOversizedSettings(benchmark::State& state)
{
    QTemporaryDir dir;
    const QString path = dir.filePath(u"zettelfischer.ini"_s);
    {
        QFile f(path);
        const QByteArray line = "Zeile1=25;Firma\r\n";
        QByteArray chunk = "[Config]\r\nCacheFelder=1\r\nStandardLand4PLZ=Schweiz\r\n[Felder]\r\n";
        while (chunk.size() < 1024 * 1024)
            chunk += line;
        if (!f.open(QIODevice::WriteOnly))
            state.SkipWithError("cannot write the settings file");
        for (int i = 0; i < 100; ++i)
            f.write(chunk);
    }
    for (auto _ : state) {
        Session session;
        session.rows.FillDefaultFieldLists();
        LoadSettings(path, session.state, session.rows);
        if (session.state.StandardLand4PLZ != u"Österreich"_s ||
            session.rows.fields().count() != 20)
            state.SkipWithError("the oversized file was read");
    }
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    state.counters["peakRssMiB"] = double(usage.ru_maxrss) / 1024.0;
}
BENCHMARK(BM_LoadOversizedSettings)->Unit(benchmark::kMicrosecond);

void BM_TransferSixteenRows(benchmark::State& state)
{
    QTemporaryDir dir;
    act::ContactLink link(act::makeContactBookFactory(dir.filePath(u"kontakte.sqlite"_s)));
    act::WindowHooks hooks;
    hooks.setBusyCursor = [](bool) {};
    hooks.setTopMost = [](bool) {};
    hooks.repaint = [] {};
    int failures = 0;
    hooks.showMessage = [&failures](const QString&, MessageStyle) {
        ++failures;
        return MessageAnswer::Ok;
    };
    hooks.showCompletionPrompt = [](bool) { return act::Completion::Back; };
    hooks.focusMainWindow = [] {};
    hooks.closeProgram = [] {};
    Session session;
    session.rows.FillDefaultFieldLists();
    for (int row = 0; row < FieldRows::RowCount; ++row) {
        session.rows.setValue(row, u"Wert %1"_s.arg(row));
        session.rows.setSelected(row, row);
    }
    session.clipText = u"Muster GmbH\r\n"_s;
    for (auto _ : state)
        link.TransferContact(true, session, hooks);
    if (failures)
        state.SkipWithError("transfer failed");
}
BENCHMARK(BM_TransferSixteenRows)->Unit(benchmark::kMillisecond)->UseRealTime();

} // namespace

BENCHMARK_MAIN();
