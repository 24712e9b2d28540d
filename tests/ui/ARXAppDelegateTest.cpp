#include "ui/ARXAppDelegate.h"

#include "app/ARXDataCenter.h"
#include "platform/ARXFileIO.h"
#include "support/ARXFakeVolumes.h"
#include "support/ARXTestEnvironment.h"

#include <QApplication>
#include <QWidget>

class ARXAppDelegateTest : public ARXTestEnvironment {
protected:
    void SetUp() override {
        ARXTestEnvironment::SetUp();
        ARXDataCenter::setVolumeReaderForTesting([] { return ARXVolumeList{ARXMakeVolume("/")}; });
        ARXAppDelegate::setTrayAvailableForTesting(false);
        ARXAppDelegate::setQuitForTesting([] {});
    }

    void TearDown() override {
        for (QWidget* window : QApplication::topLevelWidgets()) {
            window->close();
        }
        flushEvents();
        ARXAppDelegate::setTrayAvailableForTesting(std::nullopt);
        ARXAppDelegate::setQuitForTesting({});
        ARXTestEnvironment::TearDown();
    }
};

TEST_F(ARXAppDelegateTest, FirstLaunchOpensTheDefaultWorkspaceAndClosingItLetsItGo) {
    ARXAppDelegate delegate;
    delegate.applicationDidFinishLaunching();
    // Windows open from the event loop, after launching has returned.
    EXPECT_TRUE(delegate.openWorkspaceNames().isEmpty());
    ASSERT_TRUE(waitUntil([&] { return !delegate.openWorkspaceNames().isEmpty(); }));
    EXPECT_EQ(delegate.openWorkspaceNames(), QStringList{QStringLiteral("Default")});
    EXPECT_TRUE(ARXFileIO::exists(ARXDataCenter::shared().path(QStringLiteral("Default"))));

    for (QWidget* window : QApplication::topLevelWidgets()) {
        window->close();
    }
    // Closed windows go away with their workspace; none is left open.
    EXPECT_TRUE(waitUntil([&] { return delegate.openWorkspaceNames().isEmpty(); }));
}

TEST_F(ARXAppDelegateTest, ABrokenWorkspaceFileStillOpensItsWindow) {
    writeFile(ARXDataCenter::shared().path(QStringLiteral("Mine")), "{\"frame\": 3");
    ARXAppDelegate delegate;
    delegate.applicationDidFinishLaunching();
    ASSERT_TRUE(waitUntil([&] { return !delegate.openWorkspaceNames().isEmpty(); }));
    EXPECT_EQ(delegate.openWorkspaceNames(), QStringList{QStringLiteral("Mine")});
}
