// Runs the speed test once and prints its two figures.

#include "drives/VolumeService.h"

#include <cmath>
#include <cstdio>
#include <cstdlib>

int main(int argc, char** argv) {
    using namespace korvanti;
    if (argc != 3) {
        std::fputs("usage: korvanti_speed_once FOLDER MEGABYTES\n", stderr);
        return 2;
    }
    const auto speed = VolumeService::speedTest(argv[1], std::atoll(argv[2]));
    if (!speed) {
        std::fprintf(stderr, "%s\n", speed.error().description().c_str());
        return 1;
    }
    std::printf("writeMBps %lld\nreadMBps %lld\n", std::llround(speed->writeMBps),
                std::llround(speed->readMBps));
    return 0;
}
