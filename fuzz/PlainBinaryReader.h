// SPDX-License-Identifier: MIT
// A second reader of binary property lists, to compare the library's with.
#ifndef ZQFOUNDATION_FUZZ_PLAINBINARYREADER_H
#define ZQFOUNDATION_FUZZ_PLAINBINARYREADER_H

#include <cstring>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "foundation/plist/PropertyListError.h"
#include "fuzz/SameValue.h"

namespace ZQFoundation::fuzzing {

/// Whether the library refused a file for a limit that the reader below does not have.
inline bool isLimitOnObjects(const char* message) {
    return std::strcmp(message, "The objects overlap") == 0 ||
           std::strcmp(message, "Shared objects make the value many times larger than the file") == 0;
}

/// The binary form read by its rules and by recursion, without the limits on objects that are shared or
/// overlap. Nil for bytes that are not in that form.
class PlainBinaryReader {
public:
    explicit PlainBinaryReader(std::string_view file) : file_(file) {}

    NSObject read() {
        constexpr std::size_t head = 8;
        constexpr std::size_t trailer = 32;
        if (file_.size() < head + 1 + trailer) {
            return nullptr;
        }
        const std::size_t end = file_.size() - trailer;
        offsetSize_ = byte(end + 6);
        referenceSize_ = byte(end + 7);
        const std::uint64_t count = number(end + 8, 8);
        const std::uint64_t top = number(end + 16, 8);
        const std::uint64_t table = number(end + 24, 8);
        if (offsetSize_ - 1 > 7 || referenceSize_ - 1 > 7 || table < head || table > end ||
            count > (end - table) / offsetSize_ || top >= count) {
            return nullptr;
        }
        table_ = table;
        objects_.resize(count);
        for (std::size_t index = 0; index < count; ++index) {
            objects_[index].offset = number(table + index * offsetSize_, offsetSize_);
            if (objects_[index].offset < head || objects_[index].offset >= table) {
                return nullptr;
            }
        }
        return isGood(top, 0) ? objects_[top].value : NSObject();
    }

private:
    struct Object {
        std::size_t offset = 0;
        enum { unread, open, good, bad } state = unread;
        std::size_t height = 0; ///< levels of containers
        NSObject value;
    };

    unsigned byte(std::size_t at) const { return static_cast<unsigned char>(file_[at]); }

    std::uint64_t number(std::size_t at, std::size_t size) const {
        std::uint64_t value = 0;
        for (std::size_t index = 0; index < size; ++index) {
            value = value << 8 | byte(at + index);
        }
        return value;
    }

    /// Reads the object unless that was done already; `depth` containers are around it.
    bool isGood(std::size_t index, std::size_t depth) {
        Object& object = objects_[index];
        if (object.state == Object::unread) {
            object.state = Object::open;
            object.state = readObject(object, depth) ? Object::good : Object::bad;
        }
        return object.state == Object::good &&
               object.height + depth <= ZQFoundation::detail::maxPropertyListDepth;
    }

    bool readObject(Object& object, std::size_t depth) {
        const unsigned marker = byte(object.offset);
        const unsigned low = marker & 15;
        const std::size_t content = object.offset + 1;
        switch (marker >> 4) {
        case 0x0:
            object.value = low == 0 ? NSObject(NSNull::null()) : NSObject(low == 9);
            return low == 0 || low == 8 || low == 9;
        case 0x1:
            return low <= 4 && fits(content, 1, 1U << low) && readInteger(object, content, 1U << low);
        case 0x2:
            return (low == 2 || low == 3) && fits(content, 1, 1U << low) &&
                   readReal(object, content, 1U << low);
        case 0x3:
            return low == 3 && fits(content, 1, 8) && readDate(object, content);
        default:
            return readCounted(object, marker >> 4, depth);
        }
    }

    bool fits(std::size_t content, std::size_t count, std::size_t size) const {
        return content <= table_ && count <= (table_ - content) / size;
    }

    bool readInteger(Object& object, std::size_t content, unsigned size) {
        const std::uint64_t low = number(content + size - (size < 8 ? size : 8), size < 8 ? size : 8);
        if (size < 16) {
            object.value = size == 8 ? NSNumber(static_cast<std::int64_t>(low)) : NSNumber(low);
            return true;
        }
        const std::uint64_t high = number(content, 8);
        object.value = high == 0 ? NSNumber(low) : NSNumber(static_cast<std::int64_t>(low));
        return high == 0 || (high == UINT64_MAX && static_cast<std::int64_t>(low) < 0);
    }

