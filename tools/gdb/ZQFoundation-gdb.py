# SPDX-License-Identifier: MIT
"""Shows the values of ZQFoundation in gdb.

Only memory is read and nothing is called, so this works on a core file and wherever the threads were stopped.
What is read may be garbage: every length is limited, every address may be unreadable, and nothing raises.
The types of the handles come from the debug information of the host; how the library lays out what the handles
point to is defined here, so the library itself needs none.
"""

import datetime
import struct

import gdb
import gdb.printing

# What a handle holds, in the order of detail::Kind.
KINDS = ("absent", "null", "boolean", "signedInteger", "unsignedInteger", "real", "singleReal", "date", "classObject",
         "string", "data", "url", "array", "dictionary", "set", "characterSet", "hostObject")

# Offsets in the bodies, in bytes; tests/gdb holds them to the library.
BODY_LENGTH = 8          # of strings (the top bit: ASCII), data, and the count of arrays
STRING_TEXT = 16
DATA_BYTES = 16
URL_TEXT = 8
URL_BASE = 24
ARRAY_ELEMENTS = 32
TABLE_COUNT = 8
TABLE_USED = 16
TABLE_ENTRIES = 48
HANDLE_SIZE = 16
HANDLE_KIND = 8
SET_NUMBERS = 16
SET_PAGE_COUNT = 528
SET_PLANES = 532
SET_PAGES = 552
HOST_OBJECT = 8
ZONE_NAME = 40           # where the name of a zone keeps its address, followed by its length
BUILDER_LENGTH = 8
BUILDER_FORM = 32
FORM_UNITS = 1
EXCEPTION_NAME = 8
EXCEPTION_REASON = 24
EXCEPTION_USER_INFO = 40

GREATEST_LENGTH = 1 << 40
WHOLE_LIMIT = 1000000    # where the user has asked for no limit
LOOP_LIMIT = 500         # handles looked at to see whether a container holds itself, which only garbage does
NOT_FOUND = (1 << 63) - 1


class Unreadable(Exception):
    """What is there is not a value; the text says what it is."""


def limit():
    """How many characters or elements the user wants to see."""
    wanted = gdb.parameter("print elements")
    return WHOLE_LIMIT if wanted is None or wanted <= 0 else min(int(wanted), WHOLE_LIMIT)


def read(address, size):
    try:
        return bytes(gdb.selected_inferior().read_memory(address, size))
    except (gdb.error, OverflowError, ValueError):
        raise Unreadable("unreadable memory at 0x%x" % address)


def word(address):
    return struct.unpack("<Q", read(address, 8))[0]


def body_of(payload):
    """The address of a counted body that can be one."""
    if payload == 0 or payload % 8 != 0 or not 0 < word(payload) < GREATEST_LENGTH:
        raise Unreadable("no value at 0x%x" % payload)
    return payload


def length_at(address):
    length = word(address)
    if length > GREATEST_LENGTH:
        raise Unreadable("garbage at 0x%x" % address)
    return length


def text_at(address, length, unit):
    """As much of a text as the user wants to see, and one unit more if there is more."""
    shown = min(length, limit() + 1)
    if shown == 0:
        return ""
    return read(address, shown * unit).decode("utf-8" if unit == 1 else "utf-16-le", "replace")


def place_of_text(body):
    """Address, units and the size of a unit."""
    packed = word(body + BODY_LENGTH)
    length = packed & ((1 << 56) - 1)
    if length > GREATEST_LENGTH:
        raise Unreadable("garbage at 0x%x" % body)
    return body + STRING_TEXT, length, 1 if packed >> 63 else 2


def text_of_body(body):
    return text_at(*place_of_text(body))


def quoted(text):
    """For a text within another one: on one line and limited."""
    if text is None:
        return "nil"
    most = limit()
    shown = text[:most].replace("\\", "\\\\").replace('"', '\\"')
    shown = "".join(c if c.isprintable() else "\\u%04x" % ord(c) for c in shown)
    return '"%s"%s' % (shown, "..." if len(text) > most else "")


def raw_handle(address):
    data = read(address, HANDLE_SIZE)
    return struct.unpack("<Q", data[:8])[0], data[HANDLE_KIND]


