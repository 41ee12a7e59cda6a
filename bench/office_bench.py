#!/usr/bin/env python3
"""A whole office against `morvane-server` on 127.0.0.1: office A with N sample customers sends
everything up, a fresh office B takes everything down, then each syncs again with nothing
changed. For each run it prints the wall time, the requests the server answered, the CPU and
peak memory of each side, and the ratios the team aims at; it fails loudly when a sync does not
end with exit 0 or the two offices do not end equal row by row and file by file.

    office_bench.py --bin build/bin --customers 1000      # the figures in the README
    office_bench.py --bin build/bin --customers 10        # the smoke test CI runs
"""

import argparse
import hashlib
import json
import os
import re
import shutil
import sqlite3
import subprocess
import sys
import tempfile
import time
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parents[1] / "tests" / "support"))
from reference_server import Failure, ReferenceServer  # noqa: E402

CONTRACT = "BENCH-0001"
PASSWORDS = {"office-a": "bench-password-a", "office-b": "bench-password-b"}
DATABASES = ("Customer.dat", "Master.dat", "prefcustom.dat")
# Columns each office keeps for itself: the numbers its database gave its rows, positions a
# download numbers afresh, and when it last agreed with the server (a download stamps the rows
# it writes with its own time).
OWN_COLUMNS = {"id", "vno", "LocalIndex", "InetCheckDate", "InetSyncFlag", "RecordUpdate"}
# A delegation form is written without its customer, its date or its data file by a download.
FORM_OWN_COLUMNS = {"CustomerID", "MakeDate", "DataFileID", "DataFileID_KY", "DataFileIDStr",
                    "DataFileIDStr_KY"}
# Columns a download writes itself where the sample data leaves them empty: an office's
# number runs one ahead of its position, a settlement record's dates and check take the
# download's time and 1, and a staff member's digit strings default to zeros.
DOWNLOAD_FILLS = {"tCustomerEigyosyo": {"No"},
                  "tCustomerMeibo": {"SenninGyosyuN", "SenninGyosyu", "SenninSikakuCode"},
                  "tCustomerKessanHistory": {"RecDate", "CheckOther", "OtherDate1", "OtherDate2",
                                             "RegDate", "UpdateDate"}}
# The records that name data files, and whether they can be hidden from synchronisation.
FILE_TABLES = {"tCustomerKessanHistory": False, "tCustomerKyokaHistory": True,
               "tCustomerOtherFile": False}
# Tables that go both ways; the others of prefcustom.dat only go up (the machinery list) or are
# compared by their stamps alone, so B never holds them.
BOTH_WAYS_FORMS = {"t99_ININ_MAIN", "t99_ININ_SUB"}
# The bidding grid's blank rows are each office's own.
BLANK_GRID = ("KikanName", "Kubun") + tuple("Nendo%d" % i for i in range(1, 11))
TICK = os.sysconf("SC_CLK_TCK")


class Server(ReferenceServer):
    """The server with its CPU, peak memory and answered requests."""

    def __init__(self, bin_dir: Path, work: Path, customers: int):
        super().__init__(bin_dir, work, CONTRACT, PASSWORDS, max(customers, 10))

    def cpu(self) -> float:
        fields = Path("/proc/%d/stat" % self.proc.pid).read_text().rsplit(")", 1)[1].split()
        return (int(fields[11]) + int(fields[12])) / TICK

    def reset_peak(self):
        try:
            Path("/proc/%d/clear_refs" % self.proc.pid).write_text("5")
        except OSError:
            pass

    def peak_mib(self) -> float:
        for line in Path("/proc/%d/status" % self.proc.pid).read_text().splitlines():
            if line.startswith("VmHWM:"):
                return int(line.split()[1]) / 1024
        return 0.0

    def requests(self) -> int:
        self.log.flush()
        with open(self.log_path, "rb") as f:
            return sum(1 for line in f if b" POST /" in line)


