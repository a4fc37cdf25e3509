// SPDX-License-Identifier: MIT
// Parses the command line.
#include "tools/zqmigrate/Request.h"

#include <algorithm>
#include <string_view>

#include "tools/zqmigrate/Text.h"

namespace ZQFoundation::tools::zqmigrate {

namespace {

/// Options without a value, and what each switches on.
constexpr struct Switch {
    std::string_view name;
    char letter;
    bool Request::*flag;
} switches[] = {
    {"--keep-original", 0, &Request::keepOriginal},
    {"--create-parents", 0, &Request::createDestinationParentFolder},
    {"--overwrite", 0, &Request::overwriteDestination},
    {"--rename", 0, &Request::renameIfDestinationExists},
    {"--dot-files", 0, &Request::includeDotFiles},
    {"--dry-run", 'n', &Request::isTrial},
    {"--json", 0, &Request::isJson},
    {"--quiet", 'q', &Request::isQuiet},
    {"--verbose", 'v', &Request::isVerbose},
    {"--help", 'h', &Request::wantsHelp},
    {"--version", 0, &Request::wantsVersion},
};

/// The message ends the program with the status of a wrong command line.
void refuseIf(bool isWrong, const std::string& message) {
    if (isWrong) {
        throw Misuse{message};
    }
}

/// "--quiet", or "-nq": one switch for each letter. The word has at least two characters.
void takeSwitches(const std::string& word, Request& request) {
    const bool isName = word[1] == '-';
    for (const char letter : isName ? std::string("-") : word.substr(1)) {
        const auto found = std::find_if(std::begin(switches), std::end(switches), [&](const Switch& each) {
            return isName ? word == each.name : letter == each.letter;
        });
        refuseIf(found == std::end(switches),
                 "unknown option " + (isName ? word : std::string("-") + letter));
        request.*found->flag = true;
    }
}

/// Without its period, as the library expects it.
void takeExtension(const std::string& value, Request& request) {
    refuseIf(request.extension != nullptr, "there is more than one --extension");
    // Such an extension would select nothing, and that would look like success. To the library, an empty
    // extension means every file; here it is most likely a variable without a value.
    refuseIf(value.empty() || value.find_first_of("./") != std::string::npos,
             "an extension is what follows the last period of a name, such as \"log\", not \"" + value +
                 "\"");
    request.extension = pathOf(value);
}

void takeOperands(const Words& operands, Request& request) {
    refuseIf(operands.empty(), "a command is missing");
    const auto name = std::find(std::begin(operationNames), std::end(operationNames), operands[0]);
    refuseIf(name == std::end(operationNames), "unknown command " + operands[0]);
    refuseIf(operands.size() != 3, operands[0] + " takes two paths: from and to");
    // Most likely a shell variable without a value: an empty path would mean the current folder.
    refuseIf(operands[1].empty(), "the path to migrate from is empty");
    refuseIf(operands[2].empty(), "the path to migrate to is empty");
    request.operation = static_cast<Operation>(name - std::begin(operationNames));
    request.from = pathOf(operands[1]);
    request.to = pathOf(operands[2]);
    request.source = request.from.stringByExpandingTildeInPath();
    // To the library, a plain name is in no folder; to the user, it is in the current one.
    const bool isName = !request.isBatch() && !request.to.isAbsolutePath();
    request.destination = isName ? pathOf("./" + operands[2]) : request.to.stringByExpandingTildeInPath();
}

/// Contradictory options are rejected, not resolved by an order that nobody remembers: files are at stake.
void refuseContradictions(const Request& request) {
    refuseIf(!request.isBatch() && (request.extension != nullptr || request.includeDotFiles),
             "--extension and --dot-files are for batch only");
    refuseIf(request.overwriteDestination && request.renameIfDestinationExists,
             "--overwrite and --rename cannot be combined");
    refuseIf(request.isQuiet && request.isVerbose, "--quiet and --verbose cannot be combined");
}

} // namespace

// Options may follow operands. The first request for help or the version ends the parsing: what comes after
// it may be wrong.
Request requestFromWords(const Words& words) {
    const std::string extension = "--extension";
    Request request;
    Words operands;
    bool areOptionsOver = false;
    for (std::size_t next = 0; next < words.size(); ++next) {
        const std::string& word = words[next];
        if (areOptionsOver || word.size() < 2 || word[0] != '-') {
            operands.push_back(word);
        } else if (word == "--") {
            areOptionsOver = true;
        } else if (word == extension) {
            refuseIf(++next == words.size(), "--extension needs a value");
            takeExtension(words[next], request);
        } else if (word.rfind(extension + "=", 0) == 0) {
            takeExtension(word.substr(extension.size() + 1), request);
        } else {
            takeSwitches(word, request);
        }
        if (request.wantsHelp || request.wantsVersion) {
            return request;
        }
    }
    request.wantsHelp = operands == Words{"help"};
    if (!request.wantsHelp) {
        takeOperands(operands, request);
        refuseContradictions(request);
    }
    return request;
}

} // namespace ZQFoundation::tools::zqmigrate
