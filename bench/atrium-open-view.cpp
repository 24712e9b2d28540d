// Opens one folder in the list view the way a pane does and times what the user waits for.
//
//   atrium-open-view FOLDER [--first-frame | --scroll | --sort COLUMN | --touch]
//                    [--column name|modified|size|kind] [--report]
//
// Run it with QT_QPA_PLATFORM=offscreen. Every mode first opens the folder: the clock starts
// before the listing and stops once the view's first frame has been painted. Then:
//   --first-frame  (the default) nothing more;
//   --scroll       the list is scrolled from top to bottom a page at a time, each page painted;
//   --sort COLUMN  the view is sorted by another column, up to the next painted frame;
//   --touch        one file of the folder gets a new modification time, and the change goes
//                  through the view's folder watcher to its row (the watcher's pause included).
// Without --column the folder takes the default order a new pane has; with it, that column
// ascending, as atrium-list sorts. The results are "key value" lines on standard output; with
// --report a few more are added.

#include "support/columns.h"
#include "app/ARXDataCenter.h"
#include "model/ARXFileEntry.h"
#include "ui/spaceviews/ARXSpaceListModel.h"
#include "ui/spaceviews/ARXSpaceListOutlineView.h"
#include "ui/spaceviews/ARXSpaceListView.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QEvent>
#include <QEventLoop>
#include <QScrollBar>
#include <QTimer>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <optional>
#include <sys/stat.h>
#include <vector>

namespace {

double ms(const QElapsedTimer& t) {
    return double(t.nsecsElapsed()) / 1e6;
}

// Counts the paints of one widget and remembers when the last one began.
class PaintWatch : public QObject {
public:
    explicit PaintWatch(QWidget* widget) : QObject(widget) { widget->installEventFilter(this); }

    int paints = 0;

    // Runs the event loop until a paint has begun after this call and the events it caused have
    // been handled, so that the frame is complete; false when none came within `limitMs`.
    bool waitForPaint(int limitMs = 10000) {
        const int before = paints;
        QEventLoop loop;
        _loop = &loop;
        QTimer limit;
        limit.setSingleShot(true);
        QObject::connect(&limit, &QTimer::timeout, &loop, &QEventLoop::quit);
        limit.start(limitMs);
        if (paints == before) {
            loop.exec();
        }
        _loop = nullptr;
        return paints > before;
    }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override {
        if (event->type() == QEvent::Paint) {
            ++paints;
            if (_loop) {
                // Queued: the loop ends only after this paint and the frame's flush are done.
                QMetaObject::invokeMethod(_loop, &QEventLoop::quit, Qt::QueuedConnection);
            }
        }
        return QObject::eventFilter(watched, event);
    }

private:
    QEventLoop* _loop = nullptr;
};

int usage() {
    std::fprintf(stderr, "usage: atrium-open-view FOLDER [--first-frame | --scroll | --sort "
                         "COLUMN | --touch] [--column name|modified|size|kind] [--report]\n");
    return 2;
}

} // namespace

