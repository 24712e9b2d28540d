#include "app/ARXConf.h"
#include "app/ARXDataCenter.h"
#include "pictures/ARXPictureEnvironment.h"
#include "support/ARXFakeVolumes.h"
#include "support/ARXTestEnvironment.h"
#include "ui/workspace/ARXAtriumViewController.h"
#include "ui/workspace/ARXLayoutsToolbarItem.h"

#include <QAction>
#include <QGuiApplication>
#include <QMenu>
#include <QProcess>
#include <QScreen>
#include <QToolBar>
#include <QVBoxLayout>

#include <gtest/gtest.h>

namespace {

// A workspace window with the layout chooser in its toolbar, switched through the twelve layouts
// by the chooser, with a picture of each (and of the chooser's menu) when ATRIUM_SCREENSHOT_DIR
// names a folder. Meant for a real display (Xvfb): the pictures are of the whole screen.
class ARXWorkspaceLayoutsPictures : public ARXPictureEnvironment {
protected:
    void SetUp() override {
        ARXPictureEnvironment::SetUp();
        if (IsSkipped()) {
            return;
        }
        ARXDataCenter::setVolumeReaderForTesting([] { return ARXVolumeList{ARXMakeVolume("/")}; });
        for (const char* name : {"Documents/report.odt", "Documents/notes.txt", "Music/song.ogg",
                                 "Pictures/holiday.jpg", "Projects/atrium/README.md"}) {
            writeFile(ARXPath::join(root(), name), "x");
        }
        ARXConf::settings_default_directory().setValue(ARXPath::toStoredText(root()));
    }

    // The whole screen as the X server has it, so that menus and borders are in the picture.
    void shoot(const QString& name) const {
        spin(400);
        const QString file = pictureDir() + QLatin1Char('/') + name + QStringLiteral(".png");
        if (QProcess::execute(QStringLiteral("import"),
                              {QStringLiteral("-window"), QStringLiteral("root"), file}) != 0) {
            EXPECT_TRUE(QGuiApplication::primaryScreen()->grabWindow(0).save(file));
        }
    }

private:
};

TEST_F(ARXWorkspaceLayoutsPictures, EveryLayoutFromTheChooser) {
    QWidget window;
    auto* box = new QVBoxLayout(&window);
    box->setContentsMargins(0, 0, 0, 0);
    box->setSpacing(0);
    auto* toolbar = new QToolBar(&window);
    auto* chooser = new ARXLayoutsToolbarItem(toolbar);
    toolbar->addWidget(chooser);
    box->addWidget(toolbar);
    auto* workspace = new ARXAtriumViewController(&window);
    box->addWidget(workspace, 1);
    ARXAtriumData data;
    data.layoutId = 0;
    data.sidebarWidth = 180;
    workspace->build(QStringLiteral("Gallery"), data);
    chooser->setController(workspace);
    window.setGeometry(40, 40, 1280, 800);
    window.show();
    spin(300);
    const char* folders[] = {"Documents", "Music", "Pictures", "Projects"};
    for (size_t i = 0; i < 4; ++i) {
        workspace->squares()[i]->openPath(ARXPath::join(root(), folders[i]));
    }

    for (ARXAtriumLayoutId id : ARXAtriumLayout::all()) {
        chooser->actionFor(id)->trigger();
        EXPECT_EQ(workspace->layout()->id, id);
        EXPECT_EQ(chooser->selectedId(), id);
        shoot(QStringLiteral("workspace-layout-%1").arg(int(id)));
    }
    chooser->actionFor(ARXAtriumLayoutId::layout_3)->trigger();
    workspace->moveFocus(workspace->squares()[0], ARXSpaceSquareViewMoveDirection::rightDown,
                         false);
    chooser->menu()->popup(chooser->mapToGlobal(QPoint(0, chooser->height())));
    shoot(QStringLiteral("workspace-chooser"));
    chooser->menu()->hide();
}

} // namespace
