// SPDX-License-Identifier: MIT
// Somebody who goes on working, by paths only, with files that are being migrated, and knows what must be
// found somewhere afterwards: whatever was there after each step that succeeded.
#ifndef ZQFOUNDATION_TESTS_FAULTS_WRITER_H
#define ZQFOUNDATION_TESTS_FAULTS_WRITER_H

#include <algorithm>
#include <cstdio>
#include <set>
#include <string>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include "tests/kit/ScratchFolder.h"
#include "tests/migration/faults/Cases.h"
#include "tests/migration/faults/Leftovers.h"

namespace ZQFoundation::faults {

/// Whether two changes of a file, one right after the other, show in its times.
inline bool hasFineTimes() {
    const kit::ScratchFolder folder;
    const std::string path = folder.write("file", "one");
    struct stat before {};
    struct stat after {};
    ::stat(path.c_str(), &before);
    folder.write("file", "two");
    ::stat(path.c_str(), &after);
    return before.st_ctim.tv_nsec != after.st_ctim.tv_nsec;
}

/// The steps that shorten or replace the contents of a file are for files of which no other step is made. No
/// step waits for a migration that holds writers off: it is stopped while the step is made.
class Writer {
public:
    explicit Writer(const Run& run) : run_(run) {
        for (const char* const folder : {"outside", "swap", "victim/deeper"}) {
            ::mkdir((run / "victim").c_str(), 0755);
            ::mkdir((run / folder).c_str(), 0755);
        }
        for (const char* const name : {"victim/two.txt", "victim/c.log", "victim/deeper/d.log"}) {
            write(run / name, O_CREAT, victims);
        }
        EXPECT_EQ(::symlink((run / "victim").c_str(), (run / "swap/place").c_str()), 0);
        victim_ = scene::digestOf(run / "victim", Detail::times);
        texts_ = visibleContents(run.from());
    }
    Writer(const Writer&) = delete;
    Writer& operator=(const Writer&) = delete;
    ~Writer() {
        if (open_ >= 0) {
            ::close(open_);
        }
    }

    /// Makes a file that was not there, with a number after its name.
    void adds(const std::string& name) {
        const std::string text = freshText(name);
        if (write(path(name) + std::to_string(steps_), O_CREAT | O_EXCL, text)) {
            texts_.insert(text);
        }
    }
    /// Makes the whole folder again where it is missing, with a file in it.
    void makesAgain(const std::string& name) {
        ::mkdir(run_.from().c_str(), 0755);
        adds(name);
    }

    /// As editors save: the new version is written beside the old one, and takes its place in a second step.
    void savesBeside(const std::string& name) {
        saved_ = freshText(name);
        if (!write(path(name) + ".new", O_CREAT | O_EXCL, saved_)) {
            saved_.clear();
            return;
        }
        texts_.insert(saved_);
    }
    void savesOver(const std::string& name) {
        const std::string beside = path(name) + ".new";
        if (saved_.empty() || !scene::exchange(beside, path(name))) {
            moves(name + ".new", name); // what it would have replaced is not there
            return;
        }
        // What was replaced need not be found, if that is what is removed now.
        const std::string before = kit::contentsOf(beside);
        if (::unlink(beside.c_str()) == 0) {
            texts_.erase(before);
        }
    }

    /// Overwrites the contents without making the file longer or shorter.
    void rewrites(const std::string& name) {
        const int file = ::open(path(name).c_str(), O_RDWR | O_NONBLOCK | O_CLOEXEC);
        if (file < 0) {
            return;
        }
        char before[8192];
        const ssize_t length = ::read(file, before, sizeof before);
        std::string text = freshText(name);
        text.resize(std::max(static_cast<std::size_t>(length), text.size()), '.');
        if (::pwrite(file, text.data(), text.size(), 0) == static_cast<ssize_t>(text.size())) {
            texts_.erase(std::string(before, static_cast<std::size_t>(length)));
            texts_.insert(text);
        }
        ::close(file);
    }
    /// The same, and gives the file the time of modification that it had.
    void rewritesUnnoticed(const std::string& name) {
        struct stat information {};
        const bool isThere = ::stat(path(name).c_str(), &information) == 0;
        rewrites(name);
        const timespec times[2] = {information.st_atim, information.st_mtim};
        if (isThere) {
            ::utimensat(AT_FDCWD, path(name).c_str(), times, 0);
        }
    }

