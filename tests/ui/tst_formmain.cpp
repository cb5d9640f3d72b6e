// The real main window under the offscreen platform: start-up, the clipboard fetch, the box's
// own analysis, the separator chooser, the completion prompt and the update launch.

#include "uitest.h"

#include "act/messages.h"
#include "analysis/messages.h"
#include "books/sqlite/sqlitebook.h"
#include "ui/formfertigabfrage.h"
#include "ui/formmain.h"
#include "ui/windowhelpers.h"

#include <QClipboard>
#include <QComboBox>
#include <QFile>
#include <QFontInfo>
#include <QLabel>
#include <QLineEdit>
#include <QProcess>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QWindow>

#include <utility>

using namespace zf;
using namespace zf::ui;
using namespace zf::ui::test;

namespace {

// Line ends of both kinds, a full stop inside a line and one before a line end.
const QString Signature = "Muster . GmbH\r\nHans Meier\nMusterweg 12 . \n80331 München\r\n";
const QStringList SignatureRows{"Muster . GmbH=Firma", "Hans Meier=Kontakt", "Musterweg 12=Adresse",
                                "80331=PLZ",           "München=Ort",        "Deutschland=Land"};
const QString Empty = message(msg::ClipboardEmpty, MessageStyle::Information);

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

struct Fixture {
    QTemporaryDir dir;
    MessageLog log;
    std::unique_ptr<formMain> window;
    QStringList startUpMessages;

    // Shown and started with the clipboard given; the start-up's messages put aside. A book
    // below a device file can be neither opened nor created.
    formMain& started(const QString& clipboard = {}, bool bookUsable = true)
    {
        window = std::make_unique<formMain>(
            MainOptions{dir.filePath("zettelfischer.ini"), dir.path(),
                        act::makeContactBookFactory(bookUsable ? dir.filePath("kontakte.sqlite")
                                                               : "/dev/null/kontakte.sqlite"),
                        log.function()});
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
            << QStringList{message(msg::FieldsNotLoaded, MessageStyle::Exclamation)}
            << SignatureRows;
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

        Fixture f;
        QFile file(f.dir.filePath("zettelfischer.ini"));
        QVERIFY(file.open(QIODevice::WriteOnly) && file.write(ini) == ini.size());
        file.close();
        formMain& w = f.started(clipboard, bookUsable);
        QCOMPARE(w.windowTitle(), "Zettelfischer v.1.18");
        QCOMPARE(f.startUpMessages, messages);
        QCOMPARE(shownRows(w), rows);
        // Kept as fetched, dots included, line ends as CR LF: the separator chooser splits it.
        QCOMPARE(w.session().state.ClipboardText,
                 QString(clipboard).replace("\r\n", "\n").replace("\n", "\r\n"));
        // Brought to the front once, not kept on top, and not hidden by either.
        QVERIFY(w.isVisible() && !w.windowHandle()->flags().testFlag(Qt::WindowStaysOnTopHint));
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
            expected << w.txtWert[row]->objectName() << w.txtField[row]->objectName();
        expected << "txtClipText";

        // Once round the chain; a combo box's own line edit stands for the box.
        QStringList chain{expected[0]};
        for (QWidget* x = w.cmdGetClipboard->nextInFocusChain(); x != w.cmdGetClipboard;
             x = x->nextInFocusChain()) {
            QWidget* parent = x->parentWidget();
            const QString name = (qobject_cast<QComboBox*>(parent) ? parent : x)->objectName();
            if (expected.contains(name) && !chain.contains(name))
                chain << name;
        }
        QCOMPARE(chain, expected);
    }

    // Tab in the clipboard box moves on along the tab order and leaves the text alone, so
    // nothing is analysed again; Shift+Tab goes back.
    void tabLeavesClipboardBox()
    {
        Fixture f;
        formMain& w = f.started(Signature);
        const QString text = w.txtClipText->toPlainText();
        QSignalSpy spy(&w.session().rows, &FieldRows::valueChanged);
        w.txtClipText->setFocus();
        QTest::keyClick(w.txtClipText, Qt::Key_Tab);
        QCOMPARE(QApplication::focusWidget(), w.cmdGetClipboard);
        w.txtClipText->setFocus();
        QTest::keyClick(w.txtClipText, Qt::Key_Backtab, Qt::ShiftModifier);
        QCOMPARE(QApplication::focusWidget(), w.txtField[15]);
        QCOMPARE(w.txtClipText->toPlainText(), text);
        QVERIFY(spy.isEmpty());
    }

