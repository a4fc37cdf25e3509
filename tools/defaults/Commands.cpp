// SPDX-License-Identifier: MIT
// The commands of `defaults`: each takes its words, works on a domain, and prints. Any failure ends the
// command with an exception that has a message, so no function returns a result for failures.
#include "tools/defaults/Commands.h"

#include <cstdio>
#include <vector>

#include <unistd.h>

#include "foundation/objects/CollectionWalk.h"
#include "tools/common/Program.h"
#include "tools/common/Text.h"
#include "tools/defaults/DomainFile.h"
#include "tools/defaults/Json.h"
#include "tools/defaults/Lint.h"

namespace ZQFoundation::tools::defaults {

namespace {

/// On a terminal, control characters of a value are escaped: they could move the cursor or start commands. A
/// file or a pipe gets the exact text.
void print(const NSString& text) {
    const bool isShown = ::isatty(STDOUT_FILENO) == 1;
    const std::string bytes = isShown ? onTerminal(text.utf8()) : text.utf8();
    std::fwrite(bytes.data(), 1, bytes.size(), stdout);
    std::fputc('\n', stdout);
}

[[noreturn]] void failWithoutKey(const Domain& domain, const NSString& key) {
    fail("the domain %@ has no key %@", domain.name, key);
}

/// Here, unlike for applications, a domain without a file is the user's mistake.
NSDictionary existingDomain(const Domain& domain) {
    NSDictionary values = readDomain(domain);
    if (!values) {
        fail("there is no domain %@", domain.name);
    }
    return values;
}

/// A missing domain and a missing key have different messages, because either name may be misspelled.
NSObject existingValue(const Domain& domain, const NSString& key) {
    NSObject value = existingDomain(domain).objectForKey(key);
    if (!value) {
        failWithoutKey(domain, key);
    }
    return value;
}

/// An existing key keeps its place in the file.
NSDictionary withValue(const NSDictionary& values, const NSString& key, const NSObject& value) {
    NSMutableDictionary changed(values);
    changed.setObject_forKey(value, key);
    return changed.dictionary();
}

/// The global domain and all others, for commands that search all domains.
std::vector<Domain> allDomains() {
    std::vector<Domain> domains{domainFromWord("-g")};
    for (const std::string& name : namesOfDomains()) {
        domains.push_back(domainOfFile(name));
    }
    return domains;
}

/// Collects domains that cannot be read: the command continues with the others, but fails at the end.
class Unreadable {
public:
    /// Nil for such a domain, and for one that has been removed. Only the first message is kept: one line is
    /// enough.
    NSDictionary read(const Domain& domain) {
        try {
            return readDomain(domain);
        } catch (const Failure& failure) {
            first_ = count_++ == 0 ? failure.message : first_;
            return nullptr;
        }
    }

