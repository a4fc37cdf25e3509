// SPDX-License-Identifier: MIT
// The requests of a routing socket and the messages that it accepts as their answers.
#include "info/RoutingSocket.h"

#include <arpa/inet.h>
#include <dirent.h>

#include <cstring>
#include <string>
#include <vector>

#include "foundation/system/RouteMessage.h"
#include "foundation/system/RouteTransport.h"
#include "foundation/system/TestOverrides.h"
#include "info/NetworkInfo.h"
#include "tests/info/NetworkScene.h"
#include "tests/log/LogTestSupport.h"
#include "tests/process/RefusedCalls.h"

using namespace ZQFoundation;
using detail::system::RouteAddress;
using detail::system::RouteMessageHeader;

namespace {

using Bytes = std::vector<std::uint8_t>;

std::uint32_t address(const char* text) {
    in_addr value{};
    EXPECT_EQ(::inet_pton(AF_INET, text, &value), 1) << text;
    return value.s_addr;
}

RouteMessageHeader headerOf(const Bytes& message) {
    RouteMessageHeader header{};
    if (message.size() >= sizeof header) {
        std::memcpy(&header, message.data(), sizeof header);
    }
    return header;
}

/// A socket address of `length` bytes by its own word, in `room` bytes.
Bytes socketAddress(std::uint8_t length, std::size_t room, const char* text, std::uint8_t family = 2) {
    Bytes bytes(room);
    const std::uint32_t value = address(text);
    bytes[0] = length;
    if (room > 1) {
        bytes[1] = family;
    }
    if (room >= 8) {
        std::memcpy(&bytes[4], &value, sizeof value);
    }
    return bytes;
}

Bytes operator+(Bytes left, const Bytes& right) {
    left.insert(left.end(), right.begin(), right.end());
    return left;
}

/// What one read is to return. Its header answers the last request except where a field here says otherwise.
struct Reading {
    Bytes addresses;
    int mask = 0x21;
    std::uint8_t type = 4;
    int sequenceOff = 0;
    int processOff = 0;
    std::size_t cutTo = SIZE_MAX;
    int error = 0;           ///< a failed read
    bool endOfInput = false; ///< a read of nothing
};

Reading answer(const char* text) {
    return {socketAddress(16, 16, "192.0.2.7") + socketAddress(16, 16, text)};
}

Reading endOfInput() {
    Reading reading;
    reading.endOfInput = true;
    return reading;
}

/// Replaces the kernel: keeps what is written and returns what the test says.
class Script final : public detail::system::RouteTransport {
public:
    explicit Script(std::vector<Reading> readings = {}) : readings_(std::move(readings)) {
        detail::overrides::routeTransport = this;
    }
    Script(const Script&) = delete;
    Script& operator=(const Script&) = delete;
    ~Script() { detail::overrides::routeTransport = nullptr; }

    int open() noexcept override {
        ++opened;
        errno = openError;
        return openError == 0 ? firstSocket + opened : -1;
    }

    std::ptrdiff_t write(int socket, const void* message, std::size_t count) noexcept override {
        EXPECT_EQ(socket, firstSocket + opened);
        const auto* const bytes = static_cast<const std::uint8_t*>(message);
        requests.emplace_back(bytes, bytes + count);
        errno = writeError;
        return writeError == 0 ? static_cast<std::ptrdiff_t>(count) : -1;
    }

    std::ptrdiff_t read(int socket, void* message, std::size_t capacity) noexcept override {
        EXPECT_EQ(socket, firstSocket + opened);
        EXPECT_EQ(capacity, 604u);
        if (reads == readings_.size()) {
            ADD_FAILURE() << "a read more than there are messages";
            return 0;
        }
        const Reading& reading = readings_[reads++];
        if (reading.error != 0 || reading.endOfInput) {
            errno = reading.error;
            return reading.endOfInput ? 0 : -1;
        }
        RouteMessageHeader header = headerOf(requests.back());
        header.rtm_type = reading.type;
        header.rtm_addrs = reading.mask;
        header.rtm_seq += reading.sequenceOff;
        header.rtm_pid = ::getpid() + reading.processOff;
        Bytes bytes(sizeof header);
        std::memcpy(bytes.data(), &header, sizeof header);
        bytes = bytes + reading.addresses;
        const std::size_t count = std::min({bytes.size(), reading.cutTo, capacity});
        std::memcpy(message, bytes.data(), count);
        return static_cast<std::ptrdiff_t>(count);
    }

