// SPDX-License-Identifier: MIT
// The requests of a routing socket and the messages that it accepts as their answers, with a scripted kernel
// and with the real one.
#include "info/RoutingSocket.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdint>
#include <cstring>
#include <deque>
#include <initializer_list>
#include <numeric>
#include <string>
#include <utility>
#include <vector>

#include <arpa/inet.h>
#include <err.h>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include "foundation/system/RouteTransport.h"
#include "foundation/system/TestOverrides.h"
#include "info/NetworkInfo.h"
#include "tests/info/NetworkScene.h"
#include "tests/kit/Child.h"
#include "tests/kit/RefusedCalls.h"
#include "tests/kit/StandardError.h"

using namespace ZQFoundation;
using kit::CapturedOutput;

namespace {

using Bytes = std::vector<std::uint8_t>;

constexpr std::size_t headSize = 92;
constexpr std::size_t roomSize = 604;
constexpr std::size_t maxErrors = 100; // so that a retry cannot hang the test
constexpr int destinationBit = 0x1;
constexpr int gatewayBit = 0x2;
constexpr int netmaskBit = 0x4;
constexpr int interfaceAddressBit = 0x20;

template <class Value>
void put(Bytes& bytes, std::size_t at, Value value) {
    std::memcpy(bytes.data() + at, &value, sizeof value);
}

template <class Value>
Value valueAt(const Bytes& bytes, std::size_t at) {
    Value value = {};
    if (at + sizeof value > bytes.size()) {
        ADD_FAILURE() << "no byte " << at;
        return value;
    }
    std::memcpy(&value, bytes.data() + at, sizeof value);
    return value;
}

/// A socket address of `length` bytes, of which the last are the padding; the first is its length.
Bytes socketAddress(std::uint8_t length, std::uint8_t family, const std::array<std::uint8_t, 4>& address,
                    std::size_t room) {
    Bytes bytes(room, 0xEE);
    bytes[0] = length;
    if (room > 1) {
        bytes[1] = family;
    }
    for (std::size_t i = 0; i < 4 && 4 + i < room; ++i) {
        bytes[4 + i] = address[i];
    }
    return bytes;
}

Bytes ipAddress(const std::array<std::uint8_t, 4>& address) { return socketAddress(16, 2, address, 16); }

std::uint32_t networkOrder(const std::array<std::uint8_t, 4>& address) {
    std::uint32_t value = 0;
    std::memcpy(&value, address.data(), sizeof value);
    return value;
}

/// A message as the kernel sends it. The head's fields that nobody reads are not zero.
struct Message {
    int mask = interfaceAddressBit;
    std::vector<Bytes> addresses = {ipAddress({192, 168, 1, 20})};
    std::uint8_t type = 4;
    std::int32_t sequenceAhead = 0;
    std::int32_t processAhead = 0;
    std::int32_t error = 0;
    std::size_t cutTo = roomSize; ///< bytes that arrive at most

    Bytes bytes(std::int32_t sequence) const {
        Bytes result(headSize, 0xAA);
        for (const Bytes& address : addresses) {
            result.insert(result.end(), address.begin(), address.end());
        }
        put(result, 0, static_cast<std::uint16_t>(result.size()));
        result[2] = 5;
        result[3] = type;
        put(result, 12, static_cast<std::int32_t>(mask));
        put(result, 16, static_cast<std::int32_t>(::getpid()) + processAhead);
        put(result, 20, sequence + sequenceAhead);
        put(result, 24, error);
        result.resize(std::min(result.size(), cutTo));
        return result;
    }
};

/// A kernel that records what it is asked and replies with what the script says.
class Script final : public detail::system::RouteTransport {
public:
    explicit Script(const std::vector<Message>& messages = {}) : messages_(messages.begin(), messages.end()) {
        detail::overrides::routeTransport = this;
    }
    Script(const Script&) = delete;
    Script& operator=(const Script&) = delete;
    ~Script() {
        detail::overrides::routeTransport = before_;
        for (const int socket : sockets) {
            ::close(socket);
        }
    }

    int open() noexcept override {
        ++opens;
        if (openError != 0) {
            errno = openError;
            return -1;
        }
        sockets.push_back(::open("/dev/null", O_RDWR | O_CLOEXEC));
        return sockets.back();
    }

