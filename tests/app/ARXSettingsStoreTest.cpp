#include "app/ARXSettingsStore.h"

#include "app/ARXConf.h"
#include "app/ARXOption.h"
#include "app/ARXSecureOption.h"
#include "platform/ARXFileIO.h"
#include "support/ARXTestEnvironment.h"

#include <QJsonDocument>

#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

class ARXSettingsStoreTest : public ARXTestEnvironment {
protected:
    Path folder() const { return ARXPath::join(configHome(), "Atrium"); }
    Path file() const { return ARXPath::join(folder(), "defaults.json"); }

    QJsonObject fileObject() const {
        const std::string text = readFile(file());
        return QJsonDocument::fromJson(QByteArray::fromStdString(text)).object();
    }

    static mode_t modeOf(const Path& path) {
        struct stat st {};
        EXPECT_EQ(::stat(path.c_str(), &st), 0) << path;
        return st.st_mode & 07777;
    }

    std::vector<std::string> folderNames() const {
        auto names = ARXFileIO::listNames(folder()).value_or(std::vector<std::string>{});
        std::sort(names.begin(), names.end());
        return names;
    }
};

TEST_F(ARXSettingsStoreTest, MissingFileReadsEmptyAndTheFirstWriteCreatesAPrivateFile) {
    ARXSettingsStore store(file());
    EXPECT_TRUE(store.value("a").isUndefined());
    EXPECT_FALSE(store.contains("a"));
    EXPECT_FALSE(ARXFileIO::exists(folder())) << "reading must not create anything";

    store.setValue("a", 1);
    EXPECT_EQ(fileObject(), QJsonObject({{"a", 1}}));
    EXPECT_EQ(modeOf(file()), 0600u);
    EXPECT_EQ(modeOf(folder()), 0700u);
    EXPECT_EQ(folderNames(), std::vector<std::string>{"defaults.json"}) << "no temporary left";
}

TEST_F(ARXSettingsStoreTest, EmptyFileIsSimplyFilledWithoutASetAsideCopy) {
    writeFile(file(), " \n\t");
    ARXSettingsStore store(file());
    EXPECT_FALSE(store.contains("a"));
    store.setValue("a", "x");
    EXPECT_EQ(fileObject(), QJsonObject({{"a", "x"}}));
    EXPECT_EQ(folderNames(), std::vector<std::string>{"defaults.json"});
}

// A file that cannot be understood runs Atrium on defaults; it stays untouched until the first
// save, which moves it aside byte for byte and never writes over it.
TEST_F(ARXSettingsStoreTest, UnparsableFilesAreSetAsideOnTheFirstSaveOnly) {
    const std::string samples[] = {
        R"({"settings_default_layout": 3, "settings_default_view": )", // truncated
        R"([1, 2, 3])",                                                // no object
        R"("settings")",                                               // a bare string
        "{\"a\": \"\xff\xfe\"}",                                       // not UTF-8
    };
    for (const std::string& broken : samples) {
        SCOPED_TRACE(broken);
        ARXRemoveTree(folder());
        writeFile(file(), broken);

        ARXSettingsStore store(file());
        EXPECT_FALSE(store.contains("settings_default_layout"));
        store.remove("settings_default_layout"); // nothing to remove: no save either
        EXPECT_EQ(readFile(file()), broken);
        EXPECT_FALSE(ARXFileIO::exists(file() + ".broken"));

        store.setValue("b", true);
        EXPECT_EQ(readFile(file() + ".broken"), broken);
        EXPECT_EQ(fileObject(), QJsonObject({{"b", true}}));

        // Later saves write the new file; the copy stays as it was.
        store.setValue("c", 2);
        EXPECT_EQ(readFile(file() + ".broken"), broken);
        EXPECT_EQ(fileObject(), QJsonObject({{"b", true}, {"c", 2}}));
    }
}

TEST_F(ARXSettingsStoreTest, ASecondBrokenFileDoesNotReplaceTheFirstCopy) {
    writeFile(file(), "{first");
    ARXSettingsStore(file()).setValue("a", 1);
    writeFile(file(), "{second");
    ARXSettingsStore(file()).setValue("a", 2);
    EXPECT_EQ(readFile(file() + ".broken"), "{first");
    EXPECT_EQ(readFile(file() + ".broken-2"), "{second");
    EXPECT_EQ(fileObject(), QJsonObject({{"a", 2}}));
}