    std::int32_t lastSequence() const { return requests.empty() ? 0 : headerOf(requests.back()).rtm_seq; }

    static constexpr int firstSocket = 1000000; // no descriptor of this process
    int openError = 0;
    int writeError = 0;
    int opened = 0;
    std::size_t reads = 0;
    std::vector<Bytes> requests;

private:
    std::vector<Reading> readings_;
};

/// What a look-up returns and what it writes to standard error.
struct Outcome {
    std::uint32_t address;
    std::string written;
};

Outcome lookUp(const char* destination) {
    const logtest::CapturedOutput output;
    const std::uint32_t address = getLocalIPAddressOfInterfaceOfRouteTo(destination);
    return {address, output.bytes()};
}

/// The line of a failure with the error `number`.
std::string failureLine(const std::string& text, int number) {
    return std::string(program_invocation_short_name) + ": " + text + ": " + std::strerror(number) + "\n";
}

constexpr const char* noAddressText = "routing socket reply does not contain the desired information";

} // namespace

TEST(RoutingSocket, requestIsLaidOutByteForByte) {
    const Script script({answer("192.0.2.1")});
    getLocalIPAddressOfInterfaceOfRouteTo("10.20.30.40");
    ASSERT_EQ(script.requests.size(), 1u);
    Bytes expected(112);
    const auto put = [&](std::size_t at, auto value) {
        std::memcpy(&expected[at], &value, sizeof value);
    };
    put(0, std::uint16_t{112});
    put(2, std::uint8_t{5});
    put(3, std::uint8_t{4});
    put(8, std::int32_t{0x805});
    put(12, std::int32_t{0x21});
    put(20, script.lastSequence());
    put(92, std::uint8_t{16});
    put(93, std::uint8_t{2});
    const std::uint8_t destination[] = {10, 20, 30, 40};
    std::memcpy(&expected[96], destination, sizeof destination);
    EXPECT_EQ(script.requests[0], expected);
    EXPECT_NE(script.lastSequence(), 0);
}

TEST(RoutingSocket, requestCarriesTheMetricsOfTheHost) {
    const Script script({answer("192.0.2.1"), answer("192.0.2.1")});
    const Bytes metrics = [] {
        Bytes bytes(sizeof rt_metrics);
        for (std::size_t i = 0; i < bytes.size(); ++i) {
            bytes[i] = static_cast<std::uint8_t>(i + 1);
        }
        return bytes;
    }();
    std::memcpy(&rt_metrics, metrics.data(), sizeof rt_metrics);
    getLocalIPAddressOfInterfaceOfRouteTo("10.20.30.40");
    rt_metrics = {};
    getLocalIPAddressOfInterfaceOfRouteTo("10.20.30.40");
    ASSERT_EQ(script.requests.size(), 2u);
    const auto copied = [&](std::size_t i) {
        return Bytes(script.requests[i].begin() + 36, script.requests[i].begin() + 92);
    };
    EXPECT_EQ(copied(0), metrics);
    EXPECT_EQ(copied(1), Bytes(56));
}

TEST(RoutingSocket, requestsAreNumberedOneByOneAndASocketIsKeptForEach) {
    Script script({answer("192.0.2.1"), answer("192.0.2.2"), answer("192.0.2.3")});
    getLocalIPAddressOfInterfaceOfRouteTo("10.0.0.1");
    const std::int32_t first = script.lastSequence();
    EXPECT_EQ(lookUp("10.0.0.1").address, address("192.0.2.2"));
    EXPECT_EQ(script.lastSequence(), first + 1);
    EXPECT_EQ(script.opened, 2);

    // A call that has no socket has no number either; one whose request is refused has.
    script.openError = EMFILE;
    lookUp("10.0.0.1");
    lookUp(nullptr);
    script.openError = 0;
    script.writeError = ENETUNREACH;
    lookUp("10.0.0.1");
    EXPECT_EQ(script.lastSequence(), first + 2);
    script.writeError = 0;
    EXPECT_EQ(lookUp("10.0.0.1").address, address("192.0.2.3"));
    EXPECT_EQ(script.lastSequence(), first + 3);
}

