#include "app/ARXDataCenter.h"
#include "app/ARXToolbarConfiguration.h"
#include "pictures/ARXPictureEnvironment.h"
#include "support/ARXFakeVolumes.h"
#include "support/ARXToolBarItems.h"
#include "ui/window/ARXToolBar.h"
#include "ui/workspace/ARXAtriumViewController.h"
#include "ui/workspace/ARXLayoutsToolbarItem.h"

#include <QApplication>
#include <QMainWindow>
#include <QMenu>

#include <gtest/gtest.h>

namespace {

using T = ARXActionType;
namespace Configuration = ARXToolbarConfiguration;

// The bar in a window, at both icon sizes, on a light and a dark palette, with its menus, saved as
// pictures when ATRIUM_SCREENSHOT_DIR names a folder. Meant for a real display (Xvfb).
class ARXToolBarPictures : public ARXPictureEnvironment {
protected:
    void SetUp() override {
        ARXPictureEnvironment::SetUp();
        if (IsSkipped()) {
            return;
        }
        // As the program does outside a desktop session.
        if (QIcon::themeName().isEmpty() || QIcon::themeName() == QStringLiteral("hicolor")) {
            QIcon::setThemeName(QStringLiteral("Adwaita"));
        }
    }

    void shoot(QWidget& widget, const char* name) const {
        spin(200);
        EXPECT_TRUE(widget.grab().save(pictureDir() + QLatin1Char('/') + QLatin1String(name) +
                                       QStringLiteral(".png")));
    }

private:
};

TEST_F(ARXToolBarPictures, TheBarAndItsMenus) {
    ARXDataCenter::setVolumeReaderForTesting([] { return ARXVolumeList{ARXMakeVolume("/")}; });
    ARXAtriumViewController workspace;
    ARXAtriumData data;
    data.layoutId = qint64(ARXAtriumLayoutId::layout_3);
    workspace.build(QStringLiteral("Gallery"), data);

    QMainWindow window;
    auto* bar = new ARXToolBar(&window);
    window.addToolBar(bar);
    auto* content = new QWidget(&window);
    content->setMinimumHeight(80);
    window.setCentralWidget(content);
    bar->setController(&workspace);
    ARXWindowState state = paneState();
    state.workspaceName = QStringLiteral("My Workspace 2");
    state.sidebarVisible = true;
    bar->update(state);
    window.setGeometry(40, 40, 1100, 140);
    window.show();
    shoot(window, "toolbar-default");

    QStringList every = everyItem();
    every.insert(every.indexOf(id(T::WorkspaceName)), Configuration::flexibleSpace);
    Configuration::setItems(every);
    bar->update(state);
    shoot(window, "toolbar-every-item");
    bar->setUsesSmallIcons(true);
    shoot(window, "toolbar-every-item-small");
    bar->setUsesSmallIcons(false);

    state.paneNormal = false;
    bar->update(state);
    shoot(window, "toolbar-folder-not-shown");

    QPalette dark;
    dark.setColor(QPalette::Window, QColor(45, 45, 48));
    dark.setColor(QPalette::Button, QColor(45, 45, 48));
    for (auto role : {QPalette::WindowText, QPalette::ButtonText, QPalette::Text}) {
        dark.setColor(role, QColor(230, 230, 230));
        dark.setColor(QPalette::Disabled, role, QColor(120, 120, 120));
    }
    window.setPalette(dark);
    state.paneNormal = true;
    bar->update(state);
    shoot(window, "toolbar-dark");
    window.setPalette(QPalette());

    auto* layouts = qobject_cast<ARXLayoutsToolbarItem*>(bar->itemWidget(T::Layouts));
    ASSERT_TRUE(layouts);
    layouts->menu()->popup(layouts->mapToGlobal(QPoint(0, layouts->height())));
    spin(100);
    layouts->menu()->setActiveAction(layouts->actionFor(ARXAtriumLayoutId::layout_6));
    shoot(*layouts->menu(), "toolbar-layouts-menu");
    layouts->menu()->hide();

    bar->customize();
    auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
    ASSERT_TRUE(menu);
    shoot(*menu, "toolbar-customize-menu");
    menu->close();
}

} // namespace
