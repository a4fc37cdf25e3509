// SPDX-License-Identifier: MIT
// Trimming, splitting, counting, replacing and containment, on about 100 units and on about a million. `base`
// is what a program would write by hand for standard strings. The library holds an all-ASCII text as bytes
// and others as UTF-16; QString always has UTF-16, so rows with texts of both kinds are side by side.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <string>
#include <string_view>
#include <vector>

#include <ZQFoundation/ZQFoundation.h>

#ifdef ZQ_BENCH_HAS_ABSL
#include <absl/strings/match.h>
#include <absl/strings/str_replace.h>
#include <absl/strings/str_split.h>
#include <absl/strings/strip.h>
#endif
#ifdef ZQ_BENCH_HAS_QT
#include <QtCore/QRegularExpression>
#include <QtCore/QString>
#include <QtCore/QStringList>
#endif

namespace {

using namespace ZQFoundation;

constexpr std::size_t shortUnits = 100;
constexpr std::size_t longUnits = 1000000;

/// Words, numbers and lines as log files and settings have them; `isWide` adds characters outside ASCII.
std::string prose(std::size_t units, bool isWide) {
    constexpr std::string_view line = "2024-11-05 the viewer opened sample 17 of 342\tin 12.5 seconds\n";
    std::string text;
    while (text.size() + line.size() < units) {
        text += line;
    }
    text.append(line, 0, units - text.size());
    if (isWide) {
        text.replace(0, 4, "\u00dcber");
    }
    return text;
}

/// The text in the form of each contender.
struct Text {
    explicit Text(const std::string& utf8) : bytes(utf8), string(bytes), units(string.utf16()) {
#ifdef ZQ_BENCH_HAS_QT
        qt = QString::fromStdString(bytes);
#endif
    }

