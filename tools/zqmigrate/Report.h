// SPDX-License-Identifier: MIT
// Declares what is printed.
#ifndef ZQFOUNDATION_ZQMIGRATE_REPORT_H
#define ZQFOUNDATION_ZQMIGRATE_REPORT_H

#include "tools/zqmigrate/Run.h"

/// What the user reads, as text that consists of whole lines.
namespace ZQFoundation::tools::zqmigrate {

/// For standard output: a beginning, each item as soon as it is done (failures only in JSON), an end.
std::string beginningOfReport(const Request& request);
std::string reportOfItem(const Request& request, const Item& item, bool isFirst);
std::string endOfReport(const Request& request, const Outcome& outcome);

/// For standard error at the end: the outcome, what is left to do, and what may help. May be empty.
std::string summaryOf(const Request& request, const Outcome& outcome);

/// A line about the program itself for standard error.
std::string messageLine(const NSString& message);

} // namespace ZQFoundation::tools::zqmigrate

#endif