int main(int argc, char** argv) {
    QApplication app(argc, argv);
    if (argc < 2) {
        return usage();
    }
    const Path folder = ARXPath::normalized(argv[1]);
    enum class Mode { firstFrame, scroll, sort, touch } mode = Mode::firstFrame;
    std::optional<ARXSpaceViewColumnId> listColumn;
    ARXSpaceViewColumnId sortColumn = ARXSpaceViewColumnId::name;
    bool report = false;
    for (int i = 2; i < argc; ++i) {
        if (std::strcmp(argv[i], "--first-frame") == 0) {
            mode = Mode::firstFrame;
        } else if (std::strcmp(argv[i], "--scroll") == 0) {
            mode = Mode::scroll;
        } else if (std::strcmp(argv[i], "--touch") == 0) {
            mode = Mode::touch;
        } else if (std::strcmp(argv[i], "--sort") == 0 && i + 1 < argc) {
            mode = Mode::sort;
            const std::optional<ARXSpaceViewColumnId> column = benchColumnNamed(argv[++i]);
            if (!column) {
                return usage();
            }
            sortColumn = *column;
        } else if (std::strcmp(argv[i], "--column") == 0 && i + 1 < argc) {
            listColumn = benchColumnNamed(argv[++i]);
            if (!listColumn) {
                return usage();
            }
        } else if (std::strcmp(argv[i], "--report") == 0) {
            report = true;
        } else {
            return usage();
        }
    }
    // The services a running program has ready before a pane opens a folder, and the view's own
    // widgets, exist before the clock starts: what is timed is the opening of the folder.
    ARXDataCenter::shared();
    ARXSpaceListView view;
    view.resize(1200, 800);
    ARXSpaceListOutlineView* outline = view.outlineView();
    ARXSpaceListModel* model = view.model();
    PaintWatch* paints = new PaintWatch(outline->viewport());

    QElapsedTimer timer;
    timer.start();
    ARXFileEntryRef root;
    if (listColumn) {
        root = ARXFileEntry::create(folder);
        root->sortColumn = *listColumn;
        root->sortAscend = true;
        root->prepare(false);
    } else {
        root = ARXFileEntry::create(folder, nullptr, /*prepare*/ true);
    }
    // Listed: the listing got past the access test and did not fail.
    if (!root->expanded || root->prepareError) {
        std::fprintf(stderr, "atrium-open-view: cannot list %s\n", folder.c_str());
        return 1;
    }
    const double listMs = ms(timer);
    view.bindRoot(root);
    const double bindMs = ms(timer);
    view.show();
    if (!paints->waitForPaint()) {
        std::fprintf(stderr, "atrium-open-view: the view was never painted\n");
        return 1;
    }
    const double firstFrameMs = ms(timer);
    const int rows = model->rowCount();

    std::printf("entries %d\n", rows);
    std::printf("first-frame %.1f ms\n", firstFrameMs);
    if (report) {
        std::printf("  listing %.1f ms\n", listMs);
        std::printf("  bind %.1f ms\n", bindMs - listMs);
        std::printf("  show and paint %.1f ms\n", firstFrameMs - bindMs);
    }
    // Whatever the first frame left for later (the name column fitted to the width) is done
    // before anything else is timed.
    QCoreApplication::processEvents();

    switch (mode) {
    case Mode::firstFrame:
        break;

    case Mode::scroll: {
        QScrollBar* bar = outline->verticalScrollBar();
        bar->setValue(0);
        QCoreApplication::processEvents();
        const int paintsBefore = paints->paints;
        const int step = std::max(bar->pageStep(), 1);
        int pages = 0;
        double slowestMs = 0;
        QElapsedTimer frame;
        timer.restart();
        for (int value = 0;; value = std::min(value + step, bar->maximum())) {
            frame.restart();
            bar->setValue(value);
            outline->viewport()->repaint();
            slowestMs = std::max(slowestMs, ms(frame));
            ++pages;
            if (value >= bar->maximum()) {
                break;
            }
        }
        const double scrollMs = ms(timer);
        std::printf("scroll %.1f ms\n", scrollMs);
        std::printf("scroll-pages %d\n", pages);
        std::printf("scroll-painted %d\n", paints->paints - paintsBefore);
        std::printf("scroll-per-page %.3f ms\n", pages ? scrollMs / pages : 0.0);
        std::printf("scroll-slowest-page %.3f ms\n", slowestMs);
        break;
    }

    case Mode::sort: {
        const bool ascending = !(root->sortColumn == sortColumn && root->sortAscend);
        timer.restart();
        view.applySort(sortColumn, ascending);
        const double applyMs = ms(timer);
        if (!paints->waitForPaint()) {
            std::fprintf(stderr, "atrium-open-view: no frame after the sort\n");
            return 1;
        }
        const double sortMs = ms(timer);
        std::printf("sort %.1f ms\n", sortMs);
        if (report) {
            std::printf("  applySort %.1f ms\n", applyMs);
            std::printf("  next frame %.1f ms\n", sortMs - applyMs);
        }
        std::printf("sort-consistent %s\n", model->isConsistent() ? "yes" : "no");
        break;
    }

    case Mode::touch: {
        // The pane's own change pipeline: the view watches the folder it shows, and a changed
        // item reaches its row through the entry's refresh and the model's update protocol.
        const std::vector<Path> watched = view.watchedFolders();
        if (std::find(watched.begin(), watched.end(), root->target().path()) == watched.end()) {
            std::fprintf(stderr, "atrium-open-view: the view does not watch %s\n", folder.c_str());
            return 1;
        }
        // A file from the middle of the list, scrolled into view so that its row is painted.
        const ARXFileEntryRef target = root->children()[root->children().size() / 2];
        const QModelIndex targetIndex = model->indexOf(target);
        outline->scrollTo(targetIndex, QAbstractItemView::PositionAtCenter);
        paints->waitForPaint(1000);
        QCoreApplication::processEvents();

        int resets = 0;
        QObject::connect(model, &QAbstractItemModel::modelReset, model, [&resets] { ++resets; });
        std::optional<double> reachedMs;
        int changedRows = 0;
        QEventLoop loop;
        QObject::connect(model, &QAbstractItemModel::dataChanged, model,
                         [&](const QModelIndex& first, const QModelIndex& last) {
                             changedRows += last.row() - first.row() + 1;
                             if (!reachedMs && model->entryAt(first) == target) {
                                 reachedMs = ms(timer);
                                 loop.quit();
                             }
                         });
        QTimer limit;
        limit.setSingleShot(true);
        QObject::connect(&limit, &QTimer::timeout, &loop, &QEventLoop::quit);

        // Both times, as `touch` sets them (the kernel reports that as an attribute change; a
        // change of the modification time alone is reported as a write), and a modification
        // time surely different from the file's present one.
        const timespec times[2] = {{0, UTIME_NOW}, {1'000'000'000, 0}};
        timer.restart();
        if (utimensat(AT_FDCWD, target->path().c_str(), times, 0) != 0) {
            std::perror("atrium-open-view: utimensat");
            return 1;
        }
        limit.start(5000);
        loop.exec();
        std::optional<double> paintedMs;
        if (reachedMs && paints->waitForPaint(1000)) {
            paintedMs = ms(timer);
        }
        std::printf("touch-reached %s\n", reachedMs ? "yes" : "no");
        std::printf("touch %.1f ms\n", reachedMs.value_or(-1));
        std::printf("touch-painted %.1f ms\n", paintedMs.value_or(-1));
        std::printf("touch-rows-changed %d\n", changedRows);
        std::printf("touch-resets %d\n", resets);
        std::printf("touch-consistent %s\n", model->isConsistent() ? "yes" : "no");
        break;
    }
    }
    std::fflush(stdout);
    return 0;
}
