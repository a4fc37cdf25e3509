#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Writes a header or a Markdown file to standard output as Doxygen has to see it.

    scripts/doxygen_filter.py FILE        called by Doxygen for each file that it reads
    scripts/doxygen_filter.py --inputs    the files that belong to the documentation, in order

The sources stay free of Doxygen's commands. Comments in headers are plain text with the marks of Markdown:
what Doxygen would take for a command, a tag or a link is escaped, headings become groups of members, and a
comment that is shared by several declarations is given to each of them. Lines keep their numbers, so that
warnings tell the truth. In Markdown, headings get names by which links find them, and links to files become
links to pages.
"""

import html
import pathlib
import re
import sys

sys.dont_write_bytecode = True
from declarations import Fault, Parser, Source, first_sentence, public_headers, read

project = pathlib.Path(__file__).resolve().parent.parent
pages_at_root = ("README.md", "CONTRIBUTING.md", "CHANGELOG.md")
page_index = "docs/README.md"

# Doxygen has pages of its own by these names.
taken_names = ("annotated", "classes", "examples", "files", "functions", "globals", "hierarchy", "index",
               "modules", "namespaces", "pages", "search")


# Text.

CODE_SPAN = re.compile(r"(?<!`)(`+)(?!`)(?:(?!\1).)+?\1(?!`)", re.DOTALL)


def changed(text, outside):
    """The text with code spans written so that Doxygen does not look into them, and all else changed."""
    parts, end = [], 0
    for span in CODE_SPAN.finditer(text):
        parts += [outside(text[end:span.start()]), code_span(span.group())]
        end = span.end()
    return "".join(parts + [outside(text[end:])])


def code_span(span):
    """A quotation mark in a span would take all up to the next one with it, an apostrophe ends the span, and
    a percent sign in front of a word is left out."""
    if not re.search("[\"'%]", span):
        return span
    text = html.escape(span.strip("`").strip(" ") if span.startswith("``") else span.strip("`"))
    text = text.replace("&#x27;", "'")
    text = re.sub(r"\\(?!\|)|[@%#$`*_]", r"\\\g<0>", text).replace("--", "\\--")
    return f"<code>{text}</code>"


def escaped(text):
    """Lines of a comment, in which nothing is a command, a tag or a reference."""
    def outside(part):
        return re.sub(r"([\\@<>&%#$]|--)", r"\\\1", part).replace('"', "&quot;")
    return changed(text, outside)


def with_brief(doc):
    """An escaped comment whose first sentence is what lists of members show."""
    left = len(re.sub(r"\s", "", first_sentence(doc)))
    end = start = len(doc) - len(doc.lstrip())
    while left:
        left -= not doc[end].isspace()
        end += 1
    text = doc[:start] + "\1" + doc[start:end] + ("\2" if doc[end:].strip() else "") + doc[end:]
    return escaped(text).replace("\1", "@brief ").replace("\2", " @details")


# Headers.


class Annotated(Parser):
    """Remembers where declarations begin and where headings change."""

    def __init__(self, source):
        self.firsts, self.openings, self.closings, self.open_groups = {}, {}, set(), []
        super().__init__(source)

    def settle(self, declaration, scope, line):
        super().settle(declaration, scope, line)
        self.firsts[id(declaration)] = line

    def take_headings(self, scope, line):
        before, end = (scope.group, scope.heading), scope.previous_end
        super().take_headings(scope, line)
        if (scope.group, scope.heading) == before or scope.is_internal or scope.access != "public":
            return
        lines = [at for at in range(end + 1, line) if at in self.source.headings]
        own = scope.heading if scope.heading else scope.note
        title = scope.group or ""
        if scope.heading:
            title, own = split_heading(scope.heading)
        else:
            title += ": the library's own operations"
        self.openings[lines[0]] = (lines[-1], title, own)
        if id(scope) in self.open_groups:
            self.closings.add(lines[0])
        else:
            self.open_groups.append(id(scope))
        scope.has_group = True

    def read_scope(self, scope):
        super().read_scope(scope)
        if getattr(scope, "has_group", False):
            self.closings.add(self.tokens[self.at].line)


def split_heading(heading):
    """The title of a group and what is said about it beside."""
    match = (re.match(r"(Text: .*?|[^.:]*?[^.:\s])[.](?:\s|$)", heading) or
             re.match(r"([^.:]+)[:](?:\s|$)", heading))
    title = match.group(1) if match else heading.rstrip(".")
    note = heading[match.end():].strip() if match else ""
    return title, note[:1].upper() + note[1:]


def is_code(line):
    return line.startswith("/// " + 4 * " ") or line.startswith("///\t")


def looks_like_cpp(lines):
    return any(re.search(r"[;{]$|^///\s+#include", line) for line in lines)


def escape_comments(lines):
    """In place; blocks of code become such of Doxygen's, everything else is escaped."""
    at = 0
    while at < len(lines):
        indent, mark, text = re.match(r"(\s*)(///<?|)(.*)$", lines[at], re.DOTALL).groups()
        if not mark:
            trailing = re.match(r"(.*\S\s*)(///<)(.*)$", lines[at])
            if trailing:
                lines[at] = trailing.group(1) + trailing.group(2) + escaped(trailing.group(3))
            at += 1
        elif is_code(mark + text) and lines[at - 1].strip() == "///":
            end = at
            while end < len(lines) and (is_code(lines[end].strip()) or
                                        (lines[end].strip() == "///" and is_code(lines[end + 1].strip()))):
                end += 1
            stripped = [line.strip() for line in lines[at:end]]
            lines[at - 1] = f"{indent}/// @code{{{'.cpp' if looks_like_cpp(stripped) else '.unparsed'}}}"
            if end < len(lines) and lines[end].strip() == "///":
                lines[end] = f"{indent}/// @endcode"
            else:
                lines[end - 1] += " @endcode"
            at = end + 1
        else:
            end = at + 1
            while end < len(lines) and is_text(lines[end]) and is_text(lines[end - 1]):
                end += 1
            texts = [re.sub(r"^\s*///<?", "", line) for line in lines[at:end]]
            # A block that goes on with code or another paragraph has more to say than its first sentence.
            write = escaped if mark == "///<" or goes_on_from(lines, at) else with_brief
            for place, line in enumerate(write("\n".join(texts)).split("\n"), at):
                lines[place] = indent + mark + line
            at = end


