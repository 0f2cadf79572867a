#pragma once

#include "sample/LivedInMacContents.h"
#include "support/DiskFolder.h"

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

namespace korvanti::testing {

/// Makes the lived-in Mac of `LivedInMacContents.h` at the places of the Mac in the box: files, repositories,
/// and what its tools say. Throws when the system refuses.
class SampleMac {
public:
    /// The bytes that a folder or an application is filled with, by its path and size in the tables.
    using SizeOf = std::function<std::int64_t(std::string_view path, std::int64_t bytes)>;

    /// All dates are counted back from `now`, in seconds since 1970.
    explicit SampleMac(std::int64_t now, SizeOf sizeOf = {});

    void make() const;

    [[nodiscard]] std::int64_t now() const { return now_; }
    /// So many days and a half before: far from where a day, a week, a month begins.
    [[nodiscard]] std::int64_t ago(int days) const;
    /// "{3 days}" in a text becomes the instant three days and a half ago.
    [[nodiscard]] std::string dated(std::string_view text) const;

    /// A path of the tables in full.
    [[nodiscard]] static std::string absolute(std::string_view path);
    void file(std::string_view path, const DiskFolder::File& contents) const;
    /// Fills a folder up to a size, in whole pages. What it is filled with are links to a few files, which
    /// count in full in every folder, so that gigabytes fit into the box's memory.
    void fill(std::string_view path, std::int64_t bytes, int days) const;

private:
    [[nodiscard]] std::int64_t sizeOf(std::string_view path, std::int64_t bytes) const;
    void install(const LivedIn::Application& application) const;
    void make(const LivedIn::Project& project) const;
    void makeMoneyApp() const;
    void makeSmallThings() const;
    void answerForTools() const;

    std::int64_t now_;
    SizeOf sizeOf_;
};

/// Files of 1, 2, 4, … pages in a folder of their own, to fill other folders of the same volume with.
class Blocks {
public:
    Blocks(std::string folder, int largest); ///< of 2^largest pages

    void make(std::int64_t modified) const;
    /// The folder's own page tells its date.
    void fill(const DiskFolder& folder, std::int64_t bytes, std::int64_t modified) const;

private:
    DiskFolder folder_;
    int largest_;
};

} // namespace korvanti::testing
