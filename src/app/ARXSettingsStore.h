#pragma once

#include "platform/ARXPath.h"

#include <QJsonObject>
#include <QJsonValue>
#include <QMutex>
#include <QString>

// The user's preferences and remembered small state: one JSON object in
// $XDG_CONFIG_HOME/Atrium/defaults.json. Values keep their JSON types; typed reading and the
// fallback to defaults belong to ARXOption. Every write replaces the file atomically.
//
// A file that cannot be understood is never overwritten in place: Atrium runs on the defaults,
// says why on standard error, and sets the bad file aside as "defaults.json.broken" before the
// first save, so the user can still get at it.
//
// Thread-safe: options are read from worker threads too (the size calculator).
class ARXSettingsStore {
public:
    static ARXSettingsStore& shared();

    explicit ARXSettingsStore(Path file);

    QJsonValue value(const QString& key) const; // undefined when the key is absent
    bool contains(const QString& key) const;
    void setValue(const QString& key, const QJsonValue& value);
    void remove(const QString& key);

    Path filePath() const { return _file; }

    // Reads the file again, dropping what is in memory.
    void reload();

    static Path defaultFilePath();

private:
    void load();
    void save(); // with _mutex held

    const Path _file;
    mutable QMutex _mutex;
    QJsonObject _values;
    bool _fileUnreadable = false;
};
