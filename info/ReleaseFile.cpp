// SPDX-License-Identifier: MIT
// Reads the system's release description.
#include "info/ReleaseFile.h"

#include <string_view>

namespace ZQFoundation::detail {

namespace {

/// A carriage return counts as a space: at the end of a line it is left by an editor of another system.
constexpr std::string_view blanks = " \t\r";
constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";

bool isBlank(char c) noexcept { return blanks.find(c) != std::string_view::npos; }

std::string_view withoutLeadingBlanks(std::string_view text) noexcept {
    const std::size_t start = text.find_first_not_of(blanks);
    return start == std::string_view::npos ? std::string_view() : text.substr(start);
}

/// Inside double quotes a backslash escapes only characters with a special meaning there.
bool isProtectedInQuotes(char c) noexcept { return c == '"' || c == '\\' || c == '$' || c == '`'; }

/// Reads the value of one line, whatever is in it, and never looks beyond its end.
class ValueReader {
public:
    explicit ValueReader(std::string_view text) noexcept : text_(text) {}

    /// The quoted and unquoted pieces up to the end or a comment, put together: `a"b c"d` is "ab cd".
    std::string read() {
        const std::size_t start = text_.find_first_not_of(blanks);
        isAfterBlank_ = start != 0;
        for (at_ = start; at_ < text_.size() && !atComment(); ++at_) {
            readOne(text_[at_]);
        }
        value_.resize(meant_);
        return std::move(value_);
    }

private:
    /// A comment begins with a "#" after a space; inside a word it is an ordinary character.
    bool atComment() const noexcept { return text_[at_] == '#' && isAfterBlank_; }

    void readOne(char c) {
        if (c == '\'') {
            readSingleQuoted();
        } else if (c == '"') {
            readDoubleQuoted();
        } else if (c != '\\') {
            value_ += c;
        } else if (at_ + 1 < text_.size()) {
            value_ += text_[++at_];
        }
        // Unescaped spaces belong to the value only if more follows. Escaped ones always do, and no comment
        // begins after them.
        isAfterBlank_ = isBlank(c);
        if (!isAfterBlank_) {
            meant_ = value_.size();
        }
    }

    /// Nothing is escaped between single quotes. Without a second one, the rest of the line is quoted.
    void readSingleQuoted() {
        const std::size_t start = at_ + 1;
        const std::size_t end = text_.find('\'', start);
        at_ = end == std::string_view::npos ? text_.size() : end;
        value_.append(text_.substr(start, at_ - start));
    }

    /// Without a second quote, the rest of the line is quoted.
    void readDoubleQuoted() {
        while (++at_ < text_.size() && text_[at_] != '"') {
            if (text_[at_] == '\\' && at_ + 1 < text_.size() && isProtectedInQuotes(text_[at_ + 1])) {
                ++at_;
            }
            value_ += text_[at_];
        }
    }

    std::string_view text_;
    std::size_t at_ = 0;
    std::string value_;
    std::size_t meant_ = 0;     ///< length of the value without spaces at its end
    bool isAfterBlank_ = false; ///< an unescaped one
};

/// Other entries are not kept: however many the file has, the result is small.
bool isWanted(std::string_view key) noexcept {
    return key == "NAME" || key == "VERSION" || key == "VERSION_ID" || key == "BUILD_ID";
}

void readLine(std::string_view line, NSMutableDictionary& entries) {
    line = withoutLeadingBlanks(line); // a comment has no wanted key, so it needs no special treatment
    const std::size_t equals = line.find('=');
    if (equals == std::string_view::npos || !isWanted(line.substr(0, equals))) {
        return;
    }
    entries.setObject_forKey(ValueReader(line.substr(equals + 1)).read(), line.substr(0, equals));
}

} // namespace

NSDictionary releaseEntriesFromBytes(const std::string& bytes) {
    std::string_view rest = bytes;
    if (rest.substr(0, byteOrderMark.size()) == byteOrderMark) {
        rest.remove_prefix(byteOrderMark.size());
    }
    NSMutableDictionary entries;
    while (!rest.empty()) {
        const std::size_t end = rest.find('\n');
        readLine(rest.substr(0, end), entries);
        rest.remove_prefix(end == std::string_view::npos ? rest.size() : end + 1);
    }
    return entries.dictionary();
}

} // namespace ZQFoundation::detail
