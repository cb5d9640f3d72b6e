// zettelfischer: the main window.

#include "act/contactlink.h"
#include "books/books.h"
#include "settings/settings.h"
#include "ui/formpasswort.h"
#include "ui/mainwindow.h"
#include "ui/windowhelpers.h"
#include "version.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QCoreApplication>
#include <QIcon>

#include <cstdio>

using namespace Qt::StringLiterals;

namespace {

struct Arguments {
    QString contactsFile;
    int exitCode = -1; // >= 0: end with this code without a window
};

// Read before the window system is touched, so that --help and usage errors work anywhere.
Arguments parseArguments(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    QCoreApplication::setApplicationName(u"zettelfischer"_s);
    QCoreApplication::setApplicationVersion(QString::fromUtf16(zf::Version));

    QCommandLineParser parser;
    parser.setApplicationDescription(
        u"Turns copied address text into a contact: copy an address, press "
        u"\"Hole aus Zwischenablage\", correct the rows and file the contact."_s);
    const QCommandLineOption help = parser.addHelpOption();
    const QCommandLineOption version = parser.addVersionOption();
    const QCommandLineOption contacts(
        u"contacts"_s,
        u"Contact book to use (default: $ZETTELFISCHER_CONTACTS, else "
        u"zettelfischer/kontakte.sqlite in the user's data folder)."_s,
        u"FILE"_s);
    parser.addOption(contacts);

    Arguments result;
    if (!parser.parse(QCoreApplication::arguments()) || !parser.positionalArguments().isEmpty()) {
        const QString error =
            parser.errorText().isEmpty()
                ? u"unexpected argument '%1'"_s.arg(parser.positionalArguments().value(0))
                : parser.errorText();
        std::fprintf(stderr, "zettelfischer: %s\nTry 'zettelfischer --help'.\n", qPrintable(error));
        result.exitCode = 2;
    } else if (parser.isSet(help)) {
        std::fputs(qPrintable(parser.helpText()), stdout);
        result.exitCode = 0;
    } else if (parser.isSet(version)) {
        std::printf("Zettelfischer %s\n", qPrintable(QString::fromUtf16(zf::Version)));
        result.exitCode = 0;
    } else if (qEnvironmentVariableIsEmpty("DISPLAY") &&
               qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY") &&
               qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) {
        std::fprintf(stderr, "zettelfischer: no display to open the window on (DISPLAY is not "
                             "set); for scripts there is zettelfischer-cli.\n");
        result.exitCode = 1;
    }
    result.contactsFile = parser.value(contacts);
    return result;
}

// The only place a chosen book becomes its objects and directory: a path is the SQLite book, a
// URL a CardDAV book that logs in with the window's credentials.
std::function<zf::books::OpenedBook(const zf::ui::BookChoice&)>
bookOpener(std::shared_ptr<zf::credentials::Credentials> credentials, std::chrono::seconds timeout)
{
    return [credentials, timeout](const zf::ui::BookChoice& choice) {
        return zf::books::openBook({choice.location, choice.user, timeout}, credentials);
    };
}

} // namespace

int main(int argc, char** argv)
{
    const Arguments args = parseArguments(argc, argv);
    if (args.exitCode >= 0)
        return args.exitCode;

    QApplication app(argc, argv);
    QApplication::setApplicationName(u"Zettelfischer"_s);
    QApplication::setApplicationVersion(QString::fromUtf16(zf::Version));
    QApplication::setWindowIcon(QIcon(u":/icons/app.svg"_s));
    // Ties the window to the installed menu entry and its icon (Wayland's app id).
    QGuiApplication::setDesktopFileName(u"example.zettelfischer.Zettelfischer"_s);
    zf::ui::UseGermanQtTexts();

    // The book: --contacts, $ZETTELFISCHER_CONTACTS, the settings file, the one chosen in the
    // window last time, else the embedded book.
    const QString iniPath = zf::settingsFilePath();
    zf::SharedState settings;
    zf::FieldRows rows;
    zf::LoadSettings(iniPath, settings, rows);
    zf::books::BookLocation remembered;
    if (const auto choice = zf::ui::rememberedBook())
        remembered = {choice->location, choice->user};
    const zf::books::BookLocation where =
        zf::books::bookLocation(args.contactsFile, settings, remembered);
    const zf::ui::BookChoice book{where.location, where.user};

    auto credentials =
        std::make_shared<zf::credentials::Credentials>(zf::ui::PasswordDialogAsk(nullptr));
    const auto openBook =
        bookOpener(credentials, std::chrono::duration_cast<std::chrono::seconds>(where.timeout));
    zf::books::OpenedBook opened = openBook(book);
    zf::ui::MainWindow window({.iniPath = iniPath,
                               .programDir = QApplication::applicationDirPath(),
                               .contacts = std::move(opened.objects),
                               .openBook = openBook,
                               .enhancedAnalysis = zf::ui::rememberedEnhancedAnalysis(),
                               .directory = std::move(opened.directory)},
                              book, credentials);
    window.show();
    window.StartUp();
    return QApplication::exec();
}
