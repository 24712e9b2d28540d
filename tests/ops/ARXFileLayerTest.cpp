#include "ops/ARXFileLayer.h"

#include "app/ARXConf.h"
#include "app/ARXNotificationNames.h"
#include "ops/ARXCloudTrash.h"
#include "platform/ARXFileError.h"
#include "platform/ARXMainQueue.h"
#include "platform/ARXNotificationCenter.h"
#include "platform/ARXResourceValues.h"
#include "support/ARXTestEnvironment.h"

#include <functional>
#include <sys/stat.h>
#include <thread>

namespace {

struct Heard {
    QString name;
    QVariantMap userInfo;
    bool onMainThread = false;
};

bool exists(const Path& path) {
    struct stat st {};
    return ::lstat(path.c_str(), &st) == 0;
}

} // namespace

class ARXFileLayerTest : public ARXTestEnvironment {
protected:
    void SetUp() override {
        ARXTestEnvironment::SetUp();
        for (const QString& name :
             {ARXNotificationName::rv_file_changed, ARXNotificationName::rv_file_moved}) {
            tokens.push_back(ARXNotificationCenter::shared().addObserver(
                name, nullptr, [this](const ARXNotification& n) {
                    heard.push_back({n.name, n.userInfo, ARXMainQueue::isMainThread()});
                }));
        }
    }
    void TearDown() override {
        for (const ARXNotificationCenter::Token token : tokens) {
            ARXNotificationCenter::shared().removeObserver(token);
        }
        ARXResourceValues::setCloudProvider({});
        ARXTestEnvironment::TearDown();
    }

    Path at(const std::string& name) const { return ARXPath::join(root(), name); }

    // Runs the call on a worker, as the operation engine does, and waits for one notification.
    Heard runOnWorker(const std::function<void()>& call) {
        heard.clear();
        std::thread worker(call);
        worker.join();
        waitForWhatWasPosted();
        EXPECT_EQ(heard.size(), 1u);
        return heard.empty() ? Heard{} : heard.front();
    }

    // Whatever was posted to the main queue until now has been delivered once a call queued now
    // has run: the queue keeps its order, from every thread.
    static void waitForWhatWasPosted() {
        bool reached = false;
        ARXMainQueue::async([&reached] { reached = true; });
        EXPECT_TRUE(waitUntil([&reached] { return reached; }));
    }

    static QString stored(const Path& path) { return ARXPath::toStoredText(path); }

    std::vector<Heard> heard;
    std::vector<ARXNotificationCenter::Token> tokens;
};

TEST_F(ARXFileLayerTest, EachCallPostsItsChangeOnTheMainThread) {
    writeFile(at("a.txt"), "a");
    const Path odd = at(std::string("\xff-copy.txt")); // not UTF-8: stored as a file URL

    Heard copied = runOnWorker([&] { ARXFileLayer::copyFile(at("a.txt"), odd); });
    EXPECT_EQ(copied.name, ARXNotificationName::rv_file_changed);
    EXPECT_TRUE(copied.onMainThread);
    EXPECT_EQ(copied.userInfo.value(ARXNotificationKey::path).toString(), stored(odd));
    EXPECT_EQ(ARXPath::fromStoredText(copied.userInfo.value(ARXNotificationKey::path).toString()),
              odd);

    Heard moved = runOnWorker([&] { ARXFileLayer::moveFile(odd, at("b.txt")); });
    EXPECT_EQ(moved.name, ARXNotificationName::rv_file_moved);
    EXPECT_TRUE(moved.onMainThread);
    EXPECT_EQ(moved.userInfo.value(ARXNotificationKey::source).toString(), stored(odd));
    EXPECT_EQ(moved.userInfo.value(ARXNotificationKey::target).toString(), stored(at("b.txt")));

    writeFile(at("c.txt"), "new");
    Heard replaced = runOnWorker([&] { ARXFileLayer::replaceFile(at("b.txt"), at("c.txt")); });
    EXPECT_EQ(replaced.name, ARXNotificationName::rv_file_moved);
    EXPECT_EQ(replaced.userInfo.value(ARXNotificationKey::source).toString(), stored(at("c.txt")));
    EXPECT_EQ(replaced.userInfo.value(ARXNotificationKey::target).toString(), stored(at("b.txt")));
    EXPECT_EQ(readFile(at("b.txt")), "new");
    EXPECT_EQ(readFile(ARXPath::join(dataHome(), "Trash/files/b.txt")), "a"); // what was replaced

    std::optional<Path> trashed;
    Heard trash = runOnWorker([&] { trashed = ARXFileLayer::trashFile(at("b.txt")); });
    EXPECT_EQ(trash.name, ARXNotificationName::rv_file_changed);
    EXPECT_EQ(trash.userInfo.value(ARXNotificationKey::path).toString(), stored(at("b.txt")));
    ASSERT_TRUE(trashed.has_value());
    EXPECT_EQ(*trashed, ARXPath::join(dataHome(), "Trash/files/b.txt.2"));
    EXPECT_EQ(readFile(*trashed), "new");

    Heard removed = runOnWorker([&] { ARXFileLayer::removeFile(at("a.txt")); });
    EXPECT_EQ(removed.name, ARXNotificationName::rv_file_changed);
    EXPECT_EQ(removed.userInfo.value(ARXNotificationKey::path).toString(), stored(at("a.txt")));
    EXPECT_FALSE(exists(at("a.txt")));
}

