// SPDX-License-Identifier: MIT
// Looks up settings in their domains.
// The order of domains is the whole meaning of this file: command line, environment, application, global,
// language, registered. The first one with the key decides.
#include "foundation/process/NSUserDefaults.h"

#include "foundation/files/FileError.h"
#include "foundation/objects/NSException.h"
#include "foundation/objects/NSNumber.h"
#include "foundation/process/CommandLineDefaults.h"
#include "foundation/process/DefaultsChanges.h"
#include "foundation/process/DefaultsFiles.h"
#include "foundation/process/DefaultsSaving.h"
#include "foundation/process/LanguageSettings.h"
#include "foundation/process/NSBundle.h"
#include "foundation/process/NSProcessInfo.h"
#include "foundation/process/ProcessIdentity.h"
#include "foundation/process/PropertyListValue.h"
#include "foundation/system/CallerState.h"
#include "foundation/system/Published.h"
#include "foundation/system/TestOverrides.h"

namespace ZQFoundation {

namespace {

constexpr const char languagesKey[] = "AppleLanguages";
constexpr const char globalDomain[] = "NSGlobalDomain";

constinit detail::DomainFile applicationFile;
constinit detail::DomainFile globalFile;
constinit std::atomic<const NSDictionary*> commandLine{nullptr};

/// The last value read of the variable ZQ_DEFAULTS.
struct EnvironmentDefaults {
    std::string text;
    NSDictionary values;
};
constinit detail::Published<EnvironmentDefaults> environmentDefaults;

constinit detail::DefaultsChanges applicationChanges;
constinit detail::Published<NSDictionary> registeredValues;
constinit detail::Lock registering; // serializes registrations
constinit detail::Lock saving;

NSDictionary registered() {
    return registeredValues.read(
        [](const NSDictionary* known) { return known != nullptr ? *known : NSDictionary(); });
}

// Read once: the command line of a process never changes. If the arguments cannot be read, the next call
// tries again.
NSDictionary commandLineDomain() {
    if (detail::overrides::arguments != nullptr) {
        return detail::defaultsFromArguments(*detail::overrides::arguments);
    }
    if (const NSDictionary* known = commandLine.load(std::memory_order_acquire)) {
        return *known;
    }
    const std::vector<std::string> arguments = detail::processArguments();
    const NSDictionary values = detail::defaultsFromArguments(arguments);
    return arguments.empty() ? values : detail::publishOnce(commandLine, new NSDictionary(values));
}

// Compared with the text that was parsed last, so that a host may change the variable, and an unchanged one
// costs a comparison.
NSDictionary environmentDomain() {
    const char* const text = detail::system::environmentVariable("ZQ_DEFAULTS");
    if (text == nullptr) {
        return nullptr;
    }
    const NSDictionary known = environmentDefaults.read([text](const EnvironmentDefaults* read) {
        return read != nullptr && read->text == text ? read->values : NSDictionary();
    });
    if (known) {
        return known;
    }
    const NSDictionary values = detail::defaultsFromText(text);
    environmentDefaults.replace(new EnvironmentDefaults{text, values});
    return values;
}

// The bundle identifier names the domain; a program without one uses its process name.
std::string pathOfApplicationFile() {
    const NSString identifier = NSBundle::mainBundle().bundleIdentifier();
    return detail::fileOfDomain(identifier ? identifier : NSProcessInfo::processInfo().processName());
}

NSDictionary applicationFileValues() { return applicationFile.values(pathOfApplicationFile()); }

NSDictionary globalFileValues() { return globalFile.values(detail::fileOfDomain(globalDomain)); }

NSArray languages() {
    NSMutableArray result;
    for (const std::string& language : detail::languagesFromEnvironment()) {
        result.addObject(language);
    }
    return result.array();
}

// An unsaved change hides the file's value, and a removal hides it as well.
NSObject applicationValue(StringView key) {
    if (const NSObject changed = applicationChanges.values().objectForKey(key)) {
        return detail::isRemoval(changed) ? NSObject() : changed;
    }
    return applicationFileValues().objectForKey(key);
}

// Only one key has a value here.
NSObject languageValue(StringView key) {
    if (!NSString(languagesKey).isEqualToString(key)) {
        return nullptr;
    }
    const NSArray known = languages();
    return known.count() > 0 ? NSObject(known) : NSObject();
}

/// Adds the entries whose keys are new.
/// So the first domain that is added has precedence.
void addMissing(NSMutableDictionary& merged, const NSDictionary& domain) {
    for (const NSDictionaryEntry& entry : domain) {
        if (!merged.objectForKey(entry.key)) {
            merged.setObject_forKey(entry.value, entry.key);
        }
    }
}

// Checked when it is set, where the mistake is, and not when it is saved.
void demandPropertyListValue(const NSObject& value, const NSObject& key) {
    if (!detail::isPropertyListValue(value)) {
        NSException::raise_format(NSInvalidArgumentException,
                                  "The value for the default %@ is not one that a property list can contain",
                                  key);
    }
}

} // namespace

NSUserDefaults& NSUserDefaults::standardUserDefaults() noexcept {
    static constinit NSUserDefaults instance;
    return instance;
}

NSObject NSUserDefaults::objectForKey(StringView key) const {
    if (!key) {
        return nullptr;
    }
    const detail::CallerState callerState;
    // The domains are searched one after another, so that for a key on the command line no file is checked.
    if (NSObject value = commandLineDomain().objectForKey(key)) {
        return value;
    }
    if (NSObject value = environmentDomain().objectForKey(key)) {
        return value;
    }
    if (NSObject value = applicationValue(key)) {
        return value;
    }
    if (NSObject value = globalFileValues().objectForKey(key)) {
        return value;
    }
    if (NSObject value = languageValue(key)) {
        return value;
    }
    return registered().objectForKey(key);
}

NSDictionary NSUserDefaults::dictionaryRepresentation() const {
    const detail::CallerState callerState;
    NSMutableDictionary merged;
    addMissing(merged, commandLineDomain());
    addMissing(merged, environmentDomain());
    addMissing(merged, detail::withChanges(applicationFileValues(), applicationChanges.values()));
    addMissing(merged, globalFileValues());
    if (const NSArray known = languages(); known.count() > 0) {
        addMissing(merged, NSDictionary{{languagesKey, known}});
    }
    addMissing(merged, registered());
    return merged.dictionary();
}

NSString NSUserDefaults::stringForKey(StringView key) const {
    const NSObject value = objectForKey(key);
    const NSNumber number(value);
    // Numbers have a text, other values do not.
    return number ? number.stringValue() : NSString(value);
}

NSArray NSUserDefaults::arrayForKey(StringView key) const { return NSArray(objectForKey(key)); }

NSDictionary NSUserDefaults::dictionaryForKey(StringView key) const {
    return NSDictionary(objectForKey(key));
}

NSData NSUserDefaults::dataForKey(StringView key) const { return NSData(objectForKey(key)); }

bool NSUserDefaults::boolForKey(StringView key) const { return objectForKey(key).boolValue(); }

std::int64_t NSUserDefaults::integerForKey(StringView key) const {
    const NSObject value = objectForKey(key);
    const NSNumber number(value);
    return number ? number.integerValue() : NSString(value).integerValue();
}

float NSUserDefaults::floatForKey(StringView key) const {
    const NSObject value = objectForKey(key);
    const NSNumber number(value);
    return number ? number.floatValue() : NSString(value).floatValue();
}

double NSUserDefaults::doubleForKey(StringView key) const {
    const NSObject value = objectForKey(key);
    const NSNumber number(value);
    return number ? number.doubleValue() : NSString(value).doubleValue();
}

void NSUserDefaults::setObject_forKey(const NSObject& value, const NSString& key) {
    if (!key) {
        NSException::raise_format(NSInvalidArgumentException, "A default needs a key");
    }
    if (!value) {
        // Setting nil removes, as on the platform.
        removeObjectForKey(key);
        return;
    }
    const detail::CallerState callerState;
    demandPropertyListValue(value, key);
    applicationChanges.add(value, key);
}

void NSUserDefaults::removeObjectForKey(StringView key) {
    if (!key) {
        return;
    }
    const detail::CallerState callerState;
    applicationChanges.add(NSNull::null(), NSString(key));
}

bool NSUserDefaults::synchronize(NSString* error) {
    const detail::CallerState callerState;
    // Threads of one process must not save at once: some kinds of locks belong to the process.
    const detail::Guard<detail::Lock> guard(saving);
    // Changes inherited from a parent are not saved: the parent saves them.
    const detail::DefaultsChanges::Record changes = applicationChanges.own();
    if (changes.values.count() != 0 &&
        !detail::saveDefaults(pathOfApplicationFile(), changes.values, error)) {
        return false;
    }
    // Only what was saved; a key that was set again meanwhile stays a change.
    applicationChanges.forget(changes);
    detail::clearError(error);
    return true;
}

void NSUserDefaults::registerDefaults(const NSDictionary& values) {
    const detail::CallerState callerState;
    // All are checked before any is registered.
    for (const NSDictionaryEntry& entry : values) {
        if (!entry.key.as<NSString>()) {
            NSException::raise_format(NSInvalidArgumentException, "The key %@ of a default is not a string",
                                      entry.key);
        }
        demandPropertyListValue(entry.value, entry.key);
    }
    const detail::Guard<detail::Lock> guard(registering);
    // Later registrations win, key by key.
    NSMutableDictionary all(registered());
    for (const NSDictionaryEntry& entry : values) {
        all.setObject_forKey(entry.value, entry.key);
    }
    registeredValues.replace(new NSDictionary(all.dictionary()));
}

} // namespace ZQFoundation
