"""Receives the e-mails of Alertmanager, in place of a mail server."""

import email
import email.policy
from typing import NamedTuple

from aiosmtpd.controller import Controller

PORT = 25  # the port in the delivered alertmanager.yml


class Mail(NamedTuple):
    """`place` is the instance of the alerts, or their job if they have no instance."""

    receiver: str
    place: str
    alerts: tuple


def read_mail(data):
    """The delivered subject is "PLACE: ALERT ALERT"."""
    message = email.message_from_bytes(data, policy=email.policy.default)
    place, _, alerts = message["Subject"].rpartition(": ")
    return Mail(message["To"].partition("@")[0], place, tuple(alerts.split()))


class Mailbox:
    """The mails that have arrived. A thread of its own adds them, and writes each of them to a file."""

    def __init__(self, folder):
        self.mails = []
        self._folder = folder
        self._controller = None

    def start(self):
        self._folder.mkdir()
        self._controller = Controller(self, hostname="127.0.0.1", port=PORT)
        self._controller.start()

    def stop(self):
        self._controller.stop()

    def alerts_of(self, place):
        """Returns the alerts in the mails about this place. An alert is in the list once for each mail."""
        return [alert for mail in list(self.mails) if mail.place == place for alert in mail.alerts]

    async def handle_DATA(self, _server, _session, envelope):
        """The library calls this for each mail."""
        number = len(self.mails) + 1
        (self._folder / f"{number}.eml").write_bytes(envelope.content)
        self.mails.append(read_mail(envelope.content))
        return "250 OK"
