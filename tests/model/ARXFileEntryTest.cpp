#include "model/ARXFileEntry.h"

#include "ARXFileEntryFixture.h"
#include "app/ARXConf.h"
#include "model/ARXFileFormat.h"
#include "support/ARXTestImages.h"

#include <QDateTime>

#include <limits>

namespace {

class ARXFileEntryTest : public ARXFileEntryFixture {
protected:
    static std::string pngBytes(int width, int height) { return ARXImageBytes(width, height); }
};

class FakeTagColors : public ARXTagColorSource {
public:
    int colorIndex(const QString& tag) const override {
        static const QHash<QString, int> table = {
            {"Red", 1}, {"Blue", 2}, {"Work", 1}, {"Plain", 0}, {"Far", 9}};
        return table.value(tag, 0);
    }
    const std::vector<ARXTagColor>& colors() const override { return _colors; }

private:
    std::vector<ARXTagColor> _colors = {0x000000, 0xF86056, 0x438DF8};
};

TEST_F(ARXFileEntryTest, RootTakesTheDefaultOrderAndChildrenTheirParents) {
    ARXConf::settings_default_sort_column().setValue(QStringLiteral("Size"));
    ARXConf::settings_default_sort_ascend().setValue(true);
    ARXConf::settings_default_sort_folders_ontop().setValue(true);
    makeFolder(at("dir"));
    const ARXFileEntryRef dir = ARXFileEntry::create(at("dir"));
    EXPECT_EQ(dir->sortColumn, ARXSpaceViewColumnId::size);
    EXPECT_TRUE(dir->sortAscend);
    EXPECT_TRUE(dir->sortFoldersOnTop);

    dir->sortColumn = ARXSpaceViewColumnId::kind;
    dir->sortAscend = false;
    const ARXFileEntryRef child = ARXFileEntry::create(at("dir/x"), dir);
    EXPECT_EQ(child->sortColumn, ARXSpaceViewColumnId::kind);
    EXPECT_FALSE(child->sortAscend);
    EXPECT_EQ(child->parent(), dir);

    ARXConf::settings_default_sort_column().setValue(QStringLiteral("Colour"));
    EXPECT_EQ(ARXFileEntry::create(at("dir"))->sortColumn, ARXSpaceViewColumnId::modified);
    for (ARXSpaceViewColumnId column : ARXSpaceViewColumn::all()) {
        EXPECT_EQ(ARXSpaceViewColumn::parse(ARXSpaceViewColumn::storedString(column)), column);
    }
    EXPECT_EQ(ARXSpaceViewColumn::storedString(ARXSpaceViewColumnId::lastOpened),
              "Date Last Opened");
}

TEST_F(ARXFileEntryTest, RefreshReadsAttributesAndSkipsAFreshItem) {
    writeFile(at("report.txt"), "12345");
    setModified(at("report.txt"), 1'000'000'000, 500'000'000);
    const ARXFileEntryRef entry = ARXFileEntry::create(at("report.txt"));
    EXPECT_TRUE(entry->isExists);
    EXPECT_EQ(entry->name(), "report.txt");
    EXPECT_EQ(entry->size, 5u);
    EXPECT_FALSE(entry->isFolder());
    EXPECT_FALSE(entry->isHidden);
    EXPECT_DOUBLE_EQ(*entry->modifiedDate(), 1'000'000'000.5);
    EXPECT_TRUE(entry->creationDate && entry->accessDate());
    EXPECT_EQ(*entry->loadedModifiedTime(), (ARXFileTime{1'000'000'000, 500'000'000}));

    // Same modification time: fresh, nothing but the tags is read.
    writeFile(at("report.txt"), "1234567890");
    setModified(at("report.txt"), 1'000'000'000, 500'000'000);
    const bool tagsWork = ARXResourceValues::setTags(at("report.txt"), {"Red"}) == 0;
    EXPECT_TRUE(entry->refresh(false));
    EXPECT_EQ(entry->size, 5u);
    if (tagsWork) {
        EXPECT_EQ(entry->tags, QStringList{"Red"});
    }
    EXPECT_TRUE(entry->refresh(true));
    EXPECT_EQ(entry->size, 10u);

    // Any other time is stale, also an earlier one.
    writeFile(at("report.txt"), "123");
    setModified(at("report.txt"), 999'999'999);
    EXPECT_TRUE(entry->refresh(false));
    EXPECT_EQ(entry->size, 3u);

    // Gone: false, the last values stay.
    ASSERT_EQ(::unlink(at("report.txt").c_str()), 0);
    EXPECT_FALSE(entry->refresh(false));
    EXPECT_FALSE(entry->isExists);
    EXPECT_FALSE(entry->loadedModifiedTime());
    EXPECT_EQ(entry->size, 3u);
}

TEST_F(ARXFileEntryTest, LinksAnswerThroughTheirTarget) {
    makeFolder(at("real"));
    symlinkTo(at("real"), at("link"));
    setModified(at("link"), 1000);
    const ARXFileEntryRef link = ARXFileEntry::create(at("link"));
    EXPECT_FALSE(link->isFolder());
    ASSERT_TRUE(link->link());
    EXPECT_EQ(link->link()->path(), at("real"));
    EXPECT_TRUE(link->link()->isFolder());
    EXPECT_FALSE(link->link()->parent());
    EXPECT_TRUE(link->isFolderItem());
    EXPECT_EQ(link->typeIdentifier(), "inode/directory");
    // The link's own time is stored and the target's compared, so the link is read every time
    // and its target entry renewed.
    const ARXFileEntry* before = link->link().get();
    EXPECT_TRUE(link->refresh(false));
    EXPECT_NE(link->link().get(), before);

    // Path tests fall back to the target.
    EXPECT_TRUE(link->isSamePath(at("real/")));
    EXPECT_TRUE(link->contains(at("real/a/b"), true));
    EXPECT_FALSE(link->contains(at("real/a/b"), false));
    EXPECT_TRUE(link->isInside(root(), false));

    // A link that stops resolving keeps the target entry it had.
    ASSERT_EQ(::rmdir(at("real").c_str()), 0);
    EXPECT_TRUE(link->refresh(true));
    EXPECT_TRUE(link->link());
}

TEST_F(ARXFileEntryTest, DanglingLinksAndLoopsExistWithoutATarget) {
    symlinkTo(at("nowhere"), at("dangling"));
    symlinkTo(at("loop-b"), at("loop-a"));
    symlinkTo(at("loop-a"), at("loop-b"));
    for (const char* name : {"dangling", "loop-a"}) {
        const ARXFileEntryRef entry = ARXFileEntry::create(at(name), nullptr, true);
        EXPECT_TRUE(entry->isExists) << name;
        EXPECT_FALSE(entry->link()) << name;
        EXPECT_FALSE(entry->isFolderItem()) << name;
        EXPECT_TRUE(entry->prepare(false)) << name;
        EXPECT_TRUE(entry->children().empty()) << name;
        EXPECT_EQ(entry->kind().isEmpty(), false) << name;
    }
}

TEST_F(ARXFileEntryTest, CloudStateFollowsTheInjectedValues) {
    const auto ubiquitous = [] {
        ARXCloudValues cloud;
        cloud.isUbiquitous = true;
        return cloud;
    };
    ARXCloudValues values;
    ARXResourceValues::setCloudProvider([&](const Path&) { return values; });
    writeFile(at(".doc.icloud"), "");
    writeFile(at("doc.txt"), "");
    makeFolder(at("box"));

    values.isUbiquitous = true;
    values.downloadingStatus = ARXDownloadingStatus::notDownloaded;
    const ARXFileEntryRef placeholder = ARXFileEntry::create(at(".doc.icloud"));
    EXPECT_TRUE(placeholder->isUbiquitous);
    EXPECT_FALSE(placeholder->isHidden);
    EXPECT_EQ(placeholder->ubiquitousState, ARXFileUbiquitousState::need_download);
    // Never fresh: a new state shows although the time did not change.
    values.hasUnresolvedConflicts = true;
    placeholder->refresh(false);
    EXPECT_EQ(placeholder->ubiquitousState, ARXFileUbiquitousState::conflict);

    values = ubiquitous();
    values.isUploading = true;
    EXPECT_EQ(ARXFileEntry::create(at("doc.txt"))->ubiquitousState,
              ARXFileUbiquitousState::uploading);
    values = ubiquitous();
    EXPECT_EQ(ARXFileEntry::create(at("doc.txt"))->ubiquitousState,
              ARXFileUbiquitousState::need_upload);
    values.downloadingStatus = ARXDownloadingStatus::current;
    EXPECT_EQ(ARXFileEntry::create(at("doc.txt"))->ubiquitousState, ARXFileUbiquitousState::synced);
    values = ubiquitous();
    values.isDownloading = true;
    EXPECT_EQ(ARXFileEntry::create(at("box"))->ubiquitousState,
              ARXFileUbiquitousState::downloading);
}

TEST_F(ARXFileEntryTest, KindsPackagesAndBriefInfo) {
    writeFile(at("notes.txt"), "hello");
    makeFolder(at("Tool.app"));
    makeFolder(at("dir"));
    writeFile(at("dir/.dot"), "");
    writeFile(at("archive.zip"), std::string("PK\x03\x04", 4) + std::string(1230, 'x'));
    writeFile(at("picture.png"), pngBytes(3, 2));

    const ARXFileEntryRef notes = ARXFileEntry::create(at("notes.txt"));
    EXPECT_EQ(notes->typeIdentifier(), "text/plain");
    for (const QString& word : notes->kind().split(u' ')) {
        EXPECT_TRUE(word.at(0).isUpper()) << word.toStdString();
    }
    EXPECT_FALSE(notes->briefInfo());

    const ARXFileEntryRef tool = ARXFileEntry::create(at("Tool.app"));
    EXPECT_TRUE(tool->isPackage());
    EXPECT_TRUE(tool->hasPackageExtension());
    EXPECT_FALSE(tool->isFolderItem());

    const ARXFileEntryRef dir = ARXFileEntry::create(at("dir"));
    EXPECT_EQ(dir->briefInfo(), "1 item"); // hidden items count too
    writeFile(at("dir/b"), "");
    EXPECT_EQ(dir->briefInfo(), "2 items");
    ASSERT_TRUE(dir->prepare(false));
    dir->folderChildren(); // from now on the listed children count
    EXPECT_EQ(dir->briefInfo(), "1 item");
    EXPECT_EQ(ARXFileEntry::create(at("nothing-here"))->briefInfo(), std::nullopt);

    EXPECT_EQ(ARXFileEntry::create(at("archive.zip"))->briefInfo(), "1 KB");
    const ARXFileEntryRef picture = ARXFileEntry::create(at("picture.png"));
    EXPECT_EQ(picture->briefInfo(), QStringLiteral("3×2"));
    // Media facts are read once for the entry's life.
    writeFile(at("picture.png"), pngBytes(8, 8));
    EXPECT_EQ(picture->dimensions(), (ARXPixelSize{3, 2}));
    EXPECT_FALSE(picture->duration());
    EXPECT_FALSE(notes->dimensions());
}

TEST_F(ARXFileEntryTest, BrokenMediaGiveNoFacts) {
    writeFile(at("clip.mp4"), std::string("\0\0\0\x18"
                                          "ftypmp42",
                                          12) +
                                  "garbage");
    writeFile(at("song.mp3"), "ID3\x04\0\0\0\0\0\x7f");
    writeFile(at("fake.png"), "\x89PNG\r\n\x1a\n");
    for (const char* name : {"clip.mp4", "song.mp3", "fake.png"}) {
        const ARXFileEntryRef entry = ARXFileEntry::create(at(name));
        EXPECT_FALSE(entry->dimensions()) << name;
        EXPECT_FALSE(entry->infoDuration()) << name;
    }
}

TEST_F(ARXFileEntryTest, SizeAndDurationTexts) {
    using ARXFileFormat::formatDuration;
    using ARXFileFormat::formatSize;
    EXPECT_EQ(formatSize(std::numeric_limits<uint64_t>::max()), "--");
    EXPECT_EQ(formatSize(999), "999 B");
    EXPECT_EQ(formatSize(1000), "1 KB");
    EXPECT_EQ(formatSize(999'999), "1000 KB");
    EXPECT_EQ(formatSize(1'500'000), "1.5 MB");
    EXPECT_EQ(formatSize(2'345'000'000), "2.35 GB");
    EXPECT_EQ(formatSize(7'000'000'000'000), "7.00 TB");
    EXPECT_EQ(formatSize(5'000'000'000'000'000), "5000.00 TB");

    EXPECT_EQ(formatDuration(59.5), "01:00");
    EXPECT_EQ(formatDuration(3599.4), "59:59");
    EXPECT_EQ(formatDuration(3725), "01:02:05");
    EXPECT_EQ(formatDuration(-3), "00:00");
}

TEST_F(ARXFileEntryTest, PathTestsFollowTheVolumeCaseRule) {
    const ARXFileEntryRef usb =
        ARXFileEntry::create("/media/usb/Photos", nullptr, false, false, false);
    EXPECT_TRUE(usb->isSamePath("/media/USB/photos/"));
    EXPECT_TRUE(usb->contains("/media/usb/PHOTOS/a/b", true));
    EXPECT_TRUE(usb->isInside("/media/usb", false));
    const ARXFileEntryRef local = ARXFileEntry::create("/srv/Photos", nullptr, false, false, false);
    EXPECT_FALSE(local->isSamePath("/srv/photos"));
    EXPECT_EQ(local->fileURLString(), "file:///srv/Photos/");
    EXPECT_EQ(ARXFileEntry::create("/srv/a b%", nullptr, false, false, false)->fileURLString(),
              "file:///srv/a%20b%25/");
}

TEST_F(ARXFileEntryTest, TagColorsInTagOrderEachOnceFirstOnTop) {
    const ARXFileEntryRef entry = ARXFileEntry::create(at("x"), nullptr, false, false, false);
    entry->tags = QStringList{"Red", "Plain", "Unknown", "Blue", "Work", "Far"};
    EXPECT_TRUE(entry->tagColors().empty()); // no table installed
    ARXTagColorSource::install(std::make_shared<FakeTagColors>());
    EXPECT_EQ(entry->tagColors(), (std::vector<ARXTagColor>{0x438DF8, 0xF86056}));
    entry->tags.reset();
    EXPECT_TRUE(entry->tagColors().empty());
}

TEST_F(ARXFileEntryTest, FoldersDirectlyInTheHomeFolderGetALocalName) {
    makeFolder(ARXPath::join(home(), "Music/Live"));
    writeFile(ARXPath::join(home(), "todo"), "");
    EXPECT_EQ(ARXFileEntry::create(ARXPath::join(home(), "Music"))->localName(), "Music");
    EXPECT_FALSE(ARXFileEntry::create(ARXPath::join(home(), "Music/Live"))->localName());
    EXPECT_FALSE(ARXFileEntry::create(ARXPath::join(home(), "todo"))->localName());
}

TEST_F(ARXFileEntryTest, CopyAttributesGivesAPlaceholderTheSourcesLook) {
    writeFile(at("a.txt"), "12345");
    setModified(at("a.txt"), 1000);
    const ARXFileEntryRef source = ARXFileEntry::create(at("a.txt"));
    const ARXFileEntryRef copy = ARXFileEntry::create(at("b.txt"));
    copy->tags = QStringList{"Keep"};
    source->copyAttributes(*copy);
    EXPECT_EQ(copy->size, 5u);
    EXPECT_EQ(copy->modifiedDate(), 1000.0);
    EXPECT_EQ(copy->creationDate, source->creationDate);
    EXPECT_EQ(copy->tags, QStringList{"Keep"}); // the source has none
    EXPECT_NEAR(*copy->addedDate(), QDateTime::currentSecsSinceEpoch(), 5.0);
}

TEST_F(ARXFileEntryTest, RewritePathsStopsAtLinks) {
    writeFile(at("a/b/c"), "");
    writeFile(at("other/inner"), "");
    symlinkTo(at("other"), at("a/l"));
    const ARXFileEntryRef a = rootEntry("a");
    ASSERT_TRUE(a->prepare(false));
    const ARXFileEntryRef b = a->find(at("a/b"));
    const ARXFileEntryRef l = a->find(at("a/l"));
    ASSERT_TRUE(b && l && b->prepare(false) && l->prepare(false));
    ASSERT_EQ(::rename(at("a").c_str(), at("z").c_str()), 0);
    a->setPath(at("z"));
    a->rewritePaths();
    EXPECT_EQ(b->path(), at("z/b"));
    EXPECT_EQ(b->children().front()->path(), at("z/b/c"));
    EXPECT_EQ(l->path(), at("z/l"));
    EXPECT_EQ(l->children().front()->path(), at("other/inner"));
}

TEST_F(ARXFileEntryTest, MakeAliasLinksToTheTargetBesideIt) {
    writeFile(at("dir/note.txt"), "");
    const ARXFileEntryRef dir = rootEntry("dir");
    ASSERT_TRUE(dir->prepare(false));
    const ARXFileEntryRef note = dir->children().front();
    const ARXFileEntryResult first = note->makeAlias();
    ASSERT_TRUE(first.entry);
    EXPECT_EQ(first.entry->path(), at("dir/note.txt alias"));
    EXPECT_EQ(ARXResourceValues::readLink(first.entry->path()), at("dir/note.txt"));
    EXPECT_EQ(first.entry->parent(), dir);
    EXPECT_EQ(names(dir->children()), (std::vector<std::string>{"note.txt", "note.txt alias"}));
    // A taken name is numbered by the shared rule; an alias of an alias leads to the original.
    EXPECT_EQ(note->makeAlias().entry->path(), at("dir/note 2.txt alias"));
    EXPECT_EQ(ARXResourceValues::readLink(first.entry->makeAlias().entry->path()),
              at("dir/note.txt"));

    touch(at(std::string(250, 'n')));
    const ARXFileEntryResult failed = ARXFileEntry::create(at(std::string(250, 'n')))->makeAlias();
    EXPECT_FALSE(failed.entry);
    ASSERT_TRUE(failed.error);
    EXPECT_EQ(failed.error->errnum, ENAMETOOLONG);
    EXPECT_TRUE(failed.error->text().contains(QString(250, u'n')));
}

} // namespace

TEST_F(ARXFileEntryTest, RemoveChildrenGoesByIdentityNotByPath) {
    const Path folder = at("folder");
    writeFile(ARXPath::join(folder, "a"), "1");
    writeFile(ARXPath::join(folder, "b"), "2");
    const ARXFileEntryRef root = ARXFileEntry::create(folder, nullptr, true);
    ASSERT_EQ(root->children().size(), 2u);
    // A placeholder that shares its path with the real item "a".
    const ARXFileEntryList placeholders =
        root->addPlaceholders({ARXPath::join(root->path(), "a")}, ARXFileOperationType::copy);
    ASSERT_EQ(root->children().size(), 3u);
    EXPECT_EQ(root->removeChildren(placeholders), 1u);
    ASSERT_EQ(root->children().size(), 2u);
    for (const ARXFileEntryRef& child : root->children()) {
        EXPECT_FALSE(child->operation);
    }
}
