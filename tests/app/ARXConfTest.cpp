#include "app/ARXConf.h"

#include "app/ARXFavorites.h"
#include "app/ARXNotificationNames.h"
#include "platform/ARXFileIO.h"
#include "platform/ARXNotificationCenter.h"
#include "platform/ARXSystemPaths.h"
#include "support/ARXTestEnvironment.h"

#include <QJsonDocument>

#include <gtest/gtest.h>

#include <cstdlib>
#include <sys/stat.h>
#include <unistd.h>

// Readable failure messages for Qt texts.
static void PrintTo(const QString& text, std::ostream* out) {
    *out << '"' << text.toStdString() << '"';
}

namespace {

class ARXConfTest : public ARXTestEnvironment {
protected:
    Path settingsFile() const { return ARXPath::join(configHome(), "Atrium/defaults.json"); }

    QJsonObject fileObject() const {
        const std::string text = readFile(settingsFile());
        return QJsonDocument::fromJson(QByteArray::fromStdString(text)).object();
    }

    // Settings as another program (or an older Atrium) left them on disk.
    void writeSettings(const char* json) {
        writeFile(settingsFile(), json);
        ARXSettingsStore::shared().reload();
    }

    // A folder of executables to put on $PATH.
    Path binFolder(std::initializer_list<const char*> executables) {
        const Path bin = ARXPath::join(root(), "bin");
        for (const char* name : executables) {
            const Path program = ARXPath::join(bin, name);
            writeFile(program, "#!/bin/sh\n");
            EXPECT_EQ(::chmod(program.c_str(), 0755), 0);
        }
        makeFolder(bin);
        return bin;
    }
};

QJsonValue strings(std::initializer_list<const char*> items) {
    QJsonArray array;
    for (const char* item : items) {
        array.append(QString::fromUtf8(item));
    }
    return array;
}

struct Expected {
    const char* key;
    QJsonValue def; // undefined: checked separately, as it depends on the machine or the time
};

TEST_F(ARXConfTest, CatalogueListsEveryStoredKeyWithItsDefault) {
    // user-dirs.dirs decides the pinned home folders; it need not be English.
    writeFile(ARXPath::join(configHome(), "user-dirs.dirs"),
              "XDG_DESKTOP_DIR=\"$HOME/Schreibtisch\"\nXDG_MUSIC_DIR=\"$HOME/Musik\"\n");
    const QDateTime before = QDateTime::currentDateTime().addMSecs(-1);

    QJsonArray contextMenu;
    const QString words =
        "new_folder_with_selection separator open open_with show_package_contents separator "
        "open_in_terminal open_in_editor separator trash remove separator getinfo rename compress "
        "quicklook share show_in_finder separator cut copy copy_path paste duplicate separator "
        "newfolder newfile separator bookmark start_path separator sort_by visible_columns "
        "separator tags separator services separator move_view_to";
    for (const QString& word : words.split(u' ')) {
        contextMenu.append("com.brightmoor.atrium." + word);
    }
    const QString home = ARXPath::display(this->home());
    const QJsonValue undefined = QJsonValue(QJsonValue::Undefined);

    // Stored keys and their defaults: a changed key or default changes what users have saved.
    const Expected expected[] = {
        {"settings_appearance", 0},
        {"settings_default_layout", 0},
        {"settings_default_view", 2},
        {"settings_default_sort_column", "Date Modified"},
        {"settings_default_sort_ascend", false},
        {"settings_default_sort_folders_ontop", false},
        {"settings_default_directory", home},
        {"settings_current_view_border_visible", true},
        {"settings_show_item_brief_info", false},
        {"settings_filename_fontsize", 12.0},
        {"settings_show_icon_thumb_min_size", 32.0},
        {"settings_show_icon_thumb_media_always", true},
        {"settings_space_bottom_statusbar_visible", false},
        {"settings_spaceview_columns", strings({"Date Modified", "Size", "Kind"})},
        {"settings_calculate_all_sizes", false},
        {"settings_column_extra_info_type", 0},
        {"settings_terminal_app", ARXTerminalOption::systemTerminal()},
        {"settings_editor_app", ""},
        {"settings_press_enter_key", 1},
        {"settings_escape_to_deselect", true},
        {"settings_address_segment_auto_expand", 1},
        {"settings_action_target", 1},
        {"settings_sound_effect_on", true},
        {"settings_workspace_statusbar_entry", true},
        {"settings_app_statusbar_entry", true},
        {"settings_always_show_dock_icon", true},
        {"settings_show_workspace_window_here", true},
        {"settings_newfile_templates", strings({"untitled.txt"})},
        {"settings_compress_filter", QJsonArray({1})},
        {"settings_file_archive_method", 1},
        {"settings_file_archive_destination_folder", ""},
        {"settings_file_archive_after_archving_operation", 0},
        {"settings_pin_home_urls",
         QJsonArray({"file://" + home + "/Schreibtisch/", "file://" + home + "/Downloads/",
                     "file://" + home + "/Documents/", "file://" + home + "/Videos/",
                     "file://" + home + "/Musik/", "file://" + home + "/Pictures/",
                     "file://" + home + "/"})},
        {"settings_pin_icloud_urls",
         QJsonArray({"file://" + home + "/Library/Mobile%20Documents/com~apple~CloudDocs/"})},
        {"settings_sidebar_show_locations", true},
        {"settings_sidebar_ignore_locations", QJsonArray()},
        {"settings_show_file_undo_redo_message", true},
        {"settings_enabled_context_menu_items", contextMenu},
        {"settings_service_menu_expand_max_count", 3},
        {"cached_open_atrium_names", QJsonArray()},
        {"cached_open_atrium_tab_names", QJsonArray({QJsonArray()})},
        {"cached_selected_apps", QJsonArray()},
        {"cached_favorite_urls", QJsonArray()},
        {"cached_app_review_prompted_count", 0},
        {"cached_app_review_last_version", ""},
        {"cached_app_review_last_time", undefined},
        {"cached_bookmarks", QJsonObject()},
        {"cached_toolbar_items", QJsonArray()},
        {"cached_toolbar_small_icons", false},
    };

    const QList<ARXSettingInfo>& catalogue = ARXConf::catalogue();
    const QDateTime after = QDateTime::currentDateTime().addMSecs(1);
    ASSERT_EQ(catalogue.size(), qsizetype(std::size(expected)));
    for (size_t i = 0; i < std::size(expected); ++i) {
        const Expected& e = expected[i];
        const ARXSettingInfo& info = catalogue[qsizetype(i)];
        SCOPED_TRACE(e.key);
        EXPECT_EQ(info.key, QLatin1String(e.key));
        if (!e.def.isUndefined()) {
            EXPECT_EQ(info.defaultValue, e.def);
        }
    }
    // The review date starts as the moment its option was made.
    const QDateTime reviewTime = ARXConf::cached_app_review_last_time().def;
    EXPECT_LE(before, reviewTime);
    EXPECT_LE(reviewTime, after);

    // Nothing was stored by making and reading the options.
    for (const ARXSettingInfo& info : catalogue) {
        EXPECT_FALSE(ARXSettingsStore::shared().contains(info.key)) << info.key.toStdString();
    }
    EXPECT_FALSE(ARXFileIO::exists(settingsFile()));
}

TEST_F(ARXConfTest, StoredValuesOfAnotherFormReadAsTheDefaultAndStay) {
    writeSettings(R"({"settings_sound_effect_on": "no", "settings_escape_to_deselect": 0,
        "settings_default_sort_ascend": 2, "settings_default_layout": 2.9,
        "settings_filename_fontsize": true, "settings_spaceview_columns": ["Size", 3],
        "settings_compress_filter": [true], "cached_open_atrium_tab_names": ["Default"],
        "settings_editor_app": 7, "cached_app_review_last_time": "yesterday",
        "cached_bookmarks": []})");

