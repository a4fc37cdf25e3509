// SPDX-License-Identifier: MIT
// Finds bundles and reads their Info dictionaries, localizations and string tables, once.
// Records of bundles live as long as the process. Values that were read are published once, without a lock
// for readers; what could not be read for lack of descriptors or memory is not kept.
#include "foundation/process/NSBundle.h"

#include <algorithm>
#include <atomic>

#include <unistd.h>

#include "foundation/process/BundleLayout.h"
#include "foundation/process/CarriedTexts.h"
#include "foundation/process/FileReading.h"
#include "foundation/process/LanguageMatching.h"
#include "foundation/process/NSProcessInfo.h"
#include "foundation/process/NSUserDefaults.h"
#include "foundation/system/CallerState.h"
#include "foundation/system/Published.h"
#include "foundation/system/System.h"
#include "foundation/system/TestOverrides.h"

namespace ZQFoundation::detail {

namespace {

enum class BundleRole { program, library, other };

/// A string table that was looked for, even if there was none.
struct StringTable {
    std::string name;
    NSDictionary texts;
    const StringTable* next;
};

} // namespace

/// What is known of one bundle. Everything that an atomic pointer refers to is determined once and then kept.
/// An `NSBundle` is a pointer to it, so records are never freed.
struct BundleRecord {
    BundleLayout layout;
    BundleRole role;
    std::string program; // of the main bundle
    BundleRecord* next;
    std::atomic<const NSDictionary*> info{nullptr};
    std::atomic<const std::vector<std::string>*> preferred{nullptr};
    std::atomic<const StringTable*> tables{nullptr};
    Lock tableLock{}; // keeps two threads from reading the same table
};

namespace {

constinit std::atomic<BundleRecord*> allRecords{nullptr};
constinit Lock recordLock;
constinit std::atomic<BundleRecord*> mainRecord{nullptr};
constinit std::atomic<BundleRecord*> libraryRecord{nullptr};

NSString textOfPath(const std::string& path) {
    return NSString::stringWithFileSystemBytes(path.data(), path.size());
}

// One record for each bundle, so that equal bundles share what was read.
BundleRecord* recordFor(const BundleLayout& layout, BundleRole role, const std::string& program) {
    const Guard<Lock> guard(recordLock);
    BundleRecord* const first = allRecords.load(std::memory_order_acquire);
    for (BundleRecord* record = first; record != nullptr; record = record->next) {
        if (record->role == role && record->layout.folder == layout.folder && record->program == program) {
            return record;
        }
    }
    auto* const record = new BundleRecord{.layout = layout, .role = role, .program = program, .next = first};
    allRecords.store(record, std::memory_order_release);
    return record;
}

// Main bundle

BundleRecord* findMainRecord(const std::string& programOrFolder) {
    if (isFolder(programOrFolder)) {
        return recordFor(layoutOfFolder(programOrFolder), BundleRole::program, "");
    }
    std::string name;
    getFileName(NSProcessInfo::processInfo().processName(), name);
    return recordFor(layoutOfProgram(programOrFolder, name), BundleRole::program, programOrFolder);
}

BundleRecord* currentMainRecord() {
    const CallerState callerState;
    // Tests replace the program, so nothing is kept then.
    if (overrides::executablePath != nullptr) {
        return findMainRecord(*overrides::executablePath);
    }
    BundleRecord* record = mainRecord.load(std::memory_order_acquire);
    if (record == nullptr) {
        const std::string program = system::executablePath();
        record = findMainRecord(program);
        // An unknown program may be known later, when a process file system is there.
        if (!program.empty()) {
            mainRecord.store(record, std::memory_order_release);
        }
    }
    return record;
}

// Info dictionary

NSDictionary readDictionary(const std::string& path, FileParser parse, bool& keep) {
    NSDictionary values;
    FileStamp stamp;
    const FileResult result = readStampedFile(path, parse, values, stamp);
    // A process that currently lacks descriptors or memory may read the file later.
    keep = result != FileResult::exhausted;
    return values ? values : NSDictionary::dictionary();
}

// Two threads may both read the file; the first result is kept.
NSDictionary infoOf(BundleRecord& record) {
    if (const NSDictionary* info = record.info.load(std::memory_order_acquire)) {
        return *info;
    }
    // Kept even if there is no file: an Info dictionary does not appear while a program runs.
    bool keep = false;
    NSDictionary info = readDictionary(record.layout.infoFile, dictionaryFromBytes, keep);
    return keep ? publishOnce(record.info, new NSDictionary(info)) : info;
}

// Localizations

// Names that could not be a folder are dropped: they will become parts of paths.
void addName(std::vector<std::string>& names, const NSString& text) {
    std::string name;
    if (getFileName(text, name) && std::find(names.begin(), names.end(), name) == names.end()) {
        names.push_back(name);
    }
}

std::vector<std::string> namesOf(const NSArray& texts) {
    std::vector<std::string> names;
    for (const NSObject& text : texts) {
        addName(names, text.as<NSString>());
    }
    return names;
}

NSArray textsOf(const std::vector<std::string>& names) {
    NSMutableArray texts(names.size());
    for (const std::string& name : names) {
        texts.addObject(textOfPath(name));
    }
    return texts.array();
}

// The language the bundle was written in, which serves when nothing matches.
NSString regionOf(BundleRecord& record) {
    return infoOf(record).objectForKey("CFBundleDevelopmentRegion").as<NSString>();
}

// `isKnown` becomes false below when something could currently not be read; results based on that must not be
// kept.

/// The texts that are inside the program, for a library that may have no files of its own.
std::span<const CarriedTable> tablesInside(const BundleRecord& record) noexcept {
    return record.role == BundleRole::library ? carriedTables() : std::span<const CarriedTable>();
}

std::vector<std::string> localizationsOf(BundleRecord& record, bool& isKnown) {
    std::vector<std::string> names =
        namesOf(infoOf(record).objectForKey("CFBundleLocalizations").as<NSArray>());
    for (const std::string& folder : localizedFolders(record.layout.resources, isKnown)) {
        addName(names, textOfPath(folder));
    }
    for (const CarriedTable& table : tablesInside(record)) {
        addName(names, textOfPath(std::string(table.language)));
    }
    const bool hasBase = std::find(names.begin(), names.end(), "Base") != names.end();
    // With a base, texts in the development language are in the base folder, without a folder of their own.
    if (names.empty() || hasBase) {
        addName(names, regionOf(record));
    }
    return names;
}

/// Mutually dependent: other bundles follow the main bundle's choice.
std::vector<std::string> preferredOf(BundleRecord& record, bool& isKnown);

std::vector<std::string> languagesFor(const BundleRecord& record, bool& isKnown) {
    std::vector<std::string> languages;
    BundleRecord* const mainRecordNow = currentMainRecord();
    // A bundle without localizations says nothing about the user's languages.
    if (&record != mainRecordNow && !localizationsOf(*mainRecordNow, isKnown).empty()) {
        languages = preferredOf(*mainRecordNow, isKnown);
    }
    for (const std::string& language :
         namesOf(NSUserDefaults::standardUserDefaults().arrayForKey("AppleLanguages"))) {
        languages.push_back(language);
    }
    return languages;
}

std::vector<std::string> choosePreferred(BundleRecord& record, bool& isKnown) {
    const std::vector<std::string> available = localizationsOf(record, isKnown);
    std::vector<std::string> chosen = matchingLocalizations(languagesFor(record, isKnown), available);
    if (!chosen.empty()) {
        return chosen;
    }
    std::string region;
    getFileName(regionOf(record), region);
    // Without any match, what the developers wrote is better than an arbitrary language.
    for (const std::string& language : {region, std::string("en")}) {
        std::string found = localizationOfLanguage(language, available);
        if (!found.empty()) {
            return {found};
        }
    }
    // "Base" is shared by all languages, and is not a language itself.
    const auto first = std::find_if(available.begin(), available.end(),
                                    [](const std::string& name) { return name != "Base"; });
    return {first == available.end() ? std::string("en") : *first};
}

// Determined once, so that the language does not change while the program runs.
std::vector<std::string> preferredOf(BundleRecord& record, bool& isKnown) {
    if (const auto* preferred = record.preferred.load(std::memory_order_acquire)) {
        return *preferred;
    }
    bool isChosenForGood = true;
    std::vector<std::string> chosen = choosePreferred(record, isChosenForGood);
    if (isChosenForGood) {
        return publishOnce<std::vector<std::string>>(record.preferred, new std::vector<std::string>(chosen));
    }
    isKnown = false;
    return chosen;
}

// String tables

std::string pathOfTable(BundleRecord& record, const std::string& table, bool& isKnown) {
    const std::string& resources = record.layout.resources;
    if (resources.empty()) {
        return {};
    }
    const std::string file = "/" + table + ".strings";
    // A table outside the language folders is for all languages.
    if (fileExists(resources + file)) {
        return resources + file;
    }
    std::vector<std::string> folders = preferredOf(record, isKnown);
    folders.push_back("Base");
    std::string region;
    if (getFileName(regionOf(record), region)) {
        // The folder may be spelled differently from the setting; both spellings are tried.
        folders.push_back(localizationOfLanguage(region, localizationsOf(record, isKnown)));
        folders.push_back(region);
    }
    for (const std::string& folder : folders) {
        const std::string path = resources + "/" + folder + ".lproj" + file;
        if (!folder.empty() && fileExists(path)) {
            return path;
        }
    }
    return {};
}

// The list only grows at its head, so that walking over it needs no lock.
const StringTable* knownTable(const BundleRecord& record, const std::string& name) noexcept {
    const StringTable* table = record.tables.load(std::memory_order_acquire);
    while (table != nullptr && table->name != name) {
        table = table->next;
    }
    return table;
}

NSDictionary textsInside(BundleRecord& record, const std::string& name, bool& isKnown) {
    // Only the library's default table is inside.
    if (name == "Localizable") {
        for (const std::string& language : preferredOf(record, isKnown)) {
            for (const CarriedTable& table : tablesInside(record)) {
                if (table.language == language) {
                    return stringTableFromBytes(std::string(table.bytes));
                }
            }
        }
    }
    return NSDictionary::dictionary();
}

/// The current texts of a table: those of the file, and those inside that the file lacks. `isLasting` becomes
/// false if they may change later.
NSDictionary readTable(BundleRecord& record, const std::string& name, bool& isLasting) {
    bool isKnown = true;
    const std::string path = pathOfTable(record, name, isKnown);
    // Texts of files replace those inside, so that a host or packager can correct them.
    NSMutableDictionary texts(textsInside(record, name, isKnown));
    for (const auto& [key, text] : readDictionary(path, stringTableFromBytes, isLasting)) {
        texts.setObject_forKey(text, key);
    }
    isLasting = isLasting && isKnown;
    return texts.dictionary();
}

NSDictionary textsOfTable(BundleRecord& record, const std::string& name) {
    if (const StringTable* table = knownTable(record, name)) {
        return table->texts;
    }
    // Held while reading, so that threads that need the same table at the start wait for one reading.
    const Guard<Lock> guard(record.tableLock);
    if (const StringTable* table = knownTable(record, name)) {
        return table->texts;
    }
    bool isLasting = false;
    NSDictionary texts = readTable(record, name, isLasting);
    // Otherwise, the next lookup tries again.
    if (isLasting) {
        record.tables.store(new StringTable{name, texts, record.tables.load(std::memory_order_relaxed)},
                            std::memory_order_release);
    }
    return texts;
}

/// Nil when the table lacks the key or there is no such table.
NSString textInTable(BundleRecord& record, StringView key, StringView table) {
    NSString tableText(table);
    if (tableText.length() == 0) {
        tableText = "Localizable";
    }
    std::string name;
    // A table's name becomes part of a path.
    if (!key || !getFileName(tableText, name)) {
        return nullptr;
    }
    return textsOfTable(record, name).objectForKey(key).as<NSString>();
}

/// The program that an Info dictionary names; empty when there is no such file.
std::string programOf(BundleRecord& record) {
    if (record.layout.programs.empty()) {
        return {};
    }
    std::string name;
    // Without a name in the Info dictionary, the bundle's own name is the program's.
    if (!getFileName(infoOf(record).objectForKey("CFBundleExecutable").as<NSString>(), name)) {
        name = lastComponentOf(record.layout.folder);
        const std::size_t dot = name.find_last_of('.');
        name = dot == 0 ? name : name.substr(0, dot);
    }
    // A folder of that name is not a program.
    const std::string path = record.layout.programs + "/" + name;
    return fileExists(path) && !isFolder(path) ? path : std::string();
}

/// The path from the root on, without doubled or trailing slashes; empty when there is no current folder.
std::string absolutePath(const std::string& path) {
    std::string result;
    // A relative path would mean another folder when the current one changes.
    if (path.front() != '/') {
        std::string current(4096, '\0');
        if (::getcwd(current.data(), current.size()) == nullptr) {
            return {};
        }
        result.assign(current, 0, current.find('\0'));
        result += '/';
    }
    for (const char character : path) {
        if (character != '/' || result.empty() || result.back() != '/') {
            result += character;
        }
    }
    while (result.size() > 1 && result.back() == '/') {
        result.pop_back();
    }
    return result;
}

std::string fileOfLibrary() {
    const std::string path = system::libraryPath();
    // When linked into a program that was started by its bare name, the library has no path of its own.
    return path.find('/') == std::string::npos ? system::executablePath() : absolutePath(path);
}

} // namespace

} // namespace ZQFoundation::detail

