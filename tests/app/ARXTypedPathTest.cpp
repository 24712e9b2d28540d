#include "app/ARXTypedPath.h"

#include "support/ARXTestEnvironment.h"

#include <gtest/gtest.h>

namespace {

class ARXTypedPathTest : public ARXTestEnvironment {
protected:
    void SetUp() override {
        ARXTestEnvironment::SetUp();
        writeFile(ARXPath::join(home(), "Music/song.ogg"), "x");
    }

    std::optional<Path> resolve(const char* text, std::optional<Path> current = std::nullopt) {
        return ARXTypedPath::resolve(QString::fromUtf8(text), home(), "/default", current);
    }
};

TEST_F(ARXTypedPathTest, HomeRelativeTextsAndTheDefaultFolder) {
    EXPECT_EQ(resolve("~"), home());
    EXPECT_EQ(resolve("  ~/Music \n"), ARXPath::join(home(), "Music"));
    EXPECT_EQ(resolve("Music"), ARXPath::join(home(), "Music"));
    EXPECT_EQ(resolve(""), Path("/default"));
    EXPECT_EQ(resolve("   "), Path("/default"));
    EXPECT_EQ(resolve("/tmp/"), Path("/tmp"));
}

TEST_F(ARXTypedPathTest, AFileOpensItsFolderAndAMissingPathOpensAsItStands) {
    EXPECT_EQ(resolve("~/Music/song.ogg"), ARXPath::join(home(), "Music"));
    EXPECT_EQ(resolve("/no/such/place"), Path("/no/such/place"));
}

TEST_F(ARXTypedPathTest, TheFolderShownIsLeftAlone) {
    const Path music = ARXPath::join(home(), "Music");
    EXPECT_EQ(resolve(music.c_str(), music), std::nullopt);
    EXPECT_EQ(resolve("~/Music", music), std::nullopt);
    EXPECT_EQ(resolve("~", music), home());
}

// One place, one path: the pane, its history and every comparison after it see the same bytes
// however the place was typed.
TEST_F(ARXTypedPathTest, EverySpellingOfAPlaceComesBackAsOne) {
    const Path music = ARXPath::join(home(), "Music");
    EXPECT_EQ(resolve("~//Music/./"), music);
    EXPECT_EQ(resolve("~/Music/../Music//song.ogg"), music);
    EXPECT_EQ(resolve("/../..//tmp/./"), Path("/tmp"));
    EXPECT_EQ(resolve("/.."), Path("/"));
    EXPECT_EQ(ARXTypedPath::resolve(QStringLiteral("~/Mu") + QChar(0) + QStringLiteral("sic"),
                                    home(), "/default", std::nullopt),
              music);
    EXPECT_EQ(resolve("~/./Music/", music), std::nullopt);
}

} // namespace
