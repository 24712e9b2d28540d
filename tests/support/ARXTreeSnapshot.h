#pragma once

#include "platform/ARXPath.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <dirent.h>
#include <fstream>
#include <functional>
#include <sstream>
#include <string>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>
#include <vector>

// What a test compares of a tree: for each item below the root (relative path as escaped text),
// its type and permission bits, size, a hash of its bytes, a link's text, a device's number, the
// modification time
// to the nanosecond and its user.* extended attributes. One line per item, sorted, so that a
// failing comparison shows exactly which item differs.
inline std::vector<std::string> ARXTreeSnapshot(const Path& root) {
    std::vector<std::string> lines;
    auto escaped = [](const std::string& bytes) {
        std::string out;
        for (const unsigned char c : bytes) {
            if (c < 0x20 || c >= 0x7f || c == '\\') {
                char hex[8];
                std::snprintf(hex, sizeof hex, "\\x%02x", c);
                out += hex;
            } else {
                out.push_back(char(c));
            }
        }
        return out;
    };
    std::function<void(const Path&, const std::string&)> walk = [&](const Path& path,
                                                                    const std::string& rel) {
        struct stat st {};
        if (::lstat(path.c_str(), &st) != 0) {
            lines.push_back(escaped(rel) + " MISSING");
            return;
        }
        std::ostringstream line;
        line << (rel.empty() ? "." : escaped(rel)) << " mode=" << std::oct << st.st_mode << std::dec
             << " mtime=" << st.st_mtim.tv_sec << "." << st.st_mtim.tv_nsec;
        if (S_ISREG(st.st_mode)) {
            std::ifstream in(path, std::ios::binary);
            const std::string bytes((std::istreambuf_iterator<char>(in)), {});
            line << " size=" << st.st_size << " hash=" << std::hash<std::string>{}(bytes);
        } else if (S_ISCHR(st.st_mode) || S_ISBLK(st.st_mode)) {
            line << " rdev=" << st.st_rdev;
        } else if (S_ISLNK(st.st_mode)) {
            std::string target(4096, '\0');
            const ssize_t n = ::readlink(path.c_str(), target.data(), target.size());
            target.resize(n > 0 ? size_t(n) : 0);
            line << " link=" << escaped(target);
        }
        if (!S_ISLNK(st.st_mode)) {
            char names[4096];
            const ssize_t length = ::llistxattr(path.c_str(), names, sizeof names);
            std::vector<std::string> attributes;
            for (ssize_t i = 0; i < length; i += ssize_t(std::strlen(names + i)) + 1) {
                const std::string name = names + i;
                if (name.rfind("user.", 0) != 0) {
                    continue;
                }
                char value[4096];
                const ssize_t size = ::lgetxattr(path.c_str(), name.c_str(), value, sizeof value);
                attributes.push_back(name + "=" + escaped(std::string(value, size > 0 ? size : 0)));
            }
            std::sort(attributes.begin(), attributes.end());
            for (const std::string& a : attributes) {
                line << " " << a;
            }
        }
        lines.push_back(line.str());
        if (S_ISDIR(st.st_mode)) {
            DIR* dir = ::opendir(path.c_str());
            if (!dir) {
                lines.push_back(escaped(rel) + " UNREADABLE");
                return;
            }
            std::vector<std::string> names;
            while (const dirent* e = ::readdir(dir)) {
                const std::string name = e->d_name;
                if (name != "." && name != "..") {
                    names.push_back(name);
                }
            }
            ::closedir(dir);
            for (const std::string& name : names) {
                walk(ARXPath::join(path, name), rel.empty() ? name : rel + "/" + name);
            }
        }
    };
    walk(root, "");
    std::sort(lines.begin(), lines.end());
    return lines;
}
