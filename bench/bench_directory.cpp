// The duplicate lookup of a book opened as the window and the commands open it (openBook), in
// 10,000 contacts: the SQLite book, and a CardDAV book on a local Radicale and Xandikos
// (argument 0 and 1), cold (no card index yet), as the next command-line run (the index from
// the cache file, brought up to date), and in a running window (the index in memory, brought
// up to date); next to the whole-book read it replaces and a server-side addressbook-query.
// Targets: < 200 ms per CardDAV lookup, < 20 ms with a current index.

#include "analysis/fields.h"
#include "books/books.h"
#include "books/davbook.h"
#include "books/sqlite/contactbook.h"

#include "books/carddav/davservers.h" // the test fixture

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <QTimeZone>

#include <benchmark/benchmark.h>

#include <map>

using namespace Qt::StringLiterals;
using namespace zf;
using davtest::DavServer;

namespace {

constexpr int Contacts = 10000;

// Contact n: "Vorname<n> Nachname<n % 5000>" at "Firma <n % 700>", with an e-mail address,
// a switchboard number and every other one a mobile number.
QList<std::pair<FieldId, QString>> contact(int n)
{
    QList<std::pair<FieldId, QString>> values{
        {FieldId::Vorname, u"Vorname%1"_s.arg(n)},
        {FieldId::Nachname, u"Nachname%1"_s.arg(n % 5000)},
        {FieldId::Firma, u"Firma %1"_s.arg(n % 700)},
        {FieldId::EMail, u"person%1@firma%2.de"_s.arg(n).arg(n % 700)},
        {FieldId::Telefon, u"089 %1"_s.arg(100000 + n % 700)},
    };
    if (n % 2 == 0)
        values.append({FieldId::Mobil, u"0171 %1"_s.arg(1000000 + n)});
    return values;
}

QByteArray card(int n)
{
    carddav::VCard card = carddav::VCard::blank(u"karte-%1"_s.arg(n));
    for (const auto& [field, value] : contact(n))
        card.setField({idOf(field), value, {}});
    card.finish(QDateTime(QDate(2026, 1, 1), QTime(0, 0), QTimeZone::utc()));
    return card.toBytes();
}

// One lookup as transfer --new makes it: e-mail, name and mobile of a contact, found by one of
// them or by none.
const QList<std::pair<dup::Identity, int>>& cases()
{
    static const QList<std::pair<dup::Identity, int>> out{
        {dup::identityOf({{idOf(FieldId::EMail), u"Person4321@Firma121.de"_s}}), 1},
        {dup::identityOf({{idOf(FieldId::Vorname), u"Vorname77"_s},
                          {idOf(FieldId::Nachname), u"Nachname77"_s},
                          {idOf(FieldId::Firma), u"Firma 77"_s}}),
         1},
        {dup::identityOf({{idOf(FieldId::Mobil), u"+49 171 1001234"_s}}), 1},
        {dup::identityOf({{idOf(FieldId::Kontakt), u"Niemand Sonst"_s},
                          {idOf(FieldId::EMail), u"niemand@nirgends.de"_s},
                          {idOf(FieldId::Mobil), u"0160 5555555"_s}}),
         0},
    };
    return out;
}

// A server failure skips the benchmark: thrown past main, it would leave the server running.
void lookUp(benchmark::State& state, dup::DuplicateLookup& lookup, qsizetype n)
{
    const auto& [who, expected] = cases()[n % cases().size()];
    try {
        const QList<dup::Match> matches = lookup.find(who);
        if (matches.size() != expected)
            state.SkipWithError("wrong matches");
        benchmark::DoNotOptimize(matches);
    } catch (const std::runtime_error& e) {
        state.SkipWithError(e.what());
    }
}

bool writeFile(const QString& path, const QByteArray& data)
{
    QFile f(path);
    return f.open(QIODevice::WriteOnly) && f.write(data) == data.size();
}

// A server with the 10,000 cards written straight into its storage folder (Xandikos: its git
// repository), read once whole so that the server's own caches are made.
struct FilledServer {
    std::unique_ptr<DavServer> server;
    QTemporaryDir state;
    QString error;

