// The dialogs and helpers on their own: the split preview, the message box behind the seam,
// the About box's links and the window helpers.

#include "uitest.h"

#include "analysis/session.h"
#include "ui/forminfo.h"
#include "ui/formtrenner.h"
#include "ui/windowhelpers.h"

#include <QDesktopServices>
#include <QEnterEvent>
#include <QLineEdit>
#include <QMessageBox>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTextCursor>
#include <QtTest>

#include <memory>

using namespace zf;
using namespace zf::ui;
using namespace zf::ui::test;

// Receives the links the About box hands to the desktop.
class LinkRecorder : public QObject {
    Q_OBJECT
public:
    QStringList urls;
public slots:
    void open(const QUrl& url) { urls << url.toString(); }
};

class TestDialogs : public QObject {
    Q_OBJECT
private slots:
    void preview_data();
    void preview();
    void previewRestartsFromClipboard();
    void messageBox_data();
    void messageBox();
    void aboutLinks_data();
    void aboutLinks();
    void aboutHoverAndClose();
    void busyCursorUnpaired();
    void topMostOnShownWindow();
};

void TestDialogs::preview_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("separator");
    QTest::addColumn<QString>("preview");

    QTest::newRow("two lines, comma") << "A , B\r\nC,  D"
                                      << ","
                                      << "A\r\nB\r\nC\r\nD\r\n";
    QTest::newRow("trailing line break adds an empty line") << "A,B\r\nC,D\r\n"
                                                            << ","
                                                            << "A\r\nB\r\nC\r\nD\r\n\r\n";
    QTest::newRow("empty pieces kept") << "A;;B"
                                       << ";"
                                       << "A\r\n\r\nB\r\n";
    QTest::newRow("only blanks trimmed") << "\tA ;B"
                                         << ";"
                                         << "\tA\r\nB\r\n";
    QTest::newRow("no separator in it") << "Muster GmbH"
                                        << "#"
                                        << "Muster GmbH\r\n";
    QTest::newRow("line feed alone") << "A\nB"
                                     << "\n"
                                     << "A\r\nB\r\n";
}

void TestDialogs::preview()
{
    QFETCH(QString, text);
    QFETCH(QString, separator);
    QFETCH(QString, preview);
    QCOMPARE(SeparatorPreview(text, separator), preview);
}

void TestDialogs::previewRestartsFromClipboard()
{
    MessageLog log;
    SharedState state;
    state.ClipboardText = "a;b,c";
    state.ChosenSeparator = "#";
    formTrenner d(state);
    QCOMPARE(state.ChosenSeparator, ""); // opening clears the last choice

    const auto mark = [&d](int from) {
        QTextCursor c = d.txtClipText->textCursor();
        c.setPosition(from);
        c.setPosition(from + 1, QTextCursor::KeepAnchor);
        d.txtClipText->setTextCursor(c);
        QTest::mouseClick(d.cmdTrennerNeu, Qt::LeftButton);
    };
    mark(1); // ";" in the raw text
    QCOMPARE(d.txtClipText->toPlainText(), "a\nb,c\n");
    mark(3); // "," in the preview: the new preview starts from the raw text again
    QCOMPARE(d.txtTrenner->text(), ",");
    QCOMPARE(d.txtClipText->toPlainText(), "a;b\nc\n");
    // A marked line break is offered as one; it shows as a visible sign.
    mark(3);
    QCOMPARE(d.chosen(), "\n");
    QCOMPARE(d.txtTrenner->text(), "↵");
    QTest::mouseClick(d.cmdWeiter, Qt::LeftButton);
    QCOMPARE(state.ChosenSeparator, "\n");
    QCOMPARE(log.messages, QStringList{});
}

void TestDialogs::messageBox_data()
{
    QTest::addColumn<int>("style");
    QTest::addColumn<int>("icon");
    QTest::addColumn<int>("buttons");

    QTest::newRow("question") << 36 << int(QMessageBox::Question)
                              << int(QMessageBox::Yes | QMessageBox::No);
    QTest::newRow("exclamation") << 48 << int(QMessageBox::Warning) << int(QMessageBox::Ok);
    QTest::newRow("information") << 64 << int(QMessageBox::Information) << int(QMessageBox::Ok);
}

