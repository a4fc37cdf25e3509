// SPDX-License-Identifier: MIT
// Compiled only: the library's names in the open, then the headers of GLib and Qt below them, then all in
// use.
#include <ZQFoundation/ZQFoundation.h>

using namespace ZQFoundation;

#if defined(ZQ_TEST_HAS_GLIB)
#include <glib.h>
#endif

#if defined(ZQ_TEST_HAS_QT)
#include <QtCore/QtCore>
#endif

// Once more below them, which must change nothing.
#include <ZQFoundation/ZQFoundation.h>

namespace besideOthers {

NSString greeting(int count) {
    ZQLog::logForTraceKey_usingFormat("TraceGreeting", "%d of %@", count, NSArray{"a", "b"});
#if defined(ZQ_TEST_HAS_GLIB)
    gchar* const name = g_strdup("glib");
    const NSString fromGLib(name);
    g_free(name);
    ZQLog::log(fromGLib);
#endif
#if defined(ZQ_TEST_HAS_QT)
    const QString text = QStringLiteral("qt");
    ZQLog::log(text.toStdString());
#endif
    return NSString::stringWithFormat("%d", count);
}

} // namespace besideOthers
