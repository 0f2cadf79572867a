#include "base/FileError.h"

#include "base/SystemCall.h"

#include <cerrno>
#include <gtest/gtest.h>
#include <string>
#include <system_error>
#include <utility>
#include <vector>

namespace korvanti {
namespace {

FileError errorOf(int number, std::string systemText = {}) {
    return {.path = "/a/b c", .code = {number, std::generic_category()}, .systemText = std::move(systemText)};
}

TEST(FileErrorTests, theTextNamesThePathAndTheReason) {
    const std::vector<std::pair<int, std::string>> reasons = {
        {EACCES, "tidak ada izin"},
        {EPERM, "tidak ada izin"},
        {EBUSY, "sedang dipakai"},
        {EIO, "kesalahan baca/tulis pada disk"},
        {ELOOP, "jalurnya melewati symlink"},
        {EMFILE, "terlalu banyak file yang terbuka"},
        {ENFILE, "terlalu banyak file yang terbuka"},
        {ENAMETOOLONG, "nama terlalu panjang"},
        {ENOENT, "sudah tidak ada"},
        {ENOSPC, "ruang disk habis"},
        {EDQUOT, "ruang disk habis"},
        {ENOTEMPTY, "ada isi baru selagi dihapus"},
        {EROFS, "volume hanya bisa dibaca"},
        {ESTALE, "berubah selagi diproses"},
        {EXDEV, "berada di volume lain"},
    };
    for (const auto& [number, reason] : reasons)
        EXPECT_EQ(errorOf(number).description(), "Gagal pada /a/b c: " + reason) << number;
}

TEST(FileErrorTests, aRareReasonIsToldInTheSystemsWords) {
    EXPECT_EQ(errorOf(ENOEXEC).description(),
              "Gagal pada /a/b c: " + std::generic_category().message(ENOEXEC));
}

TEST(FileErrorTests, thePlatformsOwnWordsAreTheWholeText) {
    EXPECT_EQ(errorOf(EACCES, "The file couldn’t be moved.").description(), "The file couldn’t be moved.");
}

TEST(FileErrorTests, onlyAMissingRightIsAMatterOfPermission) {
    EXPECT_TRUE(errorOf(EACCES).isPermission());
    EXPECT_TRUE(errorOf(EPERM).isPermission());
    EXPECT_TRUE(errorOf(EPERM, "in other words").isPermission());
    for (const int number : {EBUSY, EIO, ELOOP, ENOENT, ENOTEMPTY, EROFS, ESTALE, EXDEV})
        EXPECT_FALSE(errorOf(number).isPermission()) << number;
    EXPECT_FALSE(FileError().isPermission());
}

TEST(FileErrorTests, theLastErrorIsThatOfTheSystemCall) {
    errno = ENOTEMPTY;
    EXPECT_EQ(lastFileError("/x"),
              (FileError{"/x", std::make_error_code(std::errc::directory_not_empty), {}}));
}

TEST(FileErrorTests, errorsDifferByPathCodeAndText) {
    EXPECT_EQ(errorOf(EIO), errorOf(EIO));
    EXPECT_NE(errorOf(EIO), errorOf(EPERM));
    EXPECT_NE(errorOf(EIO), errorOf(EIO, "text"));
    EXPECT_NE(errorOf(EIO), (FileError{.path = "/other", .code = errorOf(EIO).code, .systemText = {}}));
}

/// A system call that answers as told, one answer after the other.
struct Answers {
    struct Answer {
        int result;
        int error;
    };
    std::vector<Answer> left; ///< the last one comes first
    int calls = 0;

    int operator()() {
        ++calls;
        const auto answer = left.back();
        left.pop_back();
        errno = answer.error;
        return answer.result;
    }
};

TEST(SystemCallTests, anInterruptedCallIsRepeatedUntilItIsNot) {
    Answers answers{.left = {{7, 0}, {-1, EINTR}, {-1, EINTR}}};
    EXPECT_EQ(uninterrupted([&] { return answers(); }), 7);
    EXPECT_EQ(answers.calls, 3);
}

TEST(SystemCallTests, anyOtherErrorIsTheAnswer) {
    Answers answers{.left = {{7, 0}, {-1, EIO}}};
    EXPECT_EQ(uninterrupted([&] { return answers(); }), -1);
    EXPECT_EQ(errno, EIO);
    EXPECT_EQ(answers.calls, 1);
}

TEST(SystemCallTests, anOldErrorNumberDoesNotRepeatWhatSucceeded) {
    Answers answers{.left = {{7, 0}, {0, EINTR}}};
    EXPECT_EQ(uninterrupted([&] { return answers(); }), 0);
    EXPECT_EQ(answers.calls, 1);
}

} // namespace
} // namespace korvanti
