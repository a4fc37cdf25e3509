// SPDX-License-Identifier: MIT
// URLs, references against a base and URLs made from parts, against the model of RFC 3986.
//
// Input: a byte of switches (1 UTF-16 rather than UTF-8, the rest chooses the check), then texts with line
// feeds between them: a URL; a reference and its base; scheme, authority, path, query and fragment.
#include <string>

#include "foundation/objects/NSNumber.h"
#include "foundation/objects/NSString.h"
#include "foundation/objects/NSURL.h"
#include "fuzz/Fuzzing.h"
#include "fuzz/InputReader.h"
#include "tests/models/UriReference.h"

using namespace ZQFoundation;
using fuzzing::require;
using fuzzing::requireEqual;

namespace {

void requirePart(const NSString& found, const models::Piece& expected, const char* what) {
    require(static_cast<bool>(found) == expected.has_value(), what);
    if (expected) {
        requireEqual(found.utf8(), *expected, what);
    }
}

void requirePort(const NSNumber& found, const models::Piece& digits) {
    constexpr std::string_view greatest = "9223372036854775807";
    std::string number = digits.value_or("");
    const bool isThere = !number.empty();
    number.erase(0, number.find_first_not_of('0'));
    const bool fits =
        number.size() < greatest.size() || (number.size() == greatest.size() && number <= greatest);
    require(static_cast<bool>(found) == (isThere && fits), "whether there is a port");
    if (found) {
        requireEqual(found.stringValue().utf8(), number.empty() ? "0" : number, "port");
    }
}

void requireParts(const NSURL& url, const models::Reference& pieces) {
    requirePart(url.scheme(), pieces.scheme, "scheme");
    requirePart(url.authority(), pieces.authority, "authority");
    requirePart(url.path(), pieces.path, "path");
    requirePart(url.query(), pieces.query, "query");
    requirePart(url.fragment(), pieces.fragment, "fragment");
    models::Piece user;
    models::Piece password;
    models::Piece host;
    models::Piece port;
    if (pieces.authority) {
        const models::Authority authority = models::authorityApart(*pieces.authority);
        user = authority.userInformation;
        password = user ? models::cutAt(*user, ':') : user;
        const bool hasBrackets = authority.host.starts_with('[');
        host = hasBrackets ? authority.host.substr(1, authority.host.size() - 2) : authority.host;
        port = authority.port;
    }
    requirePart(url.host(), host, "host");
    requirePart(url.user(), user, "user");
    requirePart(url.password(), password, "password");
    requirePort(url.port(), port);
}

/// A text as it is in an input and as it is passed to the library.
struct Text {
    std::string given;
    std::u16string units;
    StringView view;
    std::string bytes; ///< well-formed, as the library is to read it

    Text(std::string_view input, bool asUnits)
        : given(input), units(fuzzing::unitsFromBytes(input)),
          view(asUnits ? StringView(units) : StringView(given)), bytes(NSString(view).utf8()) {}
    Text(const Text&) = delete;
    Text& operator=(const Text&) = delete;
};

void checkParts(const Text& text) {
    const models::Reference pieces = models::apart(text.bytes);
    const NSURL url = NSURL::URLWithString(text.view);
    require(static_cast<bool>(url) == models::isReference(text.bytes), "whether a text is a URL");
    if (url) {
        requireEqual(url.absoluteString().utf8(), text.bytes, "text of a URL");
        requireEqual(models::together(pieces), text.bytes, "pieces do not make the whole");
        requireParts(url, pieces);
    }
}

void checkResolution(const Text& reference, const Text& base) {
    const NSURL baseUrl = NSURL::URLWithString(base.view);
    const NSURL url = NSURL::URLWithString_relativeToURL(reference.view, baseUrl);
    if (!baseUrl || !url) {
        return;
    }
    const models::Reference pieces = models::apart(reference.bytes);
    const bool isOnItsOwn = pieces.scheme.has_value(); // then the text stays as it is
    const std::string expected =
        isOnItsOwn ? reference.bytes : models::resolvedText(reference.bytes, base.bytes);
    requireEqual(url.absoluteString().utf8(), expected, "resolved text");
    require(models::isReference(expected), "a resolved text is no URL");
    requireParts(url, models::apart(expected));
}

void checkConstruction(const Text (&parts)[5], bool encodePath, bool encodeQuery) {
    const NSURL url = NSURL::URLWithScheme_authority_path_encodePath_query_encodeQuery_fragment(
        parts[0].view, parts[1].view, parts[2].view, encodePath, parts[3].view, encodeQuery, parts[4].view);
    require(!url || NSURL::URLWithString(url.absoluteString()), "a URL that was made is none");
    for (const Text& part : parts) {
        std::string exact; // an unpaired surrogate, which cannot be encoded, has become another character
        if (!NSString(part.view).getUTF8(exact)) {
            require(!url, "a URL out of a text that cannot be encoded");
            return;
        }
    }
    const models::UrlParts given{parts[0].bytes, parts[1].bytes, parts[2].bytes, parts[3].bytes,
                                 parts[4].bytes};
    requirePart(url.absoluteString(), models::constructed(given, encodePath, encodeQuery), "constructed URL");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    fuzzing::InputReader input(data, size);
    const unsigned switches = input.byte();
    const bool asUnits = (switches & 1U) != 0;
    switch (switches >> 1U & 3U) {
    case 0:
        checkParts(Text(input.rest(), asUnits));
        break;
    case 1: {
        const Text reference(input.piece('\n'), asUnits);
        checkResolution(reference, Text(input.rest(), asUnits));
        break;
    }
    default: {
        const Text parts[5] = {{input.piece('\n'), asUnits},
                               {input.piece('\n'), asUnits},
                               {input.piece('\n'), asUnits},
                               {input.piece('\n'), asUnits},
                               {input.rest(), asUnits}};
        checkConstruction(parts, (switches & 2U) != 0, (switches & 8U) != 0);
    }
    }
    return 0;
}
