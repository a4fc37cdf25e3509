// SPDX-License-Identifier: MIT
// The application's texts in the user's language, for widgets.
#ifndef ZQFOUNDATION_WINDOWS_TEXTS_H
#define ZQFOUNDATION_WINDOWS_TEXTS_H

#include <QtCore/QString>

#include <ZQFoundation/Qt.h>

namespace notes {

namespace zq = ZQFoundation; // in full: on some systems Qt's headers declare classes of the same names

/// The text of the key in the string table; the key itself when there is none.
inline QString localized(const char* key) { return zq::NSString::initWithLocalizedString(key).as<QString>(); }

/// The same with arguments inserted.
template <class... Arguments>
QString localized(const char* key, const Arguments&... arguments) {
    return zq::NSString::initWithLocalizedFormat(key, arguments...).template as<QString>();
}

} // namespace notes

#endif
