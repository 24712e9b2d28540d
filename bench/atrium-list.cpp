// Lists and sorts one folder through the real file entry code, the way a pane opens a folder.
//
//   atrium-list FOLDER [--column name|modified|size|kind] [--report]
//
// Without --report it only lists and sorts (what hyperfine times against `ls -l`). With --report
// it also prints the listing and sorting times, a re-sort by another column, a second
// prepare(false), and the peak memory per listed entry.

#include "support/columns.h"
#include "app/ARXDataCenter.h"
#include "model/ARXFileEntry.h"

#include <QCoreApplication>
#include <QElapsedTimer>

#include <cstdio>
#include <cstring>
#include <string>
#include <sys/resource.h>

namespace {

long currentRssKb() {
    long pages = 0, resident = 0;
    if (FILE* f = std::fopen("/proc/self/statm", "r")) {
        if (std::fscanf(f, "%ld %ld", &pages, &resident) != 2) {
            resident = 0;
        }
        std::fclose(f);
    }
    return resident * (sysconf(_SC_PAGESIZE) / 1024);
}

long peakRssKb() {
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return usage.ru_maxrss;
}

double ms(const QElapsedTimer& t) {
    return double(t.nsecsElapsed()) / 1e6;
}

} // namespace

int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    if (argc < 2) {
        std::fprintf(stderr,
                     "usage: atrium-list FOLDER [--column name|modified|size|kind] [--report]\n");
        return 2;
    }
    const Path folder = ARXPath::normalized(argv[1]);
    ARXSpaceViewColumnId column = ARXSpaceViewColumnId::name;
    bool report = false;
    for (int i = 2; i < argc; ++i) {
        if (std::strcmp(argv[i], "--column") == 0 && i + 1 < argc) {
            column = benchColumnNamed(argv[++i]).value_or(ARXSpaceViewColumnId::name);
        } else if (std::strcmp(argv[i], "--report") == 0) {
            report = true;
        }
    }
    // Touch the services a pane has ready before it opens a folder, so that the figures below
    // are the folder's own.
    ARXDataCenter::shared();
    const long baseKb = currentRssKb();

    QElapsedTimer timer;
    timer.start();
    ARXFileEntryRef root = ARXFileEntry::create(folder);
    root->sortColumn = column; // the pane's sort, applied by the listing itself
    root->sortAscend = true;
    if (!root->prepare(false)) {
        std::fprintf(stderr, "atrium-list: cannot list %s\n", folder.c_str());
        return 1;
    }
    const double listMs = ms(timer);
    const size_t count = root->children().size();
    if (!report) {
        return count > 0 ? 0 : 1;
    }

    // The markers let a tracer see that nothing touches the disk in between.
    std::fputs("atrium-list: second prepare begins\n", stderr);
    std::fflush(stderr);
    timer.restart();
    const bool again = root->prepare(false);
    const double secondMs = ms(timer);
    std::fputs("atrium-list: second prepare ends\n", stderr);
    std::fflush(stderr);

    const ARXSpaceViewColumnId other = column == ARXSpaceViewColumnId::name
                                           ? ARXSpaceViewColumnId::modified
                                           : ARXSpaceViewColumnId::name;
    timer.restart();
    root->sort(other, false, true);
    const double resortMs = ms(timer);

    const long peakKb = peakRssKb();
    std::printf("entries            %zu\n", count);
    std::printf("list+sort          %.1f ms\n", listMs);
    std::printf("re-sort            %.1f ms\n", resortMs);
    std::printf("second prepare     %.3f ms (%s)\n", secondMs, again ? "true" : "false");
    std::printf("peak RSS           %ld KiB (%ld KiB before listing)\n", peakKb, baseKb);
    std::printf("bytes per entry    %.0f\n",
                count ? double(peakKb - baseKb) * 1024.0 / double(count) : 0.0);
    return 0;
}
