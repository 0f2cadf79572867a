#include "platform/Platform.h"
#include "process/Toolchain.h"
#include "terminal/TerminalFace.h"

#include <csignal>
#include <cstdio>
#include <fcntl.h>
#include <string>
#include <vector>

namespace {

/// A standard stream that the caller closed must not become the number of a folder that we open.
void keepStandardStreamsTaken() {
    for (int descriptor = 0; descriptor <= 2; ++descriptor) {
        if (::fcntl(descriptor, F_GETFD) < 0)
            static_cast<void>(::open("/dev/null", O_RDWR));
    }
}

} // namespace

int main(int argc, char** argv) {
    keepStandardStreamsTaken();
    std::signal(SIGCHLD, SIG_DFL); // a caller that ignores it leaves that to us, and no tool its status
    std::signal(SIGPIPE, SIG_IGN); // who stops reading our output gets no more of it; that is no fault
    korvanti::Platform::raiseOpenFileLimit();
    korvanti::Toolchain::restrainGit();

    const std::vector<std::string> arguments(argv + (argc > 0 ? 1 : 0), argv + argc);
    if (korvanti::TerminalFace::isChosen(arguments))
        return korvanti::TerminalFace::run(arguments);
    std::fputs("Build ini belum punya jendela. Jalankan `korvanti --report` untuk laporan di terminal.\n",
               stderr);
    return 0;
}
