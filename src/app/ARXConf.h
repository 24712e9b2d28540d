#pragma once

#include "app/ARXOption.h"
#include "app/ARXTerminalOption.h"
#include "platform/ARXPath.h"

#include <QDateTime>
#include <QJsonObject>
#include <QJsonValue>
#include <QList>
#include <QString>
#include <QStringList>

#include <string_view>

// The form a setting's value takes in the store.
enum class ARXSettingForm {
    boolean,
    integer,
    real,
    string,
    date,
    stringList,
    integerList,
    stringListList,
    dictionary,
};

// One key of the settings catalogue, for the preferences window and for checks: its form, its
// default as stored, and the notification its writer posts afterwards (empty for none).
struct ARXSettingInfo {
    QString key;
    ARXSettingForm form;
    QString notification;
    QJsonValue defaultValue;
};

// A program Atrium knows how to offer for a setting, when it is installed.
struct ARXKnownProgram {
    QString name;      // for the screen
    QString desktopId; // "org.kde.kate.desktop"
    QString executable;
};

// The shared settings and Atrium's fixed values. Each option is made at its first use and never
// changes; the function is named exactly as its key. Options don't notify: the writer posts the
// name catalogue() gives for the key.
namespace ARXConf {

const ARXOption<qint64>& settings_appearance(); // 0 system, 1 light, 2 dark: see storeAppearance
const ARXOption<qint64>& settings_default_layout();
const ARXOption<qint64>& settings_default_view();
const ARXOption<QString>& settings_default_sort_column();
const ARXOption<bool>& settings_default_sort_ascend();
const ARXOption<bool>& settings_default_sort_folders_ontop();
const ARXOption<QString>& settings_default_directory(); // a path in ARXPath::toStoredText form
const ARXOption<bool>& settings_current_view_border_visible();
const ARXOption<bool>& settings_show_item_brief_info();
const ARXOption<double>& settings_filename_fontsize();
const ARXOption<double>& settings_show_icon_thumb_min_size();
const ARXOption<bool>& settings_show_icon_thumb_media_always();
const ARXOption<bool>& settings_space_bottom_statusbar_visible();
const ARXOption<QStringList>& settings_spaceview_columns();
const ARXOption<bool>& settings_calculate_all_sizes();
const ARXOption<qint64>& settings_column_extra_info_type();
const ARXTerminalOption& settings_terminal_app();
const ARXOption<QString>& settings_editor_app();
const ARXOption<qint64>& settings_press_enter_key();
const ARXOption<bool>& settings_escape_to_deselect();
const ARXOption<qint64>& settings_address_segment_auto_expand();
const ARXOption<qint64>& settings_action_target();
const ARXOption<bool>& settings_sound_effect_on();
const ARXOption<bool>& settings_workspace_statusbar_entry();
const ARXOption<bool>& settings_app_statusbar_entry();
const ARXOption<bool>& settings_always_show_dock_icon();
const ARXOption<bool>& settings_show_workspace_window_here();
const ARXOption<QStringList>& settings_newfile_templates();
const ARXOption<QList<qint64>>& settings_compress_filter();
const ARXOption<qint64>& settings_file_archive_method();
const ARXOption<QString>& settings_file_archive_destination_folder();
const ARXOption<qint64>& settings_file_archive_after_archving_operation();
const ARXOption<QStringList>& settings_pin_home_urls();   // file URL strings
const ARXOption<QStringList>& settings_pin_icloud_urls(); // file URL strings
const ARXOption<bool>& settings_sidebar_show_locations();
const ARXOption<QStringList>& settings_sidebar_ignore_locations();
const ARXOption<bool>& settings_show_file_undo_redo_message();
const ARXOption<QStringList>& settings_enabled_context_menu_items(); // action identifiers
const ARXOption<qint64>& settings_service_menu_expand_max_count();
const ARXOption<QStringList>& cached_open_atrium_names();
const ARXOption<QList<QStringList>>& cached_open_atrium_tab_names();
const ARXOption<QStringList>& cached_selected_apps();
const ARXOption<QStringList>& cached_favorite_urls(); // see ARXFavorites
const ARXOption<qint64>& cached_app_review_prompted_count();
const ARXOption<QString>& cached_app_review_last_version();
const ARXOption<QDateTime>& cached_app_review_last_time();
const ARXOption<QJsonObject>& cached_bookmarks(); // path -> base64 bookmark data
// The workspace windows' toolbar, through ARXToolbarConfiguration. An empty list is the default.
const ARXOption<QStringList>& cached_toolbar_items();
const ARXOption<bool>& cached_toolbar_small_icons();

// Every key above, in this order.
const QList<ARXSettingInfo>& catalogue();

// Stores the appearance. 0 means "follow the desktop", which is the absence of the key, so it
// removes the key rather than storing 0.
void storeAppearance(qint64 appearance);
// The appearance to apply at launch. Applying 0 leaves no key in the store: a stored 0 (or a
// value that reads as 0) is removed.
qint64 appearanceToApply();

// The identifier that marks a separator in settings_enabled_context_menu_items.
inline const QString contextMenuSeparator = QStringLiteral("com.brightmoor.atrium.separator");

// Workspace names: the first workspace, and the numbered form of new ones ("My Workspace %d").
QString defaultWorkspaceName();
QString workspaceNameTemplate();
QString numberedWorkspaceName(int number);

// $XDG_DATA_HOME/Atrium: workspaces, templates, hotkeys, quick launchers, caches.
Path dataRoot();

inline constexpr double sidebarMinimumWidth = 150.0;
inline constexpr double sidebarMaximumWidth = 300.0;
inline constexpr double sidebarDefaultWidth = 180.0;

// The point size text is measured in when no view font applies.
inline constexpr double systemFontSize = 13.0;

// The localised "untitled.txt".
QString defaultTemplateName();

// The cloud store's folders below the home folder. They exist only where a Mac's home has been
// brought over; the cloud rules that use them are inert otherwise.
Path cloudLibrariesPath(); // ~/Library/Mobile Documents
Path cloudDrivePath();     // ~/Library/Mobile Documents/com~apple~CloudDocs
Path cloudTrashPath();     // ~/Library/Mobile Documents/com~apple~CloudDocs/.Trash

// Folder extensions (lower case) whose folders count as single documents.
const QStringList& packageExtensions();
bool isPackageExtension(std::string_view extension); // as ARXPath::extension gives it

// Editors and terminals Atrium offers when they are installed, in the order offered.
const QList<ARXKnownProgram>& knownEditors();
const QList<ARXKnownProgram>& knownTerminals();

// The installed ones, as values for settings_editor_app and settings_terminal_app: the
// executable's path when it is on $PATH, else the desktop id when that is installed (Flatpak and
// Snap applications have no executable of their own name).
QStringList installedEditors();
QStringList installedTerminals();

} // namespace ARXConf
