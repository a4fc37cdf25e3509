// SPDX-License-Identifier: MIT
// Composes what is printed: a line or a JSON object for each item, and a summary.
#include "tools/zqmigrate/Report.h"

#include <algorithm>

#include "tools/zqmigrate/Text.h"

namespace ZQFoundation::tools::zqmigrate {

namespace {

/// A longer list would scroll the rest off the screen.
constexpr std::size_t maxListed = 20;

/// What the user can do about a code.
constexpr struct {
    std::uint32_t code;
    const char* text;
    bool needsAttempt = false; ///< it concerns what an attempt has left
} hints[] = {
    {kFileMigrationSourceIsFolder, "the commands folder and batch are for folders"},
    {kFileMigrationSourceIsFile, "the command file is for files"},
    {kFileMigrationSourceFileCannotBeRemoved,
     "original and copy both exist; the original may have changed: compare them before you remove one", true},
    {kFileMigrationDestinationParentFolderDoesNotExist, "--create-parents makes missing folders"},
    {kFileMigrationDestinationFileExists,
     "--overwrite replaces what is there, --rename gives the copy another name"},
    {kFileMigrationDestinationFolderExists,
     "--overwrite replaces the folder with all its contents; --rename gives the copy another name"},
    {kFileMigrationDestinationFileWritingFailed,
     "no part of a copy is left; what --overwrite replaces may be gone", true},
    {kFileMigrationDestinationFolderOverwritingFailed,
     "the folder at the destination may have lost part of its contents", true},
    {kFileMigrationDestinationFolderWritingFailed,
     "no part of a copy is left; what --overwrite replaces may be gone", true},
};

/// In the user's language, like the library's own texts; the hints below are English only.
NSString descriptionOf(const Item& item) {
    return ZQFileMigrator::descriptionOfFileMigrationRetvalType(item.code);
}

/// " -> sub/b 1.log" for a copy that was given another name, or for each; in a batch below the destination.
std::string arrowOf(const Request& request, const Item& item) {
    if (!item.destination || (!request.isVerbose && item.destination == request.destinationOf(item.path))) {
        return {};
    }
    const bool isShort = request.isBatch() && !request.isVerbose;
    return " -> " + shown(isShort
                              ? item.path.stringByDeletingLastPathComponent().stringByAppendingPathComponent(
                                    item.destination.lastPathComponent())
                              : request.typedDestination(item.destination));
}

/// "30  sub/b.log: the destination file already exists", with a line below it for a note.
std::string linesOf(const Request& request, const Item& item) {
    return (item.code < 10 ? " " : "") + std::to_string(item.code) + "  " +
           shown(request.typedPath(item.path)) + ": " + shown(descriptionOf(item)) + arrowOf(request, item) +
           (item.note ? "\n      note: " + shown(item.note) : "") + "\n";
}

std::string flag(const char* name, bool value) { return member(name, value ? "true" : "false"); }

std::string number(const char* name, std::uint64_t value) { return member(name, std::to_string(value)); }

std::string joined(const std::vector<std::string>& members) {
    std::string text;
    for (const std::string& member : members) {
        text.append(text.empty() ? "" : ",\n").append(member);
    }
    return text;
}

/// `"<name>": [...]`, one element on each line. The elements are already JSON.
std::string array(const char* name, const std::vector<std::string>& members) {
    return member(name, "[" + (members.empty() ? "" : "\n" + joined(members)) + "]");
}

std::string arrayOfPaths(const char* name, const std::vector<NSString>& paths) {
    std::vector<std::string> members;
    for (const NSString& path : paths) {
        members.push_back("{" + memberOfPath("path", path) + "}");
    }
    return array(name, members);
}

/// When a folder is migrated, the only item is a folder; otherwise all items are called files, even links and
/// devices.
std::string counted(std::uint64_t count, const Request& request) {
    return grouped(count) + (request.operation == Operation::folder ? " folder" : " file") +
           (count == 1 ? "" : "s");
}

/// One sentence: how many of all items were migrated, or would be in a dry run, and what is left to do. A run
/// without files is not a failure, but it is reported.
std::string howItWent(const Request& request, const Outcome& outcome) {
    const std::uint64_t left = outcome.left();
    const std::uint64_t count = outcome.migrated + left;
    if (count == 0 && outcome.signal == 0) {
        const char* const kind = request.extension ? "files with that extension" : "files";
        return messageLine(
            NSString::stringWithFormat("nothing to do: there are no %s in %@", kind, request.from));
    }
    std::string text = outcome.signal == 0 ? "" : "stopped by a signal; ";
    text.append(left == 0 ? "" : grouped(outcome.migrated) + " of ").append(counted(count, request));
    text.append(request.isTrial ? " would be" : "").append(request.keepOriginal ? " copied" : " moved");
    if (left != 0) {
        text.append("; left to do: ")
            .append(grouped(left))
            .append(outcome.isMoreNotReached ? " or more" : "");
    } else if (outcome.signal != 0) {
        text.append(", nothing is left to do");
    }
    return messageLine(text);
}

/// The first lines of a list, and the number of the rest.
template <class LineAt>
std::string listed(const Request& request, std::size_t count, const LineAt& lineAt) {
    std::string text;
    for (std::size_t index = 0; index < std::min(count, maxListed); ++index) {
        text.append(lineAt(index));
    }
    const std::string more = "  ... and " + grouped(count - std::min(count, maxListed)) + " more";
    return count <= maxListed ? text : text + more + (request.isJson ? "\n" : "; --json lists all\n");
}

/// Each path on a separate line, as a message of the program.
std::string listedPaths(const Request& request, const std::vector<NSString>& paths, const char* complaint) {
    return listed(request, paths.size(), [&](std::size_t index) {
        return messageLine(NSString::stringWithFormat("%@: %s", paths[index], complaint));
    });
}

/// Failed items with their reasons, then those that were not reached because of a signal.
std::string whatIsLeft(const Request& request, const Outcome& outcome) {
    const std::size_t failed = outcome.failed.size();
    return listed(request, outcome.left(), [&](std::size_t index) {
        return "  " + (index < failed
                           ? linesOf(request, outcome.failed[index])
                           : "--  " + shown(request.typedPath(outcome.notReached[index - failed])) +
                                 ": not reached\n");
    });
}

/// Each hint once, however many items have its code. In a dry run, no hints about an attempt, because there
/// was none.
std::string hintsFor(const Request& request, const Outcome& outcome) {
    std::string text;
    for (const auto& hint : hints) {
        const bool isOfUse = std::any_of(outcome.failed.begin(), outcome.failed.end(),
                                         [&](const Item& item) { return item.code == hint.code; });
        if (isOfUse && !(hint.needsAttempt && request.isTrial)) {
            text.append(messageLine(NSString::stringWithFormat("%u: %s", hint.code, hint.text)));
        }
    }
    return text;
}

} // namespace

// Control characters of a path in the message are escaped, so it is one line.
std::string messageLine(const NSString& message) { return "zqmigrate: " + shown(message) + "\n"; }

// The request as it was understood, so that a saved report explains itself.
std::string beginningOfReport(const Request& request) {
    if (!request.isJson) {
        return {};
    }
    std::vector<std::string> members{
        member("operation", quoted(operationNames[static_cast<int>(request.operation)])),
        memberOfPath("from", request.from), memberOfPath("to", request.to)};
    if (request.isBatch()) {
        members.push_back(memberOfPath("extension", request.extension));
        members.push_back(flag("dotFiles", request.includeDotFiles));
    }
    members.push_back(flag("keepOriginal", request.keepOriginal));
    members.push_back(flag("createParents", request.createDestinationParentFolder));
    members.push_back(flag("overwrite", request.overwriteDestination));
    members.push_back(flag("rename", request.renameIfDestinationExists));
    members.push_back(flag("dryRun", request.isTrial));
    return "{\n" + joined(members) + ",\n" + member("items", "[\n");
}

// For people, standard output lists what was done, and failures go to standard error with the summary.
// Programs get all items in one list.
std::string reportOfItem(const Request& request, const Item& item, bool isFirst) {
    if (!request.isJson) {
        return request.isQuiet || item.code != kFileMigrationSuccess ? "" : linesOf(request, item);
    }
    const NSString destination = request.typedDestination(item.destination);
    return (isFirst ? "{" : ",{") + memberOfPath("path", request.typedPath(item.path)) +
           (destination ? ", " + memberOfPath("destination", destination) : "") + ", " +
           number("code", item.code) + ", " + member("description", quoted(descriptionOf(item))) +
           (item.note ? ", " + member("note", quoted(item.note)) : "") + "}\n";
}

// Every member is always present, so that programs need not check. `left` is what a second run would have to
// do.
std::string endOfReport(const Request& request, const Outcome& outcome) {
    if (!request.isJson) {
        return {};
    }
    std::vector<NSString> left;
    for (const Item& item : outcome.failed) {
        left.push_back(request.typedPath(item.path));
    }
    for (const NSString& path : outcome.notReached) {
        left.push_back(request.typedPath(path));
    }
    std::vector<std::string> notes;
    for (const NSString& note : outcome.notes) {
        notes.push_back(quoted(note));
    }
    return "],\n" +
           joined({number("migrated", outcome.migrated), number("failed", outcome.failed.size()),
                   number("notReached", outcome.notReached.size()), arrayOfPaths("left", left),
                   flag("isLeftComplete", !outcome.isMoreNotReached),
                   arrayOfPaths("unreadableFolders", outcome.unreadableFolders),
                   flag("areUnreadableFoldersComplete", !outcome.isMoreUnreadable),
                   arrayOfPaths("brokenLinks", outcome.brokenLinks), array("notes", notes),
                   member("error", outcome.error ? quoted(outcome.error) : "null"),
                   flag("interrupted", outcome.signal != 0), flag("success", outcome.isSuccess())}) +
           "\n}\n";
}

// A quiet run that went well reports only what is unusual: folders, links and notes.
std::string summaryOf(const Request& request, const Outcome& outcome) {
    if (outcome.error) {
        return messageLine(outcome.error);
    }
    std::string text = listedPaths(request, outcome.unreadableFolders,
                                   "this folder cannot be read; its contents were ignored");
    if (outcome.isMoreUnreadable) {
        text += messageLine("a signal stopped the search for folders that cannot be read: there may be more");
    }
    if (!request.isQuiet || !outcome.isSuccess()) {
        text += howItWent(request, outcome) + whatIsLeft(request, outcome) + hintsFor(request, outcome);
    }
    text +=
        listedPaths(request, outcome.brokenLinks, "this link is dangling now; at its old place it was valid");
    for (const NSString& note : outcome.notes) {
        text += messageLine(note);
    }
    const bool isSaid = request.isTrial && !request.isQuiet;
    return isSaid ? text + messageLine("this was a dry run: nothing was changed") : text;
}

} // namespace ZQFoundation::tools::zqmigrate
