#!/usr/bin/env python3
"""readme.py README BIN EXAMPLES: runs the commands of README as somebody would paste them, one block
after the other, into a shell in a directory of their own, with the programs in BIN. What a block
prints must be what is quoted after it; "..." there stands for anything. Waits for output alone.
"""

import os
import pty
import re
import select
import signal
import subprocess
import sys
import tempfile
from pathlib import Path

PATIENCE = 120  # seconds for the next byte of output
BLOCK = re.compile(r"^```(\w+)\n(.*?)^```\n", re.MULTILINE | re.DOTALL)


def blocks(text):
    """The commands in order, each with the output that is quoted after it."""
    all_blocks = [(match[1], match[2]) for match in BLOCK.finditer(text)]
    for (language, commands), (following, quoted) in zip(all_blocks, all_blocks[1:] + [("", "")]):
        if language == "sh":
            yield commands, quoted if following == "text" else ""


def matches(quoted, printed):
    pattern = re.escape(quoted).replace(re.escape("...\n"), "(.*\n)*").replace(r"\.\.\.", ".*")
    return re.fullmatch(pattern, printed) is not None


def read_until(fd, is_enough):
    """What can be read of `fd`, until `is_enough(text)` or the end."""
    text = ""
    while not is_enough(text):
        if not select.select([fd], [], [], PATIENCE)[0]:
            raise TimeoutError(f"nothing more is printed but\n{text}")
        try:
            piece = os.read(fd, 65536)
        except OSError:  # a terminal that nobody has open any more
            piece = b""
        if not piece:
            return text
        text += piece.decode()
    return text


class Shell:
    """A shell that blocks are pasted into."""

    END = "-- end of block --"

    def __init__(self, directory, environment):
        self.process = subprocess.Popen(
            ["bash"], cwd=directory, env=environment, stdin=subprocess.PIPE, stdout=subprocess.PIPE,
            stderr=subprocess.STDOUT, start_new_session=True)

    def printed_by(self, commands):
        self.process.stdin.write(f"{commands}echo '{self.END}'\n".encode())
        self.process.stdin.flush()
        end = f"{self.END}\n"
        text = read_until(self.process.stdout.fileno(), lambda text: text.endswith(end))
        return text.removesuffix(end)

    def __enter__(self):
        return self

    def __exit__(self, failure, *_):
        if failure is not None:  # it may hang, or what it started
            os.killpg(self.process.pid, signal.SIGKILL)
        self.process.stdin.close()
        read_until(self.process.stdout.fileno(), lambda text: False)
        self.process.wait()


def printed_on_terminal(command, quoted, directory, environment):
    """What a command shows on a terminal, until it is what is quoted and Ctrl-C has ended it."""
    pid, terminal = pty.fork()
    if pid == 0:
        os.chdir(directory)
        os.execvpe("bash", ["bash", "-c", f"stty -onlcr; exec {command}"], environment)
    last = quoted.splitlines()[-1] + "\n"
    text = read_until(terminal, lambda text: text.endswith(last))
    os.write(terminal, b"\x03")
    ending = read_until(terminal, lambda text: False)
    if not ending.endswith("ended by SIGINT\n") or os.waitpid(pid, 0)[1] != 0:
        raise RuntimeError(f"Ctrl-C is not the end of\n{text}{ending}")
    return re.sub(r"(?m)^.*\r\x1b\[K", "", text)  # progress lines


def prepare(directory, programs, examples):
    """Lays a directory out as the repository is after a build."""
    (directory / "build/run").mkdir(parents=True)
    (directory / "build/run/bin").symlink_to(programs)
    (directory / "examples").symlink_to(examples)
    scripts = directory / "scripts"
    scripts.mkdir()
    run = scripts / "run"
    run.write_text('#!/bin/sh\n[ $# -gt 0 ] || set -- examples/small.slice\n'
                   'exec build/run/bin/kest-slice-agent "$@"\n')
    test = scripts / "test"
    test.write_text("#!/bin/sh\n")
    for script in (run, test):
        script.chmod(0o755)


def main():
    readme, programs, examples = (Path(argument).resolve() for argument in sys.argv[1:4])
    environment = dict(os.environ, NO_COLOR="1", TERM="xterm", LC_ALL="C.UTF-8")
    pairs = list(blocks(readme.read_text()))
    if not pairs:
        sys.exit(f"{readme}: no commands")
    failures = 0
    with tempfile.TemporaryDirectory(prefix="kest-readme-") as name:
        directory = Path(name)
        prepare(directory, programs, examples)
        with Shell(directory, environment) as shell:
            for commands, quoted in pairs:
                first, _, rest = commands.partition("\n")
                if "until Ctrl-C" in first:
                    command = first.split("#")[0]
                    printed = printed_on_terminal(command, quoted, directory, environment)
                    printed += shell.printed_by(rest)
                else:
                    printed = shell.printed_by(commands)
                if not matches(quoted, printed):
                    failures += 1
                    print(f"{readme.name}:\n{commands}prints\n{printed}instead of\n{quoted}")
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main())
