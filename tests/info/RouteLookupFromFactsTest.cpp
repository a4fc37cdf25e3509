// SPDX-License-Identifier: MIT
// The look-up of a route with a scripted kernel, and the data and addresses from its messages.
#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdint>
#include <cstring>
#include <deque>
#include <initializer_list>
#include <string>
#include <utility>
#include <vector>

#include <arpa/inet.h>
#include <dirent.h>
#include <err.h>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include "foundation/system/RouteTransport.h"
#include "foundation/system/TestOverrides.h"
#include "info/NetworkInfo.h"
#include "info/RoutingSocket.h"
#include "tests/log/LogTestSupport.h"

using namespace ZQFoundation;
using logtest::CapturedOutput;

namespace {

using Bytes = std::vector<std::uint8_t>;

constexpr std::size_t headSize = 92;
constexpr std::size_t roomSize = 604;
constexpr std::size_t patience = 100; ///< errors at most, so that a retried one cannot hang the test
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

std::string hex(const Bytes& bytes) {
    std::string text;
    for (const std::uint8_t byte : bytes) {
        constexpr char digits[] = "0123456789abcdef";
        text.push_back(digits[byte >> 4]);
        text.push_back(digits[byte & 15]);
    }
    return text;
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
        put(result, 24, std::int32_t{0});
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
        if (writeError != 0 && requests.size() <= patience) {
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
            const bool fails = readError != 0 && readBuffers.size() <= patience;
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
std::string warning(const char* text, int error) {
    const CapturedOutput captured;
    errno = error;
    ::warn("%s", text);
    std::string line = captured.bytes();
    const std::string end = std::string(": ") + text + ": " + std::strerror(error) + "\n";
    EXPECT_TRUE(line.ends_with(end) && line.size() > end.size()) << line;
    return line;
}

/// Looks up with `errno` set and returns what came on standard error.
std::string saidWhile(std::uint32_t expected, const char* destination = "192.0.2.1", int error = 0) {
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

int openDescriptors() {
    int count = 0;
    for (int descriptor = 0; descriptor < 1024; ++descriptor) {
        count += isOpen(descriptor) ? 1 : 0;
    }
    return count;
}

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

/// The local address that the system itself takes towards a destination; 0 when there is no way.
std::uint32_t localAddressTowards(const char* destination) {
    const int socket = ::socket(AF_INET, SOCK_DGRAM, 0);
    sockaddr_in there = {};
    there.sin_family = AF_INET;
    there.sin_port = htons(9);
    EXPECT_EQ(::inet_pton(AF_INET, destination, &there.sin_addr), 1);
    sockaddr_in here = {};
    socklen_t size = sizeof here;
    const bool isKnown = ::connect(socket, reinterpret_cast<const sockaddr*>(&there), sizeof there) == 0 &&
                         ::getsockname(socket, reinterpret_cast<sockaddr*>(&here), &size) == 0;
    ::close(socket);
    return isKnown ? here.sin_addr.s_addr : 0;
}

} // namespace

TEST(RouteLookupFromFacts, asksByteForByte) {
    Script script({Message{}});
    EXPECT_EQ(saidWhile(networkOrder({192, 168, 1, 20}), "203.0.113.77"), "");
    ASSERT_EQ(script.requests.size(), 1U);
    const Bytes& request = script.requests[0];
    EXPECT_EQ(hex(request), hex(expectedRequest(script.lastSequence(), {203, 0, 113, 77})));
    EXPECT_GT(script.lastSequence(), 0);
}

TEST(RouteLookupFromFacts, writesAndReadsInOneBufferOf604BytesOnOneSocket) {
    Script script({Message{.type = 5}, Message{.type = 6}, Message{}});
    EXPECT_EQ(saidWhile(networkOrder({192, 168, 1, 20})), "");
    EXPECT_EQ(script.opens, 1);
    ASSERT_EQ(script.buffers.size(), 1U);
    EXPECT_EQ(script.readBuffers, std::vector<const void*>(3, script.buffers[0]));
    EXPECT_EQ(script.capacities, std::vector<std::size_t>(3, roomSize));
    EXPECT_EQ(script.askedSockets, std::vector<int>(4, script.sockets[0]));
}

TEST(RouteLookupFromFacts, numbersRequestsConsecutivelyAndKeepsTheirSockets) {
    const Message second{.addresses = {ipAddress(other)}};
    Script script({Message{}, second});
    EXPECT_EQ(lookUp(), networkOrder({192, 168, 1, 20}));
    const std::int32_t first = script.lastSequence();
    EXPECT_EQ(lookUp(), networkOrder(other));
    ASSERT_EQ(script.requests.size(), 2U);
    EXPECT_EQ(script.lastSequence(), first + 1);
    ASSERT_EQ(script.sockets.size(), 2U);
    EXPECT_NE(script.sockets[0], script.sockets[1]);
    EXPECT_TRUE(isOpen(script.sockets[0]));
    EXPECT_TRUE(isOpen(script.sockets[1]));
}

TEST(RouteLookupFromFacts, keepsTheBufferOfEachCall) {
    const Message second{.addresses = {ipAddress(other)}};
    Script script({Message{}, second});
    EXPECT_EQ(lookUp(), networkOrder({192, 168, 1, 20}));
    const std::int32_t first = script.lastSequence();
    EXPECT_EQ(lookUp(), networkOrder(other));
    ASSERT_EQ(script.buffers.size(), 2U);
    EXPECT_NE(script.buffers[0], script.buffers[1]);
    for (const auto& [buffer, expected] : {std::pair(script.buffers[0], Message{}.bytes(first)),
                                           std::pair(script.buffers[1], second.bytes(first + 1))}) {
        const auto* const bytes = static_cast<const std::uint8_t*>(buffer);
        EXPECT_EQ(hex(Bytes(bytes, bytes + expected.size())), hex(expected));
    }
}

TEST(RouteLookupFromFacts, beginsItsNumbersWith1) {
    logtest::inFreshProcess([] {
        Script script({Message{}});
        EXPECT_EQ(lookUp(), networkOrder({192, 168, 1, 20}));
        EXPECT_EQ(script.lastSequence(), 1);
        script.add(Message{});
        EXPECT_EQ(lookUp(), networkOrder({192, 168, 1, 20}));
        EXPECT_EQ(script.lastSequence(), 2);
    });
}

TEST(RouteLookupFromFacts, keepsTheSocketOfACallThatFails) {
    Script script;
    script.writeError = ENETUNREACH;
    EXPECT_EQ(saidWhile(0), warning(notWritten, ENETUNREACH));
    script.writeError = 0;
    script.readError = EIO;
    EXPECT_EQ(saidWhile(0), warning(notRead, EIO));
    script.add(Message{.mask = destinationBit});
    EXPECT_NE(saidWhile(0), "");
    ASSERT_EQ(script.sockets.size(), 3U);
    for (const int socket : script.sockets) {
        EXPECT_TRUE(isOpen(socket));
    }
}

TEST(RouteLookupFromFacts, numbersOnlyCallsThatOpenASocket) {
    Script script({Message{}});
    EXPECT_EQ(saidWhile(networkOrder({192, 168, 1, 20})), "");
    const std::int32_t first = script.lastSequence();
    EXPECT_NE(saidWhile(0, nullptr), "");
    script.openError = EMFILE;
    EXPECT_NE(saidWhile(0), "");
    script.openError = 0;
    script.writeError = EPERM;
    EXPECT_NE(saidWhile(0), "");
    EXPECT_EQ(script.lastSequence(), first + 1) << "a null address and a socket that cannot be opened count";
    script.writeError = 0;
    script.add(Message{});
    EXPECT_EQ(saidWhile(networkOrder({192, 168, 1, 20})), "");
    EXPECT_EQ(script.lastSequence(), first + 2) << "a failed write does not count";
}

TEST(RouteLookupFromFacts, copiesTheRouteMetricsIntoTheRequest) {
    Script script({Message{}});
    const RouteMetrics before = rt_metrics;
    std::memset(&rt_metrics, 0x5C, sizeof rt_metrics);
    EXPECT_EQ(lookUp("203.0.113.77"), networkOrder({192, 168, 1, 20}));
    Bytes kept(sizeof rt_metrics);
    std::memcpy(kept.data(), &rt_metrics, sizeof rt_metrics);
    rt_metrics = before;
    Bytes expected = expectedRequest(script.lastSequence(), {203, 0, 113, 77});
    std::fill(expected.begin() + 36, expected.begin() + 92, std::uint8_t{0x5C});
    ASSERT_EQ(script.requests.size(), 1U);
    EXPECT_EQ(hex(script.requests[0]), hex(expected));
    EXPECT_EQ(kept, Bytes(56, 0x5C));
}

TEST(RouteLookupFromFacts, reportsAMissingAddressWithoutOpeningASocket) {
    Script script;
    EXPECT_EQ(saidWhile(0, nullptr, EDOM), warning(noAddressGiven, EDOM));
    EXPECT_EQ(saidWhile(0, nullptr, 0), warning(noAddressGiven, 0));
    {
        const CapturedOutput captured;
        errno = ENOENT;
        EXPECT_EQ(textOf(NSString()), "(nil)");
        EXPECT_EQ(captured.bytes(), warning(noAddressGiven, ENOENT));
    }
    EXPECT_EQ(script.opens, 0);
    EXPECT_EQ(script.requests.size(), 0U);
}

TEST(RouteLookupFromFacts, reportsASocketThatCannotBeOpened) {
    Script script({Message{}});
    for (const int error : {EMFILE, EACCES, EAFNOSUPPORT}) {
        script.openError = error;
        EXPECT_EQ(saidWhile(0), warning(notOpened, error));
    }
    EXPECT_EQ(script.opens, 3);
    EXPECT_TRUE(script.askedSockets.empty());
}

TEST(RouteLookupFromFacts, reportsARequestThatCannotBeWritten) {
    Script script({Message{}});
    for (const int error : {ENETUNREACH, ESRCH, EPERM, EINTR}) {
        script.writeError = error;
        EXPECT_EQ(saidWhile(0), warning(notWritten, error));
    }
    EXPECT_EQ(script.requests.size(), 4U) << "an interrupted write is tried again";
    EXPECT_TRUE(script.readBuffers.empty());
}

TEST(RouteLookupFromFacts, takesOnlyANegativeResultOfAWriteForAFailure) {
    for (const std::ptrdiff_t written : {0, 1, 111}) {
        Script script({Message{}});
        script.written = written;
        EXPECT_EQ(saidWhile(networkOrder({192, 168, 1, 20})), "") << written;
        EXPECT_EQ(script.requests.size(), 1U) << written;
    }
}

TEST(RouteLookupFromFacts, reportsAReplyThatCannotBeRead) {
    for (const int error : {EIO, ENOBUFS, EINTR, EAGAIN}) {
        Script script;
        script.readError = error;
        EXPECT_EQ(saidWhile(0), warning(notRead, error));
        EXPECT_EQ(script.readBuffers.size(), 1U) << "a failed read is tried again";
    }
}

TEST(RouteLookupFromFacts, reportsAReadThatFailsBehindForeignMessages) {
    Script script({Message{.type = 1}, Message{.sequenceAhead = 1}});
    script.readError = EBADF;
    EXPECT_EQ(saidWhile(0), warning(notRead, EBADF));
    EXPECT_EQ(script.readBuffers.size(), 3U);
}

TEST(RouteLookupFromFacts, reportsAReplyWithoutTheInterfaceAddress) {
    const Message without[] = {
        {.mask = 0, .addresses = {}},
        {.mask = destinationBit, .addresses = {ipAddress({192, 0, 2, 1})}},
        {.mask = 0xDF, .addresses = std::vector<Bytes>(7, ipAddress({192, 0, 2, 1}))},
        {.mask = 0x100, .addresses = {ipAddress({192, 0, 2, 1})}},
    };
    for (const Message& message : without) {
        Script script({message});
        EXPECT_EQ(saidWhile(0, "192.0.2.1", EDOM), warning(notContained, EDOM)) << message.mask;
    }
}

TEST(RouteLookupFromFacts, givesNoTextForAnyFailure) {
    const auto expectNone = [](Script& script, const std::string& expected) {
        const CapturedOutput captured;
        errno = EDOM;
        EXPECT_EQ(textOf("192.0.2.1"), "(nil)") << script.opens;
        EXPECT_EQ(captured.bytes(), expected);
    };
    Script script;
    script.openError = EMFILE;
    expectNone(script, warning(notOpened, EMFILE));
    script.openError = 0;
    script.writeError = EPERM;
    expectNone(script, warning(notWritten, EPERM));
    script.writeError = 0;
    script.readError = EIO;
    expectNone(script, warning(notRead, EIO));
    script.add(Message{.mask = destinationBit});
    expectNone(script, warning(notContained, EDOM));
}

TEST(RouteLookupFromFacts, asksForTheRouteToNowhereWhenTheTextIsNoAddress) {
    for (const char* text : {"", "localhost", "host.example", "::1", "fe80::1", "1.2.3", "1.2.3.4.5",
                             "256.1.1.1", "1.2.3.4 ", " 1.2.3.4", "1.2.3.4:80", "0x7f.0.0.1", "-1.2.3.4"}) {
        Script script({Message{}});
        EXPECT_EQ(saidWhile(networkOrder({192, 168, 1, 20}), text), "") << text;
        ASSERT_EQ(script.requests.size(), 1U) << text;
        EXPECT_EQ(hex(script.requests[0]), hex(expectedRequest(script.lastSequence(), {0, 0, 0, 0}))) << text;
    }
}

TEST(RouteLookupFromFacts, asksTheSameOfAString) {
    for (const char* text : {"", "localhost", "::1", "r\xC3\xB6uter"}) {
        Script script({Message{}});
        const CapturedOutput captured;
        EXPECT_EQ(textOf(text), "192.168.1.20") << text;
        EXPECT_EQ(captured.bytes(), "") << text;
        EXPECT_EQ(hex(script.requests.at(0)), hex(expectedRequest(script.lastSequence(), {0, 0, 0, 0})))
            << text;
    }
    Script script({Message{}});
    EXPECT_EQ(textOf("203.0.113.77"), "192.168.1.20");
    EXPECT_EQ(hex(script.requests.at(0)), hex(expectedRequest(script.lastSequence(), {203, 0, 113, 77})));
}

TEST(RouteLookupFromFacts, dropsForeignMessages) {
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
        EXPECT_EQ(saidWhile(networkOrder({192, 168, 1, 20})), "");
        EXPECT_EQ(script.readBuffers.size(), 2U);
    }
    Script script(std::vector<Message>(std::begin(foreign), std::end(foreign)));
    script.add(Message{});
    script.add(Message{.addresses = wrong});
    EXPECT_EQ(saidWhile(networkOrder({192, 168, 1, 20})), "");
    EXPECT_EQ(script.unread(), 1U) << "it reads on behind the reply";
}

TEST(RouteLookupFromFacts, isSilentAtTheEndOfInputBeforeAnyMessage) {
    Script script;
    EXPECT_EQ(saidWhile(0, "203.0.113.77"), "");
    EXPECT_EQ(script.readBuffers.size(), 1U);
    Script again;
    EXPECT_EQ(textOf("203.0.113.77"), "(nil)");
}

TEST(RouteLookupFromFacts, takesWhatTheBufferHoldsAtTheEndOfInput) {
    // The last message was not for this call, and is read all the same.
    Script script({Message{.addresses = {ipAddress(other)}, .type = 1}});
    EXPECT_EQ(saidWhile(networkOrder(other)), "");
    Script without({Message{.mask = destinationBit, .type = 1}});
    EXPECT_EQ(saidWhile(0, "192.0.2.1", EDOM), warning(notContained, EDOM));
}

TEST(RouteLookupFromFacts, readsAShortMessageOverTheRequest) {
    // Only the head's first 24 bytes arrive; after them the request is still there.
    Script script({Message{.mask = interfaceAddressBit, .cutTo = 24}});
    EXPECT_EQ(saidWhile(networkOrder({203, 0, 113, 77}), "203.0.113.77"), "");
    Script whole({Message{.mask = destinationBit | interfaceAddressBit, .cutTo = 24}});
    EXPECT_EQ(saidWhile(0, "203.0.113.77"), "");
    EXPECT_EQ(whole.readBuffers.size(), 1U);
}

TEST(RouteLookupFromFacts, dropsAMessageTooShortToNameTheProcess) {
    for (const std::size_t count : {1U, 4U, 12U, 16U}) {
        Script script({Message{.cutTo = count}, Message{}});
        EXPECT_EQ(saidWhile(networkOrder({192, 168, 1, 20})), "") << count;
        EXPECT_EQ(script.readBuffers.size(), 2U) << count;
    }
}

TEST(RouteLookupFromFacts, walksByRoundedLengths) {
    const Bytes wanted = ipAddress({172, 16, 5, 9});
    struct Row {
        std::uint8_t length;
        std::size_t room;
    };
    const Row rows[] = {{0, 4},   {1, 4},   {2, 4},   {3, 4},     {4, 4},     {5, 8},
                        {6, 8},   {7, 8},   {8, 8},   {9, 12},    {15, 16},   {16, 16},
                        {17, 20}, {28, 28}, {29, 32}, {128, 128}, {253, 256}, {255, 256}};
    for (const Row& row : rows) {
        Script script({Message{.mask = gatewayBit | interfaceAddressBit,
                               .addresses = {socketAddress(row.length, 18, other, row.room), wanted}}});
        EXPECT_EQ(saidWhile(networkOrder({172, 16, 5, 9})), "") << int{row.length};
    }
}

TEST(RouteLookupFromFacts, walksOverLengths16And5And0) {
    Script script({Message{.mask = destinationBit | gatewayBit | netmaskBit | interfaceAddressBit,
                           .addresses = {socketAddress(16, 2, other, 16), socketAddress(5, 18, other, 8),
                                         socketAddress(0, 0, other, 4), ipAddress({172, 16, 5, 9})}}});
    EXPECT_EQ(saidWhile(networkOrder({172, 16, 5, 9})), "");
}

TEST(RouteLookupFromFacts, findsTheInterfaceAddressAmongAllEight) {
    std::vector<Bytes> addresses(8, ipAddress(other));
    addresses[5] = ipAddress({172, 16, 5, 9});
    Script script({Message{.mask = 0xFF, .addresses = addresses}});
    EXPECT_EQ(saidWhile(networkOrder({172, 16, 5, 9})), "");
    // Bits beyond the eighth have no meaning.
    Script beyond({Message{.mask = 0x7FFFFFFF, .addresses = addresses}});
    EXPECT_EQ(saidWhile(networkOrder({172, 16, 5, 9})), "");
    Script negative({Message{.mask = -1, .addresses = addresses}});
    EXPECT_EQ(saidWhile(networkOrder({172, 16, 5, 9})), "");
}

TEST(RouteLookupFromFacts, followsTheReplysMaskAndNotTheRequests) {
    // By the request's mask the second address would be taken.
    Script script({Message{.mask = interfaceAddressBit | 0x80,
                           .addresses = {ipAddress({172, 16, 5, 9}), ipAddress(other)}}});
    EXPECT_EQ(saidWhile(networkOrder({172, 16, 5, 9})), "");
}

TEST(RouteLookupFromFacts, trustsLengthsBeyondTheMessage) {
    // The message ends after the gateway, whose length reaches 240 bytes further, into the rest of a longer
    // message that was dropped before.
    Bytes filler(400, 0);
    const Bytes wanted = ipAddress({172, 16, 5, 9});
    std::copy(wanted.begin(), wanted.end(), filler.begin() + 240);
    Script script(
        {Message{.addresses = {filler}, .type = 1},
         Message{.mask = gatewayBit | interfaceAddressBit, .addresses = {socketAddress(240, 18, other, 8)}}});
    EXPECT_EQ(saidWhile(networkOrder({172, 16, 5, 9})), "");
}

TEST(RouteLookupFromFacts, takesBytes4To7OfAnyFamily) {
    for (const std::uint8_t family : std::initializer_list<std::uint8_t>{0, 2, 10, 18, 30, 255}) {
        Script script({Message{.addresses = {socketAddress(28, family, {1, 2, 3, 4}, 28)}}});
        EXPECT_EQ(saidWhile(networkOrder({1, 2, 3, 4})), "") << int{family};
    }
    // Even of an address whose length ends before them.
    Script script({Message{.addresses = {socketAddress(4, 2, other, 4), {9, 8, 7, 6}}}});
    EXPECT_EQ(saidWhile(networkOrder({9, 8, 7, 6})), "");
}

TEST(RouteLookupFromFacts, ignoresAnErrorNumberInTheReply) {
    struct Failing final : detail::system::RouteTransport {
        int open() noexcept override { return inner->open(); }
        std::ptrdiff_t write(int socket, const void* message, std::size_t count) noexcept override {
            return inner->write(socket, message, count);
        }
        std::ptrdiff_t read(int socket, void* message, std::size_t capacity) noexcept override {
            const std::ptrdiff_t count = inner->read(socket, message, capacity);
            const std::int32_t error = ENETUNREACH;
            std::memcpy(static_cast<std::uint8_t*>(message) + 24, &error, sizeof error);
            return count;
        }
        Script* inner = nullptr;
    };
    Script script({Message{}});
    Failing failing;
    failing.inner = &script;
    detail::overrides::routeTransport = &failing;
    EXPECT_EQ(saidWhile(networkOrder({192, 168, 1, 20})), "");
}

TEST(RouteLookupFromFacts, givesDottedTextInTheOrderOfMemory) {
    struct Row {
        std::array<std::uint8_t, 4> address;
        const char* expected;
    };
    const Row rows[] = {{{192, 168, 1, 20}, "192.168.1.20"},
                        {{1, 2, 3, 4}, "1.2.3.4"},
                        {{255, 255, 255, 255}, "255.255.255.255"},
                        {{0, 0, 0, 1}, "0.0.0.1"},
                        {{128, 0, 0, 0}, "128.0.0.0"},
                        {{10, 0, 200, 0}, "10.0.200.0"}};
    for (const Row& row : rows) {
        Script script({Message{.addresses = {ipAddress(row.address)}}});
        const CapturedOutput captured;
        EXPECT_EQ(textOf("192.0.2.1"), row.expected);
        EXPECT_EQ(captured.bytes(), "");
    }
}

TEST(RouteLookupFromFacts, givesNoTextForTheAddressOfNowhere) {
    Script script({Message{.addresses = {ipAddress({0, 0, 0, 0})}}});
    const CapturedOutput captured;
    EXPECT_EQ(textOf("192.0.2.1"), "(nil)");
    EXPECT_EQ(captured.bytes(), "");
}

TEST(RouteLookupFromFacts, agreesWithTheSystemAboutItsRoutes) {
    for (const char* destination : {"127.0.0.1", "127.1.2.3", "192.0.2.1", "10.1.2.3"}) {
        const std::uint32_t expected = localAddressTowards(destination);
        const CapturedOutput captured;
        EXPECT_EQ(lookUp(destination), expected) << destination;
        const std::string said = captured.bytes();
        EXPECT_EQ(said.empty(), expected != 0) << destination << ": " << said;
        // The kernel refuses a question to which it has no answer.
        EXPECT_EQ(said.find(notWritten) != std::string::npos, expected == 0) << destination << ": " << said;
    }
}

TEST(RouteLookupFromFacts, costsADescriptorForEachCall) {
    const CapturedOutput captured;
    const int before = openDescriptors();
    for (int call = 1; call <= 3; ++call) {
        lookUp("127.0.0.1");
        EXPECT_EQ(openDescriptors(), before + call);
    }
    EXPECT_EQ(lookUp(nullptr), 0U);
    EXPECT_EQ(openDescriptors(), before + 3);
}

TEST(RoutingAddressesFromFacts, areSplitByTheMask) {
    Bytes bytes;
    const std::uint8_t lengths[] = {16, 5, 0, 1, 8, 16, 9, 255};
    const std::size_t rooms[] = {16, 8, 4, 4, 8, 16, 12, 256};
    for (int i = 0; i < 8; ++i) {
        const Bytes address = socketAddress(lengths[i], 2, other, rooms[i]);
        bytes.insert(bytes.end(), address.begin(), address.end());
    }
    auto* const first = reinterpret_cast<RoutingSocketAddress*>(bytes.data());
    for (const int mask : {0xFF, -1, 0x7FFFFFFF, 0x1FF}) {
        RoutingSocketAddress* table[9];
        std::fill(std::begin(table), std::end(table), first + 1);
        get_rtaddrs(mask, first, table);
        std::size_t offset = 0;
        for (int i = 0; i < 8; ++i) {
            EXPECT_EQ(reinterpret_cast<std::uint8_t*>(table[i]) - bytes.data(),
                      static_cast<std::ptrdiff_t>(offset))
                << mask << " " << i;
            offset += rooms[i];
        }
        EXPECT_EQ(table[8], first + 1) << "a ninth entry is written";
    }
}

TEST(RoutingAddressesFromFacts, areSplitForEveryMask) {
    for (int mask = 0; mask < 256; ++mask) {
        Bytes bytes(8 * 16, 0);
        std::vector<std::ptrdiff_t> expected(8, -1);
        std::size_t offset = 0;
        for (std::size_t bit = 0; bit < 8; ++bit) {
            if ((mask >> bit & 1) != 0) {
                expected[bit] = static_cast<std::ptrdiff_t>(offset);
                bytes[offset] = static_cast<std::uint8_t>(bit * 2);
                offset += bit == 0 ? 4 : (bit * 2 + 3) / 4 * 4;
            }
        }
        const Bytes before = bytes;
        auto* const first = reinterpret_cast<RoutingSocketAddress*>(bytes.data());
        RoutingSocketAddress* table[8];
        std::fill(std::begin(table), std::end(table), first + 1);
        get_rtaddrs(mask, first, table);
        for (std::size_t bit = 0; bit < 8; ++bit) {
            const std::ptrdiff_t found =
                table[bit] == nullptr ? -1 : reinterpret_cast<std::uint8_t*>(table[bit]) - bytes.data();
            EXPECT_EQ(found, expected[bit]) << mask << " " << bit;
        }
        EXPECT_EQ(bytes, before) << mask;
    }
}

TEST(RoutingAddressesFromFacts, areAllAbsentWithoutABitOfTheFirstEight) {
    for (const int mask : {0, 0x100, 0x7FFFFF00}) {
        Bytes bytes(16, 16);
        auto* const first = reinterpret_cast<RoutingSocketAddress*>(bytes.data());
        RoutingSocketAddress* table[8];
        std::fill(std::begin(table), std::end(table), first);
        get_rtaddrs(mask, first, table);
        EXPECT_TRUE(std::all_of(std::begin(table), std::end(table), [](const RoutingSocketAddress* entry) {
            return entry == nullptr;
        })) << mask;
    }
}

TEST(RoutingDataFromFacts, isZeroAndStaysSo) {
    static_assert(sizeof(RouteMetrics) == 56);
    static_assert(sizeof(RoutingSocketAddressStorage) == 128);
    Script script({Message{}});
    EXPECT_EQ(lookUp(), networkOrder({192, 168, 1, 20}));
    const auto bytesOf = [](const auto& object) {
        Bytes bytes(sizeof object);
        std::memcpy(bytes.data(), &object, sizeof object);
        return bytes;
    };
    EXPECT_EQ(bytesOf(rt_metrics), Bytes(56, 0));
    EXPECT_EQ(bytesOf(so_dst), Bytes(128, 0));
    EXPECT_EQ(bytesOf(so_ifa), Bytes(128, 0));
    EXPECT_EQ(bytesOf(so_ifp), Bytes(128, 0));
}
