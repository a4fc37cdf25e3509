# SPDX-License-Identifier: MIT
"""Reads the declarations of the public headers, with the comments that belong to them.

Made for headers as clang-format leaves them, without block comments. Whatever is not understood raises Fault;
nothing is passed over in silence.

A `///` block documents the declaration below it and those that follow without a blank line. A line such as
`// NSString(ZQFoundation)` opens the library's own group of a platform's class; any other `//` line between
blank lines is a heading over what follows.
"""

import dataclasses
import pathlib
import re

umbrella = "include/ZQFoundation.h"
library_namespace = "ZQFoundation"
export_marker = "ZQFOUNDATION_EXPORT"


class Fault(Exception):
    """A header that cannot be read."""


def public_headers(root):
    """Paths relative to the root; the umbrella stands in the tree's root once it is installed."""
    found, waiting = set(), [(umbrella, pathlib.PurePosixPath())]
    while waiting:
        name, base = waiting.pop()
        for include in re.findall(r'^[ \t]*#[ \t]*include[ \t]*"([^"]+)"', read(root, name), re.MULTILINE):
            path = (root / base / include).resolve().relative_to(root.resolve()).as_posix()
            if path not in found:
                found.add(path)
                waiting.append((path, pathlib.PurePosixPath(path).parent))
    return sorted(found)


def read(root, name):
    try:
        return (root / name).read_text(encoding="utf-8")
    except OSError as error:
        raise Fault(f"{name}: {error.strerror}") from error


def first_sentence(doc):
    """The first sentence of a comment; two when the first one has no more than two words beside code."""
    paragraph = " ".join(doc.split("\n\n")[0].split())
    quote, depth, found = None, 0, 0
    for at, letter in enumerate(paragraph):
        if quote:
            quote = None if letter == quote else quote
        elif letter in "\"`":
            quote = letter
        elif letter in "([":
            depth += 1
        elif letter in ")]":
            depth -= 1
        elif letter in ".!?" and depth <= 0:
            match = re.match(r"(\*\*)?(?:$| +(?=[^a-z]))", paragraph[at + 1:])
            if match:
                sentence = paragraph[:at + 1] + (match.group(1) or "")
                found += 1
                if len(re.sub(r"`[^`]*`", "", sentence).split()) > 2 or found == 2:
                    return sentence
    return re.sub(r":$", ".", paragraph)


# Reading a header: tokens.

TOKEN = re.compile(
    r"""(?P<blank>\s+)
      | (?P<comment>//[^\n]*)
      | (?P<text>(?:u8|[uUL])?"(?:\\.|[^"\\\n])*"|(?:u8|[uUL])?'(?:\\.|[^'\\\n])*')
      | (?P<word>[A-Za-z_]\w*)
      | (?P<number>\.?\d(?:[eEpP][+-]|[\w.'])*)
      | (?P<mark>::|->|\.\.\.|&&|\|\||==|!=|<=|>=|<<|\+\+|--|[-+*/%&|^!~=<>(){}\[\];:,.?])""",
    re.VERBOSE)

DIRECTIVE = re.compile(r"[ \t]*#(?:\\\n|[^\n])*")


@dataclasses.dataclass
class Token:
    text: str
    start: int
    end: int
    line: int


class Source:
    """A header as tokens; comments and macros by their lines."""

    def __init__(self, name, text):
        self.name, self.text = name, text
        self.tokens, self.macros = [], []
        self.docs, self.trailing, self.headings = {}, {}, {}
        self.directive_lines = set()
        self.lines = text.split("\n")
        at, line = 0, 1
        while at < len(text):
            match = DIRECTIVE.match(text, at) if at == 0 or text[at - 1] == "\n" else None
            if match:
                self.take_directive(match.group(), line)
            else:
                match = TOKEN.match(text, at)
                if not match:
                    raise Fault(f"{name}:{line}: cannot read {text[at]!r}")
                if match.lastgroup == "comment":
                    self.take_comment(match.group(), line)
                elif match.lastgroup != "blank":
                    self.tokens.append(Token(match.group(), at, match.end(), line))
            line += match.group().count("\n")
            at = match.end()

    def take_directive(self, text, line):
        self.directive_lines.update(range(line, line + text.count("\n") + 1))
        match = re.match(r"\s*#\s*define\s+(\w+)(\([^)]*\))?(.*)", text, re.DOTALL)
        if match and (match.group(2) or match.group(3).strip()):  # an include guard is defined as nothing
            self.macros.append((match.group(1), match.group(2) or "", line))

    def take_comment(self, text, line):
        stands_alone = self.lines[line - 1].lstrip().startswith("//")
        if text.startswith("///<"):
            self.trailing[line] = text[4:].strip()
        elif text.startswith("///"):
            self.docs[line] = text[3:].strip()
        elif stands_alone:
            self.headings[line] = text[2:].strip()

    def slice(self, first, last):
        """The text from one token to another, blanks made one."""
        return " ".join(re.sub(r"//[^\n]*", "", self.text[first.start:last.end]).split())