TEST_F(ARXFileLayerTest, OnTheMainThreadTheNotificationComesAfterTheCallReturned) {
    writeFile(at("a.txt"), "a");
    ARXFileLayer::moveFile(at("a.txt"), at("b.txt"));
    EXPECT_TRUE(heard.empty());
    EXPECT_TRUE(waitUntil([this] { return heard.size() == 1; }));
}

TEST_F(ARXFileLayerTest, FailuresComeThroughAndPostNothing) {
    writeFile(at("a.txt"), "a");
    writeFile(at("b.txt"), "b");
    try {
        ARXFileLayer::copyFile(at("a.txt"), at("b.txt"));
        FAIL();
    } catch (const ARXFileError& error) {
        EXPECT_EQ(error.code, ARXFileError::kAlreadyExists);
        EXPECT_EQ(error.path, at("b.txt"));
    }
    EXPECT_THROW(ARXFileLayer::moveFile(at("a.txt"), at("b.txt")), ARXFileError);
    EXPECT_THROW(ARXFileLayer::removeFile(at("missing")), ARXFileError);
    EXPECT_THROW(ARXFileLayer::trashFile(at("missing")), ARXFileError);
    waitForWhatWasPosted();
    EXPECT_TRUE(heard.empty());
    EXPECT_EQ(readFile(at("b.txt")), "b");
}

TEST_F(ARXFileLayerTest, CloudItemsGoToTheCloudTrashFolders) {
    const Path libraries = ARXConf::cloudLibrariesPath();
    ARXResourceValues::setCloudProvider([libraries](const Path& path) {
        ARXCloudValues values;
        values.isUbiquitous = path.starts_with(libraries + "/");
        return values;
    });
    const Path drive = ARXConf::cloudDrivePath();
    const Path container = ARXPath::join(libraries, "iCloud~com~example~notes");
    writeFile(ARXPath::join(drive, "Docs/doc.txt"), "one");
    writeFile(ARXPath::join(drive, "doc.txt"), "two");
    writeFile(ARXPath::join(container, "Documents/note.txt"), "note");
    writeFile(at("plain.txt"), "plain");

    EXPECT_EQ(ARXCloudTrash::trashFolderFor(ARXPath::join(container, "Documents/note.txt")),
              ARXPath::join(container, "Documents/.Trash"));
    EXPECT_EQ(ARXFileLayer::trashFile(ARXPath::join(drive, "Docs/doc.txt")),
              ARXPath::join(drive, ".Trash/doc.txt"));
    EXPECT_EQ(ARXFileLayer::trashFile(ARXPath::join(drive, "doc.txt")),
              ARXPath::join(drive, ".Trash/doc 2.txt"));
    EXPECT_EQ(ARXFileLayer::trashFile(ARXPath::join(container, "Documents/note.txt")),
              ARXPath::join(container, "Documents/.Trash/note.txt"));
    EXPECT_EQ(readFile(ARXPath::join(drive, ".Trash/doc 2.txt")), "two");
    // Everything else still goes to the desktop's trash.
    EXPECT_EQ(ARXFileLayer::trashFile(at("plain.txt")),
              ARXPath::join(dataHome(), "Trash/files/plain.txt"));
    EXPECT_TRUE(waitUntil([this] { return heard.size() == 4; }));
}

TEST_F(ARXFileLayerTest, ACloudTrashNameTakenByAFileMovesNothing) {
    const Path drive = ARXConf::cloudDrivePath();
    ARXResourceValues::setCloudProvider([](const Path&) {
        ARXCloudValues values;
        values.isUbiquitous = true;
        return values;
    });
    writeFile(ARXPath::join(drive, "doc.txt"), "doc");
    writeFile(ARXPath::join(drive, ".Trash"), "not a folder");

    EXPECT_EQ(ARXFileLayer::trashFile(ARXPath::join(drive, "doc.txt")), std::nullopt);
    EXPECT_EQ(readFile(ARXPath::join(drive, "doc.txt")), "doc");
    waitForWhatWasPosted();
    EXPECT_TRUE(heard.empty());
}
