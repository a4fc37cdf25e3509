// SPDX-License-Identifier: MIT
// Writing the report and the history.
#include "ReadingReport.h"

#include <cstdio>

#include <ZQFoundation/ZQFoundation.h>

#include "Text.h"

using namespace ZQFoundation;

namespace {

constexpr int charactersReadInASecond = 20;

void printLine(const NSString& line) { std::printf("%s\n", line.utf8().c_str()); }

NSDate modificationDate(const std::string& path) {
    const NSDictionary attributes = NSFileManager::defaultManager().attributesOfItemAtPath_error(path);
    return NSDate(attributes.objectForKey(NSFileModificationDate));
}

/// "file:/home/user/A%20letter.txt": spaces and whatever else a path may contain are escaped.
NSString addressOf(const std::string& path) {
    const NSURL url = NSURL::URLWithScheme_authority_path("file", nullptr, path);
    return url ? url.absoluteString() : NSString(path);
}

/// One line for each document: when, in which run, what it was and where. Other copies of Viewer may add
/// lines at the same time; each stays whole.
void remember(const Document& document, const std::string& path) {
    static const NSString run = NSString::stringWithNewUUID();
    const NSString folder = NSProcessInfo::pathOfLibraryApplicationSupportSubfolder();
    if (!NSFileManager::defaultManager().fileExistsAtPath(folder)) {
        return;
    }
    const NSString line =
        NSString::stringWithFormat("%@ %@ %@ %@\n", NSDate::date().roundedDate(), run,
                                   NSString(std::string(document.text())).md5String(), addressOf(path));
    if (!line.appendToFile_encoding(folder.stringByAppendingPathComponent("History.txt"),
                                    NSUTF8StringEncoding)) {
        ZQLog::logWithFormat("no history of %@ is kept", path);
    }
}

} // namespace

void ReadingReport::add(const Document& document, const std::string& path, std::size_t pages) {
    ++documents_;
    pages_ += static_cast<int>(pages);
    characters_ += countCharacters(document.body());
    const NSDate written = modificationDate(path);
    // The key is the English text; where a table has another order of the values, it numbers them.
    printLine(NSString::initWithLocalizedFormat("%@: %d pages, written %d days ago (week %d of %d)",
                                                shown(document.title()), static_cast<int>(pages),
                                                NSDate::calendarDaysBetween_and(written, NSDate::date()),
                                                written.calendarWeek(), written.yearForCalendarWeek()));
    remember(document, path);
}

void ReadingReport::show() const {
    if (documents_ == 0) {
        return;
    }
    const NSNumber seconds(characters_ / charactersReadInASecond);
    printLine(NSString::initWithLocalizedFormat_locale(
        "%d documents, %d pages, %d characters: about %@ minutes to read", NSLocale::currentLocale(),
        documents_, pages_, characters_, seconds.durationDescriptionWithFieldCount_suppressZeroes(2, false)));
}
