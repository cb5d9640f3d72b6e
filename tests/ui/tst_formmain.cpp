// The real main window under the offscreen platform: start-up, the clipboard fetch, the box's
// own analysis, the separator chooser, the transfer with its prompt and the update launch.
// Messages are taken from the message seam; dialogs are driven once their event loop runs.

#include "uitest.h"

#include "analysis/session.h"
#include "ui/formfertigabfrage.h"
#include "ui/formmain.h"
#include "ui/formtrenner.h"

#include <QClipboard>
#include <QComboBox>
#include <QElapsedTimer>
#include <QFile>
#include <QImage>
#include <QLabel>
#include <QLineEdit>
#include <QMimeData>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTextCursor>
#include <QtTest>

using namespace zf;
using namespace zf::ui;
using namespace zf::ui::test;

namespace {

const QString Signature = "Muster GmbH\r\nHerr Hans Meier\r\nMusterweg 12 . \r\n80331 München\r\n"
                          "Tel. 089 123456\r\nhans.meier@muster.de\r\n";
const QStringList SignatureRows{"Muster GmbH=Firma",
                                "Herr Hans Meier=Kontakt",
                                "Musterweg 12=Adresse",
                                "80331=PLZ",
                                "München=Ort",
                                "089123456=Telefon",
                                "hans.meier@muster.de=eMail",
                                "Deutschland=Land"};
const QString Empty = message(msg::ClipboardEmpty, StyleInformation);
const QString NoData = message(msg::NoData, StyleExclamation);

void setClipboard(const QString& text)
{
    QGuiApplication::clipboard()->setText(text);
}

// The used rows as the window shows them: "value=field".
QStringList shownRows(const formMain& w)
{
    QStringList out;
    for (int row = 0; row < formMain::RowCount; ++row) {
        const QString value = w.txtWert[row]->text();
        const QString field = w.txtField[row]->currentText();
        if (!value.isEmpty() || !field.isEmpty())
            out << value + '=' + field;
    }
    return out;
}

// Each analysis empties row 0 before filling it again: two changes per run once it is filled.
int row0Changes(const QSignalSpy& spy)
{
    int n = 0;
    for (const QList<QVariant>& args : spy)
        n += args.at(0).toInt() == 0;
    return n;
}

struct Fixture {
    QTemporaryDir dir;
    MessageLog log;
    std::unique_ptr<formMain> window;

    explicit Fixture(bool bookUsable = true)
    {
        QString book = dir.filePath("kontakte.sqlite");
        if (!bookUsable) {
            // A book inside a plain file can be neither opened nor created.
            QFile blocker(dir.filePath("datei"));
            blocker.open(QIODevice::WriteOnly);
            book = dir.filePath("datei/kontakte.sqlite");
        }
        window = std::make_unique<formMain>(MainOptions{
            dir.filePath("zettelfischer.ini"), dir.path(), act::makeContactBookFactory(book)});
    }
    formMain& w() { return *window; }
};

} // namespace

class TestFormMain : public QObject {
    Q_OBJECT
private slots:
    void init() { QGuiApplication::clipboard()->clear(); }

    void startUp_data();
    void startUp();
    void tabOrderAndPictures();
    void settingsAtStartUp();
    void fetch_data();
    void fetch();
    void largeClipboard();
    void boxEditsAnalyse();
    void typingAfterEmptyFetch();
    void fieldListsFollowRows();
    void typedFieldName_data();
    void typedFieldName();
    void noData_data();
    void noData();
    void separatorChooserCycle();
    void separatorChooserWithoutChoice();
    void analysisOpensChooser_data();
    void analysisOpensChooser();
    void completionPrompt_data();
    void completionPrompt();
    void update_data();
    void update();
};

