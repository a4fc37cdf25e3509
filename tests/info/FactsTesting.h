// SPDX-License-Identifier: MIT
// Facts that are fixed as a whole: an application, a system, a computer and user defaults.
#ifndef ZQFOUNDATION_TESTS_INFO_FACTSTESTING_H
#define ZQFOUNDATION_TESTS_INFO_FACTSTESTING_H

#include <string>
#include <vector>

#include <sys/utsname.h>

#include "foundation/objects/NSArray.h"
#include "info/ZQLogInfo.h"
#include "tests/info/InfoScene.h"
#include "tests/log/LogTestSupport.h"

namespace factstest {

using infotest::entry;
using infotest::raised;
using infotest::utf8Of;
using Lines = std::vector<std::string>;

/// An XML property list: a dictionary of these entries.
inline std::string plistOf(const std::string& entries) { return infotest::versionFile(entries); }

inline std::string viewerInfo() {
    return plistOf(entry("CFBundleIdentifier", "org.example.viewer") +
                   entry("NSHumanReadableShortName", "Viewer") + entry("CFBundleShortVersionString", "2.1") +
                   entry("CFBundleVersion", "417"));
}

inline const std::string separator = "--------------------------------------------------------------------";
inline const std::string summary = "Viewer 2.1 v417 (en), running on macOS 14.2 (23C64)";
inline const std::string hardwareLine = "[Box14,2; 8 processor cores; 16384 MB RAM]";

/// What a test changes of a whole set of facts.
struct Given {
    std::string info = viewerInfo();
    std::vector<std::string> localizations = {"en"};
    std::string versionFile = infotest::versionFileOf("14.2");
    ZQFoundation::detail::system::HardwareFacts hardware = infotest::hardware("Box14,2", 8, 17179869184u);
    logtest::Settings settings = {};
    std::vector<std::string> commandLine = {};
};

/// Makes the facts hold for a scope, the trace keys read from them. Without a text there is no Info
/// dictionary and no system version file.
class Facts {
public:
    explicit Facts(const Given& given = {})
        : application(given.info, given.localizations),
          hardware(ZQFoundation::detail::overrides::hardware, given.hardware),
          keys(given.settings, given.commandLine) {
        if (!given.versionFile.empty()) {
            system.writeVersionFile(given.versionFile);
        }
    }

    const infotest::SystemScene system;
    const infotest::ApplicationScene application;
    const infotest::Hardware hardware;
    logtest::TraceKeys keys;
};

/// Facts of which only the user defaults matter.
inline Given withSettings(const logtest::Settings& settings) {
    Given given;
    given.settings = settings;
    return given;
}

inline Given withInfo(const std::string& info) {
    Given given;
    given.info = info;
    return given;
}

inline Given withVersionFile(const std::string& bytes) {
    Given given;
    given.versionFile = bytes;
    return given;
}

/// The lines that the action writes, without their prefixes. An exception ends the action, not the test.
template <class Action>
Lines written(const Action& action) {
    const logtest::CapturedOutput output;
    raised(action);
    return output.texts();
}

/// A warning of the gathering of the application's facts.
inline std::string warning(const std::string& text) { return "+[ZQLogInfo getAppInformation] " + text; }

inline Lines operator+(Lines left, const Lines& right) {
    left.insert(left.end(), right.begin(), right.end());
    return left;
}

/// The value of the dictionary as text; "(nil)" when it has none, "(no string)" when it is none.
inline std::string valueOf(const ZQFoundation::NSDictionary& dictionary, const char* key) {
    const ZQFoundation::NSObject value = dictionary.objectForKey(key);
    if (!value) {
        return "(nil)";
    }
    const ZQFoundation::NSString text(value);
    return text ? text.utf8() : "(no string)";
}

inline std::string kernelRelease() {
    utsname names = {};
    ::uname(&names);
    return names.release;
}

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

/// A release description and what is to be read from it; "*" stands for the kernel's release.
struct Distribution {
    const char* label;
    const char* file; ///< null: there is none
    const char* name;
    const char* version;
    const char* userVisibleVersion;
    std::uint64_t versionMajor;
    std::uint64_t versionMinor;
};

inline std::string filledIn(const char* text) {
    return std::string(text) == "*" ? kernelRelease() : std::string(text);
}

inline constexpr Distribution distributions[] = {
    {"Debian",
     "PRETTY_NAME=\"Debian GNU/Linux 12 (bookworm)\"\nNAME=\"Debian GNU/Linux\"\nVERSION_ID=\"12\"\n"
     "VERSION=\"12 (bookworm)\"\nVERSION_CODENAME=bookworm\nID=debian\n",
     "Debian GNU/Linux", "12", "12 (bookworm)", 12, 0},
    {"Ubuntu",
     "PRETTY_NAME=\"Ubuntu 22.04.4 LTS\"\nNAME=\"Ubuntu\"\nVERSION_ID=\"22.04\"\n"
     "VERSION=\"22.04.4 LTS (Jammy Jellyfish)\"\nID=ubuntu\nID_LIKE=debian\n",
     "Ubuntu", "22.04", "22.04.4 LTS (Jammy Jellyfish)", 22, 4},
    {"Fedora",
     "NAME=\"Fedora Linux\"\nVERSION=\"39 (Workstation Edition)\"\nID=fedora\nVERSION_ID=39\n"
     "VERSION_CODENAME=\"\"\nPLATFORM_ID=\"platform:f39\"\n",
     "Fedora Linux", "39", "39 (Workstation Edition)", 39, 0},
    {"Arch", "NAME=\"Arch Linux\"\nPRETTY_NAME=\"Arch Linux\"\nID=arch\nBUILD_ID=rolling\n", "Arch Linux",
     "rolling", "rolling", 0, 0},
    {"openSUSE Leap",
     "NAME=\"openSUSE Leap\"\nVERSION=\"15.5\"\nID=\"opensuse-leap\"\nID_LIKE=\"suse opensuse\"\n"
     "VERSION_ID=\"15.5\"\n",
     "openSUSE Leap", "15.5", "15.5", 15, 5},
    {"openSUSE Tumbleweed",
     "NAME=\"openSUSE Tumbleweed\"\n# VERSION=\"20240305\"\nID=\"opensuse-tumbleweed\"\n"
     "VERSION_ID=\"20240305\"\n",
     "openSUSE Tumbleweed", "20240305", "20240305", 20240305, 0},
    {"Alpine", "NAME=\"Alpine Linux\"\nID=alpine\nVERSION_ID=3.19.1\nPRETTY_NAME=\"Alpine Linux v3.19\"\n",
     "Alpine Linux", "3.19.1", "3.19.1", 3, 19},
    {"a name alone", "NAME=Nameless\n", "Nameless", "*", "*", 0, 0},
    {"a version alone", "VERSION_ID=7.1\n", "Linux", "7.1", "7.1", 7, 1},
    {"an empty file", "", "Linux", "*", "*", 0, 0},
    {"no file", nullptr, "Linux", "*", "*", 0, 0},
};

/// Whether the numbers of the row come from its file, not from the kernel.
inline bool hasNumbers(const Distribution& row) { return std::string(row.version) != "*"; }

} // namespace factstest

#endif
