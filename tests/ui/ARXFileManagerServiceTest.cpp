#include "ui/desktop/ARXFileManagerService.h"

#include "ARXServiceTestBus.h"
#include "support/ARXTestEnvironment.h"
#include "ui/ARXFileClipboard.h"

#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusReply>

#include <gtest/gtest.h>

#include <memory>
#include <sstream>

namespace {

using Calls = std::vector<ARXRecordingHandler::Call>;

QString uri(const Path& path) {
    return QString::fromLatin1(ARXFileClipboard::fileUri(path));
}

class ARXFileManagerServiceTest : public ARXTestEnvironment {
protected:
    void SetUp() override {
        ARXTestEnvironment::SetUp();
        _bus = std::make_unique<ARXServiceTestBus>();
        if (!_bus->isRunning()) {
            GTEST_SKIP() << _bus->error().toStdString();
        }
        _service = std::make_unique<ARXFileManagerService>(_bus->connect(QStringLiteral("atrium")),
                                                           _handler);
        ASSERT_TRUE(_service->start());
        _caller = _bus->connect(QStringLiteral("caller"));
    }
    void TearDown() override {
        _service.reset();
        _bus.reset();
        ARXTestEnvironment::TearDown();
    }

    // A call as another program makes it, through the bus name.
    void call(const char* method, const QStringList& uris) {
        QDBusMessage message = QDBusMessage::createMethodCall(
            ARXFileManagerService::serviceName, ARXFileManagerService::objectPath,
            QStringLiteral("org.freedesktop.FileManager1"), QString::fromLatin1(method));
        message << uris << QStringLiteral("startup-id_TIME0");
        const QDBusMessage reply = _caller.call(message, QDBus::BlockWithGui, 5000);
        ASSERT_EQ(reply.type(), QDBusMessage::ReplyMessage) << reply.errorMessage().toStdString();
    }
    bool waitForCalls(size_t count) {
        return waitUntil([&] { return _handler.calls.size() >= count; });
    }

    ARXRecordingHandler _handler;
    std::unique_ptr<ARXServiceTestBus> _bus;
    std::unique_ptr<ARXFileManagerService> _service;
    QDBusConnection _caller{QString()};
};

TEST_F(ARXFileManagerServiceTest, ShowItemsRevealsLocalItemsAndReportsEveryOtherUri) {
    const Path odd = ARXPath::join(home(), "caf\xe9 #1?.txt"); // not UTF-8, URI specials
    const Path folder = ARXPath::join(home(), "Folder");
    writeFile(odd, "x");
    makeFolder(folder);

    testing::internal::CaptureStderr();
    call("ShowItems", {uri(odd), QStringLiteral("https://example.org/a.txt"),
                       QStringLiteral("file://otherhost") + uri(folder).mid(7),
                       uri(ARXPath::join(home(), "missing.txt")), QStringLiteral("file://"),
                       QStringLiteral("not a uri"), QStringLiteral("file:///tmp/%00x"), QString(),
                       uri(folder) + QStringLiteral("/")});
    const bool arrived = waitForCalls(1);
    const std::string err = testing::internal::GetCapturedStderr();
    ASSERT_TRUE(arrived);
    // A folder asked to be shown is selected in its parent, not opened.
    EXPECT_EQ(_handler.calls, (Calls{{"reveal", {odd, folder}}}));
    std::istringstream lines(err);
    size_t count = 0;
    for (std::string line; std::getline(lines, line); ++count) {
        EXPECT_EQ(line.rfind("Atrium: ", 0), 0u) << line;
    }
    EXPECT_EQ(count, 7u) << err;
    EXPECT_NE(err.find("missing.txt: No such file or directory"), std::string::npos) << err;
}

TEST_F(ARXFileManagerServiceTest, FoldersOpenPropertiesShowAndEmptyCallsDoNothing) {
    const Path folder = ARXPath::join(home(), "Music");
    const Path file = ARXPath::join(home(), "song.ogg");
    makeFolder(folder);
    writeFile(file, "x");
    testing::internal::CaptureStderr();
    call("ShowItems", {});
    call("ShowFolders", {QStringLiteral("smb://server/share")});
    call("ShowItemProperties", {uri(ARXPath::join(home(), "gone"))});
    // A file among the folders is revealed rather than opened as a folder.
    call("ShowFolders", {uri(folder), uri(file)});
    call("ShowItemProperties", {uri(file), uri(folder)});
    // Calls are handled in order, so the empty ones above had their turn.
    const bool arrived = waitForCalls(3);
    testing::internal::GetCapturedStderr();
    ASSERT_TRUE(arrived);
    EXPECT_EQ(_handler.calls,
              (Calls{{"open", {folder}}, {"reveal", {file}}, {"info", {file, folder}}}));
    // Each with the caller's startup id, for its window to come forward with.
    EXPECT_EQ(_handler.tokens, std::vector<QByteArray>(3, "startup-id_TIME0"));
}

TEST_F(ARXFileManagerServiceTest, AtriumWaitsForTheNameAndALaterFileManagerDoesNotTakeIt) {
    _service.reset();
    QDBusConnection other = _bus->connect(QStringLiteral("other"));
    ASSERT_TRUE(other.registerService(ARXFileManagerService::serviceName));

    // Another file manager holds the name: Atrium queues, quietly.
    QDBusConnection atrium = _bus->connect(QStringLiteral("late"));
    ARXFileManagerService late(atrium, _handler);
    testing::internal::CaptureStderr();
    EXPECT_FALSE(late.start());
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
    QDBusConnectionInterface* bus = _caller.interface();
    EXPECT_EQ(bus->serviceOwner(ARXFileManagerService::serviceName).value(), other.baseService());

    // It leaves: the name comes to Atrium, which answers at once.
    other.unregisterService(ARXFileManagerService::serviceName);
    ASSERT_TRUE(waitUntil([&] { return late.ownsName(); }));
    EXPECT_EQ(bus->serviceOwner(ARXFileManagerService::serviceName).value(), atrium.baseService());
    const Path folder = ARXPath::join(home(), "Folder");
    makeFolder(folder);
    call("ShowFolders", {uri(folder)});
    ASSERT_TRUE(waitForCalls(1));

    // A file manager started after Atrium asks to replace it, and is refused.
    QDBusConnection third = _bus->connect(QStringLiteral("third"));
    const QDBusReply<QDBusConnectionInterface::RegisterServiceReply> reply =
        third.interface()->registerService(ARXFileManagerService::serviceName,
                                           QDBusConnectionInterface::ReplaceExistingService,
                                           QDBusConnectionInterface::AllowReplacement);
    ASSERT_TRUE(reply.isValid());
    EXPECT_NE(reply.value(), QDBusConnectionInterface::ServiceRegistered);
    EXPECT_EQ(bus->serviceOwner(ARXFileManagerService::serviceName).value(), atrium.baseService());
    EXPECT_TRUE(late.ownsName());
}

} // namespace