class Office:
    def __init__(self, server: Server, root: Path, user: str):
        self.server = server
        self.root = root
        self.user = user
        (root / "config").mkdir(parents=True, exist_ok=True)

    @property
    def data(self) -> Path:
        return self.root / "data"

    @property
    def db(self) -> Path:
        return self.data / "Customer.dat"

    @property
    def log(self) -> Path:
        return self.root / "sync-log.jsonl"

    def command(self, args):
        return self.server.host_command(self.root / "config", args)

    def run(self, args, stdin="", ok=(0,), log_name="last-run"):
        """The host run as a child: its output, wall time, CPU and peak memory, and its exit
        code when that is among `ok` (None: any)."""
        log = self.root / (log_name + ".log")
        start = time.monotonic()
        with open(log, "wb") as out:
            proc = subprocess.Popen(self.command(args), stdin=subprocess.PIPE, stdout=out,
                                    stderr=subprocess.STDOUT)
            proc.stdin.write(stdin.encode())
            proc.stdin.close()
            _, status, usage = os.wait4(proc.pid, 0)
        proc.returncode = os.waitstatus_to_exitcode(status)
        wall = time.monotonic() - start
        text = log.read_text(errors="replace")
        if ok is not None and proc.returncode not in ok:
            raise Failure("%s of %s ended with %d:\n%s" % (args[0], self.root.name,
                                                            proc.returncode, text[-3000:]))
        return text, proc.returncode, wall, usage.ru_utime + usage.ru_stime, usage.ru_maxrss / 1024

    def login(self):
        self.run(["login", "--server", self.server.name, "--contract", CONTRACT, "--user",
                  self.user, "--save-password"], PASSWORDS[self.user] + "\n")


SCHEMA = Path(__file__).resolve().parents[1] / "apps" / "morvane" / "sync-report.schema.json"


def ReportProblems(office: Office, moved, direction: str, customers: int):
    """The run log holds one line per move of the office's full run, and a `sync --json` of the
    settled office is a document of the report's schema that says so."""
    problems = []
    count = re.search(r"%s:\s+(\d+)" % ("uploads" if direction == "up" else "downloads"),
                      moved.output)
    lines = [json.loads(line) for line in office.log.read_text().splitlines()] \
        if office.log.exists() else []
    logged = sum(1 for line in lines if line.get("direction") == direction)
    if not count or logged != int(count.group(1)):
        problems.append("%s: the run log holds %d moves %s where the run made %s" %
                        (office.root.name, logged, direction, count.group(1) if count else "?"))
    done = subprocess.run(office.command(["sync", "--prefer", "skip", "--json", "--log",
                                          str(office.log), "--db", str(office.db)]),
                          capture_output=True, stdin=subprocess.DEVNULL)
    try:
        import jsonschema
        report = json.loads(done.stdout)
        jsonschema.validate(report, json.loads(SCHEMA.read_text()))
        if report["exitCode"] != done.returncode or report["counts"]["customers"] != customers:
            problems.append("%s: sync --json says exit %s for %s customers" %
                            (office.root.name, report["exitCode"], report["counts"]["customers"]))
    except ImportError:
        problems.append("python3-jsonschema is missing: the report is not checked")
    except (ValueError, jsonschema.ValidationError) as e:
        problems.append("%s: sync --json gave no report of the schema: %s" %
                        (office.root.name, str(e)[:300]))
    return problems


class Measure:
    """One host run's figures beside what the server did meanwhile."""

    def __init__(self, name, office: Office, args):
        server = office.server
        requests, cpu = server.requests(), server.cpu()
        server.reset_peak()
        self.name = name
        self.output, self.code, self.wall, self.client_cpu, self.client_peak = \
            office.run(args, ok=None, log_name=re.sub(r"\W+", "-", name).strip("-"))
        self.requests = server.requests() - requests
        self.server_cpu = server.cpu() - cpu
        self.server_peak = server.peak_mib()

    def row(self):
        per = max(self.requests, 1)
        return ("%-24s %8.2f %8d %9.2f %9.2f %7.2f %9.0f %9.0f %8.3f" %
                (self.name, self.wall, self.requests, self.client_cpu, self.server_cpu,
                 self.client_cpu / self.server_cpu if self.server_cpu > 0 else float("nan"),
                 self.client_peak, self.server_peak, self.wall * 1000 / per))


