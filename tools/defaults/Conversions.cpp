// SPDX-License-Identifier: MIT
// Reads the arguments that a format takes, with the library's own parser: what this finds equal is equal at
// run time.
#include "tools/defaults/Conversions.h"

#include <map>

#include "foundation/text/FormatSyntax.h"

namespace ZQFoundation::tools::defaults {

namespace {

using detail::FormatClass;
using detail::FormatConversion;
using detail::FormatField;
using detail::FormatLength;

/// The shortest spelling: "%ld", "%lld" and "%zd" all take 64 bits.
std::string lengthText(FormatLength length) {
    switch (length) {
    case FormatLength::bits8:
        return "hh";
    case FormatLength::bits16:
        return "h";
    case FormatLength::bits64:
        return "l";
    case FormatLength::longDouble:
        return "L";
    default:
        return "";
    }
}

/// What an argument must be, by one conversion for all that read it in the same way. Empty for a conversion
/// that takes no argument.
std::string typeText(const FormatConversion& conversion) {
    switch (detail::formatClassOf(conversion.letter)) {
    case FormatClass::object:
        return "%@";
    case FormatClass::integer:
        return "%" + lengthText(conversion.length) + "d";
    case FormatClass::character:
        return "%c";
    case FormatClass::real:
    case FormatClass::hexadecimalReal:
        return conversion.length == FormatLength::longDouble ? "%Lf" : "%f";
    case FormatClass::bytes:
        return "%s";
    case FormatClass::units:
        return "%S";
    case FormatClass::address:
    case FormatClass::nothing:
        return "%p";
    default:
        return "";
    }
}

/// The types of the arguments that the conversions read so far. Translations may use them in another order
/// and more than once, so they are kept by position.
class Arguments {
public:
    void add(const FormatConversion& conversion) {
        const std::string type = typeText(conversion);
        if (type.empty()) {
            return;
        }
        addField(conversion.width);
        addField(conversion.precision);
        types_[conversion.position > 0 ? conversion.position : ++last_] = type;
    }

    /// By position, so that the order in which a translation uses them does not matter. A position after one
    /// that is not used is spelled out: "%2$@" does not read the argument that "%@" reads.
    std::string text() const {
        std::string text;
        int last = 0;
        for (const auto& [position, type] : types_) {
            const std::string number = position - 1 == last ? "" : std::to_string(position) + "$";
            text.append(text.empty() ? "%" : " %").append(number).append(type, 1);
            last = position;
        }
        return text;
    }

private:
    /// A width or precision "*" takes an integer too.
    void addField(const FormatField& field) {
        if (field.source == FormatField::Source::nextArgument) {
            types_[++last_] = "%d";
        } else if (field.source == FormatField::Source::numberedArgument) {
            types_[field.value] = "%d";
        }
    }

    std::map<int, std::string> types_;
    int last_ = 0;
};

} // namespace

// A conversion that is cut off at the end does not count. After "% ", which is text here, parsing continues
// with the space, not with what follows the supposed conversion.
std::string conversionsOf(const NSString& format) {
    const std::u16string units = format.utf16();
    const char16_t* at = units.data();
    const char16_t* const end = at + units.size();
    Arguments arguments;
    while (at != end) {
        if (*at++ != u'%') {
            continue;
        }
        FormatConversion conversion;
        const char16_t* const next = detail::readFormatConversion(at, end, conversion);
        if ((conversion.flags & detail::formatBlank) != 0) {
            continue; // text; what follows is looked at
        }
        if (!conversion.isCutOff) {
            arguments.add(conversion);
        }
        at = next;
    }
    return arguments.text();
}

} // namespace ZQFoundation::tools::defaults
