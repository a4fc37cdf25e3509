// SPDX-License-Identifier: MIT
// Reads binary property lists.
// The file is trusted in nothing: every number in it is checked before it is used, and two budgets bound
// what a short file can turn into, one for objects that overlap and one for objects that are shared.
#include "foundation/plist/BinaryReader.h"

#include <bit>
#include <cstring>
#include <memory>
#include <vector>

#include "foundation/objects/NSArray.h"
#include "foundation/objects/NSData.h"
#include "foundation/objects/NSDate.h"
#include "foundation/objects/NSDictionary.h"
#include "foundation/objects/NSNumber.h"
#include "foundation/objects/NSString.h"
#include "foundation/text/Utf.h"

namespace ZQFoundation::detail {

namespace {

constexpr std::size_t headerSize = 8;
constexpr std::size_t trailerSize = 32;

/// The high half of a marker byte.
/// Kinds that are not listed, an archive's identifiers among them, are refused.
enum Kind : unsigned {
    simpleKind = 0x0,
    integerKind = 0x1,
    realKind = 0x2,
    dateKind = 0x3,
    dataKind = 0x4,
    asciiKind = 0x5,
    unitsKind = 0x6,
    arrayKind = 0xA,
    dictionaryKind = 0xD,
};

/// The place of one object: its marker, and the bytes after marker and count.
struct ObjectPlace {
    std::size_t start = 0;
    unsigned kind = 0;
    unsigned low = 0; ///< low half of the marker
    std::size_t count = 0;
    std::size_t content = 0;
};

std::uint64_t bigEndian(const unsigned char* bytes, std::size_t count) noexcept {
    std::uint64_t value = 0;
    for (std::size_t index = 0; index < count; ++index) {
        value = value << 8 | bytes[index];
    }
    return value;
}

/// How much of a value there would be if it shared nothing: one part for each value and key, one more for
/// each `bytesOfPart` bytes of text or data. Stays at its limit instead of wrapping around.
using PartCount = std::uint64_t;

constexpr std::size_t bytesOfPart = 256;

// Where values are deeply nested, most of a text is their indentation: each 16 levels of the whole document
// make its parts count once more.
constexpr std::size_t levelsOfPart = 16;

// Values and keys are written once for each place where they occur, and their number can double with each
// level. Documents whose writer shared equal objects stay far below these.
constexpr PartCount alwaysAllowedParts = 1'000'000;
constexpr PartCount timesTheParts = 64;

PartCount sumOf(PartCount left, PartCount right) noexcept {
    return left > UINT64_MAX - right ? UINT64_MAX : left + right;
}

class BinaryReader {
public:
    BinaryReader(const unsigned char* bytes, std::size_t count) : bytes_(bytes), size_(count) {}

    NSObject read(PropertyListError& error) {
        NSObject result;
        if (readTrailer() && checkOffsets() && readTree(result) && checkWrittenSize()) {
            return result;
        }
        error = {message_, 0, failedAt_};
        return nullptr;
    }

private:
    /// What is known of an object: its value once it is read, how many levels it is high, and its size when
    /// written out.
    /// One for each entry of the table, so that an object that several others refer to is read once.
    struct Slot {
        enum State : unsigned char { unread, open, finished };
        NSObject value;
        State state = unread;
        std::uint16_t height = 0;
        PartCount parts = 1;
    };

    /// A container that is being read.
    /// On the heap and limited in number, so that nesting needs no stack.
    struct Level {
        std::size_t index;
        bool isDictionary;
        std::size_t count;
        std::size_t references; ///< offset of the first one
        std::size_t next;
        std::uint16_t height;
        PartCount parts;
        NSMutableArray array;
        NSMutableDictionary dictionary;
    };

    bool fail(const char* message, std::size_t at) noexcept {
        message_ = message;
        failedAt_ = at;
        return false;
    }

    bool readTrailer() {
        if (size_ < headerSize + 1 + trailerSize) {
            return fail("The binary property list is truncated", size_);
        }
        const std::size_t start = size_ - trailerSize;
        const unsigned char* trailer = bytes_ + start;
        offsetSize_ = trailer[6];
        referenceSize_ = trailer[7];
        const std::uint64_t count = bigEndian(trailer + 8, 8);
        const std::uint64_t top = bigEndian(trailer + 16, 8);
        const std::uint64_t table = bigEndian(trailer + 24, 8);
        // Larger numbers could not be right in a file that fits into memory.
        if (offsetSize_ < 1 || offsetSize_ > 8 || referenceSize_ < 1 || referenceSize_ > 8) {
            return fail("The trailer has an impossible number size", start + 6);
        }
        // Divided rather than multiplied, which could overflow.
        if (table < headerSize || table > start || count > (start - table) / offsetSize_) {
            return fail("The table of offsets is not inside the file", start + 8);
        }
        if (top >= count) {
            return fail("The outermost object does not exist", start + 16);
        }
        table_ = static_cast<std::size_t>(table);
        top_ = static_cast<std::size_t>(top);
        bytesToGive_ = (table_ - headerSize) * timesTheObjects;
        // The count is bounded by the file's size, so this allocation is, too.
        slots_.resize(static_cast<std::size_t>(count));
        return true;
    }

