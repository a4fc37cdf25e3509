// SPDX-License-Identifier: MIT
// The store of the open documents.
#ifndef ZQFOUNDATION_VIEWER_DOCUMENTSTORE_H
#define ZQFOUNDATION_VIEWER_DOCUMENTSTORE_H

#include <memory>
#include <string>
#include <vector>

#include "Document.h"

/// The documents that are open.
class DocumentStore {
public:
    /// The one store of the application, made at the first call.
    static DocumentStore& sharedStore();

    /// The opened document, or null with the reason in words. Owned by the store.
    const Document* open(const std::string& path, std::string& reason);

    std::size_t count() const { return documents_.size(); }

private:
    DocumentStore() = default;

    std::vector<std::unique_ptr<Document>> documents_;
};

#endif
