// The dialogs and helpers on their own: the split preview and the separator chooser, the
// message box behind the seam, the About box, the busy pointer, fonts that fit the fixed
// layout and Qt's German texts.

#include "uitest.h"

#include "ui/forminfo.h"
#include "ui/windowhelpers.h"

#include <QDesktopServices>
#include <QEnterEvent>
#include <QFontInfo>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMessageBox>

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

    // The chooser's instruction is shown whole: at 12 pt in the font the layout was made for,
    // smaller in a font that runs wider.
    void chooserInstructionFits_data()
    {
        QTest::addColumn<QString>("family"); // "" keeps the dialog's own font
        QTest::addColumn<bool>("fullSize");
        QTest::newRow("the dialog's font") << "" << true;
        QTest::newRow("a wider font") << "DejaVu Sans" << false;
    }
    void chooserInstructionFits()
    {
        QFETCH(QString, family);
        QFETCH(bool, fullSize);
        SharedState state;
        formTrenner d(state, {});
        QLabel* label = d.Label1;
        if (!family.isEmpty()) {
            label->setFont(QFont(family, 12));
            FitWrappedFont(label);
        } else {
            QCOMPARE(QFontInfo(label->font()).family(), "Liberation Sans");
        }
        QVERIFY(WrappedTextHeight(label, label->font()) <= label->contentsRect().height());
        QCOMPARE(label->font().pointSizeF() == 12.0, fullSize);
        // Not smaller than needed: a quarter point more would not fit.
        if (!fullSize) {
            QFont larger = label->font();
            larger.setPointSizeF(larger.pointSizeF() + 0.25);
            QVERIFY(WrappedTextHeight(label, larger) > label->contentsRect().height());
        }
    }

    // Buttons side by side get one font, small enough for the longer caption.
    void buttonPairSharesFont()
    {
        QWidget window;
        QPushButton left(QIcon(":/icons/new.svg"), "Neu Anlegen", &window);
        QPushButton right(QIcon(":/icons/edit.svg"), "Bearbeiten", &window);
        for (QPushButton* b : {&left, &right}) {
            b->resize(103, 25);
            b->setIconSize({16, 16});
        }
        QFont wide("DejaVu Sans");
        wide.setPointSizeF(8.25);
        wide.setBold(true);
        QVERIFY(ButtonWidthNeeded(&left, wide) > 103); // too long at this size
        FitButtonFonts({&left, &right}, wide);
        QCOMPARE(left.font(), right.font());
        QVERIFY(left.font().bold() && left.font().pointSizeF() < 8.25);
        for (QPushButton* b : {&left, &right})
            QVERIFY(ButtonWidthNeeded(b, b->font()) <= b->width());
    }

    // Qt's own texts in the window (the text boxes' context menus, the yes/no buttons) are
    // German once its translation is loaded, whatever the system's language.
    void germanQtTexts()
    {
        const auto shownTexts = [] {
            QStringList out;
            QLineEdit line("x");
            QPlainTextEdit box("x");
            for (QMenu* menu :
                 {line.createStandardContextMenu(), box.createStandardContextMenu()}) {
                for (const QAction* a : menu->actions())
                    if (!a->isSeparator())
                        out << a->text().section('\t', 0, 0); // without the shortcut
                delete menu;
            }
            const std::unique_ptr<QMessageBox> question(
                makeMessageBox(nullptr, "?", MessageStyle::Question));
            for (const QAbstractButton* b : question->buttons())
                out << b->text();
            return out;
        };
        const QStringList before = shownTexts();
        QVERIFY(before.contains("&Yes") && before.contains("Select All"));
        QVERIFY(UseGermanQtTexts());
        const QStringList after = shownTexts();
        QCOMPARE(after.size(), before.size());
        for (int i = 0; i < after.size(); ++i)
            QVERIFY2(after[i] != before[i], qPrintable(before[i]));
        QVERIFY(after.contains("&Ja") && after.contains("&Nein") &&
                after.contains("Alles auswählen"));
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
