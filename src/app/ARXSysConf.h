#pragma once

#include "app/ARXSettingsStore.h"
#include "platform/ARXPath.h"

#include <QHash>
#include <QRecursiveMutex>
#include <QString>
#include <QStringList>

#include <optional>
#include <string_view>
#include <vector>

// Facts about the running program and machine, for the usage reports: each is worked out at its
// first use and kept. Safe to call from any thread.
class ARXSysConf {
public:
    // Where the facts come from. The defaults describe the real system; tests point them at
    // fixtures.
    struct Sources {
        std::vector<Path> osReleaseFiles{"/etc/os-release", "/usr/lib/os-release"};
        std::vector<Path> machineIdFiles{"/etc/machine-id", "/var/lib/dbus/machine-id"};
        std::optional<QString> kernelRelease;   // default: QSysInfo::kernelVersion()
        std::optional<QString> machine;         // default: the running CPU architecture
        std::optional<QStringList> uiLanguages; // default: QLocale::system().uiLanguages()
        ARXSettingsStore* store = nullptr;      // keeps "app_device_id"; default: the shared one
    };

    static ARXSysConf& shared();

    ARXSysConf() : ARXSysConf(Sources{}) {}
    explicit ARXSysConf(Sources sources);

    // "Mozilla/5.0 (X11; Linux x86_64) AppleWebKit/603.2.4 (KHTML, like Gecko) Atrium/0.1.0"
    QString appUserAgent();
    QString appName();                // "Atrium"
    QString appIdentifier();          // "com.brightmoor.atrium"
    QString appVersion();             // the project version
    QString appBuild();               // the build number when the build names one, else empty
    QString formattedAppVersion();    // "0.1.0", or "0.1.0 (build)" with a build number
    QString userLanguage();           // first preferred UI language, or "(not set)"
    QString screenResolution();       // "1920x1080" once the interface has said, else "(not set)"
    QString systemLanguage();         // the system locale's name ("en_US")
    QString formattedSystemVersion(); // "Debian GNU/Linux 12 (bookworm), Linux 6.1.0-18-amd64"
    QString machineSerial();          // SHA-256 hex of the machine id; empty when there is none
    QString appDeviceID();            // the stable identity of this installation, a UUID

    // Logic has no screens; the interface tells the size of the primary one when it starts.
    void setScreenResolution(int width, int height);

    // The assignments of an os-release file (shell-like KEY=value lines, values optionally in
    // single or double quotes, "\" escaping within double quotes, "#" comments).
    static QHash<QString, QString> parseOsRelease(std::string_view text);

    // The device identity derived from a machine serial: a name-based (version 5) UUID in
    // Atrium's own namespace, so that the machine id itself never leaves the machine and other
    // programs that derive from it get other values.
    static QString deviceIDFromSerial(const QString& serial);

private:
    QString cached(std::optional<QString>& slot, QString (ARXSysConf::*compute)());

    QString computeUserAgent();
    QString computeUserLanguage();
    QString computeSystemVersion();
    QString computeMachineSerial();
    QString computeDeviceID();

    const Sources _sources;
    QRecursiveMutex _mutex;
    // In the order the facts are listed above.
    std::optional<QString> _appUserAgent;
    std::optional<QString> _userLanguage;
    std::optional<QString> _screenResolution;
    std::optional<QString> _systemLanguage;
    std::optional<QString> _formattedSystemVersion;
    std::optional<QString> _machineSerial;
    std::optional<QString> _appDeviceID;
};
