// SPDX-License-Identifier: MIT
// URI references taken apart, judged, resolved and put together from parts, rule by rule, one character at a
// time.
#ifndef ZQFOUNDATION_TESTS_MODELS_URIREFERENCE_H
#define ZQFOUNDATION_TESTS_MODELS_URIREFERENCE_H

#include <optional>
#include <string>
#include <vector>

#include "tests/models/PercentEscapes.h"

namespace ZQFoundation::models {

using Piece = std::optional<std::string>;

struct Reference {
    Piece scheme;
    Piece authority;
    std::string path;
    Piece query;
    Piece fragment;

    friend bool operator==(const Reference&, const Reference&) = default;
};

inline bool isOneOf(char character, const std::string& characters) {
    return characters.find(character) != std::string::npos;
}

inline const std::string digits = "0123456789";
inline const std::string hexadecimals = digits + "ABCDEFabcdef";
inline const std::string letters = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz";
inline const std::string unreserved = letters + digits + "-._~";
inline const std::string delimiters = "!$&'()*+,;=";

inline bool consistsOf(const std::string& text, const std::string& characters) {
    return text.find_first_not_of(characters) == std::string::npos;
}

/// Whether the text has only these characters, and escapes.
inline bool isEscaped(const std::string& text, const std::string& characters) {
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '%') {
            if (i + 2 >= text.size() || !isOneOf(text[i + 1], hexadecimals) ||
                !isOneOf(text[i + 2], hexadecimals)) {
                return false;
            }
            i += 2;
        } else if (!isOneOf(text[i], characters)) {
            return false;
        }
    }
    return true;
}

/// Cuts off what follows the mark, if there is one.
inline Piece cutAt(std::string& text, char mark) {
    const std::size_t place = text.find(mark);
    if (place == std::string::npos) {
        return {};
    }
    const std::string rest = text.substr(place + 1);
    text.erase(place);
    return rest;
}

inline std::vector<std::string> split(std::string text, char mark) {
    std::vector<std::string> pieces;
    Piece rest;
    while ((rest = cutAt(text, mark))) {
        pieces.push_back(text);
        text = *rest;
    }
    pieces.push_back(text);
    return pieces;
}

inline Reference apart(std::string text) {
    Reference reference;
    reference.fragment = cutAt(text, '#');
    reference.query = cutAt(text, '?');
    const std::size_t end = text.find_first_of(":/");
    if (end != std::string::npos && text[end] == ':') {
        reference.scheme = text.substr(0, end);
        text.erase(0, end + 1);
    }
    if (text.rfind("//", 0) == 0) {
        const std::size_t slash = text.find('/', 2);
        reference.authority = text.substr(2, slash == std::string::npos ? slash : slash - 2);
        text.erase(0, 2 + reference.authority->size());
    }
    reference.path = text;
    return reference;
}

inline bool isDottedAddress(const std::string& text) {
    const std::vector<std::string> numbers = split(text, '.');
    for (const std::string& number : numbers) {
        if (number.empty() || number.size() > 3 || !consistsOf(number, digits) || std::stoi(number) > 255 ||
            std::to_string(std::stoi(number)) != number) {
            return false;
        }
    }
    return numbers.size() == 4;
}

/// The number of 16-bit groups in the text, or -1.
inline int groupsIn(const std::string& text, bool isLast) {
    if (text.empty()) {
        return 0;
    }
    const std::vector<std::string> groups = split(text, ':');
    int count = 0;
    for (std::size_t i = 0; i < groups.size(); ++i) {
        if (isLast && i + 1 == groups.size() && isDottedAddress(groups[i])) {
            count += 2;
        } else if (groups[i].empty() || groups[i].size() > 4 || !consistsOf(groups[i], hexadecimals)) {
            return -1;
        } else {
            ++count;
        }
    }
    return count;
}

inline bool isSixthVersionAddress(const std::string& text) {
    const std::size_t gap = text.find("::");
    if (gap == std::string::npos) {
        return groupsIn(text, true) == 8;
    }
    const int before = groupsIn(text.substr(0, gap), false);
    const int after = groupsIn(text.substr(gap + 2), true);
    return before >= 0 && after >= 0 && before + after <= 7;
}

