// SPDX-License-Identifier: MIT
// Makes numbered names for items whose name is taken.
#include "migration/FreeName.h"

#include "foundation/objects/ComposedSequences.h"

namespace ZQFoundation::detail {

namespace {

/// The maximum on common file systems; some allow less.
constexpr std::size_t maxNameBytes = 255;

std::size_t bytesOf(const NSString& name) {
    std::string bytes;
    return name.getFileSystemBytes(bytes) ? bytes.size() : 0;
}

} // namespace

// A name is shortened at composed characters, so that no accent is separated from its letter. The counter and
// the extension are never cut: without the counter the name would be taken, without the extension the file
// would have another type.
NSString numberedName(const NSString& stem, std::int64_t counter, const NSString& extension) {
    NSString front = stem;
    NSString name = numberedPath(front, " ", counter, extension);
    while (bytesOf(name) > maxNameBytes) {
        if (front.length() == 0) {
            return nullptr;
        }
        const AsciiOrUtf16 units(front);
        front = front.substringToIndex(sequenceStart(UnitView(units), front.length() - 1));
        name = numberedPath(front, " ", counter, extension);
    }
    return front.length() == 0 && stem.length() != 0 ? NSString() : name;
}

} // namespace ZQFoundation::detail
