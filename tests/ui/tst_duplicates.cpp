// "Neu Anlegen" asks before it files a person the book has already; "Bearbeiten" without a
// current contact offers the search instead of failing; the duplicate question and the search
// dialog themselves.

#include "bookdirectory.h"
#include "uitest.h"

#include "act/messages.h"
#include "analysis/analyser.h"
#include "analysis/fields.h"
#include "books/sqlite/sqlitebook.h"
#include "ui/duplicatecheck.h"
#include "ui/formdublette.h"
#include "ui/formfertigabfrage.h"
#include "ui/formkontakt.h"
#include "ui/formmain.h"

#include <QClipboard>
#include <QComboBox>
#include <QFile>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QScopedValueRollback>
#include <QScrollBar>
#include <QStandardPaths>
#include <QTemporaryDir>

using namespace zf;
using namespace zf::ui;
using namespace zf::ui::test;
using namespace Qt::StringLiterals;

namespace {

// A company, a person and an address: the person the book below has twice.
const QString Card = "Muster GmbH\r\nHans Meier\r\nhans.meier@muster.de\r\n";
const QString Stranger = "Neu AG\r\nPaul Neu\r\npaul@neu.de\r\n";

constexpr qint32 Kontakt = idOf(FieldId::Kontakt), Firma = idOf(FieldId::Firma),
                 EMail = idOf(FieldId::EMail);

dup::Match contact(const QString& id, const QString& name, const QString& company = {},
                   const QString& email = {}, dup::Reason reason = dup::Reason::EMail)
{
    return {id, name, company, email, reason};
}

void analyse(Session& s, const QString& text)
{
    s.rows.FillDefaultFieldLists();
    AnalyseTextIn(AnalysisMode::Classic, text, s, Seams{});
}

QString valueOf(act::ContactBook& book, qint64 id, qint32 field)
{
    for (const act::BookValue& v : book.contactValues(id))
        if (v.fieldId == field)
            return v.value;
    return {};
}

QStringList shownRows(const formMain& w)
{
    QStringList out;
    for (int row = 0; row < formMain::RowCount; ++row)
        if (!w.txtWert[row]->text().isEmpty())
            out << w.txtWert[row]->text() + '=' + w.txtField[row]->currentText();
    return out;
}

// The window on a real SQLite book holding Hans Meier twice (by name at his firm, and by his
// address under another name) and, as the current contact, someone else.
struct BookFixture {
    QTemporaryDir dir;
    MessageLog log;
    std::shared_ptr<SqliteDirectory> directory;
    QList<qint64> written; // every contact a transfer stored
    QList<QList<dup::Match>> asked;
    DuplicateAnswer answer;
    std::unique_ptr<formMain> window;
    qint64 byName = 0, byMail = 0, other = 0;

    BookFixture()
    {
        directory = std::make_shared<SqliteDirectory>(dir.filePath("kontakte.sqlite"));
        byName = directory->add(
            {{Kontakt, "Hans Meier"}, {Firma, "Muster GmbH"}, {EMail, "h.meier@privat.de"}});
        byMail = directory->add({{Kontakt, "H. Meier"}, {EMail, "hans.meier@muster.de"}});
        other = directory->add({{Kontakt, "Erika Muster"}, {Firma, "Beispiel AG"}});
    }

    formMain& started(const QString& clipboard, const QByteArray& ini = {})
    {
        QFile file(dir.filePath("zettelfischer.ini"));
        if (file.open(QIODevice::WriteOnly))
            file.write(ini);
        file.close();
        MainOptions options{dir.filePath("zettelfischer.ini"), dir.path(),
                            act::makeContactBookFactory(
                                dir.filePath("kontakte.sqlite"),
                                [this](qint64 id) { written << id; }, directory->chosen()),
                            log.function()};
        options.directory = directory;
        options.askDuplicate = [this](const QList<dup::Match>& matches) {
            asked << matches;
            return answer;
        };
        window = std::make_unique<formMain>(std::move(options));
        QGuiApplication::clipboard()->setText(clipboard);
        window->show();
        window->StartUp();
        log.messages.clear();
        return *window;
    }

