// SPDX-License-Identifier: MIT
#include "log/LogComposition.h"

#include "foundation/format/Format.h"
#include "foundation/objects/DynamicTypeName.h"
#include "foundation/objects/TextBuilder.h"
#include "foundation/text/NumberText.h"
#include "log/ZQLog.h"

namespace ZQFoundation {

namespace detail {

namespace {

void appendAddress(TextBuilder& out, const void* address) {
    char digits[2 * sizeof address];
    std::size_t first = sizeof digits;
    auto rest = reinterpret_cast<std::uintptr_t>(address);
    do {
        digits[--first] = "0123456789abcdef"[rest & 15];
        rest >>= 4;
    } while (rest != 0);
    out.appendLiteral("0x");
    out.appendAscii(digits + first, sizeof digits - first);
}

void appendMethod(TextBuilder& out, StringView method) {
    out.appendAscii(' ');
    out.append(method ? method : StringView("<<no method>>"));
    out.appendAscii(']');
}

/// "-[(Store *)0x7f01 reload:]", or the "?" form when the class does not say its name.
void appendInstance(TextBuilder& out, const NSString& className, const void* address, StringView method) {
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

void appendClass(TextBuilder& out, const NSString& className, StringView method) {
    out.appendLiteral("+[");
    out.append(className);
    appendMethod(out, method);
}

/// Where a value stands: its shared body or host object; for a value that lives in its handle, the handle.
const void* addressOf(const NSObject& value) noexcept {
    if (const NSObjectProtocol* const host = value.hostObject()) {
        return dynamic_cast<const void*>(host);
    }
    return Access::kind(value) >= Kind::string ? static_cast<const void*>(Access::body(value)) : &value;
}

void appendValueCaller(TextBuilder& out, const NSObject& value, StringView method) {
    if (!value) {
        out.appendLiteral("[<<no instance>>");
        appendMethod(out, method);
    } else if (Access::kind(value) == Kind::classObject) {
        appendClass(out, value.className(), method);
    } else {
        appendInstance(out, value.className(), addressOf(value), method);
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
        appendInstance(out, caller.host().className(), dynamic_cast<const void*>(&caller.host()), method);
        break;
    case LogCaller::Form::value:
        appendValueCaller(out, caller.value(), method);
        break;
    }
}

void appendFunctionCaller(TextBuilder& out, const char* functionName) {
    if (functionName == nullptr || *functionName == '\0') {
        out.appendLiteral("<<no function name>>()");
        return;
    }
    if (std::strchr(functionName, ':') != nullptr) {
        out.append(NSString(functionName).lastPathComponent());
        return;
    }
    out.append(functionName);
    out.appendLiteral("()");
}

void appendCaller(TextBuilder& out, const CallerReference& caller) {
    if (caller.kind == CallerReference::Kind::none) {
        return;
    }
    if (caller.kind == CallerReference::Kind::method) {
        appendMethodCaller(out, *caller.self, caller.method);
    } else {
        appendFunctionCaller(out, caller.functionName);
    }
    out.appendAscii(' ');
}

void appendLabel(TextBuilder& out, const TraceLabel& label) {
    if (!label.text) {
        return;
    }
    out.append(label.text);
    if (label.relation) {
        char digits[numberTextCapacity];
        out.append(label.relation);
        out.appendAscii(digits, static_cast<std::size_t>(writeInt64(label.number, digits) - digits));
    }
    out.appendLiteral(": ");
}

} // namespace

NSString classNameOfType(const std::type_info& type) { return dynamicTypeName(type); }

NSString composedText(const CallerReference& caller, StringView text) {
    TextBuilder line;
    appendCaller(line, caller);
    line.append(text);
    return line.string();
}

NSString composedMessage(const CallerReference& caller, const TraceLabel& label, StringView format,
                         ArgumentList arguments) {
    TextBuilder line;
    appendLabel(line, label);
    appendCaller(line, caller);
    appendFormat(line, format, arguments);
    return line.string();
}

} // namespace detail

NSString ZQLog::objectiveCMethodDescriptionStringForCaller_method(const LogCaller& caller,
                                                                  StringView method) {
    detail::TextBuilder description;
    detail::appendMethodCaller(description, caller, method);
    return description.string();
}

NSString ZQLog::cFunctionDescriptionStringForFunctionName(const char* functionName) {
    detail::TextBuilder description;
    detail::appendFunctionCaller(description, functionName);
    return description.string();
}

} // namespace ZQFoundation
