// SPDX-License-Identifier: MIT
// Character sets as pages of bits that sets share.
// Two sets are compared by their bytes, so a finished body is canonical: pages are sorted and unique,
// numbers follow from them, and planes that are uniform have no numbers.
#include "foundation/objects/CharacterSetPages.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <new>

#include "foundation/objects/AsciiOrUtf16.h"
#include "foundation/objects/Hashing.h"
#include "foundation/objects/TextBuilder.h"
#include "foundation/text/Digits.h"
#include "foundation/text/Surrogates.h"

namespace ZQFoundation::detail {

namespace {

/// Pages 0 and 1 of every set, so that a page's number alone says whether it is empty or full.
constexpr CharacterPage constantPages[2] = {{{0, 0, 0, 0}},
                                            {{UINT64_MAX, UINT64_MAX, UINT64_MAX, UINT64_MAX}}};

// A constant, because nil must have a body before anything could make one.
struct EmptyBody {
    CharacterSetBody head;
    CharacterPage pages[2];
};

constexpr EmptyBody makeEmptyBody() noexcept {
    EmptyBody empty{};
    empty.head.byteCount = sizeof(EmptyBody);
    empty.head.pageCount = 2;
    empty.head.planes[0] = 2;
    empty.pages[1] = constantPages[1];
    return empty;
}

constexpr EmptyBody emptyBody = makeEmptyBody();

bool samePage(const CharacterPage& left, const CharacterPage& right) noexcept {
    return std::equal(left.words, left.words + 4, right.words);
}

// The order of pages only has to be the same in every set.
bool earlierPage(const CharacterPage& left, const CharacterPage& right) noexcept {
    return std::lexicographical_compare(left.words, left.words + 4, right.words, right.words + 4);
}

/// The empty page, the full one, and every other page in use, in order.
std::vector<CharacterPage> distinctPages(std::vector<CharacterPage> pages) {
    std::erase_if(pages, [](const CharacterPage& page) {
        return samePage(page, constantPages[0]) || samePage(page, constantPages[1]);
    });
    std::sort(pages.begin(), pages.end(), earlierPage);
    pages.erase(std::unique(pages.begin(), pages.end(), samePage), pages.end());
    pages.insert(pages.begin(), constantPages, constantPages + 2);
    return pages;
}

// Equal pages get equal numbers in this set; numbers mean nothing in another one.
std::uint16_t numberOf(const CharacterPage& page, const std::vector<CharacterPage>& distinct) noexcept {
    for (std::uint16_t number = 0; number < 2; ++number) {
        if (samePage(page, constantPages[number])) {
            return number;
        }
    }
    const auto place = std::lower_bound(distinct.begin() + 2, distinct.end(), page, earlierPage);
    return static_cast<std::uint16_t>(place - distinct.begin());
}

/// Whether all of a plane's pages are empty, or all are full.
template <class Numbers>
bool isUniform(const Numbers& numbers) noexcept {
    return numbers.front() < 2 && std::equal(numbers.begin() + 1, numbers.end(), numbers.begin());
}

/// The first code point from `codePoint` on that is, or is not, a member; the code space's end if there is
/// none.
/// Skips a page, or the rest of a word, at a time, so that walking over a set takes time by its pages rather
/// than its members.
char32_t nextCodePoint(const CharacterSetBody& body, char32_t codePoint, bool isMember) noexcept {
    while (codePoint < codeSpace) {
        const std::size_t number = body.pageNumber(codePoint >> 8);
        if (number == (isMember ? 0U : 1U)) {
            codePoint = (codePoint | 0xFF) + 1;
            continue;
        }
        const std::uint64_t members = body.pages()[number].words[codePoint >> 6 & 3];
        const std::uint64_t wanted = (isMember ? members : ~members) >> (codePoint & 63);
        if (wanted != 0) {
            return codePoint + static_cast<char32_t>(std::countr_zero(wanted));
        }
        codePoint = (codePoint | 63) + 1;
    }
    return codeSpace;
}

// As Unicode writes code points: at least four digits.
void appendCode(TextBuilder& out, char32_t codePoint) {
    const std::size_t digits = codePoint > 0xFFFFF ? 6 : codePoint > 0xFFFF ? 5 : 4;
    char text[6];
    writeHexDigits(codePoint, digits, text, upperHexDigits);
    out.appendAscii(text, digits);
}

// The reference count before it differs between equal sets. Every byte after it is part of the value.
const void* comparedBytes(const CharacterSetBody& body) noexcept { return &body.byteCount; }

std::size_t comparedCount(const CharacterSetBody& body) noexcept {
    return body.byteCount - static_cast<std::size_t>(static_cast<const char*>(comparedBytes(body)) -
                                                     reinterpret_cast<const char*>(&body));
}

} // namespace

const CharacterSetBody& emptyCharacterSetBody() noexcept { return emptyBody.head; }

bool equalCharacterSets(const CharacterSetBody& left, const CharacterSetBody& right) noexcept {
    return &left == &right ||
           (left.byteCount == right.byteCount &&
            std::memcmp(comparedBytes(left), comparedBytes(right), comparedCount(left)) == 0);
}

std::uint64_t hashCharacterSet(const CharacterSetBody& body, std::uint64_t seed) noexcept {
    return hashBytes(comparedBytes(body), comparedCount(body), seed);
}

void appendCharacterSet(TextBuilder& out, const CharacterSetBody& body) {
    // A description goes into log lines, so a set of thousands of stretches is cut.
    constexpr int maxStretches = 16;
    out.appendLiteral("<NSCharacterSet:");
    char32_t first = nextCodePoint(body, 0, true);
    for (int i = 0; i < maxStretches && first < codeSpace; ++i) {
        const char32_t end = nextCodePoint(body, first, false);
        out.appendAscii(' ');
        appendCode(out, first);
        if (end - first > 1) {
            out.appendAscii('-');
            appendCode(out, end - 1);
        }
        first = nextCodePoint(body, end, true);
    }
    if (first < codeSpace) {
        out.appendLiteral(" ...");
    }
    out.appendAscii('>');
}

// The first plane always has page numbers, because membership tests of units use them without looking at the
// plane.
CharacterSetPages::CharacterSetPages() : planes_{2}, numbers_(1), pages_(constantPages, constantPages + 2) {}

CharacterSetPages::CharacterSetPages(const CharacterSetBody& body)
    : pages_(constantPages, constantPages + 2) {
    for (std::size_t plane = 0; plane < CharacterSetBody::planeCount; ++plane) {
        planes_[plane] = body.planes[plane];
        if (planes_[plane] < 2) {
            continue;
        }
        PlaneNumbers& numbers = numbers_.emplace_back();
        for (std::size_t i = 0; i < numbers.size(); ++i) {
            std::size_t number = body.pageNumber(plane * numbers.size() + i);
            // Copied even if pages are equal: a builder changes each place by itself. Empty and full ones
            // are shared, as they are replaced and not changed.
            if (number >= 2) {
                pages_.push_back(body.pages()[number]);
                number = pages_.size() - 1;
            }
            numbers[i] = static_cast<std::uint16_t>(number);
        }
    }
}

std::size_t CharacterSetPages::pageNumber(std::size_t page) const noexcept {
    const std::size_t place = planes_[page / CharacterSetBody::pagesInPlane];
    return place < 2 ? place : numbers_[place - 2][page % CharacterSetBody::pagesInPlane];
}

bool CharacterSetPages::contains(char32_t codePoint) const noexcept {
    return codePoint < codeSpace && pages_[pageNumber(codePoint >> 8)].contains(codePoint);
}

std::uint16_t& CharacterSetPages::numberSlot(std::size_t page) {
    std::uint8_t& place = planes_[page / CharacterSetBody::pagesInPlane];
    if (place < 2) {
        numbers_.emplace_back().fill(place);
        place = static_cast<std::uint8_t>(numbers_.size() + 1);
    }
    return numbers_[place - 2U][page % CharacterSetBody::pagesInPlane];
}

CharacterPage& CharacterSetPages::ownPage(std::size_t page) {
    std::uint16_t& number = numberSlot(page);
    if (number < 2) {
        pages_.push_back(constantPages[number]);
        number = static_cast<std::uint16_t>(pages_.size() - 1);
    }
    return pages_[number];
}

/// A page that was made for one place stays in use, so that endless building takes no more memory than all
/// pages.
void CharacterSetPages::fillPage(std::size_t page, bool isMember) {
    const std::size_t number = pageNumber(page);
    if (number >= 2) {
        pages_[number] = constantPages[isMember];
    } else if (number != (isMember ? 1U : 0U)) {
        numberSlot(page) = isMember;
    }
}

// Whole pages are replaced, so that a range of any length costs at most a step for each page.
void CharacterSetPages::setRange(char32_t first, char32_t end, bool isMember) {
    while (first < end) {
        const char32_t pageEnd = (first | 0xFF) + 1;
        if ((first & 0xFF) == 0 && pageEnd <= end) {
            fillPage(first >> 8, isMember);
            first = pageEnd;
            continue;
        }
        CharacterPage& page = ownPage(first >> 8);
        for (; first < end && first < pageEnd; ++first) {
            std::uint64_t& word = page.words[first >> 6 & 3];
            const std::uint64_t bit = std::uint64_t{1} << (first & 63);
            word = isMember ? word | bit : word & ~bit;
        }
    }
}

void CharacterSetPages::setCharacters(StringView characters, bool isMember) {
    const AsciiOrUtf16 text(characters);
    for (std::size_t i = 0; i < text.length(); ++i) {
        char32_t codePoint = text[i];
        if (isHighSurrogate(text[i]) && i + 1 < text.length() && isLowSurrogate(text[i + 1])) {
            codePoint = 0x10000 + ((codePoint & 0x3FF) << 10 | (text[++i] & 0x3FFU));
        }
        setRange(codePoint, codePoint + 1, isMember);
    }
}

/// Adds the code points of the categories.
void CharacterSetPages::setCategories(CategoryMask categories) {
    std::vector<std::array<std::uint64_t, 4>> marked(categoryPageNumbers());
    markCategories(categories, marked.data());
    for (std::size_t page = 0; page < codePages; ++page) {
        const auto& words = marked[categoryPageNumber(static_cast<char32_t>(page << 8))];
        if ((words[0] | words[1] | words[2] | words[3]) == 0) {
            continue;
        }
        if ((words[0] & words[1] & words[2] & words[3]) == UINT64_MAX) {
            fillPage(page, true);
            continue;
        }
        CharacterPage& present = ownPage(page);
        for (std::size_t word = 0; word < 4; ++word) {
            present.words[word] |= words[word];
        }
    }
}

void CharacterSetPages::combine(const CharacterSetBody& other, bool isUnion) {
    // For a union, a full page decides and an empty one changes nothing; for an intersection, the reverse is
    // true.
    const std::size_t deciding = isUnion ? 1 : 0; // such a page on either side is the result
    const std::size_t neutral = 1 - deciding;
    for (std::size_t page = 0; page < codePages; ++page) {
        const std::size_t plane = page / CharacterSetBody::pagesInPlane;
        if (other.planes[plane] == neutral || planes_[plane] == deciding) {
            page |= CharacterSetBody::pagesInPlane - 1;
            continue;
        }
        const std::size_t number = other.pageNumber(page);
        if (number == deciding) {
            fillPage(page, isUnion);
        } else if (number != neutral && pageNumber(page) != deciding) {
            CharacterPage& own = ownPage(page);
            for (std::size_t word = 0; word < 4; ++word) {
                const std::uint64_t theirs = other.pages()[number].words[word];
                own.words[word] = isUnion ? own.words[word] | theirs : own.words[word] & theirs;
            }
        }
    }
}

// Numbers 0 and 1 exchange their meaning, and every other page its bits: nothing is allocated.
void CharacterSetPages::invert() noexcept {
    for (std::uint8_t& place : planes_) {
        place = place < 2 ? place ^ 1 : place;
    }
    for (PlaneNumbers& numbers : numbers_) {
        for (std::uint16_t& number : numbers) {
            number = number < 2 ? number ^ 1 : number;
        }
    }
    for (std::size_t i = 2; i < pages_.size(); ++i) {
        for (std::uint64_t& word : pages_[i].words) {
            word = ~word;
        }
    }
}

NSCharacterSet CharacterSetPages::characterSet() const {
    // From here on the body becomes canonical.
    const std::vector<CharacterPage> distinct = distinctPages(pages_);
    std::vector<std::uint16_t> renumbered(pages_.size());
    std::transform(pages_.begin(), pages_.end(), renumbered.begin(),
                   [&](const CharacterPage& page) { return numberOf(page, distinct); });
    CharacterSetBody head{};
    std::vector<PlaneNumbers> planeNumbers;
    for (std::size_t plane = 0; plane < CharacterSetBody::planeCount; ++plane) {
        head.planes[plane] = planes_[plane];
        if (planes_[plane] < 2) {
            continue;
        }
        PlaneNumbers numbers;
        for (std::size_t i = 0; i < numbers.size(); ++i) {
            numbers[i] = renumbered[numbers_[planes_[plane] - 2U][i]];
        }
        // The first plane's numbers are in the header, even if they are uniform.
        if (plane == 0) {
            std::copy(numbers.begin(), numbers.end(), head.numbers);
        } else if (isUniform(numbers)) {
            head.planes[plane] = static_cast<std::uint8_t>(numbers.front());
        } else {
            planeNumbers.push_back(numbers);
            head.planes[plane] = static_cast<std::uint8_t>(planeNumbers.size() + 2);
        }
    }
    head.references = 1;
    head.pageCount = static_cast<std::uint32_t>(distinct.size());
    head.byteCount =
        sizeof head + distinct.size() * sizeof(CharacterPage) + planeNumbers.size() * sizeof(PlaneNumbers);
    auto* const body = new (::operator new(head.byteCount)) CharacterSetBody(head);
    std::copy(distinct.begin(), distinct.end(), body->pages());
    if (!planeNumbers.empty()) {
        std::memcpy(body->pages() + distinct.size(), planeNumbers.data(),
                    planeNumbers.size() * sizeof(PlaneNumbers));
    }
    return Access::adoptCharacterSet(body);
}

// No lock: a set may be made twice by threads that race, and the second one is dropped. `make` itself may
// use other shared sets.
NSCharacterSet sharedCharacterSet(SharedCharacterSet& slot, NSCharacterSet (*make)()) {
    CharacterSetBody* present = slot.load(std::memory_order_acquire);
    if (present == nullptr) {
        const NSCharacterSet made = make();
        CharacterSetBody* const fresh = Access::characterSet(made);
        retain(fresh); // the slot's reference
        if (slot.compare_exchange_strong(present, fresh, std::memory_order_acq_rel,
                                         std::memory_order_acquire)) {
            return made;
        }
        release(Kind::characterSet, fresh);
    }
    retain(present);
    return Access::adoptCharacterSet(present);
}

} // namespace ZQFoundation::detail
