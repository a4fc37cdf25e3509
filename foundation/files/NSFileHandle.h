// SPDX-License-Identifier: MIT
// Declares NSFileHandle, an open file.
#ifndef ZQFOUNDATION_FILES_NSFILEHANDLE_H
#define ZQFOUNDATION_FILES_NSFILEHANDLE_H

#include <cstdint>

#include "../objects/NSData.h"

namespace ZQFoundation {

/// What a failed operation of a file handle raises.
inline constexpr const char* NSFileHandleOperationException = "NSFileHandleOperationException";

/// An open file. Not copyable, movable; its destructor closes the descriptor, which is close-on-exec.
///
/// A default-constructed one is nil: it does nothing and returns nil and 0. What fails, and any use after
/// `closeFile`, raises NSFileHandleOperationException. Offsets and lengths are bytes. One thread at a time.
///
///     NSFileHandle file = NSFileHandle::fileHandleForUpdatingAtPath(path);
///     file.seekToEndOfFile();
///     file.writeData(NSString("end\n").dataUsingEncoding(NSUTF8StringEncoding));
///     file.seekToFileOffset(0);
///     const NSData all = file.readDataToEndOfFile();
class ZQFOUNDATION_EXPORT NSFileHandle {
public:
    constexpr NSFileHandle() noexcept = default;
    constexpr NSFileHandle(std::nullptr_t) noexcept {}
    NSFileHandle(NSFileHandle&& other) noexcept;
    NSFileHandle& operator=(NSFileHandle&& other) noexcept;
    ~NSFileHandle();

    /// An existing item opened for writing at offset 0, neither created nor truncated. Nil if it is absent, a
    /// folder, or not permitted. A pipe without a reader is refused, not waited for.
    static NSFileHandle fileHandleForWritingAtPath(StringView path);

    /// An existing item opened for reading at offset 0, neither created nor truncated. Nil if it is absent, a
    /// folder, or not permitted. A pipe is opened without waiting for a writer.
    static NSFileHandle fileHandleForReadingAtPath(StringView path);

    /// An existing item opened for reading and writing at offset 0, neither created nor truncated. Nil if it
    /// is absent, a folder, or not permitted. A pipe without a reader is refused, not waited for.
    static NSFileHandle fileHandleForUpdatingAtPath(StringView path);

    /// True unless the handle is nil, also after `closeFile`.
    explicit operator bool() const noexcept { return state_ != State::absent; }

    /// The descriptor, which the handle owns; -1 for nil. Raises after `closeFile`.
    int fileDescriptor() const;

    /// Moves to the end; returns that offset in bytes.
    std::uint64_t seekToEndOfFile();
    /// Moves to an offset in bytes, which may be beyond the end.
    void seekToFileOffset(std::uint64_t offset);
    /// The offset in bytes at which the next operation begins.
    std::uint64_t offsetInFile() const;

    /// Writes all bytes, or raises; what was written before a failure stays. Nil and empty data write
    /// nothing. Never raises a signal for a reader that is gone or a file-size limit.
    void writeData(const NSData& data);

    /// Reads `length` bytes from here on, or fewer if the file ends before; empty at the end.
    NSData readDataOfLength(std::size_t length);
    /// Reads from here to the end; empty at the end.
    NSData readDataToEndOfFile();

    /// Truncates the file or extends it with zeros; the offset is at the new end. A file-size limit shows as
    /// a failure and raises no signal.
    void truncateFileAtOffset(std::uint64_t offset);

    /// Waits until the storage device has the file's contents.
    void synchronizeFile();

    /// Closes the descriptor; closing twice is not a failure.
    void closeFile();

private:
    enum class State : unsigned char { absent, open, closed };

    explicit NSFileHandle(int descriptor) noexcept : descriptor_(descriptor), state_(State::open) {}
    int openDescriptor(const char* operation) const;

    int descriptor_ = -1;
    State state_ = State::absent;
};

} // namespace ZQFoundation

#endif
