// The transfer and the field-list loading against the recording stand-in: exact calls, their
// order and arguments, and a failure injected at every step.

#include "recorder.h"

#include <QtTest>

using namespace zf;
using namespace zf::act;
using namespace zf::act::test;

namespace {

// Rows as "id=value" ("-=value" for a row without a chosen field), from the top.
void fillSession(Session& session, const QStringList& rows, const QString& clipText = "x")
{
    session.rows.FillDefaultFieldLists();
    session.clipText = clipText;
    for (int row = 0; row < rows.size(); ++row) {
        const QString id = rows[row].section('=', 0, 0);
        session.rows.setValue(row, rows[row].section('=', 1));
        if (id != "-")
            session.rows.SelectRowField(row, qint16(id.toInt()));
    }
}

QStringList only(const QStringList& calls, const QStringList& prefixes)
{
    QStringList out;
    for (const QString& c : calls)
        for (const QString& p : prefixes)
            if (c.startsWith(p))
                out << c;
    return out;
}

const QString App = "CreateObject(ACTOLE.APPOBJECT)";
const QString Db = "CreateObject(ACTOLE.DATABASE)";
const QString CreateFailed = "message(Kontakt konnte nicht angelegt werden.,48)";
const QString EditFailed = "message(Kontakt konnte nicht bearbeitet werden.,48)";
const QString FieldsFailed = "message(Die Felder konnten nicht aus der Datenbank gelesen werden. "
                             "Möglicherweise ist ACT! geschlossen.,48)";

QStringList names(const FieldList& list)
{
    QStringList out;
    for (const FieldEntry& e : list.entries())
        out << QString("%1=%2").arg(e.id).arg(e.name);
    return out;
}

} // namespace

class TestContactLink : public QObject {
    Q_OBJECT
private slots:
    void transferSequence();
    void transferWrites_data();
    void transferWrites();
    void noData_data();
    void noData();
    void objectsMadeOnceAndReused();
    void failureAtEveryStep_data();
    void failureAtEveryStep();
    void wrongObjectFromFactory();
    void completionChoice_data();
    void completionChoice();

    void loadSequence();
    void naming_data();
    void naming();
    void databaseUnavailable_data();
    void databaseUnavailable();
    void failedOpenKeepsDatabaseObject();
    void failureWhileReading_data();
    void failureWhileReading();
    void fieldCountZero();
    void secondLoadOpensNewDatabase();
    void releaseOrder();
};

void TestContactLink::transferSequence()
{
    Recorder r;
    ContactLink link(std::make_shared<FakeFactory>(r));
    Session s;
    fillSession(s, {"25=Beispiel GmbH", "78=Max", "79=Muster"});
    link.TransferContact(true, s, r.hooks());
    QCOMPARE(r.calls,
             (QStringList{"busy(1)", App, "Views()", "Create(1,ContactView)", "AddNewContact()",
                          "SetField(25,Beispiel GmbH)", "SetField(78,Max)", "SetField(79,Muster)",
                          "SetField(26,Max Muster)", "busy(0)", "topMost(0)", "repaint",
                          "prompt(1)", "focus"}));
    QCOMPARE(link.CompletionChoice(), quint8(2));
    QVERIFY(link.LastTransferCreated());
    // The rows are left as they were.
    QCOMPARE(s.rows.value(0), "Beispiel GmbH");
    QCOMPARE(s.rows.fieldId(2), 79);
}

