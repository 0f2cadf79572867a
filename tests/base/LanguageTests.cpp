#include "base/Language.h"

#include <cstdlib>
#include <gtest/gtest.h>

namespace korvanti {
namespace {

class LanguageTests : public testing::Test {
protected:
    void SetUp() override {
        for (const char* variable : {"LC_ALL", "LC_MESSAGES", "LANG"})
            ::unsetenv(variable);
    }
};

TEST_F(LanguageTests, isEnglishWhenNothingIsSet) {
    EXPECT_EQ(systemLanguage(), Language::english);
}

TEST_F(LanguageTests, isIndonesianForEveryFormOfTheTag) {
    for (const char* tag : {"id", "id_ID", "id_ID.UTF-8", "id-ID", "id.UTF-8", "id@euro"}) {
        SCOPED_TRACE(tag);
        ::setenv("LANG", tag, 1);
        EXPECT_EQ(systemLanguage(), Language::indonesian);
    }
}

TEST_F(LanguageTests, isEnglishForAllElse) {
    for (const char* tag : {"C", "POSIX", "C.UTF-8", "en_US.UTF-8", "de_DE", "idx_ID", "i", "_id", "ID"}) {
        SCOPED_TRACE(tag);
        ::setenv("LANG", tag, 1);
        EXPECT_EQ(systemLanguage(), Language::english);
    }
}

TEST_F(LanguageTests, asksTheThreeVariablesInTheirOrder) {
    ::setenv("LANG", "en_US", 1);
    ::setenv("LC_MESSAGES", "id_ID", 1);
    EXPECT_EQ(systemLanguage(), Language::indonesian);
    ::setenv("LC_ALL", "en_US", 1);
    EXPECT_EQ(systemLanguage(), Language::english);
}

TEST_F(LanguageTests, passesOverAnEmptyVariable) {
    ::setenv("LC_ALL", "", 1);
    ::setenv("LC_MESSAGES", "", 1);
    ::setenv("LANG", "id_ID", 1);
    EXPECT_EQ(systemLanguage(), Language::indonesian);
}

} // namespace
} // namespace korvanti
