// SPDX-License-Identifier: MIT
// A writer of binary property lists, for the reader of the library.
#ifndef ZQFOUNDATION_FUZZ_PLAINBINARYWRITER_H
#define ZQFOUNDATION_FUZZ_PLAINBINARYWRITER_H

#include <bit>
#include <cstdint>
#include <string>

#include "fuzz/SameValue.h"
#include "tests/kit/BinaryFiles.h"

namespace ZQFoundation::fuzzing {

/// Writes the binary form, which the library only reads, in a plain way: nothing is shared, offsets take four
/// bytes, references two or four.
class PlainBinaryWriter {
public:
    /// `parts` is how many values and keys there are, each counted wherever it occurs.
    std::string write(const NSObject& value, std::size_t parts) {
        file_.offsetSize = 4;
        file_.referenceSize = parts < 0x10000 ? 2 : 4;
        file_.objects.reserve(parts);
        add(value);
        return file_.bytes();
    }

private:
    using Kind = ZQFoundation::detail::Kind;
    using Access = ZQFoundation::detail::Access;

    /// Marker and count; from 15 on the count is an integer of its own.
    static std::string counted(unsigned kind, std::size_t count) {
        if (count < 15) {
            return std::string(1, static_cast<char>(kind << 4 | count));
        }
        return kit::object(kind << 4 | 15, kit::object(0x12, kit::bigEndian(count, 4)));
    }

    std::size_t add(const NSObject& value) {
        const std::size_t index = file_.objects.size();
        file_.objects.emplace_back();
        std::string object;
        if (const NSArray array(value); array) {
            object = counted(0xA, array.count());
            for (const NSObject& element : array) {
                object += kit::bigEndian(add(element), file_.referenceSize);
            }
        } else if (const NSDictionary dictionary(value); dictionary) {
            std::string values;
            object = counted(0xD, dictionary.count());
            for (const NSDictionaryEntry& entry : dictionary) {
                object += kit::bigEndian(add(entry.key), file_.referenceSize);
                values += kit::bigEndian(add(entry.value), file_.referenceSize);
            }
            object += values;
        } else {
            object = scalar(value);
        }
        file_.objects[index] = std::move(object);
        return index;
    }

    static std::string scalar(const NSObject& value) {
        const auto integer = static_cast<std::uint64_t>(Access::integer(value));
        switch (Access::kind(value)) {
        case Kind::boolean:
            return kit::object(integer != 0 ? 0x09 : 0x08);
        case Kind::signedInteger:
            return smallestInteger(integer);
        case Kind::unsignedInteger:
            return kit::object(0x14, kit::bigEndian(integer, 16));
        case Kind::real:
            return kit::object(0x23, kit::bigEndian(std::bit_cast<std::uint64_t>(Access::real(value)), 8));
        case Kind::singleReal: {
            const auto single = static_cast<float>(Access::real(value));
            return kit::object(0x22, kit::bigEndian(std::bit_cast<std::uint32_t>(single), 4));
        }
        case Kind::date: {
            const double seconds = NSDate(value).timeIntervalSinceReferenceDate();
            return kit::object(0x33, kit::bigEndian(std::bit_cast<std::uint64_t>(seconds), 8));
        }
        case Kind::string:
            return string(NSString(value).utf16());
        case Kind::data: {
            const NSData data(value);
            std::string bytes = counted(0x4, data.length());
            return bytes.append(reinterpret_cast<const char*>(data.bytes()), data.length());
        }
        default:
            return kit::object(0x00);
        }
    }

    static std::string smallestInteger(std::uint64_t number) {
        unsigned power = 0;
        while (power < 3 && number >> (8 << power) != 0) {
            ++power;
        }
        return kit::object(0x10 | power, kit::bigEndian(number, 1U << power));
    }

    static std::string string(const std::u16string& units) {
        bool isAscii = true;
        for (const char16_t unit : units) {
            isAscii = isAscii && unit < 0x80;
        }
        std::string bytes = counted(isAscii ? 0x5 : 0x6, units.size());
        for (const char16_t unit : units) {
            bytes += kit::bigEndian(unit, isAscii ? 1 : 2);
        }
        return bytes;
    }

    kit::BinaryFile file_;
};

} // namespace ZQFoundation::fuzzing

#endif
