// SPDX-License-Identifier: MIT
// Reading documents and their headers.
#include "Document.h"

#include <cerrno>
#include <cstring>

#include "Files.h"
#include "TraceKeys.h"

using namespace ZQFoundation;

DocumentHeader parseHeader(std::string_view text) {
    NSMutableDictionary fields;
    std::size_t at = 0;
    while (at < text.size() && text[at] != '\n') {
        const std::size_t end = text.find('\n', at);
        const std::string_view line = text.substr(at, end - at);
        const std::size_t colon = line.find(": ");
        if (colon == std::string_view::npos || end == std::string_view::npos) {
            return {NSDictionary::dictionary(), 0}; // no header after all
        }
        fields.setObject_forKey(line.substr(colon + 2), line.substr(0, colon));
        at = end + 1;
    }
    const DocumentHeader header{fields.dictionary(), at < text.size() ? at + 1 : at};
    // Checked first, because the argument is made before the call would check.
    if (ZQLog::traceKeyIsEnabled(TraceKeys::documents)) {
        ZQLog::logFunctionName_logAlways_logForTraceKey_usingFormat(
            __func__, true, TraceKeys::documents, "%@", header.fields.condensedDescription());
    }
    return header;
}

bool Document::load(const std::string& path, std::string& reason) {
    if (!readFile(path, text_)) {
        reason = std::strerror(errno);
        return false;
    }
    if (!NSString::stringWithUTF8Bytes(text_.data(), text_.size())) {
        reason = "Not a text in UTF-8";
        return false;
    }
    header_ = parseHeader(text_);
    title_ = NSString(header_.fields.objectForKey("Title"));
    if (!title_) {
        title_ = NSString::stringWithFileSystemBytes(path.data(), path.size()).lastPathComponent();
    }
    // "%@" asks this object for its description, and only when the line is really written.
    ZQLog::logSelf_method_logAlways_logForTraceKey_usingFormat(this, __func__, true, TraceKeys::documents,
                                                               "loaded %@", *this);
    return true;
}

NSString Document::description() const {
    return NSString::stringWithFormat("Document \"%@\", %lu bytes", title_, text_.size());
}