    std::ptrdiff_t write(int socket, const void* message, std::size_t count) noexcept override {
        const auto* const bytes = static_cast<const std::uint8_t*>(message);
        requests.emplace_back(bytes, bytes + count);
        buffers.push_back(message);
        askedSockets.push_back(socket);
        if (writeError != 0 && requests.size() <= maxErrors) {
            errno = writeError;
            return -1;
        }
        return written >= 0 ? written : static_cast<std::ptrdiff_t>(count);
    }

    std::ptrdiff_t read(int socket, void* message, std::size_t capacity) noexcept override {
        readBuffers.push_back(message);
        capacities.push_back(capacity);
        askedSockets.push_back(socket);
        if (messages_.empty()) {
            const bool fails = readError != 0 && readBuffers.size() <= maxErrors;
            errno = fails ? readError : errno;
            return fails ? -1 : 0;
        }
        const Bytes bytes = messages_.front().bytes(lastSequence());
        messages_.pop_front();
        const std::size_t count = std::min(bytes.size(), capacity);
        std::memcpy(message, bytes.data(), count);
        return static_cast<std::ptrdiff_t>(count);
    }

    std::int32_t lastSequence() const {
        return requests.empty() ? 0 : valueAt<std::int32_t>(requests.back(), 20);
    }

    void add(const Message& message) { messages_.push_back(message); }
    std::size_t unread() const { return messages_.size(); }

    int openError = 0;
    int writeError = 0;
    int readError = 0;           ///< once there are no messages; else that is the end of input
    std::ptrdiff_t written = -1; ///< what a successful write answers, if not all
    int opens = 0;
    std::vector<Bytes> requests;
    std::vector<const void*> buffers;
    std::vector<const void*> readBuffers;
    std::vector<std::size_t> capacities;
    std::vector<int> askedSockets;
    std::vector<int> sockets;

private:
    std::deque<Message> messages_;
    detail::system::RouteTransport* const before_ = detail::overrides::routeTransport;
};

std::uint32_t lookUp(const char* destination = "192.0.2.1") {
    return getLocalIPAddressOfInterfaceOfRouteTo(destination);
}

/// What the C library's own reporting makes of the text and the error.
std::string routingWarning(const char* text, int error) {
    const CapturedOutput captured;
    errno = error;
    ::warn("%s", text);
    std::string line = captured.bytes();
    const std::string end = std::string(": ") + text + ": " + std::strerror(error) + "\n";
    EXPECT_TRUE(line.ends_with(end) && line.size() > end.size()) << line;
    return line;
}

/// Looks up with `errno` set and returns what was written to standard error.
std::string writtenFor(std::uint32_t expected, const char* destination = "192.0.2.1", int error = 0) {
    const CapturedOutput captured;
    errno = error;
    const std::uint32_t found = lookUp(destination);
    const int errorAfterwards = errno;
    EXPECT_EQ(found, expected);
    EXPECT_EQ(errorAfterwards, error) << "the caller's errno is not what it was";
    return captured.bytes();
}

std::string textOf(const NSString& destination) {
    const NSString text = NetworkInfo::getLocalIPAddressStringOfInterfaceOfRouteTo(destination);
    return text ? text.utf8() : "(nil)";
}

bool isOpen(int descriptor) { return ::fcntl(descriptor, F_GETFD) >= 0; }

Bytes expectedRequest(std::int32_t sequence, const std::array<std::uint8_t, 4>& destination) {
    Bytes bytes(112, 0);
    put(bytes, 0, std::uint16_t{112});
    bytes[2] = 5;
    bytes[3] = 4;
    put(bytes, 8, std::uint32_t{0x805});
    put(bytes, 12, std::uint32_t{0x21});
    put(bytes, 20, sequence);
    bytes[92] = 16;
    bytes[93] = 2;
    std::copy(destination.begin(), destination.end(), bytes.begin() + 96);
    return bytes;
}

constexpr const char* noAddressGiven = "no IP address given";
constexpr const char* notOpened = "cannot open routing socket";
constexpr const char* notWritten = "error in writing to routing socket";
constexpr const char* notRead = "error in reading from routing socket";
constexpr const char* notContained = "routing socket reply does not contain the desired information";

const std::array<std::uint8_t, 4> other = {10, 9, 8, 7};
const std::uint32_t local = networkOrder({192, 168, 1, 20}); // what a Message says by default

} // namespace

TEST(RoutingSocket, requestIsLaidOutByteForByte) {
    Script script({Message{}});
    EXPECT_EQ(writtenFor(local, "203.0.113.77"), "");
    ASSERT_EQ(script.requests.size(), 1U);
    EXPECT_EQ(script.requests[0], expectedRequest(script.lastSequence(), {203, 0, 113, 77}));
    EXPECT_GT(script.lastSequence(), 0);
}