void TestContactLink::transferWrites_data()
{
    QTest::addColumn<bool>("create");
    QTest::addColumn<QStringList>("rows");
    QTest::addColumn<bool>("extrasLoaded");
    QTest::addColumn<QStringList>("extras");
    QTest::addColumn<QStringList>("expected");

    QTest::newRow("names joined") << true << QStringList{"78=Max", "79=Muster"} << false
                                  << QStringList{}
                                  << QStringList{"AddNewContact()", "SetField(78,Max)",
                                                 "SetField(79,Muster)", "SetField(26,Max Muster)"};
    QTest::newRow("empty contact row still joined")
        << true << QStringList{"26=", "79=Muster", "78=Max"} << false << QStringList{}
        << QStringList{"AddNewContact()", "SetField(26,)", "SetField(79,Muster)",
                       "SetField(78,Max)", "SetField(26,Max Muster)"};
    QTest::newRow("contact row with a value")
        << true << QStringList{"78=Max", "79=Muster", "26=Dr. Max Muster"} << false << QStringList{}
        << QStringList{"AddNewContact()", "SetField(78,Max)", "SetField(79,Muster)",
                       "SetField(26,Dr. Max Muster)"};
    QTest::newRow("empty first name")
        << true << QStringList{"78=", "79=Muster"} << false << QStringList{}
        << QStringList{"AddNewContact()", "SetField(78,)", "SetField(79,Muster)"};
    QTest::newRow("edit sends empty values, adds nothing")
        << false << QStringList{"25=", "30=Wien"} << false << QStringList{}
        << QStringList{"SetField(25,)", "SetField(30,Wien)"};
    QTest::newRow("row without a field is not sent")
        << false << QStringList{"-=Beispiel", "30=Wien", "-=", "33=Österreich"} << false
        << QStringList{} << QStringList{"SetField(30,Wien)", "SetField(33,Österreich)"};
    QTest::newRow("same field twice: lower row last")
        << false << QStringList{"35=111", "30=Graz", "35=222"} << false << QStringList{}
        << QStringList{"SetField(35,111)", "SetField(30,Graz)", "SetField(35,222)"};
    QTest::newRow("extras after the join, -1 skipped")
        << false << QStringList{"78=Max", "79=Muster"} << true
        << QStringList{"117=blau", "-1=nichts", "300="}
        << QStringList{"SetField(78,Max)", "SetField(79,Muster)", "SetField(26,Max Muster)",
                       "SetField(117,blau)", "SetField(300,)"};
    QTest::newRow("extras not sent without definitions")
        << false << QStringList{"30=Linz"} << false << QStringList{"117=blau"}
        << QStringList{"SetField(30,Linz)"};
    QTest::newRow("no rows used") << true << QStringList{"-=a", "-=b"} << false << QStringList{}
                                  << QStringList{"AddNewContact()"};
}

void TestContactLink::transferWrites()
{
    QFETCH(bool, create);
    QFETCH(QStringList, rows);
    QFETCH(bool, extrasLoaded);
    QFETCH(QStringList, extras);
    QFETCH(QStringList, expected);

    Recorder r;
    ContactLink link(std::make_shared<FakeFactory>(r));
    Session s;
    fillSession(s, rows);
    s.state.ExtraDefinitionsLoaded = extrasLoaded;
    for (const QString& e : extras)
        s.state.ExtraFieldValues.append({qint16(e.section('=', 0, 0).toInt()), e.section('=', 1)});
    link.TransferContact(create, s, r.hooks());
    QCOMPARE(only(r.calls, {"AddNewContact", "SetField"}), expected);
    QVERIFY(r.calls.contains(QString("prompt(%1)").arg(int(create))));
}

void TestContactLink::noData_data()
{
    QTest::addColumn<QString>("clipText");
    QTest::addColumn<bool>("refused");
    QTest::newRow("empty") << "" << true;
    QTest::newRow("spaces") << "   " << true;
    QTest::newRow("line break") << "\r\n" << false;
    QTest::newRow("tab") << "\t" << false;
}

void TestContactLink::noData()
{
    QFETCH(QString, clipText);
    QFETCH(bool, refused);
    Recorder r;
    ContactLink link(std::make_shared<FakeFactory>(r));
    Session s;
    fillSession(s, {"25=Beispiel"}, clipText); // filled by hand, but the box decides
    link.TransferContact(true, s, r.hooks());
    if (refused)
        QCOMPARE(r.calls, QStringList{"message(Keine Daten vorhanden.,48)"});
    else
        QVERIFY(r.calls.contains("SetField(25,Beispiel)"));
}

