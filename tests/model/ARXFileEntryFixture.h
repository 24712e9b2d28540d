#pragma once

#include "app/ARXDataCenter.h"
#include "model/ARXFileEntry.h"
#include "model/ARXTagColorSource.h"
#include "platform/ARXResourceValues.h"
#include "support/ARXFakeVolumes.h"
#include "support/ARXTestEnvironment.h"

#include <fcntl.h>
#include <string>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

// A temporary tree for entry tests, on a machine-independent volume list: "/" compares exactly,
// "/media/usb" ignores case.
class ARXFileEntryFixture : public ARXTestEnvironment {
protected:
    void SetUp() override {
        ARXTestEnvironment::SetUp();
        ARXDataCenter::setVolumeReaderForTesting([] {
            return ARXVolumeList{ARXMakeVolume("/media/usb", false), ARXMakeVolume("/")};
        });
    }
    void TearDown() override {
        ARXResourceValues::setCloudProvider({});
        ARXTagColorSource::install(nullptr);
        ARXTestEnvironment::TearDown();
    }

    Path at(std::string_view relative) const { return ARXPath::join(root(), relative); }

    // A root entry with a known order, so that tests do not depend on the default settings.
    ARXFileEntryRef rootEntry(std::string_view relative, bool hiddenVisible = false) const {
        ARXFileEntryRef entry = ARXFileEntry::create(at(relative), nullptr, false, hiddenVisible);
        entry->sortColumn = ARXSpaceViewColumnId::name;
        entry->sortAscend = true;
        entry->sortFoldersOnTop = false;
        return entry;
    }

    static std::vector<std::string> names(const ARXFileEntryList& entries) {
        std::vector<std::string> result;
        for (const ARXFileEntryRef& entry : entries) {
            result.emplace_back(entry->name());
        }
        return result;
    }

    static void setModified(const Path& path, int64_t seconds, long nanoseconds = 0) {
        const timespec times[2] = {{seconds, nanoseconds}, {seconds, nanoseconds}};
        ASSERT_EQ(::utimensat(AT_FDCWD, path.c_str(), times, AT_SYMLINK_NOFOLLOW), 0) << path;
    }

    // Creates an empty file quickly (no atomic write), for large fixtures.
    static void touch(const Path& path) {
        const int fd = ::open(path.c_str(), O_CREAT | O_WRONLY | O_CLOEXEC, 0644);
        ASSERT_GE(fd, 0) << path;
        ::close(fd);
    }

    static void symlinkTo(const Path& target, const Path& link) {
        ASSERT_EQ(::symlink(target.c_str(), link.c_str()), 0) << link;
    }
};
