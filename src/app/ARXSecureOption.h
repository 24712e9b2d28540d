#pragma once

#include "app/ARXSettingsStore.h"

#include <QString>

#include <optional>

// A string setting that should not sit among the ordinary ones: a token or a password. Atrium has
// no keyring service in its stack, so these live in their own store, $XDG_CONFIG_HOME/Atrium/
// secure.json, which is created readable by the user alone (0600, in a 0700 folder). Otherwise the
// contract is that of ARXOption: the stored string, else def; nothing is written on read.
class ARXSecureOption {
public:
    ARXSecureOption(QString key, std::optional<QString> def = std::nullopt,
                    ARXSettingsStore* store = nullptr);

    const QString key;
    const std::optional<QString> def;

    std::optional<QString> value() const;

    // nullopt removes the key.
    void setValue(const std::optional<QString>& value) const;

    // Writes def back; with no def, the key goes.
    void reset() const { setValue(def); }

    bool isStored() const { return store().contains(key); }

    static ARXSettingsStore& sharedStore();
    static Path defaultFilePath();

private:
    ARXSettingsStore& store() const { return _store ? *_store : sharedStore(); }

    ARXSettingsStore* _store;
};
