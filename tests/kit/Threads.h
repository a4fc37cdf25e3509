// SPDX-License-Identifier: MIT
// Threads beside the test's own.
#ifndef ZQFOUNDATION_TESTS_KIT_THREADS_H
#define ZQFOUNDATION_TESTS_KIT_THREADS_H

#include <atomic>
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

/// Calls the body again and again in a thread of its own until `end`, which the end of the scope calls too.
class Meanwhile {
public:
    template <class Body>
    explicit Meanwhile(const Body& body)
        : thread_([this, body] {
              while (!ends_) {
                  body();
              }
          }) {}
    Meanwhile(const Meanwhile&) = delete;
    Meanwhile& operator=(const Meanwhile&) = delete;
    ~Meanwhile() { end(); }

    void end() {
        ends_ = true;
        if (thread_.joinable()) {
            thread_.join();
        }
    }

private:
    std::atomic<bool> ends_{false};
    std::thread thread_;
};

} // namespace ZQFoundation::kit

#endif
