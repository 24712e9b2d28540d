#include "platform/ARXTerminationSignals.h"

#include "platform/ARXConsole.h"

#include <QCoreApplication>
#include <QSocketNotifier>

#include <csignal>
#include <fcntl.h>
#include <unistd.h>

namespace ARXTerminationSignals {

namespace {

int gPipe[2] = {-1, -1};

void onSignal(int signal) {
    const unsigned char byte = static_cast<unsigned char>(signal);
    // write(2) is async-signal-safe; a full pipe only means a quit is already on its way.
    [[maybe_unused]] ssize_t n = ::write(gPipe[1], &byte, 1);
}

} // namespace

void quitApplicationOnTermination() {
    if (gPipe[0] >= 0) {
        return;
    }
    if (::pipe2(gPipe, O_CLOEXEC | O_NONBLOCK) != 0) {
        ARXConsole::line(QStringLiteral("Atrium: cannot watch for termination signals"));
        return;
    }
    auto* notifier =
        new QSocketNotifier(gPipe[0], QSocketNotifier::Read, QCoreApplication::instance());
    QObject::connect(notifier, &QSocketNotifier::activated, [] {
        unsigned char byte = 0;
        while (::read(gPipe[0], &byte, 1) > 0) {
        }
        QCoreApplication::quit();
    });
    struct sigaction action {};
    action.sa_handler = onSignal;
    sigemptyset(&action.sa_mask);
    action.sa_flags = SA_RESTART;
    for (int signal : {SIGTERM, SIGINT, SIGHUP}) {
        ::sigaction(signal, &action, nullptr);
    }
}

} // namespace ARXTerminationSignals
