#include "shell/linux/LoginEntry.h"

#include "base/Text.h"

#include <algorithm>

namespace korvanti::LoginEntry {
namespace {

/// A path as the one word of a command. It is quoted as the command's word, where "%" begins a placeholder,
/// and that once more as the value of a key.
std::string command(std::string_view program) {
    std::string word = "\"";
    for (const char byte : program) {
        if (std::string_view("\"`$\\").contains(byte))
            word += '\\';
        word += byte;
        if (byte == '%')
            word += byte;
    }
    word += '"';
    std::string value = Text::replaced(word, "\\", "\\\\");
    value = Text::replaced(value, "\n", "\\n");
    return Text::replaced(value, "\r", "\\r");
}

} // namespace

std::string text(std::string_view program, bool isEnabled) {
    return "[Desktop Entry]\nType=Application\nName=Korvanti\nExec=" + command(program) +
           "\nHidden=" + (isEnabled ? "false" : "true") + "\n";
}

bool isEnabled(std::string_view text) {
    const auto lines = Text::pieces(text, '\n');
    const auto says = [&](std::string_view line) { return std::ranges::find(lines, line) != lines.end(); };
    return says("[Desktop Entry]") && !says("Hidden=true") && !says("X-GNOME-Autostart-enabled=false");
}

} // namespace korvanti::LoginEntry