    std::string bytes;
    NSString string;
    std::u16string units;
#ifdef ZQ_BENCH_HAS_QT
    QString qt;
#endif
};

template <class Work>
void repeat(benchmark::State& state, const std::string& utf8, Work work) {
    const Text text(utf8);
    for (auto _ : state) {
        auto result = work(text);
        benchmark::DoNotOptimize(result);
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(utf8.size()) *
                            static_cast<std::int64_t>(state.iterations()));
}

/// Registers a contender of a row on a short and on a long text.
template <class Work>
bool add(
    const std::string& row, const std::string& contender, Work work,
    std::string (*make)(std::size_t) = [](std::size_t units) { return prose(units, false); }) {
    for (const std::size_t units : {shortUnits, longUnits}) {
        const std::string name = row + (units == shortUnits ? " 100/" : " 1M/") + contender;
        benchmark::RegisterBenchmark(
            name.c_str(), [make, units, work](benchmark::State& state) { repeat(state, make(units), work); });
    }
    return true;
}

std::string indentedText(std::size_t units) { return " \t" + prose(units, false) + "   \n"; }

std::string wideText(std::size_t units) { return prose(units, true); }

/// Not in the text, which is full of its beginnings.
constexpr const char* absentWord = "seconde";

// What an application would write by hand, into the standard strings of the same unit.

template <class String>
__attribute__((optimize("O3"), noinline)) std::ptrdiff_t counted(const String& text) {
    using Unit = typename String::value_type;
    return std::count(text.begin(), text.end(), Unit{'e'});
}

template <class String>
String trimmed(const String& text) {
    using Unit = typename String::value_type;
    constexpr Unit blanks[] = {' ', '\t', '\r', '\n', 0};
    const std::size_t first = text.find_first_not_of(blanks);
    return first == String::npos ? String() : text.substr(first, text.find_last_not_of(blanks) + 1 - first);
}

template <class String>
std::vector<String> splitAt(const String& text, char separator) {
    using Unit = typename String::value_type;
    std::vector<String> pieces;
    std::size_t start = 0;
    for (;;) {
        const std::size_t end = text.find(static_cast<Unit>(separator), start);
        pieces.push_back(text.substr(start, end - start));
        if (end == String::npos) {
            return pieces;
        }
        start = end + 1;
    }
}

template <class String>
String withoutDigits(String text) {
    for (auto& unit : text) {
        if (unit >= '0' && unit <= '9') {
            unit = '#';
        }
    }
    return text;
}

const NSCharacterSet& digits() {
    static const NSCharacterSet set = NSCharacterSet::decimalDigitCharacterSet();
    return set;
}

const NSCharacterSet& blanksAndNewlines() {
    static const NSCharacterSet set = NSCharacterSet::whitespaceAndNewlineCharacterSet();
    return set;
}

void addLibrary() {
    const auto lines = [](const Text& text) {
        return text.string.componentsSeparatedByLineBreak();
    };
    const auto words = [](const Text& text) {
        return text.string.componentsSeparatedByWhitespace();
    };
    const auto count = [](const Text& text) {
        return text.string.occurrenceCountOfCharacter(u'e');
    };
    const auto contains = [](const Text& text) {
        return text.string.containsString(absentWord);
    };
    const auto replaced = [](const Text& text) {
        return text.string.stringByReplacingEveryOccurrenceOfCharactersFromSet_withString(digits(), "#");
    };
    add(
        "trim", "library", [](const Text& text) { return text.string.trim(); }, indentedText);
    add(
        "trim by a set", "library",
        [](const Text& text) { return text.string.stringByTrimmingCharactersInSet(blanksAndNewlines()); },
        indentedText);
    add("split white space", "library", words);
    add("split white space, wide", "library", words, wideText);
    add("split lines", "library", lines);
    add("split lines, wide", "library", lines, wideText);
    add("split at a text", "library",
        [](const Text& text) { return text.string.componentsSeparatedByString(" "); });
    add(
        "split at a text, wide", "library",
        [](const Text& text) { return text.string.componentsSeparatedByString(" "); }, wideText);
    add("count", "library", count);
    add("count, wide", "library", count, wideText);
    add("replace digits", "library", replaced);
    add("replace digits, wide", "library", replaced, wideText);
    add("contains", "library", contains);
    add("contains, wide", "library", contains, wideText);
    add("contains in any case", "library",
        [](const Text& text) { return text.string.containsString_caseInsensitiveSearch(absentWord, true); });
}

void addBase() {
    const std::u16string wideWord = NSString(absentWord).utf16();
    for (const char* row : {"trim", "trim by a set"}) {
        add(
            row, "base", [](const Text& text) { return trimmed(text.bytes); }, indentedText);
    }
    for (const char* row : {"split white space", "split at a text"}) {
        add(row, "base", [](const Text& text) { return splitAt(text.bytes, ' '); });
        add(
            std::string(row) + ", wide", "base", [](const Text& text) { return splitAt(text.units, ' '); },
            wideText);
    }
    add("split lines", "base", [](const Text& text) { return splitAt(text.bytes, '\n'); });
    add(
        "split lines, wide", "base", [](const Text& text) { return splitAt(text.units, '\n'); }, wideText);
    add("count", "base", [](const Text& text) { return counted(text.bytes); });
    add(
        "count, wide", "base", [](const Text& text) { return counted(text.units); }, wideText);
    add("replace digits", "base", [](const Text& text) { return withoutDigits(text.bytes); });
    add(
        "replace digits, wide", "base", [](const Text& text) { return withoutDigits(text.units); }, wideText);
    for (const char* row : {"contains", "contains in any case"}) {
        add(row, "base", [](const Text& text) { return text.bytes.find(absentWord); });
    }
    add(
        "contains, wide", "base", [wideWord](const Text& text) { return text.units.find(wideWord); },
        wideText);
}

#ifdef ZQ_BENCH_HAS_QT
void addQt() {
    const auto words = [](const Text& text) {
        return text.qt.split(u' ', Qt::SkipEmptyParts);
    };
    const auto lines = [](const Text& text) {
        return text.qt.split(u'\n');
    };
    const auto count = [](const Text& text) {
        return text.qt.count(u'e');
    };
    const auto contains = [](const Text& text) {
        return text.qt.contains(QLatin1String(absentWord));
    };
    const auto replaced = [](const Text& text) {
        static const QRegularExpression digit(QStringLiteral("[0-9]"));
        QString copy = text.qt;
        copy.replace(digit, QStringLiteral("#"));
        return copy;
    };
    for (const char* row : {"trim", "trim by a set"}) {
        add(
            row, "qt", [](const Text& text) { return text.qt.trimmed(); }, indentedText);
    }
    add("split white space", "qt", words);
    add("split white space", "qt regex", [](const Text& text) {
        static const QRegularExpression blanks(QStringLiteral("[ \\t]+"));
        return text.qt.split(blanks);
    });
    add("split white space, wide", "qt", words, wideText);
    add("split lines", "qt", lines);
    add("split lines, wide", "qt", lines, wideText);
    add("split at a text", "qt", [](const Text& text) { return text.qt.split(u' '); });
    add(
        "split at a text, wide", "qt", [](const Text& text) { return text.qt.split(u' '); }, wideText);
    add("count", "qt", count);
    add("count, wide", "qt", count, wideText);
    add("replace digits", "qt", replaced);
    add("replace digits, wide", "qt", replaced, wideText);
    add("contains", "qt", contains);
    add("contains, wide", "qt", contains, wideText);
    add("contains in any case", "qt",
        [](const Text& text) { return text.qt.contains(QLatin1String(absentWord), Qt::CaseInsensitive); });
}
#endif

#ifdef ZQ_BENCH_HAS_ABSL
void addAbseil() {
    using Pieces = std::vector<std::string>;
    add(
        "trim", "abseil",
        [](const Text& text) { return std::string(absl::StripAsciiWhitespace(text.bytes)); }, indentedText);
    add("split white space", "abseil", [](const Text& text) {
        return Pieces(absl::StrSplit(text.bytes, absl::ByAnyChar(" \t"), absl::SkipEmpty()));
    });
    add("split lines", "abseil", [](const Text& text) { return Pieces(absl::StrSplit(text.bytes, '\n')); });
    add("split at a text", "abseil",
        [](const Text& text) { return Pieces(absl::StrSplit(text.bytes, ' ')); });
    add("replace digits", "abseil", [](const Text& text) {
        return absl::StrReplaceAll(text.bytes, {{"0", "#"},
                                                {"1", "#"},
                                                {"2", "#"},
                                                {"3", "#"},
                                                {"4", "#"},
                                                {"5", "#"},
                                                {"6", "#"},
                                                {"7", "#"},
                                                {"8", "#"},
                                                {"9", "#"}});
    });
    add("contains", "abseil", [](const Text& text) { return absl::StrContains(text.bytes, absentWord); });
}
#endif

[[maybe_unused]] const bool areAdded = [] {
    addBase();
    addLibrary();
#ifdef ZQ_BENCH_HAS_QT
    addQt();
#endif
#ifdef ZQ_BENCH_HAS_ABSL
    addAbseil();
#endif
    return true;
}();

} // namespace
