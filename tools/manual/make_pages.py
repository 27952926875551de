#!/usr/bin/env python3
"""Makes the manual page of a tool, and its completions for bash, zsh and fish, from what it says with --help and from
the guide that tells about it.

Usage: make_pages.py PROGRAM NAME VERSION DATE GUIDE HEADING FOLDER

HEADING is that of the guide's section about the tool: its first part becomes the description, and each part below
becomes a section. FOLDER gets NAME.1, NAME.bash, _NAME and NAME.fish."""
import pathlib
import re
import sys

import descriptions
import roff

TOOLS = ("zprusb", "zprusb-service", "zprusb-simulator")
HERE = pathlib.Path(__file__).parent


def guide_sections(guide, heading):
    """Title and text of each part of a guide's section; the first one has no title."""
    text = pathlib.Path(guide).read_text(encoding="utf-8")
    section = re.search(rf"^## {re.escape(heading)}\n(.*?)(?=^## |\Z)", text, re.MULTILINE | re.DOTALL)
    if not section:
        sys.exit(f"{guide} has no section '{heading}'.")
    first, *others = re.split(r"^### (.*)\n", section[1], flags=re.MULTILINE)
    return [("", first), *zip(others[::2], others[1::2])]


# The manual page


def syntax(entry):
    names = ", ".join(f"\\fB{roff.escaped(name)}\\fP" for name in entry.names)
    value = roff.escaped(entry.value)
    return names + (f" {value}" if entry.optional_value else f" \\fI{value}\\fP" if value else "")


def described(entry, head):
    text = roff.escaped(entry.text) + "."
    if entry.choices:
        text += " One of " + ", ".join(f"\\fB{roff.escaped(choice)}\\fP" for choice in entry.choices) + "."
    if entry.default:
        text += f" The default is {roff.escaped(entry.default)}."
    return f".TP\n{head}\n{roff.filled(text)}"


def option(entry):
    return described(entry, syntax(entry))


def argument(entry):
    return described(entry, f"\\fI{roff.escaped(entry.names[0])}\\fP" + (" ..." if entry.repeated else ""))


def synopsis(command):
    words = command.usage.removeprefix(" ".join(command.path)).replace("[OPTIONS]", "[options]")
    path = roff.escaped(" ".join(command.path))
    return f".B {path}\n{roff.escaped(words.strip())}\n"


def is_own(entry):
    return "--help" not in entry.names


def leaf_section(command):
    text = f".SS {roff.escaped(' '.join(command.path[1:]))}\n{roff.filled(roff.escaped(command.text) + '.')}"
    text += "".join(argument(entry) for entry in command.arguments)
    text += "".join(option(entry) for entry in command.options if is_own(entry))
    remarks = [line for line in command.remarks if not line.startswith("Exit status: ")]
    return text + "".join(f".PP\n{roff.filled(roff.escaped(line))}" for line in remarks)


def environment(tool):
    entries = [(entry.environment, entry.names[0]) for entry in tool.options if entry.environment]
    return "".join(f".TP\n.B {name}\nThe default of \\fB{roff.escaped(of)}\\fP.\n" for name, of in entries)


def titled(title, text):
    return f".SH {roff.escaped(title.upper())}\n{text.removeprefix('.PP' + chr(10))}" if text else ""


def manual_page(tool, version, date, parts):
    name = tool.path[0]
    leaves = [command for command in tool.all() if not command.commands]
    summary, *_ = tool.text.rstrip(".").split(". ")
    head = f'.TH {name.upper()} 1 {date} "zprusb {version}" "RQX5820usb"\n'
    statuses = "".join(f".TP\n.B {number}\n{roff.escaped(text)}\n" for number, text in tool.exit_statuses)
    see = ", ".join(f"\\fB{roff.escaped(other)}\\fP(1)" for other in TOOLS if other != name)
    return head + "".join(
        [
            titled("Name", f"{roff.escaped(name)} \\- {roff.escaped(summary[0].lower() + summary[1:])}\n"),
            titled("Synopsis", "\n.br\n".join(synopsis(leaf).rstrip("\n") for leaf in leaves) + "\n"),
            titled("Description", roff.markdown(parts[0][1])),
            titled("Options of all commands", "".join(option(entry) for entry in tool.options)),
            titled("Commands", "".join(leaf_section(leaf) for leaf in leaves)),
            *(titled(title, roff.markdown(text)) for title, text in parts[1:]),
            titled("Exit status", statuses),
            titled("Environment", environment(tool)),
            titled("See also", see + "\n"),
        ]
    )


# The completions. All shells walk the same table, of lines PATH|SLOT|WORD|DESCRIPTION: what may stand at a place of the
# command line. SLOT is "command", "option", the name of the option whose value it is, the number of the argument, or
# "+" for all further arguments. WORD is the word itself; <file>, <folder>, or <text> for what nobody can propose. PATH
# is that of the command, or * for all of them.


def words_of(entry):
    if entry.choices:
        return entry.choices
    kinds = {"FILE": "<file>", "FOLDER": "<folder>"}
    return [kinds.get(entry.value, "<text>")]


def rows_of_option(path, entry):
    for name in entry.names:
        yield path, "option", name, entry.text
        if entry.value and not entry.optional_value:
            yield from ((path, name, word, "") for word in words_of(entry))


def rows_of(command):
    path = "/".join(command.path[1:])
    for below in command.commands:
        yield path, "command", below.path[-1], below.text
    for entry in command.options:
        if is_own(entry) or not path:
            yield from rows_of_option(path or "*", entry)
    for place, entry in enumerate(command.arguments, 1):
        slot = "+" if entry.repeated else str(place)
        yield from ((path, slot, word, "") for word in words_of(entry))


def completion(tool, shell):
    table = "\n".join("|".join(row) for command in tool.all() for row in rows_of(command)).replace("'", "’")
    template = (HERE / f"completion.{shell}").read_text(encoding="utf-8")
    name = tool.path[0]
    return (
        template.replace("@TOOL@", name).replace("@FUNCTION@", name.replace("-", "_")).replace("@TABLE@", table)
    )


def main(program, name, version, date, guide, heading, folder):
    tool = descriptions.read(program, [name])
    folder = pathlib.Path(folder)
    folder.mkdir(parents=True, exist_ok=True)
    page = manual_page(tool, version, date, guide_sections(guide, heading))
    (folder / f"{name}.1").write_text(page, encoding="utf-8")
    for shell, file in (("bash", f"{name}.bash"), ("zsh", f"_{name}"), ("fish", f"{name}.fish")):
        (folder / file).write_text(completion(tool, shell), encoding="utf-8")


if __name__ == "__main__":
    main(*sys.argv[1:])