    // Enter and Return press the focused button, as Space does; in a text box they press none.
    void enterPressesFocusedButton_data()
    {
        QTest::addColumn<QString>("focus");
        QTest::addColumn<int>("key");
        QTest::addColumn<bool>("pressed");
        QTest::newRow("Return") << "cmdNeuerTrenner" << int(Qt::Key_Return) << true;
        QTest::newRow("Enter on the keypad") << "cmdNeuerTrenner" << int(Qt::Key_Enter) << true;
        QTest::newRow("Space") << "cmdNeuerTrenner" << int(Qt::Key_Space) << true;
        QTest::newRow("Return in a value box") << "txtWert_0" << int(Qt::Key_Return) << false;
    }
    void enterPressesFocusedButton()
    {
        QFETCH(QString, focus);
        QFETCH(int, key);
        QFETCH(bool, pressed);
        Fixture f;
        formMain& w = f.started();
        QWidget* target = w.findChild<QWidget*>(focus);
        QVERIFY(target);
        target->setFocus();
        // "Neuen Trenner wählen" with an empty box says so and opens nothing.
        QTest::keyClick(target, Qt::Key(key));
        QCOMPARE(f.log.messages, pressed
                                     ? QStringList{message(msg::NoData, MessageStyle::Exclamation)}
                                     : QStringList{});
    }

    // Every caption fits its button; the two bold buttons side by side share one font, at the
    // given size in the font the layout was made for.
    void buttonCaptions()
    {
        Fixture f;
        formMain& w = f.started();
        for (const QPushButton* b : w.findChildren<QPushButton*>())
            QVERIFY2(ButtonWidthNeeded(b, b->font()) <= b->width(), qPrintable(b->objectName()));
        const QFont pair = w.cmdNeuanlageInACT->font();
        QCOMPARE(w.cmdBearbeitenInAct->font(), pair);
        QVERIFY(pair.bold());
        QCOMPARE(QFontInfo(pair).family(), "Liberation Sans");
        QCOMPARE(pair.pointSizeF(), 8.25);
        QCOMPARE(w.cmdGetClipboard->font().pointSizeF(), 9.75);
    }

    void emptyFetchThenBoxEdits()
    {
        Fixture f;
        formMain& w = f.started(Signature);
        // An empty clipboard leaves the rows alone; only the box is emptied.
        setClipboard("     ");
        QTest::mouseClick(w.cmdGetClipboard, Qt::LeftButton);
        QCOMPARE(f.log.messages, QStringList{Empty});
        QCOMPARE(shownRows(w), SignatureRows);
        QCOMPARE(w.txtClipText->toPlainText(), "");

        // Pasting over the whole box analyses the pasted text; rows it does not fill are emptied.
        setClipboard("Beispiel AG\nMusterweg 12\n");
        w.txtClipText->selectAll();
        w.txtClipText->paste();
        QCOMPARE(shownRows(w),
                 (QStringList{"Beispiel AG=Firma", "Musterweg 12=Adresse", "Deutschland=Land"}));
        QCOMPARE(w.session().state.ClipboardText, "     "); // only a fetch sets it

        // Typing at the end of the first line re-analyses at once, the caret staying put. One
        // analysis, none of the text it writes back: row 0 emptied once and filled once.
        QSignalSpy spy(&w.session().rows, &FieldRows::valueChanged);
        QTextCursor c = w.txtClipText->textCursor();
        c.setPosition(11);
        w.txtClipText->setTextCursor(c);
        QTest::keyClicks(w.txtClipText, "X");
        QCOMPARE(w.txtWert[0]->text(), "Beispiel AGX");
        QCOMPARE(spy.count({0}), 2);
        QCOMPARE(w.txtClipText->textCursor().position(), 12);
        QVERIFY(!w.AnalysisRunning());
    }

