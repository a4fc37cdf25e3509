// SPDX-License-Identifier: MIT
// Signals that come at any moment, to threads that allocate and log, with a handler that logs too.
#ifndef ZQFOUNDATION_TESTS_PLUGINS_STORM_H
#define ZQFOUNDATION_TESTS_PLUGINS_STORM_H

extern "C" {

/// Interrupts `threads` threads, one after another, `interruptions` times each. Returns the number of lines
/// that the handler has written, or a negative number when a call in it returned a wrong result.
long storm(int threads, int interruptions);
}

#endif
