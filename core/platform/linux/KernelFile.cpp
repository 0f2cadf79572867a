#include "platform/linux/KernelFile.h"

#include "base/FileDescriptor.h"
#include "base/SystemCall.h"

#include <fcntl.h>
#include <unistd.h>

namespace korvanti::Platform {

std::string kernelFile(const std::string& path) {
    std::string text;
    const FileDescriptor file(uninterrupted([&] { return ::open(path.c_str(), O_RDONLY | O_CLOEXEC); }));
    char buffer[16 * 1024];
    while (true) {
        const auto count = uninterrupted([&] { return ::read(file.get(), buffer, sizeof buffer); });
        if (count < 0)
            return {};
        if (count == 0)
            return text;
        text.append(buffer, static_cast<std::size_t>(count));
    }
}

} // namespace korvanti::Platform
