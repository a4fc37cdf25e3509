// SPDX-License-Identifier: MIT
// Character sets and their builders.
// Sets of the standard's categories are made on first use, from the tables, and kept.
#include "foundation/objects/NSCharacterSet.h"

#include "foundation/objects/CharacterSetPages.h"
#include "foundation/objects/NSException.h"
#include "foundation/objects/PercentEscapes.h"

namespace ZQFoundation {

using detail::CategoryMask;
using detail::CharacterSetBody;
using detail::CharacterSetPages;
using detail::GeneralCategory;
using detail::maskOf;
using detail::SharedCharacterSet;

namespace {

// Marks count as letters here, as on the platform, so that words with separate accents stay words.
constexpr CategoryMask lettersAndMarks =
    maskOf(GeneralCategory::uppercaseLetter, GeneralCategory::enclosingMark);
constexpr CategoryMask numbers = maskOf(GeneralCategory::decimalNumber, GeneralCategory::otherNumber);
constexpr CategoryMask punctuation =
    maskOf(GeneralCategory::connectorPunctuation, GeneralCategory::otherPunctuation);
constexpr CategoryMask symbols = maskOf(GeneralCategory::mathSymbol, GeneralCategory::otherSymbol);

/// Made on the first call.
template <CategoryMask categories>
NSCharacterSet setOfCategories() {
    static constinit SharedCharacterSet slot{nullptr};
    return detail::sharedCharacterSet(slot, [] {
        CharacterSetPages pages;
        pages.setCategories(categories);
        return pages.characterSet();
    });
}

void addWhitespace(CharacterSetPages& pages) {
    pages.setCategories(maskOf(GeneralCategory::spaceSeparator));
    // The tab is a control character by category.
    pages.setRange(0x0009, 0x000A, true);
}

/// LF, vertical tab, form feed and CR; NEL; the separators of lines and paragraphs.
void addNewlines(CharacterSetPages& pages) {
    pages.setRange(0x000A, 0x000E, true);
    pages.setRange(0x0085, 0x0086, true);
    pages.setRange(0x2028, 0x202A, true);
}

/// Raises unless all of the range is in the code space.
/// An empty range is accepted wherever it begins.
char32_t endOfRange(const char* operation, NSRange range) {
    if (range.length == 0) {
        return 0;
    }
    // In this order, so that neither sum nor difference wraps.
    if (range.location >= detail::codeSpace || range.length > detail::codeSpace - range.location) {
        NSException::raise_format(NSInvalidArgumentException, "%s: {%lu, %lu} goes beyond U+10FFFF",
                                  operation, range.location, range.length);
    }
    return static_cast<char32_t>(range.location + range.length);
}

/// The operation is named in the reason of the exception.
void setRange(CharacterSetPages& pages, const char* operation, NSRange range, bool isMember) {
    const char32_t end = endOfRange(operation, range);
    if (end != 0) {
        pages.setRange(static_cast<char32_t>(range.location), end, isMember);
    }
}

/// Returns a builder's pages; one that was moved from is empty again.
CharacterSetPages& present(CharacterSetPages*& pages) {
    if (pages == nullptr) {
        pages = new CharacterSetPages;
    }
    return *pages;
}

/// Whether the first page contains all members of the second.
bool includes(const detail::CharacterPage& page, const detail::CharacterPage& other) noexcept {
    std::uint64_t missing = 0;
    for (std::size_t word = 0; word < 4; ++word) {
        missing |= other.words[word] & ~page.words[word];
    }
    return missing == 0;
}

} // namespace

NSCharacterSet NSCharacterSet::whitespaceCharacterSet() {
    static constinit SharedCharacterSet slot{nullptr};
    return detail::sharedCharacterSet(slot, [] {
        CharacterSetPages pages;
        addWhitespace(pages);
        return pages.characterSet();
    });
}

NSCharacterSet NSCharacterSet::newlineCharacterSet() {
    static constinit SharedCharacterSet slot{nullptr};
    return detail::sharedCharacterSet(slot, [] {
        CharacterSetPages pages;
        addNewlines(pages);
        return pages.characterSet();
    });
}

NSCharacterSet NSCharacterSet::whitespaceAndNewlineCharacterSet() {
    static constinit SharedCharacterSet slot{nullptr};
    return detail::sharedCharacterSet(slot, [] {
        CharacterSetPages pages;
        addWhitespace(pages);
        addNewlines(pages);
        return pages.characterSet();
    });
}

NSCharacterSet NSCharacterSet::controlCharacterSet() {
    return setOfCategories<maskOf(GeneralCategory::control, GeneralCategory::format)>();
}

NSCharacterSet NSCharacterSet::decimalDigitCharacterSet() {
    return setOfCategories<maskOf(GeneralCategory::decimalNumber)>();
}

NSCharacterSet NSCharacterSet::letterCharacterSet() { return setOfCategories<lettersAndMarks>(); }

NSCharacterSet NSCharacterSet::lowercaseLetterCharacterSet() {
    return setOfCategories<maskOf(GeneralCategory::lowercaseLetter)>();
}

// Title case, such as U+01C5, counts as upper case, as on the platform.
NSCharacterSet NSCharacterSet::uppercaseLetterCharacterSet() {
    return setOfCategories<maskOf(GeneralCategory::uppercaseLetter) |
                           maskOf(GeneralCategory::titlecaseLetter)>();
}

NSCharacterSet NSCharacterSet::alphanumericCharacterSet() {
    return setOfCategories<lettersAndMarks | numbers>();
}

NSCharacterSet NSCharacterSet::punctuationCharacterSet() { return setOfCategories<punctuation>(); }

NSCharacterSet NSCharacterSet::symbolCharacterSet() { return setOfCategories<symbols>(); }

NSCharacterSet NSCharacterSet::URLPathAllowedCharacterSet() {
    static constinit SharedCharacterSet slot{nullptr};
    return detail::sharedCharacterSet(
        slot, [] { return characterSetWithCharactersInString(detail::urlPathCharacters); });
}

NSCharacterSet NSCharacterSet::URLQueryAllowedCharacterSet() {
    static constinit SharedCharacterSet slot{nullptr};
    return detail::sharedCharacterSet(
        slot, [] { return characterSetWithCharactersInString(detail::urlQueryCharacters); });
}

NSCharacterSet NSCharacterSet::characterSetWithCharactersInString(StringView characters) {
    if (!characters) {
        return {};
    }
    CharacterSetPages pages;
    pages.setCharacters(characters, true);
    return pages.characterSet();
}

NSCharacterSet NSCharacterSet::characterSetWithRange(NSRange range) {
    CharacterSetPages pages;
    setRange(pages, "characterSetWithRange:", range, true);
    return pages.characterSet();
}

// Nil has no inverse: nil stands for a set that is missing, not for an empty one.
NSCharacterSet NSCharacterSet::invertedSet() const {
    if (!*this) {
        return {};
    }
    CharacterSetPages pages(detail::bodyOrEmpty(*this));
    pages.invert();
    return pages.characterSet();
}

bool NSCharacterSet::characterIsMember(char16_t unit) const noexcept {
    return detail::CharacterMembership(*this).contains(unit);
}

bool NSCharacterSet::longCharacterIsMember(char32_t codePoint) const noexcept {
    return detail::containsCodePoint(detail::bodyOrEmpty(*this), codePoint);
}

// Page by page, 256 code points at a time.
bool NSCharacterSet::isSupersetOfSet(const NSCharacterSet& other) const noexcept {
    const CharacterSetBody& body = detail::bodyOrEmpty(*this);
    const CharacterSetBody& wanted = detail::bodyOrEmpty(other);
    for (std::size_t page = 0; page < detail::codePages; ++page) {
        if (!includes(body.pages()[body.pageNumber(page)], wanted.pages()[wanted.pageNumber(page)])) {
            return false;
        }
    }
    // Nil is a superset of nothing, not even of the empty set.
    return static_cast<bool>(*this);
}

NSMutableCharacterSet::NSMutableCharacterSet() : pages_(new CharacterSetPages) {}

NSMutableCharacterSet::NSMutableCharacterSet(const NSCharacterSet& set)
    : pages_(new CharacterSetPages(detail::bodyOrEmpty(set))) {}

NSMutableCharacterSet::NSMutableCharacterSet(NSMutableCharacterSet&& other) noexcept : pages_(other.pages_) {
    other.pages_ = nullptr;
}

NSMutableCharacterSet& NSMutableCharacterSet::operator=(NSMutableCharacterSet&& other) noexcept {
    CharacterSetPages* const taken = other.pages_;
    other.pages_ = nullptr;
    delete pages_;
    pages_ = taken;
    return *this;
}

NSMutableCharacterSet::~NSMutableCharacterSet() { delete pages_; }

void NSMutableCharacterSet::addCharactersInString(StringView characters) {
    present(pages_).setCharacters(characters, true);
}

void NSMutableCharacterSet::removeCharactersInString(StringView characters) {
    present(pages_).setCharacters(characters, false);
}

// A nil argument leaves the set as it is, in a union and in an intersection alike.
void NSMutableCharacterSet::formUnionWithCharacterSet(const NSCharacterSet& other) {
    if (other) {
        present(pages_).unite(detail::bodyOrEmpty(other));
    }
}

void NSMutableCharacterSet::formIntersectionWithCharacterSet(const NSCharacterSet& other) {
    if (other) {
        present(pages_).intersect(detail::bodyOrEmpty(other));
    }
}

void NSMutableCharacterSet::addCharactersInRange(NSRange range) {
    setRange(present(pages_), "addCharactersInRange:", range, true);
}

void NSMutableCharacterSet::removeCharactersInRange(NSRange range) {
    setRange(present(pages_), "removeCharactersInRange:", range, false);
}

void NSMutableCharacterSet::invert() { present(pages_).invert(); }

bool NSMutableCharacterSet::characterIsMember(char16_t unit) const noexcept {
    return longCharacterIsMember(unit);
}

bool NSMutableCharacterSet::longCharacterIsMember(char32_t codePoint) const noexcept {
    return pages_ != nullptr && pages_->contains(codePoint);
}

NSCharacterSet NSMutableCharacterSet::characterSet() {
    // The builder is empty afterwards, like all builders.
    const NSCharacterSet set = present(pages_).characterSet();
    *pages_ = CharacterSetPages();
    return set;
}

} // namespace ZQFoundation
