#include "providers/ObsoleteExtensions.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>

namespace korvanti {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

TEST(ObsoleteExtensionsTests, areTheNamesMarkedTrueInTheOrderOfTheText) {
    EXPECT_THAT(ObsoleteExtensions::names(R"({"z.z-1.0.0":true,"a.b-1.0.0":false,"a.c":true,"..d":true})"),
                ElementsAre("z.z-1.0.0", "a.c", "..d"));
    EXPECT_THAT(ObsoleteExtensions::names("{}"), IsEmpty());
}

TEST(ObsoleteExtensionsTests, areNoneWhereNotAllAreTrueOrFalse) {
    for (const char* text : {"", "{", "[]", "null", "true", R"("a.b-1.0.0")", R"(["a.b-1.0.0"])",
                             R"({"a.b-1.0.0":1})", R"({"a.b-1.0.0":"true"})", R"({"a.b-1.0.0":null})",
                             R"({"a.b-1.0.0":true,"a.c-1.0.0":null})", R"({"a.b-1.0.0":true,"a.c-1.0.0":{}})",
                             R"({"a.b-1.0.0":true} and more)", "{\"a.b-1.0.0\":true,\"\xff\":true}"})
        EXPECT_THAT(ObsoleteExtensions::names(text), IsEmpty()) << text;
}

TEST(ObsoleteExtensionsTests, theFirstOfEqualMarksCounts) {
    EXPECT_THAT(ObsoleteExtensions::names(R"({"a":true,"a":false})"), ElementsAre("a"));
    EXPECT_THAT(ObsoleteExtensions::names(R"({"a":false,"a":true})"), IsEmpty());
}

TEST(ObsoleteExtensionsTests, aNameThatLeadsElsewhereIsPassedOver) {
    for (const std::string name : {"", ".", "..", "/", "../", "../../a", "a/..", "a/", "./a", "/a",
                                   "a\\u0000", "\\u0000", "\\u002e\\u002e", "\\u002fa"})
        EXPECT_THAT(ObsoleteExtensions::names("{\"" + name + "\":true,\"b\":true}"), ElementsAre("b"))
            << name;
}

} // namespace
} // namespace korvanti
