// SPDX-License-Identifier: MIT
// Resolves links, "~", "." and ".." in paths. Only names that exist are resolved; what is missing stays as it
// is written, since it may be made later.
#include "foundation/files/PathResolution.h"

#include <string_view>

#include "foundation/files/HomeFolder.h"
#include "foundation/files/StickyFolder.h"
#include "foundation/objects/AsciiOrUtf16.h"
#include "foundation/system/CallerState.h"
#include "foundation/system/LinkReading.h"

namespace ZQFoundation::detail {

void LinkResolver::append(const std::string& component) {
    if (!path_.empty() && path_.back() != '/') {
        path_ += '/';
    }
    path_ += component;
}

/// Only for an absolute path without links, where ".." is the folder above textually, too.
void LinkResolver::removeLast() {
    // The root folder is its own parent.
    const std::size_t slash = path_.rfind('/');
    path_.resize(slash == 0 ? 1 : slash);
    handle_.keepOnly(path_.size());
}

bool LinkResolver::mayFollow(const std::string& folderName) const noexcept {
    struct stat link;
    struct stat folder;
    // The rule for shared folders applies here, too: a link that somebody planted is not followed.
    return ::fstatat(handle_.folder(), handle_.name(), &link, AT_SYMLINK_NOFOLLOW) == 0 &&
           ::fstatat(handle_.folder(), folderName.c_str(), &folder, 0) == 0 && mayFollowLink(link, folder);
}

/// Links to open objects refer to them whatever their text says. Sets `errno` for a dangling link.
bool LinkResolver::leadsByItsText(const std::string& folderName, const std::string& target) const {
    struct stat byLink;
    struct stat byText;
    if (::fstatat(handle_.folder(), handle_.name(), &byLink, 0) != 0) {
        return false;
    }
    const std::string name = target[0] == '/' ? target : folderName + target;
    if (::fstatat(handle_.folder(), name.c_str(), &byText, 0) != 0) {
        // Too long to be looked up by its text: then the link's own result counts.
        return errno == ENAMETOOLONG;
    }
    return byLink.st_dev == byText.st_dev && byLink.st_ino == byText.st_ino;
}

LinkResolver::Step LinkResolver::follow(const std::string& target, std::size_t lengthOfFolder) {
    if (++links_ > maxLinks) {
        return Step::tooLong;
    }
    std::string folderName(handle_.name());
    // The link's folder, as the handle names it: a relative target starts there.
    folderName.resize(folderName.size() - component_.size());
    if (folderName.empty()) {
        folderName = "./";
    }
    errno = 0;
    if (!leadsByItsText(folderName, target) || !mayFollow(folderName)) {
        // Dangling links and those of others are kept as they are.
        return errno == ELOOP ? Step::tooLong : Step::stays;
    }
    // The target takes the link's place, and is itself resolved from there on.
    rest_ = target + rest_.substr(position_); // which is empty or begins with a slash
    position_ = 0;
    path_.resize(lengthOfFolder);
    if (target[0] == '/') {
        path_ = "/";
    }
    handle_.keepOnly(target[0] == '/' ? 0 : lengthOfFolder);
    return Step::on;
}

LinkResolver::Step LinkResolver::look() {
    const std::size_t lengthOfFolder = path_.size();
    append(component_);
    std::string target;
    // A folder that cannot be opened: the rest is kept.
    if (!handle_.reach(path_)) {
        return Step::stays;
    }
    switch (readLink(handle_.folder(), handle_.name(), target)) {
    case LinkResult::link:
        return follow(target, lengthOfFolder);
    case LinkResult::other:
        return Step::on;
    default:
        return Step::stays;
    }
}

LinkResolver::End LinkResolver::resolve() {
    // A path that begins with a dot stays relative to it.
    const bool beginsWithDot = rest_ == "." || rest_.starts_with("./");
    if (rest_.starts_with('/')) {
        path_ = "/";
    } else if (beginsWithDot) {
        path_ = ".";
    }
    while (takeName(rest_, position_, component_)) {
        if (component_ == ".") {
            continue;
        }
        if (component_ == "..") {
            // All links before it are resolved, so going up by text is going up in the file system.
            if (path_.starts_with('/')) {
                removeLast();
            } else {
                // A relative path may begin above where anything is known.
                append(component_);
            }
            continue;
        }
        const Step step = look();
        if (step == Step::tooLong) {
            return End::tooLong;
        }
        if (step == Step::stays) {
            // Nothing below something missing can be looked up.
            while (takeName(rest_, position_, component_)) {
                append(component_);
            }
            return End::partial;
        }
    }
    if (path_.empty()) {
        path_ = ".";
    }
    return End::whole;
}

namespace {

/// The squeezed path, without "." after a slash, and, if absolute, with ".." resolved textually.
template <class Unit>
std::basic_string<Unit> foldedText(std::basic_string_view<Unit> path) {
    std::basic_string<Unit> folded;
    const bool isAbsolute = !path.empty() && path[0] == '/';
    if (isAbsolute) {
        folded += static_cast<Unit>('/');
    }
    for (std::size_t start = 0; start < path.size();) {
        const std::size_t slash = path.find(static_cast<Unit>('/'), start);
        const std::size_t end = slash == path.npos ? path.size() : slash;
        const std::basic_string_view<Unit> component = path.substr(start, end - start);
        const bool isDot = component.size() == 1 && component[0] == '.';
        const bool isUp = component.size() == 2 && component[0] == '.' && component[1] == '.';
        if (isAbsolute && isUp) {
            const std::size_t last = folded.rfind(static_cast<Unit>('/'));
            folded.resize(last == 0 ? 1 : last);
        } else if (!component.empty() && (!isDot || start == 0)) {
            // A leading "." is kept, because it may be all of the path.
            if (!folded.empty() && folded.back() != '/') {
                folded += static_cast<Unit>('/');
            }
            folded += component;
        }
        start = end + 1;
    }
    return folded;
}

NSString foldedPath(const NSString& path) {
    const AsciiOrUtf16 text(path);
    if (text.isAscii()) {
        return StringView(foldedText(std::string_view(text.ascii(), text.length())));
    }
    return StringView(foldedText(std::u16string_view(text.units(), text.length())));
}

NSString pathFromBytes(const std::string& bytes) {
    return NSString::stringWithFileSystemBytes(bytes.data(), bytes.size());
}

bool hasParentReference(const std::string& path) noexcept {
    // ".." must be a whole component.
    for (std::size_t at = path.find("/.."); at != std::string::npos; at = path.find("/..", at + 3)) {
        if (at + 3 == path.size() || path[at + 3] == '/') {
            return true;
        }
    }
    return false;
}

bool exists(const std::string& path) noexcept {
    PathHandle handle;
    struct stat information;
    return handle.reach(path) && ::fstatat(handle.folder(), handle.name(), &information, 0) == 0;
}

/// Takes a path whose tilde is already expanded.
NSString standardized(const NSString& path) {
    std::string bytes;
    // Without ".." links stay, and nothing has to be looked up.
    if (path.hasPrefix("/") && path.getFileSystemBytes(bytes) && hasParentReference(bytes) && exists(bytes)) {
        LinkResolver resolver(bytes);
        if (resolver.resolve() == LinkResolver::End::whole) {
            return pathFromBytes(resolver.path());
        }
    }
    return foldedPath(path);
}

/// Empty when there is no such account or it has no home folder.
/// A tilde alone means the user of this process.
std::string homeNamedBy(const NSString& account) {
    std::string name;
    if (account.isEqualToString("")) {
        return homeFolder();
    }
    return account.getFileSystemBytes(name) ? homeFolderOfAccount(name) : std::string();
}

NSString withoutFinalSlashes(const NSString& path) {
    std::size_t length = path.length();
    while (length > 1 && path.characterAtIndex(length - 1) == '/') {
        --length;
    }
    return path.substringToIndex(length);
}

std::size_t indexOfSlash(const NSString& path) {
    const AsciiOrUtf16 text(path);
    std::size_t index = 0;
    while (index < text.length() && text[index] != '/') {
        ++index;
    }
    return index;
}

} // namespace

} // namespace ZQFoundation::detail