HEADER = ("%-24s %8s %8s %9s %9s %7s %9s %9s %8s" %
          ("run", "wall s", "requests", "client s", "server s", "cpu c/s", "client MB",
           "server MB", "ms/req"))


def Digest(path: Path) -> str:
    h = hashlib.sha256()
    with open(path, "rb") as f:
        for chunk in iter(lambda: f.read(1 << 20), b""):
            h.update(chunk)
    return h.hexdigest()


def Plain(value):
    """Null, the empty text and zero are one value: a download writes "" or 0 where the sample
    data left Null."""
    return "" if value is None or value == "" or value == 0 else str(value)


def OfficeContent(data: Path):
    """What the backup moves both ways: every such table's live rows less each office's own
    columns, and every data file's digest."""
    tables = {}
    for name in DATABASES:
        path = data / name
        if not path.exists():
            continue
        db = sqlite3.connect("file:%s?mode=ro" % path, uri=True)
        try:
            for (table,) in db.execute("SELECT name FROM sqlite_master WHERE type='table' "
                                       "AND name NOT LIKE 'sqlite_%'").fetchall():
                if name == "prefcustom.dat" and table not in BOTH_WAYS_FORMS:
                    continue
                columns = [r[1] for r in db.execute("PRAGMA table_info([%s])" % table)]
                own = OWN_COLUMNS | (FORM_OWN_COLUMNS if name == "prefcustom.dat" else set()) | \
                    DOWNLOAD_FILLS.get(table, set())
                keep = [c for c in columns if c not in own]
                where = ["disabled = 0"] if "disabled" in columns else []
                if "Ver511HideFlag" in columns:
                    where.append("Ver511HideFlag = 0")  # hidden from synchronisation
                if table == "tCustomerNyusatsuKanri":
                    where.append("(" + " OR ".join("[%s] <> ''" % c for c in BLANK_GRID) + ")")
                rows = db.execute("SELECT %s FROM [%s]%s" % (
                    ", ".join("[%s]" % c for c in keep), table,
                    " WHERE " + " AND ".join(where) if where else "")).fetchall()
                tables[(name, table)] = sorted(
                    "\t".join(c + "=" + Plain(v) for c, v in zip(keep, row)) for row in rows)
        finally:
            db.close()
    # The files that live, visible records name: a hidden record's file is no more backed up
    # than the record.
    named = set()
    db = sqlite3.connect("file:%s?mode=ro" % (data / "Customer.dat"), uri=True)
    try:
        for table, hide in FILE_TABLES.items():
            named.update(name for (name,) in db.execute(
                "SELECT DataFile FROM [%s] WHERE disabled = 0%s" %
                (table, " AND Ver511HideFlag = 0" if hide else "")) if name)
    finally:
        db.close()
    files = {}
    root = data / "files"
    for path in sorted(root.rglob("*")) if root.exists() else []:
        name = str(path.relative_to(data))
        if path.is_file() and name in named:
            files[name] = Digest(path)
    return tables, files


def Differences(a: Path, b: Path):
    tables_a, files_a = OfficeContent(a)
    tables_b, files_b = OfficeContent(b)
    found = []
    for key in sorted(set(tables_a) | set(tables_b)):
        rows_a, rows_b = tables_a.get(key, []), tables_b.get(key, [])
        if rows_a != rows_b:
            only_a = sorted(set(rows_a) - set(rows_b))
            only_b = sorted(set(rows_b) - set(rows_a))
            found.append("%s %s: %d row(s) only in A, %d only in B (A %d, B %d rows)%s" %
                         (key[0], key[1], len(only_a), len(only_b), len(rows_a), len(rows_b),
                          "".join("\n      %s: %s" % (side, row) for side, row in
                                  [("A", r) for r in only_a[:1]] + [("B", r) for r in only_b[:1]])))
    for name in sorted(set(files_a) | set(files_b)):
        if files_a.get(name) != files_b.get(name):
            found.append("file %s: %s" % (name, "differs" if name in files_a and name in files_b
                                          else "only in " + ("A" if name in files_a else "B")))
    return found


