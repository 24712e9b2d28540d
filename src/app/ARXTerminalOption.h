#pragma once

#include "app/ARXOption.h"
#include "platform/ARXPath.h"

#include <QString>
#include <QStringList>

// The terminal setting: a string option (a desktop id or an executable path) whose reading knows
// one extra rule. Settings brought over from a Mac may name its built-in Terminal application;
// that one exists nowhere here, so it reads as the terminal of the present system instead. Any
// other stored value is answered as it stands, even when it is no longer installed: the user
// chose it, and the launcher says what went wrong.
class ARXTerminalOption {
public:
    // def follows the same rule: a built-in Mac Terminal becomes this system's terminal.
    ARXTerminalOption(QString key, QString def, ARXSettingsStore* store = nullptr);

    const QString key;
    const QString def;

    QString value() const;
    void setValue(const QString& value) const { _option.setValue(value); }
    void reset() const { _option.reset(); }
    bool isStored() const { return _option.isStored(); }

    // The two places the Mac's own Terminal has lived.
    static const QString macTerminalPath;       // "/System/Applications/Utilities/Terminal.app"
    static const QString legacyMacTerminalPath; // "/Applications/Utilities/Terminal.app"
    static bool isBuiltInMacTerminal(const QString& value);

    // The terminal of this system: the Debian alternatives entry /usr/bin/x-terminal-emulator when
    // it is there, else the first of ARXConf::knownTerminals() on $PATH, else empty.
    static QString systemTerminal();

    // The same rule with the alternatives entry and the candidate executables given. The entry is
    // answered as it stands, not resolved: the alternatives system may point it elsewhere later,
    // and it is the command the user would type.
    static QString findSystemTerminal(const Path& alternativesEntry,
                                      const QStringList& executables);

private:
    static QString rewritten(const QString& value);

    ARXOption<QString> _option;
};