inline bool isLaterVersionAddress(const std::string& text) {
    const std::size_t dot = text.find('.');
    return (text[0] == 'v' || text[0] == 'V') && dot != std::string::npos && dot > 1 &&
           consistsOf(text.substr(1, dot - 1), hexadecimals) && dot + 1 < text.size() &&
           consistsOf(text.substr(dot + 1), unreserved + delimiters + ":");
}

/// The pieces of an authority.
struct Authority {
    Piece userInformation;
    std::string host;
    Piece port;
};

inline Authority authorityApart(std::string text) {
    Authority authority;
    const std::size_t sign = text.find('@');
    if (sign != std::string::npos) {
        authority.userInformation = text.substr(0, sign);
        text.erase(0, sign + 1);
    }
    const std::size_t bracket = text.rfind(']');
    const std::size_t colon = text.find(':', bracket == std::string::npos ? 0 : bracket);
    if (colon != std::string::npos) {
        authority.port = text.substr(colon + 1);
        text.erase(colon);
    }
    authority.host = text;
    return authority;
}

inline bool isAuthority(const std::string& text) {
    const Authority authority = authorityApart(text);
    if (authority.userInformation && !isEscaped(*authority.userInformation, unreserved + delimiters + ":")) {
        return false;
    }
    if (authority.port && !consistsOf(*authority.port, digits)) {
        return false;
    }
    const std::string& host = authority.host;
    if (host.size() > 2 && host.front() == '[' && host.back() == ']') {
        const std::string inner = host.substr(1, host.size() - 2);
        return isSixthVersionAddress(inner) || isLaterVersionAddress(inner);
    }
    return isEscaped(host, unreserved + delimiters);
}

inline bool isReference(const std::string& text) {
    const Reference reference = apart(text);
    const std::string inPaths = unreserved + delimiters + ":@";
    if (reference.scheme && (reference.scheme->empty() || !isOneOf(reference.scheme->front(), letters) ||
                             !consistsOf(*reference.scheme, letters + digits + "+-."))) {
        return false;
    }
    return (!reference.authority || isAuthority(*reference.authority)) &&
           isEscaped(reference.path, inPaths + "/") &&
           isEscaped(reference.query.value_or(""), inPaths + "/?") &&
           isEscaped(reference.fragment.value_or(""), inPaths + "/?");
}

inline bool takePrefix(std::string& text, const std::string& prefix, const std::string& replacement) {
    if (text.rfind(prefix, 0) != 0) {
        return false;
    }
    text.replace(0, prefix.size(), replacement);
    return true;
}

inline std::string withoutDots(std::string input) {
    std::string output;
    while (!input.empty()) {
        if (takePrefix(input, "../", "") || takePrefix(input, "./", "") || takePrefix(input, "/./", "/")) {
            continue;
        }
        if (input == "/.") {
            input = "/";
        } else if (input == "/.." || input.rfind("/../", 0) == 0) {
            input.replace(0, input == "/.." ? 3 : 4, "/");
            const std::size_t slash = output.rfind('/');
            output.erase(slash == std::string::npos ? 0 : slash);
        } else if (input == "." || input == "..") {
            input.clear();
        } else {
            const std::size_t next = input.find('/', 1);
            output += input.substr(0, next);
            input.erase(0, next);
        }
    }
    return output;
}

inline std::string together(const Reference& reference) {
    return (reference.scheme ? *reference.scheme + ":" : "") +
           (reference.authority ? "//" + *reference.authority : "") + reference.path +
           (reference.query ? "?" + *reference.query : "") +
           (reference.fragment ? "#" + *reference.fragment : "");
}

inline std::string merged(const Reference& base, const std::string& path) {
    if (base.authority && base.path.empty()) {
        return "/" + path;
    }
    const std::size_t slash = base.path.rfind('/');
    return (slash == std::string::npos ? "" : base.path.substr(0, slash + 1)) + path;
}

/// The target of a reference against a base with a scheme: RFC 3986, section 5.2.2.
inline Reference resolved(const Reference& reference, const Reference& base) {
    Reference target = reference;
    target.path = withoutDots(reference.path);
    if (reference.scheme) {
        return target;
    }
    target.scheme = base.scheme;
    if (reference.authority) {
        return target;
    }
    target.authority = base.authority;
    if (reference.path.empty()) {
        target.path = base.path;
        target.query = reference.query ? reference.query : base.query;
    } else if (reference.path.front() != '/') {
        target.path = withoutDots(merged(base, reference.path));
    }
    return target;
}

