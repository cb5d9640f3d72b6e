// The transfer and the field-list loading against the recording stand-in: exact calls, their
// order and arguments, and a failure injected at every step.

#include "recorder.h"

#include <QtTest>

using namespace zf;
using namespace zf::act;
using namespace zf::act::test;

namespace {

// Automation calls are recorded with a capital first letter, window hooks without.
QStringList automationOf(const QStringList& calls)
{
    return calls.filter(QRegularExpression("^[A-Z]"));
}

QStringList names(const FieldList& list)
{
    QStringList out;
    for (const FieldEntry& e : list.entries())
        out << QString("%1=%2").arg(e.id).arg(e.name);
    return out;
}

// A link on the stand-in and a session whose rows are "id=value" ("-=value" for a row without
// a chosen field), from the top.
struct Rig {
    Recorder r;
    ContactLink link{std::make_shared<FakeFactory>(r)};
    Session s;

    explicit Rig(const QStringList& rows = {}, const QString& clipText = "x")
    {
        s.rows.FillDefaultFieldLists();
        s.clipText = clipText;
        for (int row = 0; row < rows.size(); ++row) {
            s.rows.setValue(row, rows[row].section('=', 1));
            if (!rows[row].startsWith('-'))
                s.rows.SelectRowField(row, qint16(rows[row].section('=', 0, 0).toInt()));
        }
    }
    // The calls of this run only.
    QStringList transfer(bool create)
    {
        r.calls.clear();
        link.TransferContact(create, s, r.hooks());
        return r.calls;
    }
    QStringList load()
    {
        r.calls.clear();
        link.LoadFieldList(s, r.hooks());
        return r.calls;
    }
};

const QString App = "CreateObject(ACTOLE.APPOBJECT)";
const QString Db = "CreateObject(ACTOLE.DATABASE)";
const QList<std::pair<qint32, QString>> BookFields{{25, "Firma"}, {117, ""}, {200, ""}};
// A successful load of BookFields.
const QStringList LoadCalls{"busy(1)",        "IsActRunning()", Db,
                            "OpenEx()",       "IsOpen()",       "busy(0)",
                            "busy(1)",        "Contact()",      "Fields()",
                            "FieldCount()",   "FieldIdAt(0)",   "Label(25)",
                            "FieldIdAt(1)",   "Label(117)",     "FieldIdAt(2)",
                            "Label(200)",     "~Database",      "busy(0)",
                            "fetchClipboard", "saveFieldCache"};

} // namespace

class TestContactLink : public QObject {
    Q_OBJECT
private slots:
    void transferSequence()
    {
        Rig t({"25=Beispiel GmbH", "78=Max", "79=Muster"});
        QCOMPARE(t.transfer(true),
                 (QStringList{"busy(1)", App, "Views()", "Create(1,ContactView)", "AddNewContact()",
                              "SetField(25,Beispiel GmbH)", "SetField(78,Max)",
                              "SetField(79,Muster)", "SetField(26,Max Muster)", "busy(0)",
                              "topMost(0)", "repaint", "prompt(1)", "focus"}));
        QVERIFY(t.link.LastTransferCreated());
        // Later transfers reuse the objects of the first.
        const QStringList again = t.transfer(false);
        QCOMPARE(again.filter(QRegularExpression("^(Create|Views|~)")), QStringList{});
        QVERIFY(again.contains("prompt(0)"));
        QVERIFY(!t.link.LastTransferCreated());
    }

    void transferWrites_data()
    {
        QTest::addColumn<bool>("create");
        QTest::addColumn<QStringList>("rows");
        QTest::addColumn<bool>("extrasLoaded");
        QTest::addColumn<QStringList>("extras");
        QTest::addColumn<QStringList>("expected"); // "+" adds a contact, "id=value" sets a field

        QTest::newRow("empty contact row still joined")
            << true << QStringList{"26=", "79=Muster", "78=Max"} << false << QStringList{}
            << QStringList{"+", "26=", "79=Muster", "78=Max", "26=Max Muster"};
        QTest::newRow("contact row with a value: no join")
            << true << QStringList{"78=Max", "79=Muster", "26=Dr. M"} << false << QStringList{}
            << QStringList{"+", "78=Max", "79=Muster", "26=Dr. M"};
        QTest::newRow("empty first name: no join")
            << true << QStringList{"78=", "79=Muster"} << false << QStringList{}
            << QStringList{"+", "78=", "79=Muster"};
        QTest::newRow("edit: no new contact, empty value sent")
            << false << QStringList{"25=", "30=Wien"} << false << QStringList{}
            << QStringList{"25=", "30=Wien"};
        QTest::newRow("row without a field not sent")
            << false << QStringList{"-=Beispiel", "30=Wien", "-=", "33=Land"} << false
            << QStringList{} << QStringList{"30=Wien", "33=Land"};
        QTest::newRow("extras after the join, -1 skipped")
            << false << QStringList{"78=Max", "79=Muster"} << true
            << QStringList{"117=blau", "-1=nichts", "300="}
            << QStringList{"78=Max", "79=Muster", "26=Max Muster", "117=blau", "300="};
        QTest::newRow("extras not sent without definitions")
            << false << QStringList{"30=Linz"} << false << QStringList{"117=blau"}
            << QStringList{"30=Linz"};
    }

