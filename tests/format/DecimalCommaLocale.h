// SPDX-License-Identifier: MIT
#ifndef ZQFOUNDATION_TESTS_FORMAT_DECIMALCOMMALOCALE_H
#define ZQFOUNDATION_TESTS_FORMAT_DECIMALCOMMALOCALE_H

#include <clocale>
#include <cstdlib>
#include <string>

/// Sets the C library to a locale with a decimal comma, made by the build, for as long as it lives. A test
/// asserts isSet(), for with a decimal point it would show nothing.
class DecimalCommaLocale {
public:
    DecimalCommaLocale() : locale_(std::setlocale(LC_ALL, nullptr)) {
        const char* const folder = std::getenv("LOCPATH");
        hasFolder_ = folder != nullptr;
        folder_ = hasFolder_ ? folder : "";
        ::setenv("LOCPATH", ZQ_TEST_LOCALES, 1);
        isSet_ = std::setlocale(LC_ALL, "de_DE.UTF-8") != nullptr && *std::localeconv()->decimal_point == ',';
    }
    DecimalCommaLocale(const DecimalCommaLocale&) = delete;
    DecimalCommaLocale& operator=(const DecimalCommaLocale&) = delete;
    ~DecimalCommaLocale() {
        if (hasFolder_) {
            ::setenv("LOCPATH", folder_.c_str(), 1);
        } else {
            ::unsetenv("LOCPATH");
        }
        std::setlocale(LC_ALL, locale_.c_str());
    }
    bool isSet() const { return isSet_; }

private:
    std::string locale_;
    std::string folder_;
    bool hasFolder_ = false;
    bool isSet_ = false;
};

#endif
