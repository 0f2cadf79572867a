#include "LivedInMac.h"

#include "base/Instant.h"

#include <optional>

namespace korvanti::testing {

LivedInMac::LivedInMac() : sample(wholeSeconds(currentInstant())) {}

ProgramResult LivedInMac::scan(const std::vector<std::string>& arguments, ProgramOptions options) {
    options.environment.insert({{"ANDROID_HOME", std::nullopt}, {"ANDROID_SDK_ROOT", std::nullopt}});
    return korvanti(arguments, options);
}

} // namespace korvanti::testing