def text_of_handle(handle):
    """None for nil."""
    payload, kind = handle
    if kind == 0:
        return None
    if kind >= len(KINDS) or KINDS[kind] != "string":
        raise Unreadable("no text, kind %d" % kind)
    return text_of_body(body_of(payload))


def parts_of(value):
    """The payload and the kind of a handle, which may be in registers."""
    return int(value["payload_"]["integer"]) & ((1 << 64) - 1), int(value["kind_"])


def handle_type(value):
    """NSObject itself, of which every handle is one."""
    kind = value.type.strip_typedefs().unqualified()
    while kind.name != "ZQFoundation::NSObject":
        bases = [field for field in kind.fields() if field.is_base_class]
        if not bases:
            raise Unreadable("no handle")
        kind = bases[0].type.strip_typedefs().unqualified()
    return kind


def handle_at(kind, address):
    return gdb.Value(address).cast(kind.pointer()).dereference()


def number_text(payload, kind):
    name = KINDS[kind]
    if name == "boolean":
        return "true" if payload else "false"
    if name == "signedInteger":
        return str(struct.unpack("<q", struct.pack("<Q", payload))[0])
    if name == "unsignedInteger":
        return str(payload)
    real = struct.unpack("<d", struct.pack("<Q", payload))[0]
    if name == "singleReal":
        for digits in range(1, 10):
            short = "%.*g" % (digits, real)
            try:
                if struct.pack("<f", float(short)) == struct.pack("<f", real):
                    return short
            except OverflowError:
                break
    return repr(real)


def date_text(payload):
    seconds = struct.unpack("<d", struct.pack("<Q", payload))[0]
    try:
        date = datetime.datetime(2001, 1, 1) + datetime.timedelta(milliseconds=round(seconds * 1000))
        return "NSDate %s UTC" % date.isoformat(" ", "milliseconds")
    except (OverflowError, ValueError):
        return "NSDate %r seconds from 2001" % seconds


def data_text(body):
    length = length_at(body + BODY_LENGTH)
    shown = min(length, limit())
    digits = read(body + DATA_BYTES, shown).hex() if shown else ""
    groups = " ".join(digits[i:i + 8] for i in range(0, len(digits), 8))
    count = "1 byte" if length == 1 else "%d bytes" % length
    return "NSData of %s <%s%s>" % (count, groups, "..." if shown < length else "")


def url_text(body):
    texts = []
    seen = set()
    while body not in seen and len(texts) < 20:
        seen.add(body)
        texts.append(quoted(text_of_handle(raw_handle(body + URL_TEXT))))
        payload, kind = raw_handle(body + URL_BASE)
        if kind == 0:
            break
        if kind >= len(KINDS) or KINDS[kind] != "url":
            raise Unreadable("garbage at 0x%x" % body)
        body = body_of(payload)
    return "NSURL " + " relative to ".join(texts)


def page_members(body, number):
    """Which of a page's 256 code points are members, as bits."""
    if number < 2:
        return (1 << 256) - 1 if number else 0
    return int.from_bytes(read(body + SET_PAGES + number * 32, 32), "little")


def character_set_text(body):
    page_count = struct.unpack("<I", read(body + SET_PAGE_COUNT, 4))[0]
    planes = read(body + SET_PLANES, 17)
    if page_count > 17 * 256 or word(body + BODY_LENGTH) > GREATEST_LENGTH:
        raise Unreadable("garbage at 0x%x" % body)
    count = 0
    first = None
    for plane in range(17):
        place = 2 if plane == 0 else planes[plane]
        if place < 2:
            numbers = [place] * 256
        elif place == 2:
            numbers = struct.unpack("<256H", read(body + SET_NUMBERS, 512))
        else:
            numbers = struct.unpack("<256H", read(body + SET_PAGES + page_count * 32 + (place - 3) * 512, 512))
        if max(numbers) >= max(page_count, 2):
            raise Unreadable("garbage at 0x%x" % body)
        for index, number in enumerate(numbers):
            members = page_members(body, number)
            count += bin(members).count("1")
            if first is None and members:
                first = (plane * 256 + index) * 256 + (members & -members).bit_length() - 1
    if count == 0:
        return "NSCharacterSet of 0 characters"
    return "NSCharacterSet of %d characters from U+%04X" % (count, first)


def symbol_at(address):
    """What the symbol tables call the address, or None."""
    said = gdb.execute("info symbol 0x%x" % address, to_string=True)
    return None if said.startswith("No symbol") else said.split(" in section ")[0].strip()


