// SPDX-License-Identifier: MIT
// Formatting into a string, compared with snprintf into a buffer. The name before the slash is the row, the
// name after it the contender; `base` is snprintf. The peers make strings of their own.
#include <benchmark/benchmark.h>

#include <cstdio>
#include <string>

#include "foundation/objects/NSString.h"

#ifdef ZQ_BENCH_HAS_FMT
#include <fmt/format.h>
#include <fmt/printf.h>
#endif
#ifdef ZQ_BENCH_HAS_ABSL
#include <absl/strings/str_format.h>
#endif
#ifdef ZQ_BENCH_HAS_GLIB
#include <glib.h>
#endif
#ifdef ZQ_BENCH_HAS_QT
#include <QtCore/QString>
#endif

using ZQFoundation::NSString;

namespace {

// Arguments that the compiler cannot know.
struct Values {
    int count = 42;
    long large = 1234567890123;
    const char* box = "the box";
    double seconds = 12.3456;
    double small = 0.000123456;
    const char* name = "Ada Lovelace";
    NSString handle = "Ada Lovelace";
    std::string owned = "Ada Lovelace";
};

Values& values() {
    static Values held;
    benchmark::DoNotOptimize(held);
    return held;
}

void report(benchmark::State& state, std::size_t length) {
    state.counters["length"] = static_cast<double>(length);
}

template <class Work>
void repeat(benchmark::State& state, Work work) {
    std::size_t length = 0;
    for (auto _ : state) {
        length = work(values());
    }
    report(state, length);
}

template <class... Arguments>
std::size_t printed(const char* format, Arguments... arguments) {
    char buffer[512];
    const int length = std::snprintf(buffer, sizeof buffer, format, arguments...);
    benchmark::DoNotOptimize(buffer);
    return static_cast<std::size_t>(length);
}

template <class Text>
std::size_t made(const Text& text) {
    benchmark::DoNotOptimize(&text);
    return text.size();
}

std::size_t made(const NSString& text) {
    benchmark::DoNotOptimize(&text);
    return text.length();
}

#ifdef ZQ_BENCH_HAS_GLIB
std::size_t made(gchar* text) {
    benchmark::DoNotOptimize(text);
    g_free(text);
    return 1;
}
#endif

void formatMixedLibrary(benchmark::State& state) {
    repeat(state, [](const Values& v) {
        return made(
            NSString::stringWithFormat("%d items in %s, %.2f s (%@)", v.count, v.box, v.seconds, v.handle));
    });
}

void formatMixedBase(benchmark::State& state) {
    repeat(state, [](const Values& v) {
        return printed("%d items in %s, %.2f s (%s)", v.count, v.box, v.seconds, v.name);
    });
}

void formatIntegersLibrary(benchmark::State& state) {
    repeat(state, [](const Values& v) {
        return made(NSString::stringWithFormat("%d/%5d/%ld/%08x", v.count, v.count, v.large, v.count));
    });
}

void formatIntegersBase(benchmark::State& state) {
    repeat(state,
           [](const Values& v) { return printed("%d/%5d/%ld/%08x", v.count, v.count, v.large, v.count); });
}

void formatRealsLibrary(benchmark::State& state) {
    repeat(state, [](const Values& v) {
        return made(NSString::stringWithFormat("%f %.3e %g", v.seconds, v.seconds, v.small));
    });
}

void formatRealsBase(benchmark::State& state) {
    repeat(state, [](const Values& v) { return printed("%f %.3e %g", v.seconds, v.seconds, v.small); });
}

void formatTextsLibrary(benchmark::State& state) {
    repeat(state, [](const Values& v) {
        return made(NSString::stringWithFormat("%@: %s %@", v.handle, v.box, v.owned));
    });
}

void formatTextsBase(benchmark::State& state) {
    repeat(state, [](const Values& v) { return printed("%s: %s %s", v.name, v.box, v.owned.c_str()); });
}

BENCHMARK(formatMixedBase)->Name("format mixed/base");
BENCHMARK(formatMixedLibrary)->Name("format mixed/library");
BENCHMARK(formatIntegersBase)->Name("format integers/base");
BENCHMARK(formatIntegersLibrary)->Name("format integers/library");
BENCHMARK(formatRealsBase)->Name("format reals/base");
BENCHMARK(formatRealsLibrary)->Name("format reals/library");
BENCHMARK(formatTextsBase)->Name("format texts/base");
BENCHMARK(formatTextsLibrary)->Name("format texts/library");

#ifdef ZQ_BENCH_HAS_FMT
void formatMixedFmt(benchmark::State& state) {
    repeat(state, [](const Values& v) {
        return made(fmt::format("{} items in {}, {:.2f} s ({})", v.count, v.box, v.seconds, v.owned));
    });
}
BENCHMARK(formatMixedFmt)->Name("format mixed/fmt");

void formatIntegersFmt(benchmark::State& state) {
    repeat(state, [](const Values& v) {
        return made(fmt::format("{}/{:5}/{}/{:08x}", v.count, v.count, v.large, v.count));
    });
}
BENCHMARK(formatIntegersFmt)->Name("format integers/fmt");

void formatRealsFmt(benchmark::State& state) {
    repeat(state, [](const Values& v) {
        return made(fmt::format("{:f} {:.3e} {:g}", v.seconds, v.seconds, v.small));
    });
}
BENCHMARK(formatRealsFmt)->Name("format reals/fmt");

void formatTextsFmt(benchmark::State& state) {
    repeat(state, [](const Values& v) { return made(fmt::format("{}: {} {}", v.name, v.box, v.owned)); });
}
BENCHMARK(formatTextsFmt)->Name("format texts/fmt");

void formatMixedFmtPrintf(benchmark::State& state) {
    repeat(state, [](const Values& v) {
        return made(fmt::sprintf("%d items in %s, %.2f s (%s)", v.count, v.box, v.seconds, v.owned));
    });
}
BENCHMARK(formatMixedFmtPrintf)->Name("format mixed/fmt sprintf");
#endif

#ifdef ZQ_BENCH_HAS_ABSL
void formatMixedAbsl(benchmark::State& state) {
    repeat(state, [](const Values& v) {
        return made(absl::StrFormat("%d items in %s, %.2f s (%s)", v.count, v.box, v.seconds, v.owned));
    });
}
BENCHMARK(formatMixedAbsl)->Name("format mixed/absl");
#endif

#ifdef ZQ_BENCH_HAS_GLIB
void formatMixedGLib(benchmark::State& state) {
    repeat(state, [](const Values& v) {
        return made(g_strdup_printf("%d items in %s, %.2f s (%s)", v.count, v.box, v.seconds, v.name));
    });
}
BENCHMARK(formatMixedGLib)->Name("format mixed/glib");
#endif

#ifdef ZQ_BENCH_HAS_QT
void formatMixedQt(benchmark::State& state) {
    repeat(state, [](const Values& v) {
        return static_cast<std::size_t>(
            made(QString::asprintf("%d items in %s, %.2f s (%s)", v.count, v.box, v.seconds, v.name)));
    });
}
BENCHMARK(formatMixedQt)->Name("format mixed/qt");
#endif

} // namespace
