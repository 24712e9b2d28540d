#include "ui/spaceviews/ARXSpaceView.h"

#include "app/ARXConf.h"
#include "app/ARXDataCenter.h"
#include "ops/ARXFileOperationFixture.h"
#include "ops/ARXFileOperationRecorder.h"
#include "platform/ARXNotificationCenter.h"
#include "support/ARXFakeVolumes.h"
#include "ui/ARXFileClipboard.h"
#include "ui/spaceviews/ARXSpaceListModel.h"
#include "ui/spaceviews/ARXSpaceListOutlineView.h"
#include "ui/spaceviews/ARXSpaceListView.h"

#include <QApplication>
#include <QClipboard>
#include <QItemSelectionModel>
#include <QLineEdit>
#include <QMimeData>
#include <QSignalSpy>
#include <QTest>

#include <gtest/gtest.h>

#include <cstdio>
#include <fcntl.h>
#include <memory>
#include <sys/stat.h>
#include <unistd.h>

namespace {

using Names = std::vector<std::string>;

// A list view that counts how often it reads its selection back from the widget.
class ARXCountingListView : public ARXSpaceListView {
public:
    mutable int selectionReads = 0;

protected:
    ARXFileEntryList widgetSelection() const override {
        ++selectionReads;
        return ARXSpaceListView::widgetSelection();
    }
};

// A list view on a real folder, with a presenter that answers in code and sounds kept quiet.
class ARXSpaceViewTest : public ARXFileOperationFixture {
protected:
    void SetUp() override {
        ARXFileOperationFixture::SetUp();
        ARXDataCenter::setVolumeReaderForTesting([] { return ARXVolumeList{ARXMakeVolume("/")}; });
        for (const char* name : {"a.txt", "b.txt", "c.txt"}) {
            writeFile(in(name), "x");
        }
        writeFile(in("Folder/one.txt"), "1");
        writeFile(in("Folder/Sub/deep.txt"), "2");
        writeFile(in("Closed/inner.txt"), "3");
        view = std::make_unique<ARXSpaceListView>();
        view->setPresenter(&presenter);
        view->resize(900, 500);
        view->show();
        top = ARXFileEntry::create(in(""));
        top->sortColumn = ARXSpaceViewColumnId::name;
        top->sortAscend = true;
        view->bindRoot(top);
        resets = std::make_unique<QSignalSpy>(view->model(), &QAbstractItemModel::modelReset);
    }

    void TearDown() override {
        resets.reset();
        view.reset();
        ARXFileOperationFixture::TearDown();
    }

    Path in(std::string_view relative) const {
        return ARXPath::normalized(ARXPath::join(ARXPath::join(root(), "pane"), relative));
    }

    Names rows(const QModelIndex& parent = {}) const {
        Names names;
        ARXSpaceListModel& model = *view->model();
        for (int row = 0; row < model.rowCount(parent); ++row) {
            names.push_back(model.index(row, 0, parent).data().toString().toStdString());
        }
        return names;
    }

    bool hasRow(const std::string& name, const QModelIndex& parent = {}) const {
        const Names names = rows(parent);
        return std::find(names.begin(), names.end(), name) != names.end();
    }

    QModelIndex indexOf(const Path& path) const { return view->model()->indexOf(top->find(path)); }

    // The line edit of a running inline rename.
    QLineEdit* nameEditor() const { return view->outlineView()->findChild<QLineEdit*>(); }

    void expectConsistent() const {
        EXPECT_TRUE(view->model()->isConsistent()) << view->model()->inconsistency().toStdString();
    }

    // Waits for the end of a batch of the view (the spy made before the batch started).
    static bool ended(QSignalSpy& spy) { return !spy.isEmpty() || spy.wait(10000); }
    std::unique_ptr<QSignalSpy> endSpy() const {
        return std::make_unique<QSignalSpy>(view.get(), &ARXSpaceView::fileOperationEnded);
    }

