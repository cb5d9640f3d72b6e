// The frame with the menu bar: the form inside keeps its layout, "Erweiterte Analyse" switches
// the analysis and is remembered, and "Adressbuch wählen …" switches the book transfers go to.
// The window's store lies in a temporary config folder per test.

#include "bookdirectory.h"
#include "uitest.h"

#include "books/sqlite/sqlitebook.h"
#include "ui/formfertigabfrage.h"
#include "ui/formkontakt.h"
#include "ui/mainwindow.h"

#include <QClipboard>
#include <QComboBox>
#include <QFile>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMenu>
#include <QMenuBar>
#include <QRadioButton>
#include <QTemporaryDir>

#include <utility>

using namespace zf;
using namespace zf::ui;
using namespace zf::ui::test;

namespace {

// A greeting, a name and a firm: only the enhanced analysis splits the name.
const QString Letter = "Mit freundlichen Grüßen\nAnna Roth\nRoth GmbH\n";

QStringList shownRows(formMain& w)
{
    QStringList out;
    for (int row = 0; row < formMain::RowCount; ++row) {
        const QString value = w.txtWert[row]->text(), field = w.txtField[row]->currentText();
        if (!(value + field).isEmpty())
            out << value + '=' + field;
    }
    return out;
}

// The rows an analysis in that mode leaves, computed apart from any window.
QStringList analysed(AnalysisMode mode, const QString& text)
{
    Session s;
    s.rows.FillDefaultFieldLists();
    AnalyseTextIn(mode, text, s, Seams{});
    QStringList out;
    for (int row = 0; row < FieldRows::RowCount; ++row) {
        const int pos = s.rows.selected(row);
        const QString field = pos < 0 ? QString() : s.rows.fields().nameAt(pos);
        if (!(s.rows.value(row) + field).isEmpty())
            out << s.rows.value(row) + '=' + field;
    }
    return out;
}

QString plain(QString menuText)
{
    return menuText.remove('&');
}

struct Fixture {
    QTemporaryDir dir;
    MessageLog log;
    QStringList opened; // every book the stand-in was asked to open
    bool booksOpen = true;
    QStringList written; // the book of every contact a transfer stored
    std::unique_ptr<MainWindow> window;

    Fixture() { qputenv("XDG_CONFIG_HOME", dir.filePath("config").toUtf8()); }
    ~Fixture()
    {
        window.reset();
        qunsetenv("XDG_CONFIG_HOME");
    }

    void writeIni(const QByteArray& ini)
    {
        QFile file(dir.filePath("zettelfischer.ini"));
        QVERIFY(file.open(QIODevice::WriteOnly) && file.write(ini) == ini.size());
    }

    std::shared_ptr<act::ObjectFactory> open(const QString& path)
    {
        return act::makeContactBookFactory(path, [this, path](qint64) { written << path; });
    }

    // A new window, as at the start of a run, with the book's file in the temporary folder.
    MainWindow& started(const QString& clipboard = Letter)
    {
        window.reset();
        const QString book = dir.filePath("kontakte.sqlite");
        MainOptions options{dir.filePath("zettelfischer.ini"), dir.path(), open(book),
                            log.function()};
        options.directory = std::make_shared<SqliteDirectory>(book);
        options.openBook = [this](const BookChoice& choice) {
            opened << choice.location;
            if (!booksOpen)
                return books::OpenedBook{};
            return books::OpenedBook{open(choice.location),
                                     std::make_shared<SqliteDirectory>(choice.location)};
        };
        options.enhancedAnalysis = rememberedEnhancedAnalysis();
        window = std::make_unique<MainWindow>(
            std::move(options), BookChoice{book, {}},
            std::make_shared<credentials::Credentials>(credentials::AskFunction{}, std::nullopt));
        QGuiApplication::clipboard()->setText(clipboard);
        window->show();
        if (!QTest::qWaitForWindowExposed(window.get()))
            qWarning("window not exposed");
        window->StartUp();
        log.messages.clear();
        return *window;
    }
};

} // namespace

