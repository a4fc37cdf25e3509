// SPDX-License-Identifier: MIT
// Comparing two versions that differ in the second number. `base` is a loop with one cursor in each text,
// written for numbers and periods only.
#include <benchmark/benchmark.h>

#include <string>
#include <string_view>

#include <ZQFoundation/ZQFoundation.h>

#ifdef ZQ_BENCH_HAS_QT
#include <QtCore/QString>
#include <QtCore/QVersionNumber>
#endif

namespace {

using ZQFoundation::NSString;
using ZQFoundation::ZQVersionComparator;

/// Arguments that the compiler cannot know.
template <class Version>
struct Versions {
    Version left = "10.13.6";
    Version right = "10.14.1";
};

template <class Version, class Work>
void repeat(benchmark::State& state, Work work) {
    Versions<Version> versions;
    for (auto _ : state) {
        benchmark::DoNotOptimize(versions);
        auto order = work(versions.left, versions.right);
        benchmark::DoNotOptimize(order);
    }
}

unsigned numberAt(std::string_view version, std::size_t& at) {
    unsigned value = 0;
    for (; at < version.size() && version[at] >= '0' && version[at] <= '9'; ++at) {
        value = value * 10 + static_cast<unsigned>(version[at] - '0');
    }
    return value;
}

int compared(std::string_view left, std::string_view right) {
    std::size_t i = 0;
    std::size_t j = 0;
    while (i < left.size() && j < right.size()) {
        const unsigned leftNumber = numberAt(left, i);
        const unsigned rightNumber = numberAt(right, j);
        if (leftNumber != rightNumber) {
            return leftNumber < rightNumber ? -1 : 1;
        }
        i += i < left.size() ? 1 : 0;
        j += j < right.size() ? 1 : 0;
    }
    return (i < left.size() ? 1 : 0) - (j < right.size() ? 1 : 0);
}

template <class Version>
void compareWithLibrary(benchmark::State& state) {
    repeat<Version>(state, [](const Version& left, const Version& right) {
        return ZQVersionComparator::compareVersion_toVersion(left, right);
    });
}

template <class Version>
void compareWithLoop(benchmark::State& state) {
    repeat<Version>(state, [](const Version& left, const Version& right) { return compared(left, right); });
}

BENCHMARK(compareWithLoop<const char*>)->Name("version, pointers/base");
BENCHMARK(compareWithLibrary<const char*>)->Name("version, pointers/library");
BENCHMARK(compareWithLoop<std::string>)->Name("version, std::string/base");
BENCHMARK(compareWithLibrary<std::string>)->Name("version, std::string/library");
BENCHMARK(compareWithLoop<std::string>)->Name("version, NSString/base");
BENCHMARK(compareWithLibrary<NSString>)->Name("version, NSString/library");

#ifdef ZQ_BENCH_HAS_QT
void compareWithQt(benchmark::State& state) {
    repeat<QString>(state, [](const QString& left, const QString& right) {
        return QVersionNumber::compare(QVersionNumber::fromString(left), QVersionNumber::fromString(right));
    });
}
BENCHMARK(compareWithQt)->Name("version, NSString/qt");
#endif

} // namespace