    /// Adds a line to the file that has the name at that moment, opened for this.
    void appends(const std::string& name) {
        const int file = ::open(path(name).c_str(), O_WRONLY | O_APPEND | O_NONBLOCK | O_CLOEXEC);
        appendTo(file, name);
        if (file >= 0) {
            ::close(file);
        }
    }
    /// Adds lines to a file that stays open.
    void opens(const std::string& name) {
        if (open_ < 0) {
            open_ = ::open(path(name).c_str(), O_WRONLY | O_APPEND | O_NONBLOCK | O_CLOEXEC);
        }
    }
    void appendsToOpen() { appendTo(open_, "open"); }

    void moves(const std::string& name, const std::string& newName) {
        ::syscall(SYS_renameat2, AT_FDCWD, path(name).c_str(), AT_FDCWD, path(newName).c_str(),
                  1 /* RENAME_NOREPLACE */);
    }
    void takesOut(const std::string& name) {
        ::rename(path(name).c_str(), (run_ / ("outside/taken" + std::to_string(++steps_))).c_str());
    }
    void bringsIn(const std::string& name) {
        const std::string text = freshText(name);
        const std::string number = std::to_string(steps_);
        if (write(run_ / ("outside/brought" + number), O_CREAT | O_EXCL, text)) {
            texts_.insert(text);
            ::rename((run_ / ("outside/brought" + number)).c_str(), (path(name) + number).c_str());
        }
    }

    /// Swaps a folder for a link to the victim's folder, or back.
    void swaps(const std::string& name) { scene::exchange(path(name), run_ / "swap/place"); }

    /// What should be there and is missing.
    scene::Words problems() const {
        scene::Words problems;
        const std::set<std::string> found = visibleContents(run_.base());
        for (const std::string& text : texts_) {
            if (!isBeginOfOne(text, found)) {
                problems.push_back("lost: '" + text.substr(0, 60) + "'");
            }
        }
        for (const std::string& line : lines_) {
            if (!isInOne(line, found)) {
                problems.push_back("lost line: " + line);
            }
        }
        if (scene::digestOf(run_ / "victim", Detail::times) != victim_) {
            problems.push_back("the victim's folder was changed");
        }
        if (visibleContents(run_ / "to").count(victims) == 1) {
            problems.push_back("the victim's files were migrated");
        }
        return problems;
    }

private:
    static constexpr const char victims[] = "the victim's";

    std::string path(const std::string& name) const {
        return name.empty() ? run_.from() : run_.from() + "/" + name;
    }
    std::string freshText(const std::string& name) {
        return "step " + std::to_string(++steps_) + " on " + name + "\n";
    }

    static bool write(const std::string& path, int flags, const std::string& text) {
        const int file = ::open(path.c_str(), O_WRONLY | O_NONBLOCK | O_CLOEXEC | flags, 0644);
        const bool isWritten =
            file >= 0 && ::write(file, text.data(), text.size()) == static_cast<ssize_t>(text.size());
        if (file >= 0) {
            ::close(file);
        }
        return isWritten;
    }

    void appendTo(int file, const std::string& name) {
        const std::string line = freshText(name);
        if (file >= 0 && ::write(file, line.data(), line.size()) == static_cast<ssize_t>(line.size())) {
            lines_.insert(line);
        }
    }

    /// A file to which lines were added still begins with what it contained before.
    static bool isBeginOfOne(const std::string& text, const std::set<std::string>& contents) {
        const auto next = contents.lower_bound(text);
        return next != contents.end() && begins(*next, text.c_str());
    }
    static bool isInOne(const std::string& line, const std::set<std::string>& contents) {
        return std::any_of(contents.begin(), contents.end(), [&](const std::string& content) {
            return content.find(line) != std::string::npos;
        });
    }

    const Run& run_;
    std::set<std::string> texts_;
    std::set<std::string> lines_;
    std::string saved_;
    Digest victim_;
    int open_ = -1;
    long steps_ = 0;
};

} // namespace ZQFoundation::faults

#endif
