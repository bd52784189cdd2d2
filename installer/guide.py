"""Makes the pages of the guide, as HTML, from the same Markdown text that the project shows.

cmark-gfm converts the text. This module adds what a page of its own needs: a title, anchors
of headings as the forge makes them, links to the other pages, and the version in place of
`<version>`.
"""

import html
import re
import subprocess

PAGE = """<!DOCTYPE html>
<html lang="en">
<head>
<meta charset="utf-8">
<meta name="viewport" content="width=device-width">
<title>{title}</title>
<style>
body {{ max-width: 60em; margin: 2em auto; padding: 0 1em; font: 16px/1.5 "Segoe UI", sans-serif; }}
pre, code {{ font-family: Consolas, monospace; font-size: 14px; background: #f3f3f3; }}
pre {{ padding: .6em; overflow-x: auto; }}
table {{ border-collapse: collapse; }}
th, td {{ border: 1px solid #bbb; padding: .3em .6em; text-align: left; vertical-align: top; }}
img {{ max-width: 100%; }}
</style>
</head>
<body>
{body}</body>
</html>
"""


def page(markdown, version):
    """Returns the HTML page of a Markdown text."""
    done = subprocess.run(["cmark-gfm", "--extension", "table"], input=markdown.replace("<version>", version),
                          stdout=subprocess.PIPE, check=True, encoding="utf-8")
    body = re.sub(r"<(h[1-6])>(.*?)</\1>", _with_anchor, done.stdout)
    body = re.sub(r'(<a href="[^":]*)\.md(["#])', r"\1.html\2", body)
    title = re.search(r"<h1[^>]*>(.*?)</h1>", body).group(1)
    return PAGE.format(title=title, body=body)


def _with_anchor(heading):
    """Returns a heading with its identifier: the text in small letters, with hyphens for blanks."""
    text = html.unescape(re.sub(r"<[^>]*>", "", heading[2]))
    anchor = re.sub(r"[^\w\- ]", "", text.lower()).replace(" ", "-")
    return f'<{heading[1]} id="{anchor}">{heading[2]}</{heading[1]}>'
