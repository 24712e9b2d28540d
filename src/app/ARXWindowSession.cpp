#include "app/ARXWindowSession.h"

#include "app/ARXConf.h"

#include <QSet>

namespace ARXWindowSession {

void rememberLastWindow(const std::optional<ARXCloseTabAction>& pending,
                        const std::optional<QString>& lastClosedName) {
    ARXConf::cached_open_atrium_names().reset();
    ARXConf::cached_open_atrium_tab_names().reset();
    if (pending && !pending->tabs().isEmpty() && pending->validated() &&
        (!lastClosedName || pending->tabs().contains(*lastClosedName))) {
        ARXConf::cached_open_atrium_tab_names().setValue({pending->tabs()});
        return;
    }
    if (lastClosedName) {
        ARXConf::cached_open_atrium_names().setValue({*lastClosedName});
    }
}

void rememberOpenWindows(const QList<QStringList>& windows) {
    if (windows.isEmpty()) {
        return;
    }
    QSet<QString> handled;
    QStringList names;
    QList<QStringList> groups;
    for (const QStringList& tabs : windows) {
        if (tabs.isEmpty() || handled.contains(tabs.front())) {
            continue;
        }
        if (tabs.size() > 1) {
            groups.append(tabs);
            for (const QString& tab : tabs) {
                handled.insert(tab);
            }
        } else {
            names.append(tabs.front());
            handled.insert(tabs.front());
        }
    }
    ARXConf::cached_open_atrium_tab_names().setValue(groups);
    ARXConf::cached_open_atrium_names().setValue(names);
}

} // namespace ARXWindowSession
