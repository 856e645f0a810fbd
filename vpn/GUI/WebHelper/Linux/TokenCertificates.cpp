#include "TokenCertificates.h"

#include <glib.h>

#include <algorithm>
#include <array>
#include <memory>
#include <optional>
#include <string>
#include <utility>

#include "GnuTls.h"

namespace {

// More than any certificate has between its owner and the root.
constexpr std::size_t kLongestChain = 10;

constexpr char kKeyOnToken[] = ";type=private";

struct CertificateFree {
    void operator()(gnutls_x509_crt_t certificate) const {
        CGnuTls::GetInstance()->freeCertificate(certificate);
    }
};
using CertificatePtr = std::unique_ptr<gnutls_x509_crt_int, CertificateFree>;

struct ObjectFree {
    void operator()(gnutls_pkcs11_obj_t object) const {
        CGnuTls::GetInstance()->freeObject(object);
    }
};
using ObjectPtr = std::unique_ptr<gnutls_pkcs11_obj_st, ObjectFree>;

struct LibraryFree {
    void operator()(void* memory) const { (*CGnuTls::GetInstance()->freeMemory)(memory); }
};

struct Certificate {
    CertificatePtr parsed;
    std::string der;
    std::string id;
};

/// What a token shows before it is given the PIN.
struct Token {
    std::string url;
    std::string label;
    bool hidesKeys = false;
    std::vector<Certificate> certificates;
    std::vector<std::string> keys;  ///< by identifier, private ones and their public halves
};

// A text of the library, which tells its size first.
template <class Read>
std::optional<std::string> ReadText(const Read& read) {
    std::size_t size = 0;
    if (read(nullptr, &size) != GNUTLS_E_SHORT_MEMORY_BUFFER) {
        return std::nullopt;
    }
    std::string text(size, '\0');
    if (read(text.data(), &size) < 0) {
        return std::nullopt;
    }
    return text.c_str();  // the size counts the zero in some functions only
}

// For people, on one line. Cards are free to have anything in their texts.
std::string Readable(std::string text) {
    std::replace_if(
        text.begin(), text.end(), [](char c) { return g_ascii_iscntrl(c); }, ' ');
    const std::unique_ptr<gchar, decltype(&g_free)> valid(g_utf8_make_valid(text.c_str(), -1),
                                                          g_free);
    return valid.get();
}

std::string IdOf(const CGnuTls& library, gnutls_pkcs11_obj_t object) {
    return ReadText([&](char* text, std::size_t* size) {
               return library.objectInfo(object, GNUTLS_PKCS11_OBJ_ID_HEX, text, size);
           })
        .value_or("");
}

std::optional<Certificate> ReadCertificate(const CGnuTls& library, gnutls_pkcs11_obj_t object) {
    gnutls_datum_t der{};
    if (library.exportObject(object, &der) < 0) {
        return std::nullopt;
    }
    const std::unique_ptr<unsigned char, LibraryFree> owned(der.data);
    gnutls_x509_crt_t raw = nullptr;
    if (library.newCertificate(&raw) < 0) {
        return std::nullopt;
    }
    CertificatePtr parsed(raw);
    if (library.readCertificate(parsed.get(), &der, GNUTLS_X509_FMT_DER) < 0) {
        return std::nullopt;
    }
    return Certificate{std::move(parsed),
                       std::string(reinterpret_cast<const char*>(der.data), der.size),
                       IdOf(library, object)};
}

void ReadObjects(const CGnuTls& library, Token& token) {
    gnutls_pkcs11_obj_t* list = nullptr;
    unsigned count = 0;
    if (library.listObjects(&list, &count, token.url.c_str(), 0) < 0) {
        return;
    }
    const std::unique_ptr<gnutls_pkcs11_obj_t, LibraryFree> owned(list);
    for (unsigned i = 0; i < count; ++i) {
        const ObjectPtr object(list[i]);
        const gnutls_pkcs11_obj_type_t type = library.objectType(object.get());
        if (type == GNUTLS_PKCS11_OBJ_X509_CRT) {
            if (auto certificate = ReadCertificate(library, object.get())) {
                token.certificates.push_back(*std::move(certificate));
            }
        } else if (type == GNUTLS_PKCS11_OBJ_PRIVKEY || type == GNUTLS_PKCS11_OBJ_PUBKEY) {
            token.keys.push_back(IdOf(library, object.get()));
        }
    }
}

std::optional<std::string> UrlOfToken(const CGnuTls& library, unsigned number) {
    char* raw = nullptr;
    if (library.tokenUrl(number, GNUTLS_PKCS11_URL_GENERIC, &raw) < 0) {
        return std::nullopt;
    }
    const std::unique_ptr<char, LibraryFree> owned(raw);
    return std::string(raw);
}

// The label is padded with blanks in the token.
std::string LabelOf(const CGnuTls& library, const std::string& url) {
    std::array<char, 128> label{};
    std::size_t size = label.size();
    if (library.tokenInfo(url.c_str(), GNUTLS_PKCS11_TOKEN_LABEL, label.data(), &size) < 0) {
        return "";
    }
    return Readable(g_strchomp(label.data()));
}

Token ReadToken(const CGnuTls& library, const std::string& url) {
    Token token;
    unsigned flags = 0;
    if (library.tokenFlags(url.c_str(), &flags) < 0 ||
        (flags & GNUTLS_PKCS11_TOKEN_USER_PIN_LOCKED) != 0) {
        return token;
    }
    token.url = url;
    token.label = LabelOf(library, url);
    token.hidesKeys = (flags & GNUTLS_PKCS11_TOKEN_LOGIN_REQUIRED) != 0;
    ReadObjects(library, token);
    return token;
}

bool HasKey(const Token& token, const Certificate& certificate) {
    if (certificate.id.empty()) {
        return false;  // nothing says which one would be its
    }
    return (token.hidesKeys && token.keys.empty()) ||
           std::find(token.keys.begin(), token.keys.end(), certificate.id) != token.keys.end();
}

bool IsValid(const CGnuTls& library, gnutls_x509_crt_t certificate, std::time_t now) {
    return library.validFrom(certificate) <= now && now <= library.validUntil(certificate);
}

bool IsAuthority(const CGnuTls& library, gnutls_x509_crt_t certificate) {
    unsigned critical = 0;
    return library.authorityStatus(certificate, &critical) > 0;
}

// A certificate that does not say what its key is for may be used for anything.
bool MaySign(const CGnuTls& library, gnutls_x509_crt_t certificate) {
    unsigned usage = 0;
    unsigned critical = 0;
    return library.keyUsage(certificate, &usage, &critical) < 0 ||
           (usage & GNUTLS_KEY_DIGITAL_SIGNATURE) != 0;
}

bool IsForClients(const CGnuTls& library, gnutls_x509_crt_t certificate) {
    bool isForAnything = true;
    for (unsigned i = 0;; ++i) {
        const auto purpose = ReadText([&](char* text, std::size_t* size) {
            unsigned critical = 0;
            return library.keyPurpose(certificate, i, text, size, &critical);
        });
        if (!purpose) {
            return isForAnything;
        }
        isForAnything = false;
        const char* const name = purpose->c_str();
        if (g_str_equal(name, GNUTLS_KP_TLS_WWW_CLIENT) != FALSE ||
            g_str_equal(name, GNUTLS_KP_ANY) != FALSE) {
            return true;
        }
    }
}

bool CanServe(const CGnuTls& library, const Token& token, const Certificate& certificate,
              std::time_t now) {
    auto* const parsed = certificate.parsed.get();
    return IsValid(library, parsed, now) && !IsAuthority(library, parsed) &&
           MaySign(library, parsed) && IsForClients(library, parsed) && HasKey(token, certificate);
}

// The common name says most. Not everybody has one.
template <class Part, class Whole>
std::string NameFrom(const Part& part, const Whole& whole) {
    const auto common = ReadText([&](char* text, std::size_t* size) {
        return part(GNUTLS_OID_X520_COMMON_NAME, text, size);
    });
    return Readable(common ? *common : ReadText(whole).value_or(""));
}

std::string SubjectOf(const CGnuTls& library, gnutls_x509_crt_t certificate) {
    return NameFrom(
        [&](const char* oid, char* text, std::size_t* size) {
            return library.subjectPart(certificate, oid, 0, 0, text, size);
        },
        [&](char* text, std::size_t* size) { return library.subject(certificate, text, size); });
}

std::string IssuerOf(const CGnuTls& library, gnutls_x509_crt_t certificate) {
    return NameFrom(
        [&](const char* oid, char* text, std::size_t* size) {
            return library.issuerPart(certificate, oid, 0, 0, text, size);
        },
        [&](char* text, std::size_t* size) { return library.issuer(certificate, text, size); });
}

std::vector<std::string> ChainOf(const CGnuTls& library, const Token& token,
                                 const Certificate& certificate) {
    std::vector<std::string> chain{certificate.der};
    const Certificate* last = &certificate;
    while (chain.size() < kLongestChain) {
        const auto issuer = std::find_if(
            token.certificates.begin(), token.certificates.end(), [&](const Certificate& other) {
                return other.der != last->der && IsAuthority(library, other.parsed.get()) &&
                       library.isIssuedBy(last->parsed.get(), other.parsed.get()) != 0;
            });
        if (issuer == token.certificates.end()) {
            break;
        }
        last = &*issuer;
        chain.push_back(last->der);
    }
    return chain;
}

// The identifier of the certificate is that of its key.
std::string KeyAddress(const Token& token, const std::string& id) {
    std::string address = token.url + ";id=";
    for (std::size_t i = 0; i < id.size(); i += 3) {
        address += "%" + id.substr(i, 2);
    }
    return address + kKeyOnToken;
}

TokenCertificate Describe(const CGnuTls& library, const Token& token,
                          const Certificate& certificate) {
    auto* const parsed = certificate.parsed.get();
    return {SubjectOf(library, parsed),
            IssuerOf(library, parsed),
            token.label,
            library.validFrom(parsed),
            library.validUntil(parsed),
            ChainOf(library, token, certificate),
            KeyAddress(token, certificate.id)};
}

}  // namespace

std::vector<TokenCertificate> ReadTokenCertificates(std::time_t now) {
    const CGnuTls* const library = CGnuTls::GetInstance();
    std::vector<TokenCertificate> usable;
    if (library == nullptr) {
        return usable;
    }
    for (unsigned number = 0;; ++number) {
        const auto url = UrlOfToken(*library, number);
        if (!url) {
            return usable;
        }
        const Token token = ReadToken(*library, *url);
        for (const Certificate& certificate : token.certificates) {
            if (CanServe(*library, token, certificate, now)) {
                usable.push_back(Describe(*library, token, certificate));
            }
        }
    }
}
