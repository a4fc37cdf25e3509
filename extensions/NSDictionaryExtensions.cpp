// SPDX-License-Identifier: MIT
// NSDictionary(ZQFoundation): dictionaries from text, and typed lookups.
#include "extensions/Truth.h"
#include "foundation/objects/KeyTable.h"
#include "foundation/plist/PropertyList.h"

namespace ZQFoundation {

namespace {

/// Returns the stored value itself, without another reference: lookups of log calls do not need one.
const NSObject* valueUnder(const NSDictionary& dictionary, StringView key) {
    const NSDictionaryEntry* const entry = detail::Access::kind(dictionary) == detail::Kind::dictionary
                                               ? detail::findText(*detail::tableOf(dictionary), key)
                                               : nullptr;
    return entry != nullptr ? &entry->value : nullptr;
}

} // namespace

// The parser reports errors by a nil value, so nothing is raised here. Another kind of value becomes nil in
// the handle.
NSDictionary NSDictionary::dictionaryWithContentsOfString(StringView text) {
    return NSDictionary(detail::parsePropertyListText(text, nullptr));
}

bool NSDictionary::boolForKey(StringView key) const {
    const NSObject* const value = valueUnder(*this, key);
    return value != nullptr && detail::rootTruth(*value);
}

float NSDictionary::floatForKey(StringView key) const {
    const NSObject* const value = valueUnder(*this, key);
    return value != nullptr ? value->offeredFloatValue().value_or(0.0F) : 0.0F;
}

std::int64_t NSDictionary::integerForKey(StringView key) const {
    const NSObject* const value = valueUnder(*this, key);
    return value != nullptr ? value->offeredIntValue().value_or(0) : 0;
}

} // namespace ZQFoundation
