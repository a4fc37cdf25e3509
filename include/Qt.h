// SPDX-License-Identifier: MIT
// Converts between the types of Qt and values.
#ifndef ZQFOUNDATION_QT_H
#define ZQFOUNDATION_QT_H

/// For hosts that use Qt 6: converts its texts, dates, URLs, lists and variants to values and back, makes
/// them arguments of `%@`, and writes its messages to the log. Needs only QtCore.
///
///     #include <ZQFoundation/Qt.h>
///
///     ZQFoundation::ZQLog::logWithFormat("opened %@ of %@", url, QStringList{"a", "b"});
///     ZQFoundation::NSString name = label->text();      // to values: implicitly
///     label->setText(name.as<QString>());               // and back: by `as`
///     ZQFoundation::logMessagesOfQt();
///
/// Names are written in full: on some systems Qt's headers declare global classes of the same names.
#include <QtCore/QByteArray>
#include <QtCore/QDateTime>
#include <QtCore/QHash>
#include <QtCore/QList>
#include <QtCore/QLoggingCategory>
#include <QtCore/QMap>
#include <QtCore/QString>
#include <QtCore/QStringList>
#include <QtCore/QUrl>
#include <QtCore/QVariant>

#include "ZQFoundation.h"

namespace ZQFoundation {

/// A UTF-16 text in Qt's own storage, which is not copied for an argument. A null QString is the nil text,
/// and nil converts to a null QString.
template <>
struct ObjectConversion<QString> {
    static StringView text(const QString& string) {
        return string.isNull() ? StringView()
                               : StringView(reinterpret_cast<const char16_t*>(string.utf16()),
                                            static_cast<std::size_t>(string.size()));
    }
    static QString fromObject(const NSObject& object) {
        const NSString string(object);
        const std::u16string units = string.utf16();
        return string ? QString(reinterpret_cast<const QChar*>(units.data()),
                                static_cast<qsizetype>(units.size()))
                      : QString();
    }
};

template <>
struct ObjectConversion<QStringView> {
    static StringView text(const QStringView& string) {
        return string.isNull() ? StringView()
                               : StringView(string.utf16(), static_cast<std::size_t>(string.size()));
    }
};

/// Not a view of its bytes: those are Latin-1, not UTF-8.
template <>
struct ObjectConversion<QLatin1String> {
    static NSString object(const QLatin1String& string) { return QString(string); }
};

/// Bytes. A QByteArray is also a text argument, of UTF-8 as Qt itself takes it.
inline NSData dataOf(const QByteArray& bytes) {
    return NSData::dataWithBytes_length(bytes.constData(), static_cast<std::size_t>(bytes.size()));
}
template <>
struct ObjectConversion<QByteArray> {
    static StringView text(const QByteArray& bytes) {
        return StringView(bytes.constData(), static_cast<std::size_t>(bytes.size()));
    }
    static QByteArray fromObject(const NSObject& object) {
        const NSData data(object);
        return data ? QByteArray(reinterpret_cast<const char*>(data.bytes()),
                                 static_cast<qsizetype>(data.length()))
                    : QByteArray::fromStdString(object.as<NSString>().utf8());
    }
};

/// To the millisecond, as in Qt; an invalid one is nil. Converted back, it is in UTC, and invalid for a date
/// that Qt has no room for.
template <>
struct ObjectConversion<QDateTime> {
    static NSDate object(const QDateTime& time) {
        return time.isValid() ? NSDate::dateWithTimeIntervalSince1970(
                                    static_cast<double>(time.toMSecsSinceEpoch()) / 1000)
                              : NSDate();
    }
    static QDateTime fromObject(const NSObject& object) {
        const NSDate date(object);
        const double milliseconds = date.timeIntervalSince1970() * 1000;
        return date && qAbs(milliseconds) < 0x1p63
                   ? QDateTime::fromMSecsSinceEpoch(qRound64(milliseconds), Qt::UTC)
                   : QDateTime();
    }
};

/// Encoded; nil for an empty or invalid one, and for anything but a URI reference. Brackets outside the host,
/// which Qt leaves as they are, are encoded too.
template <>
struct ObjectConversion<QUrl> {
    static NSURL object(const QUrl& url) {
        if (!url.isValid()) {
            return NSURL();
        }
        const QByteArray text = url.toEncoded();
        const qsizetype authority = url.authority(QUrl::FullyEncoded).size();
        const qsizetype end = authority == 0 ? 0 : text.indexOf("//") + 2 + authority;
        const QByteArray rest = text.mid(end).replace('[', "%5B").replace(']', "%5D");
        return NSURL::URLWithString(text.left(end).append(rest));
    }
    static QUrl fromObject(const NSObject& object) {
        return QUrl::fromEncoded(QByteArray::fromStdString(object.as<NSURL>().absoluteString().utf8()));
    }
};

/// Element by element; nil elements become the null object. Back: empty for anything but an array.
template <class T>
struct ObjectConversion<QList<T>> {
    static NSArray object(const QList<T>& list) {
        NSMutableArray elements(static_cast<std::size_t>(list.size()));
        for (const T& each : list) {
            const NSObject element(each);
            elements.addObject(element ? element : NSNull::null());
        }
        return elements.array();
    }
    static QList<T> fromObject(const NSObject& object) {
        QList<T> list;
        for (const NSObject& element : object.as<NSArray>()) {
            list.append(detail::elementAs<T>(element));
        }
        return list;
    }
};

} // namespace ZQFoundation

