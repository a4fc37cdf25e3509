// SPDX-License-Identifier: MIT
// A body called by several threads at once.
#ifndef ZQFOUNDATION_TESTS_KIT_THREADS_H
#define ZQFOUNDATION_TESTS_KIT_THREADS_H

#include <cstddef>
#include <thread>
#include <vector>

namespace ZQFoundation::kit {

/// Calls the body with the numbers from 0 on, each in a thread of its own, and waits for all of them.
template <class Body>
void inThreads(std::size_t count, const Body& body) {
    std::vector<std::thread> threads;
    for (std::size_t number = 0; number < count; ++number) {
        threads.emplace_back([&body, number] { body(number); });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
}

} // namespace ZQFoundation::kit

#endif
