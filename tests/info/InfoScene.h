// SPDX-License-Identifier: MIT
// What the tests of this folder share: an application, a system, a computer and user defaults of the test's
// own.
#ifndef ZQFOUNDATION_TESTS_INFO_INFOSCENE_H
#define ZQFOUNDATION_TESTS_INFO_INFOSCENE_H

#include <string>
#include <vector>

#include "foundation/system/System.h"
#include "foundation/system/TestOverrides.h"
#include "info/ZQLogInfo.h"
#include "tests/kit/Environment.h"
#include "tests/kit/ScratchFolder.h"
#include "tests/kit/Settings.h"
#include "tests/kit/StandardError.h"
#include "tests/kit/Values.h"

namespace ZQFoundation::infotest {

using Lines = std::vector<std::string>;

inline const Lines nothing;
inline const kit::Setting traced{"TraceIO", "<true/>"};

inline std::string entry(const std::string& key, const std::string& text) {
    return "<key>" + key + "</key><string>" + text + "</string>";
}

/// An XML property list: a dictionary of these entries.
inline std::string plistOf(const std::string& entries) {
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<plist version=\"1.0\"><dict>" + entries +
           "</dict></plist>\n";
}

/// A system version file with the version, a name and a build.
inline std::string versionFileOf(const std::string& version) {
    return plistOf(entry("ProductBuildVersion", "23C64") + entry("ProductName", "Sampler OS") +
                   entry("ProductUserVisibleVersion", version) + entry("ProductVersion", version));
}

inline const std::string identifierEntry = entry("CFBundleIdentifier", "org.example.viewer");
inline const std::string nameEntry = entry("NSHumanReadableShortName", "Viewer");
inline const std::string shortVersionEntry = entry("CFBundleShortVersionString", "2.1");
inline const std::string versionEntry = entry("CFBundleVersion", "417");

/// A system without a system version file and without a release description, until the test writes one.
class SystemScene {
public:
    const kit::ScratchFolder folder;

    void writeVersionFile(const std::string& bytes) const { folder.write("SystemVersion.plist", bytes); }
    void writeReleaseFile(const std::string& bytes) const { folder.write("etc-os-release", bytes); }
    void writeSecondReleaseFile(const std::string& bytes) const { folder.write("usr-os-release", bytes); }
    void makeVersionFileUnreadable() const {
        EXPECT_EQ(::chmod((folder / "SystemVersion.plist").c_str(), 0), 0);
    }

private:
    const kit::Path versionFile_{detail::overrides::systemVersionFile, folder / "SystemVersion.plist"};
    const kit::Replaced<std::vector<std::string>> releaseFiles_{
        detail::overrides::releaseFiles, {folder / "etc-os-release", folder / "usr-os-release"}};
};

/// The program runs from an application of this Info dictionary and these localizations; with an empty text
/// the application has none. No language settings but "en".
class ApplicationScene {
public:
    explicit ApplicationScene(const std::string& info, const std::vector<std::string>& localizations = {}) {
        if (!info.empty()) {
            folder_.write("V.app/Contents/Info.plist", info);
        }
        for (const std::string& localization : localizations) {
            folder_.makeFolder("V.app/Contents/Resources/" + localization + ".lproj");
        }
    }

    void writeTable(const std::string& path, const std::string& text) const {
        folder_.write("V.app/Contents/Resources/" + path, text);
    }

private:
    const kit::ScratchFolder folder_;
    const kit::NoLanguages languages_{};
    const kit::Path program_{detail::overrides::executablePath, folder_ / "V.app/Contents/MacOS/program"};
};

struct Computer {
    std::string model = "Box14,2";
    int processors = 8;
    std::uint64_t memoryBytes = 17179869184u;
};

/// What a test changes of a whole set of facts.
struct Given {
    std::string info = plistOf(identifierEntry + nameEntry + shortVersionEntry + versionEntry);
    std::vector<std::string> localizations = {"en"};
    std::string versionFile = versionFileOf("14.2");
    Computer computer = {};
    kit::Settings settings = {};
    std::vector<std::string> commandLine = {};
};

/// Makes the facts hold for a scope, the trace keys read from them. Without a text there is no Info
/// dictionary and no system version file.
class Facts {
public:
    explicit Facts(const Given& given = {})
        : application(given.info, given.localizations),
          hardware(detail::overrides::hardware, hardwareOf(given.computer)),
          keys(given.settings, given.commandLine) {
        if (!given.versionFile.empty()) {
            system.writeVersionFile(given.versionFile);
        }
    }