TEST(RoutingSocket, textThatIsNoAddressAsksForTheRouteTo0000) {
    for (const char* text : {"localhost", "::1", "", "10.0.0", "10.0.0.1.2", "256.0.0.1", " 10.0.0.1",
                             "10.0.0.1 ", "10.0.0.1/8", "0x0a000001", "10.0.0.-1"}) {
        const Script script({answer("192.0.2.1")});
        const Outcome outcome = lookUp(text);
        ASSERT_EQ(script.requests.size(), 1u) << text;
        EXPECT_EQ(Bytes(script.requests[0].begin() + 92, script.requests[0].end()),
                  (Bytes{16, 2, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0}))
            << text;
        EXPECT_EQ(outcome.address, address("192.0.2.1")) << text;
        EXPECT_EQ(outcome.written, "") << text;
    }
}

TEST(RoutingSocket, noDestinationIsReportedAndNothingIsOpened) {
    const Script script;
    const logtest::CapturedOutput output;
    errno = EDOM;
    EXPECT_EQ(getLocalIPAddressOfInterfaceOfRouteTo(nullptr), 0u);
    EXPECT_EQ(errno, EDOM);
    EXPECT_FALSE(NetworkInfo::getLocalIPAddressStringOfInterfaceOfRouteTo(nullptr));
    const std::string line = failureLine("no IP address given", EDOM);
    EXPECT_EQ(output.bytes(), line + line);
    EXPECT_EQ(script.opened, 0);
    EXPECT_TRUE(script.requests.empty());
}

TEST(RoutingSocket, failedStepsAreReportedWithTheSystemsError) {
    Reading failed;
    failed.error = ENOBUFS;
    struct Row {
        int openError;
        int writeError;
        std::vector<Reading> readings;
        const char* text;
        int error;
        std::size_t requests;
        std::size_t reads;
    };
    const Row rows[] = {
        {EMFILE, 0, {}, "cannot open routing socket", EMFILE, 0, 0},
        {0, ENETUNREACH, {}, "error in writing to routing socket", ENETUNREACH, 1, 0},
        {0, 0, {failed}, "error in reading from routing socket", ENOBUFS, 1, 1},
    };
    for (const Row& row : rows) {
        Script script(row.readings);
        script.openError = row.openError;
        script.writeError = row.writeError;
        errno = EDOM;
        const Outcome outcome = lookUp("10.0.0.1");
        EXPECT_EQ(errno, EDOM) << row.text;
        EXPECT_EQ(outcome.address, 0u) << row.text;
        EXPECT_EQ(outcome.written, failureLine(row.text, row.error));
        EXPECT_EQ(script.requests.size(), row.requests) << row.text;
        EXPECT_EQ(script.reads, row.reads) << row.text;
    }
}

TEST(RoutingSocket, messagesThatAnswerSomebodyElseAreDropped) {
    Reading otherType = answer("192.0.2.11");
    otherType.type = 1;
    Reading otherNumber = answer("192.0.2.12");
    otherNumber.sequenceOff = -1;
    Reading otherProcess = answer("192.0.2.13");
    otherProcess.processOff = 1;
    const Script script({otherType, otherNumber, otherProcess, answer("192.0.2.1"), answer("192.0.2.14")});
    const Outcome outcome = lookUp("10.0.0.1");
    EXPECT_EQ(outcome.address, address("192.0.2.1"));
    EXPECT_EQ(outcome.written, "");
    EXPECT_EQ(script.reads, 4u);
}

TEST(RoutingSocket, endOfInputBeforeAnyMessageFindsTheRequestsOwnEmptyAddress) {
    const Script script({endOfInput()});
    const Outcome outcome = lookUp("10.0.0.1");
    EXPECT_EQ(outcome.address, 0u);
    EXPECT_EQ(outcome.written, "");
}

TEST(RoutingSocket, endOfInputBehindADroppedMessageTakesTheAddressFromThatOne) {
    Reading foreign = answer("192.0.2.11");
    foreign.processOff = 1;
    const Script script({foreign, endOfInput()});
    EXPECT_EQ(lookUp("10.0.0.1").address, address("192.0.2.11"));
}

TEST(RoutingSocket, shortMessageIsReadWithWhatStoodInTheBufferBehindIt) {
    Reading foreign = answer("192.0.2.11");
    foreign.type = 3;
    Reading piece = answer("192.0.2.12");
    piece.cutTo = 4; // up to the type
    const Script script({foreign, piece});
    EXPECT_EQ(lookUp("10.0.0.1").address, address("192.0.2.11"));

    // The request itself is after the first one: it has no process.
    const Script alone({piece, answer("192.0.2.1")});
    EXPECT_EQ(lookUp("10.0.0.1").address, address("192.0.2.1"));
    EXPECT_EQ(alone.reads, 2u);
}

