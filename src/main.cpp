#include "ui/ARXAppDelegate.h"

#include <QApplication>
#include <QCommandLineParser>

int main(int argc, char** argv) {
    QApplication app(argc, argv);
    QApplication::setApplicationName(QStringLiteral("Atrium"));
    QApplication::setApplicationVersion(QStringLiteral(ATRIUM_VERSION));
    QApplication::setOrganizationDomain(QStringLiteral("brightmoor.com"));
    QApplication::setDesktopFileName(QStringLiteral("com.brightmoor.atrium"));

    QCommandLineParser parser;
    parser.setApplicationDescription(
        QApplication::translate("Atrium", "A file manager built around workspaces."));
    parser.addHelpOption();
    parser.addVersionOption();
    parser.addPositionalArgument(
        QStringLiteral("path"),
        QApplication::translate("Atrium", "Folders to open, files to reveal."),
        QStringLiteral("[PATH...]"));
    parser.process(app);

    ARXAppDelegate delegate;
    delegate.applicationDidFinishLaunching();
    return QApplication::exec();
}
