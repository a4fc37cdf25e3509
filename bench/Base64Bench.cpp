// SPDX-License-Identifier: MIT
// Base64 both ways, in one line and in lines of 64 characters. The base copies the output into memory that is
// there, which no codec can avoid; every other contender allocates its result, as the library does.
#include <benchmark/benchmark.h>

#include <cstdlib>
#include <cstring>
#include <memory>
#include <random>
#include <string>

#include <ZQFoundation/ZQFoundation.h>

#ifdef ZQ_BENCH_HAS_OPENSSL
#include <openssl/evp.h>
#endif
#ifdef ZQ_BENCH_HAS_GLIB
#include <glib.h>
#endif
#ifdef ZQ_BENCH_HAS_QT
#include <QtCore/QByteArray>
#endif

namespace {

struct Texts {
    std::string bytes;
    std::string line;
    std::string lines;

    explicit Texts(std::size_t count) : bytes(count, '\0') {
        std::mt19937 random(static_cast<unsigned>(count));
        for (char& byte : bytes) {
            byte = static_cast<char>(random());
        }
        line = encoded(0);
        lines = encoded(1);
    }

private:
    std::string encoded(int separateLines) const {
        std::uint64_t length = 0;
        char* const text = ZQFoundation::NewBase64Encode(bytes.data(), bytes.size(), separateLines, &length);
        std::string result(text, length);
        std::free(text);
        return result;
    }
};

using Work = void (*)(const Texts&, std::string& room);

void copyText(const Texts& texts, std::string& room) {
    std::memcpy(room.data(), texts.line.data(), texts.line.size());
}

void copyLines(const Texts& texts, std::string& room) {
    std::memcpy(room.data(), texts.lines.data(), texts.lines.size());
}

void copyBytes(const Texts& texts, std::string& room) {
    std::memcpy(room.data(), texts.bytes.data(), texts.bytes.size());
}

template <int separateLines>
void encode(const Texts& texts, std::string&) {
    std::uint64_t length = 0;
    char* const text =
        ZQFoundation::NewBase64Encode(texts.bytes.data(), texts.bytes.size(), separateLines, &length);
    benchmark::DoNotOptimize(text);
    std::free(text);
}

template <std::string Texts::*text>
void decode(const Texts& texts, std::string&) {
    std::uint64_t length = 0;
    const std::string& input = texts.*text;
    void* const bytes =
        ZQFoundation::NewBase64Decode(input.data(), static_cast<std::int64_t>(input.size()), &length);
    benchmark::DoNotOptimize(bytes);
    std::free(bytes);
}

#ifdef ZQ_BENCH_HAS_OPENSSL
const unsigned char* unsignedBytes(const std::string& bytes) {
    return reinterpret_cast<const unsigned char*>(bytes.data());
}

/// New memory for a result, freed at the end of the call.
class Result {
public:
    explicit Result(std::size_t size) : bytes_(static_cast<unsigned char*>(std::malloc(size))) {}
    Result(const Result&) = delete;
    Result& operator=(const Result&) = delete;
    ~Result() {
        benchmark::DoNotOptimize(bytes_);
        std::free(bytes_);
    }
    unsigned char* bytes() const { return bytes_; }

private:
    unsigned char* bytes_;
};

void encodeByOpenssl(const Texts& texts, std::string&) {
    const Result result(texts.line.size() + 1);
    EVP_EncodeBlock(result.bytes(), unsignedBytes(texts.bytes), static_cast<int>(texts.bytes.size()));
}

void decodeByOpenssl(const Texts& texts, std::string&) {
    const Result result(texts.line.size() / 4 * 3);
    EVP_DecodeBlock(result.bytes(), unsignedBytes(texts.line), static_cast<int>(texts.line.size()));
}

using OpensslContext = std::unique_ptr<EVP_ENCODE_CTX, decltype(&EVP_ENCODE_CTX_free)>;

void encodeLinesByOpenssl(const Texts& texts, std::string&) {
    const Result result(texts.lines.size() + 128);
    const OpensslContext context(EVP_ENCODE_CTX_new(), &EVP_ENCODE_CTX_free);
    int written = 0;
    EVP_EncodeInit(context.get());
    EVP_EncodeUpdate(context.get(), result.bytes(), &written, unsignedBytes(texts.bytes),
                     static_cast<int>(texts.bytes.size()));
    EVP_EncodeFinal(context.get(), result.bytes() + written, &written); // the last line
}

void decodeLinesByOpenssl(const Texts& texts, std::string&) {
    const Result result(texts.lines.size());
    const OpensslContext context(EVP_ENCODE_CTX_new(), &EVP_ENCODE_CTX_free);
    int written = 0;
    EVP_DecodeInit(context.get());
    EVP_DecodeUpdate(context.get(), result.bytes(), &written, unsignedBytes(texts.lines),
                     static_cast<int>(texts.lines.size()));
    EVP_DecodeFinal(context.get(), result.bytes() + written, &written);
}
#endif

#ifdef ZQ_BENCH_HAS_GLIB
void encodeByGlib(const Texts& texts, std::string&) {
    g_free(g_base64_encode(reinterpret_cast<const guchar*>(texts.bytes.data()), texts.bytes.size()));
}

template <std::string Texts::*text>
void decodeByGlib(const Texts& texts, std::string&) {
    gsize length = 0;
    g_free(g_base64_decode((texts.*text).c_str(), &length));
}
#endif

#ifdef ZQ_BENCH_HAS_QT
void encodeByQt(const Texts& texts, std::string&) {
    const auto bytes =
        QByteArray::fromRawData(texts.bytes.data(), static_cast<qsizetype>(texts.bytes.size()));
    benchmark::DoNotOptimize(bytes.toBase64());
}

template <std::string Texts::*text>
void decodeByQt(const Texts& texts, std::string&) {
    const std::string& input = texts.*text;
    benchmark::DoNotOptimize(
        QByteArray::fromBase64(QByteArray::fromRawData(input.data(), static_cast<qsizetype>(input.size()))));
}
#endif

const Texts& textsOf(std::size_t count) {
    static std::unique_ptr<Texts> texts;
    if (!texts || texts->bytes.size() != count) {
        texts = std::make_unique<Texts>(count);
    }
    return *texts;
}

void measure(benchmark::State& state, std::size_t count, Work work) {
    const Texts& texts = textsOf(count);
    std::string room(2 * count + 256, '\0');
    for (auto _ : state) {
        work(texts, room);
        benchmark::DoNotOptimize(room.data());
        benchmark::ClobberMemory();
    }
}

struct Contender {
    const char* row;
    const char* who;
    Work work;
};

constexpr Contender contenders[] = {
    {"encode", "base", copyText},
    {"encode", "library", encode<0>},
#ifdef ZQ_BENCH_HAS_OPENSSL
    {"encode", "OpenSSL", encodeByOpenssl},
#endif
#ifdef ZQ_BENCH_HAS_GLIB
    {"encode", "GLib", encodeByGlib},
#endif
#ifdef ZQ_BENCH_HAS_QT
    {"encode", "Qt", encodeByQt},
#endif
    {"encode in lines", "base", copyLines},
    {"encode in lines", "library", encode<1>},
#ifdef ZQ_BENCH_HAS_OPENSSL
    {"encode in lines", "OpenSSL", encodeLinesByOpenssl},
#endif
    {"decode", "base", copyBytes},
    {"decode", "library", decode<&Texts::line>},
#ifdef ZQ_BENCH_HAS_OPENSSL
    {"decode", "OpenSSL", decodeByOpenssl},
#endif
#ifdef ZQ_BENCH_HAS_GLIB
    {"decode", "GLib", decodeByGlib<&Texts::line>},
#endif
#ifdef ZQ_BENCH_HAS_QT
    {"decode", "Qt", decodeByQt<&Texts::line>},
#endif
    {"decode lines", "base", copyBytes},
    {"decode lines", "library", decode<&Texts::lines>},
#ifdef ZQ_BENCH_HAS_OPENSSL
    {"decode lines", "OpenSSL", decodeLinesByOpenssl},
#endif
#ifdef ZQ_BENCH_HAS_GLIB
    {"decode lines", "GLib", decodeByGlib<&Texts::lines>},
#endif
#ifdef ZQ_BENCH_HAS_QT
    {"decode lines", "Qt", decodeByQt<&Texts::lines>},
#endif
};

[[maybe_unused]] const bool areRegistered = [] {
    const struct {
        const char* name;
        std::size_t count;
    } sizes[] = {{"16 B", 16}, {"1 KiB", 1024}, {"1 MiB", 1U << 20U}, {"64 MiB", 64U << 20U}};
    for (const auto& size : sizes) {
        for (const Contender& contender : contenders) {
            const std::string name =
                std::string("Base64 ") + contender.row + ", " + size.name + "/" + contender.who;
            benchmark::RegisterBenchmark(name.c_str(), measure, size.count, contender.work);
        }
    }
    return true;
}();

} // namespace