TEST_F(ARXSettingsStoreTest, WrongTypesFallBackToTheDefaultAndStayStored) {
    writeFile(file(), R"({"flag": "yes", "count": "3", "names": ["a", 1], "when": "today",
                         "size": [12], "tabs": [["a"], "b"], "map": [1]})");
    ARXSettingsStore store(file());
    const std::string before = readFile(file());

    EXPECT_EQ(ARXOption<bool>("flag", true, &store).value(), true);
    EXPECT_EQ(ARXOption<qint64>("count", 7, &store).value(), 7);
    EXPECT_EQ(ARXOption<QStringList>("names", {"d"}, &store).value(), QStringList{"d"});
    const QDateTime epoch = QDateTime::fromSecsSinceEpoch(0);
    EXPECT_EQ(ARXOption<QDateTime>("when", epoch, &store).value(), epoch);
    EXPECT_EQ(ARXOption<double>("size", 12.5, &store).value(), 12.5);
    EXPECT_EQ(ARXOption<QList<QStringList>>("tabs", {}, &store).value(), QList<QStringList>{});
    EXPECT_EQ(ARXOption<QJsonObject>("map", {}, &store).value(), QJsonObject{});
    EXPECT_EQ(readFile(file()), before) << "reads write nothing";

    // A later save of another key keeps the foreign values as they were.
    ARXOption<qint64>("other", 0, &store).setValue(5);
    const QJsonObject saved = fileObject();
    EXPECT_EQ(saved.value("flag"), QJsonValue("yes"));
    EXPECT_EQ(saved.value("names"), QJsonArray({"a", 1}));
    EXPECT_EQ(saved.value("other"), QJsonValue(5));
}

TEST_F(ARXSettingsStoreTest, AppearanceZeroIsRemovedWhenItIsAppliedAtLaunch) {
    writeFile(file(), R"({"settings_appearance": 0, "settings_default_layout": 3})");
    ARXSettingsStore::shared().reload();
    EXPECT_EQ(ARXConf::appearanceToApply(), 0);
    EXPECT_FALSE(fileObject().contains("settings_appearance"));
    EXPECT_EQ(fileObject().value("settings_default_layout"), QJsonValue(3));

    ARXConf::storeAppearance(2);
    EXPECT_EQ(ARXConf::appearanceToApply(), 2);
    EXPECT_EQ(fileObject().value("settings_appearance"), QJsonValue(2));
    // Choosing the system's appearance again leaves no key either.
    ARXConf::storeAppearance(0);
    EXPECT_FALSE(fileObject().contains("settings_appearance"));
    EXPECT_FALSE(ARXConf::settings_appearance().isStored());
}

TEST_F(ARXSettingsStoreTest, ValuesSurviveARoundTripThroughTheFile) {
    {
        ARXSettingsStore store(file());
        ARXOption<QDateTime>("when", {}, &store).setValue(QDateTime::fromMSecsSinceEpoch(1500));
        ARXOption<QList<qint64>>("filters", {}, &store).setValue({1, 5});
        ARXOption<QList<QStringList>>("tabs", {}, &store).setValue({{"a", "b"}, {}});
        ARXOption<QString>("name", {}, &store).setValue(QStringLiteral("Grüße \"x\""));
    }
    ARXSettingsStore store(file());
    EXPECT_EQ(fileObject().value("when"), QJsonValue(1.5)) << "seconds since 1970";
    EXPECT_EQ(ARXOption<QDateTime>("when", {}, &store).value().toMSecsSinceEpoch(), 1500);
    EXPECT_EQ(ARXOption<QList<qint64>>("filters", {}, &store).value(), (QList<qint64>{1, 5}));
    EXPECT_EQ(ARXOption<QList<QStringList>>("tabs", {}, &store).value(),
              (QList<QStringList>{{"a", "b"}, {}}));
    EXPECT_EQ(ARXOption<QString>("name", {}, &store).value(), QStringLiteral("Grüße \"x\""));
}

