#pragma once

#include <cstdint>
#include <optional>
#include <string>

// The names of the user and the group that own items, from the system's account databases
// (NSS, so also LDAP and the like). Nullopt for an id without a name.
namespace ARXFileOwners {

std::optional<std::string> userName(uint32_t uid);
std::optional<std::string> groupName(uint32_t gid);

} // namespace ARXFileOwners
