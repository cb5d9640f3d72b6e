// Settings loading with a large field cache, and filing a contact in the SQLite book.

#include "act/contactlink.h"
#include "analysis/session.h"
#include "settings/settings.h"

#include <QFile>
#include <QTemporaryDir>

#include <benchmark/benchmark.h>

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
