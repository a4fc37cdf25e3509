// SPDX-License-Identifier: MIT
// Parent and child on one processor.
#ifndef ZQFOUNDATION_TESTS_KIT_ONEPROCESSOR_H
#define ZQFOUNDATION_TESTS_KIT_ONEPROCESSOR_H

#include <algorithm>

#include <sched.h>

namespace ZQFoundation::kit {

/// Keeps this process and its children on one processor for a scope. A parent that traces its child takes
/// turns with it, and waking each other up across processors takes several times as long.
class OneProcessor {
public:
    OneProcessor() {
        cpu_set_t one;
        CPU_ZERO(&one);
        CPU_SET(static_cast<unsigned>(std::max(::sched_getcpu(), 0)), &one);
        restores_ = ::sched_getaffinity(0, sizeof before_, &before_) == 0 &&
                    ::sched_setaffinity(0, sizeof one, &one) == 0;
    }
    OneProcessor(const OneProcessor&) = delete;
    OneProcessor& operator=(const OneProcessor&) = delete;
    ~OneProcessor() {
        if (restores_) {
            ::sched_setaffinity(0, sizeof before_, &before_);
        }
    }

private:
    cpu_set_t before_{};
    bool restores_ = false;
};

} // namespace ZQFoundation::kit

#endif
