// SPDX-License-Identifier: MIT
// Every codec that this processor runs, against the model.
#include "foundation/text/Base64Codec.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <random>
#include <string>

#include <gtest/gtest.h>
#include <sys/mman.h>
#include <unistd.h>

#include "tests/models/Base64.h"

using namespace ZQFoundation;
using models::base64Decoded;
using models::base64Encoded;
namespace base64 = ZQFoundation::detail::base64;

namespace {

/// Memory of exactly `count` bytes, ending at a page that may not be touched.
class Guarded {
public:
    explicit Guarded(std::size_t count) {
        const auto page = static_cast<std::size_t>(::sysconf(_SC_PAGESIZE));
        size_ = (count + page - 1) / page * page + page;
        start_ = ::mmap(nullptr, size_, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
        EXPECT_NE(start_, MAP_FAILED);
        char* const guard = static_cast<char*>(start_) + size_ - page;
        EXPECT_EQ(::mprotect(guard, page, PROT_NONE), 0);
        bytes_ = reinterpret_cast<std::uint8_t*>(guard) - count;
    }
    Guarded(const Guarded&) = delete;
    Guarded& operator=(const Guarded&) = delete;
    ~Guarded() { ::munmap(start_, size_); }

    std::uint8_t* bytes() const { return bytes_; }

private:
    void* start_ = nullptr;
    std::size_t size_ = 0;
    std::uint8_t* bytes_ = nullptr;
};

/// Input and output each end at the end of what may be touched.
class Workbench {
public:
    models::Base64Decoding decoded(const base64::Codec& codec, const std::string& text) {
        const std::size_t capacity = (text.size() + 3) / 4 * 3;
        std::uint8_t* const input = endOf(input_, text.size());
        std::uint8_t* const output = endOf(output_, capacity);
        std::memcpy(input, text.data(), text.size());
        std::memset(output, 0xEE, capacity);
        const std::uint64_t reported = base64::decode(codec, input, text.size(), output);
        // A length that is one too small leaves a byte that was written after it.
        const std::uint64_t written = std::min<std::uint64_t>(reported + 1, capacity);
        return {std::string(reinterpret_cast<const char*>(output), written), reported};
    }

    std::string encoded(const base64::Codec& codec, const std::string& bytes, bool separateLines) {
        std::size_t capacity = (bytes.size() + 2) / 3 * 4;
        capacity += capacity == 0 || !separateLines ? 0 : (capacity - 1) / base64::charactersOfLine * 2;
        std::uint8_t* const input = endOf(input_, bytes.size());
        std::uint8_t* const output = endOf(output_, capacity);
        std::memcpy(input, bytes.data(), bytes.size());
        std::memset(output, 0xEE, capacity);
        char* const text = reinterpret_cast<char*>(output);
        return {text, base64::encode(codec, input, bytes.size(), separateLines, text)};
    }

private:
    static constexpr std::size_t room = 16384;
    static std::uint8_t* endOf(const Guarded& memory, std::size_t count) {
        return memory.bytes() + room - count;
    }

