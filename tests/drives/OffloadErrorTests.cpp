#include "drives/OffloadError.h"

#include "base/ByteText.h"
#include "platform/Platform.h"

#include <gtest/gtest.h>
#include <string>
#include <system_error>

namespace korvanti {
namespace {

using Kind = OffloadError::Kind;

TEST(OffloadErrorTests, tooLittleSpaceIsToldWithBothSizes) {
    const OffloadError error{.kind = Kind::notEnoughSpace, .needed = 1'100'000'000, .available = 900'000'000};
    EXPECT_EQ(error.description(), "Ruang SSD kurang: perlu " + bytesText(1'100'000'000) + ", tersedia " +
                                       bytesText(900'000'000) + ".");
}

TEST(OffloadErrorTests, anUnsupportedFormatIsNamed) {
    EXPECT_EQ((OffloadError{.kind = Kind::unsupportedFormat, .payload = "ExFAT"}.description()),
              "Format ExFAT tidak aman untuk data dev (symlink & izin file hilang). Format SSD ke APFS, atau "
              "pindahkan hanya foto/video.");
}

TEST(OffloadErrorTests, anOccupiedOldPlaceIsToldByItsPathFromHome) {
    const auto path = Platform::homeFolder() + "/Library/Caches/x";
    EXPECT_EQ((OffloadError{.kind = Kind::originalOccupied, .payload = path}.description()),
              "Lokasi asal sudah berisi data baru: ~/Library/Caches/x");
}

TEST(OffloadErrorTests, aFailedCopyIsToldInTheToolsWords) {
    EXPECT_EQ((OffloadError{.kind = Kind::copyFailed, .payload = "ditto: no room"}.description()),
              "Gagal menyalin: ditto: no room");
}

TEST(OffloadErrorTests, aFailedVerificationSaysThatTheOriginalStands) {
    EXPECT_EQ((OffloadError{.kind = Kind::verifyFailed, .payload = "beda."}.description()),
              "Verifikasi salinan gagal (data asal TIDAK dihapus): beda.");
}

TEST(OffloadErrorTests, aMissingSourceHasItsWords) {
    EXPECT_EQ((OffloadError{.kind = Kind::sourceMissing}.description()), "Data asal sudah tidak ada.");
}

TEST(OffloadErrorTests, aMissingVolumeHasItsWords) {
    EXPECT_EQ((OffloadError{.kind = Kind::volumeMissing}.description()), "SSD tidak terpasang.");
}

TEST(OffloadErrorTests, aFailureIsDescribedByWhoeverGaveIt) {
    EXPECT_EQ(description(OffloadError{.kind = Kind::volumeMissing}), "SSD tidak terpasang.");
    EXPECT_EQ(description(GuardError{.kind = GuardError::Kind::isRepository, .payload = "/x"}),
              "Ini repository git (kode sumber): /x");
    EXPECT_EQ(description(FileError{.path = "/x",
                                    .code = std::make_error_code(std::errc::no_space_on_device),
                                    .systemText = {}}),
              "Gagal pada /x: ruang disk habis");
}

} // namespace
} // namespace korvanti