# Reading a header: declarations.


@dataclasses.dataclass
class Declaration:
    kind: str  # function, variable, alias, type, enumeration, constant, concept, macro
    name: str
    scope: tuple  # names of the enclosing classes
    header: str
    line: int
    text: str = ""
    doc: str = None  # its own comment or the one that it shares
    doc_line: int = 0
    parameters: tuple = ()
    words: frozenset = frozenset()  # specifiers before the name and behind the parameters
    is_template: bool = False
    has_body: bool = False
    is_hidden: bool = False  # not public, or internal
    is_exported: bool = False
    is_c: bool = False
    group: str = None
    note: str = ""
    heading: str = None
    value: str = ""
    keyword: str = ""
    members: list = dataclasses.field(default_factory=list)

    @property
    def path(self):
        return "::".join((*self.scope, self.name))

    @property
    def place(self):
        return f"{self.header}:{self.line}"


@dataclasses.dataclass
class Scope:
    classes: tuple = ()
    access: str = "public"
    is_internal: bool = False
    is_exported: bool = False
    is_c: bool = False
    previous: Declaration = None
    previous_end: int = 0
    group: str = None
    note: str = ""
    heading: str = None


class Parser:
    def __init__(self, source):
        self.source, self.tokens, self.at = source, source.tokens, 0
        self.declarations = []
        self.used_docs = set()
        for name, parameters, line in source.macros:
            declaration = Declaration("macro", name, (), source.name, line, text=name + parameters)
            self.attach_doc(declaration, Scope(), line, line)
            self.declarations.append(declaration)
        self.read_scope(Scope())
        if self.at != len(self.tokens):
            self.fail("a brace too many")

    def fail(self, what):
        line = self.tokens[min(self.at, len(self.tokens) - 1)].line if self.tokens else 1
        raise Fault(f"{self.source.name}:{line}: {what}")

    def peek(self, ahead=0):
        return self.tokens[self.at + ahead].text if self.at + ahead < len(self.tokens) else ""

    def skip_group(self):
        """Past the bracket at hand and all up to its partner."""
        depth = 0
        while True:
            text = self.peek()
            if not text:
                self.fail("a bracket is not closed")
            depth += (text in "([{") - (text in ")]}")
            self.at += 1
            if depth == 0:
                return

    def read_scope(self, scope):
        while self.peek() and self.peek() != "}":
            if self.peek() in ("public", "protected", "private") and self.peek(1) == ":":
                scope.access = self.peek()
                scope.previous, scope.heading = None, None
                scope.previous_end = self.tokens[self.at].line
                self.at += 2
            elif self.peek() == ";":
                self.at += 1
            else:
                self.read_declaration(scope)

    def read_declaration(self, scope):
        start = self.at
        first = self.tokens[start]
        while True:
            text = self.peek()
            if not text:
                self.fail("a declaration is not closed")
            if text == ";":
                self.at += 1
                return self.finish(scope, first, self.tokens[start:self.at - 1], False)
            if text in "([":
                self.skip_group()
            elif text == "{":
                head = self.tokens[start:self.at]
                texts = [token.text for token in head]
                if texts[0] == "namespace" or (texts[:1] == ["extern"] and len(texts) == 2):
                    return self.read_block(scope, texts)
                shape = Shape(head)
                if shape.keyword in ("class", "struct", "union", "enum"):
                    return self.read_type(scope, first, shape)
                if shape.kind in ("function", "definition") and not self.is_member_initialiser(shape, texts):
                    self.skip_group()
                    return self.finish(scope, first, head, True)
                self.skip_group()
            else:
                self.at += 1

    @staticmethod
    def is_member_initialiser(shape, texts):
        return ":" in texts[shape.behind:] and (re.match(r"\w", texts[-1]) or texts[-1] == ">")

    def read_block(self, scope, texts):
        """A namespace or a linkage block."""
        inner = Scope(is_internal=scope.is_internal, is_c=scope.is_c, previous_end=self.tokens[self.at].line)
        if texts[0] == "namespace":
            names = [text for text in texts[1:] if text != "::"]
            inner.is_internal = scope.is_internal or names[-1:] != [library_namespace]
            self.use_doc_above(self.tokens[self.at - len(texts)].line)
        else:
            inner.is_c = True
        self.at += 1
        self.read_scope(inner)
        if self.peek() != "}":
            self.fail("a namespace is not closed")
        scope.previous, scope.previous_end = None, self.tokens[self.at].line
        scope.heading = None
        self.at += 1

    def read_type(self, scope, first, shape):
        opening = self.tokens[self.at]
        declaration = Declaration(
            "enumeration" if shape.keyword == "enum" else "type", shape.name, scope.classes, self.source.name,
            shape.line, text=self.source.slice(first, self.tokens[self.at - 1]), keyword=shape.keyword,
            is_template=shape.is_template, is_exported=export_marker in shape.words)
        self.settle(declaration, scope, first.line)
        self.at += 1
        if shape.keyword == "enum":
            declaration.members = self.read_constants(declaration)
        else:
            is_hidden = declaration.is_hidden
            inner = Scope((*scope.classes, shape.name), "private" if shape.keyword == "class" else "public",
                          is_hidden, declaration.is_exported, previous_end=opening.line)
            self.read_scope(inner)
        if self.peek() != "}":
            self.fail("a type is not closed")
        while self.peek() != ";":
            self.at += 1
            if not self.peek():
                self.fail("a type is not closed")
        self.close(declaration, scope, self.tokens[self.at].line)
        self.at += 1

    def read_constants(self, enumeration):
        constants, value = [], -1
        while self.peek() != "}":
            first = last = self.tokens[self.at]
            while self.peek() not in (",", "}"):
                last = self.tokens[self.at]
                if last.text in ("(", "{", "["):
                    self.skip_group()
                else:
                    self.at += 1
            given = self.source.slice(first, last)
            name, _, written = (part.strip() for part in given.partition("="))
            value = written or (value + 1 if isinstance(value, int) else f"{value} + 1")
            if isinstance(value, str) and re.fullmatch(r"-?\d+", value):
                value = int(value)
            constants.append(Declaration("constant", name, (*enumeration.scope, enumeration.name),
                                         self.source.name, first.line, value=str(value),
                                         doc=self.own_comment(first.line, last.line)))
            if self.peek() == ",":
                self.at += 1
        return constants

    def finish(self, scope, first, tokens, has_body):
        """A declaration that ended with a semicolon or with its body."""
        shape = Shape(tokens)
        last = self.tokens[self.at - 1]
        is_forward = shape.kind == "type" and not has_body
        declaration = Declaration(
            shape.kind, shape.name, scope.classes, self.source.name, shape.line,
            text=self.source.slice(tokens[shape.first], tokens[shape.behind - 1]) if shape.behind else "",
            parameters=tuple(self.source.slice(*pair) for pair in shape.parameters), words=shape.words,
            is_template=shape.is_template, has_body=has_body,
            is_exported=scope.is_exported or export_marker in shape.words,
            is_c=scope.is_c or shape.is_c)
        if shape.value and shape.value < len(tokens):
            declaration.value = self.source.slice(tokens[shape.value], tokens[-1])
        if is_forward or shape.kind in ("definition", "nothing"):
            self.use_doc_above(first.line)
            scope.previous, scope.previous_end = None, last.line
            return
        self.settle(declaration, scope, first.line)
        own = self.own_comment(last.line, last.line)
        if own:
            declaration.doc = declaration.doc if declaration.kind == "function" and declaration.doc else own
        self.close(declaration, scope, last.line)

    def settle(self, declaration, scope, line):
        self.take_headings(scope, line)
        declaration.is_hidden = (scope.is_internal or "friend" not in declaration.words and
                                 scope.access != "public" or "deprecated" in declaration.words)
        declaration.group, declaration.note = scope.group, scope.note
        declaration.heading = scope.heading
        self.attach_doc(declaration, scope, line, line)

    def close(self, declaration, scope, line):
        scope.previous, scope.previous_end = declaration, line
        self.declarations.append(declaration)

    def take_headings(self, scope, line):
        block = []
        for at in range(scope.previous_end + 1, line):
            if at in self.source.headings:
                block.append(self.source.headings[at])
                continue
            if block and at not in self.source.docs:
                if re.fullmatch("::".join(scope.classes) + r"\(\w+\)", block[0]) and scope.classes:
                    scope.group, scope.note, scope.heading = block[0], " ".join(block[1:]), None
                else:
                    scope.heading = " ".join(block)
            block = []

    def attach_doc(self, declaration, scope, first, line):
        if first - 1 in self.source.docs:
            block = []
            at = first - 1
            while at in self.source.docs:
                self.used_docs.add(at)
                block.insert(0, self.source.docs[at])
                at -= 1
            declaration.doc, declaration.doc_line = "\n".join(block), at + 1
        elif scope.previous and scope.previous_end == line - 1:
            declaration.doc, declaration.doc_line = scope.previous.doc, scope.previous.doc_line

    def use_doc_above(self, line):
        line -= 1
        while line in self.source.docs:
            self.used_docs.add(line)
            line -= 1

    def own_comment(self, first, last):
        """A comment behind a declaration, which may go on in lines of its own."""
        trailing = self.source.trailing
        parts = [trailing[line] for line in range(first, last + 1) if line in trailing]
        while parts and self.source.lines[last].lstrip().startswith("///<"):
            last += 1
            parts.append(trailing[last])
        return " ".join(parts) or None

    def unused_docs(self):
        """First lines of comments that stand before no declaration."""
        lines = sorted(set(self.source.docs) - self.used_docs)
        return [line for line in lines if line - 1 not in lines and not self.is_file_comment(line)]

    def is_file_comment(self, line):
        """A comment on the header as a whole: nothing but directives and the licence stand before it."""
        return not self.tokens or line < self.tokens[0].line


