// SPDX-License-Identifier: MIT
// Dividing a document into pages.
#include "Renderer.h"

#include <ZQFoundation/ZQFoundation.h>

#include "TraceKeys.h"

using namespace ZQFoundation;

namespace {

const NSArray& summaryKeys() {
    static const NSArray keys{TraceKeys::documents, TraceKeys::rendering};
    return keys;
}

} // namespace

std::size_t Renderer::render(const Document& document) {
    ZQLog::logSelf_method_logAlways_logForTraceKey_usingFormat(this, __func__, true, TraceKeys::rendering,
                                                               "begins with %@", document);
    pages_ = 0;
    std::size_t lines = 0;
    std::string_view rest = document.body();
    while (!rest.empty()) {
        const std::size_t end = rest.find('\n');
        renderLine(++lines, rest.substr(0, end));
        rest.remove_prefix(end == std::string_view::npos ? rest.size() : end + 1);
        if (lines == linesPerPage_) {
            finishPage(lines);
            lines = 0;
        }
    }
    if (lines != 0 || pages_ == 0) {
        finishPage(lines);
    }
    // "All of": only while every one of the keys is on; the label joins them with "+".
    ZQLog::logSelf_method_logAlways_logForAllTraceKeysOf_usingFormat(
        this, __func__, true, summaryKeys(), "\"%@\" takes %lu pages", document.title(), pages_);
    return pages_;
}

void Renderer::renderLine(std::size_t number, std::string_view line) {
    // An exact level: at 3 and at no other.
    ZQLog::logSelf_method_logAlways_logForTraceKey_value_usingFormat(
        this, __func__, true, TraceKeys::level, 3, "line %2lu, %3lu bytes: %@", number, line.size(), line);
}

void Renderer::finishPage(std::size_t lines) {
    ++pages_;
    ZQLog::logSelf_method_logAlways_logForTraceKey_threshold_usingFormat(
        this, __func__, true, TraceKeys::level, 1, "page %lu is done, lines: %lu", pages_, lines);
}
