// A text and a pattern.
//
// Input: the pattern, a line feed, and the text.

#include <string>
#include <string_view>
#include <vector>

#include "Check.h"
#include "FuzzInput.h"
#include "FuzzTarget.h"
#include "StringUtils.h"

namespace {

constexpr std::size_t kLongestForTables = 64;

bool IsOnlyStars(std::string_view pattern) {
    return pattern.find_first_not_of('*') == std::string_view::npos;
}

/// A second implementation of the rules: it starts at the ends of both texts and tries every start
/// of a segment.
class Reference {
public:
    Reference(std::string_view text, std::string_view pattern)
        : m_text(text),
          m_pattern(pattern),
          m_known((text.size() + 1) * (pattern.size() + 1), kUnknown) {}

    bool Matches() { return Matches(0, 0); }

private:
    static constexpr char kUnknown = 2;

    bool Matches(std::size_t textPosition, std::size_t patternPosition) {
        char& known = m_known[textPosition * (m_pattern.size() + 1) + patternPosition];
        if (known == kUnknown) {
            known = Decide(m_text.substr(textPosition), m_pattern.substr(patternPosition)) ? 1 : 0;
        }
        return known == 1;
    }

    bool Decide(std::string_view text, std::string_view pattern) {
        if (text.empty() || IsOnlyStars(pattern)) {
            return IsOnlyStars(pattern) && (text.empty() || !pattern.empty());
        }
        if (pattern[0] != '*') {
            return pattern[0] == text[0] &&
                   Matches(m_text.size() - text.size() + 1, m_pattern.size() - pattern.size() + 1);
        }
        pattern.remove_prefix(pattern.find_first_not_of('*'));
        const std::string_view segment = pattern.substr(0, pattern.find('*'));
        if (segment.size() == pattern.size()) {
            // The last segment is compared with the end of the whole text, not only with what is
            // left of it.
            return m_text.size() >= segment.size() &&
                   m_text.substr(m_text.size() - segment.size()) == segment;
        }
        return MatchesBehind(text, segment, m_pattern.size() - pattern.size() + segment.size());
    }

    bool MatchesBehind(std::string_view text, std::string_view segment, std::size_t behind) {
        for (std::size_t skipped = 0; skipped + segment.size() <= text.size(); ++skipped) {
            if (text.substr(skipped, segment.size()) == segment &&
                Matches(m_text.size() - text.size() + skipped + segment.size(), behind)) {
                return true;
            }
        }
        return false;
    }

    std::string_view m_text;
    std::string_view m_pattern;
    std::vector<char> m_known;
};

/// Whether the text matches if each of its bytes may be used only once, as patterns commonly mean
/// it.
bool MatchesStrictly(std::string_view text, std::string_view pattern) {
    std::vector<bool> row(text.size() + 1, false);
    row[0] = true;
    for (const char wanted : pattern) {
        std::vector<bool> next(text.size() + 1, false);
        next[0] = row[0] && wanted == '*';
        for (std::size_t length = 1; length <= text.size(); ++length) {
            next[length] = wanted == '*' ? row[length] || next[length - 1]
                                         : row[length - 1] && text[length - 1] == wanted;
        }
        row = next;
    }
    return row[text.size()];
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    FuzzInput input(data, size);
    const std::string pattern = input.TakeLine();
    const std::string text = input.TakeRest();
    const ExactBytes exactPattern(pattern);
    const ExactBytes exactText(text);

    const bool matches = CStringUtils::MatchWildcard(exactText.View(), exactPattern.View());
    TK_CHECK(CStringUtils::MatchWildcard(text, "*"));
    if (pattern.find('*') == std::string::npos) {
        TK_CHECK(matches == (pattern == text));
    }
    if (text.size() <= kLongestForTables && pattern.size() <= kLongestForTables) {
        TK_CHECK(matches == Reference(text, pattern).Matches());
        TK_CHECK(matches || !MatchesStrictly(text, pattern));
    }
    return 0;
}
