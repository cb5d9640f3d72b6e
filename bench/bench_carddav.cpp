// The CardDAV book against a local Radicale: a contact created through the book and a transfer
// through the automation interface, each next to a bare PUT of the same card (target: at most
// 1.5 times as long), and discovery from the server root (target: under 100 ms).

#include "books/carddav/addressbook.h"

#include "act/contactlink.h"
#include "books/books.h"

#include "analysis/fields.h"
#include "books/carddav/davservers.h" // the test fixture

#include <QCoreApplication>
#include <QEventLoop>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QTemporaryDir>
#include <QUuid>

#include <benchmark/benchmark.h>

using namespace Qt::StringLiterals;
using namespace zf;
using namespace zf::carddav;
using davtest::DavServer;

namespace {

DavServer* radicale(benchmark::State& state)
{
    static std::unique_ptr<DavServer> server;
    if (DavServer::program(DavServer::Radicale).isEmpty()) {
        state.SkipWithError("radicale is not installed");
        return nullptr;
    }
    if (!server)
        server = std::make_unique<DavServer>(DavServer::Radicale);
    if (!server->error().isEmpty()) {
        state.SkipWithError(qPrintable(server->error()));
        return nullptr;
    }
    return server.get();
}

const QList<FieldValue> Values{
    {idOf(FieldId::Firma), u"Muster GmbH"_s, {}},
    {idOf(FieldId::Vorname), u"Hans"_s, {}},
    {idOf(FieldId::Nachname), u"Meier"_s, {}},
    {idOf(FieldId::Adresse), u"Musterweg 12"_s, {}},
    {idOf(FieldId::Plz), u"80331"_s, {}},
    {idOf(FieldId::Ort), u"München"_s, {}},
    {idOf(FieldId::Telefon), u"089 123456"_s, {}},
    {idOf(FieldId::Fax), u"089 123457"_s, {}},
    {idOf(FieldId::EMail), u"info@muster.de"_s, {}},
    {idOf(FieldId::Website), u"www.muster.de"_s, {}},
};

void BM_CardDavCreate(benchmark::State& state)
{
    DavServer* server = radicale(state);
    if (!server)
        return;
    AddressBook book(std::make_shared<DavClient>(server->user(), server->password()),
                     server->book());
    for (auto _ : state)
        benchmark::DoNotOptimize(book.create(Values));
}
BENCHMARK(BM_CardDavCreate)->Unit(benchmark::kMillisecond)->UseRealTime();

// The same card as the book writes it, sent as one plain PUT with nothing around it.
void BM_BareHttpPut(benchmark::State& state)
{
    DavServer* server = radicale(state);
    if (!server)
        return;
    VCard card = VCard::blank(u"vorlage"_s);
    for (const FieldValue& v : Values)
        card.setField(v);
    card.finish(QDateTime::currentDateTimeUtc());
    const QByteArray data = card.toBytes();
    const QByteArray auth =
        "Basic " + (server->user() + u':' + server->password()).toUtf8().toBase64();
    QNetworkAccessManager network;
    for (auto _ : state) {
        const QString uid = QUuid::createUuid().toString(QUuid::WithoutBraces);
        QNetworkRequest request(server->book().resolved(QUrl(uid + u".vcf"_s)));
        request.setRawHeader("Authorization", auth);
        request.setRawHeader("Content-Type", "text/vcard; charset=utf-8");
        request.setRawHeader("If-None-Match", "*");
        QByteArray body = data;
        body.replace("UID:vorlage", "UID:" + uid.toUtf8());
        QNetworkReply* reply = network.put(request, body);
        QEventLoop loop;
        QObject::connect(reply, &QNetworkReply::finished, &loop, &QEventLoop::quit);
        loop.exec();
        if (reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt() != 201)
            state.SkipWithError("PUT failed");
        reply->deleteLater();
    }
}
BENCHMARK(BM_BareHttpPut)->Unit(benchmark::kMillisecond)->UseRealTime();

// "Neu Anlegen" as the window and the command line do it: the rows through ContactLink, the
// CardDAV book's automation objects, one PUT at EndTransfer and the current contact noted in
// the state folder. Logged in once, as a running program is.
void BM_TransferThroughAutomation(benchmark::State& state)
{
    DavServer* server = radicale(state);
    if (!server)
        return;
    QTemporaryDir stateHome;
    qputenv("XDG_STATE_HOME", stateHome.path().toUtf8());
    qputenv("ZETTELFISCHER_PASSWORD", server->password().toUtf8());
    const books::BookLocation location{server->book().toString(), server->user(),
                                       std::chrono::seconds(15)};
    act::ContactLink link(books::makeBookFactory(
        location,
        std::make_shared<credentials::Credentials>(credentials::AskFunction{}, std::nullopt)));
    act::WindowHooks hooks;
    int failures = 0;
    hooks.showMessage = [&failures](const QString&, MessageStyle) {
        ++failures;
        return MessageAnswer::Ok;
    };
    hooks.showCompletionPrompt = [](bool) { return act::Completion::Back; };
    Session session;
    session.rows.FillDefaultFieldLists();
    for (int row = 0; row < Values.size(); ++row) {
        session.rows.setValue(row, Values[row].value);
        session.rows.SelectRowField(row, qint16(Values[row].fieldId));
    }
    session.clipText = u"Muster GmbH\r\n"_s;
    for (auto _ : state)
        link.TransferContact(true, session, hooks);
    if (failures)
        state.SkipWithError(qPrintable(u"transfer failed: "_s + link.lastError()));
}
BENCHMARK(BM_TransferThroughAutomation)->Unit(benchmark::kMillisecond)->UseRealTime();

// A fresh client each time, as on the first use: well-known redirect, principal, home, books.
void BM_CardDavDiscoveryFromRoot(benchmark::State& state)
{
    DavServer* server = radicale(state);
    if (!server)
        return;
    for (auto _ : state) {
        DavClient client(server->user(), server->password());
        if (client.addressBooks(server->root()).size() != 1)
            state.SkipWithError("no address book found");
    }
}
BENCHMARK(BM_CardDavDiscoveryFromRoot)->Unit(benchmark::kMillisecond)->UseRealTime();

} // namespace

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
