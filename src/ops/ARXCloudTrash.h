#pragma once

#include "platform/ARXPath.h"

#include <optional>

// Where cloud items go when they are trashed. An item the cloud store syncs ("ubiquitous") is not
// put into the system's trash, where the store would lose track of it, but into a ".Trash" folder
// of the store itself: an app's container ("~/Library/Mobile Documents/APP") has its own in
// "APP/Documents/.Trash", everything else uses the drive's
// ("~/Library/Mobile Documents/com~apple~CloudDocs/.Trash"). The home is the user's real one.
//
// On Linux no item is ubiquitous unless a cloud provider is installed through
// ARXResourceValues::setCloudProvider, so this stays inert on a plain system.
namespace ARXCloudTrash {

// Whether the item's resource values say it is ubiquitous.
bool isUbiquitous(const Path& path);

// The cloud trash folder for a ubiquitous item.
Path trashFolderFor(const Path& path);

// Moves the item into its cloud trash folder (made with its parents when missing) under the next
// free name (uniquePath) and answers that path. nullopt, with nothing moved, when the folder's
// name is taken by something that is no folder. Throws ARXFileError when the move fails.
std::optional<Path> trashItem(const Path& path);

} // namespace ARXCloudTrash
