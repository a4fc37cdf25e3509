// SPDX-License-Identifier: MIT
// The reader of property lists in XML: bytes in any encoding.
#include "foundation/plist/TextDecoding.h"
#include "fuzz/PropertyLists.h"

using namespace ZQFoundation;

namespace {

/// The text that the decoder found, in both forms; nothing when it is none.
std::optional<fuzzing::BothForms> decoded(const uint8_t* data, size_t size) {
    detail::DecodedText text;
    detail::PropertyListError error;
    if (!detail::decodeText(data, size, text, error)) {
        fuzzing::require(error.message != nullptr, "failure has a reason");
        return std::nullopt;
    }
    fuzzing::BothForms forms;
    if (text.utf8 != nullptr) {
        forms.utf8.assign(text.utf8, text.count);
        const std::optional<std::u16string> units = models::wellFormedUtf16(forms.utf8);
        fuzzing::require(units.has_value(), "decoded bytes are well-formed");
        forms.units = *units;
    } else {
        forms.units.assign(text.units.get(), text.count);
        const std::optional<std::string> utf8 = models::wellFormedUtf8(forms.units);
        fuzzing::require(utf8.has_value(), "decoded units are well-formed");
        forms.utf8 = *utf8;
    }
    return forms;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::optional<fuzzing::BothForms> text = decoded(data, size);
    if (!text) {
        return 0;
    }
    const auto readForm = [](const auto* units, size_t count, detail::PropertyListError& error) {
        return detail::readXml(units, count, error);
    };
    if (const NSObject value = fuzzing::readBothForms(readForm, readForm, *text)) {
        fuzzing::checkWriters(value);
    }
    return 0;
}
