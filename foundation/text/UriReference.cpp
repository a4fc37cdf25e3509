// SPDX-License-Identifier: MIT
// Reads the parts of a URI reference, by the grammar of RFC 3986.
// One pass, no allocation. Every step checks the end before it looks, so the text needs no NUL.
#include "foundation/text/UriReference.h"

#include "foundation/text/Digits.h"

namespace ZQFoundation::detail {

namespace {

/// What an ASCII character may be in a reference.
enum CharacterClass : unsigned char {
    letter = 1,
    digit = 2,
    hexDigit = 4,
    name = 8,        ///< unreserved and sub-delims: letters, digits, - . _ ~ ! $ & ' ( ) * + , ; =
    schemeMark = 16, ///< + - .
};

// Built when compiled: one bit for each class, so that one lookup answers for any combination of them.
struct ClassTable {
    unsigned char classes[128] = {};

    constexpr void add(const char* characters, unsigned char itsClass) {
        for (; *characters != '\0'; ++characters) {
            const auto index = static_cast<unsigned char>(*characters);
            classes[index] = static_cast<unsigned char>(classes[index] | itsClass);
        }
    }

    constexpr ClassTable() {
        add("abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ", letter | name);
        add("0123456789", digit | hexDigit | name);
        add("abcdefABCDEF", hexDigit);
        add("-._~!$&'()*+,;=", name);
        add("+-.", schemeMark);
    }
};

constexpr ClassTable table;

// Bytes and units above ASCII belong to no class, so they end every piece.
template <class Unit>
constexpr bool is(Unit unit, unsigned char classes) noexcept {
    const auto code = static_cast<std::uint32_t>(static_cast<std::make_unsigned_t<Unit>>(unit));
    return code < 128 && (table.classes[code] & classes) != 0;
}

/// Reads one reference. Each step takes its piece at `at_` and moves past it; a failed step ends the reading.
template <class Unit>
class UriReader {
public:
    UriReader(const Unit* text, std::size_t count) noexcept : text_(text), count_(count) {}

    bool read(UriReference& out) noexcept { return readScheme(out) && readAuthority(out) && readRest(out); }

private:
    bool atEnd() const noexcept { return at_ == count_; }
    bool sees(char character) const noexcept {
        return at_ < count_ && text_[at_] == static_cast<Unit>(character);
    }

    bool take(char character) noexcept {
        if (!sees(character)) {
            return false;
        }
        ++at_;
        return true;
    }

    UriPart partFrom(std::size_t start) const noexcept { return {start, at_, true}; }

    /// The text before the first of : / ? # is the scheme if that is a colon. So no relative path has a colon
    /// in its first piece.
    /// The whole class is scanned first and the first letter checked after that: "1http:x" is a failure, not
    /// a path.
    bool readScheme(UriReference& out) noexcept {
        std::size_t end = 0;
        while (end < count_ && is(text_[end], letter | digit | schemeMark)) {
            ++end;
        }
        if (end < count_ && text_[end] == Unit{':'}) {
            out.scheme = {0, end, true};
            at_ = end + 1;
            return end != 0 && is(text_[0], letter);
        }
        return !hasColonInFirstSegment(end);
    }

    // `from` is where the scan for a scheme stopped.
    bool hasColonInFirstSegment(std::size_t from) const noexcept {
        for (; from < count_; ++from) {
            const Unit unit = text_[from];
            if (unit == Unit{':'}) {
                return true;
            }
            if (unit == Unit{'/'} || unit == Unit{'?'} || unit == Unit{'#'}) {
                return false;
            }
        }
        return false;
    }

    // Two slashes always begin an authority, even an empty one.
    bool readAuthority(UriReference& out) noexcept {
        if (count_ - at_ < 2 || text_[at_] != Unit{'/'} || text_[at_ + 1] != Unit{'/'}) {
            return true;
        }
        at_ += 2;
        // The text before an "@" is user information; only the "@" distinguishes it from a host and its port.
        // When no "@" follows, the same characters are read again as host and port, so the scan is repeated
        // once at most.
        const std::size_t start = at_;
        if (takeNames(":") && take('@')) {
            out.userInformation = {start, at_ - 1, true};
        } else {
            at_ = start;
        }
        // What follows an authority must be a path, a query, a fragment or the end.
        return readHost(out) && readPort(out) && (atEnd() || sees('/') || sees('?') || sees('#'));
    }

    // Any name may be empty: "file:///x" has an empty host.
    bool readHost(UriReference& out) noexcept {
        const std::size_t start = at_;
        const bool isRead = take('[') ? takeAddress() && take(']') : takeNames("");
        out.host = partFrom(start);
        return isRead;
    }

