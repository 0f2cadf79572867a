#include "window/SingleInstance.h"

#include "UiSupport.h"
#include "platform/Platform.h"
#include "support/TempFolder.h"

#include <QSignalSpy>
#include <chrono>
#include <csignal>
#include <filesystem>
#include <gtest/gtest.h>
#include <string>
#include <sys/file.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace korvanti {
namespace {

using namespace std::chrono_literals;
using Start = SingleInstance::Start;

class SingleInstanceTests : public testing::UiTests {
protected:
    [[nodiscard]] Start startOfAnother(std::chrono::milliseconds patience = 10s) const {
        return SingleInstance(temp.path()).start(patience);
    }

    testing::TempFolder temp;
};

TEST_F(SingleInstanceTests, theSecondAsksTheFirstToShowItself) {
    SingleInstance first(temp.path());
    ASSERT_EQ(first.start(), Start::goOn);
    QSignalSpy shown(&first, &SingleInstance::showRequested);
    for (int times = 1; times <= 2; ++times) {
        auto second = Start::goOn;
        std::thread other([&] { second = startOfAnother(); });
        EXPECT_TRUE(shown.wait());
        other.join();
        EXPECT_EQ(second, Start::asked);
        EXPECT_EQ(shown.count(), times);
    }
}

TEST_F(SingleInstanceTests, oneThatIsBusyIsAskedAllTheSame) {
    SingleInstance first(temp.path());
    ASSERT_EQ(first.start(), Start::goOn);
    QSignalSpy shown(&first, &SingleInstance::showRequested);
    EXPECT_EQ(startOfAnother(), Start::asked); // while nothing here turns the event loop
    EXPECT_TRUE(shown.wait());
}

TEST_F(SingleInstanceTests, afterTheFirstHasEndedTheNextIsTheFirst) {
    for (int times = 0; times < 3; ++times)
        EXPECT_EQ(startOfAnother(), Start::goOn);
}

TEST_F(SingleInstanceTests, whatACrashedOneLeftIsInNobodysWay) {
    const auto child = ::fork();
    if (child == 0) {
        SingleInstance crashed(temp.path());
        if (crashed.start() == Start::goOn)
            ::raise(SIGKILL);
        ::_exit(1);
    }
    int status = 0;
    ASSERT_EQ(::waitpid(child, &status, 0), child);
    ASSERT_TRUE(WIFSIGNALED(status));
    ASSERT_TRUE(std::filesystem::exists(temp.path("Window/socket")));

    SingleInstance next(temp.path());
    EXPECT_EQ(next.start(), Start::goOn);
    EXPECT_EQ(startOfAnother(), Start::asked);
}

TEST_F(SingleInstanceTests, oneThatIsEndingIsWaitedForAndNotAsked) {
    SingleInstance first(temp.path());
    ASSERT_EQ(first.start(), Start::goOn);
    first.stopAnswering();
    EXPECT_EQ(startOfAnother(100ms), Start::noAnswer);
}

TEST_F(SingleInstanceTests, whereNoLockCanBeMadeTheProgramStarts) {
    temp.file("file");
    temp.symlink("link/Window", temp.folder("elsewhere"));
    for (const auto& folder : {temp.path("file/x"), temp.path("link"), std::string("/proc/none")}) {
        SingleInstance first(folder);
        EXPECT_EQ(first.start(), Start::goOn) << folder;
        EXPECT_EQ(SingleInstance(folder).start(), Start::goOn) << folder;
    }
    EXPECT_TRUE(std::filesystem::is_empty(temp.path("elsewhere")));
}

TEST_F(SingleInstanceTests, whereNoSocketCanBeMadeTheProgramStarts) {
    const auto folder = temp.folder(std::string(150, 'x')); // too long for one
    SingleInstance first(folder);
    EXPECT_EQ(first.start(), Start::goOn);
    EXPECT_EQ(SingleInstance(folder).start(), Start::goOn);
}

TEST_F(SingleInstanceTests, theFolderAroundItStaysFreeToBeLockedByOthers) {
    SingleInstance first(temp.path());
    ASSERT_EQ(first.start(), Start::goOn);
    const FileDescriptor folder(Platform::openFolder(temp.path()));
    EXPECT_EQ(::flock(folder.get(), LOCK_EX | LOCK_NB), 0);
    EXPECT_EQ(startOfAnother(), Start::asked);
}

TEST_F(SingleInstanceTests, twoUsersDoNotMeet) {
    SingleInstance first(temp.folder("one"));
    SingleInstance second(temp.folder("two"));
    EXPECT_EQ(first.start(), Start::goOn);
    EXPECT_EQ(second.start(), Start::goOn);
}

} // namespace
} // namespace korvanti