    /// Fails with a message if there were any.
    void failIfAny() const {
        if (count_ > 1) {
            fail("%@ (and %lu more cannot be read)", first_, count_ - 1);
        }
        if (count_ == 1) {
            throw Failure{first_};
        }
    }

private:
    std::size_t count_ = 0;
    std::string first_;
};

// read

/// How a value is printed: as its description, or as JSON.
using Printer = NSString (*)(const NSObject& value);

NSString asDescription(const NSObject& value) { return value.description(); }
NSString asJson(const NSObject& value) { return jsonOf(value); }

/// Prints what can be read before it fails for what cannot.
void readAllDomains(Printer printer) {
    Unreadable unreadable;
    NSMutableDictionary all;
    for (const Domain& domain : allDomains()) {
        if (const NSDictionary values = unreadable.read(domain)) {
            all.setObject_forKey(values, NSString(domain.name));
        }
    }
    print(printer(all.dictionary()));
    unreadable.failIfAny();
}

/// The option may be anywhere among the words: a domain or key of that name cannot be read, which is
/// acceptable.
void read(const Words& words) {
    Words rest;
    for (const std::string& word : words) {
        if (word != "--json") {
            rest.push_back(word);
        }
    }
    const Printer printer = rest.size() < words.size() ? asJson : asDescription;
    if (rest.size() == 1) {
        readAllDomains(printer);
        return;
    }
    const Domain domain = domainFromWord(rest[1]);
    if (rest.size() == 2) {
        print(printer(existingDomain(domain)));
    } else if (rest.size() == 3) {
        print(printer(existingValue(domain, rest[2])));
    } else {
        misuse("unexpected argument: %@", rest[3]);
    }
}

void readType(const Words& words) {
    const NSObject value = existingValue(domainFromWord(words[1]), words[2]);
    print(NSString::stringWithFormat("Type is %s", nameOfType(value)));
}

// write

/// The new value of a key to which elements or entries are added; if there is no old value, they are the
/// value. An old value of another type is not replaced: the user would lose it.
NSObject added(const NSObject& before, const WrittenValue& addition, const NSString& key) {
    if (addition.manner == WrittenValue::Manner::addToArray) {
        if (before && !NSArray(before)) {
            fail("the value of %@ is not an array but of type %s", key, nameOfType(before));
        }
        NSMutableArray elements;
        elements.addObjectsFromArray(NSArray(before));
        elements.addObjectsFromArray(NSArray(addition.value));
        return elements.array();
    }
    if (before && !NSDictionary(before)) {
        fail("the value of %@ is not a dictionary but of type %s", key, nameOfType(before));
    }
    NSMutableDictionary entries{NSDictionary(before)};
    for (const NSDictionaryEntry& entry : NSDictionary(addition.value)) {
        entries.setObject_forKey(entry.value, entry.key);
    }
    return entries.dictionary();
}

/// A single word after the domain is a dictionary of all values, or a key whose value is missing: a plain
/// text never replaces a domain.
void writeWholeDomain(const Domain& domain, const std::string& word) {
    const NSDictionary values(valueFromWord(word));
    if (!values) {
        misuse("write needs a key and a value, or a dictionary \"{ key = value; }\"");
    }
    changeDomain(domain, [&](const NSDictionary&) { return values; });
}

/// The value is parsed before the file is locked, so that nobody waits because of a mistake in it.
void write(const Words& words) {
    const Domain domain = domainFromWord(words[1]);
    if (words.size() == 3) {
        writeWholeDomain(domain, words[2]);
        return;
    }
    const NSString key(words[2]);
    const WrittenValue written = valueFromWords(words, 3);
    changeDomain(domain, [&](const NSDictionary& values) {
        const bool replaces = written.manner == WrittenValue::Manner::replace;
        return withValue(values, key,
                         replaces ? written.value : added(values.objectForKey(key), written, key));
    });
}

// remove, rename

/// Whether applications find the key in the global domain if this domain does not have it. Applications do
/// not search a file that is given by its path.
bool isSetGlobally(const Domain& domain, const NSString& key) {
    const Domain global = domainFromWord("-g");
    if (!domain.isNamed || domain.name == global.name) {
        return false;
    }
    try {
        return static_cast<bool>(readDomain(global).objectForKey(key));
    } catch (const Failure&) {
        return false; // what cannot be read has no effect in applications either
    }
}

/// Says where the value that the user sees may come from: users usually ask why a command has no effect.
[[noreturn]] void failToRemove(const Domain& domain, const NSString& key) {
    if (isSetGlobally(domain, key)) {
        fail("the domain %@ has no key %@, but the global domain has it (%s remove -g %@)", domain.name, key,
             programName, key);
    }
    fail("the domain %@ has no key %@; an application that sees one has it from its command line or from "
         "ZQ_DEFAULTS, or has registered it itself",
         domain.name, key);
}

/// Fails after the removal, too, if the key remains in effect: a script must not believe that a switch is
/// off.
void removeKey(const Domain& domain, const NSString& key) {
    if (!readDomain(domain)) {
        failToRemove(domain, key); // makes no file, and no folder for one
    }
    changeDomain(domain, [&](const NSDictionary& values) {
        if (!values.objectForKey(key)) {
            failToRemove(domain, key);
        }
        NSMutableDictionary rest(values);
        rest.removeObjectForKey(key);
        return rest.dictionary();
    });
    if (isSetGlobally(domain, key)) {
        fail("%@ was removed from %@, but remains in effect: the global domain has it too (%s remove -g %@)",
             key, domain.name, programName, key);
    }
}

void remove(const Words& words) {
    const Domain domain = domainFromWord(words[1]);
    if (words.size() == 2) {
        removeDomain(domain);
    } else {
        removeKey(domain, words[2]);
    }
}

/// Looks for the key before it opens the domain for writing, which would create its folder, and again under
/// the lock.
void rename(const Words& words) {
    const Domain domain = domainFromWord(words[1]);
    const NSString oldKey(words[2]);
    const NSString newKey(words[3]);
    existingValue(domain, oldKey);
    changeDomain(domain, [&](const NSDictionary& values) {
        const NSObject value = values.objectForKey(oldKey);
        if (!value) {
            failWithoutKey(domain, oldKey);
        }
        if (oldKey == newKey) {
            return values;
        }
        if (values.objectForKey(newKey)) {
            fail("the domain %@ already has a key %@", domain.name, newKey);
        }
        NSMutableDictionary renamed(withValue(values, newKey, value));
        renamed.removeObjectForKey(oldKey);
        return renamed.dictionary();
    });
}

// domains, find

void listDomains(const Words&) {
    NSMutableArray names;
    for (const std::string& name : namesOfDomains()) {
        names.addObject(NSString(name));
    }
    print(names.array().componentsJoinedByString(", "));
}

/// By units and ignoring case, wherever the word is in the text.
bool mentions(const NSString& text, const NSString& word) {
    return text.containsString_caseInsensitiveSearch(word, true);
}

/// Whether the value, or anything inside it, contains the word. Descriptions of collections cannot be
/// searched, because they escape characters. The stack is explicit, because files may be nested deeply.
bool mentionsInside(const NSObject& value, const NSString& word) {
    detail::CollectionWalk walk(value, &NSString::compare);
    while (walk.next()) {
        if (walk.event() == detail::CollectionWalk::Event::leaf &&
            mentions(walk.value().description(), word)) {
            return true;
        }
    }
    return false;
}

/// Prints the entries of the domain that contain the word, and returns their number. If the domain's name
/// contains it, all entries count.
std::size_t findInDomain(const Domain& domain, const NSDictionary& values, const NSString& word) {
    const bool isWhole = mentions(domain.name, word);
    NSMutableDictionary found;
    for (const NSDictionaryEntry& entry : values) {
        if (isWhole || mentions(NSString(entry.key), word) || mentionsInside(entry.value, word)) {
            found.setObject_forKey(entry.value, entry.key);
        }
    }
    const std::size_t count = found.count();
    if (count != 0) {
        print(NSString::stringWithFormat("%lu key%s in the domain %@: %@", count, count == 1 ? "" : "s",
                                         domain.name, found.dictionary()));
    }
    return count;
}

/// Domains that cannot be read are reported first: because of them "nothing found" could be wrong.
void find(const Words& words) {
    Unreadable unreadable;
    std::size_t count = 0;
    for (const Domain& domain : allDomains()) {
        count += findInDomain(domain, unreadable.read(domain), words[1]);
    }
    unreadable.failIfAny();
    if (count == 0) {
        fail("no domain, key or value contains \"%@\"", words[1]);
    }
}

// import, export

/// The file is read before the domain is locked: it may be a pipe whose writer is slow.
void importDomain(const Words& words) {
    const Domain domain = domainFromWord(words[1]);
    const NSDictionary values = readDictionary(words[2]);
    changeDomain(domain, [&](const NSDictionary&) { return values; });
}

/// A domain without a file fails before the file to write is touched.
void exportDomain(const Words& words) { writeDictionary(existingDomain(domainFromWord(words[1])), words[2]); }

// lint

constexpr std::size_t maxLines = 20;

/// Faults are the result of this command, but still go to standard error: scripts check the exit status.
void lint(const Words& words) {
    const std::vector<std::string> faults = faultsOf({words.begin() + 1, words.end()});
    for (std::size_t index = 0; index < faults.size() && index < maxLines; ++index) {
        std::fprintf(stderr, "%s\n", onOneLine(faults[index]).c_str());
    }
    if (faults.size() > maxLines) {
        std::fprintf(stderr, "... and %zu more\n", faults.size() - maxLines);
    }
    if (!faults.empty()) {
        fail("%lu fault%s found", faults.size(), faults.size() == 1 ? "" : "s");
    }
}

/// One form of a command; the forms of the same command are adjacent.
struct Command {
    const char* name;
    const char* arguments; ///< as the help shows them
    const char* purpose;
    std::size_t minWords; ///< including the command's own name
    std::size_t maxWords;
    void (*run)(const Words&);
};

/// For any number of words.
constexpr std::size_t any = static_cast<std::size_t>(-1);

constexpr Command commands[] = {
    {"read", "[--json] [<domain> [<key>]]", "print everything, a domain, or a value", 1, 4, read},
    {"read-type", "<domain> <key>", "print the type of a value", 3, 3, readType},
    {"write", "<domain> <key> [<type>] <value>", "set a value", 4, any, write},
    {"write", "<domain> '{ <key> = <value>; }'", "replace all values of a domain", 3, 3, write},
    {"remove", "<domain> [<key>]", "remove a value, or all of a domain", 2, 3, remove},
    {"delete", "<domain> [<key>]", "the same", 2, 3, remove},
    {"rename", "<domain> <key> <new key>", "rename a key; the new name must be free", 4, 4, rename},
    {"domains", "", "list the domains", 1, 1, listDomains},
    {"find", "<word>", "print what contains the word, ignoring case", 2, 2, find},
    {"import", "<domain> <file>|-", "replace all values of a domain by those in a file", 3, 3, importDomain},
    {"export", "<domain> <file>|-", "write a domain's values to a file, as XML", 3, 3, exportDomain},
    {"lint", "<file>...", "check property lists, and string tables of all languages", 2, any, lint},
};

/// One line, or two if the arguments leave no room for the description.
std::string lineOf(const Command& command) {
    constexpr std::size_t column = 37;
    std::string line = std::string("  ").append(command.name).append(" ").append(command.arguments);
    line.append(line.size() < column - 1 ? "" : "\n");
    line.append(column - (line.back() == '\n' ? 0 : line.size()), ' ');
    return line.append(command.purpose).append("\n");
}

} // namespace

// All forms of a command have the same name, so its help shows them all.
std::string listOfCommands(const std::string& name) {
    std::string list;
    for (const Command& command : commands) {
        list.append(name.empty() || name == command.name ? lineOf(command) : std::string());
    }
    return list;
}

// Runs the first form that takes this number of words. If there is none, shows the first form of the command.
void runCommand(const Words& words) {
    const Command* known = nullptr;
    for (const Command& command : commands) {
        if (words[0] != command.name) {
            continue;
        }
        if (words.size() >= command.minWords && words.size() <= command.maxWords) {
            command.run(words);
            return;
        }
        known = known != nullptr ? known : &command;
    }
    if (known == nullptr) {
        misuse("unknown command %@", words[0]);
    }
    misuse("%s takes: %s %s", known->name, known->name, known->arguments);
}

} // namespace ZQFoundation::tools::defaults
