// The name of a locale, from which the folders of its catalogues are derived.

#include <algorithm>
#include <cctype>
#include <memory>
#include <optional>
#include <string>

#include "Check.h"
#include "FuzzInput.h"
#include "FuzzTarget.h"
#include "LocaleCandidates.h"

namespace {

constexpr std::size_t kLongestList = 4095;

std::optional<std::string> CutAtLast(char separator, std::string& name) {
    const std::size_t position = name.rfind(separator);
    if (position == std::string::npos) {
        return std::nullopt;
    }
    const std::string part = name.substr(position);
    name.erase(position);
    return part;
}

std::string Lower(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(), [](char character) {
        return character >= 'A' && character <= 'Z' ? static_cast<char>(character | 0x20)
                                                    : character;
    });
    return text;
}

/// A second implementation of the list. Each part keeps its separator.
std::string Expected(const std::string& name) {
    std::string language = name;
    const auto modifier = CutAtLast('@', language);
    const auto codeset = CutAtLast('.', language);
    const auto territory = CutAtLast('_', language);
    if (language.empty() || (codeset && !territory)) {
        return name;
    }
    std::string list;
    std::string last;
    const auto add = [&](const std::string& candidate) {
        list += candidate + ":";
        last = candidate;
    };
    if (modifier && territory && codeset) {
        add(language + *territory + *codeset + *modifier);
    }
    if (modifier && territory) {
        add(language + *territory + *modifier);
    }
    if (modifier) {
        add(language + *modifier);
    }
    if (territory && codeset) {
        add(language + *territory + *codeset);
    }
    if (territory) {
        add(last);
        add(language + "-" + Lower(territory->substr(1)));
    }
    return list + language;
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    std::string name = FuzzInput(data, size).TakeRest();
    // A zero ends the name.
    name.erase(std::min(name.find('\0'), name.size()));
    const std::string expected = Expected(name);
    const ExactBytes exactName({name.c_str(), name.size() + 1});

    const auto candidates = std::make_unique<CLocaleCandidates>();
    // The previous contents of a list, here the longest one, leave no trace.
    TK_CHECK(candidates->Build(std::string(kLongestList, 'x').c_str()));
    const bool fits = candidates->Build(exactName.View().data());
    TK_CHECK(fits == (expected.size() <= kLongestList));
    if (fits) {
        TK_CHECK(candidates->Text() == expected);
    }
    return 0;
}
