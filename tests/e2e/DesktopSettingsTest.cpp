// What a page knows of the desktop of the person before it.

#include <optional>
#include <string>

#include "HelperTest.h"
#include "TemporaryFolder.h"

namespace {

using testing::ElementsAre;

constexpr char kTellingPage[] = R"(
<span id=text style='font: caption'></span>
<script>
  const is = query => matchMedia(query).matches;
  const style = getComputedStyle(text);
  fetch(`/told?dark=${is('(prefers-color-scheme: dark)')}` +
        `&reduced=${is('(prefers-reduced-motion: reduce)')}` +
        `&font=${style.fontFamily.replaceAll('"', '')},${style.fontSize}`)
      .then(() => location = '/end');
</script>
)";

struct Confinement {
    const char* name;
    std::optional<std::string> turnedOff;
};

/// With the engine's sandbox, which is the default, and without.
class DesktopSettings : public HelperTest, public testing::WithParamInterface<Confinement> {
protected:
    DesktopSettings() {
        m_server.ServePage("/page", kTellingPage);
        m_server.ServePage("/end", "");
        m_server.ServePage("/told", "");
    }

    /// Shows the page on a desktop with these settings of the toolkit.
    void Show(const std::string& settings, Environment environment = {}) {
        WriteFile(m_configuration.Path("gtk-3.0/settings.ini"),
                  "[Settings]\ngtk-font-name=Serif 15\n" + settings);
        environment["XDG_CONFIG_HOME"] = m_configuration.Path();
        environment["WEBKIT_DISABLE_SANDBOX_THIS_IS_DANGEROUS"] = GetParam().turnedOff;
        ASSERT_NO_FATAL_FAILURE(LaunchAndAwaitReady(environment));
        Send(OperationText({{"operation", "browse"},
                            {"url", m_server.Url("/page")},
                            {"final_url", m_server.Url("/end")}}));
        EXPECT_EQ(NextResult(), "success");
    }

    void ExpectTold(const std::string& preferences) const {
        EXPECT_THAT(
            m_server.RequestLines(),
            ElementsAre("GET /page", "GET /told?" + preferences + "&font=Serif,20px", "GET /end"));
    }

    TemporaryFolder m_configuration;
};

INSTANTIATE_TEST_SUITE_P(Pages, DesktopSettings,
                         testing::Values(Confinement{"Confined", std::nullopt},
                                         Confinement{"Unconfined", "1"}),
                         [](const auto& test) { return std::string(test.param.name); });

}  // namespace

TEST_P(DesktopSettings, OfLightColoursAndMotionReachThePage) {
    Show("");
    ExpectTold("dark=false&reduced=false");
}

TEST_P(DesktopSettings, OfDarkColoursReachThePage) {
    Show("gtk-application-prefer-dark-theme=true\n");
    ExpectTold("dark=true&reduced=false");
}

TEST_P(DesktopSettings, OfADarkThemeReachThePage) {
    Show("", {{"GTK_THEME", "Adwaita:dark"}});
    ExpectTold("dark=true&reduced=false");
}

TEST_P(DesktopSettings, OfLessMotionReachThePage) {
    Show("gtk-enable-animations=false\n");
    ExpectTold("dark=false&reduced=true");
}
