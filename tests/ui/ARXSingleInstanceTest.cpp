#include "ui/desktop/ARXSingleInstance.h"

#include "ARXServiceTestBus.h"
#include "support/ARXTestEnvironment.h"
#include "ui/desktop/ARXInstanceHandler.h"

#include <QDBusMessage>
#include <QSemaphore>
#include <QThread>
#include <QVariant>

#include <gtest/gtest.h>

#include <memory>
#include <unistd.h>

namespace {

using Paths = std::vector<Path>;

struct Call {
    std::string kind;
    Paths paths;
    bool operator==(const Call&) const = default;
};

void PrintTo(const Call& call, std::ostream* out) {
    *out << call.kind << "(";
    for (const Path& path : call.paths) {
        *out << " " << path;
    }
    *out << " )";
}

class RecordingHandler : public ARXInstanceHandler {
public:
    void openFolders(const Paths& folders) override { calls.push_back({"open", folders}); }
    void revealItems(const Paths& items) override { calls.push_back({"reveal", items}); }
    void showItemProperties(const Paths& items) override { calls.push_back({"info", items}); }
    void reopen() override { calls.push_back({"reopen", {}}); }

    std::vector<Call> calls;
};

// Short waits, so that the tests of owners that never answer end soon.
constexpr ARXSingleInstance::Timing kQuick{200, 2, 20};

// A thread that never runs its event loop: an object living there receives calls that are never
// answered, as in a first Atrium stuck while it starts.
class StalledThread : public QThread {
public:
    ~StalledThread() override {
        release();
        wait();
    }
    void release() { _release.release(); }

protected:
    void run() override { _release.acquire(); }

private:
    QSemaphore _release;
};

class ARXSingleInstanceTest : public ARXTestEnvironment {
protected:
    void SetUp() override {
        ARXTestEnvironment::SetUp();
        _bus = std::make_unique<ARXServiceTestBus>();
        if (!_bus->isRunning()) {
            GTEST_SKIP() << _bus->error().toStdString();
        }
    }
    void TearDown() override {
        _bus.reset();
        ARXTestEnvironment::TearDown();
    }

    // One Atrium process: its own connection and its single-instance object.
    std::unique_ptr<ARXSingleInstance> process(const QString& name) {
        auto instance = std::make_unique<ARXSingleInstance>(_bus->connect(name));
        instance->setTiming(kQuick);
        return instance;
    }

