#include "ui/spaceviews/ARXSpaceListView.h"

#include "app/ARXConf.h"
#include "app/ARXDataCenter.h"
#include "support/ARXFakeVolumes.h"
#include "support/ARXTestEnvironment.h"
#include "ui/spaceviews/ARXDateColumnDelegate.h"
#include "ui/spaceviews/ARXSpaceListModel.h"
#include "ui/spaceviews/ARXSpaceListOutlineView.h"

#include <QAction>
#include <QHeaderView>
#include <QMenu>
#include <QTest>

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>

namespace {

using Column = ARXSpaceViewColumnId;
using Names = std::vector<std::string>;

class ARXSpaceListViewTest : public ARXTestEnvironment {
protected:
    void SetUp() override {
        ARXTestEnvironment::SetUp();
        ARXDataCenter::setVolumeReaderForTesting([] { return ARXVolumeList{ARXMakeVolume("/")}; });
        for (const char* name : {"b.txt", "a.txt", "c.txt"}) {
            writeFile(at(name), "x");
        }
        writeFile(at("Folder/one.txt"), "1");
        writeFile(at("Folder/Sub/deep.txt"), "2");
        // Made after the private home exists: the view reads the settings at once.
        view = std::make_unique<ARXSpaceListView>();
        view->resize(900, 400);
        view->show();
        top = listed();
        view->bindRoot(top);
    }

    Path at(std::string_view relative) const {
        return ARXPath::join(ARXPath::join(root(), "pane"), relative);
    }

    // The pane's folder, listed, in name order A to Z with folders among the files.
    ARXFileEntryRef listed() const {
        ARXFileEntryRef entry = ARXFileEntry::create(ARXPath::join(root(), "pane"));
        entry->sortColumn = Column::name;
        entry->sortAscend = true;
        entry->sortFoldersOnTop = false;
        EXPECT_TRUE(entry->prepare(false));
        return entry;
    }

    Names rows(const QModelIndex& parent = {}) const {
        Names names;
        for (int row = 0; row < model().rowCount(parent); ++row) {
            names.push_back(model().index(row, 0, parent).data().toString().toStdString());
        }
        return names;
    }

    QStringList headerTitles() const {
        QStringList titles;
        for (int section = 0; section < model().columnCount(); ++section) {
            titles.append(model().headerData(section, Qt::Horizontal).toString());
        }
        return titles;
    }

    QAction* menuAction(const QString& text) const {
        for (QAction* action : view->headerMenu()->actions()) {
            if (action->text() == text) {
                return action;
            }
        }
        ADD_FAILURE() << "no menu item " << text.toStdString();
        return nullptr;
    }

    ARXSpaceListModel& model() const { return *view->model(); }
    QHeaderView* header() const { return view->outlineView()->header(); }

    void TearDown() override {
        view.reset();
        ARXTestEnvironment::TearDown();
    }

