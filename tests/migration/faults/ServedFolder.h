// SPDX-License-Identifier: MIT
// A file system that a child serves from a folder, as network and user-space file systems are: it answers
// reads in small pieces, and lacks what such file systems may lack. Only for root, in a mount namespace of
// one's own.
#ifndef ZQFOUNDATION_TESTS_FAULTS_SERVEDFOLDER_H
#define ZQFOUNDATION_TESTS_FAULTS_SERVEDFOLDER_H

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <map>
#include <string>
#include <vector>

#include <dirent.h>
#include <fcntl.h>
#include <linux/fuse.h>
#include <sys/mount.h>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include "tests/kit/Child.h"

namespace ZQFoundation::faults {

/// What the file system lacks.
struct ServedTraits {
    bool shortReads = false; ///< a read gets 4,096 bytes at most
    bool noRenameFlags = false;
    bool noLinks = false;
    bool noLocks = false;
    bool ignoresCase = false; ///< names are kept in lower case
    bool evenSeconds = false; ///< times have no more than that
    bool isCached = false;    ///< the kernel keeps names and attributes
};

/// Answers the kernel's requests, one after another, by the same operations on the files of a folder.
class FolderServer {
public:
    FolderServer(int device, const std::string& folder, const ServedTraits& traits)
        : device_(device), folder_(folder), traits_(traits),
          request_(requestBytes), paths_{{FUSE_ROOT_ID, ""}} {}

    /// Returns when the file system is unmounted.
    void run() {
        for (;;) {
            const ssize_t count = ::read(device_, request_.data(), request_.size());
            if (count >= static_cast<ssize_t>(sizeof(fuse_in_header))) {
                std::memcpy(&header_, request_.data(), sizeof header_);
                serve();
            } else if (count < 0 && errno != EINTR && errno != ENOENT) {
                return;
            }
        }
    }

private:
    static constexpr std::size_t largestWrite = std::size_t{128} << 10;
    static constexpr std::size_t requestBytes = largestWrite + 4096;
    static constexpr std::size_t maxPieceBytes = 4096;

    using Names = std::vector<std::string>;

    /// The argument of the request, and what follows it.
    template <class Argument>
    Argument argument() const {
        Argument value{};
        const std::size_t there = header_.len - sizeof header_;
        std::memcpy(&value, request_.data() + sizeof header_, std::min(sizeof value, there));
        return value;
    }
    const char* after(std::size_t argumentBytes) const {
        return request_.data() + sizeof header_ + argumentBytes;
    }

    void answer(int error, const void* bytes = nullptr, std::size_t count = 0) const {
        fuse_out_header out{};
        out.len = static_cast<std::uint32_t>(sizeof out + count);
        out.error = -error;
        out.unique = header_.unique;
        std::string reply(reinterpret_cast<const char*>(&out), sizeof out);
        reply.append(static_cast<const char*>(bytes), bytes == nullptr ? 0 : count);
        // A request that was interrupted meanwhile needs no answer.
        static_cast<void>(::write(device_, reply.data(), reply.size()));
    }
    template <class Reply>
    void answerWith(const Reply& reply) const {
        answer(0, &reply, sizeof reply);
    }
    void answerResult(long result) const { answer(result < 0 ? errno : 0); }

    std::string nameOf(const char* name) const {
        std::string text = name;
        if (traits_.ignoresCase) {
            std::transform(text.begin(), text.end(), text.begin(), [](char unit) {
                return unit >= 'A' && unit <= 'Z' ? static_cast<char>(unit + 32) : unit;
            });
        }
        return text;
    }
    std::string pathOf(std::uint64_t node) const {
        const auto path = paths_.find(node);
        return path == paths_.end() ? folder_ + "/no longer there" : folder_ + path->second;
    }
    std::string below(std::uint64_t node, const char* name) const {
        return pathOf(node) + "/" + nameOf(name);
    }

    timespec shown(timespec time) const {
        return traits_.evenSeconds ? timespec{time.tv_sec - time.tv_sec % 2, 0} : time;
    }