void TestFormMain::startUp_data()
{
    QTest::addColumn<QString>("clipboard");
    QTest::addColumn<bool>("bookUsable");
    QTest::addColumn<QStringList>("messages");
    QTest::addColumn<QStringList>("rows");

    const QString fieldsFailed = message(msg::FieldsNotLoaded, StyleExclamation);
    // The field-list loading fetches once loudly; the start-up's own fetch is silent.
    QTest::newRow("text, book") << Signature << true << QStringList{} << SignatureRows;
    QTest::newRow("empty, book") << "" << true << QStringList{Empty} << QStringList{};
    QTest::newRow("text, no book")
        << Signature << false << QStringList{fieldsFailed} << SignatureRows;
    QTest::newRow("empty, no book") << "" << false << QStringList{fieldsFailed} << QStringList{};
}

void TestFormMain::startUp()
{
    QFETCH(QString, clipboard);
    QFETCH(bool, bookUsable);
    QFETCH(QStringList, messages);
    QFETCH(QStringList, rows);

    setClipboard(clipboard);
    Fixture f(bookUsable);
    f.w().session().state.ChosenSeparator = ";";
    f.w().StartUp();
    QCOMPARE(f.w().windowTitle(), "Zettelfischer v.1.18");
    QCOMPARE(f.log.messages, messages);
    QCOMPARE(shownRows(f.w()), rows);
    QCOMPARE(f.w().session().state.ChosenSeparator, "");
    QCOMPARE(f.w().txtField[0]->count(), 20);
    QVERIFY(!f.w().AnalysisRunning());
    // Brought to the front once, not kept on top.
    QVERIFY(!f.w().windowFlags().testFlag(Qt::WindowStaysOnTopHint));
}

void TestFormMain::tabOrderAndPictures()
{
    Fixture f;
    formMain& w = f.w();
    w.StartUp();
    QStringList expected{"cmdGetClipboard", "cmdNeuanlageInACT", "cmdBearbeitenInAct",
                         "cmdNeuerTrenner", "cmdAlleFelder",     "cmdInfo",
                         "cmdUpdate"};
    for (int row = 0; row < formMain::RowCount; ++row)
        expected << QString("txtWert_%1").arg(row) << QString("txtField_%1").arg(row);
    expected << "txtClipText";

    QStringList chain;
    QWidget* widget = w.cmdGetClipboard;
    do {
        // A combo box's own line edit takes its place in the chain.
        QWidget* named =
            qobject_cast<QComboBox*>(widget->parentWidget()) ? widget->parentWidget() : widget;
        if (widget->focusPolicy() & Qt::TabFocus && expected.contains(named->objectName()) &&
            !chain.contains(named->objectName()))
            chain << named->objectName();
        widget = widget->nextInFocusChain();
    } while (widget != w.cmdGetClipboard);
    QCOMPARE(chain, expected);

    for (QPushButton* b : {w.cmdGetClipboard, w.cmdNeuanlageInACT, w.cmdBearbeitenInAct,
                           w.cmdNeuerTrenner, w.cmdAlleFelder, w.cmdInfo, w.cmdUpdate}) {
        // The pictures come from the program's own resources.
        QVERIFY2(!b->icon().pixmap(16, 16).isNull(), qPrintable(b->objectName()));
    }
}

void TestFormMain::settingsAtStartUp()
{
    Fixture f;
    QFile ini(f.dir.filePath("zettelfischer.ini"));
    QVERIFY(ini.open(QIODevice::WriteOnly));
    ini.write("[Config]\r\nStandardLand5PLZ=Musterland\r\nCacheFelder=1\r\n");
    ini.close();
    setClipboard("Muster GmbH\r\n80331 München\r\n");
    f.w().StartUp();
    QCOMPARE(shownRows(f.w()),
             (QStringList{"Muster GmbH=Firma", "80331=PLZ", "München=Ort", "Musterland=Land"}));
    // The field list loaded from the contact book went to the cache.
    QVERIFY(ini.open(QIODevice::ReadOnly));
    const QByteArray written = ini.readAll();
    QVERIFY2(written.contains("[Felder]") && written.contains("Zeile1="), written.constData());
}

