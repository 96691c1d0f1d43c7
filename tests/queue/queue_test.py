"""Real queues: what people print with lp goes through a private cupsd and the staged filter.

Usage: queue_test.py <class>; CMakeLists.txt sets the environment. Exit status 77: skipped, and why."""

import concurrent.futures
import os
import pathlib
import re
import shutil
import subprocess
import sys
import unittest

import private_cups

BUILD, SERVER_BIN, DATA_DIR, SAMPLE = (
    pathlib.Path(os.environ[name]) for name in ("BUILD_DIR", "SERVER_BIN", "DATA_DIR", "SAMPLE"))
STAGE = BUILD / "tests/queue/stage"
FILTER = pathlib.Path(f"{STAGE}{os.environ['FILTER_DIR']}/cupstoxpjl")
PPD_DIR = pathlib.Path(f"{STAGE}{os.environ['PPD_DIR']}")
TICKET = "com.zelva.jt.printsettings.ps.ww."
DIRECT = ["-o", "document-format=application/vnd.cups-postscript"]  # CUPS changes nothing in it
TRAILER = b"\x1b%-12345X@PJL EOJ\n"


def masked(job):
    """Sealed passwords differ from run to run."""
    return re.sub(rb'ENCRYPTKEY="[A-Za-z0-9+/=]{400,}"', b'ENCRYPTKEY="sealed"', job)


class Install(unittest.TestCase):
    """Also stages the files for the other tests."""

    def cmake(self, *arguments):
        return subprocess.run([os.environ["CMAKE"], *arguments], check=True, stdout=subprocess.DEVNULL,
                              stderr=subprocess.PIPE, text=True, umask=0o077,
                              env={**os.environ, "DESTDIR": str(STAGE)}).stderr

    def test_puts_files_where_CUPS_takes_them_and_removes_them(self):
        shutil.rmtree(STAGE, ignore_errors=True)
        install = ["--install", BUILD, "--component", "runtime"]
        self.cmake(*install)
        modes = {path: path.stat().st_mode & 0o7777 for path in STAGE.rglob("*")}
        self.assertEqual([modes[FILTER], modes[PPD_DIR]], [0o755, 0o755])
        self.assertEqual([modes[path] for path in PPD_DIR.iterdir()], [0o644] * 3)
        self.cmake(f"-DMANIFEST={BUILD}/install_manifest_runtime.txt", "-P", BUILD / "Uninstall.cmake")
        self.assertEqual([path for path in STAGE.rglob("*") if not path.is_dir()], [])
        self.assertEqual([PPD_DIR.exists(), FILTER.parent.exists()], [False, True])
        notice = self.cmake(*install)
        self.assertEqual("DEMONSTRATION" in notice, os.environ["DEVICE_KEY"] != "")


class Queue(unittest.TestCase):
    """A private server for each test, and the error log that the test expects."""

    def setUp(self):
        self.cups = private_cups.PrivateCUPS(SERVER_BIN, DATA_DIR, FILTER, PPD_DIR)
        self.addCleanup(self.cups.close)
        self.printer = private_cups.RawPrinter()
        self.out = self.cups.folder / "out"
        self.device = f"file:{self.out}/job"
        self.complaints = []
        self.text, self.pdf = self.out / "a.txt", self.out / "a.pdf"
        self.sample = shutil.copy(SAMPLE, self.out)  # from where everybody may read it
        self.text.write_text("one\ntwo\n")
        subprocess.run(["gs", "-q", "-sDEVICE=pdfwrite", "-o", self.pdf, self.sample], check=True)

    def tearDown(self):
        self.assertEqual(self.cups.complaints(), self.complaints)