    Guarded input_{room};
    Guarded output_{room};
};

void expectDecoded(Workbench& bench, const std::string& text) {
    const models::Base64Decoding expected = base64Decoded(text);
    for (const base64::Codec* const* codec = base64::availableCodecs(); *codec != nullptr; ++codec) {
        models::Base64Decoding found = bench.decoded(**codec, text);
        ASSERT_EQ(found.reported, expected.reported) << (*codec)->name << " '" << text << "'";
        ASSERT_GE(found.bytes.size() + 1, expected.bytes.size());
        found.bytes.resize(expected.bytes.size());
        ASSERT_EQ(found.bytes, expected.bytes) << (*codec)->name << " '" << text << "'";
    }
}

void expectEncoded(Workbench& bench, const std::string& bytes) {
    for (const bool separateLines : {false, true}) {
        const std::string expected = base64Encoded(bytes, separateLines);
        for (const base64::Codec* const* codec = base64::availableCodecs(); *codec != nullptr; ++codec) {
            ASSERT_EQ(bench.encoded(**codec, bytes, separateLines), expected)
                << (*codec)->name << ", " << bytes.size() << " bytes";
        }
    }
}

std::string randomBytes(std::mt19937& random, std::size_t count) {
    std::string bytes(count, '\0');
    for (char& byte : bytes) {
        byte = static_cast<char>(random());
    }
    return bytes;
}

/// Any byte outside the alphabet.
char randomForeignByte(std::mt19937& random) {
    for (;;) {
        if (const char byte = static_cast<char>(random());
            models::base64Alphabet.find(byte) == std::string_view::npos) {
            return byte;
        }
    }
}

} // namespace

TEST(Base64Codec, thePlainOneIsThereAndTheChosenOneIsTheLast) {
    const base64::Codec* const* codec = base64::availableCodecs();
    ASSERT_NE(*codec, nullptr);
    EXPECT_STREQ((*codec)->name, "plain");
    while (codec[1] != nullptr) {
        ++codec;
    }
    EXPECT_EQ(&base64::codec(), *codec);
}

TEST(Base64Codec, theBestThatTheProcessorRunsIsChosenAndIsAmongThoseTested) {
    std::string names;
    for (const base64::Codec* const* codec = base64::availableCodecs(); *codec != nullptr; ++codec) {
        names += std::string(" ") + (*codec)->name;
    }
    std::printf("[  CODECS  ]%s\n", names.c_str());
#if defined(__aarch64__)
    EXPECT_EQ(names, " plain NEON");
    EXPECT_STREQ(base64::codec().name, "NEON");
    EXPECT_EQ(&base64::codec(), &base64::neonCodec);
#elif defined(__x86_64__)
    // The kernel asks the processor in its own way.
    std::ifstream facts("/proc/cpuinfo");
    std::string flags;
    while (std::getline(facts, flags) && !flags.starts_with("flags")) {
    }
    if (!flags.starts_with("flags")) {
        GTEST_SKIP() << "the system does not list what the processor can do";
    }
    flags += ' ';
    const auto has = [&](const char* flag) {
        return flags.find(flag) != std::string::npos;
    };
    std::string expected = " plain";
    if (has(" avx2 ")) {
        expected += " AVX2";
        if (has(" avx512f ") && has(" avx512bw ") && has(" avx512vbmi ") && has(" avx512_vbmi2 ")) {
            expected += " AVX-512";
        }
    }
    EXPECT_EQ(names, expected);
    EXPECT_EQ(base64::codec().name, expected.substr(expected.rfind(' ') + 1));
#else
    EXPECT_EQ(names, " plain");
    EXPECT_STREQ(base64::codec().name, "plain");
#endif
}

TEST(Base64Codec, allEncodeAllLengthsAlike) {
    Workbench bench;
    std::mt19937 random(1);
    for (std::size_t count = 0; count <= 1000; ++count) {
        expectEncoded(bench, randomBytes(random, count));
    }
}

TEST(Base64Codec, allDecodeAllLengthsAlike) {
    Workbench bench;
    std::mt19937 random(2);
    for (std::size_t count = 0; count <= 1000; ++count) {
        const std::string bytes = randomBytes(random, count);
        for (const bool separateLines : {false, true}) {
            const std::string text = base64Encoded(bytes, separateLines);
            expectDecoded(bench, text);
            // Cut off anywhere in its last groups, too.
            for (std::size_t cut = 1; cut < 6 && cut <= text.size(); ++cut) {
                expectDecoded(bench, text.substr(0, text.size() - cut));
            }
        }
    }
}

TEST(Base64Codec, allReadAndWriteAtAnyAlignment) {
    std::mt19937 random(3);
    const std::string bytes = randomBytes(random, 300);
    const std::string text = base64Encoded(bytes, true);
    alignas(64) std::uint8_t input[1024];
    alignas(64) std::uint8_t output[1024];
    for (const base64::Codec* const* codec = base64::availableCodecs(); *codec != nullptr; ++codec) {
        for (std::size_t from = 0; from < 64; ++from) {
            const std::size_t to = from * 7 % 64;
            std::memcpy(input + from, text.data(), text.size());
            ASSERT_EQ(base64::decode(**codec, input + from, text.size(), output + to), bytes.size());
            ASSERT_EQ(std::memcmp(output + to, bytes.data(), bytes.size()), 0) << (*codec)->name << from;
            std::memcpy(input + from, bytes.data(), bytes.size());
            char* const start = reinterpret_cast<char*>(output + to);
            char* const end = base64::encode(**codec, input + from, bytes.size(), true, start);
            ASSERT_EQ(std::string(start, end), text) << (*codec)->name << from;
        }
    }
}

TEST(Base64Codec, allIgnoreOneForeignByteAnywhere) {
    Workbench bench;
    std::mt19937 random(4);
    const std::string text = base64Encoded(randomBytes(random, 195), false);
    for (std::size_t place = 0; place <= text.size(); ++place) {
        std::string inserted = text;
        inserted.insert(place, 1, randomForeignByte(random));
        expectDecoded(bench, inserted);
        if (place < text.size()) {
            std::string replaced = text;
            replaced[place] = randomForeignByte(random);
            expectDecoded(bench, replaced);
        }
    }
}

TEST(Base64Codec, allTakeEveryByteForWhatItIs) {
    Workbench bench;
    const std::string before(128, 'A');
    for (int byte = 0; byte < 256; ++byte) {
        for (const std::size_t place : {0U, 1U, 31U, 63U, 64U, 70U}) {
            std::string text = before;
            text[place] = static_cast<char>(byte);
            expectDecoded(bench, text);
        }
        expectDecoded(bench, std::string(130, static_cast<char>(byte)));
    }
}

TEST(Base64Codec, allDecodeLinesOfAnyLengthAndBreak) {
    Workbench bench;
    std::mt19937 random(6);
    const std::string whole = base64Encoded(randomBytes(random, 1200), false);
    for (const char* const lineBreak : {"\n", "\r\n", "\r", "\r\n\t  ", "= = ="}) {
        for (std::size_t width = 1; width <= 140; ++width) {
            std::string text;
            for (std::size_t at = 0; at < whole.size(); at += width) {
                text += whole.substr(at, width) + lineBreak;
            }
            expectDecoded(bench, text);
        }
    }
}

TEST(Base64Codec, allLoseAByteToForeignBytesAtTheEnd) {
    Workbench bench;
    for (const std::size_t groups : {1U, 8U, 16U, 17U, 33U}) {
        for (std::size_t count = 1; count <= 130; ++count) {
            const std::string text = std::string(4 * groups, 'Q') + std::string(count, '=');
            EXPECT_EQ(base64Decoded(text).reported, 3 * groups - 1);
            expectDecoded(bench, text);
        }
    }
    for (std::size_t count = 1; count <= 130; ++count) {
        EXPECT_EQ(base64Decoded(std::string(count, '\n')).reported, UINT64_MAX);
        expectDecoded(bench, std::string(count, '\n'));
    }
}
