// SPDX-License-Identifier: MIT
// A writer of binary property lists, for the reader of the library.
#ifndef ZQFOUNDATION_FUZZ_PLAINBINARYWRITER_H
#define ZQFOUNDATION_FUZZ_PLAINBINARYWRITER_H

#include <bit>
#include <cstdint>
#include <string>
#include <vector>

#include "fuzz/SameValue.h"

namespace ZQFoundation::fuzzing {

/// Writes the binary form, which the library only reads, in a plain way: nothing is shared, offsets take four
/// bytes, references two or four.
class PlainBinaryWriter {
public:
    /// `parts` is how many values and keys there are, each counted wherever it occurs.
    std::string write(const NSObject& value, std::size_t parts) {
        referenceSize_ = parts < 0x10000 ? 2 : 4;
        objects_.reserve(parts);
        add(value);
        std::string file = "bplist00";
        std::string table;
        for (const std::string& object : objects_) {
            table += bigEndian(file.size(), 4);
            file += object;
        }
        const std::size_t tableStart = file.size();
        file += table + std::string(6, '\0') + static_cast<char>(4) + static_cast<char>(referenceSize_);
        file += bigEndian(objects_.size(), 8) + bigEndian(0, 8) + bigEndian(tableStart, 8);
        return file;
    }

private:
    using Kind = ZQFoundation::detail::Kind;
    using Access = ZQFoundation::detail::Access;

    static std::string bigEndian(std::uint64_t number, unsigned size) {
        std::string bytes;
        for (unsigned index = size; index > 0; --index) {
            bytes += index > 8 ? '\0' : static_cast<char>(number >> (8 * (index - 1)));
        }
        return bytes;
    }

    static std::string marked(unsigned marker, const std::string& content) {
        return static_cast<char>(marker) + content;
    }

    /// Marker and count; from 15 on the count is an integer of its own.
    static std::string counted(unsigned kind, std::size_t count) {
        if (count < 15) {
            return std::string(1, static_cast<char>(kind << 4 | count));
        }
        return marked(kind << 4 | 15, marked(0x12, bigEndian(count, 4)));
    }

    std::size_t add(const NSObject& value) {
        const std::size_t index = objects_.size();
        objects_.emplace_back();
        std::string object;
        if (const NSArray array(value); array) {
            object = counted(0xA, array.count());
            for (const NSObject& element : array) {
                object += bigEndian(add(element), referenceSize_);
            }
        } else if (const NSDictionary dictionary(value); dictionary) {
            std::string values;
            object = counted(0xD, dictionary.count());
            for (const NSDictionaryEntry& entry : dictionary) {
                object += bigEndian(add(entry.key), referenceSize_);
                values += bigEndian(add(entry.value), referenceSize_);
            }
            object += values;
        } else {
            object = scalar(value);
        }
        objects_[index] = std::move(object);
        return index;
    }

    static std::string scalar(const NSObject& value) {
        const auto integer = static_cast<std::uint64_t>(Access::integer(value));
        switch (Access::kind(value)) {
        case Kind::boolean:
            return marked(integer != 0 ? 0x09 : 0x08, "");
        case Kind::signedInteger:
            return smallestInteger(integer);
        case Kind::unsignedInteger:
            return marked(0x14, bigEndian(integer, 16));
        case Kind::real:
            return marked(0x23, bigEndian(std::bit_cast<std::uint64_t>(Access::real(value)), 8));
        case Kind::singleReal: {
            const auto single = static_cast<float>(Access::real(value));
            return marked(0x22, bigEndian(std::bit_cast<std::uint32_t>(single), 4));
        }
        case Kind::date: {
            const double seconds = NSDate(value).timeIntervalSinceReferenceDate();
            return marked(0x33, bigEndian(std::bit_cast<std::uint64_t>(seconds), 8));
        }
        case Kind::string:
            return string(NSString(value).utf16());
        case Kind::data: {
            const NSData data(value);
            std::string bytes = counted(0x4, data.length());
            return bytes.append(reinterpret_cast<const char*>(data.bytes()), data.length());
        }
        default:
            return marked(0x00, "");
        }
    }

    static std::string smallestInteger(std::uint64_t number) {
        unsigned power = 0;
        while (power < 3 && number >> (8 << power) != 0) {
            ++power;
        }
        return marked(0x10 | power, bigEndian(number, 1U << power));
    }

    static std::string string(const std::u16string& units) {
        bool isAscii = true;
        for (const char16_t unit : units) {
            isAscii = isAscii && unit < 0x80;
        }
        std::string bytes = counted(isAscii ? 0x5 : 0x6, units.size());
        for (const char16_t unit : units) {
            bytes += bigEndian(unit, isAscii ? 1 : 2);
        }
        return bytes;
    }

    unsigned referenceSize_ = 2;
    std::vector<std::string> objects_;
};

} // namespace ZQFoundation::fuzzing

#endif
