#include "ui/ScreenText.h"

#include <gtest/gtest.h>
#include <string>

namespace korvanti {
namespace {

TEST(ScreenTextTests, aTextIsOneLine) {
    EXPECT_EQ(screenText("a\nb\x1b\xff").toStdString(), "a\uFFFDb\uFFFD\uFFFD");
}

TEST(ScreenTextTests, linesStayLinesAndNothingElseDoes) {
    EXPECT_EQ(screenLines("").toStdString(), "");
    EXPECT_EQ(screenLines("satu").toStdString(), "satu");
    EXPECT_EQ(screenLines("satu\n\ndua\x1b[1m\xff").toStdString(), "satu\n\ndua\uFFFD[1m\uFFFD");
    EXPECT_EQ(screenLines("satu\r\ndua\r\n\n").toStdString(), "satu\ndua") << "what a tool ends with";
    EXPECT_EQ(screenLines(std::string("a\0b\nc", 5)).toStdString(), "a\uFFFDb\nc");
    EXPECT_EQ(screenLines(std::string(10'000, '\n')).toStdString(), "");
}

TEST(ScreenTextTests, aSizeInASentenceStaysWhole) {
    EXPECT_EQ(screenSentence("Hapus 350 MB, 1,5 GB dan 12 byte.").toStdString(),
              "Hapus 350\u00A0MB, 1,5\u00A0GB dan 12\u00A0byte.");
    EXPECT_EQ(screenSentence("3 MBps, 5 hari, x GB, 7  TB").toStdString(), "3 MBps, 5 hari, x GB, 7  TB");
}

} // namespace
} // namespace korvanti
