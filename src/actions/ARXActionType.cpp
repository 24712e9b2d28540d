#include "actions/ARXActionType.h"

#include <QCoreApplication>
#include <QHash>

#include <array>

namespace {

struct Row {
    const char* word;
    const char* title; // nullptr: no title
};

// In the order of the enumeration.
constexpr std::array<Row, ARXAction::kCount> kRows{{
    {"none", nullptr},
    {"activate_workspaces", "Activate Workspaces"},
    {"bookmark", "Add Bookmark"},
    {"compress", "Compress"},
    {"copy", "Copy"},
    {"copy_path", "Copy Path"},
    {"copy_filename", "Copy Filename"},
    {"cut", "Cut"},
    {"duplicate", "Duplicate"},
    {"edit_tag", "Tags..."},
    {"getinfo", "Get Info"},
    {"make_alias", "Make Alias"},
    {"trash", "Move to Trash"},
    {"move_view_to", "Move to"},
    {"new_workspace", "New Workspace"},
    {"newfile", "New File"},
    {"newfolder", "New Folder"},
    {"new_folder_with_selection", "New Folder With Selection"},
    {"open", "Open"},
    {"open_in_editor", "Open in Editor"},
    {"open_in_terminal", "Open in Terminal"},
    {"open_with", "Open With"},
    {"refresh_view", "Refresh View"},
    {"save", "Save"},
    {"close", "Close"},
    {"paste", "Paste"},
    {"move_copied", "Move Copied"},
    {"quicklook", "Quick Look"},
    {"remove", "Delete directly"},
    {"rename", "Rename"},
    {"separator", nullptr},
    {"services", "Services"},
    {"share", "Share"},
    {"show_in_enclosing_folder", "Show in Enclosing Folder"},
    {"show_in_finder", "Show in Finder"},
    {"show_package_contents", "Show Package Contents"},
    {"sort_by", "Sort By"},
    {"start_path", "Set as Start Path"},
    {"tags", "Tags"},
    {"visible_columns", "Visible Columns"},
    {"undo", "Undo"},
    {"redo", "Redo"},
    {"select_all", "Select All"},
    {"hidden_files", "Hidden Files"},
    {"pintop", "Sticky Window"},
    {"search", "Search"},
    {"share_airdrop", "AirDrop"},
    {"sidebar", "Sidebar"},
    {"status_bar", "Status Bar"},
    {"go_back", "Back"},
    {"go_forward", "Forward"},
    {"go_enclosing_folder", "Enclosing Folder"},
    {"go_documents", "Documents"},
    {"go_desktop", "Desktop"},
    {"go_downloads", "Downloads"},
    {"go_home", "Home"},
    {"go_icloud_drive", "iCloud Drive"},
    {"go_to_location", "Go to Location"},
    {"as_list_view", "as List view"},
    {"as_icons_view", "as Icons view"},
    {"as_columns_view", "as Columns view"},
    {"fullscreen", "Full Screen"},
    {"minimize_window", "Minimize Window"},
    {"zoom_window", "Zoom Window"},
    {"bring_all_to_front", "Bring All to Front"},
    {"layouts", "Layouts"},
    {"viewtypes", "View Types"},
    {"zoom_in", "Zoom In"},
    {"zoom_out", "Zoom Out"},
    {"sort_by_name", nullptr},
    {"sort_by_kind", nullptr},
    {"sort_by_date_last_opened", nullptr},
    {"sort_by_date_added", nullptr},
    {"sort_by_date_modified", nullptr},
    {"sort_by_date_created", nullptr},
    {"sort_by_size", nullptr},
    {"sort_by_tags", nullptr},
    {"sort_by_dimensions", nullptr},
    {"sort_by_duration", nullptr},
    {"actions", "Action"},
    {"backforward", "Back/Forward"},
    {"workspace_name", nullptr},
}};

const QString& prefix() {
    static const QString text = QStringLiteral("com.brightmoor.atrium.");
    return text;
}

} // namespace

QString ARXAction::identifier(ARXActionType type) {
    return prefix() + QLatin1String(kRows[size_t(type)].word);
}

ARXActionType ARXAction::type(const QString& identifier) {
    static const QHash<QString, ARXActionType> table = [] {
        QHash<QString, ARXActionType> built;
        for (int i = 0; i < kCount; ++i) {
            built.insert(ARXAction::identifier(ARXActionType(i)), ARXActionType(i));
        }
        return built;
    }();
    return table.value(identifier, ARXActionType::None);
}

QString ARXAction::title(ARXActionType type) {
    const char* title = kRows[size_t(type)].title;
    return title ? QCoreApplication::translate("Atrium", title) : QString();
}