    fuse_attr attributesOf(const struct stat& found) const {
        struct stat information = found;
        information.st_atim = shown(found.st_atim);
        information.st_mtim = shown(found.st_mtim);
        information.st_ctim = shown(found.st_ctim);
        fuse_attr attributes{};
        attributes.ino = information.st_ino;
        attributes.size = static_cast<std::uint64_t>(information.st_size);
        attributes.blocks = static_cast<std::uint64_t>(information.st_blocks);
        attributes.atime = static_cast<std::uint64_t>(information.st_atim.tv_sec);
        attributes.mtime = static_cast<std::uint64_t>(information.st_mtim.tv_sec);
        attributes.ctime = static_cast<std::uint64_t>(information.st_ctim.tv_sec);
        attributes.atimensec = static_cast<std::uint32_t>(information.st_atim.tv_nsec);
        attributes.mtimensec = static_cast<std::uint32_t>(information.st_mtim.tv_nsec);
        attributes.ctimensec = static_cast<std::uint32_t>(information.st_ctim.tv_nsec);
        attributes.mode = information.st_mode;
        attributes.nlink = static_cast<std::uint32_t>(information.st_nlink);
        attributes.uid = information.st_uid;
        attributes.gid = information.st_gid;
        attributes.blksize = 4096;
        return attributes;
    }

    /// How long the kernel may keep what it got, in seconds: else it keeps nothing and asks again.
    std::uint64_t lifetime() const { return traits_.isCached ? 60 : 0; }

    /// The node at the path, made when it is new.
    bool look(const std::string& path, fuse_entry_out& entry) {
        struct stat information {};
        if (::lstat(path.c_str(), &information) != 0) {
            return false;
        }
        const std::string relative = path.substr(folder_.size());
        std::uint64_t node = 0;
        for (const auto& [number, known] : paths_) {
            node = known == relative && numbers_[number] == information.st_ino ? number : node;
        }
        if (node == 0) {
            node = ++lastNode_;
            paths_[node] = relative;
            numbers_[node] = information.st_ino;
        }
        entry.nodeid = node;
        entry.entry_valid = lifetime();
        entry.attr_valid = lifetime();
        entry.attr = attributesOf(information);
        return true;
    }
    void answerEntry(const std::string& path) {
        fuse_entry_out entry{};
        if (look(path, entry)) {
            answerWith(entry);
        } else {
            answer(errno);
        }
    }

    void serve() {
        switch (header_.opcode) {
        case FUSE_INIT:
            return initialize();
        case FUSE_FORGET:
        case FUSE_BATCH_FORGET:
        case FUSE_INTERRUPT:
            return; // need no answer
        case FUSE_LOOKUP:
            return answerEntry(below(header_.nodeid, after(0)));
        case FUSE_GETATTR:
            return getAttributes();
        case FUSE_SETATTR:
            return setAttributes();
        case FUSE_STATFS:
            return statistics();
        case FUSE_OPENDIR:
            return openFolder();
        case FUSE_READDIR:
            return readFolder();
        case FUSE_FSYNCDIR:
        case FUSE_FLUSH:
        case FUSE_RELEASEDIR:
            return answer(0);
        default:
            return header_.opcode == FUSE_OPEN || header_.opcode == FUSE_CREATE ||
                           header_.opcode == FUSE_READ || header_.opcode == FUSE_WRITE ||
                           header_.opcode == FUSE_RELEASE || header_.opcode == FUSE_FSYNC
                       ? serveFile()
                       : serveNames();
        }
    }

