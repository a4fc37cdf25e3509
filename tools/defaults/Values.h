// SPDX-License-Identifier: MIT
// Declares values in the syntax of the command line.
#ifndef ZQFOUNDATION_DEFAULTS_VALUES_H
#define ZQFOUNDATION_DEFAULTS_VALUES_H

#include "foundation/objects/NSDictionary.h"
#include "tools/common/Program.h"

namespace ZQFoundation::tools::defaults {

/// What to do with the words after a key: a value that replaces the old one, or elements or entries that are
/// added to it.
struct WrittenValue {
    enum class Manner { replace, addToArray, addToDictionary };

    Manner manner = Manner::replace;
    NSObject value; ///< an array or a dictionary for the other two
};

/// The value of the words from `first` on: "-int 3", "-array a b", "( a, b )", "text". Fails with a message
/// if they do not form a value, or if words are left over.
WrittenValue valueFromWords(const Words& words, std::size_t first);

/// A property list in the old-style or XML form for a word that begins like one, else the word itself.
NSObject valueFromWord(const std::string& word);

/// "boolean", "integer", "float", "string", "array", "dictionary", "date" or "data".
const char* nameOfType(const NSObject& value);

} // namespace ZQFoundation::tools::defaults

#endif