TEST(RoutingSocket, requestCarriesTheMetricsOfTheHost) {
    Script script({Message{}});
    Bytes metrics(sizeof rt_metrics);
    std::iota(metrics.begin(), metrics.end(), std::uint8_t{1});
    std::memcpy(&rt_metrics, metrics.data(), sizeof rt_metrics);
    EXPECT_EQ(lookUp("203.0.113.77"), local);
    EXPECT_EQ(std::memcmp(&rt_metrics, metrics.data(), sizeof rt_metrics), 0);
    rt_metrics = {};
    Bytes expected = expectedRequest(script.lastSequence(), {203, 0, 113, 77});
    std::copy(metrics.begin(), metrics.end(), expected.begin() + 36);
    ASSERT_EQ(script.requests.size(), 1U);
    EXPECT_EQ(script.requests[0], expected);
}

TEST(RoutingSocket, writesAndReadsInOneBufferOf604BytesOnOneSocket) {
    Script script({Message{.type = 5}, Message{.type = 6}, Message{}});
    EXPECT_EQ(writtenFor(local), "");
    EXPECT_EQ(script.opens, 1);
    ASSERT_EQ(script.buffers.size(), 1U);
    EXPECT_EQ(script.readBuffers, std::vector<const void*>(3, script.buffers[0]));
    EXPECT_EQ(script.capacities, std::vector<std::size_t>(3, roomSize));
    EXPECT_EQ(script.askedSockets, std::vector<int>(4, script.sockets[0]));
}

TEST(RoutingSocket, numbersRequestsConsecutivelyAndKeepsSocketsAndBuffers) {
    const Message second{.addresses = {ipAddress(other)}};
    Script script({Message{}, second});
    EXPECT_EQ(lookUp(), local);
    const std::int32_t first = script.lastSequence();
    EXPECT_EQ(lookUp(), networkOrder(other));
    EXPECT_EQ(script.lastSequence(), first + 1);
    ASSERT_EQ(script.sockets.size(), 2U);
    EXPECT_NE(script.sockets[0], script.sockets[1]);
    EXPECT_TRUE(isOpen(script.sockets[0]));
    EXPECT_TRUE(isOpen(script.sockets[1]));
    ASSERT_EQ(script.buffers.size(), 2U);
    for (const auto& [buffer, expected] : {std::pair(script.buffers[0], Message{}.bytes(first)),
                                           std::pair(script.buffers[1], second.bytes(first + 1))}) {
        const auto* const bytes = static_cast<const std::uint8_t*>(buffer);
        EXPECT_EQ(Bytes(bytes, bytes + expected.size()), expected);
    }
}

TEST(RoutingSocket, numbersOnlyCallsThatOpenASocketFrom1) {
    kit::inFreshProcess([] {
        Script script({Message{}});
        EXPECT_EQ(writtenFor(local), "");
        EXPECT_EQ(script.lastSequence(), 1);
        EXPECT_NE(writtenFor(0, nullptr), "");
        script.openError = EMFILE;
        EXPECT_NE(writtenFor(0), "");
        script.openError = 0;
        script.writeError = EPERM;
        EXPECT_NE(writtenFor(0), "");
        EXPECT_EQ(script.lastSequence(), 2) << "a null address and a socket that cannot be opened count";
        script.writeError = 0;
        script.add(Message{});
        EXPECT_EQ(writtenFor(local), "");
        EXPECT_EQ(script.lastSequence(), 3) << "a failed write does not count";
    });
}

TEST(RoutingSocket, noDestinationIsReportedAndNothingIsOpened) {
    Script script;
    EXPECT_EQ(writtenFor(0, nullptr, EDOM), routingWarning(noAddressGiven, EDOM));
    EXPECT_EQ(writtenFor(0, nullptr, 0), routingWarning(noAddressGiven, 0));
    const CapturedOutput captured;
    errno = ENOENT;
    EXPECT_EQ(textOf(NSString()), "(nil)");
    EXPECT_EQ(captured.bytes(), routingWarning(noAddressGiven, ENOENT));
    EXPECT_EQ(script.opens, 0);
    EXPECT_EQ(script.requests.size(), 0U);
}

