// SPDX-License-Identifier: MIT
// Internal: not installed.
#ifndef ZQFOUNDATION_PLIST_TEXTREADER_H
#define ZQFOUNDATION_PLIST_TEXTREADER_H

#include "foundation/plist/ContainerStack.h"
#include "foundation/plist/KeyCache.h"
#include "foundation/plist/TextUnits.h"

namespace ZQFoundation::detail {

/// What the readers of old-style and of XML property lists keep: the text and the place in it, the open
/// containers and the failure.
template <class Unit>
class TextReader {
protected:
    TextReader(const Unit* text, std::size_t count)
        : begin_(text), cursor_(text), end_(text + count), strings_(text, count) {}

    /// Notes the failure. Returns false.
    bool fail(const char* message, const Unit* at) noexcept {
        message_ = message;
        failedAt_ = at;
        return false;
    }

    void report(PropertyListError& error) const noexcept {
        error.message = message_;
        locate(begin_, failedAt_, error);
    }

    const Unit* begin_;
    const Unit* cursor_;
    const Unit* end_;
    KeyCache<Unit> strings_;
    ContainerStack stack_;

private:
    const char* message_ = nullptr;
    const Unit* failedAt_ = nullptr;
};

} // namespace ZQFoundation::detail

#endif
