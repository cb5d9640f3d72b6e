// The real main window under the offscreen platform: start-up, the clipboard fetch, the box's
// own analysis, the separator chooser, the transfer with its prompt and the update launch.
// Messages are taken from the message seam; dialogs are driven once their event loop runs.

#include "uitest.h"

#include "analysis/session.h"
#include "ui/formfertigabfrage.h"
#include "ui/formmain.h"

#include <QClipboard>
#include <QComboBox>
#include <QFile>
#include <QLabel>
#include <QLineEdit>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QWindow>

#include <algorithm>
#include <utility>

using namespace zf;
using namespace zf::ui;
using namespace zf::ui::test;

namespace {

// Line ends of both kinds, a full stop inside a line and one before a line end.
const QString Signature = "Muster . GmbH\r\nHans Meier\nMusterweg 12 . \n80331 München\r\n";
const QStringList SignatureRows{"Muster . GmbH=Firma", "Hans Meier=Kontakt", "Musterweg 12=Adresse",
                                "80331=PLZ",           "München=Ort",        "Deutschland=Land"};
const QString Empty = message(msg::ClipboardEmpty, StyleInformation);

void setClipboard(const QString& text)
{
    QGuiApplication::clipboard()->setText(text);
}

// The used rows as the window shows them: "value=field".
QStringList shownRows(const formMain& w)
{
    QStringList out;
    for (int row = 0; row < formMain::RowCount; ++row) {
        const QString value = w.txtWert[row]->text(), field = w.txtField[row]->currentText();
        if (!(value + field).isEmpty())
            out << value + '=' + field;
    }
    return out;
}

// Each analysis empties row 0 before filling it again: two changes per run once it is filled.
qsizetype row0Changes(const QSignalSpy& spy)
{
    return std::count_if(spy.begin(), spy.end(), [](const auto& args) { return args[0] == 0; });
}

struct Fixture {
    QTemporaryDir dir;
    MessageLog log;
    std::unique_ptr<formMain> window;

    // A book below a device file can be neither opened nor created.
    explicit Fixture(bool bookUsable = true)
        : window(std::make_unique<formMain>(
              MainOptions{dir.filePath("zettelfischer.ini"), dir.path(),
                          act::makeContactBookFactory(bookUsable ? dir.filePath("kontakte.sqlite")
                                                                 : "/dev/null/kontakte.sqlite")}))
    {
    }

    QStringList startUpMessages;

    // Shown and started with the clipboard given; the start-up's messages put aside.
    formMain& started(const QString& clipboard = {})
    {
        setClipboard(clipboard);
        window->show();
        if (!QTest::qWaitForWindowExposed(window.get()))
            qWarning("window not exposed");
        window->StartUp();
        startUpMessages = std::exchange(log.messages, {});
        return *window;
    }
};

} // namespace

class TestFormMain : public QObject {
    Q_OBJECT
private slots:
    void startUp_data()
    {
        QTest::addColumn<QString>("clipboard");
        QTest::addColumn<bool>("bookUsable");
        QTest::addColumn<QByteArray>("ini");
        QTest::addColumn<QStringList>("messages");
        QTest::addColumn<QStringList>("rows");

        // The field-list loading fetches once loudly; the start-up's own fetch is silent.
        QTest::newRow("empty, book")
            << "" << true << QByteArray() << QStringList{Empty} << QStringList{};
        QTest::newRow("text, no book")
            << Signature << false << QByteArray()
            << QStringList{message(msg::FieldsNotLoaded, StyleExclamation)} << SignatureRows;
        QTest::newRow("settings, book")
            << "80331 München\r\n"
            << true << QByteArray("[Config]\r\nStandardLand5PLZ=Musterland\r\nCacheFelder=1\r\n")
            << QStringList{} << QStringList{"80331=PLZ", "München=Ort", "Musterland=Land"};
    }

    void startUp()
    {
        QFETCH(QString, clipboard);
        QFETCH(bool, bookUsable);
        QFETCH(QByteArray, ini);
        QFETCH(QStringList, messages);
        QFETCH(QStringList, rows);

        Fixture f(bookUsable);
        QFile file(f.dir.filePath("zettelfischer.ini"));
        QVERIFY(file.open(QIODevice::WriteOnly) && file.write(ini) == ini.size());
        file.close();
        f.window->session().state.ChosenSeparator = ";";
        formMain& w = f.started(clipboard);
        QCOMPARE(w.windowTitle(), "Zettelfischer v.1.18");
        QCOMPARE(f.startUpMessages, messages);
        QCOMPARE(shownRows(w), rows);
        // Kept as fetched, dots included, line ends as CR LF: the separator chooser splits it.
        QCOMPARE(w.session().state.ClipboardText,
                 QString(clipboard).replace("\r\n", "\n").replace("\n", "\r\n"));
        QCOMPARE(w.session().state.ChosenSeparator, "");
        // Brought to the front once, not kept on top, and not hidden by either.
        QVERIFY(w.isVisible() && !w.windowFlags().testFlag(Qt::WindowStaysOnTopHint));
        QVERIFY(!w.windowHandle()->flags().testFlag(Qt::WindowStaysOnTopHint));
        // A field list loaded from the contact book goes to the cache when that is switched on.
        QVERIFY(file.open(QIODevice::ReadOnly));
        QCOMPARE(file.readAll().contains("[Felder]"), ini.contains("CacheFelder=1"));
    }

