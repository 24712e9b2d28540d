#include "ui/spaceviews/ARXSpaceListModel.h"

#include "app/ARXDataCenter.h"
#include "model/ARXFileEntryRemovals.h"
#include "support/ARXFakeVolumes.h"
#include "support/ARXTestEnvironment.h"
#include "support/ARXTestImages.h"
#include "ui/spaceviews/ARXDateText.h"

#include <QAbstractItemModelTester>
#include <QBrush>
#include <QItemSelectionModel>
#include <QSignalSpy>
#include <QTreeView>

#include <gtest/gtest.h>

#include <fcntl.h>
#include <set>
#include <sys/stat.h>
#include <unistd.h>

namespace {

using Names = std::vector<std::string>;
using Ranges = std::vector<std::pair<int, int>>;
using Column = ARXSpaceViewColumnId;

constexpr double kNow = 1710518400; // 2024-03-15 16:00 UTC

class ARXSpaceListModelTest : public ARXTestEnvironment {
protected:
    void SetUp() override {
        ARXTestEnvironment::SetUp();
        // Path comparisons follow "/" alone, not this machine's mounts.
        ARXDataCenter::setVolumeReaderForTesting([] { return ARXVolumeList{ARXMakeVolume("/")}; });
    }

    Path at(std::string_view relative) const { return ARXPath::join(root(), relative); }

    // A listed folder in name order, A to Z, whatever the default order says.
    ARXFileEntryRef listed(std::string_view relative, bool hiddenVisible = false) const {
        ARXFileEntryRef entry = ARXFileEntry::create(at(relative), nullptr, false, hiddenVisible);
        entry->sortColumn = Column::name;
        entry->sortAscend = true;
        entry->sortFoldersOnTop = false;
        EXPECT_TRUE(entry->prepare(false));
        return entry;
    }

    // Shows the tree with the tester watching every signal from then on; the tester reads every
    // folder it can unfold, as a view expanding everything would.
    void show(const ARXFileEntryRef& top) {
        model.setRoot(top);
        tester = std::make_unique<QAbstractItemModelTester>(
            &model, QAbstractItemModelTester::FailureReportingMode::Fatal);
        expectConsistent();
    }

    void expectConsistent() const {
        EXPECT_TRUE(model.isConsistent()) << model.inconsistency().toStdString();
    }

    Names rows(const QModelIndex& parent = {}) const {
        Names names;
        for (int row = 0; row < model.rowCount(parent); ++row) {
            names.push_back(model.index(row, 0, parent).data().toString().toStdString());
        }
        return names;
    }

    QModelIndex indexAt(const ARXFileEntryRef& top, std::string_view relative, int column = 0) {
        return model.indexOf(top->find(at(relative)), column);
    }

    static Ranges ranges(const QSignalSpy& spy) {
        Ranges result;
        for (const QList<QVariant>& call : spy) {
            result.emplace_back(call.at(1).toInt(), call.at(2).toInt());
        }
        return result;
    }

    static void setModified(const Path& path, double seconds) {
        const timespec times[2] = {{time_t(seconds), 0}, {time_t(seconds), 0}};
        ASSERT_EQ(::utimensat(AT_FDCWD, path.c_str(), times, AT_SYMLINK_NOFOLLOW), 0) << path;
    }