TEST(RoutingSocket, failedStepsAreReportedWithTheSystemsErrorAndNeverRetried) {
    for (const int error : {EMFILE, EACCES, EAFNOSUPPORT}) {
        Script script({Message{}});
        script.openError = error;
        EXPECT_EQ(writtenFor(0), routingWarning(notOpened, error));
        EXPECT_TRUE(script.askedSockets.empty());
    }
    for (const int error : {ENETUNREACH, ESRCH, EPERM, EINTR}) {
        Script script({Message{}});
        script.writeError = error;
        EXPECT_EQ(writtenFor(0), routingWarning(notWritten, error));
        EXPECT_EQ(script.requests.size(), 1U);
        EXPECT_TRUE(script.readBuffers.empty());
        EXPECT_TRUE(isOpen(script.sockets.at(0))) << "the socket of a failed call is kept";
    }
    for (const int error : {EIO, ENOBUFS, EINTR, EAGAIN}) {
        for (const std::size_t foreign : {0U, 2U}) {
            Script script(std::vector<Message>(foreign, Message{.type = 1}));
            script.readError = error;
            EXPECT_EQ(writtenFor(0, "192.0.2.1", EDOM), routingWarning(notRead, error));
            EXPECT_EQ(script.readBuffers.size(), foreign + 1);
            EXPECT_TRUE(isOpen(script.sockets.at(0)));
            const CapturedOutput unseen;
            EXPECT_EQ(textOf("192.0.2.1"), "(nil)");
        }
    }
}

TEST(RoutingSocket, onlyANegativeResultOfAWriteIsAFailure) {
    for (const std::ptrdiff_t written : {0, 1, 111}) {
        Script script({Message{}});
        script.written = written;
        EXPECT_EQ(writtenFor(local), "") << written;
        EXPECT_EQ(script.requests.size(), 1U) << written;
    }
}

TEST(RoutingSocket, replyWithoutTheAddressOfTheInterfaceIsReported) {
    const Message without[] = {
        {.mask = 0, .addresses = {}},
        {.mask = destinationBit, .addresses = {ipAddress({192, 0, 2, 1})}},
        {.mask = 0xDF, .addresses = std::vector<Bytes>(7, ipAddress({192, 0, 2, 1}))},
        {.mask = 0x100, .addresses = {ipAddress({192, 0, 2, 1})}},
    };
    for (const Message& message : without) {
        Script script({message, message});
        EXPECT_EQ(writtenFor(0, "192.0.2.1", EDOM), routingWarning(notContained, EDOM)) << message.mask;
        EXPECT_TRUE(isOpen(script.sockets.at(0)));
        const CapturedOutput unseen;
        EXPECT_EQ(textOf("192.0.2.1"), "(nil)");
    }
}

TEST(RoutingSocket, textThatIsNoAddressAsksForTheRouteTo0000) {
    for (const char* text :
         {"", "localhost", "host.example", "::1", "fe80::1", "1.2.3", "1.2.3.4.5", "256.1.1.1", "1.2.3.4 ",
          " 1.2.3.4", "1.2.3.4:80", "1.2.3.4/8", "0x7f.0.0.1", "0x0a000001", "-1.2.3.4", "r\xC3\xB6uter"}) {
        Script script({Message{}, Message{}});
        EXPECT_EQ(writtenFor(local, text), "") << text;
        EXPECT_EQ(script.requests.at(0), expectedRequest(script.lastSequence(), {0, 0, 0, 0})) << text;
        EXPECT_EQ(textOf(text), "192.168.1.20") << text;
        EXPECT_EQ(script.requests.at(1), expectedRequest(script.lastSequence(), {0, 0, 0, 0})) << text;
    }
}

TEST(RoutingSocket, messagesForOthersAreDropped) {
    const std::vector<Bytes> wrong = {ipAddress(other)};
    const Message foreign[] = {
        {.addresses = wrong, .type = 1},
        {.addresses = wrong, .type = 0},
        {.addresses = wrong, .type = 5},
        {.addresses = wrong, .sequenceAhead = 1},
        {.addresses = wrong, .sequenceAhead = -1},
        {.addresses = wrong, .sequenceAhead = 65536},
        {.addresses = wrong, .processAhead = 1},
        {.addresses = wrong, .processAhead = -1},
        {.addresses = wrong, .processAhead = -::getpid()},
    };
    for (const Message& message : foreign) {
        Script script({message, Message{}});
        EXPECT_EQ(writtenFor(local), "");
        EXPECT_EQ(script.readBuffers.size(), 2U);
    }
    Script script(std::vector<Message>(std::begin(foreign), std::end(foreign)));
    script.add(Message{});
    script.add(Message{.addresses = wrong});
    EXPECT_EQ(writtenFor(local), "");
    EXPECT_EQ(script.unread(), 1U) << "it reads on after the reply";
}

