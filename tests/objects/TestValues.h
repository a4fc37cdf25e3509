// SPDX-License-Identifier: MIT
#ifndef ZQFOUNDATION_TESTS_OBJECTS_TESTVALUES_H
#define ZQFOUNDATION_TESTS_OBJECTS_TESTVALUES_H

#include <optional>
#include <ostream>
#include <string>

#include "foundation/objects/NSException.h"
#include "foundation/objects/NSObject.h"
#include "foundation/objects/NSObjectProtocol.h"

/// What the tests of the values share.
namespace TestValues {

/// The text as UTF-8, told apart from the empty text when it is nil.
inline std::string utf8Of(const ZQFoundation::NSString& text) { return text ? text.utf8() : "(nil)"; }

/// The value's description as UTF-8.
inline std::string shown(const ZQFoundation::NSObject& value) { return utf8Of(value.description()); }

/// The name of the exception that the action raises, or "nothing".
template <class Action>
std::string raised(const Action& action) {
    try {
        action();
    } catch (const ZQFoundation::NSException& exception) {
        return utf8Of(exception.name());
    }
    return "nothing";
}

/// A host's object that offers the forms it was made with and counts, if asked to, when it goes.
class Offering : public ZQFoundation::NSObjectProtocol {
public:
    std::optional<ZQFoundation::NSString> offeredString;
    std::optional<int> offeredInt;
    std::optional<float> offeredFloat;
    int* destroyed = nullptr;

    Offering() = default;
    explicit Offering(int* counter) : destroyed(counter) {}
    Offering(std::optional<ZQFoundation::NSString> string, std::optional<int> integer,
             std::optional<float> real = {})
        : offeredString(string), offeredInt(integer), offeredFloat(real) {}
    ~Offering() override {
        if (destroyed != nullptr) {
            ++*destroyed;
        }
    }

    std::optional<ZQFoundation::NSString> stringValue() const override { return offeredString; }
    std::optional<int> intValue() const override { return offeredInt; }
    std::optional<float> floatValue() const override { return offeredFloat; }
};

/// A host's object with the description it was made with.
class Described : public ZQFoundation::NSObjectProtocol {
public:
    explicit Described(ZQFoundation::NSString text) : text_(text) {}
    ZQFoundation::NSString description() const override { return text_; }

private:
    ZQFoundation::NSString text_;
};

} // namespace TestValues

#endif