    const SystemScene system;
    const ApplicationScene application;
    const kit::Replaced<detail::system::HardwareFacts> hardware;
    kit::TraceKeys keys;

private:
    static detail::system::HardwareFacts hardwareOf(const Computer& computer) {
        detail::system::HardwareFacts facts;
        facts.model = computer.model;
        facts.processors = computer.processors;
        facts.memoryBytes = computer.memoryBytes;
        return facts;
    }
};

/// The lines that the action writes, without their prefixes. An exception ends the action, not the test.
template <class Action>
Lines written(const Action& action) {
    const kit::CapturedOutput output;
    kit::raised(action);
    return output.texts();
}

/// A warning of the gathering of the application's facts.
inline std::string warning(const std::string& text) { return "+[ZQLogInfo getAppInformation] " + text; }

inline const std::string separator(68, '-');
inline const std::string noInfo = warning("This application does not have an info dictionary");
inline const std::string noIdentifier = warning("This application does not have an appIdentifier!");
inline const std::string noVersion =
    warning("The info dictionary of Viewer does not contain a CFBundleVersion!");

inline Lines operator+(Lines left, const Lines& right) {
    left.insert(left.end(), right.begin(), right.end());
    return left;
}

/// The value of the dictionary as text; "(nil)" when it has none, "(no string)" when it is none.
inline std::string valueOf(const NSDictionary& dictionary, const char* key) {
    const NSObject value = dictionary.objectForKey(key);
    if (!value) {
        return "(nil)";
    }
    const NSString text(value);
    return text ? text.utf8() : "(no string)";
}

inline std::string kernelRelease() { return detail::system::kernelRelease(); }

/// The binary property list of the version "10.15.7", the name "Sampler" and the build "19H2".
inline std::string binaryVersionFile() {
    static constexpr char bytes[] =
        "bplist00\xd3\x01\x02\x03\x04\x05\x06^ProductVersion[ProductName_\x10\x13ProductBuildV"
        "ersionW10.15.7WSamplerT19H2\x08\x0f\x1e*@HP\x00\x00\x00\x00\x00\x00\x01\x01\x00\x00"
        "\x00\x00\x00\x00\x00\x07\x00\x00\x00\x00\x00\x00\x00\x00\x00\x00\x00\x00\x00\x00\x00U";
    return std::string(bytes, sizeof bytes - 1);
}

/// The text, which is ASCII, in UTF-16 with its mark.
inline std::string inUtf16(const std::string& text) {
    std::string wide = "\xFE\xFF";
    for (const char unit : text) {
        wide += '\0';
        wide += unit;
    }
    return wide;
}

/// A release description and what is to be read from it; "*" means the kernel's release.
struct Distribution {
    const char* label;
    const char* file; ///< null: there is none
    const char* name;
    const char* version;
    const char* userVisibleVersion;
    const char* numbers; ///< major, minor and patch number; null: those of the kernel
};

inline std::string filledIn(const char* text) {
    return std::string(text) == "*" ? kernelRelease() : std::string(text);
}

inline constexpr Distribution distributions[] = {
    {"Debian",
     "PRETTY_NAME=\"Debian GNU/Linux 12 (bookworm)\"\nNAME=\"Debian GNU/Linux\"\nVERSION_ID=\"12\"\n"
     "VERSION=\"12 (bookworm)\"\nVERSION_CODENAME=bookworm\nID=debian\n",
     "Debian GNU/Linux", "12", "12 (bookworm)", "12 0 0"},
    {"Ubuntu",
     "PRETTY_NAME=\"Ubuntu 22.04.4 LTS\"\nNAME=\"Ubuntu\"\nVERSION_ID=\"22.04\"\n"
     "VERSION=\"22.04.4 LTS (Jammy Jellyfish)\"\nID=ubuntu\nID_LIKE=debian\n",
     "Ubuntu", "22.04", "22.04.4 LTS (Jammy Jellyfish)", "22 4 0"},
    {"Fedora",
     "NAME=\"Fedora Linux\"\nVERSION=\"39 (Workstation Edition)\"\nID=fedora\nVERSION_ID=39\n"
     "VERSION_CODENAME=\"\"\nPLATFORM_ID=\"platform:f39\"\n",
     "Fedora Linux", "39", "39 (Workstation Edition)", "39 0 0"},
    {"Arch", "NAME=\"Arch Linux\"\nPRETTY_NAME=\"Arch Linux\"\nID=arch\nBUILD_ID=rolling\n", "Arch Linux",
     "rolling", "rolling", "0 0 0"},
    {"openSUSE Leap",
     "NAME=\"openSUSE Leap\"\nVERSION=\"15.5\"\nID=\"opensuse-leap\"\nID_LIKE=\"suse opensuse\"\n"
     "VERSION_ID=\"15.5\"\n",
     "openSUSE Leap", "15.5", "15.5", "15 5 0"},
    {"openSUSE Tumbleweed",
     "NAME=\"openSUSE Tumbleweed\"\n# VERSION=\"20240305\"\nID=\"opensuse-tumbleweed\"\n"
     "VERSION_ID=\"20240305\"\n",
     "openSUSE Tumbleweed", "20240305", "20240305", "20240305 0 0"},
    {"Alpine", "NAME=\"Alpine Linux\"\nID=alpine\nVERSION_ID=3.19.1\nPRETTY_NAME=\"Alpine Linux v3.19\"\n",
     "Alpine Linux", "3.19.1", "3.19.1", "3 19 1"},
    {"a name alone", "NAME=Nameless\n", "Nameless", "*", "*", nullptr},
    {"a version alone", "VERSION_ID=7.1\n", "Linux", "7.1", "7.1", "7 1 0"},
    {"an empty file", "", "Linux", "*", "*", nullptr},
    {"no file", nullptr, "Linux", "*", "*", nullptr},
};

} // namespace ZQFoundation::infotest

#endif
