#!/usr/bin/env python3
"""Times whole jobs of the filter beside the filters that CUPS users have, and prints Markdown.

Usage: bench/compare.py FILTER [runs]. Inputs are made in a scratch folder and removed. The commands
take turns, so that a machine that slows down slows all of them; the median counts.
"""

import os
import random
import shutil
import statistics
import subprocess
import sys
import tempfile
import time

SIZE = 350_000_000
CUPS_FILTERS = os.environ.get("CUPS_FILTERS", "/usr/lib/cups/filter")
ARGUMENTS = ["1", "user", "title", "1", ""]


def short_lines(path, begin=b"bp\n", end=b"ep\n"):
    """Ten million lines on 1,000 pages, each with page marks."""
    rng = random.Random(1)
    lines = [b"%.2f %.2f moveto %.2f 12 lineto\n" % tuple(rng.uniform(1, 999) for _ in range(3))
             for _ in range(997)]
    page = b"".join(lines[i % len(lines)] for i in range(10_000))
    with open(path, "wb") as file:
        file.write(b"%!PS-Adobe-3.0\n%%Pages: 1000\n%%EndComments\n%%BeginProlog\n%%EndProlog\n"
                   b"%%BeginSetup\n%%EndSetup\n")
        for number in range(1, 1001):
            file.write(b"%%%%Page: %d %d\n%%%%BeginPageSetup\n%%%%EndPageSetup\n" %
                       (number, number) + begin + page + end)
        file.write(b"%%Trailer\n%%EOF\n")


def unmarked_lines(path):
    """The same without page marks, which the queue filter gives them."""
    short_lines(path, b"", b"showpage\n")


def mixed_lines(path):
    """Lines of 64 bytes to 4 KB."""
    rng = random.Random(2)
    lines = [b"x" * rng.randint(63, 4095) + b"\n" for _ in range(499)]
    with open(path, "wb") as file:
        file.write(b"%!PS-Adobe-3.0\n%%EndComments\n")
        written = 0
        while written < SIZE:
            line = lines[rng.randrange(len(lines))]
            file.write(line)
            written += len(line)


