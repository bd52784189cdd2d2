"""Takes a picture of Prometheus' page of alerts with a headless Chromium.

The script controls Chromium through a pipe (DevTools protocol).
"""

import base64
import json
import os
import select
import shutil
import time

from monitoring import URL
from programs import Program, ProgramFault

ANSWER_SECONDS = 60
SCALE = 0.75  # half the number of pixels, and still readable

# Debian's Prometheus has only the classic pages.
PAGE = URL + "/classic/alerts"
# The alerts without the text of their rules, which would make the picture twice as long.
UNFOLD = "$('.alert_header').click(); $('.alert_details pre').hide(); $('.alert_details').length"


def take_picture(file, folder):
    """Writes the page, with every alert unfolded, to `file` as a PNG.

    The browser's own files go to `folder`, which is emptied first.
    """
    shutil.rmtree(folder, ignore_errors=True)
    folder.mkdir(parents=True)
    browser = Browser(folder, 1000, 800)
    try:
        browser.open(PAGE)
        if not browser.evaluate(UNFOLD):
            raise ProgramFault(f"{PAGE} shows no alerts")
        file.write_bytes(browser.picture())
    finally:
        browser.stop()


class Browser:
    """One browser with one page. It writes its files to `folder`."""

    def __init__(self, folder, width, height):
        command_end, self._commands = os.pipe()
        self._answers, answer_end = os.pipe()
        # Chromium reads from descriptor 3 and writes to descriptor 4.
        self._program = Program([
            "bash", "-c", f'exec "$@" 3<&{command_end} 4>&{answer_end}', "chromium",
            "chromium", "--headless", "--remote-debugging-pipe", "--no-sandbox", "--disable-gpu",
            "--disable-quic", "--no-first-run", "--disable-background-networking",
            "--disable-component-update", "--disable-sync", "--hide-scrollbars",
            f"--user-data-dir={folder / 'profile'}", f"--window-size={width},{height}"],
            folder / "chromium.log", pass_fds=(command_end, answer_end))
        os.close(command_end)
        os.close(answer_end)
        self._unread = b""
        self._number = 0
        self._session = {}
        target = self._call("Target.createTarget", url="about:blank")["targetId"]
        self._session = {"sessionId": self._call("Target.attachToTarget", targetId=target,
                                                 flatten=True)["sessionId"]}

    def open(self, url):
        """Returns when the page and everything on it is loaded."""
        self._call("Page.navigate", url=url)
        deadline = time.monotonic() + ANSWER_SECONDS
        while self.evaluate("location.href + document.readyState") != url + "complete":
            if time.monotonic() > deadline:
                raise ProgramFault(f"chromium has not loaded {url}")
            time.sleep(0.1)

    def evaluate(self, script):
        """Returns the value of a JavaScript expression."""
        return self._call("Runtime.evaluate", expression=script, returnByValue=True)["result"].get("value")

    def picture(self):
        """Returns the whole page as a PNG."""
        size = self._call("Page.getLayoutMetrics")["cssContentSize"]
        return base64.b64decode(self._call(
            "Page.captureScreenshot", captureBeyondViewport=True, clip=size | {"scale": SCALE})["data"])

    def stop(self):
        self._program.stop()
        os.close(self._commands)
        os.close(self._answers)

    def _call(self, method, **parameters):
        self._number += 1
        command = {"id": self._number, "method": method, "params": parameters} | self._session
        try:
            os.write(self._commands, json.dumps(command).encode() + b"\0")
        except BrokenPipeError:
            raise ProgramFault(f"chromium ended: {self._program.said()[-500:]}") from None
        while (answer := self._next_message()).get("id") != self._number:
            pass  # an event, not the response
        if "error" in answer:
            raise ProgramFault(f"chromium, {method}: {answer['error']['message']}")
        return answer["result"]

    def _next_message(self):
        while b"\0" not in self._unread:
            ready, _, _ = select.select([self._answers], [], [], ANSWER_SECONDS)
            piece = os.read(self._answers, 65536) if ready else b""
            if not piece:
                raise ProgramFault(f"chromium does not respond: {self._program.said()[-500:]}")
            self._unread += piece
        message, self._unread = self._unread.split(b"\0", 1)
        return json.loads(message)
