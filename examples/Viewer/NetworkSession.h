// SPDX-License-Identifier: MIT
#ifndef ZQFOUNDATION_VIEWER_NETWORKSESSION_H
#define ZQFOUNDATION_VIEWER_NETWORKSESSION_H

#include <cstddef>
#include <string>
#include <string_view>

/// A pretended connection: a pair of sockets inside this process, whose far end sends everything back.
class NetworkSession {
public:
    NetworkSession();
    NetworkSession(const NetworkSession&) = delete;
    NetworkSession& operator=(const NetworkSession&) = delete;
    ~NetworkSession();

    /// Uploads the bytes and downloads them again. False when the connection fails.
    bool transfer(std::string_view bytes, std::string& received);

private:
    bool exchangePiece(std::string_view piece, std::string& received);

    int nearEnd_ = -1;
    int farEnd_ = -1;
};

#endif
