// Measures one folder with SizeCalculator, as often as asked, and prints the last result.

#include "fs/SizeCalculator.h"
#include "platform/Platform.h"

#include <charconv>
#include <cstdio>
#include <fmt/format.h>
#include <string_view>
#include <sys/resource.h>

int main(int argc, char** argv) {
    int times = 0;
    if (argc == 3) {
        const std::string_view text = argv[2];
        std::from_chars(text.data(), text.data() + text.size(), times);
    }
    if (times < 1) {
        std::fputs("usage: korvanti_measure_tree FOLDER TIMES\n", stderr);
        return 2;
    }
    korvanti::Platform::raiseOpenFileLimit(); // as the program does when it starts
    korvanti::SizeResult size;
    for (; times > 0; --times)
        size = korvanti::SizeCalculator::measure(argv[1]);

    rusage usage{};
    ::getrusage(RUSAGE_SELF, &usage);
#ifdef __APPLE__
    const std::int64_t peak = usage.ru_maxrss;
#else
    const std::int64_t peak = usage.ru_maxrss * 1024;
#endif
    fmt::print("bytes {}\nlogicalBytes {}\nfiles {}\nunreadable {}\npeakMemory {}\n", size.bytes,
               size.logicalBytes, size.files, size.unreadable, peak);
    return 0;
}
