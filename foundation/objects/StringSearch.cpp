// SPDX-License-Identifier: MIT
// Searches strings for texts.
// Three ways, the fastest that gives the same result: by units, by units with a look at the marks around,
// and by folded code points.
#include <algorithm>
#include <string>
#include <vector>

#include "foundation/objects/ComposedSequences.h"
#include "foundation/objects/NSArray.h"
#include "foundation/objects/NSException.h"
#include "foundation/objects/NSString.h"
#include "foundation/objects/ShortStrings.h"
#include "foundation/text/CaseMapping.h"
#include "foundation/text/UnitSearch.h"
#include "foundation/text/Utf.h"

namespace ZQFoundation {

using detail::AsciiOrUtf16;
using detail::UnitView;

namespace {

constexpr NSRange nowhere{NSNotFound, 0};

struct SearchOptions {
    explicit SearchOptions(unsigned options) noexcept
        : ignoresCase((options & NSCaseInsensitiveSearch) != 0), isLiteral((options & NSLiteralSearch) != 0),
          isBackwards((options & NSBackwardsSearch) != 0), isAnchored((options & NSAnchoredSearch) != 0) {}

    bool ignoresCase;
    bool isLiteral;
    bool isBackwards;
    bool isAnchored;
};

void raiseUnlessWithin(const NSRange& range, std::size_t length) {
    if (range.location > length || range.length > length - range.location) {
        NSException::raise_format(NSRangeException, "a search from %lu over %lu units in a string of %lu",
                                  range.location, range.length, length);
    }
}

// Unit by unit

// Literal: nothing around a match matters.
template <class Unit>
NSRange rangeOfUnits(const Unit* text, std::size_t length, const Unit* wanted, std::size_t count,
                     const SearchOptions& options) {
    if (count > length) {
        return nowhere;
    }
    std::size_t found = detail::unitNotFound;
    if (options.isAnchored) {
        const std::size_t at = options.isBackwards ? length - count : 0;
        found = std::equal(wanted, wanted + count, text + at) ? at : found;
    } else if (options.isBackwards) {
        found = detail::findLastUnits(text, length, wanted, count);
    } else {
        found = detail::findUnits(text, length, wanted, count);
    }
    return found == detail::unitNotFound ? nowhere : NSMakeRange(found, count);
}

NSRange rangeOfExactUnits(const UnitView& text, std::size_t start, const AsciiOrUtf16& wanted,
                          const SearchOptions& options) {
    const std::size_t length = text.length() - start;
    if (text.isAscii()) {
        // Bytes hold ASCII only, so a wanted text with other units cannot occur in them.
        return wanted.isAscii()
                   ? rangeOfUnits(text.ascii() + start, length, wanted.ascii(), wanted.length(), options)
                   : nowhere;
    }
    if (!wanted.isAscii()) {
        return rangeOfUnits(text.units() + start, length, wanted.units(), wanted.length(), options);
    }
    std::u16string widened(wanted.length(), u'\0');
    detail::widenAscii(wanted.ascii(), wanted.length(), widened.data());
    return rangeOfUnits(text.units() + start, length, widened.data(), widened.size(), options);
}

// By canonical equivalence and case

/// Whether the ASCII unit at `index` is a sequence by itself. Nothing below U+0300 extends one.
/// A mark after the unit makes it part of a sequence, and then it must not match by itself.
bool isSequence(const UnitView& text, std::size_t index) noexcept {
    const std::size_t next = index + 1;
    return next == text.length() || text[next] < 0x300 || detail::sequenceEnd(text, index) == next;
}

/// One code point of a text as it is compared, and the stretch of the text that it comes from. A match begins
/// with the first code point of a stretch and ends with the last one of a stretch, so it never cuts a
/// stretch.
struct FoldedPoint {
    char32_t codePoint;
    bool isFirst;
    bool isLast;
    std::size_t start;
    std::size_t end;
};

/// Iterates over a text stretch by stretch: composed sequences, decomposed, or for a literal search code
/// points; with the case folded when it is ignored.
class FoldedWalk {
public:
    FoldedWalk(const UnitView& text, std::size_t start, const SearchOptions& options) noexcept
        : text_(text), index_(start), options_(options) {}

