#pragma once

#include "app/ARXToolbarConfiguration.h"
#include "ui/window/ARXToolBar.h"
#include "ui/window/ARXWindowState.h"

#include <QStringList>

// What the toolbar tests and pictures put on a bar.

// The identifier the bar knows an action's item by.
inline QString id(ARXActionType type) {
    return ARXAction::identifier(type);
}

// Everything the toolbar can show, in the allowed order, without spaces.
inline QStringList everyItem() {
    QStringList items;
    for (const QString& item : ARXToolbarConfiguration::allowed()) {
        if (ARXToolBar::canShow(item) && !ARXToolbarConfiguration::isSpace(item)) {
            items.append(item);
        }
    }
    return items;
}

inline ARXWindowState paneState() {
    ARXWindowState state;
    state.workspaceName = QStringLiteral("Photos");
    state.hasPane = true;
    state.paneNormal = true;
    state.viewType = ARXSpaceViewType::columns;
    state.canGoBack = true;
    return state;
}
