// SPDX-License-Identifier: MIT
// Reads URLs, their parts, and resolves them against a base.
// A URL keeps its text exactly as given. Parts are read from the resolved text each time they are requested.
#include "foundation/objects/NSURL.h"

#include <charconv>
#include <new>
#include <string>
#include <vector>

#include "foundation/objects/Bodies.h"
#include "foundation/objects/StringBodies.h"
#include "foundation/text/UriReference.h"
#include "foundation/text/UriResolution.h"

namespace ZQFoundation {

using detail::Access;
using detail::UriPart;
using detail::UriReference;
using detail::UrlBody;

namespace {

/// The text of a URL is ASCII, so its string holds it as bytes.
std::string_view bytesOf(const NSString& text) noexcept {
    const StringView view(text);
    return {view.bytes(), view.size()};
}

NSString stringOf(std::string_view bytes) { return detail::makeAsciiString(bytes.data(), bytes.size()); }

/// The resolved text of a URL and its pieces; all are absent for nil.
struct ResolvedUrl {
    NSString text;
    UriReference reference;

    explicit ResolvedUrl(const NSURL& url) : text(url.absoluteString()) {
        detail::readUriReference(text, reference);
    }

    std::string_view bytesIn(const UriPart& part) const noexcept {
        return bytesOf(text).substr(part.start, part.end - part.start);
    }

    NSString operator[](const UriPart& part) const {
        return part.isPresent ? stringOf(bytesIn(part)) : NSString();
    }
};

// Without a colon, all of the user information is the name.
UriPart userIn(const ResolvedUrl& url) noexcept {
    UriPart part = url.reference.userInformation;
    const std::size_t colon = url.bytesIn(part).find(':');
    if (colon != std::string_view::npos) {
        part.end = part.start + colon;
    }
    return part;
}

UriPart passwordIn(const ResolvedUrl& url) noexcept {
    UriPart part = url.reference.userInformation;
    const std::size_t colon = url.bytesIn(part).find(':');
    // Present only after a colon; "user:@host" has an empty one.
    part.isPresent = part.isPresent && colon != std::string_view::npos;
    part.start = part.isPresent ? part.start + colon + 1 : part.end;
    return part;
}

UriPart hostIn(const ResolvedUrl& url) noexcept {
    UriPart part = url.reference.host;
    // Brackets are the URL's notation for an address, not part of it.
    if (part.start != part.end && url.bytesIn(part).front() == '[') {
        ++part.start;
        --part.end;
    }
    return part;
}

} // namespace

// Nothing is repaired or escaped: what is not a URI reference gives nil, so that a mistake shows early.
NSURL NSURL::URLWithString(StringView text) { return URLWithString_relativeToURL(text, nullptr); }

NSURL NSURL::URLWithString_relativeToURL(StringView text, const NSURL& base) {
    UriReference reference;
    if (!detail::readUriReference(text, reference)) {
        return {};
    }
    // Before the body is made, since it may throw.
    NSString kept(text);
    auto* const body = new (::operator new(sizeof(UrlBody))) UrlBody;
    body->references = 1;
    body->text.swap(kept);
    if (!reference.scheme.isPresent) { // a text with its own scheme is absolute
        body->base = base;
    }
    return Access::adoptURL(body);
}

NSString NSURL::relativeString() const {
    return kind_ == detail::Kind::url ? Access::url(*this)->text : NSString();
}

NSURL NSURL::baseURL() const { return kind_ == detail::Kind::url ? Access::url(*this)->base : NSURL(); }

NSString NSURL::absoluteString() const {
    if (kind_ != detail::Kind::url) {
        return {};
    }
    // A base may be relative to another one, and so on: they are visited one by one, without recursion.
    std::vector<const UrlBody*> relatives;
    const UrlBody* body = Access::url(*this);
    for (; body->base; body = Access::url(body->base)) {
        relatives.push_back(body);
    }
    if (relatives.empty()) {
        return body->text;
    }
    std::string text(bytesOf(body->text));
    for (; !relatives.empty(); relatives.pop_back()) {
        text = detail::resolvedUriReference(bytesOf(relatives.back()->text), text);
    }
    return stringOf(text);
}

// A URL without a base is absolute already, and shared.
NSURL NSURL::absoluteURL() const { return baseURL() ? URLWithString(absoluteString()) : *this; }

NSString NSURL::scheme() const {
    const ResolvedUrl url(*this);
    return url[url.reference.scheme];
}

NSString NSURL::authority() const {
    const ResolvedUrl url(*this);
    return url[url.reference.authority()];
}

NSString NSURL::user() const {
    const ResolvedUrl url(*this);
    return url[userIn(url)];
}

NSString NSURL::password() const {
    const ResolvedUrl url(*this);
    return url[passwordIn(url)];
}

NSString NSURL::host() const {
    const ResolvedUrl url(*this);
    return url[hostIn(url)];
}

// Nil without digits and for a number beyond 64 bits. Whether a port can be used is not decided here.
NSNumber NSURL::port() const {
    const ResolvedUrl url(*this);
    const std::string_view digits = url.bytesIn(url.reference.port);
    std::int64_t number = 0;
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), number);
    return error == std::errc() ? NSNumber(number) : NSNumber();
}

NSString NSURL::path() const {
    const ResolvedUrl url(*this);
    return url[url.reference.path];
}

NSString NSURL::query() const {
    const ResolvedUrl url(*this);
    return url[url.reference.query];
}

NSString NSURL::fragment() const {
    const ResolvedUrl url(*this);
    return url[url.reference.fragment];
}

} // namespace ZQFoundation