    /// False at the end.
    bool next(FoldedPoint& point) {
        if (position_ == points_.size() && !readStretch()) {
            return false;
        }
        point = {points_[position_], position_ == 0, position_ + 1 == points_.size(), start_, index_};
        ++position_;
        return true;
    }

private:
    bool readStretch() {
        if (index_ == text_.length()) {
            return false;
        }
        points_.clear();
        position_ = 0;
        // Where a match that includes this stretch may begin.
        start_ = index_;
        if (options_.isLiteral) {
            append(detail::nextCodePoint(text_, index_));
            return true;
        }
        if (text_[start_] < 0x80 && isSequence(text_, start_)) {
            append(text_[index_++]);
            return true;
        }
        index_ = detail::sequenceEnd(text_, start_);
        detail::decompose(text_, start_, index_, sequence_);
        for (const detail::ClassedCodePoint& entry : sequence_) {
            append(entry.codePoint);
        }
        return true;
    }

    void append(char32_t codePoint) {
        if (!options_.ignoresCase) {
            points_.push_back(codePoint);
            return;
        }
        char32_t folded[3];
        const unsigned count = detail::foldCase(codePoint, folded);
        points_.insert(points_.end(), folded, folded + count);
    }

    UnitView text_;
    std::size_t index_;
    SearchOptions options_;
    std::size_t start_ = 0;
    std::vector<char32_t> points_;
    std::size_t position_ = 0;
    std::vector<detail::ClassedCodePoint> sequence_;
};

// The wanted text is walked the same way as the searched one, so both compare alike.
std::vector<char32_t> foldedPoints(const AsciiOrUtf16& text, const SearchOptions& options) {
    std::vector<char32_t> points;
    FoldedWalk walk(text, 0, options);
    FoldedPoint point;
    while (walk.next(point)) {
        points.push_back(point.codePoint);
    }
    return points;
}

/// Finds occurrences one after another, overlapping ones too, without examining any place twice.
class FoldedSearch {
public:
    FoldedSearch(const UnitView& text, std::size_t start, const std::vector<char32_t>& wanted,
                 const SearchOptions& options)
        : walk_(text, start, options), wanted_(wanted),
          lengths_(detail::failureTable(wanted.data(), wanted.size())), recent_(wanted.size()) {}

    bool next(NSRange& found) {
        FoldedPoint point;
        while (walk_.next(point)) {
            // Only the last n starts can be that of a match of n points, so a ring of n is enough.
            recent_[count_++ % recent_.size()] = {point.start, point.isFirst};
            if (accepts(point.codePoint) && point.isLast) {
                // The oldest in the ring: the start of the match.
                const Start& first = recent_[count_ % recent_.size()];
                // Otherwise the match would begin inside a stretch.
                if (first.isFirst) {
                    found = NSMakeRange(first.start, point.end - first.start);
                    return true;
                }
            }
        }
        return false;
    }

private:
    struct Start {
        std::size_t start;
        bool isFirst;
    };

    /// Whether the points so far end with the whole wanted text.
    bool accepts(char32_t codePoint) noexcept {
        if (matched_ == wanted_.size()) {
            // After a match, the search continues with the longest part that may begin another one.
            matched_ = lengths_[matched_];
        }
        while (matched_ > 0 && codePoint != wanted_[matched_]) {
            matched_ = lengths_[matched_];
        }
        if (codePoint == wanted_[matched_]) {
            ++matched_;
        }
        return matched_ == wanted_.size();
    }

