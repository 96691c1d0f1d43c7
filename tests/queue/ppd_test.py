"""What CUPS makes of the PPDs: a private cupsd's queues, asked, printed on and upgraded."""

import re
import sys
import unittest
import urllib.parse

import private_cups
from queue_test import PPD_DIR, SERVER_BIN, Queue

MODELS = ["atelier-c60", "atelier-c90", "kontor-m20"]


def ppd_text(model):
    return (PPD_DIR / f"zelva-{model}.ppd").read_text()


class PPD(Queue):
    def document(self, job):
        """The job as the filter gets it."""
        return (self.cups.folder / f"kept/{job}/input").read_text("latin-1")

    def defaults(self, queue):
        ppd = (self.cups.folder / f"etc/ppd/{queue}.ppd").read_text()
        return dict(re.findall(r"^\*Default(\w+): (\S+)", ppd, re.M))

    def test_what_the_header_alone_carries_is_not_in_the_document(self):
        ppd = ppd_text("atelier-c90")
        header_only = re.findall(r"JCLSetup \*(\w+)", ppd)
        secrets = {name: f"73{number:02}91"[:int(longest)] for number, (name, longest) in enumerate(
            re.findall(r"^\*ParamCustom(\w+) [^:]+: 1 (?:string|passcode) \d+ (\d+)", ppd, re.M))}
        self.assertTrue(len(header_only) > 50 and {"ZLVPrintPassword", "ZLVMailbox"} <= set(secrets) <=
                        set(header_only))
        self.cups.add("q", "atelier-c90", self.device)
        for name in "ZLVDelayTime", "ZLVMailbox":  # a job is held in one way
            del secrets[name]
        options = [word for name, value in secrets.items() for word in ("-o", f"{name}=Custom.{value}")]
        for document in self.sample, self.pdf, self.text:
            with self.subTest(document):
                job = self.cups.lp("q", "-o", "ZLVStaple=LeftDouble", *options, document)
                self.cups.wait()
                seen = self.document(job)
                self.assertIn("*ZLVStaple LeftDouble", seen)
                self.assertEqual([text for text in [*header_only, *secrets.values()] if text in seen], [])
        self.complaints = self.cups.complaints()  # these values mean nothing, and the filter says so

    def test_driverless_clients_find_the_whole_printer(self):
        server = f"ipp://{urllib.parse.quote(f'{self.cups.folder}/state/cups.sock', safe='')}/printers/"
        for model, colour, staples, finishings in [
            ("atelier-c60", "monochrome,color", "ZLVSignature", 26),
            ("atelier-c90", "monochrome,color", "ZLVPBindPosition", 33),
            ("kontor-m20", "monochrome", "ZLVStaple", 23),
        ]:
            with self.subTest(model):
                self.cups.add(model, model, self.device)
                attributes = dict(re.findall(r"^ +(\S+) \([^)]*\) = (.*)", self.cups.run(
                    "ipptool", "-tv", server + model, "get-printer-attributes.test"), re.M))
                for name, value in {
                    "print-color-mode-supported": colour, "print-quality-supported": "draft,normal,high",
                    "job-password-supported": "32", "job-password-encryption-supported": "none",
                    "job-account-id-supported": "true", "job-accounting-user-id-supported": "true",
                    "output-bin-supported": "auto,face-down,face-up", "printer-commands": "none",
                }.items():
                    self.assertEqual(attributes[name], value)
                name = model.title().replace("-", " ")
                self.assertTrue(attributes["printer-device-id"].startswith(f"MFG:Zelva;MDL:{name};"))
                self.assertNotIn("cups-command", attributes["document-format-supported"])
                mapped = dict(re.findall(r'^\*cupsIPPFinishings \d+/(\S+): "([^"]+)"', ppd_text(model), re.M))
                told = set(attributes["finishings-supported"].split(","))
                self.assertEqual(told, {*mapped, "none"})
                self.assertEqual(len(mapped), finishings)
                self.assertTrue(any(staples in choice for choice in mapped.values()))
                for choice in re.findall(r"\*(\w+ \w+)", " ".join(mapped.values())):
                    self.assertRegex(ppd_text(model), rf"(?m)^\*{choice}/")
        self.assertIn("c60", self.cups.run("lpinfo", "--device-id", "MFG:Zelva;MDL:Atelier C60;", "-m"))

        self.cups.run("lpadmin", "-p", "phone", "-E", "-v", f"{server}atelier-c90", "-m", "everywhere")
        private_cups.wait_for("a PPD", (self.cups.folder / "etc/ppd/phone.ppd").exists)
        for options, in_header, in_document in [
            ("finishings=28,74 sides=two-sided-long-edge print-color-mode=monochrome print-quality=3 "
             "job-password=1234",
             ["RENDERMODE=GRAYSCALE", "DUPLEXTYPE=DUPLEX", "STAPLEEX=LEFTDUAL", "ECONOMODE=ON",
              "PUNCHEX=HOLES[TWO]:LOCATION[LEFT]", "HOLDTYPE=PRIVATE"],
             ["ZLVStaple LeftDouble", "ZLVPunch Left", "ZLVNumPunchHoles 2Holes", "Duplex DuplexNoTumble",
              "ZLVColorMode Black", "ZLVTonerSaver True"]),
            ("print-quality=5 output-bin=face-up", ["RENDERMODE=COLOR", "DUPLEXTYPE=SIMPLEX", "@FACE=UP"],
             ["ZLVStaple None", "ZLVOutputMode 1200x1200", "OutputBin FaceUp", "Duplex None"]),
        ]:
            with self.subTest(options):
                job = self.cups.lp("phone", *[word for option in options.split() for word in ("-o", option)],
                                   self.pdf)
                kept = self.cups.folder / f"kept/{job + 1}"
                private_cups.wait_for("the job behind it", kept.exists)
                self.cups.wait()
                header = (self.out / "job").read_text("latin-1").split("ENTER LANGUAGE")[0]
                self.assertEqual([text for text in in_header if text not in header], [])
                seen = re.findall(r"%%BeginFeature: \*(.*)", self.document(job + 1))
                self.assertEqual([text for text in in_document if text not in seen], [])

    def test_a_queue_keeps_its_defaults_when_its_PPD_becomes_newer(self):
        for model in MODELS:
            with self.subTest(model):
                ppd = ppd_text(model)
                older = re.sub(r"(?ms)^\*OpenUI \*(\w+)/[^\n]*\n\*OrderDependency: \d+ JCLSetup.*?"
                               r"^\*JCLCloseUI: \*\1\n(\*Custom\1[^\n]*\n\*ParamCustom\1[^\n]*\n)?|"
                               r"^\*(\w\w\.|APPr|UICon|cupsUI|cupsIPP|cupsLang)[^\n]*\n", "", ppd)
                (self.cups.folder / f"data/model/zelva/zelva-old-{model}.ppd").write_text(
                    older.replace(", 1.0", ", 0.9"))
                self.cups.add(model, f"old-{model}", self.device)
                chosen = {option: re.findall(rf"^\*{option} ([^/:]+)/", older, re.M)[-1]
                          for option in re.findall(r"^\*OpenUI \*(\w+)", older, re.M) if option != "PageRegion"}
                chosen["ZLVTonerReductionRate"] = "Custom.35"
                self.cups.run("lpadmin", "-p", model, *[word for option, choice in chosen.items()
                                                       for word in ("-o", f"{option}={choice}")])
                before = self.defaults(model)
                self.assertLessEqual(chosen.items(), before.items())
                self.cups.run("lpadmin", "-p", model, "-m", f"zelva/zelva-{model}.ppd")
                after = self.defaults(model)
                self.assertLessEqual(chosen.items(), after.items())
                self.assertIn("ZLVPrintType", set(after) - set(before))


if __name__ == "__main__":
    if lacking := private_cups.missing(SERVER_BIN):
        print(f"Skipped, no PPD was tried in a queue: this machine lacks {lacking}")
        sys.exit(77)
    unittest.main()
