"""The list of the package's files (payload.txt), and the WiX source for them.

As a program: prints source and place of each file of payload.txt, or of the list in
the argument.

Each file is one component. The component's code is made from the file's place,
because Windows Installer requires the same code in all versions.
"""

import hashlib
import os
import pathlib
import re
import subprocess
import sys
import uuid
from typing import NamedTuple
from xml.sax.saxutils import quoteattr

PROJECT = pathlib.Path(__file__).resolve().parent.parent
DLL = "SNMPd.dll"
PROGRAM = "corvane-check.exe"

# Identifies the product in all its versions. Never change it: a package could not
# find and replace an older version.
UPGRADE_CODE = uuid.UUID("7849529d-1e98-41dd-a754-ae88e43e02f6")

EARLIEST_TIME = 315532800  # 1980-01-01, the earliest time in a cabinet file


class PayloadFile(NamedTuple):
    """One file of the package; `place` is relative, with forward slashes."""

    source: pathlib.Path
    place: str

    def is_page(self):
        """True if the file in the package is made from Markdown."""
        return self.source.suffix == ".md" and self.place.endswith(".html")


def project_version():
    """Returns the project's version: that of the newest entry in the change log."""
    text = (PROJECT / "CHANGELOG.md").read_text(encoding="utf-8")
    return re.search(r"^## (\d+\.\d+\.\d+)", text, re.MULTILINE).group(1)


def build_time():
    """Returns the time of all files in the package, in seconds since 1970."""
    if "SOURCE_DATE_EPOCH" in os.environ:
        return max(int(os.environ["SOURCE_DATE_EPOCH"]), EARLIEST_TIME)
    answer = subprocess.run(["git", "-C", str(PROJECT), "log", "-1", "--format=%ct"],
                            check=False, capture_output=True, text=True)
    return int(answer.stdout) if answer.returncode == 0 else EARLIEST_TIME


def code(text):
    """Returns a code that depends only on the text."""
    return "{" + str(uuid.uuid5(UPGRADE_CODE, text)).upper() + "}"


def read_payload(images=None, manifest=PROJECT / "installer" / "payload.txt"):
    """Returns the files of the manifest, sorted by place. `images` holds sources by place; these
    replace the listed sources."""
    files = []
    for line in manifest.read_text(encoding="ascii").splitlines():
        if not line.strip() or line.startswith("#"):
            continue
        source, place = line.split()
        if "*" in source:
            found = sorted(path for path in PROJECT.glob(source) if path.is_file())
            files += [PayloadFile(path, place.rstrip("/") + "/" + path.name) for path in found]
        else:
            files.append(PayloadFile(pathlib.Path((images or {}).get(place, PROJECT / source)), place))
    missing = [str(file.source) for file in files if not file.source.is_file()]
    if missing:
        raise FileNotFoundError("payload not found: " + ", ".join(missing))
    return sorted(files, key=lambda file: file.place)


def content_code(files, rest):
    """Returns a code that changes if any byte of the files or of `rest` changes."""
    digest = hashlib.sha256(rest.encode())
    for file in files:
        digest.update(file.place.encode() + b"\0" + file.source.read_bytes())
    return code("package " + digest.hexdigest())


def _identifier(place):
    """Returns a readable WiX identifier (letters, digits, `_`, `.`) for this file."""
    readable = "".join(c if c.isalnum() or c in "._" else "_" for c in place)
    tail = hashlib.sha256(place.lower().encode()).hexdigest()[:8]
    return f"f{tail}_{readable}"[:70]


def file_identifier(place):
    """Returns the key of this file in the File table. The key of an image is its name."""
    return place if place in (DLL, PROGRAM) else _identifier(place)


def payload_wxs(files):
    """Returns the WiX fragment that places the files below INSTALLFOLDER."""
    lines = ['<?xml version="1.0" encoding="utf-8"?>',
             '<Wix xmlns="http://schemas.microsoft.com/wix/2006/wi"><Fragment>',
             '<DirectoryRef Id="INSTALLFOLDER">']
    lines += _folder_lines("", files)
    lines += ["</DirectoryRef>", '<ComponentGroup Id="Payload">']
    lines += [f'<ComponentRef Id="{_identifier(file.place)}"/>' for file in files]
    lines += ["</ComponentGroup>", "</Fragment></Wix>"]
    return "\n".join(lines) + "\n"


def _folder_lines(folder, files):
    """Returns the components of the files in `folder`, then the folders below it."""
    here = [file for file in files if file.place.rpartition("/")[0] == folder]
    lines = [line for file in here for line in _component_lines(file)]
    start = len(folder) + 1 if folder else 0
    below = {file.place[start:].split("/")[0] for file in files
             if file.place.startswith(folder) and "/" in file.place[start:]}
    for name in sorted(below):
        path = f"{folder}/{name}" if folder else name
        inside = [file for file in files if file.place.startswith(path + "/")]
        lines.append(f"<Directory Id={quoteattr(_identifier(path))} Name={quoteattr(name)}>")
        lines += _folder_lines(path, inside) + ["</Directory>"]
    return lines


def _component_lines(file):
    name = file.place.rpartition("/")[2]
    return [f'<Component Id="{_identifier(file.place)}" Win64="yes" '
            f'Guid="{code("component " + file.place.lower())}">',
            f'<File Id="{file_identifier(file.place)}" Name={quoteattr(name)} '
            f'Source={quoteattr(str(file.source))} KeyPath="yes"/>',
            "</Component>"]


def folder_identifiers(files):
    """Returns the keys of the folders below INSTALLFOLDER in the order of removal, deepest first."""
    folders = {str(parent) for file in files for parent in pathlib.PurePosixPath(file.place).parents}
    folders.discard(".")
    return [_identifier(folder) for folder in sorted(folders, key=lambda f: (-f.count("/"), f))]


if __name__ == "__main__":
    for payload_file in read_payload(None, *map(pathlib.Path, sys.argv[1:])):
        print(f"{payload_file.source.relative_to(PROJECT)}\t{payload_file.place}")