    ARXSpaceListModel model;
    std::unique_ptr<QAbstractItemModelTester> tester;
};

TEST_F(ARXSpaceListModelTest, ReadsAFolderOnlyWhenItsRowsAreAskedFor) {
    writeFile(at("top/a.txt"), "a");
    writeFile(at("top/dir/x"), "x");
    writeFile(at("top/dir/y"), "y");
    ASSERT_EQ(::symlink(at("top/dir").c_str(), at("top/link").c_str()), 0);
    const ARXFileEntryRef top = listed("top");
    model.setRoot(top);
    EXPECT_EQ(rows(), (Names{"a.txt", "dir", "link"}));

    const QModelIndex dir = indexAt(top, "top/dir");
    EXPECT_TRUE(model.hasChildren(dir));
    EXPECT_TRUE(model.canFetchMore(dir));
    EXPECT_EQ(model.rowCount(dir), 0);
    EXPECT_FALSE(top->find(at("top/dir"))->expanded);
    // A link to a folder opens as that folder; it does not unfold in place.
    EXPECT_FALSE(model.hasChildren(indexAt(top, "top/link")));
    EXPECT_TRUE(model.flags(indexAt(top, "top/link")).testFlag(Qt::ItemNeverHasChildren));

    // A change inside a folder the tree has listed but the view has not opened tells no view.
    const ARXFileEntryRef dirEntry = top->find(at("top/dir"));
    ASSERT_TRUE(dirEntry->prepare(false));
    writeFile(at("top/dir/w"), "w");
    const ARXFileEntryRef w = top->addChild(at("top/dir/w"));
    ASSERT_TRUE(w);
    QSignalSpy inserted(&model, &QAbstractItemModel::rowsInserted);
    model.entryInserted(w);
    EXPECT_EQ(inserted.count(), 0);

    model.fetchMore(dir);
    EXPECT_EQ(ranges(inserted), (Ranges{{0, 2}}));
    EXPECT_EQ(rows(dir), (Names{"w", "x", "y"}));
    EXPECT_FALSE(model.canFetchMore(dir));
    EXPECT_EQ(model.entryAt(model.index(1, 0, dir)), top->find(at("top/dir/x")));
    EXPECT_EQ(model.parent(model.index(1, 0, dir)), dir);

    show(top);
    // A reload reads the rows again from the tree; opened folders stay open to the model.
    writeFile(at("top/b.txt"), "b");
    ASSERT_TRUE(top->addChild(at("top/b.txt")));
    QSignalSpy reset(&model, &QAbstractItemModel::modelReset);
    model.reload();
    EXPECT_EQ(reset.count(), 1);
    expectConsistent();
    EXPECT_EQ(rows(), (Names{"a.txt", "b.txt", "dir", "link"}));
    EXPECT_FALSE(model.canFetchMore(indexAt(top, "top/dir")));
    EXPECT_EQ(rows(indexAt(top, "top/dir")), (Names{"w", "x", "y"}));
}

TEST_F(ARXSpaceListModelTest, AFolderThatCannotBeListedShowsNoRows) {
    writeFile(at("top/locked/inside.txt"), "x");
    writeFile(at("top/open/file.txt"), "x");
    ASSERT_EQ(::chmod(at("top/locked").c_str(), 0), 0);
    const auto check = [&] {
        // Built on this thread, which is the one that cannot read the folder.
        ARXSpaceListModel local;
        local.setIconProvider([](const ARXFileEntry&) { return QIcon(); });
        const ARXFileEntryRef top = listed("top");
        local.setRoot(top);
        ARXFileEntryList failed;
        QObject::connect(&local, &ARXSpaceListModel::fetchFailed,
                         [&](const ARXFileEntryRef& entry) { failed.push_back(entry); });
        const ARXFileEntryRef locked = top->find(at("top/locked"));
        EXPECT_TRUE(local.hasChildren(local.indexOf(locked))); // not tried yet

        QAbstractItemModelTester watch(&local,
                                       QAbstractItemModelTester::FailureReportingMode::Fatal);
        EXPECT_EQ(failed, ARXFileEntryList{locked});
        const QModelIndex lockedIndex = local.indexOf(locked);
        EXPECT_EQ(local.rowCount(lockedIndex), 0);
        EXPECT_FALSE(local.hasChildren(lockedIndex));
        EXPECT_FALSE(local.canFetchMore(lockedIndex)); // not asked again on every paint
        EXPECT_EQ(local.rowCount(local.indexOf(top->find(at("top/open")))), 1);
        EXPECT_TRUE(local.isConsistent()) << local.inconsistency().toStdString();
    };
    if (::geteuid() != 0) {
        check();
    } else if (!runWithoutOverridingPermissions(check)) {
        GTEST_SKIP() << "running as root without a way to give up CAP_DAC_READ_SEARCH";
    }
}

TEST_F(ARXSpaceListModelTest, InsertsOneRangePerContiguousRun) {
    for (const char* name : {"a", "c", "e", "g"}) {
        writeFile(at(std::string("top/") + name), "");
    }
    const ARXFileEntryRef top = listed("top");
    show(top);
    // The tester checks that each insertion adds exactly its rows where it says.
    QSignalSpy inserted(&model, &QAbstractItemModel::rowsInserted);
    const auto add = [&](std::initializer_list<const char*> names) {
        ARXFileEntryList added;
        for (const char* name : names) {
            writeFile(at(std::string("top/") + name), "");
            added.push_back(top->addChild(at(std::string("top/") + name)));
        }
        return added;
    };

    model.entriesInserted(add({"f", "b", "d"}));
    EXPECT_EQ(ranges(inserted), (Ranges{{1, 1}, {3, 3}, {5, 5}}));
    expectConsistent();

    inserted.clear();
    model.entriesInserted(add({"h", "i", "j"}));
    EXPECT_EQ(ranges(inserted), (Ranges{{7, 9}}));
    expectConsistent();

    inserted.clear();
    const ARXFileEntryList k = add({"k"});
    testing::internal::CaptureStderr();
    model.entryInserted(k.front());
    model.entryInserted(k.front()); // told twice: one row all the same
    const std::string log = testing::internal::GetCapturedStderr();
    EXPECT_NE(log.find("listview.inserted: [10]" + at("top/k")), std::string::npos) << log;
    EXPECT_EQ(ranges(inserted), (Ranges{{10, 10}}));
    EXPECT_EQ(rows(), (Names{"a", "b", "c", "d", "e", "f", "g", "h", "i", "j", "k"}));
    expectConsistent();

    // Placeholders of a copy appear at once, at half strength, and cannot be renamed yet.
    inserted.clear();
    writeFile(at("elsewhere/b2"), "source");
    const ARXFileEntryList placeholders =
        top->addPlaceholders({at("elsewhere/b2")}, ARXFileOperationType::copy);
    model.entriesInserted(placeholders);
    EXPECT_EQ(ranges(inserted), (Ranges{{2, 2}}));
    const QModelIndex placeholder = model.indexOf(placeholders.front());
    EXPECT_TRUE(placeholder.data(ARXSpaceListModel::DimmedRole).toBool());
    EXPECT_FALSE(model.flags(placeholder).testFlag(Qt::ItemIsEditable));
    EXPECT_FALSE(ARXSpaceListModel::defaultIcon(*placeholders.front()).isNull());
    expectConsistent();
}

TEST_F(ARXSpaceListModelTest, AnInsertThatReSortedTheFolderMovesTheOtherRowsToo) {
    writeFile(at("top/a"), "");
    writeFile(at("top/b"), "");
    writeFile(at("top/c"), "");
    setModified(at("top/a"), 100);
    setModified(at("top/b"), 200);
    setModified(at("top/c"), 300);
    const ARXFileEntryRef top = listed("top");
    top->sort(Column::modified, false, false);
    show(top);
    EXPECT_EQ(rows(), (Names{"c", "b", "a"}));

    // "a" is written to: its row shows the new date but stays where it is...
    setModified(at("top/a"), 400);
    const ARXFileEntryRef a = top->find(at("top/a"));
    ASSERT_TRUE(a->refresh());
    model.entryRefreshed(a);
    expectConsistent();
    // ...until a new file makes the folder sort again.
    writeFile(at("top/d"), "");
    setModified(at("top/d"), 250);
    QSignalSpy inserted(&model, &QAbstractItemModel::rowsInserted);
    QSignalSpy layout(&model, &QAbstractItemModel::layoutChanged);
    model.entryInserted(top->addChild(at("top/d")));
    EXPECT_EQ(inserted.count(), 1);
    EXPECT_EQ(layout.count(), 1);
    EXPECT_EQ(rows(), (Names{"a", "c", "d", "b"}));
    expectConsistent();
}

TEST_F(ARXSpaceListModelTest, RemovesBatchesAcrossTwoFoldersWhileTheRowsAreStillThere) {
    for (const char* name : {"a", "b", "c", "d", "e", "f"}) {
        writeFile(at(std::string("top/one/") + name), "");
    }
    for (const char* name : {"p", "q", "r", "s"}) {
        writeFile(at(std::string("top/two/") + name), "");
    }
    const ARXFileEntryRef top = listed("top");
    show(top);
    const QPersistentModelIndex d = indexAt(top, "top/one/d");
    ASSERT_TRUE(d.isValid());

    ARXFileEntryRemovals removals;
    std::vector<Path> paths;
    for (const char* relative : {"top/one/b", "top/one/c", "top/one/e", "top/two/p", "top/two/s"}) {
        removals.add(top->find(at(relative)));
        paths.push_back(at(relative));
    }
    ASSERT_EQ(top->removePaths(paths), 5u);

    std::vector<std::tuple<std::string, int, int>> removed;
    QObject::connect(&model, &QAbstractItemModel::rowsAboutToBeRemoved,
                     [&](const QModelIndex& parent, int first, int last) {
                         // Still there: the first row going is one of the removed entries.
                         const ARXFileEntryRef going = model.entryAt(model.index(first, 0, parent));
                         EXPECT_TRUE(going && !top->find(going->path())) << first;
                         removed.emplace_back(model.entryAt(parent)->path(), first, last);
                     });
    model.entriesRemoved(removals);
    const std::vector<std::tuple<std::string, int, int>> expected{
        {at("top/one"), 4, 4}, {at("top/one"), 1, 2}, {at("top/two"), 3, 3}, {at("top/two"), 0, 0}};
    EXPECT_EQ(removed, expected);
    EXPECT_EQ(rows(indexAt(top, "top/one")), (Names{"a", "d", "f"}));
    EXPECT_EQ(rows(indexAt(top, "top/two")), (Names{"q", "r"}));
    EXPECT_EQ(d.row(), 1);
    EXPECT_EQ(model.entryAt(d), top->find(at("top/one/d")));
    expectConsistent();
}

TEST_F(ARXSpaceListModelTest, ARemovedFolderTakesItsOpenedRowsWithIt) {
    writeFile(at("top/dir/inner/deep"), "");
    writeFile(at("top/file"), "");
    const ARXFileEntryRef top = listed("top");
    show(top);
    const QPersistentModelIndex deep = indexAt(top, "top/dir/inner/deep");
    ASSERT_TRUE(deep.isValid());

    const ARXFileEntryRef dir = top->find(at("top/dir"));
    ASSERT_EQ(top->removePaths({at("top/dir")}), 1u);
    testing::internal::CaptureStderr();
    model.entryRemoved(dir, 0);
    const std::string log = testing::internal::GetCapturedStderr();
    EXPECT_NE(log.find("listview.removed: [0]" + at("top/dir")), std::string::npos) << log;
    EXPECT_FALSE(deep.isValid());
    EXPECT_EQ(rows(), (Names{"file"}));
    expectConsistent();
    // A removal told for an entry that is not a row changes nothing.
    model.entryRemoved(dir, 0);
    expectConsistent();
}

TEST_F(ARXSpaceListModelTest, ARefreshShowsTheNewFactsOfOneRow) {
    writeFile(at("top/a.txt"), "hello");
    writeFile(at("top/b.txt"), "b");
    const ARXFileEntryRef top = listed("top");
    model.setColumns({Column::size, Column::kind});
    show(top);
    const ARXFileEntryRef a = top->find(at("top/a.txt"));
    EXPECT_EQ(indexAt(top, "top/a.txt", 1).data().toString(), QStringLiteral("5 B"));

    int icons = 0;
    model.setIconProvider([&](const ARXFileEntry&) {
        ++icons;
        return QIcon();
    });
    indexAt(top, "top/a.txt").data(Qt::DecorationRole);
    indexAt(top, "top/a.txt").data(Qt::DecorationRole);
    EXPECT_EQ(icons, 1); // looked up once per row

    writeFile(at("top/a.txt"), "hello world!");
    setModified(at("top/a.txt"), kNow);
    ASSERT_TRUE(a->refresh());
    QSignalSpy changed(&model, &QAbstractItemModel::dataChanged);
    testing::internal::CaptureStderr();
    model.entryRefreshed(a);
    const std::string log = testing::internal::GetCapturedStderr();
    EXPECT_NE(log.find("listview.refresh: " + at("top/a.txt")), std::string::npos) << log;
    ASSERT_EQ(changed.count(), 1);
    EXPECT_EQ(changed.at(0).at(0).toModelIndex(), indexAt(top, "top/a.txt", 0));
    EXPECT_EQ(changed.at(0).at(1).toModelIndex(), indexAt(top, "top/a.txt", 2));
    EXPECT_EQ(indexAt(top, "top/a.txt", 1).data().toString(), QStringLiteral("12 B"));
    indexAt(top, "top/a.txt").data(Qt::DecorationRole);
    EXPECT_EQ(icons, 2); // and again after the refresh

    // Gone from disk: the row stays until it is removed, at half strength and not editable.
    ASSERT_EQ(::unlink(at("top/a.txt").c_str()), 0);
    EXPECT_FALSE(a->refresh());
    model.entryRefreshed(a);
    const QModelIndex gone = indexAt(top, "top/a.txt");
    EXPECT_TRUE(gone.data(ARXSpaceListModel::DimmedRole).toBool());
    EXPECT_NEAR(gone.data(Qt::ForegroundRole).value<QColor>().alphaF(), 0.5, 0.01);
    EXPECT_TRUE(gone.data(Qt::ForegroundRole).canConvert<QBrush>()); // what delegates read
    EXPECT_FALSE(model.flags(gone).testFlag(Qt::ItemIsEditable));
    EXPECT_FALSE(indexAt(top, "top/b.txt").data(Qt::ForegroundRole).isValid());
    expectConsistent();
}

TEST_F(ARXSpaceListModelTest, ShowsTheTextOfEveryColumn) {
    writeFile(at("top/note.txt"), "hello");
    writeFile(at("top/dir/x"), "");
    writeFile(at("top/.secret"), "");
    writeFile(at("top/pic.png"), ARXImageBytes(2, 3));
    setModified(at("top/note.txt"), kNow - 5 * 86400);

    const ARXFileEntryRef top = listed("top", true);
    model.setDateText(
        std::make_unique<ARXDateText>(QStringLiteral("en_US"), "UTC", [] { return kNow; }));
    model.setColumns({Column::modified, Column::size, Column::kind, Column::lastOpened,
                      Column::added, Column::created, Column::tags, Column::dimensions,
                      Column::duration, Column::name, Column::size});
    show(top);
    ASSERT_EQ(model.columnCount(), 10);
    EXPECT_EQ(model.headerData(9, Qt::Horizontal, ARXSpaceListModel::ColumnIdRole).toInt(),
              int(Column::duration));

    const ARXFileEntryRef note = top->find(at("top/note.txt"));
    note->tags = QStringList{QStringLiteral("Red"), QStringLiteral("Work")};
    const auto cell = [&](std::string_view relative, Column column, int role = Qt::DisplayRole) {
        return indexAt(top, relative, model.section(column)).data(role);
    };
    EXPECT_EQ(cell("top/note.txt", Column::name).toString(), QStringLiteral("note.txt"));
    EXPECT_EQ(cell("top/note.txt", Column::modified, ARXSpaceListModel::DateRole).toDouble(),
              kNow - 5 * 86400);
    EXPECT_TRUE(cell("top/note.txt", Column::modified).toString().startsWith(u"Mar 10, 2024"));
    EXPECT_EQ(cell("top/note.txt", Column::created, ARXSpaceListModel::DateRole).toDouble(),
              *note->creationDate);
    EXPECT_EQ(cell("top/note.txt", Column::size).toString(), QStringLiteral("5 B"));
    EXPECT_EQ(cell("top/note.txt", Column::tags).toString(), QStringLiteral("Red, Work"));
    EXPECT_EQ(cell("top/pic.png", Column::dimensions).toString(), QStringLiteral("2×3"));

    // Hidden items show at half strength.
    EXPECT_TRUE(cell("top/.secret", Column::name, ARXSpaceListModel::DimmedRole).toBool());
    EXPECT_NEAR(cell("top/.secret", Column::size, Qt::ForegroundRole).value<QColor>().alphaF(), 0.5,
                0.01);

    // A folder's size is "--" until something computes it.
    EXPECT_EQ(cell("top/dir", Column::size).toString(), QStringLiteral("--"));
    model.setFolderSizeProvider([](const ARXFileEntry& entry) -> std::optional<uint64_t> {
        return entry.name() == "dir" ? std::optional<uint64_t>(12345) : std::nullopt;
    });
    QSignalSpy changed(&model, &QAbstractItemModel::dataChanged);
    model.folderSizeChanged(top->find(at("top/dir")));
    ASSERT_EQ(changed.count(), 1);
    EXPECT_EQ(changed.at(0).at(0).toModelIndex(), indexAt(top, "top/dir", 2));
    EXPECT_EQ(cell("top/dir", Column::size).toString(), QStringLiteral("12 KB"));
    expectConsistent();
}

TEST_F(ARXSpaceListModelTest, NamesThatAreNotUtf8OrHoldLineBreaksShowSafely) {
    writeFile(at("top/bad\xff\xfe.txt"), "");
    writeFile(at("top/two\nlines"), "");
    writeFile(at("top/cr\r\nlf"), "");
    const ARXFileEntryRef top = listed("top");
    model.setColumns({Column::kind, Column::size});
    show(top);
    const QModelIndex bad = indexAt(top, "top/bad\xff\xfe.txt");
    EXPECT_EQ(bad.data().toString(), QStringLiteral("bad\uFFFD\uFFFD.txt"));
    EXPECT_EQ(bad.data(Qt::ToolTipRole).toString(), QStringLiteral("bad\uFFFD\uFFFD.txt"));
    EXPECT_EQ(indexAt(top, "top/two\nlines").data().toString(), QStringLiteral("two?lines"));
    EXPECT_EQ(indexAt(top, "top/cr\r\nlf").data().toString(), QStringLiteral("cr??lf"));
    // The editor gets the real name, line feed and all.
    EXPECT_EQ(indexAt(top, "top/two\nlines").data(Qt::EditRole).toString(),
              QStringLiteral("two\nlines"));
    EXPECT_FALSE(indexAt(top, "top/bad\xff\xfe.txt", 1).data().toString().isEmpty());
    expectConsistent();
}

TEST_F(ARXSpaceListModelTest, AReSortMovesRowsAndKeepsSelectionAndExpansion) {
    for (const char* name : {"a", "b", "c", "dir/x", "dir/y", "dir/z"}) {
        writeFile(at(std::string("top/") + name), "");
    }
    const ARXFileEntryRef top = listed("top");
    show(top);
    QTreeView view;
    view.setModel(&model);
    const QModelIndex dir = indexAt(top, "top/dir");
    view.expand(dir);
    QItemSelectionModel& selection = *view.selectionModel();
    selection.select(indexAt(top, "top/b"),
                     QItemSelectionModel::Select | QItemSelectionModel::Rows);
    selection.select(indexAt(top, "top/dir/z"),
                     QItemSelectionModel::Select | QItemSelectionModel::Rows);
    selection.setCurrentIndex(indexAt(top, "top/dir/y"), QItemSelectionModel::NoUpdate);

    QSignalSpy reset(&model, &QAbstractItemModel::modelReset);
    QSignalSpy layout(&model, &QAbstractItemModel::layoutChanged);
    top->sort(Column::name, false, false);
    model.reorder();
    EXPECT_EQ(reset.count(), 0);
    EXPECT_EQ(layout.count(), 1);
    EXPECT_EQ(rows(), (Names{"dir", "c", "b", "a"}));
    EXPECT_EQ(rows(indexAt(top, "top/dir")), (Names{"z", "y", "x"}));
    expectConsistent();

    std::set<Path> selected;
    for (const QModelIndex& index : selection.selectedRows()) {
        selected.insert(model.entryAt(index)->path());
    }
    EXPECT_EQ(selected, (std::set<Path>{at("top/b"), at("top/dir/z")}));
    EXPECT_EQ(model.entryAt(selection.currentIndex())->path(), at("top/dir/y"));
    EXPECT_TRUE(view.isExpanded(indexAt(top, "top/dir")));

    // The same order again moves nothing.
    model.reorder();
    EXPECT_EQ(layout.count(), 1);
}

TEST_F(ARXSpaceListModelTest, ColumnsChangeByTheirDifferenceWithoutAReset) {
    writeFile(at("top/a"), "");
    writeFile(at("top/dir/x"), "");
    writeFile(at("top/empty/.keep"), "");
    const ARXFileEntryRef top = listed("top");
    model.setColumns({Column::modified, Column::size, Column::kind});
    show(top);
    const QPersistentModelIndex kind = indexAt(top, "top/dir/x", 3);
    const QPersistentModelIndex name = indexAt(top, "top/a", 0);
    QSignalSpy reset(&model, &QAbstractItemModel::modelReset);
    QSignalSpy removed(&model, &QAbstractItemModel::columnsRemoved);
    QSignalSpy inserted(&model, &QAbstractItemModel::columnsInserted);

    model.setColumns({Column::size, Column::tags, Column::kind});
    EXPECT_EQ(reset.count(), 0);
    EXPECT_EQ(removed.count(), 2); // the root's and the opened folder's; the empty one has none
    EXPECT_EQ(inserted.count(), 2);
    EXPECT_EQ(ranges(removed), (Ranges{{1, 1}, {1, 1}}));
    EXPECT_EQ(ranges(inserted), (Ranges{{2, 2}, {2, 2}}));
    EXPECT_EQ(kind.column(), 3);
    EXPECT_EQ(model.columnId(kind.column()), Column::kind);
    EXPECT_EQ(name.column(), 0);
    EXPECT_EQ(model.columnCount(indexAt(top, "top/dir")), 4);
    expectConsistent();

    // A new order: what cannot stay in order goes and comes back at its place.
    model.setColumns({Column::kind, Column::size});
    EXPECT_EQ(model.columnCount(), 3);
    EXPECT_EQ(model.columnId(1), Column::kind);
    EXPECT_EQ(model.section(Column::size), 2);
    EXPECT_EQ(model.section(Column::tags), -1);
    EXPECT_EQ(reset.count(), 0);
    expectConsistent();

    model.setColumns({});
    EXPECT_EQ(model.columnCount(), 1);
    expectConsistent();
}

TEST_F(ARXSpaceListModelTest, ARenameGoesOutAsARequest) {
    writeFile(at("top/old.txt"), "");
    const ARXFileEntryRef top = listed("top");
    show(top);
    const QModelIndex old = indexAt(top, "top/old.txt");
    EXPECT_TRUE(model.flags(old).testFlag(Qt::ItemIsEditable));
    std::vector<std::pair<ARXFileEntryRef, QString>> requests;
    QObject::connect(&model, &ARXSpaceListModel::renameRequested,
                     [&](const ARXFileEntryRef& entry, const QString& name) {
                         requests.emplace_back(entry, name);
                     });
    EXPECT_FALSE(model.setData(old, QStringLiteral("new.txt")));
    ASSERT_EQ(requests.size(), 1u);
    EXPECT_EQ(requests[0].first, top->find(at("top/old.txt")));
    EXPECT_EQ(requests[0].second, QStringLiteral("new.txt"));
    // Nothing was renamed here.
    EXPECT_EQ(old.data().toString(), QStringLiteral("old.txt"));
    EXPECT_EQ(::access(at("top/old.txt").c_str(), F_OK), 0);
    expectConsistent();
}

} // namespace
