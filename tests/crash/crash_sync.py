#!/usr/bin/env python3
"""Kills `morvane sync` with SIGKILL at random instants while it takes an office's data down
from `morvane-server` on 127.0.0.1, and checks what every kill left: each database passes its
integrity check, each customer's rows of each table are wholly the old or wholly the new
state, no data file is a part of one, and `sync --prefer server` then `sync` finish the job
without changing what the server holds.

Each kind (the roster, every record kind, the masters, the data files) is aimed at on its own:
a run that is let finish tells when the client works on which kind, and a trial kills at a
random instant of that kind's time. Every trial is run with the temporary folder on the data's
own file system and on another one (/dev/shm).

    crash_sync.py --bin build/bin --trials 100      # the full run by hand
"""

import argparse
import hashlib
import os
import random
import re
import shutil
import signal
import sqlite3
import subprocess
import sys
import tempfile
import threading
import time
from collections import defaultdict
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parents[1] / "support"))
from reference_server import Failure, ReferenceServer  # noqa: E402

CONTRACT = "CRASH-0001"
PASSWORDS = {"office-a": "crash-password-a", "office-b": "crash-password-b"}
DATABASES = ("Customer.dat", "Master.dat", "prefcustom.dat")
# Written by an interrupted replace beside the file it was to replace.
LEFTOVER = re.compile(r"^\..+\.[0-9a-f]{16}\.new$")


class Rig:
    """The server with one account, office A that filled it, and office B that takes it down."""

    def __init__(self, bin_dir: Path, work: Path, big_mib: int):
        self.bin = bin_dir
        self.work = work
        self.server = ReferenceServer(bin_dir, work, CONTRACT, PASSWORDS, quiet=True)
        self.server_data = self.server.data
        self.server_name = self.server.name
        self.cert = self.server.cert

        office_a = work / "office-a"
        self.host(office_a, ["init-db", str(office_a / "data"), "--sample", "3"])
        self.login(office_a, "office-a")
        self.host(office_a, ["sync", "--db", str(office_a / "data" / "Customer.dat"),
                             "--prefer", "skip"], ok=(0, 3))
        self.make_big_files(big_mib)

    def close(self):
        self.server.close()

    def command(self, office: Path, args):
        return self.server.host_command(office / "config", args)

    def host(self, office: Path, args, stdin="", ok=(0,), env=None):
        done = subprocess.run(self.command(office, args), input=stdin.encode(),
                              capture_output=True, env=env)
        if done.returncode not in ok:
            raise Failure(" ".join(args[:1]) + " of " + office.name + " ended with " +
                          str(done.returncode) + ":\n" + done.stdout.decode(errors="replace") +
                          done.stderr.decode(errors="replace"))
        return done.stdout.decode(errors="replace")

    def login(self, office: Path, user: str):
        (office / "config").mkdir(parents=True, exist_ok=True)
        self.host(office, ["login", "--server", self.server_name, "--contract", CONTRACT,
                           "--user", user, "--save-password"], PASSWORDS[user] + "\n")

    def make_big_files(self, mib: int):
        """One file of each kind, held by the server, made large enough to take a while."""
        files = sorted(p for p in (self.server_data / "files").rglob("*") if p.is_file())
        if not files:
            raise Failure("office A sent no data file up")
        seen = set()
        for path in files:
            if path.parent.name in seen:
                continue
            seen.add(path.parent.name)
            with open(path, "wb") as out:
                out.write(os.urandom(mib << 20))

    def keep_files(self):
        self.pristine = self.work / "server-files"
        shutil.copytree(self.server_data / "files", self.pristine)

    def put_back_files(self):
        """The stored files as they were, for the next trial to start from."""
        shutil.rmtree(self.server_data / "files")
        shutil.copytree(self.pristine, self.server_data / "files")

    def server_state(self):
        """What the server holds: its stored files byte for byte and its records."""
        files = {str(p.relative_to(self.server_data)): Digest(p)
                 for p in sorted((self.server_data / "files").rglob("*")) if p.is_file()}
        db = sqlite3.connect(str(self.server_data / "morvane-server.db"), timeout=30)
        try:
            rows = {t: sorted(db.execute("SELECT * FROM " + t).fetchall())
                    for t in ("customers", "items", "item_fields", "stamps")}
        finally:
            db.close()
        return files, rows


