// SPDX-License-Identifier: MIT
// Checks property lists and string tables with the library's own parsers, so that a file that passes can also
// be read at run time.
#include "tools/defaults/Lint.h"

#include <map>

#include "foundation/objects/NSDictionary.h"
#include "foundation/objects/NSNumber.h"
#include "foundation/plist/FileContents.h"
#include "foundation/plist/PropertyList.h"
#include "foundation/process/DictionaryFile.h"
#include "foundation/process/FileReading.h"
#include "tools/common/Program.h"
#include "tools/defaults/Conversions.h"

namespace ZQFoundation::tools::defaults {

namespace {

/// A string table of one language.
struct Table {
    std::string path;
    NSDictionary texts;
};

/// Tables of one name, one for each language.
using Family = std::vector<Table>;

bool isStringTable(const std::string& path) { return NSString(path).hasSuffix(".strings"); }

/// The last `count` components of a path: "en.lproj/Localizable.strings" for 2.
std::string lastNames(const std::string& path, int count) {
    std::size_t start = path.size();
    while (count-- > 0 && start != std::string::npos && start != 0) {
        start = path.rfind('/', start - 1);
    }
    return start == std::string::npos ? path : path.substr(start + 1);
}

/// The same for all languages of a table, with "*" for the language; empty for a table outside the language
/// folders, which is not compared with any other.
std::string familyName(const std::string& path) {
    const std::string table = lastNames(path, 1);
    const std::string folder = path.substr(0, path.size() - lastNames(path, 2).size());
    const NSString language(lastNames(path, 2).substr(0, lastNames(path, 2).size() - table.size()));
    return language.hasSuffix(".lproj/") ? folder + "*/" + table : std::string();
}

/// Collects the faults of all files. Tables are compared after the last one was read, when all languages are
/// known.
class Linter {
public:
    /// The name decides how the file is read, as the library reads tables of this name.
    void look(const std::string& path) {
        path_ = path;
        std::string bytes;
        if (!read(bytes)) {
            return;
        }
        detail::PropertyListError error;
        const auto* const start = reinterpret_cast<const unsigned char*>(bytes.data());
        if (isStringTable(path)) {
            lookAtTable(detail::parseStringsFileBytes(start, bytes.size(), &error), error);
        } else {
            lookAtList(detail::parsePropertyListBytes(start, bytes.size(), &error), error);
        }
    }

    /// Each table is compared with all others of its family, so a key that one lacks is reported there.
    void compareLanguages() {
        for (const auto& [name, family] : families_) {
            for (const Table& table : family) {
                path_ = table.path;
                compare(table, family);
            }
        }
    }

    std::vector<std::string> faults() const { return faults_; }

private:
    template <class... Arguments>
    void addFault(FormatString<std::type_identity_t<Arguments>...> format, const Arguments&... arguments) {
        faults_.push_back(path_ + ": " + NSString::stringWithFormat(format, arguments...).utf8());
    }

    /// Without blocking: a pipe among the files must not make the command wait.
    bool read(std::string& bytes) {
        const detail::Descriptor file(
            detail::openAt(AT_FDCWD, path_.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY));
        NSString reason;
        if (!file || !detail::readBytes(file, path_, bytes, &reason)) {
            if (!file) {
                detail::refuseWith(&reason, path_, errno);
            }
            faults_.push_back(reason.utf8()); // which names the file
            return false;
        }
        return true;
    }

    void addFaultAtPlace(const detail::PropertyListError& error) {
        if (error.line > 0) {
            faults_.push_back(
                NSString::stringWithFormat("%@:%lu:%lu: %s", path_, error.line, error.column, error.message)
                    .utf8());
        } else {
            addFault("%@", detail::describePropertyListError(error));
        }
    }

    void lookAtList(const NSObject& value, const detail::PropertyListError& error) {
        if (!value) {
            addFaultAtPlace(error);
        } else if (!value.as<NSDictionary>() && !value.as<NSArray>()) {
            addFault("this is a single value, not a dictionary or an array");
        }
    }

    /// Every value must be text; a number or a list cannot be shown.
    void lookAtTable(const NSDictionary& texts, const detail::PropertyListError& error) {
        if (!texts) {
            addFaultAtPlace(error);
            return;
        }
        for (const NSDictionaryEntry& entry : texts) {
            if (!entry.value.as<NSString>()) {
                addFault("the value of \"%@\" is not text", entry.key);
            }
        }
        const std::string name = familyName(path_);
        if (!name.empty()) {
            families_[name].push_back({path_, texts});
        }
    }

    /// Compares each text with that in the first table that has its key.
    void compare(const Table& table, const Family& family) {
        NSMutableDictionary seen;
        for (const Table& other : family) {
            for (const NSDictionaryEntry& entry : other.texts) {
                if (!seen.objectForKey(entry.key)) {
                    seen.setObject_forKey(true, entry.key);
                    compareText(table, other, NSString(entry.key), NSString(entry.value));
                }
            }
        }
    }

    /// If a table lacks a key, the user sees the key. A text that takes other arguments shows a wrong value,
    /// which the table alone does not reveal.
    void compareText(const Table& table, const Table& other, const NSString& key, const NSString& otherText) {
        const NSObject text = table.texts.objectForKey(key);
        if (!text) {
            addFault("there is no \"%@\", which %@ has", key, lastNames(other.path, 2));
            return;
        }
        const std::string conversions = conversionsOf(NSString(text));
        const std::string otherConversions = conversionsOf(otherText);
        if (conversions != otherConversions) {
            addFault("\"%@\" takes %@, but %@ in %@", key, shown(conversions), shown(otherConversions),
                     lastNames(other.path, 2));
        }
    }

    /// For a message: "takes no arguments".
    static std::string shown(const std::string& conversions) {
        return conversions.empty() ? "no arguments" : conversions;
    }

    std::string path_;
    std::vector<std::string> faults_;
    std::map<std::string, Family> families_;
};

} // namespace

// A file without a family is only read: a comparison needs at least two tables.
std::vector<std::string> faultsOf(const std::vector<std::string>& paths) {
    Linter linter;
    for (const std::string& path : paths) {
        linter.look(path);
    }
    linter.compareLanguages();
    return linter.faults();
}

} // namespace ZQFoundation::tools::defaults
