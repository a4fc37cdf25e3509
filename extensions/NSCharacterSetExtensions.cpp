// SPDX-License-Identifier: MIT
// NSCharacterSet(ZQFoundation): the shared sets.
#include "foundation/objects/CharacterSetPages.h"

namespace ZQFoundation {

using detail::SharedCharacterSet;

// Made without a lock on first use. Two threads that come first at once may each make a set; they are equal,
// and one of them is kept.
NSCharacterSet NSCharacterSet::emptyCharacterSet() {
    static constinit SharedCharacterSet slot{nullptr};
    return detail::sharedCharacterSet(slot, [] { return characterSetWithCharactersInString(""); });
}

NSCharacterSet NSCharacterSet::nullByteCharacterSet() {
    static constinit SharedCharacterSet slot{nullptr};
    return detail::sharedCharacterSet(slot, [] { return characterSetWithRange(NSMakeRange(0, 1)); });
}

NSCharacterSet NSCharacterSet::whitespaceAndControlCharacterSet() {
    static constinit SharedCharacterSet slot{nullptr};
    return detail::sharedCharacterSet(slot, [] {
        NSMutableCharacterSet both(whitespaceCharacterSet());
        both.formUnionWithCharacterSet(controlCharacterSet());
        return both.characterSet();
    });
}

} // namespace ZQFoundation
