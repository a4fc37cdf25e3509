// SPDX-License-Identifier: MIT
// The report of what was shown, in the user's language.
#ifndef ZQFOUNDATION_VIEWER_READINGREPORT_H
#define ZQFOUNDATION_VIEWER_READINGREPORT_H

#include <cstddef>
#include <string>

#include "Document.h"

/// Reports what was shown in this run, in the user's language, and keeps a history of it.
class ReadingReport {
public:
    /// A line about one document, and one in the history, which is in the folder ~/Library/Application
    /// Support/Example/Viewer if that exists.
    void add(const Document& document, const std::string& path, std::size_t pages);

    /// A line about all of them; none when nothing was shown.
    void show() const;

private:
    int documents_ = 0;
    int pages_ = 0;
    int characters_ = 0;
};

#endif
