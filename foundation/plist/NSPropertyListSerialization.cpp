// SPDX-License-Identifier: MIT
// Converts property lists from and to bytes.
// The forms are in their own readers and writers; this chooses among them and passes reasons on.
#include "foundation/plist/NSPropertyListSerialization.h"

#include <string>

#include "foundation/plist/OldStyleWriter.h"
#include "foundation/plist/PropertyList.h"
#include "foundation/plist/XmlWriter.h"

namespace ZQFoundation {

namespace {

const char* write(const NSObject& propertyList, NSPropertyListFormat format, std::string& text) {
    switch (format) {
    case NSPropertyListOpenStepFormat:
        return detail::writeOldStyle(propertyList, text);
    case NSPropertyListXMLFormat_v1_0:
        return detail::writeXml(propertyList, text);
    // The binary form is read only.
    case NSPropertyListBinaryFormat_v1_0:
        break;
    }
    return "Property lists are written in the XML and the old-style form only";
}

} // namespace

NSObject NSPropertyListSerialization::propertyListWithData(const NSData& data, NSString* errorText) {
    detail::PropertyListError error;
    NSObject value;
    if (data) {
        value = detail::parsePropertyListBytes(data.bytes(), data.length(), &error);
    } else {
        error.message = "There is no data";
    }
    if (errorText != nullptr) {
        // The reason is always set, so that a caller never sees an old one.
        *errorText = value ? NSString() : detail::describePropertyListError(error);
    }
    return value;
}

NSData NSPropertyListSerialization::dataWithPropertyList_format(const NSObject& propertyList,
                                                                NSPropertyListFormat format,
                                                                NSString* errorText) {
    std::string text;
    const char* refusal = write(propertyList, format, text);
    if (errorText != nullptr) {
        *errorText = NSString(refusal); // nil for a null pointer
    }
    return refusal != nullptr ? NSData() : NSData::dataWithBytes_length(text.data(), text.size());
}

} // namespace ZQFoundation
