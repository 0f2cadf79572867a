#pragma once

#include "EndToEnd.h"
#include "LivedInMacContents.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace korvanti::testing {

/// The real program on the Mac of somebody who has built for iPhones, Android and the web for years:
/// something for every source of items, and beside it what must not be listed. All dates are counted back
/// from now.
class LivedInMac : public EndToEnd {
protected:
    void SetUp() override;

    [[nodiscard]] static ProgramResult scan(const std::vector<std::string>& arguments,
                                            ProgramOptions options = {});

    const std::int64_t now; ///< when the Mac was made, in seconds since 1970
    /// So many days and a half before: far from where a day, a week, a month begins.
    [[nodiscard]] std::int64_t ago(int days) const;
    /// A path of the tables in full.
    [[nodiscard]] std::string absolute(std::string_view path) const;

    LivedInMac();
    const BoxFolder systemApplications{"/System/Applications"};
    const BoxFolder assets{"/System/Library/AssetsV2"};

private:
    struct Spot {
        const TempFolder& folder;
        std::string relative;
    };
    [[nodiscard]] Spot spot(std::string_view path) const;

    void fill(std::string_view folder, std::int64_t bytes, int days) const;
    void install(const LivedIn::Application& application) const;
    void make(const LivedIn::Project& project) const;
    void makeMoneyApp() const;
    void makeSmallThings() const;
    void answerForTools() const;

    /// Files of 1, 2, 4, … pages. What fills a folder are links to them, which count in full in every folder,
    /// so that gigabytes fit into the box's memory.
    const BoxFolder blocks_{"/box/blocks"};
};

} // namespace korvanti::testing
