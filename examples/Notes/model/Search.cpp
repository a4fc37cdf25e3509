// SPDX-License-Identifier: MIT
// Folding texts for a search.
#include "Search.h"

#include <string>
#include <unordered_map>

using namespace ZQFoundation;

namespace notes {

namespace {

/// The Latin letters with accents, each with its letter without them.
constexpr struct {
    char16_t base;
    const char16_t* letters;
} accented[] = {
    {u'A', u"ÀÁÂÃÄÅĀĂĄǍǞǠǺȀȂȦḀẠẢẤẦẨẪẬẮẰẲẴẶ"},
    {u'B', u"ḂḄḆ"},
    {u'C', u"ÇĆĈĊČḈ"},
    {u'D', u"ĎḊḌḎḐḒ"},
    {u'E', u"ÈÉÊËĒĔĖĘĚȄȆȨḔḖḘḚḜẸẺẼẾỀỂỄỆ"},
    {u'F', u"Ḟ"},
    {u'G', u"ĜĞĠĢǦǴḠ"},
    {u'H', u"ĤȞḢḤḦḨḪ"},
    {u'I', u"ÌÍÎÏĨĪĬĮİǏȈȊḬḮỈỊ"},
    {u'J', u"Ĵ"},
    {u'K', u"ĶǨḰḲḴ"},
    {u'L', u"ĹĻĽḶḸḺḼ"},
    {u'M', u"ḾṀṂ"},
    {u'N', u"ÑŃŅŇǸṄṆṈṊ"},
    {u'O', u"ÒÓÔÕÖŌŎŐƠǑǪǬȌȎȪȬȮȰṌṎṐṒỌỎỐỒỔỖỘỚỜỞỠỢ"},
    {u'P', u"ṔṖ"},
    {u'R', u"ŔŖŘȐȒṘṚṜṞ"},
    {u'S', u"ŚŜŞŠȘṠṢṤṦṨ"},
    {u'T', u"ŢŤȚṪṬṮṰ"},
    {u'U', u"ÙÚÛÜŨŪŬŮŰŲƯǓǕǗǙǛȔȖṲṴṶṸṺỤỦỨỪỬỮỰ"},
    {u'V', u"ṼṾ"},
    {u'W', u"ŴẀẂẄẆẈ"},
    {u'X', u"ẊẌ"},
    {u'Y', u"ÝŶŸȲẎỲỴỶỸ"},
    {u'Z', u"ŹŻŽẐẒẔ"},
};

bool isMark(char16_t unit) { return unit >= 0x0300 && unit <= 0x036F; }

std::unordered_map<char16_t, char16_t> makeBases() {
    std::unordered_map<char16_t, char16_t> bases;
    for (const auto& row : accented) {
        for (const char16_t* letter = row.letters; *letter != 0; ++letter) {
            bases.emplace(*letter, row.base);
        }
    }
    return bases;
}

} // namespace

NSString folded(const NSString& text) {
    static const std::unordered_map<char16_t, char16_t> bases = makeBases();
    if (!text) {
        return nullptr;
    }
    std::u16string units = text.uppercaseString().utf16();
    std::erase_if(units, isMark);
    for (char16_t& unit : units) {
        const auto found = unit < 0x00C0 ? bases.end() : bases.find(unit);
        unit = found != bases.end() ? found->second : unit;
    }
    return NSString::stringWithCharacters_length(units.data(), units.size());
}

bool holdsAll(const NSString& foldedText, const NSArray& words) {
    for (const NSObject& word : words) {
        const NSString text(word);
        if (!text.isEmpty() && !foldedText.containsString(text)) {
            return false;
        }
    }
    return true;
}

} // namespace notes
