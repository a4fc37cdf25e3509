// SPDX-License-Identifier: MIT
// What both plugins are made of; each is compiled and linked on its own.
#ifndef ZQFOUNDATION_TESTS_PLUGINS_PLUGINBODY_H
#define ZQFOUNDATION_TESTS_PLUGINS_PLUGINBODY_H

#include <ZQFoundation/ZQFoundation.h>

#define ZQ_PLUGIN_ENTRY extern "C" __attribute__((visibility("default")))

namespace {

class Raising : public ZQFoundation::NSObjectProtocol {
public:
    ZQFoundation::NSString description() const override {
        ZQFoundation::NSException::raise_format(ZQFoundation::NSGenericException, "from %s", "a plugin");
    }
};

ZQFoundation::ZQLog::Synchronized* heldMonitor = nullptr;

constinit const ZQFoundation::ZQTraceKey traceShared("TraceShared");

} // namespace

ZQ_PLUGIN_ENTRY void setKey(const char* key, bool isOn) {
    ZQFoundation::NSUserDefaults::standardUserDefaults().setObject_forKey(isOn, key);
    const ZQFoundation::ZQLog::Synchronized monitor;
    ZQFoundation::ZQLog::initializeTraceDefaultsDict();
}

ZQ_PLUGIN_ENTRY bool keyIsOn(const char* key) { return ZQFoundation::ZQLog::traceKeyIsEnabled(key); }

ZQ_PLUGIN_ENTRY bool ownKeyIsOn() { return traceShared.isEnabled(); }

ZQ_PLUGIN_ENTRY void logForKey(const char* key, const char* text) {
    ZQFoundation::ZQLog::logForTraceKey_usingFormat(key, "%@", text);
}

ZQ_PLUGIN_ENTRY void enterMonitor() { heldMonitor = new ZQFoundation::ZQLog::Synchronized; }

ZQ_PLUGIN_ENTRY void leaveMonitor() { delete heldMonitor; }

ZQ_PLUGIN_ENTRY void* makeRaisingObject() {
    return new ZQFoundation::NSObject(ZQFoundation::makeObject<Raising>());
}

ZQ_PLUGIN_ENTRY bool logCatches(const void* object) {
    try {
        ZQFoundation::ZQLog::logWithFormat("%@", *static_cast<const ZQFoundation::NSObject*>(object));
    } catch (const ZQFoundation::NSException& exception) {
        return exception.reason() == ZQFoundation::NSString("from a plugin");
    }
    return false;
}

ZQ_PLUGIN_ENTRY void releaseObject(void* object) { delete static_cast<ZQFoundation::NSObject*>(object); }

#endif
