#include "actions/ARXActionType.h"

#include "actions/ARXHotkey.h"

#include <gtest/gtest.h>

#include <set>

TEST(ARXActionTypeTest, EveryActionHasOneIdentifierThatLeadsBackToIt) {
    std::set<QString> seen;
    for (int i = 0; i < ARXAction::kCount; ++i) {
        const auto type = ARXActionType(i);
        const QString id = ARXAction::identifier(type);
        EXPECT_TRUE(id.startsWith(QStringLiteral("com.brightmoor.atrium."))) << i;
        EXPECT_TRUE(seen.insert(id).second) << "repeated " << id.toStdString();
        EXPECT_EQ(ARXAction::type(id), type) << id.toStdString();
    }
    EXPECT_EQ(ARXAction::type(QStringLiteral("com.brightmoor.atrium.no_such")),
              ARXActionType::None);
    EXPECT_EQ(ARXAction::type(QStringLiteral("copy")), ARXActionType::None);
    EXPECT_TRUE(ARXAction::title(ARXActionType::SortByName).isEmpty());
    EXPECT_TRUE(ARXAction::title(ARXActionType::Separator).isEmpty());
}

TEST(ARXHotkeyTest, ParsesTheStoredFormsAndPrintsThemInTheFixedOrder) {
    const auto trash = ARXHotkey::parse(QStringLiteral("cmd+⌫"));
    ASSERT_TRUE(trash);
    EXPECT_EQ(trash->key, QStringLiteral("⌫"));
    EXPECT_EQ(trash->modifier, ARXHotkey::command);
    EXPECT_EQ(ARXHotkey::parse(QStringLiteral("cmd+="))->key, QStringLiteral("="));
    EXPECT_EQ(ARXHotkey::parse(QStringLiteral("cmd+/"))->key, QStringLiteral("/"));

    const auto letter = ARXHotkey::parse(QStringLiteral("k"));
    EXPECT_EQ(letter->key, QStringLiteral("K"));
    EXPECT_EQ(letter->modifier, 0);

    // The order of the names does not matter; unknown names are dropped.
    EXPECT_EQ(ARXHotkey::parse(QStringLiteral("option+cmd+c")),
              ARXHotkey::parse(QStringLiteral("cmd+hyper+option+c")));
    EXPECT_EQ(ARXHotkey::parse(QStringLiteral("ctrl+option+cmd+1"))->symbolText(),
              QStringLiteral("⌥⌃⌘1"));
    EXPECT_EQ(ARXHotkey::parse(QStringLiteral("cmd+shift+z"))->symbolText(), QStringLiteral("⇧⌘Z"));
    EXPECT_FALSE(ARXHotkey::parse(QStringLiteral("+")));
    EXPECT_FALSE(ARXHotkey::parse(QString()));
}

TEST(ARXHotkeyTest, DefaultTableAnswersBothWays) {
    // No combination stands for two actions.
    const auto& table = ARXDefaultHotkeys::table();
    for (size_t i = 0; i < table.size(); ++i) {
        for (size_t j = i + 1; j < table.size(); ++j) {
            EXPECT_FALSE(table[i].second == table[j].second) << table[i].second.key.toStdString();
        }
    }
    EXPECT_EQ(ARXDefaultHotkeys::action(*ARXHotkey::parse(QStringLiteral("cmd+c"))),
              ARXActionType::Copy);
    // Second keys answer too, and an action's menu shows its first.
    EXPECT_EQ(ARXDefaultHotkeys::action(*ARXHotkey::parse(QStringLiteral("shift+⌦"))),
              ARXActionType::Remove);
    EXPECT_EQ(ARXDefaultHotkeys::action(*ARXHotkey::parse(QStringLiteral("⌦"))),
              ARXActionType::Trash);
    EXPECT_EQ(ARXDefaultHotkeys::action(*ARXHotkey::parse(QStringLiteral("option+↑"))),
              ARXActionType::GoEnclosingFolder);
    EXPECT_EQ(ARXDefaultHotkeys::hotkey(ARXActionType::Trash)->key, QStringLiteral("⌫"));
    EXPECT_EQ(ARXDefaultHotkeys::hotkey(ARXActionType::Rename)->key, QStringLiteral("F2"));
    EXPECT_EQ(ARXDefaultHotkeys::action(*ARXHotkey::parse(QStringLiteral("cmd+k"))),
              ARXActionType::None);
    EXPECT_FALSE(ARXDefaultHotkeys::hotkey(ARXActionType::SortByDateCreated));
    EXPECT_EQ(ARXDefaultHotkeys::hotkey(ARXActionType::GoEnclosingFolder)->key,
              QStringLiteral("↑"));
}