def Digest(path: Path) -> str:
    with open(path, "rb") as f:
        return hashlib.sha256(f.read()).hexdigest()


class OfficeState:
    """An office's databases, table by table and customer by customer, and its data files."""

    def __init__(self, data: Path, check=True, wait=30.0):
        self.problems = []
        self.raw = {}
        for name in DATABASES:
            path = data / name
            if not path.exists():
                continue
            # Opened as the host opens it, so that a journal a kill left is rolled back first.
            db = sqlite3.connect(str(path), timeout=wait)
            try:
                if check:
                    found = db.execute("PRAGMA integrity_check").fetchall()
                    if found != [("ok",)]:
                        self.problems.append(name + ": " + repr(found[:3]))
                        continue
                for (table,) in db.execute(
                        "SELECT name FROM sqlite_master WHERE type='table' "
                        "AND name NOT LIKE 'sqlite_%'").fetchall():
                    columns = [r[1] for r in db.execute("PRAGMA table_info([" + table + "])")]
                    rows = db.execute("SELECT * FROM [" + table + "]").fetchall()
                    self.raw[(name, table)] = (columns, rows)
            finally:
                db.close()
        self.files = {}
        self.leftovers = []
        root = data / "files"
        for path in sorted(root.rglob("*")) if root.exists() else []:
            if not path.is_file():
                continue
            if LEFTOVER.match(path.name):
                self.leftovers.append(str(path.relative_to(data)))
            else:
                self.files[str(path.relative_to(data))] = Digest(path)

    def groups(self, key, volatile):
        """The table's rows less the columns a run stamps, by customer: a customer's rows go
        together, the roster's row is its customer's, and a table of no customer is one."""
        columns, rows = self.raw.get(key, ([], []))
        drop = volatile.get(key, set())
        keep = [i for i, c in enumerate(columns) if c not in drop]
        if "CustomerID" in columns:
            by = columns.index("CustomerID")
        elif key[1] == "tCustomer" and "id" in columns:
            by = columns.index("id")
        else:
            by = None
        out = defaultdict(list)
        for row in rows:
            out[row[by] if by is not None else None].append(repr([row[i] for i in keep]))
        return {k: sorted(v) for k, v in out.items()}


def Volatile(first: OfficeState, second: OfficeState):
    """The columns that differ between two whole runs from the same start: times of the run."""
    out = {}
    for key, (columns, rows) in first.raw.items():
        other = second.raw.get(key, (columns, []))[1]
        if sorted(map(repr, rows)) == sorted(map(repr, other)):
            continue
        out[key] = {c for i, c in enumerate(columns)
                    if sorted(repr(r[i]) for r in rows) != sorted(repr(r[i]) for r in other)}
        if first.groups(key, out) != second.groups(key, out):
            out[key] = set(columns)
    return out


def Allowed(states, volatile):
    """Every state each group was seen in between two steps of a whole run; a group a state
    lacks was seen with no rows."""
    allowed = defaultdict(lambda: defaultdict(set))
    keys = set().union(*(state.raw for state in states))
    for key in keys:
        seen = [state.groups(key, volatile) for state in states]
        for group in set().union(*seen):
            for groups in seen:
                allowed[key][group].add(repr(groups.get(group, [])))
    return allowed


def Judge(allowed, start: OfficeState, end: OfficeState, now: OfficeState, volatile):
    """What a kill may leave: each group as it stood between two steps, files whole."""
    problems = list(now.problems)
    for key in now.raw:
        for group, rows in now.groups(key, volatile).items():
            if repr(rows) not in allowed[key][group]:
                problems.append("%s %s customer %s: %d rows as no step leaves them"
                                % (key[0], key[1], group, len(rows)))
    for key, groups in allowed.items():
        got = now.groups(key, volatile)
        for group, seen in groups.items():
            if group not in got and repr([]) not in seen:
                problems.append("%s %s customer %s: its rows are gone" % (key[0], key[1], group))
    for name, digest in now.files.items():
        if digest not in (start.files.get(name), end.files.get(name)):
            problems.append("data file " + name + " is neither the old nor the new version")
    return problems


