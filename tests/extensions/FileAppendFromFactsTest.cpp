// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <string>

#include <sys/resource.h>

#include "foundation/files/NSFileHandle.h"
#include "tests/files/FileScene.h"
#include "tests/kit/Values.h"

using namespace ZQFoundation;
using namespace std::string_literals;
using scene::contentsOf;
using scene::stands;
using kit::raised;

namespace {

constexpr NSStringEncoding utf8 = NSUTF8StringEncoding;

bool append(const NSString& text, const std::string& path, NSStringEncoding encoding = utf8) {
    return text.appendToFile_encoding(path, encoding);
}

/// A folder of which an ordinary user may change the contents.
void openToAll(const std::string& folder) { ASSERT_EQ(::chmod(folder.c_str(), 0777), 0); }

NSData dataOf(const std::string& bytes) { return NSData::dataWithBytes_length(bytes.data(), bytes.size()); }

std::string bytesOf(const NSData& data) {
    return data ? std::string(reinterpret_cast<const char*>(data.bytes()), data.length()) : "(nil)";
}

constexpr const char* failure = "NSFileHandleOperationException";

// Appending

TEST(FileAppendFromFacts, makesANewFile) {
    const scene::Folder folder;
    EXPECT_TRUE(append("text", folder / "new"));
    EXPECT_EQ(contentsOf(folder / "new"), "text");
}

TEST(FileAppendFromFacts, leavesBothTextsInOrder) {
    const scene::Folder folder;
    EXPECT_TRUE(append("first ", folder / "f"));
    EXPECT_TRUE(append("second", folder / "f"));
    EXPECT_EQ(contentsOf(folder / "f"), "first second");
}

TEST(FileAppendFromFacts, keepsWhatStandsInTheFile) {
    const scene::Folder folder;
    const std::string before = "\xFF\0\n"s + std::string(100000, 'x');
    folder.write("f", before);
    EXPECT_TRUE(append("y", folder / "f"));
    EXPECT_TRUE(contentsOf(folder / "f") == before + "y");
}

TEST(FileAppendFromFacts, writesNoLineEnd) {
    const scene::Folder folder;
    EXPECT_TRUE(append("a\n", folder / "f"));
    EXPECT_TRUE(append("b\r\n", folder / "f"));
    EXPECT_EQ(contentsOf(folder / "f"), "a\nb\r\n");
}

TEST(FileAppendFromFacts, writesZerosAndLongTexts) {
    const scene::Folder folder;
    EXPECT_TRUE(append(NSString::stringWithCharacters_length(u"a\0b", 3), folder / "f"));
    EXPECT_EQ(contentsOf(folder / "f"), "a\0b"s);
    const std::string text(3000000, 'z');
    EXPECT_TRUE(append(text, folder / "long"));
    EXPECT_TRUE(contentsOf(folder / "long") == text);
}

TEST(FileAppendFromFacts, makesAnEmptyFileForAnEmptyText) {
    const scene::Folder folder;
    EXPECT_TRUE(append("", folder / "f"));
    EXPECT_TRUE(stands(folder / "f"));
    EXPECT_EQ(contentsOf(folder / "f"), "");
    folder.write("full", "x");
    EXPECT_TRUE(append("", folder / "full"));
    EXPECT_EQ(contentsOf(folder / "full"), "x");
}

TEST(FileAppendFromFacts, writesEachEncodingsBytes) {
    const struct {
        NSStringEncoding encoding;
        std::string bytes;
    } rows[] = {
        {NSUTF8StringEncoding, "a\xC3\xA9\xE2\x82\xAC"},
        {NSWindowsCP1252StringEncoding, "a\xE9\x80"},
        {NSMacOSRomanStringEncoding, "a\x8E\xDB"},
        {NSNonLossyASCIIStringEncoding, "a\\351\\u20ac"},
        {NSUTF16BigEndianStringEncoding, "\0a\0\xE9\x20\xAC"s},
        {NSUTF16LittleEndianStringEncoding, "a\0\xE9\0\xAC\x20"s},
        {NSUTF32BigEndianStringEncoding, "\0\0\0a\0\0\0\xE9\0\0\x20\xAC"s},
    };
    const scene::Folder folder;
    for (const auto& row : rows) {
        const std::string path = folder / std::to_string(row.encoding);
        EXPECT_TRUE(append(u"a\u00E9\u20AC", path, row.encoding)) << row.encoding;
        EXPECT_TRUE(append(u"a\u00E9\u20AC", path, row.encoding)) << row.encoding;
        EXPECT_EQ(contentsOf(path), row.bytes + row.bytes) << row.encoding;
    }
}

TEST(FileAppendFromFacts, writesAMarkWithEachPieceOfUtf16) {
    if constexpr (__BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__) {
        const scene::Folder folder;
        EXPECT_TRUE(append("a", folder / "f", NSUTF16StringEncoding));
        EXPECT_TRUE(append("", folder / "f", NSUTF16StringEncoding));
        EXPECT_TRUE(append("b", folder / "f", NSUTF16StringEncoding));
        EXPECT_EQ(contentsOf(folder / "f"), "\xFF\xFE"
                                            "a\0"
                                            "\xFF\xFE"
                                            "\xFF\xFE"
                                            "b\0"s);
    }
}

TEST(FileAppendFromFacts, writesNothingOfATextThatDoesNotFitTheEncoding) {
    const scene::Folder folder;
    folder.write("f", "before");
    EXPECT_FALSE(append(u"good \u20AC", folder / "f", NSISOLatin1StringEncoding));
    EXPECT_FALSE(append(u"\u00E9", folder / "f", NSASCIIStringEncoding));
    EXPECT_FALSE(append(NSString::stringWithCharacters_length(u"a\xD800", 2), folder / "f"));
    EXPECT_FALSE(append("a", folder / "f", NSStringEncoding(4711)));
    EXPECT_FALSE(append("a", folder / "f", NSStringEncoding(0)));
    EXPECT_EQ(contentsOf(folder / "f"), "before");
    EXPECT_FALSE(append(u"\u00E9", folder / "new", NSASCIIStringEncoding));
    EXPECT_EQ(contentsOf(folder / "new"), "");
}

TEST(FileAppendFromFacts, isFalseInAMissingFolderAndMakesNothing) {
    const scene::Folder folder;
    EXPECT_FALSE(append("text", folder / "missing/f"));
    EXPECT_FALSE(stands(folder / "missing"));
    folder.write("file", "x");
    EXPECT_FALSE(append("text", folder / "file/f"));
    EXPECT_EQ(contentsOf(folder / "file"), "x");
}

TEST(FileAppendFromFacts, isFalseForPathsThatNameNoFile) {
    const scene::Folder folder;
    EXPECT_FALSE(NSString("text").appendToFile_encoding(nullptr, utf8));
    EXPECT_FALSE(append("text", ""));
    EXPECT_FALSE(append("text", folder.path()));
    EXPECT_FALSE(append("text", folder.path() + "/"));
    EXPECT_FALSE(append("text", (folder / "a") + "\0b"s));
    EXPECT_FALSE(stands(folder / "a"));
    const NSString surrogate = NSString::stringWithCharacters_length(u"/\xD800", 2);
    EXPECT_FALSE(NSString("text").appendToFile_encoding(
        NSString(folder.path()).stringByAppendingString(surrogate), utf8));
}

TEST(FileAppendFromFacts, isFalseForANilTextAndMakesNothing) {
    const scene::Folder folder;
    EXPECT_FALSE(append(nullptr, folder / "f"));
    EXPECT_FALSE(stands(folder / "f"));
}

TEST(FileAppendFromFacts, givesANewFileTheDefaultMode) {
    const scene::Folder folder;
    const scene::Umask mask(027);
    EXPECT_TRUE(append("text", folder / "f"));
    EXPECT_EQ(scene::modeOf(folder / "f"), 0640u);
}

TEST(FileAppendFromFacts, keepsTheModeAndTheIdentityOfAFile) {
    const scene::Folder folder;
    folder.write("f", "a");
    ASSERT_EQ(::chmod((folder / "f").c_str(), 0600), 0);
    ASSERT_EQ(::link((folder / "f").c_str(), (folder / "other").c_str()), 0);
    EXPECT_TRUE(append("b", folder / "f"));
    EXPECT_EQ(scene::modeOf(folder / "f"), 0600u);
    EXPECT_EQ(contentsOf(folder / "other"), "ab");
}

TEST(FileAppendFromFacts, appendsThroughALinkToAFile) {
    const scene::Folder folder;
    folder.write("target", "a");
    ASSERT_EQ(::symlink("target", (folder / "link").c_str()), 0);
    EXPECT_TRUE(append("b", folder / "link"));
    EXPECT_EQ(contentsOf(folder / "target"), "ab");
}

TEST(FileAppendFromFacts, putsAFileInThePlaceOfADanglingLink) {
    const scene::Folder folder;
    ASSERT_EQ(::symlink("target", (folder / "link").c_str()), 0);
    EXPECT_TRUE(append("text", folder / "link"));
    EXPECT_EQ(contentsOf(folder / "link"), "text");
    EXPECT_FALSE(stands(folder / "target"));
}

TEST(FileAppendFromFacts, takesRelativePathsAndExpandsNoTilde) {
    const scene::Folder folder;
    const scene::CurrentFolder inside(folder.path());
    EXPECT_TRUE(append("a", "f"));
    EXPECT_TRUE(append("b", "./f"));
    EXPECT_TRUE(append("c", "~"));
    EXPECT_EQ(contentsOf(folder / "f"), "ab");
    EXPECT_EQ(contentsOf(folder / "~"), "c");
}

TEST(FileAppendFromFacts, takesFileNamesOfForeignBytes) {
    const scene::Folder folder;
    const std::string path = folder / "\xFF\x80";
    EXPECT_TRUE(NSString("a").appendToFile_encoding(scene::fromBytes(path), utf8));
    EXPECT_EQ(contentsOf(path), "a");
    EXPECT_TRUE(append("b", folder / "\u00E9"));
    EXPECT_EQ(contentsOf(folder / "\u00E9"), "b");
}

TEST(FileAppendFromFacts, isFalseWhenWritingFails) {
    EXPECT_FALSE(append("text", "/dev/full"));
    EXPECT_TRUE(append("text", "/dev/null"));
}

TEST(FileAppendFromFacts, isFalseAtAFileSizeLimitAndRaisesNoSignal) {
    const scene::Folder folder;
    openToAll(folder.path());
    const std::string path = folder / "f";
    EXPECT_EQ(scene::inUnprivilegedChild([&] {
                  const rlimit limit{4, 4};
                  if (::setrlimit(RLIMIT_FSIZE, &limit) != 0) {
                      return 2;
                  }
                  return append("1234", path) && !append("5", path) ? 0 : 1;
              }),
              0);
    EXPECT_EQ(contentsOf(path), "1234");
}

TEST(FileAppendFromFacts, isFalseWithoutThePermission) {
    const scene::Folder folder;
    folder.makeFolder("closed");
    ASSERT_EQ(::chmod((folder / "closed").c_str(), 0555), 0);
    EXPECT_EQ(scene::inUnprivilegedChild([&] { return append("text", folder / "closed/f") ? 1 : 0; }), 0);
    EXPECT_FALSE(stands(folder / "closed/f"));
}

TEST(FileAppendFromFacts, neverTruncatesAFileThatMayNotBeWritten) {
    const scene::Folder folder;
    openToAll(folder.path());
    const std::string path = folder / "f";
    EXPECT_EQ(scene::inUnprivilegedChild([&] {
                  folder.write("f", "precious");
                  ::chmod(path.c_str(), 0444);
                  return append("text", path) ? 1 : 0;
              }),
              0);
    EXPECT_EQ(contentsOf(path), "precious");
}

TEST(FileAppendFromFacts, needsNoPermissionToRead) {
    const scene::Folder folder;
    openToAll(folder.path());
    const std::string path = folder / "f";
    EXPECT_EQ(scene::inUnprivilegedChild([&] {
                  folder.write("f", "a");
                  ::chmod(path.c_str(), 0200);
                  const bool appended = append("b", path);
                  ::chmod(path.c_str(), 0644);
                  return appended ? 0 : 1;
              }),
              0);
    EXPECT_EQ(contentsOf(path), "ab");
}

TEST(FileAppendFromFacts, closesTheFileWhateverHappens) {
    const scene::Folder folder;
    const int before = scene::openDescriptors();
    for (int round = 0; round < 20; ++round) {
        EXPECT_TRUE(append("a", folder / "f"));
        EXPECT_TRUE(append("a", folder / std::to_string(round)));
        EXPECT_FALSE(append("a", folder / "missing/f"));
        EXPECT_FALSE(append("a", "/dev/full"));
        EXPECT_FALSE(append("a", folder.path()));
        EXPECT_FALSE(append(u"\u00E9", folder / "f", NSASCIIStringEncoding));
        EXPECT_FALSE(append("a", folder / "f", NSStringEncoding(4711)));
    }
    EXPECT_EQ(scene::openDescriptors(), before);
}

TEST(FileAppendFromFacts, leavesErrnoAlone) {
    const scene::Folder folder;
    errno = 4711;
    EXPECT_TRUE(append("a", folder / "f"));
    EXPECT_EQ(errno, 4711);
    EXPECT_FALSE(append("a", folder / "missing/f"));
    EXPECT_EQ(errno, 4711);
    EXPECT_FALSE(append("a", "/dev/full"));
    EXPECT_EQ(errno, 4711);
}

// File handles

TEST(FileHandleFromFacts, opensAFileAtItsStartWithoutTruncating) {
    const scene::Folder folder;
    const std::string path = folder.write("f", "abcdef");
    NSFileHandle handle = NSFileHandle::fileHandleForWritingAtPath(path);
    ASSERT_TRUE(handle);
    EXPECT_EQ(contentsOf(path), "abcdef");
    EXPECT_EQ(handle.offsetInFile(), 0u);
    handle.writeData(dataOf("XY"));
    EXPECT_EQ(contentsOf(path), "XYcdef");
    EXPECT_EQ(handle.seekToEndOfFile(), 6u);
    handle.writeData(dataOf("Z"));
    EXPECT_EQ(contentsOf(path), "XYcdefZ");
}

TEST(FileHandleFromFacts, isNilForWhatCannotBeOpened) {
    const scene::Folder folder;
    EXPECT_FALSE(NSFileHandle::fileHandleForWritingAtPath(folder / "absent"));
    EXPECT_FALSE(stands(folder / "absent"));
    EXPECT_FALSE(NSFileHandle::fileHandleForWritingAtPath(folder.path()));
    EXPECT_FALSE(NSFileHandle::fileHandleForWritingAtPath(""));
    EXPECT_FALSE(NSFileHandle::fileHandleForWritingAtPath(nullptr));
    EXPECT_FALSE(NSFileHandle::fileHandleForWritingAtPath((folder / "a") + "\0"s));
    folder.write("f", "x");
    ASSERT_EQ(::chmod((folder / "f").c_str(), 0444), 0);
    EXPECT_EQ(scene::inUnprivilegedChild(
                  [&] { return NSFileHandle::fileHandleForWritingAtPath(folder / "f") ? 1 : 0; }),
              0);
}

TEST(FileHandleFromFacts, writesNothingForNilAndEmptyData) {
    const scene::Folder folder;
    const std::string path = folder.write("f", "a");
    NSFileHandle handle = NSFileHandle::fileHandleForWritingAtPath(path);
    handle.writeData(nullptr);
    handle.writeData(NSData::data());
    EXPECT_EQ(handle.offsetInFile(), 0u);
    EXPECT_EQ(contentsOf(path), "a");
}

TEST(FileHandleFromFacts, raisesWhenAWriteFails) {
    NSFileHandle handle = NSFileHandle::fileHandleForWritingAtPath("/dev/full");
    ASSERT_TRUE(handle);
    EXPECT_EQ(raised([&] { handle.writeData(dataOf("x")); }), failure);
    handle.writeData(nullptr);
}

TEST(FileHandleFromFacts, raisesAfterClosing) {
    const scene::Folder folder;
    NSFileHandle handle = NSFileHandle::fileHandleForUpdatingAtPath(folder.write("f", "a"));
    ASSERT_TRUE(handle);
    handle.closeFile();
    EXPECT_EQ(raised([&] { handle.writeData(dataOf("x")); }), failure);
    EXPECT_EQ(raised([&] { handle.seekToEndOfFile(); }), failure);
    EXPECT_EQ(raised([&] { handle.seekToFileOffset(0); }), failure);
    EXPECT_EQ(raised([&] { handle.readDataToEndOfFile(); }), failure);
    EXPECT_EQ(contentsOf(folder / "f"), "a");
}

TEST(FileHandleFromFacts, raisesForASeekThatFails) {
    int ends[2];
    ASSERT_EQ(::pipe(ends), 0);
    NSFileHandle handle =
        NSFileHandle::fileHandleForWritingAtPath("/proc/self/fd/" + std::to_string(ends[1]));
    ASSERT_TRUE(handle);
    EXPECT_EQ(raised([&] { handle.seekToEndOfFile(); }), failure);
    ::close(ends[0]);
    ::close(ends[1]);
}

TEST(FileHandleFromFacts, readsBackWhatItWrote) {
    const scene::Folder folder;
    const std::string bytes = "\0\xFF\r\n"s + std::string(200000, 'q');
    NSFileHandle writer = NSFileHandle::fileHandleForWritingAtPath(folder.write("f", ""));
    writer.writeData(dataOf(bytes));
    writer.closeFile();
    NSFileHandle reader = NSFileHandle::fileHandleForReadingAtPath(folder / "f");
    EXPECT_EQ(bytesOf(reader.readDataOfLength(4)), "\0\xFF\r\n"s);
    EXPECT_TRUE(bytesOf(reader.readDataToEndOfFile()) == bytes.substr(4));
    EXPECT_EQ(bytesOf(reader.readDataToEndOfFile()), "");
}

} // namespace