    /// Once for all, so that no later look at an object needs a check of its offset.
    bool checkOffsets() noexcept {
        for (std::size_t index = 0; index < slots_.size(); ++index) {
            const std::uint64_t offset = offsetOf(index);
            if (offset < headerSize || offset >= table_) {
                return fail("An object is not inside the file", table_ + index * offsetSize_);
            }
        }
        return true;
    }

    /// Code that prints, writes or walks the value visits each part of it; the reader did not.
    bool checkWrittenSize() noexcept {
        // Measured on the result: only then is it known how often each object is used.
        const Slot& top = slots_[top_];
        const PartCount times = 1 + top.height / levelsOfPart;
        const PartCount parts = top.parts > UINT64_MAX / times ? UINT64_MAX : top.parts * times;
        // Without sharing, the factor for the levels alone never reaches that of the parts.
        if (parts <= alwaysAllowedParts || parts / timesTheParts <= partsInFile_) {
            return true;
        }
        return fail("Shared objects make the value many times larger than the file",
                    static_cast<std::size_t>(offsetOf(top_)));
    }

    std::uint64_t offsetOf(std::size_t index) const noexcept {
        return bigEndian(bytes_ + table_ + index * offsetSize_, offsetSize_);
    }

    /// Reads the outermost object and all that it refers to, innermost first.
    bool readTree(NSObject& result) {
        if (!readObject(top_)) {
            return false;
        }
        while (!open_.empty()) {
            // The reference is used before the vector may grow.
            Level& level = open_.back();
            if (level.next == level.count) {
                finishLevel();
                continue;
            }
            std::size_t reference = 0;
            if (!readReference(level, reference)) {
                return false;
            }
            Slot& slot = slots_[reference];
            // Open levels are those on the way from the outermost object: a reference to one of them is a
            // cycle.
            if (slot.state == Slot::open) {
                return fail("A container holds itself", level.references);
            }
            // A container that is not read yet becomes the innermost level; this one comes back to it
            // afterwards.
            if (slot.state == Slot::unread) {
                if (!readObject(reference)) {
                    return false;
                }
                // The reference is looked at again when the new level is finished.
                continue;
            }
            if (!storeInto(level, slot)) {
                return false;
            }
        }
        result = std::move(slots_[top_].value);
        return true;
    }

    void finishLevel() {
        Level& level = open_.back();
        Slot& slot = slots_[level.index];
        slot.value =
            level.isDictionary ? NSObject(level.dictionary.dictionary()) : NSObject(level.array.array());
        slot.state = Slot::finished;
        slot.height = level.height;
        slot.parts = level.parts;
        open_.pop_back();
    }

    /// The reference to the next value; a dictionary's come after those to its keys.
    bool readReference(const Level& level, std::size_t& reference) {
        const std::size_t position = level.next + (level.isDictionary ? level.count : 0);
        return readReferenceAt(level.references + position * referenceSize_, reference);
    }

    bool readReferenceAt(std::size_t offset, std::size_t& reference) noexcept {
        const std::uint64_t value = bigEndian(bytes_ + offset, referenceSize_);
        if (value >= slots_.size()) {
            return fail("A reference leads to no object", offset);
        }
        reference = static_cast<std::size_t>(value);
        return true;
    }

    bool storeInto(Level& level, const Slot& slot) {
        // Sharing may bring a finished value further down than where it was first met.
        if (slot.height + open_.size() > maxPropertyListDepth) {
            return fail("Values are nested too deeply", level.references);
        }
        if (slot.height >= level.height) {
            level.height = static_cast<std::uint16_t>(slot.height + 1);
        }
        // Shared parts count each time, since a walk over the value meets them each time.
        level.parts = sumOf(level.parts, slot.parts);
        if (!level.isDictionary) {
            level.array.addObject(slot.value);
        } else {
            NSString key;
            if (!readKey(level, key)) {
                return false;
            }
            // The last of equal keys wins.
            level.dictionary.setObject_forKey(slot.value, std::move(key));
        }
        ++level.next;
        return true;
    }

