// SPDX-License-Identifier: MIT
// Environment variables, overrides of the system's facts and locales that are restored after a scope.
#ifndef ZQFOUNDATION_TESTS_KIT_ENVIRONMENT_H
#define ZQFOUNDATION_TESTS_KIT_ENVIRONMENT_H

#include <clocale>
#include <cstdlib>
#include <cstring>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <time.h>
#include <unistd.h>

#include "foundation/system/TestOverrides.h"
#include "foundation/time/NSTimeZone.h"

namespace ZQFoundation::kit {

/// An environment variable set, or unset by a null pointer, for a scope. The process's zone follows TZ.
class Variable {
public:
    Variable(const char* name, const char* value) : name_(name) {
        if (const char* const before = std::getenv(name)) {
            before_ = before;
        }
        change(value);
    }
    Variable(const Variable&) = delete;
    Variable& operator=(const Variable&) = delete;
    ~Variable() { change(before_ ? before_->c_str() : nullptr); }

    void change(const char* value) const {
        if (value != nullptr) {
            ::setenv(name_, value, 1);
        } else {
            ::unsetenv(name_);
        }
        if (std::strcmp(name_, "TZ") == 0) {
            NSTimeZone::resetSystemTimeZone();
        }
    }

private:
    const char* name_;
    std::optional<std::string> before_;
};

/// TZ for a scope, for the C library as well, which does not look at it by itself.
class TimeZone {
public:
    explicit TimeZone(const char* name) : variable_("TZ", name) { ::tzset(); }
    TimeZone(const TimeZone&) = delete;
    TimeZone& operator=(const TimeZone&) = delete;

    void change(const char* name) const {
        variable_.change(name);
        ::tzset();
    }

private:
    struct ReadAtTheEnd {
        ~ReadAtTheEnd() { ::tzset(); }
    };

    ReadAtTheEnd last_;
    Variable variable_;
};

/// Scratch folders are in memory for a scope, where the machine has such a place: thousands of items would
/// keep a disk busy. No thread may be running when it begins or ends.
class ScratchInMemory {
private:
    Variable place_{"TMPDIR", ::access("/dev/shm", W_OK | X_OK) == 0 ? "/dev/shm" : std::getenv("TMPDIR")};
};

/// Points a pointer of the overrides to a value of its own for a scope.
template <class Value>
class Replaced {
public:
    Replaced(const Value*& slot, Value value) : slot_(slot), before_(slot), value_(std::move(value)) {
        slot_ = &value_;
    }
    Replaced(const Replaced&) = delete;
    Replaced& operator=(const Replaced&) = delete;
    ~Replaced() { slot_ = before_; }

private:
    const Value*& slot_;
    const Value* before_;
    Value value_;
};

using Arguments = Replaced<std::vector<std::string>>;
using Path = Replaced<std::string>;

/// Only the language settings that a test makes.
struct NoLanguages {
    Variable language{"LANGUAGE", nullptr};
    Variable all{"LC_ALL", nullptr};
    Variable messages{"LC_MESSAGES", nullptr};
    Variable numeric{"LC_NUMERIC", nullptr};
    Variable lang{"LANG", nullptr};
};

/// Sets the C library to a locale with a decimal comma, made by the build, for a scope. A test asserts
/// isSet(), since it would show nothing with a decimal point.
class DecimalCommaLocale {
public:
    DecimalCommaLocale()
        : locale_(std::setlocale(LC_ALL, nullptr)), isSet_(std::setlocale(LC_ALL, "de_DE.UTF-8") != nullptr &&
                                                           *std::localeconv()->decimal_point == ',') {}
    DecimalCommaLocale(const DecimalCommaLocale&) = delete;
    DecimalCommaLocale& operator=(const DecimalCommaLocale&) = delete;
    ~DecimalCommaLocale() { std::setlocale(LC_ALL, locale_.c_str()); }
    bool isSet() const { return isSet_; }

private:
    Variable folder_{"LOCPATH", ZQ_TEST_LOCALES};
    std::string locale_;
    bool isSet_;
};

} // namespace ZQFoundation::kit

#endif