namespace ZQFoundation::detail {

template <class Map>
struct QtMapConversion {
    static NSDictionary object(const Map& map) {
        NSMutableDictionary entries;
        for (auto each = map.cbegin(); each != map.cend(); ++each) {
            const NSObject value(each.value());
            entries.setObject_forKey(value ? value : NSNull::null(),
                                     each.key().isNull() ? NSString("") : NSString(each.key()));
        }
        return entries.dictionary();
    }
    static Map fromObject(const NSObject& object) {
        Map map;
        for (const NSDictionaryEntry& entry : object.as<NSDictionary>()) {
            map.insert(entry.key.as<QString>(), detail::elementAs<typename Map::mapped_type>(entry.value));
        }
        return map;
    }
};

} // namespace ZQFoundation::detail

namespace ZQFoundation {

/// As lists; keys that are not strings become null ones on the way back.
template <class T>
struct ObjectConversion<QMap<QString, T>> : detail::QtMapConversion<QMap<QString, T>> {};
template <class T>
struct ObjectConversion<QHash<QString, T>> : detail::QtMapConversion<QHash<QString, T>> {};

/// The contents of a variant: texts, numbers, dates, URLs, bytes, lists and maps; any other type by the text
/// that Qt has for it; nil for an invalid variant and for a type without such a text. Back: the corresponding
/// type. Each level of nesting is a few calls, as it is when Qt destroys such a variant: a value with tens of
/// thousands of levels overflows the stack.
template <>
struct ObjectConversion<QVariant> {
    static NSObject object(const QVariant& variant) {
        switch (variant.typeId()) {
        case QMetaType::Bool:
            return variant.toBool();
        case QMetaType::Int:
        case QMetaType::LongLong:
        case QMetaType::Long:
        case QMetaType::Short:
        case QMetaType::SChar:
            return static_cast<std::int64_t>(variant.toLongLong());
        case QMetaType::UInt:
        case QMetaType::ULongLong:
        case QMetaType::ULong:
        case QMetaType::UShort:
        case QMetaType::UChar:
            return static_cast<std::uint64_t>(variant.toULongLong());
        case QMetaType::Float:
            return variant.toFloat();
        case QMetaType::Double:
            return variant.toDouble();
        case QMetaType::QByteArray:
            return dataOf(variant.toByteArray());
        case QMetaType::QDateTime:
            return variant.toDateTime();
        case QMetaType::QUrl:
            return variant.toUrl();
        case QMetaType::QStringList:
        case QMetaType::QVariantList:
            return variant.toList();
        case QMetaType::QVariantMap:
        case QMetaType::QVariantHash:
            return variant.toMap();
        default: // also lists and maps of one type, which Qt converts
            return variant.canConvert<QString>()        ? NSObject(variant.toString())
                   : variant.canConvert<QVariantMap>()  ? NSObject(variant.toMap())
                   : variant.canConvert<QVariantList>() ? NSObject(variant.toList())
                                                        : NSObject();
        }
    }
    static QVariant fromObject(const NSObject& object) {
        if (const NSNumber number(object); number) {
            return number.isBoolean() ? QVariant(number.boolValue())
                   : number.isReal()  ? QVariant(number.doubleValue())
                   : number.compare(NSNumber(INT64_MAX)) == NSOrderedDescending
                       ? QVariant(static_cast<qulonglong>(number.unsignedLongLongValue()))
                       : QVariant(static_cast<qlonglong>(number.longLongValue()));
        }
        return object.as<NSString>()       ? QVariant(object.as<QString>())
               : object.as<NSDate>()       ? QVariant(object.as<QDateTime>())
               : object.as<NSURL>()        ? QVariant(object.as<QUrl>())
               : object.as<NSData>()       ? QVariant(object.as<QByteArray>())
               : object.as<NSArray>()      ? QVariant(object.as<QVariantList>())
               : object.as<NSDictionary>() ? QVariant(object.as<QVariantMap>())
                                           : QVariant();
    }
};

/// Writes Qt's messages (`qDebug` to `qFatal`, also those of categories) as lines of the log: "qt.network:
/// warning: ...", after the log's own prefix. Qt itself ends the process after a fatal message.
inline void logMessagesOfQt() {
    qInstallMessageHandler([](QtMsgType type, const QMessageLogContext& context, const QString& message) {
        const char* const kind = type == QtDebugMsg      ? "debug"
                                 : type == QtInfoMsg     ? "info"
                                 : type == QtWarningMsg  ? "warning"
                                 : type == QtCriticalMsg ? "critical"
                                                         : "fatal";
        const bool hasCategory = context.category != nullptr && qstrcmp(context.category, "default") != 0;
        ZQLog::logWithFormat("%s: %s: %@", hasCategory ? context.category : "qt", kind, message);
    });
}

} // namespace ZQFoundation

#endif
