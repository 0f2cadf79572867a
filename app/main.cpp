#include "platform/Platform.h"
#include "start/ProcessStart.h"
#include "terminal/TerminalFace.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <string>
#include <unistd.h>
#include <vector>

namespace {

/// The window is a program of its own beside this one, so that the terminal face loads none of it.
int becomeTheWindow(char** argv) {
    const auto own = korvanti::Platform::executablePath();
    auto window = own.substr(0, own.rfind('/') + 1) + "korvanti-window";
    argv[0] = window.data();
    ::execv(window.c_str(), argv);
    std::fprintf(stderr,
                 "Jendela Korvanti tidak bisa dibuka: %s: %s\n"
                 "Jalankan `korvanti --report` untuk laporan di terminal.\n",
                 window.c_str(), std::strerror(errno));
    return 1;
}

} // namespace

int main(int argc, char** argv) {
    korvanti::prepareProcess();
    const std::vector<std::string> arguments(argv + (argc > 0 ? 1 : 0), argv + argc);
    if (korvanti::TerminalFace::isChosen(arguments))
        return korvanti::TerminalFace::run(arguments);
    return argc > 0 ? becomeTheWindow(argv) : 1;
}