TEST_F(ARXSettingsStoreTest, SavingReplacesTheFileAtomicallyAndKeepsItsPermissions) {
    writeFile(file(), R"({"a": 1})");
    ASSERT_EQ(::chmod(file().c_str(), 0640), 0);
    ARXSettingsStore store(file());

    // A reader that opened the file before the save still sees the old content in full: the
    // new file is a different inode renamed over the name, never the old one rewritten.
    const int reader = ::open(file().c_str(), O_RDONLY);
    ASSERT_GE(reader, 0);
    store.setValue("a", 2);
    char buffer[64] = {};
    const ssize_t n = ::read(reader, buffer, sizeof buffer - 1);
    ::close(reader);
    EXPECT_EQ(std::string(buffer, size_t(std::max<ssize_t>(n, 0))), R"({"a": 1})");

    EXPECT_EQ(fileObject(), QJsonObject({{"a", 2}}));
    EXPECT_EQ(modeOf(file()), 0640u);
    EXPECT_EQ(folderNames(), std::vector<std::string>{"defaults.json"});
}

TEST_F(ARXSettingsStoreTest, AFolderInThePlaceOfTheFileIsMovedAsideOnSave) {
    makeFolder(file());
    writeFile(ARXPath::join(file(), "inside"), "keep");
    testing::internal::CaptureStderr();
    ARXSettingsStore store(file());
    const std::string console = testing::internal::GetCapturedStderr();
    EXPECT_NE(console.find(file()), std::string::npos) << console;
    EXPECT_FALSE(store.contains("a"));

    store.setValue("a", 1);
    EXPECT_EQ(fileObject(), QJsonObject({{"a", 1}}));
    EXPECT_EQ(readFile(ARXPath::join(file() + ".broken", "inside")), "keep");
}

TEST_F(ARXSettingsStoreTest, AFileWithoutReadPermissionIsNeverOverwritten) {
    writeFile(file(), R"({"a": 1})");
    ASSERT_EQ(::chmod(file().c_str(), 0), 0);
    const auto check = [&] {
        ARXSettingsStore store(file());
        EXPECT_FALSE(store.contains("a"));
        store.setValue("b", 1);
    };
    if (::geteuid() != 0) {
        check();
    } else if (!runWithoutOverridingPermissions(check)) {
        GTEST_SKIP() << "running as root and cannot give up CAP_DAC_OVERRIDE here";
    }
    ASSERT_EQ(::chmod((file() + ".broken").c_str(), 0600), 0);
    EXPECT_EQ(readFile(file() + ".broken"), R"({"a": 1})");
    EXPECT_EQ(fileObject(), QJsonObject({{"b", 1}}));
}

TEST_F(ARXSettingsStoreTest, ReloadDropsWhatIsInMemoryForTheFile) {
    ARXSettingsStore store(file());
    store.setValue("a", 1);
    writeFile(file(), R"({"b": 2})");
    store.reload();
    EXPECT_FALSE(store.contains("a"));
    EXPECT_EQ(store.value("b"), QJsonValue(2));
}

TEST_F(ARXSettingsStoreTest, SecureOptionsKeepToTheirOwnPrivateFile) {
    const ARXSecureOption token(QStringLiteral("token"));
    const ARXSecureOption withDefault(QStringLiteral("other"), QStringLiteral("fallback"));
    EXPECT_EQ(token.value(), std::nullopt);
    EXPECT_EQ(withDefault.value(), QStringLiteral("fallback"));

    token.setValue(QStringLiteral("s3cret"));
    const Path secure = ARXPath::join(folder(), "secure.json");
    EXPECT_EQ(modeOf(secure), 0600u);
    EXPECT_EQ(readFile(file()).find("s3cret"), std::string::npos);
    EXPECT_EQ(ARXSettingsStore(secure).value("token"), QJsonValue("s3cret"));

    token.reset(); // no default: the key goes
    EXPECT_FALSE(token.isStored());
    EXPECT_FALSE(ARXSettingsStore(secure).contains("token"));
}

} // namespace
