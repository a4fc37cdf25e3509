// SPDX-License-Identifier: MIT
// Reading property lists into finished values. Each row has the same list in another form: records as
// applications keep them, mostly dictionaries of short strings, numbers and dates under keys that repeat
// often.
#include <benchmark/benchmark.h>

#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

#include <ZQFoundation/ZQFoundation.h>

#ifdef ZQ_BENCH_HAS_EXPAT
#include <expat.h>
#endif
#ifdef ZQ_BENCH_HAS_PUGIXML
#include <pugixml.hpp>
#endif

namespace {

using namespace ZQFoundation;

constexpr int recordCount = 3000;

NSObject makeRecord(int index) {
    NSMutableArray addresses;
    for (int line = 0; line < 3; ++line) {
        addresses.addObject(std::to_string(index % 90) + " Harbour Street, Flat " + std::to_string(line));
    }
    NSMutableDictionary record;
    record.setObject_forKey("com.example.item." + std::to_string(index), "Identifier");
    record.setObject_forKey("A record with an ordinary title & nothing else", "Title");
    record.setObject_forKey(index * 37, "Revision");
    record.setObject_forKey(index % 2 == 0, "Enabled");
    record.setObject_forKey(index * 0.125, "Scale");
    record.setObject_forKey(NSDate::dateWithTimeIntervalSinceReferenceDate(index * 3600.0), "Modified");
    record.setObject_forKey(addresses.array(), "Addresses");
    return record.dictionary();
}

NSObject makeList() {
    NSMutableArray records;
    for (int index = 0; index < recordCount; ++index) {
        records.addObject(makeRecord(index));
    }
    return NSDictionary{{"Records", records.array()}, {"Version", 3}};
}

const NSData& listAs(NSPropertyListFormat format) {
    static const NSData xml =
        NSPropertyListSerialization::dataWithPropertyList_format(makeList(), NSPropertyListXMLFormat_v1_0);
    static const NSData oldStyle =
        NSPropertyListSerialization::dataWithPropertyList_format(makeList(), NSPropertyListOpenStepFormat);
    return format == NSPropertyListXMLFormat_v1_0 ? xml : oldStyle;
}

/// The library reads the binary form and does not write it: an array of the strings and numbers of this many
/// records, each object after the last, four bytes to a reference.
class BinaryList {
public:
    BinaryList() {
        std::vector<std::uint64_t> records;
        const std::uint64_t keys[] = {addString("Identifier"), addString("Title"), addString("Revision")};
        const std::uint64_t title = addString("A record with an ordinary title & nothing else");
        for (int index = 0; index < recordCount * 3; ++index) {
            const std::uint64_t identifier = addString("com.example.item." + std::to_string(index));
            const std::uint64_t revision = addNumber(static_cast<std::uint64_t>(index));
            start(0xD3);
            for (const std::uint64_t reference : {keys[0], keys[1], keys[2], identifier, title, revision}) {
                append(reference, 4);
            }
            records.push_back(offsets_.size() - 1);
        }
        start(0xAF);
        bytes_ += '\x12';
        append(records.size(), 4);
        for (const std::uint64_t reference : records) {
            append(reference, 4);
        }
        finish();
    }

    NSData data() const { return NSData::dataWithBytes_length(bytes_.data(), bytes_.size()); }

private:
    void append(std::uint64_t value, int size) {
        for (int shift = (size - 1) * 8; shift >= 0; shift -= 8) {
            bytes_ += static_cast<char>(value >> shift);
        }
    }

    void start(unsigned marker) {
        offsets_.push_back(bytes_.size());
        bytes_ += static_cast<char>(marker);
    }

    std::uint64_t addString(const std::string& text) {
        start(0x5F);
        bytes_ += '\x10';
        append(text.size(), 1);
        bytes_ += text;
        return offsets_.size() - 1;
    }

    std::uint64_t addNumber(std::uint64_t value) {
        start(0x12);
        append(value, 4);
        return offsets_.size() - 1;
    }

