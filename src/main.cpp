#include "platform/ARXTerminationSignals.h"
#include "ui/ARXAppDelegate.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QIcon>

#include <cstring>

namespace {

void describe(QCoreApplication& app, QCommandLineParser& parser) {
    QCoreApplication::setApplicationName(QStringLiteral("Atrium"));
    QCoreApplication::setApplicationVersion(QStringLiteral(ATRIUM_VERSION));
    QCoreApplication::setOrganizationDomain(QStringLiteral("brightmoor.com"));
    parser.setApplicationDescription(
        QCoreApplication::translate("Atrium", "A file manager built around workspaces."));
    parser.addHelpOption();
    parser.addVersionOption();
    parser.addPositionalArgument(
        QStringLiteral("path"),
        QCoreApplication::translate("Atrium", "Folders to open, files to reveal."),
        QStringLiteral("[PATH...]"));
    parser.process(app);
}

// --help and --version answer without a display, so they must not need the GUI application.
bool asksForInformation(int argc, char** argv) {
    for (int i = 1; i < argc; ++i) {
        for (const char* flag : {"-h", "--help", "-?", "--help-all", "-v", "--version"}) {
            if (std::strcmp(argv[i], flag) == 0) {
                return true;
            }
        }
    }
    return false;
}

} // namespace

int main(int argc, char** argv) {
    if (asksForInformation(argc, argv)) {
        QCoreApplication app(argc, argv);
        QCommandLineParser parser;
        describe(app, parser); // prints and exits
        return 0;
    }
    QApplication app(argc, argv);
    QApplication::setDesktopFileName(QStringLiteral("com.brightmoor.atrium"));
    // Outside a full desktop session (a bare X server, a window manager without a theme) Qt
    // knows no icon theme; the freedesktop default theme then still gives file and folder icons.
    if (QIcon::themeName().isEmpty() || QIcon::themeName() == QStringLiteral("hicolor")) {
        QIcon::setThemeName(QStringLiteral("Adwaita"));
    }
    QCommandLineParser parser;
    describe(app, parser);

    ARXTerminationSignals::quitApplicationOnTermination();
    ARXAppDelegate delegate;
    delegate.applicationDidFinishLaunching();
    return QApplication::exec();
}
