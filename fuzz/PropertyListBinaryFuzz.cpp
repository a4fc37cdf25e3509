// SPDX-License-Identifier: MIT
// The reader of binary property lists. An input that begins like one is taken as it is. Any other is put
// together into a file, so that changes deep inside keep the table of offsets right: one byte for the
// sizes of offsets and references, then objects, each after a byte with its length.
#include <cstring>

#include "fuzz/InputReader.h"
#include "fuzz/PlainBinaryReader.h"
#include "fuzz/PropertyLists.h"

using namespace ZQFoundation;

namespace {

void appendBigEndian(std::string& file, std::uint64_t number, unsigned size) {
    for (unsigned index = size; index > 0; --index) {
        file += index > 8 ? '\0' : static_cast<char>(number >> (8 * (index - 1)));
    }
}

std::string assembled(std::string_view input) {
    const unsigned sizes = input.empty() ? 0 : static_cast<unsigned char>(input[0]);
    const unsigned offsetSize = sizes % 8 + 1;
    const unsigned referenceSize = sizes / 8 % 8 + 1;
    std::string file = "bplist00";
    std::string table;
    std::uint64_t count = 0;
    for (std::size_t at = 1; at < input.size(); ++count) {
        const std::size_t length = static_cast<unsigned char>(input[at]);
        appendBigEndian(table, file.size(), offsetSize);
        file += input.substr(at + 1, length);
        at += 1 + length;
    }
    const std::size_t tableStart = file.size();
    file += table + std::string(6, '\0');
    file += static_cast<char>(offsetSize);
    file += static_cast<char>(referenceSize);
    appendBigEndian(file, count, 8);
    appendBigEndian(file, 0, 8);
    appendBigEndian(file, tableStart, 8);
    return file;
}

/// Whether a reader without limits may take what the library refuses.
} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::string_view input(reinterpret_cast<const char*>(data), size);
    const std::string file = input.starts_with("bplist0") ? std::string(input) : assembled(input);
    const auto exact = fuzzing::exactCopy(std::string_view(file));
    const auto* bytes = reinterpret_cast<const unsigned char*>(exact.get());
    detail::PropertyListError error;
    const NSObject value = detail::readBinary(bytes, file.size(), error);
    fuzzing::require(static_cast<bool>(value) == (error.message == nullptr), "failure has a reason");
    if (value || !fuzzing::isLimitOnObjects(error.message)) {
        const NSObject plain = fuzzing::PlainBinaryReader(file).read();
        fuzzing::requireSameShared(value, plain, "the form, read plainly, gives the same value");
    }
    if (value) {
        fuzzing::checkWriters(value);
    }
    return 0;
}
