"""Turns text, and the part of Markdown that the guides use, into the language of manual pages."""
import re
import textwrap

INLINE = re.compile(r"`([^`]+)`|\*\*([^*]+)\*\*|\[([^]]+)\]\([^)]*\)")


def escaped(text):
    """No line of it is taken for a request."""
    text = text.replace("\\", "\\e").replace("-", "\\-").replace("'", "\\(aq").replace("`", "\\(ga")
    return re.sub(r"^\.", "\\\\&.", text, flags=re.MULTILINE)


def filled(text):
    lines = textwrap.wrap(text, 78, break_long_words=False, break_on_hyphens=False)
    return "".join(("\\&" if line.startswith(".") else "") + line + "\n" for line in lines)


def inline(text):
    """`code` and **bold** are bold; of a link, its words remain."""
    result, start = "", 0
    for match in INLINE.finditer(text):
        bold = match[1] or match[2]
        result += escaped(text[start : match.start()])
        result += f"\\fB{escaped(bold)}\\fP" if bold else inline(match[3])
        start = match.end()
    return result + escaped(text[start:])


def table(lines):
    """Each row below the headings: the first cell as a term, then the others."""
    result = ""
    for line in lines[2:]:
        first, *others = [cell.strip() for cell in line.strip("|").split("|")]
        result += f".TP\n{inline(first)}\n{filled(inline('; '.join(cell for cell in others if cell)))}"
    return result


def block(text):
    lines = text.split("\n")
    if lines[0].startswith("```"):
        lines = ["    " + line for line in lines[1:-1]]
    if all(line.startswith("    ") for line in lines):
        return ".PP\n.RS 4\n.nf\n" + "\n".join(escaped(line[4:]) or ".sp" for line in lines) + "\n.fi\n.RE\n"
    if lines[0].startswith("|"):
        return table(lines)
    if lines[0].startswith("- "):
        items = "\n".join(lines)[2:].split("\n- ")
        return "".join(f".IP \\(bu 2\n{filled(inline(' '.join(item.split())))}" for item in items)
    return f".PP\n{filled(inline(' '.join(lines)))}"


def markdown(text):
    # Fenced code may have empty lines in it; all other blocks end there.
    parts = re.findall(r"^```\w*\n[\s\S]*?\n```$|(?:^(?!```).+(?:\n|\Z))+", text, re.MULTILINE)
    return "".join(block(part.rstrip("\n")) for part in parts)
