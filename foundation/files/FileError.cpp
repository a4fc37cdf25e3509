// SPDX-License-Identifier: MIT
// Texts for failed operations on files.
// Texts are English in every locale, so that logs and reports can be compared and searched.
#include "foundation/files/FileError.h"

#include <cerrno>

#include "foundation/objects/TextBuilder.h"

namespace ZQFoundation::detail {

namespace {

struct Reason {
    int error;
    const char* text;
};

// The C library's own texts follow the host's locale.
// Those that file operations return; any other error is shown by its number.
constexpr Reason reasons[] = {
    {EPERM, "Operation not permitted"},
    {ENOENT, "No such file or directory"},
    {EINTR, "Interrupted system call"},
    {EIO, "Input/output error"},
    {ENXIO, "No such device or address"},
    {EBADF, "Bad file descriptor"},
    {EAGAIN, "Resource temporarily unavailable"},
    {ENOMEM, "Cannot allocate memory"},
    {EACCES, "Permission denied"},
    {EBUSY, "Device or resource busy"},
    {EEXIST, "File exists"},
    {EXDEV, "Invalid cross-device link"},
    {ENODEV, "No such device"},
    {ENOTDIR, "Not a directory"},
    {EISDIR, "Is a directory"},
    {EINVAL, "Invalid argument"},
    {ENFILE, "Too many open files in system"},
    {EMFILE, "Too many open files"},
    {ETXTBSY, "Text file busy"},
    {EFBIG, "File too large"},
    {ENOSPC, "No space left on device"},
    {EROFS, "Read-only file system"},
    {EMLINK, "Too many links"},
    {EPIPE, "Broken pipe"},
    {ENAMETOOLONG, "File name too long"},
    {ENOTEMPTY, "Directory not empty"},
    {ELOOP, "Too many levels of symbolic links"},
    {EOVERFLOW, "Value too large for defined data type"},
    {EILSEQ, "Invalid or incomplete multibyte or wide character"},
    {ENOTSUP, "Operation not supported"},
    {ENOTCONN, "Transport endpoint is not connected"},
    {ETIMEDOUT, "Connection timed out"},
    {EHOSTDOWN, "Host is down"},
    {EDQUOT, "Disk quota exceeded"},
    {ESTALE, "Stale file handle"},
};

NSString reasonOf(int error) {
    for (const Reason& reason : reasons) {
        if (reason.error == error) {
            return reason.text;
        }
    }
    return NSString::stringWithFormat("Error %d", error);
}

} // namespace

void reportError(NSString* errorText, StringView path, int error) {
    if (errorText == nullptr) {
        return;
    }
    TextBuilder text;
    text.append(path);
    text.appendLiteral(": ");
    text.append(reasonOf(error));
    *errorText = text.string();
}

void reportErrorOfBytes(NSString* errorText, const std::string& path, int error) {
    if (errorText != nullptr) {
        reportError(errorText, NSString::stringWithFileSystemBytes(path.data(), path.size()), error);
    }
}

} // namespace ZQFoundation::detail
