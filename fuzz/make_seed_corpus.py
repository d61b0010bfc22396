#!/usr/bin/env python3
"""Writes the seed corpora under fuzz/corpus/<target>/: the example banks of each kind and
small crafted banks at the edges the readers care about (CR LF and LF, lines at and over 511
and 1023 characters, NUL bytes, no final line end, Ctrl-Z, bytes above 127, a byte-order mark,
empty files, numbers that overflow). Run it again after changing it; regression inputs found
by fuzzing are added to the corpora by hand and kept (their names start with "regression-").
"""
import pathlib
import shutil

ROOT = pathlib.Path(__file__).resolve().parent
EXAMPLES = ROOT.parent / "examples" / "Bank"
CORPUS = ROOT / "corpus"


def sectioned(fmt, kind, machines, extra=b""):
    head = b"[FileHeader]\nVersion    = 9000\nFormat     = %d\nType       = %d\n" % (fmt, kind)
    head += b"CreateDate = Wed Jan 02 02:03:55 1980\n\nCreateBy   = seed\nRemark     = \n\n"
    head += b"[General]\nTotalMachine = %d\n\n" % len(machines)
    body = b""
    for number, lines in machines:
        body += b"[Machine-%d]\n\n" % number + b"".join(l + b"\n" for l in lines) + b"\n"
    return head + body + extra + b"[EOF]\n"


def imm(maker, grade, remark=b"seed", controller=b"3", real=b"120.5"):
    return [b"Maker                       = " + maker, b"Grade                       = " + grade,
            b"Controller                  = " + controller,
            b"Remark                      = " + remark,
            b"ScrewDiameter               = " + real, b"ShotWeight                  = 88.25",
            b"TemperatureControlZones     = 5", b"PlatenSize(HxV)             = 600x600"]


def rtm(maker, grade, remark=b"seed", controller=b"7", real=b"1.5"):
    return [b"Maker        \t = " + maker, b"Grade            = " + grade,
            b"Controller       = " + controller, b"Remark           = " + remark,
            b"PlungerDiameter  = 40.000000", b"PlungerSpeed\t = " + real,
            b"ShotVolume       = 170.000000"]


LEGACY_USER_HEAD = (b"[Header]\nVersion,7007\n\n[Format]\nID,Maker,Grade,Remark\nUnit,,,\n\n"
                    b"[Database]\n")
LEGACY_SYSTEM_HEAD = (b"[Header],,,,,,,,,\nVersion,7007,,,\nTotalNo,2,,,\n[Format],,,\n"
                      b"[Database],,,,\n")
USER_ROW = (b"1,%s,%s,%s,100.00, 50.50,180.00, 95.30, 32.00,140.00,0.01,0.1,  0.00,2500.00,0,"
            b"  1.00,0,  0.00,  0.00,  0.00,  0.00,  0.00,  0.00")
SYSTEM_ROW = b"%d,%s,%s,%s,40,61.6,210,86.2,28,110,0,11.8"


def legacy_user(rows):
    return LEGACY_USER_HEAD + b"".join(USER_ROW % r + b"\n" for r in rows) + b"[EOF]\n"


def legacy_system(rows):
    return LEGACY_SYSTEM_HEAD + b"".join(SYSTEM_ROW % r + b"\n" for r in rows) + b"[EOF]\n"


def pad_to(prefix, suffix, length):
    """A line of exactly `length` characters (its line end not counted)."""
    return prefix + b"x" * (length - len(prefix) - len(suffix)) + suffix


def variants(name, text, long_line):
    """The edge cases, each applied to one well-formed bank text (written with LF)."""
    crlf = text.replace(b"\n", b"\r\n")
    out = {name + "-lf": text, name + "-crlf": crlf}
    out[name + "-no-final-eol"] = crlf[:-2]
    middle = len(crlf) // 2
    out[name + "-ctrl-z"] = crlf[:middle] + b"\x1a" + crlf[middle:]
    out[name + "-nul"] = crlf.replace(b"seed", b"se\x00ed", 1)
    out[name + "-bom"] = b"\xef\xbb\xbf" + crlf
    out[name + "-lone-cr"] = text.replace(b"\n", b"\r", 3)
    for length in long_line:
        out["%s-line-%d" % (name, length)] = long_line[length]
    return out


def write(target, files):
    folder = CORPUS / target
    folder.mkdir(parents=True, exist_ok=True)
    for path in folder.iterdir():
        if not path.name.startswith("regression-"):
            path.unlink()
    for name, data in files.items():
        (folder / name).write_bytes(data)


def examples(*names):
    return {"example-" + pathlib.Path(n).name: (EXAMPLES / n).read_bytes() for n in names}


