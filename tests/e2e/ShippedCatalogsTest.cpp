// The catalogues that come with the program, each under a usual name of its locale.

#include <filesystem>
#include <ostream>

#include "Catalogs.h"
#include "HelperTest.h"

namespace {

namespace fs = std::filesystem;

struct Translation {
    std::string locale;
    std::string title;
};

void PrintTo(const Translation& translation, std::ostream* stream) {
    *stream << translation.locale;
}

class ShippedCatalogs : public HelperTest, public testing::WithParamInterface<Translation> {
protected:
    ShippedCatalogs() {
        fs::create_directories("/opt/velto/tunnelkeep");
        fs::create_directory_symlink(TK_BUILT_CATALOGS, "/opt/velto/tunnelkeep/l10n");
    }
};

const Translation kTranslations[] = {
    {"cs_CZ.UTF-8", "Velto Tunnelkeep – přihlášení"},
    {"de_DE.UTF-8", "Velto Tunnelkeep – Anmeldung"},
    {"es_ES.UTF-8", "Velto Tunnelkeep – Inicio de sesión"},
    {"fr_FR.UTF-8", "Velto Tunnelkeep – Identification"},
    {"it_IT.UTF-8", "Velto Tunnelkeep – Accesso"},
    {"ja_JP.UTF-8", "Velto Tunnelkeep ログイン"},
    {"ko_KR.UTF-8", "Velto Tunnelkeep 로그인"},
    {"pl_PL.UTF-8", "Velto Tunnelkeep – logowanie"},
    {"pt_BR", "Login do Velto Tunnelkeep"},
    {"pt_BR.UTF-8", "Login do Velto Tunnelkeep"},
    {"ru_RU.UTF-8", "Velto Tunnelkeep — вход"},
    {"zh_CN.UTF-8", "Velto Tunnelkeep 登录"},
    {"zh_HK.UTF-8", "Velto Tunnelkeep 登入"},
    {"zh_MO.UTF-8", "Velto Tunnelkeep 登入"},
    {"zh_SG.UTF-8", "Velto Tunnelkeep 登录"},
    {"zh_TW.UTF-8", "Velto Tunnelkeep 登入"},
};

// A test's name has letters, digits and "_" alone.
std::string NameOf(const testing::TestParamInfo<Translation>& info) {
    const std::string& locale = info.param.locale;
    const std::size_t dot = locale.find('.');
    return locale.substr(0, dot) + (dot == std::string::npos ? "_without_codeset" : "");
}

}  // namespace

TEST_P(ShippedCatalogs, TranslateTheTitle) {
    UseTestLocales();
    ASSERT_NO_FATAL_FAILURE(
        LaunchAndAwaitReady({{"LC_ALL", GetParam().locale}, {"LANGUAGE", std::nullopt}}));
    EXPECT_EQ(m_screen.Title(ShowWaitingPage()), GetParam().title);
    EXPECT_TRUE(m_log.WaitFor("The character set is utf-8."));
}

INSTANTIATE_TEST_SUITE_P(Locales, ShippedCatalogs, testing::ValuesIn(kTranslations), NameOf);