    void tabOrderAndPictures()
    {
        Fixture f;
        formMain& w = f.started();
        QStringList expected;
        for (QPushButton* b : {w.cmdGetClipboard, w.cmdNeuanlageInACT, w.cmdBearbeitenInAct,
                               w.cmdNeuerTrenner, w.cmdAlleFelder, w.cmdInfo, w.cmdUpdate}) {
            expected << b->objectName();
            QVERIFY2(!b->icon().pixmap(16, 16).isNull(), qPrintable(b->objectName()));
        }
        for (int row = 0; row < formMain::RowCount; ++row)
            expected << QString("txtWert_%1").arg(row) << QString("txtField_%1").arg(row);
        expected << "txtClipText";

        QStringList chain;
        QWidget* widget = w.cmdGetClipboard;
        for (int i = 0; i < 200 && chain.size() < expected.size(); ++i) {
            // A combo box's own line edit takes its place in the chain.
            QWidget* parent = widget->parentWidget();
            const QString name = (qobject_cast<QComboBox*>(parent) ? parent : widget)->objectName();
            if (expected.contains(name) && !chain.contains(name))
                chain << name;
            widget = widget->nextInFocusChain();
        }
        QCOMPARE(chain, expected);
    }

    void emptyFetchThenBoxEdits()
    {
        Fixture f;
        formMain& w = f.started();
        // Something from before, which an empty clipboard must leave alone.
        w.session().rows.setValue(0, "Alt");
        w.session().rows.SelectRowField(0, 25);
        setClipboard("     ");
        QTest::mouseClick(w.cmdGetClipboard, Qt::LeftButton);
        QCOMPARE(f.log.messages, QStringList{Empty});
        QCOMPARE(shownRows(w), QStringList{"Alt=Firma"});
        QCOMPARE(w.txtClipText->toPlainText(), "");

        // Pasting over the whole box: one analysis of the pasted text, none of what it writes.
        QSignalSpy spy(&w.session().rows, &FieldRows::valueChanged);
        setClipboard("Beispiel AG\nMusterweg 12\n");
        w.txtClipText->selectAll();
        w.txtClipText->paste();
        QCOMPARE(shownRows(w),
                 (QStringList{"Beispiel AG=Firma", "Musterweg 12=Adresse", "Deutschland=Land"}));
        QCOMPARE(row0Changes(spy), 2);
        QCOMPARE(w.session().state.ClipboardText, "     "); // only a fetch sets it

        // Typing at the end of the first line re-analyses at once, the caret staying put.
        spy.clear();
        QTextCursor c = w.txtClipText->textCursor();
        c.setPosition(11);
        w.txtClipText->setTextCursor(c);
        QTest::keyClicks(w.txtClipText, "X");
        QCOMPARE(w.txtWert[0]->text(), "Beispiel AGX");
        QCOMPARE(row0Changes(spy), 2);
        QCOMPARE(w.txtClipText->textCursor().position(), 12);
        QVERIFY(!w.AnalysisRunning());
    }

    void fieldListsFollowRows()
    {
        Fixture f;
        formMain& w = f.started();
        FieldRows& rows = w.session().rows;
        // Filling the lists chooses nothing by itself.
        for (QComboBox* field : w.txtField)
            QVERIFY(field->currentIndex() == -1 && field->currentText().isEmpty());

        rows.SelectRowField(4, 200);
        rows.SelectRowField(4, 9999); // no such entry: the choice stays
        QCOMPARE(w.txtField[4]->currentText(), "eMail");

        // The user's choice and typing reach the rows.
        const int fax = w.txtField[5]->findText("Fax");
        w.txtField[5]->setCurrentIndex(fax);
        emit w.txtField[5]->activated(fax);
        QCOMPARE(rows.fieldId(5), 36);
        QTest::keyClicks(w.txtWert[5], "0761 1");
        QCOMPARE(rows.value(5), "0761 1");

        // A new entry sorted in front keeps every chosen field on its entry.
        rows.addField("Aaa", 500);
        QCOMPARE(w.txtField[4]->currentText() + w.txtField[5]->currentText(), "eMailFax");
        QCOMPARE(w.txtField[6]->currentText(), "");
        rows.clearRows();
        QCOMPARE(w.txtField[5]->currentText() + w.txtWert[5]->text(), "");
    }

