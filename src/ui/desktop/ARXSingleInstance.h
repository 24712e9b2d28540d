#pragma once

#include "platform/ARXPath.h"

#include <QByteArray>
#include <QDBusConnection>
#include <QDBusContext>
#include <QList>
#include <QObject>
#include <QString>

#include <functional>
#include <string>
#include <string_view>
#include <vector>

class ARXInstanceHandler;

// One running Atrium per user session. The first process owns the bus name
// "com.brightmoor.atrium" and serves `Open(aay paths, s token)` and `Activate(s token)` on
// /com/brightmoor/atrium; a later start finds the name taken, hands its paths (or, without any, an
// activation) with the token it was started with to the first and ends. Paths travel as byte
// arrays so that names that are not UTF-8 arrive intact. The same object serves the desktop's
// org.freedesktop.Application (ARXApplicationAdaptor), so that launchers start and activate
// Atrium over D-Bus.
//
// A first process that owns the name but does not answer yet (still starting, or stuck) is asked
// a few times with a bounded wait; after that the new process runs on its own. Without a session
// bus every process runs on its own.
class ARXSingleInstance : public QObject, protected QDBusContext {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "com.brightmoor.atrium.Instance")
public:
    enum class Role {
        first,      // owns the name and serves later starts
        handedOver, // the running Atrium took the request; this process should end
        standalone, // no bus, or an owner that never answered: runs on its own
    };

    struct Timing {
        int callTimeoutMs = 2000; // one call's wait for the running Atrium
        int attempts = 3;
        int retryDelayMs = 250; // between attempts, for an owner that is still starting
    };

    static const QString serviceName;
    static const QString objectPath;
    static const QString interfaceName;

    explicit ARXSingleInstance(const QDBusConnection& connection, QObject* parent = nullptr);
    ~ARXSingleInstance() override;

    void setTiming(const Timing& timing) { _timing = timing; }

    // Claims the session's Atrium, or hands `paths` (absolute) and the token of the user's action
    // that started this process to the one running. Blocks for at most the attempts of `Timing`,
    // running the event loop meanwhile.
    Role start(const std::vector<Path>& paths, const QByteArray& token = {});
    Role role() const { return _role; }

    // Where requests from later starts go. Requests that arrive before there is a handler wait
    // for it in order.
    void setHandler(ARXInstanceHandler* handler);

    // A request for the handler, run from the event loop after the caller has its answer, in
    // order, once there is a handler.
    void post(std::function<void(ARXInstanceHandler&)> request);
    // Answers the D-Bus call being handled (one of this object's interfaces) with an error.
    void refuseCall(const QString& message);

    // Sends paths to a handler: folders are opened, other items revealed, missing ones reported
    // on the console and left out. No paths at all is a reopen.
    static void deliver(ARXInstanceHandler& handler, const std::vector<Path>& paths,
                        const QByteArray& token = {});

    // The absolute path of one command-line argument: relative paths are taken against
    // `workingDirectory`, "file:" URIs are decoded to their bytes, "." components, repeated and
    // trailing slashes go; ".." stays, since resolving it without the disk would be wrong across
    // symbolic links. Empty for a URI of another scheme or host.
    static Path absolutePath(std::string_view argument, const Path& workingDirectory);
    // absolutePath of each argument, leaving out (with a console line each) URIs that are not
    // local files and paths that do not exist.
    static std::vector<Path> commandLinePaths(const std::vector<std::string>& arguments,
                                              const Path& workingDirectory);

public Q_SLOTS:
    Q_SCRIPTABLE void Open(const QList<QByteArray>& paths, const QString& token);
    Q_SCRIPTABLE void Activate(const QString& token);

private:
    bool claimName();
    // One call to the running Atrium; answers the D-Bus error name, empty on success.
    QString handOver(const std::vector<Path>& paths, const QByteArray& token);
    bool isRepeatedRequest(const QByteArray& key);

    QDBusConnection _connection;
    Timing _timing;
    Role _role = Role::standalone;
    bool _objectRegistered = false;
    ARXInstanceHandler* _handler = nullptr;
    std::vector<std::function<void(ARXInstanceHandler&)>> _pending;
    QString _lastSender;
    QByteArray _lastRequest;
};
