// SPDX-License-Identifier: MIT
// Declares NSPropertyListSerialization, which reads and writes property lists.
#ifndef ZQFOUNDATION_PLIST_NSPROPERTYLISTSERIALIZATION_H
#define ZQFOUNDATION_PLIST_NSPROPERTYLISTSERIALIZATION_H

#include "../objects/NSData.h"
#include "../objects/NSString.h"

namespace ZQFoundation {

/// The forms of a property list. The numbers are the platform's.
enum NSPropertyListFormat : int {
    NSPropertyListOpenStepFormat = 1,      ///< old-style text: strings, data, arrays, dictionaries
    NSPropertyListXMLFormat_v1_0 = 100,    ///< XML: all kinds
    NSPropertyListBinaryFormat_v1_0 = 200, ///< read only
};

/// Property lists as bytes: strings, numbers, dates, data, and arrays and dictionaries of them.
///
/// Class operations only; any thread may call them. Nothing raises.
class ZQFOUNDATION_EXPORT NSPropertyListSerialization {
public:
    NSPropertyListSerialization() = delete;

    /// The value that the bytes represent in any of the three forms, at most 512 levels deep. Nil if they
    /// cannot be read; then `*errorText`, unless null, gets the reason and the place: "An array is not closed
    /// (line 3, column 5)". On success it becomes nil.
    static NSObject propertyListWithData(const NSData& data, NSString* errorText = nullptr);

    /// The value in the XML or the old-style form. The XML form keeps everything but the fractions of a
    /// date's second; the old-style form turns numbers, booleans and dates into strings. Keys are in
    /// ascending order.
    ///
    /// Nil for the binary form, and for values that a property list cannot contain: nil, the null object, a
    /// host's own object, a set, a URL, a key that is not a string, more than 512 levels, more than 2 GiB of
    /// text, and in XML a date whose year has more than four digits. Then `*errorText`, unless null, says
    /// which; on success it becomes nil.
    static NSData dataWithPropertyList_format(const NSObject& propertyList, NSPropertyListFormat format,
                                              NSString* errorText = nullptr);
};

} // namespace ZQFoundation

#endif