    void typedFieldName_data()
    {
        QTest::addColumn<QString>("typed");
        QTest::addColumn<int>("fieldId"); // -1 = none
        QTest::addColumn<QString>("shown");

        QTest::newRow("other case") << "ort" << 30 << "Ort";
        QTest::newRow("completed") << "Vorn" << 78 << "Vorname";
        QTest::newRow("no entry keeps the choice") << "Quatsch" << 32 << "PLZ";
        QTest::newRow("emptied") << "" << -1 << "";
    }

    void typedFieldName()
    {
        QFETCH(QString, typed);
        QFETCH(int, fieldId);
        QFETCH(QString, shown);

        Fixture f;
        formMain& w = f.started();
        w.session().rows.SelectRowField(2, 32);
        QComboBox* field = w.txtField[2];
        field->setFocus();
        field->lineEdit()->selectAll();
        QTest::keyClick(field->lineEdit(), Qt::Key_Delete);
        QTest::keyClicks(field->lineEdit(), typed);
        w.txtWert[3]->setFocus();
        QCOMPARE(field->currentText(), shown);
        QCOMPARE(w.session().rows.fieldId(2).value_or(-1), fieldId);
    }

    // Opened by the button, or by an analysis that finds no separator.
    void separatorChooser_data()
    {
        QTest::addColumn<bool>("button");
        QTest::addColumn<QString>("exit"); // "mark" a comma, "continue", "close" or "none" shown
        QTest::addColumn<QString>("clipboard");
        QTest::addColumn<QStringList>("messages");
        QTest::addColumn<QString>("box");

        const QString twoLines = "Muster GmbH, Hans Meier . \r\nMusterweg 12";
        const QString unchanged = "Muster GmbH, Hans Meier\nMusterweg 12\n";
        const QStringList none, noSeparator{message(msg::NoSeparator, StyleExclamation)};
        QTest::newRow("button, comma")
            << true << "mark" << twoLines << none << "Muster GmbH\nHans Meier\nMusterweg 12\n";
        QTest::newRow("button, continue") << true << "continue" << twoLines << none << unchanged;
        QTest::newRow("button, close box") << true << "close" << twoLines << none << unchanged;
        QTest::newRow("button, blank box")
            << true << "none" << QString("   ")
            << QStringList{message(msg::NoData, StyleExclamation)} << "";
        QTest::newRow("analysis, comma") << false << "mark" << QString("Muster GmbH, Musterweg 12")
                                         << noSeparator << "Muster GmbH\nMusterweg 12\n";
        QTest::newRow("analysis, long line, continue")
            << false << "continue" << QString(1024 * 1024, u'x') << noSeparator << "";
    }

    void separatorChooser()
    {
        QFETCH(bool, button);
        QFETCH(QString, exit);
        QFETCH(QString, clipboard);
        QFETCH(QStringList, messages);
        QFETCH(QString, box);

        Fixture f;
        formMain& w = f.started(button ? clipboard : QString());
        setClipboard(clipboard);
        QSignalSpy spy(&w.session().rows, &FieldRows::valueChanged);
        bool opened = false;
        whenModal<formTrenner>(&w, [&](formTrenner* d) {
            if (!(opened = d != nullptr))
                return;
            // The raw clipboard text, not the main window's box.
            QCOMPARE(d->txtClipText->toPlainText(), QString(clipboard).replace("\r\n", "\n"));
            if (exit == "mark")
                takeMarked(*d, 11);
            if (exit == "close")
                d->close();
            else
                QTest::mouseClick(d->cmdWeiter, Qt::LeftButton);
        });
        QTest::mouseClick(button ? w.cmdNeuerTrenner : w.cmdGetClipboard, Qt::LeftButton);
        QCOMPARE(opened, exit != "none");
        const QString separator = exit == "mark" ? "," : "";
        QCOMPARE(w.session().state.ChosenSeparator, separator);
        QCOMPARE(w.txtClipText->toPlainText(), box);
        QCOMPARE(f.log.messages, messages);
        if (button) // fetched and analysed again only once a character was chosen
            QCOMPARE(spy.isEmpty(), separator.isEmpty());

        if (!separator.isEmpty()) {
            // The choice holds for later fetches: no chooser, cut at the comma.
            setClipboard("A, B");
            whenModal<QDialog>(&w, [](QDialog*) {});
            QTest::mouseClick(w.cmdGetClipboard, Qt::LeftButton);
            QCOMPARE(w.txtClipText->toPlainText(), "A\nB\n");
        }
    }

