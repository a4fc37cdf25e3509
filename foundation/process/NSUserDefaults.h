// SPDX-License-Identifier: MIT
// Declares NSUserDefaults, the settings of a user.
#ifndef ZQFOUNDATION_PROCESS_NSUSERDEFAULTS_H
#define ZQFOUNDATION_PROCESS_NSUSERDEFAULTS_H

#include "../objects/NSData.h"
#include "../objects/NSDictionary.h"

namespace ZQFoundation {

/// The settings of the user and the host, combined from several domains. The value comes from the first
/// domain that has the key:
///
/// 1. the command line: `-TraceLevel 3`, `-Names "(a, b)"`, and below it the same in the environment:
///    `ZQ_DEFAULTS="-TraceLevel 3"`;
/// 2. the application's domain, named by the main bundle's identifier, else by the process: what this process
///    has set, else the file `<domain>.plist`;
/// 3. the global domain, the file `NSGlobalDomain.plist`;
/// 4. the language settings: `AppleLanguages` from LANGUAGE, LC_ALL, LC_MESSAGES or LANG;
/// 5. the values that the host has registered.
///
/// The files are in `$XDG_CONFIG_HOME/ZQFoundation/`, else `~/.config/ZQFoundation/`, and are property lists
/// in any form. A changed file takes effect at the next lookup; a file that is missing, unreadable, too
/// large (over 16 MiB), truncated or of the wrong type is ignored.
///
/// **Only `synchronize` writes.** What a process sets takes effect at once, in that process; nothing is saved
/// when the process ends, and no thread saves anything. A host that wants to keep its settings calls
/// `synchronize` after a change, and before it ends.
///
/// All operations may be called from any thread at any time: before `main`, in static destructors, and in a
/// forked child whatever other threads were doing. They preserve `errno` and read the environment at each
/// call, except in a set-user-ID process, where it is ignored.
class ZQFOUNDATION_EXPORT NSUserDefaults {
public:
    /// The shared object, never destroyed.
    static NSUserDefaults& standardUserDefaults() noexcept;

    NSUserDefaults(const NSUserDefaults&) = delete;
    NSUserDefaults& operator=(const NSUserDefaults&) = delete;

    /// The value as it is stored: string, number, boolean, date, data, array or dictionary. Nil for an
    /// unknown or nil key.
    NSObject objectForKey(StringView key) const;

    /// All domains merged, key by key: for each key the value that `objectForKey` returns. The order is the
    /// same in every run: domains in the order above, in each its keys in the order of its file.
    NSDictionary dictionaryRepresentation() const;

    /// A string, or a number's text; nil for any other value.
    NSString stringForKey(StringView key) const;

    /// The value if it is an array, else nil.
    NSArray arrayForKey(StringView key) const;

    /// The value if it is a dictionary, else nil.
    NSDictionary dictionaryForKey(StringView key) const;

    /// The value if it is data, else nil.
    NSData dataForKey(StringView key) const;

    /// The value's `boolValue`; false without one.
    bool boolForKey(StringView key) const;

    /// The value of a number, or of a string's leading digits, in 64 bits; 0 for any other value.
    std::int64_t integerForKey(StringView key) const;

    /// The value of a number, or of a string's leading digits, as a float; 0 for any other value.
    float floatForKey(StringView key) const;

    /// The value of a number, or of a string's leading digits, as a double; 0 for any other value.
    double doubleForKey(StringView key) const;

    /// Sets the value in the application's domain: in memory, for this process and its later children, until
    /// `synchronize` saves it. Raises NSInvalidArgumentException for a nil key and for a value that no
    /// property list can hold; nil removes the key.
    void setObject_forKey(const NSObject& value, const NSString& key);

    /// Removes the key from the application's domain, for this process, whatever its file contains, until
    /// `synchronize` removes it there. Other domains may still have a value. A nil key is ignored.
    void removeObjectForKey(StringView key);

    /// Saves what this process has set and removed in the application's domain since the last success: only
    /// those keys change in the file, which is replaced in one step, and created with its folder if missing.
    /// From then on their values come from the file. Other processes that do the same, and the tool
    /// `defaults`, wait for one another by a lock on the folder, and none loses what another has written.
    ///
    /// False when it cannot be saved, with the reason in `*error`: the file is unchanged, the changes are
    /// still in memory, and a later call tries again. This happens if another program keeps the lock for half
    /// a second, a text has a character that XML cannot contain (U+001B), the existing file cannot be read as
    /// a dictionary, the new one would be larger than 16 MiB, or the disk is full.
    ///
    /// Returns when the file is on disk, so do not call it where nothing may block. A forked child saves only
    /// its own changes; its parent saves the rest.
    bool synchronize(NSString* error = nullptr);

    /// Adds values that are used when no other domain has one; a later registration of a key replaces the
    /// earlier one. Nil adds none. Raises NSInvalidArgumentException for values that no property list can
    /// hold.
    void registerDefaults(const NSDictionary& values);

private:
    constexpr NSUserDefaults() noexcept = default;
};

} // namespace ZQFoundation

#endif
