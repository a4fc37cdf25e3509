// SPDX-License-Identifier: MIT
// A simulated connection, which shows trace keys and levels in use.
#ifndef ZQFOUNDATION_VIEWER_NETWORKSESSION_H
#define ZQFOUNDATION_VIEWER_NETWORKSESSION_H

#include <cstddef>
#include <string>
#include <string_view>

#include "Document.h"

/// A simulated connection: a pair of sockets inside this process, whose far end sends everything back. It is
/// for text, so each piece is sent as Base64.
class NetworkSession {
public:
    NetworkSession();
    NetworkSession(const NetworkSession&) = delete;
    NetworkSession& operator=(const NetworkSession&) = delete;
    ~NetworkSession();

    /// Uploads the document's text and downloads it again. False when the connection fails.
    bool transfer(const Document& document, std::string& received);

private:
    bool exchangePiece(std::string_view piece, std::string& received);

    int nearEnd_ = -1;
    int farEnd_ = -1;
};

#endif
