#include "sample/DemoMac.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <exception>
#include <unistd.h>

/// korvanti-demo-mac PROGRAM ARGUMENTS…: makes the Mac of ./demo in the box and becomes the program.
int main(int argc, char** argv) {
    try {
        korvanti::testing::makeDemoMac();
    } catch (const std::exception& error) {
        std::fprintf(stderr, "The sample Mac could not be made: %s\n", error.what());
        return 1;
    }
    if (argc < 2)
        return 0;
    ::execvp(argv[1], argv + 1);
    std::fprintf(stderr, "%s: %s\n", argv[1], std::strerror(errno));
    return 127;
}
