# SPDX-License-Identifier: BSD-3-Clause
# The help of an m-file as a page in Markdown. What is indented below a sentence is a table of rows "name  text", whose text
# goes on below itself, or a formula or table of more columns, which is shown as it is; all else is an error.
import re

row_form = re.compile(r"(\S+(?: \S+)*) {2,}(\S.*)")
section_form = re.compile(r"(Inputs?|Options?|Outputs?|Criteria)\b[:,] *(.*)")


class Misunderstood(Exception):
    """A line of help that is neither text nor a row of a table."""


def indent_of(line):
    return len(line) - len(line.lstrip())


def taken(lines, is_part):
    """The lines at the head that are part of something, taken off, without empty ones at their end."""
    count = next((i for i, line in enumerate(lines) if not is_part(line)), len(lines))
    part, lines[:count] = lines[:count], []
    while part and not part[-1]:
        part.pop()
    return part


def prose(text, link):
    """Text with the names of functions as links and quoted words as code."""
    parts = re.split(r"((?<!\w)'[^'\s]+'(?!\w)|\b[a-z]+(?:_[a-z]+)+\b)", text)
    return "".join(name(part, link) if i % 2 and (part[0] == "'" or link(part)) else
                   re.sub(r"([\\`*_{}\[\]<>()#+.!|$~^&=-])", r"\\\1", part) for i, part in enumerate(parts))


def name(word, link):
    return f"[`{word}`]({link(word)})" if link(word) else f"`{word}`"


def fence(lines, language="text"):
    shift = min(indent_of(line) for line in lines if line)
    return "\n".join([f"```{language}", *(line[shift:] for line in lines), "```"])


def rows_of(lines):
    """Rows as (name, text, indented lines below them); sentences between them have no name."""
    base = indent_of(lines[0])
    matches = [row_form.fullmatch(line.strip()) for line in lines if indent_of(line) == base]
    column = base + min((match.start(2) for match in matches if match), default=0)
    lines, rows = list(lines), []
    while lines:
        line = lines.pop(0)
        match = row_form.fullmatch(line.strip())
        if indent_of(line) != base:
            raise Misunderstood(line)
        if match:
            places = {column, base + match.start(2)}
            text = [match[2], *taken(lines, lambda line: indent_of(line) in places)]
            rows.append((match[1], " ".join(map(str.strip, text)), taken(lines, lambda line: indent_of(line) > base)))
        else:
            text = [line, *taken(lines, lambda line: indent_of(line) == base and not row_form.fullmatch(line.strip()))]
            rows.append((None, " ".join(map(str.strip, text)), []))
    return rows


def cells(title, text, below, link):
    """A row of a table, and one for each field where it is a struct; the values of an option are a list in it."""
    inner = rows_of(below) if below else []
    if not all(row[0] for row in inner):
        raise Misunderstood(below[0])
    values = [f"    - `{value}`: {prose(meaning, link)}" for value, meaning, _ in inner if value[0] == "'"]
    rows = ["\n".join([f"* - `{title}`", f"  - {prose(text, link)}", *([""] if values else []), *values])]
    for field, meaning, deeper in inner:
        if field[0] != "'":
            rows += cells(", ".join(f"{title}.{word}" for word in field.split(", ")), meaning, deeper, link)
    return rows


def table(lines, link, header_rows=0):
    """All that is indented: tables with the sentences between them."""
    if re.match(r" *\w+ = ", lines[0]) or len(re.findall(r"\S {2,}(?=\S)", lines[0])) > 1:
        return fence(lines)
    blocks, rows = [], []
    for title, text, below in [*rows_of(lines), (None, "", [])]:
        if title:
            rows += cells(title, text, below, link)
            continue
        if rows:
            blocks.append(f"```{{list-table}}\n:widths: 1 3\n:header-rows: {header_rows}\n\n" + "\n".join(rows) + "\n```")
        blocks, rows = [*blocks, prose(text, link)], []
    return "\n\n".join(blocks)


def block(function, lines, link):
    """The next block of help."""
    line = lines[0]
    if re.match(rf"([\[\]\w., ~]+ = )?{function}\b(\(|$)", line):
        return fence(taken(lines, lambda line: function in line), "octave")
    if line.startswith("Example"):
        title = prose(lines.pop(0).partition(":")[2].strip(), link)
        code = taken(lines, lambda line: not line or indent_of(line))
        return f"## Example\n\n{title}\n\n{fence(code, 'matlabsession')}"
    if row_form.fullmatch(line):
        head = " " * indent_of(lines[1]) + lines.pop(0)
        return table([head, *taken(lines, indent_of)], link, 1)
    section = section_form.fullmatch(line)
    text = " ".join(taken(lines, lambda line: line and not indent_of(line)))
    if text.startswith("See also "):
        others = re.findall(r"\w+", text[9:])
        if not all(link(other) for other in others if other != "mex"):
            raise Misunderstood(text)
        return "## See also\n\n" + ", ".join(name(other, link) for other in others)
    below = taken(lines, indent_of)
    text = prose(text[section.start(2):][:1].upper() + text[section.start(2) + 1:] if section else text, link)
    return "\n\n".join([*([f"## {section[1]}"] if section else []), text, *([table(below, link)] if below else [])])


def page(path, link, extra):
    """The page of an m-file; link(NAME) is where a function is described, extra what stands above the links to others."""
    text = path.read_text(encoding="utf-8").split("\n")
    first, *lines = [line[1:].rstrip() for line in taken(text, lambda line: line.startswith("%"))]
    lines = [line[3:] for line in lines]
    title = re.fullmatch(rf" {path.stem.upper()}  (.*\.)", first)
    if not title:
        raise Misunderstood(first)
    shown = [f"# {path.stem}", prose(title[1], link)]
    while any(lines):
        taken(lines, lambda line: not line)
        shown += extra if lines[0].startswith("See also") else []
        shown.append(block(path.stem, lines, link))
    return "\n\n".join(shown) + "\n"
