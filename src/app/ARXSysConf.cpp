#include "app/ARXSysConf.h"

#include "app/ARXOption.h"
#include "platform/ARXFileIO.h"

#include <QCryptographicHash>
#include <QLocale>
#include <QSysInfo>
#include <QUuid>

#include <algorithm>

namespace {

const QString kNotSet = QStringLiteral("(not set)");

// Atrium's namespace for name-based UUIDs.
const QUuid kDeviceNamespace(QStringLiteral("27106895-de57-4ad0-9e60-397876c4489c"));

bool isKeyCharacter(char c) {
    return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '_';
}

// The value part of one KEY=value line, with the shell's quoting removed.
std::string unquoted(std::string_view raw) {
    std::string value;
    size_t i = 0;
    while (i < raw.size()) {
        const char c = raw[i];
        if (c == '"') {
            for (++i; i < raw.size() && raw[i] != '"'; ++i) {
                // Inside double quotes a backslash escapes only these, as in the shell.
                if (raw[i] == '\\' && i + 1 < raw.size() &&
                    std::string_view("$\"\\`").find(raw[i + 1]) != std::string_view::npos) {
                    ++i;
                }
                value.push_back(raw[i]);
            }
            ++i; // the closing quote
        } else if (c == '\'') {
            for (++i; i < raw.size() && raw[i] != '\''; ++i) {
                value.push_back(raw[i]);
            }
            ++i;
        } else if (c == '\\' && i + 1 < raw.size()) {
            value.push_back(raw[i + 1]);
            i += 2;
        } else if (c == ' ' || c == '\t' || c == '#') {
            break; // the end of the word; what follows is no part of the value
        } else {
            value.push_back(c);
            ++i;
        }
    }
    return value;
}

std::string_view trimmed(std::string_view text) {
    const auto first = text.find_first_not_of(" \t\r\n");
    if (first == std::string_view::npos) {
        return {};
    }
    const auto last = text.find_last_not_of(" \t\r\n");
    return text.substr(first, last - first + 1);
}

} // namespace

ARXSysConf& ARXSysConf::shared() {
    static ARXSysConf conf;
    return conf;
}

ARXSysConf::ARXSysConf(Sources sources) : _sources(std::move(sources)) {}

QString ARXSysConf::cached(std::optional<QString>& slot, QString (ARXSysConf::*compute)()) {
    // Recursive: one fact may be built from others (the user agent from name and version).
    QMutexLocker lock(&_mutex);
    if (!slot) {
        slot = (this->*compute)();
    }
    return *slot;
}

QString ARXSysConf::appUserAgent() {
    return cached(_appUserAgent, &ARXSysConf::computeUserAgent);
}

QString ARXSysConf::appName() {
    return QStringLiteral("Atrium");
}

QString ARXSysConf::appIdentifier() {
    return QStringLiteral("com.brightmoor.atrium");
}

QString ARXSysConf::appVersion() {
    return QStringLiteral(ATRIUM_VERSION);
}

QString ARXSysConf::appBuild() {
#ifdef ATRIUM_BUILD
    return QStringLiteral(ATRIUM_BUILD);
#else
    return {};
#endif
}

QString ARXSysConf::formattedAppVersion() {
    const QString build = appBuild();
    if (build.isEmpty() || build == appVersion()) {
        return appVersion();
    }
    return QStringLiteral("%1 (%2)").arg(appVersion(), build);
}

QString ARXSysConf::userLanguage() {
    return cached(_userLanguage, &ARXSysConf::computeUserLanguage);
}

QString ARXSysConf::screenResolution() {
    QMutexLocker lock(&_mutex);
    return _screenResolution.value_or(kNotSet);
}

void ARXSysConf::setScreenResolution(int width, int height) {
    QMutexLocker lock(&_mutex);
    _screenResolution = QStringLiteral("%1x%2").arg(width).arg(height);
}

QString ARXSysConf::systemLanguage() {
    QMutexLocker lock(&_mutex);
    if (!_systemLanguage) {
        _systemLanguage = QLocale::system().name();
    }
    return *_systemLanguage;
}

QString ARXSysConf::formattedSystemVersion() {
    return cached(_formattedSystemVersion, &ARXSysConf::computeSystemVersion);
}

