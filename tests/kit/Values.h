// SPDX-License-Identifier: MIT
// Numbers, values as texts, data and sets from texts, raised exceptions by name, and host objects made to
// order.
#ifndef ZQFOUNDATION_TESTS_KIT_VALUES_H
#define ZQFOUNDATION_TESTS_KIT_VALUES_H

#include <limits>
#include <optional>
#include <ostream>
#include <string>
#include <string_view>

#include "foundation/objects/NSCharacterSet.h"
#include "foundation/objects/NSData.h"
#include "foundation/objects/NSDictionary.h"
#include "foundation/objects/NSException.h"
#include "foundation/objects/NSObject.h"
#include "foundation/objects/NSObjectProtocol.h"

namespace ZQFoundation::kit {

inline constexpr double infinity = std::numeric_limits<double>::infinity();
inline constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();
inline constexpr NSRange nowhere{NSNotFound, 0};

/// The text as UTF-8, or "(nil)".
inline std::string utf8Of(const NSString& text) { return text ? text.utf8() : "(nil)"; }

/// The value's description as UTF-8.
inline std::string shown(const NSObject& value) { return utf8Of(value.description()); }

/// The bytes of the data, or "(nil)".
inline std::string bytesOf(const NSData& data) {
    return data ? std::string(reinterpret_cast<const char*>(data.bytes()), data.length()) : "(nil)";
}

inline NSData dataOf(std::string_view bytes) {
    return NSData::dataWithBytes_length(bytes.data(), bytes.size());
}

/// "key0" to 0, and so on.
inline NSDictionary numbered(int count) {
    NSMutableDictionary builder;
    for (int i = 0; i < count; ++i) {
        builder.setObject_forKey(i, NSString("key" + std::to_string(i)));
    }
    return builder.dictionary();
}

inline NSCharacterSet setOf(StringView characters) {
    return NSCharacterSet::characterSetWithCharactersInString(characters);
}

/// The name of the exception that the action raises, or "nothing".
template <class Action>
std::string raised(const Action& action) {
    try {
        action();
    } catch (const NSException& exception) {
        return utf8Of(exception.name());
    }
    return "nothing";
}

/// A host's object that offers the forms it was made with and, if asked to, counts its destruction.
class Offering : public NSObjectProtocol {
public:
    std::optional<NSString> offeredString;
    std::optional<int> offeredInt;
    std::optional<float> offeredFloat;
    int* destroyed = nullptr;

    Offering() = default;
    explicit Offering(int* counter) : destroyed(counter) {}
    Offering(std::optional<NSString> string, std::optional<int> integer, std::optional<float> real = {})
        : offeredString(string), offeredInt(integer), offeredFloat(real) {}
    ~Offering() override {
        if (destroyed != nullptr) {
            ++*destroyed;
        }
    }

    std::optional<NSString> stringValue() const override { return offeredString; }
    std::optional<int> intValue() const override { return offeredInt; }
    std::optional<float> floatValue() const override { return offeredFloat; }
};

/// A host's object with the description it was made with.
class Described : public NSObjectProtocol {
public:
    explicit Described(NSString text) : text_(text) {}
    NSString description() const override { return text_; }

private:
    NSString text_;
};

} // namespace ZQFoundation::kit

#endif
