// SPDX-License-Identifier: MIT
// A host may have closed its standard streams: no file that the library writes to may get their numbers, or
// log lines would end up in it.
#include <string>

#include <gtest/gtest.h>
#include <unistd.h>

#include "foundation/files/NSFileHandle.h"
#include "foundation/files/NSFileManager.h"
#include "foundation/objects/NSData.h"
#include "foundation/objects/NSString.h"
#include "info/RoutingSocket.h"
#include "log/ZQLog.h"
#include "tests/kit/Items.h"
#include "tests/kit/ScratchFolder.h"
#include "tests/kit/Threads.h"

using namespace ZQFoundation;

namespace {

void closeStandardStreams() {
    for (const int number : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        ::close(number);
    }
}

bool standardStreamsAreClosed() {
    bool areClosed = true;
    for (const int number : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        areClosed = areClosed && ::fcntl(number, F_GETFD) < 0;
    }
    return areClosed;
}

} // namespace

TEST(ClosedStandardStreams, keepFileHandlesFreeOfLogLines) {
    const kit::ScratchFolder folder;
    folder.write("data", "0123456789");
    EXPECT_TRUE(kit::insideFolder(folder.path(), [] {
        closeStandardStreams();
        NSFileHandle writer = NSFileHandle::fileHandleForWritingAtPath("data");
        NSFileHandle reader = NSFileHandle::fileHandleForReadingAtPath("data");
        NSFileHandle both = NSFileHandle::fileHandleForUpdatingAtPath("data");
        ZQLog::log("a line");
        writer.writeData(NSData::dataWithBytes_length("ab", 2));
        return writer.fileDescriptor() > STDERR_FILENO && reader.fileDescriptor() > STDERR_FILENO &&
               both.fileDescriptor() > STDERR_FILENO && standardStreamsAreClosed();
    }));
    EXPECT_EQ(kit::contentsOf(folder / "data"), "ab23456789");
}

TEST(ClosedStandardStreams, stayClosedWhateverIsDoneWithFiles) {
    const kit::ScratchFolder folder;
    folder.write("tree/a", "a");
    EXPECT_TRUE(kit::insideFolder(folder.path(), [] {
        closeStandardStreams();
        NSFileManager& files = NSFileManager::defaultManager();
        const NSData contents = NSData::dataWithBytes_length("made", 4);
        return files.createFileAtPath_contents_attributes("made", contents, {}) &&
               NSString("text").appendToFile_encoding("appended", NSUTF8StringEncoding) &&
               files.copyItemAtPath_toPath_error("tree", "copy") &&
               files.contentsOfDirectoryAtPath_error("copy").count() == 1 &&
               NSData::dataWithContentsOfFile("made").length() == 4 && standardStreamsAreClosed();
    }));
    EXPECT_EQ(kit::contentsOf(folder / "made"), "made");
    EXPECT_EQ(kit::contentsOf(folder / "appended"), "text");
    EXPECT_EQ(kit::contentsOf(folder / "copy/a"), "a");
}

TEST(ClosedStandardStreams, keepFilesFreeOfTheLinesOfOtherThreads) {
    const kit::ScratchFolder folder;
    constexpr int count = 300;
    EXPECT_TRUE(kit::insideFolder(folder.path(), [] {
        ::close(STDERR_FILENO);
        const kit::Meanwhile other([] { ZQLog::log("a line"); });
        bool isGood = true;
        for (int index = 0; index < count; ++index) {
            isGood = isGood && NSString("text").appendToFile_encoding(NSString(std::to_string(index)),
                                                                      NSUTF8StringEncoding);
        }
        return isGood;
    }));
    for (int index = 0; index < count; ++index) {
        ASSERT_EQ(kit::contentsOf(folder / std::to_string(index)), "text") << index;
    }
}

TEST(ClosedStandardStreams, areNotTakenByTheSocketThatARouteLookupKeeps) {
    const kit::ScratchFolder folder;
    EXPECT_TRUE(kit::insideFolder(folder.path(), [] {
        closeStandardStreams();
        getLocalIPAddressOfInterfaceOfRouteTo("127.0.0.1");
        return standardStreamsAreClosed();
    }));
}
