// SPDX-License-Identifier: MIT
// Makes strings, their substrings and conversions, and implements their builder.
// A body has its form for life, bytes or units, chosen by its contents: every function here has a branch for
// each.
#include "foundation/objects/NSString.h"

#include <cstring>
#include <new>
#include <string>

#include "foundation/objects/AsciiOrUtf16.h"
#include "foundation/objects/NSException.h"
#include "foundation/objects/StringBodies.h"
#include "foundation/objects/TextBuilder.h"
#include "foundation/system/SignalSafeMemory.h"
#include "foundation/text/NumberText.h"
#include "foundation/text/Utf.h"

namespace ZQFoundation {

using detail::Access;
using detail::StringBody;

} // namespace ZQFoundation

namespace ZQFoundation::detail {

namespace {

// The length is limited so that its bytes, doubled and with the header, stay far from overflow.
std::size_t bytesOfString(std::size_t length, bool isAscii) {
    if (length > StringBody::maxLength) {
        throw std::bad_alloc();
    }
    return sizeof(StringBody) + length * (isAscii ? 1 : sizeof(char16_t));
}

// In any memory: the flag says where to return it.
StringBody* stringIn(void* memory, std::size_t length, bool isAscii, bool isSignalSafe) noexcept {
    auto* const body = static_cast<StringBody*>(memory);
    body->references = 1;
    body->setForm(length, isAscii, isSignalSafe);
    return body;
}

} // namespace

/// The caller fills the body, whose contents are undefined until then.
StringBody* allocateString(std::size_t length, bool isAscii) {
    return stringIn(::operator new(bytesOfString(length, isAscii)), length, isAscii, false);
}

/// For texts that log operations return in signal handlers, where the C library's allocator cannot be used.
StringBody* allocateSignalSafeString(std::size_t length, bool isAscii) {
    return stringIn(takeSignalSafeMemory(bytesOfString(length, isAscii)), length, isAscii, true);
}

/// The bytes must be ASCII, which is not checked again. The address may be null when there are none.
NSString makeAsciiString(const char* bytes, std::size_t count) {
    StringBody* const body = allocateString(count, true);
    if (count != 0) {
        std::memcpy(body->ascii(), bytes, count);
    }
    return Access::adoptString(body);
}

NSString makeString(const char16_t* units, std::size_t count) {
    const bool isAscii = asciiPrefixLength(units, count) == count;
    // Narrow if possible: a string has the same form wherever it comes from.
    StringBody* const body = allocateString(count, isAscii);
    if (isAscii) {
        narrowAscii(units, count, body->ascii());
    } else {
        std::memcpy(body->units(), units, count * sizeof(char16_t));
    }
    return Access::adoptString(body);
}

// Never fails: each ill-formed piece becomes U+FFFD.
NSString makeString(const char* utf8, std::size_t count) {
    if (asciiPrefixLength(utf8, count) == count) {
        return makeAsciiString(utf8, count);
    }
    StringBody* const body = allocateString(utf16Length(utf8, count, IllFormed::replace), false);
    utf8ToUtf16(utf8, count, body->units(), IllFormed::replace);
    return Access::adoptString(body);
}

} // namespace ZQFoundation::detail

