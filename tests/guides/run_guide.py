#!/usr/bin/env python3
"""Does what a guide tells its reader to do, word by word, in a new folder.

Usage: run_guide.py GUIDE PACKAGE FOLDER

FOLDER is emptied and gets the package that readers download. Then the fenced blocks of the guide become one shell script, so that folders and variables carry over:

  - a block under a line that ends with a file name, as in "Save this as `print.c`:", is saved in that file;
  - other blocks in "sh" are run, and must succeed;
  - a block in "text" right after one of them is all that it must have printed.

Blocks in any other language ("bat", "powershell") are for the reader alone.
"""
import os
import re
import shutil
import subprocess
import sys

BLOCK = re.compile(r"(?P<before>[^\n]*)\n\n```(?P<language>\w+)\n(?P<body>.*?)^```$", re.DOTALL | re.MULTILINE)
FILE_NAME = re.compile(r"`([\w./-]+)`:$")
HEAD = """set -eu
output=$(mktemp)
trap 'status=$?; [ $status = 0 ] || cat "$output"; rm -f "$output"; exit $status' EXIT
"""


def here_document(command, body):
    return f"{command} <<'END OF BLOCK'\n{body}END OF BLOCK\n"


def script_of(guide):
    pieces = [HEAD]
    follows_command = False
    if "\n```sh\n" not in guide:
        sys.exit("The guide shows no command.")
    for block in BLOCK.finditer(guide):
        language, body = block["language"], block["body"]
        name = FILE_NAME.search(block["before"])
        runs = language == "sh" and not name
        if name:
            pieces.append(here_document(f"cat >{name[1]}", body))
        elif runs:
            pieces.append("cat <<'END OF BLOCK'\n" + body + "END OF BLOCK\n{\n" + body + '} >"$output" 2>&1\n')
        elif language == "text" and follows_command:
            pieces.append(here_document('diff - "$output"', body))
        follows_command = runs
    return "".join(pieces)


def main(guide, package, folder):
    shutil.rmtree(folder, ignore_errors=True)
    os.makedirs(folder)
    shutil.copy(package, folder)
    with open(guide, encoding="utf-8") as file:
        script = script_of(file.read())
    os.environ.pop("ZPRUSB_SIMULATOR", None)  # the reader's printers, not those of another simulation
    return subprocess.run(["bash", "-c", script], cwd=folder, stdin=subprocess.DEVNULL).returncode


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
