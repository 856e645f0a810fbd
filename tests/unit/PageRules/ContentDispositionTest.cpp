#include "ContentDisposition.h"

#include <gtest/gtest.h>

TEST(ContentDisposition, OfAPageIsInlineWhateverItsParameters) {
    EXPECT_TRUE(IsInline("inline"));
    EXPECT_TRUE(IsInline("INLINE"));
    EXPECT_TRUE(IsInline(" \tinline"));
    EXPECT_TRUE(IsInline("inline;filename=../x"));
    EXPECT_TRUE(IsInline("inline ; filename=x"));
}

TEST(ContentDisposition, OfAFileIsAnythingElse) {
    EXPECT_FALSE(IsInline("attachment"));
    EXPECT_FALSE(IsInline("attachment; filename=../x"));
    EXPECT_FALSE(IsInline("attachment; x=inline"));
    EXPECT_FALSE(IsInline("inlined"));
    EXPECT_FALSE(IsInline("in"));
    EXPECT_FALSE(IsInline("form-data; filename=x"));
    EXPECT_FALSE(IsInline("; inline"));
    EXPECT_FALSE(IsInline("filename=../x"));
}

TEST(ContentDisposition, OfAPageIsNotEmpty) {
    EXPECT_FALSE(IsInline(""));
    EXPECT_FALSE(IsInline(" \t"));
}