def host_class(address):
    """The class's name by its table of virtual functions, which needs no debug information, and where the object
    begins: the library knows of one of its bases only."""
    table = word(address)
    symbol = symbol_at(table) or ""
    if not symbol.startswith("vtable for "):
        return "host object", address
    return symbol[len("vtable for "):].split(" + ")[0], address + struct.unpack("<q", read(table - 16, 8))[0]


def class_text(record):
    name, length = word(record), length_at(record + 8)
    return "Class " + text_at(name, length, 1)


class Plain:
    """A value on one line."""

    def __init__(self, text):
        self.text = text

    def to_string(self):
        return self.text


class Text:
    """A text, which gdb quotes and limits; it reads the text itself, so it knows how long it is."""

    def __init__(self, address, length, unit):
        self.address = address
        self.length = length
        self.unit = unit
        text_at(address, length, unit)  # refuses what cannot be read

    def to_string(self):
        if self.length == 0:
            return ""
        try:
            kind = gdb.lookup_type("char" if self.unit == 1 else "char16_t")
        except gdb.error:
            return text_at(self.address, self.length, self.unit)  # not in a frame of C++
        start = gdb.Value(self.address).cast(kind.pointer())
        return start.lazy_string("UTF-8" if self.unit == 1 else "UTF-16LE", self.length)

    def display_hint(self):
        return "string"


def handles_in(body, kind):
    """The addresses of the handles in a container."""
    if KINDS[kind] == "array":
        return body + ARRAY_ELEMENTS, length_at(body + BODY_LENGTH)
    return body + TABLE_ENTRIES, 2 * length_at(body + TABLE_USED)


def holds_itself(body, kind):
    """gdb limits the depth as well, but the user may have asked it not to."""
    waiting, seen, looks = [(body, kind)], set(), 0
    while waiting:
        start, count = handles_in(*waiting.pop())
        for index in range(count):
            looks += 1
            if looks > LOOP_LIMIT:
                return False
            inner, inner_kind = raw_handle(start + index * HANDLE_SIZE)
            if inner_kind >= len(KINDS) or KINDS[inner_kind] not in ("array", "dictionary", "set"):
                continue
            if inner == body:
                return True
            if inner not in seen:
                seen.add(inner)
                waiting.append((inner, inner_kind))
    return False


def is_loop(body, kind):
    try:
        return holds_itself(body, KINDS.index(kind))
    except Unreadable:
        return False  # the children say so themselves


class Container:
    """A value with others inside; `children` gives names and values."""

    def __init__(self, title, hint, children):
        self.title = title
        self.hint = hint
        self.inside = children

    def to_string(self):
        return self.title

    def children(self):
        try:
            for child in self.inside():
                yield child
        except (Unreadable, gdb.error, RuntimeError) as reason:
            yield "unreadable", "<%s>" % reason

    def display_hint(self):
        return self.hint


def of_count(name, count, noun):
    return "%s of %d %s" % (name, count, noun if count == 1 else noun + "s" if noun[-1] != "y" else noun[:-1] + "ies")


def array_of(name, kind, body):
    count = length_at(body + BODY_LENGTH)
    title = of_count(name, count, "element")
    if is_loop(body, "array"):
        return Plain("<%s, which holds itself>" % title)

    def children():
        for index in range(min(count, limit() + 1)):
            address = body + ARRAY_ELEMENTS + index * HANDLE_SIZE
            read(address, HANDLE_SIZE)
            yield "[%d]" % index, handle_at(kind, address)

    return Container(title, "array", children)


def table_of(name, kind, body, is_map):
    count, used = length_at(body + TABLE_COUNT), length_at(body + TABLE_USED)
    if count > used:
        raise Unreadable("garbage at 0x%x" % body)
    title = of_count(name, count, "entry" if is_map else "member")
    if is_loop(body, "dictionary" if is_map else "set"):
        return Plain("<%s, which holds itself>" % title)

    def children():
        shown = 0
        for index in range(min(used, WHOLE_LIMIT)):
            entry = body + TABLE_ENTRIES + index * 2 * HANDLE_SIZE
            if shown > limit():
                break
            if raw_handle(entry)[1] == 0:
                continue  # removed
            yield "[%d]" % shown, handle_at(kind, entry)
            if is_map:
                yield "value %d" % shown, handle_at(kind, entry + HANDLE_SIZE)
            shown += 1

    return Container(title, "map" if is_map else "array", children)


