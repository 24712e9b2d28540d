#include "ops/ARXFileOperationSize.h"

#include "platform/ARXDirectoryReader.h"
#include "platform/ARXFileStatus.h"

#include <vector>

namespace ARXFileOperationSize {

Measure measure(const Path& path) {
    Measure result;
    const ARXFileStatus status = ARXFileStatus::lstat(path);
    if (status.isRegular()) {
        result.size = double(status.size);
    }
    if (!status.isDirectory()) {
        return result;
    }
    // Depth first with a list of folders still to read, rather than recursion, so that a deep
    // tree costs neither stack nor more than one open folder at a time.
    std::vector<Path> pending{path};
    while (!pending.empty()) {
        const Path folder = std::move(pending.back());
        pending.pop_back();
        const int error = ARXDirectoryReader::forEachWithStatus(
            folder, nullptr, [&](std::string_view name, const ARXFileStatus& item) {
                if (item.isRegular()) {
                    result.size += double(item.size);
                } else if (item.isDirectory()) {
                    pending.push_back(ARXPath::join(folder, name));
                }
            });
        // A folder that cannot be read only leaves its own content uncounted: the rest of the
        // tree is still measured.
        if (error != 0 && !result.error) {
            result.error = ARXFileError::fromErrno(error, folder);
        }
    }
    return result;
}

} // namespace ARXFileOperationSize