    std::unique_ptr<ARXSpaceListView> view;
    ARXFileEntryRef top;
    std::unique_ptr<QSignalSpy> resets;
};

TEST_F(ARXSpaceViewTest, ChangesByOtherProgramsReachTheirRowsWithoutAReload) {
    EXPECT_EQ(view->spaceStatus(), ARXSpaceStatus::normal);
    EXPECT_EQ(view->watchedFolders(), std::vector<Path>{in("")});

    writeFile(in("new.txt"), "fresh");
    ASSERT_TRUE(waitUntil([&] { return hasRow("new.txt"); }));

    // A write shows its new size in the row, also while the writer keeps the file open.
    writeFile(in("a.txt"), "a longer text");
    ASSERT_TRUE(waitUntil([&] { return top->find(in("a.txt"))->size == 13; }));
    const int fd = ::open(in("a.txt").c_str(), O_WRONLY | O_APPEND | O_CLOEXEC);
    ASSERT_GE(fd, 0);
    ASSERT_EQ(::write(fd, "+more", 5), 5);
    EXPECT_TRUE(waitUntil([&] { return top->find(in("a.txt"))->size == 18; }));
    ::close(fd);

    // Inside a folder never unfolded nothing is made; a hidden name makes no row.
    writeFile(in("Closed/late.txt"), "x");
    writeFile(in(".secret"), "x");
    std::remove(in("b.txt").c_str());
    ASSERT_TRUE(waitUntil([&] { return !hasRow("b.txt"); }));
    EXPECT_FALSE(hasRow(".secret"));
    EXPECT_TRUE(top->find(in("Closed"))->children().empty());
    EXPECT_EQ(top->find(in("Closed/late.txt")), nullptr);

    EXPECT_EQ(resets->count(), 0);
    expectConsistent();
}

TEST_F(ARXSpaceViewTest, RenamesInPlaceKeepTheRowAndMovesRemoveThenInsert) {
    ASSERT_TRUE(view->expandEntry(top->find(in("Folder"))));
    ASSERT_TRUE(waitUntil([&] { return view->watchedFolders().size() == 2; }));
    const ARXFileEntryRef folder = top->find(in("Folder"));
    QSignalSpy removed(view->model(), &QAbstractItemModel::rowsRemoved);

    ASSERT_EQ(::rename(in("Folder").c_str(), in("Renamed").c_str()), 0);
    ASSERT_TRUE(waitUntil([&] { return hasRow("Renamed"); }));
    EXPECT_EQ(top->find(in("Renamed")), folder);
    EXPECT_EQ(removed.count(), 0);
    EXPECT_TRUE(view->outlineView()->isExpanded(indexOf(in("Renamed"))));
    EXPECT_EQ(folder->children().front()->path(), in("Renamed/one.txt"));

    // From the root into the unfolded folder: out of one, into the other.
    ASSERT_EQ(::rename(in("a.txt").c_str(), in("Renamed/a.txt").c_str()), 0);
    ASSERT_TRUE(waitUntil([&] { return hasRow("a.txt", indexOf(in("Renamed"))); }));
    EXPECT_FALSE(hasRow("a.txt"));
    EXPECT_EQ(resets->count(), 0);
    expectConsistent();
}

TEST_F(ARXSpaceViewTest, ALinksRowStaysTheLinksWhateverHappensToItsTarget) {
    // Links sorted before their targets, so that a walk by path meets them first.
    for (const char* name : {"a", "b", "c"}) {
        const std::string target = std::string(name) + ".txt";
        ASSERT_EQ(::symlink(in(target).c_str(), in(std::string("0 to ") + name).c_str()), 0);
    }
    ASSERT_TRUE(waitUntil([&] { return rows().size() == 8; }));
    const ARXFileEntryRef toA = top->find(in("0 to a"));
    const ARXFileEntryRef toB = top->find(in("0 to b"));
    const ARXFileEntryRef toC = top->find(in("0 to c"));
    ASSERT_TRUE(toA && toB && toC);

    // Written to: the target's row and what the link shows of it follow; the link stays a link.
    writeFile(in("a.txt"), "longer");
    ASSERT_TRUE(waitUntil([&] { return top->find(in("a.txt"))->size == 6; }));
    ASSERT_TRUE(waitUntil([&] { return toA->link() && toA->link()->size == 6; }));
    // Renamed: the link is left pointing at nothing, and is still the link.
    ASSERT_EQ(::rename(in("b.txt").c_str(), in("y.txt").c_str()), 0);
    ASSERT_TRUE(waitUntil([&] { return hasRow("y.txt") && !hasRow("b.txt"); }));
    // Trashed: only the file's row goes.
    const auto done = endSpy();
    view->trashEntries({top->find(in("c.txt"))});
    ASSERT_TRUE(ended(*done));
    // The watcher's notice of the trashed file comes after the batch, and before this one.
    writeFile(in("marker"), "");
    ASSERT_TRUE(waitUntil([&] { return hasRow("marker"); }));
    EXPECT_EQ(rows(), (Names{"0 to a", "0 to b", "0 to c", "a.txt", "Closed", "Folder", "marker",
                             "y.txt"}));
    EXPECT_EQ(toA->path(), in("0 to a"));
    EXPECT_EQ(toB->path(), in("0 to b"));
    EXPECT_EQ(toC->path(), in("0 to c"));
    EXPECT_EQ(top->find(in("0 to c")), toC);
    EXPECT_TRUE(toC->link() && !toC->link()->isExists);
    EXPECT_TRUE(exists(in("a.txt")));
    expectConsistent();
}

TEST_F(ARXSpaceViewTest, AtriumsOwnChangesArriveByNotification) {
    // Posted as the file layer posts them, for a folder the watcher does not see.
    ARXFileEntryRef folder = top->find(in("Folder"));
    ASSERT_TRUE(view->expandEntry(folder));
    writeFile(in("Folder/two.txt"), "2");
    ARXNotificationCenter::shared().post(
        QStringLiteral("rv_file_changed"),
        {{QStringLiteral("path"), ARXPath::toStoredText(in("Folder/two.txt"))}});
    ASSERT_TRUE(waitUntil([&] { return hasRow("two.txt", indexOf(in("Folder"))); }));
    std::remove(in("Folder/two.txt").c_str());
    view->applyChange(in("Folder/two.txt")); // gone: nothing to refresh, nothing made
    ARXNotificationCenter::shared().post(
        QStringLiteral("rv_file_changed"),
        {{QStringLiteral("path"), ARXPath::toStoredText(in("Folder/two.txt"))}});
    ASSERT_TRUE(waitUntil([&] { return !hasRow("two.txt", indexOf(in("Folder"))); }));
    expectConsistent();
}

TEST_F(ARXSpaceViewTest, PastingCopiesIntoTheFolderWithPlaceholderRowsThatBecomeTheItems) {
    ARXFileClipboard::put({in("a.txt"), in("Folder")}, false);
    const auto done = endSpy();
    view->paste(nullptr, false);
    // A placeholder row per item is there at once, before the copy has run.
    EXPECT_EQ(rows().size(), 7u);
    ASSERT_TRUE(ended(*done));
    EXPECT_TRUE(exists(in("a 2.txt")));
    EXPECT_TRUE(exists(in("Folder 2/Sub/deep.txt")));
    Names selected;
    for (const ARXFileEntryRef& entry : view->selectedItems()) {
        selected.emplace_back(entry->name());
        EXPECT_EQ(entry->operation, nullptr);
        EXPECT_TRUE(entry->isExists);
    }
    std::sort(selected.begin(), selected.end());
    EXPECT_EQ(selected, (Names{"Folder 2", "a 2.txt"}));
    EXPECT_TRUE(hasRow("a 2.txt"));
    EXPECT_TRUE(hasRow("Folder 2"));
    EXPECT_EQ(resets->count(), 0);
    expectConsistent();

    // Cut and paste into the folder the items are in moves nothing.
    presenter.presented = 0;
    ARXFileClipboard::put({in("a.txt")}, true);
    view->paste(nullptr, false);
    EXPECT_EQ(presenter.presented, 0);
    EXPECT_TRUE(exists(in("a.txt")));
}

TEST_F(ARXSpaceViewTest, AFolderNeverGoesIntoItselfAndTextIsNoPaste) {
    const ARXFileEntryRef folder = top->find(in("Folder"));
    ASSERT_TRUE(view->expandEntry(folder));
    const ARXFileEntryRef sub = top->find(in("Folder/Sub"));
    ASSERT_TRUE(sub);
    view->transferPaths(sub, {in("Folder")}, true);
    view->transferPaths(folder, {in("Folder")}, false);
    QApplication::clipboard()->setText(QStringLiteral("/etc/passwd"));
    EXPECT_FALSE(view->canPasteHere());
    view->paste(nullptr, false);
    EXPECT_EQ(presenter.presented, 0);
    EXPECT_FALSE(exists(in("Folder/Sub/Folder")));
    expectConsistent();

    // The same rules decide drops, and a web address is no drop at all.
    std::unique_ptr<QMimeData> own(ARXFileClipboard::makeMimeData({in("Folder")}, false));
    EXPECT_FALSE(view->canAccept(own.get(), in("Folder/Sub")));
    EXPECT_FALSE(view->canAccept(own.get(), in("Folder")));
    EXPECT_TRUE(view->canAccept(own.get(), in("Closed")));
    QMimeData web;
    web.setData(QStringLiteral("text/uri-list"), "https://example.org/a.txt\r\n");
    EXPECT_FALSE(view->canAccept(&web, in("Closed")));
    // One volume: a move unless Ctrl asks for a copy.
    const Qt::DropActions both = Qt::CopyAction | Qt::MoveAction;
    EXPECT_EQ(view->dropOperation(own.get(), in("Closed"), Qt::NoModifier, both), Qt::MoveAction);
    EXPECT_EQ(view->dropOperation(own.get(), in("Closed"), Qt::ControlModifier, both),
              Qt::CopyAction);
    EXPECT_EQ(view->dropOperation(own.get(), in("Closed"), Qt::NoModifier, Qt::CopyAction),
              Qt::CopyAction);
}

TEST_F(ARXSpaceViewTest, AStoppedConflictLeavesNoPlaceholderRow) {
    writeFile(ARXPath::join(root(), "elsewhere/a.txt"), "other");
    presenter.answers.push_back({ARXFileOperationConflictAction::stop, false});
    const auto done = endSpy();
    view->transferPaths(top, {ARXPath::join(root(), "elsewhere/a.txt")}, true);
    ASSERT_TRUE(ended(*done));
    ASSERT_EQ(presenter.questions.size(), 1u);
    EXPECT_EQ(rows(), (Names{"a.txt", "b.txt", "c.txt", "Closed", "Folder"}));
    EXPECT_EQ(readFile(in("a.txt")), "x");
    expectConsistent();
}

TEST_F(ARXSpaceViewTest, ReplacedAndSkippedItemsLeaveNoSecondRow) {
    for (const char* name : {"a.txt", "b.txt", "c.txt"}) {
        writeFile(ARXPath::join(root(), std::string("elsewhere/") + name), "other");
    }
    const std::vector<Path> sources{ARXPath::join(root(), "elsewhere/a.txt"),
                                    ARXPath::join(root(), "elsewhere/b.txt"),
                                    ARXPath::join(root(), "elsewhere/c.txt")};
    const Names before = rows();
    using Action = ARXFileOperationConflictAction;
    presenter.answers = {{Action::replace, false}, {Action::skip, false}, {Action::replace, true}};
    auto done = endSpy();
    view->transferPaths(top, sources, true);
    ASSERT_TRUE(ended(*done));
    EXPECT_EQ(readFile(in("a.txt")), "other");
    EXPECT_EQ(readFile(in("b.txt")), "x");
    EXPECT_EQ(readFile(in("c.txt")), "other");
    EXPECT_EQ(rows(), before);
    expectConsistent();

    // The same with one answer for all, skipping the last item, and replacing them all.
    for (const Action action : {Action::skip, Action::replace}) {
        presenter.answers = {{action, true}};
        done = endSpy();
        view->transferPaths(top, sources, true);
        ASSERT_TRUE(ended(*done));
        EXPECT_EQ(rows(), before);
        expectConsistent();
    }
    EXPECT_EQ(readFile(in("b.txt")), "other");
}

TEST_F(ARXSpaceViewTest, ABatchEndedByAnErrorLeavesNoPlaceholderRow) {
    // The first source is gone by the time the copy reaches it: the error ends the batch before
    // the second is copied.
    writeFile(ARXPath::join(root(), "elsewhere/there.txt"), "t");
    const Names before = rows();
    auto done = endSpy();
    view->transferPaths(
        top,
        {ARXPath::join(root(), "elsewhere/gone.txt"), ARXPath::join(root(), "elsewhere/there.txt")},
        false);
    ASSERT_TRUE(ended(*done));
    ASSERT_EQ(presenter.alerts.size(), 1u);
    EXPECT_FALSE(exists(in("there.txt")));
    EXPECT_EQ(rows(), before);
    expectConsistent();
}

TEST_F(ARXSpaceViewTest, APastedCutLeavesTheClipboardOnceMoved) {
    ARXFileClipboard::put({in("Closed/inner.txt")}, true);
    auto done = endSpy();
    view->paste(nullptr, false);
    ASSERT_TRUE(ended(*done));
    EXPECT_TRUE(exists(in("inner.txt")));
    EXPECT_TRUE(ARXFileClipboard::current().paths.empty());
    // A second paste has nothing to do: no error, no grey row.
    presenter.presented = 0;
    view->paste(nullptr, false);
    EXPECT_EQ(presenter.presented, 0);
    EXPECT_EQ(rows(), (Names{"a.txt", "b.txt", "c.txt", "Closed", "Folder", "inner.txt"}));

    // What was cut or copied since stays on the clipboard.
    ARXFileClipboard::put({in("inner.txt")}, true);
    done = endSpy();
    view->paste(top->find(in("Closed")), false);
    ARXFileClipboard::put({in("a.txt")}, false);
    ASSERT_TRUE(ended(*done));
    EXPECT_TRUE(exists(in("Closed/inner.txt")));
    EXPECT_EQ(ARXFileClipboard::current().paths, std::vector<Path>{in("a.txt")});
}

TEST_F(ARXSpaceViewTest, NewThingsGoingIntoASelectedFolderUnfoldIt) {
    ARXConf::settings_action_target().setValue(1);
    const ARXFileEntryRef closed = top->find(in("Closed"));
    view->setSelectedItems({closed});
    view->perform(ARXActionType::NewFolder);
    EXPECT_TRUE(exists(in("Closed/untitled folder")));
    EXPECT_TRUE(view->outlineView()->isExpanded(indexOf(in("Closed"))));
    EXPECT_TRUE(hasRow("untitled folder", indexOf(in("Closed"))));
    ASSERT_TRUE(waitUntil([&] { return view->isEditingFilename(); }));
    ASSERT_EQ(view->selectedItems().size(), 1u);
    EXPECT_EQ(view->selectedItems().front()->path(), in("Closed/untitled folder"));
    QTest::keyClick(nameEditor(), Qt::Key_Escape);
    ASSERT_TRUE(waitUntil([&] { return !view->isEditingFilename(); }));

    const ARXFileEntryRef folder = top->find(in("Folder"));
    view->setSelectedItems({folder});
    ARXFileClipboard::put({in("a.txt")}, false);
    auto done = endSpy();
    view->perform(ARXActionType::Paste);
    ASSERT_TRUE(ended(*done));
    EXPECT_TRUE(view->outlineView()->isExpanded(indexOf(in("Folder"))));
    EXPECT_TRUE(hasRow("a.txt", indexOf(in("Folder"))));
    ASSERT_EQ(view->selectedItems().size(), 1u);
    EXPECT_EQ(view->selectedItems().front()->path(), in("Folder/a.txt"));
    expectConsistent();
}

TEST_F(ARXSpaceViewTest, TrashingManyRowsDoesNotReadTheSelectionBackForEachRow) {
    for (int i = 0; i < 300; ++i) {
        writeFile(in("many/f" + std::to_string(i)), "");
    }
    resets.reset();
    auto* counting = new ARXCountingListView;
    view.reset(counting);
    view->setPresenter(&presenter);
    view->show();
    const ARXFileEntryRef many = ARXFileEntry::create(in("many"));
    view->bindRoot(many);
    view->setSelectedItems(many->children());
    // A folder selected whole is one range of rows for the widget.
    EXPECT_EQ(view->outlineView()->selectionModel()->selection().size(), 1);
    counting->selectionReads = 0;
    const auto done = endSpy();
    view->trashEntries(view->selectedItems());
    ASSERT_TRUE(ended(*done));
    EXPECT_EQ(view->model()->rowCount(), 0);
    EXPECT_LE(counting->selectionReads, 2);
    EXPECT_TRUE(view->selectedItems().empty());
    expectConsistent();
}

TEST_F(ARXSpaceViewTest, AViewClosedWhileANameIsEditedLeavesTheTreeWhole) {
    const ARXFileEntryRef a = top->find(in("a.txt"));
    view->setSelectedItems({a});
    ASSERT_TRUE(view->beginEditingName(a));
    QWidget* editor = nameEditor();
    ASSERT_TRUE(editor);
    // Changes that wait for the edit to end, then the view goes with the editor open: ending
    // the edit would apply them, and nothing of that may reach the half-gone view.
    view->entryRefreshed(a);
    view->reloadOrDefer();
    ASSERT_TRUE(view->isDirty());
    QApplication::setActiveWindow(view.get());
    editor->setFocus();
    ASSERT_TRUE(waitUntil([&] { return editor->hasFocus(); }));
    view.reset();
    EXPECT_EQ(a.use_count(), 2); // the folder's list and this test
    EXPECT_TRUE(exists(in("a.txt")));
}

TEST_F(ARXSpaceViewTest, InlineRenameRenamesRecordsAndWaitsOutReloads) {
    const ARXFileEntryRef a = top->find(in("a.txt"));
    const size_t records = ARXFileOperationRecorder::shared().records().size();
    ASSERT_TRUE(view->beginEditingName(a));
    EXPECT_TRUE(view->isEditingFilename());
    // A change under the editor and a reload both wait for the edit to end.
    view->entryRefreshed(a);
    view->reloadOrDefer();
    EXPECT_TRUE(view->isDirty());

    QWidget* editor = nameEditor();
    ASSERT_TRUE(editor);
    QTest::keyClick(editor, Qt::Key_A, Qt::ControlModifier);
    QTest::keyClicks(editor, QStringLiteral("z.txt"));
    QTest::keyClick(editor, Qt::Key_Return);
    ASSERT_TRUE(waitUntil([&] { return !view->isEditingFilename() && !view->isDirty(); }));
    EXPECT_TRUE(exists(in("z.txt")));
    EXPECT_FALSE(exists(in("a.txt")));
    EXPECT_EQ(ARXFileOperationRecorder::shared().records().size(), records + 1);
    ASSERT_TRUE(waitUntil([&] { return rows().back() == "z.txt"; }));
    expectConsistent();

    // A name taken: an alert, and the file keeps its name.
    ASSERT_TRUE(view->beginEditingName(top->find(in("b.txt"))));
    editor = nameEditor();
    QTest::keyClick(editor, Qt::Key_A, Qt::ControlModifier);
    QTest::keyClicks(editor, QStringLiteral("c.txt"));
    QTest::keyClick(editor, Qt::Key_Return);
    ASSERT_TRUE(waitUntil([&] { return !presenter.alerts.empty(); }));
    EXPECT_TRUE(presenter.alerts.back().message.contains(QStringLiteral("already exists")));
    EXPECT_TRUE(exists(in("b.txt")));
    EXPECT_TRUE(hasRow("b.txt"));
}

TEST_F(ARXSpaceViewTest, RenamingAFileAnotherProgramRenamedMeanwhileRenamesItsNewSelf) {
    const ARXFileEntryRef c = top->find(in("c.txt"));
    ASSERT_TRUE(view->beginEditingName(c));
    ASSERT_EQ(::rename(in("c.txt").c_str(), in("moved.txt").c_str()), 0);
    ASSERT_TRUE(waitUntil([&] { return c->path() == in("moved.txt"); }));
    QWidget* editor = nameEditor();
    QTest::keyClick(editor, Qt::Key_A, Qt::ControlModifier);
    QTest::keyClicks(editor, QStringLiteral("mine.txt"));
    QTest::keyClick(editor, Qt::Key_Return);
    ASSERT_TRUE(waitUntil([&] { return exists(in("mine.txt")); }));
    EXPECT_FALSE(exists(in("moved.txt")));
    ASSERT_TRUE(waitUntil([&] { return hasRow("mine.txt") && !hasRow("moved.txt"); }));
    expectConsistent();
}

TEST_F(ARXSpaceViewTest, NamesThatAreNotUtf8OrHoldLineFeedsListAndCopy) {
    writeFile(in("caf\xe9.txt"), "latin-1 name");
    writeFile(in("two\nlines.txt"), "x");
    ASSERT_TRUE(waitUntil([&] { return rows().size() == 7; }));
    EXPECT_TRUE(hasRow("caf\xef\xbf\xbd.txt")); // U+FFFD for the byte that is no UTF-8
    EXPECT_TRUE(hasRow("two?lines.txt"));
    ARXFileClipboard::put({in("caf\xe9.txt"), in("two\nlines.txt")}, false);
    const auto done = endSpy();
    view->paste(top->find(in("Closed")), false);
    ASSERT_TRUE(ended(*done));
    EXPECT_EQ(readFile(in("Closed/caf\xe9.txt")), "latin-1 name");
    EXPECT_TRUE(exists(in("Closed/two\nlines.txt")));
}

TEST_F(ARXSpaceViewTest, TrashKeyMovesTheSelectionOnAndCountsShowInTheStatus) {
    view->setSelectedItems({top->find(in("b.txt"))});
    ASSERT_TRUE(waitUntil(
        [&] { return view->bottomStatusText().startsWith(QStringLiteral("1 of 5 selected, ")); }));
    EXPECT_TRUE(view->bottomStatusText().endsWith(QStringLiteral(" available")));
    const auto done = endSpy();
    QTest::keyClick(view->outlineView(), Qt::Key_Backspace, Qt::ControlModifier);
    ASSERT_TRUE(ended(*done));
    ASSERT_TRUE(waitUntil([&] { return !hasRow("b.txt"); }));
    EXPECT_TRUE(exists(ARXPath::join(dataHome(), "Trash/files/b.txt")));
    ASSERT_EQ(view->selectedItems().size(), 1u);
    EXPECT_EQ(view->selectedItems().front()->name(), "c.txt");
    expectConsistent();

    EXPECT_TRUE(view->statusText(0, 0).startsWith(QStringLiteral("empty, ")));
    EXPECT_TRUE(view->statusText(0, 1).startsWith(QStringLiteral("1 item, ")));
    EXPECT_TRUE(view->statusText(0, 7).startsWith(QStringLiteral("7 items, ")));

    // The keys of Linux habit: Delete trashes too, and F2 renames.
    const auto again = endSpy();
    QTest::keyClick(view->outlineView(), Qt::Key_Delete);
    ASSERT_TRUE(ended(*again));
    EXPECT_TRUE(exists(ARXPath::join(dataHome(), "Trash/files/c.txt")));
    ASSERT_EQ(view->selectedItems().size(), 1u);
    QTest::keyClick(view->outlineView(), Qt::Key_F2);
    EXPECT_TRUE(view->isEditingFilename());
}

TEST_F(ARXSpaceViewTest, NewFolderWithSelectionMovesTheItemsInAndRenamesIt) {
    view->setSelectedItems({top->find(in("a.txt")), top->find(in("b.txt"))});
    const auto done = endSpy();
    view->newFolderWithSelection();
    ASSERT_TRUE(ended(*done));
    EXPECT_TRUE(exists(in("New Folder With Items/a.txt")));
    EXPECT_TRUE(exists(in("New Folder With Items/b.txt")));
    ASSERT_TRUE(waitUntil([&] { return view->isEditingFilename(); }));
    ASSERT_EQ(view->selectedItems().size(), 1u);
    EXPECT_EQ(view->selectedItems().front()->name(), "New Folder With Items");
    expectConsistent();
}

} // namespace
