// SPDX-License-Identifier: MIT
// The reader of old-style property lists. Well-formed UTF-8 is read as bytes and as units; any other input as
// UTF-16, which may hold unpaired surrogates.
#include "fuzz/PlainOldStyleReader.h"
#include "fuzz/PropertyLists.h"

using namespace ZQFoundation;

namespace {

std::u16string unitsOf(const uint8_t* data, size_t size) {
    std::u16string units;
    for (size_t index = 0; index + 1 < size; index += 2) {
        units += static_cast<char16_t>(data[index] | data[index + 1] << 8);
    }
    return units;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const auto readForm = [](const auto* text, size_t count, detail::PropertyListError& error) {
        return detail::readOldStyle(text, count, error);
    };
    fuzzing::BothForms text;
    text.utf8.assign(reinterpret_cast<const char*>(data), size);
    NSObject value;
    if (std::optional<std::u16string> units = models::wellFormedUtf16(text.utf8)) {
        text.units = std::move(*units);
        value = fuzzing::readBothForms(readForm, readForm, text);
    } else {
        text.units = unitsOf(data, size);
        const auto exact = fuzzing::exactCopy(std::u16string_view(text.units));
        detail::PropertyListError error;
        value = detail::readOldStyle(exact.get(), text.units.size(), error);
    }
    const NSObject plain = fuzzing::PlainOldStyleReader(text.units).read();
    fuzzing::require(fuzzing::isSame(value, plain, fuzzing::Kept::everything),
                     "the grammar, read plainly, gives the same value");
    if (value) {
        fuzzing::checkWriters(value);
    }
    return 0;
}
