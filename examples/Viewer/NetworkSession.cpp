// SPDX-License-Identifier: MIT
// Sending documents over a pair of sockets.
#include "NetworkSession.h"

#include <cerrno>

#include <sys/socket.h>
#include <unistd.h>

#include <ZQFoundation/ZQFoundation.h>

#include "TraceKeys.h"

using namespace ZQFoundation;

namespace {

/// Small, so that a short document already takes several pieces; far below what a socket holds without a
/// reader.
constexpr std::size_t pieceSize = 64;

bool sendAll(int socket, std::string_view bytes) {
    while (!bytes.empty()) {
        const ssize_t count = ::write(socket, bytes.data(), bytes.size());
        if (count < 0 && errno != EINTR) {
            return false;
        }
        bytes.remove_prefix(count > 0 ? static_cast<std::size_t>(count) : 0);
    }
    return true;
}

bool receiveAll(int socket, char* bytes, std::size_t count) {
    while (count != 0) {
        const ssize_t received = ::read(socket, bytes, count);
        if (received == 0 || (received < 0 && errno != EINTR)) {
            return false;
        }
        if (received > 0) {
            bytes += received;
            count -= static_cast<std::size_t>(received);
        }
    }
    return true;
}

/// A line that is of interest for any of three keys. An array made at each call would cost time even while
/// nothing is logged, so it is made once.
const NSArray& sessionKeys() {
    static const NSArray keys{TraceKeys::documents, TraceKeys::network, TraceKeys::files};
    return keys;
}

/// Where a document would go: its title may hold anything, and its digest shows whether it has changed.
NSURL addressOf(const Document& document) {
    const NSString text(std::string(document.text()));
    return NSURL::URLWithScheme_authority_path_query(
        "https", "viewer.example", NSString::stringWithFormat("/documents/%@", document.title()),
        NSString::stringWithFormat("md5=%@", text.md5String()));
}

} // namespace

NetworkSession::NetworkSession() {
    int ends[2];
    if (::socketpair(AF_UNIX, SOCK_STREAM, 0, ends) == 0) {
        nearEnd_ = ends[0];
        farEnd_ = ends[1];
    }
    // "Any of": the label names the keys that are on, as in "TraceDocuments/TraceNetwork: ...".
    ZQLog::logSelf_method_logAlways_logForAnyTraceKeyOf_usingFormat(this, __func__, true, sessionKeys(),
                                                                    "connected by descriptor %d", nearEnd_);
    // Each lookup of a route keeps a descriptor, so there is only one, and only when its result is logged.
    if (ZQLog::traceKeyIsEnabled(TraceKeys::network)) {
        static const NSString address = NetworkInfo::getLocalIPAddressStringOfInterfaceOfRouteTo("127.0.0.1");
        ZQLog::logSelf_method_logAlways_logForTraceKey_usingFormat(this, __func__, true, TraceKeys::network,
                                                                   "from the local address %@", address);
    }
}

NetworkSession::~NetworkSession() {
    if (nearEnd_ >= 0) {
        ::close(nearEnd_);
        ::close(farEnd_);
    }
}

bool NetworkSession::transfer(const Document& document, std::string& received) {
    const std::string_view bytes = document.text();
    received.clear();
    if (ZQLog::traceKeyIsEnabled(TraceKeys::network)) {
        ZQLog::logSelf_method_logAlways_logForTraceKey_usingFormat(this, __func__, true, TraceKeys::network,
                                                                   "goes to %@", addressOf(document));
    }
    bool isConnected = nearEnd_ >= 0;
    for (std::size_t at = 0; isConnected && at < bytes.size(); at += pieceSize) {
        isConnected = exchangePiece(bytes.substr(at, pieceSize), received);
    }
    const double share =
        bytes.empty() ? 1 : static_cast<double>(received.size()) / static_cast<double>(bytes.size());
    ZQLog::logSelf_method_logAlways_logForTraceKey_usingFormat(this, __func__, true, TraceKeys::network,
                                                               "%lu of %lu bytes came back (%.1f %%)",
                                                               received.size(), bytes.size(), 100 * share);
    return isConnected;
}

bool NetworkSession::exchangePiece(std::string_view piece, std::string& received) {
    const std::string text =
        NSData::dataWithBytes_length(piece.data(), piece.size()).base64EncodedStringInSingleLine().utf8();
    std::string answer(text.size(), '\0');
    if (!sendAll(nearEnd_, text) || !receiveAll(farEnd_, answer.data(), answer.size()) ||
        !sendAll(farEnd_, answer) || !receiveAll(nearEnd_, answer.data(), answer.size())) {
        return false;
    }
    const NSData bytes = NSData::dataFromBase64String(answer);
    received.append(reinterpret_cast<const char*>(bytes.bytes()), bytes.length());
    // A threshold: the line appears from level 2 on. Levels start at 1, because a key that is not set has
    // level 0 and a threshold of 0 would always hold.
    ZQLog::logSelf_method_logAlways_logForTraceKey_threshold_usingFormat(
        this, __func__, true, TraceKeys::level, 2, "%lu bytes, %lu so far", piece.size(), received.size());
    return true;
}