    bool readKey(Level& level, NSString& key) {
        const std::size_t offset = level.references + level.next * referenceSize_;
        std::size_t reference = 0;
        if (!readReferenceAt(offset, reference)) {
            return false;
        }
        Slot& slot = slots_[reference];
        // Keys are read in place: they are scalars, and need no level.
        if (slot.state == Slot::unread) {
            ObjectPlace place;
            if (!findObject(reference, place)) {
                return false;
            }
            // Any other kind stays unread and fails below.
            if ((place.kind == asciiKind || place.kind == unitsKind) && !readScalar(place, slot)) {
                return false;
            }
        }
        key = NSString(slot.value);
        level.parts = sumOf(level.parts, slot.parts);
        return key || fail("A dictionary's key is not a string", offset);
    }

    /// Reads a scalar into its slot, or opens a container.
    bool readObject(std::size_t index) {
        ObjectPlace place;
        if (!findObject(index, place)) {
            return false;
        }
        if (!isContainer(place)) {
            return readScalar(place, slots_[index]);
        }
        // The limit keeps the number of open levels small; it is the same for all forms.
        if (open_.size() == maxPropertyListDepth) {
            return fail("Values are nested too deeply", place.start);
        }
        const bool isDictionary = place.kind == dictionaryKind;
        // The count is known to fit into the file, so that the room is bounded, too.
        open_.push_back(Level{index,
                              isDictionary,
                              place.count,
                              place.content,
                              0,
                              1,
                              1,
                              isDictionary ? NSMutableArray() : NSMutableArray(place.count),
                              {}});
        slots_[index].state = Slot::open;
        return true;
    }

    /// Reads marker and count, and checks that the content is before the table.
    bool findObject(std::size_t index, ObjectPlace& place) {
        place.start = static_cast<std::size_t>(offsetOf(index));
        place.kind = bytes_[place.start] >> 4;
        place.low = bytes_[place.start] & 0xF;
        place.content = place.start + 1;
        std::size_t unitSize = 0;
        switch (place.kind) {
        case dataKind:
        case asciiKind:
            unitSize = 1;
            break;
        case unitsKind:
            unitSize = 2;
            break;
        case arrayKind:
            unitSize = referenceSize_;
            break;
        case dictionaryKind:
            unitSize = 2 * referenceSize_;
            break;
        // The other kinds have no count; their sizes are checked when they are read.
        default:
            return true;
        }
        if (!readCount(place)) {
            return false;
        }
        // Before the table: objects that reach into it or beyond are refused.
        if (place.count > (table_ - place.content) / unitSize) {
            return fail("An object is longer than the file", place.start);
        }
        const std::size_t length = place.count * unitSize;
        // Each byte may be claimed a few times; then the objects overlap on purpose.
        if (length > bytesToGive_) {
            return fail("The objects overlap", place.start);
        }
        bytesToGive_ -= length;
        partsInFile_ += 1 + length / (isContainer(place) ? referenceSize_ : bytesOfPart);
        return true;
    }

    static bool isContainer(const ObjectPlace& place) noexcept {
        return place.kind == arrayKind || place.kind == dictionaryKind;
    }

    bool readCount(ObjectPlace& place) noexcept {
        place.count = place.low;
        // Otherwise the count is an integer object right after the marker.
        if (place.low != 0xF) {
            return true;
        }
        const std::size_t marker = place.content;
        // The exponent may be up to 15, so the length is checked below.
        const std::size_t length = marker < table_ ? std::size_t{1} << (bytes_[marker] & 0xF) : 0;
        if (marker >= table_ || bytes_[marker] >> 4 != integerKind || length > 8 ||
            length > table_ - marker - 1) {
            return fail("The count of an object is malformed", place.start);
        }
        // Eight bytes are signed by rule, but no count that large fits into the file.
        place.count = static_cast<std::size_t>(bigEndian(bytes_ + marker + 1, length));
        place.content = marker + 1 + length;
        return true;
    }

    /// Anything that refers to no other object. Long texts and data count as several parts, so that sharing
    /// them cannot hide their size.
    bool readScalar(const ObjectPlace& place, Slot& slot) {
        slot.state = Slot::finished;
        slot.parts = 1 + place.count * (place.kind == unitsKind ? 2 : 1) / bytesOfPart;
        const unsigned char* content = bytes_ + place.content;
        switch (place.kind) {
        case simpleKind:
            return readSimple(place, slot.value);
        case integerKind:
            return readInteger(place, slot.value);
        case realKind:
            return readReal(place, slot.value);
        case dateKind:
            return readDate(place, slot.value);
        case dataKind:
            slot.value = NSData::dataWithBytes_length(content, place.count);
            return true;
        case asciiKind:
            slot.value = asciiString(content, place.count);
            return true;
        case unitsKind:
            slot.value = unitString(content, place.count);
            return true;
        default:
            return fail("The kind of an object is not known", place.start);
        }
    }

