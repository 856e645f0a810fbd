#include "Certificates.h"
#include "WindowTest.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

using WindowTlsTest = OpenWindowTest;

/// A certificate that is refused, and the reasons that the log gives for it.
struct RefusedCase {
    const char* name;
    const char* certificate;
    const char* reasons;
};

void PrintTo(const RefusedCase& refused, std::ostream* stream) {
    *stream << refused.name;
}

std::string NameOf(const testing::TestParamInfo<RefusedCase>& info) {
    return info.param.name;
}

class WindowRefusedCertificateTest : public OpenWindowTest,
                                     public testing::WithParamInterface<RefusedCase> {};

constexpr RefusedCase kRefused[] = {
    {"Expired", "expired", "The certificate has expired. "},
    {"ForAnotherHost", "wrong-host", "The certificate does not match this website. "},
    {"ExpiredAndForAnotherHost", "expired-wrong-host",
     "The certificate does not match this website. The certificate has expired. "},
    {"NotYetValid", "not-yet-valid", "The certificate activation time is still in the future. "},
    {"OfAnUnknownIssuer", "unknown-issuer", "The signing certificate authority is not known. "},
};

}  // namespace

TEST_F(WindowTlsTest, SucceedsWithACertificateOfATrustedAuthority) {
    HttpServer server(TestCertificate("good"));
    server.ServePage("/page", "hello");
    Send(Operation::Browse(server.Url("/page"), server.Url("/page")));
    ASSERT_TRUE(WaitForResults(1));
    EXPECT_THAT(Results(), ElementsAre("success"));
    EXPECT_THAT(LogLines(), IsEmpty());
}

TEST_F(WindowTlsTest, SucceedsWithTheNameOfTheHost) {
    HttpServer server(TestCertificate("good"));
    server.ServePage("/page", "hello");
    const std::string url = server.Url("/page", "localhost");
    Send(Operation::Browse(url, url));
    ASSERT_TRUE(WaitForResults(1));
    EXPECT_THAT(Results(), ElementsAre("success"));
}

TEST_P(WindowRefusedCertificateTest, IsReportedWithItsReasonsAndNotRetried) {
    HttpServer server(TestCertificate(GetParam().certificate));
    server.ServePage("/page", "hello");
    Send(Operation::Browse(server.Url("/page"), server.Url("/page")).Shown());
    ASSERT_TRUE(WaitForResults(1));
    ASSERT_TRUE(m_loads.WaitFor("FINISHED "));
    EXPECT_THAT(Results(), ElementsAre("error_cert"));
    EXPECT_THAT(LogLines(),
                ElementsAre(std::string("E Failed to load page: ") + GetParam().reasons));
    EXPECT_THAT(server.RequestLines(), IsEmpty());
    // No page of the engine offers an exception to the user, and nothing is asked.
    EXPECT_THAT(m_loads.All(), ElementsAre("STARTED " + server.Url("/page"), "FINISHED "));
    EXPECT_FALSE(gtk_widget_get_visible(GTK_WIDGET(Window())));
}

INSTANTIATE_TEST_SUITE_P(Certificates, WindowRefusedCertificateTest, testing::ValuesIn(kRefused),
                         NameOf);

TEST_F(WindowTlsTest, ReportsABadCertificateInCookieModeToo) {
    HttpServer server(TestCertificate("expired"));
    Send(Operation::BrowseForCookie(server.Url("/page"), server.Url("/page"), "sid"));
    ASSERT_TRUE(WaitForResults(1));
    EXPECT_THAT(Results(), ElementsAre("error_cert"));
}

TEST_F(WindowTlsTest, WorksAfterABadCertificate) {
    const HttpServer bad(TestCertificate("expired"));
    HttpServer good(TestCertificate("good"));
    good.ServePage("/page", "hello");
    Send(Operation::Browse(bad.Url("/page"), bad.Url("/page")));
    ASSERT_TRUE(WaitForResults(1));
    Send(Operation::Browse(good.Url("/page"), good.Url("/page")));
    ASSERT_TRUE(WaitForResults(2));
    EXPECT_THAT(Results(), ElementsAre("error_cert", "success"));
}

TEST_F(WindowTlsTest, ReportsAServerWhoseRedirectLeadsToABadCertificate) {
    const HttpServer bad(TestCertificate("wrong-host"));
    m_server.Redirect("/start", bad.Url("/page"));
    Send(Operation::Browse(m_server.Url("/start"), bad.Url("/page")));
    ASSERT_TRUE(WaitForResults(1));
    EXPECT_THAT(Results(), ElementsAre("error_cert"));
    EXPECT_THAT(LogLines(), ElementsAre("E Failed to load page: The certificate does not match "
                                        "this website. "));
}

// The engine reports neither revoked nor weak certificates of its own; the signal is emitted with
// every flag there is.
TEST_F(WindowTlsTest, NamesEveryReasonInAFixedOrder) {
    m_server.ServePage("/page", "hello");
    ShowPage("/page");
    gboolean answer = FALSE;
    g_signal_emit_by_name(View(), "load-failed-with-tls-errors", "https://else/", nullptr,
                          G_TLS_CERTIFICATE_VALIDATE_ALL, &answer);
    EXPECT_TRUE(answer);
    EXPECT_THAT(Results(), ElementsAre("error_cert"));
    EXPECT_THAT(LogLines(),
                ElementsAre("E Failed to load page: The certificate does not match this website. "
                            "The certificate has expired. "
                            "The signing certificate authority is not known. "
                            "The certificate contains errors. "
                            "The certificate has been revoked. "
                            "The certificate is signed using a weak signature algorithm. "
                            "The certificate activation time is still in the future. "));
}
