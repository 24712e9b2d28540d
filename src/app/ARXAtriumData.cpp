#include "app/ARXAtriumData.h"

#include "app/ARXStoredNumber.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonParseError>

#include <cmath>

namespace {

// Reads typed values out of one JSON object and remembers the first failure with the path of
// the key ("vd2.histories"), so that the console can say exactly what is wrong with a file.
class Reader {
public:
    Reader(const QJsonObject& object, QString where, QString* error)
        : _object(object), _where(std::move(where)), _error(error) {}

    bool ok() const { return _ok; }

    template <typename T, typename F>
    T required(const char* key, F convert) {
        const QJsonValue v = _object.value(QLatin1String(key));
        if (v.isUndefined() || v.isNull()) {
            fail(key, QStringLiteral("is missing"));
            return T{};
        }
        auto result = convert(v);
        if (!result) {
            fail(key, QStringLiteral("has the wrong type"));
            return T{};
        }
        return *result;
    }

    template <typename T, typename F>
    std::optional<T> optional(const char* key, F convert) {
        const QJsonValue v = _object.value(QLatin1String(key));
        if (v.isUndefined() || v.isNull()) {
            return std::nullopt;
        }
        auto result = convert(v);
        if (!result) {
            fail(key, QStringLiteral("has the wrong type"));
        }
        return result;
    }

    QString path(const char* key) const {
        return _where.isEmpty() ? QLatin1String(key) : _where + u'.' + QLatin1String(key);
    }

private:
    void fail(const char* key, const QString& why) {
        if (_ok && _error) {
            *_error = QStringLiteral("\"%1\" %2").arg(path(key), why);
        }
        _ok = false;
    }

    const QJsonObject& _object;
    QString _where;
    QString* _error;
    bool _ok = true;
};

// Every number of a record is clamped as it is read (ARXStoredNumber), so that whatever the
// file says, no later conversion to a widget's int can overflow.
std::optional<qint64> asInteger(const QJsonValue& v) {
    if (v.isDouble() && v.toDouble() != std::trunc(v.toDouble())) {
        return std::nullopt; // 2.5 is no integer
    }
    return ARXStoredNumber::integer(v);
}

std::optional<double> asNumber(const QJsonValue& v) {
    return ARXStoredNumber::number(v);
}

// A split's share of its space.
std::optional<double> asFactor(const QJsonValue& v) {
    return ARXStoredNumber::number(v, 0.0, 1.0);
}

std::optional<bool> asBool(const QJsonValue& v) {
    if (!v.isBool()) {
        return std::nullopt;
    }
    return v.toBool();
}

std::optional<QString> asString(const QJsonValue& v) {
    if (!v.isString()) {
        return std::nullopt;
    }
    return v.toString();
}

std::optional<Path> asPath(const QJsonValue& v) {
    if (!v.isString()) {
        return std::nullopt;
    }
    return ARXPath::fromStoredText(v.toString());
}

template <typename T, typename F>
std::optional<std::vector<T>> asArrayOf(const QJsonValue& v, F convert) {
    if (!v.isArray()) {
        return std::nullopt;
    }
    std::vector<T> out;
    for (const QJsonValue& item : v.toArray()) {
        auto converted = convert(item);
        if (!converted) {
            return std::nullopt;
        }
        out.push_back(std::move(*converted));
    }
    return out;
}

std::optional<std::vector<Path>> asPaths(const QJsonValue& v) {
    return asArrayOf<Path>(v, asPath);
}

std::optional<QStringList> asStrings(const QJsonValue& v) {
    auto list = asArrayOf<QString>(v, asString);
    if (!list) {
        return std::nullopt;
    }
    return QStringList(list->begin(), list->end());
}

template <auto convert = asNumber>
std::optional<QList<double>> asNumbers(const QJsonValue& v) {
    auto list = asArrayOf<double>(v, convert);
    if (!list) {
        return std::nullopt;
    }
    return QList<double>(list->begin(), list->end());
}

std::optional<QMap<QString, double>> asWidths(const QJsonValue& v) {
    if (!v.isObject()) {
        return std::nullopt;
    }
    QMap<QString, double> widths;
    const QJsonObject object = v.toObject();
    for (auto it = object.begin(); it != object.end(); ++it) {
        const std::optional<double> width = asNumber(it.value());
        if (!width) {
            return std::nullopt;
        }
        widths.insert(it.key(), *width);
    }
    return widths;
}

// [[x, y], [width, height]]
std::optional<QRectF> asFrame(const QJsonValue& v) {
    auto pairs = asArrayOf<QList<double>>(v, asNumbers<>);
    if (!pairs || pairs->size() < 2 || (*pairs)[0].size() < 2 || (*pairs)[1].size() < 2) {
        return std::nullopt;
    }
    return QRectF((*pairs)[0][0], (*pairs)[0][1], (*pairs)[1][0], (*pairs)[1][1]);
}

QJsonArray pathsToJson(const std::vector<Path>& paths) {
    QJsonArray array;
    for (const Path& p : paths) {
        array.append(ARXPath::toStoredText(p));
    }
    return array;
}

std::optional<ARXSpaceData> asSpace(const QJsonValue& v, const QString& where, QString* error) {
    if (!v.isObject()) {
        if (error) {
            *error = QStringLiteral("\"%1\" has the wrong type").arg(where);
        }
        return std::nullopt;
    }
    const QJsonObject object = v.toObject();
    Reader r(object, where, error);
    ARXSpaceData s;
    s.viewType = r.required<qint64>("viewType", asInteger);
    s.lod = r.optional<qint64>("lod", asInteger);
    s.histories = r.required<std::vector<Path>>("histories", asPaths);
    s.historyIndex = r.required<qint64>("historyIndex", asInteger);
    s.root = r.required<Path>("root", asPath);
    s.sortColumn = r.optional<QString>("sortColumn", asString);
    s.sortAscend = r.optional<bool>("sortAscend", asBool);
    s.sortFoldersOnTop = r.optional<bool>("sortFoldersOnTop", asBool);
    s.startPath = r.optional<Path>("startPath", asPath);
    s.expands = r.optional<std::vector<Path>>("expands", asPaths);
    s.selections = r.optional<std::vector<Path>>("selections", asPaths);
    s.visibleColumns = r.optional<QStringList>("visibleColumns", asStrings);
    s.columnWidths = r.optional<QMap<QString, double>>("columnWidths", asWidths);
    if (!r.ok()) {
        return std::nullopt;
    }
    return s;
}

QJsonObject spaceToJson(const ARXSpaceData& s) {
    QJsonObject o;
    o.insert(QStringLiteral("viewType"), s.viewType);
    if (s.lod) {
        o.insert(QStringLiteral("lod"), *s.lod);
    }
    o.insert(QStringLiteral("histories"), pathsToJson(s.histories));
    o.insert(QStringLiteral("historyIndex"), s.historyIndex);
    o.insert(QStringLiteral("root"), ARXPath::toStoredText(s.root));
    if (s.sortColumn) {
        o.insert(QStringLiteral("sortColumn"), *s.sortColumn);
    }
    if (s.sortAscend) {
        o.insert(QStringLiteral("sortAscend"), *s.sortAscend);
    }
    if (s.sortFoldersOnTop) {
        o.insert(QStringLiteral("sortFoldersOnTop"), *s.sortFoldersOnTop);
    }
    if (s.startPath) {
        o.insert(QStringLiteral("startPath"), ARXPath::toStoredText(*s.startPath));
    }
    if (s.expands) {
        o.insert(QStringLiteral("expands"), pathsToJson(*s.expands));
    }
    if (s.selections) {
        o.insert(QStringLiteral("selections"), pathsToJson(*s.selections));
    }
    if (s.visibleColumns) {
        o.insert(QStringLiteral("visibleColumns"), QJsonArray::fromStringList(*s.visibleColumns));
    }
    if (s.columnWidths) {
        QJsonObject widths;
        for (auto it = s.columnWidths->begin(); it != s.columnWidths->end(); ++it) {
            widths.insert(it.key(), it.value());
        }
        o.insert(QStringLiteral("columnWidths"), widths);
    }
    return o;
}

const char* const kSpaceKeys[4] = {"vd1", "vd2", "vd3", "vd4"};

} // namespace