    FoldedWalk walk_;
    const std::vector<char32_t>& wanted_;
    std::vector<std::size_t> lengths_;
    std::vector<Start> recent_; ///< of the last points, as many as the wanted text has, in a ring
    std::size_t count_ = 0;
    std::size_t matched_ = 0;
};

/// The range of the wanted text if it is exactly at `start`.
NSRange rangeOfFoldedAt(const UnitView& text, std::size_t start, const std::vector<char32_t>& wanted,
                        const SearchOptions& options) {
    FoldedWalk walk(text, start, options);
    FoldedPoint point{};
    for (const char32_t codePoint : wanted) {
        if (!walk.next(point) || point.codePoint != codePoint) {
            return nowhere;
        }
    }
    return point.isLast ? NSMakeRange(start, point.end - start) : nowhere;
}

/// Goes `count` stretches back from `at`, but not before `start`.
std::size_t stretchesBefore(const UnitView& text, std::size_t start, std::size_t at, std::size_t count,
                            const SearchOptions& options) noexcept {
    for (; count > 0 && at > start; --count) {
        --at;
        // A step back may end within a sequence, so its start is looked for.
        if (!options.isLiteral) {
            at = detail::sequenceStart(text, at);
        } else if (at > start && detail::isLowSurrogate(text[at]) && detail::isHighSurrogate(text[at - 1])) {
            --at;
        }
    }
    return at > start ? at : start;
}

/// Searches the end first, then twice as much and so on, so that a caller who continues before each match
/// does not search the whole text every time.
NSRange lastRangeOfFolded(const UnitView& text, std::size_t start, const std::vector<char32_t>& wanted,
                          const SearchOptions& options) {
    NSRange last = nowhere;
    std::size_t from = text.length();
    // Folding may make several points of one stretch, but never one point of several stretches.
    std::size_t stretches = wanted.size(); // a match has no more
    while (last.location == NSNotFound && from > start) {
        from = stretchesBefore(text, start, from, stretches, options);
        FoldedSearch search(text, from, wanted, options);
        for (NSRange found{}; search.next(found);) {
            last = found;
        }
        // An anchored match ends with the text, and all of those begin within the first part.
        if (options.isAnchored) {
            return last.location + last.length == text.length() ? last : nowhere;
        }
        stretches = 2 * stretches + 16;
    }
    return last;
}

NSRange rangeOfFolded(const UnitView& text, std::size_t start, const AsciiOrUtf16& wantedText,
                      const SearchOptions& options) {
    const std::vector<char32_t> wanted = foldedPoints(wantedText, options);
    if (options.isBackwards) {
        return lastRangeOfFolded(text, start, wanted, options);
    }
    if (options.isAnchored) {
        return rangeOfFoldedAt(text, start, wanted, options);
    }
    NSRange found = nowhere;
    return FoldedSearch(text, start, wanted, options).next(found) ? found : nowhere;
}

/// Whether units decide: if the options say so, and between bytes, which have no marks and no equivalents.
bool isDecidedByUnits(const UnitView& text, const AsciiOrUtf16& wanted, const SearchOptions& options) {
    return !options.ignoresCase && (options.isLiteral || (text.isAscii() && wanted.isAscii()));
}

/// ASCII that is equivalent to nothing but itself; some signs decompose to one of three ASCII characters.
/// U+037E is equivalent to the semicolon, U+212A to K, U+1FEF to the grave accent.
bool isPlainAscii(const AsciiOrUtf16& wanted) noexcept {
    const auto hasEquivalent = [](char unit) {
        return unit == ';' || unit == 'K' || unit == '`';
    };
    return wanted.isAscii() && std::none_of(wanted.ascii(), wanted.ascii() + wanted.length(), hasEquivalent);
}

/// Plain ASCII occurs where its units do, unless a mark follows the last one.
NSRange rangeOfPlainAscii(const UnitView& text, std::size_t start, const AsciiOrUtf16& wanted,
                          const SearchOptions& options) {
    // Each occurrence that does not count shortens what is searched, so none is seen twice.
    UnitView searched = text;
    for (;;) {
        NSRange found = rangeOfExactUnits(searched, start, wanted, options);
        if (found.location == NSNotFound) {
            return nowhere;
        }
        found.location += start;
        const std::size_t last = found.location + found.length - 1;
        // A mark belongs to the last unit: this occurrence does not count.
        if (isSequence(text, last)) {
            return found;
        }
        if (options.isAnchored) {
            return nowhere;
        }
        if (options.isBackwards) {
            searched = text.upTo(last);
        } else {
            start = last + 1;
        }
    }
}

NSRange rangeOfAsciiInAnyCase(const UnitView& text, std::size_t start, const AsciiOrUtf16& wanted) {
    std::string lowered(wanted.ascii(), wanted.length());
    std::transform(lowered.begin(), lowered.end(), lowered.begin(), detail::AsciiInAnyCase::form);
    const std::size_t found = detail::findUnits(text.ascii() + start, text.length() - start, lowered.data(),
                                                lowered.size(), detail::AsciiInAnyCase());
    return found == detail::unitNotFound ? nowhere : NSMakeRange(start + found, lowered.size());
}

NSRange rangeOfText(const UnitView& text, std::size_t start, const AsciiOrUtf16& wanted,
                    const SearchOptions& options) {
    if (wanted.length() == 0) {
        return nowhere;
    }
    if (isDecidedByUnits(text, wanted, options)) {
        const NSRange found = rangeOfExactUnits(text, start, wanted, options);
        return found.location == NSNotFound ? found : NSMakeRange(start + found.location, found.length);
    }
    if (!options.ignoresCase && isPlainAscii(wanted)) {
        return rangeOfPlainAscii(text, start, wanted, options);
    }
    // Anchored searches examine only one place anyway; backward ones are rare.
    // Folding finds more than the other case (U+017F for "s"), so the quick way is for two ASCII texts only.
    const bool isForwards = !options.isBackwards && !options.isAnchored;
    return options.ignoresCase && isForwards && text.isAscii() && wanted.isAscii()
               ? rangeOfAsciiInAnyCase(text, start, wanted)
               : rangeOfFolded(text, start, wanted, options);
}

/// With room on the stack for a text that must be converted, which most searches do without.
[[gnu::noinline]] NSRange rangeOfConverted(const UnitView& text, std::size_t start, StringView wanted,
                                           const SearchOptions& options) {
    return rangeOfText(text, start, AsciiOrUtf16(wanted), options);
}

// Pieces

/// The pieces between separators of plain ASCII or, in bytes, between any separators of bytes.
template <class Unit>
NSArray piecesBetween(const UnitView& text, const Unit* units, const std::basic_string<Unit>& separator) {
    const std::size_t length = text.length();
    // A separator of one unit can be counted quickly, so the array is made with its final size.
    const bool isUnit = separator.size() == 1;
    const auto isFirst = detail::ExactUnits::test(separator[0]);
    detail::StringPieces<Unit> pieces(units, length,
                                      1 + (isUnit ? detail::countPlaces(units, length, isFirst) : 3));
    std::size_t start = 0;
    const auto takePieceBefore = [&](std::size_t found) {
        const std::size_t next = found + separator.size();
        if (sizeof(Unit) == 1 || isSequence(text, next - 1)) {
            pieces.add(start, found);
            start = next;
        }
    };
    if (isUnit) {
        detail::forEachPlace(units, length, isFirst, takePieceBefore);
    } else {
        std::size_t at = 0;
        std::size_t found = 0;
        while ((found = detail::findUnits(units + at, length - at, separator.data(), separator.size())) !=
               detail::unitNotFound) {
            takePieceBefore(at + found);
            at += found + separator.size();
        }
    }
    pieces.add(start, length);
    return pieces.array();
}

} // namespace

NSRange NSString::rangeOfString(StringView text) const { return rangeOfString_options(text, 0); }

NSRange NSString::rangeOfString_options(StringView text, unsigned options) const {
    return rangeOfString_options_range(text, options, NSMakeRange(0, length()));
}

NSRange NSString::rangeOfString_options_range(StringView text, unsigned options, NSRange range) const {
    if (!*this) {
        return nowhere;
    }
    // The view ends with the range, so that no sequence reaches beyond it.
    const UnitView whole(*detail::Access::string(*this));
    raiseUnlessWithin(range, whole.length());
    const SearchOptions how(options);
    const bool isBytes = text.form() == StringView::Form::ascii || text.form() == StringView::Form::utf8;
    if (how.isLiteral && !how.ignoresCase && whole.isAscii() && isBytes && text.size() != 0) {
        // Bytes beyond ASCII need no conversion, since nothing here equals them.
        const NSRange found =
            rangeOfUnits(whole.ascii() + range.location, range.length, text.bytes(), text.size(), how);
        return found.location == NSNotFound ? found
                                            : NSMakeRange(range.location + found.location, found.length);
    }
    return rangeOfConverted(whole.upTo(range.location + range.length), range.location, text, how);
}

NSArray NSString::componentsSeparatedByString(StringView separator) const {
    if (!*this) {
        return nullptr;
    }
    const UnitView whole(*detail::Access::string(*this));
    const AsciiOrUtf16 wanted(separator);
    if (wanted.length() != 0 && wanted.isAscii() && whole.isAscii()) {
        return piecesBetween(whole, whole.ascii(), std::string(wanted.ascii(), wanted.length()));
    }
    if (wanted.length() != 0 && isPlainAscii(wanted)) {
        return piecesBetween(whole, whole.units(),
                             std::u16string(wanted.ascii(), wanted.ascii() + wanted.length()));
    }
    // The general case: canonical equivalents count as separators, too.
    const SearchOptions options(0);
    NSMutableArray pieces;
    std::size_t start = 0;
    for (NSRange found{}; (found = rangeOfText(whole, start, wanted, options)).location != NSNotFound;) {
        pieces.addObject(substringWithRange(start, found.location - start));
        start = found.location + found.length;
    }
    // What remains, possibly empty: the platform keeps empty pieces.
    pieces.addObject(substringFromIndex(start));
    return pieces.array();
}

} // namespace ZQFoundation
