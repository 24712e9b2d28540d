#pragma once

#include "app/ARXSettingsStore.h"
#include "app/ARXStoredNumber.h"

#include <QDateTime>
#include <QJsonArray>
#include <QJsonObject>
#include <QList>
#include <QString>
#include <QStringList>

#include <cmath>
#include <optional>

// How each value form is kept in the JSON store. fromJson answers nullopt when the stored value
// is not of the form, and the option then falls back to its default (and leaves the stored value
// alone). Numbers and booleans convert into each other, as a stored 1 reads as true. Numbers are
// clamped (ARXStoredNumber) before anything converts them.
template <typename T>
struct ARXOptionCodec;

template <>
struct ARXOptionCodec<bool> {
    static std::optional<bool> fromJson(const QJsonValue& v) {
        if (v.isBool()) {
            return v.toBool();
        }
        if (v.isDouble()) {
            return v.toDouble() != 0.0;
        }
        return std::nullopt;
    }
    static QJsonValue toJson(bool v) { return v; }
};

template <>
struct ARXOptionCodec<qint64> {
    static std::optional<qint64> fromJson(const QJsonValue& v) {
        if (v.isBool()) {
            return v.toBool() ? 1 : 0;
        }
        return ARXStoredNumber::integer(v);
    }
    static QJsonValue toJson(qint64 v) { return v; }
};

template <>
struct ARXOptionCodec<double> {
    static std::optional<double> fromJson(const QJsonValue& v) {
        if (v.isBool()) {
            return v.toBool() ? 1.0 : 0.0;
        }
        return ARXStoredNumber::number(v);
    }
    static QJsonValue toJson(double v) { return v; }
};

template <>
struct ARXOptionCodec<QString> {
    static std::optional<QString> fromJson(const QJsonValue& v) {
        if (v.isString()) {
            return v.toString();
        }
        return std::nullopt;
    }
    static QJsonValue toJson(const QString& v) { return v; }
};

// Dates are kept as seconds since 1970, with fractions, within some 300,000 years of it.
template <>
struct ARXOptionCodec<QDateTime> {
    static std::optional<QDateTime> fromJson(const QJsonValue& v) {
        const std::optional<double> seconds = ARXStoredNumber::number(v, -1e13, 1e13);
        if (!seconds) {
            return std::nullopt;
        }
        return QDateTime::fromMSecsSinceEpoch(qint64(std::llround(*seconds * 1000.0)));
    }
    static QJsonValue toJson(const QDateTime& v) { return double(v.toMSecsSinceEpoch()) / 1000.0; }
};

template <>
struct ARXOptionCodec<QStringList> {
    static std::optional<QStringList> fromJson(const QJsonValue& v) {
        if (!v.isArray()) {
            return std::nullopt;
        }
        QStringList list;
        for (const QJsonValue& item : v.toArray()) {
            if (!item.isString()) {
                return std::nullopt; // one foreign element makes the whole list foreign
            }
            list.append(item.toString());
        }
        return list;
    }
    static QJsonValue toJson(const QStringList& v) { return QJsonArray::fromStringList(v); }
};

template <>
struct ARXOptionCodec<QList<qint64>> {
    static std::optional<QList<qint64>> fromJson(const QJsonValue& v) {
        if (!v.isArray()) {
            return std::nullopt;
        }
        QList<qint64> list;
        for (const QJsonValue& item : v.toArray()) {
            auto n = ARXOptionCodec<qint64>::fromJson(item);
            if (!n || item.isBool()) {
                return std::nullopt;
            }
            list.append(*n);
        }
        return list;
    }
    static QJsonValue toJson(const QList<qint64>& v) {
        QJsonArray a;
        for (qint64 n : v) {
            a.append(n);
        }
        return a;
    }
};

template <>
struct ARXOptionCodec<QList<QStringList>> {
    static std::optional<QList<QStringList>> fromJson(const QJsonValue& v) {
        if (!v.isArray()) {
            return std::nullopt;
        }
        QList<QStringList> list;
        for (const QJsonValue& item : v.toArray()) {
            auto inner = ARXOptionCodec<QStringList>::fromJson(item);
            if (!inner) {
                return std::nullopt;
            }
            list.append(*inner);
        }
        return list;
    }
    static QJsonValue toJson(const QList<QStringList>& v) {
        QJsonArray a;
        for (const QStringList& inner : v) {
            a.append(QJsonArray::fromStringList(inner));
        }
        return a;
    }
};

// A dictionary from text to any JSON value.
template <>
struct ARXOptionCodec<QJsonObject> {
    static std::optional<QJsonObject> fromJson(const QJsonValue& v) {
        if (v.isObject()) {
            return v.toObject();
        }
        return std::nullopt;
    }
    static QJsonValue toJson(const QJsonObject& v) { return v; }
};

// One typed key of the settings store with its default. Options never notify: whoever writes a
// value posts the notification the catalogue names for it.
template <typename T>
class ARXOption {
public:
    ARXOption(QString key, T def, ARXSettingsStore* store = nullptr)
        : key(std::move(key)), def(std::move(def)), _store(store) {}

    const QString key;
    const T def;

    // The stored value when it has the right form, otherwise the default. Nothing is written.
    T value() const {
        if (auto v = ARXOptionCodec<T>::fromJson(store().value(key))) {
            return *v;
        }
        return def;
    }

    void setValue(const T& v) const { store().setValue(key, ARXOptionCodec<T>::toJson(v)); }

    // Writes the default into the store; the key stays present.
    void reset() const { setValue(def); }

    bool isStored() const { return store().contains(key); }

private:
    ARXSettingsStore& store() const { return _store ? *_store : ARXSettingsStore::shared(); }
    ARXSettingsStore* _store;
};
