// SPDX-License-Identifier: MIT
// URLs against a reader that splits a text at its marks and then looks at each piece, the steps of RFC 3986,
// section 5.2, done literally, and a construction from parts by hand.
//
// Input: a byte of switches (1 UTF-16 rather than UTF-8, the rest chooses the check), then texts with line
// feeds between them: a URL; a reference and its base; scheme, authority, path, query and fragment.
#include <arpa/inet.h>

#include <optional>
#include <string>

#include "foundation/objects/NSNumber.h"
#include "foundation/objects/NSString.h"
#include "foundation/objects/NSURL.h"
#include "fuzz/Fuzzing.h"
#include "fuzz/InputReader.h"

using namespace ZQFoundation;
using fuzzing::require;
using fuzzing::requireEqual;

namespace {

using Part = std::optional<std::string>;

struct Pieces {
    Part scheme;
    Part authority;
    std::string path;
    Part query;
    Part fragment;

    friend bool operator==(const Pieces&, const Pieces&) = default;
};

/// At the marks that have their meaning wherever they stand first.
Pieces slowPieces(std::string text) {
    Pieces pieces;
    if (const std::size_t mark = text.find('#'); mark != text.npos) {
        pieces.fragment = text.substr(mark + 1);
        text.resize(mark);
    }
    if (const std::size_t mark = text.find('?'); mark != text.npos) {
        pieces.query = text.substr(mark + 1);
        text.resize(mark);
    }
    if (const std::size_t mark = text.find(':'); mark != text.npos && mark < text.find('/')) {
        pieces.scheme = text.substr(0, mark);
        text.erase(0, mark + 1);
    }
    if (text.starts_with("//")) {
        const std::size_t end = std::min(text.find('/', 2), text.size());
        pieces.authority = text.substr(2, end - 2);
        text.erase(0, end);
    }
    pieces.path = text;
    return pieces;
}

bool isLetter(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); }
bool isDigit(char c) { return c >= '0' && c <= '9'; }
bool isHexDigit(char c) { return isDigit(c) || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F'); }
bool isNameCharacter(char c) {
    return isLetter(c) || isDigit(c) || (c != '\0' && std::string_view("-._~!$&'()*+,;=").find(c) < 15);
}

/// Names, escapes and the other characters.
bool consistsOf(std::string_view text, std::string_view others) {
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '%') {
            if (i + 2 >= text.size() || !isHexDigit(text[i + 1]) || !isHexDigit(text[i + 2])) {
                return false;
            }
            i += 2;
        } else if (!isNameCharacter(text[i]) && others.find(text[i]) == others.npos) {
            return false;
        }
    }
    return true;
}

bool isScheme(std::string_view text) {
    for (const char c : text) {
        if (!isLetter(c) && !isDigit(c) && c != '+' && c != '-' && c != '.') {
            return false;
        }
    }
    return !text.empty() && isLetter(text[0]);
}

/// What stands between the brackets.
bool isBracketedHost(std::string_view text) {
    if (text.starts_with('v') || text.starts_with('V')) {
        const std::size_t point = text.find('.');
        if (point == text.npos || point == 1 || point + 1 == text.size() || text.find('%') != text.npos) {
            return false;
        }
        const std::string_view number = text.substr(1, point - 1);
        return std::all_of(number.begin(), number.end(), isHexDigit) &&
               consistsOf(text.substr(point + 1), ":");
    }
    in6_addr address;
    const std::string terminated(text);
    return terminated.find('\0') == terminated.npos && inet_pton(AF_INET6, terminated.c_str(), &address) == 1;
}

struct Authority {
    Part user;
    Part password;
    std::string host;
    Part port;
};

