#include <gmock/gmock.h>
#include <libintl.h>

#include <clocale>
#include <cstdlib>
#include <string>
#include <vector>

#include "Catalogs.h"
#include "ChildProcess.h"
#include "EachCall.h"
#include "GettextRuntime.h"
#include "MsgCatalog.h"
#include "MsgWithArg.h"
#include "SparedLog.h"
#include "StoragePath.h"
#include "TemporaryFolder.h"

namespace {

using testing::AnyOf;
using testing::Contains;
using testing::ElementsAre;
using testing::Ge;
using testing::HasSubstr;
using testing::StartsWith;

constexpr char kEntries[] = R"(msgid "Sign in to the network"
msgstr "Am Netz anmelden, bitte"
msgid "The number of all the days"
msgstr "Die Zahl aller dieser Tage"
msgid "Connected to the host %s of %s"
msgstr "Mit %2$s verbunden, und zwar mit %1$s"
)";

/// What came out of one use of the catalogues.
struct Texts {
    std::string signIn;
    std::string days;
    std::string title;
    std::string plural;
    std::string arguments;
};

/// The catalogues of two domains, looked up from the start each time.
class FailingCallsOfTheCatalogue : public testing::Test {
protected:
    FailingCallsOfTheCatalogue() {
        setenv("LC_ALL", "C.UTF-8", 1);
        for (const char* const domain : {"Tunnelkeep", "tkdownloader-gtk"}) {
            CompileCatalog(CatalogPath(m_folder.Path("l10n"), "C.UTF-8", domain),
                           CatalogSource("utf-8", kEntries));
        }
        MsgCatalog::setLocalizationPath(m_folder.Path() + "/");
        EXPECT_EQ(CStoragePath::CreateSingletonInstance(m_storagePath, ""), kSuccess);
        m_message.addArg("vpn.example.com");
        m_message.addArg("the branch office");
    }

    ~FailingCallsOfTheCatalogue() override {
        CStoragePath::ReleaseInstance(m_storagePath);
        MsgCatalog::setLocalizationPath("");
        MsgCatalog::resetCatalog();
        textdomain("");
        std::setlocale(LC_ALL, "C");
    }

    void UseCatalogues(Texts& texts) const {
        bindtextdomain("tkdownloader-gtk", m_localization.c_str());
        bind_textdomain_codeset("tkdownloader-gtk", "UTF-8");
        textdomain("tkdownloader-gtk");
        std::setlocale(LC_ALL, "");
        const char* const signIn = gettext("Sign in to the network");
        const char* const days = ngettext("day", "The number of all the days", 3);
        {
            const SparedCalls spared;
            texts.signIn = signIn;
            texts.days = days;
        }
        MsgCatalog::init(m_catalog, "");
        MsgCatalog::getMessage("Sign in to the network", m_catalog, texts.title);
        MsgCatalog::getMessage("day", "The number of all the days", 2, texts.plural);
        m_message.format(texts.arguments, true);
    }

    [[nodiscard]] bool UseOnce(Call kind, std::size_t number) const {
        const SparedLog log;
        Texts texts;
        const bool hasFailed = WhileFailing(kind, number, [&] { UseCatalogues(texts); });
        ExpectTexts(texts, log.Lines(), hasFailed);
        return hasFailed;
    }

    static void ExpectTexts(const Texts& texts, const std::vector<std::string>& log,
                            bool hasFailed) {
        if (!hasFailed) {
            EXPECT_EQ(texts.signIn, "Am Netz anmelden, bitte");
            EXPECT_EQ(texts.days, "Die Zahl aller dieser Tage");
            EXPECT_EQ(texts.title, "Am Netz anmelden, bitte");
            EXPECT_EQ(texts.plural, "Die Zahl aller dieser Tage");
            EXPECT_EQ(texts.arguments,
                      "Mit the branch office verbunden, und zwar mit vpn.example.com");
        }
        EXPECT_THAT(texts.signIn, AnyOf("Am Netz anmelden, bitte", "Sign in to the network"));
        EXPECT_THAT(texts.days, AnyOf("Die Zahl aller dieser Tage", "The number of all the days"));
        EXPECT_THAT(texts.title, AnyOf("Am Netz anmelden, bitte", "Sign in to the network", ""));
        EXPECT_THAT(texts.plural,
                    AnyOf("Die Zahl aller dieser Tage", "The number of all the days", ""));
        EXPECT_THAT(texts.arguments,
                    AnyOf("Mit the branch office verbunden, und zwar mit vpn.example.com",
                          "Connected to the host vpn.example.com of the branch office", ""));
        const bool isShort = texts.title.empty() || texts.plural.empty() || texts.arguments.empty();
        EXPECT_TRUE(!isShort || !log.empty());
        EXPECT_THAT(log,
                    isShort ? testing::Matcher<std::vector<std::string>>(Contains(StartsWith("E ")))
                            : testing::Matcher<std::vector<std::string>>(testing::_));
    }

