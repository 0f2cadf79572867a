#include "support/NewProcess.h"

#include <cstdio>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

namespace korvanti::testing {

void inANewProcess(const std::function<void()>& body) {
    std::fflush(nullptr);
    const pid_t process = ::fork();
    ASSERT_GE(process, 0);
    if (process == 0) {
        ::alarm(60);
        body();
        std::fflush(nullptr);
        ::_exit(::testing::Test::HasFailure() ? 1 : 0);
    }
    int status = 0;
    ASSERT_EQ(::waitpid(process, &status, 0), process);
    EXPECT_EQ(status, 0) << "see above";
}

} // namespace korvanti::testing
