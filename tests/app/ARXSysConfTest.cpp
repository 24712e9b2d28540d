#include "app/ARXSysConf.h"

#include "support/ARXTestEnvironment.h"

#include <QUuid>

#include <gtest/gtest.h>

namespace {

// SHA-256 of "abc", the digest of a machine id file holding "abc\n".
const QString kAbcDigest =
    QStringLiteral("ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad");

class ARXSysConfTest : public ARXTestEnvironment {
protected:
    void SetUp() override {
        ARXTestEnvironment::SetUp();
        store = std::make_unique<ARXSettingsStore>(ARXPath::join(root(), "defaults.json"));
    }

    Path fixture(const char* name) const { return ARXPath::join(root(), name); }

    // Sources that see only the fixture's files.
    ARXSysConf::Sources sources() const {
        ARXSysConf::Sources s;
        s.osReleaseFiles = {fixture("etc-os-release"), fixture("usr-os-release")};
        s.machineIdFiles = {fixture("machine-id"), fixture("dbus-machine-id")};
        s.kernelRelease = QStringLiteral("6.1.0-18-amd64");
        s.machine = QStringLiteral("aarch64");
        s.store = store.get();
        return s;
    }

    std::unique_ptr<ARXSettingsStore> store;
};

TEST_F(ARXSysConfTest, OsReleaseFollowsTheShellQuotingRules) {
    const auto fields =
        ARXSysConf::parseOsRelease("# comment\n"
                                   "\n"
                                   "PRETTY_NAME=\"Debian GNU/Linux 12 (bookworm)\"\n"
                                   "NAME=Fedora\\ Linux\n"
                                   "  VERSION='40 (Workstation \"Edition\")'\r\n"
                                   "ID=\"a\\\"b\\\\c\\$d\\x\"\n"
                                   "VARIANT=plain # trailing comment\n"
                                   "BAD KEY=1\n"
                                   "=nokey\n"
                                   "EMPTY=\n"
                                   "LOGO=\"unterminated");
    EXPECT_EQ(fields.value("PRETTY_NAME"), QStringLiteral("Debian GNU/Linux 12 (bookworm)"));
    EXPECT_EQ(fields.value("NAME"), QStringLiteral("Fedora Linux"));
    EXPECT_EQ(fields.value("VERSION"), QStringLiteral("40 (Workstation \"Edition\")"));
    EXPECT_EQ(fields.value("ID"), QStringLiteral("a\"b\\c$d\\x"));
    EXPECT_EQ(fields.value("VARIANT"), QStringLiteral("plain"));
    EXPECT_TRUE(fields.contains("EMPTY"));
    EXPECT_EQ(fields.value("LOGO"), QStringLiteral("unterminated"));
    EXPECT_EQ(fields.size(), 7);
}

TEST_F(ARXSysConfTest, SystemVersionNamesTheDistributionAndTheKernel) {
    writeFile(fixture("usr-os-release"), "PRETTY_NAME=\"Debian GNU/Linux 12 (bookworm)\"\n");
    EXPECT_EQ(ARXSysConf(sources()).formattedSystemVersion(),
              QStringLiteral("Debian GNU/Linux 12 (bookworm), Linux 6.1.0-18-amd64"))
        << "the second file serves when the first is missing";

    // The first file wins even without a pretty name; NAME and VERSION stand in.
    writeFile(fixture("etc-os-release"), "NAME=Alpine\nVERSION=3.19\n");
    ARXSysConf conf(sources());
    EXPECT_EQ(conf.formattedSystemVersion(), QStringLiteral("Alpine 3.19, Linux 6.1.0-18-amd64"));

    // Worked out once: later changes of the file don't show.
    writeFile(fixture("etc-os-release"), "PRETTY_NAME=Other\n");
    EXPECT_EQ(conf.formattedSystemVersion(), QStringLiteral("Alpine 3.19, Linux 6.1.0-18-amd64"));
}

TEST_F(ARXSysConfTest, SystemVersionWithoutOsRelease) {
    EXPECT_EQ(ARXSysConf(sources()).formattedSystemVersion(),
              QStringLiteral("Linux 6.1.0-18-amd64"));
}

TEST_F(ARXSysConfTest, MachineSerialIsTheDigestOfTheFirstUsableMachineId) {
    writeFile(fixture("machine-id"), "abc\n");
    EXPECT_EQ(ARXSysConf(sources()).machineSerial(), kAbcDigest);

    // A system image that has not booted holds an empty or "uninitialized" id: D-Bus's serves.
    writeFile(fixture("dbus-machine-id"), "abc");
    for (const char* unset : {"", "\n", "uninitialized\n"}) {
        writeFile(fixture("machine-id"), unset);
        EXPECT_EQ(ARXSysConf(sources()).machineSerial(), kAbcDigest) << unset;
    }
}

TEST_F(ARXSysConfTest, DeviceIDIsDerivedFromTheSerialAndRemembered) {
    writeFile(fixture("machine-id"), "abc\n");
    const QString id = ARXSysConf(sources()).appDeviceID();
    EXPECT_EQ(id, ARXSysConf::deviceIDFromSerial(kAbcDigest));
    EXPECT_EQ(QUuid::fromString(id).version(), QUuid::Sha1);
    EXPECT_EQ(store->value("app_device_id"), QJsonValue(id));

    // Once stored, the identity stays even when the machine id changes.
    writeFile(fixture("machine-id"), "def\n");
    EXPECT_EQ(ARXSysConf(sources()).appDeviceID(), id);
    EXPECT_NE(ARXSysConf::deviceIDFromSerial(QStringLiteral("def")),
              ARXSysConf::deviceIDFromSerial(QStringLiteral("abc")));
}

TEST_F(ARXSysConfTest, WithoutMachineIdTheDeviceIDIsRandomButStable) {
    ARXSysConf conf(sources());
    EXPECT_EQ(conf.machineSerial(), QString());
    const QString id = conf.appDeviceID();
    EXPECT_FALSE(QUuid::fromString(id).isNull()) << id.toStdString();
    EXPECT_EQ(ARXSysConf(sources()).appDeviceID(), id) << "a second start keeps it";
}

TEST_F(ARXSysConfTest, LanguagesUserAgentAndScreen) {
    ARXSysConf::Sources s = sources();
    s.uiLanguages = QStringList();
    EXPECT_EQ(ARXSysConf(s).userLanguage(), QStringLiteral("(not set)"));
    s.uiLanguages = QStringList({"de-CH", "en"});
    EXPECT_EQ(ARXSysConf(s).userLanguage(), QStringLiteral("de-CH"));

    ARXSysConf conf(sources());
    EXPECT_EQ(conf.appUserAgent(), QStringLiteral("Mozilla/5.0 (X11; Linux aarch64) "
                                                  "AppleWebKit/603.2.4 (KHTML, like Gecko) "
                                                  "Atrium/" ATRIUM_VERSION));
    EXPECT_EQ(conf.screenResolution(), QStringLiteral("(not set)"));
}

} // namespace