QJsonObject ARXAtriumData::toJson() const {
    QJsonObject o;
    o.insert(QStringLiteral("frame"), QJsonArray{QJsonArray{frame.x(), frame.y()},
                                                 QJsonArray{frame.width(), frame.height()}});
    if (hotkey) {
        o.insert(QStringLiteral("hotkey"), *hotkey);
    }
    if (fullscreen) {
        o.insert(QStringLiteral("fullscreen"), *fullscreen);
    }
    if (pinTop) {
        o.insert(QStringLiteral("pinTop"), *pinTop);
    }
    if (sidebarWidth) {
        o.insert(QStringLiteral("sidebarWidth"), *sidebarWidth);
    }
    if (layoutId) {
        o.insert(QStringLiteral("layoutId"), *layoutId);
    }
    if (layoutFactors) {
        QJsonArray factors;
        for (double f : *layoutFactors) {
            factors.append(f);
        }
        o.insert(QStringLiteral("layoutFactors"), factors);
    }
    for (int i = 0; i < 4; ++i) {
        if (spaces[i]) {
            o.insert(QLatin1String(kSpaceKeys[i]), spaceToJson(*spaces[i]));
        }
    }
    return o;
}

std::optional<ARXAtriumData> ARXAtriumData::fromJson(const QJsonObject& object, QString* error) {
    Reader r(object, QString(), error);
    ARXAtriumData d;
    d.frame = r.required<QRectF>("frame", asFrame);
    d.hotkey = r.optional<QString>("hotkey", asString);
    d.fullscreen = r.optional<bool>("fullscreen", asBool);
    d.pinTop = r.optional<bool>("pinTop", asBool);
    d.sidebarWidth = r.optional<double>("sidebarWidth", asNumber);
    d.layoutId = r.optional<qint64>("layoutId", asInteger);
    d.layoutFactors = r.optional<QList<double>>("layoutFactors", asNumbers<asFactor>);
    if (!r.ok()) {
        return std::nullopt;
    }
    for (int i = 0; i < 4; ++i) {
        const QJsonValue v = object.value(QLatin1String(kSpaceKeys[i]));
        if (v.isUndefined() || v.isNull()) {
            continue;
        }
        d.spaces[i] = asSpace(v, QLatin1String(kSpaceKeys[i]), error);
        if (!d.spaces[i]) {
            return std::nullopt;
        }
    }
    return d;
}

std::optional<ARXAtriumData> ARXAtriumData::fromJsonBytes(const QByteArray& bytes, QString* error) {
    QJsonParseError parseError{};
    const QJsonDocument doc = QJsonDocument::fromJson(bytes, &parseError);
    if (parseError.error != QJsonParseError::NoError) {
        if (error) {
            *error = QStringLiteral("not valid JSON: %1 at offset %2")
                         .arg(parseError.errorString())
                         .arg(parseError.offset);
        }
        return std::nullopt;
    }
    if (!doc.isObject()) {
        if (error) {
            *error = QStringLiteral("the file does not hold a JSON object");
        }
        return std::nullopt;
    }
    return fromJson(doc.object(), error);
}
