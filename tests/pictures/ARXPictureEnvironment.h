#pragma once

#include "support/ARXTestEnvironment.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QEvent>
#include <QString>
#include <QtGlobal>

#include <gtest/gtest.h>

// Pictures to look at, not tests: scripts/screenshots runs them (atrium_pictures, which CTest never
// runs) and names the folder they go to in ATRIUM_SCREENSHOT_DIR; without it they skip.
class ARXPictureEnvironment : public ARXTestEnvironment {
protected:
    void SetUp() override {
        ARXTestEnvironment::SetUp();
        _dir = qEnvironmentVariable("ATRIUM_SCREENSHOT_DIR");
        if (_dir.isEmpty()) {
            GTEST_SKIP() << "ATRIUM_SCREENSHOT_DIR is not set";
        }
    }

    // Runs the event loop for a while before a picture: fades and animations tell no end.
    static void spin(int ms) {
        QElapsedTimer timer;
        timer.start();
        while (timer.elapsed() < ms) {
            QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
            QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        }
    }

    // The folder the pictures go to.
    const QString& pictureDir() const { return _dir; }

private:
    QString _dir;
};