    act::ContactBook& book() { return directory->book(); }
    // The completion prompt's text after pressing the button; "" when none opened.
    QString press(QPushButton* button)
    {
        QString label;
        whenModal<formFertigAbfrage>(window.get(), [&label](formFertigAbfrage* p) {
            if (p)
                label = p->Label1->text();
        });
        QTest::mouseClick(button, Qt::LeftButton);
        return label;
    }
};

// Answers the modal dialogs as they come: the search dialog through onSearch (its question
// noted), the completion prompt closed and counted.
struct Dialogs {
    std::function<void(formKontakt*)> onSearch;
    QStringList seen;
    int prompts = 0;
    QTimer timer;
    bool busy = false;

    Dialogs()
    {
        timer.setInterval(5);
        QObject::connect(&timer, &QTimer::timeout, [this] {
            if (busy)
                return;
            const QScopedValueRollback<bool> guard(busy, true);
            QWidget* modal = QApplication::activeModalWidget();
            if (auto* d = qobject_cast<formKontakt*>(modal); d && d->isVisible()) {
                seen << d->lblFrage->text();
                if (onSearch)
                    onSearch(d);
                if (d->isVisible())
                    d->reject();
            } else if (auto* p = qobject_cast<formFertigAbfrage*>(modal)) {
                ++prompts;
                p->close();
            }
        });
        timer.start();
    }
};

} // namespace

class TestDuplicates : public QObject {
    Q_OBJECT
private slots:
    void initTestCase() { QStandardPaths::setTestModeEnabled(true); }

    // The check alone, with a stand-in book: when it asks, and what each answer leads to.
    void checkBeforeCreate_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<bool>("checkOn");
        QTest::addColumn<bool>("withDirectory");
        QTest::addColumn<int>("matches");
        QTest::addColumn<QString>("fails"); // "find", "setCurrent" or ""
        QTest::addColumn<int>("answer");    // DuplicateAnswer::Kind; UpdateInstead: the last match
        QTest::addColumn<int>("reply");     // to the lookup failure's question
        QTest::addColumn<int>("plan");
        QTest::addColumn<int>("finds");
        QTest::addColumn<bool>("asked");
        QTest::addColumn<QStringList>("madeCurrent");
        QTest::addColumn<QStringList>("messages");

        const int yes = int(MessageAnswer::Yes), no = int(MessageAnswer::No);
        const int create = int(TransferPlan::Create), edit = int(TransferPlan::Edit),
                  nothing = int(TransferPlan::Nothing);
        const int anyway = DuplicateAnswer::CreateAnyway, update = DuplicateAnswer::UpdateInstead,
                  cancel = DuplicateAnswer::Cancel;
        const QStringList none;
        const QString lookupFailed = message(msg::LookupFailed, MessageStyle::Question);