void TestFormMain::fetch_data()
{
    QTest::addColumn<int>("kind"); // 0 text, 1 image only
    QTest::addColumn<QString>("clipboard");
    QTest::addColumn<QStringList>("messages");
    QTest::addColumn<QStringList>("rows");
    QTest::addColumn<QString>("box");

    const QStringList before{"Alt=Firma"};
    QTest::newRow("signature") << 0 << Signature << QStringList{} << SignatureRows
                               << "Muster GmbH\nHerr Hans Meier\nMusterweg 12\n80331 München\n"
                                  "Tel. 089 123456\nhans.meier@muster.de\n";
    QTest::newRow("empty") << 0 << "" << QStringList{Empty} << before << "";
    QTest::newRow("spaces only") << 0 << "     " << QStringList{Empty} << before << "";
    QTest::newRow("image only") << 1 << "" << QStringList{Empty} << before << "";
    // Only blanks count as empty: a tab is a separator; no lines, only the default country.
    QTest::newRow("tab and spaces")
        << 0 << "  \t  " << QStringList{} << QStringList{"Deutschland=Land"} << "";
    QTest::newRow("line feeds become CR LF")
        << 0 << "Muster . GmbH\nMusterweg 12 . \n"
        << QStringList{}
        << QStringList{"Muster . GmbH=Firma", "Musterweg 12=Adresse", "Deutschland=Land"}
        << "Muster . GmbH\nMusterweg 12\n";
    QTest::newRow("dot in the middle stays")
        << 0 << "Muster . GmbH\r\nMusterweg 12 . \r\n"
        << QStringList{}
        << QStringList{"Muster . GmbH=Firma", "Musterweg 12=Adresse", "Deutschland=Land"}
        << "Muster . GmbH\nMusterweg 12\n";
}

void TestFormMain::fetch()
{
    QFETCH(int, kind);
    QFETCH(QString, clipboard);
    QFETCH(QStringList, messages);
    QFETCH(QStringList, rows);
    QFETCH(QString, box);

    Fixture f;
    formMain& w = f.w();
    w.StartUp();
    // Something from before, which an empty clipboard must leave alone.
    w.session().rows.setValue(0, "Alt");
    w.session().rows.SelectRowField(0, 25);
    f.log.messages.clear();

    if (kind == 1) {
        auto* data = new QMimeData;
        data->setImageData(QImage(8, 8, QImage::Format_RGB32));
        QGuiApplication::clipboard()->setMimeData(data);
    } else {
        setClipboard(clipboard);
    }
    QTest::mouseClick(w.cmdGetClipboard, Qt::LeftButton);
    QCOMPARE(f.log.messages, messages);
    QCOMPARE(shownRows(w), rows);
    QCOMPARE(w.txtClipText->toPlainText(), box);
    // Kept as fetched, line breaks as CR LF: the separator chooser splits this text.
    const QString raw = QString(clipboard).replace("\n", "\r\n").replace("\r\r\n", "\r\n");
    QCOMPARE(w.session().state.ClipboardText, raw);
    QVERIFY(!w.AnalysisRunning());
}

void TestFormMain::largeClipboard()
{
    Fixture f;
    formMain& w = f.w();
    w.StartUp();
    f.log.messages.clear();
    QString lines;
    for (int i = 0; lines.size() < 1024 * 1024; ++i)
        lines += QString("Zeile %1 Musterweg %1\r\n").arg(i);
    QString oneLine(1024 * 1024, u'x');

    QElapsedTimer timer;
    timer.start();
    setClipboard(lines);
    QTest::mouseClick(w.cmdGetClipboard, Qt::LeftButton);
    QCOMPARE(f.log.messages, QStringList{});
    QVERIFY(w.txtClipText->toPlainText().startsWith("Zeile 0 Musterweg 0\nZeile 1 "));

    // One long line has no separator: the message, then the chooser, closed without a choice.
    setClipboard(oneLine);
    bool chooserShown = false;
    whenModal<formTrenner>(&w, [&](formTrenner* d) { chooserShown = d != nullptr; });
    QTest::mouseClick(w.cmdGetClipboard, Qt::LeftButton);
    QVERIFY(chooserShown);
    QCOMPARE(f.log.messages, QStringList{message(msg::NoSeparator, StyleExclamation)});
    QCOMPARE(shownRows(w), QStringList{});
    QVERIFY2(timer.elapsed() < 30000, qPrintable(QString::number(timer.elapsed())));
    QVERIFY(!w.AnalysisRunning());
}

