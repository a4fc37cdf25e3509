// SPDX-License-Identifier: MIT
// The reader of binary property lists. An input that begins like one is taken as it is. Any other is put
// together into a file, so that changes deep inside keep the table of offsets right: one byte for the
// sizes of offsets and references, then objects, each after a byte with its length.
#include "fuzz/InputReader.h"
#include "fuzz/PlainBinaryReader.h"
#include "fuzz/PropertyLists.h"

using namespace ZQFoundation;

namespace {

std::string assembled(std::string_view input) {
    const unsigned sizes = input.empty() ? 0 : static_cast<unsigned char>(input[0]);
    kit::BinaryFile file;
    file.offsetSize = sizes % 8 + 1;
    file.referenceSize = sizes / 8 % 8 + 1;
    for (std::size_t at = 1; at < input.size();) {
        const std::size_t length = static_cast<unsigned char>(input[at]);
        file.objects.emplace_back(input.substr(at + 1, length));
        at += 1 + length;
    }
    return file.bytes();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::string_view input(reinterpret_cast<const char*>(data), size);
    const std::string file = input.starts_with("bplist0") ? std::string(input) : assembled(input);
    const kit::Exact<char> exact{std::string_view(file)};
    const auto* bytes = reinterpret_cast<const unsigned char*>(exact.data());
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
