// zettelfischer: the main window.

#include "act/contactlink.h"
#include "settings/settings.h"
#include "ui/formmain.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QIcon>

#include <cstdio>

using namespace Qt::StringLiterals;

int main(int argc, char** argv)
{
    QApplication app(argc, argv);
    QApplication::setApplicationName(u"Zettelfischer"_s);
    QApplication::setApplicationVersion(u"1.18"_s);
    QApplication::setWindowIcon(QIcon(u":/icons/app.svg"_s));

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
    if (!parser.parse(QApplication::arguments()) || !parser.positionalArguments().isEmpty()) {
        const QString error =
            parser.errorText().isEmpty()
                ? u"unexpected argument '%1'"_s.arg(parser.positionalArguments().value(0))
                : parser.errorText();
        std::fprintf(stderr, "zettelfischer: %s\nTry 'zettelfischer --help'.\n", qPrintable(error));
        return 2;
    }
    if (parser.isSet(help)) {
        std::fputs(qPrintable(parser.helpText()), stdout);
        return 0;
    }
    if (parser.isSet(version)) {
        std::printf("Zettelfischer 1.18\n");
        return 0;
    }

    const QString book = zf::act::contactBookPath(parser.value(contacts));
    zf::ui::formMain window({zf::settingsFilePath(), QApplication::applicationDirPath(),
                             zf::act::makeContactBookFactory(book)});
    window.show();
    window.StartUp();
    return QApplication::exec();
}