def binary(path):
    """Image data: every byte value, now and then a line end."""
    block = random.Random(3).randbytes(1 << 20)
    with open(path, "wb") as file:
        file.write(b"%!PS-Adobe-3.0\n%%EndComments\n")
        for _ in range(SIZE // len(block)):
            file.write(block)
        file.write(b"\n")


def one_page(path):
    with open(path, "wb") as file:
        file.write(b"%!PS-Adobe-3.0\n%%Pages: 1\n%%EndComments\n%%Page: 1 1\nbp\nep\n%%EOF\n")


def large_ppd(path, base):
    """A production model's PPD, filled up to 470 KB with options."""
    with open(base, encoding="latin-1") as file:
        text = file.read()
    number = 0
    while len(text) < 470_000:
        number += 1
        key = f"ZLVExtra{number}"
        text += f"*OpenUI *{key}/Extra {number}: PickOne\n*Default{key}: A\n"
        text += "".join(f'*{key} {c}/Choice {c}: "<</Extra{number} /{c}>> setpagedevice"\n'
                        for c in "ABCDEFGH")
        text += f"*CloseUI: *{key}\n"
    with open(path, "w", encoding="latin-1") as file:
        file.write(text)


def peak_memory(command, ppd):
    """Peak memory of one run in KiB, as a small program sees it that starts the command."""
    report = os.path.join(scratch, "memory")
    subprocess.run(["/usr/bin/time", "-f", "%M", "-o", report] + command, check=True,
                   stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL,
                   env=environment(ppd))
    with open(report, encoding="ascii") as file:
        return int(file.read())


# What each document is full of.
MARKERS = [b" 12 lineto\n", b"x" * 63, random.Random(3).randbytes(1 << 20)[:64].split(b"\n")[0]]


def passes_whole(command, ppd, path):
    """Whether a command's output holds all of the document: a time counts only then."""
    output = os.path.join(scratch, "output")
    with open(output, "wb") as file:
        subprocess.run(command, check=True, stdin=subprocess.DEVNULL, stdout=file,
                       stderr=subprocess.DEVNULL, env=environment(ppd))
    with open(path, "rb") as file, open(output, "rb") as copy:
        document, printed = file.read(), copy.read()
    os.remove(output)
    return len(printed) >= len(document) * 0.99 and all(
        printed.count(marker) >= document.count(marker) for marker in MARKERS)


def environment(ppd):
    return {"PATH": os.environ["PATH"], "PPD": ppd, "TMPDIR": scratch}


def seconds_of(command, ppd, into_pipe):
    """Wall seconds of one run."""
    reader = None
    output = subprocess.DEVNULL
    if into_pipe:
        reader = subprocess.Popen(["cat"], stdin=subprocess.PIPE, stdout=subprocess.DEVNULL)
        output = reader.stdin
    start = time.perf_counter()
    process = subprocess.Popen(command, stdin=subprocess.DEVNULL, stdout=output,
                               stderr=subprocess.DEVNULL, env=environment(ppd))
    if reader:
        reader.stdin.close()
    status = process.wait()
    if reader:
        reader.wait()
    if status != 0:
        sys.exit(f"{command[0]} failed with status {status}")
    return time.perf_counter() - start


def compare(title, commands, ppd, runs, into_pipe=False, document=None):
    """commands: name -> command line; the first one is the filter, which ratios refer to. Those that
    do not pass the whole document on are named and left out."""
    dropped = [name for name, command in commands.items()
               if document and not passes_whole(command, ppd, document)]
    commands = {name: command for name, command in commands.items() if name not in dropped}
    times = {name: [] for name in commands}
    for turn in range(runs + 1):
        for name, command in commands.items():
            seconds = seconds_of(command, ppd, into_pipe)
            if turn > 0:  # the first turn warms up
                times[name].append(seconds)
    print(f"\n### {title}\n")
    print("| | minimum s | median s | maximum s | time in filter times | peak memory MB |")
    print("| --- | ---: | ---: | ---: | ---: | ---: |")
    own = statistics.median(next(iter(times.values())))
    for name, seconds in times.items():
        median = statistics.median(seconds)
        print(f"| {name} | {min(seconds):.3f} | {median:.3f} | {max(seconds):.3f} | "
              f"{median / own:.2f} | {peak_memory(commands[name], ppd) / 1024:.1f} |")
    if dropped:
        print(f"\nNot compared, as it did not pass on the whole document: {', '.join(dropped)}.")
    sys.stdout.flush()


def main():
    own = os.path.abspath(sys.argv[1])
    runs = int(sys.argv[2]) if len(sys.argv) > 2 else 5
    model = os.path.join(os.path.dirname(own), "ppd", "zelva-atelier-c90.ppd")
    others = [name for name in ("pstops", "hpps", "foomatic-rip")
              if os.access(os.path.join(CUPS_FILTERS, name), os.X_OK)]
    inputs = {"short lines, 1,000 pages": short_lines,
              "short lines, 1,000 pages without page marks": unmarked_lines,
              "lines of 64 bytes to 4 KB": mixed_lines,
              "binary data": binary, "one page": one_page}
    ppd = os.path.join(scratch, "large.ppd")
    large_ppd(ppd, model)
    decomposed = os.path.join(scratch, "decomposed.ppd")
    with open(decomposed, "w", encoding="latin-1") as file, open(model, encoding="latin-1") as base:
        file.write(base.read() + '*ZLVPSDecompMode: "1"\n')

    for title, make in inputs.items():
        path = os.path.join(scratch, "input.ps")
        make(path)

        def filters(names):
            commands = {name: [os.path.join(os.path.dirname(own), name)] + ARGUMENTS + [path]
                        for name in ("pstoxpjl", "cupstoxpjl")}
            for name in names:
                commands[name] = [os.path.join(CUPS_FILTERS, name)] + ARGUMENTS + [path]
            return commands

        if title == "one page":
            compare(f"{title}, 470 KB PPD, to /dev/null", filters(others), ppd, 10 * runs,
                    document=path)
            continue
        compare(f"{title}, to /dev/null", filters(others), model, runs, document=path)
        with_cat = {**filters([]), "cat": ["cat", path]}
        compare(f"{title}, into a pipe", with_cat, model, runs, into_pipe=True, document=path)
        if title == "short lines, 1,000 pages":
            compare(f"{title}, decomposed mode, to /dev/null", filters(["pstops"]), decomposed,
                    runs, document=path)
            job = os.path.join(scratch, "input.job")
            with open(job, "wb") as output:
                subprocess.run(filters([])["pstoxpjl"], check=True, stdin=subprocess.DEVNULL,
                               stdout=output, stderr=subprocess.DEVNULL, env=environment(model))
            inspect = os.path.join(os.path.dirname(own), "tools", "xpjl-inspect")
            compare(f"{title}, the finished job inspected",
                    {**filters([]), "xpjl-inspect": [inspect, job]}, model, runs)
            os.remove(job)


if __name__ == "__main__":
    scratch = tempfile.mkdtemp(prefix="pstoxpjl-bench-")
    try:
        main()
    finally:
        shutil.rmtree(scratch)
