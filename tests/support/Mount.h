#pragma once

#include <cstdint>
#include <string>

namespace korvanti::testing {

/// A mount that lasts as long as the object; fails the running test when the system refuses. Takes the right
/// to mount: the box as root.
class Mount {
public:
    /// A memory file system.
    explicit Mount(std::string point);
    /// A memory file system with room for so many bytes of files, in whole pages.
    Mount(std::string point, std::int64_t room);
    /// What lies at `source`, shown at a second place.
    Mount(const std::string& source, std::string point);
    ~Mount();
    Mount(const Mount&) = delete;
    Mount& operator=(const Mount&) = delete;

private:
    void mount(const std::string& source, const char* type, unsigned long flags,
               const std::string& options = {}) const;

    std::string point_;
};

} // namespace korvanti::testing