    void serveFile() {
        switch (header_.opcode) {
        case FUSE_OPEN: {
            const auto flags =
                argument<fuse_open_in>().flags & ~static_cast<unsigned>(O_CREAT | O_EXCL | O_NOCTTY);
            return answerOpened(::open(pathOf(header_.nodeid).c_str(), static_cast<int>(flags) | O_CLOEXEC),
                                nullptr);
        }
        case FUSE_CREATE: {
            const auto in = argument<fuse_create_in>();
            const std::string path = below(header_.nodeid, after(sizeof in));
            return answerOpened(
                ::open(path.c_str(), static_cast<int>(in.flags) | O_CREAT | O_CLOEXEC, in.mode & 07777),
                &path);
        }
        case FUSE_READ:
            return read();
        case FUSE_WRITE: {
            const auto in = argument<fuse_write_in>();
            fuse_write_out out{};
            const ssize_t count =
                ::pwrite(static_cast<int>(in.fh), after(sizeof in), in.size, static_cast<off_t>(in.offset));
            out.size = static_cast<std::uint32_t>(std::max<ssize_t>(count, 0));
            return count < 0 ? answer(errno) : answerWith(out);
        }
        case FUSE_RELEASE:
            return answerResult(::close(static_cast<int>(argument<fuse_release_in>().fh)));
        default: // FUSE_FSYNC
            return answerResult(::fsync(static_cast<int>(argument<fuse_fsync_in>().fh)));
        }
    }

    void serveNames() {
        switch (header_.opcode) {
        case FUSE_READLINK: {
            char text[4096];
            const ssize_t length = ::readlink(pathOf(header_.nodeid).c_str(), text, sizeof text);
            return length < 0 ? answer(errno) : answer(0, text, static_cast<std::size_t>(length));
        }
        case FUSE_SYMLINK: {
            const std::string path = below(header_.nodeid, after(0));
            const char* const target = after(std::strlen(after(0)) + 1);
            return ::symlink(target, path.c_str()) == 0 ? answerEntry(path) : answer(errno);
        }
        case FUSE_MKDIR: {
            const auto in = argument<fuse_mkdir_in>();
            const std::string path = below(header_.nodeid, after(sizeof in));
            return ::mkdir(path.c_str(), in.mode & 07777) == 0 ? answerEntry(path) : answer(errno);
        }
        case FUSE_MKNOD: {
            const auto in = argument<fuse_mknod_in>();
            const std::string path = below(header_.nodeid, after(sizeof in));
            return ::mknod(path.c_str(), in.mode, in.rdev) == 0 ? answerEntry(path) : answer(errno);
        }
        case FUSE_LINK: {
            const std::string path = below(header_.nodeid, after(sizeof(fuse_link_in)));
            if (traits_.noLinks) {
                return answer(EPERM);
            }
            return ::link(pathOf(argument<fuse_link_in>().oldnodeid).c_str(), path.c_str()) == 0
                       ? answerEntry(path)
                       : answer(errno);
        }
        case FUSE_UNLINK:
            return remove(below(header_.nodeid, after(0)), 0);
        case FUSE_RMDIR:
            return remove(below(header_.nodeid, after(0)), AT_REMOVEDIR);
        case FUSE_RENAME:
            return rename(argument<fuse_rename_in>().newdir, after(sizeof(fuse_rename_in)), 0);
        case FUSE_RENAME2: {
            const auto in = argument<fuse_rename2_in>();
            return traits_.noRenameFlags ? answer(ENOSYS) : rename(in.newdir, after(sizeof in), in.flags);
        }
        case FUSE_SETLK:
        case FUSE_SETLKW:
        case FUSE_GETLK:
            return answer(ENOLCK);
        default:
            return answer(ENOSYS); // attributes with names of their own among them
        }
    }

    void initialize() const {
        const auto in = argument<fuse_init_in>();
        fuse_init_out out{};
        out.major = FUSE_KERNEL_VERSION;
        out.minor = std::min<std::uint32_t>(in.minor, FUSE_KERNEL_MINOR_VERSION);
        out.max_readahead = in.max_readahead;
        out.flags = FUSE_BIG_WRITES | (traits_.noLocks ? FUSE_FLOCK_LOCKS : 0);
        out.max_write = largestWrite;
        answerWith(out);
    }