TEST(RoutingSocket, endOfInputBeforeAnyMessageFindsTheRequestsOwnEmptyAddress) {
    Script script;
    EXPECT_EQ(writtenFor(0, "203.0.113.77"), "");
    EXPECT_EQ(script.readBuffers.size(), 1U);
    EXPECT_EQ(textOf("203.0.113.77"), "(nil)");
}

TEST(RoutingSocket, endOfInputAfterADroppedMessageTakesTheAddressFromThatOne) {
    Script script({Message{.addresses = {ipAddress(other)}, .type = 1}});
    EXPECT_EQ(writtenFor(networkOrder(other)), "");
    Script without({Message{.mask = destinationBit, .type = 1}});
    EXPECT_EQ(writtenFor(0, "192.0.2.1", EDOM), routingWarning(notContained, EDOM));
}

TEST(RoutingSocket, shortMessageIsReadWithWhatFollowedInTheBuffer) {
    // Only the header's first 24 bytes arrive; after them the request is still there.
    Script script({Message{.mask = interfaceAddressBit, .cutTo = 24}});
    EXPECT_EQ(writtenFor(networkOrder({203, 0, 113, 77}), "203.0.113.77"), "");
    Script whole({Message{.mask = destinationBit | interfaceAddressBit, .cutTo = 24}});
    EXPECT_EQ(writtenFor(0, "203.0.113.77"), "");
    EXPECT_EQ(whole.readBuffers.size(), 1U);
    // The request names no process.
    for (const std::size_t count : {1U, 4U, 12U, 16U}) {
        Script again({Message{.cutTo = count}, Message{}});
        EXPECT_EQ(writtenFor(local), "") << count;
        EXPECT_EQ(again.readBuffers.size(), 2U) << count;
    }
    // A dropped message does.
    Script after({Message{.addresses = {ipAddress(other)}, .type = 3}, Message{.cutTo = 4}});
    EXPECT_EQ(writtenFor(networkOrder(other)), "");
}

TEST(RoutingSocket, addressesAdvanceByTheirLengthInWholeWords) {
    const std::array<std::uint8_t, 4> wanted = {172, 16, 5, 9};
    struct Row {
        std::uint8_t length;
        std::size_t room;
    };
    const Row rows[] = {{0, 4},   {1, 4},   {2, 4},   {3, 4},     {4, 4},     {5, 8},
                        {6, 8},   {7, 8},   {8, 8},   {9, 12},    {15, 16},   {16, 16},
                        {17, 20}, {28, 28}, {29, 32}, {128, 128}, {253, 256}, {255, 256}};
    for (const Row& row : rows) {
        Script script(
            {Message{.mask = gatewayBit | interfaceAddressBit,
                     .addresses = {socketAddress(row.length, 18, other, row.room), ipAddress(wanted)}}});
        EXPECT_EQ(writtenFor(networkOrder(wanted)), "") << int{row.length};
    }
    Script script({Message{.mask = destinationBit | gatewayBit | netmaskBit | interfaceAddressBit,
                           .addresses = {socketAddress(16, 2, other, 16), socketAddress(5, 18, other, 8),
                                         socketAddress(0, 0, other, 4), ipAddress(wanted)}}});
    EXPECT_EQ(writtenFor(networkOrder(wanted)), "");
}

TEST(RoutingSocket, addressOfTheInterfaceIsTheSixthOfTheReplysMask) {
    const std::array<std::uint8_t, 4> wanted = {172, 16, 5, 9};
    std::vector<Bytes> addresses(8, ipAddress(other));
    addresses[5] = ipAddress(wanted);
    // Bits beyond the eighth have no meaning.
    for (const int mask : {0xFF, 0x7FFFFFFF, -1}) {
        Script script({Message{.mask = mask, .addresses = addresses}});
        EXPECT_EQ(writtenFor(networkOrder(wanted)), "") << mask;
    }
    // By the request's mask the second address would be taken.
    Script script(
        {Message{.mask = interfaceAddressBit | 0x80, .addresses = {ipAddress(wanted), ipAddress(other)}}});
    EXPECT_EQ(writtenFor(networkOrder(wanted)), "");
}