void TestContactLink::objectsMadeOnceAndReused()
{
    Recorder r;
    ContactLink link(std::make_shared<FakeFactory>(r));
    Session s;
    fillSession(s, {"25=A"});
    link.TransferContact(true, s, r.hooks());
    link.TransferContact(false, s, r.hooks());
    link.TransferContact(true, s, r.hooks());
    QCOMPARE(r.calls.count(App), 1);
    QCOMPARE(r.calls.count("Views()"), 1);
    QCOMPARE(r.calls.count("Create(1,ContactView)"), 1);
    QCOMPARE(r.calls.count("AddNewContact()"), 2);
    QVERIFY(!r.calls.contains("~ContactView"));
}

void TestContactLink::failureAtEveryStep_data()
{
    QTest::addColumn<bool>("create");
    QTest::addColumn<int>("failAt");
    // Automation calls of a successful run: create 4 + AddNewContact + 3 rows + join + 1 extra.
    for (const bool create : {true, false}) {
        const int calls = create ? 9 : 8;
        for (int k = 0; k < calls; ++k)
            QTest::addRow("%s call %d", create ? "create" : "edit", k) << create << k;
    }
}

void TestContactLink::failureAtEveryStep()
{
    QFETCH(bool, create);
    QFETCH(int, failAt);

    Recorder ok;
    Session s;
    fillSession(s, {"78=Max", "79=Muster", "30=Wien"});
    s.state.ExtraDefinitionsLoaded = true;
    s.state.ExtraFieldValues = {{117, "blau"}};
    {
        ContactLink link(std::make_shared<FakeFactory>(ok));
        link.TransferContact(create, s, ok.hooks());
    }
    const QStringList automation = only(ok.calls, {"Create", "Views", "AddNewContact", "SetField"});
    QCOMPARE(automation.size(), create ? 9 : 8);

    Recorder r;
    r.failAt = failAt;
    ContactLink link(std::make_shared<FakeFactory>(r));
    link.TransferContact(create, s, r.hooks());
    QStringList expected{"busy(1)"};
    expected += automation.mid(0, failAt + 1);
    expected += {"busy(0)", "topMost(0)", "repaint", create ? CreateFailed : EditFailed};
    QCOMPARE(r.calls, expected);
    QVERIFY(link.lastError().contains("injected"));

    // Until the contact view exists the next transfer tries again; after that it is reused.
    r.calls.clear();
    r.failAt = -1;
    link.TransferContact(create, s, r.hooks());
    const bool viewMade = failAt > 2;
    QCOMPARE(r.calls.contains(App), !viewMade);
    QCOMPARE(r.calls.contains(QString("prompt(%1)").arg(int(create))), true);
    QVERIFY(link.lastError().isEmpty());
}

void TestContactLink::wrongObjectFromFactory()
{
    Recorder r;
    r.createWrongObject = true;
    ContactLink link(std::make_shared<FakeFactory>(r));
    Session s;
    fillSession(s, {"25=A"});
    link.TransferContact(false, s, r.hooks());
    QCOMPARE(r.calls,
             (QStringList{"busy(1)", App, "busy(0)", "topMost(0)", "repaint", EditFailed}));
}

void TestContactLink::completionChoice_data()
{
    QTest::addColumn<int>("choice");
    QTest::addColumn<QString>("last");
    QTest::newRow("close box") << 0 << "focus";
    QTest::newRow("leave") << 1 << "closeProgram";
    QTest::newRow("back") << 2 << "focus";
}

void TestContactLink::completionChoice()
{
    QFETCH(int, choice);
    QFETCH(QString, last);
    Recorder r;
    r.completionChoice = quint8(choice);
    ContactLink link(std::make_shared<FakeFactory>(r));
    Session s;
    fillSession(s, {"25=A"});
    link.TransferContact(false, s, r.hooks());
    QCOMPARE(r.calls.last(), last);
    QCOMPARE(r.calls.count("closeProgram") + r.calls.count("focus"), 1);
    QCOMPARE(link.CompletionChoice(), quint8(choice));
    QVERIFY(!link.LastTransferCreated());
}