class Options(Queue):
    def test_settings_reach_the_printer_as_people_make_them(self):
        listed = [line.split()[0] for line in self.cups.run("lpinfo", "-m").splitlines() if "Zelva" in line]
        self.assertEqual(listed, [f"zelva/{path.name}" for path in sorted(PPD_DIR.iterdir())])
        self.cups.add("plain", "atelier-c90", self.device)
        self.cups.add("set", "atelier-c90", self.device, "-o", "ZLVPunch=Left", "-o",
                      "ZLVColorMode-default=Color", "-o", f"{TICKET}OffsetStackingListTicket-default=4")
        self.cups.add("latin1", "kontor-m20", self.device)
        self.cups.add("decomposed", "atelier-c60", self.device)
        self.cups.run("lpoptions", "-p", "plain/draft", "-o", "ZLVTonerSaver=Mode2")
        awkward = "Budget, 'final' = 100% it's \\o/ äö"
        quoted = "'" + awkward.replace("\\", "\\\\").replace("'", "\\'") + "'"
        sealed = subprocess.run([os.environ["XPJL_PASSWORD"]], input="open sesame", text=True,
                                capture_output=True, check=True).stdout.strip()
        tickets = {"PrintTypeTicketKey": 2, "PrintTypeUserNameTicketKey": "Zoë",
                   "PrintTypePasswordTicketKey": sealed, "DocumentNameTypeTicketKey": 2,
                   "DocumentNameTicketKey": quoted}
        secure = [word for key, value in tickets.items() for word in ("-o", f"{TICKET}{key}={value}")]
        for what, *arguments, document, expected in [
            ("nothing set", "plain", self.sample, ['"@ACNA=handbook.ps"', "RENDERMODE=COLOR"]),
            ("title", "plain", "-t", "Plan B", self.sample, ['"@ACNA=Plan B"']),
            ("text", "plain", self.text, ['"@ACNA=a.txt"', "%%EndPageSetup"]),
            ("PDF", "plain", "-o", "ZLVStaple=LeftDouble", self.pdf, ["/Staple/LeftDouble", "STAPLE"]),
            ("PPD option", "plain", "-o", "ZLVColorMode=Black", "-o", "sides=two-sided-long-edge", self.sample,
             ["RENDERMODE=GRAYSCALE", "DUPLEXTYPE=DUPLEX", "/Duplex true"]),
            ("queue defaults", "set", self.sample, ["/Punch/Left", "RENDERMODE=COLOR", "JOBOFFSET=PAGES"]),
            ("overridden default", "set", "-o", "ZLVColorMode=Black", self.sample, ["RENDERMODE=GRAYSCALE"]),
            ("user's instance", "plain/draft", self.sample, ["ECONOMODE=MODE2"]),
            ("file as argument", "plain", *DIRECT, self.sample, [SAMPLE.read_text()]),
            ("Latin-1", "latin1", "-t", "Größe", self.sample, [b"Gr\xf6\xdfe", "VERSION=1.3.0"]),
            ("decomposed", "decomposed", "-o", "ZLVGrayBalance=False", self.sample, ["@GRGU=OFF"]),
            ("tickets", "plain", *secure, self.sample, ["HOLDTYPE=PRIVATE", 'USERNAME="Zoë"',
                                                   f'JOBNAME="{awkward}"', 'HOLDENCRYPTKEY="sealed"']),
        ]:
            with self.subTest(what):
                job = self.cups.lp(*arguments, document)
                self.cups.wait()
                printed = masked((self.out / "job").read_bytes())
                self.assertEqual(printed, masked(self.cups.direct(job)))
                self.assertTrue(printed.endswith(TRAILER), printed[-40:])
                for part in expected:
                    self.assertIn(part if isinstance(part, bytes) else part.encode(), printed)
        if os.environ["DEVICE_KEY"]:
            report = subprocess.run([os.environ["XPJL_INSPECT"], "--device-key", os.environ["DEVICE_KEY"],
                                     "--show-passwords", self.out / "job"], capture_output=True, text=True)
            self.assertIn("open sesame", report.stdout)
            # The sample has a choice of its own, which the queue overrules; nothing else is wrong.
            self.assertIn(", 1 problem\n", report.stdout)
            self.assertIn("contradiction: the document asks for ZLVTonerSaver", report.stderr)

    def test_a_queue_is_asked_why_an_option_has_no_effect(self):
        self.cups.add("set", "atelier-c90", self.device, "-o", "ZLVTonerSaver=UserInput", "-o",
                      "ZLVColorMode-default=Black")
        self.cups.run("lpoptions", "-p", "set/draft", "-o", "ZLVTonerSaver=Mode2")
        rate = "ZLVTonerReductionRate=Percent30"
        job = self.cups.lp("set", "-o", rate, "-n", "2", self.sample)
        self.cups.wait()
        shutil.copy(self.out / "job", self.cups.folder / "copy.job")
        os.chmod(self.cups.folder / "copy.job", 0o644)
        user = re.search(rb'@LUNA=([^"]*)', (self.out / "job").read_bytes())[1].decode()
        for queue, status, said in [("set", 0, "REDUCTIONRATE=30"), ("set", 0, "The job is what these options give"),
                                    ("set/draft", 1, "counts only with ZLVTonerSaver=UserInput"),
                                    ("nowhere", 3, "cannot read the PPD of nowhere")]:
            asked = subprocess.run(
                [os.environ["XPJL_EXPLAIN"], "-d", queue, "-o", rate, "-n", "2", "-U", user, "-t",
                 pathlib.Path(self.sample).name, "--job", self.cups.folder / "copy.job"], text=True,
                env=self.cups.environment, capture_output=True, **self.cups.identity)
            self.assertEqual(asked.returncode, status, asked.stdout + asked.stderr)
            self.assertIn(said, asked.stdout + asked.stderr)


