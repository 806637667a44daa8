#!/usr/bin/env python3
"""Has clang-tidy analyse the sources of this tree, each as it is compiled, and says how many it has analysed.

usage, in the root of the tree: analyse.py BUILD ADDITION [PATTERN...]

BUILD is a configured build directory with its compile_commands.json, ADDITION what clang-tidy loads (own_code.cpp).
With PATTERNs, regular expressions, only the sources are analysed whose path in the tree matches one. Exit status: 0
when all are clean; 1 when something was found in them, or when a source of the tree is compiled nowhere.
"""
import json
import os
import re
import subprocess
import sys
from functools import partial
from multiprocessing.pool import ThreadPool
from pathlib import Path


def keep_first_commands(database):
    """The sources of the tree that have a command. If a source has several, only the first stays, that of the
    target which ships: clang-tidy 14 reports a va_list that is not started when it analyses a source twice."""
    first = {}
    for command in json.loads(database.read_text()):
        first.setdefault(command["file"], command)
    database.write_text(json.dumps(list(first.values())))
    built = database.parent.resolve()
    return {os.path.relpath(file) for file in first if not Path(file).is_relative_to(built)}


def analyse(build, addition, source):
    """The findings of clang-tidy about a source, one by one; none when the source is clean."""
    command = ["clang-tidy", "-quiet", f"--load={addition}", "-p", build, source]
    tidy = subprocess.run(command, stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True)
    if tidy.returncode == 0:
        return []
    findings = re.split(r"^(?=/.*:\d+:\d+: (?:error|warning): )", tidy.stdout, flags=re.M)
    return [finding for finding in findings if finding] or [f"{source}: status {tidy.returncode}\n{tidy.stderr}"]


def main(build, addition, *patterns):
    compiled = keep_first_commands(Path(build, "compile_commands.json"))
    tracked = subprocess.run(["git", "ls-files", "*.c", "*.cpp"], stdout=subprocess.PIPE, text=True, check=True)
    nowhere = sorted(set(tracked.stdout.splitlines()) - compiled)
    if nowhere:
        sys.exit("no target compiles these sources, so they cannot be analysed: " + " ".join(nowhere))
    chosen = sorted(source for source in compiled if re.search("|".join(patterns), source))
    if not chosen:
        sys.exit(f"no source has a path that matches {' or '.join(patterns)}")

    shown, unclean = set(), 0
    with ThreadPool(os.cpu_count()) as pool:
        for done, findings in enumerate(pool.imap_unordered(partial(analyse, build, addition), chosen), 1):
            unclean += bool(findings)
            # A header's finding turns up in each source that includes it.
            print("".join(finding for finding in findings if finding not in shown), end="", flush=True)
            shown.update(findings)
            if sys.stderr.isatty():
                print(f"{done} of {len(chosen)}", end="\r", file=sys.stderr, flush=True)
    print(f"analysed {len(chosen)} of {len(compiled)} sources: {len(chosen) - unclean} are clean", file=sys.stderr)
    return 1 if unclean else 0


if __name__ == "__main__":
    if len(sys.argv) < 3:
        print(__doc__, file=sys.stderr)
        sys.exit(2)
    try:
        sys.exit(main(*sys.argv[1:]))
    except re.error as problem:
        sys.exit(f"{problem.pattern!r} is not a regular expression: {problem}")
    except KeyboardInterrupt:
        sys.exit(130)