void TestContactLink::loadSequence()
{
    Recorder r;
    r.fields = {{25, "Firma"}, {117, ""}, {200, ""}};
    ContactLink link(std::make_shared<FakeFactory>(r));
    Session s;
    fillSession(s, {"25=A"});
    link.LoadFieldList(s, r.hooks());
    QCOMPARE(r.calls, (QStringList{"busy(1)",        "IsActRunning()", Db,
                                   "OpenEx()",       "IsOpen()",       "busy(0)",
                                   "busy(1)",        "Contact()",      "Fields()",
                                   "FieldCount()",   "FieldIdAt(0)",   "Label(25)",
                                   "FieldIdAt(1)",   "Label(117)",     "FieldIdAt(2)",
                                   "Label(200)",     "~Database",      "busy(0)",
                                   "fetchClipboard", "saveFieldCache"}));
    QCOMPARE(names(s.rows.fields()), (QStringList{"200=eMail", "117=Feld 117", "25=Firma"}));
    QCOMPARE(s.rows.selected(0), -1); // the fetch chooses fields again
}

void TestContactLink::naming_data()
{
    QTest::addColumn<int>("id");
    QTest::addColumn<QString>("label");
    QTest::addColumn<QString>("name");
    QTest::newRow("label") << 25 << "Firma"
                           << "Firma";
    QTest::newRow("no label") << 117 << ""
                              << "Feld 117";
    QTest::newRow("e-mail without label") << 200 << ""
                                          << "eMail";
    QTest::newRow("e-mail with label") << 200 << "E-Mail"
                                       << "E-Mail";
    QTest::newRow("blank label kept") << 5 << " "
                                      << " ";
}

void TestContactLink::naming()
{
    QFETCH(int, id);
    QFETCH(QString, label);
    QFETCH(QString, name);
    Recorder r;
    r.fields = {{id, label}};
    ContactLink link(std::make_shared<FakeFactory>(r));
    Session s;
    link.LoadFieldList(s, r.hooks());
    QCOMPARE(s.rows.fields().entries(), (QList<FieldEntry>{{name, id}}));
}

void TestContactLink::databaseUnavailable_data()
{
    QTest::addColumn<int>("running"); // -1 empty answer
    QTest::addColumn<int>("open");
    QTest::addColumn<int>("failAt");
    QTest::addColumn<QStringList>("calls");
    const QStringList all{"IsActRunning()", Db, "OpenEx()", "IsOpen()"};
    QTest::newRow("not running") << 0 << 1 << -1 << all.mid(0, 1);
    QTest::newRow("running empty") << -1 << 1 << -1 << all.mid(0, 1);
    QTest::newRow("not open") << 1 << 0 << -1 << all;
    QTest::newRow("open empty") << 1 << -1 << -1 << all;
    for (int k = 0; k < 4; ++k)
        QTest::addRow("fails at %d", k) << 1 << 1 << k << all.mid(0, k + 1);
}

void TestContactLink::databaseUnavailable()
{
    QFETCH(int, running);
    QFETCH(int, open);
    QFETCH(int, failAt);
    QFETCH(QStringList, calls);
    const auto answer = [](int v) { return v < 0 ? std::nullopt : std::optional<bool>(v == 1); };
    Recorder r;
    r.running = answer(running);
    r.open = answer(open);
    r.failAt = failAt;
    r.fields = {{25, "Firma"}};
    ContactLink link(std::make_shared<FakeFactory>(r));
    Session s;
    fillSession(s, {});
    const QStringList before = names(s.rows.fields());
    link.LoadFieldList(s, r.hooks());
    QStringList expected{"busy(1)"};
    expected += calls;
    expected += {"busy(0)", FieldsFailed, "saveFieldCache"};
    QCOMPARE(r.calls, expected);
    QCOMPARE(names(s.rows.fields()), before);
}

void TestContactLink::failedOpenKeepsDatabaseObject()
{
    Recorder r;
    r.failAt = 2; // OpenEx
    r.fields = {{25, "Firma"}};
    ContactLink link(std::make_shared<FakeFactory>(r));
    Session s;
    link.LoadFieldList(s, r.hooks());
    QVERIFY(r.calls.contains(FieldsFailed));
    // The object stays; the next attempt only asks whether it is open.
    r.calls.clear();
    r.failAt = -1;
    r.open = false;
    link.LoadFieldList(s, r.hooks());
    QCOMPARE(r.calls, (QStringList{"busy(1)", "IsActRunning()", "IsOpen()", "busy(0)", FieldsFailed,
                                   "saveFieldCache"}));
}

