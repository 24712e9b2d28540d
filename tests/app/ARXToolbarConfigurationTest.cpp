#include "app/ARXToolbarConfiguration.h"

#include "app/ARXConf.h"
#include "platform/ARXNotificationCenter.h"
#include "support/ARXTestEnvironment.h"

#include <gtest/gtest.h>

// Readable failure messages for Qt texts.
static void PrintTo(const QStringList& list, std::ostream* out) {
    *out << list.join(QLatin1Char(' ')).toStdString();
}

namespace {

namespace C = ARXToolbarConfiguration;

// Identifiers from their words; "|" is the fixed space and "<>" the flexible one.
QStringList ids(const char* words) {
    QStringList list;
    for (const QString& word : QString::fromUtf8(words).split(u' ', Qt::SkipEmptyParts)) {
        if (word == QLatin1String("|")) {
            list.append(C::space);
        } else if (word == QLatin1String("<>")) {
            list.append(C::flexibleSpace);
        } else {
            list.append(QStringLiteral("com.brightmoor.atrium.") + word);
        }
    }
    return list;
}

class ARXToolbarConfigurationTest : public ARXTestEnvironment {
protected:
    void SetUp() override {
        ARXTestEnvironment::SetUp();
        ARXNotificationCenter::shared().addObserver(C::changedNotification, nullptr,
                                                    [this](const ARXNotification&) { ++posts; });
    }

    int posts = 0;
};

TEST_F(ARXToolbarConfigurationTest, TheDefaultHasTerminalAndEditorOnlyWhenTheyAreSet) {
    EXPECT_EQ(C::defaultItems(true, true),
              ids("| sidebar viewtypes actions share share_airdrop edit_tag | open_in_terminal "
                  "open_in_editor quick_launcher | search <> workspace_name layouts"));
    EXPECT_EQ(C::defaultItems(false, true),
              ids("| sidebar viewtypes actions share share_airdrop edit_tag | open_in_editor "
                  "quick_launcher | search <> workspace_name layouts"));

    // From the settings as they are now.
    ARXConf::settings_terminal_app().setValue(QString());
    ARXConf::settings_editor_app().setValue(QStringLiteral("/usr/bin/kate"));
    EXPECT_EQ(C::defaultItems(), C::defaultItems(false, true));
    EXPECT_EQ(C::items(), C::defaultItems(false, true)) << "nothing saved: the default";
    ARXConf::settings_terminal_app().setValue(QStringLiteral("org.kde.konsole.desktop"));
    EXPECT_EQ(C::items(), C::defaultItems(true, true));
}

TEST_F(ARXToolbarConfigurationTest, ASavedListIsCleanedWhenRead) {
    ARXConf::cached_toolbar_items().setValue(
        ids("sidebar copy sidebar | | <> nonsense layouts <> layouts")
        << QStringLiteral("") << QStringLiteral("sidebar"));
    EXPECT_EQ(C::items(), ids("sidebar | | <> layouts <>"));
    EXPECT_FALSE(C::isAllowed(QStringLiteral("sidebar"))) << "only whole identifiers";
    // Reading changes nothing stored.
    EXPECT_EQ(ARXConf::cached_toolbar_items().value().size(), 12);

    // Nothing known at all: the default, rather than an empty toolbar.
    ARXConf::cached_toolbar_items().setValue(ids("copy paste"));
    EXPECT_EQ(C::items(), C::defaultItems());
}

TEST_F(ARXToolbarConfigurationTest, SavingPostsAndTheDefaultIsSavedAsNone) {
    C::setItems(ids("sidebar copy <> layouts"));
    EXPECT_EQ(posts, 1);
    EXPECT_EQ(ARXConf::cached_toolbar_items().value(), ids("sidebar <> layouts"));
    EXPECT_EQ(C::items(), ids("sidebar <> layouts"));

    // A list equal to the default keeps following the terminal and editor settings.
    ARXConf::settings_editor_app().setValue(QString());
    C::setItems(C::defaultItems());
    EXPECT_EQ(ARXConf::cached_toolbar_items().value(), QStringList());
    ARXConf::settings_editor_app().setValue(QStringLiteral("gvim"));
    EXPECT_TRUE(C::items().contains(ids("open_in_editor").first()));

    C::setItems(ids("layouts"));
    C::reset();
    EXPECT_EQ(posts, 4);
    EXPECT_EQ(ARXConf::cached_toolbar_items().value(), QStringList());
    EXPECT_EQ(C::items(), C::defaultItems());
}

TEST_F(ARXToolbarConfigurationTest, AnAddedItemGoesBesideItsNeighboursOnItsSide) {
    const QStringList shown = ids("| sidebar viewtypes | <> workspace_name layouts");
    auto add = [](const QStringList& list, const char* word) {
        return C::withItem(list, ids(word).first());
    };
    // After the nearest earlier item on its side of the flexible space.
    EXPECT_EQ(add(shown, "search"), ids("| sidebar viewtypes search | <> workspace_name layouts"));
    EXPECT_EQ(add(shown, "pintop"), ids("| sidebar viewtypes pintop | <> workspace_name layouts"));
    EXPECT_EQ(add(ids("| sidebar <> layouts"), "workspace_name"),
              ids("| sidebar <> workspace_name layouts"));
    // Nothing earlier there: before the nearest later one.
    EXPECT_EQ(add(shown, "backforward"),
              ids("| backforward sidebar viewtypes | <> workspace_name layouts"));
    // Nothing at all there: the end of its side.
    EXPECT_EQ(add(ids("| <> layouts"), "sidebar"), ids("| sidebar <> layouts"));
    EXPECT_EQ(add(ids("sidebar <>"), "layouts"), ids("sidebar <> layouts"));
    // Without a flexible space every item is a neighbour, in whatever order the user left them.
    EXPECT_EQ(add(ids("layouts | sidebar trash"), "getinfo"),
              ids("layouts getinfo | sidebar trash"));
    EXPECT_EQ(add({}, "trash"), ids("trash"));
    // A present item, an unknown one, spaces.
    EXPECT_EQ(add(shown, "layouts"), shown);
    EXPECT_EQ(add(shown, "copy"), shown);
    EXPECT_EQ(C::withItem(ids("sidebar"), C::space), ids("sidebar |"));
    EXPECT_EQ(C::withItem(ids("sidebar <>"), C::flexibleSpace), ids("sidebar <> <>"));
}

TEST_F(ARXToolbarConfigurationTest, RemovingAnItemRemovesEveryOccurrence) {
    EXPECT_EQ(C::withoutItem(ids("| sidebar | layouts"), ids("sidebar").first()),
              ids("| | layouts"));
    EXPECT_EQ(C::withoutItem(ids("| sidebar | layouts"), C::space), ids("sidebar layouts"));
    EXPECT_EQ(C::withoutItem(ids("sidebar"), ids("trash").first()), ids("sidebar"));
}

TEST_F(ARXToolbarConfigurationTest, SmallIconsAreSavedAndPosted) {
    EXPECT_FALSE(C::usesSmallIcons());
    C::setUsesSmallIcons(true);
    EXPECT_TRUE(C::usesSmallIcons());
    EXPECT_TRUE(ARXConf::cached_toolbar_small_icons().value());
    EXPECT_EQ(posts, 1);
    ARXSettingsStore::shared().reload();
    EXPECT_TRUE(C::usesSmallIcons()) << "kept in the settings file";
}

} // namespace
