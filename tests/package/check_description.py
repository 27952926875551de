#!/usr/bin/env python3
"""Whether manual pages and completions of a package have every command and option of its tools, and the links of its
guides lead to files that are there.

Usage: check_description.py PACKAGE"""
import pathlib
import re
import subprocess
import sys
import tarfile
import tempfile

# Each gives the proposals for the line that stands in its first argument and ends where the cursor is.
BASH = """COMP_WORDS=($1 "$2"); COMP_CWORD=$((${#COMP_WORDS[@]} - 1)); source "$0"
_${COMP_WORDS[0]//-/_} 2>/dev/null; printf '%s\\n' "${COMPREPLY[@]}" """
ZSH = """_describe() { print -l -- ${(P)@[-1]%%:*} }; _files() { print -l -- *(N) }
words=(${=1} "$2"); CURRENT=$#words; source $0"""
FISH = """source $argv[1]; complete -C "$argv[2] $argv[3]" """
findings = []


def output(*command, **options):
    return subprocess.run(command, capture_output=True, encoding="utf-8", **options).stdout


class Shells:
    def __init__(self, share, tool):
        bash = share / "bash-completion/completions" / tool
        zsh = share / "zsh/site-functions" / f"_{tool}"
        fish = share / "fish/vendor_completions.d" / f"{tool}.fish"
        self.commands = [
            ("bash", "-c", BASH, bash),
            ("zsh", "-fc", ZSH, zsh),
            ("fish", "--no-config", "-c", FISH, fish),
        ]

    def check(self, line, word, expected, folder=None):
        for command in self.commands:
            said = output(*command, line, word, cwd=folder).splitlines()
            proposed = {proposal.split("\t")[0].removesuffix("/") for proposal in said}
            if not expected <= proposed:
                findings.append(f"{command[0]} does not propose {expected - proposed} after '{line} {word}'")


def check_command(program, path, page, shells):
    said = output(program, *path[1:], "--help")
    options = set(re.findall(r"^  (?:-\w,)?(--[\w-]+)", said, re.MULTILINE))
    commands = set(re.findall(r"^  ([a-z-]+) ", said.partition("Subcommands:")[2], re.MULTILINE))
    missing = [word for word in options | commands if not re.search(rf"(?<![\w-]){word}(?![\w-])", page)]
    if missing or not options:
        findings.append(f"the manual page tells nothing of {missing} of {path}")
    shells.check(" ".join(path), "--", options - {"--help", "--version"} if path[1:] else options)
    if commands:
        shells.check(" ".join(path), "", commands)
    for command in commands:
        check_command(program, [*path, command], page, shells)


def check_tool(prefix, tool):
    source = prefix / "share/man/man1" / f"{tool}.1"
    lint = output("mandoc", "-T", "lint", source)
    warnings = subprocess.run(["man", "--warnings", "-l", source], capture_output=True, encoding="utf-8").stderr
    if lint or warnings:
        findings.append(lint + warnings)
    page = re.sub(r".\x08", "", output("mandoc", "-T", "ascii", source))
    if any(f"\n       {number}      " not in page for number in ("0", "1", "2", "5")):
        findings.append(f"the manual page of {tool} lacks exit statuses")
    check_command(prefix / "bin" / tool, [tool], page, Shells(prefix / "share", tool))


def check_values(share):
    """What stands at a place beside options and commands."""
    zprusb, service = Shells(share, "zprusb"), Shells(share, "zprusb-service")
    with tempfile.TemporaryDirectory() as folder:
        (pathlib.Path(folder) / "my photo.png").touch()
        (pathlib.Path(folder) / "in tray").mkdir()
        zprusb.check("zprusb --wait 5 print --fit", "", {"my photo.png"}, folder)
        zprusb.check("zprusb print --preview", "my", {"my photo.png"}, folder)
        zprusb.check("zprusb print --watch", "in", {"in tray"}, folder)
    zprusb.check("zprusb --progress json info media", "f", {"firmware"})
    zprusb.check("zprusb --progress", "", {"auto", "json", "none"})
    zprusb.check("zprusb set", "", {"button", "parameter", "name"})
    service.check("zprusb-service --yes command", "get-s", {"get-status", "get-self-diagnosis-results"})


def check_links(prefix):
    for guide in prefix.rglob("*.md"):
        for link in re.findall(r"\]\((?!https:)([^)#]+)", guide.read_text(encoding="utf-8")):
            if not (guide.parent / link).exists():
                findings.append(f"{guide.relative_to(prefix)} links to {link}, which is not in the package")
    for path in re.findall(r"^\| `([^`]+)`", (prefix / "README.md").read_text(encoding="utf-8"), re.MULTILINE):
        if not (prefix / path).exists() and "reference" not in path:  # which is made for the final package
            findings.append(f"README.md speaks of {path}, which is not in the package")


with tempfile.TemporaryDirectory() as folder:
    tarfile.open(sys.argv[1]).extractall(folder)
    (prefix,) = pathlib.Path(folder).iterdir()
    check_links(prefix)
    for tool in ("zprusb", "zprusb-service", "zprusb-simulator"):
        check_tool(prefix, tool)
    check_values(prefix / "share")
sys.exit("\n".join(findings) or 0)