def host_object(address):
    name, start = host_class(address)
    title = "%s at 0x%x" % (name, start)
    try:
        kind = gdb.lookup_type(name)
    except gdb.error:
        return Plain(title)

    def children():
        yield "object", handle_at(kind, start)

    return Container(title, None, children)


def handle(value):
    payload, kind = parts_of(value)
    if kind >= len(KINDS):
        raise Unreadable("no value, kind %d" % kind)
    name = KINDS[kind]
    if name == "absent":
        return Plain("nil")
    if name == "null":
        return Plain("null")
    if name == "date":
        return Plain(date_text(payload))
    if name == "classObject":
        return Plain(class_text(payload))
    if kind < KINDS.index("string"):
        return Plain(number_text(payload, kind))
    body = body_of(payload)
    if name == "string":
        return Text(*place_of_text(body))
    if name == "data":
        return Plain(data_text(body))
    if name == "url":
        return Plain(url_text(body))
    if name == "array":
        return array_of("NSArray", handle_type(value), body)
    if name == "dictionary":
        return table_of("NSDictionary", handle_type(value), body, True)
    if name == "set":
        return table_of("NSSet", handle_type(value), body, False)
    if name == "characterSet":
        return Plain(character_set_text(body))
    return host_object(word(body + HOST_OBJECT))


def string_view(value):
    packed, data = int(value["sizeAndForm_"]), int(value["data_"])
    form, size = packed & 3, packed >> 2
    if packed == 0:
        return Plain("nil")
    if form == 0 or size > GREATEST_LENGTH:
        raise Unreadable("no text, 0x%x" % packed)
    return Text(data, size, 2 if form == 3 else 1)


def c_text(address, unit):
    """Up to the zero unit, or as much as the user wants to see."""
    if address == 0:
        return Plain("nil")
    length = 0
    while length <= limit() and any(read(address + length * unit, unit)):
        length += 1
    return Text(address, length, unit)


def argument(value):
    kind = int(value["type_"])
    held = value["value_"]
    if kind == 0:
        return Plain(str(int(held["integer"])))
    if kind == 1:
        return Plain(str(int(held["unsignedInteger"])))
    if kind == 2:
        return Plain(repr(float(held["real"])))
    if kind == 3:
        return Plain(str(held["longReal"].dereference()))
    if kind == 4:
        ending = int(value["ending_"])
        if ending == 0:
            return string_view(held["text"])
        return c_text(int(held["address"]), ending)
    if kind == 5:
        return handle(held["object"].dereference())
    if kind == 6:
        address = int(held["host"]["object"])
        return Plain("nil") if address == 0 else host_object(address)
    if kind == 7:
        return Plain("object of a converted type at 0x%x" % int(held["converted"]["object"]))
    if kind == 8:
        return Plain("0x%x" % int(held["address"]))
    raise Unreadable("no argument, type %d" % kind)


def argument_list(value):
    count, first = int(value["count_"]), int(value["arguments_"])
    if count > GREATEST_LENGTH:
        raise Unreadable("no list, count %d" % count)
    kind = value["arguments_"].type.target().unqualified()

    def children():
        for index in range(min(count, limit() + 1)):
            yield "[%d]" % index, handle_at(kind, first + index * kind.sizeof)

    return Container(of_count("ArgumentList", count, "argument"), "array", children)


def packed_arguments(value):
    if not any(field.name == "arguments_" for field in value.type.strip_typedefs().fields()):
        return Plain("PackedArguments of 0 arguments")
    arguments = value["arguments_"]
    count = arguments.type.range()[1] + 1

    def children():
        for index in range(min(count, limit() + 1)):
            yield "[%d]" % index, arguments[index]

    return Container(of_count("PackedArguments", count, "argument"), "array", children)


def mutable_string(value):
    builder = int(value["builder_"])
    if builder == 0:
        return Plain("nil")
    unit = 2 if read(builder + BUILDER_FORM, 1)[0] == FORM_UNITS else 1
    return Text(word(builder), length_at(builder + BUILDER_LENGTH), unit)


