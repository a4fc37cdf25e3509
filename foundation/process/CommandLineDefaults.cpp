// SPDX-License-Identifier: MIT
// Reads settings given as arguments: `-Key value`.
// Everything here works on any text: what is not a pair is skipped, and what is not a property list is a
// string.
#include "foundation/process/CommandLineDefaults.h"

#include <algorithm>

#include "foundation/objects/NSException.h"

namespace ZQFoundation::detail {

namespace {

bool isBlank(char16_t unit) noexcept {
    switch (unit) {
    case 0x0020:
    case 0x0085:
    case 0x00A0:
    case 0x1680:
    case 0x2028:
    case 0x2029:
    case 0x202F:
    case 0x205F:
    case 0x3000:
        return true;
    default:
        return (unit >= 0x0009 && unit <= 0x000D) || (unit >= 0x2000 && unit <= 0x200A);
    }
}

NSString trimmed(const NSString& text) {
    std::size_t start = 0;
    std::size_t end = text.length();
    while (start < end && isBlank(text.characterAtIndex(start))) {
        ++start;
    }
    while (end > start && isBlank(text.characterAtIndex(end - 1))) {
        --end;
    }
    return text.substringWithRange(start, end - start);
}

// Only a few first characters are tried, so that an ordinary text such as `YES` costs no parsing.
bool mayBePropertyList(const NSString& text) {
    if (text.length() == 0) {
        return false;
    }
    switch (text.characterAtIndex(0)) {
    case '{':
    case '(':
    case '[':
    case '<':
    case '"':
        return true;
    default:
        return false;
    }
}

NSObject valueOfArgument(const std::string& argument) {
    const NSString text = trimmed(NSString::stringWithFileSystemBytes(argument.data(), argument.size()));
    if (mayBePropertyList(text)) {
        try {
            if (NSObject parsed = text.propertyList()) {
                return parsed;
            }
        } catch (const NSException&) {
            // For example a text in parentheses.
            return text; // a text that only looks like a property list is taken literally
        }
    }
    return text;
}

bool startsWithHyphen(const std::string& argument) noexcept {
    return !argument.empty() && argument.front() == '-';
}

/// Whether the argument at that index is a key, and the next one its value.
bool isPairAt(const std::vector<std::string>& arguments, std::size_t index) noexcept {
    return index + 1 < arguments.size() && arguments[index].size() > 1 &&
           startsWithHyphen(arguments[index]) && !startsWithHyphen(arguments[index + 1]);
}

bool isBlankByte(char byte) noexcept { return byte == ' ' || (byte >= '\t' && byte <= '\r'); }

/// Splits a text into words as shells do.
/// The syntax is the part of a shell's that users expect when they put arguments into a variable.
class Words {
public:
    explicit Words(const std::string& text) noexcept : text_(text) {}

    /// False at the end.
    bool next(std::string& word) {
        word.clear();
        while (position_ < text_.size() && isBlankByte(text_[position_])) {
            ++position_;
        }
        if (position_ == text_.size()) {
            return false;
        }
        // A quote may begin within a word, as in -Key"a b".
        char quote = '\0';
        for (; position_ < text_.size() && (quote != '\0' || !isBlankByte(text_[position_])); ++position_) {
            take(word, quote);
        }
        return true;
    }

private:
    void take(std::string& word, char& quote) {
        const char character = text_[position_];
        // A backslash at the very end is an ordinary character.
        if (character == '\\' && quote != '\'' && position_ + 1 < text_.size()) {
            word += text_[++position_];
        } else if (character == quote) {
            quote = '\0';
        } else if (quote == '\0' && (character == '"' || character == '\'')) {
            quote = character;
        } else {
            word += character;
        }
    }

    const std::string& text_;
    std::size_t position_ = 0;
};

/// Whether a word that has the form of a key is instead an option of the host.
bool isOption(const std::string& word, const std::vector<std::string>& options) {
    // "-x" and "--long" belong to the host by the conventions of command lines.
    return word.size() == 2 || word[1] == '-' ||
           std::find(options.begin(), options.end(), word) != options.end();
}

} // namespace

NSDictionary defaultsFromArguments(const std::vector<std::string>& arguments) {
    NSMutableDictionary result;
    for (std::size_t index = 1; index < arguments.size(); ++index) {
        if (isPairAt(arguments, index)) {
            const std::string& key = arguments[index];
            // The last of repeated keys replaces the value but keeps the place of the first.
            result.setObject_forKey(valueOfArgument(arguments[++index]),
                                    NSString::stringWithFileSystemBytes(key.data() + 1, key.size() - 1));
        }
    }
    return result.dictionary();
}

NSDictionary defaultsFromText(const std::string& text) {
    std::vector<std::string> arguments(1); // no program
    std::string word;
    for (Words words(text); words.next(word);) {
        arguments.push_back(word);
    }
    return defaultsFromArguments(arguments);
}

std::vector<std::size_t> placesWithoutDefaults(const std::vector<std::string>& arguments,
                                               const std::vector<std::string>& options) {
    std::vector<std::size_t> places;
    bool isEnded = false;
    for (std::size_t index = 0; index < arguments.size(); ++index) {
        // From "--" on, everything is the host's, and so is that word.
        isEnded = isEnded || (index > 0 && arguments[index] == "--");
        if (!isEnded && index > 0 && isPairAt(arguments, index) && !isOption(arguments[index], options)) {
            ++index;
        } else {
            places.push_back(index);
        }
    }
    return places;
}

} // namespace ZQFoundation::detail
