// SPDX-License-Identifier: MIT
// Reading and writing files, with a log line for each.
#include "Files.h"

#include <cstdio>
#include <cstdlib>

#include <unistd.h>

#include <ZQFoundation/ZQFoundation.h>

#include "TraceKeys.h"

using namespace ZQFoundation;

// A plain function names itself by `__func__`: the line reads "TraceFiles: readFile() 139 bytes from
// /tmp/...".
bool readFile(const std::string& path, std::string& bytes) {
    std::FILE* const file = std::fopen(path.c_str(), "rb");
    if (file == nullptr) {
        return false;
    }
    bytes.clear();
    char piece[4096];
    for (std::size_t count; (count = std::fread(piece, 1, sizeof piece, file)) != 0;) {
        bytes.append(piece, count);
    }
    const bool isRead = std::ferror(file) == 0;
    std::fclose(file);
    if (!isRead) {
        return false;
    }
    // A length has 64 bits here, hence the "l"; "%s" and "%@" both take a std::string.
    ZQLog::logFunctionName_logAlways_logForTraceKey_usingFormat(__func__, true, TraceKeys::files,
                                                                "%lu bytes from %s", bytes.size(), path);
    return true;
}

bool writeFile(const std::string& path, std::string_view bytes) {
    std::FILE* const file = std::fopen(path.c_str(), "wb");
    if (file == nullptr) {
        return false;
    }
    const bool isWritten = std::fwrite(bytes.data(), 1, bytes.size(), file) == bytes.size();
    if (std::fclose(file) != 0 || !isWritten) {
        return false;
    }
    ZQLog::logFunctionName_logAlways_logForTraceKey_usingFormat(__func__, true, TraceKeys::files,
                                                                "%lu bytes to %s", bytes.size(), path);
    return true;
}

TemporaryFolder::TemporaryFolder() {
    const char* const parent = std::getenv("TMPDIR");
    std::string name =
        (parent != nullptr && *parent != '\0' ? std::string(parent) : "/tmp") + "/Viewer.XXXXXX";
    if (::mkdtemp(name.data()) == nullptr) {
        return;
    }
    path_ = name;
    // The caller is `this`, the method its own name: "-[(TemporaryFolder *)0x7ffe01 TemporaryFolder] made
    // ...".
    ZQLog::logSelf_method_logAlways_logForTraceKey_usingFormat(this, __func__, true, TraceKeys::files,
                                                               "made %@", path_);
}

TemporaryFolder::~TemporaryFolder() {
    if (path_.empty()) {
        return;
    }
    if (!file_.empty()) {
        ::unlink(file_.c_str());
    }
    ::rmdir(path_.c_str());
    ZQLog::logSelf_method_logAlways_logForTraceKey_usingFormat(this, __func__, true, TraceKeys::files,
                                                               "removed %@", path_);
}

std::string TemporaryFolder::addFile(const std::string& name, std::string_view bytes) {
    const std::string path = path_ + "/" + name;
    if (path_.empty() || !writeFile(path, bytes)) {
        return {};
    }
    file_ = path;
    return path;
}
