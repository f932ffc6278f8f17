#!/usr/bin/env python3
"""Runs what the guides tell their readers to type, and compares what it prints.

    run_documentation.py [--update] BUILD SCRATCH PAGE...

The library built in BUILD is installed for it, as the first step of the guides has it.

A fenced block whose first line is a comment with a file name is that file. In a `console` block, lines
that begin with "$ " are run by bash, in order and in one folder for all pages; what follows each is what
it prints. --update writes into the pages what is printed.
"""
import os
import pathlib
import re
import shutil
import subprocess
import sys

BLOCK = re.compile(r"^```(\w+)\n(.*?)^```$", re.M | re.S)
FILE_NAME = re.compile(r"^(?://|#) ([\w.-]+\.\w+)\n")


class Disagreement(Exception):
    pass


def install(build, prefix):
    """Installs the library and lets the shell, CMake and the loader find it."""
    subprocess.run(["cmake", "--install", build, "--prefix", prefix], check=True,
                   stdout=subprocess.DEVNULL)
    library = next(prefix.rglob("liborvml_io.so")).parent
    os.environ.update(PKG_CONFIG_PATH=f"{library}/pkgconfig", CMAKE_PREFIX_PATH=str(prefix),
                      LD_LIBRARY_PATH=str(library))


def run(command, folder):
    done = subprocess.run(["bash", "-c", command], cwd=folder, text=True, check=False,
                          stdout=subprocess.PIPE, stderr=subprocess.STDOUT)
    return done.returncode, done.stdout


def typed(content):
    """Yields each command of a console block and what the page says it prints."""
    for part in re.split(r"(?m)^\$ ", content)[1:]:
        command, _, output = part.partition("\n")
        yield command, output


def run_block(content, folder, page, update):
    told = ""
    for command, output in typed(content):
        status, printed = run(command, folder)
        if status != 0 or (printed != output and not update):
            raise Disagreement(f"{page.name}: $ {command}\nends with {status} and prints\n{printed}"
                               f"but the page says\n{output}")
        told += f"$ {command}\n{printed}"
    return told


def run_page(page, folder, update):
    """Returns the text of the page with what its commands print, and their number."""
    commands = 0

    def block(match):
        nonlocal commands
        language, content = match.groups()
        name = FILE_NAME.match(content)
        if name is not None:
            (folder / name.group(1)).write_text(content)
        if language != "console":
            return match.group()
        commands += len(list(typed(content)))
        return f"```console\n{run_block(content, folder, page, update)}```"

    return BLOCK.sub(block, page.read_text()), commands


def main(arguments):
    update = "--update" in arguments
    build, scratch, *pages = (pathlib.Path(argument).resolve() for argument in arguments
                              if argument != "--update")
    shutil.rmtree(scratch, ignore_errors=True)
    folder = scratch / "typed"
    folder.mkdir(parents=True)
    install(build, scratch / "prefix")
    for page in pages:
        try:
            text, commands = run_page(page, folder, update)
        except Disagreement as disagreement:
            print(disagreement, file=sys.stderr)
            return 1
        if update:
            page.write_text(text)
        if commands == 0:
            print(f"{page.name} has no command", file=sys.stderr)
            return 1
        print(f"{page.name}: {commands} commands print what the page says")
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