std::optional<Authority> slowAuthority(std::string text) {
    Authority authority;
    if (const std::size_t mark = text.find('@'); mark != text.npos) {
        const std::string information = text.substr(0, mark);
        if (!consistsOf(information, ":")) {
            return std::nullopt;
        }
        const std::size_t colon = information.find(':');
        authority.user = information.substr(0, colon);
        if (colon != information.npos) {
            authority.password = information.substr(colon + 1);
        }
        text.erase(0, mark + 1);
    }
    const std::size_t bracket = text.starts_with('[') ? text.find(']') : 0;
    if (bracket == text.npos) {
        return std::nullopt;
    }
    if (const std::size_t mark = text.find(':', bracket); mark != text.npos) {
        authority.port = text.substr(mark + 1);
        text.resize(mark);
    }
    const bool isNumber =
        !authority.port || std::all_of(authority.port->begin(), authority.port->end(), isDigit);
    if (text.starts_with('[')) {
        authority.host = text.substr(1, bracket - 1);
        return isNumber && text.size() == bracket + 1 && isBracketedHost(authority.host)
                   ? std::optional(authority)
                   : std::nullopt;
    }
    authority.host = text;
    return isNumber && consistsOf(text, "") ? std::optional(authority) : std::nullopt;
}

bool isReference(const Pieces& pieces) {
    return (!pieces.scheme || isScheme(*pieces.scheme)) &&
           (!pieces.authority || slowAuthority(*pieces.authority)) && consistsOf(pieces.path, ":@/") &&
           consistsOf(pieces.query.value_or(""), ":@/?") && consistsOf(pieces.fragment.value_or(""), ":@/?");
}

std::string joined(const Pieces& pieces) {
    return (pieces.scheme ? *pieces.scheme + ':' : "") + (pieces.authority ? "//" + *pieces.authority : "") +
           pieces.path + (pieces.query ? '?' + *pieces.query : "") +
           (pieces.fragment ? '#' + *pieces.fragment : "");
}

/// Section 5.2.4, step by step, from an input buffer to an output buffer.
std::string slowlyWithoutDots(std::string input) {
    std::string output;
    const auto isAllOrStart = [&](std::string_view dots) {
        return input == dots || input.starts_with(std::string(dots).append(1, '/'));
    };
    while (!input.empty()) {
        if (input.starts_with("../")) {
            input.erase(0, 3);
        } else if (input.starts_with("./")) {
            input.erase(0, 2);
        } else if (isAllOrStart("/.")) {
            input.replace(0, std::min<std::size_t>(3, input.size()), "/");
        } else if (isAllOrStart("/..")) {
            input.replace(0, std::min<std::size_t>(4, input.size()), "/");
            output.resize(output.rfind('/') == output.npos ? 0 : output.rfind('/'));
        } else if (input == "." || input == "..") {
            input.clear();
        } else {
            const std::size_t end = std::min(input.find('/', 1), input.size());
            output += input.substr(0, end);
            input.erase(0, end);
        }
    }
    return output;
}

std::string merged(const Pieces& base, const std::string& path) {
    if (base.authority && base.path.empty()) {
        return '/' + path;
    }
    const std::size_t slash = base.path.rfind('/');
    return (slash == base.path.npos ? "" : base.path.substr(0, slash + 1)) + path;
}

/// Section 5.2.2; a dot is put in front of a path that would be read as something else.
std::string slowTarget(const Pieces& reference, const Pieces& base) {
    Pieces target = reference;
    if (!reference.scheme) {
        target.scheme = base.scheme;
        if (!reference.authority) {
            target.authority = base.authority;
            if (reference.path.empty()) {
                target.path = base.path;
                target.query = reference.query ? reference.query : base.query;
            } else {
                target.path = slowlyWithoutDots(reference.path[0] == '/' ? reference.path
                                                                         : merged(base, reference.path));
            }
        }
    }
    if (reference.scheme || reference.authority) {
        target.path = slowlyWithoutDots(reference.path);
    }
    if (slowPieces(joined(target)) != target) {
        target.path.insert(0, target.path.starts_with('/') ? "/." : "./");
    }
    return joined(target);
}

void requirePart(const NSString& found, const Part& expected, const char* what) {
    require(static_cast<bool>(found) == expected.has_value(), what);
    if (expected) {
        requireEqual(found.utf8(), *expected, what);
    }
}

