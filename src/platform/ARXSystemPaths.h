#pragma once

#include "platform/ARXPath.h"

// Where the user's things are: the home folder, the XDG base directories and user directories.
namespace ARXSystemPaths {

// The home folder from the password database (never $HOME, which sandboxes and sudo rewrite).
// Taken once; tests may replace it with overrideHomeForTesting before first use or after.
Path homeDirectory();
void overrideHomeForTesting(const Path& home);

// $XDG_CONFIG_HOME, $XDG_DATA_HOME, $XDG_CACHE_HOME when set to an absolute path, else the
// defaults below the home folder (~/.config, ~/.local/share, ~/.cache).
Path configHome();
Path dataHome();
Path cacheHome();

// The XDG user directories (user-dirs.dirs in the config home). kind is the key without prefix
// and suffix: "DESKTOP", "DOWNLOAD", "DOCUMENTS", "VIDEOS", "MUSIC", "PICTURES". Falls back to
// the English folder name in the home folder.
Path userDirectory(const char* kind);

// The system's temporary folder ($TMPDIR when absolute, else /tmp).
Path temporaryDirectory();

} // namespace ARXSystemPaths
