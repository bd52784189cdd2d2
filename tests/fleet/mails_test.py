"""Tests the delivered alertmanager.yml with Alertmanager and a receiver of mails: who gets which mail,
what it says, and that a critical alert of a server silences its warnings.

tests/fleet/run starts it in a network of its own.
"""

import email
import email.policy
import json
import pathlib
import sys
import tempfile
import unittest
import urllib.request

TOP = pathlib.Path(__file__).resolve().parents[2]
sys.path.insert(0, str(TOP / "fleet"))

import mailbox  # noqa: E402
import monitoring  # noqa: E402
from programs import Program, run, wait_until  # noqa: E402

API = f"http://{monitoring.ALERTMANAGER}/api/v2/alerts"
CONFIGURATION = TOP / "monitoring" / "prometheus" / "alertmanager.yml"


def alert(name, severity, instance):
    return {"labels": {"alertname": name, "severity": severity, "job": "corvane", "instance": instance},
            "annotations": {"summary": f"Summary of {name}", "description": "What it means.",
                            "runbook_url": "https://www.example.org/#chapter"}}


def ask(body=None):
    """Sends alerts, or returns those that Alertmanager has."""
    opener = urllib.request.build_opener(urllib.request.ProxyHandler({}))
    request = urllib.request.Request(API, body and json.dumps(body).encode(), {"Content-Type": "application/json"})
    with opener.open(request, timeout=10) as answer:
        return json.load(answer) if body is None else None


def is_served():
    try:
        return ask() == []
    except OSError:
        return False


class Mails(unittest.TestCase):
    def setUp(self):
        folder = pathlib.Path(self.enterContext(tempfile.TemporaryDirectory()))
        (folder / "alertmanager.yml").write_text(
            monitoring.send_at_once(CONFIGURATION.read_text(encoding="utf-8")), encoding="utf-8")
        self.mails = folder / "mails"
        self.box = mailbox.Mailbox(self.mails)
        self.box.start()
        self.addCleanup(self.box.stop)
        program = Program(["prometheus-alertmanager", "--config.file=alertmanager.yml", "--storage.path=data",
                           f"--web.listen-address={monitoring.ALERTMANAGER}", "--cluster.listen-address="],
                          folder / "alertmanager.log", cwd=folder)
        self.addCleanup(program.stop)
        wait_until(is_served, 60, "Alertmanager does not answer")

    def await_mails(self, number):
        wait_until(lambda: len(self.box.mails) >= number, 60, f"{number} mails have not come")

    def test_critical_alert_silences_the_warnings_of_its_server(self):
        ask([alert("Critical", "critical", "a")])
        self.await_mails(1)
        ask([alert("Warning", "warning", "a")])
        ask([alert("Warning", "warning", "b")])
        self.await_mails(2)
        states = {(each["labels"]["alertname"], each["labels"]["instance"]): each["status"]["state"] for each in ask()}
        self.assertEqual(states, {("Critical", "a"): "active", ("Warning", "a"): "suppressed",
                                  ("Warning", "b"): "active"})
        self.assertEqual(self.box.mails, [("on-call", "a", ("Critical",)), ("corvane-team", "b", ("Warning",))])

    def test_alerts_of_one_server_are_in_one_mail(self):
        ask([alert("One", "warning", "a"), alert("Two", "warning", "a")])
        self.await_mails(1)
        self.assertEqual(self.box.mails, [("corvane-team", "a", ("One", "Two"))])

    def test_mail_says_what_to_do(self):
        ask([alert("One", "critical", "a")])
        self.await_mails(1)
        message = email.message_from_bytes((self.mails / "1.eml").read_bytes(), policy=email.policy.default)
        self.assertEqual([part.get_content_type() for part in message.walk()], ["multipart/alternative", "text/plain"])
        text = message.get_body().get_content()
        self.assertRegex(text, r"^Summary of One\s+What it means\.\s+What to do: https://www\.example\.org/#chapter\s+"
                               r"Since 20.* UTC, critical\s+$")


if __name__ == "__main__":
    run("ip", "link", "set", "lo", "up")
    unittest.main()
