#pragma once

#include "fs/PathTools.h"

#include <map>
#include <string>
#include <vector>

namespace korvanti {

/// The entry with the highest version of each group, the earliest of equal ones. Looks into `entries`.
template <class Entry>
[[nodiscard]] std::map<std::string, const Entry*>
newestVersions(const std::vector<Entry>& entries, std::string Entry::*group, std::string Entry::*version) {
    std::map<std::string, const Entry*> newest;
    for (const Entry& entry : entries) {
        const Entry*& best = newest.try_emplace(entry.*group, &entry).first->second;
        if (PathTools::compareVersions(entry.*version, best->*version) > 0)
            best = &entry;
    }
    return newest;
}

} // namespace korvanti
