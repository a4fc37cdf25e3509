// SPDX-License-Identifier: MIT
// The one-line renderings of NSArray(ZQFoundation) and NSDictionary(ZQFoundation).
#include "extensions/Condensed.h"

#include <algorithm>
#include <vector>

#include "foundation/objects/KeyTable.h"

namespace ZQFoundation {

namespace detail {

namespace {

using EntryPointer = const NSDictionaryEntry*;

/// Keys are strings and go in case-insensitive order; a dictionary with other keys keeps its own.
std::vector<EntryPointer> entriesInOrder(const NSObject& dictionary) {
    std::vector<EntryPointer> entries;
    bool allStrings = true;
    for (const NSDictionaryEntry& entry : dictionary.as<NSDictionary>()) {
        entries.push_back(&entry);
        allStrings = allStrings && Access::kind(entry.key) == Kind::string;
    }
    if (allStrings) {
        std::stable_sort(entries.begin(), entries.end(), [](EntryPointer left, EntryPointer right) {
            return left->key.as<NSString>().caseInsensitiveCompare(right->key.as<NSString>()) < 0;
        });
    }
    return entries;
}

/// Renders nested collections of any depth with an explicit stack.
class CondensedWriter {
public:
    explicit CondensedWriter(TextBuilder& out) noexcept : out_(out) {}

    void write(const NSObject& collection) {
        open(collection);
        while (!frames_.empty()) {
            step();
        }
    }

private:
    /// The members still to write: elements, or keys and values by turns.
    struct Frame {
        bool isArray;
        const NSObject* elements;
        std::vector<EntryPointer> entries;
        std::size_t next;
        std::size_t count;
    };

    void open(const NSObject& collection) {
        if (Access::kind(collection) == Kind::array) {
            out_.appendLiteral("( ");
            ArrayBody& body = *Access::array(collection);
            frames_.push_back({true, body.elements(), {}, 0, body.count});
        } else {
            out_.appendLiteral("{ ");
            std::vector<EntryPointer> entries = entriesInOrder(collection);
            const std::size_t memberCount = entries.size() * 2;
            frames_.push_back({false, nullptr, std::move(entries), 0, memberCount});
        }
    }

    void member(const NSObject& object) {
        if (isCondensable(object)) {
            open(object);
        } else {
            out_.appendObjectText(object.condensedDescription());
        }
    }

    void step() {
        Frame& frame = frames_.back();
        if (frame.isArray) {
            stepElement(frame, frame.next);
        } else {
            stepEntry(frame, frame.next);
        }
    }

    void stepElement(Frame& frame, std::size_t index) {
        if (index == frame.count) {
            out_.appendLiteral(" )");
            frames_.pop_back();
            return;
        }
        if (index != 0) {
            out_.appendLiteral(", ");
        }
        ++frame.next;
        member(frame.elements[index]);
    }

    void stepEntry(Frame& frame, std::size_t index) {
        if (index != 0) {
            index % 2 == 0 ? out_.appendLiteral("; ") : out_.appendLiteral(" = ");
        }
        if (index == frame.count) {
            out_.appendAscii('}');
            frames_.pop_back();
            return;
        }
        ++frame.next;
        const NSDictionaryEntry& entry = *frame.entries[index / 2];
        member(index % 2 == 0 ? entry.key : entry.value);
    }

    TextBuilder& out_;
    std::vector<Frame> frames_;
};

} // namespace

bool isCondensable(const NSObject& object) noexcept {
    return Access::kind(object) == Kind::array || Access::kind(object) == Kind::dictionary;
}

void appendCondensed(TextBuilder& out, const NSObject& collection) { CondensedWriter(out).write(collection); }

} // namespace detail

NSString NSArray::condensedDescription() const { return NSObject::condensedDescription(); }

NSString NSDictionary::condensedDescription() const { return NSObject::condensedDescription(); }

} // namespace ZQFoundation
