#include "app/ARXPathRules.h"

#include "app/ARXDataCenter.h"
#include "support/ARXFakeVolumes.h"
#include "support/ARXTestEnvironment.h"

using namespace ARXPathRules;

class ARXPathRulesTest : public ARXTestEnvironment {
protected:
    void SetUp() override {
        ARXTestEnvironment::SetUp();
        ARXDataCenter::setVolumeReaderForTesting([] {
            return ARXVolumeList{ARXMakeVolume("/"), ARXMakeVolume("/media/usb", false),
                                 ARXMakeVolume("/media/usb/inner")};
        });
    }
};

TEST_F(ARXPathRulesTest, SamePathIgnoresTrailingSlashAndCaseOnlyWhereTheVolumeDoes) {
    EXPECT_TRUE(isSamePath("/home/u/A", "/home/u/A/"));
    EXPECT_FALSE(isSamePath("/home/u/A", "/home/u/a"));
    EXPECT_TRUE(isSamePath("/media/usb/Photos", "/media/USB/photos/"));
    EXPECT_TRUE(isSamePath("/media/usb/Ärger", "/media/usb/ärger"));
    // A case-sensitive volume mounted inside a case-insensitive one decides for its own paths.
    EXPECT_FALSE(isSamePath("/media/usb/inner/A", "/media/usb/inner/a"));
    // Names that are not UTF-8 still fold their ASCII letters and never collapse with others.
    EXPECT_TRUE(isSamePath(std::string("/media/usb/X\xff"), std::string("/media/usb/x\xff")));
    EXPECT_FALSE(isSamePath(std::string("/media/usb/x\xfe"), std::string("/media/usb/x\xff")));
}

TEST_F(ARXPathRulesTest, InsideDirectlyAndAtAnyDepth) {
    EXPECT_TRUE(isInside("/a", "/a/b", false));
    EXPECT_FALSE(isInside("/a", "/a/b/c", false));
    EXPECT_TRUE(isInside("/a", "/a/b/c", true));
    EXPECT_FALSE(isInside("/a", "/ab/c", true));
    EXPECT_FALSE(isInside("/a", "/a", true));
    EXPECT_FALSE(isInside("/a/", "/a/", true));
    EXPECT_TRUE(isInside("/", "/x", false));
    EXPECT_TRUE(isInside("/", "/x/y", true));
    EXPECT_FALSE(isInside("", "/x", true));
    EXPECT_TRUE(isInside("/media/usb/Docs", "/media/usb/docs/x/y", true));
    EXPECT_TRUE(isInside("/media/usb/Docs", "/media/usb/DOCS/x", false));
    EXPECT_FALSE(isInside("/home/Docs", "/home/docs/x", true));
}

TEST_F(ARXPathRulesTest, JoinPutsExactlyOneSlash) {
    EXPECT_EQ(joinPath("/a", "b"), "/a/b");
    EXPECT_EQ(joinPath("/a/", "/b"), "/a/b");
    EXPECT_EQ(joinPath("/", "b"), "/b");
}