class TestMainWindow : public QObject {
    Q_OBJECT
private slots:
    void formKeepsItsLayout()
    {
        Fixture f;
        MainWindow& w = f.started();
        formMain& form = w.form();
        const int bar = w.menuBar()->height();
        QVERIFY(bar > 0);
        QCOMPARE(form.geometry(), QRect(0, bar, 660, 535));
        QCOMPARE(w.size(), QSize(660, 535 + bar));
        QCOMPARE(w.minimumSize(), w.maximumSize()); // not resizable, as the form is not
        QCOMPARE(form.txtWert[15]->geometry(), QRect(8, 8 + 24 * 15, 484, 20));
        QCOMPARE(form.txtClipText->geometry(), QRect(8, 392, 428, 137));
        QCOMPARE(form.cmdUpdate->geometry(), QRect(548, 504, 103, 25));
        QCOMPARE(w.windowTitle(), "Zettelfischer v.1.18");
        QCOMPARE(QApplication::focusWidget(), form.cmdGetClipboard);
    }

    void menuTexts()
    {
        Fixture f;
        MainWindow& w = f.started();
        QStringList bar;
        for (QAction* a : w.menuBar()->actions())
            bar << plain(a->text());
        QCOMPARE(bar, (QStringList{"Analyse", "Adressbuch", "Kontakt"}));
        QCOMPARE(plain(w.mnuErweiterteAnalyse->text()), "Erweiterte Analyse");
        QVERIFY(w.mnuErweiterteAnalyse->isCheckable() && !w.mnuErweiterteAnalyse->isChecked());
        QVERIFY(w.mnuAnalyse->actions().contains(w.mnuErweiterteAnalyse));
        QCOMPARE(plain(w.mnuAdressbuchWaehlen->text()), "Adressbuch wählen …");
        QVERIFY(w.mnuAdressbuch->actions().contains(w.mnuAdressbuchWaehlen));
        QCOMPARE(w.mnuAktuellesBuch->text(), "Aktuell: kontakte.sqlite");
        QVERIFY(!w.mnuAktuellesBuch->isEnabled());
        QCOMPARE(plain(w.mnuKontaktWaehlen->text()), "Kontakt wählen …");
        QVERIFY(w.mnuKontaktWaehlen->isEnabled());
        QCOMPARE(w.mnuKontakt->actions().first(), w.mnuAktuellerKontakt);
        QVERIFY(!w.mnuAktuellerKontakt->isEnabled());
    }

    // What "Bearbeiten" overwrites, in the menu and at the menu bar's right: after a transfer
    // the contact filed, after a choice the one chosen, in another book that book's.
    void currentContactShown()
    {
        Fixture f;
        MainWindow& w = f.started("Muster GmbH\nHans Meier\nhans.meier@muster.de\n");
        const auto shows = [&w](const QString& contact) {
            const QString text = "Bearbeiten überschreibt: " + contact;
            // A menu entry shows "&&" as an ampersand.
            return w.mnuAktuellerKontakt->text() == QString(text).replace("&", "&&") &&
                   w.lblAktuellerKontakt->text() == text &&
                   w.lblAktuellerKontakt->toolTip() == text;
        };
        QVERIFY(shows("(kein aktueller Kontakt)"));

        // Named already while the prompt after the transfer is open.
        bool shownWithPrompt = false;
        whenModal<formFertigAbfrage>(&w, [&](formFertigAbfrage* p) {
            shownWithPrompt = p && shows("Hans Meier, Muster GmbH");
        });
        QTest::mouseClick(w.form().cmdNeuanlageInACT, Qt::LeftButton);
        QVERIFY(shownWithPrompt);
        QVERIFY2(shows("Hans Meier, Muster GmbH"), qPrintable(w.mnuAktuellerKontakt->text()));

        // Another program adds a contact; the window takes it through the search.
        SqliteDirectory(f.dir.filePath("kontakte.sqlite"))
            .add({{26, "Erika Muster"}, {25, "Müller & Söhne"}});
        whenModal<formKontakt>(&w, [](formKontakt* d) {
            QVERIFY(d);
            QTest::keyClicks(d->txtSuche, "erika");
            QTRY_COMPARE(d->lstKontakte->item(0)->text(), "Erika Muster, Müller & Söhne");
            QTest::keyClick(d->txtSuche, Qt::Key_Return);
        });
        w.mnuKontaktWaehlen->trigger();
        QVERIFY(shows("Erika Muster, Müller & Söhne"));

        // A cancelled choice changes nothing.
        whenModal<formKontakt>(&w, [](formKontakt* d) { d->reject(); });
        w.mnuKontaktWaehlen->trigger();
        QVERIFY(shows("Erika Muster, Müller & Söhne"));

        whenModal<formAdressbuch>(&w, [&f](formAdressbuch* d) {
            d->txtDatei->setText(f.dir.filePath("zweites.sqlite"));
            QTest::mouseClick(d->cmdOK, Qt::LeftButton);
        });
        w.mnuAdressbuchWaehlen->trigger();
        QVERIFY(shows("(kein aktueller Kontakt)"));
        QCOMPARE(w.form().size(), QSize(660, 535));
        QCOMPARE(f.log.messages, QStringList{});
    }

