// The duplicate lookup and the text search of "contacts find" in a SQLite book of 10,000
// contacts; the keys of such a book written by schema version 1 made at its migration.

#include "books/sqlite/contactbook.h"

#include <QFile>
#include <QTemporaryDir>

#include <benchmark/benchmark.h>

#include <sqlite3.h>

using namespace Qt::StringLiterals;
using namespace zf;
using namespace zf::act;

namespace {

constexpr int Contacts = 10000;

bool run(sqlite3* db, const char* sql)
{
    return sqlite3_exec(db, sql, nullptr, nullptr, nullptr) == SQLITE_OK;
}

// Contact n: "Vorname<n> Nachname<n % 5000>" at "Firma <n % 700>", with an e-mail address,
// a switchboard number and every other one a mobile number. Written in one transaction past
// the program, as a book of schema version 1 without keys; the next open for writing
// migrates it.
bool writeVersion1Book(const QString& path)
{
    {
        ContactBook created(path);
    }
    sqlite3* db = nullptr;
    if (sqlite3_open(QFile::encodeName(path).constData(), &db) != SQLITE_OK)
        return false;
    bool ok = run(db, "BEGIN") && run(db, "DROP TABLE contact_keys");
    sqlite3_stmt* contact = nullptr;
    sqlite3_stmt* value = nullptr;
    sqlite3_prepare_v2(db, "INSERT INTO contacts DEFAULT VALUES", -1, &contact, nullptr);
    sqlite3_prepare_v2(db, "INSERT INTO contact_values VALUES (?, ?, ?)", -1, &value, nullptr);
    for (int n = 0; ok && n < Contacts; ++n) {
        ok = sqlite3_step(contact) == SQLITE_DONE;
        sqlite3_reset(contact);
        const qint64 id = sqlite3_last_insert_rowid(db);
        QList<std::pair<int, QByteArray>> values{
            {78, "Vorname" + QByteArray::number(n)},
            {79, "Nachname" + QByteArray::number(n % 5000)},
            {25, "Firma " + QByteArray::number(n % 700)},
            {200,
             "person" + QByteArray::number(n) + "@firma" + QByteArray::number(n % 700) + ".de"},
            {35, "089 " + QByteArray::number(100000 + n % 700)},
        };
        if (n % 2 == 0)
            values.append({38, "0171 " + QByteArray::number(1000000 + n)});
        for (const auto& [field, text] : values) {
            sqlite3_bind_int64(value, 1, id);
            sqlite3_bind_int(value, 2, field);
            sqlite3_bind_text(value, 3, text.constData(), int(text.size()), SQLITE_TRANSIENT);
            ok = ok && sqlite3_step(value) == SQLITE_DONE;
            sqlite3_reset(value);
        }
    }
    sqlite3_finalize(contact);
    sqlite3_finalize(value);
    ok = ok && run(db, "PRAGMA user_version = 1") && run(db, "COMMIT");
    sqlite3_close(db);
    return ok;
}

dup::Identity identity(const dup::FieldValues& values)
{
    return dup::identityOf(values);
}

void BM_MigrateVersion1Book10000(benchmark::State& state)
{
    for (auto _ : state) {
        state.PauseTiming();
        QTemporaryDir dir;
        const QString path = dir.filePath(u"k.sqlite"_s);
        if (!writeVersion1Book(path))
            state.SkipWithError("cannot write the book");
        state.ResumeTiming();
        ContactBook book(path);
    }
}
BENCHMARK(BM_MigrateVersion1Book10000)->Unit(benchmark::kMillisecond)->Iterations(3);

// One lookup as transfer --new makes it: e-mail, name and mobile of a contact, found by one
// of them or by none.
void BM_DuplicateLookup10000(benchmark::State& state)
{
    QTemporaryDir dir;
    const QString path = dir.filePath(u"k.sqlite"_s);
    if (!writeVersion1Book(path)) {
        state.SkipWithError("cannot write the book");
        return;
    }
    ContactBook book(path);
    BookDuplicateLookup lookup(book);
    const QList<std::pair<dup::Identity, int>> cases{
        {identity({{200, u"Person4321@Firma121.de"_s}}), 1},
        {identity({{78, u"Vorname77"_s}, {79, u"Nachname77"_s}, {25, u"Firma 77"_s}}), 1},
        {identity({{38, u"+49 171 1001234"_s}}), 1},
        {identity(
             {{26, u"Niemand Sonst"_s}, {200, u"niemand@nirgends.de"_s}, {38, u"0160 5555555"_s}}),
         0},
    };
    qsizetype n = 0;
    for (auto _ : state) {
        const auto& [who, expected] = cases[n++ % cases.size()];
        const QList<dup::Match> matches = lookup.find(who);
        if (matches.size() != expected)
            state.SkipWithError("wrong matches");
        benchmark::DoNotOptimize(matches);
    }
}
BENCHMARK(BM_DuplicateLookup10000)->Unit(benchmark::kMillisecond);

void BM_FindText10000(benchmark::State& state)
{
    QTemporaryDir dir;
    const QString path = dir.filePath(u"k.sqlite"_s);
    if (!writeVersion1Book(path)) {
        state.SkipWithError("cannot write the book");
        return;
    }
    ContactBook book(path);
    for (auto _ : state) {
        const QList<qint64> ids = book.findText(u"089 100123"_s);
        if (ids.size() != Contacts / 700 + 1)
            state.SkipWithError("wrong matches");
        benchmark::DoNotOptimize(ids);
    }
}
BENCHMARK(BM_FindText10000)->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();
