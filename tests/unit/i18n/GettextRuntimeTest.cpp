#include "GettextRuntime.h"

#include <dlfcn.h>
#include <gtest/gtest.h>
#include <libintl.h>

#include <atomic>
#include <clocale>
#include <filesystem>

#include "BoundedString.h"
#include "LocaleFixture.h"
#include "RunOnThreads.h"

namespace {

constexpr char kLocale[] = "C.UTF-8";

// What a library sees that calls from its own initialisation, before this program's statics stand.
char earlyDomain[16] = "";
const char* earlyText = nullptr;

__attribute__((constructor(101))) void CallBeforeStaticInitialization() {
    BoundedCopy(earlyDomain, textdomain(nullptr), sizeof earlyDomain);
    earlyText = dgettext("early", "key");
}

TEST(GettextRuntimeStart, ServesCallsBeforeStaticInitialization) {
    EXPECT_STREQ(earlyDomain, "messages");
    EXPECT_STREQ(earlyText, "key");
}

/// The domain "app" is bound and current; each test has a folder of its own for it.
class GettextRuntime : public LocaleFixture {
protected:
    GettextRuntime() {
        UseLocale(kLocale);
        CompileCatalog(CatalogPath(m_folder.Path(), kLocale, "app"),
                       CatalogSource("utf-8", kEntries));
        EXPECT_NE(bindtextdomain("app", m_folder.Path().c_str()), nullptr);
        textdomain("app");
    }

    ~GettextRuntime() override { textdomain(""); }

    static constexpr char kEntries[] = R"(
msgid "one"
msgstr "eins"

msgid "%u apple"
msgid_plural "%u pears"
msgstr[0] "%u Apfel"
msgstr[1] "%u Birnen"

msgid "%u Day"
msgstr "%u Tag"

msgid "%u Days"
msgstr "%u Tage"
)";
};

TEST_F(GettextRuntime, TranslatesInTheCurrentDomain) {
    EXPECT_STREQ(gettext("one"), "eins");
    EXPECT_STREQ(gettext("two"), "two");
}

TEST_F(GettextRuntime, TranslatesInANamedDomain) {
    textdomain("");
    EXPECT_STREQ(gettext("one"), "one");
    EXPECT_STREQ(dgettext("app", "one"), "eins");
    EXPECT_STREQ(dcgettext("app", "one", LC_MESSAGES), "eins");
    EXPECT_STREQ(dngettext("app", "one", "ones", 1), "eins");
    EXPECT_STREQ(dcngettext("app", "one", "ones", 1, LC_MESSAGES), "eins");
}

TEST_F(GettextRuntime, TakesTheCurrentDomainForANullOne) {
    EXPECT_STREQ(dgettext(nullptr, "one"), "eins");
    EXPECT_STREQ(dcgettext(nullptr, "one", LC_MESSAGES), "eins");
    EXPECT_STREQ(dngettext(nullptr, "one", "ones", 1), "eins");
    EXPECT_STREQ(dcngettext(nullptr, "one", "ones", 1, LC_MESSAGES), "eins");
}

TEST_F(GettextRuntime, HandsTheCategoryOn) {
    EXPECT_STREQ(dcgettext("app", "one", LC_TIME), "one");
    EXPECT_STREQ(dcgettext("app", "one", LC_ALL), "one");
    EXPECT_STREQ(dcngettext("app", "one", "ones", 1, LC_TIME), "one");
}

TEST_F(GettextRuntime, GivesTheHeaderForTheEmptyText) {
    EXPECT_STREQ(gettext(""), "Language: xx\nContent-Type: text/plain; charset=utf-8\n");
    EXPECT_STREQ(dgettext("unbound", ""), "");
}

TEST_F(GettextRuntime, GivesNullForANullText) {
    EXPECT_EQ(dcngettext("app", nullptr, "ones", 1, LC_MESSAGES), nullptr);
    EXPECT_EQ(dcngettext("app", "one", nullptr, 2, LC_MESSAGES), nullptr);
    EXPECT_EQ(gettext(nullptr), nullptr);
}

TEST_F(GettextRuntime, LooksTheSingularUpForACountOfOne) {
    EXPECT_STREQ(ngettext("%u Day", "%u Days", 1), "%u Tag");
    EXPECT_STREQ(ngettext("%u apple", "%u pears", 1), "%u Apfel");
}

TEST_F(GettextRuntime, LooksThePluralTextUpForAnyOtherCount) {
    EXPECT_STREQ(ngettext("%u Day", "%u Days", 2), "%u Tage");
    EXPECT_STREQ(ngettext("%u Day", "%u Days", 0), "%u Tage");
    EXPECT_STREQ(ngettext("%u Day", "%u Days", 1001), "%u Tage");
}

TEST_F(GettextRuntime, NeverGivesAPluralForm) {
    EXPECT_STREQ(ngettext("%u apple", "%u pears", 2), "%u pears");
}

TEST_F(GettextRuntime, TellsSetsAndResetsTheCurrentDomain) {
    EXPECT_STREQ(textdomain(nullptr), "app");
    EXPECT_STREQ(textdomain("other"), "other");
    EXPECT_STREQ(textdomain(""), "messages");
    EXPECT_STREQ(textdomain(nullptr), "messages");
}

