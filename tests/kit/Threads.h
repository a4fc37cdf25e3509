// SPDX-License-Identifier: MIT
// Threads beside the test's own.
#ifndef ZQFOUNDATION_TESTS_KIT_THREADS_H
#define ZQFOUNDATION_TESTS_KIT_THREADS_H

#include <atomic>
#include <cstddef>
#include <thread>
#include <type_traits>
#include <vector>

namespace ZQFoundation::kit {

/// Threads that call the body with the numbers from 0 on; the end of the scope waits for all of them.
class Threads {
public:
    template <class Body>
    Threads(std::size_t count, const Body& body) {
        for (std::size_t number = 0; number < count; ++number) {
            threads_.emplace_back([body, number] { body(number); });
        }
    }
    Threads(const Threads&) = delete;
    Threads& operator=(const Threads&) = delete;
    ~Threads() { join(); }

    void join() {
        for (std::thread& thread : threads_) {
            thread.join();
        }
        threads_.clear();
    }

private:
    std::vector<std::thread> threads_;
};

/// Calls the body with the numbers from 0 on, each in a thread of its own, and waits for all of them.
template <class Body>
void inThreads(std::size_t count, const Body& body) {
    const Threads threads(count, [&body](std::size_t number) { body(number); });
}

/// Calls the body again and again in threads of its own, with their numbers if it takes one, until `end`,
/// which the end of the scope calls too.
class Meanwhile {
public:
    template <class Body>
    explicit Meanwhile(const Body& body, std::size_t count = 1)
        : threads_(count, [this, body](std::size_t number) {
              while (!ends_) {
                  if constexpr (std::is_invocable_v<const Body&, std::size_t>) {
                      body(number);
                  } else {
                      static_cast<void>(number);
                      body();
                  }
              }
          }) {}
    Meanwhile(const Meanwhile&) = delete;
    Meanwhile& operator=(const Meanwhile&) = delete;
    ~Meanwhile() { end(); }

    void end() {
        ends_ = true;
        threads_.join();
    }

private:
    std::atomic<bool> ends_{false};
    Threads threads_;
};

} // namespace ZQFoundation::kit

#endif