TEST(RoutingSocket, addressIsReadFromBytes4To7OfAnyFamilyAndLength) {
    for (const std::uint8_t family : std::initializer_list<std::uint8_t>{0, 2, 10, 18, 30, 255}) {
        Script script({Message{.addresses = {socketAddress(28, family, {1, 2, 3, 4}, 28)}}});
        EXPECT_EQ(writtenFor(networkOrder({1, 2, 3, 4})), "") << int{family};
    }
    // Even if its length ends before them.
    Script script({Message{.addresses = {socketAddress(4, 2, other, 4), {9, 8, 7, 6}}}});
    EXPECT_EQ(writtenFor(networkOrder({9, 8, 7, 6})), "");
}

TEST(RoutingSocket, lengthsBeyondTheMessageAreTrusted) {
    // The message ends after the gateway, whose length reaches 240 bytes further, into the rest of a longer
    // message that was dropped before.
    const std::array<std::uint8_t, 4> wanted = {172, 16, 5, 9};
    Bytes filler(400, 0);
    const Bytes address = ipAddress(wanted);
    std::copy(address.begin(), address.end(), filler.begin() + 240);
    Script script(
        {Message{.addresses = {filler}, .type = 1},
         Message{.mask = gatewayBit | interfaceAddressBit, .addresses = {socketAddress(240, 18, other, 8)}}});
    EXPECT_EQ(writtenFor(networkOrder(wanted)), "");
}

TEST(RoutingSocket, lengthsThatLeadOutOfTheBufferEndTheWalk) {
    // 512 bytes are there for addresses; the interface's begins after `before` of them.
    struct Row {
        std::size_t before;
        bool found;
    };
    for (const Row& row :
         {Row{500, true}, Row{504, true}, Row{508, false}, Row{512, false}, Row{516, false}}) {
        Bytes addresses(512);
        addresses[0] = 252;
        addresses[252] = static_cast<std::uint8_t>(row.before - 252 - 8 - 3); // rounded up
        addresses[row.before - 8] = 8;
        if (row.found) {
            std::copy(other.begin(), other.end(),
                      addresses.begin() + static_cast<std::ptrdiff_t>(row.before) + 4);
        }
        Script script({Message{.mask = destinationBit | gatewayBit | netmaskBit | interfaceAddressBit,
                               .addresses = {addresses}}});
        EXPECT_EQ(writtenFor(row.found ? networkOrder(other) : 0),
                  row.found ? "" : routingWarning(notContained, 0))
            << row.before;
    }
    Script longest({Message{.mask = -1, .addresses = {Bytes(512, 0xFF)}}});
    EXPECT_EQ(writtenFor(0), routingWarning(notContained, 0));
}

TEST(RoutingSocket, errorNumberInTheReplyIsIgnored) {
    Script script({Message{.error = ENETUNREACH}});
    EXPECT_EQ(writtenFor(local), "");
}

TEST(NetworkInfo, addressIsWrittenInTheOrderOfItsBytes) {
    struct Row {
        std::array<std::uint8_t, 4> address;
        const char* expected;
    };
    const Row rows[] = {{{192, 168, 1, 20}, "192.168.1.20"},
                        {{255, 254, 253, 252}, "255.254.253.252"},
                        {{0, 0, 0, 1}, "0.0.0.1"},
                        {{128, 0, 0, 0}, "128.0.0.0"},
                        {{0, 0, 0, 0}, "(nil)"}}; // looks like a failure, without a line
    for (const Row& row : rows) {
        Script script({Message{.addresses = {ipAddress(row.address)}}});
        const CapturedOutput captured;
        EXPECT_EQ(textOf("203.0.113.77"), row.expected);
        EXPECT_EQ(captured.bytes(), "");
        EXPECT_EQ(script.requests.at(0), expectedRequest(script.lastSequence(), {203, 0, 113, 77}));
    }
}

namespace {

/// The offsets of the eight addresses, -1 for absent ones.
std::vector<std::ptrdiff_t> splitByMask(Bytes& bytes, int mask) {
    auto* const first = reinterpret_cast<RoutingSocketAddress*>(bytes.data());
    RoutingSocketAddress* table[9];
    std::fill(std::begin(table), std::end(table), first + 1);
    get_rtaddrs(mask, first, table);
    EXPECT_EQ(table[8], first + 1) << "a ninth entry is written";
    std::vector<std::ptrdiff_t> places;
    for (int i = 0; i < 8; ++i) {
        places.push_back(table[i] == nullptr ? -1 : reinterpret_cast<std::uint8_t*>(table[i]) - bytes.data());
    }
    return places;
}

} // namespace

