#pragma once

#include <benchmark/benchmark.h>
#include <dlfcn.h>
#include <libintl.h>

#include <clocale>
#include <filesystem>
#include <stdexcept>
#include <string>
#include <vector>

#include "Catalogs.h"
#include "TemporaryFolder.h"

struct Gettext {
    char* (*bind)(const char* domain, const char* directory);
    char* (*lookUp)(const char* domain, const char* key, int category);
};

struct Ours {
    static Gettext Functions() { return {bindtextdomain, dcgettext}; }
};

// The C library's functions have the same names as ours, which come first wherever a name is looked
// up.
struct CLibrary {
    static Gettext Functions() {
        void* const library = dlopen("libc.so.6", RTLD_LAZY | RTLD_NOLOAD);
        return {
            reinterpret_cast<decltype(Gettext::bind)>(dlsym(library, "bindtextdomain")),
            reinterpret_cast<decltype(Gettext::lookUp)>(dlsym(library, "dcgettext")),
        };
    }
};

inline std::string Key(std::size_t number) {
    return "message " + std::to_string(number);
}

inline std::string Translation(std::size_t number) {
    return "Meldung " + std::to_string(number);
}

/// Catalogues of each size, created when first asked for, in a locale that the process has from
/// then on.
class CatalogFolder {
public:
    CatalogFolder() {
        UseTestLocales();
        if (std::setlocale(LC_ALL, "de_DE.UTF-8") == nullptr) {
            throw std::runtime_error("no locale de_DE.UTF-8");
        }
    }

    std::string Path() const { return m_folder.Path(); }

    std::string Domain(std::size_t messages) {
        const std::string domain = "size" + std::to_string(messages);
        if (!std::filesystem::exists(FileOf(domain))) {
            std::string entries;
            for (std::size_t number = 0; number < messages; ++number) {
                entries +=
                    "msgid \"" + Key(number) + "\"\nmsgstr \"" + Translation(number) + "\"\n";
            }
            CompileCatalog(FileOf(domain), CatalogSource("UTF-8", entries));
        }
        return domain;
    }

    /// The same catalogue under a name that nobody has looked up yet.
    std::string NewDomain(std::size_t messages) {
        const std::string original = Domain(messages);
        std::string domain = "copy" + std::to_string(++m_copies);
        std::filesystem::create_hard_link(FileOf(original), FileOf(domain));
        return domain;
    }

private:
    std::string FileOf(const std::string& domain) const {
        return CatalogPath(m_folder.Path(), "de", domain);
    }

    TemporaryFolder m_folder;
    std::size_t m_copies = 0;
};

inline CatalogFolder& Catalogs() {
    static CatalogFolder folder;
    return folder;
}

/// Looks the keys up, one after the other and again from the first.
template <class Peer>
void LookUp(benchmark::State& state, const std::vector<std::string>& keys) {
    const Gettext gettext = Peer::Functions();
    const std::string domain = Catalogs().Domain(static_cast<std::size_t>(state.range(0)));
    gettext.bind(domain.c_str(), Catalogs().Path().c_str());
    if (gettext.lookUp(domain.c_str(), Key(7).c_str(), LC_MESSAGES) != Translation(7)) {
        state.SkipWithError("the catalogue is not found");
        return;
    }
    std::size_t next = 0;
    for (auto round : state) {
        benchmark::DoNotOptimize(gettext.lookUp(domain.c_str(), keys[next].c_str(), LC_MESSAGES));
        next = next + 1 == keys.size() ? 0 : next + 1;
    }
}

inline void Sizes(benchmark::internal::Benchmark* benchmark) {
    benchmark->Arg(10)->Arg(1000)->Arg(20000);
}
