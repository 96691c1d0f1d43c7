"""What CUPS makes of the PPDs: a private cupsd's queues, asked and printed on."""

import re
import sys
import unittest

import private_cups
from queue_test import PPD_DIR, SERVER_BIN, Queue

LARGEST = PPD_DIR / "zelva-atelier-c90.ppd"


class PPD(Queue):
    def test_what_the_header_alone_carries_is_not_in_the_document(self):
        ppd = LARGEST.read_text()
        header_only = re.findall(r"JCLSetup \*(\w+)", ppd)
        secrets = {name: f"73{number:02}91"[:int(longest)] for number, (name, longest) in enumerate(
            re.findall(r"\*ParamCustom(\w+) [^:]+: 1 (?:string|passcode) \d+ (\d+)", ppd))}
        self.assertTrue(len(header_only) > 50 and {"ZLVPrintPassword", "ZLVMailbox"} <= set(secrets) <=
                        set(header_only))
        self.cups.add("q", "atelier-c90", self.device)
        options = [word for name, value in secrets.items() for word in ("-o", f"{name}=Custom.{value}")]
        for document in self.sample, self.pdf, self.text:
            with self.subTest(document):
                job = self.cups.lp("q", "-o", "ZLVStaple=LeftDouble", *options, document)
                self.cups.wait()
                seen = (self.cups.folder / f"kept/{job}/input").read_text("latin-1")
                self.assertIn("*ZLVStaple LeftDouble", seen)
                self.assertEqual([text for text in [*header_only, *secrets.values()] if text in seen], [])


if __name__ == "__main__":
    if lacking := private_cups.missing(SERVER_BIN):
        print(f"Skipped, no PPD was tried in a queue: this machine lacks {lacking}")
        sys.exit(77)
    unittest.main()
