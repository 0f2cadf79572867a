// Removes one folder as the cleaner does, behind the guard, and says what went wrong.

#include "cleaning/SafetyGuard.h"
#include "cleaning/TreeRemover.h"
#include "platform/Platform.h"

#include <cstdio>
#include <string>

int main(int argc, char** argv) {
    using namespace korvanti;
    if (argc != 3) {
        std::fputs("usage: korvanti_remove_tree HOME FOLDER-IN-HOME\n", stderr);
        return 2;
    }
    Platform::raiseOpenFileLimit(); // as the program does when it starts
    const auto admitted = SafetyGuard(argv[1]).admit(argv[2], {});
    if (!admitted) {
        std::fprintf(stderr, "%s: refused\n", argv[2]);
        return 1;
    }
    if (const auto removed = TreeRemover::remove(*admitted); !removed) {
        std::fprintf(stderr, "%s\n", removed.error().description().c_str());
        return 1;
    }
    return 0;
}
