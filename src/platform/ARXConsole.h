#pragma once

#include <QString>

#include <string_view>

// Lines for the developer on standard error. There is no log file and no level: the text carries
// its own prefix, as each subsystem chooses. Safe to call from any thread.
namespace ARXConsole {

void line(const QString& text);
void line(std::string_view text);

} // namespace ARXConsole
