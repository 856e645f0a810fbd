// A message, as a translator may have written it, and the arguments for its conversions.
//
// Input: the message, then the arguments, each after a line feed.

#include <algorithm>
#include <string>
#include <vector>

#include "CharacterReferences.h"
#include "Check.h"
#include "FuzzInput.h"
#include "FuzzTarget.h"
#include "MsgWithArg.h"

namespace {

constexpr std::size_t kMaximumArguments = 10;
constexpr std::size_t kMaximumWidthDigits = 4;
constexpr std::size_t kLongestText = 2047;
constexpr char kPositionCharacters[] = "$0123456789";

/// A second implementation of one conversion, without a formatter.
class Arguments {
public:
    explicit Arguments(const std::vector<std::string>& arguments) : m_arguments(arguments) {}

    /// The text between the "%" and its conversion character.
    std::string Render(const std::string& inside) {
        const std::size_t dollar = inside.find('$');
        const std::string width = dollar == std::string::npos ? inside : inside.substr(dollar + 1);
        if (width.size() > kMaximumWidthDigits || width.find('$') != std::string::npos) {
            return "%" + inside + "s";
        }
        if (dollar == std::string::npos) {
            return Padded(inside.empty() ? ++m_plain : ++m_padded, width);
        }
        const std::size_t number = NumberOf(inside.substr(0, dollar));
        return number == 0 ? "%" + inside + "s" : Padded(number, width);
    }

private:
    /// 0 for a text that is not a number or a number that does not fit. Numbers beyond every
    /// argument are all alike.
    static std::size_t NumberOf(const std::string& digits) {
        const std::string significant =
            digits.substr(std::min(digits.find_first_not_of('0'), digits.size()));
        // The largest number of 64 bits has twenty digits.
        const std::string largest = "18446744073709551615";
        if (significant.size() > largest.size() ||
            (significant.size() == largest.size() && significant > largest)) {
            return 0;
        }
        return significant.empty() ? 0 : std::stoull(significant);
    }

    std::string Padded(std::size_t number, const std::string& width) const {
        if (number > kMaximumArguments) {
            return "";
        }
        // A zero ends an argument.
        const std::string text =
            number <= m_arguments.size() ? m_arguments[number - 1].c_str() : "";
        const std::size_t wanted = width.empty() ? 0 : std::stoul(width);
        return std::string(wanted - std::min(wanted, text.size()), ' ') + text;
    }

    const std::vector<std::string>& m_arguments;
    std::size_t m_plain = 0;
    std::size_t m_padded = 0;
};

std::string Inserted(const std::string& message, const std::vector<std::string>& arguments) {
    Arguments values(arguments);
    std::string text;
    for (std::size_t position = 0; position < message.size(); ++position) {
        if (message[position] == '\0') {
            // A zero that does not belong to a conversion ends the message.
            return text;
        }
        if (message[position] != '%') {
            text += message[position];
            continue;
        }
        const std::size_t end = message.find_first_not_of(kPositionCharacters, position + 1);
        if (end == std::string::npos) {
            return text + message.substr(position);
        }
        text += values.Render(message.substr(position + 1, end - position - 1));
        position = end;
    }
    return text;
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    FuzzInput input(data, size);
    const std::string messageId = input.TakeLine();
    MsgWithArg message(messageId);
    std::vector<std::string> arguments;
    while (!input.IsEmpty()) {
        arguments.push_back(input.TakeLine());
        message.addArg(arguments.back());
    }

    std::string expected = messageId;
    if (!arguments.empty()) {
        expected = Inserted(messageId, arguments).substr(0, kLongestText);
    }
    DecodeCharacterReferences(expected);
    std::string text = "old";
    message.format(text, false);
    TK_CHECK(text == expected);
    return 0;
}