void TestFormMain::boxEditsAnalyse()
{
    Fixture f;
    formMain& w = f.w();
    setClipboard(Signature);
    w.StartUp();
    QSignalSpy spy(&w.session().rows, &FieldRows::valueChanged);

    // Pasting over the whole box: one analysis of the pasted text, none of what it writes back.
    setClipboard("Beispiel AG\nMusterweg 12\n");
    w.txtClipText->selectAll();
    w.txtClipText->paste();
    QCOMPARE(shownRows(w),
             (QStringList{"Beispiel AG=Firma", "Musterweg 12=Adresse", "Deutschland=Land"}));
    QCOMPARE(w.txtClipText->toPlainText(), "Beispiel AG\nMusterweg 12\n");
    QCOMPARE(row0Changes(spy), 2);
    // The box's path keeps the last fetched text for the separator chooser.
    QCOMPARE(w.session().state.ClipboardText, Signature);

    // Typing at the end of the first line re-analyses at once, keystroke by keystroke.
    spy.clear();
    QTextCursor c = w.txtClipText->textCursor();
    c.setPosition(QString("Beispiel AG").size());
    w.txtClipText->setTextCursor(c);
    QTest::keyClicks(w.txtClipText, "X");
    QCOMPARE(w.txtWert[0]->text(), "Beispiel AGX");
    QCOMPARE(row0Changes(spy), 2);
    QCOMPARE(w.txtClipText->textCursor().position(), QString("Beispiel AGX").size());
    QVERIFY(!w.AnalysisRunning());
}

void TestFormMain::typingAfterEmptyFetch()
{
    Fixture f;
    formMain& w = f.w();
    w.StartUp();
    QTest::mouseClick(w.cmdGetClipboard, Qt::LeftButton);
    QCOMPARE(f.log.messages, (QStringList{Empty, Empty}));
    w.txtClipText->insertPlainText("Musterweg 12\nHans Meier x");
    QCOMPARE(shownRows(w),
             (QStringList{"Musterweg 12=Adresse", "Hans Meier x=Kontakt", "Deutschland=Land"}));
}

void TestFormMain::fieldListsFollowRows()
{
    Fixture f;
    formMain& w = f.w();
    w.StartUp();
    // Filling the lists chooses nothing by itself.
    for (QComboBox* field : w.txtField) {
        QCOMPARE(field->currentIndex(), -1);
        QCOMPARE(field->currentText(), "");
    }
    // Sorted by name; each entry carries its id.
    QCOMPARE(w.txtField[3]->itemText(0), "Abteilung");
    QCOMPARE(w.txtField[3]->itemData(0, FieldList::IdRole).toInt(), 88);

    w.session().rows.SelectRowField(4, 200);
    QCOMPARE(w.txtField[4]->currentText(), "eMail");
    w.session().rows.SelectRowField(4, 9999);
    QCOMPARE(w.txtField[4]->currentText(), "eMail");

    // The user's choice reaches the rows.
    const int fax = w.txtField[5]->findText("Fax");
    w.txtField[5]->setCurrentIndex(fax);
    emit w.txtField[5]->activated(fax);
    QCOMPARE(w.session().rows.fieldId(5), 36);
    QTest::keyClicks(w.txtWert[5], "0761 1");
    QCOMPARE(w.session().rows.value(5), "0761 1");

    // A new entry sorted in front keeps every chosen field on its entry.
    w.session().rows.addField("Aaa", 500);
    QCOMPARE(w.txtField[4]->currentText(), "eMail");
    QCOMPARE(w.txtField[5]->currentText(), "Fax");
    QCOMPARE(w.txtField[6]->currentText(), "");
    w.session().rows.clearRows();
    QCOMPARE(w.txtField[5]->currentText(), "");
    QCOMPARE(w.txtWert[5]->text(), "");
}

