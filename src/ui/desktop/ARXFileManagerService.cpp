#include "ui/desktop/ARXFileManagerService.h"

#include "platform/ARXConsole.h"
#include "platform/ARXFileStatus.h"
#include "ui/desktop/ARXInstanceHandler.h"
#include "ui/desktop/ARXSingleInstance.h"

#include <QDBusConnectionInterface>
#include <QDBusReply>
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
    if (_ownsName && _connection.isConnected()) {
        _connection.interface()->unregisterService(serviceName);
    }
}

bool ARXFileManagerService::start() {
    if (!_connection.isConnected()) {
        return false;
    }
    if (!_objectRegistered) {
        _objectRegistered =
            _connection.registerObject(objectPath, this, QDBusConnection::ExportScriptableSlots);
    }
    // Not queued: should the other file manager quit, its requests are not Atrium's to inherit
    // half-way. Replaceable: a file manager the user starts later is the one they want.
    const QDBusReply<QDBusConnectionInterface::RegisterServiceReply> reply =
        _connection.interface()->registerService(serviceName,
                                                 QDBusConnectionInterface::DontQueueService,
                                                 QDBusConnectionInterface::AllowReplacement);
    _ownsName = reply.isValid() && reply.value() == QDBusConnectionInterface::ServiceRegistered;
    if (!_ownsName && _objectRegistered) {
        _connection.unregisterObject(objectPath);
        _objectRegistered = false;
    }
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

void ARXFileManagerService::ShowFolders(const QStringList& uris, const QString&) {
    post(Request::folders, uris);
}

void ARXFileManagerService::ShowItems(const QStringList& uris, const QString&) {
    post(Request::items, uris);
}

void ARXFileManagerService::ShowItemProperties(const QStringList& uris, const QString&) {
    post(Request::properties, uris);
}

void ARXFileManagerService::post(Request request, const QStringList& uris) {
    // The caller (often a program waiting on its "Show in folder" menu item) gets its answer
    // first; the disk is read and windows open from the event loop.
    QTimer::singleShot(0, this, [this, request, uris] {
        const std::vector<Path> paths = existingPaths(uris);
        if (paths.empty()) {
            return;
        }
        switch (request) {
        case Request::folders:
            ARXSingleInstance::deliver(_handler, paths);
            break;
        case Request::items:
            _handler.revealItems(paths);
            break;
        case Request::properties:
            _handler.showItemProperties(paths);
            break;
        }
    });
}