TEST(RoutingSocket, addressesAdvanceByTheirLengthInWholeWords) {
    struct Row {
        std::uint8_t length;
        std::size_t advance;
    };
    for (const Row& row : {Row{0, 4}, Row{1, 4}, Row{4, 4}, Row{5, 8}, Row{8, 8}, Row{13, 16}, Row{16, 16},
                           Row{17, 20}, Row{255, 256}}) {
        const Bytes first = socketAddress(row.length, row.advance, "192.0.2.9");
        const Script script({{first + socketAddress(16, 16, "192.0.2.1")}});
        EXPECT_EQ(lookUp("10.0.0.1").address, address("192.0.2.1")) << int(row.length);
    }
}

TEST(RoutingSocket, addressOfTheInterfaceIsTheSixthAndOfAnyFamily) {
    const Bytes gateway = socketAddress(16, 16, "192.0.2.2");
    const Bytes mask = socketAddress(7, 8, "255.255.255.0", 255);
    const Bytes name = socketAddress(20, 20, "0.0.0.0", 18);
    Reading reading{gateway + gateway + mask + name + socketAddress(16, 16, "192.0.2.1", 99) + gateway};
    reading.mask = 0x1 | 0x2 | 0x4 | 0x10 | 0x20 | 0x80;
    const Script script({reading});
    EXPECT_EQ(lookUp("10.0.0.1").address, address("192.0.2.1"));
}

TEST(RoutingSocket, replyWithoutTheAddressOfTheInterfaceIsReported) {
    Reading reading = answer("192.0.2.1");
    for (const int mask : {0x1, 0x0, 0xDF, 0x100}) {
        reading.mask = mask;
        const Script script({reading});
        errno = EDOM;
        const Outcome outcome = lookUp("10.0.0.1");
        EXPECT_EQ(outcome.address, 0u) << mask;
        EXPECT_NE(outcome.written.find(std::string(": ") + noAddressText + ": "), std::string::npos) << mask;
        EXPECT_EQ(errno, EDOM);
    }
}

TEST(RoutingSocket, addressThatReallyIs0000LooksLikeAFailureWithoutALine) {
    const Script script({answer("0.0.0.0"), answer("0.0.0.0")});
    const Outcome outcome = lookUp("10.0.0.1");
    EXPECT_EQ(outcome.address, 0u);
    EXPECT_EQ(outcome.written, "");
    EXPECT_FALSE(NetworkInfo::getLocalIPAddressStringOfInterfaceOfRouteTo("10.0.0.1"));
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
            const std::uint32_t value = address("192.0.2.1");
            std::memcpy(&addresses[row.before + 4], &value, sizeof value);
        }
        Reading reading{addresses};
        reading.mask = 0x1 | 0x2 | 0x4 | 0x20;
        const Script script({reading});
        const Outcome outcome = lookUp("10.0.0.1");
        EXPECT_EQ(outcome.address, row.found ? address("192.0.2.1") : 0) << row.before;
        EXPECT_EQ(outcome.written.find(noAddressText) == std::string::npos, row.found) << row.before;
    }
    Reading longest{Bytes(512, 0xFF)};
    longest.mask = -1;
    const Script script({longest});
    EXPECT_NE(lookUp("10.0.0.1").written.find(noAddressText), std::string::npos);
}

TEST(RoutingSocket, splittingFillsTheTableByTheMask) {
    Bytes message = socketAddress(0, 4, "0.0.0.0") + socketAddress(5, 8, "192.0.2.2") +
                    socketAddress(16, 16, "192.0.2.3") + socketAddress(1, 4, "0.0.0.0") +
                    socketAddress(255, 256, "192.0.2.4") + Bytes(20);
    auto* const first = reinterpret_cast<RoutingSocketAddress*>(message.data());
    constexpr int absent = -1;
    struct Row {
        int mask;
        int places[8];
    };
    const Row rows[] = {
        {0, {absent, absent, absent, absent, absent, absent, absent, absent}},
        {0x1, {0, absent, absent, absent, absent, absent, absent, absent}},
        {0x80, {absent, absent, absent, absent, absent, absent, absent, 0}},
        {0x25, {0, absent, 4, absent, absent, 12, absent, absent}},
        {0xFF, {0, 4, 12, 28, 32, 288, 292, 296}},
        {0x7FFFFF00, {absent, absent, absent, absent, absent, absent, absent, absent}},
    };
    for (const Row& row : rows) {
        RoutingSocketAddress* table[9];
        RoutingSocketAddress untouched{};
        std::fill(table, table + 9, &untouched);
        get_rtaddrs(row.mask, first, table);
        for (int i = 0; i < 8; ++i) {
            const auto* const expected = row.places[i] == absent ? nullptr : message.data() + row.places[i];
            EXPECT_EQ(reinterpret_cast<const std::uint8_t*>(table[i]), expected) << row.mask << " " << i;
        }
        EXPECT_EQ(table[8], &untouched);
    }
}

