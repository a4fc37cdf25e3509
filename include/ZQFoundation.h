// SPDX-License-Identifier: MIT
// Includes the whole public interface of the library.
#ifndef ZQFOUNDATION_ZQFOUNDATION_H
#define ZQFOUNDATION_ZQFOUNDATION_H

/// @file
/// The one header that a host application includes:
///
///     #include <ZQFoundation/ZQFoundation.h>
///     using namespace ZQFoundation;
///
///     class Store {
///     public:
///         void reload() {
///             const NSDictionary state{{"items", 3}, {"names", NSArray{"a", "b"}}};
///             const NSString text = state.condensedDescription();
///             // "%@" takes any value, any text and any object that implements NSObjectProtocol.
///             ZQLog::logSelf_method_logAlways_logForTraceKey_usingFormat(
///                 this, "reload", true, "TraceNetwork", "state %@", text);
///         }
///     };
///
///     int main() {
///         Store().reload();
///     }
///
/// Started with `-TraceNetwork YES` it writes to standard error, after time and process,
///
///     TraceNetwork: -[(Store *)0x7ffd01 reload] state { items = 3; names = ( a, b ); }
///
/// and nothing when the key is not set. Everything is in `namespace ZQFoundation`; no macro is defined
/// that does not begin with ZQ. An operation is named as on the platform, each inner colon an underscore, the
/// last one dropped. Sources that only log include <ZQFoundation/log/ZQLog.h>, which compiles in half the
/// time: `std::string` is only declared there.

// First, because it checks what the compiler must support.
#include "foundation/text/Export.h"

// Values.
#include "foundation/objects/Class.h"
#include "foundation/objects/ClassesByName.h"
#include "foundation/objects/NSArray.h"
#include "foundation/objects/NSData.h"
#include "foundation/objects/NSDate.h"
#include "foundation/objects/NSDictionary.h"
#include "foundation/objects/NSException.h"
#include "foundation/objects/NSNumber.h"
#include "foundation/objects/NSObject.h"
#include "foundation/objects/NSObjectProtocol.h"
#include "foundation/objects/NSSet.h"
#include "foundation/objects/NSString.h"
#include "foundation/objects/NSURL.h"
#include "foundation/text/NSRange.h"
#include "foundation/text/ObjectConversion.h"
#include "foundation/text/StandardTexts.h"
#include "foundation/text/StringView.h"

// Formats.
#include "foundation/text/ArgumentList.h"
#include "foundation/text/FormatString.h"

// Character sets and scanners.
#include "foundation/format/NSScanner.h"
#include "foundation/objects/NSCharacterSet.h"

// Locales.
#include "foundation/format/NSLocale.h"

// Files.
#include "foundation/files/NSFileHandle.h"
#include "foundation/files/NSFileManager.h"

// Property lists.
#include "foundation/plist/NSPropertyListSerialization.h"

// Dates as fields and as text.
#include "foundation/time/NSCalendar.h"
#include "foundation/time/NSDateFormatter.h"
#include "foundation/time/NSTimeZone.h"

// The process, its bundle and its settings.
#include "foundation/process/NSBundle.h"
#include "foundation/process/NSLog.h"
#include "foundation/process/NSProcessInfo.h"
#include "foundation/process/NSUserDefaults.h"
#include "foundation/process/ZQLogLine.h"

// Localized texts.
#include "extensions/LocalizedStrings.h"

// Encodings.
#include "encoding/Base64.h"

// Versions.
#include "version/ZQVersionComparator.h"

// Logging.
#include "log/NSAssertionHandler.h"
#include "log/NSDebugLog.h"
#include "log/ZQLog.h"
#include "log/ZQTraceKey.h"

// The application, the system and the report of both.
#include "info/ZQLogInfo.h"
#include "info/ZQMacOSRuntimeEnvironment.h"

// The network's routes.
#include "info/NetworkInfo.h"
#include "info/RoutingSocket.h"

// Migration of files and folders.
#include "migration/ZQFileMigrator.h"

#endif
