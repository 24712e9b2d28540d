#include "platform/ARXFileOwners.h"

#include <cerrno>
#include <grp.h>
#include <pwd.h>
#include <unistd.h>
#include <vector>

namespace {

// The re-entrant lookups want a buffer; it grows while the entry does not fit.
template <typename Entry, typename Lookup, typename NameOf>
std::optional<std::string> lookUp(int sizeKey, Lookup lookup, NameOf nameOf) {
    constexpr size_t kLargestBuffer = size_t(1) << 20;
    const long hint = ::sysconf(sizeKey);
    std::vector<char> buffer(hint > 0 ? size_t(hint) : 1024);
    Entry entry{};
    Entry* found = nullptr;
    int error = 0;
    while ((error = lookup(&entry, buffer.data(), buffer.size(), &found)) == ERANGE &&
           buffer.size() < kLargestBuffer) {
        buffer.resize(buffer.size() * 2);
    }
    const char* name = (error == 0 && found) ? nameOf(entry) : nullptr;
    return name ? std::optional<std::string>(name) : std::nullopt;
}

} // namespace

namespace ARXFileOwners {

std::optional<std::string> userName(uint32_t uid) {
    return lookUp<passwd>(
        _SC_GETPW_R_SIZE_MAX,
        [uid](passwd* entry, char* buffer, size_t size, passwd** found) {
            return ::getpwuid_r(uid, entry, buffer, size, found);
        },
        [](const passwd& entry) { return entry.pw_name; });
}

std::optional<std::string> groupName(uint32_t gid) {
    return lookUp<group>(
        _SC_GETGR_R_SIZE_MAX,
        [gid](group* entry, char* buffer, size_t size, group** found) {
            return ::getgrgid_r(gid, entry, buffer, size, found);
        },
        [](const group& entry) { return entry.gr_name; });
}

} // namespace ARXFileOwners