    bool readSimple(const ObjectPlace& place, NSObject& value) noexcept {
        switch (place.low) {
        // Null cannot come from other forms, but files contain it.
        case 0x0:
            value = NSNull::null();
            return true;
        case 0x8:
            value = NSNumber(false);
            return true;
        case 0x9:
            value = NSNumber(true);
            return true;
        default:
            return fail("The kind of an object is not known", place.start);
        }
    }

    /// Whether `length` bytes of content fit before the table.
    bool hasContent(const ObjectPlace& place, std::size_t length) noexcept {
        return length <= table_ - place.content || fail("An object is longer than the file", place.start);
    }

    bool readInteger(const ObjectPlace& place, NSObject& value) noexcept {
        if (place.low > 4) {
            return fail("An integer has an impossible size", place.start);
        }
        const std::size_t length = std::size_t{1} << place.low;
        if (!hasContent(place, length)) {
            return false;
        }
        const unsigned char* content = bytes_ + place.content;
        // Short integers are unsigned; only eight bytes have a sign.
        if (length < 8) {
            value = NSNumber(bigEndian(content, length));
        } else if (length == 8) {
            value = NSNumber(static_cast<std::int64_t>(bigEndian(content, 8)));
        } else {
            return readWideInteger(place, value);
        }
        return true;
    }

    /// Written for numbers from 2^63 up, which eight bytes with a sign cannot hold.
    bool readWideInteger(const ObjectPlace& place, NSObject& value) noexcept {
        const std::uint64_t high = bigEndian(bytes_ + place.content, 8);
        const std::uint64_t low = bigEndian(bytes_ + place.content + 8, 8);
        if (high == 0) {
            value = NSNumber(low);
        } else if (high == UINT64_MAX && low >> 63 != 0) {
            value = NSNumber(static_cast<std::int64_t>(low));
        } else {
            return fail("An integer is out of range", place.start);
        }
        return true;
    }

    bool readReal(const ObjectPlace& place, NSObject& value) noexcept {
        const unsigned char* content = bytes_ + place.content;
        if (place.low == 2) {
            if (!hasContent(place, 4)) {
                return false;
            }
            value = NSNumber(std::bit_cast<float>(static_cast<std::uint32_t>(bigEndian(content, 4))));
            return true;
        }
        if (place.low == 3) {
            if (!hasContent(place, 8)) {
                return false;
            }
            value = NSNumber(std::bit_cast<double>(bigEndian(content, 8)));
            return true;
        }
        return fail("A real number has an impossible size", place.start);
    }

    bool readDate(const ObjectPlace& place, NSObject& value) noexcept {
        if (place.low != 3) {
            return fail("A date has an impossible size", place.start);
        }
        if (!hasContent(place, 8)) {
            return false;
        }
        const double seconds = std::bit_cast<double>(bigEndian(bytes_ + place.content, 8));
        value = NSDate::dateWithTimeIntervalSinceReferenceDate(seconds);
        return true;
    }

    /// Bytes above 7F become the units of the same number, as wherever bytes are read as ASCII.
    /// Not an error: such files exist.
    static NSString asciiString(const unsigned char* bytes, std::size_t count) {
        const char* text = reinterpret_cast<const char*>(bytes);
        if (asciiPrefixLength(text, count) == count) {
            return NSString(StringView::ascii(text, count));
        }
        const std::unique_ptr<char16_t[]> units(new char16_t[count]);
        widenAscii(text, count, units.get());
        return NSString::stringWithCharacters_length(units.get(), count);
    }

    static NSString unitString(const unsigned char* bytes, std::size_t count) {
        const std::unique_ptr<char16_t[]> units(new char16_t[count]);
        for (std::size_t index = 0; index < count; ++index) {
            units[index] = static_cast<char16_t>(bytes[2 * index] << 8 | bytes[2 * index + 1]);
        }
        return NSString::stringWithCharacters_length(units.get(), count);
    }

    /// Objects of a well-formed file do not overlap; some slack is left for writers that list one twice.
    static constexpr std::size_t timesTheObjects = 4;

    const unsigned char* bytes_;
    std::size_t size_;
    std::size_t offsetSize_ = 0;
    std::size_t referenceSize_ = 0;
    std::size_t table_ = 0; ///< offset of the table, which is the end of the objects
    std::size_t top_ = 0;
    std::size_t bytesToGive_ = 0;
    PartCount partsInFile_ = 0; ///< of the objects that were read, each taken once
    std::vector<Slot> slots_;
    std::vector<Level> open_;
    const char* message_ = nullptr;
    std::size_t failedAt_ = 0;
};

} // namespace

bool isBinaryPropertyList(const unsigned char* bytes, std::size_t count) noexcept {
    return count >= headerSize && std::memcmp(bytes, "bplist0", 7) == 0;
}

NSObject readBinary(const unsigned char* bytes, std::size_t count, PropertyListError& error) {
    return BinaryReader(bytes, count).read(error);
}

} // namespace ZQFoundation::detail
