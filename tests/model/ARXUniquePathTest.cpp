#include "model/ARXUniquePath.h"

#include "support/ARXTestEnvironment.h"

#include <unistd.h>

namespace {

class ARXUniquePathTest : public ARXTestEnvironment {
protected:
    Path at(std::string_view relative) const { return ARXPath::join(root(), relative); }
    void touch(std::string_view relative) { writeFile(at(relative), ""); }
};

TEST_F(ARXUniquePathTest, FreePathIsAnsweredAsItIsEvenWhenTaken) {
    EXPECT_EQ(uniquePath(at("report.txt")), at("report.txt"));
    EXPECT_EQ(uniquePath(at("report.txt"), {at("report.txt")}), at("report.txt"));
}

TEST_F(ARXUniquePathTest, NumberGoesBeforeTheExtensionAndSkipsTakenAndExistingNames) {
    touch("report.txt");
    EXPECT_EQ(uniquePath(at("report.txt")), at("report 2.txt"));
    touch("report 2.txt");
    EXPECT_EQ(uniquePath(at("report.txt"), {at("report 3.txt")}), at("report 4.txt"));
    // No extension, and a dot at the very end is no extension either.
    touch("notes");
    EXPECT_EQ(uniquePath(at("notes")), at("notes 2"));
    touch("draft.");
    EXPECT_EQ(uniquePath(at("draft.")), at("draft. 2"));
}

TEST_F(ARXUniquePathTest, ExtensionIsFoundInTheWholePath) {
    touch(".profile");
    EXPECT_EQ(uniquePath(at(".profile")), root() + "/ 2.profile");
    // The file's own name has no dot: the folder's dot splits.
    touch("a.b/file");
    EXPECT_EQ(uniquePath(at("a.b/file")), at("a 2.b/file"));
}

TEST_F(ARXUniquePathTest, FolderKeepsItsDotUnlessTheExtensionIsAKnownType) {
    makeFolder(at("x.y"));
    EXPECT_EQ(uniquePath(at("x.y")), at("x.y 2"));
    makeFolder(at("x.app")); // a package extension
    EXPECT_EQ(uniquePath(at("x.app")), at("x 2.app"));
    makeFolder(at("shots.png")); // a type the MIME database knows
    EXPECT_EQ(uniquePath(at("shots.png")), at("shots 2.png"));
    makeFolder(at("v1.2/sub"));
    EXPECT_EQ(uniquePath(at("v1.2/sub")), at("v1.2/sub 2"));
}

TEST_F(ARXUniquePathTest, NumberedNamesRestartOrNumberFurther) {
    // "a 2" while "a 2" exists restarts from "a": the first free number.
    touch("a.txt");
    touch("a 2.txt");
    EXPECT_EQ(uniquePath(at("a 2.txt")), at("a 3.txt"));
    // "b 3" with no "b 2" is numbered as a whole.
    touch("b 3.txt");
    EXPECT_EQ(uniquePath(at("b 3.txt")), at("b 3 2.txt"));
    // A leading zero is no number.
    touch("c 05");
    touch("c 2");
    EXPECT_EQ(uniquePath(at("c 05")), at("c 05 2"));
    // Two duplicates in one batch never share a name.
    touch("x.txt");
    touch("x 2.txt");
    const Path first = uniquePath(at("x.txt"));
    const Path second = uniquePath(at("x 2.txt"), {first});
    EXPECT_EQ(first, at("x 3.txt"));
    EXPECT_EQ(second, at("x 4.txt"));
}

TEST_F(ARXUniquePathTest, AnyItemOccupiesAName) {
    // A dangling link takes its name although nothing is behind it.
    touch("gone.txt");
    ASSERT_EQ(::symlink("nowhere", at("gone 2.txt").c_str()), 0);
    EXPECT_EQ(uniquePath(at("gone.txt")), at("gone 3.txt"));
    // Bytes that are not UTF-8 are kept as they are.
    const std::string name = "caf\xe9.txt";
    touch(name);
    EXPECT_EQ(uniquePath(at(name)), at("caf\xe9 2.txt"));
}

} // namespace
