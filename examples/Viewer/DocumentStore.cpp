// SPDX-License-Identifier: MIT
// Opening documents.
#include "DocumentStore.h"

#include <utility>

#include "TraceKeys.h"

using namespace ZQFoundation;

DocumentStore& DocumentStore::sharedStore() {
    static DocumentStore store;
    // An operation of the class has no `this`; it names its class: "+[DocumentStore sharedStore]".
    ZQLog::logSelf_method_logAlways_logForTraceKey_usingFormat(
        classOf<DocumentStore>(), __func__, true, TraceKeys::documents, "%lu open", store.count());
    return store;
}

const Document* DocumentStore::open(const std::string& path, std::string& reason) {
    auto document = std::make_unique<Document>();
    if (!document->load(path, reason)) {
        ZQLog::logSelf_method_logAlways_logForTraceKey_usingFormat(this, __func__, true, TraceKeys::documents,
                                                                   "cannot open %@: %@", path, reason);
        return nullptr;
    }
    documents_.push_back(std::move(document));
    return documents_.back().get();
}
