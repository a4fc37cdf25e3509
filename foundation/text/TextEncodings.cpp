// SPDX-License-Identifier: MIT
// The list of text encodings, by the platform's numbers.
// Several numbers name one encoding, since two numbering schemes are in use: small numbers, and 0x80000000
// plus the number of an older list. Numbers are public and must never change.
#include "foundation/text/TextEncodings.h"

#include <algorithm>
#include <atomic>
#include <iterator>
#include <string>

#include "foundation/system/Published.h"
#include "foundation/text/ByteTable.h"
#include "foundation/text/CharacterConversion.h"
#include "foundation/text/NextStepEncoding.h"
#include "foundation/text/SymbolEncoding.h"

namespace ZQFoundation::detail {

namespace {

// Forms without a name are converted by the library itself.
constexpr TextEncoding plain(std::uint32_t number, EncodingForm form) noexcept {
    return {number, form, EncodingOrder::marked, nullptr};
}

constexpr TextEncoding unicode(std::uint32_t number, EncodingForm form, EncodingOrder order) noexcept {
    return {number, form, order, nullptr};
}

constexpr TextEncoding bytes(std::uint32_t number, const char* name) noexcept {
    return {number, EncodingForm::bytes, EncodingOrder::marked, name};
}

constexpr TextEncoding sequences(std::uint32_t number, const char* name) noexcept {
    return {number, EncodingForm::sequences, EncodingOrder::marked, name};
}

// The C library's SHIFT_JIS has a yen sign and an overline for two ASCII characters; the form corrects that.
constexpr TextEncoding shiftJis(std::uint32_t number) noexcept {
    return {number, EncodingForm::shiftJis, EncodingOrder::marked, "SHIFT_JIS"};
}

constexpr TextEncoding macRoman(std::uint32_t number) noexcept {
    return {number, EncodingForm::macRoman, EncodingOrder::marked, "MACINTOSH"};
}

/// By number.
/// Sorted, for binary search; an assertion below checks it.
constexpr TextEncoding encodings[] = {
    plain(1, EncodingForm::ascii),
    plain(2, EncodingForm::nextStep),
    sequences(3, "EUC-JP"),
    plain(4, EncodingForm::utf8),
    plain(5, EncodingForm::latin1),
    plain(6, EncodingForm::symbol),
    plain(7, EncodingForm::escapedAscii),
    shiftJis(8),
    bytes(9, "ISO-8859-2"),
    unicode(10, EncodingForm::utf16, EncodingOrder::marked),
    bytes(11, "CP1251"),
    bytes(12, "CP1252"),
    bytes(13, "CP1253"),
    bytes(14, "CP1254"),
    bytes(15, "CP1250"),
    sequences(21, "ISO-2022-JP"),
    macRoman(30),
    macRoman(0x80000000),
    unicode(0x80000100, EncodingForm::utf16, EncodingOrder::marked),
    plain(0x80000201, EncodingForm::latin1),
    bytes(0x80000202, "ISO-8859-2"),
    bytes(0x80000203, "ISO-8859-3"),
    bytes(0x80000204, "ISO-8859-4"),
    bytes(0x80000205, "ISO-8859-5"),
    bytes(0x80000206, "ISO-8859-6"),
    bytes(0x80000207, "ISO-8859-7"),
    bytes(0x80000208, "ISO-8859-8"),
    bytes(0x80000209, "ISO-8859-9"),
    bytes(0x8000020A, "ISO-8859-10"),
    bytes(0x8000020B, "ISO-8859-11"),
    bytes(0x8000020D, "ISO-8859-13"), // a twelfth part was never made
    bytes(0x8000020E, "ISO-8859-14"),
    bytes(0x8000020F, "ISO-8859-15"),
    bytes(0x80000210, "ISO-8859-16"),
    bytes(0x80000400, "IBM437"),
    bytes(0x80000405, "CP737"),
    bytes(0x80000406, "CP775"),
    bytes(0x80000410, "IBM850"),
    bytes(0x80000411, "IBM851"),
    bytes(0x80000412, "IBM852"),
    bytes(0x80000413, "IBM855"),
    bytes(0x80000414, "IBM857"),
    bytes(0x80000415, "IBM860"),
    bytes(0x80000416, "IBM861"),
    bytes(0x80000417, "IBM862"),
    bytes(0x80000418, "IBM863"),
    bytes(0x80000419, "IBM864"),
    bytes(0x8000041A, "IBM865"),
    bytes(0x8000041B, "IBM866"),
    bytes(0x8000041C, "IBM869"),
    bytes(0x8000041D, "CP874"),
    sequences(0x80000420, "CP932"),
    sequences(0x80000421, "CP936"),
    sequences(0x80000422, "CP949"),
    sequences(0x80000423, "CP950"),
    bytes(0x80000500, "CP1252"),
    bytes(0x80000501, "CP1250"),
    bytes(0x80000502, "CP1251"),
    bytes(0x80000503, "CP1253"),
    bytes(0x80000504, "CP1254"),
    bytes(0x80000505, "CP1255"),
    bytes(0x80000506, "CP1256"),
    bytes(0x80000507, "CP1257"),
    bytes(0x80000508, "CP1258"),
    plain(0x80000600, EncodingForm::ascii),
    sequences(0x80000631, "GBK"),
    sequences(0x80000632, "GB18030"),
    sequences(0x80000820, "ISO-2022-JP"),
    sequences(0x80000821, "ISO-2022-JP-2"),
    sequences(0x80000840, "ISO-2022-KR"),
    sequences(0x80000920, "EUC-JP"),
    sequences(0x80000930, "EUC-CN"),
    sequences(0x80000931, "EUC-TW"),
    sequences(0x80000940, "EUC-KR"),
    shiftJis(0x80000A01),
    bytes(0x80000A02, "KOI8-R"),
    sequences(0x80000A03, "BIG5"),
    sequences(0x80000A06, "BIG5-HKSCS"),
    bytes(0x80000A08, "KOI8-U"),
    plain(0x80000B01, EncodingForm::nextStep),
    plain(0x80000BFF, EncodingForm::escapedAscii),
    plain(0x88000100, EncodingForm::utf8),
    unicode(0x8C000100, EncodingForm::utf32, EncodingOrder::marked),
    unicode(0x90000100, EncodingForm::utf16, EncodingOrder::big),
    unicode(0x94000100, EncodingForm::utf16, EncodingOrder::little),
    unicode(0x98000100, EncodingForm::utf32, EncodingOrder::big),
    unicode(0x9C000100, EncodingForm::utf32, EncodingOrder::little),
};

constexpr bool precedes(const TextEncoding& left, const TextEncoding& right) noexcept {
    return left.number < right.number;
}

static_assert(std::is_sorted(std::begin(encodings), std::end(encodings), precedes));

/// One slot for each entry of the list, filled on first use. Tables are never freed: readers keep pointers
/// to them.
constinit std::atomic<const ByteTable*> tables[std::size(encodings)]{};

bool getConvertedUnits(const TextEncoding& encoding, ByteTable::Units& units) {
    if (!unitsOfAllBytes(encoding.name, ByteTable::none, units.data())) {
        return false;
    }
    if (encoding.form == EncodingForm::macRoman) {
        // What the C library reads as a Greek letter and as a unit of private use.
        units[0xC6] = 0x2206;
        units[0xDB] = 0x20AC;
        units[0xF0] = 0xF8FF;
    }
    return true;
}

bool getUnits(const TextEncoding& encoding, ByteTable::Units& units) {
    switch (encoding.form) {
    case EncodingForm::nextStep:
    case EncodingForm::symbol: {
        static_assert(nextStepUndefined == ByteTable::none && symbolUndefined == ByteTable::none);
        const auto unitOf = encoding.form == EncodingForm::nextStep ? nextStepToUnit : symbolToUnit;
        for (std::size_t code = 0; code < units.size(); ++code) {
            units[code] = unitOf(static_cast<unsigned char>(code));
        }
        return true;
    }
    case EncodingForm::bytes:
    case EncodingForm::macRoman:
        return getConvertedUnits(encoding, units);
    // Forms of several bytes for one character have no table.
    default:
        return false;
    }
}

} // namespace

const TextEncoding* findTextEncoding(std::uint32_t number) noexcept {
    const TextEncoding sought = plain(number, EncodingForm::ascii);
    const auto* const found = std::lower_bound(std::begin(encodings), std::end(encodings), sought, precedes);
    return found != std::end(encodings) && found->number == number ? found : nullptr;
}

const ByteTable* byteTableOf(const TextEncoding& encoding) {
    std::atomic<const ByteTable*>& slot = tables[&encoding - encodings];
    if (const ByteTable* const table = slot.load(std::memory_order_acquire)) {
        return table;
    }
    ByteTable::Units units;
    if (!getUnits(encoding, units)) {
        return nullptr;
    }
    // A race makes two tables, of which one is dropped.
    return &publishOnce(slot, static_cast<const ByteTable*>(new ByteTable(units)));
}

} // namespace ZQFoundation::detail