    bool readReal(Object& object, std::size_t content, unsigned size) {
        if (size == 4) {
            object.value = NSNumber(std::bit_cast<float>(static_cast<std::uint32_t>(number(content, 4))));
        } else {
            object.value = NSNumber(std::bit_cast<double>(number(content, 8)));
        }
        return true;
    }

    bool readDate(Object& object, std::size_t content) {
        object.value =
            NSDate::dateWithTimeIntervalSinceReferenceDate(std::bit_cast<double>(number(content, 8)));
        return true;
    }

    /// From 15 on the count is an integer object of its own; false when that object does not fit.
    bool readCount(std::size_t& content, std::size_t& count) const {
        count = byte(content - 1) & 15;
        if (count < 15) {
            return true;
        }
        if (content >= table_ || byte(content) >> 4 != 1 || (byte(content) & 15) > 3) {
            return false;
        }
        const std::size_t size = std::size_t{1} << (byte(content) & 15);
        if (!fits(content + 1, 1, size)) {
            return false;
        }
        count = number(content + 1, size);
        content += 1 + size;
        return true;
    }

    bool readCounted(Object& object, unsigned kind, std::size_t depth) {
        std::size_t content = object.offset + 1;
        std::size_t count = 0;
        switch (kind) {
        case 0x4:
        case 0x5:
        case 0x6:
            return readCount(content, count) && fits(content, count, kind == 6 ? 2 : 1) &&
                   readText(object, kind, content, count);
        case 0xA:
            return readCount(content, count) && fits(content, count, referenceSize_) &&
                   readArray(object, content, count, depth + 1);
        case 0xD:
            return readCount(content, count) && fits(content, count, 2 * referenceSize_) &&
                   readDictionary(object, content, count, depth + 1);
        default:
            return false;
        }
    }

    bool readText(Object& object, unsigned kind, std::size_t content, std::size_t count) {
        if (kind == 0x4) {
            object.value = NSData::dataWithBytes_length(file_.data() + content, count);
            return true;
        }
        const std::size_t size = kind == 0x6 ? 2 : 1;
        std::u16string units;
        for (std::size_t index = 0; index < count; ++index) {
            units += static_cast<char16_t>(number(content + index * size, size));
        }
        object.value = NSString::stringWithCharacters_length(units.data(), units.size());
        return true;
    }

    /// The object that the reference at a place refers to; null when there is none, or no valid one.
    const Object* referred(std::size_t place, std::size_t depth) {
        const std::uint64_t index = number(place, referenceSize_);
        return index < objects_.size() && isGood(index, depth) ? &objects_[index] : nullptr;
    }

    bool readArray(Object& object, std::size_t content, std::size_t count, std::size_t depth) {
        NSMutableArray array;
        object.height = 1;
        for (std::size_t index = 0; index < count; ++index) {
            const Object* element = depth > ZQFoundation::detail::maxPropertyListDepth
                                        ? nullptr
                                        : referred(content + index * referenceSize_, depth);
            if (element == nullptr) {
                return false;
            }
            object.height = std::max(object.height, element->height + 1);
            array.addObject(element->value);
        }
        object.value = array.array();
        return true;
    }

    bool readDictionary(Object& object, std::size_t content, std::size_t count, std::size_t depth) {
        NSMutableDictionary dictionary;
        object.height = 1;
        for (std::size_t index = 0; index < count; ++index) {
            const std::size_t place = content + index * referenceSize_;
            const std::uint64_t key = number(place, referenceSize_);
            if (depth > ZQFoundation::detail::maxPropertyListDepth || key >= objects_.size() ||
                byte(objects_[key].offset) >> 4 == 0xA || byte(objects_[key].offset) >> 4 == 0xD) {
                return false;
            }
            const Object* keyObject = referred(place, depth);
            const Object* value = referred(place + count * referenceSize_, depth);
            if (keyObject == nullptr || value == nullptr || !NSString(keyObject->value)) {
                return false;
            }
            object.height = std::max(object.height, value->height + 1);
            dictionary.setObject_forKey(value->value, keyObject->value);
        }
        object.value = dictionary.dictionary();
        return true;
    }

    std::string_view file_;
    std::size_t offsetSize_ = 0;
    std::size_t referenceSize_ = 0;
    std::size_t table_ = 0;
    std::vector<Object> objects_;
};

} // namespace ZQFoundation::fuzzing

#endif
