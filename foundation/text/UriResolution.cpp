// SPDX-License-Identifier: MIT
// Resolves a URI reference against a base, by RFC 3986.
// The steps and their order are those of the RFC, so that each line can be compared with it. Texts are ASCII
// here, as references are.
#include "foundation/text/UriResolution.h"

#include <algorithm>

#include "foundation/text/UriReference.h"

namespace ZQFoundation::detail {

namespace {

/// The pieces of a target, each a view of the text that it comes from.
struct Pieces {
    struct Piece {
        std::string_view text;
        bool isPresent = false;
    };

    Piece scheme;
    Piece authority;
    std::string_view path;
    Piece query;
    Piece fragment;

    // The caller guarantees that the text is a reference, so the result of reading is not checked.
    explicit Pieces(std::string_view text) noexcept {
        UriReference reference;
        readUriReference(text, reference);
        const auto piece = [&](const UriPart& part) {
            return Piece{text.substr(part.start, part.end - part.start), part.isPresent};
        };
        scheme = piece(reference.scheme);
        authority = piece(reference.authority());
        path = piece(reference.path).text;
        query = piece(reference.query);
        fragment = piece(reference.fragment);
    }
};

bool startsWith(std::string_view text, std::string_view prefix) noexcept {
    return text.substr(0, prefix.size()) == prefix;
}

/// The base's path up to its last slash, followed by the reference's path. A base with an authority but no
/// path counts as having the root.
std::string mergedPath(const Pieces& base, std::string_view path) {
    std::string merged;
    if (base.authority.isPresent && base.path.empty()) {
        merged = "/";
    } else {
        merged = base.path.substr(0, base.path.rfind('/') + 1);
    }
    merged.append(path);
    return merged;
}

/// A dot that keeps the path from being read as an authority or a scheme.
/// Such paths arise when dot segments are removed: "x:/a" with "..//b" has the path "//b".
std::string_view guardOf(const Pieces& target, std::string_view path) noexcept {
    if (target.authority.isPresent) {
        return {};
    }
    if (startsWith(path, "//")) {
        return "/.";
    }
    const std::size_t mark = path.find_first_of(":/");
    return !target.scheme.isPresent && mark != path.npos && path[mark] == ':' ? "./" : "";
}

// A mark belongs to its piece: a piece that is absent has none, and one that is present but empty keeps it.
void appendPiece(std::string& text, std::string_view before, const Pieces::Piece& piece,
                 std::string_view after) {
    if (piece.isPresent) {
        text.append(before);
        text.append(piece.text);
        text.append(after);
    }
}

std::string recomposed(const Pieces& target, std::string_view path) {
    std::string text;
    appendPiece(text, "", target.scheme, ":");
    appendPiece(text, "//", target.authority, "");
    text.append(guardOf(target, path));
    text.append(path);
    appendPiece(text, "?", target.query, "");
    appendPiece(text, "#", target.fragment, "");
    return text;
}

} // namespace

std::string withoutDotSegments(std::string_view path) {
    // A relative path has nothing that such segments could refer to.
    while (startsWith(path, "../") || startsWith(path, "./")) {
        path.remove_prefix(path[1] == '.' ? 3 : 2);
    }
    std::string kept;
    if (path == "." || path == "..") {
        return kept;
    }
    while (!path.empty()) {
        // A segment includes the slash before it, so that the last one needs no special case.
        const std::size_t length = std::min(path.find('/', 1), path.size());
        const std::string_view segment = path.substr(0, length);
        path.remove_prefix(length);
        if (segment == "/..") {
            // Above the root there is nothing, so ".." stays there.
            const std::size_t slash = kept.rfind('/');
            kept.resize(slash == kept.npos ? 0 : slash);
        } else if (segment != "/.") {
            kept.append(segment);
            continue;
        }
        if (path.empty()) {
            kept.push_back('/'); // what ended in a dot segment names a folder
        }
    }
    return kept;
}

std::string resolvedUriReference(std::string_view reference, std::string_view base) {
    Pieces target(reference);
    // Strict: the scheme is never ignored, not even when it equals the base's.
    if (target.scheme.isPresent) {
        return recomposed(target, withoutDotSegments(target.path));
    }
    const Pieces from(base);
    target.scheme = from.scheme;
    if (target.authority.isPresent) {
        return recomposed(target, withoutDotSegments(target.path));
    }
    target.authority = from.authority;
    if (target.path.empty()) {
        // An empty reference means the base without its fragment; "?" alone replaces the query.
        if (!target.query.isPresent) {
            target.query = from.query;
        }
        return recomposed(target, from.path);
    }
    const bool isFromRoot = target.path[0] == '/';
    return recomposed(
        target, withoutDotSegments(isFromRoot ? std::string(target.path) : mergedPath(from, target.path)));
}

} // namespace ZQFoundation::detail
