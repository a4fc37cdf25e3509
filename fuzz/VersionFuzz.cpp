// SPDX-License-Identifier: MIT
// The comparisons of versions against their model, which cuts both texts into tokens first.
//
// Input: a byte of switches (1 texts are passed as UTF-8 and not as units, the next ones choose the
// comparison), then two versions with a line feed between them (see InputReader for their units).
#include <string>

#include "fuzz/Fuzzing.h"
#include "fuzz/InputReader.h"
#include "tests/kit/Texts.h"
#include "tests/models/Versions.h"
#include "version/ZQVersionComparator.h"

using namespace ZQFoundation;
using namespace models;
using fuzzing::require;
using kit::stringOf;

namespace {

void checkTokens(std::u16string_view units, StringView version) {
    const VersionTokens expected = versionTokens(units);
    const NSMutableArray tokens = ZQVersionComparator::splitVersionString(version);
    require(tokens.count() == expected.size(), "number of tokens");
    for (std::size_t i = 0; i < expected.size(); ++i) {
        const NSString token(tokens.objectAtIndex(i));
        require(token.utf16() == expected[i], "token");
        require(ZQVersionComparator::typeOfCharacter(token) == classOfToken(expected[i]), "class of a token");
    }
}

struct Versions {
    std::u16string leftUnits;
    std::u16string rightUnits;
    StringView left;
    StringView right;
};

void checkOrder(const Versions& versions) {
    const int order = orderOfVersions(versions.leftUnits, versions.rightUnits);
    require(ZQVersionComparator::compareVersion_toVersion(versions.left, versions.right) == order, "order");
    require(ZQVersionComparator::compareVersion_toVersion(versions.right, versions.left) == -order,
            "order the other way round");
}

void checkOneRule(unsigned rule, const Versions& versions) {
    switch (rule % 4) {
    case 0:
        checkTokens(versions.leftUnits, versions.left);
        break;
    case 1:
        require(ZQVersionComparator::compareMajorVersion_toMajorVersion(versions.left, versions.right) ==
                    orderOfMajorVersions(versions.leftUnits, versions.rightUnits),
                "order of major versions");
        break;
    case 2:
        if (!versions.leftUnits.empty() && !versions.rightUnits.empty()) {
            require(ZQVersionComparator::compareVersionWithPlus_toVersionWithPlus(versions.left,
                                                                                  versions.right) ==
                        orderOfVersionsWithPlus(versions.leftUnits, versions.rightUnits),
                    "order of versions with a plus");
        }
        break;
    default:
        checkOrder(versions);
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    fuzzing::InputReader input(data, size);
    const unsigned switches = input.byte();
    Versions versions{
        fuzzing::unitsFromBytes(input.piece('\n')), fuzzing::unitsFromBytes(input.rest()), {}, {}};
    std::string leftBytes;
    std::string rightBytes;
    if ((switches & 1U) != 0) { // unpaired surrogates become other characters
        leftBytes = stringOf(versions.leftUnits).utf8();
        rightBytes = stringOf(versions.rightUnits).utf8();
        versions.leftUnits = NSString(leftBytes).utf16();
        versions.rightUnits = NSString(rightBytes).utf16();
        versions.left = leftBytes;
        versions.right = rightBytes;
    } else {
        versions.left = versions.leftUnits;
        versions.right = versions.rightUnits;
    }
    checkOneRule(switches >> 1U, versions);
    return 0;
}
