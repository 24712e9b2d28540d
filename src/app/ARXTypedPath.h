#pragma once

#include "platform/ARXPath.h"

#include <QString>

#include <optional>

// The folder to open for a path the user typed into a pane's path field.
namespace ARXTypedPath {

// Whitespace around the text goes; an empty text means the default folder. "~" and "~/x" are in
// the home folder, and so is any text that does not start with "/" ("Music"). A file opens its
// folder; a path that does not exist is opened as it is (the pane then says it is not found).
// The path comes back in one spelling: no "." or ".." component, no "//", no trailing "/", no NUL.
// Nullopt when the text names the folder already shown (`current`), which is left as it is.
std::optional<Path> resolve(const QString& text, const Path& home, const Path& defaultFolder,
                            const std::optional<Path>& current);

} // namespace ARXTypedPath