namespace ZQFoundation {

NSBundle NSBundle::mainBundle() { return NSBundle(detail::currentMainRecord()); }

NSBundle NSBundle::libraryBundle() {
    // Not under a lock: threads that race find the same record.
    detail::BundleRecord* record = detail::libraryRecord.load(std::memory_order_acquire);
    if (record == nullptr) {
        const detail::CallerState callerState;
        record = detail::recordFor(detail::layoutOfLibrary(detail::fileOfLibrary()),
                                   detail::BundleRole::library, "");
        detail::libraryRecord.store(record, std::memory_order_release);
    }
    return NSBundle(record);
}

NSBundle NSBundle::bundleWithPath(StringView path) {
    const detail::CallerState callerState;
    std::string bytes;
    if (!NSString(path).getFileSystemBytes(bytes) || bytes.empty() || !detail::isFolder(bytes)) {
        return nullptr;
    }
    const std::string folder = detail::absolutePath(bytes);
    if (folder.empty()) {
        return nullptr;
    }
    // The path of the main bundle gives the main bundle, with its program and its role.
    detail::BundleRecord* const main = detail::currentMainRecord();
    if (main->layout.folder == folder) {
        return NSBundle(main);
    }
    return NSBundle(detail::recordFor(detail::layoutOfFolder(folder), detail::BundleRole::other, ""));
}

NSDictionary NSBundle::infoDictionary() const {
    const detail::CallerState callerState;
    return record_ != nullptr ? detail::infoOf(*record_) : NSDictionary();
}

NSString NSBundle::bundleIdentifier() const {
    const NSString identifier = infoDictionary().objectForKey("CFBundleIdentifier").as<NSString>();
    return identifier.length() > 0 ? identifier : NSString();
}

NSObject NSBundle::objectForInfoDictionaryKey(StringView key) const {
    if (record_ == nullptr || !key) {
        return nullptr;
    }
    const detail::CallerState callerState;
    // Translations come first, for names and descriptions that users see.
    if (NSString localized = detail::textInTable(*record_, key, "InfoPlist")) {
        return localized;
    }
    return detail::infoOf(*record_).objectForKey(key);
}

NSString NSBundle::bundlePath() const {
    return record_ != nullptr ? detail::textOfPath(record_->layout.folder) : NSString();
}

NSString NSBundle::resourcePath() const {
    return record_ != nullptr ? detail::textOfPath(record_->layout.resources) : NSString();
}

NSString NSBundle::executablePath() const {
    if (record_ == nullptr) {
        return nullptr;
    }
    const detail::CallerState callerState;
    // The main bundle's program is the running one, whatever its Info dictionary says.
    const std::string program = record_->program.empty() ? detail::programOf(*record_) : record_->program;
    return program.empty() ? NSString() : detail::textOfPath(program);
}

NSArray NSBundle::localizations() const {
    const detail::CallerState callerState;
    bool isKnown = true;
    return record_ != nullptr ? detail::textsOf(detail::localizationsOf(*record_, isKnown)) : NSArray();
}

NSArray NSBundle::preferredLocalizations() const {
    const detail::CallerState callerState;
    bool isKnown = true;
    return record_ != nullptr ? detail::textsOf(detail::preferredOf(*record_, isKnown)) : NSArray();
}

NSString NSBundle::developmentLocalization() const {
    const detail::CallerState callerState;
    return record_ != nullptr ? detail::regionOf(*record_) : NSString();
}

NSString NSBundle::localizedStringForKey_value_table(const NSString& key, const NSString& value,
                                                     StringView table) const {
    if (record_ == nullptr) {
        return nullptr;
    }
    // Without a key there is nothing to look up, and no key to show in place of a text.
    if (!key) {
        return value ? value : NSString("");
    }
    const detail::CallerState callerState;
    if (NSString text = detail::textInTable(*record_, key, table)) {
        return text;
    }
    // An empty value counts as none, so that a missing text shows its key.
    return value.length() > 0 ? value : key;
}

} // namespace ZQFoundation
