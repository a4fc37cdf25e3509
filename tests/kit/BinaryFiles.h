// SPDX-License-Identifier: MIT
// Binary property lists and zone data put together by hand, also wrong ones.
#ifndef ZQFOUNDATION_TESTS_KIT_BINARYFILES_H
#define ZQFOUNDATION_TESTS_KIT_BINARYFILES_H

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace ZQFoundation::kit {

/// A big-endian number of `size` bytes.
inline std::string bigEndian(std::uint64_t value, unsigned size) {
    std::string bytes;
    for (unsigned index = size; index > 0; --index) {
        bytes += index > 8 ? '\0' : static_cast<char>(value >> (8 * (index - 1)));
    }
    return bytes;
}

/// Puts a binary property list together from its objects' bytes, correctly unless a field says otherwise.
struct BinaryFile {
    std::vector<std::string> objects;
    unsigned offsetSize = 2;
    unsigned referenceSize = 1;
    std::uint64_t top = 0;

    std::string header = "bplist00";
    std::int64_t countMore = 0; ///< what the trailer claims beyond the truth
    std::int64_t tableLater = 0;
    std::vector<std::uint64_t> offsets; ///< in place of the true ones, when there are any

    std::string bytes() const {
        std::string file = header;
        std::vector<std::uint64_t> starts;
        for (const std::string& object : objects) {
            starts.push_back(file.size());
            file += object;
        }
        const std::uint64_t table = file.size();
        const std::vector<std::uint64_t>& used = offsets.empty() ? starts : offsets;
        for (const std::uint64_t offset : used) {
            file += bigEndian(offset, offsetSize);
        }
        file += std::string(6, '\0') + static_cast<char>(offsetSize) + static_cast<char>(referenceSize);
        file += bigEndian(used.size() + static_cast<std::uint64_t>(countMore), 8);
        file += bigEndian(top, 8) + bigEndian(table + static_cast<std::uint64_t>(tableLater), 8);
        return file;
    }
};

/// An object's bytes from a marker and more.
inline std::string object(unsigned marker, std::string_view content = {}) {
    return std::string(1, static_cast<char>(marker)) + std::string(content);
}

/// Zone data, put together by hand.
struct ZoneData {
    struct Clock {
        std::int32_t offset;
        bool isDaylightSaving;
        unsigned char nameStart;
    };

    char version = '2';
    std::vector<std::int64_t> changes;
    std::vector<unsigned char> indexes;
    std::vector<Clock> clocks;
    std::string names; ///< NULs included
    std::string footer;
    unsigned leapSeconds = 0;
    unsigned flags = 0; ///< number of each kind of flags

    std::string header(bool empty) const {
        std::string out = "TZif";
        out.push_back(version);
        out.append(15, '\0');
        for (const std::size_t count : {std::size_t{flags}, std::size_t{flags}, std::size_t{leapSeconds},
                                        changes.size(), clocks.size(), names.size()}) {
            out += bigEndian(empty ? 0 : count, 4);
        }
        return out;
    }

    std::string block(unsigned timeSize) const {
        std::string out;
        for (const std::int64_t change : changes) {
            out += bigEndian(static_cast<std::uint64_t>(change), timeSize);
        }
        out.append(indexes.begin(), indexes.end());
        for (const Clock& clock : clocks) {
            out += bigEndian(static_cast<std::uint32_t>(clock.offset), 4);
            out.push_back(clock.isDaylightSaving ? '\1' : '\0');
            out.push_back(static_cast<char>(clock.nameStart));
        }
        out += names;
        out.append(leapSeconds * (timeSize + 4) + 2 * flags, '\0');
        return out;
    }

    std::string bytes() const {
        if (version == '\0') {
            return header(false) + block(4);
        }
        return header(true) + header(false) + block(8) + "\n" + footer + "\n";
    }
};

/// A zone with changes at 1000 and 2000 seconds and no rule.
inline ZoneData simpleZone() {
    ZoneData data;
    data.changes = {1000, 2000};
    data.indexes = {1, 2};
    data.clocks = {{-100, false, 0}, {3600, false, 4}, {7200, true, 8}};
    data.names = std::string("OLD\0STD\0DST\0", 12);
    return data;
}

} // namespace ZQFoundation::kit

#endif
