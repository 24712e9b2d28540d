#include "app/ARXConf.h"

#include "app/ARXNotificationNames.h"
#include "app/ARXToolbarConfiguration.h"
#include "platform/ARXProgramLookup.h"
#include "platform/ARXSystemPaths.h"

#include <QCoreApplication>

#include <type_traits>

namespace {

template <typename T>
struct ARXSettingFormOf;
template <>
struct ARXSettingFormOf<bool> {
    static constexpr ARXSettingForm value = ARXSettingForm::boolean;
};
template <>
struct ARXSettingFormOf<qint64> {
    static constexpr ARXSettingForm value = ARXSettingForm::integer;
};
template <>
struct ARXSettingFormOf<double> {
    static constexpr ARXSettingForm value = ARXSettingForm::real;
};
template <>
struct ARXSettingFormOf<QString> {
    static constexpr ARXSettingForm value = ARXSettingForm::string;
};
template <>
struct ARXSettingFormOf<QDateTime> {
    static constexpr ARXSettingForm value = ARXSettingForm::date;
};
template <>
struct ARXSettingFormOf<QStringList> {
    static constexpr ARXSettingForm value = ARXSettingForm::stringList;
};
template <>
struct ARXSettingFormOf<QList<qint64>> {
    static constexpr ARXSettingForm value = ARXSettingForm::integerList;
};
template <>
struct ARXSettingFormOf<QList<QStringList>> {
    static constexpr ARXSettingForm value = ARXSettingForm::stringListList;
};
template <>
struct ARXSettingFormOf<QJsonObject> {
    static constexpr ARXSettingForm value = ARXSettingForm::dictionary;
};

// The form and stored default follow from the option's own type, so the listing cannot disagree
// with the option it describes.
template <typename Option>
ARXSettingInfo info(const Option& option, const QString& notification = {}) {
    using T = std::remove_cvref_t<decltype(option.def)>;
    return {option.key, ARXSettingFormOf<T>::value, notification,
            ARXOptionCodec<T>::toJson(option.def)};
}

QStringList homePinURLs() {
    QStringList urls;
    for (const char* kind : {"DESKTOP", "DOWNLOAD", "DOCUMENTS", "VIDEOS", "MUSIC", "PICTURES"}) {
        urls.append(ARXPath::fileURLString(ARXSystemPaths::userDirectory(kind)));
    }
    urls.append(ARXPath::fileURLString(ARXSystemPaths::homeDirectory()));
    return urls;
}

QStringList defaultContextMenuItems() {
    static const char* const kWords[] = {
        "new_folder_with_selection",
        "separator",
        "open",
        "open_with",
        "show_package_contents",
        "separator",
        "open_in_terminal",
        "open_in_editor",
        "separator",
        "trash",
        "remove",
        "separator",
        "getinfo",
        "rename",
        "compress",
        "quicklook",
        "share",
        "show_in_finder",
        "separator",
        "cut",
        "copy",
        "copy_path",
        "paste",
        "duplicate",
        "separator",
        "newfolder",
        "newfile",
        "separator",
        "bookmark",
        "start_path",
        "separator",
        "sort_by",
        "visible_columns",
        "separator",
        "tags",
        "separator",
        "services",
        "separator",
        "move_view_to",
    };
    QStringList items;
    for (const char* word : kWords) {
        items.append(QStringLiteral("com.brightmoor.atrium.") + QLatin1String(word));
    }
    return items;
}

QStringList installed(const QList<ARXKnownProgram>& programs) {
    QStringList values;
    for (const ARXKnownProgram& program : programs) {
        const Path executable = ARXProgramLookup::findInPath(ARXPath::fromText(program.executable));
        if (!executable.empty()) {
            values.append(ARXPath::toStoredText(executable));
        } else if (ARXProgramLookup::hasDesktopEntry(ARXPath::fromText(program.desktopId))) {
            values.append(program.desktopId);
        }
    }
    return values;
}

} // namespace

