// SPDX-License-Identifier: MIT
// The one-line descriptions of arrays and dictionaries.
#include "extensions/Condensed.h"

#include "foundation/objects/CollectionLayout.h"

namespace ZQFoundation::detail {

namespace {

constexpr CollectionLayout layout{
    .array = {"(", " ", ", ", " ", "  ", ")"},
    .dictionary = {"{", " ", "; ", "; ", " ", "}"},
    .set = {}, // sets have no form of their own
    .assignment = " = ",
    .indentation = 0,
};

void append(TextBuilder& out, std::string_view text) { out.appendAscii(text.data(), text.size()); }

} // namespace

bool isCondensable(const NSObject& object) noexcept {
    return Access::kind(object) == Kind::array || Access::kind(object) == Kind::dictionary;
}

void appendCondensed(TextBuilder& out, const NSObject& collection) {
    using Walk = CollectionWalk;
    for (Walk walk(collection, &NSString::caseInsensitiveCompare, Walk::Sets::leaves); walk.next();) {
        append(out, layout.leadOf(walk).text);
        if (walk.event() == Walk::Event::leaf) {
            out.appendObjectText(walk.value().condensedDescription());
        } else {
            append(out, layout.bracketOf(walk));
        }
    }
}

} // namespace ZQFoundation::detail

namespace ZQFoundation {

// Declared for each type, so that a reader of its header finds it; the rule is the same for all values.
NSString NSArray::condensedDescription() const { return NSObject::condensedDescription(); }

NSString NSDictionary::condensedDescription() const { return NSObject::condensedDescription(); }

} // namespace ZQFoundation