        QTest::newRow("no match") << Card << true << true << 0 << "" << cancel << yes << create << 1
                                  << false << none << none;
        QTest::newRow("check off") << Card << false << true << 1 << "" << cancel << yes << create
                                   << 0 << false << none << none;
        QTest::newRow("no directory") << Card << true << false << 1 << "" << cancel << yes << create
                                      << 0 << false << none << none;
        // The transfer itself refuses an empty box with its own message.
        QTest::newRow("nothing analysed") << "" << true << true << 1 << "" << cancel << yes
                                          << create << 0 << false << none << none;
        QTest::newRow("rows name nobody")
            << "80331 München\r\n"
            << true << true << 1 << "" << cancel << yes << create << 0 << false << none << none;
        QTest::newRow("cancel") << Card << true << true << 1 << "" << cancel << yes << nothing << 1
                                << true << none << none;
        QTest::newRow("create anyway") << Card << true << true << 2 << "" << anyway << yes << create
                                       << 1 << true << none << none;
        QTest::newRow("update the second of two")
            << Card << true << true << 2 << "" << update << yes << edit << 1 << true
            << QStringList{"m2"} << none;
        QTest::newRow("update, not to be made current")
            << Card << true << true << 1 << "setCurrent" << update << yes << nothing << 1 << true
            << none << QStringList{message(msg::EditFailed, MessageStyle::Exclamation)};
        QTest::newRow("lookup fails, filed anyway")
            << Card << true << true << 1 << "find" << cancel << yes << create << 1 << false << none
            << QStringList{lookupFailed};
        QTest::newRow("lookup fails, cancelled")
            << Card << true << true << 1 << "find" << anyway << no << nothing << 1 << false << none
            << QStringList{lookupFailed};
    }

    void checkBeforeCreate()
    {
        QFETCH(QString, text);
        QFETCH(bool, checkOn);
        QFETCH(bool, withDirectory);
        QFETCH(int, matches);
        QFETCH(QString, fails);
        QFETCH(int, answer);
        QFETCH(int, reply);
        QFETCH(int, plan);
        QFETCH(int, finds);
        QFETCH(bool, asked);
        QFETCH(QStringList, madeCurrent);
        QFETCH(QStringList, messages);

        Session session;
        analyse(session, text);
        session.state.KontakteDublettenpruefung = checkOn;
        FakeDirectory directory;
        for (int i = 1; i <= matches; ++i)
            directory.matches << contact(u"m%1"_s.arg(i), "Hans Meier", "Muster GmbH");
        directory.findFails = fails == "find";
        directory.setCurrentFails = fails == "setCurrent";
        MessageLog log;
        log.answers = {MessageAnswer(reply)};
        QList<QList<dup::Match>> questions;
        const DuplicateQuestion ask = [&](const QList<dup::Match>& found) {
            questions << found;
            return DuplicateAnswer{DuplicateAnswer::Kind(answer),
                                   answer == DuplicateAnswer::UpdateInstead ? found.last().id
                                                                            : QString()};
        };

        const TransferPlan result =
            CheckBeforeCreate(session, withDirectory ? &directory : nullptr, ask, log.function());
        QCOMPARE(int(result), plan);
        QCOMPARE(directory.finds, finds);
        QCOMPARE(questions.size(), asked ? 1 : 0);
        if (asked)
            QCOMPARE(questions.first(), directory.matches);
        QCOMPARE(directory.madeCurrent, madeCurrent);
        QCOMPARE(log.messages, messages);
    }

    // The window on a real book: each answer writes at most once, and into the right contact;
    // the rows and the box stay for another try.
    void answersInTheWindow_data()
    {
        QTest::addColumn<QString>("clipboard");
        QTest::addColumn<QByteArray>("ini");
        QTest::addColumn<int>("answer");
        QTest::addColumn<int>("asked");      // matches shown, 0: no question
        QTest::addColumn<QString>("target"); // "" nothing, "new", "byMail": where the rows go
        QTest::addColumn<QString>("prompt");

        const QString created = "Kontakt wurde erfolgreich angelegt.",
                      edited = "Kontakt wurde erfolgreich bearbeitet.";
        const QByteArray off = "[Kontakte]\r\nDublettenpruefung=0\r\n";
        QTest::newRow("cancel") << Card << QByteArray() << int(DuplicateAnswer::Cancel) << 2 << ""
                                << "";
        QTest::newRow("create anyway")
            << Card << QByteArray() << int(DuplicateAnswer::CreateAnyway) << 2 << "new" << created;
        QTest::newRow("update instead")
            << Card << QByteArray() << int(DuplicateAnswer::UpdateInstead) << 2 << "byMail"
            << edited;
        QTest::newRow("check off")
            << Card << off << int(DuplicateAnswer::Cancel) << 0 << "new" << created;
        QTest::newRow("no match") << Stranger << QByteArray() << int(DuplicateAnswer::Cancel) << 0
                                  << "new" << created;
    }

    void answersInTheWindow()
    {
        QFETCH(QString, clipboard);
        QFETCH(QByteArray, ini);
        QFETCH(int, answer);
        QFETCH(int, asked);
        QFETCH(QString, target);
        QFETCH(QString, prompt);

        BookFixture f;
        formMain& w = f.started(clipboard, ini);
        f.answer = {DuplicateAnswer::Kind(answer), QString::number(f.byMail)};
        const QStringList rows = shownRows(w);
        const QString box = w.txtClipText->toPlainText();
        QVERIFY(!rows.isEmpty());

        QCOMPARE(f.press(w.cmdNeuanlageInACT), prompt);
        QCOMPARE(f.log.messages, QStringList{});
        QCOMPARE(f.asked.size(), asked ? 1 : 0);
        if (asked) {
            // Both of Hans Meier's entries, in the book's order, named as the book has them.
            const QList<dup::Match>& shown = f.asked.first();
            QCOMPARE(shown.size(), asked);
            QCOMPARE(shown[0].id, QString::number(f.byName));
            QCOMPARE(shown[0].reason, dup::Reason::Name);
            QCOMPARE(shown[1], contact(QString::number(f.byMail), "H. Meier", "",
                                       "hans.meier@muster.de", dup::Reason::EMail));
        }

        act::ContactBook& book = f.book();
        const QList<qint64> before{f.byName, f.byMail, f.other};
        if (target.isEmpty()) {
            QCOMPARE(f.written, QList<qint64>{});
            QCOMPARE(book.contactIds(), before);
            QCOMPARE(book.currentContact(), f.other);
        } else if (target == "new") {
            QCOMPARE(f.written.size(), 1);
            QVERIFY(!before.contains(f.written.first()));
            QCOMPARE(book.contactIds(), before + f.written);
            QCOMPARE(book.currentContact(), f.written.first());
        } else {
            QCOMPARE(f.written, QList<qint64>{f.byMail});
            QCOMPARE(book.contactIds(), before);
            QCOMPARE(valueOf(book, f.byMail, Kontakt), "Hans Meier");
            QCOMPARE(valueOf(book, f.byMail, Firma), "Muster GmbH");
            QCOMPARE(book.currentContact(), f.byMail);
        }
        // The others are untouched.
        QCOMPARE(valueOf(book, f.byName, EMail), "h.meier@privat.de");
        QCOMPARE(valueOf(book, f.other, Kontakt), "Erika Muster");
        QCOMPARE(shownRows(w), rows);
        QCOMPARE(w.txtClipText->toPlainText(), box);
    }

    // The question itself: what it names, which button gives which answer.
    void duplicateDialog_data()
    {
        QTest::addColumn<int>("matches");
        QTest::addColumn<int>("row"); // chosen in the list
        QTest::addColumn<QString>("exit");
        QTest::addColumn<int>("kind");
        QTest::addColumn<QString>("id");

        QTest::newRow("one, update")
            << 1 << 0 << "cmdAktualisieren" << int(DuplicateAnswer::UpdateInstead) << "1";
        QTest::newRow("two, update the second")
            << 2 << 1 << "cmdAktualisieren" << int(DuplicateAnswer::UpdateInstead) << "2";
        QTest::newRow("create anyway")
            << 2 << 1 << "cmdNeu" << int(DuplicateAnswer::CreateAnyway) << "";
        QTest::newRow("Abbrechen")
            << 2 << 0 << "cmdAbbrechen" << int(DuplicateAnswer::Cancel) << "";
        QTest::newRow("Escape") << 1 << 0 << "Escape" << int(DuplicateAnswer::Cancel) << "";
        QTest::newRow("Enter") << 1 << 0 << "Enter" << int(DuplicateAnswer::Cancel) << "";
    }

    void duplicateDialog()
    {
        QFETCH(int, matches);
        QFETCH(int, row);
        QFETCH(QString, exit);
        QFETCH(int, kind);
        QFETCH(QString, id);

        const QList<dup::Match> all{
            contact("1", "Hans Meier", "Muster GmbH", "h.meier@privat.de", dup::Reason::Name),
            contact("2", "H. Meier", "", "hans.meier@muster.de", dup::Reason::EMail)};
        formDublette d(all.mid(0, matches));
        d.show();
        QVERIFY(QTest::qWaitForWindowExposed(&d));
        QCOMPARE(d.windowTitle(), "Zettelfischer");
        QCOMPARE(d.lstTreffer->count(), matches);
        QCOMPARE(d.lstTreffer->item(0)->text(),
                 "Hans Meier, Muster GmbH\nh.meier@privat.de – gleicher Name");
        if (matches > 1)
            QCOMPARE(d.lstTreffer->item(1)->text(),
                     "H. Meier\nhans.meier@muster.de – gleiche E-Mail-Adresse");
        // Every match whole in sight, and the dialog no wider than the main window.
        QCOMPARE(d.lstTreffer->verticalScrollBar()->maximum(), 0);
        QVERIFY(d.width() <= 660);
        QCOMPARE(d.cmdNeu->text(), "Trotzdem neu anlegen");
        QCOMPARE(d.cmdAktualisieren->text(), "Stattdessen diesen aktualisieren");
        QCOMPARE(d.cmdAbbrechen->text(), "Abbrechen");
        QVERIFY(!d.lblSymbol->pixmap().isNull());

        d.lstTreffer->setCurrentRow(row);
        if (exit == "Escape" || exit == "Enter")
            QTest::keyClick(&d, exit == "Escape" ? Qt::Key_Escape : Qt::Key_Return);
        else
            QTest::mouseClick(d.findChild<QPushButton*>(exit), Qt::LeftButton);
        QVERIFY(!d.isVisible());
        QCOMPARE(int(d.answer().kind), kind);
        QCOMPARE(d.answer().id, id);
    }

    // Long names and addresses are cut short rather than scrolled out of the one line there is.
    void duplicateDialogFits_data()
    {
        QTest::addColumn<int>("matches");
        QTest::newRow("one") << 1;
        QTest::newRow("three") << 3;
        QTest::newRow("five scroll") << 5;
    }
    void duplicateDialogFits()
    {
        QFETCH(int, matches);
        QList<dup::Match> all;
        for (int i = 0; i < matches; ++i)
            all << contact(
                QString::number(i), "Hans-Joachim Meier-Lüdenscheid",
                "Muster Fischerei und Räucherei GmbH & Co. KG",
                "hans-joachim.meier-luedenscheid@muster-fischerei-und-raeucherei.example");
        formDublette d(all);
        d.show();
        QVERIFY(QTest::qWaitForWindowExposed(&d));
        QVERIFY(d.width() <= 660);
        QVERIFY(!d.lstTreffer->horizontalScrollBar()->isVisible());
        QCOMPARE(d.lstTreffer->verticalScrollBar()->isVisible(), matches > 3);
        const QRect first = d.lstTreffer->visualItemRect(d.lstTreffer->item(0));
        QVERIFY(first.top() >= 0 && first.bottom() < d.lstTreffer->viewport()->height());
        QCOMPARE(d.lstTreffer->item(0)->toolTip(), d.lstTreffer->item(0)->text());
    }

    // Typing filters, the arrows walk the list, Enter and a double click take, Escape leaves.
    void searchDialog_data()
    {
        QTest::addColumn<QString>("typed");
        QTest::addColumn<QString>("keys"); // "down" before the exit
        QTest::addColumn<QString>("exit"); // "Enter", "double", "Escape", "OK"
        QTest::addColumn<QStringList>("listed");
        QTest::addColumn<QString>("chosen"); // id, "" for none

        const QStringList meiers{"Hans Meier, Muster GmbH, h.meier@privat.de",
                                 "H. Meier, hans.meier@muster.de"};
        QTest::newRow("Enter takes the first") << "meier"
                                               << ""
                                               << "Enter" << meiers << "1";
        QTest::newRow("down, Enter") << "meier"
                                     << "down"
                                     << "Enter" << meiers << "2";
        QTest::newRow("double click") << "MEIER"
                                      << ""
                                      << "double" << meiers << "2";
        QTest::newRow("by company") << "beispiel"
                                    << ""
                                    << "OK" << QStringList{"Erika Muster, Beispiel AG"} << "3";
        QTest::newRow("Escape") << "meier"
                                << ""
                                << "Escape" << meiers << "";
        QTest::newRow("no match stays open")
            << "zzz"
            << ""
            << "Enter" << QStringList{"Kein Kontakt im Adressbuch enthält „zzz“."} << "";
        QTest::newRow("nothing typed")
            << ""
            << ""
            << "Enter"
            << QStringList{"Bitte einen Teil von Name, Firma, E-Mail-Adresse oder "
                           "Telefonnummer eingeben."}
            << "";
    }

    void searchDialog()
    {
        QFETCH(QString, typed);
        QFETCH(QString, keys);
        QFETCH(QString, exit);
        QFETCH(QStringList, listed);
        QFETCH(QString, chosen);

        FakeDirectory directory;
        directory.contacts = {
            contact("1", "Hans Meier", "Muster GmbH", "h.meier@privat.de"),
            contact("2", "H. Meier", "", "hans.meier@muster.de"),
            contact("3", "Erika Muster", "Beispiel AG"),
        };
        formKontakt d(directory);
        d.show();
        QVERIFY(QTest::qWaitForWindowExposed(&d));
        QCOMPARE(QApplication::focusWidget(), d.txtSuche);
        QTest::keyClicks(d.txtSuche, typed);
        const auto items = [&d] {
            QStringList out;
            for (int i = 0; i < d.lstKontakte->count(); ++i)
                out << d.lstKontakte->item(i)->text();
            return out;
        };
        QTRY_COMPARE(items(), listed);
        if (keys == "down")
            QTest::keyClick(d.txtSuche, Qt::Key_Down);

        if (exit == "Enter" || exit == "Escape") {
            QTest::keyClick(d.txtSuche, exit == "Enter" ? Qt::Key_Return : Qt::Key_Escape);
        } else if (exit == "OK") {
            QTest::mouseClick(d.cmdOK, Qt::LeftButton);
        } else {
            QListWidgetItem* last = d.lstKontakte->item(d.lstKontakte->count() - 1);
            const QPoint at = d.lstKontakte->visualItemRect(last).center();
            // As a mouse does it: a click, then the double click.
            QTest::mouseClick(d.lstKontakte->viewport(), Qt::LeftButton, {}, at);
            QTest::mouseDClick(d.lstKontakte->viewport(), Qt::LeftButton, {}, at);
        }
        QCOMPARE(d.choice() ? d.choice()->id : QString(), chosen);
        // Without a contact to take, only Escape closes it.
        QCOMPARE(d.isVisible(), chosen.isEmpty() && exit != "Escape");
        QCOMPARE(d.result(), chosen.isEmpty() ? QDialog::Rejected : QDialog::Accepted);
    }

    // Enter at once after typing takes from what the new text finds, even before the list
    // has caught up; a book that cannot be searched says so in the list.
    void searchDialogEdges()
    {
        FakeDirectory directory;
        directory.contacts = {contact("1", "Anna Roth"), contact("2", "Bernd Stein")};
        formKontakt d(directory);
        d.show();
        QTest::keyClicks(d.txtSuche, "stein");
        QTest::keyClick(d.txtSuche, Qt::Key_Return);
        QCOMPARE(d.choice() ? d.choice()->id : QString(), "2");

        struct Failing : FakeDirectory {
            QList<dup::Match> search(const QString&, int) override
            {
                throw act::ActError("unreachable");
            }
        } failing;
        formKontakt offline(failing);
        offline.txtSuche->setText("roth");
        offline.search();
        QCOMPARE(offline.lstKontakte->count(), 1);
        QCOMPARE(offline.lstKontakte->item(0)->text(), "Das Adressbuch ist nicht erreichbar.");
        QVERIFY(!offline.cmdOK->isEnabled());

        // More than fit: the first ones and a note.
        FakeDirectory many;
        for (int i = 0; i < formKontakt::Limit + 5; ++i)
            many.contacts << contact(QString::number(i), u"Meier %1"_s.arg(i));
        formKontakt full(many);
        full.txtSuche->setText("meier");
        full.search();
        QCOMPARE(full.lstKontakte->count(), formKontakt::Limit + 1);
        QCOMPARE(full.lstKontakte->item(formKontakt::Limit)->text(),
                 "Weitere Kontakte passen: bitte genauer suchen.");
    }

    // "Bearbeiten" with no current contact offers the search: a choice edits that contact, a
    // cancel writes nothing and says nothing. With a current contact it asks nothing.
    void editAndTheCurrentContact_data()
    {
        QTest::addColumn<QString>("clipboard");
        QTest::addColumn<bool>("current");
        QTest::addColumn<bool>("pick");
        QTest::addColumn<bool>("offered");
        QTest::addColumn<QString>("target"); // "byName", "other" or "" for none
        QTest::addColumn<QStringList>("messages");

        const QStringList none;
        QTest::newRow("none, picked") << Card << false << true << true << "byName" << none;
        QTest::newRow("none, cancelled") << Card << false << false << true << "" << none;
        QTest::newRow("none, nothing to file")
            << "" << false << true << false << ""
            << QStringList{message(msg::NoData, MessageStyle::Exclamation)};
        QTest::newRow("current, no question") << Card << true << true << false << "other" << none;
    }

    void editAndTheCurrentContact()
    {
        QFETCH(QString, clipboard);
        QFETCH(bool, current);
        QFETCH(bool, pick);
        QFETCH(bool, offered);
        QFETCH(QString, target);
        QFETCH(QStringList, messages);

        BookFixture f;
        if (!current)
            f.directory->forgetCurrent();
        formMain& w = f.started(clipboard);
        Dialogs dialogs;
        dialogs.onSearch = [pick](formKontakt* d) {
            // Not the book's last contact, which an edit would take without a choice.
            QTest::keyClicks(d->txtSuche, "privat");
            QTRY_COMPARE(d->lstKontakte->item(0)->text(),
                         "Hans Meier, Muster GmbH, h.meier@privat.de");
            QTest::keyClick(d->txtSuche, pick ? Qt::Key_Return : Qt::Key_Escape);
        };
        QTest::mouseClick(w.cmdBearbeitenInAct, Qt::LeftButton);
        QCOMPARE(dialogs.seen, offered ? QStringList{msg::NoCurrentContact} : QStringList{});
        QCOMPARE(f.log.messages, messages);
        QCOMPARE(f.asked.size(), 0);
        QCOMPARE(dialogs.prompts, target.isEmpty() ? 0 : 1);
        const qint64 into = target == "byName" ? f.byName : f.other;
        QCOMPARE(f.written, target.isEmpty() ? QList<qint64>{} : QList<qint64>{into});
        QCOMPARE(valueOf(f.book(), f.byName, EMail),
                 target == "byName" ? "hans.meier@muster.de" : "h.meier@privat.de");
        QCOMPARE(valueOf(f.book(), f.other, Kontakt),
                 target == "other" ? "Hans Meier" : "Erika Muster");
        QCOMPARE(f.book().contactIds().size(), 3);
    }
};

QTEST_MAIN(TestDuplicates)
#include "tst_duplicates.moc"
