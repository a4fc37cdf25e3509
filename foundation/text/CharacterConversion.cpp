// SPDX-License-Identifier: MIT
// Uses the C library's converters, for encodings of several bytes per character.
// Such encodings have large tables that the C library has anyway. Results are checked, because its
// converters differ between systems in what they accept and replace.
#include "foundation/text/CharacterConversion.h"

#include <cerrno>
#include <cstring>

#include <iconv.h>

#include "foundation/system/CallerState.h"

namespace ZQFoundation::detail {

namespace {

/// The machine's order, named: without an order a byte-order mark would be read and written.
constexpr const char* unitEncoding = __BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__ ? "UTF-16LE" : "UTF-16BE";

// Owns a converter. One object is used by one thread at a time.
class Conversion {
public:
    Conversion(const char* to, const char* from) : conversion_(::iconv_open(to, from)) {}
    Conversion(const Conversion&) = delete;
    Conversion& operator=(const Conversion&) = delete;
    ~Conversion() {
        if (isOpen()) {
            ::iconv_close(conversion_);
        }
    }

    bool isOpen() const noexcept {
        return conversion_ != reinterpret_cast<iconv_t>(-1); // NOLINT: what the C library returns
    }

    /// False unless all of the input was converted without loss. Begins in the initial state, whatever was
    /// before.
    bool convert(const char* bytes, std::size_t count, std::string& out) {
        // Resets the shift state that an earlier, failed conversion left.
        ::iconv(conversion_, nullptr, nullptr, nullptr, nullptr);
        // Enough for most; it grows when needed.
        out.resize(count + count / 2 + 16);
        std::size_t written = 0;
        char* input = const_cast<char*>(bytes); // is only read
        return run(&input, &count, out, written) && run(nullptr, nullptr, out, written) &&
               (out.resize(written), true);
    }

private:
    /// Without input it ends the text: it writes what brings the encoding back to its initial state.
    bool run(char** input, std::size_t* count, std::string& out, std::size_t& written) {
        for (;;) {
            char* output = out.data() + written;
            std::size_t room = out.size() - written;
            const std::size_t result = ::iconv(conversion_, input, count, &output, &room);
            written = out.size() - room;
            // A count above 0 means replaced characters: a loss, which callers must not get silently.
            if (result != static_cast<std::size_t>(-1)) {
                return result == 0; // else how many characters were replaced by similar ones
            }
            // E2BIG: the output was full. Anything else is invalid or truncated input.
            if (errno != E2BIG) {
                return false;
            }
            out.resize(out.size() * 2);
        }
    }

    iconv_t conversion_;
};

bool readUnits(const char* encoding, std::string_view bytes, std::u16string& out) {
    Conversion conversion(unitEncoding, encoding);
    std::string units;
    if (!conversion.isOpen() || !conversion.convert(bytes.data(), bytes.size(), units)) {
        return false;
    }
    out.resize(units.size() / sizeof(char16_t));
    std::memcpy(out.data(), units.data(), out.size() * sizeof(char16_t));
    return true;
}

} // namespace

bool bytesToUnits(const char* encoding, std::string_view bytes, std::u16string& out) {
    // Preserves `errno`, and no cancellation leaves a converter open.
    const CallerState caller;
    return readUnits(encoding, bytes, out);
}

bool unitsOfAllBytes(const char* encoding, char16_t none, char16_t* units) {
    const CallerState caller;
    // Opened once: a byte must not seem unknown only because the system briefly lacked a resource.
    Conversion conversion(unitEncoding, encoding);
    if (!conversion.isOpen()) {
        return false;
    }
    std::string unit;
    for (unsigned code = 0; code < 256; ++code) {
        const char byte = static_cast<char>(code);
        units[code] = none;
        // A byte that begins a sequence, or is a shift, gives no unit or another size.
        if (conversion.convert(&byte, 1, unit) && unit.size() == sizeof *units) {
            std::memcpy(&units[code], unit.data(), sizeof *units);
        }
    }
    return true;
}

bool unitsToBytes(const char* encoding, std::u16string_view units, std::string& out) {
    const CallerState caller;
    Conversion conversion(encoding, unitEncoding);
    std::u16string readBack;
    // Reading back costs as much again, and is the only test for mappings that work one way.
    return conversion.isOpen() &&
           conversion.convert(reinterpret_cast<const char*>(units.data()), units.size() * sizeof(char16_t),
                              out) &&
           readUnits(encoding, out, readBack) && readBack == units;
}

} // namespace ZQFoundation::detail
