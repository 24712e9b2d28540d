#include "ui/desktop/ARXSingleInstance.h"

#include "ARXServiceTestBus.h"
#include "support/ARXTestEnvironment.h"
#include "ui/ARXFileClipboard.h"

#include <QDBusMessage>
#include <QSemaphore>
#include <QThread>
#include <QVariant>

#include <gtest/gtest.h>

#include <memory>
#include <unistd.h>

namespace {

using Paths = std::vector<Path>;
using Call = ARXRecordingHandler::Call;
using Calls = std::vector<Call>;
using Role = ARXSingleInstance::Role;

// A thread that never runs its event loop: an object living there is sent calls that are never
// answered, as by a first Atrium stuck while it starts.
class StalledThread : public QThread {
public:
    ~StalledThread() override {
        _release.release();
        wait();
    }

protected:
    void run() override { _release.acquire(); }

private:
    QSemaphore _release;
};

size_t lineCount(const std::string& text) {
    return size_t(std::count(text.begin(), text.end(), '\n'));
}

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

    // One Atrium process: a connection of its own, and short waits for owners that never answer.
    std::unique_ptr<ARXSingleInstance> process(const QString& name) {
        auto instance = std::make_unique<ARXSingleInstance>(_bus->connect(name));
        instance->setTiming({200, 2, 20});
        return instance;
    }

    std::unique_ptr<ARXServiceTestBus> _bus;
};

TEST_F(ARXSingleInstanceTest, LaterStartsHandTheirPathsOrAnActivationToTheFirst) {
    const Path folder = ARXPath::join(home(), "Projects");
    const Path file = ARXPath::join(home(), "caf\xe9 \xff.txt"); // not UTF-8
    makeFolder(folder);
    writeFile(file, "x");
    auto first = process(QStringLiteral("first"));
    ASSERT_EQ(first->start({}), Role::first);

    // Requests that come before the application is ready wait for it, in order.
    // Each hands over the token of the user's action that started it.
    EXPECT_EQ(process(QStringLiteral("second"))->start({folder, file}, "second_TIME7"),
              Role::handedOver);
    EXPECT_EQ(process(QStringLiteral("third"))->start({}, "third-token"), Role::handedOver);
    ARXRecordingHandler handler;
    first->setHandler(&handler);
    ASSERT_TRUE(waitUntil([&] { return handler.calls.size() == 3; }));
    EXPECT_EQ(handler.calls, (Calls{{"open", {folder}}, {"reveal", {file}}, {"reopen", {}}}));
    EXPECT_EQ(handler.tokens,
              (std::vector<QByteArray>{"second_TIME7", "second_TIME7", "third-token"}));

    // Launchers reach it through org.freedesktop.Application, with the token in the platform
    // data; it has no actions to activate.
    QDBusConnection launcher = _bus->connect(QStringLiteral("launcher"));
    const auto application = [&](const char* method, const QVariantList& arguments) {
        QDBusMessage call = QDBusMessage::createMethodCall(
            ARXSingleInstance::serviceName, ARXSingleInstance::objectPath,
            QStringLiteral("org.freedesktop.Application"), QString::fromLatin1(method));
        call.setArguments(arguments);
        return launcher.call(call, QDBus::BlockWithGui, 5000);
    };
    const QVariantMap x11{{QStringLiteral("desktop-startup-id"), QStringLiteral("menu_TIME42")}};
    const QVariantMap wayland{{QStringLiteral("activation-token"), QStringLiteral("wl-1")}};
    EXPECT_EQ(
        application("Open",
                    {QStringList{QString::fromLatin1(ARXFileClipboard::fileUri(folder))}, x11})
            .type(),
        QDBusMessage::ReplyMessage);
    EXPECT_EQ(application("Activate", {wayland}).type(), QDBusMessage::ReplyMessage);
    EXPECT_EQ(application("ActivateAction",
                          {QStringLiteral("frobnicate"), QVariant::fromValue(QVariantList()), x11})
                  .type(),
              QDBusMessage::ErrorMessage);
    ASSERT_TRUE(waitUntil([&] { return handler.calls.size() == 5; }));
    EXPECT_EQ(handler.calls[3], (Call{"open", {folder}}));
    EXPECT_EQ(handler.calls[4], (Call{"reopen", {}}));
    EXPECT_EQ(handler.tokens[3], "menu_TIME42");
    EXPECT_EQ(handler.tokens[4], "wl-1");

    // When the first quits, the next start takes its place.
    first.reset();
    EXPECT_EQ(process(QStringLiteral("fourth"))->start({}), Role::first);
}

