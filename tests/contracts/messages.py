#!/usr/bin/env python3
"""Every text that the library can print is printed by a test, and nothing else is.

usage: messages.py FOLDER     where the tests that ran with VAK_TEST_MESSAGES=FOLDER noted what they saw

The texts are the literals of the printing calls below src/. What a call printed on a stream must be made of
whole texts of that stream from its first byte to its last, and each text must have been seen so, with each of
its VARIANTS. A new message without a test fails here.
"""

import pathlib
import re
import sys

SOURCES = pathlib.Path(__file__).resolve().parents[2] / "src"

STORAGE = {
    "VAK_H5Awrite": (1, 2, 3, 10, 20, 30, 40, 100, 999),
    "VAK_H5Aread": (1, 2, 3, 10, 11, 20, 30, 999),
    "VAK_H5Dwrite": (0, 1, 2, 3, 4, 10, 20, 30, 31, 32, 40, 50, 60, 70, 80, 100, 110, 120, 130, 140, 150, 160, 170,
                     180, 190, 999),
    "VAK_H5Dread": (1, 2, 3, 10, 11, 20, 30, 31, 32, 40, 50, 60, 120, 999),
}

# What stands first in a text whose words depend on the call.
VARIANTS = [f"VAK INTERNAL ERROR ({number}) in {routine} - " for routine in STORAGE for number in STORAGE[routine]]
VARIANTS += [f"VAK ERROR - {section} not found\n" for section in ("header", "index", "data")]
VARIANTS += [f"{verdict} - version file: " for verdict in ("OK     ", "WARNING", "NOT OK ")]
VARIANTS += [f"\n VAK INFO {routine}: " for routine in
             ("VAK_LOOKUP", "VAK1_LOOKUP", "VAK_SEARCHBLOCKS", "VAK1_SEARCHBLOCKS")]

CALL = re.compile(r'std::(?:printf\(|fprintf\(\s*(\w+),)\s*((?:"(?:[^"\\]|\\.)*"\s*)*)')
ANY_PRINTING = re.compile(r"\b(?:v?f?printf|puts|fputs|putchar|perror|fwrite|cout|cerr|clog)\b")
CONVERSION = re.compile(r"%[-+ #0]*(?:\d+|\*)?(?:\.(?:\d+|\*))?(?:ll|l|z)?([dus])")
WHAT = {"d": rb" *-?\d+", "u": rb"\d+", "s": rb"[^\n]*"}


def literal(source):
    parts = re.findall(r'"((?:[^"\\]|\\.)*)"', source)
    return "".join(parts).encode().decode("unicode_escape")


def pattern(text):
    """What a text looks like when it is printed; a name in it does not go over the end of its line."""
    result, end = b"", 0
    for found in CONVERSION.finditer(text):
        result += re.escape(text[end:found.start()].encode()) + b"(?:" + WHAT[found[1]] + b")"
        end = found.end()
    return re.compile(result + re.escape(text[end:].encode()))


def texts_of_sources():
    """{stream: {text: pattern}}; printing in any other way than by one literal is refused."""
    texts = {"o": {}, "e": {}}
    for file in sorted(SOURCES.rglob("*.[ch]*")):
        source = re.sub(r"//[^\n]*", "", file.read_text()) if file.suffix in (".h", ".cpp") else ""
        calls = list(CALL.finditer(source))
        for call in calls:
            text = literal(call[2])
            if call[1] not in (None, "stderr") or not text:
                sys.exit(f"messages: {file}: no literal, or no standard stream: {call[0]}")
            texts["e" if call[1] else "o"][text] = pattern(text)
        if len(calls) != len(ANY_PRINTING.findall(source)):
            sys.exit(f"messages: {file}: prints in another way than by printf or fprintf")
    return texts


def parts_of(printed, texts):
    """The texts that a stream is made of from its first byte to its last; None if anything else is in it."""
    followed_by, places = {}, [0]
    while places:
        place = places.pop()
        if place in followed_by or place == len(printed):
            continue
        found = [(text, looks.match(printed, place)) for text, looks in texts.items()]
        followed_by[place] = [(text, match.end()) for text, match in found if match]
        places += [end for _, end in followed_by[place]]
    leads_to_end, parts = {len(printed)}, set()
    for place in sorted(followed_by, reverse=True):
        good = {text for text, end in followed_by[place] if end in leads_to_end}
        if good:
            leads_to_end.add(place)
            parts |= good
    return parts if 0 in leads_to_end else None


def records(folder):
    return {record for file in pathlib.Path(folder).iterdir() for record in file.read_bytes().split(b"\0") if record}


def main(folder):
    texts, seen, errors = texts_of_sources(), set(), []
    printed = records(folder)
    for record in sorted(printed):
        stream, content = chr(record[0]), record[1:]
        parts = parts_of(content, texts[stream])
        if parts is None:
            errors.append(f"not made of texts of the library: {content[:400]!r}")
        else:
            seen |= {(stream, text) for text in parts}
    everything = b"\0".join(printed)
    wanted = {(stream, text) for stream in texts for text in texts[stream]}
    unseen = [text for _, text in sorted(wanted - seen)]
    unseen += [text for text in VARIANTS if text.encode() not in everything]
    errors += [f"no test prints {text!r}" for text in unseen]
    for error in errors:
        print("messages:", error, file=sys.stderr)
    print(f"messages: {len(wanted)} texts and {len(VARIANTS)} forms of them, "
          f"{len(printed)} different streams looked at, {len(errors)} errors")
    return 1 if errors else 0


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]) if len(sys.argv) == 2 else __doc__)
