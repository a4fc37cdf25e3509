// SPDX-License-Identifier: MIT
// Internal: not installed.
#ifndef ZQFOUNDATION_OBJECTS_BODIES_H
#define ZQFOUNDATION_OBJECTS_BODIES_H

#include "foundation/objects/Class.h"
#include "foundation/objects/NSArray.h"
#include "foundation/objects/NSCharacterSet.h"
#include "foundation/objects/NSData.h"
#include "foundation/objects/NSDate.h"
#include "foundation/objects/NSDictionary.h"
#include "foundation/objects/NSNumber.h"
#include "foundation/objects/NSObjectProtocol.h"
#include "foundation/objects/NSSet.h"
#include "foundation/objects/NSString.h"
#include "foundation/objects/NSURL.h"

namespace ZQFoundation::detail {

/// A string's units follow its header. They are bytes if and only if every unit is below U+0080, so two equal
/// strings always have the same form.
struct StringBody : Body {
    std::size_t length : 56;      ///< units
    std::size_t placeInBlock : 6; ///< words from the start of its `StringBlock`; 0: it has its own memory
    std::size_t isSignalSafe : 1; ///< in memory of `takeSignalSafeMemory`
    std::size_t isAscii : 1;

    static constexpr std::size_t maxLength = SIZE_MAX >> 9;

    void setForm(std::size_t units, bool ascii, bool signalSafe) noexcept {
        length = units & (SIZE_MAX >> 8);
        placeInBlock = 0;
        isSignalSafe = signalSafe;
        isAscii = ascii;
    }

    const char* ascii() const noexcept { return reinterpret_cast<const char*>(this + 1); }
    char* ascii() noexcept { return reinterpret_cast<char*>(this + 1); }
    const char16_t* units() const noexcept { return reinterpret_cast<const char16_t*>(this + 1); }
    char16_t* units() noexcept { return reinterpret_cast<char16_t*>(this + 1); }
};

/// The head of memory that the bodies of several short strings share. It is freed with the last of them.
struct StringBlock {
    std::size_t live; ///< bodies not yet released
};

struct DataBody : Body {
    std::size_t length;

    unsigned char* bytes() noexcept { return reinterpret_cast<unsigned char*>(this + 1); }
};

struct UrlBody : Body {
    NSString text;
    NSURL base;
};

/// The elements follow the header; a body still being built has more capacity than elements.
struct ArrayBody : Body {
    std::size_t count;
    std::size_t capacity;
    std::uint64_t structuralHash; ///< 0: not yet computed

    NSObject* elements() noexcept { return reinterpret_cast<NSObject*>(this + 1); }
};

/// Which of 256 code points are members, one bit each.
struct CharacterPage {
    std::uint64_t words[4];

    bool contains(char32_t codePoint) const noexcept {
        return (words[codePoint >> 6 & 3] >> (codePoint & 63) & 1) != 0;
    }
};

/// A page's number is 0 when it is empty, 1 when it is full; equal pages have the same number. The pages
/// follow the header, in order of their words, then the page numbers of those planes above the first that are
/// neither empty nor full. So equal sets have equal bytes from `byteCount` on.
struct CharacterSetBody : Body {
    static constexpr std::size_t planeCount = 17;
    static constexpr std::size_t pagesInPlane = 256;

    std::size_t byteCount;               ///< of the whole body
    std::uint16_t numbers[pagesInPlane]; ///< of the first plane
    std::uint32_t pageCount;
    /// 0: empty, 1: full, else the index of its page numbers, 2 for those in the header. Three more than
    /// needed, so that the header has no padding, whose bytes would be compared too.
    std::uint8_t planes[planeCount + 3];

    const CharacterPage* pages() const noexcept { return reinterpret_cast<const CharacterPage*>(this + 1); }
    CharacterPage* pages() noexcept { return reinterpret_cast<CharacterPage*>(this + 1); }

    /// `place` is at least 3.
    const std::uint16_t* numbersAt(std::size_t place) const noexcept {
        return reinterpret_cast<const std::uint16_t*>(pages() + pageCount) + (place - 3) * pagesInPlane;
    }

    std::size_t pageNumber(std::size_t page) const noexcept {
        if (page < pagesInPlane) {
            return numbers[page];
        }
        const std::size_t place = planes[page / pagesInPlane];
        return place < 2 ? place : numbersAt(place)[page % pagesInPlane];
    }
};

static_assert(std::has_unique_object_representations_v<CharacterSetBody>);

struct HostBody : Body {
    NSObjectProtocol* object;
};

/// The library's access to the contents of handles.
struct Access {
    static Kind kind(const NSObject& object) noexcept { return object.kind_; }
    static Body* body(const NSObject& object) noexcept { return object.payload_.body; }
    static std::int64_t integer(const NSObject& object) noexcept { return object.payload_.integer; }
    static double real(const NSObject& object) noexcept { return object.payload_.real; }
    static const ClassRecord* classRecord(const NSObject& object) noexcept {
        return object.payload_.classRecord;
    }

    static StringBody* string(const NSObject& object) noexcept {
        return static_cast<StringBody*>(body(object));
    }
    static DataBody* data(const NSObject& object) noexcept { return static_cast<DataBody*>(body(object)); }
    static UrlBody* url(const NSObject& object) noexcept { return static_cast<UrlBody*>(body(object)); }
    static ArrayBody* array(const NSObject& object) noexcept { return static_cast<ArrayBody*>(body(object)); }
    static CharacterSetBody* characterSet(const NSObject& object) noexcept {
        return static_cast<CharacterSetBody*>(body(object));
    }
    static HostBody* host(const NSObject& object) noexcept { return static_cast<HostBody*>(body(object)); }

    /// These take over one reference of the body.
    static NSObject adopt(Body* body, Kind kind) noexcept {
        return NSObject(NSObject::Payload{.body = body}, kind);
    }
    static NSString adoptString(StringBody* body) noexcept {
        return NSString(NSObject::Payload{.body = body});
    }
    static NSData adoptData(DataBody* body) noexcept { return NSData(NSObject::Payload{.body = body}); }
    static NSURL adoptURL(UrlBody* body) noexcept { return NSURL(NSObject::Payload{.body = body}); }
    static NSArray adoptArray(Body* body) noexcept { return NSArray(NSObject::Payload{.body = body}); }
    static NSDictionary adoptDictionary(Body* body) noexcept {
        return NSDictionary(NSObject::Payload{.body = body});
    }
    static NSSet adoptSet(Body* body) noexcept { return NSSet(NSObject::Payload{.body = body}); }
    static NSCharacterSet adoptCharacterSet(CharacterSetBody* body) noexcept {
        return NSCharacterSet(NSObject::Payload{.body = body});
    }

    static StringView view(const NSString& string) noexcept { return string.view(); }
};

} // namespace ZQFoundation::detail

#endif