void requirePort(const NSNumber& found, const Part& digits) {
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

void requireParts(const NSURL& url, const Pieces& pieces) {
    requirePart(url.scheme(), pieces.scheme, "scheme");
    requirePart(url.authority(), pieces.authority, "authority");
    requirePart(url.path(), pieces.path, "path");
    requirePart(url.query(), pieces.query, "query");
    requirePart(url.fragment(), pieces.fragment, "fragment");
    const std::optional<Authority> authority =
        pieces.authority ? slowAuthority(*pieces.authority) : std::nullopt;
    requirePart(url.host(), authority ? Part(authority->host) : Part(), "host");
    requirePart(url.user(), authority ? authority->user : Part(), "user");
    requirePart(url.password(), authority ? authority->password : Part(), "password");
    requirePort(url.port(), authority ? authority->port : Part());
}

/// A text as an input gives it and as the library is handed it.
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
    const Pieces pieces = slowPieces(text.bytes);
    const NSURL url = NSURL::URLWithString(text.view);
    require(static_cast<bool>(url) == isReference(pieces), "whether a text is a URL");
    if (url) {
        requireEqual(url.absoluteString().utf8(), text.bytes, "text of a URL");
        requireEqual(joined(pieces), text.bytes, "pieces do not make the whole");
        requireParts(url, pieces);
    }
}

void checkResolution(const Text& reference, const Text& base) {
    const NSURL baseUrl = NSURL::URLWithString(base.view);
    const NSURL url = NSURL::URLWithString_relativeToURL(reference.view, baseUrl);
    if (!baseUrl || !url) {
        return;
    }
    const Pieces pieces = slowPieces(reference.bytes);
    const bool isOnItsOwn = pieces.scheme.has_value(); // then the text stays as it is
    const std::string expected = isOnItsOwn ? reference.bytes : slowTarget(pieces, slowPieces(base.bytes));
    requireEqual(url.absoluteString().utf8(), expected, "resolved text");
    require(isReference(slowPieces(expected)), "a resolved text is no URL");
    requireParts(url, slowPieces(expected));
}

std::string slowlyEncoded(std::string_view text, std::string_view kept) {
    std::string encoded;
    for (const char c : text) {
        if (isLetter(c) || isDigit(c) || kept.find(c) != kept.npos) {
            encoded += c;
        } else {
            constexpr std::string_view digits = "0123456789ABCDEF";
            encoded += '%';
            encoded += digits[static_cast<unsigned char>(c) >> 4U];
            encoded += digits[static_cast<unsigned char>(c) & 15U];
        }
    }
    return encoded;
}

/// As the parts of a URL are put together; nothing when they do not fit.
std::optional<std::string> slowConstruction(const Text (&parts)[5], bool encodePath, bool encodeQuery) {
    const auto& [scheme, authority, path, query, fragment] = parts;
    const bool fits = authority.bytes.empty() ? !path.bytes.starts_with("//")
                                              : path.bytes.empty() || path.bytes.starts_with('/');
    if (scheme.bytes.empty() || !fits) {
        return std::nullopt;
    }
    Part text = scheme.bytes + ':';
    *text += authority.bytes.empty() ? "" : "//" + authority.bytes;
    *text += encodePath ? slowlyEncoded(path.bytes, "!$&'()*+,-./:=@_~") : path.bytes;
    if (!query.bytes.empty()) {
        *text += '?' + (encodeQuery ? slowlyEncoded(query.bytes, "!$&'()*+,-./:;=?@_~") : query.bytes);
    }
    *text += fragment.bytes.empty() ? "" : '#' + fragment.bytes;
    return isReference(slowPieces(*text)) ? text : std::nullopt;
}

void checkConstruction(const Text (&parts)[5], bool encodePath, bool encodeQuery) {
    const NSURL url = NSURL::URLWithScheme_authority_path_encodePath_query_encodeQuery_fragment(
        parts[0].view, parts[1].view, parts[2].view, encodePath, parts[3].view, encodeQuery, parts[4].view);
    require(!url || NSURL::URLWithString(url.absoluteString()), "a URL that was made is none");
    for (const Text& part : parts) {
        std::string exact; // an unpaired surrogate, which is not to be encoded, has become another character
        if (!NSString(part.view).getUTF8(exact)) {
            require(!url, "a URL out of a text that cannot be encoded");
            return;
        }
    }
    requirePart(url.absoluteString(), slowConstruction(parts, encodePath, encodeQuery), "constructed URL");
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