namespace ZQFoundation {

namespace {

/// Null for nil, and for a value of another type that was assigned through a plain NSObject reference.
const StringBody* bodyOf(const NSObject& string) noexcept {
    return Access::kind(string) == detail::Kind::string ? Access::string(string) : nullptr;
}

[[noreturn]] void raiseRange(const char* operation, std::size_t index, std::size_t length) {
    NSException::raise_format(NSRangeException, "%s: index %lu beyond a string of %lu units", operation,
                              index, length);
}

/// Writes the units of part of a body.
void copyUnits(const StringBody& body, std::size_t start, std::size_t count, char16_t* out) noexcept {
    if (body.isAscii) {
        detail::widenAscii(body.ascii() + start, count, out);
    } else if (count != 0) {
        std::memcpy(out, body.units() + start, count * sizeof(char16_t));
    }
}

// A piece of units may be ASCII by itself, and is then narrowed.
NSString part(const StringBody& body, std::size_t start, std::size_t count) {
    return body.isAscii ? detail::makeAsciiString(body.ascii() + start, count)
                        : detail::makeString(body.units() + start, count);
}

} // namespace

// Only text that is not known to be ASCII is examined.
NSString NSString::fromText(StringView text) {
    switch (text.form()) {
    case StringView::Form::ascii:
        return detail::makeAsciiString(text.bytes(), text.size());
    case StringView::Form::utf8:
        return detail::makeString(text.bytes(), text.size());
    case StringView::Form::utf16:
        return detail::makeString(text.units(), text.size());
    default:
        return {};
    }
}

// Views keep no reference: the text is valid as long as a handle holds the string.
StringView NSString::view() const noexcept {
    const StringBody* const body = bodyOf(*this);
    if (body == nullptr) {
        return {};
    }
    return body->isAscii ? StringView::ascii(body->ascii(), body->length)
                         : StringView(body->units(), std::size_t{body->length});
}

NSString NSString::string() { return detail::makeAsciiString("", 0); }

// Strict, unlike other texts of bytes: anything ill-formed gives nil. Measuring and checking are one pass.
NSString NSString::stringWithUTF8Bytes(const char* bytes, std::size_t byteCount) {
    std::size_t length = 0;
    if (!detail::getUtf16Length(bytes, byteCount, length)) {
        return {};
    }
    if (length == byteCount) { // every other character takes more bytes than units
        return detail::makeAsciiString(bytes, byteCount);
    }
    StringBody* const body = detail::allocateString(length, false);
    detail::utf8ToUtf16(bytes, byteCount, body->units(), detail::IllFormed::replace);
    return Access::adoptString(body);
}

NSString NSString::stringWithCharacters_length(const char16_t* units, std::size_t unitCount) {
    return detail::makeString(units, unitCount);
}

NSString NSString::stringWithFileSystemBytes(const char* bytes, std::size_t byteCount) {
    if (detail::asciiPrefixLength(bytes, byteCount) == byteCount) {
        return detail::makeAsciiString(bytes, byteCount);
    }
    // Foreign bytes become unpaired surrogates that `getFileSystemBytes` turns into the same bytes again.
    constexpr auto policy = detail::IllFormed::fileName;
    StringBody* const body = detail::allocateString(detail::utf16Length(bytes, byteCount, policy), false);
    detail::utf8ToUtf16(bytes, byteCount, body->units(), policy);
    return Access::adoptString(body);
}

std::size_t NSString::length() const noexcept {
    const StringBody* const body = bodyOf(*this);
    return body != nullptr ? std::size_t{body->length} : 0;
}

char16_t NSString::characterAtIndex(std::size_t index) const {
    const StringBody* const body = bodyOf(*this);
    if (body == nullptr) {
        return 0;
    }
    if (index >= body->length) {
        raiseRange("characterAtIndex:", index, body->length);
    }
    return body->isAscii ? static_cast<unsigned char>(body->ascii()[index]) : body->units()[index];
}

void NSString::getCharacters(char16_t* out, std::size_t start, std::size_t count) const {
    const StringBody* const body = bodyOf(*this);
    if (body == nullptr) {
        return;
    }
    if (start > body->length || count > body->length - start) {
        raiseRange("getCharacters:range:", start + count, body->length);
    }
    copyUnits(*body, start, count, out);
}

namespace {

void writeUtf8(const StringBody& body, detail::IllFormed policy, std::string& out) {
    if (body.isAscii) {
        out.assign(body.ascii(), body.length);
        return;
    }
    out.resize(detail::utf8Length(body.units(), body.length, policy));
    detail::utf16ToUtf8(body.units(), body.length, out.data(), policy);
}

} // namespace

std::string NSString::utf8() const {
    std::string text;
    if (const StringBody* const body = bodyOf(*this)) {
        writeUtf8(*body, detail::IllFormed::replace, text);
    }
    return text;
}

// On failure the string keeps what it held.
bool NSString::getUTF8(std::string& out) const {
    const StringBody* const body = bodyOf(*this);
    if (body == nullptr || (!body->isAscii && !detail::isWellFormedUtf16(body->units(), body->length))) {
        return false;
    }
    writeUtf8(*body, detail::IllFormed::replace, out);
    return true;
}

bool NSString::getFileSystemBytes(std::string& out) const {
    const StringBody* const body = bodyOf(*this);
    if (body == nullptr) {
        return false;
    }
    // A NUL would end the path early, in another file's name.
    const bool hasForm = body->isAscii ? std::memchr(body->ascii(), 0, body->length) == nullptr
                                       : detail::hasFileNameForm(body->units(), body->length);
    if (hasForm) {
        writeUtf8(*body, detail::IllFormed::fileName, out);
    }
    return hasForm;
}

std::u16string NSString::utf16() const {
    std::u16string text;
    if (const StringBody* const body = bodyOf(*this)) {
        text.resize(body->length);
        copyUnits(*body, 0, body->length, text.data());
    }
    return text;
}

// The subtraction cannot wrap, since the location was checked first; a sum of both could.
NSString NSString::substringWithRange(std::size_t location, std::size_t count) const {
    const StringBody* const body = bodyOf(*this);
    if (body == nullptr) {
        return {};
    }
    if (location > body->length || count > body->length - location) {
        raiseRange("substringWithRange:", location + count, body->length);
    }
    return part(*body, location, count);
}

NSString NSString::substringToIndex(std::size_t index) const {
    const StringBody* const body = bodyOf(*this);
    if (body == nullptr) {
        return {};
    }
    if (index > body->length) {
        raiseRange("substringToIndex:", index, body->length);
    }
    // The whole string is shared, not copied.
    return index == body->length ? *this : part(*body, 0, index);
}

NSString NSString::substringFromIndex(std::size_t index) const {
    const StringBody* const body = bodyOf(*this);
    if (body == nullptr) {
        return {};
    }
    if (index > body->length) {
        raiseRange("substringFromIndex:", index, body->length);
    }
    return index == 0 ? *this : part(*body, index, body->length - index);
}

NSString NSString::stringByAppendingString(StringView other) const {
    if (!*this) {
        return {};
    }
    detail::TextBuilder builder;
    builder.append(view());
    builder.append(other);
    return builder.string();
}

// Saturates, as the form with 64 bits does: a number beyond the type is its nearest limit.
int NSString::intValue() const noexcept {
    const StringBody* const body = bodyOf(*this);
    if (body == nullptr) {
        return 0;
    }
    return body->isAscii ? detail::readInt32(body->ascii(), body->length)
                         : detail::readInt32(body->units(), body->length);
}

std::int64_t NSString::integerValue() const noexcept {
    const StringBody* const body = bodyOf(*this);
    if (body == nullptr) {
        return 0;
    }
    return body->isAscii ? detail::readInt64(body->ascii(), body->length)
                         : detail::readInt64(body->units(), body->length);
}

double NSString::doubleValue() const noexcept {
    const StringBody* const body = bodyOf(*this);
    if (body == nullptr) {
        return 0;
    }
    return body->isAscii ? detail::readDouble(body->ascii(), body->length)
                         : detail::readDouble(body->units(), body->length);
}

// Rounded from double: a decimal number may then differ in the last place from a direct conversion, as on
// the platform.
float NSString::floatValue() const noexcept { return static_cast<float>(doubleValue()); }

NSMutableString::NSMutableString() : builder_(new detail::TextBuilder) {}

NSMutableString::NSMutableString(StringView text) : NSMutableString() { builder_->append(text); }

NSMutableString::NSMutableString(NSMutableString&& other) noexcept : builder_(other.builder_) {
    other.builder_ = nullptr;
}

// The other one is emptied first, so that assigning a builder to itself keeps its text.
NSMutableString& NSMutableString::operator=(NSMutableString&& other) noexcept {
    detail::TextBuilder* const taken = other.builder_;
    other.builder_ = nullptr;
    delete builder_;
    builder_ = taken;
    return *this;
}

NSMutableString::~NSMutableString() { delete builder_; }

detail::TextBuilder& NSMutableString::builder() {
    if (builder_ == nullptr) { // moved from: an empty builder again
        builder_ = new detail::TextBuilder;
    }
    return *builder_;
}

void NSMutableString::appendString(StringView text) { builder().append(text); }

void NSMutableString::appendCharacter(char16_t unit) { builder().appendUnit(unit); }

std::size_t NSMutableString::length() const noexcept { return builder_ != nullptr ? builder_->length() : 0; }

NSString NSMutableString::string() { return builder().string(); }

} // namespace ZQFoundation
