// The dialogs and helpers on their own: the split preview and the separator chooser, the
// message box behind the seam, the About box and the busy pointer.

#include "uitest.h"

#include "ui/forminfo.h"
#include "ui/windowhelpers.h"

#include <QDesktopServices>
#include <QEnterEvent>
#include <QLineEdit>
#include <QMessageBox>

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
    void preview_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<char>("separator");
        QTest::addColumn<QString>("preview");

        QTest::newRow("two lines, comma") << "A , B\r\nC,  D" << ',' << "A\r\nB\r\nC\r\nD\r\n";
        QTest::newRow("trailing line break adds an empty line")
            << "A,B\r\nC,D\r\n"
            << ',' << "A\r\nB\r\nC\r\nD\r\n\r\n";
        QTest::newRow("empty piece kept, tab not trimmed")
            << "\tA ;;B" << ';' << "\tA\r\n\r\nB\r\n";
    }

    void preview()
    {
        QFETCH(QString, text);
        QFETCH(char, separator);
        QFETCH(QString, preview);
        QCOMPARE(SeparatorPreview(text, QString(QChar(separator))), preview);
    }

    void chooser()
    {
        MessageLog log;
        SharedState state;
        state.ClipboardText = "a;b,c";
        state.ChosenSeparator = "#";
        formTrenner d(state, log.function());
        QCOMPARE(state.ChosenSeparator, ""); // opening clears the last choice

        QTest::mouseClick(d.cmdTrennerNeu, Qt::LeftButton);
        QCOMPARE(log.messages, QStringList{message(msg::MarkOneChar, MessageStyle::Information)});
        QCOMPARE(d.txtTrenner->text(), "");

        takeMarked(d, 1, 3); // several marked: the first counts
        QCOMPARE(d.txtTrenner->text() + '|' + d.txtClipText->toPlainText(), ";|a\nb,c\n");
        takeMarked(d, 3); // "," in the preview: the new preview starts from the raw text again
        QCOMPARE(d.txtClipText->toPlainText(), "a;b\nc\n");
        // A marked line break is offered as one; it shows as a visible sign.
        takeMarked(d, 3);
        QCOMPARE(d.chosen() + '|' + d.txtTrenner->text(), "\n|↵");

        QTest::mouseClick(d.cmdTrennerVerwerfen, Qt::LeftButton);
        QCOMPARE(d.txtTrenner->text() + '|' + d.txtClipText->toPlainText(), "|a;b,c");
        QTest::mouseClick(d.cmdWeiter, Qt::LeftButton);
        QCOMPARE(state.ChosenSeparator, "");
        QCOMPARE(log.messages.size(), 1);
    }

    void messageBox_data()
    {
        QTest::addColumn<int>("style");
        QTest::addColumn<QMessageBox::Icon>("icon");
        QTest::addColumn<QMessageBox::StandardButton>("click");
        QTest::addColumn<int>("answer");

        QTest::newRow("question, yes") << 36 << QMessageBox::Question << QMessageBox::Yes << 6;
        QTest::newRow("question, no") << 36 << QMessageBox::Question << QMessageBox::No << 7;
        QTest::newRow("exclamation") << 48 << QMessageBox::Warning << QMessageBox::Ok << 1;
        QTest::newRow("information") << 64 << QMessageBox::Information << QMessageBox::Ok << 1;
    }

    void messageBox()
    {
        QFETCH(int, style);
        QFETCH(QMessageBox::Icon, icon);
        QFETCH(QMessageBox::StandardButton, click);
        QFETCH(int, answer);

        // The real box, answered by a click once it is up.
        QObject context;
        whenModal<QMessageBox>(&context, [&](QMessageBox* b) {
            QVERIFY(b);
            QCOMPARE(b->windowTitle() + '|' + b->text(), "Zettelfischer|Text");
            QCOMPARE(b->icon(), icon);
            QCOMPARE(b->buttons().size(), style == 36 ? 2 : 1);
            QTest::mouseClick(b->button(click), Qt::LeftButton);
        });
        QCOMPARE(int(messageBoxes(nullptr)("Text", MessageStyle(style))), answer);
    }

    void aboutBox()
    {
        LinkRecorder links;
        QDesktopServices::setUrlHandler("mailto", &links, "open");
        QDesktopServices::setUrlHandler("https", &links, "open");
        formInfo info;
        info.show();
        QVERIFY(QTest::qWaitForWindowExposed(&info));
        for (QWidget* link : {info.HyperEMail, info.ImgMail, info.HyperWebsite, info.ImgWebsite})
            QTest::mouseClick(link, Qt::LeftButton);
        QDesktopServices::unsetUrlHandler("mailto");
        QDesktopServices::unsetUrlHandler("https");
        const QString mail = "mailto:kontakt@zettelfischer.example";
        const QString web = "https://zettelfischer.example";
        QCOMPARE(links.urls, (QStringList{mail, mail, web, web}));
        QVERIFY(info.isVisible()); // the box stays open
        QVERIFY(!QGuiApplication::overrideCursor());

        QEnterEvent enter({2, 2}, {2, 2}, {2, 2});
        QCoreApplication::sendEvent(info.HyperWebsite, &enter);
        QVERIFY(info.HyperWebsite->font().underline());
        QEvent leave(QEvent::Leave);
        QCoreApplication::sendEvent(info.HyperWebsite, &leave);
        QVERIFY(!info.HyperWebsite->font().underline());

        QTest::mouseClick(info.XPImage201, Qt::LeftButton);
        QVERIFY(!info.isVisible());
        QCOMPARE(info.result(), int(QDialog::Accepted));
    }

    // Unpaired busy calls, or a pointer stacked elsewhere: one "not busy" ends them all.
    void busyCursorUnpaired()
    {
        SetBusyCursor(true);
        SetBusyCursor(true);
        QCOMPARE(QGuiApplication::overrideCursor()->shape(), Qt::WaitCursor);
        QGuiApplication::setOverrideCursor(Qt::IBeamCursor);
        SetBusyCursor(false);
        QVERIFY(!QGuiApplication::overrideCursor());
    }
};

QTEST_MAIN(TestDialogs)
#include "tst_dialogs.moc"