TEST(RoutingSocket, addressesAreSplitByTheFirstEightBitsOfTheMask) {
    Bytes bytes;
    std::vector<std::ptrdiff_t> expected;
    const std::uint8_t lengths[] = {16, 5, 0, 1, 8, 16, 9, 255};
    const std::size_t rooms[] = {16, 8, 4, 4, 8, 16, 12, 256};
    for (int i = 0; i < 8; ++i) {
        expected.push_back(static_cast<std::ptrdiff_t>(bytes.size()));
        const Bytes address = socketAddress(lengths[i], 2, other, rooms[i]);
        bytes.insert(bytes.end(), address.begin(), address.end());
    }
    for (const int mask : {0xFF, -1, 0x7FFFFFFF, 0x1FF}) {
        EXPECT_EQ(splitByMask(bytes, mask), expected) << mask;
    }
    for (const int mask : {0, 0x100, 0x7FFFFF00}) {
        EXPECT_EQ(splitByMask(bytes, mask), std::vector<std::ptrdiff_t>(8, -1)) << mask;
    }
    for (std::size_t bit = 0; bit < 8; ++bit) {
        std::vector<std::ptrdiff_t> alone(8, -1);
        alone[bit] = 0;
        EXPECT_EQ(splitByMask(bytes, 1 << bit), alone) << bit;
    }
}

TEST(RoutingSocket, exportedDataAreZeroAndStaySo) {
    static_assert(sizeof(RouteMetrics) == 56);
    static_assert(sizeof(RoutingSocketAddressStorage) == 128);
    Script script({Message{}});
    EXPECT_EQ(lookUp(), local);
    const Bytes zeros(128, 0);
    EXPECT_EQ(std::memcmp(&rt_metrics, zeros.data(), sizeof rt_metrics), 0);
    for (const RoutingSocketAddressStorage* storage : {&so_dst, &so_ifa, &so_ifp}) {
        EXPECT_EQ(std::memcmp(storage, zeros.data(), sizeof *storage), 0);
    }
}

namespace {

/// The descriptors of this process that are netlink sockets, and whether each closes at exec.
std::vector<std::pair<int, bool>> netlinkSockets() {
    std::vector<std::pair<int, bool>> found;
    for (int descriptor = 0; descriptor < 4096; ++descriptor) {
        int domain = 0;
        socklen_t length = sizeof domain;
        if (::getsockopt(descriptor, SOL_SOCKET, SO_DOMAIN, &domain, &length) == 0 && domain == AF_NETLINK) {
            found.emplace_back(descriptor, (::fcntl(descriptor, F_GETFD) & FD_CLOEXEC) != 0);
        }
    }
    return found;
}

/// A line for each destination: what the library says, what the system's own sockets say, what was reported.
std::string answersFor(const std::vector<std::string>& destinations) {
    std::string text;
    for (const std::string& destination : destinations) {
        const CapturedOutput output;
        const NSString found = NetworkInfo::getLocalIPAddressStringOfInterfaceOfRouteTo(destination);
        std::string written = output.bytes();
        if (!written.empty()) {
            written = " " + written.substr(written.find(": ") + 2);
            written.pop_back();
        }
        text += destination + " " + (found ? found.utf8() : "nil") + " " +
                networkscene::sourceOfConnection(destination) + written + "\n";
    }
    return text;
}

std::string setUp(std::initializer_list<int> results) {
    std::string text;
    for (const int result : results) {
        text += result == 0 ? "" : std::string("cannot be set up: ") + std::strerror(result) + "\n";
    }
    return text;
}

std::string answersOfTwoInterfaces() {
    using namespace networkscene;
    std::string text =
        setUp({raise("lo"), makePair("a0", "a1"), makePair("b0", "b1"), addAddress("a0", "10.1.0.1", 24),
               addAddress("b0", "10.2.0.1", 24), addAddress("b0", "10.2.0.9", 24), raise("a0"), raise("a1"),
               raise("b0"), raise("b1"), addRoute({"0.0.0.0", 0, "a0", "10.1.0.254"}),
               addRoute({"10.3.0.0", 16, "b0", "10.2.0.254"}), addRoute({"10.3.0.7", 32, "a0", "10.1.0.254"}),
               addRoute({"10.4.0.0", 16, "b0", nullptr, "10.2.0.9"}),
               addRoute({"10.5.0.0", 16, nullptr, nullptr, nullptr, RTN_UNREACHABLE}),
               addRoute({"10.6.0.0", 16, nullptr, nullptr, nullptr, RTN_PROHIBIT})});
    return text += answersFor({"127.0.0.1", "10.1.0.1", "10.2.0.9", "10.1.0.77", "10.2.0.77", "10.3.0.1",
                               "10.3.0.7", "10.4.0.1", "10.5.0.1", "10.6.0.1", "198.51.100.1"});
}

std::string answersWithoutAddresses() {
    using namespace networkscene;
    std::string text =
        setUp({makePair("a0", "a1"), raise("a0"), raise("a1"), addRoute({"10.1.0.0", 16, "a0"})});
    return text += answersFor({"10.1.0.1", "10.2.0.1"});
}

} // namespace

