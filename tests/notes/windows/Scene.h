// SPDX-License-Identifier: MIT
// A home folder with the windows of Notes in it, without a screen.
#ifndef ZQFOUNDATION_TESTS_WINDOWS_SCENE_H
#define ZQFOUNDATION_TESTS_WINDOWS_SCENE_H

#include <memory>
#include <string>

#include <QtGui/QAction>
#include <QtTest/QTest>
#include <QtWidgets/QApplication>
#include <QtWidgets/QPushButton>
#include <gtest/gtest.h>

#include "examples/Notes/model/LogLines.h"
#include "examples/Notes/model/Settings.h"
#include "examples/Notes/windows/MainWindow.h"
#include "tests/kit/Environment.h"
#include "tests/kit/ScratchFolder.h"

namespace scene {

namespace zq = ZQFoundation;
namespace kit = ZQFoundation::kit;

/// Processes events until the condition holds; false after a minute.
template <class Condition>
bool waitUntil(const Condition& condition) {
    return QTest::qWaitFor(condition, 60000);
}

/// The child of that name, which must be there.
template <class Widget>
Widget& child(const QObject& parent, const char* name) {
    auto* const found = parent.findChild<Widget*>(name);
    if (found == nullptr) {
        ADD_FAILURE() << "there is no " << name;
        std::abort();
    }
    return *found;
}

inline void click(const QObject& parent, const char* name) {
    QTest::mouseClick(&child<QPushButton>(parent, name), Qt::LeftButton);
}

inline std::string utf8(const QString& text) { return text.toStdString(); }

/// A home of its own, in which a window is a start of the application.
class Home : public kit::ScratchFolder {
public:
    explicit Home(const char* languageCode = "en") : language_("LANGUAGE", languageCode) {
        ::chmod(makeFolder("runtime").c_str(), 0700); // the toolkit wants it so
        static int count = 3;
        static char name[] = "Notes";
        static char option[] = "-platform";
        static char platform[] = "offscreen";
        static char* arguments[] = {name, option, platform, nullptr};
        static QApplication* const application = new QApplication(count, arguments);
        static_cast<void>(application);
        notes::LogLines::shared().observe();
        notes::settings::registerDefaults();
        zq::ZQLog::initializeTraceDefaultsDict();
    }
    ~Home() { window_.reset(); }

    /// Starts, with the notes that are there; a window that was open before is gone.
    notes::MainWindow& start() {
        window_.reset();
        store =
            std::make_unique<notes::NoteStore>(zq::NSProcessInfo::pathOfLibraryApplicationSupportSubfolder());
        window_ = std::make_unique<notes::MainWindow>(*store);
        window_->show();
        return *window_;
    }

    std::string oldPlace() const { return "Library/Application Support/Example/Notes/"; }
    std::string newPlace() const { return ".local/share/Example/Notes/"; }

    std::unique_ptr<notes::NoteStore> store;

private:
    kit::Variable home_{"HOME", path().c_str()};
    kit::Variable configuration_{"XDG_CONFIG_HOME", nullptr};
    kit::Variable data_{"XDG_DATA_HOME", nullptr};
    kit::Variable state_{"XDG_STATE_HOME", nullptr};
    kit::Variable runtime_{"XDG_RUNTIME_DIR", (*this / "runtime").c_str()};
    kit::Variable defaults_{"ZQ_DEFAULTS", nullptr};
    kit::Variable language_;
    std::unique_ptr<notes::MainWindow> window_;
};

} // namespace scene

#endif
