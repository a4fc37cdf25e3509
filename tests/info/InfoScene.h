// SPDX-License-Identifier: MIT
// What the tests of this folder share: a system and an application of the test's own.
#ifndef ZQFOUNDATION_TESTS_INFO_INFOSCENE_H
#define ZQFOUNDATION_TESTS_INFO_INFOSCENE_H

#include <string>
#include <vector>

#include "foundation/system/System.h"
#include "foundation/system/TestOverrides.h"
#include "tests/objects/TestValues.h"
#include "tests/process/Scene.h"

namespace infotest {

using TestValues::raised;
using TestValues::utf8Of;

/// A system without a system version file and without a release description, until the test writes one.
class SystemScene {
public:
    const scene::Folder folder;

    void writeVersionFile(const std::string& bytes) const { folder.write("SystemVersion.plist", bytes); }
    void writeReleaseFile(const std::string& bytes) const { folder.write("etc-os-release", bytes); }
    void writeSecondReleaseFile(const std::string& bytes) const { folder.write("usr-os-release", bytes); }

private:
    const scene::Path versionFile_{ZQFoundation::detail::overrides::systemVersionFile,
                                   folder / "SystemVersion.plist"};
    const scene::Replaced<std::vector<std::string>> releaseFiles_{
        ZQFoundation::detail::overrides::releaseFiles,
        {folder / "etc-os-release", folder / "usr-os-release"}};
};

using Hardware = scene::Replaced<ZQFoundation::detail::system::HardwareFacts>;

inline ZQFoundation::detail::system::HardwareFacts hardware(const std::string& model, int processors,
                                                            std::uint64_t memoryBytes) {
    ZQFoundation::detail::system::HardwareFacts facts;
    facts.model = model;
    facts.processors = processors;
    facts.memoryBytes = memoryBytes;
    return facts;
}

/// The program runs from an application of this Info dictionary (in the old form) and these localizations;
/// with an empty text the application has none. No language settings but "en".
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
    const scene::Folder folder_;
    const scene::NoLanguages languages_{};
    const scene::Path program_{ZQFoundation::detail::overrides::executablePath,
                               folder_ / "V.app/Contents/MacOS/program"};
};

inline std::string versionFile(const std::string& entries) {
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<plist version=\"1.0\"><dict>" + entries +
           "</dict></plist>\n";
}

inline std::string entry(const std::string& key, const std::string& text) {
    return "<key>" + key + "</key><string>" + text + "</string>";
}

/// With the version, the name and the build of a real one.
inline std::string versionFileOf(const std::string& version) {
    return versionFile(entry("ProductBuildVersion", "23C64") + entry("ProductName", "Sampler OS") +
                       entry("ProductUserVisibleVersion", version) + entry("ProductVersion", version));
}

} // namespace infotest

#endif