TEST(RoutingSocketOfTheKernel, knowsTheLoopback) {
    for (const char* destination : {"127.0.0.1", "127.0.0.2", "127.1.2.3", "127.255.255.254"}) {
        const NSString found = NetworkInfo::getLocalIPAddressStringOfInterfaceOfRouteTo(destination);
        EXPECT_EQ(found, "127.0.0.1") << destination;
        EXPECT_EQ(found, networkscene::sourceOfConnection(destination)) << destination;
    }
}

TEST(RoutingSocketOfTheKernel, keepsOneSocketForEachCallThatNoChildInherits) {
    const auto before = netlinkSockets();
    getLocalIPAddressOfInterfaceOfRouteTo("127.0.0.1");
    EXPECT_EQ(netlinkSockets().size(), before.size() + 1);
    getLocalIPAddressOfInterfaceOfRouteTo("127.0.0.1");
    const auto after = netlinkSockets();
    EXPECT_EQ(after.size(), before.size() + 2);
    for (const auto& [descriptor, closesAtExec] : after) {
        EXPECT_TRUE(closesAtExec) << descriptor;
    }
}

TEST(RoutingSocketOfTheKernel, namesTheStepThatFailed) {
    const std::pair<unsigned, const char*> rows[] = {{SYS_recvfrom, notRead}, {SYS_sendto, notWritten}};
    for (const auto& row : rows) { // a lambda captures no structured binding with clang 14
        kit::expectInChild([&row] {
            EXPECT_TRUE(kit::refuseCall(row.first, EIO));
            EXPECT_EQ(writtenFor(0, "127.0.0.1"), routingWarning(row.second, EIO));
        });
    }
}

TEST(RoutingSocketOfTheKernel, followsTheRoutes) {
    const auto answers = networkscene::inNetworkOfItsOwn(answersOfTwoInterfaces);
    if (!answers) {
        GTEST_SKIP() << "no network namespace with interfaces of its own can be made here";
    }
    const std::string failed = " nil none error in writing to routing socket: ";
    const std::string unreachable = failed + std::strerror(EHOSTUNREACH) + "\n";
    const std::string prohibited = failed + std::strerror(EACCES) + "\n";
    EXPECT_EQ(*answers, "127.0.0.1 127.0.0.1 127.0.0.1\n"
                        "10.1.0.1 10.1.0.1 10.1.0.1\n"
                        "10.2.0.9 10.2.0.1 10.2.0.1\n" // the network's first address comes first
                        "10.1.0.77 10.1.0.1 10.1.0.1\n"
                        "10.2.0.77 10.2.0.1 10.2.0.1\n"
                        "10.3.0.1 10.2.0.1 10.2.0.1\n"
                        "10.3.0.7 10.1.0.1 10.1.0.1\n"
                        "10.4.0.1 10.2.0.9 10.2.0.9\n"
                        "10.5.0.1" +
                            unreachable + "10.6.0.1" + prohibited + "198.51.100.1 10.1.0.1 10.1.0.1\n");
}

TEST(RoutingSocketOfTheKernel, reportsInterfacesWithoutAnAddressAndMissingRoutes) {
    const auto answers = networkscene::inNetworkOfItsOwn(answersWithoutAddresses);
    if (!answers) {
        GTEST_SKIP() << "no network namespace with interfaces of its own can be made here";
    }
    const std::string missing =
        std::string("error in writing to routing socket: ") + std::strerror(ENETUNREACH) + "\n";
    EXPECT_EQ(
        answers->substr(0, answers->find('\n')).find(std::string("10.1.0.1 nil 0.0.0.0 ") + notContained), 0u)
        << *answers;
    EXPECT_NE(answers->find("10.2.0.1 nil none " + missing), std::string::npos) << *answers;
}
