// SPDX-License-Identifier: MIT
// Binary property lists built from their parts, also wrong ones.
#ifndef ZQFOUNDATION_TESTS_PLIST_BINARYBUILDING_H
#define ZQFOUNDATION_TESTS_PLIST_BINARYBUILDING_H

#include <cstdint>
#include <initializer_list>
#include <string>
#include <string_view>
#include <vector>

namespace ZQFoundation::testing {

/// A big-endian number of `size` bytes.
inline std::string bigEndian(std::uint64_t value, unsigned size) {
    std::string bytes;
    for (unsigned index = size; index > 0; --index) {
        bytes += index > 8 ? '\0' : static_cast<char>(value >> (8 * (index - 1)));
    }
    return bytes;
}

/// Puts a binary property list together from its objects' bytes, correctly unless a field says otherwise.
struct BinaryFile {
    std::vector<std::string> objects;
    unsigned offsetSize = 2;
    unsigned referenceSize = 1;
    std::uint64_t top = 0;

    std::string header = "bplist00";
    std::int64_t countMore = 0; ///< what the trailer claims beyond the truth
    std::int64_t tableLater = 0;
    std::vector<std::uint64_t> offsets; ///< in place of the true ones, when there are any

    std::string bytes() const {
        std::string file = header;
        std::vector<std::uint64_t> starts;
        for (const std::string& object : objects) {
            starts.push_back(file.size());
            file += object;
        }
        const std::uint64_t table = file.size();
        const std::vector<std::uint64_t>& used = offsets.empty() ? starts : offsets;
        for (const std::uint64_t offset : used) {
            file += bigEndian(offset, offsetSize);
        }
        file += std::string(6, '\0') + static_cast<char>(offsetSize) + static_cast<char>(referenceSize);
        file += bigEndian(used.size() + static_cast<std::uint64_t>(countMore), 8);
        file += bigEndian(top, 8) + bigEndian(table + static_cast<std::uint64_t>(tableLater), 8);
        return file;
    }
};

/// An object's bytes from a marker and more.
inline std::string object(unsigned marker, std::string_view content = {}) {
    return std::string(1, static_cast<char>(marker)) + std::string(content);
}

inline std::string references(std::initializer_list<unsigned> numbers) {
    std::string bytes;
    for (const unsigned number : numbers) {
        bytes += static_cast<char>(number);
    }
    return bytes;
}

/// Arrays, each holding the next one `times` times; the last is empty.
inline std::string chain(unsigned length, unsigned times) {
    BinaryFile file;
    file.referenceSize = 2;
    for (unsigned index = 0; index + 1 < length; ++index) {
        std::string content;
        for (unsigned copy = 0; copy < times; ++copy) {
            content += bigEndian(index + 1, 2);
        }
        file.objects.push_back(object(0xA0 + times, content));
    }
    file.objects.push_back(object(0xA0));
    return file.bytes();
}

/// A list of all kinds of objects, some of them shared.
inline std::string sampleBinary() {
    BinaryFile file;
    file.objects = {
        object(0xD3, references({1, 2, 3, 4, 5, 6})),
        object(0x51, "a"),
        object(0x52, "bc"),
        object(0x61, bigEndian(0x20AC, 2)),
        object(0xA4, references({7, 8, 9, 6})),
        object(0xA3, references({10, 11, 12})),
        object(0x4F, "\x10\x03xyz"),
        object(0x10, bigEndian(200, 1)),
        object(0x13, bigEndian(static_cast<std::uint64_t>(-2), 8)),
        object(0x23, bigEndian(0x3FE0000000000000, 8)),
        object(0x33, bigEndian(0x4059000000000000, 8)),
        object(0x08),
        object(0x09),
    };
    return file.bytes();
}

} // namespace ZQFoundation::testing

#endif
