#include "LocaleCandidates.h"

#include <gtest/gtest.h>

#include <string>

namespace {

struct CandidatesCase {
    const char* description;
    const char* localeName;
    const char* candidates;
};

void PrintTo(const CandidatesCase& example, std::ostream* out) {
    *out << example.description;
}

class LocaleCandidates : public testing::TestWithParam<CandidatesCase> {};

TEST_P(LocaleCandidates, AreListedBestFirst) {
    CLocaleCandidates candidates;
    EXPECT_TRUE(candidates.Build(GetParam().localeName));
    EXPECT_STREQ(candidates.Text(), GetParam().candidates);
}

constexpr CandidatesCase kCandidatesCases[] = {
    {"TerritoryCodesetModifier", "de_DE.UTF-8@euro",
     "de_DE.UTF-8@euro:de_DE@euro:de@euro:de_DE.UTF-8:de_DE.UTF-8:de-de:de"},
    {"TerritoryCodeset", "de_DE.UTF-8", "de_DE.UTF-8:de_DE.UTF-8:de-de:de"},
    {"TerritoryModifier", "de_DE@euro", "de_DE@euro:de@euro:de@euro:de-de:de"},
    {"Territory", "de_DE", ":de-de:de"},
    {"Modifier", "sr@latin", "sr@latin:sr"},
    {"Language", "de", "de"},
    {"CodesetWithoutTerritory", "C.UTF-8", "C.UTF-8"},
    {"CodesetWithoutTerritoryButModifier", "sr.UTF-8@latin", "sr.UTF-8@latin"},
    {"NoLanguage", "_DE.UTF-8", "_DE.UTF-8"},
    {"OnlyAModifier", "@euro", "@euro"},
    {"Nothing", "", ""},
    {"C", "C", "C"},
    {"Posix", "POSIX", "POSIX"},
    {"LowerCaseTerritoryStays", "es_419", ":es-419:es"},
    {"EmptyCodeset", "de_DE.", "de_DE.:de_DE.:de-de:de"},
    {"SplitAtTheLastSeparators", "a@b_c_D.e.f@g",
     "a@b_c_D.e.f@g:a@b_c_D.e@g:a@b_c@g:a@b_c_D.e.f:a@b_c_D.e.f:a@b_c-d.e:a@b_c"},
    {"CodesetBehindTheModifier", "de_DE@euro.UTF-8",
     "de_DE@euro.UTF-8:de@euro.UTF-8:de@euro.UTF-8:de-de:de"},
    {"MixedCategories", "LC_CTYPE=de_DE.UTF-8;LC_TIME=C",
     "LC_CTYPE=de_DE.UTF-8;LC_TIME=C:LC_CTYPE=de_DE.UTF-8;LC_TIME=C:LC_CTYPE=de-de:LC_CTYPE=de"},
};

INSTANTIATE_TEST_SUITE_P(OfLocales, LocaleCandidates, testing::ValuesIn(kCandidatesCases),
                         [](const auto& test) { return test.param.description; });

TEST(LocaleCandidateList, TakesUpTo4095Characters) {
    CLocaleCandidates candidates;
    EXPECT_TRUE(candidates.Build(std::string(4095, 'x').c_str()));
    EXPECT_EQ(candidates.Text(), std::string(4095, 'x'));
    EXPECT_FALSE(candidates.Build(std::string(4096, 'x').c_str()));
}

TEST(LocaleCandidateList, CountsEveryCandidate) {
    CLocaleCandidates candidates;
    // The list is ":x-y:x": twice the language, and four characters more.
    EXPECT_TRUE(candidates.Build((std::string(2045, 'x') + "_Y").c_str()));
    EXPECT_EQ(std::string(candidates.Text()).size(), 4094U);
    EXPECT_FALSE(candidates.Build((std::string(2046, 'x') + "_Y").c_str()));
    EXPECT_FALSE(candidates.Build((std::string(9000, 'x') + "_Y").c_str()));
}

TEST(LocaleCandidateList, IsBuiltAnewEachTime) {
    CLocaleCandidates candidates;
    ASSERT_FALSE(candidates.Build(std::string(5000, 'x').c_str()));
    EXPECT_TRUE(candidates.Build("sr@latin"));
    EXPECT_STREQ(candidates.Text(), "sr@latin:sr");
    EXPECT_TRUE(candidates.Build("de_DE"));
    EXPECT_STREQ(candidates.Text(), ":de-de:de");
}

}  // namespace
