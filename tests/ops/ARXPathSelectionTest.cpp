#include "ops/ARXPathSelection.h"

#include "app/ARXDataCenter.h"
#include "support/ARXFakeVolumes.h"
#include "support/ARXTestEnvironment.h"

using namespace ARXPathSelection;
using Paths = std::vector<Path>;

class ARXPathSelectionTest : public ARXTestEnvironment {
protected:
    void SetUp() override {
        ARXTestEnvironment::SetUp();
        ARXDataCenter::setVolumeReaderForTesting([] {
            return ARXVolumeList{ARXMakeVolume("/"), ARXMakeVolume("/media/usb", false)};
        });
    }
};

TEST_F(ARXPathSelectionTest, TopLevelPathsDropWhatLiesInsideAnotherAndKeepTheOrder) {
    // "/a b" sorts between "/a" and "/a/…" byte by byte; it must not hide "/a"'s children.
    EXPECT_EQ(topLevelPaths({"/a/b/c", "/x", "/a b", "/a", "/a/b", "/a b/c", "/ab"}),
              (Paths{"/x", "/a b", "/a", "/ab"}));
    EXPECT_EQ(topLevelPaths({"/a", "/a/", "/a"}), (Paths{"/a"}));
    EXPECT_EQ(topLevelPaths({"/a/b", "/"}), (Paths{"/"}));
    EXPECT_EQ(topLevelPaths({}), Paths{});
    EXPECT_EQ(topLevelPaths({std::string("/d/\xff"), std::string("/d/\xff/x"), "/d/y"}),
              (Paths{std::string("/d/\xff"), "/d/y"}));
}

TEST_F(ARXPathSelectionTest, TopLevelPathsFollowTheCaseRuleOfTheVolume) {
    EXPECT_EQ(topLevelPaths({"/media/usb/Photos/a.jpg", "/media/usb/PHOTOS"}),
              (Paths{"/media/usb/PHOTOS"}));
    EXPECT_EQ(topLevelPaths({"/media/usb/Photos", "/media/usb/photos"}),
              (Paths{"/media/usb/Photos"}));
    // Elsewhere letter case makes different folders, also between case twins in one list.
    EXPECT_EQ(topLevelPaths({"/home/u/a", "/home/u/A", "/home/u/a/x", "/home/u/A/y"}),
              (Paths{"/home/u/a", "/home/u/A"}));
}

TEST_F(ARXPathSelectionTest, PasteSourcesLeaveOutWhatCannotGoIntoTheDestination) {
    const Paths sources{"/home/u/dest",
                        "/home/u",
                        "/home/u/dest/inner.txt",
                        "/home/u/other.txt",
                        "/home/u/other.txt/never",
                        "/tmp/elsewhere.txt"};
    // The destination itself and the folders it lies in are left out; items already in it may
    // be copied (they get a new name) but not moved.
    EXPECT_EQ(pasteSources(sources, "/home/u/dest", ARXFileOperationType::copy),
              (Paths{"/tmp/elsewhere.txt"}));
    EXPECT_EQ(pasteSources({"/home/u/dest/inner.txt", "/home/u/other.txt"}, "/home/u/dest",
                           ARXFileOperationType::copy),
              (Paths{"/home/u/dest/inner.txt", "/home/u/other.txt"}));
    EXPECT_EQ(pasteSources({"/home/u/dest/inner.txt", "/home/u/other.txt"}, "/home/u/dest/",
                           ARXFileOperationType::move),
              (Paths{"/home/u/other.txt"}));
    EXPECT_EQ(pasteSources({"/media/usb/Dest", "/media/usb/x"}, "/media/usb/dest/sub",
                           ARXFileOperationType::move),
              (Paths{"/media/usb/x"}));
}
