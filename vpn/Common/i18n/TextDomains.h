#pragma once

#include <cstddef>
#include <forward_list>
#include <string>

#include "LocaleCandidates.h"
#include "MappedFile.h"
#include "MoCatalog.h"

/// Text domains with their folders and catalogues, and the current one among them. Deliberately
/// simpler than the C library's: the language is that of the process's locale alone, strings come
/// as the catalogue has them. Thread-unsafe: the gettext runtime guards the process's one object.
/// Every failure means an untranslated text; nothing is logged.
class CTextDomains {
public:
    /// Knows the domain "messages", which is the current one.
    CTextDomains();

    /// Makes a domain the current one, "messages" when the name is empty; a null name changes
    /// nothing. Gives the buffer that holds the current domain's name.
    char* SetCurrent(const char* domain);

    /// The name of the current domain.
    const char* Current() const { return m_current; }

    /// Sets the absolute folder of a domain's catalogues; the catalogue that was loaded counts no
    /// more, though its strings stay valid until the next one is loaded. False, with nothing
    /// changed, when a name is missing, relative or too long, or memory is short.
    [[nodiscard]] bool Bind(const char* domain, const char* directory);

    /// The translation of the key in the domain's catalogue for the process's locale, valid until
    /// that catalogue is released or its domain bound again; the key itself when there is none.
    /// The category is a number such as LC_MESSAGES.
    const char* Translate(const char* domain, const char* key, int category);

    /// The charset that the current domain's loaded catalogue declares, else empty.
    std::string CurrentCharset() const;

    /// Unloads a domain's catalogue: its strings are gone, the next lookup loads it afresh.
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

    /// Lists the candidates of a locale anew when it is another than that of the lookup before.
    bool ListCandidates(const char* localeName);
    Binding* FindBinding(const char* domain);
    bool SelectCatalog(Binding& binding, const char* category);
    bool IsLastSelection(const Binding& binding, const char* category) const;

    // Zeros behind the name: a library that reads it meanwhile never runs out of the buffer.
    char m_current[kNameSize] = "";
    // Newest first, never taken out: a binding keeps its place for the process's life.
    std::forward_list<Binding> m_bindings;
    // Those of the lookup that is going on, and the locale that they are of; it has a name.
    std::string m_localeName;
    bool m_candidatesFit = false;
    CLocaleCandidates m_candidates;

    // How the last catalogue was selected: asking the same again needs no look at the disk.
    const Binding* m_lastBinding = nullptr;
    const char* m_lastCategory = nullptr;
    CLocaleCandidates m_lastCandidates;
};