def Summary(output: str) -> str:
    return "; ".join(line.strip() for line in output.splitlines()
                     if re.match(r"\s+(customers|tables|downloads|uploads|conflicts|failures):",
                                 line))


def main():
    here = Path(__file__).resolve()
    parser = argparse.ArgumentParser(description=__doc__,
                                     formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--bin", type=Path, default=here.parents[1] / "build" / "bin")
    parser.add_argument("--customers", type=int, default=100)
    parser.add_argument("--work", type=Path, default=None,
                        help="folder to work under (default: beside --bin)")
    parser.add_argument("--keep", action="store_true", help="keep the work folder")
    opts = parser.parse_args()

    work = Path(tempfile.mkdtemp(prefix="office-bench-", dir=opts.work or opts.bin.parent))
    server = None
    problems = []
    try:
        server = Server(opts.bin, work, opts.customers)
        a = Office(server, work / "office-a", "office-a")
        b = Office(server, work / "office-b", "office-b")
        a.run(["init-db", str(a.data), "--sample", str(opts.customers)])
        b.run(["init-db", str(b.data)])
        a.login()
        b.login()
        def sync(office):
            return ["sync", "--prefer", "skip", "--log", str(office.log), "--db", str(office.db)]

        runs = [Measure("A: full upload", a, sync(a)),
                Measure("B: full download", b, sync(b)),
                Measure("A: no-change re-sync", a, sync(a)),
                Measure("B: no-change re-sync", b, sync(b)),
                # As a sync starts: the saved login taken over, then the one comparison.
                Measure("roster comparison alone", b,
                        ["call", "GetLoginInfoFromPrefCustom", "--then", "CompareCustomerList",
                         str(b.db)])]
        for run in runs:
            if run.code != 0:
                problems.append("%s ended with exit %d: %s%s" % (
                    run.name, run.code, Summary(run.output), "".join(
                        "\n    " + line for line in run.output.splitlines()
                        if re.search(r"failed|refused|unknown|did not", line))))
        # The comparison's result last: agreement, with the server asked (its clock, then the
        # roster) and no login dialog in the way, or the figure compares a sync with nothing.
        roster = runs[4]
        if (roster.output.split()[-1:] != ["0"] or not 1 <= roster.requests <= 2 or
                "ログイン" in roster.output):
            problems.append("the roster comparison alone did not agree with the server: " +
                            roster.output.strip()[-300:])
        for run in runs[2:4]:
            moved = re.search(r"(downloads|uploads):\s+[1-9]", run.output)
            if moved:
                problems.append(run.name + " moved data: " + Summary(run.output))
        problems += ["A and B differ: " + d for d in Differences(a.data, b.data)]
        problems += ReportProblems(a, runs[0], "up", opts.customers)
        problems += ReportProblems(b, runs[1], "down", opts.customers)

        print("office of %d customers, server %s" % (opts.customers, server.name))
        print(HEADER)
        for run in runs:
            print(run.row())
        for run in runs[:4]:
            print("  %-22s %s" % (run.name + ":", Summary(run.output)))
        roster = runs[4]
        print("\nratios (goal)")
        for run in runs[2:4]:
            print("  %-22s requests %d, %.2f per customer; wall %.2f x the roster comparison "
                  "alone (<= 2)" % (run.name, run.requests, run.requests / opts.customers,
                                    run.wall / roster.wall))
        for run in runs[:4]:
            print("  %-22s client CPU / server CPU %.2f (<= 1)" %
                  (run.name, run.client_cpu / run.server_cpu if run.server_cpu else float("nan")))
    except Failure as e:
        problems.append(str(e))
    finally:
        if server:
            server.close()
        if not opts.keep and not problems:
            shutil.rmtree(work, ignore_errors=True)
    if problems:
        print("\nFAILED (work folder kept: %s)" % work, file=sys.stderr)
        for p in problems:
            print("  " + p, file=sys.stderr)
        return 1
    return 0


if __name__ == "__main__":
    sys.exit(main())
