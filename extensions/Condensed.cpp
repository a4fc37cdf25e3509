// SPDX-License-Identifier: MIT
// The one-line descriptions of arrays and dictionaries.
#include "extensions/Condensed.h"

#include <vector>

#include "foundation/objects/EntryOrder.h"

namespace ZQFoundation::detail {

namespace {

/// Describes nested collections of any depth, with an explicit stack instead of recursion.
class CondensedWriter {
public:
    explicit CondensedWriter(TextBuilder& out) noexcept : out_(out) {}

    /// Ends when the outermost collection is closed: each step writes a piece of the innermost one.
    void write(const NSObject& collection) {
        open(collection);
        while (!frames_.empty()) {
            step();
        }
    }

private:
    /// The members still to be written: elements, or keys and values alternately.
    struct Frame {
        bool isArray;
        const NSObject* elements;
        std::vector<EntryPointer> entries;
        std::size_t next;
        std::size_t count;
    };

    /// Begins a collection. The keys of a dictionary are put in order here, once; the frame refers to its
    /// entries, which the outermost collection keeps alive.
    void open(const NSObject& collection) {
        if (Access::kind(collection) == Kind::array) {
            out_.appendLiteral("( ");
            ArrayBody& body = *Access::array(collection);
            frames_.push_back({true, body.elements(), {}, 0, body.count});
        } else {
            out_.appendLiteral("{ ");
            std::vector<EntryPointer> entries =
                entriesInOrder(collection, [](const NSString& left, const NSString& right) {
                    return left.caseInsensitiveCompare(right) == NSOrderedAscending;
                });
            const std::size_t memberCount = entries.size() * 2;
            frames_.push_back({false, nullptr, std::move(entries), 0, memberCount});
        }
    }

    /// Anything but a collection ends the nesting: a host object describes itself, on one line if it can.
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

    /// The frame is moved on before the member is written: opening that may move all frames in memory.
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

    /// Keys have even numbers, values odd ones. A semicolon follows every value, the last one too, unlike the
    /// comma of an array: "{ a = 1; }" and "( 1, 2 )".
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

} // namespace ZQFoundation::detail

namespace ZQFoundation {

// Declared for each type, so that a reader of its header finds it; the rule is the same for all values.
NSString NSArray::condensedDescription() const { return NSObject::condensedDescription(); }

NSString NSDictionary::condensedDescription() const { return NSObject::condensedDescription(); }

} // namespace ZQFoundation
