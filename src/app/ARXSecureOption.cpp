#include "app/ARXSecureOption.h"

#include "platform/ARXSystemPaths.h"

ARXSecureOption::ARXSecureOption(QString key, std::optional<QString> def, ARXSettingsStore* store)
    : key(std::move(key)), def(std::move(def)), _store(store) {}

ARXSettingsStore& ARXSecureOption::sharedStore() {
    static ARXSettingsStore store(defaultFilePath());
    return store;
}

Path ARXSecureOption::defaultFilePath() {
    return ARXPath::join(ARXPath::join(ARXSystemPaths::configHome(), "Atrium"), "secure.json");
}

std::optional<QString> ARXSecureOption::value() const {
    const QJsonValue stored = store().value(key);
    if (stored.isString()) {
        return stored.toString();
    }
    return def;
}

void ARXSecureOption::setValue(const std::optional<QString>& value) const {
    if (value) {
        store().setValue(key, *value);
    } else {
        store().remove(key);
    }
}
