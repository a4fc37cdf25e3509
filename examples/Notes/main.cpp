// SPDX-License-Identifier: MIT
// Notes, a host application with windows. Read this file first, then windows/MainWindow.cpp.
//
// Data and logic are in model/, which uses no widgets; the user interface is in windows/. The log goes to a
// file for each run in ~/.local/state/Example/Notes, and to the log window; model/TraceKeys.h lists the keys.
// Try
//
//     Notes -TraceNotes YES -LogFile NO
//     Notes -AppleLanguages "(de)" -style fusion cafe
//
// The words that remain on the command line, without Qt's options and the user defaults, are searched for.

#include <QtWidgets/QApplication>

#include "model/LogFile.h"
#include "model/LogLines.h"
#include "model/NoteStore.h"
#include "model/Settings.h"
#include "windows/MainWindow.h"

namespace zq = ZQFoundation;

int main(int argc, char** argv) {
    // Options with one hyphen that belong to Qt; any other one that a value follows is a user default.
    const zq::NSArray optionsOfQt{"-display",       "-dograb",       "-geometry",      "-icon",
                                  "-name",          "-nograb",       "-platform",      "-platformpluginpath",
                                  "-platformtheme", "-plugin",       "-qmljsdebugger", "-qwindowgeometry",
                                  "-qwindowicon",   "-qwindowtitle", "-reverse",       "-session",
                                  "-style",         "-stylesheet",   "-testability",   "-title",
                                  "-visual",        "-widgetcount"};
    zq::NSProcessInfo::removeDefaultsFromArguments(argc, argv, optionsOfQt);
    notes::LogLines::shared().observe();
    notes::settings::registerDefaults();
    notes::startLog();
    zq::logMessagesOfQt();

    const QApplication application(argc, argv);
    notes::NoteStore store(zq::NSProcessInfo::pathOfLibraryApplicationSupportSubfolder());
    notes::MainWindow window(store);
    window.search(QApplication::arguments().mid(1).join(' '));
    window.show();
    window.takeOverOldNotes();
    return QApplication::exec();
}