    void getAttributes() {
        const auto in = argument<fuse_getattr_in>();
        struct stat information {};
        const bool isOpen = (in.getattr_flags & FUSE_GETATTR_FH) != 0;
        const int result = isOpen ? ::fstat(static_cast<int>(in.fh), &information)
                                  : ::lstat(pathOf(header_.nodeid).c_str(), &information);
        fuse_attr_out out{};
        out.attr_valid = lifetime();
        out.attr = attributesOf(information);
        return result != 0 ? answer(errno) : answerWith(out);
    }

    void setAttributes() {
        const auto in = argument<fuse_setattr_in>();
        const std::string path = pathOf(header_.nodeid);
        const auto has = [&in](unsigned bit) {
            return (in.valid & bit) != 0;
        };
        bool isSet = true;
        if (has(FATTR_SIZE)) {
            isSet = ::truncate(path.c_str(), static_cast<off_t>(in.size)) == 0;
        }
        if (isSet && has(FATTR_UID | FATTR_GID)) {
            isSet = ::lchown(path.c_str(), has(FATTR_UID) ? in.uid : static_cast<uid_t>(-1),
                             has(FATTR_GID) ? in.gid : static_cast<gid_t>(-1)) == 0;
        }
        if (isSet && has(FATTR_MODE)) {
            isSet = ::chmod(path.c_str(), in.mode & 07777) == 0;
        }
        if (isSet && has(FATTR_ATIME | FATTR_MTIME)) {
            const auto timeOf = [&has](unsigned bit, unsigned nowBit, std::uint64_t seconds,
                                       std::uint32_t rest) {
                return timespec{static_cast<time_t>(seconds), has(nowBit) ? UTIME_NOW
                                                              : has(bit)  ? static_cast<long>(rest)
                                                                          : UTIME_OMIT};
            };
            const timespec times[2] = {timeOf(FATTR_ATIME, FATTR_ATIME_NOW, in.atime, in.atimensec),
                                       timeOf(FATTR_MTIME, FATTR_MTIME_NOW, in.mtime, in.mtimensec)};
            isSet = ::utimensat(AT_FDCWD, path.c_str(), times, AT_SYMLINK_NOFOLLOW) == 0;
        }
        struct stat information {};
        fuse_attr_out out{};
        isSet = isSet && ::lstat(path.c_str(), &information) == 0;
        out.attr = attributesOf(information);
        return isSet ? answerWith(out) : answer(errno);
    }

    void statistics() const {
        struct statvfs numbers {};
        ::statvfs(folder_.c_str(), &numbers);
        fuse_statfs_out out{};
        out.st.blocks = numbers.f_blocks;
        out.st.bfree = numbers.f_bfree;
        out.st.bavail = numbers.f_bavail;
        out.st.files = numbers.f_files;
        out.st.ffree = numbers.f_ffree;
        out.st.bsize = 4096;
        out.st.frsize = 4096;
        out.st.namelen = 255;
        answerWith(out);
    }

    void openFolder() {
        DIR* const folder = ::opendir(pathOf(header_.nodeid).c_str());
        if (folder == nullptr) {
            return answer(errno);
        }
        Names names;
        while (const dirent* entry = ::readdir(folder)) {
            names.push_back(entry->d_name);
        }
        ::closedir(folder);
        listings_.push_back(names);
        fuse_open_out out{};
        out.fh = listings_.size() - 1;
        answerWith(out);
    }

    void readFolder() const {
        const auto in = argument<fuse_read_in>();
        const Names& names = listings_[in.fh];
        std::string reply;
        for (std::uint64_t index = in.offset; index < names.size(); ++index) {
            fuse_dirent entry{};
            entry.ino = index + 1;
            entry.off = index + 1;
            entry.namelen = static_cast<std::uint32_t>(names[index].size());
            const std::size_t length = FUSE_DIRENT_ALIGN(FUSE_NAME_OFFSET + names[index].size());
            if (reply.size() + length > in.size) {
                break;
            }
            std::string row(reinterpret_cast<const char*>(&entry), FUSE_NAME_OFFSET);
            row += names[index];
            row.resize(length);
            reply += row;
        }
        answer(0, reply.data(), reply.size());
    }

