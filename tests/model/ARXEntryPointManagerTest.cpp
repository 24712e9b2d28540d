#include "model/ARXEntryPointManager.h"

#include "app/ARXDataCenter.h"
#include "support/ARXFakeVolumes.h"
#include "support/ARXTestEnvironment.h"

class ARXEntryPointManagerTest : public ARXTestEnvironment {
protected:
    void SetUp() override {
        ARXTestEnvironment::SetUp();
        ARXDataCenter::setVolumeReaderForTesting([this] {
            ++reads;
            return volumes;
        });
        ARXEntryPointManager::setClockForTesting([this] { return clock; });
    }
    ARXEntryPointManager& manager() { return ARXEntryPointManager::shared(); }
    ARXVolumeList volumes;
    int reads = 0;
    double clock = 100.0;
};

TEST_F(ARXEntryPointManagerTest, HomePointsFollowTheUserDirectoriesThenHome) {
    writeFile(configHome() + "/user-dirs.dirs",
              "XDG_DESKTOP_DIR=\"$HOME/Schreibtisch\"\nXDG_DOWNLOAD_DIR=\"$HOME/Downloads\"\n");
    manager().refreshHomePoints();
    const auto& points = manager().homePoints();
    ASSERT_EQ(points.size(), 7u);
    EXPECT_EQ(points[0], (ARXEntryPoint{QStringLiteral("Schreibtisch"), home() + "/Schreibtisch"}));
    EXPECT_EQ(points[1].root, home() + "/Downloads");
    EXPECT_EQ(points[3].root, home() + "/Videos");
    EXPECT_EQ(points[6].root, home());
}

TEST_F(ARXEntryPointManagerTest, VolumePointsKeepTheRootAndMediaFolders) {
    volumes = {ARXMakeVolume("/", true, QStringLiteral("System")),
               ARXMakeVolume("/media/u/STICK", false, QStringLiteral("STICK")),
               ARXMakeVolume("/run/media/u/Disk"),
               ARXMakeVolume("/mnt/image"),
               ARXMakeVolume("/boot"),
               ARXMakeVolume("/Volumes/Data")};
    auto recovery = std::make_shared<ARXVolume>();
    recovery->root = "/Volumes/Recovery";
    recovery->isInternal = true;
    volumes.push_back(recovery);
    manager().refreshVolumePoints();
    std::vector<Path> roots;
    for (const auto& p : manager().volumePoints()) {
        roots.push_back(p.root);
    }
    // Longest root first, as the data centre sorts them.
    EXPECT_EQ(roots,
              (std::vector<Path>{"/run/media/u/Disk", "/media/u/STICK", "/Volumes/Data", "/"}));
    EXPECT_TRUE(ARXDataCenter::shared().volumeFor("/mnt/image/a"));
}

TEST_F(ARXEntryPointManagerTest, RefreshesAreThrottledForFiveSecondsUnlessThereAreNoPoints) {
    ARXDataCenter::shared();
    const int start = reads;
    manager().refreshVolumePoints(); // no volumes at all: no points, so no throttle
    manager().refreshVolumePoints();
    EXPECT_EQ(reads, start + 2);

    volumes = {ARXMakeVolume("/")};
    manager().refreshVolumePoints();
    clock += 4.9;
    manager().refreshVolumePoints();
    EXPECT_EQ(reads, start + 3);
    clock += 0.2;
    manager().refreshVolumePoints();
    EXPECT_EQ(reads, start + 4);
}
