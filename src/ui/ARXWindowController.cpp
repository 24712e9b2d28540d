#include "ui/ARXWindowController.h"

#include <QGuiApplication>
#include <QScreen>
#include <QWidget>

ARXWindowController::ARXWindowController(QObject* parent) : QObject(parent) {}

void ARXWindowController::showWindow() {
    QWidget* top = window();
    if (!top) {
        return;
    }
    if (top->isMinimized()) {
        top->showNormal();
    } else {
        top->show();
    }
    if (_firstVisible) {
        onFirstVisible();
    }
    top->raise();
    top->activateWindow();
}

void ARXWindowController::onFirstVisible() {
    _firstVisible = false;
    QWidget* top = window();
    if (_alignCenter && top) {
        QScreen* screen = top->screen() ? top->screen() : QGuiApplication::primaryScreen();
        if (screen) {
            QRect frame = top->frameGeometry();
            frame.moveCenter(screen->availableGeometry().center());
            top->move(frame.topLeft());
        }
    }
}

void ARXWindowController::close() {
    deleteLater();
}
