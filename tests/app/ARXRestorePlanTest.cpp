#include "app/ARXRestorePlan.h"

#include "app/ARXConf.h"
#include "app/ARXDataCenter.h"
#include "platform/ARXFileIO.h"
#include "support/ARXFakeVolumes.h"
#include "support/ARXTestEnvironment.h"

class ARXRestorePlanTest : public ARXTestEnvironment {
protected:
    void SetUp() override {
        ARXTestEnvironment::SetUp();
        ARXDataCenter::setVolumeReaderForTesting([] { return ARXVolumeList{ARXMakeVolume("/")}; });
    }
    void store(const QString& name) {
        ASSERT_TRUE(ARXDataCenter::shared().save(name, ARXDataCenter::emptyWorkspace()));
    }
};

TEST_F(ARXRestorePlanTest, FirstRunWritesTheDefaultWorkspace) {
    const auto plan = ARXRestorePlan::make();
    EXPECT_EQ(plan.windows, QStringList{QStringLiteral("Default")});
    EXPECT_TRUE(plan.tabGroups.isEmpty());
    EXPECT_TRUE(ARXFileIO::exists(ARXDataCenter::shared().path(QStringLiteral("Default"))));
}

TEST_F(ARXRestorePlanTest, OpenWorkspacesComeBackWithoutTheDeletedOnes) {
    store(QStringLiteral("a"));
    store(QStringLiteral("c"));
    store(QStringLiteral("t2"));
    ARXConf::cached_open_atrium_names().setValue(
        {QStringLiteral("a"), QStringLiteral("gone"), QStringLiteral("c")});
    ARXConf::cached_open_atrium_tab_names().setValue(
        {{QStringLiteral("gone1"), QStringLiteral("t2")}, {QStringLiteral("gone2")}, {}});
    const auto plan = ARXRestorePlan::make();
    EXPECT_EQ(plan.windows, (QStringList{QStringLiteral("a"), QStringLiteral("c")}));
    EXPECT_EQ(plan.tabGroups, QList<QStringList>{QStringList{QStringLiteral("t2")}});
}

TEST_F(ARXRestorePlanTest, NothingLeftOpensTheFirstStoredWorkspace) {
    store(QStringLiteral("zeta"));
    store(QStringLiteral("Alpha"));
    ARXConf::cached_open_atrium_names().setValue({QStringLiteral("deleted")});
    const auto plan = ARXRestorePlan::make();
    EXPECT_EQ(plan.windows, QStringList{QStringLiteral("Alpha")});
    EXPECT_FALSE(ARXFileIO::exists(ARXDataCenter::shared().path(QStringLiteral("Default"))));
}