def mutable_collection(value):
    name = value.type.strip_typedefs().unqualified().name.split("::")[-1]
    body = int(value["body_"])
    is_array = name == "NSMutableArray"
    if body == 0:
        return Plain(of_count(name, 0, "element" if is_array else "entry"))
    kind = gdb.lookup_type("ZQFoundation::NSObject")
    return array_of(name, kind, body) if is_array else table_of(name, kind, body, True)


def mutable_character_set(value):
    return Plain("NSMutableCharacterSet at 0x%x" % int(value["pages_"]))


def number_or_not_found(value):
    return "NSNotFound" if value == NOT_FOUND else str(value)


def plain_range(value):
    return Plain("{%s, %d}" % (number_or_not_found(int(value["location"])), int(value["length"])))


def exception(value):
    # By offset: the class is only declared where the compiler leaves its definition to the library.
    start = int(value.address)
    name = text_of_handle(raw_handle(start + EXCEPTION_NAME))
    reason = text_of_handle(raw_handle(start + EXCEPTION_REASON))
    title = "NSException %s: %s" % ("nil" if name is None else name[:limit()], quoted(reason))
    if raw_handle(start + EXCEPTION_USER_INFO)[1] == 0:
        return Plain(title)

    def children():
        yield "userInfo", handle_at(gdb.lookup_type("ZQFoundation::NSObject"), start + EXCEPTION_USER_INFO)

    return Container(title, None, children)


def locale_value(value):
    return Plain("NSLocale " + quoted(text_of_handle(parts_of(value["identifier_"]))))


def zone_text(value):
    form = int(value["form_"])
    if form == 0:
        return "nil"
    if form == 1:
        offset = int(value["offset_"])
        hours, rest = divmod(abs(offset), 3600)
        seconds = ":%02d" % (rest % 60) if rest % 60 else ""
        return "NSTimeZone GMT%s%02d:%02d%s" % ("-" if offset < 0 else "+", hours, rest // 60, seconds)
    if form != 2:
        raise Unreadable("no time zone, form %d" % form)
    zone = int(value["zone_"])
    if zone == 0:
        return "NSTimeZone UTC"
    name, length = word(zone + ZONE_NAME), word(zone + ZONE_NAME + 8)
    if length > 255:
        return "NSTimeZone at 0x%x" % zone
    return "NSTimeZone " + text_at(name, length, 1)


def time_zone(value):
    return Plain(zone_text(value))


def calendar(value):
    form = int(value["form_"])
    if form == 0:
        return Plain("nil")
    if form > 2:
        raise Unreadable("no calendar, form %d" % form)
    return Plain("NSCalendar %s in %s" % (("gregorian", "iso8601")[form - 1], zone_text(value["timeZone_"])))


def selector(value):
    name = text_of_handle(parts_of(value["name_"]))
    return Plain("nil" if name is None else "Selector " + name[:limit()])


def format_string(value):
    return string_view(value["text_"])


def guarded(show):
    """A printer that never raises; what cannot be shown says why."""

    def printer(value):
        try:
            return show(value)
        except Unreadable as reason:
            return Plain("<%s>" % reason)
        except (gdb.error, RuntimeError, OverflowError, ValueError, TypeError, AttributeError, struct.error) as reason:
            return Plain("<%s>" % reason)

    return printer


def printers():
    collection = gdb.printing.RegexpCollectionPrettyPrinter("ZQFoundation")
    for names, show in (
            ("NSObject|NSNull|NSString|NSNumber|NSDate|NSData|NSURL|NSArray|NSDictionary|NSSet|NSCharacterSet|Class",
             handle),
            ("StringView", string_view),
            ("FormatString<.*>", format_string),
            ("Argument", argument),
            ("ArgumentList", argument_list),
            ("detail::PackedArguments<.*>", packed_arguments),
            ("NSMutableString", mutable_string),
            ("NSMutableArray|NSMutableDictionary", mutable_collection),
            ("NSMutableCharacterSet", mutable_character_set),
            ("NSRange", plain_range),
            ("NSException", exception),
            ("NSLocale", locale_value),
            ("NSTimeZone", time_zone),
            ("NSCalendar", calendar),
            ("Selector", selector)):
        name = names.split("|")[0].split("<")[0].replace("::", ".")
        collection.add_printer(name, "^ZQFoundation::(%s)$" % names, guarded(show))
    return collection


gdb.printing.register_pretty_printer(gdb.current_objfile(), printers(), replace=True)
