// SPDX-License-Identifier: MIT
// The reader of old-style property lists. Well-formed UTF-8 is read as bytes and as units; any other input as
// UTF-16, which may hold unpaired surrogates.
#include "fuzz/PlainOldStyleReader.h"
#include "fuzz/PropertyLists.h"

using namespace ZQFoundation;

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
        text.units = *models::unitsOfWide({text.utf8.data(), size / 2 * 2}, 2, true);
        const kit::Exact<char16_t> exact{std::u16string_view(text.units)};
        detail::PropertyListError error;
        value = detail::readOldStyle(exact.data(), exact.size(), error);
    }
    const NSObject plain = fuzzing::PlainOldStyleReader(text.units).read();
    fuzzing::require(fuzzing::isSame(value, plain, fuzzing::Kept::everything),
                     "the grammar, read plainly, gives the same value");
    if (value) {
        fuzzing::checkWriters(value);
    }
    return 0;
}
