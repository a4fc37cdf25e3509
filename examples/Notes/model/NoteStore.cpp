// SPDX-License-Identifier: MIT
// Reading, saving and removing notes.
#include "NoteStore.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <string>

#include "Search.h"
#include "TraceKeys.h"

using namespace ZQFoundation;

namespace notes {

namespace {

constexpr const char* extension = "note";
constexpr std::int64_t maxSize = 16 << 20;
constexpr std::size_t maxNameLength = 60;

constexpr const char* removedFolder = ".Removed";

NSFileManager& files() { return NSFileManager::defaultManager(); }

/// What a user writes down is private.
NSDictionary privately(int permissions) { return NSDictionary{{NSFilePosixPermissions, permissions}}; }

/// Nil for a file whose text cannot be shown and written back unchanged.
NSString textOfFile(const NSString& path) {
    const NSDictionary attributes = files().attributesOfItemAtPath_error(path);
    if (!files().isRegularFileAtPath(path) || NSNumber(attributes[NSFileSize]).longLongValue() > maxSize) {
        return nullptr;
    }
    const NSData bytes = NSData::dataWithContentsOfFile(path);
    return bytes ? NSString::stringWithUTF8Bytes(reinterpret_cast<const char*>(bytes.bytes()), bytes.length())
                 : NSString();
}

NSString firstLine(const NSString& text) {
    const NSCharacterSet blanks = NSCharacterSet::whitespaceAndControlCharacterSet();
    for (const NSObject& line : text.componentsSeparatedByLineBreak()) {
        const NSString trimmed = NSString(line).stringByTrimmingCharactersInSet(blanks);
        if (!trimmed.isEmpty()) {
            return trimmed;
        }
    }
    return nullptr;
}

Note readNote(const NSString& path) {
    Note note;
    note.path = path;
    note.text = textOfFile(path);
    note.title = path.lastPathComponent().stringByDeletingPathExtension().asDefaultOr(firstLine(note.text));
    note.folded = folded(note.text);
    note.changed = NSDate(files().attributesOfItemAtPath_error(path)[NSFileModificationDate]);
    return note;
}

/// A file name made of the first line: no separator, no leading dot, no control character, no partial
/// character.
NSString nameFor(const NSString& text) {
    const NSString untitled = NSString::initWithLocalizedString("Untitled");
    const NSString title = untitled.asDefaultOr(firstLine(text));
    NSString name =
        title.substringToIndex(std::min(title.length(), maxNameLength))
            .stringByReplacingEveryOccurrenceOfCharactersFromSet_withString(
                NSCharacterSet::characterSetWithCharactersInString("/\\:"), "-")
            .stringByRemovingEveryOccurrenceOfCharactersFromSet(NSCharacterSet::controlCharacterSet());
    std::string bytes;
    if (!name.getUTF8(bytes)) { // cut in the middle of a character
        name = name.substringToIndex(name.length() - 1);
    }
    name = name.isEmpty() ? untitled : name.hasPrefix(".") ? "_" + name : name;
    return name + "." + extension;
}

Outcome failure(const NSString& reason) {
    ZQLog::logWithFormat("%@", reason);
    return {nullptr, reason};
}

/// Writes the text to the disk; it is then in the file as a whole, or there is no such file.
bool writeDraft(const NSString& path, const NSString& text) {
    if (!files().createFileAtPath_contents_attributes(path, text.dataUsingEncoding(NSUTF8StringEncoding),
                                                      privately(0600))) {
        return false;
    }
    try {
        NSFileHandle file = NSFileHandle::fileHandleForUpdatingAtPath(path);
        file.synchronizeFile();
        file.closeFile();
        return true;
    } catch (const NSException&) {
        return false;
    }
}

} // namespace

void NoteStore::reload() {
    notes_.clear();
    NSDirectoryEnumerator items = files().enumeratorAtPath(folder_);
    while (const NSString item = items.nextObject()) {
        const NSString path = folder_.stringByAppendingPathComponent(item);
        if (item.lastPathComponent().hasPrefix(".")) {
            items.skipDescendents();
        } else if (item.pathExtension() == extension && files().isRegularFileAtPath(path)) {
            notes_.push_back(readNote(path));
        }
    }
    std::sort(notes_.begin(), notes_.end(), [](const Note& left, const Note& right) {
        return left.changed != right.changed ? right.changed < left.changed : left.path < right.path;
    });
    traceNotes.log(this, "%zu notes in %@", notes_.size(), folder_);
}

const Note* NoteStore::find(const NSString& path) const {
    const auto found = std::find_if(notes_.begin(), notes_.end(),
                                    [&](const Note& note) { return path && note.path == path; });
    return found != notes_.end() ? &*found : nullptr;
}

std::vector<const Note*> NoteStore::matching(const NSString& query) const {
    const NSArray words = folded(query).componentsSeparatedByWhitespace();
    std::vector<const Note*> found;
    for (const Note& note : notes_) {
        if (holdsAll(note.folded, words)) {
            found.push_back(&note);
        }
    }
    traceSearch.log(this, "%zu of %zu notes match \"%@\"", found.size(), notes_.size(), query);
    return found;
}

Outcome NoteStore::save(const NSString& path, const NSString& newText) {
    const NSString text = NSString("").asDefaultOr(newText);
    std::string bytes;
    NSString reason;
    if (!text.getUTF8(bytes)) {
        return failure(NSString::initWithLocalizedString("The text contains an incomplete character."));
    }
    if (!files().createDirectoryAtPath_withIntermediateDirectories_attributes_error(
            folder_, true, privately(0700), &reason)) {
        return failure(reason);
    }
    const NSString draft = folder_.stringByAppendingPathComponent(
        NSString::stringWithFormat(".saving-%d", NSProcessInfo::processInfo().processIdentifier()));
    if (!writeDraft(draft, text)) {
        files().removeItemAtPath_error(draft);
        return failure(NSString::initWithLocalizedFormat("Cannot write to %@.", folder_));
    }
    const Note* const known = find(path);
    const bool isUnchanged = known != nullptr && known->text && textOfFile(path) == known->text;
    const Outcome outcome = isUnchanged ? replace(path, draft) : addAs(nameFor(text), draft);
    if (outcome.path) {
        keep(outcome.path);
        traceNotes.log(this, "%zu bytes in %@", bytes.size(), outcome.path);
    }
    return outcome;
}

Outcome NoteStore::replace(const NSString& path, const NSString& draft) {
    std::string source;
    std::string destination;
    if (!draft.getFileSystemBytes(source) || !path.getFileSystemBytes(destination) ||
        std::rename(source.c_str(), destination.c_str()) != 0) {
        const NSString reason = std::strerror(errno);
        files().removeItemAtPath_error(draft);
        return failure(path + ": " + reason);
    }
    return {path, nullptr};
}

Outcome NoteStore::addAs(const NSString& name, const NSString& draft) {
    const ZQMigrationOptions options{.renameIfDestinationExists = true};
    const auto result =
        ZQFileMigrator::migrateFile(draft, folder_.stringByAppendingPathComponent(name), options);
    if (result.code != kFileMigrationSuccess) {
        files().removeItemAtPath_error(draft);
        return failure(name + ": " + ZQFileMigrator::descriptionOfFileMigrationRetvalType(result.code));
    }
    return {result.destination, nullptr};
}

Outcome NoteStore::remove(const NSString& path) {
    const NSString destination = folder_.stringByAppendingPathComponent(removedFolder)
                                     .stringByAppendingPathComponent(path.lastPathComponent());
    const ZQMigrationOptions options{.createDestinationParentFolder = true,
                                     .renameIfDestinationExists = true};
    const auto result = ZQFileMigrator::migrateFile(path, destination, options);
    if (result.code != kFileMigrationSuccess) {
        return failure(path + ": " + ZQFileMigrator::descriptionOfFileMigrationRetvalType(result.code));
    }
    std::erase_if(notes_, [&](const Note& note) { return note.path == path; });
    traceNotes.log(this, "%@ is now %@", path, result.destination);
    return {result.destination, nullptr};
}

/// The note was changed last, so it comes first.
void NoteStore::keep(const NSString& path) {
    std::erase_if(notes_, [&](const Note& note) { return note.path == path; });
    notes_.insert(notes_.begin(), readNote(path));
}

} // namespace notes