def main():
    high = b"\xc5rsted-\xff\x80"
    overflow_imm = imm(b"Big", b"B-1", controller=b"99999999999999999999", real=b"1e400")
    overflow_rtm = rtm(b"Big", b"B-1", controller=b"-99999999999999999999", real=b"-1e400")
    odd_numbers = [imm(b"Odd", b"O-%d" % i, real=r) for i, r in
                   enumerate([b"nan", b"-inf", b"0x1p4", b"1e-400", b"", b"  +.5e", b"-0"])]

    seeds = {}
    for fmt, target, folder_names in ((1, "imm_user_fuzzer", ["User-IMM.bnk"]),
                                      (0, "imm_folder_fuzzer",
                                       ["Machine/IMM/Quillner.bnk", "Machine/IMM/Hollenvik-Ostrevo.bnk"])):
        base = sectioned(fmt, 0, [(1, imm(b"Alder", b"AL-50")), (2, imm(high, b"H-1"))])
        long_lines = {n: sectioned(fmt, 0, [(1, imm(b"Long", b"L-1") +
                                             [pad_to(b"Remark = ", b"", n)])]).replace(b"\n", b"\r\n")
                      for n in (510, 511, 512)}
        files = variants("imm", base, long_lines)
        files["imm-overflow"] = sectioned(fmt, 0, [(1, overflow_imm)])
        files["imm-odd-numbers"] = sectioned(fmt, 0, list(enumerate(odd_numbers, 1)))
        files["imm-gap"] = sectioned(fmt, 0, [(1, imm(b"A", b"1")), (3, imm(b"A", b"3"))])
        files["imm-header-overflow"] = base.replace(b"9000", b"99999999999")
        files["empty"] = b""
        files.update(examples(*folder_names))
        seeds[target] = files

    for fmt, target, folder_names in ((1, "rtm_user_fuzzer", ["User-RTMIC.bnk"]),
                                      (0, "rtm_folder_fuzzer", ["Machine/RTM/Trandell.bnk"])):
        base = sectioned(fmt, 1, [(1, rtm(b"Birch", b"BI-9")), (2, rtm(high, b"H-2"))])
        long_lines = {n: sectioned(fmt, 1, [(1, rtm(b"Long", b"L-1") +
                                             [pad_to(b"Remark = ", b"", n)])]).replace(b"\n", b"\r\n")
                      for n in (510, 511, 512)}
        files = variants("rtm", base, long_lines)
        files["rtm-overflow"] = sectioned(fmt, 1, [(1, overflow_rtm)])
        files["empty"] = b""
        files.update(examples(*folder_names))
        seeds[target] = files

    user_rows = [(b"Cedar", b"CE-1", b"left, right"), (high, b"H-3", b""), (b"Same", b"Same", b"x")]
    long_user = {n: (LEGACY_USER_HEAD + pad_to(b"1,Long,L-1,", (USER_ROW % (b"", b"", b""))[4:], n)
                     + b"\n[EOF]\n").replace(b"\n", b"\r\n") for n in (1022, 1023, 1024)}
    files = variants("user", legacy_user(user_rows), long_user)
    files["user-overflow"] = legacy_user([(b"Big", b"B-1", b"r")]).replace(
        b"100.00", b"1e400").replace(b",0,", b",99999999999,", 1)
    files["user-version-in-row"] = legacy_user([(b"V", b"V-1", b"Version 5")])
    files["user-totalno"] = legacy_user(user_rows).replace(b"[EOF]", b"TotalNo,3\n[EOF]")
    files["empty"] = b""
    files.update(examples("user-pro.bnk"))
    seeds["legacy_user_fuzzer"] = files

    system_rows = [(1, b"Dove", b"DV-1", b""), (2, high, b"H-4", b"a,b"), (3, b"X", b"X", b"")]
    long_system = {n: (LEGACY_SYSTEM_HEAD + pad_to(b"1,Long,L-1,", b",40,61.6,210,86.2,28,110,0,11.8", n)
                       + b"\n[EOF]\n").replace(b"\n", b"\r\n") for n in (1022, 1023, 1024)}
    files = variants("system", legacy_system(system_rows), long_system)
    files["system-overflow"] = LEGACY_SYSTEM_HEAD.replace(b"7007", b"4294967296") + \
        b"1,Big,B-1,,1e400,-1e400,nan,inf,99999999999,0x10\n"
    files["empty"] = b""
    files.update(examples("system-pro.bnk"))
    seeds["legacy_system_fuzzer"] = files

    kinds = ["legacy_system_fuzzer", "legacy_user_fuzzer", "imm_user_fuzzer", "rtm_user_fuzzer",
             "imm_folder_fuzzer", "rtm_folder_fuzzer"]
    round_trip = {}
    differential = {}
    for kind, target in enumerate(kinds):
        for name, data in seeds[target].items():
            round_trip["%d-%s" % (kind, name)] = bytes([kind]) + data
            if target not in ("legacy_system_fuzzer", "legacy_user_fuzzer"):
                differential["%s-%s" % (target.split("_")[0] + target.split("_")[1], name)] = data
    seeds["round_trip_fuzzer"] = round_trip
    seeds["index_differential_fuzzer"] = differential

    for target, files in seeds.items():
        write(target, files)


if __name__ == "__main__":
    main()