def goes_on_from(lines, at):
    """Whether a comment has begun above."""
    return at > 0 and lines[at - 1].lstrip().startswith("///")


def is_text(line):
    """Whether it is a line of a comment that goes on on the next one."""
    return re.match(r"\s*///<? ?\S", line) is not None


def on_one_line(doc, place):
    if re.search(r"^ {4}", doc, re.MULTILINE):
        raise Fault(f"{place}: a comment that holds code is shared by several declarations")
    first, *more = [" ".join(part.split()) for part in doc.split("\n\n")]
    return "/** " + " <p> ".join([with_brief(first)] + [escaped(part) for part in more]) + " */ "


def header(name):
    source = Source(name, read(project, name))
    parser = Annotated(source)
    lines = source.lines[:]
    escape_comments(lines)
    prefixes = {}
    for each in parser.declarations:
        first = parser.firsts.get(id(each), each.line)
        if each.doc and not each.is_hidden and first - 1 not in source.docs and first not in source.trailing:
            if each.doc_line and each.doc_line < first:
                prefixes[first] = on_one_line(each.doc, each.place)
    for line, text in prefixes.items():
        lines[line - 1] = re.sub(r"^\s*", lambda blank: blank.group() + text, lines[line - 1], count=1)
    for first, (last, title, note) in parser.openings.items():
        for at in range(first, last):
            lines[at] = ""
        lines[first - 1] = f"/** @name {escaped(title)}"
        lines[first] = f"{escaped(note)} @{{ */"
    for line in parser.closings:
        if line in parser.openings:
            lines[line - 2] += " /** @} */"
        else:
            lines[line - 1] = "/** @} */ " + lines[line - 1]
    hide_private(lines)
    hide_helpers(lines)
    mark_file_comment(parser, lines)
    return "\n".join(lines)