/// The same as a text; a dot is put before a path that would be read as something else.
inline std::string resolvedText(const std::string& reference, const std::string& base) {
    Reference target = resolved(apart(reference), apart(base));
    if (apart(together(target)) != target) {
        target.path.insert(0, target.path.rfind('/', 0) == 0 ? "/." : "./");
    }
    return together(target);
}

/// The parts from which a URL is made; empty ones are left out.
struct UrlParts {
    std::string scheme;
    std::string authority;
    std::string path;
    std::string query;
    std::string fragment;
};

/// Nothing when the parts do not fit.
inline Piece constructed(UrlParts parts, bool encodePath, bool encodeQuery) {
    const bool fits = parts.authority.empty() ? parts.path.rfind("//", 0) != 0
                                              : parts.path.empty() || parts.path.front() == '/';
    if (parts.scheme.empty() || !fits) {
        return {};
    }
    const std::string kept = letters + digits + "!$&'()*+,-./:=@_~";
    const std::string path = encodePath ? percentEncoded(parts.path, kept) : parts.path;
    const std::string query = encodeQuery ? percentEncoded(parts.query, kept + ";?") : parts.query;
    const std::string text = parts.scheme + ":" + (parts.authority.empty() ? "" : "//" + parts.authority) +
                             path + (query.empty() ? "" : "?" + query) +
                             (parts.fragment.empty() ? "" : "#" + parts.fragment);
    return isReference(text) ? Piece(text) : Piece();
}

/// The examples of RFC 3986, section 5.4: a reference, and its target with this base.
inline constexpr const char* exampleBase = "http://a/b/c/d;p?q";
inline constexpr const char* normalReferences[][2] = {
    {"g:h", "g:h"},
    {"g", "http://a/b/c/g"},
    {"./g", "http://a/b/c/g"},
    {"g/", "http://a/b/c/g/"},
    {"/g", "http://a/g"},
    {"//g", "http://g"},
    {"?y", "http://a/b/c/d;p?y"},
    {"g?y", "http://a/b/c/g?y"},
    {"#s", "http://a/b/c/d;p?q#s"},
    {"g#s", "http://a/b/c/g#s"},
    {"g?y#s", "http://a/b/c/g?y#s"},
    {";x", "http://a/b/c/;x"},
    {"g;x", "http://a/b/c/g;x"},
    {"g;x?y#s", "http://a/b/c/g;x?y#s"},
    {"", "http://a/b/c/d;p?q"},
    {".", "http://a/b/c/"},
    {"./", "http://a/b/c/"},
    {"..", "http://a/b/"},
    {"../", "http://a/b/"},
    {"../g", "http://a/b/g"},
    {"../..", "http://a/"},
    {"../../", "http://a/"},
    {"../../g", "http://a/g"},
};
inline constexpr const char* abnormalReferences[][2] = {
    {"../../../g", "http://a/g"},
    {"../../../../g", "http://a/g"},
    {"/./g", "http://a/g"},
    {"/../g", "http://a/g"},
    {"g.", "http://a/b/c/g."},
    {".g", "http://a/b/c/.g"},
    {"g..", "http://a/b/c/g.."},
    {"..g", "http://a/b/c/..g"},
    {"./../g", "http://a/b/g"},
    {"./g/.", "http://a/b/c/g/"},
    {"g/./h", "http://a/b/c/g/h"},
    {"g/../h", "http://a/b/c/h"},
    {"g;x=1/./y", "http://a/b/c/g;x=1/y"},
    {"g;x=1/../y", "http://a/b/c/y"},
    {"g?y/./x", "http://a/b/c/g?y/./x"},
    {"g?y/../x", "http://a/b/c/g?y/../x"},
    {"g#s/./x", "http://a/b/c/g#s/./x"},
    {"g#s/../x", "http://a/b/c/g#s/../x"},
    {"http:g", "http:g"}, // strict: the scheme of the base is treated like any other
};

} // namespace ZQFoundation::models

#endif
