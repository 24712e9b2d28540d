#include "ui/desktop/ARXFileManagerService.h"

#include "platform/ARXConsole.h"
#include "platform/ARXFileStatus.h"
#include "ui/desktop/ARXInstanceHandler.h"
#include "ui/desktop/ARXSingleInstance.h"

#include <QDBusConnectionInterface>
#include <QDBusReply>
#include <QDBusServiceWatcher>
#include <QTimer>

#include <cstring>

const QString ARXFileManagerService::serviceName = QStringLiteral("org.freedesktop.FileManager1");
const QString ARXFileManagerService::objectPath = QStringLiteral("/org/freedesktop/FileManager1");

ARXFileManagerService::ARXFileManagerService(const QDBusConnection& connection,
                                             ARXInstanceHandler& handler, QObject* parent)
    : QObject(parent), _connection(connection), _handler(handler) {}

ARXFileManagerService::~ARXFileManagerService() {
    if (_objectRegistered) {
        _connection.unregisterObject(objectPath);
    }
    // Releasing the name also leaves the queue when Atrium was only waiting for it.
    if (_watcher && _connection.isConnected()) {
        _connection.interface()->unregisterService(serviceName);
    }
}

bool ARXFileManagerService::start() {
    if (!_connection.isConnected()) {
        return false;
    }
    // The object stays up while Atrium waits in the queue, so it answers from the moment the
    // name comes to it.
    if (!_objectRegistered) {
        _objectRegistered =
            _connection.registerObject(objectPath, this, QDBusConnection::ExportScriptableSlots);
    }
    if (!_watcher) {
        _watcher = new QDBusServiceWatcher(serviceName, _connection,
                                           QDBusServiceWatcher::WatchForOwnerChange, this);
        connect(_watcher, &QDBusServiceWatcher::serviceOwnerChanged, this,
                [this](const QString&, const QString&, const QString& owner) {
                    _ownsName = owner == _connection.baseService();
                });
    }
    // Queued: a file manager that holds the name keeps it, and Atrium takes it over when that
    // one leaves. Not replaceable: a file manager started after Atrium joins the queue behind
    // it instead of taking "Show in folder" away while Atrium runs.
    const QDBusReply<QDBusConnectionInterface::RegisterServiceReply> reply =
        _connection.interface()->registerService(serviceName,
                                                 QDBusConnectionInterface::QueueService,
                                                 QDBusConnectionInterface::DontAllowReplacement);
    _ownsName = reply.isValid() && reply.value() == QDBusConnectionInterface::ServiceRegistered;
    return _ownsName;
}

bool ARXFileManagerService::ownsName() const {
    return _ownsName;
}

std::vector<Path> ARXFileManagerService::existingPaths(const QStringList& uris) {
    std::vector<Path> paths;
    for (const QString& uri : uris) {
        // URIs are ASCII; a caller that sends other characters unescaped gets their UTF-8 bytes.
        const QByteArray bytes = uri.toUtf8();
        if (!bytes.toLower().startsWith("file:/")) {
            ARXConsole::line(QStringLiteral("Atrium: \"%1\" is not a file URI; left out").arg(uri));
            continue;
        }
        const Path path = ARXSingleInstance::absolutePath(
            std::string_view(bytes.constData(), size_t(bytes.size())), Path("/"));
        if (path.empty()) {
            ARXConsole::line(
                QStringLiteral("Atrium: \"%1\" is not a file on this computer; left out").arg(uri));
            continue;
        }
        const ARXFileStatus status = ARXFileStatus::lstat(path);
        if (!status.exists) {
            ARXConsole::line(QStringLiteral("Atrium: %1: %2; left out")
                                 .arg(ARXPath::display(path),
                                      QString::fromLocal8Bit(std::strerror(status.error))));
            continue;
        }
        paths.push_back(path);
    }
    return paths;
}

void ARXFileManagerService::ShowFolders(const QStringList& uris, const QString& startupId) {
    post(Request::folders, uris, startupId);
}

void ARXFileManagerService::ShowItems(const QStringList& uris, const QString& startupId) {
    post(Request::items, uris, startupId);
}

void ARXFileManagerService::ShowItemProperties(const QStringList& uris, const QString& startupId) {
    post(Request::properties, uris, startupId);
}

void ARXFileManagerService::post(Request request, const QStringList& uris,
                                 const QString& startupId) {
    // The caller (often a program waiting on its "Show in folder" menu item) gets its answer
    // first; the disk is read and windows open from the event loop.
    const QByteArray token = startupId.toUtf8();
    QTimer::singleShot(0, this, [this, request, uris, token] {
        const std::vector<Path> paths = existingPaths(uris);
        if (paths.empty()) {
            return;
        }
        switch (request) {
        case Request::folders:
            ARXSingleInstance::deliver(_handler, paths, token);
            break;
        case Request::items:
            _handler.revealItems(paths, token);
            break;
        case Request::properties:
            _handler.showItemProperties(paths, token);
            break;
        }
    });
}
