// SPDX-License-Identifier: MIT
#ifndef ZQFOUNDATION_OBJECTS_NSDATE_H
#define ZQFOUNDATION_OBJECTS_NSDATE_H

#include "NSObject.h"

namespace ZQFoundation {

/// Seconds, with fraction.
using NSTimeInterval = double;

/// An instant: seconds from the reference instant 2001-01-01 00:00:00 UTC, held in the handle.
class ZQFOUNDATION_EXPORT NSDate : public NSObject {
public:
    constexpr NSDate() noexcept = default;
    constexpr NSDate(std::nullptr_t) noexcept {}

    /// The value when it is a date, else nil.
    explicit NSDate(const NSObject& object) noexcept : NSObject(object, detail::Kind::date) {}

    /// Now.
    static NSDate date();

    static constexpr NSDate dateWithTimeIntervalSinceReferenceDate(NSTimeInterval seconds) noexcept {
        return NSDate(Payload{.real = seconds});
    }
    static constexpr NSDate dateWithTimeIntervalSince1970(NSTimeInterval seconds) noexcept {
        return NSDate(Payload{.real = seconds - timeIntervalBetween1970AndReferenceDate});
    }

    static constexpr NSTimeInterval timeIntervalBetween1970AndReferenceDate = 978307200.0;

    /// 0 for nil.
    NSTimeInterval timeIntervalSinceReferenceDate() const noexcept {
        return kind_ == detail::Kind::date ? payload_.real : 0;
    }
    NSTimeInterval timeIntervalSince1970() const noexcept {
        return kind_ == detail::Kind::date ? payload_.real + timeIntervalBetween1970AndReferenceDate : 0;
    }
    NSTimeInterval timeIntervalSinceDate(const NSDate& other) const noexcept {
        return timeIntervalSinceReferenceDate() - other.timeIntervalSinceReferenceDate();
    }

    NSComparisonResult compare(const NSDate& other) const noexcept;
    bool isEqualToDate(const NSDate& other) const noexcept;

private:
    constexpr explicit NSDate(Payload payload) noexcept : NSObject(payload, detail::Kind::date) {}
};

} // namespace ZQFoundation

#endif
