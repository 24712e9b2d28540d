#pragma once

#include "support/ARXTestEnvironment.h"

#include <QString>
#include <QtGlobal>

#include <gtest/gtest.h>

// Picture tests: they save pictures to look at into the folder ATRIUM_SCREENSHOT_DIR names, and
// skip in ordinary test runs, where it names none.
class ARXGalleryEnvironment : public ARXTestEnvironment {
protected:
    void SetUp() override {
        ARXTestEnvironment::SetUp();
        _dir = qEnvironmentVariable("ATRIUM_SCREENSHOT_DIR");
        if (_dir.isEmpty()) {
            GTEST_SKIP() << "ATRIUM_SCREENSHOT_DIR is not set";
        }
    }

    // The folder the pictures go to.
    const QString& galleryDir() const { return _dir; }

private:
    QString _dir;
};
