// SPDX-License-Identifier: MIT
// Converts between the types of GLib and values.
#ifndef ZQFOUNDATION_GLIB_H
#define ZQFOUNDATION_GLIB_H

/// For hosts that use GLib or GTK: converts their texts, dates, errors and variants to values and back, makes
/// them arguments of `%@`, and writes their messages to the log. Needs only GLib; if the headers of glibmm
/// are found, its types are converted too.
///
///     #include <ZQFoundation/Glib.h>
///
///     ZQFoundation::ZQLog::logWithFormat("opened %@", entry.get_text());   // a Glib::ustring
///     label.set_text(name.as<Glib::ustring>());
///     ZQFoundation::logMessagesOfGLib();
#include <cmath>
#include <compare>
#include <string>
#include <string_view>

#include <glib.h>
#if __has_include(<glibmm/ustring.h>)
#include <glibmm/datetime.h>
#include <glibmm/error.h>
#include <glibmm/ustring.h>
#include <glibmm/variant.h>
#define ZQFOUNDATION_GLIB_HAS_GLIBMM
#endif

#include "ZQFoundation.h"

namespace ZQFoundation {

/// The value of a variant: texts, numbers, arrays and tuples, dictionaries, and the contents of a variant or
/// a maybe; bytes ("ay") are data. Nil for null and for an empty maybe; inside collections that is the null
/// object.
inline NSObject objectOf(GVariant* variant);

} // namespace ZQFoundation

namespace ZQFoundation::detail {

inline NSObject childOf(GVariant* container, gsize index) {
    GVariant* const child = g_variant_get_child_value(container, index);
    const NSObject value = objectOf(child);
    g_variant_unref(child);
    return value;
}

inline NSObject elementOf(GVariant* container, gsize index) {
    const NSObject value = childOf(container, index);
    return value ? value : NSNull::null();
}

inline NSObject entriesOf(GVariant* container) {
    NSMutableDictionary entries;
    for (gsize i = 0; i < g_variant_n_children(container); ++i) {
        GVariant* const entry = g_variant_get_child_value(container, i);
        entries.setObject_forKey(elementOf(entry, 1), elementOf(entry, 0));
        g_variant_unref(entry);
    }
    return entries.dictionary();
}

inline NSObject membersOf(GVariant* container) {
    const GVariantType* const type = g_variant_get_type(container);
    if (g_variant_type_is_subtype_of(type, G_VARIANT_TYPE_BYTESTRING)) {
        gsize count = 0;
        const void* const bytes = g_variant_get_fixed_array(container, &count, 1);
        return NSData::dataWithBytes_length(bytes, count);
    }
    if (g_variant_type_is_subtype_of(type, G_VARIANT_TYPE_DICTIONARY)) {
        return entriesOf(container);
    }
    const gsize count = g_variant_n_children(container);
    if (g_variant_classify(container) == G_VARIANT_CLASS_MAYBE ||
        g_variant_classify(container) == G_VARIANT_CLASS_VARIANT) {
        return count == 0 ? NSObject() : childOf(container, 0);
    }
    NSMutableArray elements(count);
    for (gsize i = 0; i < count; ++i) {
        elements.addObject(elementOf(container, i));
    }
    return elements.array();
}

} // namespace ZQFoundation::detail

