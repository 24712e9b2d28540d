#include "app/ARXSettingsStore.h"

#include "platform/ARXConsole.h"
#include "platform/ARXFileIO.h"
#include "platform/ARXSystemPaths.h"

#include <QJsonDocument>
#include <QJsonParseError>

#include <cerrno>

ARXSettingsStore& ARXSettingsStore::shared() {
    static ARXSettingsStore store(defaultFilePath());
    return store;
}

Path ARXSettingsStore::defaultFilePath() {
    return ARXPath::join(ARXPath::join(ARXSystemPaths::configHome(), "Atrium"), "defaults.json");
}

ARXSettingsStore::ARXSettingsStore(Path file) : _file(std::move(file)) {
    load();
}

void ARXSettingsStore::reload() {
    QMutexLocker lock(&_mutex);
    _values = {};
    _fileUnreadable = false;
    lock.unlock();
    load();
}

void ARXSettingsStore::load() {
    QMutexLocker lock(&_mutex);
    const QString where = ARXPath::display(_file);
    int error = 0;
    const auto data = ARXFileIO::readFile(_file, 16u << 20, &error);
    if (!data) {
        if (error != ENOENT) {
            _fileUnreadable = true;
            ARXConsole::line(
                QStringLiteral("Atrium: cannot read settings file %1: %2; using defaults")
                    .arg(where, QString::fromStdString(ARXFileIO::errorText(error))));
        }
        return;
    }
    if (data->find_first_not_of(" \t\r\n") == std::string::npos) {
        // An empty file holds nothing worth keeping; the next save simply fills it.
        ARXConsole::line(
            QStringLiteral("Atrium: settings file %1 is empty; using defaults").arg(where));
        return;
    }
    QJsonParseError parseError{};
    const QJsonDocument doc = QJsonDocument::fromJson(
        QByteArray::fromRawData(data->data(), qsizetype(data->size())), &parseError);
    if (parseError.error != QJsonParseError::NoError || !doc.isObject()) {
        _fileUnreadable = true;
        const QString reason = parseError.error != QJsonParseError::NoError
                                   ? QStringLiteral("%1 at offset %2")
                                         .arg(parseError.errorString())
                                         .arg(parseError.offset)
                                   : QStringLiteral("it does not hold a JSON object");
        ARXConsole::line(QStringLiteral("Atrium: settings file %1 is not valid: %2; using defaults")
                             .arg(where, reason));
        return;
    }
    _values = doc.object();
}

QJsonValue ARXSettingsStore::value(const QString& key) const {
    QMutexLocker lock(&_mutex);
    return _values.value(key);
}

bool ARXSettingsStore::contains(const QString& key) const {
    QMutexLocker lock(&_mutex);
    return _values.contains(key);
}

void ARXSettingsStore::setValue(const QString& key, const QJsonValue& value) {
    QMutexLocker lock(&_mutex);
    if (value.isUndefined()) {
        _values.remove(key);
    } else {
        _values.insert(key, value);
    }
    save();
}

void ARXSettingsStore::remove(const QString& key) {
    QMutexLocker lock(&_mutex);
    if (_values.contains(key)) {
        _values.remove(key);
        save();
    }
}

void ARXSettingsStore::save() {
    const QString where = ARXPath::display(_file);
    if (_fileUnreadable) {
        if (ARXFileIO::exists(_file)) {
            const Path aside = ARXFileIO::setAside(_file);
            if (aside.empty()) {
                ARXConsole::line(
                    QStringLiteral(
                        "Atrium: settings not saved: cannot move the unreadable %1 aside")
                        .arg(where));
                return;
            }
            ARXConsole::line(QStringLiteral("Atrium: the unreadable settings file was kept as %1")
                                 .arg(ARXPath::display(aside)));
        }
        _fileUnreadable = false;
    }
    if (int error = ARXFileIO::makeDirectories(ARXPath::parentPath(_file))) {
        ARXConsole::line(QStringLiteral("Atrium: cannot save settings to %1: %2")
                             .arg(where, QString::fromStdString(ARXFileIO::errorText(error))));
        return;
    }
    const QByteArray json = QJsonDocument(_values).toJson(QJsonDocument::Indented);
    if (int error = ARXFileIO::writeAtomically(
            _file, std::string_view(json.constData(), size_t(json.size())))) {
        ARXConsole::line(QStringLiteral("Atrium: cannot save settings to %1: %2")
                             .arg(where, QString::fromStdString(ARXFileIO::errorText(error))));
    }
}
