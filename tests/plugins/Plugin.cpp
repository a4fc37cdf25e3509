// SPDX-License-Identifier: MIT
// Each of two plugins in one process; compiled and linked once for each.
#include <ZQFoundation/ZQFoundation.h>

using namespace ZQFoundation;

#define ZQ_PLUGIN_ENTRY extern "C" __attribute__((visibility("default")))

namespace {

class Raising : public NSObjectProtocol {
public:
    NSString description() const override {
        NSException::raise_format(NSGenericException, "from %s", "a plugin");
    }
};

ZQLog::Synchronized* heldMonitor = nullptr;

constinit const ZQTraceKey traceShared("TraceShared");

} // namespace

ZQ_PLUGIN_ENTRY void setKey(const char* key, bool isOn) {
    NSUserDefaults::standardUserDefaults().setObject_forKey(isOn, key);
    const ZQLog::Synchronized monitor;
    ZQLog::initializeTraceDefaultsDict();
}

ZQ_PLUGIN_ENTRY bool keyIsOn(const char* key) { return ZQLog::traceKeyIsEnabled(key); }

ZQ_PLUGIN_ENTRY bool ownKeyIsOn() { return traceShared.isEnabled(); }

ZQ_PLUGIN_ENTRY void logForKey(const char* key, const char* text) {
    ZQLog::logForTraceKey_usingFormat(key, "%@", text);
}

ZQ_PLUGIN_ENTRY void enterMonitor() { heldMonitor = new ZQLog::Synchronized; }

ZQ_PLUGIN_ENTRY void leaveMonitor() { delete heldMonitor; }

ZQ_PLUGIN_ENTRY void* makeRaisingObject() { return new NSObject(makeObject<Raising>()); }

ZQ_PLUGIN_ENTRY bool logCatches(const void* object) {
    try {
        ZQLog::logWithFormat("%@", *static_cast<const NSObject*>(object));
    } catch (const NSException& exception) {
        return exception.reason() == NSString("from a plugin");
    }
    return false;
}

ZQ_PLUGIN_ENTRY void releaseObject(void* object) { delete static_cast<NSObject*>(object); }
