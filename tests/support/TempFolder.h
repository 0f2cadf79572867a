#pragma once

#include "support/DiskFolder.h"

#include <cstdint>
#include <string>

namespace korvanti::testing {

/// A fresh folder on the real disk, its path resolved, removed with all that is in it at the end.
class TempFolder : public DiskFolder {
public:
    TempFolder();
    ~TempFolder();
    TempFolder(const TempFolder&) = delete;
    TempFolder& operator=(const TempFolder&) = delete;

protected:
    /// Takes over a folder that stands already, to be removed at the end like a fresh one.
    explicit TempFolder(std::string path);
};

/// The blocks that a path occupies by `lstat`, in bytes: what a measurement is compared with.
[[nodiscard]] std::int64_t blocksOf(const std::string& path);

/// The whole of a file; fails the running test when it can't be read.
[[nodiscard]] std::string textOf(const std::string& path);

} // namespace korvanti::testing
