// SPDX-License-Identifier: MIT
// The log's plain text, prefix, formatters and descriptions of callers.
#include "log/ZQLog.h"

#include <atomic>

#include "foundation/process/LineObserver.h"
#include "foundation/process/LineWriter.h"
#include "foundation/process/NSProcessInfo.h"
#include "foundation/system/Published.h"
#include "foundation/time/NSDateFormatter.h"

namespace ZQFoundation {

namespace {

/// Makes the formatter on first use and keeps it. Two threads that first use it at the same time may each
/// make one; one of the two is kept.
const NSDateFormatter& sharedFormatter(std::atomic<const NSDateFormatter*>& shared, const char* dateFormat) {
    const NSDateFormatter* const known = shared.load(std::memory_order_acquire);
    if (known != nullptr) {
        return *known;
    }
    auto* const formatter = new NSDateFormatter;
    formatter->setDateFormat(dateFormat);
    return detail::publishOnce<NSDateFormatter>(shared, formatter);
}

constinit std::atomic<const NSDateFormatter*> longFormatter{nullptr};
constinit std::atomic<const NSDateFormatter*> shortFormatter{nullptr};

} // namespace

// Every line of the library comes through here or through the composition of calls; both end in the same line
// writer.
void ZQLog::logAlways_log(detail::Flag logAlways, StringView text) {
    if (detail::passesGates(logAlways, text)) {
        detail::writeLine(text);
    }
}

// Nil for nil, so the result is the text that `logAlways_log` would have written, if any.
NSString ZQLog::logAlways_logString(detail::Flag logAlways, const NSString& text) {
    return logAlways ? text : NSString();
}

// Local time to the millisecond, as in the lines that the writer prefixes, but without a thread.
NSString ZQLog::logPrefix() {
    const NSString date = dateFormatterLong().stringFromDate(NSDate::date());
    NSProcessInfo& process = NSProcessInfo::processInfo();
    return NSString::stringWithFormat("%@ %@[%d]: ", date, process.processName(),
                                      process.processIdentifier());
}

void ZQLog::setLineObserver(ZQLogLineObserver observer, void* context) noexcept {
    detail::setLineObserver(observer, context);
}

const NSDateFormatter& ZQLog::dateFormatterLong() {
    return sharedFormatter(longFormatter, "yyyy'-'MM'-'dd' 'HH':'mm':'ss'.'SSS");
}

const NSDateFormatter& ZQLog::dateFormatterShort() {
    return sharedFormatter(shortFormatter, "yyyyMMdd'-'HHmm");
}

} // namespace ZQFoundation