# The host's record of the last agreements, beside its settings.
JOURNAL = "morvane-sync-journal.tsv"


class Scenario:
    """A start for office B, and when the client works on which kind while taking it down."""

    def __init__(self, rig: Rig, name: str, office: Path, tmpdir: Path):
        self.rig, self.name = rig, name
        self.start = rig.work / ("start-" + name)
        shutil.copytree(office, self.start, symlinks=True)
        self.office = rig.work / "office-b"
        self.db = self.office / "data" / "Customer.dat"
        self.before = OfficeState(self.start / "data")
        # Two whole runs: the states between steps and at the end, the columns a run always
        # stamps, and the timeline.
        steps = []
        self.run_whole(tmpdir, steps)
        self.end = OfficeState(self.office / "data")
        # The times come from a run that was never held still. Stamps are kept to the second:
        # a second run that wrote within the same second as the first would hide the columns
        # every run stamps, and every later trial would differ in them.
        time.sleep(1.1)
        self.timeline = self.run_whole(tmpdir)
        again = OfficeState(self.office / "data")
        self.volatile = Volatile(self.end, again)
        self.allowed = Allowed([self.before, self.end] + steps, self.volatile)
        self.end_copy = rig.work / ("end-" + name)
        if self.end_copy.exists():
            shutil.rmtree(self.end_copy)
        shutil.copytree(self.office, self.end_copy, symlinks=True)
        # A trial's run writes its progress to nowhere and is not read line by line, so it
        # runs faster than the one the timeline came from: the times are scaled to it, or
        # kills aimed at the later kinds would come after the run ended.
        self.unwatched = min(self.run_unwatched(tmpdir) for _ in range(3))
        scale = min(1.0, self.unwatched / max(self.timeline[-1][0], 1e-3))
        self.windows = defaultdict(list)
        previous = 0.0
        for at, kind in self.timeline:
            self.windows[kind].append((previous * scale, at * scale))
            previous = at

    def restore(self):
        """The start's databases, files and sync journal; the settings stay live, for the
        server turns the login's token over on every request and a copy of them would be
        logged out. The journal goes back with the data it speaks of: one left from another
        run would describe agreements these databases never had."""
        for part in ("data", "data-home"):
            shutil.rmtree(self.office / part, ignore_errors=True)
        shutil.copytree(self.start / "data", self.office / "data", symlinks=True)
        journal = Path("config") / JOURNAL
        if (self.start / journal).exists():
            shutil.copy2(self.start / journal, self.office / journal)
        else:
            (self.office / journal).unlink(missing_ok=True)

    def sync(self, tmpdir: Path, prefer=None):
        args = ["sync", "--db", str(self.db)] + (["--prefer", prefer] if prefer else [])
        env = dict(os.environ, TMPDIR=str(tmpdir))
        env["XDG_DATA_HOME"] = str(self.office / "data-home")
        return args, env

    def run_whole(self, tmpdir: Path, steps=None):
        """Syncs from the start to the end, noting when each line of progress came, and, when
        asked, the state of the databases between steps (the client held still meanwhile)."""
        self.restore()
        args, env = self.sync(tmpdir, "server")
        began = time.monotonic()
        proc = subprocess.Popen(["stdbuf", "-oL"] + self.rig.command(self.office, args),
                                stdout=subprocess.PIPE, stderr=subprocess.STDOUT,
                                stdin=subprocess.DEVNULL, env=env)
        timeline, lines = [], []
        for line in proc.stdout:
            lines.append(line.decode(errors="replace"))
            kind = KindOf(lines[-1])
            if kind:
                timeline.append((time.monotonic() - began, kind))
            if steps is not None and proc.poll() is None:
                proc.send_signal(signal.SIGSTOP)
                try:
                    steps.append(OfficeState(self.office / "data", check=False, wait=0.2))
                except sqlite3.OperationalError:
                    pass  # held still inside a transaction: nothing between steps to see
                proc.send_signal(signal.SIGCONT)
        if proc.wait() not in (0, 3):
            raise Failure(self.name + ": a whole sync of office B failed:\n" + "".join(lines))
        return timeline


    def run_unwatched(self, tmpdir: Path) -> float:
        """How long a whole run takes as a trial runs it."""
        self.restore()
        args, env = self.sync(tmpdir, "server")
        began = time.monotonic()
        code = subprocess.run(self.rig.command(self.office, args), stdout=subprocess.DEVNULL,
                              stderr=subprocess.DEVNULL, stdin=subprocess.DEVNULL,
                              env=env).returncode
        if code not in (0, 3):
            raise Failure(self.name + ": a whole sync of office B ended with " + str(code))
        return time.monotonic() - began