// One function per key, named as the key; the option is made on the first call (thread-safe, as
// every function-local static) and lives until the process ends.
#define ARX_OPTION(Type, name, ...)                                                                \
    const Type& name() {                                                                           \
        static const Type option(QStringLiteral(#name), __VA_ARGS__);                              \
        return option;                                                                             \
    }

namespace ARXConf {

ARX_OPTION(ARXOption<qint64>, settings_appearance, 0)
ARX_OPTION(ARXOption<qint64>, settings_default_layout, 0)
ARX_OPTION(ARXOption<qint64>, settings_default_view, 2) // list
ARX_OPTION(ARXOption<QString>, settings_default_sort_column, QStringLiteral("Date Modified"))
ARX_OPTION(ARXOption<bool>, settings_default_sort_ascend, false)
ARX_OPTION(ARXOption<bool>, settings_default_sort_folders_ontop, false)
ARX_OPTION(ARXOption<QString>, settings_default_directory,
           ARXPath::toStoredText(ARXSystemPaths::homeDirectory()))
ARX_OPTION(ARXOption<bool>, settings_current_view_border_visible, true)
ARX_OPTION(ARXOption<bool>, settings_show_item_brief_info, false)
ARX_OPTION(ARXOption<double>, settings_filename_fontsize, 12.0)
ARX_OPTION(ARXOption<double>, settings_show_icon_thumb_min_size, 32.0)
ARX_OPTION(ARXOption<bool>, settings_show_icon_thumb_media_always, true)
ARX_OPTION(ARXOption<bool>, settings_space_bottom_statusbar_visible, false)
ARX_OPTION(ARXOption<QStringList>, settings_spaceview_columns,
           QStringList{QStringLiteral("Date Modified"), QStringLiteral("Size"),
                       QStringLiteral("Kind")})
ARX_OPTION(ARXOption<bool>, settings_calculate_all_sizes, false)
ARX_OPTION(ARXOption<qint64>, settings_column_extra_info_type, 0)
ARX_OPTION(ARXTerminalOption, settings_terminal_app, ARXTerminalOption::systemTerminal())
ARX_OPTION(ARXOption<QString>, settings_editor_app, QString())
// Return opens, as on every Linux desktop; F2 renames.
ARX_OPTION(ARXOption<qint64>, settings_press_enter_key, 1)
ARX_OPTION(ARXOption<bool>, settings_escape_to_deselect, true)
ARX_OPTION(ARXOption<qint64>, settings_address_segment_auto_expand, 1)
ARX_OPTION(ARXOption<qint64>, settings_action_target, 1)
ARX_OPTION(ARXOption<bool>, settings_sound_effect_on, true)
ARX_OPTION(ARXOption<bool>, settings_workspace_statusbar_entry, true)
ARX_OPTION(ARXOption<bool>, settings_app_statusbar_entry, true)
ARX_OPTION(ARXOption<bool>, settings_always_show_dock_icon, true)
ARX_OPTION(ARXOption<bool>, settings_show_workspace_window_here, true)
ARX_OPTION(ARXOption<QStringList>, settings_newfile_templates, QStringList{defaultTemplateName()})
ARX_OPTION(ARXOption<QList<qint64>>, settings_compress_filter, QList<qint64>{1})
ARX_OPTION(ARXOption<qint64>, settings_file_archive_method, 1)
ARX_OPTION(ARXOption<QString>, settings_file_archive_destination_folder, QString())
ARX_OPTION(ARXOption<qint64>, settings_file_archive_after_archving_operation, 0)
ARX_OPTION(ARXOption<QStringList>, settings_pin_home_urls, homePinURLs())
ARX_OPTION(ARXOption<QStringList>, settings_pin_icloud_urls,
           QStringList{ARXPath::fileURLString(cloudDrivePath())})
ARX_OPTION(ARXOption<bool>, settings_sidebar_show_locations, true)
ARX_OPTION(ARXOption<QStringList>, settings_sidebar_ignore_locations, QStringList())
ARX_OPTION(ARXOption<bool>, settings_show_file_undo_redo_message, true)
ARX_OPTION(ARXOption<QStringList>, settings_enabled_context_menu_items, defaultContextMenuItems())
ARX_OPTION(ARXOption<qint64>, settings_service_menu_expand_max_count, 3)
ARX_OPTION(ARXOption<QStringList>, cached_open_atrium_names, QStringList())
ARX_OPTION(ARXOption<QList<QStringList>>, cached_open_atrium_tab_names,
           QList<QStringList>{QStringList()})
ARX_OPTION(ARXOption<QStringList>, cached_selected_apps, QStringList())
ARX_OPTION(ARXOption<QStringList>, cached_favorite_urls, QStringList())
ARX_OPTION(ARXOption<qint64>, cached_app_review_prompted_count, 0)
ARX_OPTION(ARXOption<QString>, cached_app_review_last_version, QString())
ARX_OPTION(ARXOption<QDateTime>, cached_app_review_last_time, QDateTime::currentDateTime())
ARX_OPTION(ARXOption<QJsonObject>, cached_bookmarks, QJsonObject())
ARX_OPTION(ARXOption<QStringList>, cached_toolbar_items, QStringList())
ARX_OPTION(ARXOption<bool>, cached_toolbar_small_icons, false)

#undef ARX_OPTION

const QList<ARXSettingInfo>& catalogue() {
    namespace N = ARXNotificationName;
    static const QList<ARXSettingInfo> list = {
        info(settings_appearance()),
        info(settings_default_layout()),
        info(settings_default_view(), N::rv_settings_default_viewtype_changed),
        info(settings_default_sort_column()),
        info(settings_default_sort_ascend()),
        info(settings_default_sort_folders_ontop()),
        info(settings_default_directory()),
        info(settings_current_view_border_visible(),
             N::rv_settings_current_view_border_visible_changed),
        info(settings_show_item_brief_info(), N::rv_settings_show_item_brief_info_changed),
        info(settings_filename_fontsize(), N::rv_settings_filename_fontsize_changed),
        info(settings_show_icon_thumb_min_size(), N::rv_settings_show_icon_thumb_min_size_changed),
        info(settings_show_icon_thumb_media_always(), N::rv_settings_show_icon_thumb_media_changed),
        info(settings_space_bottom_statusbar_visible(), N::rv_settings_bottom_statusbar_changed),
        info(settings_spaceview_columns(), N::rv_settings_spaceview_columns_changed),
        info(settings_calculate_all_sizes(), N::rv_settings_calculate_all_sizes_changed),
        info(settings_column_extra_info_type(), N::rv_settings_column_extra_info_type_changed),
        info(settings_terminal_app(), N::rv_settings_terminal_app_changed),
        info(settings_editor_app(), N::rv_settings_editor_app_changed),
        info(settings_press_enter_key()),
        info(settings_escape_to_deselect()),
        info(settings_address_segment_auto_expand()),
        info(settings_action_target()),
        info(settings_sound_effect_on()),
        info(settings_workspace_statusbar_entry(),
             N::rv_settings_workspace_status_bar_entry_changed),
        info(settings_app_statusbar_entry(), N::rv_settings_app_status_bar_entry_changed),
        info(settings_always_show_dock_icon()),
        info(settings_show_workspace_window_here()),
        info(settings_newfile_templates()),
        info(settings_compress_filter()),
        info(settings_file_archive_method()),
        info(settings_file_archive_destination_folder()),
        info(settings_file_archive_after_archving_operation()),
        info(settings_pin_home_urls(), N::rv_cached_pin_home_urls_changed),
        info(settings_pin_icloud_urls(), N::rv_cached_pin_icloud_paths_changed),
        info(settings_sidebar_show_locations(), N::rv_settings_sidebar_show_locations_changed),
        info(settings_sidebar_ignore_locations(), N::rv_cached_sidebar_ignore_locations_changed),
        info(settings_show_file_undo_redo_message()),
        info(settings_enabled_context_menu_items()),
        info(settings_service_menu_expand_max_count()),
        info(cached_open_atrium_names()),
        info(cached_open_atrium_tab_names()),
        info(cached_selected_apps()),
        info(cached_favorite_urls(), N::rv_cached_favorite_urls_changed),
        info(cached_app_review_prompted_count()),
        info(cached_app_review_last_version()),
        info(cached_app_review_last_time()),
        // The access cache writes its bookmarks and then tells the panes what was granted.
        info(cached_bookmarks(), N::rv_cached_security_scoped_updated),
        info(cached_toolbar_items(), ARXToolbarConfiguration::changedNotification),
        info(cached_toolbar_small_icons(), ARXToolbarConfiguration::changedNotification),
    };
    return list;
}

void storeAppearance(qint64 appearance) {
    if (appearance == 0) {
        ARXSettingsStore::shared().remove(settings_appearance().key);
    } else {
        settings_appearance().setValue(appearance);
    }
}

qint64 appearanceToApply() {
    const qint64 appearance = settings_appearance().value();
    if (appearance == 0 && settings_appearance().isStored()) {
        storeAppearance(0);
    }
    return appearance;
}

QString defaultWorkspaceName() {
    return QCoreApplication::translate("Atrium", "Default");
}

QString workspaceNameTemplate() {
    return QCoreApplication::translate("Atrium", "My Workspace %d");
}

QString numberedWorkspaceName(int number) {
    return workspaceNameTemplate().replace(QLatin1String("%d"), QString::number(number));
}

Path dataRoot() {
    return ARXPath::join(ARXSystemPaths::dataHome(), "Atrium");
}

QString defaultTemplateName() {
    return QCoreApplication::translate("Atrium", "untitled.txt");
}

Path cloudLibrariesPath() {
    return ARXPath::join(ARXSystemPaths::homeDirectory(), "Library/Mobile Documents");
}

Path cloudDrivePath() {
    return ARXPath::join(cloudLibrariesPath(), "com~apple~CloudDocs");
}

Path cloudTrashPath() {
    return ARXPath::join(cloudDrivePath(), ".Trash");
}

const QStringList& packageExtensions() {
    static const QStringList extensions = {
        QStringLiteral("app"),      QStringLiteral("xcodeproj"),   QStringLiteral("xcworkspace"),
        QStringLiteral("bundle"),   QStringLiteral("storyboardc"), QStringLiteral("xpc"),
        QStringLiteral("vmwarevm"), QStringLiteral("mindnode"),    QStringLiteral("sketchplugin"),
        QStringLiteral("graffle"),  QStringLiteral("epub"),        QStringLiteral("photoslibrary"),
    };
    return extensions;
}

bool isPackageExtension(std::string_view extension) {
    if (extension.empty()) {
        return false;
    }
    const QString text = QString::fromUtf8(extension.data(), qsizetype(extension.size()));
    return packageExtensions().contains(text, Qt::CaseInsensitive);
}

const QList<ARXKnownProgram>& knownEditors() {
    static const QList<ARXKnownProgram> editors = {
        {QStringLiteral("Visual Studio Code"), QStringLiteral("code.desktop"),
         QStringLiteral("code")},
        {QStringLiteral("VSCodium"), QStringLiteral("codium.desktop"), QStringLiteral("codium")},
        {QStringLiteral("Sublime Text"), QStringLiteral("sublime_text.desktop"),
         QStringLiteral("subl")},
        {QStringLiteral("GVim"), QStringLiteral("gvim.desktop"), QStringLiteral("gvim")},
        {QStringLiteral("Emacs"), QStringLiteral("emacs.desktop"), QStringLiteral("emacs")},
        {QStringLiteral("Kate"), QStringLiteral("org.kde.kate.desktop"), QStringLiteral("kate")},
        {QStringLiteral("gedit"), QStringLiteral("org.gnome.gedit.desktop"),
         QStringLiteral("gedit")},
        {QStringLiteral("Text Editor"), QStringLiteral("org.gnome.TextEditor.desktop"),
         QStringLiteral("gnome-text-editor")},
        {QStringLiteral("Mousepad"), QStringLiteral("org.xfce.mousepad.desktop"),
         QStringLiteral("mousepad")},
    };
    return editors;
}

const QList<ARXKnownProgram>& knownTerminals() {
    static const QList<ARXKnownProgram> terminals = {
        {QStringLiteral("GNOME Terminal"), QStringLiteral("org.gnome.Terminal.desktop"),
         QStringLiteral("gnome-terminal")},
        {QStringLiteral("Console"), QStringLiteral("org.gnome.Console.desktop"),
         QStringLiteral("kgx")},
        {QStringLiteral("Konsole"), QStringLiteral("org.kde.konsole.desktop"),
         QStringLiteral("konsole")},
        {QStringLiteral("Xfce Terminal"), QStringLiteral("xfce4-terminal.desktop"),
         QStringLiteral("xfce4-terminal")},
        {QStringLiteral("MATE Terminal"), QStringLiteral("mate-terminal.desktop"),
         QStringLiteral("mate-terminal")},
        {QStringLiteral("QTerminal"), QStringLiteral("qterminal.desktop"),
         QStringLiteral("qterminal")},
        {QStringLiteral("LXTerminal"), QStringLiteral("lxterminal.desktop"),
         QStringLiteral("lxterminal")},
        {QStringLiteral("Tilix"), QStringLiteral("com.gexperts.Tilix.desktop"),
         QStringLiteral("tilix")},
        {QStringLiteral("Terminator"), QStringLiteral("terminator.desktop"),
         QStringLiteral("terminator")},
        {QStringLiteral("kitty"), QStringLiteral("kitty.desktop"), QStringLiteral("kitty")},
        {QStringLiteral("Alacritty"), QStringLiteral("Alacritty.desktop"),
         QStringLiteral("alacritty")},
        {QStringLiteral("WezTerm"), QStringLiteral("org.wezfurlong.wezterm.desktop"),
         QStringLiteral("wezterm")},
        {QStringLiteral("foot"), QStringLiteral("foot.desktop"), QStringLiteral("foot")},
        {QStringLiteral("XTerm"), QStringLiteral("debian-xterm.desktop"), QStringLiteral("xterm")},
    };
    return terminals;
}

QStringList installedEditors() {
    return installed(knownEditors());
}

QStringList installedTerminals() {
    return installed(knownTerminals());
}

} // namespace ARXConf
