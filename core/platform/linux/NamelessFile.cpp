#include "base/SystemCall.h"
#include "platform/Platform.h"

#include <fcntl.h>

namespace korvanti::Platform {

int openNamelessFile(const std::string& folder) {
    return uninterrupted(
        [&] { return ::open(folder.c_str(), O_TMPFILE | O_RDWR | O_CLOEXEC, S_IRUSR | S_IWUSR); });
}

} // namespace korvanti::Platform