void TestDialogs::messageBox()
{
    QFETCH(int, style);
    QFETCH(int, icon);
    QFETCH(int, buttons);

    const std::unique_ptr<QMessageBox> box(makeMessageBox(nullptr, "Text", style));
    QCOMPARE(box->windowTitle(), "Zettelfischer");
    QCOMPARE(box->text(), "Text");
    QCOMPARE(int(box->icon()), icon);
    QCOMPARE(int(box->standardButtons()), buttons);
    QCOMPARE(answerCode(QMessageBox::Yes), 6);
    QCOMPARE(answerCode(QMessageBox::No), 7);
    QCOMPARE(answerCode(QMessageBox::Ok), 1);

    // The real box, answered by a click once it is up.
    QObject context;
    QString shownTitle;
    whenModal<QMessageBox>(&context, [&](QMessageBox* b) {
        QVERIFY(b);
        shownTitle = b->windowTitle();
        QAbstractButton* first = b->buttons().value(0);
        for (QAbstractButton* candidate : b->buttons())
            if (b->standardButton(candidate) == QMessageBox::No ||
                b->standardButton(candidate) == QMessageBox::Ok)
                first = candidate;
        QTest::mouseClick(first, Qt::LeftButton);
    });
    const int answer = ShowMessage("Text", style);
    QCOMPARE(shownTitle, "Zettelfischer");
    QCOMPARE(answer, style == 36 ? 7 : 1);
}

void TestDialogs::aboutLinks_data()
{
    QTest::addColumn<QString>("control");
    QTest::addColumn<QString>("url");

    QTest::newRow("mail text") << "HyperEMail"
                               << "mailto:kontakt@zettelfischer.example";
    QTest::newRow("mail image") << "ImgMail"
                                << "mailto:kontakt@zettelfischer.example";
    QTest::newRow("web text") << "HyperWebsite"
                              << "https://zettelfischer.example";
    QTest::newRow("web image") << "ImgWebsite"
                               << "https://zettelfischer.example";
}

void TestDialogs::aboutLinks()
{
    QFETCH(QString, control);
    QFETCH(QString, url);

    LinkRecorder links;
    QDesktopServices::setUrlHandler("mailto", &links, "open");
    QDesktopServices::setUrlHandler("https", &links, "open");
    formInfo info;
    info.show();
    QVERIFY(QTest::qWaitForWindowExposed(&info));
    QTest::mouseClick(info.findChild<QWidget*>(control), Qt::LeftButton);
    QDesktopServices::unsetUrlHandler("mailto");
    QDesktopServices::unsetUrlHandler("https");
    QCOMPARE(links.urls, QStringList{url});
    QVERIFY(info.isVisible()); // the box stays open
    QVERIFY(!QGuiApplication::overrideCursor());
}

void TestDialogs::aboutHoverAndClose()
{
    formInfo info;
    QVERIFY(info.windowFlags().testFlag(Qt::FramelessWindowHint));
    QCOMPARE(info.size(), QSize(370, 200));

    QEnterEvent enter({2, 2}, {2, 2}, {2, 2});
    QCoreApplication::sendEvent(info.HyperWebsite, &enter);
    QVERIFY(info.HyperWebsite->font().underline());
    QVERIFY(!info.HyperEMail->font().underline());
    QEvent leave(QEvent::Leave);
    QCoreApplication::sendEvent(info.HyperWebsite, &leave);
    QVERIFY(!info.HyperWebsite->font().underline());
    // Images never underline.
    QCoreApplication::sendEvent(info.ImgMail, &enter);
    QVERIFY(!info.ImgMail->font().underline());

    bool closed = false;
    whenModal<formInfo>(&info, [&](formInfo* d) {
        QVERIFY(d);
        QTest::mouseClick(d->XPImage201, Qt::LeftButton);
        closed = !d->isVisible();
    });
    info.exec();
    QVERIFY(closed);
}

void TestDialogs::busyCursorUnpaired()
{
    SetBusyCursor(true);
    SetBusyCursor(true);
    QCOMPARE(QGuiApplication::overrideCursor()->shape(), Qt::WaitCursor);
    SetBusyCursor(false);
    QVERIFY(!QGuiApplication::overrideCursor());
    SetBusyCursor(false);
    QVERIFY(!QGuiApplication::overrideCursor());
}

void TestDialogs::topMostOnShownWindow()
{
    QWidget w;
    w.show();
    QVERIFY(QTest::qWaitForWindowExposed(&w));
    SetTopMost(&w, true);
    QVERIFY(w.isVisible()); // not hidden by the flag change
    QVERIFY(w.windowHandle()->flags().testFlag(Qt::WindowStaysOnTopHint));
    QVERIFY(w.windowFlags().testFlag(Qt::WindowStaysOnTopHint));
    SetTopMost(&w, false);
    QVERIFY(w.isVisible());
    QVERIFY(!w.windowHandle()->flags().testFlag(Qt::WindowStaysOnTopHint));
}

QTEST_MAIN(TestDialogs)
#include "tst_dialogs.moc"