    /// Opened, and looked up where a path is given.
    void answerOpened(int file, const std::string* path) {
        if (file < 0) {
            return answer(errno);
        }
        fuse_open_out opened{};
        opened.fh = static_cast<std::uint64_t>(file);
        opened.open_flags = traits_.shortReads ? FOPEN_DIRECT_IO : 0;
        std::string reply;
        if (path != nullptr) {
            fuse_entry_out entry{};
            if (!look(*path, entry)) {
                return answer(errno);
            }
            reply.assign(reinterpret_cast<const char*>(&entry), sizeof entry);
        }
        reply.append(reinterpret_cast<const char*>(&opened), sizeof opened);
        answer(0, reply.data(), reply.size());
    }

    void read() const {
        const auto in = argument<fuse_read_in>();
        std::string bytes(traits_.shortReads ? std::min<std::size_t>(in.size, maxPieceBytes) : in.size, '\0');
        const ssize_t count =
            ::pread(static_cast<int>(in.fh), bytes.data(), bytes.size(), static_cast<off_t>(in.offset));
        return count < 0 ? answer(errno) : answer(0, bytes.data(), static_cast<std::size_t>(count));
    }

    void remove(const std::string& path, int flag) {
        if (::unlinkat(AT_FDCWD, path.c_str(), flag) != 0) {
            return answer(errno);
        }
        forget(path.substr(folder_.size()));
        answer(0);
    }

    void rename(std::uint64_t newFolder, const char* names, unsigned flags) {
        const std::string from = below(header_.nodeid, names);
        const std::string to = below(newFolder, names + std::strlen(names) + 1);
        if (::syscall(SYS_renameat2, AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), flags) != 0) {
            return answer(errno);
        }
        const std::string oldStart = from.substr(folder_.size());
        const std::string newStart = to.substr(folder_.size());
        forget(newStart);
        for (auto& [node, path] : paths_) {
            if (path == oldStart || path.rfind(oldStart + "/", 0) == 0) {
                path.replace(0, oldStart.size(), newStart);
            }
        }
        answer(0);
    }
    void forget(const std::string& relative) {
        for (auto node = paths_.begin(); node != paths_.end();) {
            node = node->second == relative ? paths_.erase(node) : std::next(node);
        }
    }

    int device_;
    std::string folder_;
    ServedTraits traits_;
    std::vector<char> request_;
    fuse_in_header header_{};
    std::map<std::uint64_t, std::string> paths_; ///< of the nodes, below the folder
    std::map<std::uint64_t, ino_t> numbers_;
    std::uint64_t lastNode_ = FUSE_ROOT_ID;
    std::vector<Names> listings_;
};

/// A folder mounted at a place, served by a child, for a scope.
class ServedFolder {
public:
    ServedFolder(const std::string& folder, const std::string& place, const ServedTraits& traits)
        : place_(place) {
        const int device = ::open("/dev/fuse", O_RDWR | O_CLOEXEC);
        const std::string options = "fd=" + std::to_string(device) +
                                    ",rootmode=40000,user_id=0,group_id=0,allow_other,default_permissions";
        isMounted_ = device >= 0 &&
                     ::mount("served", place.c_str(), "fuse", MS_NOSUID | MS_NODEV, options.c_str()) == 0;
        if (isMounted_) {
            server_ = ::fork();
        }
        if (server_ == 0) {
            ::prctl(PR_SET_PDEATHSIG, SIGKILL);
            ::alarm(0);
            ::umask(0);
            FolderServer(device, folder, traits).run();
            kit::leave(0);
        }
        ::close(device);
    }
    ServedFolder(const ServedFolder&) = delete;
    ServedFolder& operator=(const ServedFolder&) = delete;
    ~ServedFolder() {
        if (isMounted_) {
            ::umount2(place_.c_str(), MNT_DETACH);
            ::kill(server_, SIGKILL);
            ::waitpid(server_, nullptr, 0);
        }
    }

    bool isMounted() const { return isMounted_; }

private:
    std::string place_;
    pid_t server_ = -1;
    bool isMounted_ = false;
};

} // namespace ZQFoundation::faults

#endif