    std::unique_ptr<ARXSpaceListView> view;
    ARXFileEntryRef top;
};

TEST_F(ARXSpaceListViewTest, BindingShowsTheFolderWithTheDefaultColumns) {
    EXPECT_EQ(rows(), (Names{"a.txt", "b.txt", "c.txt", "Folder"}));
    EXPECT_EQ(headerTitles(), (QStringList{"Name", "Date Modified", "Size", "Kind"}));
    EXPECT_FALSE(view->isBottomStatusVisible());
    // The date section paints fitted dates; the others are plain.
    EXPECT_NE(qobject_cast<ARXDateColumnDelegate*>(view->outlineView()->itemDelegateForColumn(1)),
              nullptr);
    EXPECT_EQ(view->outlineView()->itemDelegateForColumn(2), nullptr);
    // The name column takes the room the others leave, less a margin.
    const int others =
        header()->sectionSize(1) + header()->sectionSize(2) + header()->sectionSize(3);
    EXPECT_EQ(header()->sectionSize(0),
              std::max(view->outlineView()->viewport()->width() - others - 12, 124));
    EXPECT_EQ(header()->sectionSize(1), 124);
    EXPECT_EQ(header()->sectionSize(2), 80);
    // The sort indicator shows the root's order.
    EXPECT_EQ(header()->sortIndicatorSection(), 0);
    EXPECT_EQ(header()->sortIndicatorOrder(), Qt::AscendingOrder);
    // The day names roll over at the next midnight.
    EXPECT_TRUE(view->dayChangeTimer().isActive());
    EXPECT_LE(view->dayChangeTimer().remainingTime(), 86401 * 1000);

    // The list has no column for the name or the last opening, whatever the stored list says;
    // moving a date column to another section moves its delegate along.
    view->setVisibleColumns(QStringList{"Date Last Opened", "Name", "Size", "Date Added", "Bogus"});
    EXPECT_EQ(headerTitles(), (QStringList{"Name", "Size", "Date Added"}));
    EXPECT_EQ(view->outlineView()->itemDelegateForColumn(1), nullptr);
    EXPECT_NE(view->outlineView()->itemDelegateForColumn(2), nullptr);
    EXPECT_EQ(view->outlineView()->itemDelegateForColumn(3), nullptr);
    view->setVisibleColumns(QStringList{});
    EXPECT_EQ(headerTitles(), (QStringList{"Name"}));
    EXPECT_EQ(header()->sectionSize(0), view->outlineView()->viewport()->width() - 12);
}

TEST_F(ARXSpaceListViewTest, HeaderMenuShowsHidesAndSavesColumns) {
    ASSERT_EQ(view->headerMenu()->actions().size(), 8 + 3); // columns, separator, two commands
    QAction* added = menuAction("Date Added");
    ASSERT_TRUE(added);
    EXPECT_FALSE(added->isChecked());
    EXPECT_TRUE(menuAction("Size")->isChecked());

    added->trigger();
    ASSERT_TRUE(waitUntil([&] { return model().columnCount() == 5; }));
    EXPECT_EQ(headerTitles(), (QStringList{"Name", "Date Modified", "Size", "Kind", "Date Added"}));
    EXPECT_TRUE(menuAction("Date Added")->isChecked());
    menuAction("Size")->trigger();
    ASSERT_TRUE(waitUntil([&] { return model().columnCount() == 4; }));
    EXPECT_EQ(view->visibleColumns(), (QStringList{"Date Modified", "Kind", "Date Added"}));

    // Another pane follows the default until the list is saved as the default.
    ARXSpaceListView other;
    other.bindRoot(listed());
    EXPECT_EQ(other.model()->columnCount(), 4);
    EXPECT_EQ(other.model()->columnId(2), Column::size);
    menuAction("Save as Default")->trigger();
    EXPECT_EQ(view->visibleColumns(), std::nullopt);
    EXPECT_EQ(ARXConf::settings_spaceview_columns().value(),
              (QStringList{"Date Modified", "Kind", "Date Added"}));
    ASSERT_TRUE(waitUntil([&] { return other.model()->columnId(3) == Column::added; }));
    EXPECT_EQ(other.model()->columnId(2), Column::kind);

    // Restore drops a private list again.
    view->setVisibleColumns(QStringList{"Size"});
    menuAction("Restore from Default")->trigger();
    EXPECT_EQ(view->visibleColumns(), std::nullopt);
    EXPECT_EQ(model().columnCount(), 4);
}

TEST_F(ARXSpaceListViewTest, HeaderClickSortsTheEntriesAndKeepsTheSelection) {
    const ARXFileEntryRef c = top->find(at("c.txt"));
    view->selectEntries({c});
    ASSERT_EQ(view->selectedEntries(), ARXFileEntryList{c});

    // A click on the name header flips the order.
    QTest::mouseClick(header()->viewport(), Qt::LeftButton, {},
                      QPoint(header()->sectionViewportPosition(0) + 20, header()->height() / 2));
    EXPECT_EQ(top->sortColumn, Column::name);
    EXPECT_FALSE(top->sortAscend);
    EXPECT_EQ(rows(), (Names{"Folder", "c.txt", "b.txt", "a.txt"}));
    EXPECT_EQ(view->selectedEntries(), ARXFileEntryList{c});
    EXPECT_EQ(header()->sortIndicatorOrder(), Qt::DescendingOrder);

    // A click on another header sorts by that column; unfolded folders follow the root.
    ASSERT_TRUE(view->expandEntry(top->find(at("Folder"))));
    const int kind = model().section(Column::kind);
    QTest::mouseClick(header()->viewport(), Qt::LeftButton, {},
                      QPoint(header()->sectionViewportPosition(kind) + 20, header()->height() / 2));
    EXPECT_EQ(top->sortColumn, Column::kind);
    EXPECT_EQ(header()->sortIndicatorSection(), kind);
    EXPECT_EQ(top->find(at("Folder"))->sortColumn, Column::kind);
    EXPECT_EQ(view->selectedEntries(), ARXFileEntryList{c});
    EXPECT_TRUE(model().isConsistent()) << model().inconsistency().toStdString();
    EXPECT_EQ(view->expandedPaths(), std::vector<Path>{at("Folder")});
}

TEST_F(ARXSpaceListViewTest, ExpandingListsChildrenAndPathsRoundTrip) {
    const ARXFileEntryRef folder = top->find(at("Folder"));
    EXPECT_TRUE(view->expandEntry(top));
    ASSERT_TRUE(view->expandEntry(folder));
    const QModelIndex index = model().indexOf(folder);
    EXPECT_EQ(rows(index), (Names{"one.txt", "Sub"}));
    EXPECT_EQ(view->expandedPaths(), std::vector<Path>{at("Folder")});
    EXPECT_FALSE(view->expandEntry(top->find(at("a.txt"))));

    // A path deep inside unfolds every folder on the way.
    ARXSpaceListView other;
    const ARXFileEntryRef otherTop = listed();
    other.bindRoot(otherTop);
    other.setExpandedPaths({at("Folder/Sub")});
    EXPECT_EQ(other.expandedPaths(), (std::vector<Path>{at("Folder"), at("Folder/Sub")}));
    const QModelIndex sub = other.model()->indexOf(otherTop->find(at("Folder/Sub")));
    ASSERT_TRUE(sub.isValid());
    EXPECT_EQ(other.model()->rowCount(sub), 1);
}

TEST_F(ARXSpaceListViewTest, WidthsRoundTripAndTheNameKeepsItsMinimum) {
    view->setColumnWidths({{"Size", 150.0}, {"Name", 300.0}});
    EXPECT_EQ(header()->sectionSize(model().section(Column::size)), 150);
    EXPECT_EQ(header()->sectionSize(0), 300);
    EXPECT_EQ(header()->sectionSize(model().section(Column::kind)), 124);

    // A user's resize is remembered by the column's stored string.
    header()->resizeSection(model().section(Column::kind), 200);
    const QMap<QString, double> widths = view->storedColumnWidths();
    EXPECT_EQ(widths.value("Kind"), 200.0);
    EXPECT_EQ(widths.value("Size"), 150.0);

    ARXSpaceListView other;
    other.bindRoot(listed());
    other.setColumnWidths(widths);
    EXPECT_EQ(other.outlineView()->header()->sectionSize(other.model()->section(Column::kind)),
              200);
    EXPECT_EQ(other.storedColumnWidths(), widths);

    header()->resizeSection(0, 40);
    EXPECT_EQ(header()->sectionSize(0), 124);
}

TEST_F(ARXSpaceListViewTest, LevelOfDetailSetsIconsAndRowHeights) {
    EXPECT_EQ(view->lod(), 0);
    EXPECT_EQ(view->outlineView()->iconSize(), QSize(16, 16));
    const int small = view->outlineView()->rowHeight();
    EXPECT_GE(small, 17);
    view->setLod(1);
    EXPECT_EQ(view->outlineView()->iconSize(), QSize(32, 32));
    EXPECT_GE(view->outlineView()->rowHeight(), 34);
    EXPECT_GT(view->outlineView()->rowHeight(), small);
}

TEST_F(ARXSpaceListViewTest, RenameStartsOnlyOnRequest) {
    const ARXFileEntryRef a = top->find(at("a.txt"));
    const QModelIndex index = model().indexOf(a);
    QTest::mouseDClick(view->outlineView()->viewport(), Qt::LeftButton, {},
                       view->outlineView()->visualRect(index).center());
    EXPECT_EQ(view->outlineView()->indexWidget(index), nullptr);
    EXPECT_TRUE(view->beginEditingName(a));
    EXPECT_NE(view->outlineView()->indexWidget(index), nullptr);
}

} // namespace
