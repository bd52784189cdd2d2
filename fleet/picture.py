"""A picture of Prometheus' page of alerts."""

import shutil

from browser import Browser
from monitoring import URL
from programs import ProgramFault

# Debian's Prometheus has the classic pages alone.
PAGE = URL + "/classic/alerts"
UNFOLD = "$('.alert_header').click(); $('.alert_details').length"


def take(file, folder):
    """Leaves the page, with every alert unfolded, as a PNG in `file`; the browser's own files go
    to `folder`."""
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
