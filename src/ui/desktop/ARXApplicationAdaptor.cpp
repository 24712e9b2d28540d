#include "ui/desktop/ARXApplicationAdaptor.h"

#include "ui/desktop/ARXFileManagerService.h"
#include "ui/desktop/ARXInstanceHandler.h"
#include "ui/desktop/ARXSingleInstance.h"

ARXApplicationAdaptor::ARXApplicationAdaptor(ARXSingleInstance* instance)
    : QDBusAbstractAdaptor(instance), _instance(instance) {}

QByteArray ARXApplicationAdaptor::tokenOf(const QVariantMap& platformData) {
    for (const char* key : {"activation-token", "desktop-startup-id"}) {
        const QString token = platformData.value(QString::fromLatin1(key)).toString();
        if (!token.isEmpty()) {
            return token.toUtf8();
        }
    }
    return {};
}

void ARXApplicationAdaptor::Activate(const QVariantMap& platformData) {
    _instance->post(
        [token = tokenOf(platformData)](ARXInstanceHandler& handler) { handler.reopen(token); });
}

void ARXApplicationAdaptor::Open(const QStringList& uris, const QVariantMap& platformData) {
    // The caller has its answer before the disk is read.
    _instance->post([uris, token = tokenOf(platformData)](ARXInstanceHandler& handler) {
        const std::vector<Path> paths = ARXFileManagerService::existingPaths(uris);
        if (!paths.empty()) {
            ARXSingleInstance::deliver(handler, paths, token);
        }
    });
}

void ARXApplicationAdaptor::ActivateAction(const QString& name, const QVariantList&,
                                           const QVariantMap&) {
    _instance->refuseCall(QStringLiteral("Atrium has no action \u201c%1\u201d").arg(name));
}
