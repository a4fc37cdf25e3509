// SPDX-License-Identifier: MIT
// Declares NSProcessInfo, facts about the process and its system.
#ifndef ZQFOUNDATION_PROCESS_NSPROCESSINFO_H
#define ZQFOUNDATION_PROCESS_NSPROCESSINFO_H

#include "../objects/NSDictionary.h"

namespace ZQFoundation {

/// Information about the running process.
///
///     NSString name = NSProcessInfo::processInfo().processName(); // "Viewer"
///
/// All operations may be called from any thread at any time: before `main`, in static destructors, in a
/// forked child. They preserve `errno`.
class ZQFOUNDATION_EXPORT NSProcessInfo {
public:
    /// The shared object, never destroyed.
    static NSProcessInfo& processInfo() noexcept;

    NSProcessInfo(const NSProcessInfo&) = delete;
    NSProcessInfo& operator=(const NSProcessInfo&) = delete;

    /// The last path component of argument 0; when that is empty, of the program's file. Never nil. A byte
    /// that is not part of well-formed UTF-8 reads as the unit U+DC00 + byte.
    NSString processName() const;

    /// Renames the process for `processName` and the log prefix; does not rename the OS process. A process
    /// always has a name: nil and the empty text change nothing. Each new name is kept until the process
    /// ends.
    void setProcessName(const NSString& name);

    /// The process identifier; a forked child has its own.
    int processIdentifier() const;

    /// The arguments the process was started with, the program's own name first, as an array of strings. If a
    /// command line is longer than 4 KiB, what the host has overwritten of the rest before the first call
    /// appears here as overwritten.
    NSArray arguments() const;

    /// The arguments without the pairs that are user defaults (`-TraceNetwork YES`), for a host that parses
    /// them itself. These stay: "--" and everything after it; words that every parser treats as options,
    /// those with two hyphens or one character, with what follows them (`--output x`, `-o x`); and the words
    /// in `options` with what follows them, for the host's other options ("-style"). Never nil.
    NSArray argumentsWithoutDefaults(const NSArray& options = nullptr) const;

    /// Removes the same pairs from the `argc` and `argv` of `main`, for an option parser that would reject
    /// them: the rest moves up, followed by a null pointer. The defaults and `arguments` are unchanged. Must
    /// be called before other threads read the array.
    static void removeDefaultsFromArguments(int& count, char** arguments, const NSArray& options = nullptr);

    /// The current environment: a dictionary of strings. Like any access to the environment, it must not run
    /// while another thread changes it.
    NSDictionary environment() const;

    /// @name NSProcessInfo(ZQFoundation)
    /// Computed at each call; no folder is made, looked for or touched, unless the main bundle has the value
    /// "XDG" under `ZQFolderLayout`.
    /// @{

    /// The main bundle's `ZQCompanyName`; the text of a value that is not a string; nil without one.
    static NSString shortCompanyName();

    /// The main bundle's `NSHumanReadableShortName`, else the process's name, else "MyApplication".
    static NSString shortApplicationName();

    /// "Example/Viewer"; the application's name alone without a company.
    static NSString appSpecificLibrarySubpath();

    /// "/home/user/Library/Application Support/Example/Viewer", links in the home folder's path resolved;
    /// below "/" for a user without a home. Names with slashes or ".." are used unchanged.
    ///
    /// With `ZQFolderLayout` = "XDG": "/home/user/.local/share/Example/Viewer" (below `$XDG_DATA_HOME`),
    /// which is created if missing, accessible to the user only.
    static NSString pathOfLibraryApplicationSupportSubfolder();

    /// "/home/user/Library/Logs/Example/Viewer", links in the home folder's path resolved; below "/" for a
    /// user without a home. Names with slashes or ".." are used unchanged.
    ///
    /// With `ZQFolderLayout` = "XDG": "/home/user/.local/state/Example/Viewer" (below `$XDG_STATE_HOME`),
    /// which is created if missing, accessible to the user only.
    static NSString pathOfLibraryLogSubfolder();

    /// @}

private:
    constexpr NSProcessInfo() noexcept = default;
};

} // namespace ZQFoundation

#endif
