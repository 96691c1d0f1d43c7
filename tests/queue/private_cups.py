"""A print server of one's own: cupsd in a scratch folder, run as nobody, reached by a Unix socket, with
the installed programs of CUPS and the staged filter and PPDs. Nothing of the system's CUPS is touched."""

import grp
import os
import pathlib
import pwd
import shutil
import socketserver
import string
import subprocess
import tempfile
import threading
import time

PATIENCE = 40  # seconds for anything that has to happen
PATH = "/usr/sbin:/usr/bin:/sbin:/bin"


def wait_for(what, condition):
    end = time.monotonic() + PATIENCE
    while not condition():
        if time.monotonic() > end:
            raise TimeoutError(what)
        time.sleep(0.02)


def missing(server_bin):
    """What keeps a private cupsd from running here; an empty text if nothing does."""
    programs = "cupsd ipptool lp lpadmin lpinfo lpstat cancel gs bash".split()
    parts = ("filter/pstops filter/pdftopdf filter/pdftops filter/texttopdf daemon/cups-driverd "
             "backend/socket").split()
    return ", ".join([name for name in programs if not shutil.which(name, path=PATH)] +
                     [part for part in parts if not (server_bin / part).exists()])


class PrivateCUPS:
    def __init__(self, server_bin, data_dir, staged_filter, staged_ppds):
        self.folder = folder = pathlib.Path(tempfile.mkdtemp(prefix="pstoxpjl-queue-"))
        folder.chmod(0o755)
        for name in ("bin/filter bin/driver data/model etc/ppd spool/tmp cache state log kept "
                     "out").split():
            (folder / name).mkdir(parents=True)
        links = [(f"bin/{name}", server_bin / name) for name in ("backend", "daemon", "monitor")]
        links += [(f"bin/filter/{path.name}", path) for path in (server_bin / "filter").iterdir()]
        links += [(f"data/{path.name}", path) for path in data_dir.iterdir()]
        for name, target in links:
            if name not in ("bin/filter/cupstoxpjl", "data/model"):
                (folder / name).symlink_to(target)
        self.filter = shutil.copy(staged_filter, folder / "filter")
        shutil.copytree(staged_ppds, folder / "data/model/zelva")
        owner = pwd.getpwuid(os.getuid())
        self.identity = {}
        if os.getuid() == 0:
            owner = pwd.getpwnam("nobody")
            self.identity = {"user": owner.pw_uid, "group": owner.pw_gid, "extra_groups": []}
        for name, source in [("etc/cupsd.conf", "cupsd.conf"), ("etc/cups-files.conf", "cups-files.conf"),
                             ("bin/filter/cupstoxpjl", "keep-input")]:
            text = string.Template((pathlib.Path(__file__).parent / f"{source}.in").read_text())
            (folder / name).write_text(text.substitute(
                folder=folder, user=owner.pw_name, group=grp.getgrgid(owner.pw_gid).gr_name))
            (folder / name).chmod(0o755)
        for path in [folder, *folder.rglob("*")]:
            os.chown(path, owner.pw_uid, owner.pw_gid, follow_symlinks=False)
        self.environment = {"CUPS_SERVER": f"{folder}/state/cups.sock", "HOME": str(folder),
                            "PATH": PATH, "LC_ALL": "C.UTF-8"}
        self.process = subprocess.Popen(
            ["cupsd", "-f", "-c", folder / "etc/cupsd.conf", "-s", folder / "etc/cups-files.conf"],
            env=self.environment, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL, **self.identity)
        wait_for("cupsd", lambda: "is running" in self.run("lpstat", "-r"))

    def run(self, *command):
        """One of CUPS's own commands, as the user who owns the server; gives what it prints."""
        return subprocess.run([*map(str, command)], env=self.environment, cwd="/", timeout=PATIENCE,
                              stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, text=True,
                              check=command[0] != "lpstat", **self.identity).stdout

    def add(self, queue, model, device, *more):
        self.run("lpadmin", "-p", queue, "-E", "-v", device, "-m", f"zelva/zelva-{model}.ppd", *more)

    def lp(self, queue, *arguments):
        """Prints, and gives the job's number out of `request id is queue-7 (1 file(s))`."""
        return int(self.run("lp", "-d", queue, *arguments).split()[3].rsplit("-", 1)[1])

    def wait(self):
        wait_for("jobs to end", lambda: not self.run("lpstat", "-W", "not-completed", "-o"))

    def kept(self, job, name):
        return (self.folder / "kept" / str(job) / name).read_bytes().split(b"\0")[:-1]

    def direct(self, job):
        """What the filter by itself makes of the arguments, environment and input of a job."""
        environment = dict(entry.split(b"=", 1) for entry in self.kept(job, "environment"))
        with (self.folder / "kept" / str(job) / "input").open("rb") as document:
            return subprocess.run([self.filter, *self.kept(job, "arguments")[:5]], env=environment,
                                  stdin=document, stderr=subprocess.DEVNULL, stdout=subprocess.PIPE,
                                  timeout=PATIENCE, check=True).stdout

    def page_log(self, count):
        """{job number: pages}, once there are so many lines."""
        path = self.folder / "log/page_log"
        wait_for("page log", lambda: path.exists() and path.read_text().count("\n") >= count)
        return dict(map(int, line.split()) for line in path.read_text().splitlines())

    def complaints(self):
        """The error log's lines that are errors or warnings, without their time."""
        lines = (self.folder / "log/error_log").read_text().splitlines()
        return [line.split("] ", 1)[1] for line in lines if line[0] in "XACEW"]

    def close(self):
        self.process.terminate()
        try:
            self.process.wait(10)
        except subprocess.TimeoutExpired:
            self.process.kill()
        shutil.rmtree(self.folder, ignore_errors=True)


class RawPrinter(socketserver.ThreadingTCPServer):
    """A printer on a loopback port: one job a connection. Unless it is ready it takes a job's first bytes
    and then no more."""
    daemon_threads = True
    request_queue_size = 64

    def __init__(self):
        super().__init__(("127.0.0.1", 0), None)
        self.device = f"socket://127.0.0.1:{self.server_address[1]}/?waiteof=false&snmp=false"
        self.jobs, self.begun, self.ready = [], 0, threading.Event()
        self.ready.set()
        threading.Thread(target=self.serve_forever, daemon=True).start()

    def finish_request(self, connection, _address):
        blocks = []
        while block := connection.recv(1 << 16):
            self.begun += not blocks
            blocks.append(block)
            self.ready.wait(PATIENCE)
        self.jobs.append(b"".join(blocks))

    def take(self, count):
        """All jobs, once there are so many."""
        wait_for(f"{count} jobs", lambda: len(self.jobs) >= count)
        return self.jobs
