#pragma once

#include "EndToEnd.h"
#include "sample/SampleMac.h"

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
    LivedInMac();
    void SetUp() override { sample.make(); }

    [[nodiscard]] static ProgramResult scan(const std::vector<std::string>& arguments,
                                            ProgramOptions options = {});

    [[nodiscard]] std::int64_t ago(int days) const { return sample.ago(days); }
    [[nodiscard]] static std::string absolute(std::string_view path) { return SampleMac::absolute(path); }

    const BoxFolder systemApplications{"/System/Applications"};
    const BoxFolder assets{"/System/Library/AssetsV2"};
    const SampleMac sample;

private:
    const BoxFolder blocks_{"/box/blocks"};
};

} // namespace korvanti::testing
