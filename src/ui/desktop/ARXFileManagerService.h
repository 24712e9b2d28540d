#pragma once

#include "platform/ARXPath.h"

#include <QDBusConnection>
#include <QObject>
#include <QString>
#include <QStringList>

#include <vector>

class ARXInstanceHandler;
class QDBusServiceWatcher;

// The desktop's file manager service, org.freedesktop.FileManager1 on
// /org/freedesktop/FileManager1: other programs' "Show in folder" and "Properties" land in Atrium.
// Each call answers at once and reaches the handler from the event loop. URIs that are not local
// files, or name nothing on disk, are left out with a console line each; a call with none left
// does nothing.
class ARXFileManagerService : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.FileManager1")
public:
    static const QString serviceName;
    static const QString objectPath;

    ARXFileManagerService(const QDBusConnection& connection, ARXInstanceHandler& handler,
                          QObject* parent = nullptr);
    ~ARXFileManagerService() override;

    // Serves the interface and takes the name, or, when another file manager holds it, waits in
    // the bus's queue without a word and takes the name when that one leaves. A file manager
    // started later does not take it from Atrium. Answers whether Atrium owns the name now.
    bool start();
    bool ownsName() const;

    // The local paths of the URIs that name an item on disk, in order.
    static std::vector<Path> existingPaths(const QStringList& uris);

public Q_SLOTS:
    // The startup id is the caller's token of the user's action: the window that answers comes
    // forward with it. Opens each folder; an item that is not a folder is revealed instead.
    Q_SCRIPTABLE void ShowFolders(const QStringList& uris, const QString& startupId);
    Q_SCRIPTABLE void ShowItems(const QStringList& uris, const QString& startupId);
    Q_SCRIPTABLE void ShowItemProperties(const QStringList& uris, const QString& startupId);

private:
    enum class Request { folders, items, properties };
    void post(Request request, const QStringList& uris, const QString& startupId);

    QDBusConnection _connection;
    ARXInstanceHandler& _handler;
    QDBusServiceWatcher* _watcher = nullptr;
    bool _objectRegistered = false;
    bool _ownsName = false;
};
