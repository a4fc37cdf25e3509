// SPDX-License-Identifier: MIT
// A document that is open, and the header at its beginning.
#ifndef ZQFOUNDATION_VIEWER_DOCUMENT_H
#define ZQFOUNDATION_VIEWER_DOCUMENT_H

#include <string>
#include <string_view>

#include <ZQFoundation/ZQFoundation.h>

/// The head of a document: lines "Name: value" up to the first empty line.
struct DocumentHeader {
    ZQFoundation::NSDictionary fields; ///< name to value, both strings; empty without a header
    std::size_t bodyStart = 0;         ///< where the text after the empty line begins
};

/// A text without a header has no fields and a body that starts at 0.
DocumentHeader parseHeader(std::string_view text);

/// One open document. It implements NSObjectProtocol, so it can be passed for "%@" and stored in collections.
class Document : public ZQFoundation::NSObjectProtocol {
public:
    /// Reads the file. False, with the reason in words, if it cannot be read or is not UTF-8 text.
    bool load(const std::string& path, std::string& reason);

    /// From the header, else the file's name.
    const ZQFoundation::NSString& title() const { return title_; }

    /// Valid as long as the document.
    std::string_view text() const { return text_; }
    std::string_view body() const { return std::string_view(text_).substr(header_.bodyStart); }

    /// "Document "Title", 139 bytes".
    ZQFoundation::NSString description() const override;

private:
    std::string text_;
    DocumentHeader header_;
    ZQFoundation::NSString title_;
};

#endif
