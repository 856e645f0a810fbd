#include "TextDomains.h"

#include <sys/stat.h>

#include <clocale>
#include <cstdio>
#include <cstring>
#include <new>
#include <string_view>

#include "BoundedString.h"

namespace {

constexpr char kDefaultDomain[] = "messages";
constexpr char kDefaultDirectory[] = "/usr/share/locale";
constexpr std::size_t kPathSize = 4096;
constexpr std::size_t kMaximumCatalogSize = 1048576;

// Returns the folder name of a locale category, or null for a number that is not a category.
const char* CategoryName(int category) {
    switch (category) {
        case LC_CTYPE:
            return "LC_CTYPE";
        case LC_NUMERIC:
            return "LC_NUMERIC";
        case LC_TIME:
            return "LC_TIME";
        case LC_COLLATE:
            return "LC_COLLATE";
        case LC_MONETARY:
            return "LC_MONETARY";
        case LC_MESSAGES:
            return "LC_MESSAGES";
        default:
            return nullptr;
    }
}

bool HasSlash(std::string_view name) {
    return name.find('/') != std::string_view::npos;
}

bool IsRegularFile(const char* path) {
    struct stat status = {};
    return stat(path, &status) == 0 && S_ISREG(status.st_mode);
}

// Removes the first name from a list separated by ":" and returns it.
std::string_view TakeCandidate(std::string_view& list) {
    const std::size_t end = list.find(':');
    const std::string_view candidate = list.substr(0, end);
    list.remove_prefix(end == std::string_view::npos ? list.size() : end + 1);
    return candidate;
}

// A path that is too long is cut. The cut path names no catalogue.
void FormatCatalogPath(char (&path)[kPathSize], const std::string& directory,
                       std::string_view candidate, const char* category,
                       const std::string& domain) {
    const int written = std::snprintf(path, sizeof path, "%s/%.*s/%s/%s.mo", directory.c_str(),
                                      static_cast<int>(candidate.size()), candidate.data(),
                                      category, domain.c_str());
    if (written < 0) {
        path[0] = '\0';
    }
}

}  // namespace

bool CTextDomains::Binding::Load(const char* path) {
    Release();
    try {
        isLoaded = file.Map(path, kMaximumCatalogSize) && catalog.Parse(file.Bytes());
    } catch (const std::bad_alloc&) {
        isLoaded = false;
    }
    if (!isLoaded) {
        Release();
    }
    return isLoaded;
}

void CTextDomains::Binding::Release() {
    isLoaded = false;
    catalog.Clear();
    file.Unmap();
}

CTextDomains::CTextDomains() {
    BoundedCopy(m_current, kDefaultDomain, sizeof m_current);
    m_bindings.emplace_front(kDefaultDomain, kDefaultDirectory);
}

char* CTextDomains::SetCurrent(const char* domain) {
    if (domain != nullptr) {
        BoundedCopy(m_current, domain[0] != '\0' ? domain : kDefaultDomain, sizeof m_current);
    }
    return m_current;
}

bool CTextDomains::Bind(const char* domain, const char* directory) {
    // In the C library a null directory asks for the present one. That is not supported here.
    if (domain == nullptr || domain[0] == '\0' || directory == nullptr || directory[0] != '/' ||
        BoundedLength(domain, kNameSize) == kNameSize ||
        BoundedLength(directory, kNameSize) == kNameSize) {
        return false;
    }
    try {
        Binding* const binding = FindBinding(domain);
        if (binding == nullptr) {
            m_bindings.emplace_front(domain, directory);
        } else {
            binding->directory = directory;
            binding->isLoaded = false;
        }
    } catch (const std::bad_alloc&) {
        return false;
    }
    return true;
}

const char* CTextDomains::Translate(const char* domain, const char* key, int category) {
    const char* const categoryName = CategoryName(category);
    const char* const localeName = std::setlocale(LC_ALL, nullptr);
    if (categoryName == nullptr || localeName == nullptr || !ListCandidates(localeName)) {
        return key;
    }
    Binding* const binding = FindBinding(domain);
    if (binding == nullptr || !SelectCatalog(*binding, categoryName)) {
        return key;
    }
    const char* const translation = binding->catalog.Find(key);
    return translation != nullptr ? translation : key;
}

bool CTextDomains::ListCandidates(const char* localeName) {
    if (m_localeName != localeName) {
        m_localeName.clear();
        m_candidatesFit = m_candidates.Build(localeName);
        m_localeName = localeName;
    }
    return m_candidatesFit;
}

std::string CTextDomains::CurrentCharset() const {
    for (const Binding& binding : m_bindings) {
        if (binding.domain == m_current && binding.isLoaded) {
            return binding.catalog.Charset();
        }
    }
    return "";
}

void CTextDomains::Release(const char* domain) {
    if (Binding* const binding = FindBinding(domain)) {
        binding->Release();
    }
}

CTextDomains::Binding* CTextDomains::FindBinding(const char* domain) {
    for (Binding& binding : m_bindings) {
        if (binding.domain == domain) {
            return &binding;
        }
    }
    return nullptr;
}

bool CTextDomains::SelectCatalog(Binding& binding, const char* category) {
    if (IsLastSelection(binding, category)) {
        return true;
    }
    if (HasSlash(binding.domain)) {
        return false;
    }
    std::string_view list = m_candidates.Text();
    while (!list.empty()) {
        const std::string_view candidate = TakeCandidate(list);
        if (candidate == "C" || candidate == "POSIX") {
            return false;
        }
        if (candidate.empty() || HasSlash(candidate)) {
            continue;
        }
        char path[kPathSize];
        FormatCatalogPath(path, binding.directory, candidate, category, binding.domain);
        // Deliberately keeps a loaded catalogue, even if it is for another locale. Its strings are
        // promised to stay valid until somebody releases it or binds the domain again.
        if (IsRegularFile(path) && (binding.isLoaded || binding.Load(path))) {
            m_lastBinding = &binding;
            m_lastCategory = category;
            m_lastCandidates = m_candidates;
            return true;
        }
    }
    return false;
}

bool CTextDomains::IsLastSelection(const Binding& binding, const char* category) const {
    return &binding == m_lastBinding && category == m_lastCategory && binding.isLoaded &&
           std::strcmp(m_candidates.Text(), m_lastCandidates.Text()) == 0;
}
