// SPDX-License-Identifier: MIT
// A traced process that is stopped where a system call enters the kernel: what the call is about, and ways to
// replace it by an error or to shorten what it transfers.
#ifndef ZQFOUNDATION_TESTS_FAULTS_STOPPEDCALL_H
#define ZQFOUNDATION_TESTS_FAULTS_STOPPEDCALL_H

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <string>

#include <elf.h>
#include <fcntl.h>
#include <sys/ptrace.h>
#include <sys/stat.h>
#include <sys/uio.h>
#include <sys/user.h>
#include <unistd.h>

#include "tests/migration/faults/FileCalls.h"

namespace ZQFoundation::faults {

/// The registers of a process that is stopped at a call: its number, its arguments and its result.
class CallRegisters {
public:
    explicit CallRegisters(pid_t process) : process_(process) {
#if defined(__x86_64__)
        known_ = ::ptrace(PTRACE_GETREGS, process, nullptr, &values_) == 0;
#elif defined(__aarch64__)
        iovec all{&values_, sizeof values_};
        known_ = ::ptrace(PTRACE_GETREGSET, process, reinterpret_cast<void*>(NT_PRSTATUS), &all) == 0;
#endif
    }

    void setArgument(int index, std::uint64_t value) {
#if defined(__x86_64__)
        decltype(values_.rdi)* const places[] = {&values_.rdi, &values_.rsi, &values_.rdx,
                                                 &values_.r10, &values_.r8,  &values_.r9};
        *places[index] = value;
#elif defined(__aarch64__)
        values_.regs[index] = value;
#endif
    }
    void setResult(long value) {
#if defined(__x86_64__)
        values_.rax = static_cast<unsigned long long>(value);
#elif defined(__aarch64__)
        values_.regs[0] = static_cast<unsigned long long>(value);
#endif
    }

    /// Writes the registers back, for a call of this number; -1 is none.
    bool writeFor(long number) {
        if (!known_) {
            return false;
        }
#if defined(__x86_64__)
        values_.orig_rax = static_cast<unsigned long long>(number);
        return ::ptrace(PTRACE_SETREGS, process_, nullptr, &values_) == 0;
#elif defined(__aarch64__)
        int narrow = static_cast<int>(number);
        iovec all{&values_, sizeof values_};
        iovec one{&narrow, sizeof narrow};
        return ::ptrace(PTRACE_SETREGSET, process_, reinterpret_cast<void*>(NT_PRSTATUS), &all) == 0 &&
               ::ptrace(PTRACE_SETREGSET, process_, reinterpret_cast<void*>(NT_ARM_SYSTEM_CALL), &one) == 0;
#else
        return false;
#endif
    }

private:
    pid_t process_;
    user_regs_struct values_{};
    bool known_ = false;
};

/// One stopped child and the call that it is about to make.
class StoppedCall {
public:
    StoppedCall(pid_t child, const std::string& base) : child_(child), base_(base) {
        // The system returns as much as it knows, which must be the form of a filtered call.
        known_ = ::ptrace(PTRACE_GET_SYSCALL_INFO, child, reinterpret_cast<void*>(sizeof information_),
                          &information_) > 0 &&
                 information_.op == PTRACE_SYSCALL_INFO_SECCOMP;
        call_ = known_ ? fileCallNumbered(information_.seccomp.nr) : nullptr;
    }

    const char* name() const { return call_ != nullptr ? call_->name : "?"; }

    /// Whether it names or uses a file below the folder, or a folder on the way there.
    bool concernsBase() {
        if (call_ == nullptr) {
            return false;
        }
        std::string folder;
        for (int index = 0; index < 5; ++index) {
            const std::uint64_t value = information_.seccomp.args[index];
            switch (call_->arguments[index]) {
            case Argument::descriptor:
                if (isNear(linkOf("fd/" + std::to_string(static_cast<int>(value))))) {
                    return true;
                }
                break;
            case Argument::folder:
                folder = static_cast<int>(value) == AT_FDCWD
                             ? ""
                             : linkOf("fd/" + std::to_string(static_cast<int>(value)));
                break;
            case Argument::path:
                if (isNear(placeOf(folder, textAt(value)))) { // without a folder the current one counts
                    return true;
                }
                break;
            case Argument::other:
                break;
            }
        }
        return false;
    }

