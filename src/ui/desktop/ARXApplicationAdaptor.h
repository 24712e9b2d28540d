#pragma once

#include <QByteArray>
#include <QDBusAbstractAdaptor>
#include <QStringList>
#include <QVariantList>
#include <QVariantMap>

class ARXSingleInstance;

// The desktop's org.freedesktop.Application on Atrium's object (/com/brightmoor/atrium): with
// DBusActivatable=true in its desktop entry, launchers and other programs start and reach Atrium
// through the bus rather than its command line. The platform data carries the token of the
// user's action ("activation-token" on Wayland, "desktop-startup-id" on X11), with which the
// answering window comes forward.
class ARXApplicationAdaptor : public QDBusAbstractAdaptor {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.Application")

public:
    explicit ARXApplicationAdaptor(ARXSingleInstance* instance);

    // The token of the user's action in a call's platform data; empty when it has none.
    static QByteArray tokenOf(const QVariantMap& platformData);

public Q_SLOTS:
    // Brings the front window forward, or brings back the workspaces when none is open.
    void Activate(const QVariantMap& platformData);
    // Opens the folders and shows the other items, as `atrium URI...` would.
    void Open(const QStringList& uris, const QVariantMap& platformData);
    // Atrium's desktop entry declares no actions: every name is refused with an error.
    void ActivateAction(const QString& name, const QVariantList& parameter,
                        const QVariantMap& platformData);

private:
    ARXSingleInstance* _instance;
};
