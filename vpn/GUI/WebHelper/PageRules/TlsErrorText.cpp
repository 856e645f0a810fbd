#include "TlsErrorText.h"

namespace {

struct TlsErrorSentence {
    GTlsCertificateFlags flag;
    const char* sentence;
};

constexpr TlsErrorSentence kSentences[] = {
    {G_TLS_CERTIFICATE_BAD_IDENTITY, "The certificate does not match this website. "},
    {G_TLS_CERTIFICATE_EXPIRED, "The certificate has expired. "},
    {G_TLS_CERTIFICATE_UNKNOWN_CA, "The signing certificate authority is not known. "},
    {G_TLS_CERTIFICATE_GENERIC_ERROR, "The certificate contains errors. "},
    {G_TLS_CERTIFICATE_REVOKED, "The certificate has been revoked. "},
    {G_TLS_CERTIFICATE_INSECURE, "The certificate is signed using a weak signature algorithm. "},
    {G_TLS_CERTIFICATE_NOT_ACTIVATED, "The certificate activation time is still in the future. "},
};

}  // namespace

std::string TlsErrorsToText(GTlsCertificateFlags errors) {
    std::string text;
    for (const TlsErrorSentence& entry : kSentences) {
        if ((errors & entry.flag) != 0) {
            text += entry.sentence;
        }
    }
    return text;
}