    void transferWrites()
    {
        QFETCH(bool, create);
        QFETCH(QStringList, rows);
        QFETCH(bool, extrasLoaded);
        QFETCH(QStringList, extras);
        QFETCH(QStringList, expected);

        Rig t(rows);
        t.s.state.ExtraDefinitionsLoaded = extrasLoaded;
        for (const QString& e : extras)
            t.s.state.ExtraFieldValues.append(
                {qint16(e.section('=', 0, 0).toInt()), e.section('=', 1)});
        QStringList writes;
        for (const QString& c : t.transfer(create).filter(QRegularExpression("^(Add|Set)")))
            writes << (c.startsWith("Add") ? "+" : c.mid(9).chopped(1).replace(',', '='));
        QCOMPARE(writes, expected);
    }

    void noData_data()
    {
        QTest::addColumn<QString>("clipText");
        QTest::addColumn<bool>("refused");
        QTest::newRow("empty") << "" << true;
        QTest::newRow("spaces") << "   " << true;
        QTest::newRow("line break") << "\r\n" << false;
    }

    void noData()
    {
        QFETCH(QString, clipText);
        QFETCH(bool, refused);
        Rig t({"25=Beispiel"}, clipText); // filled by hand, but the box decides
        const QStringList calls = t.transfer(true);
        if (refused)
            QCOMPARE(calls, QStringList{"message(Keine Daten vorhanden.,48)"});
        else
            QVERIFY(calls.contains("SetField(25,Beispiel)"));
    }

    void failureAtEveryStep_data()
    {
        QTest::addColumn<bool>("create");
        QTest::addColumn<int>("failAt");
        // Automation calls of a successful run: 3 to make the view, AddNewContact when creating,
        // 3 rows, the join and 1 extra.
        for (const bool create : {true, false})
            for (int k = 0; k < (create ? 9 : 8); ++k)
                QTest::addRow("%s call %d", create ? "create" : "edit", k) << create << k;
    }

    void failureAtEveryStep()
    {
        QFETCH(bool, create);
        QFETCH(int, failAt);
        Rig t({"78=Max", "79=Muster", "30=Wien"});
        t.s.state.ExtraDefinitionsLoaded = true;
        t.s.state.ExtraFieldValues = {{117, "blau"}};
        const QStringList automation = automationOf(t.transfer(create));
        QCOMPARE(automation.size(), create ? 9 : 8);

        // The same run again from scratch, failing at that call.
        t.link.ReleaseActObjects();
        t.r.failAt = t.r.automationCalls + failAt;
        QCOMPARE(t.transfer(create), (QStringList{"busy(1)"} + automation.mid(0, failAt + 1) +
                                      QStringList{"busy(0)", "topMost(0)", "repaint",
                                                  create ? CreateFailed : EditFailed}));
        QVERIFY(t.link.lastError().contains("injected"));

        // Until the contact view exists the next transfer tries again; after that it is reused.
        const QStringList again = t.transfer(create);
        QCOMPARE(again.contains(App), failAt <= 2);
        QVERIFY(again.contains(QString("prompt(%1)").arg(int(create))));
        QVERIFY(t.link.lastError().isEmpty());
    }

    void completionChoice_data()
    {
        QTest::addColumn<int>("choice");
        QTest::addColumn<QString>("last");
        QTest::newRow("close box") << 0 << "focus";
        QTest::newRow("leave") << 1 << "closeProgram";
        QTest::newRow("back") << 2 << "focus";
    }

    void completionChoice()
    {
        QFETCH(int, choice);
        QFETCH(QString, last);
        Rig t({"25=A"});
        t.r.completionChoice = quint8(choice);
        const QStringList calls = t.transfer(false);
        QCOMPARE(calls.last(), last);
        QCOMPARE(calls.count("closeProgram") + calls.count("focus"), 1);
        QCOMPARE(t.link.CompletionChoice(), quint8(choice));
    }

