"""Compares the alerts that fired with the expected ones, and prints the result."""

HEADINGS = ("server", "what was broken", "alert that fired", "after", "e-mails", "gone after mending")


class Row:
    """One fault of one server. All times are seconds of the caller's clock."""

    def __init__(self, server, fault):
        self.server = server
        self.fault = fault
        self.strangers = set()  # alerts that must not fire
        self.mails = 0
        self._times_fired = 0
        self._is_firing = False
        self._broken_at = self._mended_at = None
        self._fired_after = self._gone_after = None

    @property
    def is_broken(self):
        return self._broken_at is not None

    @property
    def has_fired(self):
        """Also true for a fault that raises no alert."""
        return self.is_broken and (self.fault.alert is None or self._fired_after is not None)

    @property
    def is_reported(self):
        """True if the alert has fired and its e-mail has arrived."""
        return self.has_fired and (self.fault.alert is None or self.mails > 0)

    @property
    def is_over(self):
        """True if the fault is mended and its alert is gone, or never fired."""
        return self._mended_at is not None and (self._fired_after is None or self._gone_after is not None)

    def break_it(self, now):
        self._broken_at = now
        self.fault.breaks(self.server)

    def mend_it(self, now):
        self._mended_at = now
        self.fault.mends(self.server)

    def see(self, firing, now, known=frozenset()):
        """`firing` are the alerts of the server now, `known` the alerts of its earlier faults.

        The earlier alerts need a moment to end: the fault has fired when its alert is the only one.
        """
        wanted = {self.fault.alert} - {None}
        self.strangers |= firing - wanted - known - self.fault.also
        if self.fault.alert is None:
            return
        if self._fired_after is None and firing == wanted:
            self._fired_after = now - self._broken_at
        if self._mended_at is not None and not self.is_over and not firing:
            self._gone_after = now - self._mended_at

    def count(self, firing, mails):
        """Counts how often the alert began to fire, and its e-mails."""
        is_firing = self.fault.alert in firing
        self._times_fired += is_firing and not self._is_firing
        self._is_firing = is_firing
        self.mails = mails.count(self.fault.alert)

    def complaints(self):
        """One text for each difference from the expected result."""
        if not self.has_fired:
            yield f"{self.fault.alert} did not fire"
        elif not self.is_reported:
            yield "no e-mail"
        if self.mails > self._times_fired:
            yield f"{self.mails} e-mails, but the alert fired {self._times_fired} times"
        if self.strangers:
            yield "also fired: " + ", ".join(sorted(self.strangers))
        if self.has_fired and not self.is_over:
            yield f"{self.fault.alert} did not stop"

    def cells(self):
        fired = (self.fault.alert or "none") if self.has_fired else "-"
        fired = ", ".join([fired, *sorted(self.strangers)])
        mails = "" if self.fault.alert is None else str(self.mails)
        return (self.server.name, self.fault.text, fired, seconds(self._fired_after), mails,
                seconds(self._gone_after))


def seconds(time):
    return "" if time is None else f"{time:.1f} s"


def print_table(rows):
    lines = [HEADINGS, *(row.cells() for row in rows)]
    widths = [max(len(line[i]) for line in lines) for i in range(len(HEADINGS))]
    lines.insert(1, tuple("-" * width for width in widths))
    for line in lines:
        print("  ".join(cell.ljust(width) for cell, width in zip(line, widths)).rstrip())


def unexpected(mails, rows):
    """Returns the mails that report an alert which no row expects."""
    known = {(row.server.name, alert) for row in rows for alert in {row.fault.alert} | row.fault.also}
    return [mail for mail in mails if any((mail.place, alert) not in known for alert in mail.alerts)]


def verdict(rows, mails=(), strays=()):
    """Prints the complaints and the counts. Returns True if there are no complaints.

    `strays` are (server, alert) pairs: alerts about what was not broken.
    """
    failed = 0
    for row in rows:
        complaints = list(row.complaints())
        failed += bool(complaints)
        for complaint in complaints:
            print(f"FAILED  {row.server.name}, {row.fault.text}: {complaint}")
    others = [f"an e-mail about {mail.place}: {' '.join(mail.alerts)}" for mail in unexpected(mails, rows)]
    others += [f"{place}, which was not broken: {alert}" for place, alert in sorted(strays)]
    for complaint in others:
        print(f"FAILED  {complaint}")
    failed += len(others)
    print(f"{len(rows) + len(others) - failed} passed, {failed} failed")
    return failed == 0
