#pragma once

#include <string>
#include <vector>

/// The read-only face of the program.
namespace korvanti::TerminalFace {

/// One of the flags of the terminal face is among the arguments (without the program's name). Flags are whole
/// words, case-sensitive; anything else means the application.
[[nodiscard]] bool isChosen(const std::vector<std::string>& arguments);

/// Does what the flags ask for and blocks until it is done. Results go to standard output, progress to
/// standard error. Gives the exit status, which is 0 on every path, also when nobody reads the output.
[[nodiscard]] int run(const std::vector<std::string>& arguments);

} // namespace korvanti::TerminalFace
