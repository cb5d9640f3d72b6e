// The transfer and the field-list loading against the recording stand-in: exact calls, their
// order and arguments, and a failure injected at every step.

#include "recorder.h"

#include <QtTest>

using namespace zf;
using namespace zf::act;
using namespace zf::act::test;

namespace {

// Automation calls are recorded with a capital first letter, window hooks without.
bool isAutomation(const QString& call)
{
    return call.front().isUpper();
}

QStringList automationOf(const QStringList& calls)
{
    return calls.filter(QRegularExpression("^[A-Z]"));
}

// The order of the automation calls is the contract, and so is what the user is shown (the
// messages, the prompt) and what follows; the busy pointer's toggles, the window's top-most
// state and repaints are not.
QStringList essential(const QStringList& calls)
{
    static const QRegularExpression cosmetic("^(busy|topMost|repaint)");
    QStringList out;
    for (const QString& c : calls)
        if (!cosmetic.match(c).hasMatch())
            out << c;
    return out;
}

// The busy pointer shows while the contact manager is called and is gone when the run ends.
bool busyWhileCalling(const QStringList& calls)
{
    bool busy = false;
    for (const QString& c : calls) {
        if (c.startsWith("busy("))
            busy = c == "busy(1)";
        else if (isAutomation(c) && !busy)
            return false;
    }
    return !busy;
}

QStringList names(const FieldList& list)
{
    QStringList out;
    for (const FieldEntry& e : list.entries())
        out << QString("%1=%2").arg(e.id).arg(e.name);
    return out;
}

const QString App = "CreateObject(ACTOLE.APPOBJECT)";
const QMap<qint32, QString> BookFields{{25, "Firma"}, {117, ""}, {200, ""}};
// A successful load of BookFields.
const QStringList LoadCalls =
    QString("IsActRunning() CreateObject(ACTOLE.DATABASE) OpenEx() IsOpen() Contact() Fields() "
            "FieldCount() FieldIdAt(0) Label(25) FieldIdAt(1) Label(117) FieldIdAt(2) Label(200) "
            "~Database fetchClipboard saveFieldCache")
        .split(' ');

} // namespace

class TestContactLink : public QObject {
    Q_OBJECT
private slots:
    void transferSequence()
    {
        Rig t({"25=Beispiel GmbH", "78=Max", "79=Muster"});
        t.s.state.ExtraFieldValues = {{117, "blau"}}; // without definitions: not sent
        const QStringList calls = t.transfer(true);
        QVERIFY(busyWhileCalling(calls));
        QCOMPARE(
            essential(calls),
            (QStringList{App, "Views()", "Create(1,ContactView)", "AddNewContact()",
                         "SetField(25,Beispiel GmbH)", "SetField(78,Max)", "SetField(79,Muster)",
                         "SetField(26,Max Muster)", "EndTransfer()", "prompt(1)", "focus"}));
        QVERIFY(t.link.LastTransferCreated());
        // Later transfers reuse the objects of the first; only "leave" (1) ends the program, the
        // close box (0) goes back like "back" (2).
        for (const Completion choice : {Completion::Leave, Completion::None}) {
            t.r.completionChoice = choice;
            const QStringList again = essential(t.transfer(false));
            QCOMPARE(again.filter(QRegularExpression("^(Create|Views|~)")), QStringList{});
            QCOMPARE(again.mid(again.indexOf("EndTransfer()")),
                     (QStringList{"EndTransfer()", "prompt(0)",
                                  choice == Completion::Leave ? "closeProgram" : "focus"}));
            QCOMPARE(t.link.CompletionChoice(), choice);
        }
        QVERIFY(!t.link.LastTransferCreated());
    }

    // The rows, after ";" the extra values; and what an edit writes (creating only adds
    // AddNewContact in front).
    void transferWrites_data()
    {
        QTest::addColumn<QString>("input");
        QTest::addColumn<QString>("expected");
        QTest::newRow("empty contact row still joined")
            << "26=|79=Muster|78=Max" << QString("26=|79=Muster|78=Max|26=Max Muster");
        QTest::newRow("contact row with a value: no join")
            << "78=Max|79=Muster|26=Dr. M" << QString("78=Max|79=Muster|26=Dr. M");
        QTest::newRow("empty first name: no join") << "78=|79=Muster" << QString("78=|79=Muster");
        QTest::newRow("rows without a field skipped, empty values sent")
            << "-=Beispiel|25=|-=|30=Wien" << QString("25=|30=Wien");
        QTest::newRow("extras after the join, -1 skipped")
            << "78=Max|79=Muster;117=blau|-1=nichts|300="
            << QString("78=Max|79=Muster|26=Max Muster|117=blau|300=");
    }

    void transferWrites()
    {
        QFETCH(QString, input);
        QFETCH(QString, expected);
        Rig t(input.section(';', 0, 0).split('|'));
        t.s.state.ExtraDefinitionsLoaded = true;
        for (const QString& e : input.section(';', 1).split('|', Qt::SkipEmptyParts))
            t.s.state.ExtraFieldValues.append(
                {qint16(e.section('=', 0, 0).toInt()), e.section('=', 1)});
        QStringList writes;
        for (const QString& c : t.transfer(false).filter(QRegularExpression("^SetField")))
            writes << c.mid(9).chopped(1).replace(',', '=');
        QCOMPARE(writes.join('|'), expected);
    }

