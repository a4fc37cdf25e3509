// SPDX-License-Identifier: MIT
#include "tools/zqmigrate/Report.h"

#include <csignal>

#include "tools/zqmigrate/Text.h"

namespace ZQFoundation::zqmigrate {

namespace {

struct Hint {
    std::uint32_t code;
    const char* text;
    bool needsAttempt = false; ///< it tells what an attempt has left behind
};

/// What a person can do about it.
constexpr Hint hints[] = {
    {kFileMigrationSourceIsFolder, "the commands folder and batch are for folders"},
    {kFileMigrationSourceIsFile, "the command file is for files"},
    {kFileMigrationSourceFileCannotBeRemoved,
     "the copy is complete; make sure of it, then remove the original by hand", true},
    {kFileMigrationDestinationParentFolderDoesNotExist, "--create-parents makes missing folders"},
    {kFileMigrationDestinationFileExists,
     "--overwrite replaces what is there, --rename gives the copy another name"},
    {kFileMigrationDestinationFolderExists,
     "--overwrite replaces what is there, with all that it holds; --rename gives the copy another name"},
    {kFileMigrationDestinationFileWritingFailed,
     "what stands at the destination now may be a part: look at it before the next attempt", true},
    {kFileMigrationDestinationFolderOverwritingFailed,
     "the folder at the destination may have lost a part of what it held", true},
    {kFileMigrationDestinationFolderWritingFailed,
     "what stands at the destination now may be a part: look at it before the next attempt", true},
};

std::string descriptionOf(std::uint32_t code) {
    return ZQFileMigrator::descriptionOfFileMigrationRetvalType(code).utf8();
}

/// "30  sub/b.log: the destination file already exists".
std::string lineOf(const Item& item) {
    std::string line = std::to_string(item.code);
    line.insert(0, line.size() < 2 ? 2 - line.size() : 0, ' ');
    return line.append("  ").append(shown(item.path)).append(": ").append(shown(descriptionOf(item.code)));
}

const char* word(bool value) noexcept { return value ? "true" : "false"; }

std::string memberOfFlag(const char* name, bool value) {
    return std::string("\"").append(name).append("\": ").append(word(value));
}

std::string beginningOfJson(const Request& request) {
    std::string text = "{\n\"operation\": ";
    text.append(quoted(nameOf(request.operation))).append(",\n");
    text.append(memberOfPath("from", request.from)).append(",\n");
    text.append(memberOfPath("to", request.to)).append(",\n");
    if (request.operation == Operation::batch) {
        text.append(memberOfPath("extension", request.extension)).append(",\n");
        text.append(memberOfFlag("dotFiles", request.includeDotFiles)).append(",\n");
    }
    text.append(memberOfFlag("keepOriginal", request.policy.keepOriginal)).append(",\n");
    text.append(memberOfFlag("createParents", request.policy.createParent)).append(",\n");
    text.append(memberOfFlag("overwrite", request.policy.overwrite)).append(",\n");
    text.append(memberOfFlag("rename", request.policy.renameIfExists)).append(",\n");
    text.append(memberOfFlag("dryRun", request.isTrial)).append(",\n");
    return text.append("\"items\": [\n");
}

std::string jsonOf(const Item& item) {
    std::string text = "{";
    text.append(memberOfPath("path", item.path));
    if (!item.destination.empty()) {
        text.append(", ").append(memberOfPath("destination", item.destination));
    }
    text.append(", \"code\": ").append(std::to_string(item.code));
    text.append(", \"description\": ").append(quoted(descriptionOf(item.code)));
    return text.append("}\n");
}

/// A list of objects that hold a path each.
class PathList {
public:
    void add(const std::string& path) {
        text_.append(text_.empty() ? "\n" : ",\n").append("{").append(memberOfPath("path", path)).append("}");
    }
    std::string member(const char* name) const {
        return std::string("\"").append(name).append("\": [").append(text_).append("]");
    }

private:
    std::string text_;
};

std::string endOfJson(const Outcome& outcome) {
    PathList left;
    PathList unreadable;
    for (const Item& item : outcome.failed) {
        left.add(item.path);
    }
    for (const std::string& path : outcome.notReached) {
        left.add(path);
    }
    for (const std::string& path : outcome.unreadableFolders) {
        unreadable.add(path);
    }
    std::string text = "],\n\"migrated\": ";
    text.append(std::to_string(outcome.migrated)).append(",\n\"failed\": ");
    text.append(std::to_string(outcome.failed.size())).append(",\n\"notReached\": ");
    text.append(std::to_string(outcome.notReached.size())).append(",\n");
    text.append(left.member("left")).append(",\n");
    text.append(memberOfFlag("isLeftComplete", !outcome.isMoreNotReached)).append(",\n");
    text.append(unreadable.member("unreadableFolders")).append(",\n");
    text.append(memberOfFlag("areUnreadableFoldersComplete", !outcome.isMoreUnreadable))
        .append(",\n\"error\": ");
    text.append(outcome.error.empty() ? "null" : quoted(outcome.error)).append(",\n");
    text.append(memberOfFlag("interrupted", outcome.signal != 0)).append(",\n");
    return text.append(memberOfFlag("success", outcome.isSuccess())).append("\n}\n");
}

/// "3 files", "1 folder".
std::string counted(std::uint64_t count, const Request& request) {
    const char* const noun = request.operation == Operation::folder ? " folder" : " file";
    return std::to_string(count).append(noun).append(count == 1 ? "" : "s");
}

std::string howItWent(const Request& request, const Outcome& outcome) {
    const char* const deed = request.policy.keepOriginal ? " copied" : " moved";
    const char* const would = request.isTrial ? " would be" : "";
    if (outcome.count() == 0 && outcome.signal == 0) {
        const std::string kind = request.extension.empty() ? "no files" : "no files with that extension";
        return messageLine("nothing to do: there are " + kind + " in " + request.from);
    }
    std::string text = outcome.signal == 0 ? "" : "stopped by a signal; ";
    const std::uint64_t left = outcome.failed.size() + outcome.notReached.size();
    if (left == 0) {
        text.append(counted(outcome.migrated, request)).append(would).append(deed);
        return messageLine(text.append(outcome.signal == 0 ? "" : ", nothing is left to do"));
    }
    text.append(std::to_string(outcome.migrated)).append(" of ");
    text.append(counted(outcome.count(), request)).append(would).append(deed);
    return messageLine(text.append("; left to do: ")
                           .append(std::to_string(left))
                           .append(outcome.isMoreNotReached ? " or more" : ""));
}

std::string whatIsLeft(const Outcome& outcome, std::size_t mostItems) {
    const std::size_t count = outcome.failed.size() + outcome.notReached.size();
    std::string text;
    for (std::size_t index = 0; index < count && index < mostItems; ++index) {
        const bool isReached = index < outcome.failed.size();
        text.append("  ");
        text.append(isReached ? lineOf(outcome.failed[index])
                              : "--  " + shown(outcome.notReached[index - outcome.failed.size()]) +
                                    ": not reached");
        text.push_back('\n');
    }
    if (count > mostItems) {
        text.append("  ... and ").append(std::to_string(count - mostItems)).append(" more\n");
    }
    return text;
}

std::string hintsFor(const Request& request, const Outcome& outcome) {
    std::string text;
    for (const Hint& hint : hints) {
        if (hint.needsAttempt && request.isTrial) {
            continue;
        }
        for (const Item& item : outcome.failed) {
            if (item.code == hint.code) {
                text.append(messageLine(std::to_string(hint.code).append(": ").append(hint.text)));
                break;
            }
        }
    }
    return text;
}

} // namespace

std::string messageLine(const std::string& message) {
    return std::string("zqmigrate: ").append(shown(message)).append("\n");
}

std::string beginningOfReport(const Request& request) {
    return request.isJson ? beginningOfJson(request) : std::string();
}

std::string reportOfItem(const Request& request, const Item& item, bool isFirst) {
    if (request.isJson) {
        return std::string(isFirst ? "" : ",").append(jsonOf(item));
    }
    if (request.isQuiet) {
        return {};
    }
    std::string line = lineOf(item);
    const std::string& copy = request.isVerbose ? item.destination : item.newName;
    if (!copy.empty()) {
        line.append(" -> ").append(shown(copy));
    }
    return line.append("\n");
}

std::string endOfReport(const Request& request, const Outcome& outcome) {
    return request.isJson ? endOfJson(outcome) : std::string();
}

std::string summaryOf(const Request& request, const Outcome& outcome, std::size_t mostItems) {
    if (!outcome.error.empty()) {
        return messageLine(outcome.error);
    }
    std::string text;
    for (const std::string& folder : outcome.unreadableFolders) {
        text.append(messageLine(folder + ": this folder cannot be read, what it holds was passed over"));
    }
    if (outcome.isMoreUnreadable) {
        text.append(
            messageLine("a signal cut the search for folders that cannot be read: there may be more"));
    }
    if (!request.isQuiet || !outcome.isSuccess()) {
        text.append(howItWent(request, outcome));
        text.append(whatIsLeft(outcome, mostItems));
        text.append(hintsFor(request, outcome));
    }
    for (const std::string& note : outcome.notes) {
        text.append(messageLine(note));
    }
    if (request.isTrial && !request.isQuiet) {
        text.append(messageLine("this was a trial: nothing was changed"));
    }
    return text;
}

} // namespace ZQFoundation::zqmigrate
