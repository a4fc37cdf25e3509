// SPDX-License-Identifier: MIT
// What the loader needs from both plugins, found by name: neither side sees the other's types.
#ifndef ZQFOUNDATION_TESTS_PLUGINS_PLUGIN_H
#define ZQFOUNDATION_TESTS_PLUGINS_PLUGIN_H

extern "C" {

/// Switches a trace key on, or off, and re-reads the trace keys.
using SetKey = void(const char* key, bool isOn);

using KeyIsOn = bool(const char* key);

/// The same of "TraceShared", by a key of the plugin's own that remembers.
using OwnKeyIsOn = bool();

/// Writes the text while the key is on.
using LogForKey = void(const char* key, const char* text);

using EnterMonitor = void();
using LeaveMonitor = void();

/// A handle to an object whose description raises an exception; and a log call with it, which says whether
/// the exception came out of it as what it is.
using MakeRaisingObject = void*();
using LogCatches = bool(const void* object);
using ReleaseObject = void(void* object);
}

#endif