    void fieldListsFollowRows()
    {
        Fixture f;
        formMain& w = f.started();
        FieldRows& rows = w.session().rows;
        rows.SelectRowField(4, 200);
        // The user's choice and typing reach the rows.
        const int fax = w.txtField[5]->findText("Fax");
        w.txtField[5]->setCurrentIndex(fax);
        emit w.txtField[5]->activated(fax);
        QCOMPARE(rows.fieldId(5), 36);
        QTest::keyClicks(w.txtWert[5], "0761 1");
        QCOMPARE(rows.value(5), "0761 1");
        // A new entry sorted in front keeps every chosen field on its entry.
        rows.addField("Aaa", 500);
        QCOMPARE(shownRows(w), (QStringList{"=eMail", "0761 1=Fax"}));
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
        QTest::addColumn<QString>("exit"); // "mark" a comma, "continue" or "none" shown
        QTest::addColumn<QString>("clipboard");
        QTest::addColumn<QStringList>("messages");
        QTest::addColumn<QString>("box");

        const QString twoLines = "Muster GmbH, Hans Meier . \r\nMusterweg 12";
        const QStringList none, noSeparator{message(msg::NoSeparator, MessageStyle::Exclamation)};
        QTest::newRow("button, comma")
            << true << "mark" << twoLines << none << "Muster GmbH\nHans Meier\nMusterweg 12\n";
        QTest::newRow("button, continue")
            << true << "continue" << twoLines << none << "Muster GmbH, Hans Meier\nMusterweg 12\n";
        QTest::newRow("button, blank box")
            << true << "none" << QString("   ")
            << QStringList{message(msg::NoData, MessageStyle::Exclamation)} << "";
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
        QTest::addColumn<QString>("exit"); // the prompt's button, or its close box
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
        whenModal<formFertigAbfrage>(&w, [&](formFertigAbfrage* p) {
            QVERIFY(p && p->windowFlags().testFlag(Qt::WindowStaysOnTopHint));
            label = p->Label1->text();
            // Without such a button the prompt is left to be closed as by its close box.
            if (QPushButton* b = p->findChild<QPushButton*>(exit))
                QTest::mouseClick(b, Qt::LeftButton);
        });
        QTest::mouseClick(create ? w.cmdNeuanlageInACT : w.cmdBearbeitenInAct, Qt::LeftButton);
        QCOMPARE(f.log.messages, QStringList{});
        QCOMPARE(label, create ? "Kontakt wurde erfolgreich angelegt."
                               : "Kontakt wurde erfolgreich bearbeitet.");
        QCOMPARE(int(w.contactLink().CompletionChoice()), choice);
        // Leaving closes the window; going back keeps every row as it was.
        QCOMPARE(w.isVisible(), choice != 1);
        QCOMPARE(shownRows(w), SignatureRows);
    }

    void update_data()
    {
        QTest::addColumn<bool>("yes");
        QTest::addColumn<QString>("program");   // "folder", "plain" (not executable) or "script"
        QTest::addColumn<QStringList>("after"); // messages after the question
        QTest::addColumn<bool>("started");

        const QStringList none, missing{message(msg::UpdateMissing, MessageStyle::Exclamation)},
            failed{message(msg::UpdateFailed, MessageStyle::Exclamation)};
        QTest::newRow("no") << false << "script" << none << false;
        QTest::newRow("folder") << true << "folder" << missing << false;
        QTest::newRow("not startable") << true << "plain" << failed << false;
        QTest::newRow("started") << true << "script" << none << true;
    }

    void update()
    {
        QFETCH(bool, yes);
        QFETCH(QString, program);
        QFETCH(QStringList, after);
        QFETCH(bool, started);

        Fixture f;
        formMain& w = f.started();
        f.log.answers = {yes ? MessageAnswer::Yes : MessageAnswer::No};
        // The script appends its argument count and first two arguments to "args" beside it.
        const QByteArray recorder =
            "#!/bin/sh\nprintf '%s|' \"$#\" \"$1\" \"$2\" >> \"$(dirname \"$0\")/args\"\n";
        const auto writeScript = [&recorder](const QString& path, bool executable) {
            QFile script(path);
            QVERIFY(script.open(QIODevice::WriteOnly) && script.write(recorder) == recorder.size());
            if (executable)
                QVERIFY(script.setPermissions(script.permissions() | QFile::ExeOwner));
        };
        if (program == "folder")
            QVERIFY(QDir(f.dir.path()).mkdir("update.exe"));
        else
            writeScript(f.dir.filePath("update.exe"), program == "script");

        QTest::mouseClick(w.cmdUpdate, Qt::LeftButton);
        QCOMPARE(f.log.messages,
                 QStringList{message(msg::UpdateConfirm, MessageStyle::Question)} + after);
        QCOMPARE(w.isVisible(), !started);
        // The update program runs on its own. Where none may start, a stand-in started now
        // marks the end of the wait: an update program started before it shows up as well.
        if (!started) {
            writeScript(f.dir.filePath("danach.sh"), true);
            QVERIFY(QProcess::startDetached(f.dir.filePath("danach.sh"), {"", "danach"}));
        }
        const auto recorded = [&f] {
            QFile r(f.dir.filePath("args"));
            return r.open(QIODevice::ReadOnly) ? r.readAll() : QByteArray();
        };
        QTRY_COMPARE_WITH_TIMEOUT(recorded(), QByteArray(started ? "2||small|" : "2||danach|"),
                                  10000);
    }
};

QTEST_MAIN(TestFormMain)
#include "tst_formmain.moc"
