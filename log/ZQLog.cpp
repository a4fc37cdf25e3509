// SPDX-License-Identifier: MIT
#include "log/ZQLog.h"

#include "foundation/process/LineWriter.h"
#include "foundation/process/NSProcessInfo.h"
#include "foundation/time/NSDateFormatter.h"

namespace ZQFoundation {

namespace {

/// Makes the formatter at the first request and keeps it. Two threads that ask at the same moment for the
/// first time may each make one; one of the two is kept.
const NSDateFormatter& sharedFormatter(const NSDateFormatter*& shared, const char* dateFormat) {
    const NSDateFormatter* known = __atomic_load_n(&shared, __ATOMIC_ACQUIRE);
    if (known == nullptr) {
        auto* const formatter = new NSDateFormatter;
        formatter->setDateFormat(dateFormat);
        if (__atomic_compare_exchange_n(&shared, &known, formatter, false, __ATOMIC_ACQ_REL,
                                        __ATOMIC_ACQUIRE)) {
            return *formatter;
        }
        delete formatter;
    }
    return *known;
}

constinit const NSDateFormatter* _dateFormatterLong = nullptr;
constinit const NSDateFormatter* _dateFormatterShort = nullptr;

} // namespace

void ZQLog::logAlways_log(bool logAlways, StringView text) {
    if (detail::passesGates(logAlways, text)) {
        detail::writeLine(text);
    }
}

NSString ZQLog::logAlways_logString(bool logAlways, const NSString& text) {
    return logAlways ? text : NSString();
}

NSString ZQLog::logPrefix() {
    const NSString date = dateFormatterLong().stringFromDate(NSDate::date());
    NSProcessInfo& process = NSProcessInfo::processInfo();
    return NSString::stringWithFormat("%@ %@[%d]: ", date, process.processName(),
                                      process.processIdentifier());
}

const NSDateFormatter& ZQLog::dateFormatterLong() {
    return sharedFormatter(_dateFormatterLong, "yyyy'-'MM'-'dd' 'HH':'mm':'ss'.'SSS");
}

const NSDateFormatter& ZQLog::dateFormatterShort() {
    return sharedFormatter(_dateFormatterShort, "yyyyMMdd'-'HHmm");
}

} // namespace ZQFoundation