    explicit FilledServer(DavServer::Kind kind)
    {
        if (DavServer::program(kind).isEmpty()) {
            error = u"the server is not installed"_s;
            return;
        }
        server = std::make_unique<DavServer>(kind);
        if (!server->error().isEmpty()) {
            error = server->error();
            return;
        }
        const QString folder =
            kind == DavServer::Radicale ? server->storedBook() : server->xandikosBook();
        for (int n = 0; n < Contacts && error.isEmpty(); ++n)
            if (!writeFile(QDir(folder).filePath(u"karte-%1.vcf"_s.arg(n)), card(n)))
                error = u"cannot write the cards"_s;
        if (kind == DavServer::Xandikos && error.isEmpty()) {
            QProcess git;
            git.setWorkingDirectory(folder);
            git.start(u"sh"_s, {u"-c"_s, u"git add -A && git -c user.name=bench -c "
                                         u"user.email=bench@localhost commit -qm fill"_s});
            git.waitForFinished(300000);
            if (git.exitCode() != 0)
                error = u"git commit failed: "_s + QString::fromUtf8(git.readAll());
        }
        if (error.isEmpty()) {
            useFolders();
            error = cold(); // the server's first read of its folder, not ours
        }
    }

    books::BookLocation location() const
    {
        QUrl url = server->book();
        url.setUserName(DavServer::user());
        url.setPassword(DavServer::password());
        return {url.toString(), {}, std::chrono::minutes(3)};
    }
    std::shared_ptr<books::DavBook> book() const
    {
        return std::make_shared<books::DavBook>(location(), nullptr);
    }
    // A fresh book without a cache file: the first lookup reads every card. The failure, or "".
    QString cold()
    {
        QDir(cacheHome()).removeRecursively();
        try {
            books::DavDuplicateLookup(*book()).find(cases().first().first);
        } catch (const std::runtime_error& e) {
            return QString::fromUtf8(e.what());
        }
        return {};
    }
    QString cacheHome() const { return state.filePath(u"cache"_s); }
    // Never the user's own cache and state folders.
    void useFolders() const
    {
        qputenv("XDG_CACHE_HOME", cacheHome().toUtf8());
        qputenv("XDG_STATE_HOME", state.filePath(u"state"_s).toUtf8());
    }
};

FilledServer* filled(benchmark::State& state)
{
    static std::map<int64_t, std::unique_ptr<FilledServer>> servers;
    auto& server = servers[state.range(0)];
    if (!server) {
        server = std::make_unique<FilledServer>(state.range(0) == 0 ? DavServer::Radicale
                                                                    : DavServer::Xandikos);
    }
    if (!server->error.isEmpty()) {
        state.SkipWithError(qPrintable(server->error));
        return nullptr;
    }
    server->useFolders();
    return server.get();
}

void BM_SqliteDirectoryLookup10000(benchmark::State& state)
{
    QTemporaryDir dir;
    const QString path = dir.filePath(u"k.sqlite"_s);
    {
        act::ContactBook book(path);
        for (int n = 0; n < Contacts; ++n) {
            QList<act::FieldValue> values;
            for (const auto& [field, value] : contact(n))
                values.append({idOf(field), value});
            book.writeContact(std::nullopt, values);
        }
    }
    const books::OpenedBook opened = books::openBook({path, {}, {}}, nullptr);
    qsizetype n = 0;
    for (auto _ : state)
        lookUp(state, *opened.directory, n++);
}
BENCHMARK(BM_SqliteDirectoryLookup10000)->Unit(benchmark::kMillisecond);

// No cache file yet: every card read once (sync-collection from the start).
void BM_CardDavLookupCold10000(benchmark::State& state)
{
    FilledServer* server = filled(state);
    if (!server)
        return;
    for (auto _ : state)
        if (const QString error = server->cold(); !error.isEmpty())
            state.SkipWithError(qPrintable(error));
}
BENCHMARK(BM_CardDavLookupCold10000)
    ->Arg(0)
    ->Arg(1)
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime()
    ->Iterations(3);

// The next run of the command line: the index from the cache file, then the changes since.
void BM_CardDavLookupCacheFile10000(benchmark::State& state)
{
    FilledServer* server = filled(state);
    if (!server)
        return;
    if (const QString error = server->cold(); !error.isEmpty()) {
        state.SkipWithError(qPrintable(error));
        return;
    }
    qsizetype n = 0;
    for (auto _ : state) {
        auto book = server->book();
        books::DavDuplicateLookup lookup(*book);
        lookUp(state, lookup, n++);
    }
}
BENCHMARK(BM_CardDavLookupCacheFile10000)
    ->Arg(0)
    ->Arg(1)
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();

// A running window: the index in memory, brought up to date before every lookup.
void BM_CardDavLookupInMemory10000(benchmark::State& state)
{
    FilledServer* server = filled(state);
    if (!server)
        return;
    const books::OpenedBook opened = books::openBook(server->location(), nullptr);
    qsizetype n = 0;
    lookUp(state, *opened.directory, n++);
    for (auto _ : state)
        lookUp(state, *opened.directory, n++);
}
BENCHMARK(BM_CardDavLookupInMemory10000)
    ->Arg(0)
    ->Arg(1)
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();

// What a lookup did before the index: every card listed and fetched, then compared.
void BM_CardDavWholeBookRead10000(benchmark::State& state)
{
    FilledServer* server = filled(state);
    if (!server)
        return;
    auto book = server->book();
    try {
        carddav::AddressBook& dav = book->book();
        for (auto _ : state) {
            QList<QUrl> urls;
            for (const carddav::CardRef& ref : dav.list())
                urls.append(ref.url);
            const QList<carddav::Card> cards = dav.multiget(urls);
            if (cards.size() != Contacts)
                state.SkipWithError("not every card read");
            benchmark::DoNotOptimize(cards);
        }
    } catch (const carddav::DavError& e) {
        state.SkipWithError(qPrintable(e.message()));
    }
}
BENCHMARK(BM_CardDavWholeBookRead10000)
    ->Arg(0)
    ->Arg(1)
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime()
    ->Iterations(2);

// The server's own search: one addressbook-query for the e-mail address, name and mobile
// number of a contact (candidates only: a server cannot fold names or normalise numbers).
void BM_CardDavAddressbookQuery10000(benchmark::State& state)
{
    FilledServer* server = filled(state);
    if (!server)
        return;
    auto book = server->book();
    carddav::AddressBook& dav = book->book();
    const QByteArray body =
        "<?xml version=\"1.0\" encoding=\"utf-8\"?>\n"
        "<c:addressbook-query xmlns:d=\"DAV:\" xmlns:c=\"urn:ietf:params:xml:ns:carddav\">"
        "<d:prop><d:getetag/><c:address-data/></d:prop><c:filter test=\"anyof\">"
        "<c:prop-filter name=\"EMAIL\"><c:text-match collation=\"i;unicode-casemap\" "
        "match-type=\"equals\">person4321@firma121.de</c:text-match></c:prop-filter>"
        "<c:prop-filter name=\"FN\"><c:text-match collation=\"i;unicode-casemap\" "
        "match-type=\"contains\">Nachname4321</c:text-match></c:prop-filter>"
        "<c:prop-filter name=\"TEL\"><c:text-match collation=\"i;unicode-casemap\" "
        "match-type=\"contains\">1004321</c:text-match></c:prop-filter>"
        "</c:filter></c:addressbook-query>";
    for (auto _ : state) {
        try {
            const carddav::DavResponse response = dav.client().send(
                "REPORT", dav.url(), body,
                {{"Depth", "1"}, {"Content-Type", "application/xml; charset=utf-8"}});
            if (carddav::parseMultistatus(response.body, response.url).isEmpty())
                state.SkipWithError("no candidates");
        } catch (const carddav::DavError& e) {
            state.SkipWithError(qPrintable(e.message()));
            break;
        }
    }
}
BENCHMARK(BM_CardDavAddressbookQuery10000)
    ->Arg(0)
    ->Arg(1)
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime()
    ->Iterations(3);

} // namespace

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
