// SPDX-License-Identifier: MIT
// MD5 digests of texts as hexadecimal texts, compared with the libraries that programs use for them. The base
// is OpenSSL's. Where a library has no such text, it is written by hand into a standard string.
#include <benchmark/benchmark.h>

#include <string>

#include <ZQFoundation/ZQFoundation.h>

#ifdef ZQ_BENCH_HAS_OPENSSL
#include <openssl/evp.h>
#endif
#ifdef ZQ_BENCH_HAS_NETTLE
#include <nettle/md5.h>
#endif
#ifdef ZQ_BENCH_HAS_GLIB
#include <glib.h>
#endif
#ifdef ZQ_BENCH_HAS_QT
#include <QtCore/QCryptographicHash>
#endif

namespace {

using Digest = void (*)(const std::string&);

[[maybe_unused]] void makeText(const unsigned char (&digest)[16]) {
    std::string text(2 * sizeof digest, '\0');
    for (std::size_t i = 0; i < sizeof digest; ++i) {
        text[2 * i] = "0123456789abcdef"[digest[i] >> 4U];
        text[2 * i + 1] = "0123456789abcdef"[digest[i] & 15U];
    }
    benchmark::DoNotOptimize(text.data());
}

#ifdef ZQ_BENCH_HAS_OPENSSL
void base(const std::string& text) {
    unsigned char digest[16];
    EVP_Digest(text.data(), text.size(), digest, nullptr, EVP_md5(), nullptr);
    makeText(digest);
}
#endif

#ifdef ZQ_BENCH_HAS_NETTLE
void nettle(const std::string& text) {
    md5_ctx context;
    unsigned char digest[MD5_DIGEST_SIZE];
    md5_init(&context);
    md5_update(&context, text.size(), reinterpret_cast<const std::uint8_t*>(text.data()));
    md5_digest(&context, MD5_DIGEST_SIZE, digest);
    makeText(digest);
}
#endif

#ifdef ZQ_BENCH_HAS_GLIB
void glib(const std::string& text) {
    g_free(g_compute_checksum_for_data(G_CHECKSUM_MD5, reinterpret_cast<const guchar*>(text.data()),
                                       text.size()));
}
#endif

#ifdef ZQ_BENCH_HAS_QT
void qt(const std::string& text) {
    const auto bytes = QByteArray::fromRawData(text.data(), static_cast<qsizetype>(text.size()));
    benchmark::DoNotOptimize(QCryptographicHash::hash(bytes, QCryptographicHash::Md5).toHex());
}
#endif

void measure(benchmark::State& state, std::size_t count, Digest digest) {
    const std::string text(count, 'x');
    for (auto _ : state) {
        digest(text);
    }
}

/// From a string to the hexadecimal text of its digest.
void library(benchmark::State& state, std::size_t count) {
    const ZQFoundation::NSString text(std::string(count, 'x'));
    for (auto _ : state) {
        benchmark::DoNotOptimize(text.md5String());
    }
}

[[maybe_unused]] const bool areRegistered = [] {
    const struct {
        const char* name;
        std::size_t count;
    } sizes[] = {{"MD5 of 20 B", 20}, {"MD5 of 4 KiB", 4096}, {"MD5 of 1 MiB", 1U << 20U}};
    for (const auto& size : sizes) {
        const std::string row = std::string(size.name) + "/";
#ifdef ZQ_BENCH_HAS_OPENSSL
        benchmark::RegisterBenchmark((row + "base").c_str(), measure, size.count, base);
#endif
        benchmark::RegisterBenchmark((row + "library").c_str(), library, size.count);
#ifdef ZQ_BENCH_HAS_NETTLE
        benchmark::RegisterBenchmark((row + "nettle").c_str(), measure, size.count, nettle);
#endif
#ifdef ZQ_BENCH_HAS_GLIB
        benchmark::RegisterBenchmark((row + "GLib").c_str(), measure, size.count, glib);
#endif
#ifdef ZQ_BENCH_HAS_QT
        benchmark::RegisterBenchmark((row + "Qt").c_str(), measure, size.count, qt);
#endif
    }
    return true;
}();

} // namespace
