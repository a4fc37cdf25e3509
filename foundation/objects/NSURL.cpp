// SPDX-License-Identifier: MIT
#include "foundation/objects/NSURL.h"

#include <new>

#include "foundation/objects/Bodies.h"
#include "foundation/text/UriReference.h"

namespace ZQFoundation {

using detail::Access;
using detail::UrlBody;

NSURL NSURL::URLWithString(StringView text) { return URLWithString_relativeToURL(text, nullptr); }

NSURL NSURL::URLWithString_relativeToURL(StringView text, const NSURL& base) {
    detail::UriReference reference;
    if (!detail::readUriReference(text, reference)) {
        return {};
    }
    NSString kept(text);
    auto* const body = new (::operator new(sizeof(UrlBody))) UrlBody;
    body->references = 1;
    body->text.swap(kept);
    if (!reference.scheme.isPresent) { // a text with a scheme of its own is relative to nothing
        body->base = base;
    }
    return Access::adoptURL(body);
}

NSString NSURL::relativeString() const {
    return kind_ == detail::Kind::url ? Access::url(*this)->text : NSString();
}

NSURL NSURL::baseURL() const { return kind_ == detail::Kind::url ? Access::url(*this)->base : NSURL(); }

} // namespace ZQFoundation
