#include "platform/ARXHiddenList.h"

#include "platform/ARXFileDescriptor.h"

ARXHiddenList ARXHiddenList::load(const Path& folder) {
    std::string content;
    ARXFileDescriptor fd = ARXFileDescriptor::openRegularFile(ARXPath::join(folder, ".hidden"));
    if (fd.isValid() && !ARXFileDescriptor::readPrefix(fd.get(), kMaxBytes, content)) {
        content.clear();
    }
    // A file cut off at the cap may end in the middle of a name; that part is no name.
    if (content.size() == kMaxBytes) {
        const auto lastBreak = content.rfind('\n');
        content.resize(lastBreak == std::string::npos ? 0 : lastBreak + 1);
    }
    return parse(folder, content);
}

ARXHiddenList ARXHiddenList::parse(const Path& folder, std::string_view content) {
    ARXHiddenList list;
    list._folder = folder;
    while (!content.empty()) {
        const auto end = content.find('\n');
        std::string_view line = content.substr(0, end);
        content.remove_prefix(end == std::string_view::npos ? content.size() : end + 1);
        if (!line.empty() && line.back() == '\r') {
            line.remove_suffix(1);
        }
        if (line.empty() || line == "." || line == ".." ||
            line.find_first_of(std::string_view("/\0", 2)) != std::string_view::npos) {
            continue;
        }
        list._names.emplace(line);
    }
    return list;
}

bool ARXHiddenList::contains(std::string_view name) const {
    return _names.find(std::string(name)) != _names.end();
}

bool ARXHiddenList::isHidden(std::string_view name) const {
    return (!name.empty() && name.front() == '.') || contains(name);
}