    std::unique_ptr<ARXServiceTestBus> _bus;
};

TEST_F(ARXSingleInstanceTest, ASecondStartHandsItsPathsToTheFirstAndEnds) {
    const Path folder = ARXPath::join(home(), "Projects");
    const Path file = ARXPath::join(home(), "caf\xe9 \xff.txt"); // not UTF-8
    makeFolder(folder);
    writeFile(file, "x");

    RecordingHandler handler;
    auto first = process(QStringLiteral("first"));
    ASSERT_EQ(first->start({}), ARXSingleInstance::Role::first);
    first->setHandler(&handler);

    auto second = process(QStringLiteral("second"));
    EXPECT_EQ(second->start({folder, file}), ARXSingleInstance::Role::handedOver);
    ASSERT_TRUE(waitUntil([&] { return handler.calls.size() == 2; }));
    EXPECT_EQ(handler.calls[0], (Call{"open", {folder}}));
    EXPECT_EQ(handler.calls[1], (Call{"reveal", {file}}));

    // A third start with nothing to show runs the reopen path of the first.
    auto third = process(QStringLiteral("third"));
    EXPECT_EQ(third->start({}), ARXSingleInstance::Role::handedOver);
    ASSERT_TRUE(waitUntil([&] { return handler.calls.size() == 3; }));
    EXPECT_EQ(handler.calls[2], (Call{"reopen", {}}));
}

TEST_F(ARXSingleInstanceTest, RequestsBeforeTheHandlerWaitForItInOrder) {
    const Path folder = ARXPath::join(home(), "a");
    makeFolder(folder);
    auto first = process(QStringLiteral("first"));
    ASSERT_EQ(first->start({}), ARXSingleInstance::Role::first);

    EXPECT_EQ(process(QStringLiteral("s1"))->start({}), ARXSingleInstance::Role::handedOver);
    EXPECT_EQ(process(QStringLiteral("s2"))->start({folder}), ARXSingleInstance::Role::handedOver);
    spin(50);

    RecordingHandler handler;
    first->setHandler(&handler);
    ASSERT_TRUE(waitUntil([&] { return handler.calls.size() == 2; }));
    EXPECT_EQ(handler.calls, (std::vector<Call>{{"reopen", {}}, {"open", {folder}}}));
}

TEST_F(ARXSingleInstanceTest, RepeatedCallsFromOneSenderCountOnceAndRelativePathsAreLeftOut) {
    const Path a = ARXPath::join(home(), "a");
    const Path b = ARXPath::join(home(), "b");
    makeFolder(a);
    makeFolder(b);
    RecordingHandler handler;
    auto first = process(QStringLiteral("first"));
    ASSERT_EQ(first->start({}), ARXSingleInstance::Role::first);
    first->setHandler(&handler);

    QDBusConnection caller = _bus->connect(QStringLiteral("caller"));
    const auto open = [&](const QList<QByteArray>& paths) {
        QDBusMessage call = QDBusMessage::createMethodCall(
            ARXSingleInstance::serviceName, ARXSingleInstance::objectPath,
            ARXSingleInstance::interfaceName, QStringLiteral("Open"));
        call << QVariant::fromValue(paths);
        const QDBusMessage reply = caller.call(call, QDBus::BlockWithGui, 5000);
        EXPECT_EQ(reply.type(), QDBusMessage::ReplyMessage) << reply.errorMessage().toStdString();
    };
    // The retry of a second start whose first call timed out: the same call twice.
    open({QByteArray::fromStdString(a)});
    open({QByteArray::fromStdString(a)});
    // A different request from the same sender, with a path that has no folder to be taken
    // against, and "." components that the sender did not tidy.
    testing::internal::CaptureStderr();
    open({"relative/x", QByteArray::fromStdString(b + "/./")});
    ASSERT_TRUE(waitUntil([&] { return handler.calls.size() == 2; }));
    EXPECT_NE(testing::internal::GetCapturedStderr().find("Atrium: \"relative/x\""),
              std::string::npos);
    EXPECT_EQ(handler.calls, (std::vector<Call>{{"open", {a}}, {"open", {b}}}));
}

TEST_F(ARXSingleInstanceTest, AFirstThatQuitIsSucceededByTheNextStart) {
    auto first = process(QStringLiteral("first"));
    ASSERT_EQ(first->start({}), ARXSingleInstance::Role::first);
    first.reset();
    auto next = process(QStringLiteral("next"));
    EXPECT_EQ(next->start({}), ARXSingleInstance::Role::first);
}

TEST_F(ARXSingleInstanceTest, AnOwnerThatExportsNothingYetIsGivenUpOn) {
    // A first process that owns the name but has not exported its object.
    QDBusConnection owner = _bus->connect(QStringLiteral("owner"));
    ASSERT_TRUE(owner.registerService(ARXSingleInstance::serviceName));

    auto second = process(QStringLiteral("second"));
    testing::internal::CaptureStderr();
    EXPECT_EQ(second->start({home()}), ARXSingleInstance::Role::standalone);
    const std::string err = testing::internal::GetCapturedStderr();
    EXPECT_EQ(err.rfind("Atrium: the running Atrium does not answer", 0), 0u) << err;
    EXPECT_EQ(std::count(err.begin(), err.end(), '\n'), 1);
}

TEST_F(ARXSingleInstanceTest, AnOwnerThatNeverAnswersIsGivenUpOnWithoutHanging) {
    QDBusConnection owner = _bus->connect(QStringLiteral("owner"));
    StalledThread thread;
    thread.start();
    auto stuck = std::make_unique<ARXSingleInstance>(owner);
    stuck->moveToThread(&thread);
    ASSERT_TRUE(owner.registerObject(ARXSingleInstance::objectPath, stuck.get(),
                                     QDBusConnection::ExportScriptableSlots));
    ASSERT_TRUE(owner.registerService(ARXSingleInstance::serviceName));

    auto second = process(QStringLiteral("second"));
    testing::internal::CaptureStderr();
    EXPECT_EQ(second->start({}), ARXSingleInstance::Role::standalone);
    EXPECT_NE(testing::internal::GetCapturedStderr().find("Atrium: "), std::string::npos);

    owner.unregisterObject(ARXSingleInstance::objectPath);
    QDBusConnection::disconnectFromBus(QStringLiteral("owner"));
    thread.release();
    thread.wait();
}

TEST_F(ARXSingleInstanceTest, WithoutABusEveryStartRunsOnItsOwn) {
    ARXSingleInstance instance(QDBusConnection::connectToBus(
        QStringLiteral("unix:path=/nonexistent/bus"), QStringLiteral("nobus")));
    testing::internal::CaptureStderr();
    EXPECT_EQ(instance.start({home()}), ARXSingleInstance::Role::standalone);
    const std::string err = testing::internal::GetCapturedStderr();
    EXPECT_EQ(err.rfind("Atrium: no session bus", 0), 0u) << err;
    EXPECT_EQ(std::count(err.begin(), err.end(), '\n'), 1);
    QDBusConnection::disconnectFromBus(QStringLiteral("nobus"));
}

TEST(ARXSingleInstancePathsTest, ArgumentsBecomeAbsoluteByteForByte) {
    const Path cwd = "/home/u/work";
    EXPECT_EQ(ARXSingleInstance::absolutePath(".", cwd), cwd);
    EXPECT_EQ(ARXSingleInstance::absolutePath("./", cwd), cwd);
    EXPECT_EQ(ARXSingleInstance::absolutePath("a//b/./c/", cwd), "/home/u/work/a/b/c");
    EXPECT_EQ(ARXSingleInstance::absolutePath("caf\xe9", cwd), "/home/u/work/caf\xe9");
    EXPECT_EQ(ARXSingleInstance::absolutePath("../x", cwd), "/home/u/work/../x");
    EXPECT_EQ(ARXSingleInstance::absolutePath("/", cwd), "/");
    EXPECT_EQ(ARXSingleInstance::absolutePath("/tmp/", cwd), "/tmp");
    // A colon does not make a URI.
    EXPECT_EQ(ARXSingleInstance::absolutePath("notes:old", cwd), "/home/u/work/notes:old");
    // Desktop entries pass URIs (%U).
    EXPECT_EQ(ARXSingleInstance::absolutePath("file:///tmp/caf%E9%20a/", cwd), "/tmp/caf\xe9 a");
    EXPECT_EQ(ARXSingleInstance::absolutePath("FILE:///tmp/x", cwd), "/tmp/x");
    EXPECT_EQ(ARXSingleInstance::absolutePath("file:/tmp/x", cwd), "/tmp/x");
    EXPECT_EQ(ARXSingleInstance::absolutePath("file://localhost/tmp/x", cwd), "/tmp/x");
    EXPECT_EQ(ARXSingleInstance::absolutePath("file://elsewhere/tmp/x", cwd), "");
    EXPECT_EQ(ARXSingleInstance::absolutePath("sftp://host/tmp/x", cwd), "");
    EXPECT_EQ(ARXSingleInstance::absolutePath("file:///tmp/%00x", cwd), "");
    EXPECT_EQ(ARXSingleInstance::absolutePath("", cwd), "");
}

TEST_F(ARXSingleInstanceTest, CommandLinePathsAndDeliveryLeaveOutWhatIsNotThere) {
    const Path folder = ARXPath::join(home(), "dir");
    const Path file = ARXPath::join(home(), "f.txt");
    const Path folderLink = ARXPath::join(home(), "to-dir");
    const Path dangling = ARXPath::join(home(), "dangling");
    makeFolder(folder);
    writeFile(file, "x");
    ASSERT_EQ(::symlink(folder.c_str(), folderLink.c_str()), 0);
    ASSERT_EQ(::symlink("/nonexistent/target", dangling.c_str()), 0);

    testing::internal::CaptureStderr();
    const Paths paths = ARXSingleInstance::commandLinePaths(
        {"dir/", "missing", "f.txt", "https://example.org/", "to-dir", "dangling"}, home());
    std::string err = testing::internal::GetCapturedStderr();
    EXPECT_EQ(paths, (Paths{folder, file, folderLink, dangling}));
    EXPECT_EQ(std::count(err.begin(), err.end(), '\n'), 2) << err;
    EXPECT_NE(err.find("Atrium: " + ARXPath::join(home(), "missing") + ": "), std::string::npos);
    EXPECT_NE(err.find("Atrium: https://example.org/: not a local file"), std::string::npos);

    // A link to a folder opens the folder; a dangling link is revealed like a file. An item gone
    // by the time it is delivered is reported and left out.
    RecordingHandler handler;
    ARXSingleInstance::deliver(handler, {folder, file, folderLink, dangling, "/nonexistent"});
    EXPECT_EQ(handler.calls,
              (std::vector<Call>{{"open", {folder, folderLink}}, {"reveal", {file, dangling}}}));
    // Nothing left to show at all: the window comes forward instead.
    handler.calls.clear();
    testing::internal::CaptureStderr();
    ARXSingleInstance::deliver(handler, {"/nonexistent"});
    err = testing::internal::GetCapturedStderr();
    EXPECT_EQ(handler.calls, (std::vector<Call>{{"reopen", {}}}));
    EXPECT_EQ(err.rfind("Atrium: /nonexistent: ", 0), 0u) << err;
}

} // namespace
