#include "app/ARXDataCenter.h"

#include "app/ARXNotificationNames.h"
#include "platform/ARXFileIO.h"
#include "platform/ARXNotificationCenter.h"
#include "support/ARXFakeVolumes.h"
#include "support/ARXTestEnvironment.h"

#include <QJsonDocument>

#include <sys/stat.h>

class ARXDataCenterTest : public ARXTestEnvironment {
protected:
    void SetUp() override {
        ARXTestEnvironment::SetUp();
        ARXDataCenter::setVolumeReaderForTesting([this] { return volumes; });
    }
    ARXDataCenter& center() { return ARXDataCenter::shared(); }
    void writeSpace(const std::string& fileName, std::string_view json) {
        writeFile(ARXPath::join(center().spacePath, fileName), json);
    }
    ARXVolumeList volumes{ARXMakeVolume("/")};
};

TEST_F(ARXDataCenterTest, FoldersLiveUnderTheDataRoot) {
    EXPECT_EQ(center().spacePath, dataHome() + "/Atrium/guest/spaces");
    EXPECT_EQ(center().newfileTemplatePath, dataHome() + "/Atrium/newfile.templates");
    EXPECT_TRUE(ARXFileIO::isDirectory(center().spacePath));
    EXPECT_TRUE(ARXFileIO::isDirectory(center().newfileTemplatePath));
}

TEST_F(ARXDataCenterTest, AnyNameSurvivesTheFileNameAndComesBackFromTheListing) {
    const QStringList names{QStringLiteral("a/b"),       QStringLiteral("a.b"),
                            QStringLiteral("Ünïcode ✓"), QStringLiteral("100% sure"),
                            QStringLiteral(".."),        QStringLiteral("x.atx")};
    for (const QString& name : names) {
        ASSERT_TRUE(center().save(name, ARXDataCenter::emptyWorkspace()));
    }
    EXPECT_EQ(ARXPath::lastComponent(center().path(QStringLiteral("a/b"))), "a%2Fb.atx");
    EXPECT_EQ(ARXPath::lastComponent(center().path(QStringLiteral("a.b"))), "a.b.atx");
    QStringList listed = center().workspaceNames();
    listed.sort();
    QStringList expected = names;
    expected.sort();
    EXPECT_EQ(listed, expected);
}

TEST_F(ARXDataCenterTest, ListingSkipsForeignFilesSortsNaturallyAndKeepsTheFirstOfTwins) {
    for (const char* f : {"My Workspace 10.atx", "My Workspace 2.atx", "notes.txt", "b.atx",
                          "%62.atx" /* also "b" */}) {
        writeSpace(f, "{}");
    }
    makeFolder(ARXPath::join(center().spacePath, "folder"));
    EXPECT_EQ(center().workspaceNames(),
              (QStringList{QStringLiteral("b"), QStringLiteral("My Workspace 2"),
                           QStringLiteral("My Workspace 10")}));
}

TEST_F(ARXDataCenterTest, UndecodableFileNamesReadAsTheDefaultName) {
    writeSpace("%FF%FE.atx", "{}");
    writeSpace(std::string("raw\xff.atx"), "{}");
    EXPECT_EQ(center().workspaceNames(), QStringList{QStringLiteral("Default")});
}

TEST_F(ARXDataCenterTest, CreateWorkspaceTakesTheFirstFreeNumber) {
    EXPECT_EQ(center().createWorkspace(), QStringLiteral("My Workspace 1"));
    EXPECT_EQ(center().createWorkspace(), QStringLiteral("My Workspace 2"));
    EXPECT_EQ(center().createWorkspace(), QStringLiteral("My Workspace 3"));
    ASSERT_EQ(::unlink(center().path(QStringLiteral("My Workspace 2")).c_str()), 0);
    EXPECT_EQ(center().createWorkspace(), QStringLiteral("My Workspace 2"));
    EXPECT_EQ(center().createWorkspace(), QStringLiteral("My Workspace 4"));
    const auto data = center().load(center().path(QStringLiteral("My Workspace 4")));
    ASSERT_TRUE(data);
    EXPECT_EQ(data->sidebarWidth, 180.0);
    EXPECT_EQ(data->layoutId, 0);
    EXPECT_FALSE(data->spaces[0]);
}

TEST_F(ARXDataCenterTest, BadFilesLoadAsNothingAndAreLeftAlone) {
    const char* bad[] = {
        "",
        "{\"frame\": [[0, 0], [10",
        "[1, 2]",
        "{\"frame\": \"wide\"}",
        "{\"layoutId\": 3}",
        "{\"frame\": [[0,0],[1,1]], \"vd2\": {\"viewType\": 2, \"historyIndex\": 0, "
        "\"root\": \"/\"}}"};
    int i = 0;
    for (const char* json : bad) {
        const std::string file = "bad" + std::to_string(i++) + ".atx";
        writeSpace(file, json);
        EXPECT_FALSE(center().load(ARXPath::join(center().spacePath, file))) << json;
        EXPECT_EQ(readFile(ARXPath::join(center().spacePath, file)), json);
    }
    EXPECT_FALSE(center().load(ARXPath::join(center().spacePath, "missing.atx")));
}

