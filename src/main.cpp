#include "platform/ARXTerminationSignals.h"
#include "ui/ARXAppDelegate.h"
#include "ui/desktop/ARXFileManagerService.h"
#include "ui/desktop/ARXInstanceHandler.h"
#include "ui/desktop/ARXSingleInstance.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QDBusConnection>
#include <QIcon>
#include <QTimer>

#include <cerrno>
#include <cstring>
#include <optional>
#include <string>
#include <unistd.h>
#include <vector>

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

// The path arguments as the shell passed them: bytes, which QCoreApplication::arguments() would
// decode and so lose for names that are not UTF-8. QApplication has already taken out its own
// options, and the parser has refused unknown ones; "--" ends the options.
std::vector<std::string> positionalArguments(int argc, char** argv) {
    std::vector<std::string> arguments;
    bool optionsEnded = false;
    for (int i = 1; i < argc; ++i) {
        const std::string argument = argv[i];
        if (!optionsEnded && argument == "--") {
            optionsEnded = true;
        } else if (optionsEnded || argument.size() < 2 || argument.front() != '-') {
            arguments.push_back(argument);
        }
    }
    return arguments;
}

Path workingDirectory() {
    std::string buffer(4096, '\0');
    while (::getcwd(buffer.data(), buffer.size()) == nullptr) {
        if (errno != ERANGE) {
            return "/"; // a removed working folder: relative paths name nothing anyway
        }
        buffer.resize(buffer.size() * 2);
    }
    return Path(buffer.c_str());
}

// The application as the D-Bus services and a second start see it.
class DelegateInstanceHandler : public ARXInstanceHandler {
public:
    explicit DelegateInstanceHandler(ARXAppDelegate& delegate) : _delegate(&delegate) {}

    void openFolders(const std::vector<Path>& paths, const QByteArray& token) override {
        _delegate->openPaths(paths, token);
    }
    void revealItems(const std::vector<Path>& paths, const QByteArray& token) override {
        _delegate->revealPaths(paths, token);
    }
    void showItemProperties(const std::vector<Path>& paths, const QByteArray& token) override {
        _delegate->showProperties(paths, token);
    }
    void reopen(const QByteArray& token) override { _delegate->reopen(token); }

private:
    ARXAppDelegate* _delegate;
};

} // namespace

int main(int argc, char** argv) {
    if (asksForInformation(argc, argv)) {
        QCoreApplication app(argc, argv);
        QCommandLineParser parser;
        describe(app, parser); // prints and exits
        return 0;
    }
    // The user's action that started this process, as its launcher passed it on; taken before
    // Qt reads (and clears) it, for the running Atrium should this start hand over to it.
    QByteArray token = qgetenv("XDG_ACTIVATION_TOKEN");
    if (token.isEmpty()) {
        token = qgetenv("DESKTOP_STARTUP_ID");
    }
    QApplication app(argc, argv);
    QApplication::setDesktopFileName(QStringLiteral("com.brightmoor.atrium"));
    // Outside a full desktop session (a bare X server, a window manager without a theme) Qt
    // knows no icon theme; the freedesktop default theme then still gives file and folder icons.
    if (QIcon::themeName().isEmpty() || QIcon::themeName() == QStringLiteral("hicolor")) {
        QIcon::setThemeName(QStringLiteral("Adwaita"));
    }
    QApplication::setWindowIcon(
        QIcon::fromTheme(QStringLiteral("com.brightmoor.atrium"),
                         QIcon(QStringLiteral(":/icons/com.brightmoor.atrium.svg"))));
    QCommandLineParser parser;
    describe(app, parser);

    // Made absolute here: the running Atrium has another working folder.
    const std::vector<Path> paths =
        ARXSingleInstance::commandLinePaths(positionalArguments(argc, argv), workingDirectory());
    ARXSingleInstance instance(QDBusConnection::sessionBus());
    if (instance.start(paths, token) == ARXSingleInstance::Role::handedOver) {
        return 0;
    }

    ARXTerminationSignals::quitApplicationOnTermination();
    ARXAppDelegate delegate;
    DelegateInstanceHandler handler(delegate);
    delegate.applicationDidFinishLaunching();
    instance.setHandler(&handler);
    std::optional<ARXFileManagerService> fileManager;
    if (instance.role() == ARXSingleInstance::Role::first) {
        fileManager.emplace(QDBusConnection::sessionBus(), handler);
        fileManager->start();
    }
    if (!paths.empty()) {
        // After the windows that launching queued, so the paths land in the front workspace.
        QTimer::singleShot(0, &delegate,
                           [&handler, paths] { ARXSingleInstance::deliver(handler, paths); });
    }
    return QApplication::exec();
}