    void bookLabel_data()
    {
        QTest::addColumn<QString>("location");
        QTest::addColumn<QString>("user");
        QTest::addColumn<QString>("label");
        QTest::newRow("file") << "/home/anna/Bücher/kunden.sqlite"
                              << ""
                              << "kunden.sqlite";
        QTest::newRow("server") << "https://dav.example.org/anna/kunden/"
                                << "anna"
                                << "anna@dav.example.org";
        QTest::newRow("port, user in the address") << "HTTP://bob@dav.example.org:5232/bob/"
                                                   << ""
                                                   << "bob@dav.example.org:5232";
        QTest::newRow("no user") << "https://dav.example.org/"
                                 << ""
                                 << "dav.example.org";
    }
    void bookLabel()
    {
        QFETCH(QString, location);
        QFETCH(QString, user);
        QFETCH(QString, label);
        QCOMPARE(BookLabel({location, user}), label);
    }

    // Switching analyses the text shown again at once, and the choice outlives the window.
    void enhancedAnalysisSwitchesAndPersists()
    {
        const QStringList classic = analysed(AnalysisMode::Classic, Letter),
                          enhanced = analysed(AnalysisMode::Enhanced, Letter);
        QVERIFY(classic != enhanced);

        Fixture f;
        MainWindow& w = f.started();
        QCOMPARE(shownRows(w.form()), classic);
        QVERIFY(!rememberedEnhancedAnalysis());
        const QString box = w.form().txtClipText->toPlainText();

        w.mnuErweiterteAnalyse->trigger();
        QCOMPARE(shownRows(w.form()), enhanced);
        QCOMPARE(w.form().txtClipText->toPlainText(), box);
        QCOMPARE(rememberedEnhancedAnalysis(), true);
        QVERIFY(QFile::exists(f.dir.filePath("config/zettelfischer/fenster.conf")));

        // A new run starts with it; a fetch and the box's own analysis use it.
        MainWindow& again = f.started();
        QVERIFY(again.mnuErweiterteAnalyse->isChecked());
        QCOMPARE(shownRows(again.form()), enhanced);
        const QString typed = "Mit freundlichen Grüßen\nBernd Stein\n";
        again.form().txtClipText->selectAll();
        again.form().txtClipText->insertPlainText(typed);
        QCOMPARE(shownRows(again.form()), analysed(AnalysisMode::Enhanced, typed));

        // Switching back takes the typed text, not the fetched one.
        again.mnuErweiterteAnalyse->trigger();
        QCOMPARE(shownRows(again.form()), analysed(AnalysisMode::Classic, typed));
        QCOMPARE(rememberedEnhancedAnalysis(), false);
        QCOMPARE(f.log.messages, QStringList{});
    }

    // Before anything was analysed switching only chooses: the rows stay empty.
    void switchWithNothingAnalysed()
    {
        Fixture f;
        MainWindow& w = f.started("");
        w.mnuErweiterteAnalyse->trigger();
        QVERIFY(w.form().EnhancedAnalysis());
        QCOMPARE(shownRows(w.form()), QStringList{});
        QCOMPARE(f.log.messages, QStringList{});
    }