    void loadSequence()
    {
        Rig t;
        t.r.fields = BookFields;
        QCOMPARE(t.load(), LoadCalls);
        QCOMPARE(names(t.s.rows.fields()), (QStringList{"200=eMail", "117=Feld 117", "25=Firma"}));
        // The released database object is made and opened anew; labels are taken as they are.
        t.r.fields = {{200, "E-Mail"}, {5, " "}};
        QCOMPARE(t.load().filter(QRegularExpression("^(Create|Open)")), LoadCalls.mid(2, 2));
        QCOMPARE(names(t.s.rows.fields()), (QStringList{"5= ", "200=E-Mail"}));

        t.r.fields.clear();
        QCOMPARE(t.load(), LoadCalls.mid(0, 10) + LoadCalls.mid(16));
        QCOMPARE(t.s.rows.fields().count(), 0);
    }

    void loadFailure_data()
    {
        QTest::addColumn<int>("running"); // -1 empty answer
        QTest::addColumn<int>("open");
        QTest::addColumn<int>("failAt"); // index among the automation calls of LoadCalls
        QTest::addColumn<QStringList>("listAfter");
        const QStringList kept{"30=Ort"};
        QTest::newRow("not running") << 0 << 1 << -1 << kept;
        QTest::newRow("running empty") << -1 << 1 << -1 << kept;
        QTest::newRow("not open") << 1 << 0 << -1 << kept;
        QTest::newRow("open empty") << 1 << -1 << -1 << kept;
        for (int k = 0; k < 4; ++k)
            QTest::addRow("opening fails at %d", k) << 1 << 1 << k << kept;
        QTest::newRow("FieldCount fails") << 1 << 1 << 6 << kept;
        QTest::newRow("first FieldIdAt fails") << 1 << 1 << 7 << QStringList{};
        QTest::newRow("second Label fails") << 1 << 1 << 10 << QStringList{"25=Firma"};
    }

    void loadFailure()
    {
        QFETCH(int, running);
        QFETCH(int, open);
        QFETCH(int, failAt);
        QFETCH(QStringList, listAfter);
        const auto answer = [](int v) {
            return v < 0 ? std::nullopt : std::optional<bool>(v == 1);
        };
        Rig t;
        t.s.rows.clearFields();
        t.s.rows.addField("Ort", 30);
        t.r.fields = BookFields;
        t.r.running = answer(running);
        t.r.open = answer(open);
        t.r.failAt = failAt;
        const QStringList calls = t.load();
        // The calls up to the one that failed or said no, then the failure's own ending: while
        // opening the cache is still saved, while reading nothing else happens.
        const QString stop = failAt >= 0    ? automationOf(LoadCalls)[failAt]
                             : running != 1 ? "IsActRunning()"
                                            : "IsOpen()";
        const qsizetype at = LoadCalls.indexOf(stop);
        QCOMPARE(calls, LoadCalls.mid(0, at + 1) +
                            (at < LoadCalls.indexOf("busy(0)")
                                 ? QStringList{"busy(0)", FieldsFailed, "saveFieldCache"}
                                 : QStringList{FieldsFailed, "busy(0)"}));
        QCOMPARE(names(t.s.rows.fields()), listAfter);
        QVERIFY(!t.link.lastError().isEmpty()); // the command line reports why

        // A database object once made is kept and not opened again.
        t.r.failAt = -1;
        t.r.running = t.r.open = true;
        QCOMPARE(calls.count("OpenEx()") + t.load().count("OpenEx()"), 1);
        QCOMPARE(names(t.s.rows.fields()), (QStringList{"200=eMail", "117=Feld 117", "25=Firma"}));
        QVERIFY(t.link.lastError().isEmpty());
    }

    void releaseOrder()
    {
        Rig t({"25=A"});
        t.r.failAt = 10; // Fields() of the load: the database object stays
        t.transfer(true);
        t.load();
        t.r.calls.clear();
        t.link.ReleaseActObjects();
        QCOMPARE(t.r.calls, (QStringList{"~ContactView", "~Views", "~Database", "~Application"}));
        t.r.calls.clear();
        t.link.ReleaseActObjects();
        QVERIFY(t.r.calls.isEmpty());
    }
};

QTEST_GUILESS_MAIN(TestContactLink)
#include "tst_contactlink.moc"
