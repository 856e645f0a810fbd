#include "GettextRuntime.h"

#include <libintl.h>

#include <clocale>
#include <mutex>
#include <new>
#include <tuple>

#include "TextDomains.h"

#define TK_EXPORTED extern "C" __attribute__((visibility("default")))

namespace {

struct Runtime {
    // Libraries translate on threads of their own, outside the message catalogue's lock.
    std::mutex mutex;
    CTextDomains domains;
};

// Created by the first call, because libraries call during their own initialisation. Never
// destroyed, because libraries call until the process ends.
Runtime& TheRuntime() {
    static Runtime* const runtime = new Runtime;
    return *runtime;
}

// Returns the fallback if there is no memory, either for the runtime or for the result.
template <class Action, class Result>
Result WithDomains(Action action, Result fallback) {
    try {
        Runtime& runtime = TheRuntime();
        const std::lock_guard<std::mutex> guard(runtime.mutex);
        return action(runtime.domains);
    } catch (const std::bad_alloc&) {
        return fallback;
    }
}

// Plurals are deliberately handled by this alone: the plural text is a key of its own. A
// catalogue's plural expression and its further plural forms are never used.
const char* ChooseKey(const char* singular, const char* plural, unsigned long count) {
    return count == 1 ? singular : plural;
}

}  // namespace

std::string current_textdomain_charset() {
    return WithDomains([](const CTextDomains& domains) { return domains.CurrentCharset(); },
                       std::string());
}

void release_textdomain_catalog(const char* domain) {
    WithDomains(
        [=](CTextDomains& domains) {
            domains.Release(domain);
            return true;
        },
        false);
}

void set_locale_from_environment() {
    std::ignore = WithDomains([](const CTextDomains&) { return std::setlocale(LC_ALL, ""); },
                              static_cast<char*>(nullptr));
}

// NOLINTBEGIN(readability-inconsistent-declaration-parameter-name): the C library's header uses
// reserved names.
TK_EXPORTED char* textdomain(const char* domain) noexcept {
    return WithDomains([=](CTextDomains& domains) { return domains.SetCurrent(domain); },
                       static_cast<char*>(nullptr));
}

TK_EXPORTED char* bindtextdomain(const char* domain, const char* directory) noexcept {
    const bool isBound =
        WithDomains([=](CTextDomains& domains) { return domains.Bind(domain, directory); }, false);
    return isBound ? const_cast<char*>(domain) : nullptr;
}

// Does nothing: strings are returned as the catalogue has them, and are never converted.
TK_EXPORTED char* bind_textdomain_codeset(const char* /*domain*/,
                                          const char* /*codeset*/) noexcept {
    return nullptr;
}

TK_EXPORTED char* gettext(const char* message) noexcept {
    return dcngettext(nullptr, message, nullptr, 1, LC_MESSAGES);
}

TK_EXPORTED char* dgettext(const char* domain, const char* message) noexcept {
    return dcngettext(domain, message, nullptr, 1, LC_MESSAGES);
}

TK_EXPORTED char* dcgettext(const char* domain, const char* message, int category) noexcept {
    return dcngettext(domain, message, nullptr, 1, category);
}

TK_EXPORTED char* ngettext(const char* singular, const char* plural, unsigned long count) noexcept {
    return dcngettext(nullptr, singular, plural, count, LC_MESSAGES);
}

TK_EXPORTED char* dngettext(const char* domain, const char* singular, const char* plural,
                            unsigned long count) noexcept {
    return dcngettext(domain, singular, plural, count, LC_MESSAGES);
}

TK_EXPORTED char* dcngettext(const char* domain, const char* singular, const char* plural,
                             unsigned long count, int category) noexcept {
    const char* const key = ChooseKey(singular, plural, count);
    if (key == nullptr) {
        return nullptr;
    }
    const char* const text = WithDomains(
        [=](CTextDomains& domains) {
            return domains.Translate(domain != nullptr ? domain : domains.Current(), key, category);
        },
        key);
    return const_cast<char*>(text);
}
// NOLINTEND(readability-inconsistent-declaration-parameter-name)