def hide_helpers(lines):
    """Nothing in the inner namespace is for hosts."""
    is_hidden = False
    for at, line in enumerate(lines):
        is_end = re.match(r"\} // namespace (\w+::)?detail$", line)
        is_hidden = is_hidden or re.match(r"namespace (\w+::)?detail \{$", line) is not None
        if is_hidden:
            lines[at] = ""
        is_hidden = is_hidden and not is_end


def hide_private(lines):
    """What only a class itself or derived ones see is not part of the reference."""
    hidden = None
    for at, line in enumerate(lines):
        label = re.match(r"(\s*)(?:private|protected):$", line)
        if label and hidden is None:
            hidden = label.group(1)
            lines[at] = "/// @cond"
        elif label:
            lines[at] = ""
        elif hidden is not None and re.match(hidden + r"(/\*\* @\} \*/ )?(\}|public:)", line):
            lines[at] = "/** @endcond */ " + line
            hidden = None
        else:
            lines[at] = re.sub(r"^\s*friend (?:class|struct) .*", "", line)


def mark_file_comment(parser, lines):
    """Says of the comment on the header as a whole that it is one; without one, that there is a header."""
    macros = {at for each in parser.declarations if each.kind == "macro" and each.doc
              for at in range(each.doc_line, each.line)}
    docs = [at for at in sorted(parser.source.docs)
            if at not in macros and (not parser.tokens or at < parser.tokens[0].line)]
    if not docs:
        lines[0] = "/** @file */"
    elif lines[docs[0] - 2].strip():
        raise Fault(f"{parser.source.name}:{docs[0]}: there is no blank line above the comment on the header")
    else:
        lines[docs[0] - 2] = "/// @file"


# Markdown.


def page_name(name):
    """The name of the page that a Markdown file becomes, which is its file in the HTML."""
    path = pathlib.PurePosixPath(name)
    if name == "README.md":
        return "index"
    if path.name == "README.md":
        return "documents"
    return path.stem.lower() + ("-page" if path.stem in taken_names else "")


def slug(heading):
    """The name under which readers of Markdown find a heading."""
    text = re.sub(r"\[([^\]]*)\]\([^)]*\)", r"\1", heading).replace("`", "")
    return re.sub(r"[^\w\- ]", "", text.lower()).replace(" ", "-")


def source_page(path, line):
    """Doxygen's page of a header's text, and the place of a line on it."""
    name = path.name.replace("_", "__").replace(".", "_8")
    return f"{name}_source.html" + (f"#l{int(line):05}" if line else "")


def target(name, link):
    """Where a link leads, and whether Doxygen resolves it; None when what it names is not documentation."""
    if re.match(r"\w+:", link):
        return link
    file, _, place = link.partition("#")
    path = name
    if file:
        path = (project / name).parent.joinpath(file).resolve().relative_to(project).as_posix()
    if path.endswith(".md") and path in inputs():
        return "@ref " + page_name(path) + ("-" + place if place else "")
    if path in headers():
        return source_page(pathlib.PurePosixPath(path), place[1:] if place else None)
    return None


def linked(name, text):
    def one(match):
        place = target(name, match.group(2))
        if place is None:
            return match.group(1)
        if place.startswith("@ref") or re.match(r"\w+:", place):
            return f"[{match.group(1)}]({place})"
        return f'<a href="{place}">{match.group(1)}</a>'
    return re.sub(r"(?<!\\)\[((?:[^\[\]]|\\.)+)\]\(([^()\s]+)\)", one, text)


def markdown_text(text):
    """What Doxygen would read otherwise than any reader of Markdown. Escapes stay."""
    text = text.replace("\\~", "~").replace("\\_", "_").replace('\\"', '"')
    text = re.sub(r"(\\[^\w\s])|([\\@<>&%#$]|--(?=[^\s|:-]))",
                  lambda found: found.group(1) or "\\" + found.group(2), text)
    return text.replace('"', "&quot;")


