// SPDX-License-Identifier: MIT
// Reads the system's version from the system version file or the release description.
#include "info/SystemVersion.h"

#include <string>
#include <vector>

#include "foundation/plist/PropertyList.h"
#include "foundation/process/FileReading.h"
#include "foundation/system/TestOverrides.h"
#include "foundation/text/Utf.h"
#include "info/ReleaseFile.h"

namespace ZQFoundation::detail {

namespace {

std::string systemVersionFile() {
    return overrides::systemVersionFile != nullptr ? *overrides::systemVersionFile
                                                   : "/System/Library/CoreServices/SystemVersion.plist";
}

/// The property list in a file, read by `parse`; nil if there is nothing to parse. The stamp, by which others
/// know that a file is unchanged, is not kept: every call reads the file again.
NSDictionary parsed(const std::string& path, FileParser parse) {
    NSDictionary values;
    FileStamp stamp;
    readStampedFile(path, parse, values, stamp);
    return values;
}

NSDictionary dictionaryFromAnyForm(const std::string& bytes) {
    const auto* const start = reinterpret_cast<const unsigned char*>(bytes.data());
    return NSDictionary(parsePropertyListBytes(start, bytes.size(), nullptr));
}

/// Nil for bytes that are not UTF-8. A byte-order mark is not part of the text.
NSString textFromUtf8(const std::string& bytes) {
    const std::size_t mark = bytes.starts_with("\xEF\xBB\xBF") ? 3 : 0;
    return NSString::stringWithUTF8Bytes(bytes.data() + mark, bytes.size() - mark);
}

/// Reads ASCII leniently: a byte from 0x80 up becomes the unit with the same number.
NSString textFromAscii(const std::string& bytes) {
    std::u16string units(bytes.size(), u'\0');
    widenAscii(bytes.data(), bytes.size(), units.data());
    return NSString::stringWithCharacters_length(units.data(), units.size());
}

/// The two ways to read the file differ on purpose: the start-up report reads it as a text, the environment's
/// queries as a property list of any form.
NSDictionary dictionaryFromText(const std::string& bytes) {
    const NSString text = textFromUtf8(bytes);
    return (text ? text : textFromAscii(bytes)).propertyListFromStringsFileFormat();
}

std::vector<std::string> releaseFiles() {
    return overrides::releaseFiles != nullptr ? *overrides::releaseFiles : system::releaseFiles();
}

/// The first file that exists counts, even if it cannot be read: the next one is there for systems without
/// the first.
NSDictionary releaseEntries() {
    for (const std::string& path : releaseFiles()) {
        if (fileExists(path)) {
            return parsed(path, releaseEntriesFromBytes);
        }
    }
    return nullptr;
}

/// Never empty, because the report's dictionary must be complete.
NSString kernelRelease() {
    const std::string release = system::kernelRelease();
    return release.empty() ? NSString("unknown") : NSString(release);
}

/// The first text that is neither missing nor empty, else the fallback.
NSString firstOf(const NSDictionary& entries, std::initializer_list<const char*> keys,
                 const NSString& lastResort) {
    for (const char* const key : keys) {
        const NSString text(entries.objectForKey(key));
        if (text.length() != 0) {
            return text;
        }
    }
    return lastResort;
}

} // namespace

// Without the file: whether the system has no other description of its release, so that the missing file is
// an error.
bool usesSystemVersionFile() {
    if (fileExists(systemVersionFile())) {
        return true;
    }
    return overrides::releaseFiles == nullptr && system::releaseFiles().empty();
}

NSDictionary systemVersionDictionary() {
    return usesSystemVersionFile() ? parsed(systemVersionFile(), dictionaryFromAnyForm)
                                   : releaseDescription();
}

NSDictionary systemVersionFileText() { return parsed(systemVersionFile(), dictionaryFromText); }

NSDictionary releaseDescription() {
    const NSDictionary entries = releaseEntries();
    const NSString kernel = kernelRelease();
    const NSString version = firstOf(entries, {"VERSION_ID", "BUILD_ID"}, kernel);
    return NSDictionary{{"ProductName", firstOf(entries, {"NAME"}, "Linux")},
                        {"ProductVersion", version},
                        {"ProductUserVisibleVersion", firstOf(entries, {"VERSION"}, version)},
                        {"ProductBuildVersion", kernel}};
}

} // namespace ZQFoundation::detail
