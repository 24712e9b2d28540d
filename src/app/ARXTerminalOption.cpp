#include "app/ARXTerminalOption.h"

#include "app/ARXConf.h"
#include "platform/ARXProgramLookup.h"

const QString ARXTerminalOption::macTerminalPath =
    QStringLiteral("/System/Applications/Utilities/Terminal.app");
const QString ARXTerminalOption::legacyMacTerminalPath =
    QStringLiteral("/Applications/Utilities/Terminal.app");

ARXTerminalOption::ARXTerminalOption(QString key, QString def, ARXSettingsStore* store)
    : key(key), def(rewritten(def)), _option(key, this->def, store) {}

bool ARXTerminalOption::isBuiltInMacTerminal(const QString& value) {
    return value == macTerminalPath || value == legacyMacTerminalPath;
}

QString ARXTerminalOption::rewritten(const QString& value) {
    return isBuiltInMacTerminal(value) ? systemTerminal() : value;
}

QString ARXTerminalOption::value() const {
    return rewritten(_option.value());
}

QString ARXTerminalOption::systemTerminal() {
    QStringList executables;
    for (const ARXKnownProgram& program : ARXConf::knownTerminals()) {
        executables.append(program.executable);
    }
    return findSystemTerminal("/usr/bin/x-terminal-emulator", executables);
}

QString ARXTerminalOption::findSystemTerminal(const Path& alternativesEntry,
                                              const QStringList& executables) {
    if (!alternativesEntry.empty() && ARXProgramLookup::isExecutableFile(alternativesEntry)) {
        return ARXPath::toStoredText(alternativesEntry);
    }
    for (const QString& name : executables) {
        const Path found = ARXProgramLookup::findInPath(ARXPath::fromText(name));
        if (!found.empty()) {
            return ARXPath::toStoredText(found);
        }
    }
    return {};
}