namespace ZQFoundation {

NSString NSString::stringByExpandingTildeInPath() const {
    if (!*this || length() == 0) {
        return *this;
    }
    const detail::CallerState caller;
    if (characterAtIndex(0) != '~') {
        return detail::withoutFinalSlashes(*this);
    }
    const std::size_t slash = detail::indexOfSlash(*this);
    std::string home = detail::homeNamedBy(substringWithRange(1, slash - 1));
    if (home.empty()) {
        // An unknown account leaves the path unchanged, tilde included.
        return *this;
    }
    while (!home.empty() && home.back() == '/') {
        home.pop_back();
    }
    const NSString path = detail::pathFromBytes(home).stringByAppendingString(substringFromIndex(slash));
    // A home of "/" gives an empty text, which is the root folder.
    return path.length() == 0 ? NSString("/") : detail::withoutFinalSlashes(path);
}

NSString NSString::stringByStandardizingPath() const {
    if (!*this || length() == 0) {
        return *this;
    }
    const detail::CallerState caller;
    return detail::standardized(stringByExpandingTildeInPath());
}

NSString NSString::stringByResolvingSymlinksInPath() const {
    if (!*this || length() == 0) {
        return *this;
    }
    const detail::CallerState caller;
    const NSString expanded = stringByExpandingTildeInPath();
    std::string bytes;
    if (!expanded.getFileSystemBytes(bytes)) {
        // A path that the system cannot have is still tidied as a text.
        return detail::foldedPath(expanded);
    }
    detail::LinkResolver resolver(bytes);
    switch (resolver.resolve()) {
    case detail::LinkResolver::End::whole:
        return detail::pathFromBytes(resolver.path());
    case detail::LinkResolver::End::partial:
        // What could be resolved is combined with the rest, in which ".." is folded as text.
        return detail::foldedPath(detail::pathFromBytes(resolver.path()));
    default:
        // A loop: the path as given, only standardized.
        return detail::standardized(expanded);
    }
}

} // namespace ZQFoundation