TEST_F(GettextRuntime, GivesTheDomainArgumentBackWhenItIsBound) {
    const char* const domain = "app";
    EXPECT_EQ(bindtextdomain(domain, "/folder"), domain);
}

TEST_F(GettextRuntime, GivesNullAndChangesNothingForABindingThatIsRefused) {
    EXPECT_EQ(bindtextdomain("app", nullptr), nullptr);
    EXPECT_EQ(bindtextdomain("app", "relative"), nullptr);
    EXPECT_EQ(bindtextdomain("app", ""), nullptr);
    EXPECT_EQ(bindtextdomain("", "/folder"), nullptr);
    EXPECT_EQ(bindtextdomain(nullptr, "/folder"), nullptr);
    EXPECT_EQ(bindtextdomain(nullptr, nullptr), nullptr);
    EXPECT_STREQ(gettext("one"), "eins");
}

TEST_F(GettextRuntime, IgnoresCodesets) {
    EXPECT_EQ(bind_textdomain_codeset("app", "UTF-8"), nullptr);
    EXPECT_EQ(bind_textdomain_codeset("app", "ISO-8859-1"), nullptr);
    EXPECT_EQ(bind_textdomain_codeset(nullptr, nullptr), nullptr);
    EXPECT_STREQ(gettext("one"), "eins");
}

TEST_F(GettextRuntime, TellsTheCurrentDomainsCharset) {
    EXPECT_EQ(current_textdomain_charset(), "");
    ASSERT_STREQ(gettext("one"), "eins");
    EXPECT_EQ(current_textdomain_charset(), "utf-8");
}

TEST_F(GettextRuntime, ReleasesACatalogue) {
    ASSERT_STREQ(gettext("one"), "eins");
    std::filesystem::remove_all(m_folder.Path(kLocale));
    ASSERT_STREQ(gettext("one"), "eins");
    release_textdomain_catalog("app");
    EXPECT_STREQ(gettext("one"), "one");
}

TEST_F(GettextRuntime, TakesTheLocaleFromTheEnvironment) {
    UseEnvironmentLocale("de_DE.UTF-8");
    set_locale_from_environment();
    EXPECT_STREQ(std::setlocale(LC_ALL, nullptr), "de_DE.UTF-8");
}

class GettextNames : public testing::TestWithParam<const char*> {};

TEST_P(GettextNames, AreThoseOfTheProgram) {
    void* const symbol = dlsym(RTLD_DEFAULT, GetParam());
    ASSERT_NE(symbol, nullptr);
    Dl_info ofSymbol = {};
    Dl_info ofProgram = {};
    static const int ownObject = 0;
    ASSERT_NE(dladdr(symbol, &ofSymbol), 0);
    ASSERT_NE(dladdr(&ownObject, &ofProgram), 0);
    EXPECT_EQ(ofSymbol.dli_fbase, ofProgram.dli_fbase) << ofSymbol.dli_fname;
}

INSTANTIATE_TEST_SUITE_P(OfEachFunction, GettextNames,
                         testing::Values("textdomain", "bindtextdomain", "bind_textdomain_codeset",
                                         "gettext", "dgettext", "dcgettext", "ngettext",
                                         "dngettext", "dcngettext"),
                         [](const auto& test) { return std::string(test.param); });

TEST_F(GettextRuntime, ServesALibrarysCall) {
    void* const library = dlopen("libglib-2.0.so.0", RTLD_NOW);
    ASSERT_NE(library, nullptr) << dlerror();
    using Translate = const char* (*)(const char* domain, const char* text);
    const auto translate = reinterpret_cast<Translate>(dlsym(library, "g_dgettext"));
    EXPECT_STREQ(translate != nullptr ? translate("app", "one") : "(not found)", "eins");
    EXPECT_EQ(dlclose(library), 0);
}

TEST_F(GettextRuntime, ServesManyThreadsWhileOneBindsAndSetsTheLocale) {
    UseEnvironmentLocale(kLocale);
    CompileCatalog(CatalogPath(m_folder.Path(), kLocale, "library"),
                   CatalogSource("utf-8", "msgid \"one\"\nmsgstr \"uno\"\n"));
    ASSERT_NE(bindtextdomain("library", m_folder.Path().c_str()), nullptr);
    std::atomic<int> turn{0};
    RunOnThreads(4, [&] {
        const bool binds = turn++ == 0;
        for (int round = 0; round < 500; ++round) {
            if (binds) {
                const std::string domain = "binding" + std::to_string(round % 50);
                EXPECT_NE(bindtextdomain(domain.c_str(), m_folder.Path().c_str()), nullptr);
                release_textdomain_catalog(domain.c_str());
                set_locale_from_environment();
            }
            EXPECT_STREQ(dgettext("library", "one"), "uno");
            EXPECT_STREQ(dgettext("app", "one"), "eins");
            EXPECT_STREQ(gettext("one"), "eins");
        }
    });
}

}  // namespace
