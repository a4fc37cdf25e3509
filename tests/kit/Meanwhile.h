// SPDX-License-Identifier: MIT
// A thread beside the test's own.
#ifndef ZQFOUNDATION_TESTS_KIT_MEANWHILE_H
#define ZQFOUNDATION_TESTS_KIT_MEANWHILE_H

#include <atomic>
#include <thread>

namespace ZQFoundation::kit {

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
