#include "platform/ARXMainQueue.h"

#include <QCoreApplication>
#include <QThread>
#include <QTimer>

#include <cmath>

namespace ARXMainQueue {

namespace {

QCoreApplication* application() {
    QCoreApplication* app = QCoreApplication::instance();
    Q_ASSERT_X(app, "ARXMainQueue", "the main queue needs a QCoreApplication");
    return app;
}

} // namespace

void async(std::function<void()> fn) {
    if (QCoreApplication* app = application()) {
        QMetaObject::invokeMethod(app, std::move(fn), Qt::QueuedConnection);
    }
}

void after(double seconds, std::function<void()> fn) {
    const int ms = int(std::lround(std::max(0.0, seconds) * 1000.0));
    auto start = [ms, fn = std::move(fn)]() mutable {
        QTimer::singleShot(ms, application(), std::move(fn));
    };
    if (isMainThread()) {
        start();
    } else {
        async(std::move(start));
    }
}

bool isMainThread() {
    QCoreApplication* app = QCoreApplication::instance();
    return app && QThread::currentThread() == app->thread();
}

} // namespace ARXMainQueue
