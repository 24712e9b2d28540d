#pragma once

#include "ui/desktop/ARXInstanceHandler.h"

#include <QDBusConnection>
#include <QProcess>
#include <QString>
#include <QStringList>

#include <gtest/gtest.h>

#include <csignal>
#include <cstdlib>
#include <string>
#include <sys/prctl.h>
#include <utility>
#include <vector>

// A session bus of the test's own: a dbus-daemon started for the test and stopped after it, so
// that tests run on machines without a desktop session and never touch the user's bus. Each
// connection made here stands for one process of Atrium; several may share the test's process.
class ARXServiceTestBus {
public:
    ARXServiceTestBus() {
        _daemon.setProgram(QStringLiteral("dbus-daemon"));
        _daemon.setArguments({QStringLiteral("--session"), QStringLiteral("--nofork"),
                              QStringLiteral("--print-address")});
        _daemon.setProcessChannelMode(QProcess::SeparateChannels);
        // A test that aborts runs no destructor; the daemon must not outlive it.
        _daemon.setChildProcessModifier([] { ::prctl(PR_SET_PDEATHSIG, SIGTERM); });
        _daemon.start();
        if (!_daemon.waitForStarted(10000)) {
            _error = QStringLiteral("dbus-daemon did not start: ") + _daemon.errorString();
            return;
        }
        // The daemon prints its address once it listens.
        while (!_daemon.canReadLine() && _daemon.waitForReadyRead(10000)) {
        }
        _address = QString::fromUtf8(_daemon.readLine()).trimmed();
        if (_address.isEmpty()) {
            _error = QStringLiteral("dbus-daemon printed no address");
            return;
        }
        // Anything that asks Qt for the session bus reaches this one instead of the user's.
        ::setenv("DBUS_SESSION_BUS_ADDRESS", _address.toUtf8().constData(), 1);
    }

    ~ARXServiceTestBus() {
        for (const QString& name : _connections) {
            QDBusConnection::disconnectFromBus(name);
        }
        if (_daemon.state() != QProcess::NotRunning) {
            _daemon.terminate();
            if (!_daemon.waitForFinished(5000)) {
                _daemon.kill();
                _daemon.waitForFinished(5000);
            }
        }
    }

    ARXServiceTestBus(const ARXServiceTestBus&) = delete;
    ARXServiceTestBus& operator=(const ARXServiceTestBus&) = delete;

    bool isRunning() const { return _error.isEmpty(); }
    const QString& error() const { return _error; }
    const QString& address() const { return _address; }

    // A new connection with a unique name of its own, as another process would have.
    QDBusConnection connect(const QString& name) {
        _connections.append(name);
        return QDBusConnection::connectToBus(_address, name);
    }

private:
    QProcess _daemon;
    QString _address;
    QString _error;
    QStringList _connections;
};

// The application's side: each request as a kind and its paths, and the token it came with.
class ARXRecordingHandler : public ARXInstanceHandler {
public:
    using Call = std::pair<std::string, std::vector<Path>>;
    void openFolders(const std::vector<Path>& p, const QByteArray& t) override {
        record("open", p, t);
    }
    void revealItems(const std::vector<Path>& p, const QByteArray& t) override {
        record("reveal", p, t);
    }
    void showItemProperties(const std::vector<Path>& p, const QByteArray& t) override {
        record("info", p, t);
    }
    void reopen(const QByteArray& t) override { record("reopen", {}, t); }

    std::vector<Call> calls;
    std::vector<QByteArray> tokens;

private:
    void record(const char* kind, const std::vector<Path>& paths, const QByteArray& token) {
        calls.push_back({kind, paths});
        tokens.push_back(token);
    }
};
