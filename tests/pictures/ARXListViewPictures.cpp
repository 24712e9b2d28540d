#include "app/ARXDataCenter.h"
#include "pictures/ARXPictureEnvironment.h"
#include "support/ARXFakeVolumes.h"
#include "ui/spaceviews/ARXSpaceListView.h"

#include <gtest/gtest.h>

#include <memory>

namespace {

using Column = ARXSpaceViewColumnId;

class ARXListViewPictures : public ARXPictureEnvironment {};

// A home-like folder in the list view at both row sizes, with a folder unfolded, a selection and
// the status bar.
TEST_F(ARXListViewPictures, AHomeLikeFolder) {
    ARXDataCenter::setVolumeReaderForTesting([] { return ARXVolumeList{ARXMakeVolume("/")}; });
    auto view = std::make_unique<ARXSpaceListView>();
    view->resize(900, 400);
    view->show();
    const Path home = ARXPath::join(root(), "homelike");
    for (const char* folder : {"Desktop", "Documents", "Downloads", "Music", "Pictures"}) {
        makeFolder(ARXPath::join(home, folder));
    }
    writeFile(ARXPath::join(home, "Documents/Budget 2024.ods"), std::string(20000, 'x'));
    writeFile(ARXPath::join(home, "Documents/Letter to the landlord about the heating.odt"), "x");
    writeFile(ARXPath::join(home, "notes.txt"), "Some notes");
    writeFile(ARXPath::join(home, "report.pdf"), std::string(300000, 'x'));
    writeFile(ARXPath::join(home, "Holiday photos from the summer of 2023 in the mountains.jpg"),
              std::string(2000000, 'x'));
    const ARXFileEntryRef entry = ARXFileEntry::create(home);
    entry->sortColumn = Column::name;
    entry->sortAscend = true;
    entry->sortFoldersOnTop = true;
    ASSERT_TRUE(entry->prepare(false));
    view->bindRoot(entry);
    view->setExpandedPaths({ARXPath::join(home, "Documents")});
    view->selectEntries({entry->find(ARXPath::join(home, "notes.txt"))});
    view->setBottomStatusVisible(true);
    view->setStatusText(QStringLiteral("1 of 9 selected"));
    for (const int lod : {0, 1}) {
        view->setLod(lod);
        flushEvents();
        const QString file = pictureDir() + QStringLiteral("/listview-lod%1.png").arg(lod);
        EXPECT_TRUE(view->grab().save(file)) << file.toStdString();
    }
}

} // namespace
