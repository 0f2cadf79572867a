#pragma once

#include <string_view>

namespace korvanti {

/// Puts a path or a command on the general pasteboard, as bytes: who asks for bytes gets the very path even
/// where it is no text.
void copyToClipboard(std::string_view bytes);

} // namespace korvanti