class Pages(Queue):
    def test_the_page_log_has_the_number_of_printed_pages(self):
        self.cups.add("q", "atelier-c90", self.device)
        logged = ["-o", "page-logging=on"]  # the filter that arranges pages reports them, but not PostScript
        jobs = {self.cups.lp("q", *arguments): pages for pages, *arguments in [
            (4, self.sample),
            (12, "-n", "3", self.sample),
            (4, *DIRECT, self.sample),
            (4, self.pdf),
            (12, "-n", "3", "-o", "collate=true", self.pdf),
            (8, "-n", "2", "-o", "Collate=False", self.pdf),
            (2, "-o", "number-up=2", self.pdf),
            (1, self.text),
            (4, *logged, self.pdf),
            (4, *logged, self.sample),
        ]}
        self.assertEqual(self.cups.page_log(len(jobs)), jobs)


class Faults(Queue):
    @unittest.skipUnless(os.path.exists("/dev/full"), "no /dev/full")
    def test_lost_output_is_one_line_in_the_error_log(self):
        self.cups.add("full", "atelier-c90", "file:/dev/full")
        job = self.cups.lp("full", self.sample)
        self.cups.wait()
        self.complaints = [f"[Job {job}] Unable to write print data: No space left on device"]

    def test_a_cancelled_job_ends_with_its_trailer(self):
        pages = 4000
        page = "%%Page: {0} {0}\nbp\n" + ("%" + "x" * 79 + "\n") * 80 + "ep\n"
        path = self.out / "long.ps"
        path.write_text("%!PS-Adobe-3.0\n%%EndComments\n%%BeginProlog\n/bp{}def/ep{showpage}def\n"
                        "%%EndProlog\n" + "".join(map(page.format, range(1, pages + 1))) + "%%EOF\n")
        self.cups.add("slow", "atelier-c90", self.printer.device)
        for number, more in enumerate([[], DIRECT], 1):
            with self.subTest(more):
                self.printer.ready.clear()
                job = self.cups.lp("slow", *more, path)
                private_cups.wait_for("start", lambda: self.printer.begun == number)
                self.cups.run("cancel", str(job))
                self.printer.ready.set()
                printed = self.printer.take(number)[-1]
                # Where CUPS's own filter was quicker to stop, the document just ends early.
                self.assertRegex(printed[-60:], b"\n\4?" + re.escape(TRAILER) + b"$")
                self.assertTrue(0 < printed.count(b"\nep\n") < pages, printed.count(b"\nep\n"))
                if more == DIRECT:
                    body = printed[:-len(TRAILER)]
                    self.assertTrue(self.cups.direct(job).startswith(body + b"ep\n"), body[-60:])
        job = self.cups.lp("slow", self.sample)
        self.assertEqual(self.printer.take(3)[-1], self.cups.direct(job))


class Load(Queue):
    def test_fifty_jobs_at_once_arrive_whole(self):
        for queue, model in ("c90", "atelier-c90"), ("c60", "atelier-c60"), ("m20", "kontor-m20"):
            self.cups.add(queue, model, self.printer.device)
            if queue != "m20":
                self.cups.run("lpadmin", "-p", queue, "-c", "any")
        self.cups.run("cupsenable", "any")
        self.cups.run("cupsaccept", "any")
        with concurrent.futures.ThreadPoolExecutor(16) as pool:
            jobs = list(pool.map(lambda number: self.cups.lp(
                ["c90", "c60", "m20", "any"][number % 4], "-t", f"Job-{number:02}-", self.sample), range(50)))
        arrived = sorted(self.printer.take(50), key=lambda job: re.search(rb"@ACNA=Job-(\d\d)-", job)[1])
        self.assertEqual(arrived, [self.cups.direct(job) for job in jobs])
        self.assertEqual(self.cups.page_log(50), dict.fromkeys(jobs, 4))
        used = {entry.rsplit(b"/", 1)[-1] for job in jobs[3::4]
                for entry in self.cups.kept(job, "environment") if entry.startswith(b"PPD=")}
        self.assertEqual(used, {b"c90.ppd", b"c60.ppd"})


if __name__ == "__main__":
    if sys.argv[1] != "Install" and (lacking := private_cups.missing(SERVER_BIN)):
        print(f"Skipped, no real queue was tried: this machine lacks {lacking}")
        sys.exit(77)
    unittest.main()
