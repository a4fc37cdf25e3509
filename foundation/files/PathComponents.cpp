// SPDX-License-Identifier: MIT
// Operations on paths as texts: nothing here accesses a file system.
// Paths are sequences of any units; only "/" and "." have a meaning, so nothing is decoded.
#include <string>
#include <string_view>

#include "foundation/objects/AsciiOrUtf16.h"
#include "foundation/objects/NSArray.h"
#include "foundation/objects/TextBuilder.h"

namespace ZQFoundation {

using detail::AsciiOrUtf16;
using detail::TextBuilder;

namespace {

/// Where the last component of a path is, ignoring slashes after it. Empty for slashes alone.
struct LastComponent {
    std::size_t start;
    std::size_t end;
};

LastComponent lastComponentOf(const AsciiOrUtf16& path) noexcept {
    std::size_t end = path.length();
    while (end > 0 && path[end - 1] == '/') {
        --end;
    }
    std::size_t start = end;
    while (start > 0 && path[start - 1] != '/') {
        --start;
    }
    return {start, end};
}

/// The "." before the extension, or the component's end when it has none. Dots that a name begins with start
/// no extension: without them "..zip" would become the name of a folder.
std::size_t extensionDot(const AsciiOrUtf16& path, const LastComponent& last) noexcept {
    std::size_t first = last.start;
    // A leading dot hides a file; it is not the dot of an extension.
    while (first < last.end && path[first] == '.') {
        ++first;
    }
    for (std::size_t index = last.end; index > first; --index) {
        if (path[index - 1] == '.') {
            return index - 1;
        }
    }
    return last.end;
}

/// Appends the piece to the builder's text, each run of slashes as one.
/// `afterSlash` connects pieces: a slash that ends one and a slash that begins the next are one.
template <class Unit>
void appendSqueezed(const Unit* units, std::size_t count, bool& afterSlash, TextBuilder& out) {
    std::size_t start = 0;
    while (start < count) {
        if (units[start] == '/') {
            if (!afterSlash) {
                out.appendAscii('/');
            }
            afterSlash = true;
            ++start;
            continue;
        }
        const std::basic_string_view<Unit> rest(units + start, count - start);
        const std::size_t slash = rest.find(static_cast<Unit>('/'));
        const std::size_t length = slash == rest.npos ? rest.size() : slash;
        if constexpr (sizeof(Unit) == 1) {
            out.appendAscii(units + start, length);
        } else {
            out.appendUnits(units + start, length);
        }
        afterSlash = false;
        start += length;
    }
}

/// Builds a squeezed path from pieces, any of which may hold slashes.
class SqueezedPath {
public:
    void append(const AsciiOrUtf16& text, std::size_t count) {
        if (text.isAscii()) {
            appendSqueezed(text.ascii(), count, afterSlash_, builder_);
        } else {
            appendSqueezed(text.units(), count, afterSlash_, builder_);
        }
    }
    void append(const AsciiOrUtf16& text) { append(text, text.length()); }

    /// Appends a separate component, unless it is empty.
    /// Joined by exactly one slash, whatever the pieces begin or end with.
    void appendComponent(const AsciiOrUtf16& component) {
        if (component.length() == 0) {
            return;
        }
        if (builder_.length() != 0 && !afterSlash_) {
            builder_.appendAscii('/');
            afterSlash_ = true;
        }
        append(component);
    }

    NSString string() {
        // The root folder keeps its slash.
        if (afterSlash_ && builder_.length() > 1) {
            builder_.truncate(builder_.length() - 1);
        }
        return builder_.string();
    }

private:
    TextBuilder builder_;
    bool afterSlash_ = false;
};

} // namespace

NSString NSString::lastPathComponent() const {
    const AsciiOrUtf16 path(view());
    if (path.length() == 0) {
        return *this;
    }
    const LastComponent last = lastComponentOf(path);
    // Slashes alone name the root folder.
    return last.end == 0 ? substringToIndex(1) : substringWithRange(last.start, last.end - last.start);
}

NSString NSString::stringByDeletingLastPathComponent() const {
    const AsciiOrUtf16 path(view());
    if (path.length() == 0) {
        return *this;
    }
    const LastComponent last = lastComponentOf(path);
    if (last.end == 0) {
        return substringToIndex(1);
    }
    SqueezedPath front;
    // The front ends in a slash, which is dropped at the end.
    front.append(path, last.start);
    return front.string();
}

NSString NSString::stringByAppendingPathComponent(StringView component) const {
    if (!*this) {
        return {};
    }
    SqueezedPath path;
    path.appendComponent(AsciiOrUtf16(view()));
    path.appendComponent(AsciiOrUtf16(component));
    return path.string();
}

NSArray NSString::pathComponents() const {
    if (!*this) {
        return {};
    }
    const AsciiOrUtf16 path(view());
    const std::size_t length = path.length();
    NSMutableArray components;
    // The first slash is a component of its own, and so is the last one.
    if (length != 0 && path[0] == '/') {
        components.addObject("/");
    }
    for (std::size_t start = 0; start < length;) {
        std::size_t end = start;
        while (end < length && path[end] != '/') {
            ++end;
        }
        if (end != start) {
            components.addObject(substringWithRange(start, end - start));
        }
        start = end + 1;
    }
    if (length > 1 && path[length - 1] == '/') {
        components.addObject("/");
    }
    return components.array();
}

NSString NSString::pathWithComponents(const NSArray& components) {
    SqueezedPath path;
    for (const NSObject& component : components) {
        const NSString text(component); // nil, and so skipped, for anything but a string
        path.appendComponent(AsciiOrUtf16(text));
    }
    return path.string();
}

NSString NSString::pathExtension() const {
    if (!*this) {
        return {};
    }
    const AsciiOrUtf16 path(view());
    const LastComponent last = lastComponentOf(path);
    const std::size_t dot = extensionDot(path, last);
    return dot == last.end ? string() : substringWithRange(dot + 1, last.end - dot - 1);
}

NSString NSString::stringByDeletingPathExtension() const {
    const AsciiOrUtf16 path(view());
    if (path.length() == 0) {
        return *this;
    }
    const LastComponent last = lastComponentOf(path);
    // Before the dot, so the final slashes go as well.
    return last.end == 0 ? substringToIndex(1) : substringToIndex(extensionDot(path, last));
}

bool NSString::isAbsolutePath() const {
    const StringView path = view();
    if (path.size() == 0) {
        return false;
    }
    // A tilde counts as absolute because it will be expanded to one.
    const char16_t first = characterAtIndex(0);
    return first == '/' || first == '~';
}

} // namespace ZQFoundation