    void finish() {
        const std::size_t table = bytes_.size();
        for (const std::uint64_t offset : offsets_) {
            append(offset, 4);
        }
        append(0x0404, 8);
        append(offsets_.size(), 8);
        append(offsets_.size() - 1, 8);
        append(table, 8);
    }

    std::string bytes_ = "bplist00";
    std::vector<std::uint64_t> offsets_;
};

void readWithLibrary(benchmark::State& state, const NSData& data) {
    for (auto _ : state) {
        const NSObject value = NSPropertyListSerialization::propertyListWithData(data);
        if (!value) {
            state.SkipWithError("the list was not read");
            break;
        }
        benchmark::DoNotOptimize(value);
    }
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(data.length()));
}

void copyBytes(benchmark::State& state, const NSData& data) {
    std::vector<char> copy(data.length());
    for (auto _ : state) {
        std::memcpy(copy.data(), data.bytes(), data.length());
        benchmark::DoNotOptimize(copy.data());
        benchmark::ClobberMemory();
    }
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(data.length()));
}

void xmlLibrary(benchmark::State& state) { readWithLibrary(state, listAs(NSPropertyListXMLFormat_v1_0)); }
void xmlBase(benchmark::State& state) { copyBytes(state, listAs(NSPropertyListXMLFormat_v1_0)); }
void oldStyleLibrary(benchmark::State& state) {
    readWithLibrary(state, listAs(NSPropertyListOpenStepFormat));
}
void oldStyleBase(benchmark::State& state) { copyBytes(state, listAs(NSPropertyListOpenStepFormat)); }
void binaryLibrary(benchmark::State& state) { readWithLibrary(state, BinaryList().data()); }
void binaryBase(benchmark::State& state) { copyBytes(state, BinaryList().data()); }

BENCHMARK(xmlLibrary)->Name("xml_plist/library");
BENCHMARK(xmlBase)->Name("xml_plist/base");
BENCHMARK(oldStyleLibrary)->Name("old_style_plist/library");
BENCHMARK(oldStyleBase)->Name("old_style_plist/base");
BENCHMARK(binaryLibrary)->Name("binary_plist/library");
BENCHMARK(binaryBase)->Name("binary_plist/base");

#ifdef ZQ_BENCH_HAS_EXPAT
/// Tokens only, no values: the least that any reader built on it costs.
void xmlExpat(benchmark::State& state) {
    const NSData& data = listAs(NSPropertyListXMLFormat_v1_0);
    for (auto _ : state) {
        std::size_t seen = 0;
        XML_Parser parser = XML_ParserCreate(nullptr);
        XML_SetUserData(parser, &seen);
        XML_SetElementHandler(
            parser,
            [](void* count, const XML_Char*, const XML_Char**) { ++*static_cast<std::size_t*>(count); },
            [](void*, const XML_Char*) {});
        XML_SetCharacterDataHandler(parser, [](void* count, const XML_Char*, int length) {
            *static_cast<std::size_t*>(count) += static_cast<std::size_t>(length);
        });
        const char* bytes = reinterpret_cast<const char*>(data.bytes());
        if (XML_Parse(parser, bytes, static_cast<int>(data.length()), 1) != XML_STATUS_OK) {
            state.SkipWithError("the list was not read");
        }
        XML_ParserFree(parser);
        benchmark::DoNotOptimize(seen);
    }
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(data.length()));
}
BENCHMARK(xmlExpat)->Name("xml_plist/expat_tokens");
#endif

#ifdef ZQ_BENCH_HAS_PUGIXML
void xmlPugixml(benchmark::State& state) {
    const NSData& data = listAs(NSPropertyListXMLFormat_v1_0);
    for (auto _ : state) {
        pugi::xml_document document;
        if (!document.load_buffer(data.bytes(), data.length())) {
            state.SkipWithError("the list was not read");
            break;
        }
        benchmark::DoNotOptimize(document);
    }
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(data.length()));
}
BENCHMARK(xmlPugixml)->Name("xml_plist/pugixml");
#endif

} // namespace