    EXPECT_TRUE(ARXConf::settings_sound_effect_on().value()) << "a string is no bool";
    EXPECT_FALSE(ARXConf::settings_escape_to_deselect().value()) << "numbers read as bools";
    EXPECT_TRUE(ARXConf::settings_default_sort_ascend().value());
    EXPECT_EQ(ARXConf::settings_default_layout().value(), 2) << "cut towards zero";
    EXPECT_EQ(ARXConf::settings_filename_fontsize().value(), 1.0);
    EXPECT_EQ(ARXConf::settings_spaceview_columns().value(),
              ARXConf::settings_spaceview_columns().def);
    EXPECT_EQ(ARXConf::settings_compress_filter().value(), QList<qint64>{1});
    EXPECT_EQ(ARXConf::cached_open_atrium_tab_names().value(), QList<QStringList>{{}});
    EXPECT_EQ(ARXConf::settings_editor_app().value(), QString());
    EXPECT_EQ(ARXConf::cached_app_review_last_time().value(),
              ARXConf::cached_app_review_last_time().def);
    EXPECT_TRUE(ARXConf::cached_bookmarks().value().isEmpty());

    ARXConf::settings_default_layout().setValue(4);
    const QJsonObject saved = fileObject();
    EXPECT_EQ(saved.value("settings_sound_effect_on"), QJsonValue("no"));
    EXPECT_EQ(saved.value("settings_spaceview_columns"), QJsonArray({"Size", 3}));
    EXPECT_EQ(saved.value("settings_default_layout"), QJsonValue(4));
}