void TestContactLink::failureWhileReading_data()
{
    QTest::addColumn<int>("failAt");
    QTest::addColumn<QStringList>("listAfter");
    // Automation calls: 0 IsActRunning, 1 Create, 2 OpenEx, 3 IsOpen, 4 Contact, 5 Fields,
    // 6 FieldCount, 7 FieldIdAt(0), 8 Label(25), 9 FieldIdAt(1), 10 Label(300).
    const QStringList defaults = [] {
        Session s;
        s.rows.FillDefaultFieldLists();
        return names(s.rows.fields());
    }();
    QTest::newRow("Contact") << 4 << defaults;
    QTest::newRow("Fields") << 5 << defaults;
    QTest::newRow("FieldCount") << 6 << defaults;
    QTest::newRow("first FieldIdAt") << 7 << QStringList{};
    QTest::newRow("first Label") << 8 << QStringList{};
    QTest::newRow("second FieldIdAt") << 9 << QStringList{"25=Firma"};
    QTest::newRow("second Label") << 10 << QStringList{"25=Firma"};
}

void TestContactLink::failureWhileReading()
{
    QFETCH(int, failAt);
    QFETCH(QStringList, listAfter);
    Recorder r;
    r.fields = {{25, "Firma"}, {300, "Geburtstag"}};
    r.failAt = failAt;
    ContactLink link(std::make_shared<FakeFactory>(r));
    Session s;
    s.rows.FillDefaultFieldLists();
    link.LoadFieldList(s, r.hooks());
    QCOMPARE(r.calls.mid(r.calls.size() - 2), (QStringList{FieldsFailed, "busy(0)"}));
    QVERIFY(!r.calls.contains("fetchClipboard"));
    QVERIFY(!r.calls.contains("saveFieldCache"));
    QVERIFY(!r.calls.contains("~Database"));
    QCOMPARE(names(s.rows.fields()), listAfter);

    // The database object was not released: the next load reuses it.
    r.calls.clear();
    r.failAt = -1;
    link.LoadFieldList(s, r.hooks());
    QVERIFY(!r.calls.contains(Db));
    QVERIFY(r.calls.contains("saveFieldCache"));
    QCOMPARE(names(s.rows.fields()), (QStringList{"25=Firma", "300=Geburtstag"}));
}

void TestContactLink::fieldCountZero()
{
    Recorder r;
    ContactLink link(std::make_shared<FakeFactory>(r));
    Session s;
    fillSession(s, {"25=A"});
    link.LoadFieldList(s, r.hooks());
    QCOMPARE(s.rows.fields().count(), 0);
    QCOMPARE(r.calls.mid(r.calls.size() - 2), (QStringList{"fetchClipboard", "saveFieldCache"}));
}

void TestContactLink::secondLoadOpensNewDatabase()
{
    Recorder r;
    r.fields = {{25, "Firma"}};
    ContactLink link(std::make_shared<FakeFactory>(r));
    Session s;
    link.LoadFieldList(s, r.hooks());
    link.LoadFieldList(s, r.hooks());
    QCOMPARE(r.calls.count(Db), 2);
    QCOMPARE(r.calls.count("OpenEx()"), 2);
    QCOMPARE(r.calls.count("~Database"), 2);
}

void TestContactLink::releaseOrder()
{
    Recorder r;
    r.failAt = 10; // Fields() of the load: the database object stays
    ContactLink link(std::make_shared<FakeFactory>(r));
    Session s;
    fillSession(s, {"25=A"});
    link.TransferContact(true, s, r.hooks());
    link.LoadFieldList(s, r.hooks());
    r.calls.clear();
    link.ReleaseActObjects();
    QCOMPARE(r.calls, (QStringList{"~ContactView", "~Views", "~Database", "~Application"}));
    r.calls.clear();
    link.ReleaseActObjects();
    QVERIFY(r.calls.isEmpty());
}

QTEST_GUILESS_MAIN(TestContactLink)
#include "tst_contactlink.moc"
