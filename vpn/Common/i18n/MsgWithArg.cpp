#include "MsgWithArg.h"

#include <array>
#include <charconv>
#include <exception>
#include <string_view>
#include <utility>

#include "AppLog.h"
#include "MsgCatalog.h"

namespace {

constexpr std::size_t kMaximumArguments = 10;
constexpr std::size_t kMaximumWidthDigits = 4;
constexpr char kPositionCharacters[] = "$0123456789";
// Prints nothing, but uses every position. The hardened C library ends a program if a format with
// positions leaves one out, as a translation may do.
constexpr char kEveryPosition[] = "%1$.0s%2$.0s%3$.0s%4$.0s%5$.0s%6$.0s%7$.0s%8$.0s%9$.0s%10$.0s";

// Turns each conversion into a string conversion, whatever it was. A doubled "%" becomes one, too.
std::string TakeArgumentsAsStrings(std::string format) {
    std::size_t position = format.find('%');
    while (position != std::string::npos) {
        const std::size_t conversion = format.find_first_not_of(kPositionCharacters, position + 1);
        if (conversion == std::string::npos) {
            break;
        }
        format[conversion] = 's';
        position = format.find('%', conversion + 1);
    }
    return format;
}

// Returns the conversion of an argument, counted from 1. Empty for an argument that is never
// passed.
std::string PositionalConversion(std::size_t number, std::string_view width) {
    if (number > kMaximumArguments) {
        return "";
    }
    return "%" + std::to_string(number) + "$" + std::string(width) + "s";
}

// Gives every string conversion of a format its position. Translations are not trusted: everything
// that is not such a conversion becomes plain text.
class ConversionNumbering {
public:
    std::string Number(std::string_view format) {
        std::string numbered;
        for (std::size_t percent = format.find('%'); percent != std::string_view::npos;
             percent = format.find('%')) {
            numbered += format.substr(0, percent);
            const std::size_t end = format.find_first_not_of(kPositionCharacters, percent + 1);
            if (end == std::string_view::npos) {
                numbered += "%";
                format.remove_prefix(percent);
                break;
            }
            numbered += Conversion(format.substr(percent + 1, end - percent - 1));
            format.remove_prefix(end + 1);
        }
        return numbered.append(format);
    }

private:
    // Returns the conversion. The text inside is what stands between its "%" and its "s": the
    // position and the width.
    std::string Conversion(std::string_view inside) {
        const std::size_t dollar = inside.find('$');
        if (dollar == std::string_view::npos) {
            // Conversions with a width are counted separately, as the C library does beside
            // positional ones.
            return inside.size() > kMaximumWidthDigits
                       ? PlainText(inside)
                       : PositionalConversion(inside.empty() ? ++m_plain : ++m_padded, inside);
        }
        const std::string_view digits = inside.substr(0, dollar);
        const std::string_view width = inside.substr(dollar + 1);
        std::size_t number = 0;
        std::from_chars(digits.data(), digits.data() + digits.size(), number);
        if (number == 0 || width.size() > kMaximumWidthDigits ||
            width.find('$') != std::string_view::npos) {
            return PlainText(inside);
        }
        return PositionalConversion(number, width);
    }

    static std::string PlainText(std::string_view inside) {
        return "%%" + std::string(inside) + "s";
    }

    std::size_t m_plain = 0;
    std::size_t m_padded = 0;
};

// Returns the ten arguments that are always passed. Missing ones are empty.
std::array<const char*, kMaximumArguments> PassedArguments(
    const std::vector<std::string>& arguments) {
    std::array<const char*, kMaximumArguments> passed;
    passed.fill("");
    for (std::size_t index = 0; index < arguments.size() && index < passed.size(); ++index) {
        passed[index] = arguments[index].c_str();
    }
    return passed;
}

std::string InsertArguments(const std::string& message, const std::vector<std::string>& arguments) {
    const std::string format =
        kEveryPosition + ConversionNumbering().Number(TakeArgumentsAsStrings(message));
    const auto passed = PassedArguments(arguments);
    return MsgCatalog::formatMessage(format.c_str(), passed[0], passed[1], passed[2], passed[3],
                                     passed[4], passed[5], passed[6], passed[7], passed[8],
                                     passed[9]);
}

}  // namespace

MsgWithArg::MsgWithArg(const std::string& messageId) {
    setMessageId(messageId);
}

MsgWithArg::MsgWithArg(const std::string& messageId, const std::string& catalog) {
    setMessageId(messageId);
    setCatalog(catalog);
}

void MsgWithArg::setMessageId(const std::string& messageId) try {
    m_messageId = messageId;
} catch (const std::exception& error) {
    TK_LOG_ERROR("Caught message catalog exception - %s", error.what());
}

void MsgWithArg::setCatalog(const std::string& catalog) try {
    m_catalog = catalog;
} catch (const std::exception& error) {
    TK_LOG_ERROR("Caught message catalog exception - %s", error.what());
}

void MsgWithArg::addArg(const std::string& argument) {
    addArg(argument.c_str());
}

void MsgWithArg::addArg(const char* argument) try {
    m_arguments.emplace_back(argument != nullptr ? argument : "");
} catch (const std::exception& error) {
    TK_LOG_ERROR("Caught message catalog exception - %s", error.what());
}

bool MsgWithArg::isEmpty() const {
    return m_messageId.empty();
}

const char* MsgWithArg::getMessageId() const {
    return m_messageId.c_str();
}

void MsgWithArg::clearArgs() {
    m_arguments.clear();
}

void MsgWithArg::format(std::string& text, bool translate) const {
    try {
        text = Render(translate);
    } catch (const std::exception& error) {
        TK_LOG_ERROR("Caught message catalog exception - %s", error.what());
        text.clear();
    }
}

std::string MsgWithArg::Render(bool translate) const {
    std::string message = m_messageId;
    if (translate && m_catalog.empty()) {
        MsgCatalog::getMessage(m_messageId.c_str(), message);
    } else if (translate) {
        MsgCatalog::getMessage(m_messageId.c_str(), m_catalog, message);
    }
    if (!m_arguments.empty()) {
        message = InsertArguments(message, m_arguments);
    }
    MsgCatalog::decodeCharacterReferences(message);
    return message;
}
