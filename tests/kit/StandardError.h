// SPDX-License-Identifier: MIT
// Replaces standard error by something else, and reads the lines that are written there.
#ifndef ZQFOUNDATION_TESTS_KIT_STANDARDERROR_H
#define ZQFOUNDATION_TESTS_KIT_STANDARDERROR_H

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <string>
#include <string_view>
#include <vector>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include "foundation/system/Descriptor.h"

namespace ZQFoundation::kit {

using detail::Descriptor;

inline int openToAppend(const std::string& path) {
    return ::open(path.c_str(), O_RDWR | O_APPEND | O_CREAT | O_CLOEXEC, 0600);
}

/// The descriptor becomes standard error, and is closed under its own number.
inline void moveOntoStandardError(int descriptor) {
    if (descriptor != STDERR_FILENO) {
        EXPECT_EQ(::dup2(descriptor, STDERR_FILENO), STDERR_FILENO) << std::strerror(errno);
        ::close(descriptor);
    }
}

/// Standard error is another descriptor for a scope.
class StandardErrorAs {
public:
    explicit StandardErrorAs(int descriptor) : before_(::fcntl(STDERR_FILENO, F_DUPFD_CLOEXEC, 3)) {
        EXPECT_GE(::dup2(descriptor, STDERR_FILENO), 0) << std::strerror(errno);
    }
    StandardErrorAs(const StandardErrorAs&) = delete;
    StandardErrorAs& operator=(const StandardErrorAs&) = delete;
    ~StandardErrorAs() { ::dup2(before_.number(), STDERR_FILENO); }

private:
    const Descriptor before_;
};

/// Standard error is this file for a scope.
class StandardErrorIn {
public:
    explicit StandardErrorIn(const std::string& path) : file_(openToAppend(path)) {}

private:
    const Descriptor file_;
    const StandardErrorAs standardError_{file_.number()};
};

/// The head of a line, "2024-03-05 14:07:09.042 Name[1234:5d7f] ", as views of the line.
struct Prefix {
    std::string_view date;
    std::string_view process;
    std::string_view processNumber; ///< decimal
    std::string_view threadNumber;  ///< lower-case hexadecimal
    std::size_t length = 0;         ///< with the space at its end; 0 when the line has no whole prefix

    explicit operator bool() const { return length != 0; }
};

inline Prefix readPrefix(std::string_view line) {
    constexpr std::string_view shape = "0000-00-00 00:00:00.000 ";
    for (std::size_t i = 0; i < shape.size(); ++i) {
        const bool isDigit = i < line.size() && line[i] >= '0' && line[i] <= '9';
        if (i >= line.size() || (shape[i] == '0' ? !isDigit : line[i] != shape[i])) {
            return {};
        }
    }
    const std::size_t open = line.find('[', shape.size());
    const std::size_t colon = open == line.npos ? open : line.find_first_not_of("0123456789", open + 1);
    const std::size_t close =
        colon == line.npos ? colon : line.find_first_not_of("0123456789abcdef", colon + 1);
    if (close == line.npos || open == shape.size() || colon == open + 1 || close == colon + 1 ||
        line[colon] != ':' || line.substr(close, 2) != "] ") {
        return {};
    }
    return {line.substr(0, shape.size() - 1), line.substr(shape.size(), open - shape.size()),
            line.substr(open + 1, colon - open - 1), line.substr(colon + 1, close - colon - 1), close + 2};
}

/// The lines, each without its end; the last one may have none.
inline std::vector<std::string_view> linesIn(std::string_view bytes) {
    std::vector<std::string_view> lines;
    while (!bytes.empty()) {
        const std::size_t end = std::min(bytes.find('\n'), bytes.size());
        lines.push_back(bytes.substr(0, end));
        bytes.remove_prefix(std::min(end + 1, bytes.size()));
    }
    return lines;
}

/// The lines without their prefixes; one without a prefix, or without an end, is in angle brackets.
inline std::vector<std::string> textsIn(std::string_view bytes) {
    std::vector<std::string> texts;
    for (const std::string_view line : linesIn(bytes)) {
        const Prefix prefix = readPrefix(line);
        const bool hasEnd = line.data() + line.size() != bytes.data() + bytes.size();
        const std::string text(line.substr(prefix.length));
        texts.push_back(prefix && hasEnd ? text : "<" + text + ">");
    }
    return texts;
}

/// Catches what is written to standard error while it lives.
class CapturedOutput {
public:
    /// Everything so far, as it is.
    std::string bytes() const {
        std::string bytes(static_cast<std::size_t>(::lseek(file_.number(), 0, SEEK_END)), '\0');
        EXPECT_EQ(::pread(file_.number(), bytes.data(), bytes.size(), 0), static_cast<ssize_t>(bytes.size()));
        return bytes;
    }

    /// The lines so far without their prefixes. A line without a prefix belongs to the one before it. Fails
    /// the test when the output does not begin with a prefix or does not end with a line feed.
    std::vector<std::string> texts() const {
        const std::string all = bytes();
        EXPECT_TRUE(all.empty() || all.back() == '\n') << "the last line has no end: " << all;
        std::vector<std::string> texts;
        for (const std::string_view line : linesIn(all)) {
            const Prefix prefix = readPrefix(line);
            EXPECT_TRUE(prefix || !texts.empty()) << "a line without a prefix: " << line;
            if (prefix || texts.empty()) {
                texts.emplace_back(line.substr(prefix.length));
            } else {
                texts.back().append("\n").append(line);
            }
        }
        return texts;
    }

    void clear() const { EXPECT_EQ(::ftruncate(file_.number(), 0), 0); }

private:
    static int makeFile() {
        char path[] = "/tmp/zq-log-XXXXXX";
        const int file = ::mkostemp(path, O_APPEND | O_CLOEXEC);
        ::unlink(path);
        return file;
    }

    const Descriptor file_{makeFile()};
    const StandardErrorAs standardError_{file_.number()};
};

} // namespace ZQFoundation::kit

#endif
