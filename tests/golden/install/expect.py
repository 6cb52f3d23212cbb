#!/usr/bin/env python3
"""Writes what installation has to leave with the printer of each sample, from the sample's readable description and
settings file: the .txt files beside this program. Written by the formats' tables, not by the library's code.
Usage: expect.py [--check]"""
import configparser
import pathlib
import struct
import sys
import tomllib

HERE = pathlib.Path(__file__).parent
MODELS = HERE / "../../../package/models"
KINDS = {"pcl6": 0, "pcl5": 1, "postscript": 2, "image": 3, "image2": 4}
NAMES = {"T410A": "Halden T410A", "QP5": "Quill P5", "QPS": "Quill PS", "K100": "Ostra K100", "IX300": "Quill IX-300",
         "T440B": "Halden T440B"}
FAMILIES = {"Arial", "Courier New", "Times New Roman", "Symbol"}
LETTER = 1  # default paper of a user who measures in inches


def binary(data):
    rows = [data[i:i + 32].hex(" ").upper() for i in range(0, len(data), 32)]
    return "binary %d" % len(data) + "".join("\n    " + row for row in rows)


def text(kind, value):
    return '%s "%s"' % (kind, value.replace("\0", "\\0"))


def margin_row(row, used):
    papers = bytearray(32)
    for code in row.get("papers", []):
        papers[code // 8] |= 0x80 >> code % 8
    return struct.pack("<H32s10h", used, bytes(papers), row.get("min_width", 0), row.get("max_width", 0),
                       row.get("min_length", 0), row.get("max_length", 0), row.get("modes", 0), row["resolution"],
                       row["margin_x"], row["margin_y"], row["margin_x_rotated"], row["margin_y_rotated"])


def margins(model, code, width, length):
    """Of an upright paper, and of the rotated one, in thousandths of a millimetre."""
    table = model.get("margins")
    if table is None:
        return (6350, 6350), (6350, 6350)
    code = LETTER if 119 <= code <= 447 else code
    for row in table["rows"]:
        sized = 0 in row["papers"] and row["min_width"] <= width <= row["max_width"] and \
            row["min_length"] <= length <= row["max_length"] if code >= 256 else code in row["papers"]
        if row["modes"] & 1 and sized:
            break
    else:
        row = table["closing"]
    unit = lambda name: row[name] * 25400 // row["resolution"]
    return (unit("margin_x"), unit("margin_y")), (unit("margin_x_rotated"), unit("margin_y_rotated"))


def form(name, width, length, pair):
    (left, top), (right, bottom) = pair
    return 'form "%s" flags 2, %d x %d, area %d %d %d %d' % (name, width, length, left, top, width - right,
                                                             length - bottom)


def expect(stem):
    model = tomllib.loads((MODELS / (stem + ".toml")).read_text(encoding="utf-8"))
    head = model["model"]
    ini = configparser.RawConfigParser(strict=False)
    ini.optionxform = str.lower
    if (MODELS / (stem + ".INI")).exists():
        ini.read_string((MODELS / (stem + ".INI")).read_bytes().decode("cp1252"))
    section = lambda name: dict(ini[name]) if ini.has_section(name) else {}
    kind = KINDS[head["language"]]
    values = {key: text("sz", value + "\0") for key, value in section("PrinterDriver").items() if value}
    values["splusermodeprinterdriver"] = text("sz", "KRND.DLL\0")
    values["pdfname"] = text("sz", stem + ".FDF\0")
    values["basepdfsize"] = "dword 1000"
    values["settings"] = text("sz", "00ABCDEF.TQS\0")
    info = section("DeviceInfo")
    words = [head.get("std_" + word, 0) | head.get("opt_" + word, 0) for word in ("inputs", "outputs", "options")]
    words = [int(info.get(key, "%x" % word), 16) for key, word in zip(("sources", "destinations", "options"), words)]
    memory_key = head.get("std_memory", 0) + head.get("opt_memory", 0)
    values["deviceinfo"] = binary(struct.pack("<4I", *words, int(info.get("totalmemory", memory_key))))
    if "memory" in model:
        rows = model["memory"]["rows"]
        closing = model["memory"].get("closing", {"key": 0, "value": 0})
        found = [row for row in rows if row["key"] == memory_key] or (rows + [closing])
        value = struct.unpack("<h", struct.pack("<H", found[0]["value"]))[0]
        values["memory"] = "dword %d" % ((value + (head.get("disk_memory", 0) if words[2] & 2 else 0)) & 0xFFFFFFFF)
    if model.get("fonts", {}).get("rows"):
        subs = section("FontSubstitutions")
        if subs:
            pairs = [(subs["fontsubsys%d" % i], subs["fontsubprt%d" % i]) for i in range(int(subs["numfontsubs"]))]
        else:
            pairs = [(row["screen"], row["device"]) for row in model["font_subs"]["rows"] if row["screen"] in FAMILIES]
        values["fontsubs"] = text("multi", "".join(a + "\0" + b + "\0" for a, b in pairs) + "\0")
    if "margins" in model:
        rows = [margin_row(row, 1) for row in model["margins"]["rows"]]
        values["margin"] = binary(b"".join(rows + [margin_row(model["margins"]["closing"], 0)]))
    papers = model["papers"]["rows"]
    custom = section("CustomSizes")
    own = [(custom["customname%d" % i], int(custom["customwidth%d" % i]), int(custom["customlength%d" % i]))
           for i in range(int(custom.get("numcustomsizes", 0)))]
    sizes = [(p["code"], p["width"], p["length"]) for p in papers if p["code"] > 256]
    sizes += [(448 + i, width // 10, length // 10) for i, (_, width, length) in enumerate(own)]
    if sizes:
        values["papersizes"] = binary(b"".join(struct.pack("<3H", *size) for size in sizes))
    pcl = [(p["code"], p["pcl_code"]) for p in papers if p["pcl_code"] >= 0]
    if kind <= 1 and pcl:
        values["stdpapers"] = binary(b"".join(struct.pack("<2h", *pair) for pair in pcl))
    named = [struct.pack("<H", p["code"]) + p["pcl_name"].encode() + b"\0" for p in papers if p.get("pcl_name")]
    if kind == 0 and named:
        values["papernames"] = binary(b"".join(named))
    if head["color_class"]:
        # A code point is a byte of the data.
        data = "".join(model.get("color_data", {}).values()).encode("latin-1")
        values["colordata"] = binary(data or b"\0")
    if "media_types" in model:
        media = [row["data_name"].encode() + b"\0" for row in model["media_types"]["rows"]]
        values["mediatypes"] = binary(b"".join(media) + b"\0")
    processor = "JOB" if kind == 3 else "winprint"
    lines = ["printer %s, processor %s, record 4088 bytes" % (NAMES[stem], processor)]
    lines += ["value %s %s" % pair for pair in sorted(values.items())]
    strings = model["strings"]["en"]
    lines += [form(strings[p["name"]], p["width"] * 100, p["length"] * 100,
                   margins(model, p["code"], p["width"], p["length"])) for p in papers if p["code"] >= 256]
    lines += [form(name, width * 10, length * 10, margins(model, 448 + i, width // 10, length // 10))
              for i, (name, width, length) in enumerate(own)]
    lines += ["processor winprint=localspl.dll"] + (["processor JOB=JOB.DLL"] if kind == 3 else [])
    halftones = sum(32 * row.get("halftone_dim", 0) ** 2 for row in model["resolutions"]["rows"])
    fonts = sum(row["size"] for row in model.get("fonts", {}).get("rows", []))
    added = 0 if kind == 3 else halftones + fonts
    lines.append("font file %d bytes" % (1000 + (added if added > 1000 else 0)))
    return "\n".join(lines) + "\n"


wrong = 0
for name in NAMES:
    path, wanted = HERE / (name + ".txt"), expect(name)
    if "--check" not in sys.argv:
        path.write_text(wanted, encoding="utf-8")
    elif path.read_text(encoding="utf-8") != wanted:
        print(path.name + " is not what expect.py writes")
        wrong = 1
sys.exit(wrong)
