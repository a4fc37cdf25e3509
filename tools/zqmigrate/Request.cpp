// SPDX-License-Identifier: MIT
#include "tools/zqmigrate/Request.h"

namespace ZQFoundation::zqmigrate {

namespace {

constexpr const char* operations[] = {"file", "folder", "batch"};

[[noreturn]] void misuse(std::string message) { throw Misuse{std::move(message)}; }

/// Options without a value, and what each switches on.
struct Switch {
    const char* name;
    const char* shortName;
    bool Request::*request;
    bool detail::MigrationPolicy::*policy;
};

constexpr Switch switches[] = {
    {"--keep-original", nullptr, nullptr, &detail::MigrationPolicy::keepOriginal},
    {"--create-parents", nullptr, nullptr, &detail::MigrationPolicy::createParent},
    {"--overwrite", nullptr, nullptr, &detail::MigrationPolicy::overwrite},
    {"--rename", nullptr, nullptr, &detail::MigrationPolicy::renameIfExists},
    {"--dot-files", nullptr, &Request::includeDotFiles, nullptr},
    {"--dry-run", "-n", &Request::isTrial, nullptr},
    {"--json", nullptr, &Request::isJson, nullptr},
    {"--quiet", "-q", &Request::isQuiet, nullptr},
    {"--verbose", "-v", &Request::isVerbose, nullptr},
};

class Reader {
public:
    explicit Reader(const Words& words) : words_(words) {}

    Request read() {
        for (; next_ < words_.size(); ++next_) {
            const std::string& word = words_[next_];
            if (areOptionsOver_ || word.size() < 2 || word[0] != '-') {
                operands_.push_back(word);
            } else if (word == "--") {
                areOptionsOver_ = true;
            } else if (!takeSwitch(word) && !takeExtension(word)) {
                misuse("there is no option " + word);
            }
        }
        takeOperands();
        refuseContradictions();
        return request_;
    }

private:
    bool takeSwitch(const std::string& word) {
        for (const Switch& each : switches) {
            if (word == each.name || (each.shortName != nullptr && word == each.shortName)) {
                if (each.request != nullptr) {
                    request_.*each.request = true;
                } else {
                    request_.policy.*each.policy = true;
                }
                return true;
            }
        }
        return false;
    }

    bool takeExtension(const std::string& word) {
        constexpr const char* name = "--extension";
        const std::size_t length = std::char_traits<char>::length(name);
        const bool hasValue = word.compare(0, length + 1, std::string(name).append("=")) == 0;
        if (word != name && !hasValue) {
            return false;
        }
        if (hasExtension_) {
            misuse("there is more than one --extension");
        }
        if (!hasValue && ++next_ == words_.size()) {
            misuse("--extension needs a value");
        }
        request_.extension = hasValue ? word.substr(length + 1) : words_[next_];
        // Such a one would select nothing, which would pass for success.
        // For the library the empty one is every file; here it is most likely a variable without a value.
        if (request_.extension.empty() || request_.extension.find_first_of("./") != std::string::npos) {
            misuse("an extension is what follows the last period of a name, such as \"log\", not \"" +
                   request_.extension + "\"");
        }
        hasExtension_ = true;
        return true;
    }

    void takeOperands() {
        if (operands_.empty()) {
            misuse("there is no command");
        }
        for (std::size_t index = 0; index < std::size(operations); ++index) {
            if (operands_[0] == operations[index]) {
                request_.operation = static_cast<Operation>(index);
                takePaths();
                return;
            }
        }
        misuse("there is no command " + operands_[0]);
    }

    void takePaths() {
        if (operands_.size() != 3) {
            misuse(operands_[0] + " takes two paths: from and to");
        }
        request_.from = operands_[1];
        request_.to = operands_[2];
        // Most likely a variable of a shell that has no value: an empty folder would be the current one.
        if (request_.from.empty() || request_.to.empty()) {
            misuse(bytesOfDescription(request_.from.empty() ? kFileMigrationSourceNotSpecified
                                                            : kFileMigrationDestinationNotSpecified));
        }
    }

    static std::string bytesOfDescription(ZQFileMigrationRetvalType code) {
        return ZQFileMigrator::descriptionOfFileMigrationRetvalType(code).utf8();
    }

    void refuseContradictions() const {
        if (request_.operation != Operation::batch && (hasExtension_ || request_.includeDotFiles)) {
            misuse("--extension and --dot-files are for batch only");
        }
        if (request_.policy.overwrite && request_.policy.renameIfExists) {
            misuse("--overwrite removes what --rename would leave alone: only one of them can be meant");
        }
        if (request_.isQuiet && request_.isVerbose) {
            misuse("--quiet and --verbose contradict each other");
        }
    }

    const Words& words_;
    std::size_t next_ = 0;
    bool areOptionsOver_ = false;
    bool hasExtension_ = false;
    Words operands_;
    Request request_;
};

} // namespace

const char* nameOf(Operation operation) noexcept { return operations[static_cast<int>(operation)]; }

Request requestFromWords(const Words& words) { return Reader(words).read(); }

} // namespace ZQFoundation::zqmigrate
