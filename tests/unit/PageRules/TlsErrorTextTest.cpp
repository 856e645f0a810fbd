#include "TlsErrorText.h"

#include <gtest/gtest.h>

namespace {

GTlsCertificateFlags Flags(int flags) {
    return static_cast<GTlsCertificateFlags>(flags);
}

}  // namespace

TEST(TlsErrorText, HasOneSentenceForEachFlag) {
    EXPECT_EQ(TlsErrorsToText(G_TLS_CERTIFICATE_BAD_IDENTITY),
              "The certificate does not match this website. ");
    EXPECT_EQ(TlsErrorsToText(G_TLS_CERTIFICATE_EXPIRED), "The certificate has expired. ");
    EXPECT_EQ(TlsErrorsToText(G_TLS_CERTIFICATE_UNKNOWN_CA),
              "The signing certificate authority is not known. ");
    EXPECT_EQ(TlsErrorsToText(G_TLS_CERTIFICATE_GENERIC_ERROR),
              "The certificate contains errors. ");
    EXPECT_EQ(TlsErrorsToText(G_TLS_CERTIFICATE_REVOKED), "The certificate has been revoked. ");
    EXPECT_EQ(TlsErrorsToText(G_TLS_CERTIFICATE_INSECURE),
              "The certificate is signed using a weak signature algorithm. ");
    EXPECT_EQ(TlsErrorsToText(G_TLS_CERTIFICATE_NOT_ACTIVATED),
              "The certificate activation time is still in the future. ");
}

TEST(TlsErrorText, SaysTheIdentityBeforeTheExpiry) {
    EXPECT_EQ(TlsErrorsToText(Flags(G_TLS_CERTIFICATE_EXPIRED | G_TLS_CERTIFICATE_BAD_IDENTITY)),
              "The certificate does not match this website. The certificate has expired. ");
}

TEST(TlsErrorText, KeepsItsOrderForAllFlags) {
    EXPECT_EQ(TlsErrorsToText(G_TLS_CERTIFICATE_VALIDATE_ALL),
              "The certificate does not match this website. "
              "The certificate has expired. "
              "The signing certificate authority is not known. "
              "The certificate contains errors. "
              "The certificate has been revoked. "
              "The certificate is signed using a weak signature algorithm. "
              "The certificate activation time is still in the future. ");
}

TEST(TlsErrorText, IsEmptyWithoutAFlag) {
    EXPECT_EQ(TlsErrorsToText(Flags(0)), "");
}
