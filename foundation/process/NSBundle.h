// SPDX-License-Identifier: MIT
// Declares NSBundle, a folder with an application's or library's resources.
#ifndef ZQFOUNDATION_PROCESS_NSBUNDLE_H
#define ZQFOUNDATION_PROCESS_NSBUNDLE_H

#include "../objects/NSDictionary.h"

namespace ZQFoundation::detail {
struct BundleRecord;
} // namespace ZQFoundation::detail

namespace ZQFoundation {

/// A folder that contains a program or library with its Info dictionary and its resources.
///
///     NSString version(NSBundle::mainBundle().objectForInfoDictionaryKey("CFBundleShortVersionString"));
///
/// A nullable handle; handles of the same folder are equal. What a bundle has read (Info dictionary, string
/// tables, the choice of localizations) is kept until the process ends; later changes of the files have no
/// effect. A file that cannot be read, is larger than 16 MiB, truncated or of the wrong type counts as empty.
///
/// All operations may be called from any thread at any time, preserve `errno`, and return nil or an empty
/// collection for a nil bundle.
class ZQFOUNDATION_EXPORT NSBundle {
public:
    constexpr NSBundle() noexcept = default;
    constexpr NSBundle(std::nullptr_t) noexcept {}

    /// The bundle of the running program, found from the program's own file: the `X.app` around
    /// `X.app/Contents/MacOS/<program>`; else the program's folder when it contains `Resources/Info.plist` or
    /// `Info.plist`; else, for a program in a `bin` folder, `../share/<process name>`; else the program's
    /// folder, with an empty Info dictionary. Never nil; if the program's file is unknown, a bundle without
    /// any files, whose paths are empty.
    static NSBundle mainBundle();

    /// The library's own bundle: `Resources` next to the library's file, else `../share/ZQFoundation-27`.
    /// Never nil; its folder need not exist. Its texts come from that folder, or from the program itself when
    /// the static library is part of it.
    static NSBundle libraryBundle();

    /// The bundle in an existing folder: `Contents/`, `Resources/Info.plist` or a flat one. Nil when there is
    /// no such folder. A relative path is relative to the current folder.
    static NSBundle bundleWithPath(StringView path);

    /// True unless the bundle is nil.
    constexpr explicit operator bool() const noexcept { return record_ != nullptr; }

    /// Whether both are the same folder; two nil handles are the same too.
    friend constexpr bool operator==(NSBundle left, NSBundle right) noexcept = default;

    /// The Info dictionary's `CFBundleIdentifier`; nil when it has none, or an empty one, or it is not a
    /// string.
    NSString bundleIdentifier() const;

    /// The Info dictionary as written in its file; empty without one.
    NSDictionary infoDictionary() const;

    /// The text under the key in the localized table `InfoPlist`, else the Info dictionary's value, else nil.
    NSObject objectForInfoDictionaryKey(StringView key) const;

    /// The bundle's folder.
    NSString bundlePath() const;

    /// The folder of the resources; it need not exist.
    NSString resourcePath() const;

    /// The program's file for the main bundle; for others the file named by `CFBundleExecutable`, else by the
    /// bundle's own name; nil if there is none.
    NSString executablePath() const;

    /// Names of localizations: `CFBundleLocalizations` of the Info dictionary, then the `*.lproj` folders of
    /// the resources in ascending order; with a `Base.lproj`, or without any localization, also the
    /// development region.
    NSArray localizations() const;

    /// The localizations that match the user's languages best, the most specific first. The user's languages
    /// are the default `AppleLanguages`; a bundle other than the main one prefers the main bundle's. If none
    /// matches: the development region, "en" or the first localization other than `Base`, whichever there is;
    /// "en" without any localization. Decided at the first call.
    NSArray preferredLocalizations() const;

    /// The Info dictionary's `CFBundleDevelopmentRegion`; nil without one.
    NSString developmentLocalization() const;

    /// The text under the key in `<table>.strings`; nil or empty table: `Localizable`. Only the first place
    /// that has the file is searched: the resources themselves, the preferred localizations in order, `Base`,
    /// the development region. If the key is missing: `value` unless it is nil or empty, else the key. For a
    /// nil key, `value` or the empty string.
    ///
    /// Plural tables (`<table>.stringsdict`) are not read yet: a key that has plural forms only there counts
    /// as missing.
    NSString localizedStringForKey_value_table(const NSString& key, const NSString& value,
                                               StringView table) const;

private:
    constexpr explicit NSBundle(detail::BundleRecord* record) noexcept : record_(record) {}

    detail::BundleRecord* record_ = nullptr;
};

} // namespace ZQFoundation

#endif
