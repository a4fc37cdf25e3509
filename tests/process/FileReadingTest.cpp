// SPDX-License-Identifier: MIT
// Reading the files of user defaults and bundles, up to a limit of size.
#include "foundation/process/FileReading.h"

#include <cstdlib>
#include <new>

#include "foundation/objects/NSString.h"
#include "tests/kit/Items.h"
#include "tests/kit/ScratchFolder.h"

namespace {

// How many more allocations of this thread succeed; negative: all of them.
constinit thread_local long allocationsLeft = -1;

} // namespace

// Not inlined, so that the compiler never sees `free` meet a block of `new`.
[[gnu::noinline]] void* operator new(std::size_t size) {
    if (allocationsLeft >= 0 && allocationsLeft-- == 0) {
        allocationsLeft = 0; // from the first failure on there is no memory left
        throw std::bad_alloc();
    }
    if (void* const block = std::malloc(size == 0 ? 1 : size)) {
        return block;
    }
    throw std::bad_alloc();
}

[[gnu::noinline]] void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
    try {
        return ::operator new(size);
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
}

[[gnu::noinline]] void* operator new[](std::size_t size) { return ::operator new(size); }

[[gnu::noinline]] void* operator new[](std::size_t size, const std::nothrow_t& tag) noexcept {
    return ::operator new(size, tag);
}

[[gnu::noinline]] void operator delete(void* block) noexcept { std::free(block); }

[[gnu::noinline]] void operator delete(void* block, std::size_t) noexcept { std::free(block); }

[[gnu::noinline]] void operator delete[](void* block) noexcept { std::free(block); }

[[gnu::noinline]] void operator delete[](void* block, std::size_t) noexcept { std::free(block); }

using namespace ZQFoundation;

namespace {

constexpr std::size_t mebibyte = std::size_t{1} << 20;

struct Form {
    const char* what;
    detail::FileParser parse;
    std::string bytes;
};

std::vector<Form> forms() {
    const std::string text =
        "{ Key = (\"some text that is long enough for a block of its own\", <0f>, {a = b;}); }";
    std::string wide = "\xFF\xFE";
    for (const char character : text) {
        wide += {character, '\0'};
    }
    // {Key = ["some text", 5]}
    const std::string binary = std::string("bplist00\xD1\x01\x02SKey\xA2\x03\x04Ysome text\x10\x05", 30) +
                               std::string("\x08\x0B\x0F\x12\x1C", 5) +
                               std::string("\0\0\0\0\0\0\x01\x01\0\0\0\0\0\0\0\x05", 16) +
                               std::string("\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\x1E", 16);
    return {
        {"old-style", detail::dictionaryFromBytes, text},
        {"UTF-16", detail::dictionaryFromBytes, wide},
        {"XML", detail::dictionaryFromBytes,
         "<plist><dict><key>Key</key><array><string>some text that is long enough &amp; more "
         "\xC3\xA9</string>"
         "<real>1.5</real><date>2001-01-01T00:00:00Z</date><data>AAEC</data><dict/></array></dict></plist>"},
        {"binary", detail::dictionaryFromBytes, binary},
        {"strings table", detail::stringTableFromBytes, "\"Key\" = \"a text with \\U00e9\"; other;"},
    };
}

} // namespace

TEST(FileReading, readsFilesOfUpTo16MiB) {
    const kit::ScratchFolder folder;
    const std::string file = folder.write("f", "{ Key = text; }");
    for (const auto& [size, result] : {std::pair{16 * mebibyte, detail::FileResult::read},
                                       std::pair{16 * mebibyte + 1, detail::FileResult::unreadable}}) {
        folder.write("f", "{ Key = text; }" + std::string(size - 15, ' '));
        NSDictionary values;
        detail::FileStamp stamp;
        EXPECT_EQ(detail::readStampedFile(file, detail::dictionaryFromBytes, values, stamp), result) << size;
        EXPECT_EQ(values.count(), result == detail::FileResult::read ? 1u : 0u) << size;
    }
}

TEST(FileReading, withoutMemoryAFileCountsAsUnreadableForTheMoment) {
    const kit::ScratchFolder folder;
    const int descriptors = kit::openDescriptors();
    for (const Form& form : forms()) {
        SCOPED_TRACE(form.what);
        const std::string file = folder.write("f", form.bytes);
        NSDictionary values;
        detail::FileStamp stamp;
        detail::FileResult result = detail::FileResult::unreadable;
        long failures = 0;
        // Memory ends at the first allocation, at the second, and so on, until there was enough.
        for (long enough = 0; result != detail::FileResult::read && enough < 10'000; ++enough) {
            allocationsLeft = enough;
            result = detail::readStampedFile(file, form.parse, values, stamp);
            allocationsLeft = -1;
            failures += result == detail::FileResult::exhausted ? 1 : 0;
            ASSERT_NE(result, detail::FileResult::unreadable) << enough;
            ASSERT_EQ(static_cast<bool>(values), result == detail::FileResult::read) << enough;
            ASSERT_EQ(kit::openDescriptors(), descriptors) << enough;
        }
        EXPECT_EQ(result, detail::FileResult::read);
        EXPECT_TRUE(values.objectForKey("Key"));
        EXPECT_GE(failures, 3);
    }
}

TEST(FileReading, givesNilForWhatIsNoFile) {
    const kit::ScratchFolder folder;
    for (const std::string& path : {std::string(), folder.path(), folder / "none"}) {
        NSDictionary values = NSDictionary::dictionary();
        detail::FileStamp stamp;
        EXPECT_EQ(detail::readStampedFile(path, detail::dictionaryFromBytes, values, stamp),
                  detail::FileResult::unreadable);
        EXPECT_FALSE(values);
    }
}