    void noData()
    {
        // Only spaces count as no data: a line break is data, and the rows do not matter.
        Rig t({"25=Beispiel"});
        t.s.clipText = "   ";
        QCOMPARE(essential(t.transfer(true)), QStringList{"message(Keine Daten vorhanden.,48)"});
        t.s.clipText = "\r\n";
        QVERIFY(t.transfer(true).contains("SetField(25,Beispiel)"));
    }

    void failureAtEveryStep_data()
    {
        QTest::addColumn<bool>("create");
        QTest::addColumn<int>("failAt");
        // Automation calls of a successful run: 3 to make the view, AddNewContact when creating,
        // 3 rows, the join, 1 extra and the end.
        for (const bool create : {true, false})
            for (int k = 0; k < (create ? 10 : 9); ++k)
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
        QCOMPARE(automation.size(), create ? 10 : 9);

        // The same run again from scratch, failing at that call: no prompt, the mode's message.
        t.link.ReleaseActObjects();
        t.r.failAt = t.r.automationCalls + failAt;
        const QStringList calls = t.transfer(create);
        QVERIFY(busyWhileCalling(calls));
        QCOMPARE(essential(calls),
                 automation.mid(0, failAt + 1) + QStringList{create ? CreateFailed : EditFailed});
        QVERIFY(t.link.lastError().contains("injected"));

        // Until the contact view exists the next transfer tries again; after that it is reused.
        const QStringList again = t.transfer(create);
        QCOMPARE(again.contains(App), failAt <= 2);
        QVERIFY(again.contains(QString("prompt(%1)").arg(int(create))));
        QVERIFY(t.link.lastError().isEmpty());
    }

    void loadSequence()
    {
        Rig t;
        t.r.fields = BookFields;
        const QStringList calls = t.load();
        QVERIFY(busyWhileCalling(calls));
        QCOMPARE(essential(calls), LoadCalls);
        // The released database object is made and opened anew; labels are taken as they are.
        t.r.fields = {{200, "E-Mail"}, {5, " "}};
        QCOMPARE(t.load().filter(QRegularExpression("^(Create|Open)")), LoadCalls.mid(1, 2));
        QCOMPARE(names(t.s.rows.fields()), (QStringList{"5= ", "200=E-Mail"}));

        t.r.fields.clear();
        const qsizetype counted = LoadCalls.indexOf("FieldCount()") + 1;
        QCOMPARE(essential(t.load()),
                 LoadCalls.mid(0, counted) + LoadCalls.mid(LoadCalls.indexOf("~Database")));
        QCOMPARE(t.s.rows.fields().count(), 0);
    }

    void loadFailure_data()
    {
        using Answer = std::optional<bool>;
        QTest::addColumn<Answer>("running");
        QTest::addColumn<Answer>("open");
        QTest::addColumn<int>("failAt"); // index among the automation calls of LoadCalls
        QTest::addColumn<QStringList>("listAfter");
        const Answer yes = true, no = false, empty;
        const QStringList kept{"30=Ort"};
        QTest::newRow("not running") << no << yes << -1 << kept;
        QTest::newRow("running empty") << empty << yes << -1 << kept;
        QTest::newRow("not open") << yes << no << -1 << kept;
        QTest::newRow("open empty") << yes << empty << -1 << kept;
        for (int k = 0; k < 4; ++k)
            QTest::addRow("opening fails at %d", k) << yes << yes << k << kept;
        QTest::newRow("FieldCount fails") << yes << yes << 6 << kept;
        QTest::newRow("first FieldIdAt fails") << yes << yes << 7 << QStringList{};
        QTest::newRow("second Label fails") << yes << yes << 10 << QStringList{"25=Firma"};
    }

    void loadFailure()
    {
        QFETCH(std::optional<bool>, running);
        QFETCH(std::optional<bool>, open);
        QFETCH(int, failAt);
        QFETCH(QStringList, listAfter);
        Rig t;
        t.s.rows.clearFields();
        t.s.rows.addField("Ort", 30);
        t.r.fields = BookFields;
        t.r.running = running;
        t.r.open = open;
        t.r.failAt = failAt;
        const QStringList calls = t.load();
        QVERIFY(busyWhileCalling(calls));
        // The calls up to the one that failed or said no, then the failure's own ending: while
        // opening the cache is still saved, while reading nothing else happens.
        const QString stop = failAt >= 0       ? automationOf(LoadCalls)[failAt]
                             : running != true ? "IsActRunning()"
                                               : "IsOpen()";
        const qsizetype at = LoadCalls.indexOf(stop);
        QCOMPARE(essential(calls),
                 LoadCalls.mid(0, at + 1) + (at < LoadCalls.indexOf("Contact()")
                                                 ? QStringList{FieldsFailed, "saveFieldCache"}
                                                 : QStringList{FieldsFailed}));
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
        t.r.failAt = 11; // Fields() of the load: the database object stays
        t.transfer(true);
        t.load();
        t.r.calls.clear();
        t.link.ReleaseActObjects();
        QCOMPARE(t.r.calls, (QStringList{"~ContactView", "~Views", "~Database", "~Application"}));
    }
};

QTEST_GUILESS_MAIN(TestContactLink)
#include "tst_contactlink.moc"
