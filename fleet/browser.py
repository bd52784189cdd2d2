"""A headless Chromium, led through the pipe that it offers for that (DevTools protocol)."""

import base64
import json
import os
import select
import time

from programs import Program, ProgramFault

ANSWER_SECONDS = 60
SCALE = 0.75  # still to be read, and half as many pixels


class Browser:
    """One page in one browser; all of its files lie in `folder`, which is empty at first."""

    def __init__(self, folder, width, height):
        command_end, self._commands = os.pipe()
        self._answers, answer_end = os.pipe()
        # It reads from descriptor 3 and writes to 4.
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
        """Until the page is there, with all that it loads."""
        self._call("Page.navigate", url=url)
        deadline = time.monotonic() + ANSWER_SECONDS
        while self.evaluate("location.href + document.readyState") != url + "complete":
            if time.monotonic() > deadline:
                raise ProgramFault(f"chromium has not loaded {url}")
            time.sleep(0.1)

    def evaluate(self, script):
        """The value of a JavaScript expression."""
        return self._call("Runtime.evaluate", expression=script, returnByValue=True)["result"].get("value")

    def picture(self):
        """The whole page as a PNG."""
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
            raise ProgramFault(f"chromium has ended: {self._program.said()[-500:]}") from None
        while (answer := self._next_message()).get("id") != self._number:
            pass  # an event, which nobody asked for
        if "error" in answer:
            raise ProgramFault(f"chromium, {method}: {answer['error']['message']}")
        return answer["result"]

    def _next_message(self):
        while b"\0" not in self._unread:
            ready, _, _ = select.select([self._answers], [], [], ANSWER_SECONDS)
            piece = os.read(self._answers, 65536) if ready else b""
            if not piece:
                raise ProgramFault(f"chromium does not answer: {self._program.said()[-500:]}")
            self._unread += piece
        message, self._unread = self._unread.split(b"\0", 1)
        return json.loads(message)
