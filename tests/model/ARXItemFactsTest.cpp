#include "model/ARXItemFacts.h"

#include "support/ARXTestEnvironment.h"

#include <gtest/gtest.h>

#include <sys/stat.h>
#include <unistd.h>

namespace {

class ARXItemFactsTest : public ARXTestEnvironment {
protected:
    Path at(const std::string& name) const { return ARXPath::join(root(), name); }
};

TEST_F(ARXItemFactsTest, AFileItsFolderAndALinkSayWhatTheyAre) {
    writeFile(at("docs/report.txt"), std::string(12345, 'x'));
    ASSERT_EQ(::chmod(at("docs/report.txt").c_str(), 0640), 0);
    ASSERT_EQ(::symlink(at("docs").c_str(), at("to-docs").c_str()), 0);

    const ARXItemFacts file = ARXItemFacts::read(at("docs/report.txt"));
    EXPECT_FALSE(file.error.has_value());
    EXPECT_EQ(file.name, "report.txt");
    EXPECT_EQ(file.where, ARXPath::display(at("docs")));
    EXPECT_FALSE(file.isFolder);
    EXPECT_EQ(file.size, 12345u);
    EXPECT_EQ(file.permissions, "rw-r----- (640)");
    EXPECT_FALSE(file.owner.isEmpty());
    EXPECT_TRUE(file.modified.has_value());
    EXPECT_TRUE(ARXItemFacts::sizeText(file.size).startsWith("12 KB ("));

    const ARXItemFacts folder = ARXItemFacts::read(at("docs"));
    EXPECT_TRUE(folder.isFolder);
    EXPECT_EQ(folder.kind, "Folder");

    const ARXItemFacts link = ARXItemFacts::read(at("to-docs"));
    EXPECT_EQ(link.kind, "Symbolic Link to Folder");
    EXPECT_EQ(link.linkTarget, ARXPath::display(at("docs")));

    EXPECT_EQ(ARXItemFacts::read("/").name, "/");
}

TEST_F(ARXItemFactsTest, SpecialBitsTakeTheirUsualLetters) {
    EXPECT_EQ(ARXItemFacts::permissionsText(S_IFREG | 04755), "rwsr-xr-x (4755)");
    EXPECT_EQ(ARXItemFacts::permissionsText(S_IFREG | 02644), "rw-r-Sr-- (2644)");
    EXPECT_EQ(ARXItemFacts::permissionsText(S_IFDIR | 01777), "rwxrwxrwt (1777)");
    EXPECT_EQ(ARXItemFacts::permissionsText(S_IFREG | 0), "--------- (000)");
}

TEST_F(ARXItemFactsTest, AMissingItemOrAnOddNameIsSaidPlainly) {
    const ARXItemFacts missing = ARXItemFacts::read(at("gone.txt"));
    ASSERT_TRUE(missing.error.has_value());
    EXPECT_TRUE(missing.error->contains(ARXPath::display(at("gone.txt"))))
        << missing.error->toStdString();
    EXPECT_TRUE(missing.error->contains("No such file")) << missing.error->toStdString();

    const Path odd = at(std::string("caf\xe9.txt"));
    writeFile(odd, "x");
    const ARXItemFacts facts = ARXItemFacts::read(odd);
    EXPECT_FALSE(facts.error.has_value());
    EXPECT_EQ(facts.path, odd);
    EXPECT_TRUE(facts.name.startsWith("caf"));
}

} // namespace
