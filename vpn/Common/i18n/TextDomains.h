#pragma once

#include <cstddef>
#include <forward_list>
#include <string>

#include "LocaleCandidates.h"
#include "MappedFile.h"
#include "MoCatalog.h"

/// The text domains, their folders and catalogues, and the current domain. Deliberately simpler
/// than the C library's: the language depends on the process's locale alone, and strings are not
/// converted. Thread-unsafe: the gettext runtime guards the process's one object. After any failure
/// a text stays untranslated; nothing is logged.
class CTextDomains {
public:
    /// Starts with the domain "messages" as the current one.
    CTextDomains();

    /// Makes a domain the current one. An empty name means "messages"; a null name changes nothing.
    /// Returns the buffer that holds the current domain's name.
    char* SetCurrent(const char* domain);

    const char* Current() const { return m_current; }

    /// Sets the absolute folder of a domain's catalogues. A catalogue that was loaded is no longer
    /// used, but its strings stay valid until the next one is loaded. Returns false, with nothing
    /// changed, if a name is missing or too long, if the folder is not absolute, or if there is no
    /// memory.
    [[nodiscard]] bool Bind(const char* domain, const char* directory);

    /// Returns the translation of the key in the domain's catalogue for the process's locale, or
    /// the key itself if there is none. A translation stays valid until its catalogue is released
    /// or its domain is bound again. The category is a number such as LC_MESSAGES.
    const char* Translate(const char* domain, const char* key, int category);

    /// The charset that the current domain's loaded catalogue declares; empty if there is none.
    std::string CurrentCharset() const;

    /// Unloads a domain's catalogue. Its strings are no longer valid. The next lookup loads it
    /// again.
    void Release(const char* domain);

private:
    static constexpr std::size_t kNameSize = 4096;

    struct Binding {
        Binding(const char* domainName, const char* directoryPath)
            : domain(domainName), directory(directoryPath) {}
        bool Load(const char* path);
        void Release();

        std::string domain;
        std::string directory;
        CMappedFile file;
        CMoCatalog catalog;
        bool isLoaded = false;
    };

    /// Lists the candidates again if the locale differs from that of the previous lookup. Returns
    /// false if they do not fit.
    bool ListCandidates(const char* localeName);
    Binding* FindBinding(const char* domain);
    bool SelectCatalog(Binding& binding, const char* category);
    bool IsLastSelection(const Binding& binding, const char* category) const;

    // The last byte is always zero, so that a library that reads the name while it changes never
    // reads beyond the buffer.
    char m_current[kNameSize] = "";
    // Newest first. Bindings are never removed, so a pointer to one stays valid.
    std::forward_list<Binding> m_bindings;
    // Candidates cached for m_localeName. An empty name means that there are none yet.
    std::string m_localeName;
    bool m_candidatesFit = false;
    CLocaleCandidates m_candidates;

    // How the last catalogue was selected. Selecting the same one again needs no look at the disk.
    const Binding* m_lastBinding = nullptr;
    const char* m_lastCategory = nullptr;
    CLocaleCandidates m_lastCandidates;
};
