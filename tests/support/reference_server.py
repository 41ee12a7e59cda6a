"""`morvane-server` as a child on 127.0.0.1 with one account and a user per office, for the
tools that run whole offices against it (the office bench, the crash tool)."""

import signal
import subprocess
import time
from pathlib import Path


class Failure(Exception):
    pass


class ReferenceServer:
    def __init__(self, bin_dir: Path, work: Path, contract: str, passwords: dict,
                 max_customers: int = 100, quiet: bool = False):
        self.bin = bin_dir
        self.contract = contract
        self.data = work / "server-data"
        self.data.mkdir(parents=True)
        self.log_path = work / "server.log"
        self.log = open(self.log_path, "ab")
        self.tool(["add-account", "--contractor-name", work.name, "--contract-begin",
                   "2026/04/01", "--contract-end", "2027/03/31", "--shared-count", "2",
                   "--max-customer", str(max_customers)])
        for user, password in passwords.items():
            self.tool(["add-user", "--user", user, "--user-name", user, "--password-stdin"],
                      password + "\n")
        port_file = work / "port"
        self.proc = subprocess.Popen(
            [str(bin_dir / "morvane-server"), "serve", "--data", str(self.data), "--address",
             "127.0.0.1", "--port", "0", "--port-file", str(port_file)] +
            (["--quiet"] if quiet else []),
            stdout=self.log, stderr=self.log)
        deadline = time.monotonic() + 30
        while not port_file.exists() or not port_file.read_text().strip():
            if self.proc.poll() is not None or time.monotonic() > deadline:
                raise Failure("morvane-server did not start; see " + str(self.log_path))
            time.sleep(0.05)
        self.name = "127.0.0.1:" + port_file.read_text().strip()
        self.cert = self.data / "cert.pem"

    def tool(self, args, stdin=""):
        """One of the server program's account commands on its data folder."""
        done = subprocess.run([str(self.bin / "morvane-server"), args[0], "--data",
                               str(self.data), "--contract", self.contract] + args[1:],
                              input=stdin.encode(), stdout=self.log, stderr=self.log)
        if done.returncode != 0:
            raise Failure("morvane-server " + args[0] + " failed")

    def host_command(self, config: Path, args):
        """`morvane` with the office's settings folder, trusting this server."""
        return [str(self.bin / "morvane"), "--config", str(config), "--ca-file",
                str(self.cert)] + args

    def close(self):
        self.proc.send_signal(signal.SIGTERM)
        try:
            self.proc.wait(timeout=10)
        except subprocess.TimeoutExpired:
            self.proc.kill()
            self.proc.wait()
        self.log.close()
