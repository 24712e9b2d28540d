#pragma once

#include <functional>

// The main thread's queue. The model and the views belong to the main thread; work done elsewhere
// comes back through these calls. Both need a running QCoreApplication.
namespace ARXMainQueue {

// Runs fn on the main thread after the current event has been handled. From the main thread
// itself this defers; it never runs fn synchronously.
void async(std::function<void()> fn);

// Runs fn on the main thread once, after the given delay.
void after(double seconds, std::function<void()> fn);

bool isMainThread();

} // namespace ARXMainQueue
