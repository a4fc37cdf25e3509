// SPDX-License-Identifier: MIT
// Declares the log operations.
#ifndef ZQFOUNDATION_LOG_ZQLOG_H
#define ZQFOUNDATION_LOG_ZQLOG_H

#include "ZQLogFunctionCalls.h"
#include "ZQLogMethodCalls.h"
#include "ZQLogPlainCalls.h"
#include "ZQLogShortCalls.h"

namespace ZQFoundation {

class NSDateFormatter;
struct ZQLogLine; // foundation/process/ZQLogLine.h
using ZQLogLineObserver = void (*)(const ZQLogLine& line, void* context);

/// The library's single channel of log output. Class operations only.
///
///     ZQLog::logSelf_method_logAlways_logForTraceKey_usingFormat(this, "reload:", true, "TraceNetwork",
///                                                                "%d items", count);
///     // TraceNetwork: -[(Store *)0x7f01 reload:] 3 items
///
/// Operations named `log...` write a line to standard error (descriptor 2); those named `logString...` return
/// exactly the same text and write nothing. The flag `logAlways` is a gate: NO silences the call, YES never
/// bypasses a trace condition. The kernel has every line when the call returns. Any thread may log at any
/// time, also before `main`, in static destructors and in a forked child; `errno` is preserved.
class ZQFOUNDATION_EXPORT ZQLog : public ZQLogPlainCalls,
                                  public ZQLogMethodCalls,
                                  public ZQLogFunctionCalls,
                                  public ZQLogShortCalls {
public:
    ZQLog() = delete;

    /// Writes the text as one line, unchanged: a "%" in it is a "%". Nil or a flag of NO writes nothing.
    static void logAlways_log(detail::Flag logAlways, StringView text);

    /// Returns the text passed in, without a copy; nil if the flag is NO. Writes nothing.
    static NSString logAlways_logString(detail::Flag logAlways, const NSString& text);

    /// Returns a new string of the text passed in; nil if the flag is NO and for a null pointer. Writes
    /// nothing.
    template <detail::PlainText T>
    static NSString logAlways_logString(detail::Flag logAlways, const T& text) {
        return logAlways ? detail::returnedText(text) : NSString();
    }

    /// "2024-03-05 14:07:09.042 MyApp[1234]: " with a space at the end, for lines that the host writes by
    /// other means.
    static NSString logPrefix();

    /// The shared formatter of "yyyy'-'MM'-'dd' 'HH':'mm':'ss'.'SSS" in local time. The same object at every
    /// call.
    static const NSDateFormatter& dateFormatterLong();

    /// The shared formatter of "yyyyMMdd'-'HHmm" in local time. The same object at every call.
    static const NSDateFormatter& dateFormatterShort();

    /// "-[(Store *)0x7f01 reload:]" for an instance, "+[Store sharedStore]" for a class, "?[0x7f01 reload:]"
    /// for an object whose class is unknown, "[<<no instance>> <<no method>>]" for nothing at all.
    static NSString objectiveCMethodDescriptionStringForCaller_method(const LogCaller& caller,
                                                                      StringView method);

    /// "parse_header()"; for a name with a colon, what follows its last "/", without "()"; "<<no function
    /// name>>()" for null and for an empty name.
    static NSString cFunctionDescriptionStringForFunctionName(const char* functionName);

    /// @name Sending lines elsewhere
    /// @{

    /// Sets the function that is called, with the context, after each line that is written, to show or keep
    /// lines elsewhere: in a window, a crash reporter, the system's log. Null: none. There is one observer;
    /// it gets every line of the channel, also those of `NSLog` and of a process whose descriptor 2 is
    /// closed.
    ///
    /// It is called on the thread that logs, outside any lock of the library, by several threads at once. So
    /// lines may arrive in a different order than they were written. A line that the observer logs itself is
    /// written but not observed, and so is a line of a signal handler that interrupts it. For any other line
    /// of a signal handler, it is called inside the handler: if handlers log, it must do only what a handler
    /// may do. A forked child has the observer of its parent. `errno` is preserved, and cancellation of the
    /// thread is deferred. It must return: an exception that leaves it ends the process (`std::terminate`).
    ///
    /// **When this returns, no other thread is in a call of an earlier observer**, and what its context
    /// points to may be destroyed. So the caller must hold nothing that the observer waits for. When called
    /// by the observer itself it returns at once, and calls of other threads may continue. Any thread, but
    /// not from signal handlers.
    static void setLineObserver(ZQLogLineObserver observer, void* context) noexcept;

    /// @}

    /// @name Trace keys
    /// The user defaults whose names begin with "Trace". They are read once, at the first query, and again
    /// only when `initializeTraceDefaultsDict` is called: a default that changes meanwhile has no effect.
    /// @{

    /// (Re)reads the trace keys. Takes no lock: inside a `Synchronized` scope no other thread queries them
    /// meanwhile.
    ///
    ///     NSUserDefaults::standardUserDefaults().setObject_forKey(true, "TraceNetwork");
    ///     const ZQLog::Synchronized scope;
    ///     ZQLog::initializeTraceDefaultsDict();  // from here on "TraceNetwork" is on
    static void initializeTraceDefaultsDict();

    /// Whether the key is on, by the rule of `NSDictionary::boolForKey`: "yes" and 2 are on, "true" and 0.5
    /// are off. False for nil, and for a key that does not begin with "Trace".
    static bool traceKeyIsEnabled(StringView key);

    /// The trace keys whose values are true, in the order in which the user defaults list them; empty, never
    /// nil. Here the values' own `boolValue` decides, so a key with the number 0.5 is listed, although it is
    /// not on for `traceKeyIsEnabled`.
    static NSArray activatedTraceDefaultsKeys();

    /// Another name for `activatedTraceDefaultsKeys`.
    static NSArray activatedTraceDefaultKeys();

    /// Whether any trace key's value is true.
    static bool aTraceDefaultValueHasBeenActivated();

    /// @}

    /// @name Log files
    /// Nothing here happens automatically or takes a lock, and two threads must not call it at once. Other
    /// threads may log meanwhile: each line is written whole, to the old or the new target.
    /// @{

    /// The application's folder under ~/Library/Logs, which need not exist; "/tmp" when the home folder has
    /// no `Library`. With `ZQFolderLayout` = "XDG" in the Info dictionary `pathOfLibraryLogSubfolder`, and
    /// "/tmp" when that cannot be created.
    static NSString standardLogFolder();

    /// "Viewer.20240305-1407.1234.log": process name, local time, process identifier. A number is added only
    /// for an **empty** folder string, and only if the file of that name vanishes meanwhile.
    static NSString standardNewLogFileNameForLoggingToFolder(const NSString& folder);

    /// `standardLogFolder` and `standardNewLogFileNameForLoggingToFolder` joined: the path for the log of
    /// this run. Creates no file.
    ///
    ///     if (!ZQLog::setLogFilePath_createFolder(ZQLog::standardLogFilePath(), true)) ...
    static NSString standardLogFilePath();

    /// Redirects standard error, and with it every line, to the end of the file at the path, which is created
    /// if missing, with its folders if `createFolder`. A relative path is relative to `standardLogFolder`;
    /// "~" and links are resolved, and nothing is created below a "~" that is nobody's home. False if that
    /// fails, with a line that says why (without one for a nil or empty path and for a missing folder that is
    /// not to be created).
    ///
    /// In a sticky folder that others may write to (/tmp) a file or link of another user is not used, and a
    /// new file has the mode 0600.
    [[nodiscard]] static bool setLogFilePath_createFolder(const NSString& path, detail::Flag createFolder);

    /// As `setLogFilePath_createFolder`, without a check, a message or a result. The original descriptor 2 is
    /// saved. If the file cannot be opened, lines are lost from then on: descriptor 2 is redirected to the
    /// null device.
    static void setOptionalLogFilePath(const NSString& path);

    /// Restores the original standard error. Does nothing before the first redirection. **Works once:** after
    /// that the saved descriptor is a closed number, and a later redirection saves none.
    static void clearLogFilePath();

    /// @}

    /// @name Removal of log files
    /// A class that the host has registered as "NSWorkspace" (ClassesByName.h) is notified when the folder
    /// changes. In a sticky folder that others may write to (/tmp) only files of the effective user count.
    /// @{

    /// Removes the folder's log files of this process name that were last changed before the date, writing a
    /// line for each. Their names have only digits and "." between the process name and ".log", so **standard
    /// names, which contain a "-", stay**.
    static void removeLogfilesOlderThan_fromFolder(const NSDate& date, const NSString& folder);

    /// Removes all but the newest `count` of the folder's log files of this process name, writing a line for
    /// each. Here names may contain "-". Of several files with the same date, one is counted, and the others
    /// stay.
    static void removeOldLogfilesFromFolder_keepingTheNewest(const NSString& folder, std::size_t count);

    /// @}

    /// Holds the monitor of the class for a scope: the recursive lock under which the trace keys are queried.
    /// Re-read them inside such a scope while other threads log.
    class ZQFOUNDATION_EXPORT Synchronized {
    public:
        [[nodiscard]] Synchronized() noexcept;
        Synchronized(const Synchronized&) = delete;
        Synchronized& operator=(const Synchronized&) = delete;
        ~Synchronized();
    };
};

} // namespace ZQFoundation

#endif
