// SPDX-License-Identifier: MIT
#ifndef ZQFOUNDATION_OBJECTS_NSURL_H
#define ZQFOUNDATION_OBJECTS_NSURL_H

#include "NSObject.h"

namespace ZQFoundation {

/// A URI reference, kept exactly as it was given.
class ZQFOUNDATION_EXPORT NSURL : public NSObject {
public:
    constexpr NSURL() noexcept = default;
    constexpr NSURL(std::nullptr_t) noexcept {}

    /// The value when it is a URL, else nil.
    explicit NSURL(const NSObject& object) noexcept : NSObject(object, detail::Kind::url) {}

    /// Nil unless the text is a URI reference by the grammar of RFC 3986; nothing is escaped or repaired.
    static NSURL URLWithString(StringView text);

    /// The same, relative to a base, which may be nil.
    static NSURL URLWithString_relativeToURL(StringView text, const NSURL& base);

    /// The text as given, without the base.
    NSString relativeString() const;

    NSURL baseURL() const;

private:
    friend struct detail::Access;
    explicit NSURL(Payload payload) noexcept : NSObject(payload, detail::Kind::url) {}
};

} // namespace ZQFoundation

#endif
