#include "start/ProcessStart.h"

#include "platform/Platform.h"
#include "process/Toolchain.h"

#include <csignal>
#include <fcntl.h>

namespace korvanti {
namespace {

/// A standard stream that the caller closed must not become the number of a folder that we open.
void keepStandardStreamsTaken() {
    for (int descriptor = 0; descriptor <= 2; ++descriptor) {
        if (::fcntl(descriptor, F_GETFD) < 0)
            static_cast<void>(::open("/dev/null", O_RDWR));
    }
}

} // namespace

void prepareProcess() {
    keepStandardStreamsTaken();
    std::signal(SIGCHLD, SIG_DFL); // a caller that ignores it leaves that to us, and no tool its status
    std::signal(SIGPIPE, SIG_IGN); // who stops reading our output gets no more of it; that is no fault
    Platform::raiseOpenFileLimit();
    Toolchain::restrainGit();
}

} // namespace korvanti