TEST_F(ARXConfTest, ResetStoresTheDefaultInsteadOfRemovingTheKey) {
    ARXConf::settings_filename_fontsize().setValue(15.0);
    ARXConf::settings_filename_fontsize().reset();
    EXPECT_EQ(fileObject().value("settings_filename_fontsize"), QJsonValue(12.0));
    ARXConf::settings_spaceview_columns().reset();
    EXPECT_EQ(fileObject().value("settings_spaceview_columns"),
              strings({"Date Modified", "Size", "Kind"}));
}

TEST_F(ARXConfTest, MacTerminalPathsReadAsThisSystemsTerminal) {
    const QString system = ARXTerminalOption::systemTerminal();
    for (const char* mac :
         {"/Applications/Utilities/Terminal.app", "/System/Applications/Utilities/Terminal.app"}) {
        ARXConf::settings_terminal_app().setValue(QString::fromUtf8(mac));
        EXPECT_EQ(ARXConf::settings_terminal_app().value(), system) << mac;
    }
    ARXConf::settings_terminal_app().setValue(QStringLiteral("/Applications/iTerm.app"));
    EXPECT_EQ(ARXConf::settings_terminal_app().value(), QStringLiteral("/Applications/iTerm.app"));
    ARXConf::settings_terminal_app().setValue(QStringLiteral("org.kde.konsole.desktop"));
    EXPECT_EQ(ARXConf::settings_terminal_app().value(), QStringLiteral("org.kde.konsole.desktop"));

    // The default follows the same rule.
    const ARXTerminalOption option(QStringLiteral("terminal"), ARXTerminalOption::macTerminalPath);
    EXPECT_EQ(option.def, system);
}

TEST_F(ARXConfTest, SystemTerminalPrefersTheAlternativesEntryThenTheFirstKnownOnPath) {
    const Path bin = binFolder({"xterm", "konsole"});
    const Path notExecutable = ARXPath::join(bin, "gnome-terminal");
    writeFile(notExecutable, "not a program");
    ::setenv("PATH", bin.c_str(), 1);
    const QStringList candidates = {"gnome-terminal", "konsole", "xterm"};

    const Path entry = ARXPath::join(root(), "x-terminal-emulator");
    EXPECT_EQ(ARXTerminalOption::findSystemTerminal(entry, candidates),
              ARXPath::display(ARXPath::join(bin, "konsole")))
        << "no alternatives entry: the first candidate that runs";

    // The entry is answered as the user would type it, not where its link points.
    ASSERT_EQ(::symlink(ARXPath::join(bin, "xterm").c_str(), entry.c_str()), 0);
    EXPECT_EQ(ARXTerminalOption::findSystemTerminal(entry, candidates), ARXPath::display(entry));

    ::setenv("PATH", binFolder({}).c_str(), 1);
    ::unlink(ARXPath::join(bin, "konsole").c_str());
    ::unlink(ARXPath::join(bin, "xterm").c_str());
    EXPECT_EQ(ARXTerminalOption::findSystemTerminal(notExecutable, candidates), QString());
}

