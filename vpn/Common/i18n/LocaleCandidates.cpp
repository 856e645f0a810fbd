#include "LocaleCandidates.h"

#include <algorithm>
#include <optional>

namespace {

// A part exists if its separator does, even if nothing follows the separator.
struct LocaleParts {
    std::string_view language;
    std::optional<std::string_view> territory;
    std::optional<std::string_view> codeset;
    std::optional<std::string_view> modifier;
};

std::optional<std::string_view> CutBehindLast(char separator, std::string_view& text) {
    const std::size_t position = text.rfind(separator);
    if (position == std::string_view::npos) {
        return std::nullopt;
    }
    const std::string_view part = text.substr(position + 1);
    text = text.substr(0, position);
    return part;
}

LocaleParts Split(std::string_view localeName) {
    LocaleParts parts;
    parts.modifier = CutBehindLast('@', localeName);
    parts.codeset = CutBehindLast('.', localeName);
    parts.territory = CutBehindLast('_', localeName);
    parts.language = localeName;
    return parts;
}

char ToLowerAscii(char character) {
    return character >= 'A' && character <= 'Z' ? static_cast<char>(character - 'A' + 'a')
                                                : character;
}

}  // namespace

bool CLocaleCandidates::Build(const char* localeName) {
    Clear();
    const auto [language, territory, codeset, modifier] = Split(localeName);
    if (language.empty() || (codeset && !territory)) {
        Append(localeName);
        return m_fits;
    }
    if (modifier && territory && codeset) {
        AppendCandidate({language, "_", *territory, ".", *codeset, "@", *modifier});
    }
    if (modifier && territory) {
        AppendCandidate({language, "_", *territory, "@", *modifier});
    }
    if (modifier) {
        AppendCandidate({language, "@", *modifier});
    }
    if (territory) {
        if (codeset) {
            AppendCandidate({language, "_", *territory, ".", *codeset});
        }
        // Deliberately lists the latest candidate once more. Looking there twice does no harm.
        RepeatLastCandidate();
        Append(language);
        Append("-");
        AppendInLowerCase(*territory);
        Append(":");
    }
    Append(language);
    return m_fits;
}

void CLocaleCandidates::Clear() {
    m_text[0] = '\0';
    m_length = 0;
    m_lastStart = 0;
    m_lastLength = 0;
    m_fits = true;
}

void CLocaleCandidates::AppendCandidate(std::initializer_list<std::string_view> pieces) {
    m_lastStart = m_length;
    for (const std::string_view piece : pieces) {
        Append(piece);
    }
    m_lastLength = m_length - m_lastStart;
    Append(":");
}

void CLocaleCandidates::RepeatLastCandidate() {
    AppendCandidate({std::string_view(m_text + m_lastStart, m_lastLength)});
}

void CLocaleCandidates::AppendInLowerCase(std::string_view piece) {
    const std::size_t start = m_length;
    Append(piece);
    std::transform(m_text + start, m_text + m_length, m_text + start, ToLowerAscii);
}

void CLocaleCandidates::Append(std::string_view piece) {
    m_fits = m_fits && piece.size() < kSize - m_length;
    if (m_fits) {
        piece.copy(m_text + m_length, piece.size());
        m_length += piece.size();
        m_text[m_length] = '\0';
    }
}