def KindOf(line: str):
    """The kind of data a line of the sync's progress reports on, if any."""
    if re.match(r"\s*roster", line):
        return "roster"
    if re.match(r"\s*masters?\b", line) or re.match(r".* master: (downloaded|uploaded)", line):
        return "masters"
    if re.match(r"customer \d+ file ", line):
        return "data files"
    m = re.match(r"customer \d+ (.+?): (downloaded|uploaded)", line)
    if m:
        return m.group(1)
    return None


def Trial(scenario: Scenario, kind: str, tmpdir: Path, rng: random.Random, before_server):
    """One kill aimed at the kind; the problems found, and whether the kill hit a live run."""
    scenario.restore()
    shutil.rmtree(tmpdir, ignore_errors=True)
    tmpdir.mkdir(parents=True)
    windows = scenario.windows[kind]
    span = sum(b - a for a, b in windows)
    pick = rng.uniform(0, span)
    at = windows[-1][1]
    for a, b in windows:
        if pick <= b - a:
            at = a + pick
            break
        pick -= b - a
    args, env = scenario.sync(tmpdir, "server")
    proc = subprocess.Popen(scenario.rig.command(scenario.office, args),
                            stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL,
                            stdin=subprocess.DEVNULL, env=env)
    timer = threading.Timer(at, lambda: proc.poll() is None and proc.send_signal(signal.SIGKILL))
    timer.start()
    code = proc.wait()
    timer.cancel()
    killed = code == -signal.SIGKILL
    problems = Judge(scenario.allowed, scenario.before, scenario.end,
                     OfficeState(scenario.office / "data"), scenario.volatile)
    # The next runs finish the job, and the server keeps what it had.
    for prefer in ("server", None):
        args, env = scenario.sync(tmpdir, prefer)
        done = subprocess.run(scenario.rig.command(scenario.office, args),
                              capture_output=True, stdin=subprocess.DEVNULL, env=env, timeout=300)
        if done.returncode not in (0, 3):
            problems.append("sync " + (prefer or "") + " after the kill ended with " +
                            str(done.returncode) + ": " +
                            done.stdout.decode(errors="replace")[-400:])
    after = OfficeState(scenario.office / "data")
    finished = OfficeState(scenario.end_copy / "data")
    if after.files != finished.files:
        problems.append("the data files did not end as a whole run leaves them")
    if after.leftovers:
        problems.append("left beside the data files: " + ", ".join(after.leftovers))
    for key in set(finished.raw) | set(after.raw):
        if after.groups(key, scenario.volatile) != finished.groups(key, scenario.volatile):
            problems.append("%s %s did not end as a whole run leaves it" % key)
    if scenario.rig.server_state() != before_server:
        problems.append("what the server holds changed")
        scenario.rig.put_back_files()
        if scenario.rig.server_state() != before_server:
            raise Failure("the server's records changed; later trials would tell nothing")
    return problems, killed, at


