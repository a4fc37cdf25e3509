// SPDX-License-Identifier: MIT
// An application in a scratch folder with texts in English and German.
#ifndef ZQFOUNDATION_TESTS_EXTENSIONS_LOCALIZEDSCENE_H
#define ZQFOUNDATION_TESTS_EXTENSIONS_LOCALIZEDSCENE_H

#include <string>
#include <vector>

#include "tests/process/Scene.h"

namespace localizedscene {

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

    const scene::Folder folder_;
    const scene::NoLanguages none_{};
    const scene::Variable language_;
    const scene::Path store_{ZQFoundation::detail::overrides::defaultsFolder, folder_ / "store"};
    const scene::Path program_{ZQFoundation::detail::overrides::executablePath,
                               folder_ / "Viewer.app/Contents/MacOS/Viewer"};
    const scene::Arguments arguments_{ZQFoundation::detail::overrides::arguments,
                                      std::vector<std::string>{"/x/Viewer"}};
};

/// The current test's body is run by processes of its own, one for each language: what each prints between
/// "<<" and ">>".
template <class Body>
std::vector<std::string> inProcessesOfTheirOwn(const std::vector<std::string>& languages, const Body& body) {
    constexpr const char* mark = "ZQ_TEST_LOCALIZED_PROCESS";
    if (std::getenv(mark) != nullptr) {
        std::printf("<<%s>>\n", body().c_str());
        return {};
    }
    const testing::TestInfo& test = *testing::UnitTest::GetInstance()->current_test_info();
    const std::string filter = std::string("--gtest_filter=") + test.test_suite_name() + "." + test.name();
    std::vector<std::string> texts;
    for (const std::string& language : languages) {
        const std::string output =
            scene::runAgain({{mark, "1"}, {"LANGUAGE", language}}, {"test_extensions", filter});
        const std::size_t start = output.find("<<");
        const std::size_t end = output.find(">>", start == std::string::npos ? 0 : start);
        texts.push_back(start == std::string::npos || end == std::string::npos
                            ? "nothing printed: " + output
                            : output.substr(start + 2, end - start - 2));
    }
    return texts;
}

} // namespace localizedscene

#endif
