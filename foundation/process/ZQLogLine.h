// SPDX-License-Identifier: MIT
// Declares a finished log line and the type of its observer.
#ifndef ZQFOUNDATION_PROCESS_ZQLOGLINE_H
#define ZQFOUNDATION_PROCESS_ZQLOGLINE_H

#include <string_view>

namespace ZQFoundation {

/// One finished line, as passed to the observer that `ZQLog::setLineObserver` sets. Both texts are valid only
/// until the observer returns; copy them to keep them.
struct ZQLogLine {
    std::string_view text;    ///< the whole line as written, UTF-8, with its prefix, without its line feed
    std::string_view message; ///< what follows the prefix
};

/// A function that is called after each line, with the context that was set with it. It must return, and not
/// throw.
using ZQLogLineObserver = void (*)(const ZQLogLine& line, void* context);

} // namespace ZQFoundation

#endif
