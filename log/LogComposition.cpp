// SPDX-License-Identifier: MIT
// Composes caller and message for all log operations, for lines and for texts.
#include "log/LogComposition.h"

#include <string_view>

#include "foundation/format/Format.h"
#include "foundation/objects/DynamicTypeName.h"
#include "foundation/process/LineWriter.h"
#include "foundation/text/Digits.h"
#include "log/LogGates.h"
#include "log/ZQLog.h"

namespace ZQFoundation::detail {

namespace {

/// As the platform prints a pointer: "0x" and lower-case hexadecimal digits without leading zeros. Written by
/// hand, because a format would have to be parsed for each line with a caller.
void appendAddress(TextBuilder& out, const void* address) {
    char text[2 + 2 * sizeof address];
    char* const end = text + sizeof text;
    char* start = writeHexBefore(reinterpret_cast<std::uintptr_t>(address), end);
    *--start = 'x';
    *--start = '0';
    out.appendAscii(start, static_cast<std::size_t>(end - start));
}

/// The method is what the caller says it is; an empty one appears as nothing, a nil one as missing.
void appendMethod(TextBuilder& out, StringView method) {
    out.appendAscii(' ');
    out.append(method ? method : StringView("<<no method>>"));
    out.appendAscii(']');
}

/// "-[(Store *)0x7f01 reload:]", or the "?" form when the class has no name.
void appendInstance(TextBuilder& out, StringView className, const void* address, StringView method) {
    if (className) {
        out.appendLiteral("-[(");
        out.append(className);
        out.appendLiteral(" *)");
    } else {
        out.appendLiteral("?[");
    }
    appendAddress(out, address);
    appendMethod(out, method);
}

/// "+[Store sharedStore]": a class has no address, because it is not an object here.
void appendClass(TextBuilder& out, StringView className, StringView method) {
    out.appendLiteral("+[");
    out.append(className);
    appendMethod(out, method);
}

/// The address of a value: of its shared body or, if it is stored in its handle, of the handle.
const void* addressOf(const NSObject& value) noexcept {
    return Access::kind(value) >= Kind::string ? static_cast<const void*>(Access::body(value)) : &value;
}

/// A host object reports its class itself, perhaps none. The address is that of the whole object: a class
/// with several bases has its protocol somewhere inside.
void appendHostCaller(TextBuilder& out, const NSObjectProtocol& host, StringView method) {
    appendInstance(out, host.className(), dynamic_cast<const void*>(&host), method);
}

/// A missing caller is handled here too, as a nil value. A host object in a handle is described like one that
/// is passed by its address, so the same object always looks the same in the log.
void appendValueCaller(TextBuilder& out, const NSObject& value, StringView method) {
    const NameSpan name = ownClassName(value);
    const StringView className(name.start, name.length);
    if (!value) {
        out.appendLiteral("[<<no instance>>");
        appendMethod(out, method);
    } else if (value.hostObject() != nullptr) {
        appendHostCaller(out, *value.hostObject(), method);
    } else if (Access::kind(value) == Kind::classObject) {
        appendClass(out, className, method);
    } else {
        appendInstance(out, className, addressOf(value), method);
    }
}

/// Objects are queried only here, when the line is certain to be made; a name of theirs may be costly.
void appendMethodCaller(TextBuilder& out, const LogCaller& caller, StringView method) {
    switch (caller.form()) {
    case LogCaller::Form::absent:
        appendValueCaller(out, nullptr, method);
        break;
    case LogCaller::Form::unknown:
        appendInstance(out, nullptr, caller.address(), method);
        break;
    case LogCaller::Form::instance:
        appendInstance(out, caller.instanceClassName(), caller.wholeInstance(), method);
        break;
    case LogCaller::Form::host:
        appendHostCaller(out, caller.host(), method);
        break;
    case LogCaller::Form::value:
        appendValueCaller(out, caller.value(), method);
        break;
    }
}

/// Null is the same as an empty name.
std::string_view nameOf(const char* function) noexcept { return function != nullptr ? function : ""; }

/// The last component of a name taken as a path: "a/b" gives "b", and so does "a/b/".
StringView lastPart(std::string_view name) noexcept {
    name = name.substr(0, name.find_last_not_of('/') + 1);
    name = name.substr(name.find_last_of('/') + 1);
    return name;
}

/// A name with a colon is complete already, a method's or a place in a source, so it gets no "()". Without
/// its folders it is as long as the others.
void appendFunctionCaller(TextBuilder& out, std::string_view name) {
    if (name.empty()) {
        out.appendLiteral("<<no function name>>()");
    } else if (name.find(':') != name.npos) {
        out.append(lastPart(name));
    } else {
        out.append(name);
        out.appendLiteral("()");
    }
}

void appendCaller(TextBuilder& out, const CallerReference& caller) {
    if (caller.kind == CallerReference::Kind::none) {
        return;
    }
    if (caller.kind == CallerReference::Kind::method) {
        appendMethodCaller(out, *caller.self, caller.method);
    } else {
        appendFunctionCaller(out, caller.functionLength == SIZE_MAX
                                      ? nameOf(caller.functionName)
                                      : std::string_view(caller.functionName, caller.functionLength));
    }
    out.appendAscii(' ');
}

/// Composes straight into the buffer that is written or returned: a line needs no string of its own. The
/// order of the parts is that of every log call, so logs can be searched by the beginnings of lines.
void appendMessage(TextBuilder& out, const LogMessage& message) {
    if (message.condition.kind != TraceCondition::Kind::none) {
        appendTraceLabel(out, message.condition, message.keysThatAreOn);
        out.appendLiteral(": ");
    }
    appendCaller(out, message.caller);
    appendFormat(out, message.format, message.arguments);
}

/// A text to be returned, made in memory that a signal handler may use.
class ReturnedText {
public:
    TextBuilder& text() noexcept { return text_; }
    NSString string() const { return text_.signalSafeString(); }

private:
    char lent_[1024];
    TextBuilder text_{lent_, sizeof lent_};
};

} // namespace

// Called from code that is compiled into the host, which only has the type.
StringView classNameOfType(const std::type_info& type) {
    const NameSpan name = dynamicTypeName(type);
    return {name.start, name.length};
}

NSString returnedText(StringView text) {
    return text ? textOfText(CallerReference::none(), text) : NSString();
}

void writeMessage(const LogMessage& message) {
    LogLine line;
    appendMessage(line.text(), message);
    line.write();
}

NSString textOfMessage(const LogMessage& message) {
    ReturnedText returned;
    appendMessage(returned.text(), message);
    return returned.string();
}

/// The last gate: conditions on several keys. It is checked here, after the cheap ones, because the keys that
/// are on belong to the label, and must be those of the moment when the condition held.
void writeUnlessKeysFail(CallerReference caller, TraceCondition condition, StringView format,
                         ArgumentList arguments) {
    TraceKeySet keysThatAreOn;
    if (severalKeysHold(condition, keysThatAreOn)) {
        writeMessage({caller, condition, keysThatAreOn, format, arguments});
    }
}

NSString textUnlessKeysFail(CallerReference caller, TraceCondition condition, StringView format,
                            ArgumentList arguments) {
    TraceKeySet keysThatAreOn;
    return severalKeysHold(condition, keysThatAreOn)
               ? textOfMessage({caller, condition, keysThatAreOn, format, arguments})
               : NSString();
}

/// The text is appended, not formatted: a "%" in it is a "%".
void writeText(const CallerReference& caller, StringView text) {
    LogLine line;
    appendCaller(line.text(), caller);
    line.text().append(text);
    line.write();
}

NSString textOfText(const CallerReference& caller, StringView text) {
    ReturnedText returned;
    appendCaller(returned.text(), caller);
    returned.text().append(text);
    return returned.string();
}

} // namespace ZQFoundation::detail

namespace ZQFoundation {

// Descriptions for hosts, by the functions that compose lines, so the two cannot differ.
NSString ZQLog::objectiveCMethodDescriptionStringForCaller_method(const LogCaller& caller,
                                                                  StringView method) {
    detail::TextBuilder description;
    detail::appendMethodCaller(description, caller, method);
    return description.string();
}

NSString ZQLog::cFunctionDescriptionStringForFunctionName(const char* functionName) {
    detail::TextBuilder description;
    detail::appendFunctionCaller(description, detail::nameOf(functionName));
    return description.string();
}

} // namespace ZQFoundation