    void completionPrompt_data()
    {
        QTest::addColumn<bool>("create");
        QTest::addColumn<QString>("exit"); // the prompt's button, or "close"
        QTest::addColumn<int>("choice");

        QTest::newRow("created, back") << true << "cmdNeueRunde" << 2;
        QTest::newRow("created, leave") << true << "cmdRaus" << 1;
        QTest::newRow("edited, close box") << false << "close" << 0;
    }

    void completionPrompt()
    {
        QFETCH(bool, create);
        QFETCH(QString, exit);
        QFETCH(int, choice);

        Fixture f;
        formMain& w = f.started(Signature);
        if (!create) {
            // Something to edit: a contact filed first, which becomes the current one.
            whenModal<formFertigAbfrage>(&w, [](formFertigAbfrage*) {});
            QTest::mouseClick(w.cmdNeuanlageInACT, Qt::LeftButton);
        }
        QString label;
        bool onTop = false;
        whenModal<formFertigAbfrage>(&w, [&](formFertigAbfrage* p) {
            QVERIFY(p);
            label = p->Label1->text();
            onTop = p->windowFlags().testFlag(Qt::WindowStaysOnTopHint);
            if (exit == "close")
                p->close();
            else
                QTest::mouseClick(p->findChild<QPushButton*>(exit), Qt::LeftButton);
        });
        QTest::mouseClick(create ? w.cmdNeuanlageInACT : w.cmdBearbeitenInAct, Qt::LeftButton);
        QCOMPARE(f.log.messages, QStringList{});
        QCOMPARE(label, create ? "Kontakt wurde erfolgreich angelegt."
                               : "Kontakt wurde erfolgreich bearbeitet.");
        QVERIFY(onTop);
        QCOMPARE(int(w.contactLink().CompletionChoice()), choice);
        // Leaving closes the window; going back keeps every row as it was.
        QCOMPARE(w.isVisible(), choice != 1);
        QCOMPARE(shownRows(w), SignatureRows);
    }

    void update_data()
    {
        QTest::addColumn<int>("answer");
        QTest::addColumn<QString>("program"); // "", "folder", "plain" (not executable), "script"
        QTest::addColumn<QStringList>("messages");
        QTest::addColumn<bool>("started");

        const QString ask = message(msg::UpdateConfirm, StyleQuestion);
        const QString missing = message(msg::UpdateMissing, StyleExclamation);
        const QString failed = message(msg::UpdateFailed, StyleExclamation);
        QTest::newRow("no") << int(AnswerNo) << "script" << QStringList{ask} << false;
        QTest::newRow("missing") << int(AnswerYes) << "" << QStringList{ask, missing} << false;
        QTest::newRow("folder") << int(AnswerYes) << "folder" << QStringList{ask, missing} << false;
        QTest::newRow("not startable")
            << int(AnswerYes) << "plain" << QStringList{ask, failed} << false;
        QTest::newRow("started") << int(AnswerYes) << "script" << QStringList{ask} << true;
    }

    void update()
    {
        QFETCH(int, answer);
        QFETCH(QString, program);
        QFETCH(QStringList, messages);
        QFETCH(bool, started);

        Fixture f;
        formMain& w = f.started();
        f.log.answers = {answer};
        QFile script(f.dir.filePath("update.exe"));
        if (program == "folder") {
            QVERIFY(QDir(f.dir.path()).mkdir("update.exe"));
        } else if (!program.isEmpty()) {
            QVERIFY(script.open(QIODevice::WriteOnly));
            script.write("#!/bin/sh\nprintf '%s|' \"$#\" \"$1\" \"$2\" > \"$0.args\"\n");
            script.close();
            if (program == "script")
                script.setPermissions(script.permissions() | QFile::ExeOwner);
        }

        QTest::mouseClick(w.cmdUpdate, Qt::LeftButton);
        QCOMPARE(f.log.messages, messages);
        QCOMPARE(w.isVisible(), !started);
        // The update program runs on its own; wait for what it recorded.
        const auto recorded = [&script] {
            QFile r(script.fileName() + ".args");
            return r.open(QIODevice::ReadOnly) ? r.readAll() : QByteArray("nothing");
        };
        QTRY_COMPARE_WITH_TIMEOUT(recorded(), QByteArray(started ? "2||small|" : "nothing"), 10000);
    }
};

QTEST_MAIN(TestFormMain)
#include "tst_formmain.moc"
