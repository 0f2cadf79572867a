#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace korvanti::testing {

/// A folder on the real disk to fill with files. Every operation gives the full path of what it made, and
/// throws std::system_error when the system refuses. Needs no test around it.
class DiskFolder {
public:
    /// Nothing is made yet.
    explicit DiskFolder(std::string path);

    /// The folder itself, or a path inside it.
    [[nodiscard]] std::string path(std::string_view relative = {}) const;

    /// What a file holds; missing parents are made.
    struct File {
        std::string text = {};
        std::int64_t allocatedBytes = 0;           ///< really allocated, beyond the text
        std::int64_t sparseBytes = 0;              ///< length without blocks
        std::optional<std::int64_t> modified = {}; ///< seconds since 1970
    };
    std::string file(std::string_view relative, const File& contents) const;
    std::string file(std::string_view relative) const { return file(relative, File{}); }
    std::string folder(std::string_view relative) const;
    std::string symlink(std::string_view relative, const std::string& target) const;
    std::string hardLink(std::string_view relative, const std::string& existing) const;
    void setModified(std::string_view relative, std::int64_t secondsSince1970) const;
    void setMode(std::string_view relative, unsigned mode) const;

private:
    std::string root_;
};

} // namespace korvanti::testing