void TestFormMain::typedFieldName_data()
{
    QTest::addColumn<QString>("typed");
    QTest::addColumn<QString>("shown");
    QTest::addColumn<int>("fieldId"); // -1 = none

    QTest::newRow("exact") << "Ort"
                           << "Ort" << 30;
    QTest::newRow("other case") << "ort"
                                << "Ort" << 30;
    QTest::newRow("completed") << "Vorn"
                               << "Vorname" << 78;
    QTest::newRow("no entry keeps the choice") << "Quatsch"
                                               << "PLZ" << 32;
    QTest::newRow("emptied") << ""
                             << "" << -1;
}

void TestFormMain::typedFieldName()
{
    QFETCH(QString, typed);
    QFETCH(QString, shown);
    QFETCH(int, fieldId);

    Fixture f;
    formMain& w = f.w();
    w.show();
    QVERIFY(QTest::qWaitForWindowExposed(&w));
    w.StartUp();
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

void TestFormMain::noData_data()
{
    QTest::addColumn<QString>("button");
    QTest::newRow("separator") << "cmdNeuerTrenner";
    QTest::newRow("create") << "cmdNeuanlageInACT";
    QTest::newRow("edit") << "cmdBearbeitenInAct";
}

void TestFormMain::noData()
{
    QFETCH(QString, button);
    Fixture f;
    formMain& w = f.w();
    w.StartUp();
    f.log.messages.clear();
    w.txtClipText->blockSignals(true);
    w.txtClipText->setPlainText("   ");
    w.txtClipText->blockSignals(false);

    bool dialogShown = true;
    whenModal<QDialog>(&w, [&](QDialog* d) { dialogShown = d != nullptr; });
    QTest::mouseClick(w.findChild<QPushButton*>(button), Qt::LeftButton);
    QCoreApplication::processEvents();
    QVERIFY(!dialogShown);
    QCOMPARE(f.log.messages, QStringList{NoData});
}

void TestFormMain::separatorChooserCycle()
{
    Fixture f;
    formMain& w = f.w();
    const QString clip = "Muster GmbH, Hans Meier\r\nMusterweg 12, 80331 München";
    setClipboard(clip);
    w.StartUp();
    QCOMPARE(shownRows(w),
             (QStringList{"Muster GmbH, Hans Meier=Firma", "Musterweg 12, 80331 München=Adresse",
                          "Deutschland=Land"}));

    QStringList seen;
    whenModal<formTrenner>(&w, [&](formTrenner* d) {
        QVERIFY(d);
        QCOMPARE(d->windowTitle(), "Trennzeichen wählen");
        // It shows the raw clipboard text, not the main window's box.
        QCOMPARE(d->txtClipText->toPlainText(),
                 "Muster GmbH, Hans Meier\nMusterweg 12, 80331 München");

        QTest::mouseClick(d->cmdTrennerNeu, Qt::LeftButton);
        seen << f.log.messages;
        QCOMPARE(d->txtTrenner->text(), "");

        // Several characters marked: the first one counts.
        QTextCursor c = d->txtClipText->textCursor();
        c.setPosition(11);
        c.setPosition(14, QTextCursor::KeepAnchor);
        d->txtClipText->setTextCursor(c);
        QTest::mouseClick(d->cmdTrennerNeu, Qt::LeftButton);
        QCOMPARE(d->txtTrenner->text(), ",");
        QCOMPARE(d->txtClipText->toPlainText(),
                 "Muster GmbH\nHans Meier\nMusterweg 12\n80331 München\n");

        QTest::mouseClick(d->cmdTrennerVerwerfen, Qt::LeftButton);
        QCOMPARE(d->txtTrenner->text(), "");
        QCOMPARE(d->txtClipText->toPlainText(),
                 "Muster GmbH, Hans Meier\nMusterweg 12, 80331 München");

        c.setPosition(11);
        c.setPosition(12, QTextCursor::KeepAnchor);
        d->txtClipText->setTextCursor(c);
        QTest::mouseClick(d->cmdTrennerNeu, Qt::LeftButton);
        QTest::mouseClick(d->cmdWeiter, Qt::LeftButton);
        QVERIFY(!d->isVisible());
    });
    QTest::mouseClick(w.cmdNeuerTrenner, Qt::LeftButton);
    QCOMPARE(seen, QStringList{message(msg::MarkOneChar, StyleInformation)});
    QCOMPARE(w.session().state.ChosenSeparator, ",");
    // Fetched again and cut at the comma.
    QCOMPARE(shownRows(w),
             (QStringList{"Muster GmbH=Firma", "Hans Meier=Kontakt", "Musterweg 12=Adresse",
                          "80331=PLZ", "München=Ort", "Deutschland=Land"}));
    // The choice holds for later fetches.
    setClipboard("A, B");
    QTest::mouseClick(w.cmdGetClipboard, Qt::LeftButton);
    QCOMPARE(w.txtClipText->toPlainText(), "A\nB\n");
}

void TestFormMain::separatorChooserWithoutChoice()
{
    Fixture f;
    formMain& w = f.w();
    setClipboard("Muster GmbH, Hans Meier\r\nMusterweg 12");
    w.StartUp();
    w.session().state.ChosenSeparator = ";";
    QSignalSpy spy(&w.session().rows, &FieldRows::valueChanged);

    // Continue without a character, and the close box: no choice, no new analysis.
    for (bool closeBox : {false, true}) {
        whenModal<formTrenner>(&w, [&](formTrenner* d) {
            QVERIFY(d);
            if (closeBox)
                d->close();
            else
                QTest::mouseClick(d->cmdWeiter, Qt::LeftButton);
        });
        QTest::mouseClick(w.cmdNeuerTrenner, Qt::LeftButton);
        QCOMPARE(w.session().state.ChosenSeparator, "");
        QCOMPARE(spy.count(), 0);
    }
}

void TestFormMain::analysisOpensChooser_data()
{
    QTest::addColumn<QString>("mark"); // "" = continue without a choice
    QTest::addColumn<QStringList>("rows");

    QTest::newRow("chosen") << ","
                            << QStringList{"Muster GmbH=Firma", "Musterweg 12=Adresse",
                                           "Deutschland=Land"};
    QTest::newRow("none") << "" << QStringList{};
}

void TestFormMain::analysisOpensChooser()
{
    QFETCH(QString, mark);
    QFETCH(QStringList, rows);

    Fixture f;
    formMain& w = f.w();
    w.StartUp();
    f.log.messages.clear();
    setClipboard("Muster GmbH, Musterweg 12");
    whenModal<formTrenner>(&w, [&](formTrenner* d) {
        QVERIFY(d);
        if (!mark.isEmpty()) {
            QTextCursor c = d->txtClipText->textCursor();
            const int at = int(d->txtClipText->toPlainText().indexOf(mark));
            c.setPosition(at);
            c.setPosition(at + 1, QTextCursor::KeepAnchor);
            d->txtClipText->setTextCursor(c);
            QTest::mouseClick(d->cmdTrennerNeu, Qt::LeftButton);
        }
        QTest::mouseClick(d->cmdWeiter, Qt::LeftButton);
    });
    QTest::mouseClick(w.cmdGetClipboard, Qt::LeftButton);
    QCOMPARE(f.log.messages, QStringList{message(msg::NoSeparator, StyleExclamation)});
    QCOMPARE(shownRows(w), rows);
    QCOMPARE(w.session().state.ChosenSeparator, mark);
}

void TestFormMain::completionPrompt_data()
{
    QTest::addColumn<bool>("create");
    QTest::addColumn<QString>("exit"); // the prompt's button, or "close"
    QTest::addColumn<int>("choice");

    QTest::newRow("created, back") << true << "cmdNeueRunde" << 2;
    QTest::newRow("created, leave") << true << "cmdRaus" << 1;
    QTest::newRow("edited, close box") << false << "close" << 0;
    QTest::newRow("edited, leave") << false << "cmdRaus" << 1;
}

void TestFormMain::completionPrompt()
{
    QFETCH(bool, create);
    QFETCH(QString, exit);
    QFETCH(int, choice);

    Fixture f;
    formMain& w = f.w();
    setClipboard(Signature);
    w.show();
    QVERIFY(QTest::qWaitForWindowExposed(&w));
    w.StartUp();

    if (!create) {
        // Something to edit: a contact filed first, which becomes the current one.
        whenModal<formFertigAbfrage>(&w, [](formFertigAbfrage* p) {
            QVERIFY(p);
            QTest::mouseClick(p->cmdNeueRunde, Qt::LeftButton);
        });
        QTest::mouseClick(w.cmdNeuanlageInACT, Qt::LeftButton);
        QCOMPARE(int(w.contactLink().CompletionChoice()), 2);
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

void TestFormMain::update_data()
{
    QTest::addColumn<int>("answer");
    QTest::addColumn<QString>("program"); // "", "folder", "plain" (not executable), "script"
    QTest::addColumn<QStringList>("messages");
    QTest::addColumn<bool>("closed");

    const QString ask = message(msg::UpdateConfirm, StyleQuestion);
    const QString missing = message(msg::UpdateMissing, StyleExclamation);
    QTest::newRow("no") << int(AnswerNo) << "script" << QStringList{ask} << false;
    QTest::newRow("missing") << int(AnswerYes) << "" << QStringList{ask, missing} << false;
    QTest::newRow("folder") << int(AnswerYes) << "folder" << QStringList{ask, missing} << false;
    QTest::newRow("not startable")
        << int(AnswerYes) << "plain"
        << QStringList{ask, message(msg::UpdateFailed, StyleExclamation)} << false;
    QTest::newRow("started") << int(AnswerYes) << "script" << QStringList{ask} << true;
}

void TestFormMain::update()
{
    QFETCH(int, answer);
    QFETCH(QString, program);
    QFETCH(QStringList, messages);
    QFETCH(bool, closed);

    Fixture f;
    formMain& w = f.w();
    w.show();
    QVERIFY(QTest::qWaitForWindowExposed(&w));
    w.StartUp();
    f.log.messages.clear();
    f.log.answers = {answer};

    const QString exe = f.dir.filePath("update.exe");
    const QString record = f.dir.filePath("args.txt");
    if (program == "folder") {
        QVERIFY(QDir(f.dir.path()).mkdir("update.exe"));
    } else if (!program.isEmpty()) {
        QFile script(exe);
        QVERIFY(script.open(QIODevice::WriteOnly));
        script.write("#!/bin/sh\nprintf '%s|' \"$#\" \"$1\" \"$2\" > \"$0.tmp\"\n"
                     "mv \"$0.tmp\" \"$(dirname \"$0\")/args.txt\"\n");
        script.close();
        if (program == "script")
            script.setPermissions(script.permissions() | QFile::ExeOwner);
    }

    QTest::mouseClick(w.cmdUpdate, Qt::LeftButton);
    QCOMPARE(f.log.messages, messages);
    QCOMPARE(w.isVisible(), !closed);
    if (closed) {
        // The update program runs on its own; wait for what it recorded.
        QTRY_VERIFY_WITH_TIMEOUT(QFile::exists(record), 10000);
        QFile file(record);
        QVERIFY(file.open(QIODevice::ReadOnly));
        QCOMPARE(file.readAll(), QByteArray("2||small|"));
    } else {
        QVERIFY(!QFile::exists(record));
    }
}

QTEST_MAIN(TestFormMain)
#include "tst_formmain.moc"
