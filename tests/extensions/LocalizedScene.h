// SPDX-License-Identifier: MIT
// An application in a scratch folder with texts in English and German.
#ifndef ZQFOUNDATION_TESTS_EXTENSIONS_LOCALIZEDSCENE_H
#define ZQFOUNDATION_TESTS_EXTENSIONS_LOCALIZEDSCENE_H

#include <string>
#include <vector>

#include "tests/kit/Environment.h"
#include "tests/kit/ScratchFolder.h"

namespace localizedscene {

struct Text {
    const char* key;
    const char* english;
    const char* german;
};

/// The main bundle while it lives. Which language a bundle speaks is decided once, so each application has a
/// folder of its own.
class Application {
public:
    /// The user's languages come from the environment, without any where `language` is a null pointer.
    explicit Application(const char* language) : language_("LANGUAGE", language) {
        folder_.write("Viewer.app/Contents/Info.plist", "{ CFBundleDevelopmentRegion = en; }");
        folder_.makeFolder("Viewer.app/Contents/MacOS");
        write("en.lproj/Localizable.strings",
              "\"%d files\" = \"%d files\"; \"greeting\" = \"Hello\";"
              "\"%d of %d, %@\" = \"%1$d of %2$d, %3$@\";"
              "\"half\" = \"50%% done\"; \"share\" = \"100%\"; \"empty\" = \"\";");
        write("de.lproj/Localizable.strings",
              "\"%d files\" = \"%d Dateien\"; \"greeting\" = \"Gr\\U00fc\\U00dfe\";"
              "\"%d of %d, %@\" = \"%3$@: %1$d von %2$d\"; \"%.2f m\" = \"%.2f Meter, %d\";"
              "\"half\" = \"50%% fertig\"; \"share\" = \"100% (alle)\"; \"%@\" = \"<%@|%d|%s|%p|%5d|%f>\";"
              "\"two\" = \"%@ %@\"; \"stored\" = \"%n%d\"; \"empty\" = \"\";");
        write("en.lproj/Menu.strings", "\"Open %@\" = \"Open %@\"; \"Close\" = \"Close\";");
        write("de.lproj/Menu.strings", "\"Open %@\" = \"%@ \\U00f6ffnen\"; \"Close\" = \"Schlie\\U00dfen\";");
    }

private:
    void write(const std::string& name, const std::string& text) const {
        folder_.write("Viewer.app/Contents/Resources/" + name, text);
    }

    const ZQFoundation::kit::ScratchFolder folder_;
    const ZQFoundation::kit::NoLanguages none_{};
    const ZQFoundation::kit::Variable language_;
    const ZQFoundation::kit::Path store_{ZQFoundation::detail::overrides::defaultsFolder, folder_ / "store"};
    const ZQFoundation::kit::Path program_{ZQFoundation::detail::overrides::executablePath,
                                           folder_ / "Viewer.app/Contents/MacOS/Viewer"};
    const ZQFoundation::kit::Arguments arguments_{ZQFoundation::detail::overrides::arguments,
                                                  std::vector<std::string>{"/x/Viewer"}};
};

} // namespace localizedscene

#endif
