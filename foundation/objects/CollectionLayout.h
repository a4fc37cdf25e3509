// SPDX-License-Identifier: MIT
// Internal: not installed.
#ifndef ZQFOUNDATION_OBJECTS_COLLECTIONLAYOUT_H
#define ZQFOUNDATION_OBJECTS_COLLECTIONLAYOUT_H

#include <string_view>

#include "foundation/objects/CollectionWalk.h"

namespace ZQFoundation::detail {

/// What a form of text has around the parts of collections. Lines that begin there are indented.
///
///                  description     old-style list     JSON           condensed
///     (1, (2))     "(\n    1,..."  "(\n    1,..."     "[\n  1,..."   "( 1, ( 2 ) )"
struct CollectionLayout {
    struct Brackets {
        std::string_view open;
        std::string_view first; ///< before the first part
        std::string_view next;  ///< before each other element or key
        std::string_view last;  ///< after the last part
        std::string_view none;  ///< in place of parts
        std::string_view close;
    };
    /// What comes before a value, a key or a bracket: a text, then spaces.
    struct Lead {
        std::string_view text;
        std::size_t spaces;
    };

    Brackets array;
    Brackets dictionary;
    Brackets set;
    std::string_view assignment; ///< between a key and its value
    std::size_t indentation;     ///< spaces for each level

    /// What comes before the event's text.
    Lead leadOf(const CollectionWalk& walk) const noexcept;

    /// The text of an event that opens or closes a collection.
    std::string_view bracketOf(const CollectionWalk& walk) const noexcept;

private:
    const Brackets& bracketsOf(const NSObject& collection) const noexcept;
    std::string_view separatorOf(const CollectionWalk& walk) const noexcept;
};

} // namespace ZQFoundation::detail

#endif