    // Digits without a limit, as the grammar has it. What a port means is for those that connect.
    bool readPort(UriReference& out) noexcept {
        if (take(':')) {
            const std::size_t start = at_;
            takeWhile(digit);
            out.port = partFrom(start);
        }
        return true;
    }

    bool readRest(UriReference& out) noexcept {
        std::size_t start = at_;
        if (!takeNames(":@/")) {
            return false;
        }
        out.path = partFrom(start);
        if (take('?')) {
            start = at_;
            if (!takeNames(":@/?")) {
                return false;
            }
            out.query = partFrom(start);
        }
        if (take('#')) {
            start = at_;
            if (!takeNames(":@/?")) {
                return false;
            }
            out.fragment = partFrom(start);
        }
        // Anything left is a character that no piece may have.
        return atEnd();
    }

    std::size_t takeWhile(unsigned char classes) noexcept {
        const std::size_t start = at_;
        while (at_ < count_ && is(text_[at_], classes)) {
            ++at_;
        }
        return at_ - start;
    }

    /// Takes names, escapes and the extra characters up to the first other one. False for a "%" that is not
    /// an escape.
    bool takeNames(const char* extra) noexcept {
        while (at_ < count_) {
            if (is(text_[at_], name) || isOneOf(text_[at_], extra)) {
                ++at_;
            } else if (sees('%')) {
                if (count_ - at_ < 3 || !is(text_[at_ + 1], hexDigit) || !is(text_[at_ + 2], hexDigit)) {
                    return false;
                }
                at_ += 3;
            } else {
                break;
            }
        }
        return true;
    }

    static bool isOneOf(Unit unit, const char* characters) noexcept {
        for (; *characters != '\0'; ++characters) {
            if (unit == static_cast<Unit>(*characters)) {
                return true;
            }
        }
        return false;
    }

    /// Takes the text between brackets: an IPv6 address or, for addresses yet to come, "v1.text".
    bool takeAddress() noexcept {
        if (!take('v') && !take('V')) {
            return takeIPv6Address();
        }
        if (takeWhile(hexDigit) == 0 || !take('.')) {
            return false;
        }
        const std::size_t start = at_;
        // Classes and colons alternate until neither matches.
        while (takeWhile(name) != 0 || take(':')) {
        }
        return at_ != start;
    }

    /// Eight groups, the last two perhaps as an IPv4 address, or fewer with one "::" for those left out.
    /// Groups are counted; the gap counts for one group or more, so at most 7 are allowed with it.
    bool takeIPv6Address() noexcept {
        int groups = 0;
        bool isShortened = takeGap();
        while (at_ < count_ && is(text_[at_], hexDigit)) {
            // Tried first, because an IPv4 address also begins like a group of digits.
            if (takeIPv4Address()) {
                groups += 2;
                break;
            }
            if (takeWhile(hexDigit) > 4) {
                return false;
            }
            ++groups;
            if (takeGap()) {
                // A second gap would be ambiguous.
                if (isShortened) {
                    return false;
                }
                isShortened = true;
            } else if (!take(':')) {
                break;
            } else if (at_ == count_ || !is(text_[at_], hexDigit)) {
                return false; // a single ":" leads to another group
            }
        }
        return isShortened ? groups <= 7 : groups == 8;
    }

    bool takeGap() noexcept {
        if (count_ - at_ < 2 || text_[at_] != Unit{':'} || text_[at_ + 1] != Unit{':'}) {
            return false;
        }
        at_ += 2;
        return true;
    }

    /// Four numbers up to 255 without leading zeros; takes nothing when there is no such address.
    bool takeIPv4Address() noexcept {
        const std::size_t start = at_;
        for (int numbers = 0; numbers < 4; ++numbers) {
            if ((numbers != 0 && !take('.')) || !takeOctet()) {
                at_ = start;
                return false;
            }
        }
        return true;
    }

    // At most three digits are taken, so no overflow; a fourth does not match what must follow.
    bool takeOctet() noexcept {
        const std::size_t start = at_;
        const Unit* next = text_ + at_;
        const int value = takeDigits(next, text_ + count_, 3);
        at_ = static_cast<std::size_t>(next - text_);
        const std::size_t digits = at_ - start;
        return digits != 0 && value <= 255 && (digits == 1 || text_[start] != Unit{'0'});
    }

    const Unit* text_;
    std::size_t count_;
    std::size_t at_ = 0;
};

} // namespace

bool readUriReference(StringView text, UriReference& out) noexcept {
    // Parts that are missing must not keep what an earlier reading left.
    out = UriReference();
    switch (text.form()) {
    case StringView::Form::absent:
        return false;
    case StringView::Form::utf16:
        return UriReader<char16_t>(text.units(), text.size()).read(out);
    default:
        return UriReader<char>(text.bytes(), text.size()).read(out);
    }
}

} // namespace ZQFoundation::detail