    [[nodiscard]] Scenario Use() const {
        return [this](Call kind, std::size_t number) {
            release_textdomain_catalog("Tunnelkeep");
            release_textdomain_catalog("tkdownloader-gtk");
            MsgCatalog::resetCatalog();
            return UseOnce(kind, number);
        };
    }

    /// The same as the first use in a process.
    [[nodiscard]] Scenario FirstUse() const {
        return InChild([this](Call kind, std::size_t number) { return UseOnce(kind, number); });
    }

    TemporaryFolder m_folder;
    std::string m_localization = m_folder.Path("l10n");
    std::string m_catalog = "Tunnelkeep";
    MsgWithArg m_message{"Connected to the host %s of %s"};
    CStoragePath* m_storagePath = nullptr;
};

/// The runtime is made once for a process: this is its first use where the case runs alone.
TEST_F(FailingCallsOfTheCatalogue, EveryAllocationOfTheFirstUse) {
    EXPECT_THAT(FailEachCall(Call::Allocation, FirstUse()), Ge(20U));
}

TEST_F(FailingCallsOfTheCatalogue, EveryAllocation) {
    EXPECT_THAT(FailEachCall(Call::Allocation, Use()), Ge(15U));
}

TEST_F(FailingCallsOfTheCatalogue, EveryOpen) {
    EXPECT_THAT(FailEachCall(Call::Open, Use()), Ge(2U));
}

TEST_F(FailingCallsOfTheCatalogue, EveryStatus) {
    EXPECT_THAT(FailEachCall(Call::Status, Use()), Ge(4U));
}

TEST_F(FailingCallsOfTheCatalogue, EveryMap) {
    EXPECT_THAT(FailEachCall(Call::Map, Use()), Ge(2U));
}

TEST_F(FailingCallsOfTheCatalogue, EveryClose) {
    EXPECT_THAT(FailEachCall(Call::Close, Use()), Ge(2U));
}

/// Has the catalogue keep a name that there is no memory for.
template <class Keep>
void ExpectOneLogLineOf(Keep keep) {
    EXPECT_TRUE(HoldsInChild([&] {
        const std::string name(1U << 16, 'x');
        const SparedLog log;
        {
            const FailingCall failing(Call::Allocation, 1);
            keep(name);
            EXPECT_TRUE(FailingCall::HasFailed());
        }
        EXPECT_THAT(log.Lines(),
                    ElementsAre(HasSubstr("Caught message catalog exception - std::bad_alloc")));
    }));
}

TEST_F(FailingCallsOfTheCatalogue, TheAllocationOfEachNameThatItKeeps) {
    ExpectOneLogLineOf([](const std::string& name) { MsgCatalog::setLocale(name); });
    ExpectOneLogLineOf([](const std::string& name) { MsgCatalog::setLocalizationPath(name); });
    ExpectOneLogLineOf([](const std::string& name) { EXPECT_FALSE(MsgCatalog::setCatalog(name)); });
}

TEST_F(FailingCallsOfTheCatalogue, TheAllocationOfEachTextThatAMessageKeeps) {
    ExpectOneLogLineOf([](const std::string& text) { EXPECT_TRUE(MsgWithArg(text).isEmpty()); });
    ExpectOneLogLineOf([](const std::string& text) {
        EXPECT_STREQ(MsgWithArg("kept", text).getMessageId(), "kept");
    });
    ExpectOneLogLineOf([](const std::string& text) { MsgWithArg().setMessageId(text); });
    ExpectOneLogLineOf([](const std::string& text) { MsgWithArg().setCatalog(text); });
    ExpectOneLogLineOf([](const std::string& text) { MsgWithArg().addArg(text); });
    ExpectOneLogLineOf([](const std::string& text) { MsgWithArg().addArg(text.c_str()); });
}

TEST_F(FailingCallsOfTheCatalogue, TheAllocationOfALongCatalogueName) {
    ExpectOneLogLineOf([](const std::string& name) { MsgCatalog::init(name.c_str(), ""); });
}

bool LoadAndRelease(Call kind, std::size_t number) {
    return WhileFailing(kind, number, [&] {
        static_cast<void>(dgettext("tkdownloader-gtk", "Sign in to the network"));
        release_textdomain_catalog("tkdownloader-gtk");
    });
}

TEST_F(FailingCallsOfTheCatalogue, EveryUnmap) {
    bindtextdomain("tkdownloader-gtk", m_localization.c_str());
    std::setlocale(LC_ALL, "");
    EXPECT_THAT(FailEachCall(Call::Unmap, LoadAndRelease), Ge(1U));
}

}  // namespace
