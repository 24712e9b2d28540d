#pragma once

#include "platform/ARXPath.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>

// Singletons such as the settings store take their place from the environment at first use, so
// nothing that reads settings may be created before SetUp (not even as a fixture member):
// it would read and write the real home.
//
// A private world for one test: a fresh temporary folder holding a home folder and the XDG
// config, data and cache roots, with the home override and the XDG variables pointed there.
// Nothing a test does reaches the real home. The folder is removed afterwards.
class ARXTestEnvironment : public ::testing::Test {
protected:
    void SetUp() override;
    void TearDown() override;

    Path root() const { return _root; }
    Path home() const { return _home; }
    Path configHome() const;
    Path dataHome() const;

    // Writes a file (and its missing parent folders) with the given bytes.
    static void writeFile(const Path& path, std::string_view content);
    static std::string readFile(const Path& path);
    static void makeFolder(const Path& path);

    // Runs the Qt event loop until pred is true or the timeout passes; answers pred().
    static bool waitUntil(const std::function<bool()>& pred, int timeoutMs = 3000);
    // Delivers the events already posted, deferred deletions and the layout requests they cause
    // included, without waiting for time to pass: for widget geometry after show() or a rebuild.
    static void flushEvents();

    // Runs check on a thread that has given up the capabilities that let root ignore permission
    // bits, so that permission failures can be tested when the tests run as root (as in CI).
    // Capabilities belong to threads; the test's other threads keep theirs. Answers false when the
    // thread could not give them up (check then did not run).
    static bool runWithoutOverridingPermissions(const std::function<void()>& check);
    // The same for the calling thread (the main thread of a widget test) until the test's
    // process ends; every test runs in a process of its own. Answers whether it worked.
    static bool stopOverridingPermissions();

private:
    Path _root;
    Path _home;
};

// Removes a tree without following links; used to clean fixtures.
void ARXRemoveTree(const Path& path);
