// One file operation through Atrium's file layer, for the file-operation benchmarks:
//
//   atrium-fileop copy FROM TO      ARXFileLayer::copyFile (a folder is copied whole)
//   atrium-fileop move FROM TO      ARXFileLayer::moveFile
//   atrium-fileop remove PATH...    ARXFileLayer::removeFile, one call per path
//   atrium-fileop trash PATH...     ARXFileLayer::trashFile, one call per path
//
// With --engine first, the same work runs as one batch of the operation engine, the way the
// program does it: measured first, carried out on its worker, polled ten times a second for
// progress (with no sheet to show it), e.g. `atrium-fileop --engine copy FROM TO`.
//
// As in the program, the calls run on a worker thread while the main thread runs the event loop
// that delivers the change notifications (an observer counts them). Paths are taken as the bytes
// of the arguments, relative ones taken from the working folder. Exits 1 with the error's text on
// the first failure.

#include "app/ARXNotificationNames.h"
#include "ops/ARXFileLayer.h"
#include "ops/ARXFileOperationController.h"
#include "platform/ARXFileError.h"
#include "platform/ARXMainQueue.h"
#include "platform/ARXNotificationCenter.h"

#include <QCoreApplication>

#include <cstdio>
#include <cstring>
#include <string>
#include <thread>
#include <unistd.h>
#include <vector>

namespace {

// Atrium takes absolute paths only; arguments may be relative to the working folder.
Path absolute(const char* argument) {
    if (argument[0] == '/') {
        return argument;
    }
    static const Path folder = [] {
        std::string buffer(4096, '\0');
        return ::getcwd(buffer.data(), buffer.size()) ? Path(buffer.c_str()) : Path("/");
    }();
    return ARXPath::join(folder, argument);
}

int usage() {
    std::fprintf(stderr, "usage: atrium-fileop copy|move FROM TO\n"
                         "       atrium-fileop remove|trash PATH...\n");
    return 2;
}

} // namespace

// Runs the work as one engine batch and answers the exit status.
int runBatch(QCoreApplication& app, const std::string& verb, const std::vector<Path>& paths) {
    std::vector<ARXFileOperationItemRef> items;
    if (verb == "copy" || verb == "move") {
        items.push_back(std::make_shared<ARXFileOperationItem>(
            verb == "copy" ? ARXFileOperationType::copy : ARXFileOperationType::move, paths[0],
            paths[1]));
    } else {
        for (const Path& path : paths) {
            items.push_back(std::make_shared<ARXFileOperationItem>(
                verb == "trash" ? ARXFileOperationType::trash : ARXFileOperationType::remove, path,
                std::nullopt));
        }
    }
    auto controller =
        std::make_shared<ARXFileOperationController>(items, ARXSoundEffect::silence, false);
    QObject::connect(controller.get(), &ARXFileOperationController::ended, &app,
                     &QCoreApplication::quit, Qt::QueuedConnection);
    controller->start();
    app.exec();
    if (!controller->finished()) {
        std::fprintf(stderr, "atrium-fileop: the batch failed\n");
        return 1;
    }
    return 0;
}

int main(int argc, char** argv) {
    bool engine = argc > 1 && std::strcmp(argv[1], "--engine") == 0;
    if (engine) {
        --argc;
        ++argv;
    }
    if (argc < 3) {
        return usage();
    }
    const std::string verb = argv[1];
    std::vector<Path> paths;
    for (int i = 2; i < argc; ++i) {
        paths.push_back(absolute(argv[i]));
    }
    const bool pair = verb == "copy" || verb == "move";
    if ((pair && paths.size() != 2) || (!pair && verb != "remove" && verb != "trash")) {
        return usage();
    }

    QCoreApplication app(argc, argv);
    if (engine) {
        return runBatch(app, verb, paths);
    }
    size_t heard = 0;
    for (const QString& name :
         {ARXNotificationName::rv_file_changed, ARXNotificationName::rv_file_moved}) {
        ARXNotificationCenter::shared().addObserver(name, &app,
                                                    [&heard](const ARXNotification&) { ++heard; });
    }

    int status = 0;
    std::thread worker([&] {
        try {
            if (verb == "copy") {
                ARXFileLayer::copyFile(paths[0], paths[1]);
            } else if (verb == "move") {
                ARXFileLayer::moveFile(paths[0], paths[1]);
            } else {
                for (const Path& path : paths) {
                    if (verb == "remove") {
                        ARXFileLayer::removeFile(path);
                    } else {
                        ARXFileLayer::trashFile(path);
                    }
                }
            }
        } catch (const ARXFileError& error) {
            std::fprintf(stderr, "atrium-fileop: %s\n", error.what());
            status = 1;
        }
        // Queued behind the notifications, so all of them are delivered first.
        ARXMainQueue::async([] { QCoreApplication::quit(); });
    });
    app.exec();
    worker.join();
    return status;
}
