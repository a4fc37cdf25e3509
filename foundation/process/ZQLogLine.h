// SPDX-License-Identifier: MIT
#ifndef ZQFOUNDATION_PROCESS_ZQLOGLINE_H
#define ZQFOUNDATION_PROCESS_ZQLOGLINE_H

#include <string_view>

namespace ZQFoundation {

/// One finished line, as the observer that `ZQLog::setLineObserver` sets gets it. Both texts are gone when
/// the observer returns; one that keeps them copies them.
struct ZQLogLine {
    std::string_view text;    ///< the whole line as written, UTF-8, with its prefix, without its line feed
    std::string_view message; ///< what follows the prefix
};

/// What is called after each line, with the context that was set along with it. Must return, and not by an
/// exception.
using ZQLogLineObserver = void (*)(const ZQLogLine& line, void* context);

} // namespace ZQFoundation

#endif
