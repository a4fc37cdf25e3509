// SPDX-License-Identifier: MIT
// Signals that come at any moment, to threads that allocate and log, with a handler that logs too.
#ifndef ZQFOUNDATION_TESTS_PLUGINS_STORM_H
#define ZQFOUNDATION_TESTS_PLUGINS_STORM_H

extern "C" {

/// Interrupts so many threads so often each, one thread after the other. Returns the number of lines that the
/// handler has written, or a negative number when a call in it gave a wrong answer.
long storm(int threads, int interruptions);
}

#endif