QString ARXSysConf::machineSerial() {
    return cached(_machineSerial, &ARXSysConf::computeMachineSerial);
}

QString ARXSysConf::appDeviceID() {
    return cached(_appDeviceID, &ARXSysConf::computeDeviceID);
}

QString ARXSysConf::computeUserAgent() {
    const QString machine = _sources.machine.value_or(QSysInfo::currentCpuArchitecture());
    return QStringLiteral("Mozilla/5.0 (X11; Linux %1) AppleWebKit/603.2.4 (KHTML, like Gecko) "
                          "%2/%3")
        .arg(machine, appName(), appVersion());
}

QString ARXSysConf::computeUserLanguage() {
    const QStringList languages = _sources.uiLanguages.value_or(QLocale::system().uiLanguages());
    return languages.isEmpty() || languages.first().isEmpty() ? kNotSet : languages.first();
}

QString ARXSysConf::computeSystemVersion() {
    // os-release names the distribution; the kernel release tells the rest.
    QString name;
    for (const Path& file : _sources.osReleaseFiles) {
        if (auto text = ARXFileIO::readFile(file, 1 << 16)) {
            const auto fields = parseOsRelease(*text);
            name = fields.value(QStringLiteral("PRETTY_NAME"));
            if (name.isEmpty()) {
                name = (fields.value(QStringLiteral("NAME")) + u' ' +
                        fields.value(QStringLiteral("VERSION")))
                           .trimmed();
            }
            break; // the first file found wins, even when it says little
        }
    }
    const QString kernel = _sources.kernelRelease.value_or(QSysInfo::kernelVersion());
    if (name.isEmpty()) {
        // os-release says a missing name means "Linux"; no need to say it twice.
        return kernel.isEmpty() ? QStringLiteral("Linux") : QStringLiteral("Linux %1").arg(kernel);
    }
    return kernel.isEmpty() ? name : QStringLiteral("%1, Linux %2").arg(name, kernel);
}

QString ARXSysConf::computeMachineSerial() {
    for (const Path& file : _sources.machineIdFiles) {
        const auto text = ARXFileIO::readFile(file, 4096);
        if (!text) {
            continue;
        }
        const std::string_view id = trimmed(*text);
        // An image that has not booted yet holds an empty file or "uninitialized".
        if (id.empty() || id == "uninitialized") {
            continue;
        }
        return QString::fromLatin1(
            QCryptographicHash::hash(QByteArray(id.data(), qsizetype(id.size())),
                                     QCryptographicHash::Sha256)
                .toHex());
    }
    return {};
}

QString ARXSysConf::deviceIDFromSerial(const QString& serial) {
    return QUuid::createUuidV5(kDeviceNamespace, serial).toString(QUuid::WithoutBraces);
}

QString ARXSysConf::computeDeviceID() {
    // Made once and remembered, so that the identity survives a changed or missing machine id.
    const ARXOption<QString> stored(QStringLiteral("app_device_id"), QString(), _sources.store);
    QString id = stored.value();
    if (!id.isEmpty()) {
        return id;
    }
    const QString serial = machineSerial();
    id = serial.isEmpty() ? QUuid::createUuid().toString(QUuid::WithoutBraces)
                          : deviceIDFromSerial(serial);
    stored.setValue(id);
    return id;
}

QHash<QString, QString> ARXSysConf::parseOsRelease(std::string_view text) {
    QHash<QString, QString> fields;
    while (!text.empty()) {
        const auto eol = text.find('\n');
        const std::string_view line = trimmed(text.substr(0, eol));
        text = eol == std::string_view::npos ? std::string_view() : text.substr(eol + 1);
        if (line.empty() || line.front() == '#') {
            continue;
        }
        const auto equals = line.find('=');
        if (equals == std::string_view::npos || equals == 0) {
            continue;
        }
        const std::string_view key = line.substr(0, equals);
        if (!std::all_of(key.begin(), key.end(), isKeyCharacter)) {
            continue;
        }
        const std::string value = unquoted(line.substr(equals + 1));
        fields.insert(QString::fromLatin1(key.data(), qsizetype(key.size())),
                      QString::fromUtf8(value.data(), qsizetype(value.size())));
    }
    return fields;
}