TEST_F(ARXDataCenterTest, AnUnusableFileIsSetAsideBeforeTheWorkspaceIsSavedAgain) {
    const std::string bad = "{\"frame\": [[0, 0], [10";
    writeSpace("w.atx", bad);
    const Path file = center().path(QStringLiteral("w"));
    testing::internal::CaptureStderr();
    EXPECT_FALSE(center().load(file));
    EXPECT_EQ(readFile(file), bad); // opening alone changes nothing on disk
    ASSERT_TRUE(center().save(QStringLiteral("w"), ARXDataCenter::emptyWorkspace()));
    const std::string said = testing::internal::GetCapturedStderr();
    EXPECT_EQ(readFile(file + ".broken"), bad);
    EXPECT_TRUE(center().load(file).has_value());
    EXPECT_TRUE(said.find("Atrium: workspace file " + file + " cannot be used (not valid JSON") !=
                std::string::npos)
        << said;
    EXPECT_TRUE(said.find("kept as " + file + ".broken") != std::string::npos) << said;

    // Saved again, the good file is simply replaced; an empty file holds nothing to keep.
    ASSERT_TRUE(center().save(QStringLiteral("w"), ARXDataCenter::emptyWorkspace()));
    EXPECT_FALSE(ARXFileIO::exists(file + ".broken-2"));
    writeSpace("e.atx", "\n");
    EXPECT_FALSE(center().load(center().path(QStringLiteral("e"))));
    ASSERT_TRUE(center().save(QStringLiteral("e"), ARXDataCenter::emptyWorkspace()));
    EXPECT_FALSE(ARXFileIO::exists(center().path(QStringLiteral("e")) + ".broken"));
}

TEST_F(ARXDataCenterTest, SaveFailureKeepsThePreviousFile) {
    ASSERT_TRUE(center().save(QStringLiteral("w"), ARXDataCenter::emptyWorkspace()));
    const std::string before = readFile(center().path(QStringLiteral("w")));
    ::chmod(center().spacePath.c_str(), 0500);
    ARXAtriumData changed = ARXDataCenter::emptyWorkspace();
    changed.pinTop = true;
    bool saved = true;
    const auto check = [&] { saved = center().save(QStringLiteral("w"), changed); };
    const bool ran = geteuid() != 0 ? (check(), true) : runWithoutOverridingPermissions(check);
    ::chmod(center().spacePath.c_str(), 0700);
    if (!ran) {
        GTEST_SKIP() << "running as root and cannot give up CAP_DAC_OVERRIDE here";
    }
    EXPECT_FALSE(saved);
    EXPECT_EQ(readFile(center().path(QStringLiteral("w"))), before);
}

TEST_F(ARXDataCenterTest, DataRootThatCannotBeCreatedIsReportedAndTheProgramGoesOn) {
    const Path blocker = ARXPath::join(root(), "blocker");
    writeFile(blocker, "a file where a folder should be");
    ARXDataCenter center(ARXPath::join(blocker, "Atrium"));
    EXPECT_FALSE(ARXFileIO::isDirectory(center.spacePath));
    EXPECT_TRUE(center.workspaceNames().isEmpty());
    EXPECT_FALSE(center.save(QStringLiteral("x"), ARXDataCenter::emptyWorkspace()));
}

TEST_F(ARXDataCenterTest, VolumesSortLongestRootFirstAndDecideTheSameVolume) {
    volumes = {ARXMakeVolume("/"), ARXMakeVolume("/media/usb", false), ARXMakeVolume("/home"),
               ARXMakeVolume("/media/cd")};
    center().reloadVolumes();
    std::vector<Path> roots;
    for (const auto& v : center().fileVolumes()) {
        roots.push_back(v->root);
    }
    EXPECT_EQ(roots, (std::vector<Path>{"/media/usb", "/media/cd", "/home", "/"}));
    EXPECT_EQ(center().volumeFor("/media/usb/a")->root, "/media/usb");
    EXPECT_EQ(center().volumeFor("/media/usb")->root, "/media/usb");
    EXPECT_EQ(center().volumeFor("/media/usbstick/a")->root, "/");
    EXPECT_TRUE(center().onSameVolume({"/media/usb/a", "/media/usb/b/c"}));
    EXPECT_FALSE(center().onSameVolume({"/media/usb/a", "/home/x"}));
    EXPECT_TRUE(center().onSameVolume({"/anything"}));
}

TEST_F(ARXDataCenterTest, VolumeChangesPostANotification) {
    center();
    int posts = 0;
    ARXNotificationCenter::shared().addObserver(ARXNotificationName::rv_mounted_volumes_changed,
                                                nullptr, [&](const ARXNotification&) { ++posts; });
    volumes.push_back(ARXMakeVolume("/media/new"));
    center().notifyVolumesChanged();
    EXPECT_EQ(posts, 1);
    EXPECT_EQ(center().fileVolumes().front()->root, "/media/new");
}