    const std::string& where() const { return where_; }

    /// Does not make the call; its result is the error.
    bool replaceBy(int error) const {
        CallRegisters registers(child_);
        registers.setResult(-error);
        return registers.writeFor(-1);
    }

    bool isTransfer() const { return call_ != nullptr && call_->transfer.count >= 0; }

    /// Makes the call transfer one byte at most, or half of what it would.
    bool shorten(bool toOneByte) const {
        const Transfer& transfer = call_->transfer;
        CallRegisters registers(child_);
        std::uint64_t wanted = argument(transfer.count);
        if (transfer.plain != 0) {
            iovec first{};
            if (!readAt(argument(1), &first, sizeof first)) {
                return false;
            }
            registers.setArgument(1, reinterpret_cast<std::uint64_t>(first.iov_base));
            wanted = first.iov_len;
        }
        if (transfer.source >= 0) {
            wanted = std::min(wanted, sizeOf(argument(transfer.source)));
        }
        const std::uint64_t length = toOneByte ? std::min<std::uint64_t>(wanted, 1) : (wanted + 1) / 2;
        registers.setArgument(transfer.count, length);
        return registers.writeFor(transfer.plain != 0 ? transfer.plain : call_->number);
    }

private:
    std::uint64_t argument(int index) const { return information_.seccomp.args[index]; }

    /// Of an open file, so that half of a read is less than there is.
    std::uint64_t sizeOf(std::uint64_t descriptor) const {
        const std::string path =
            "/proc/" + std::to_string(child_) + "/fd/" + std::to_string(static_cast<int>(descriptor));
        struct stat information {};
        return ::stat(path.c_str(), &information) == 0 && information.st_size > 0
                   ? static_cast<std::uint64_t>(information.st_size)
                   : UINT64_MAX;
    }

    bool readAt(std::uint64_t address, void* bytes, std::size_t count) const {
        iovec local{bytes, count};
        iovec remote{reinterpret_cast<void*>(address), count};
        return ::process_vm_readv(child_, &local, 1, &remote, 1, 0) == static_cast<ssize_t>(count);
    }

    std::string linkOf(const std::string& name) const {
        char text[4096];
        const std::string path = "/proc/" + std::to_string(child_) + "/" + name;
        const ssize_t length = ::readlink(path.c_str(), text, sizeof text);
        return length < 0 ? "" : std::string(text, static_cast<std::size_t>(length));
    }

    std::string textAt(std::uint64_t address) const {
        std::string text;
        char piece[256];
        while (address != 0 && text.size() < 8192) {
            // Up to the end of a page at most: the next one may not be there.
            const std::size_t wanted = std::min<std::size_t>(sizeof piece, 4096 - address % 4096);
            iovec local{piece, wanted};
            iovec remote{reinterpret_cast<void*>(address), wanted};
            const ssize_t got = ::process_vm_readv(child_, &local, 1, &remote, 1, 0);
            if (got <= 0) {
                break;
            }
            const std::size_t length = ::strnlen(piece, static_cast<std::size_t>(got));
            text.append(piece, length);
            if (length < static_cast<std::size_t>(got)) {
                break;
            }
            address += static_cast<std::uint64_t>(got);
        }
        return text;
    }

    std::string placeOf(const std::string& folder, const std::string& path) const {
        for (const char* const own : {"/proc/self/fd/", "/proc/thread-self/fd/"}) {
            if (path.rfind(own, 0) == 0) {
                return linkOf("fd/" + path.substr(std::strlen(own)));
            }
        }
        if (!path.empty() && path[0] == '/') {
            return path;
        }
        const std::string start = folder.empty() ? linkOf("cwd") : folder;
        return path.empty() ? start : start + "/" + path;
    }

    bool isNear(const std::string& place) {
        const bool near =
            place.rfind(base_, 0) == 0 || (!place.empty() && place[0] == '/' && base_.rfind(place, 0) == 0);
        if (near) {
            where_ = place;
        }
        return near;
    }

    pid_t child_;
    const std::string& base_;
    __ptrace_syscall_info information_{};
    bool known_ = false;
    const FileCall* call_ = nullptr;
    std::string where_;
};

} // namespace ZQFoundation::faults

#endif
