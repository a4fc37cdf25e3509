// SPDX-License-Identifier: MIT
// Composes caller and message for all log operations, for lines and for texts.
#include "log/LogComposition.h"

#include <string_view>

#include "foundation/format/Format.h"
#include "foundation/objects/DynamicTypeName.h"
#include "foundation/process/LineWriter.h"
#include "log/LogGates.h"
#include "log/ZQLog.h"

namespace ZQFoundation::detail {

namespace {

void appendAddress(TextBuilder& out, const void* address) {
    char text[2 + 2 * sizeof address];
    std::size_t first = sizeof text;
    auto rest = reinterpret_cast<std::uintptr_t>(address);
    do {
        text[--first] = "0123456789abcdef"[rest & 15];
        rest >>= 4;
    } while (rest != 0);
    text[--first] = 'x';
    text[--first] = '0';
    out.appendAscii(text + first, sizeof text - first);
}

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

void appendClass(TextBuilder& out, StringView className, StringView method) {
    out.appendLiteral("+[");
    out.append(className);
    appendMethod(out, method);
}

/// The address of a value: of its shared body or, if it is stored in its handle, of the handle.
const void* addressOf(const NSObject& value) noexcept {
    return Access::kind(value) >= Kind::string ? static_cast<const void*>(Access::body(value)) : &value;
}

/// A host object reports its class itself, perhaps none.
void appendHostCaller(TextBuilder& out, const NSObjectProtocol& host, StringView method) {
    appendInstance(out, host.className(), dynamic_cast<const void*>(&host), method);
}

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

std::string_view nameOf(const char* function) noexcept { return function != nullptr ? function : ""; }

/// The last component of a name taken as a path.
StringView lastPart(std::string_view name) noexcept {
    name = name.substr(0, name.find_last_not_of('/') + 1);
    name = name.substr(name.find_last_of('/') + 1);
    return name;
}

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
