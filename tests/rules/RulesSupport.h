#pragma once

#include "base/Instant.h"
#include "support/Items.h"
#include "support/TempFolder.h"

#include <cstdint>
#include <map>
#include <string>
#include <utility>
#include <vector>

namespace korvanti::testing {

/// A table of tests/data/rules: its lines cut at the tabs. Lines that begin with "#" are left out.
[[nodiscard]] std::vector<std::vector<std::string>> ruleTable(const std::string& name);

/// The largest multiple of a block that is less, the smallest that is not.
constexpr std::int64_t sizeBelow(std::int64_t bytes) {
    return (bytes - 1) / 4096 * 4096;
}
constexpr std::int64_t sizeFrom(std::int64_t bytes) {
    return (bytes + 4095) / 4096 * 4096;
}

/// The moment of the scan in these tests, and moments before it.
inline constexpr std::int64_t nowSeconds = 1'750'000'000;
inline constexpr std::int64_t day = 86'400;
constexpr std::int64_t secondsAgo(std::int64_t days, std::int64_t seconds = 0) {
    return nowSeconds - days * day - seconds;
}
Instant now();
Instant ago(std::int64_t days, std::int64_t seconds = 0);

/// Makes folders heavy and takes little of the disk for it: each name of a hard link counts in full.
class Weights {
public:
    /// The files themselves lie in `pool`, which must be on the file system of the folders.
    explicit Weights(const TempFolder& pool) : pool_(pool) {}

    /// Adds that many bytes, a multiple of 4096, to a folder, in files changed at that time.
    void add(const std::string& folder, std::int64_t bytes, std::int64_t modified);

private:
    const std::string& file(std::int64_t bytes, std::int64_t modified);

    const TempFolder& pool_;
    std::map<std::pair<std::int64_t, std::int64_t>, std::string> files_;
    int count_ = 0;
};

} // namespace korvanti::testing
