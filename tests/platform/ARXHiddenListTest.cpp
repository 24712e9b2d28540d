#include "platform/ARXHiddenList.h"

#include "support/ARXTestEnvironment.h"

#include <random>
#include <sys/stat.h>

namespace {

class ARXHiddenListTest : public ARXTestEnvironment {
protected:
    Path hiddenFile() const { return ARXPath::join(root(), ".hidden"); }
};

TEST_F(ARXHiddenListTest, OneNameALineAsExactBytes) {
    writeFile(hiddenFile(), "build\nnotes.txt\r\ncaf\xe9\n\nsub/dir\n..\ntwo  spaces  \nlast");
    const ARXHiddenList list = ARXHiddenList::load(root());
    EXPECT_EQ(list.folder(), root());
    EXPECT_TRUE(list.contains("build"));
    EXPECT_TRUE(list.contains("notes.txt")); // CRLF line end
    EXPECT_TRUE(list.contains("caf\xe9"));   // not UTF-8, still a name
    EXPECT_TRUE(list.contains("two  spaces  "));
    EXPECT_TRUE(list.contains("last")); // no final line feed
    EXPECT_FALSE(list.contains("sub/dir"));
    EXPECT_FALSE(list.contains(".."));
    EXPECT_FALSE(list.contains("Build"));
    EXPECT_EQ(list.size(), 5u);

    EXPECT_TRUE(list.isHidden(".bashrc"));
    EXPECT_TRUE(list.isHidden("build"));
    EXPECT_FALSE(list.isHidden("src"));
}

TEST_F(ARXHiddenListTest, MissingOrOddListsHideOnlyDotNames) {
    EXPECT_EQ(ARXHiddenList::load(root()).size(), 0u);
    EXPECT_EQ(ARXHiddenList::load(ARXPath::join(root(), "no-such-folder")).size(), 0u);
    EXPECT_TRUE(ARXHiddenList().isHidden(".x"));
    EXPECT_FALSE(ARXHiddenList().isHidden("x"));

    // A FIFO named .hidden must neither block the listing nor count.
    ASSERT_EQ(::mkfifo(hiddenFile().c_str(), 0600), 0);
    EXPECT_EQ(ARXHiddenList::load(root()).size(), 0u);
    ASSERT_EQ(::unlink(hiddenFile().c_str()), 0);
    makeFolder(hiddenFile());
    EXPECT_EQ(ARXHiddenList::load(root()).size(), 0u);
}

TEST_F(ARXHiddenListTest, HugeFileGivesTheNamesOfItsFirstMebibyte) {
    std::string content;
    int count = 0;
    while (content.size() < 3 * ARXHiddenList::kMaxBytes) {
        content += "name-" + std::to_string(count++) + "\n";
    }
    writeFile(hiddenFile(), content);
    const ARXHiddenList list = ARXHiddenList::load(root());
    EXPECT_TRUE(list.contains("name-0"));
    EXPECT_FALSE(list.contains("name-" + std::to_string(count - 1)));
    // The last name inside the cap is complete; the one cut by it is not taken in part.
    const size_t cut = content.rfind('\n', ARXHiddenList::kMaxBytes - 1);
    const size_t start = content.rfind('\n', cut - 1) + 1;
    EXPECT_TRUE(list.contains(content.substr(start, cut - start)));
    const size_t cutEnd = content.find('\n', ARXHiddenList::kMaxBytes);
    const std::string partial = content.substr(cut + 1, ARXHiddenList::kMaxBytes - cut - 1);
    EXPECT_FALSE(list.contains(partial)) << partial << " of " << content.substr(cut + 1, cutEnd);
}

TEST_F(ARXHiddenListTest, BinaryContentKeepsWhatParses) {
    std::mt19937 rng(7);
    std::string content;
    for (int i = 0; i < 200000; ++i) {
        content.push_back(char(rng() & 0xff));
    }
    content += "\nreal-name\n";
    writeFile(hiddenFile(), content);
    const ARXHiddenList list = ARXHiddenList::load(root());
    EXPECT_TRUE(list.contains("real-name"));
    EXPECT_FALSE(list.contains(std::string_view("\0", 1)));
}

} // namespace
