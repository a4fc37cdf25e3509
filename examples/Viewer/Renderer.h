// SPDX-License-Identifier: MIT
// The layout of documents on pages.
#ifndef ZQFOUNDATION_VIEWER_RENDERER_H
#define ZQFOUNDATION_VIEWER_RENDERER_H

#include <cstddef>
#include <string_view>

#include "Document.h"

/// Lays a document out on pages.
class Renderer {
public:
    explicit Renderer(std::size_t linesPerPage) : linesPerPage_(linesPerPage) {}

    /// Returns the number of pages, at least one.
    std::size_t render(const Document& document);

private:
    void renderLine(std::size_t number, std::string_view line);
    void finishPage(std::size_t lines);

    std::size_t linesPerPage_;
    std::size_t pages_ = 0;
};

#endif
