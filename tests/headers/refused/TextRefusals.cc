// SPDX-License-Identifier: MIT
// What looks like a text and is none, each of which the compiler must refuse, and beside each what is right.
#include <ZQFoundation/ZQFoundation.h>

#include <array>
#include <string>
#include <vector>

using namespace ZQFoundation;

void right(const std::array<char, 8>& buffer, const std::vector<char>& bytes, const std::u8string& text) {
    const NSString ofTheBuffer = buffer.data();
    const NSString ofAllOfIt = StringView(buffer.data(), buffer.size());
    ZQLog::logWithFormat("%@ %@ %@ %s", bytes, text, ofTheBuffer, buffer.data());
    ZQLog::log(bytes);
    const NSArray all{bytes, text, ofAllOfIt};

#ifdef REFUSE_A_BUFFER_AS_A_STRING
    // expected: pass StringView(data, bytes) or c_str(), or specialize ObjectConversion
    const NSString refused = buffer;
#endif
#ifdef REFUSE_A_BUFFER_AS_A_VALUE
    // expected: pass StringView(data, bytes) or c_str(), or specialize ObjectConversion
    const NSArray refused{buffer};
#endif
#ifdef REFUSE_A_BUFFER_AS_A_TEXT
    // expected: deleted
    ZQLog::log(buffer);
#endif
#ifdef REFUSE_A_BUFFER_AS_AN_ARGUMENT
    // expected: format_conversion_requires_an_object_or_text_or_an_ObjectConversion_as_in_Std_h_Qt_h_Glib_h
    ZQLog::logWithFormat("%@", buffer);
#endif
#ifdef REFUSE_A_BUFFER_AS_AN_ARGUMENT_OF_ANY_FORMAT
    // expected: for any other type specialize ZQFoundation::ObjectConversion
    ZQLog::logWithFormat(ofTheBuffer, buffer);
#endif
#ifdef REFUSE_WIDE_CHARACTERS
    // expected: deleted
    ZQLog::log(std::wstring(L"wide"));
#endif
#ifdef REFUSE_BYTES_WITHOUT_AN_ENCODING
    // expected: pass StringView(data, bytes) or c_str(), or specialize ObjectConversion
    const NSString refused = std::vector<unsigned char>{1, 2};
#endif
}
