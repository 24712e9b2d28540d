#pragma once

#include <QString>

// The names of Atrium's notifications. Each constant is spelled exactly as the name it holds, so
// that a search for either finds both. A setting never notifies by itself: whoever writes it posts
// the name its catalogue entry gives (see ARXConf::catalogue()).
namespace ARXNotificationName {

// Preferences.
inline const QString rv_settings_default_viewtype_changed =
    QStringLiteral("rv_settings_default_viewtype_changed");
inline const QString rv_settings_current_view_border_visible_changed =
    QStringLiteral("rv_settings_current_view_border_visible_changed");
inline const QString rv_settings_show_item_brief_info_changed =
    QStringLiteral("rv_settings_show_item_brief_info_changed");
inline const QString rv_settings_filename_fontsize_changed =
    QStringLiteral("rv_settings_filename_fontsize_changed");
inline const QString rv_settings_show_icon_thumb_min_size_changed =
    QStringLiteral("rv_settings_show_icon_thumb_min_size_changed");
inline const QString rv_settings_show_icon_thumb_media_changed =
    QStringLiteral("rv_settings_show_icon_thumb_media_changed");
inline const QString rv_settings_bottom_statusbar_changed =
    QStringLiteral("rv_settings_bottom_statusbar_changed");
inline const QString rv_settings_spaceview_columns_changed =
    QStringLiteral("rv_settings_spaceview_columns_changed");
inline const QString rv_settings_calculate_all_sizes_changed =
    QStringLiteral("rv_settings_calculate_all_sizes_changed");
inline const QString rv_settings_column_extra_info_type_changed =
    QStringLiteral("rv_settings_column_extra_info_type_changed");
inline const QString rv_settings_terminal_app_changed =
    QStringLiteral("rv_settings_terminal_app_changed");
inline const QString rv_settings_editor_app_changed =
    QStringLiteral("rv_settings_editor_app_changed");
inline const QString rv_settings_workspace_status_bar_entry_changed =
    QStringLiteral("rv_settings_workspace_status_bar_entry_changed");
inline const QString rv_settings_app_status_bar_entry_changed =
    QStringLiteral("rv_settings_app_status_bar_entry_changed");
inline const QString rv_settings_sidebar_show_locations_changed =
    QStringLiteral("rv_settings_sidebar_show_locations_changed");
inline const QString rv_settings_custom_hotkey_changed =
    QStringLiteral("rv_settings_custom_hotkey_changed");
inline const QString rv_quick_launchers_changed = QStringLiteral("rv_quick_launchers_changed");

// Remembered lists of the sidebar and the path bar. The two pin lists are "settings_" keys whose
// notifications begin with "rv_cached_"; the names are kept as they have always been.
inline const QString rv_cached_favorite_urls_changed =
    QStringLiteral("rv_cached_favorite_urls_changed");
inline const QString rv_cached_pin_home_urls_changed =
    QStringLiteral("rv_cached_pin_home_urls_changed");
inline const QString rv_cached_pin_icloud_paths_changed =
    QStringLiteral("rv_cached_pin_icloud_paths_changed");
inline const QString rv_cached_sidebar_ignore_locations_changed =
    QStringLiteral("rv_cached_sidebar_ignore_locations_changed");

// Access, volumes and files. User info as ARXNotificationKey names it.
inline const QString rv_cached_security_scoped_updated =
    QStringLiteral("rv_cached_security_scoped_updated"); // "urls"
inline const QString rv_mounted_volumes_changed = QStringLiteral("rv_mounted_volumes_changed");
inline const QString rv_file_moved = QStringLiteral("rv_file_moved");     // "source", "target"
inline const QString rv_file_changed = QStringLiteral("rv_file_changed"); // "path"
inline const QString rv_file_tags_changed = QStringLiteral("rv_file_tags_changed"); // "url", "tags"

} // namespace ARXNotificationName

// The user-info keys of those notifications.
namespace ARXNotificationKey {

inline const QString path = QStringLiteral("path");
inline const QString source = QStringLiteral("source");
inline const QString target = QStringLiteral("target");
inline const QString url = QStringLiteral("url");
inline const QString urls = QStringLiteral("urls");
inline const QString tags = QStringLiteral("tags");

} // namespace ARXNotificationKey
