#include "TlsCertificate.h"

#include <memory>
#include <string>

#include "AppLog.h"

namespace {

struct ByteArrayUnref {
    void operator()(GByteArray* bytes) const { g_byte_array_unref(bytes); }
};
using ByteArrayPtr = std::unique_ptr<GByteArray, ByteArrayUnref>;

ByteArrayPtr Bytes(const std::string& text) {
    ByteArrayPtr bytes(g_byte_array_new());
    g_byte_array_append(bytes.get(), reinterpret_cast<const guint8*>(text.data()),
                        static_cast<guint>(text.size()));
    return bytes;
}

GObjectPtr<GTlsCertificate> NewCertificate(const std::string& der, const char* keyAddress,
                                           GTlsCertificate* issuer) {
    const ByteArrayPtr bytes = Bytes(der);
    GError* rawError = nullptr;
    GObjectPtr<GTlsCertificate> created(static_cast<GTlsCertificate*>(
        g_initable_new(g_tls_backend_get_certificate_type(g_tls_backend_get_default()), nullptr,
                       &rawError, "certificate", bytes.get(), "private-key-pkcs11-uri", keyAddress,
                       "issuer", issuer, nullptr)));
    const GErrorPtr error(rawError);
    if (error) {
        TK_LOG_WARNING_OF("NewTlsCertificate", "Unable to use a certificate. %s", error->message);
    }
    return created;
}

}  // namespace

GObjectPtr<GTlsCertificate> NewTlsCertificate(const TokenCertificate& certificate) {
    GObjectPtr<GTlsCertificate> made;
    for (auto der = certificate.chain.rbegin(); der != certificate.chain.rend(); ++der) {
        const bool isOwn = der + 1 == certificate.chain.rend();
        made = NewCertificate(*der, isOwn ? certificate.keyAddress.c_str() : nullptr, made.get());
    }
    return made;
}
