#pragma once

// SIGTERM, SIGINT and SIGHUP (log-out, Ctrl+C in a terminal, a closed terminal) end the event
// loop instead of killing the process, so the normal shutdown runs and state gets saved. The
// handler only writes a byte to a pipe; the main thread reads it and quits the application.
namespace ARXTerminationSignals {
void quitApplicationOnTermination();
}