namespace ZQFoundation {

inline NSObject objectOf(GVariant* variant) {
    if (variant == nullptr) {
        return nullptr;
    }
    switch (g_variant_classify(variant)) {
    case G_VARIANT_CLASS_BOOLEAN:
        return g_variant_get_boolean(variant) != 0;
    case G_VARIANT_CLASS_BYTE:
        return g_variant_get_byte(variant);
    case G_VARIANT_CLASS_INT16:
        return g_variant_get_int16(variant);
    case G_VARIANT_CLASS_UINT16:
        return g_variant_get_uint16(variant);
    case G_VARIANT_CLASS_INT32:
        return g_variant_get_int32(variant);
    case G_VARIANT_CLASS_UINT32:
        return g_variant_get_uint32(variant);
    case G_VARIANT_CLASS_INT64:
        return g_variant_get_int64(variant);
    case G_VARIANT_CLASS_UINT64:
        return g_variant_get_uint64(variant);
    case G_VARIANT_CLASS_HANDLE:
        return g_variant_get_handle(variant);
    case G_VARIANT_CLASS_DOUBLE:
        return g_variant_get_double(variant);
    case G_VARIANT_CLASS_STRING:
    case G_VARIANT_CLASS_OBJECT_PATH:
    case G_VARIANT_CLASS_SIGNATURE:
        return g_variant_get_string(variant, nullptr);
    default:
        return detail::membersOf(variant);
    }
}

/// A variant of the value, with a floating reference like any new one: "s", "b", "x", "t", "d", "ay", "av",
/// "a{sv}"; dates are "x", microseconds since 1970. Null for nil, for values that are none of these, and for
/// a date beyond 64 bits; an array or a dictionary is made without them. The null object is an empty maybe.
/// U+0000 ends a text. Each level of nesting is a call, as it is when GLib frees such a variant: a value with
/// tens of thousands of levels overflows the stack.
inline GVariant* variantOf(const NSObject& object) {
    if (const NSNumber number(object); number) {
        return number.isBoolean() ? g_variant_new_boolean(number.boolValue())
               : number.isReal()  ? g_variant_new_double(number.doubleValue())
               : number.compare(NSNumber(INT64_MAX)) == NSOrderedDescending
                   ? g_variant_new_uint64(number.unsignedLongLongValue())
                   : g_variant_new_int64(number.longLongValue());
    }
    if (const NSArray array(object); array) {
        GVariantBuilder builder;
        g_variant_builder_init(&builder, G_VARIANT_TYPE("av"));
        for (const NSObject& each : array) {
            if (GVariant* const element = variantOf(each)) {
                g_variant_builder_add(&builder, "v", element);
            }
        }
        return g_variant_builder_end(&builder);
    }
    if (const NSDictionary dictionary(object); dictionary) {
        GVariantBuilder builder;
        g_variant_builder_init(&builder, G_VARIANT_TYPE("a{sv}"));
        for (const NSDictionaryEntry& each : dictionary) {
            if (GVariant* const value = variantOf(each.value)) {
                g_variant_builder_add(&builder, "{sv}", each.key.description().utf8().c_str(), value);
            }
        }
        return g_variant_builder_end(&builder);
    }
    if (const NSData data(object); data) {
        return g_variant_new_fixed_array(G_VARIANT_TYPE_BYTE, data.bytes(), data.length(), 1);
    }
    if (const NSDate date(object); date) {
        const double microseconds = std::round(date.timeIntervalSince1970() * 1e6);
        return std::fabs(microseconds) < 0x1p63 ? g_variant_new_int64(static_cast<gint64>(microseconds))
                                                : nullptr;
    }
    const NSString text(object);
    return text                  ? g_variant_new_string(text.utf8().c_str())
           : object.as<NSNull>() ? g_variant_new_maybe(G_VARIANT_TYPE_STRING, nullptr)
                                 : nullptr;
}

/// "%@" of an error is its message with domain and code; of a null pointer, nil.
inline NSString textOf(const GError* error) {
    return error == nullptr ? NSString()
                            : NSString::stringWithFormat("%s (%s %d)", error->message,
                                                         g_quark_to_string(error->domain), error->code);
}

/// To the microsecond, as in GLib; null converts to nil and nil to null. The caller releases the result of
/// `dateTimeOf`, which is in UTC, and null for a date outside the years 1 to 9999.
inline NSDate dateOf(GDateTime* time) {
    return time == nullptr ? NSDate()
                           : NSDate::dateWithTimeIntervalSince1970(
                                 static_cast<double>(g_date_time_to_unix(time)) +
                                 static_cast<double>(g_date_time_get_microsecond(time)) / 1e6);
}
[[nodiscard]] inline GDateTime* dateTimeOf(const NSDate& date) {
    const double seconds = date.timeIntervalSince1970();
    if (!date || !(seconds >= -62135596800.0 && seconds < 253402300800.0)) {
        return nullptr;
    }
    auto whole = static_cast<gint64>(seconds);
    whole -= static_cast<double>(whole) > seconds ? 1 : 0;
    GDateTime* const start = g_date_time_new_from_unix_utc(whole);
    GDateTime* const time =
        g_date_time_add(start, static_cast<GTimeSpan>((seconds - static_cast<double>(whole)) * 1e6 + 0.5));
    g_date_time_unref(start);
    return time;
}

#ifdef ZQFOUNDATION_GLIB_HAS_GLIBMM
/// Its bytes, all of them: its `size` counts characters.
template <>
struct ObjectConversion<Glib::ustring> {
    static StringView text(const Glib::ustring& string) { return StringView(string.data(), string.bytes()); }
    static Glib::ustring fromObject(const NSObject& object) { return object.as<NSString>().utf8(); }
};

/// As between two strings. No templates: those of glibmm would take the comparison and fail.
inline bool operator==(const Glib::ustring& left, const NSString& right) { return NSString(left) == right; }
inline bool operator==(const Glib::ustring& left, const NSObject& right) { return NSObject(left) == right; }
inline std::strong_ordering operator<=>(const Glib::ustring& left, const NSString& right) {
    return NSString(left) <=> right;
}

template <>
struct ObjectConversion<Glib::DateTime> {
    static NSDate object(const Glib::DateTime& time) { return dateOf(const_cast<GDateTime*>(time.gobj())); }
    static Glib::DateTime fromObject(const NSObject& object) {
        GDateTime* const time = dateTimeOf(object.as<NSDate>());
        return time == nullptr ? Glib::DateTime() : Glib::DateTime(time);
    }
};

/// Its text is that of `textOf`; of any class of errors, such as `Gio::Error`.
template <class Error>
    requires std::is_base_of_v<Glib::Error, Error>
struct ObjectConversion<Error> {
    static NSString object(const Error& error) { return textOf(error.gobj()); }
};

/// Also `Glib::Variant<T>`; back, a `Glib::VariantBase`, which `Glib::VariantBase::cast_dynamic` narrows.
template <class Variant>
    requires std::is_base_of_v<Glib::VariantBase, Variant>
struct ObjectConversion<Variant> {
    static NSObject object(const Variant& variant) { return objectOf(const_cast<GVariant*>(variant.gobj())); }
    static Glib::VariantBase fromObject(const NSObject& object) {
        GVariant* const variant = variantOf(object);
        return variant == nullptr ? Glib::VariantBase() : Glib::VariantBase(variant);
    }
};
#endif

/// Writes everything that GLib, GTK and the host log with `g_message`, `g_warning` and the like as lines of
/// the log: "Gtk: warning: ...", after the log's own prefix. Debug and info messages are written for the
/// domains that G_MESSAGES_DEBUG names, as GLib itself does. A message that G_DEBUG or, before this call,
/// `g_log_set_always_fatal` made fatal ends the process. Call it once: GLib accepts one writer per process.
inline void logMessagesOfGLib() {
    static GLogLevelFlags fatal;
    fatal = g_log_set_always_fatal(static_cast<GLogLevelFlags>(G_LOG_FATAL_MASK)); // the only way to read it
    g_log_set_always_fatal(fatal);
    g_log_set_writer_func(
        [](GLogLevelFlags level, const GLogField* fields, gsize count, gpointer) -> GLogWriterOutput {
            const char* domain = nullptr;
            std::string countedDomain; // a field with a length need not end with a zero
            StringView message;
            bool isFatal = (level & fatal) != 0;
            for (const GLogField* field = fields; field != fields + count; ++field) {
                const char* const bytes = static_cast<const char*>(field->value);
                if (std::string_view(field->key) == "GLIB_DOMAIN") {
                    domain = bytes;
                    if (bytes != nullptr && field->length >= 0) {
                        countedDomain.assign(bytes, static_cast<std::size_t>(field->length));
                        domain = countedDomain.c_str();
                    }
                } else if (std::string_view(field->key) == "GLIB_OLD_LOG_API") {
                    isFatal = false; // its functions end the process themselves
                } else if (std::string_view(field->key) == "MESSAGE") {
                    message = field->length < 0 ? StringView(bytes)
                                                : StringView(bytes, static_cast<std::size_t>(field->length));
                }
            }
            if (g_log_writer_default_would_drop(level, domain) != 0) {
                return G_LOG_WRITER_HANDLED;
            }
            const char* const kind = (level & G_LOG_LEVEL_ERROR) != 0      ? "error"
                                     : (level & G_LOG_LEVEL_CRITICAL) != 0 ? "critical"
                                     : (level & G_LOG_LEVEL_WARNING) != 0  ? "warning"
                                     : (level & G_LOG_LEVEL_MESSAGE) != 0  ? "message"
                                     : (level & G_LOG_LEVEL_INFO) != 0     ? "info"
                                                                           : "debug";
            ZQLog::logWithFormat("%s: %s: %@", domain == nullptr ? "glib" : domain, kind, message);
            if (isFatal) {
                G_BREAKPOINT(); // as GLib's own writer does
            }
            return G_LOG_WRITER_HANDLED;
        },
        nullptr, nullptr);
}

} // namespace ZQFoundation

#endif
