#include "base/ByteText.h"

#include <cstdlib>
#include <gtest/gtest.h>
#include <limits>

namespace korvanti {
namespace {

struct Row {
    std::int64_t bytes;
    const char* decimalEnglish;
    const char* decimalIndonesian;
    const char* binaryEnglish;
    const char* binaryIndonesian;
};

constexpr Row rows[] = {
    {0, "0 bytes", "0 byte", "0 bytes", "0 byte"},
    {1, "1 byte", "1 byte", "1 byte", "1 byte"},
    {2, "2 bytes", "2 byte", "2 bytes", "2 byte"},
    {499, "499 bytes", "499 byte", "499 bytes", "499 byte"},
    {999, "999 bytes", "999 byte", "999 bytes", "999 byte"},
    {1000, "1 KB", "1 KB", "1,000 bytes", "1.000 byte"},
    {1023, "1 KB", "1 KB", "1,023 bytes", "1.023 byte"},
    {1024, "1 KB", "1 KB", "1 KB", "1 KB"},
    {1501, "2 KB", "2 KB", "1 KB", "1 KB"},
    {11999, "12 KB", "12 KB", "12 KB", "12 KB"},
    {99999, "100 KB", "100 KB", "98 KB", "98 KB"},
    {900000, "900 KB", "900 KB", "879 KB", "879 KB"},
    {999499, "999 KB", "999 KB", "976 KB", "976 KB"},
    {999999, "1 MB", "1 MB", "977 KB", "977 KB"},
    {1000000, "1 MB", "1 MB", "977 KB", "977 KB"},
    {1048063, "1 MB", "1 MB", "1,023 KB", "1.023 KB"},
    {1048576, "1 MB", "1 MB", "1 MB", "1 MB"},
    {1250001, "1.3 MB", "1,3 MB", "1.2 MB", "1,2 MB"},
    {5500000, "5.5 MB", "5,5 MB", "5.2 MB", "5,2 MB"},
    {12345678, "12.3 MB", "12,3 MB", "11.8 MB", "11,8 MB"},
    {123456789, "123.5 MB", "123,5 MB", "117.7 MB", "117,7 MB"},
    {999900000, "999.9 MB", "999,9 MB", "953.6 MB", "953,6 MB"},
    {999949999, "999.9 MB", "999,9 MB", "953.6 MB", "953,6 MB"},
    {999999999, "1 GB", "1 GB", "953.7 MB", "953,7 MB"},
    {1073689395, "1.07 GB", "1,07 GB", "1,023.9 MB", "1.023,9 MB"},
    {1073741824, "1.07 GB", "1,07 GB", "1 GB", "1 GB"},
    {1234567898, "1.23 GB", "1,23 GB", "1.15 GB", "1,15 GB"},
    {12345678987, "12.35 GB", "12,35 GB", "11.5 GB", "11,5 GB"},
    {245107195904, "245.11 GB", "245,11 GB", "228.27 GB", "228,27 GB"},
    {494384795648, "494.38 GB", "494,38 GB", "460.43 GB", "460,43 GB"},
    {994662584320, "994.66 GB", "994,66 GB", "926.35 GB", "926,35 GB"},
    {999999000000, "1 TB", "1 TB", "931.32 GB", "931,32 GB"},
    {1000204886016, "1 TB", "1 TB", "931.51 GB", "931,51 GB"},
    {2000398934016, "2 TB", "2 TB", "1.82 TB", "1,82 TB"},
    {9223372036854775807, "9.22 EB", "9,22 EB", "8 EB", "8 EB"},
    {-1, "-1 byte", "-1 byte", "-1 byte", "-1 byte"},
    {-1023, "-1 KB", "-1 KB", "-1,023 bytes", "-1.023 byte"},
    {-1234567898, "-1.23 GB", "-1,23 GB", "-1.15 GB", "-1,15 GB"},
};

class ByteTextTests : public testing::TestWithParam<Row> {};

TEST_P(ByteTextTests, countsInDecimalUnitsInEnglish) {
    EXPECT_EQ(bytesText(GetParam().bytes, Language::english), GetParam().decimalEnglish);
}

TEST_P(ByteTextTests, countsInDecimalUnitsInIndonesian) {
    EXPECT_EQ(bytesText(GetParam().bytes, Language::indonesian), GetParam().decimalIndonesian);
}

TEST_P(ByteTextTests, countsInBinaryUnitsInEnglish) {
    EXPECT_EQ(memoryText(GetParam().bytes, Language::english), GetParam().binaryEnglish);
}

TEST_P(ByteTextTests, countsInBinaryUnitsInIndonesian) {
    EXPECT_EQ(memoryText(GetParam().bytes, Language::indonesian), GetParam().binaryIndonesian);
}

INSTANTIATE_TEST_SUITE_P(Rows, ByteTextTests, testing::ValuesIn(rows), [](const auto& row) {
    const std::string number = std::to_string(row.param.bytes);
    return number.starts_with('-') ? "minus" + number.substr(1) : number;
});

TEST(ByteTextEdgeTests, takesTheSmallestNumber) {
    EXPECT_EQ(bytesText(std::numeric_limits<std::int64_t>::min(), Language::english), "-9.22 EB");
    EXPECT_EQ(memoryText(std::numeric_limits<std::int64_t>::min(), Language::indonesian), "-8 EB");
}

TEST(ByteTextEdgeTests, promotesToTheNextUnitWhenRoundingReachesIt) {
    EXPECT_EQ(bytesText(999'950'000'000'000, Language::english), "999.95 TB");
    EXPECT_EQ(bytesText(999'999'999'999'999, Language::english), "1 PB");
    EXPECT_EQ(bytesText(-999'999'999, Language::english), "-1 GB");
    EXPECT_EQ(memoryText(1024 * 1024 - 1, Language::english), "1 MB");
}

TEST(ByteTextEdgeTests, keepsAZeroInsideTheFraction) {
    EXPECT_EQ(bytesText(5'040'000'000, Language::english), "5.04 GB");
    EXPECT_EQ(bytesText(5'004'000'000, Language::english), "5 GB");
}

TEST(ByteTextEdgeTests, takesTheLanguageFromTheEnvironment) {
    ::setenv("LC_ALL", "id_ID.UTF-8", 1);
    EXPECT_EQ(bytesText(1'250'001), "1,3 MB");
    EXPECT_EQ(memoryText(1000), "1.000 byte");
    ::setenv("LC_ALL", "en_US.UTF-8", 1);
    EXPECT_EQ(bytesText(1'250'001), "1.3 MB");
    EXPECT_EQ(memoryText(1000), "1,000 bytes");
    ::unsetenv("LC_ALL");
}

} // namespace
} // namespace korvanti
