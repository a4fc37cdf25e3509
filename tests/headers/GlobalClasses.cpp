// SPDX-License-Identifier: MIT
// Compiled only: a source in which a toolkit's headers have declared the platform's classes for everybody, as
// they do on some systems. Names in full keep both apart.
typedef struct objc_object* id;
typedef struct objc_class* Class;
typedef bool BOOL;
typedef struct objc_object NSArray;
typedef struct objc_object NSData;
typedef struct objc_object NSDate;
typedef struct objc_object NSDictionary;
typedef struct objc_object NSException;
typedef struct objc_object NSNumber;
typedef struct objc_object NSObject;
typedef struct objc_object NSSet;
typedef struct objc_object NSString;
typedef struct objc_object NSTimeZone;
typedef struct objc_object NSURL;

#include <ZQFoundation/Std.h>
#include <ZQFoundation/ZQFoundation.h>

#if defined(ZQ_TEST_HAS_GLIB)
#include <ZQFoundation/Glib.h>
#endif

#if defined(ZQ_TEST_HAS_QT)
#include <ZQFoundation/Qt.h>
#endif

namespace zq = ZQFoundation;

ZQFoundation::NSString inFull(const ::NSString* other, const ZQFoundation::NSArray& names);

zq::NSString inFull(const ::NSString* other, const zq::NSArray& names) {
    zq::ZQLog::logWithFormat("%p %@ %@", other, names, zq::NSDate::date());
    return zq::classOf<zq::NSNull>().className() + names[0].as<zq::NSString>();
}