class Shape:
    """What the tokens of one declaration, without its body, declare."""

    def __init__(self, tokens):
        self.tokens = tokens
        self.texts = [token.text for token in tokens]
        self.kind, self.name, self.keyword = "nothing", "", ""
        self.words, self.parameters = set(), []
        self.first = self.behind = self.value = 0
        self.is_template = self.is_c = False
        self.line = tokens[0].line
        at = self.skip_prefix(0)
        self.first = at
        keyword = self.texts[at] if at < len(tokens) else ""
        if keyword in ("class", "struct", "union", "enum"):
            self.read_type(at)
        elif keyword in ("using", "concept"):
            self.read_alias(at)
        elif keyword not in ("static_assert", ""):
            self.read_declarator(at)
        self.words = frozenset(self.words)

    def skip_prefix(self, at):
        """Past template heads, their constraints, attributes and specifiers."""
        specifiers = ("static", "constexpr", "consteval", "constinit", "inline", "explicit", "virtual",
                      "friend", "extern", export_marker)
        while at < len(self.texts):
            text = self.texts[at]
            if text == "template":
                self.is_template = True
                at = self.skip_angles(at + 1)
            elif text == "requires":
                at = self.skip_constraint(at + 1)
            elif text == "[" and self.texts[at + 1:at + 2] == ["["]:
                end = self.skip_round(at)
                self.words.update(self.texts[at:end])
                at = end
            elif text in specifiers:
                self.words.add(text)
                if text == "extern" and self.texts[at + 1:at + 2] == ['"C"']:
                    self.is_c = True
                    at += 1
                if text == "explicit" and self.texts[at + 1:at + 2] == ["("]:
                    at = self.skip_round(at + 1) - 1
                at += 1
                if text == "friend" and self.texts[at] in ("class", "struct", "union"):
                    return len(self.texts)
            else:
                break
        return at

    def skip_round(self, at):
        depth = 0
        while at < len(self.texts):
            depth += (self.texts[at] in ("(", "[", "{")) - (self.texts[at] in (")", "]", "}"))
            at += 1
            if depth == 0:
                break
        return at

    def skip_angles(self, at):
        """Past the `<` at hand and its partner; marks inside round brackets do not count."""
        depth = 0
        while at < len(self.texts):
            text = self.texts[at]
            if text in ("(", "[", "{"):
                at = self.skip_round(at)
                continue
            depth += (text == "<") - (text == ">")
            at += 1
            if depth == 0:
                break
        return at

    def skip_constraint(self, at):
        while at < len(self.texts):
            while self.texts[at] == "!":
                at += 1
            if self.texts[at] == "(":
                at = self.skip_round(at)
            else:
                at += 1
                while self.texts[at] == "::":
                    at += 2
                if self.texts[at] == "<":
                    at = self.skip_angles(at)
            if self.texts[at] not in ("&&", "||"):
                break
            at += 1
        return at

    def read_type(self, at):
        self.kind, self.keyword = "type", self.texts[at]
        at += 1
        while at < len(self.texts) and self.texts[at] != ":":
            if self.texts[at] == export_marker:
                self.words.add(export_marker)
            elif self.texts[at] == "[":
                at = self.skip_round(at) - 1
            elif self.texts[at] == "<":
                at = self.skip_angles(at) - 1
            elif self.texts[at] not in ("class", "struct", "final"):
                self.name, self.line = self.texts[at], self.tokens[at].line
            at += 1

    def read_alias(self, at):
        if "=" not in self.texts:
            return
        self.kind = "alias" if self.texts[at] == "using" else "concept"
        self.name, self.line = self.texts[at + 1], self.tokens[at + 1].line
        self.value = self.texts.index("=") + 1
        self.behind = len(self.texts)

    def read_declarator(self, at):
        while at < len(self.texts):
            text = self.texts[at]
            if text == export_marker:
                self.words.add(text)
                at += 1
            elif text == "operator":
                return self.read_operator(at)
            elif text == "decltype":
                at = self.skip_round(at + 1)
            elif text == "<":
                at = self.skip_angles(at)
            elif text == "(":
                if self.texts[at + 1] == "*":
                    self.kind, self.name, self.behind = "variable", self.texts[at + 2], len(self.texts)
                    return
                name = ("~" if self.texts[at - 2] == "~" else "") + self.texts[at - 1]
                return self.read_function(name, at - 1, at)
            elif text in ("=", "[", "{"):
                self.value = at + 1 if text == "=" else 0
                break
            else:
                at += 1
        self.kind, self.name = "variable", self.texts[at - 1]
        self.behind = self.skip_round(at) if self.texts[at:at + 1] == ["["] else at
        self.line = self.tokens[at - 1].line

    def read_operator(self, at):
        opening = at + 1
        while self.texts[opening] != "(" or self.texts[opening - 1] == "operator":
            opening += 1
        parts = self.texts[at + 1:opening]
        blank = " " if parts[0][0].isalpha() else ""
        self.read_function("operator" + blank + blank.join(parts), at, opening)

    def read_function(self, name, at, opening):
        is_definition = at > 0 and self.texts[at - 1] == "::"  # of what a class has declared
        self.kind = "definition" if is_definition else "function"
        self.name, self.line = name, self.tokens[at].line
        self.behind = self.skip_round(opening)
        first, depth = opening + 1, 0
        for place in range(opening + 1, self.behind):
            text = self.texts[place]
            depth += (text in ("(", "[", "{", "<")) - (text in (")", "]", "}", ">"))
            if (text == "," and depth == 0) or place == self.behind - 1:
                if place > first:
                    self.parameters.append((self.tokens[first], self.tokens[place - 1]))
                first = place + 1
        rest = self.texts[self.behind:]
        if ":" in rest:
            rest = rest[:rest.index(":")]
        self.words.update(rest)