def markdown_lines(name, text):
    """Lines of running text, or one row of a table."""
    links = []
    # The text of a link has to be on one line, which begins earlier then.
    text = re.sub(r" (\S*(?<!\\)\[[^\[\]\n]*)\n( *)([^\[\]\n]*\]\([^()\s]+\))", r"\n\2\1 \3", text)

    def keep(match):
        links.append(re.sub(r"\s+", " ", match.group()))
        return f"\0{len(links) - 1}\0"
    place = r"(?<!\\)\[(?:[^\[\]]|\\.)+\]\([^()\s]+\)|<https?://[^>]*>"
    text = changed(re.sub(place, keep, text), markdown_text)
    return re.sub("\0(\\d+)\0", lambda found: linked(name, links[int(found.group(1))]), text)


KNOWN_LANGUAGES = {"cpp", "c", "python", "xml"}


def markdown(name):
    lines, running, fence, slugs, is_comment = [], [], None, {}, False

    def end_of_text():
        if running:
            lines.extend(markdown_lines(name, "\n".join(running)).split("\n"))
            running.clear()
    for line in read(project, name).split("\n"):
        mark = re.match(r"\s*(```+|~~~+)\s*([\w+-]*)\s*$", line)
        if not (fence or mark or is_comment or re.match(r"<!--|#{1,6} | {4}|\s*$", line)):
            running.append(line)
            if line.startswith("|"):
                end_of_text()
            continue
        end_of_text()
        if fence:
            fence = None if mark and mark.group(1) == fence and not mark.group(2) else fence
        elif mark:
            fence = mark.group(1)
            language = mark.group(2) if mark.group(2) in KNOWN_LANGUAGES else "unparsed"
            line = re.match(r"\s*", line).group() + f"{fence}{{.{language}}}"
        elif is_comment or line.startswith("<!--"):
            is_comment = "-->" not in line
            line = ""
        elif re.match(r"#{1,6} ", line):
            level, _, title = line.partition(" ")
            key = slug(title)
            slugs[key] = slugs.get(key, -1) + 1
            key += f"-{slugs[key]}" if slugs[key] else ""
            label = page_name(name) if level == "#" else f"{page_name(name)}-{key}"
            title = markdown_lines(name, title)
            if level == "#":  # no link to the namespace of that name
                title = re.sub(r"\bZQFoundation\b", "%ZQFoundation", title)
            line = f"{level} {title}"
            if label != "index":
                line += f" {{#{label}}}"
        lines.append(line)
    end_of_text()
    return "\n".join(lines)


# What there is.


def headers():
    return public_headers(project) + ["include/ZQFoundation.h"]


def inputs():
    """First the main page, then the pages in the order in which their index names them."""
    found = {each.relative_to(project).as_posix() for each in (project / "docs").glob("*.md")}
    ordered = [pages_at_root[0]]
    if page_index in found:
        ordered.append(page_index)
        for link in re.findall(r"\]\(([\w-]+\.md)", read(project, page_index)):
            ordered.append("docs/" + link)
    ordered += sorted(found) + [each for each in pages_at_root[1:]]
    return [each for each in dict.fromkeys(ordered) if (project / each).exists()]


def main():
    if len(sys.argv) != 2 or sys.argv[1] in ("-h", "--help"):
        print(__doc__)
        return 0 if len(sys.argv) == 2 else 2
    if sys.argv[1] == "--inputs":
        print("\n".join(inputs() + headers() + ["docs/doxygen/namespace.dox"]))
        return 0
    path = pathlib.Path(sys.argv[1]).resolve()
    name = path.relative_to(project).as_posix()
    try:
        writer = {".md": markdown, ".h": header}.get(path.suffix, lambda each: read(project, each))
        sys.stdout.write(writer(name))
    except Fault as fault:
        print(f"doxygen_filter.py: {fault}", file=sys.stderr)
        return 1
    return 0


if __name__ == "__main__":
    sys.exit(main())
