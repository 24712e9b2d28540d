#include "platform/ARXResourceValues.h"

#include "platform/ARXHiddenList.h"
#include "support/ARXTestEnvironment.h"

#include <cstdlib>
#include <sys/xattr.h>
#include <unistd.h>

namespace {

class ARXResourceValuesTest : public ARXTestEnvironment {
protected:
    void TearDown() override {
        ARXResourceValues::setCloudProvider({});
        ARXTestEnvironment::TearDown();
    }
    Path at(std::string_view name) const { return ARXPath::join(root(), name); }
    void link(const char* target, std::string_view name) const {
        ASSERT_EQ(::symlink(target, at(name).c_str()), 0);
    }
    static std::string rawTags(const Path& path) {
        char buffer[256];
        const ssize_t n = ::lgetxattr(path.c_str(), "user.xdg.tags", buffer, sizeof buffer);
        return n < 0 ? std::string("<none>") : std::string(buffer, size_t(n));
    }
};

TEST_F(ARXResourceValuesTest, ValuesOfAPlainFile) {
    writeFile(at("file"), "hello");
    const auto values = ARXResourceValues::read(at("file"));
    ASSERT_TRUE(values);
    const ARXFileStatus status = ARXFileStatus::lstat(at("file"));
    EXPECT_FALSE(values->isSymbolicLink);
    EXPECT_FALSE(values->isHidden);
    EXPECT_EQ(values->totalFileSize, 5u);
    EXPECT_EQ(values->addedDate, status.born);
    EXPECT_FALSE(values->cloud.isUbiquitous);
    EXPECT_FALSE(values->cloud.downloadingStatus);

    int error = 0;
    EXPECT_FALSE(ARXResourceValues::read(at("missing"), &error));
    EXPECT_EQ(error, ENOENT);
}

TEST_F(ARXResourceValuesTest, HiddenByDotOrByTheFoldersList) {
    writeFile(at(".hidden"), "listed\n");
    for (const char* name : {"listed", "plain", ".dot"}) {
        writeFile(at(name), "");
    }
    EXPECT_TRUE(ARXResourceValues::read(at("listed"))->isHidden);
    EXPECT_TRUE(ARXResourceValues::read(at(".dot"))->isHidden);
    EXPECT_FALSE(ARXResourceValues::read(at("plain"))->isHidden);
    EXPECT_FALSE(ARXResourceValues::read("/")->isHidden);

    // A listing hands in the list it loaded once; a list of another folder is not trusted.
    const ARXHiddenList list = ARXHiddenList::parse(root(), "plain\n");
    const ARXFileStatus status = ARXFileStatus::lstat(at("plain"));
    EXPECT_TRUE(ARXResourceValues::read(at("plain"), status, &list)->isHidden);
    const ARXHiddenList elsewhere = ARXHiddenList::parse("/elsewhere", "plain\n");
    EXPECT_FALSE(ARXResourceValues::read(at("plain"), status, &elsewhere)->isHidden);
}

TEST_F(ARXResourceValuesTest, LinkChainsResolveToTheirFinalTarget) {
    makeFolder(at("real"));
    writeFile(at("real/caf\xe9.txt"), "x");
    link("real/caf\xe9.txt", "first");
    link("first", "second");
    link("real", "folder-link");
    // The temporary folder may itself lie behind a link; answers are canonical paths.
    char* resolvedRoot = ::realpath(root().c_str(), nullptr);
    ASSERT_NE(resolvedRoot, nullptr);
    const Path canonicalRoot = resolvedRoot;
    std::free(resolvedRoot);

    const auto values = ARXResourceValues::read(at("second"));
    ASSERT_TRUE(values);
    EXPECT_TRUE(values->isSymbolicLink);
    const ARXLinkResolution chain = ARXResourceValues::resolveLink(at("second"));
    EXPECT_EQ(chain.outcome, ARXLinkResolution::Outcome::resolved);
    EXPECT_EQ(chain.target, ARXPath::join(canonicalRoot, "real/caf\xe9.txt"));
    EXPECT_EQ(chain.error, 0);
    EXPECT_EQ(ARXResourceValues::readLink(at("second")), Path("first"));
    // A relative link inside a linked folder resolves against where it really is.
    link("../real", "real/up");
    EXPECT_EQ(ARXResourceValues::resolveLink(at("folder-link/up")).target,
              ARXPath::join(canonicalRoot, "real"));
}

TEST_F(ARXResourceValuesTest, BrokenLinksHaveNoTargetButAReason) {
    link("nowhere", "dangling");
    link("dangling", "to-dangling");
    link("loop-b", "loop-a");
    link("loop-a", "loop-b");
    link("self", "self");
    writeFile(at("file"), "");
    link("file/below", "through-file");

    const auto expect = [&](std::string_view name, ARXLinkResolution::Outcome outcome, int error) {
        const ARXLinkResolution resolution = ARXResourceValues::resolveLink(at(name));
        EXPECT_EQ(resolution.outcome, outcome) << name;
        EXPECT_EQ(resolution.error, error) << name;
        EXPECT_FALSE(resolution.target) << name;
    };
    using Outcome = ARXLinkResolution::Outcome;
    expect("dangling", Outcome::dangling, ENOENT);
    expect("to-dangling", Outcome::dangling, ENOENT);
    expect("through-file", Outcome::dangling, ENOTDIR);
    expect("loop-a", Outcome::loop, ELOOP);
    expect("self", Outcome::loop, ELOOP);
    expect("file", Outcome::notALink, EINVAL);
    expect("missing", Outcome::notALink, ENOENT);

    int error = 0;
    EXPECT_FALSE(ARXResourceValues::readLink(at("file"), &error));
    EXPECT_EQ(error, EINVAL);
}

TEST_F(ARXResourceValuesTest, TagsRoundTripThroughTheAttribute) {
    writeFile(at("file"), "");
    EXPECT_FALSE(ARXResourceValues::readTags(at("file")));

    ASSERT_EQ(ARXResourceValues::setTags(at("file"), {" Red ", "Work", "", "Red", "Füße"}), 0);
    EXPECT_EQ(rawTags(at("file")), "Red,Work,F\xc3\xbc\xc3\x9f\x65");
    EXPECT_EQ(ARXResourceValues::readTags(at("file")),
              (QStringList{"Red", "Work", QString::fromUtf8("Füße")}));

    // An empty list takes the attribute away rather than leaving an empty one.
    ASSERT_EQ(ARXResourceValues::setTags(at("file"), {}), 0);
    EXPECT_EQ(rawTags(at("file")), "<none>");
    EXPECT_EQ(ARXResourceValues::setTags(at("file"), {}), 0); // nothing to remove is fine

    EXPECT_EQ(ARXResourceValues::setTags(at("file"), {"a,b"}), EINVAL);
    EXPECT_EQ(rawTags(at("file")), "<none>");
}

TEST_F(ARXResourceValuesTest, TagsWrittenByOthersAreReadLeniently) {
    writeFile(at("file"), "");
    const auto put = [&](std::string_view raw) {
        ASSERT_EQ(::lsetxattr(at("file").c_str(), "user.xdg.tags", raw.data(), raw.size(), 0), 0);
    };
    put(std::string_view(" one ,two,,one,three\0", 21));
    EXPECT_EQ(ARXResourceValues::readTags(at("file")), (QStringList{"one", "two", "three"}));
    put("");
    int error = -1;
    EXPECT_FALSE(ARXResourceValues::readTags(at("file"), &error));
    EXPECT_EQ(error, 0);
    put(" , ,");
    EXPECT_FALSE(ARXResourceValues::readTags(at("file")));
    put("ok,bad\xff");
    EXPECT_EQ(ARXResourceValues::readTags(at("file")),
              (QStringList{"ok", QStringLiteral("bad\uFFFD")}));
}

TEST_F(ARXResourceValuesTest, TagWritesThatTheSystemRefuses) {
    link("target", "link");
    EXPECT_EQ(ARXResourceValues::setTags(at("link"), {"Red"}), EPERM);
    EXPECT_EQ(ARXResourceValues::setTags(at("missing"), {"Red"}), ENOENT);
    int error = 0;
    EXPECT_FALSE(ARXResourceValues::readTags(at("missing"), &error));
    EXPECT_EQ(error, ENOENT);
    // The proc file system keeps no user attributes.
    if (!ARXFileStatus::stat("/proc/self/comm").exists) {
        GTEST_SKIP() << "no /proc here to try a file system without user attributes";
    }
    EXPECT_EQ(ARXResourceValues::setTags("/proc/self/comm", {"Red"}), ENOTSUP);
    EXPECT_FALSE(ARXResourceValues::readTags("/proc/self/comm", &error));
    EXPECT_EQ(error, 0);
}

TEST_F(ARXResourceValuesTest, CloudValuesComeOnlyFromAnInstalledProvider) {
    writeFile(at(".doc.icloud"), "");
    ARXResourceValues::setCloudProvider([](const Path& path) {
        ARXCloudValues values;
        values.isUbiquitous = ARXPath::lastComponent(path) == ".doc.icloud";
        values.downloadingStatus = ARXDownloadingStatus::notDownloaded;
        values.isDownloading = true;
        return values;
    });
    const auto values = ARXResourceValues::read(at(".doc.icloud"));
    EXPECT_EQ(values->cloud.isUbiquitous, true);
    EXPECT_EQ(values->cloud.downloadingStatus, ARXDownloadingStatus::notDownloaded);
    EXPECT_EQ(values->cloud.isDownloading, true);
    EXPECT_FALSE(values->cloud.hasUnresolvedConflicts);

    ARXResourceValues::setCloudProvider({});
    EXPECT_FALSE(ARXResourceValues::read(at(".doc.icloud"))->cloud.isUbiquitous);
}

} // namespace