TEST_F(ARXSingleInstanceTest, ARetriedCallCountsOnceAndRelativePathsAreLeftOut) {
    const Path a = ARXPath::join(home(), "a");
    const Path b = ARXPath::join(home(), "b");
    makeFolder(a);
    makeFolder(b);
    ARXRecordingHandler handler;
    auto first = process(QStringLiteral("first"));
    ASSERT_EQ(first->start({}), Role::first);
    first->setHandler(&handler);

    QDBusConnection caller = _bus->connect(QStringLiteral("caller"));
    const auto open = [&](const QList<QByteArray>& paths) {
        QDBusMessage call = QDBusMessage::createMethodCall(
            ARXSingleInstance::serviceName, ARXSingleInstance::objectPath,
            ARXSingleInstance::interfaceName, QStringLiteral("Open"));
        call << QVariant::fromValue(paths) << QString();
        EXPECT_EQ(caller.call(call, QDBus::BlockWithGui, 5000).type(), QDBusMessage::ReplyMessage);
    };
    // A second start whose first call timed out sends the same call again.
    open({QByteArray::fromStdString(a)});
    open({QByteArray::fromStdString(a)});
    testing::internal::CaptureStderr();
    open({"relative/x", QByteArray::fromStdString(b + "/./")});
    const bool arrived = waitUntil([&] { return handler.calls.size() == 2; });
    EXPECT_EQ(testing::internal::GetCapturedStderr().rfind("Atrium: \"relative/x\"", 0), 0u);
    ASSERT_TRUE(arrived);
    EXPECT_EQ(handler.calls, (Calls{{"open", {a}}, {"open", {b}}}));
}

TEST_F(ARXSingleInstanceTest, OwnersThatDoNotAnswerAreGivenUpOnWithoutHanging) {
    // Owns the name but has not exported its object yet: every call fails at once.
    QDBusConnection early = _bus->connect(QStringLiteral("early"));
    ASSERT_TRUE(early.registerService(ARXSingleInstance::serviceName));
    testing::internal::CaptureStderr();
    EXPECT_EQ(process(QStringLiteral("second"))->start({home()}), Role::standalone);
    std::string err = testing::internal::GetCapturedStderr();
    EXPECT_EQ(err.rfind("Atrium: the running Atrium does not answer", 0), 0u) << err;
    EXPECT_EQ(lineCount(err), 1u);
    ASSERT_TRUE(early.unregisterService(ARXSingleInstance::serviceName));

    // Owns the name and the object, but never runs its event loop: every call times out.
    QDBusConnection stuck = _bus->connect(QStringLiteral("stuck"));
    StalledThread thread;
    thread.start();
    auto object = std::make_unique<ARXSingleInstance>(stuck);
    object->moveToThread(&thread);
    ASSERT_TRUE(stuck.registerObject(ARXSingleInstance::objectPath, object.get(),
                                     QDBusConnection::ExportScriptableSlots));
    ASSERT_TRUE(stuck.registerService(ARXSingleInstance::serviceName));
    testing::internal::CaptureStderr();
    EXPECT_EQ(process(QStringLiteral("third"))->start({}), Role::standalone);
    EXPECT_EQ(lineCount(testing::internal::GetCapturedStderr()), 1u);
    stuck.unregisterObject(ARXSingleInstance::objectPath);
    QDBusConnection::disconnectFromBus(QStringLiteral("stuck"));
}

TEST_F(ARXSingleInstanceTest, WithoutABusEveryStartRunsOnItsOwn) {
    const QString name = QStringLiteral("nobus");
    ARXSingleInstance instance(
        QDBusConnection::connectToBus(QStringLiteral("unix:path=/nonexistent/bus"), name));
    testing::internal::CaptureStderr();
    EXPECT_EQ(instance.start({home()}), Role::standalone);
    const std::string err = testing::internal::GetCapturedStderr();
    EXPECT_EQ(err.rfind("Atrium: no session bus", 0), 0u) << err;
    EXPECT_EQ(lineCount(err), 1u);
    QDBusConnection::disconnectFromBus(name);
}

TEST(ARXSingleInstancePathsTest, ArgumentsBecomeAbsoluteByteForByte) {
    const Path cwd = "/home/u/work";
    const auto absolute = [&](const char* argument) {
        return ARXSingleInstance::absolutePath(argument, cwd);
    };
    EXPECT_EQ(absolute("./"), cwd);
    EXPECT_EQ(absolute("a//b/./c/"), "/home/u/work/a/b/c");
    EXPECT_EQ(absolute("caf\xe9/../x"), "/home/u/work/caf\xe9/../x");
    EXPECT_EQ(absolute("/"), "/");
    EXPECT_EQ(absolute("notes:old"), "/home/u/work/notes:old"); // a colon makes no URI
    // Desktop entries pass URIs (%U).
    EXPECT_EQ(absolute("file:///tmp/caf%E9%20a/"), "/tmp/caf\xe9 a");
    EXPECT_EQ(absolute("FILE:/tmp/x"), "/tmp/x");
    EXPECT_EQ(absolute("file://localhost/tmp/x"), "/tmp/x");
    for (const char* notLocal : {"file://elsewhere/tmp/x", "sftp://host/x", "file:///%00x", ""}) {
        EXPECT_EQ(absolute(notLocal), "") << notLocal;
    }
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
    EXPECT_EQ(lineCount(err), 2u) << err;
    EXPECT_NE(err.find("Atrium: " + ARXPath::join(home(), "missing") + ": "), std::string::npos);
    EXPECT_NE(err.find("Atrium: https://example.org/: not a local file"), std::string::npos);

    // A link to a folder opens the folder; a dangling link is revealed like a file; an item gone
    // by the time it is delivered is left out, and with nothing left the window comes forward.
    ARXRecordingHandler handler;
    ARXSingleInstance::deliver(handler, {folder, file, folderLink, dangling, "/nonexistent"});
    ARXSingleInstance::deliver(handler, {"/nonexistent"});
    EXPECT_EQ(
        handler.calls,
        (Calls{{"open", {folder, folderLink}}, {"reveal", {file, dangling}}, {"reopen", {}}}));
}

} // namespace