def main():
    here = Path(__file__).resolve()
    parser = argparse.ArgumentParser(description=__doc__,
                                     formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--bin", type=Path, default=here.parents[2] / "build" / "bin")
    parser.add_argument("--trials", type=int, default=3, help="kills per kind and folder")
    parser.add_argument("--big-mib", type=int, default=24, help="size of the large data files")
    parser.add_argument("--seed", type=int, default=None)
    parser.add_argument("--kinds", default="", help="comma-separated kinds (default: all)")
    parser.add_argument("--work", type=Path, default=None,
                        help="folder to work under (default: beside --bin)")
    parser.add_argument("--keep", action="store_true", help="keep the work folder")
    opts = parser.parse_args()
    seed = opts.seed if opts.seed is not None else random.randrange(1 << 30)
    rng = random.Random(seed)
    print("seed", seed, flush=True)

    work = Path(tempfile.mkdtemp(prefix="crash-", dir=opts.work or opts.bin.parent))
    other_fs = Path(tempfile.mkdtemp(prefix="morvane-crash-", dir="/dev/shm")) \
        if Path("/dev/shm").is_dir() else None
    folders = {"same file system": work / "tmp"}
    if other_fs and os.stat(other_fs).st_dev != os.stat(work).st_dev:
        folders["another file system"] = other_fs / "tmp"
    for tmp in folders.values():
        tmp.mkdir(parents=True, exist_ok=True)
    rig = None
    failures = 0
    try:
        rig = Rig(opts.bin, work, opts.big_mib)
        office = work / "office-b"
        rig.host(office, ["init-db", str(office / "data")])
        rig.login(office, "office-b")
        tmp0 = folders["same file system"]
        # From nothing: every kind comes down. Then only newer data files over older ones.
        fresh = Scenario(rig, "fresh", office, tmp0)
        older = work / "office-b-older"
        shutil.copytree(fresh.office, older, symlinks=True)
        for path in (older / "data" / "files").rglob("*"):
            if path.is_file():
                path.write_bytes(b"an older version of " + path.name.encode())
                os.utime(path, (946684800, 946684800))
        scenarios = [fresh, Scenario(rig, "newer files", older, tmp0)]
        before_server = rig.server_state()
        rig.keep_files()

        wanted = {k.strip() for k in opts.kinds.split(",") if k.strip()}
        tally = defaultdict(lambda: [0, 0, 0])
        for scenario in scenarios:
            kinds = [k for k in dict.fromkeys(kind for _, kind in scenario.timeline)
                     if not wanted or k in wanted]
            print("%s: %d kinds aimed at (%s); a whole run takes %.1f s, %.1f s unwatched" %
                  (scenario.name, len(kinds), ", ".join(kinds), scenario.timeline[-1][0],
                   scenario.unwatched), flush=True)
            for (db, table), columns in sorted(scenario.volatile.items()):
                print("  stamped by every run, not compared: %s %s %s" %
                      (db, table, ", ".join(sorted(columns))), flush=True)
            for kind in kinds:
                for where, tmp in folders.items():
                    for _ in range(opts.trials):
                        problems, killed, at = Trial(scenario, kind, tmp, rng, before_server)
                        row = tally[(scenario.name, kind, where)]
                        row[0] += 1
                        row[1] += killed
                        if problems:
                            row[2] += 1
                            failures += 1
                            print("FAIL %s / %s / %s, kill at %.3f s:\n  %s" %
                                  (scenario.name, kind, where, at, "\n  ".join(problems)),
                                  flush=True)
                    # A long run by hand tells how far it got as it goes.
                    row = tally[(scenario.name, kind, where)]
                    print("  %s / %s / %s: %d trials, %d kills, %d failures" %
                          (scenario.name, kind, where, *row), flush=True)
        print("\n%-12s %-16s %-20s %7s %6s %9s" %
              ("start", "kind", "temporary folder", "trials", "kills", "failures"))
        totals = [0, 0, 0]
        for (name, kind, where), (trials, kills, failed) in tally.items():
            print("%-12s %-16s %-20s %7d %6d %9d" % (name, kind, where, trials, kills, failed))
            totals = [a + b for a, b in zip(totals, (trials, kills, failed))]
        print("%-50s %7d %6d %9d" % ("all", *totals))
    except Failure as e:
        print("crash_sync: " + str(e), file=sys.stderr)
        failures += 1
    finally:
        if rig:
            rig.close()
        if not opts.keep:
            shutil.rmtree(work, ignore_errors=True)
        if other_fs:
            shutil.rmtree(other_fs, ignore_errors=True)
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main())
