"""Reads what the tools say with --help: the one description of their commands from which all others are made."""
import dataclasses
import re
import subprocess

ENTRY = re.compile(r"  (\S.*?)(?:  +(\S.*))?$")
CONTINUED = " " * 30
CHOICES = re.compile(r":?\{([^}]*)\}")
VALUE = re.compile(r"(.*?)(?:=([^A-Z]+))?")  # SECONDS=60, but KEY=VALUE has no default
NOTE = re.compile(r" (?:\(Env:(?P<environment>\w+)\)|Excludes: \S+|REQUIRED)")


@dataclasses.dataclass
class Entry:
    """An option, or an argument without a name of its own."""

    names: list
    value: str  # what it takes, such as FILE; empty for a flag
    default: str
    choices: list
    repeated: bool
    environment: str
    text: str

    @property
    def optional_value(self):
        return self.value.startswith("[")


@dataclasses.dataclass
class Command:
    path: list  # of words, from the name of the tool
    text: str
    usage: str
    arguments: list
    options: list
    commands: list
    remarks: list  # lines at the end

    def all(self):
        """The command itself and those below it."""
        yield self
        for command in self.commands:
            yield from command.all()

    @property
    def exit_statuses(self):
        """Pairs of number and meaning."""
        line = next(line for line in self.remarks if line.startswith("Exit status: "))
        return re.findall(r"(\d) ([^;,.]+)", line)


def entry_of(head, text):
    note = NOTE.search(head)
    environment = next((match["environment"] for match in NOTE.finditer(head) if match["environment"]), "")
    head = head[: note.start()] if note else head
    choices = CHOICES.search(head)
    words = CHOICES.sub("", head).replace(" ...", "").split(" ", 1)
    value, default = VALUE.fullmatch(words[1] if len(words) > 1 else "").groups()
    listed = [choice.strip() for choice in choices[1].split(",")] if choices else []
    return Entry(words[0].split(","), value, default or "", listed, " ..." in head, environment, text)


def sections_of(lines):
    """The entries below each heading, and the lines that belong to none."""
    sections, rest, current = {}, [], None
    for line in lines:
        entry = ENTRY.match(line)
        if re.fullmatch(r"\w+:", line):
            current = sections.setdefault(line[:-1], [])
        elif current and line.startswith(CONTINUED):
            current[-1][1] = line.strip()
        elif current is not None and entry:
            current.append([entry[1], entry[2] or ""])
        else:
            rest.append(line)
    return sections, [line for line in rest if line]


def read(program, path):
    """Asks a tool about the command of this path, and about those below it."""
    said = subprocess.run([program, *path[1:], "--help"], check=True, capture_output=True, encoding="utf-8")
    sections, (text, usage, *remarks) = sections_of(said.stdout.splitlines())
    return Command(
        path,
        text,
        usage.removeprefix("Usage: "),
        [entry_of(*entry) for entry in sections.get("Positionals", [])],
        [entry_of(*entry) for entry in sections.get("Options", [])],
        [read(program, [*path, name]) for name, _ in sections.get("Subcommands", [])],
        remarks,
    )
