"""The programs that the fleet starts. It ends each of them by its process id."""

import contextlib
import signal
import subprocess
import time


class ProgramFault(Exception):
    """A program did not start, ended unexpectedly, or a wait took too long."""


class Program:
    """One running program. Its output goes to `log`.

    If this script ends without ending the program, the kernel kills the program. The program has
    its own session, so that Ctrl-C at the terminal reaches only this script.
    """

    def __init__(self, command, log, **options):
        self.name = command[0].rsplit("/", 1)[-1] if log is None else log.stem
        self._log = log
        with contextlib.ExitStack() as stack:
            output = stack.enter_context(open(log, "w", encoding="utf-8")) if log else subprocess.DEVNULL
            self._process = subprocess.Popen(
                ["setpriv", "--pdeathsig", "KILL", "--", *map(str, command)], text=True,
                stdin=subprocess.PIPE, stdout=output, stderr=subprocess.STDOUT,
                start_new_session=True, **options)

    @property
    def pid(self):
        return self._process.pid

    def tell(self, *lines):
        """Writes lines to its standard input."""
        self._process.stdin.write("".join(line + "\n" for line in lines))
        self._process.stdin.flush()

    def said(self):
        return self._log.read_text(encoding="utf-8", errors="replace")

    def await_text(self, text, seconds=60, times=1):
        """Returns when the output contains `text`. Raises ProgramFault if the program ends first."""
        wait_until(lambda: self.said().count(text) >= times or not self.is_running(), seconds,
                   f"{self.name} did not print '{text.strip()}'")
        if not self.is_running():
            raise ProgramFault(f"{self.name} ended: {self.said()[-500:].strip()}")

    def is_running(self):
        return self._process.poll() is None

    def wait(self, seconds):
        """Returns when the program has ended."""
        try:
            self._process.wait(seconds)
        except subprocess.TimeoutExpired:
            raise ProgramFault(f"{self.name} did not end in {seconds} s") from None

    def freeze(self):
        self._process.send_signal(signal.SIGSTOP)

    def thaw(self):
        self._process.send_signal(signal.SIGCONT)

    def end(self):
        """Asks the program to end, and does not wait."""
        self._process.terminate()

    def stop(self):
        """Asks the program to end, and kills it after ten seconds."""
        if self.is_running():
            self._process.terminate()
            self.thaw()
        try:
            self._process.wait(10)
        except subprocess.TimeoutExpired:
            self._process.kill()
            self._process.wait()
        with contextlib.suppress(BrokenPipeError):
            self._process.stdin.close()


def run(*command, lines=None):
    """Runs a short command and waits for its end. `lines` are its standard input."""
    done = subprocess.run([str(word) for word in command], check=False, capture_output=True, text=True,
                          input=lines and "".join(line + "\n" for line in lines))
    if done.returncode != 0:
        raise ProgramFault(f"{' '.join(str(word) for word in command)}: {done.stderr.strip()}")


def wait_until(condition, seconds, complaint):
    """Tests `condition` ten times a second. Raises ProgramFault when the time is over."""
    deadline = time.monotonic() + seconds
    while not condition():
        if time.monotonic() > deadline:
            raise ProgramFault(f"{complaint} in {seconds} s")
        time.sleep(0.1)
