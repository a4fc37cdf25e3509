// SPDX-License-Identifier: MIT
// Binary property lists of several objects.
#ifndef ZQFOUNDATION_TESTS_PLIST_BINARYBUILDING_H
#define ZQFOUNDATION_TESTS_PLIST_BINARYBUILDING_H

#include <cstdint>
#include <initializer_list>
#include <string>

#include "tests/kit/BinaryFiles.h"

namespace ZQFoundation::testing {

using kit::bigEndian;
using kit::BinaryFile;
using kit::object;

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
