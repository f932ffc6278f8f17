#!/usr/bin/env python3
"""Runs what the guides tell their readers to type, and compares what it prints.

    run_documentation.py [--update] BUILD SCRATCH PAGE...

BUILD stands for the build that the guides begin with. Nothing is installed: the first page has to do
that, into the home folder of a reader who is new on the machine.

A fenced block whose first line is a comment with a file name is that file. In a `console` block, lines
that begin with "$ " are run in order, by one bash and in one folder for all pages; what follows each is
what it prints. --update writes into the pages what is printed.
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


def environment(home):
    """That of a reader for whom nothing was installed yet."""
    told = ("PKG_CONFIG_PATH", "CMAKE_PREFIX_PATH", "LD_LIBRARY_PATH", "LIBRARY_PATH", "CPATH")
    kept = {name: value for name, value in os.environ.items() if name not in told}
    return dict(kept, HOME=str(home))


class Shell:
    """The one bash that everything is typed into, so that what is exported stays so."""

    END = "-- end of what the command prints, with status"

    def __init__(self, folder, home):
        self.bash = subprocess.Popen(["bash"], cwd=folder, env=environment(home), text=True,
                                     stdin=subprocess.PIPE, stdout=subprocess.PIPE,
                                     stderr=subprocess.STDOUT)

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.bash.stdin.close()
        self.bash.stdout.close()
        self.bash.wait()

    def run(self, command):
        self.bash.stdin.write(f"{{ {command}\n}} </dev/null\necho \"{self.END} $?\"\n")
        self.bash.stdin.flush()
        printed = ""
        for line in self.bash.stdout:
            before, end, status = line.partition(self.END)
            printed += before
            if end:
                return int(status), printed
        raise Disagreement(f"$ {command}\nends the shell, which printed\n{printed}")


def typed(content):
    """Yields each command of a console block and what the page says it prints."""
    for part in re.split(r"(?m)^\$ ", content)[1:]:
        command, _, output = part.partition("\n")
        yield command, output


def run_block(content, shell, page, update):
    told = ""
    for command, output in typed(content):
        status, printed = shell.run(command)
        if status != 0 or (printed != output and not update):
            raise Disagreement(f"{page.name}: $ {command}\nends with {status} and prints\n{printed}"
                               f"but the page says\n{output}")
        told += f"$ {command}\n{printed}"
    return told


def run_page(page, folder, shell, update):
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
        return f"```console\n{run_block(content, shell, page, update)}```"

    return BLOCK.sub(block, page.read_text()), commands


def run_pages(pages, folder, shell, update):
    for page in pages:
        text, commands = run_page(page, folder, shell, update)
        if update:
            page.write_text(text)
        if commands == 0:
            raise Disagreement(f"{page.name} has no command")
        print(f"{page.name}: {commands} commands print what the page says")


def main(arguments):
    update = "--update" in arguments
    build, scratch, *pages = (pathlib.Path(argument).resolve() for argument in arguments
                              if argument != "--update")
    shutil.rmtree(scratch, ignore_errors=True)
    folder, home = scratch / "typed", scratch / "home"
    sources = folder / "liborvml_io"
    sources.mkdir(parents=True)
    home.mkdir()
    (sources / "build").symlink_to(build)
    try:
        with Shell(folder, home) as shell:
            run_pages(pages, folder, shell, update)
    except Disagreement as disagreement:
        print(disagreement, file=sys.stderr)
        return 1
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
