// SPDX-License-Identifier: MIT
// Moving the files of earlier releases.
#include "OldData.h"

#include <cstdio>
#include <string>

#include <ZQFoundation/ZQFoundation.h>

#include "Text.h"
#include "TraceKeys.h"
#include "Workspace.h"

using namespace ZQFoundation;

namespace {

NSString newPlace(StringView name) {
    return NSProcessInfo::pathOfLibraryApplicationSupportSubfolder().stringByAppendingPathComponent(name);
}

/// For the user, and for whoever reads the log.
void showWhatStays(const NSString& source, const NSString& reason) {
    ZQLog::logWithFormat("%@ stays: %@", source, reason);
    std::printf("Viewer: %s stays: %s\n", shown(source).c_str(), shown(reason).c_str());
}

void report(ZQFileMigrationRetvalType code, const NSString& source, const NSString& destination) {
    if (code == kFileMigrationSourceDoesNotExist) {
        return; // moved long ago, or never there
    }
    if (code != kFileMigrationSuccess) {
        showWhatStays(source, ZQFileMigrator::descriptionOfFileMigrationRetvalType(code));
        return;
    }
    ZQLog::logFunctionName_logAlways_logForTraceKey_usingFormat(__func__, true, TraceKeys::migration,
                                                                "%@ is now %@", source, destination);
}

/// A file that exists at the new place is newer: the old one is put beside it as "Settings 1.conf".
void migrateSettings() {
    const NSString source = "~/.viewerrc";
    const NSString destination = newPlace("Settings.conf");
    report(
        ZQFileMigrator::
            migrateFileFrom_to_keepOriginal_createDestinationParentFolder_overwriteDestinationFile_renameIfDestinationFileExists(
                source, destination, false, true, false, true),
        source, destination);
}

/// Whole, with everything in it. Documents that exist at the new place are not touched.
void migrateDocuments() {
    const NSString source = "~/.viewer";
    const NSString destination = newPlace("Documents");
    report(
        ZQFileMigrator::
            migrateFolderFrom_to_keepOriginal_createDestinationParentFolder_overwriteDestinationFolder_renameIfDestinationFolderExists(
                source, destination, false, true, false, false),
        source, destination);
}

/// The folder belongs to the user, who may have other files there too.
void migrateNotes() {
    const NSString source = "~/Viewer Notes";
    const NSDictionary codes = ZQFileMigrator::
        migrateFilesWithExtension_from_to_includeDotFiles_keepOriginal_createDestinationParentFolder_overwriteDestinationFile_renameIfDestinationFileExists(
            "note", source, newPlace("Notes"), false, false, true, false, false);
    const NSString failures = ZQFileMigrator::descriptionOfFileMigrationErrorsIn(codes).string();
    if (!failures.isEmpty()) {
        showWhatStays(source, failures);
    }
    if (codes.count() > 0) {
        ZQLog::logFunctionName_logAlways_logForTraceKey_usingFormat(
            __func__, true, TraceKeys::migration, "%lu notes found in %@", codes.count(), source);
    }
}

} // namespace

void migrateOldData() {
    // While it exists, the library notifies it of each folder in which a file was added or removed.
    const Workspace workspace;
    migrateSettings();
    migrateDocuments();
    migrateNotes();
    for (const std::string& folder : workspace.changedFolders()) {
        ZQLog::logFunctionName_logAlways_logForTraceKey_usingFormat(__func__, true, TraceKeys::migration,
                                                                    "to be shown again: %@", folder);
    }
}
