// SPDX-License-Identifier: MIT
// Percent-encoding and decoding of a component, on a short text and on a mebibyte: words with spaces, of
// which one byte in five is escaped, and Cyrillic, of which all are. `base` is a copy of the result, which
// for decoding is made from UTF-8. Qt encodes from UTF-16 and decodes to it, as the library does for
// Cyrillic; GLib stays with bytes.
#include <benchmark/benchmark.h>

#include <string>

#include <ZQFoundation/ZQFoundation.h>

#ifdef ZQ_BENCH_HAS_GLIB
#include <glib.h>
#endif
#ifdef ZQ_BENCH_HAS_QT
#include <QtCore/QByteArray>
#include <QtCore/QString>
#include <QtCore/QUrl>
#endif

namespace {

using namespace ZQFoundation;

constexpr std::size_t shortBytes = 48;
constexpr std::size_t longBytes = 1 << 20;

std::string repeated(std::string_view piece, std::size_t bytes) {
    std::string text;
    while (text.size() + piece.size() <= bytes) {
        text.append(piece);
    }
    return text;
}

std::string words(std::size_t bytes) { return repeated("path of a viewer's file & more; ", bytes); }

std::string cyrillic(std::size_t bytes) {
    return repeated("\u043F\u0440\u0438\u0432\u0435\u0442 \u043C\u0438\u0440 ", bytes);
}

/// A text in the form of each contender, and its encoded form.
struct Texts {
    explicit Texts(const std::string& text)
        : plain(text), string(plain), encodedString(string.urlEncodedString()),
          encoded(encodedString.utf8()) {
#ifdef ZQ_BENCH_HAS_QT
        qt = QString::fromStdString(plain);
        qtEncoded = QByteArray::fromStdString(encoded);
#endif
    }

    std::string plain;
    NSString string;
    NSString encodedString;
    std::string encoded;
#ifdef ZQ_BENCH_HAS_QT
    QString qt;
    QByteArray qtEncoded;
#endif
};

template <class Work>
void add(const std::string& row, const std::string& contender, std::string (*make)(std::size_t), Work work) {
    for (const std::size_t bytes : {shortBytes, longBytes}) {
        const std::string name = row + (bytes == shortBytes ? " 48/" : " 1Mi/") + contender;
        benchmark::RegisterBenchmark(name.c_str(), [make, bytes, work](benchmark::State& state) {
            const Texts texts(make(bytes));
            for (auto _ : state) {
                auto result = work(texts);
                benchmark::DoNotOptimize(result);
            }
            state.SetBytesProcessed(static_cast<std::int64_t>(texts.plain.size()) *
                                    static_cast<std::int64_t>(state.iterations()));
        });
    }
}

#ifdef ZQ_BENCH_HAS_GLIB
/// Frees what GLib made.
struct GlibText {
    explicit GlibText(char* text) : bytes(text) {}
    GlibText(GlibText&& other) noexcept : bytes(other.bytes) { other.bytes = nullptr; }
    ~GlibText() { g_free(bytes); }
    char* bytes;
};
#endif

void addPeers([[maybe_unused]] const std::string& kind, [[maybe_unused]] std::string (*make)(std::size_t)) {
    [[maybe_unused]] const std::string encoding = "percent-encode " + kind;
    [[maybe_unused]] const std::string decoding = "percent-decode " + kind;
#ifdef ZQ_BENCH_HAS_QT
    add(encoding, "Qt", make, [](const Texts& t) { return QUrl::toPercentEncoding(t.qt); });
    add(decoding, "Qt", make, [](const Texts& t) { return QUrl::fromPercentEncoding(t.qtEncoded); });
#endif
#ifdef ZQ_BENCH_HAS_GLIB
    add(encoding, "GLib", make,
        [](const Texts& t) { return GlibText(g_uri_escape_string(t.plain.c_str(), "!'()*", FALSE)); });
    add(decoding, "GLib", make,
        [](const Texts& t) { return GlibText(g_uri_unescape_string(t.encoded.c_str(), nullptr)); });
#endif
}

bool registerAll() {
    const struct {
        const char* kind;
        std::string (*make)(std::size_t);
    } kinds[] = {{"words", words}, {"Cyrillic", cyrillic}};
    for (const auto& kind : kinds) {
        const std::string encoding = std::string("percent-encode ") + kind.kind;
        const std::string decoding = std::string("percent-decode ") + kind.kind;
        add(encoding, "base", kind.make, [](const Texts& t) { return std::string(t.encoded); });
        add(encoding, "library", kind.make, [](const Texts& t) { return t.string.urlEncodedString(); });
        add(decoding, "base", kind.make, [](const Texts& t) { return NSString(t.plain); });
        add(decoding, "library", kind.make,
            [](const Texts& t) { return t.encodedString.urlDecodedString(); });
        addPeers(kind.kind, kind.make);
    }
    return true;
}

[[maybe_unused]] const bool isRegistered = registerAll();

} // namespace