    // The settings file's key decides at start when it is there; the window's store otherwise.
    void settingsKeyWinsAtStart_data()
    {
        QTest::addColumn<QByteArray>("ini");
        QTest::addColumn<int>("stored"); // -1: nothing stored
        QTest::addColumn<bool>("enhanced");
        QTest::newRow("key 0 over stored on")
            << QByteArray("[Config]\r\nErweiterteAnalyse=0\r\n") << 1 << false;
        QTest::newRow("key 1 over stored off")
            << QByteArray("[Config]\r\nErweiterteAnalyse=1\r\n") << 0 << true;
        QTest::newRow("empty key counts as off")
            << QByteArray("[Config]\r\nErweiterteAnalyse=\r\n") << 1 << false;
        QTest::newRow("no key, stored on")
            << QByteArray("[Config]\r\nCacheFelder=0\r\n") << 1 << true;
        QTest::newRow("no file, nothing stored") << QByteArray() << -1 << false;
    }
    void settingsKeyWinsAtStart()
    {
        QFETCH(QByteArray, ini);
        QFETCH(int, stored);
        QFETCH(bool, enhanced);
        Fixture f;
        if (!ini.isEmpty())
            f.writeIni(ini);
        if (stored >= 0)
            rememberEnhancedAnalysis(stored == 1);
        MainWindow& w = f.started();
        QCOMPARE(w.form().EnhancedAnalysis(), enhanced);
        QCOMPARE(w.mnuErweiterteAnalyse->isChecked(), enhanced);
        QCOMPARE(shownRows(w.form()),
                 analysed(enhanced ? AnalysisMode::Enhanced : AnalysisMode::Classic, Letter));
        // What the settings chose is not taken for the user's choice.
        QCOMPARE(rememberedEnhancedAnalysis(),
                 stored < 0 ? std::nullopt : std::optional<bool>(stored == 1));
    }

    void chooseBook_data()
    {
        QTest::addColumn<QString>("exit");  // "ok" or "cancel"
        QTest::addColumn<bool>("opens");    // the stand-in gives a factory
        QTest::addColumn<bool>("switched"); // transfers go to the new book
        QTest::newRow("chosen") << "ok" << true << true;
        QTest::newRow("cannot be opened") << "ok" << false << false;
        QTest::newRow("cancelled") << "cancel" << true << false;
    }
    void chooseBook()
    {
        QFETCH(QString, exit);
        QFETCH(bool, opens);
        QFETCH(bool, switched);
        Fixture f;
        MainWindow& w = f.started();
        f.booksOpen = opens;
        const QString first = f.dir.filePath("kontakte.sqlite"),
                      second = f.dir.filePath("zweites.sqlite");

        QString shownBook;
        whenModal<formAdressbuch>(&w, [&](formAdressbuch* d) {
            QVERIFY(d);
            shownBook = d->txtDatei->text();
            d->optDatei->setChecked(true);
            d->txtDatei->setText(second);
            QTest::mouseClick(exit == "ok" ? d->cmdOK : d->cmdAbbrechen, Qt::LeftButton);
        });
        w.mnuAdressbuchWaehlen->trigger();
        QCOMPARE(shownBook, first);
        QCOMPARE(f.opened, exit == "ok" ? QStringList{second} : QStringList{});
        QCOMPARE(f.log.messages,
                 opens ? QStringList{}
                       : QStringList{message(msg::BookNotOpened, MessageStyle::Exclamation)});
        QCOMPARE(w.book().location, switched ? second : first);
        QCOMPARE(w.mnuAktuellesBuch->text(),
                 switched ? "Aktuell: zweites.sqlite" : "Aktuell: kontakte.sqlite");
        QCOMPARE(rememberedBook().has_value(), switched);
        if (switched)
            QCOMPARE(*rememberedBook(), (BookChoice{second, {}}));

        whenModal<formFertigAbfrage>(&w, [](formFertigAbfrage*) {});
        QTest::mouseClick(w.form().cmdNeuanlageInACT, Qt::LeftButton);
        QCOMPARE(f.written, QStringList{switched ? second : first});
    }

    // A server book keeps its account; the store lies in the config folder it was pointed at.
    void serverChoiceRemembered()
    {
        Fixture f;
        const BookChoice server{"https://dav.example.org/anna/kunden/", "anna"};
        rememberBook(server);
        QCOMPARE(rememberedBook(), server);
        QCOMPARE(windowChoicesPath(), f.dir.filePath("config/zettelfischer/fenster.conf"));
    }
};

QTEST_MAIN(TestMainWindow)
#include "tst_mainwindow.moc"