TEST_F(ARXConfTest, InstalledProgramsComeFromPathOrDesktopEntriesInTheKnownOrder) {
    ::setenv("PATH", binFolder({"xterm", "konsole", "kate"}).c_str(), 1);
    // Only the fixture's applications, not the machine's.
    ::setenv("XDG_DATA_DIRS", ARXPath::join(root(), "share").c_str(), 1);
    // A Flatpak-style application: a desktop entry and no executable of its own name.
    writeFile(ARXPath::join(dataHome(), "applications/org.gnome.Console.desktop"),
              "[Desktop Entry]\nType=Application\nName=Console\nExec=/bin/sh\n");
    const QString bin = ARXPath::display(ARXPath::join(root(), "bin"));
    EXPECT_EQ(ARXConf::installedTerminals(),
              QStringList({"org.gnome.Console.desktop", bin + "/konsole", bin + "/xterm"}));
    EXPECT_EQ(ARXConf::installedEditors(), QStringList{bin + "/kate"});
}

class ARXFavoritesTest : public ARXConfTest {
protected:
    void SetUp() override {
        ARXConfTest::SetUp();
        ARXNotificationCenter::shared().addObserver(
            ARXNotificationName::rv_cached_favorite_urls_changed, nullptr,
            [this](const ARXNotification&) {
                ++posts;
                // Observers read the new list when they hear of it.
                seen = ARXConf::cached_favorite_urls().value();
            });
    }

    int posts = 0;
    QStringList seen;
};

TEST_F(ARXFavoritesTest, ToggleTwiceRestoresTheListAndPostsEachTime) {
    ARXConf::cached_favorite_urls().setValue({"file:///a/"});

    EXPECT_TRUE(ARXFavorites::toggleFavorite("file:///tmp/My%20Folder"));
    EXPECT_EQ(posts, 1);
    EXPECT_EQ(seen, QStringList({"file:///a/", "file:///tmp/My%20Folder/"}));
    EXPECT_TRUE(ARXFavorites::isFavorite("file:///tmp/My%20Folder"));
    EXPECT_TRUE(ARXFavorites::isFavorite("file:///tmp/My%20Folder/"));

    EXPECT_FALSE(ARXFavorites::toggleFavorite("file:///tmp/My%20Folder/"));
    EXPECT_EQ(posts, 2);
    EXPECT_EQ(ARXConf::cached_favorite_urls().value(), QStringList{"file:///a/"});
    EXPECT_FALSE(ARXFavorites::isFavorite("file:///tmp/My%20Folder"));
}

TEST_F(ARXFavoritesTest, ReplaceKeepsThePositionAndListsNoFolderTwice) {
    ARXConf::cached_favorite_urls().setValue({"file:///a/", "file:///b/", "file:///c/"});
    EXPECT_TRUE(ARXFavorites::replaceFavorite("file:///b", "file:///renamed"));
    EXPECT_EQ(seen, QStringList({"file:///a/", "file:///renamed/", "file:///c/"}));

    EXPECT_TRUE(ARXFavorites::replaceFavorite("file:///c/", "file:///a"));
    EXPECT_EQ(seen, QStringList({"file:///renamed/", "file:///a/"}));
    EXPECT_EQ(posts, 2);

    // Renaming a folder that is no favourite changes and announces nothing.
    EXPECT_FALSE(ARXFavorites::replaceFavorite("file:///x", "file:///y"));
    EXPECT_EQ(posts, 2);
    EXPECT_EQ(ARXConf::cached_favorite_urls().value(),
              QStringList({"file:///renamed/", "file:///a/"}));
}

} // namespace
