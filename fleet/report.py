"""Compares the alerts that fired with the expected ones, and prints the result."""

HEADINGS = ("server", "what was broken", "alert that fired", "after", "gone after mending")


class Row:
    """One fault of one server. All times are seconds of the caller's clock."""

    def __init__(self, server, fault):
        self.server = server
        self.fault = fault
        self.strangers = set()  # alerts that must not fire
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
        self.strangers |= firing - wanted - known
        if self.fault.alert is None:
            return
        if self._fired_after is None and firing == wanted:
            self._fired_after = now - self._broken_at
        if self._mended_at is not None and not self.is_over and not firing:
            self._gone_after = now - self._mended_at

    def complaints(self):
        """One text for each difference from the expected result."""
        if not self.has_fired:
            yield f"{self.fault.alert} did not fire"
        if self.strangers:
            yield "also fired: " + ", ".join(sorted(self.strangers))
        if self.has_fired and not self.is_over:
            yield f"{self.fault.alert} did not stop"

    def cells(self):
        fired = (self.fault.alert or "none") if self.has_fired else "-"
        fired = ", ".join([fired, *sorted(self.strangers)])
        return (self.server.name, self.fault.text, fired, seconds(self._fired_after), seconds(self._gone_after))


def seconds(time):
    return "" if time is None else f"{time:.1f} s"


def print_table(rows):
    lines = [HEADINGS, *(row.cells() for row in rows)]
    widths = [max(len(line[i]) for line in lines) for i in range(len(HEADINGS))]
    lines.insert(1, tuple("-" * width for width in widths))
    for line in lines:
        print("  ".join(cell.ljust(width) for cell, width in zip(line, widths)).rstrip())


def verdict(rows):
    """Prints the complaints and the counts. Returns True if there are no complaints."""
    failed = 0
    for row in rows:
        complaints = list(row.complaints())
        failed += bool(complaints)
        for complaint in complaints:
            print(f"FAILED  {row.server.name}, {row.fault.text}: {complaint}")
    print(f"{len(rows) - failed} passed, {failed} failed")
    return failed == 0
