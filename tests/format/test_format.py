"""Reads every kind of block by the tables of the format's document, through another HDF5, and compares with what
the library itself reads."""
import collections
import json
import os
import pathlib
import re

import h5py
import numpy
import pytest

SAMPLES = pathlib.Path(os.environ["VAK_SAMPLES"])
DOCUMENT = pathlib.Path(os.environ["VAK_FORMAT"]).read_text()


Section = collections.namedtuple("Section", "keys paths table")


def sections():
    """What the document says of each kind, by type word."""
    found = {}
    for section in re.split(r"^### ", DOCUMENT, flags=re.M)[1:]:
        word = re.search(r"Type word: `(\w+)`", section)
        if not word:
            continue
        keys = [int(key) for key in re.findall(r"\d+", section.split("\n")[0])]
        rows = [[cell.strip() for cell in line.strip("| \n").split("|")]
                for line in section.split("\n") if re.match(r"\| [AD] ", line)]
        paths = re.findall(r"`([^`]*/[^`]*)`", re.search(r"^Path: .*$", section, flags=re.M)[0])
        found[word[1]] = Section(keys, paths, [row + [""] * (6 - len(row)) for row in rows])
    return found


SECTIONS = sections()
CASES = sorted(path.stem for path in SAMPLES.glob("*.json"))


class Block:
    """A stored block, as its table tells where its fields are."""

    def __init__(self, group, table, legacy):
        self.group, self.table, self.legacy = group, table, legacy
        self.header = group["header"] if legacy else group
        self.known = {"sum": lambda counts: int(numpy.sum(counts)), "c": []}
        self.seen = set()

    def fields(self):
        """Every field that the table says is there, as (name, type, extents, object)."""
        for field, type_, extents, subgroup, when, _ in self.table:
            kind, name = field.split()
            if (subgroup == "-") if self.legacy else (when == "legacy"):
                continue
            place = self.group[subgroup] if self.legacy else self.group
            if when == "optional" and name not in place.attrs:
                continue
            if when not in ("", "legacy", "optional") and not self.evaluate(when):
                continue
            yield from self.attribute(name, type_, place) if kind == "A" else self.dataset(name, type_, extents, place)

    def attribute(self, name, type_, place):
        stored = place.attrs.get_id(name)
        self.seen.add((place.name, "A", name))
        assert stored.shape == ()
        value = read(stored)
        self.known[name] = int(value[0]) if type_.startswith("int") else value
        yield name, type_, stored.dtype, value

    def dataset(self, name, type_, extents, place):
        grows = "states" in extents
        if grows and "states" not in self.known:
            self.known["states"] = place[name].shape[0]
        extents = [max(extent, 0) for extent in self.evaluate(extents)]
        if 0 in extents:
            assert name not in place
            return
        stored = place[name]
        self.seen.add((place.name, "D", name))
        assert list(stored.shape) == extents
        assert stored.maxshape == tuple([None] + extents[1:] if grows else extents)
        value = read(stored.id)
        self.known[name] = value
        yield name, type_, stored.dtype, value

    def evaluate(self, expression):
        return eval(expression, {"__builtins__": {}}, self.known)  # our own document

    def length(self, type_):
        return self.evaluate(type_[5:-1])


def read(stored):
    """The values in the order of their indices; texts as bytes with all their characters."""
    type_ = stored.get_type()
    is_text = type_.get_class() == h5py.h5t.STRING
    values = numpy.empty(stored.shape, dtype=f"S{type_.get_size()}" if is_text else stored.dtype)
    if isinstance(stored, h5py.h5a.AttrID):
        stored.read(values, mtype=type_)
    else:
        stored.read(h5py.h5s.ALL, h5py.h5s.ALL, values, mtype=type_)
    return values.tobytes() if is_text else values.reshape(-1)


def stored_things(group):
    """Every attribute and dataset below the group."""
    things = {(group.name, "A", name) for name in group.attrs}
    for name, item in group.items():
        if isinstance(item, h5py.Group):
            things |= stored_things(item)
        else:
            things.add((group.name, "D", name))
    return things


def is_of_type(dtype, type_, block):
    if type_.startswith("char"):
        return dtype.kind == "S" and dtype.itemsize == block.length(type_)
    return dtype.str in {"real": ("<f4", "<f8"), "int32": ("<i4",), "int64": ("<i8",)}[type_]


@pytest.fixture(params=CASES)
def case(request):
    expected = json.loads((SAMPLES / f"{request.param}.json").read_text())
    with h5py.File(SAMPLES / f"{request.param}.h5", "r") as file:
        section = SECTIONS[expected["type"]]
        block = Block(file[expected["path"]], section.table, expected["legacy"])
        if expected["legacy"] and expected["type"] == "attributes":
            block.known["length"] = 256
        key = int(block.header.attrs["block"])
        assert key in section.keys
        block.known["c"] = [2] if key % 10 == 1 else []
        yield block, expected


def test_block_is_stamped_with_its_type_word(case):
    block, expected = case
    word = block.header.attrs.get_id("blocktype")
    assert word.get_type().get_size() == 256
    assert read(word).rstrip(b"\0").decode() == expected["type"]


def test_block_stands_where_the_document_says(case):
    _, expected = case
    paths = SECTIONS[expected["type"]].paths
    if not paths:
        assert expected["type"] == "properties"  # the writer's choice
        return
    path = paths[-1] if expected["legacy"] else paths[0]
    level = {name: re.escape(value.strip()) for name, value in expected["fields"].items() if isinstance(value, str)}
    path = re.sub(r"<(\w+)>", lambda name: level.get(name[1], "[^/]+"), path)
    path = re.sub(r"^prefix", r"(constant|multistate|singlestate(/state\\d{12})+)", path)
    assert re.fullmatch(path + r"(\d+)?(_set\d+)?" + ("" if expected["legacy"] else "/vakblock"), expected["path"])


def test_file_has_the_header_of_its_family(case):
    block, expected = case
    header = block.group.file["vakheader/vakheader"]
    version = b"1 2 0" if expected["legacy"] else b"2 2 14"
    assert header.shape == () and header.dtype.str == "|S64"
    assert read(header.id) == (b"\x89VAK\r\n\x1a\n" + version).ljust(64)


def test_fields_are_as_the_table_says_and_have_the_values_that_the_library_reads(case):
    block, expected = case
    found = {}
    for name, type_, dtype, value in block.fields():
        assert is_of_type(dtype, type_, block), name
        found[name] = value
    assert set(found) == {name for name, value in expected["fields"].items() if not is_empty(value)}
    for name, value in found.items():
        assert same(value, expected["fields"][name]), name


def test_table_names_everything_that_is_stored(case):
    block, _ = case
    list(block.fields())
    stamp = {(block.header.name, "A", "block"), (block.header.name, "A", "blocktype")}
    assert stored_things(block.group) == block.seen | stamp


def is_empty(value):
    return isinstance(value, (list, str)) and len(value) == 0


def same(stored, value):
    if isinstance(value, str):
        return stored == value.encode("latin-1")
    as_read = "f4" if stored.dtype.kind == "f" else stored.dtype  # the library gives floats
    return numpy.array_equal(stored.astype(as_read), numpy.ravel(value).astype(as_read))


def test_every_kind_of_the_document_has_a_file():
    written = {json.loads(path.read_text())["type"] for path in SAMPLES.glob("*.json")}
    assert written == set(SECTIONS)