TEST(RoutingSocket, exportedAddressesAreZero) {
    const Bytes zeros(128);
    for (const RoutingSocketAddressStorage* storage : {&so_dst, &so_ifa, &so_ifp}) {
        EXPECT_EQ(std::memcmp(storage, zeros.data(), sizeof *storage), 0);
    }
    EXPECT_EQ(std::memcmp(&rt_metrics, zeros.data(), sizeof rt_metrics), 0);
}

TEST(NetworkInfo, addressIsWrittenInTheOrderOfItsBytes) {
    for (const char* text : {"192.168.1.20", "1.2.3.4", "255.254.253.252", "0.0.0.1", "10.0.0.0"}) {
        const Script script({answer(text)});
        EXPECT_EQ(NetworkInfo::getLocalIPAddressStringOfInterfaceOfRouteTo("192.0.2.1"), text);
        EXPECT_EQ(headerOf(script.requests.back()).rtm_addrs, 0x21);
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
        const logtest::CapturedOutput output;
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
    EXPECT_TRUE(logtest::inChild([] {
        if (!scene::refuseCall(SYS_recvfrom, EIO)) {
            return false;
        }
        const Outcome outcome = lookUp("127.0.0.1");
        EXPECT_EQ(outcome.address, 0u);
        EXPECT_EQ(outcome.written, failureLine("error in reading from routing socket", EIO));
        return !testing::Test::HasFailure();
    }));
    EXPECT_TRUE(logtest::inChild([] {
        if (!scene::refuseCall(SYS_sendto, EIO)) {
            return false;
        }
        EXPECT_EQ(lookUp("127.0.0.1").written, failureLine("error in writing to routing socket", EIO));
        return !testing::Test::HasFailure();
    }));
}

TEST(RoutingSocketOfTheKernel, followsTheRoutes) {
    const auto answers = networkscene::inNetworkOfItsOwn(answersOfTwoInterfaces);
    if (!answers) {
        GTEST_SKIP() << "no network namespace with interfaces of its own can be made here";
    }
    EXPECT_EQ(*answers, "127.0.0.1 127.0.0.1 127.0.0.1\n"
                        "10.1.0.1 10.1.0.1 10.1.0.1\n"
                        "10.2.0.9 10.2.0.1 10.2.0.1\n" // the network's first address comes first
                        "10.1.0.77 10.1.0.1 10.1.0.1\n"
                        "10.2.0.77 10.2.0.1 10.2.0.1\n"
                        "10.3.0.1 10.2.0.1 10.2.0.1\n"
                        "10.3.0.7 10.1.0.1 10.1.0.1\n"
                        "10.4.0.1 10.2.0.9 10.2.0.9\n"
                        "10.5.0.1 nil none error in writing to routing socket: No route to host\n"
                        "10.6.0.1 nil none error in writing to routing socket: Permission denied\n"
                        "198.51.100.1 10.1.0.1 10.1.0.1\n");
}

TEST(RoutingSocketOfTheKernel, reportsInterfacesWithoutAnAddressAndMissingRoutes) {
    const auto answers = networkscene::inNetworkOfItsOwn(answersWithoutAddresses);
    if (!answers) {
        GTEST_SKIP() << "no network namespace with interfaces of its own can be made here";
    }
    const std::string missing = "error in writing to routing socket: Network is unreachable\n";
    EXPECT_EQ(
        answers->substr(0, answers->find('\n')).find(std::string("10.1.0.1 nil 0.0.0.0 ") + noAddressText),
        0u)
        << *answers;
    EXPECT_NE(answers->find("10.2.0.1 nil none " + missing), std::string::npos) << *answers;
}
