#pragma once

#include "drives/VolumeInfo.h"

#include <string>
#include <vector>

namespace korvanti::VolumeText {

/// The external volumes and the advice on each as the terminal shows them, one element a print call; some
/// begin with an empty line. Names are made printable.
[[nodiscard]] std::vector<std::string> lines(const std::vector<VolumeInfo>& volumes);

} // namespace korvanti::VolumeText
