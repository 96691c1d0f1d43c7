"""The recipes of docs/recipes.md, each run as it is written, with PDF, text and PostScript."""

import os
import pathlib
import re
import subprocess
import unittest

import private_cups
from queue_test import Queue

RECIPES = (pathlib.Path(os.environ["SAMPLE"]).parent.parent / "docs/recipes.md").read_text()
BLOCKS = re.findall(r"```sh\n(.*?)```\n(?:\n```text\n(.*?)```)?", RECIPES, re.S)


def pattern(line):
    """A line of the document, whatever the width of its columns and what an ellipsis stands for."""
    return r"\s+".join(r"\S.*".join(map(re.escape, word.split("…"))) for word in line.split())


class Recipes(Queue):
    def shell(self, commands):
        subprocess.run(["bash", "-ec", 'sudo() { "$@"; }\n' + commands], check=True, cwd=self.out,
                       env=self.cups.environment, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL,
                       timeout=private_cups.PATIENCE, **self.cups.identity)

    def report(self):
        key = ["--device-key", os.environ["DEVICE_KEY"], "--show-passwords"] if os.environ["DEVICE_KEY"] else []
        warnings, self.complaints = self.cups.complaints()[len(self.complaints):], self.cups.complaints()
        report = subprocess.run([os.environ["XPJL_INSPECT"], *key, self.out / "job"], capture_output=True,
                                text=True).stdout
        return report + "".join(re.sub(r"^\[Job \d+\]", "WARNING", text) + "\n" for text in warnings)

    def test_each_does_what_the_document_says(self):
        self.cups.add("office", "atelier-c90", self.device)
        (self.out / "report.txt").write_text("1\f2\f3\f4\n")
        self.pdf.rename(self.out / "report.pdf")
        pathlib.Path(self.sample).rename(self.out / "report.ps")
        self.assertGreater(len(BLOCKS), 15)
        for suffix in "pdf", "txt", "ps":
            for commands, expected in BLOCKS:
                with self.subTest(f"{suffix}: {commands}"):
                    (self.out / "job").unlink(missing_ok=True)
                    self.shell(commands.replace("report.pdf", f"report.{suffix}"))
                    self.cups.wait()
                    if not expected:
                        continue
                    report = self.report()
                    for line in expected.replace("report.pdf", f"report.{suffix}").splitlines():
                        if os.environ["DEVICE_KEY"] or "opens:" not in line:
                            self.assertRegex(report, pattern(line))
                    self.assertEqual("WARNING" in report, "WARNING" in expected, report[-300:])


if __name__ == "__main__":
    if lacking := private_cups.missing(pathlib.Path(os.environ["SERVER_BIN"])):
        print(f"Skipped, no real queue was tried: this machine lacks {lacking}")
        raise SystemExit(77)
    unittest.main()
