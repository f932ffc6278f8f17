#!/usr/bin/env python3
"""What shells offer for a line that is begun, asked of the shells themselves."""
import os
import pty
import select
import unittest

from shell import COMMANDS, SOURCE, Shell

COMPLETIONS = SOURCE / "tools/orvml/completion"
FORMATS = {"text", "csv", "json", "npy"}


class Completion(Shell):
    """Each shell has a class of its own, which says what it offers for a line."""

    def completed(self, line):
        raise unittest.SkipTest("no shell")

    def setUp(self):
        super().setUp()
        for name in ("part.stl", "other.h5"):
            (self.folder / name).touch()

    def test_commands_are_completed(self):
        self.assertEqual(self.completed("orvml ") - {"--help", "--version"}, set(COMMANDS))

    def test_options_of_each_command_are_completed(self):
        for command in COMMANDS:
            with self.subTest(command=command):
                self.assertEqual(self.completed(f"orvml {command} --"), self.options_of(command))

    def test_formats_are_completed(self):
        self.assertEqual(self.completed("orvml extract other.h5 x --format "), FORMATS)
        self.assertEqual(self.completed("orvml new --format s"), {"stl"})

    def test_files_are_completed(self):
        self.assertEqual(self.completed("orvml info part.s"), {"part.stl"})


class Bash(Completion):
    def completed(self, line):
        words = " ".join(f"'{word}'" for word in line.split(" "))
        script = (f"source '{COMPLETIONS}/orvml.bash'; COMP_WORDS=({words}); "
                  "COMP_CWORD=$((${#COMP_WORDS[@]} - 1)); _orvml; printf '%s\\n' \"${COMPREPLY[@]}\"")
        return set(self.run_line(script)[1].split())


class Fish(Completion):
    def completed(self, line):
        script = f"source {COMPLETIONS}/orvml.fish; complete -C \"{line}\""
        code, printed, told = self.run_line(f"HOME=. fish --no-config -c '{script}'")
        self.assertEqual((code, told), (0, ""))
        return {offer.split("\t")[0] for offer in printed.splitlines()}


class Zsh(Completion):
    """Completes only as one types, so that the test types."""

    SETTINGS = (f"fpath=({COMPLETIONS} $fpath); autoload -Uz compinit; compinit -u -D; "
                "zstyle ':completion:*' verbose no; LISTMAX=9999; unsetopt prompt_cr prompt_sp; "
                "unset zle_bracketed_paste; bindkey '^I' list-choices; PS1='rea''dy> '\n")

    def begin(self):
        process, terminal = pty.fork()
        if process == 0:
            os.chdir(self.folder)
            os.execvpe("zsh", ["zsh", "-f", "-i"], dict(self.environment(), TERM="dumb", COLUMNS="200"))
        self.addCleanup(os.waitpid, process, 0)
        self.addCleanup(os.close, terminal)
        return terminal

    def shown(self, terminal, typed, end):
        """What is shown of something that is typed, up to an end."""
        os.write(terminal, typed.encode())
        shown = ""
        while not shown.endswith(end):
            self.assertTrue(select.select([terminal], [], [], 30)[0], repr(shown))
            shown += os.read(terminal, 65536).decode()
        return shown

    def completed(self, line):
        terminal = self.begin()
        self.shown(terminal, self.SETTINGS, "ready> ")
        shown = self.shown(terminal, line + "\t", "\r\nready> " + line)
        return set(shown.split("\r\n", 1)[1].rsplit("\r\n", 1)[0].split())


del Completion  # what they have in common is no test by itself


if __name__ == "__main__":
    unittest.main()
