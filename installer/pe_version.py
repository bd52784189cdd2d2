"""Reads machine, kind and file version of a Windows image."""

import struct

MACHINE_X64 = 0x8664
CHARACTERISTIC_DLL = 0x2000
FIXED_FILE_INFO = struct.pack("<II", 0xFEEF04BD, 0x00010000)


def version_of(path):
    """Returns the version of a 64-bit image. Raises ValueError if `path` is not one."""
    return _read(path)[1]


def check_dll(path, version):
    """Raises ValueError unless `path` is a 64-bit DLL with `version` in its VERSIONINFO."""
    characteristics, found = _read(path)
    if not characteristics & CHARACTERISTIC_DLL:
        raise ValueError(f"{path} is not a 64-bit DLL")
    if found != f"{version}.0":
        raise ValueError(f"{path} has version {found}, but the package has {version}.0")


def _read(path):
    """Returns the characteristics and the version of a 64-bit image."""
    image = path.read_bytes()
    try:
        header = struct.unpack_from("<I", image, 0x3C)[0]
        machine, characteristics = struct.unpack_from("<H16xH", image, header + 4)
    except struct.error:
        raise ValueError(f"{path} is not a Windows image") from None
    if image[header:header + 4] != b"PE\0\0" or machine != MACHINE_X64:
        raise ValueError(f"{path} is not a 64-bit Windows image")
    return characteristics, _file_version(image)


def _file_version(image):
    """Returns the four numbers of the VERSIONINFO as text, or "none"."""
    start = image.find(FIXED_FILE_INFO)
    if start < 0:
        return "none"
    high, low = struct.unpack_from("<II", image, start + 8)
    return f"{high >> 16}.{high & 0xFFFF}.{low >> 16}.{low & 0xFFFF}"
