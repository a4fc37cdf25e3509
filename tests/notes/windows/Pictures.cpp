// SPDX-License-Identifier: MIT
// Makes the pictures of docs/pictures: `NotesPictures <folder>` grabs the windows of Notes, with notes of its
// own, and draws what it reads from standard input as a terminal shows it. The home folder is that of the
// environment.
#include <algorithm>
#include <cstdio>
#include <utility>

#include <QtCore/QFile>
#include <QtCore/QHash>
#include <QtCore/QTimer>
#include <QtGui/QPainter>
#include <QtWidgets/QApplication>
#include <QtWidgets/QCheckBox>
#include <QtWidgets/QListWidget>
#include <QtWidgets/QStyleFactory>

#include "examples/Notes/model/LogLines.h"
#include "examples/Notes/model/Settings.h"
#include "examples/Notes/windows/AboutWindow.h"
#include "examples/Notes/windows/LogWindow.h"
#include "examples/Notes/windows/MainWindow.h"
#include "examples/Notes/windows/MigrationWindow.h"
#include "examples/Notes/windows/TracePanel.h"

namespace zq = ZQFoundation;

namespace {

constexpr int terminalColumns = 158;
constexpr int terminalRows = 22;

/// With the 256 most frequent colors, the others as the nearest of them: a small file.
bool save(const QImage& picture, const QString& path) {
    const QImage exact = picture.convertToFormat(QImage::Format_RGB32);
    QHash<QRgb, int> counts;
    for (int y = 0; y < exact.height(); ++y) {
        for (int x = 0; x < exact.width(); ++x) {
            ++counts[exact.pixel(x, y)];
        }
    }
    QList<QRgb> colors = counts.keys();
    std::sort(colors.begin(), colors.end(), [&](QRgb left, QRgb right) {
        return std::pair(-counts[left], left) < std::pair(-counts[right], right);
    });
    return exact.convertToFormat(QImage::Format_Indexed8, colors.mid(0, 256), Qt::AvoidDither)
        .save(path, "PNG", 0);
}

bool grab(QWidget& window, const QString& path) {
    window.show();
    QCoreApplication::processEvents();
    return save(window.grab().toImage(), path);
}

/// A terminal of fixed size, lines cut at its edge as many as it has rows.
bool drawTerminal(const QByteArray& bytes, const QString& path) {
    QFont font("DejaVu Sans Mono");
    font.setPixelSize(11);
    const QFontMetrics metrics(font);
    const int width = metrics.horizontalAdvance('0');
    const int margin = 8;
    QImage terminal(terminalColumns * width + 2 * margin, terminalRows * metrics.height() + 2 * margin,
                    QImage::Format_RGB32);
    terminal.fill(QColor(0x1E, 0x1E, 0x24));
    QPainter painter(&terminal);
    painter.setFont(font);
    painter.setPen(QColor(0xD8, 0xD8, 0xD8));
    int row = 0;
    for (const QString& line : QString::fromUtf8(bytes).split('\n').mid(0, terminalRows)) {
        painter.drawText(margin, margin + row++ * metrics.height() + metrics.ascent(),
                         line.left(terminalColumns));
    }
    painter.end();
    return save(terminal, path);
}

void writeNotes(notes::NoteStore& store) {
    const zq::NSArray english{
        "Books\n\na history of typography",
        "Caf\u00e9s in Z\u00fcrich\n\nthe one at the bridge\nthe one in the Seestra\u00dfe",
        "Questions for Thursday\n\nWho moves the old notes?\nWhat stays, and why?",
        "Shopping\n\napples, cr\u00e8me fra\u00eeche, coffee",
        "Release 2.0\n\nAsk Zo\u00eb about the icons.\nTranslate the new menus."};
    const zq::NSArray german{
        "B\u00fccher\n\neine Geschichte der Typografie",
        "Caf\u00e9s in Z\u00fcrich\n\ndas an der Br\u00fccke\ndas in der Seestra\u00dfe",
        "Fragen f\u00fcr Donnerstag\n\nWer holt die alten Notizen?\nWas bleibt, und warum?",
        "Einkaufen\n\n\u00c4pfel, Cr\u00e8me fra\u00eeche, Kaffee",
        "Version 2.0\n\nZo\u00eb nach den Symbolen fragen.\nDie neuen Men\u00fcs \u00fcbersetzen."};
    const bool isGerman =
        zq::NSBundle::mainBundle().preferredLocalizations().objectAtIndex(0) == zq::NSObject("de");
    for (const zq::NSObject& text : isGerman ? german : english) {
        static_cast<void>(store.save(nullptr, zq::NSString(text)));
    }
}

/// The window in the middle of a move.
bool grabMigration(const notes::NoteStore& store, const QString& path) {
    constexpr int count = 400;
    const zq::NSString old = notes::oldNotesFolder();
    for (int number = 0; number < count; ++number) {
        const zq::NSString note = old + zq::NSString::stringWithFormat("/Travel plans %d.note", number);
        static_cast<void>(zq::NSFileManager::defaultManager()
                              .createFileAtPath_contents_fileAttributes_directoryAttributes_deepCreate(
                                  note, nullptr, nullptr, nullptr, true));
    }
    notes::MigrationWindow window(old, store.folder(), nullptr);
    bool isSaved = false;
    QObject::connect(window.findChild<QProgressBar*>("bar"), &QProgressBar::valueChanged, [&](int value) {
        if (value == count / 2) {
            QTimer::singleShot(0, &window, [&] { isSaved = save(window.grab().toImage(), path); });
        }
    });
    window.start();
    window.exec();
    return isSaved;
}

bool grabWindows(const QString& folder) {
    notes::NoteStore store(zq::NSProcessInfo::pathOfLibraryApplicationSupportSubfolder());
    const notes::TracePanel panel;
    for (const char* const key : {"TraceNotes", "TraceSearch"}) {
        panel.findChild<QCheckBox*>(key)->click();
    }
    writeNotes(store);
    notes::MainWindow window(store);
    window.show();
    window.findChild<QListWidget*>("list")->setCurrentRow(0);
    QCoreApplication::processEvents();
    const bool isMainSaved = grab(window, folder + "/notes.png");
    window.findChild<QLineEdit*>("search")->setText("cafe zurich");
    notes::LogWindow log(nullptr);
    const bool isLogSaved = grab(log, folder + "/notes-log.png");
    notes::AboutWindow about(nullptr);
    return isMainSaved && isLogSaved && grab(about, folder + "/notes-about.png") &&
           grabMigration(store, folder + "/notes-migration.png");
}

} // namespace

int main(int argc, char** argv) {
    const QApplication application(argc, argv);
    QFile input;
    if (argc != 2 || !input.open(stdin, QIODevice::ReadOnly)) {
        std::fputs("usage: NotesPictures FOLDER <TERMINAL-OUTPUT\n", stderr);
        return 2;
    }
    QFont font("DejaVu Sans");
    font.setPixelSize(12);
    QApplication::setFont(font);
    QApplication::setStyle(QStyleFactory::create("fusion"));
    notes::LogLines::shared().observe();
    zq::NSProcessInfo::processInfo().setProcessName("Notes"); // as the application is called in its log
    notes::settings::registerDefaults();
    const QString folder = QString::fromLocal8Bit(argv[1]);
    const bool isSaved = drawTerminal(input.readAll(), folder + "/startup-report.png");
    return isSaved && grabWindows(folder) ? 0 : 1;
}
