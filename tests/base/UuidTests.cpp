#include "base/Uuid.h"

#include <gtest/gtest.h>
#include <optional>
#include <set>
#include <string>

namespace korvanti {
namespace {

const std::string canonical = "0123ABCD-89EF-4567-89AB-CDEF01234567";

TEST(UuidTests, theCanonicalFormIsReadByteByByte) {
    const auto uuid = Uuid::parse(canonical);
    ASSERT_TRUE(uuid);
    const std::array<std::uint8_t, 16> bytes = {0x01, 0x23, 0xAB, 0xCD, 0x89, 0xEF, 0x45, 0x67,
                                                0x89, 0xAB, 0xCD, 0xEF, 0x01, 0x23, 0x45, 0x67};
    EXPECT_EQ(uuid->bytes, bytes);
    EXPECT_EQ(uuid->text(), canonical);
}

TEST(UuidTests, digitsOfAnyCaseAreReadAndWrittenAsCapitals) {
    for (const auto* text :
         {"0123abcd-89ef-4567-89ab-cdef01234567", "0123aBcD-89Ef-4567-89aB-cDEf01234567"}) {
        const auto uuid = Uuid::parse(text);
        ASSERT_TRUE(uuid) << text;
        EXPECT_EQ(uuid->text(), canonical);
    }
}

TEST(UuidTests, theLowestAndTheHighestAreRead) {
    for (const std::string text :
         {"00000000-0000-0000-0000-000000000000", "FFFFFFFF-FFFF-FFFF-FFFF-FFFFFFFFFFFF"})
        EXPECT_EQ(Uuid::parse(text).value_or(Uuid::random()).text(), text);
}

TEST(UuidTests, nothingButTheCanonicalFormIsRead) {
    for (const std::string& text : {
             std::string(),
             std::string("x"),
             canonical.substr(1),
             canonical.substr(0, 35),
             canonical + "0",
             canonical + " ",
             " " + canonical,
             canonical + "\n",
             "{" + canonical + "}",
             "urn:uuid:" + canonical,
             std::string("0123ABCD89EF456789ABCDEF01234567"),     // no hyphens
             std::string("0123ABC-D89EF-4567-89AB-CDEF01234567"), // other groups
             std::string("0123ABCD-89EF-4567-89ABC-DEF01234567"),
             std::string("0123ABCD_89EF_4567_89AB_CDEF01234567"),
             std::string("0123ABCD-89EF-4567-89AB-CDEF0123456-"),
             std::string("-123ABCD-89EF-4567-89AB-CDEF01234567"),
             std::string("0123ABCG-89EF-4567-89AB-CDEF01234567"), // no such digit
             std::string("0123ABC@-89EF-4567-89AB-CDEF01234567"), // beside the digits in ASCII
             std::string("0123ABC`-89EF-4567-89AB-CDEF01234567"),
             std::string("0123ABC/-89EF-4567-89AB-CDEF01234567"),
             std::string("0123ABC:-89EF-4567-89AB-CDEF01234567"),
             std::string("+123ABCD-89EF-4567-89AB-CDEF01234567"),
             std::string("0x23ABCD-89EF-4567-89AB-CDEF01234567"),
             std::string("0123ABC\xd9-89EF-4567-89AB-CDEF01234567"),
             std::string("0123ABC\0-89EF-4567-89AB-CDEF01234567", 36),
             std::string("booted"),
             std::string("all"),
         })
        EXPECT_FALSE(Uuid::parse(text)) << text;
}

TEST(UuidTests, freshOnesDifferAndAreMarkedAsRandom) {
    std::set<std::string> seen;
    for (int i = 0; i < 1000; ++i) {
        const auto uuid = Uuid::random();
        EXPECT_EQ(uuid.bytes[6] >> 4, 4); // the version
        EXPECT_EQ(uuid.bytes[8] >> 6, 2); // the variant
        EXPECT_EQ(Uuid::parse(uuid.text()), uuid);
        seen.insert(uuid.text());
    }
    EXPECT_EQ(seen.size(), 1000U);
}

TEST(UuidTests, oneWithoutAValueIsZero) {
    EXPECT_EQ(Uuid().text(), "00000000-0000-0000-0000-000000000000");
}

} // namespace
} // namespace korvanti
