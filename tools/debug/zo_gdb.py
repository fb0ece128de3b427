"""Shows the values of zo_com in gdb:  (gdb) source tools/debug/zo_gdb.py

In an installed package it is share/zo_com/debug/zo_gdb.py. Strings and file names print as text, containers as their
elements, variants as code, value, flags and elements, geometry, colours and GUIDs as their numbers; codes by name.
Reads memory only; calls nothing in the program.

The types must be described in the program's own debug information: the library's DLL has none in a package. The debug
preset, and -g -femit-class-debug-always, describe what the program uses; a value says so that is not described. Of a
variant whose containers the program does not use itself, only their kind shows then. Of what is damaged no more elements
show than it counts.
"""

import itertools
import uuid

import gdb
import gdb.printing


def at(address, type_):
    """The value of a type at an address."""
    return gdb.Value(int(address)).cast(type_.pointer()).dereference()


def target(pointer):
    """What a pointer points to, by its own type: gdb looks for the object's, and warns where the DLL has no symbols."""
    type_ = pointer.type.strip_typedefs().target().strip_typedefs()
    return gdb.Value(gdb.selected_inferior().read_memory(int(pointer), type_.sizeof).tobytes(), type_)


def type_or_none(name):
    """None for what the program's debug information does not describe."""
    try:
        return gdb.lookup_type(name)
    except gdb.error:
        return None


def pair_at(address, key, mapped):
    """Key and value that lie one behind the other: their struct is often described in the library's DLL only."""
    address = int(address)
    first = -(-address // key.alignof) * key.alignof
    return at(first, key), at(-(-(first + key.sizeof) // mapped.alignof) * mapped.alignof, mapped)


class StringPrinter:
    """ZoString: the length stands in front of the characters."""

    def __init__(self, value):
        self.data = value["data_"]

    def to_string(self):
        length = at(int(self.data) - 4, gdb.lookup_type("unsigned int"))
        return self.data.lazy_string("UTF-16LE", int(length))

    def display_hint(self):
        return "string"


class SubStringPrinter:
    """ZoSubString: start and length in the viewed string."""

    def __init__(self, value):
        self.value = value

    def to_string(self):
        start, length = int(self.value["start_"]), int(self.value["length_"])
        if start == 0xFFFFFFFF:
            return "null substring"
        return (self.value["string_"]["data_"] + start).lazy_string("UTF-16LE", length)

    def display_hint(self):
        return "string"


def text(data, length):
    """So many UTF-16 units as the debugger shows a text."""
    bytes_ = gdb.selected_inferior().read_memory(int(data), 2 * length).tobytes() if length else b""
    return '"%s"' % bytes_.decode("utf-16-le", "replace")


def string_at(address):
    """The text of a ZoString at an address."""
    data = int(at(address, gdb.lookup_type("unsigned long long")))
    return text(data, int(at(data - 4, gdb.lookup_type("unsigned int"))))


def number(value):
    return "%.15g" % (float(value) + 0.0)  # no negative zero


def triple(value):
    return "(%s)" % ", ".join(number(value[part]) for part in "xyz")


class FileNamePrinter:
    """ZoFileName: what it stands on begins with the whole name (src/names/file_name_imp.h)."""

    def __init__(self, value):
        self.value = value

    def to_string(self):
        return "file " + string_at(self.value["imp_"])


class ColorPrinter:
    """ZoColor: a palette type, or red, green and blue."""

    def __init__(self, value):
        self.word = int(value["value_"])
        self.type = gdb.lookup_type("ZoColor::Type")

    def to_string(self):
        kind = self.word >> 24
        if kind == 102:
            return "rgb(%d, %d, %d)" % (self.word & 255, self.word >> 8 & 255, self.word >> 16 & 255)
        return name_of(self.type, kind, "color %d" % kind)


class TriplePrinter:
    """Points and vectors."""

    def __init__(self, value):
        self.value = value

    def to_string(self):
        return triple(self.value)


class MatrixPrinter:
    def __init__(self, value):
        self.cells = value["m_"]

    def to_string(self):
        rows = (", ".join(number(self.cells[row * 4 + column]) for column in range(4)) for row in range(4))
        return "(%s)" % "; ".join(rows)


class PlanePrinter:
    def __init__(self, value):
        self.value = value

    def to_string(self):
        return "plane through %s, normal %s" % (triple(self.value["ref_"]), triple(self.value["normal_"]))


class CoSystemPrinter:
    def __init__(self, value):
        self.value = value

    def to_string(self):
        return "system at %s, x %s, y %s, z %s" % tuple(triple(self.value[p]) for p in ("origin_", "x_", "y_", "z_"))


class TolPrinter:
    def __init__(self, value):
        self.value = value

    def to_string(self):
        return "points %s, vectors %s" % (number(self.value["pnt_"]), number(self.value["vec_"]))


def guid_at(address):
    raw = gdb.selected_inferior().read_memory(int(address), 16).tobytes()
    return "{%s}" % str(uuid.UUID(bytes_le=raw)).upper()


class GuidPrinter:
    def __init__(self, value):
        self.value = value

    def to_string(self):
        return guid_at(self.value.address)


def name_of(enum, wanted, otherwise):
    """The last word of an enumerator's name."""
    found = (field.name for field in enum.fields() if field.enumval == wanted)
    return next(found, otherwise).split("::")[-1]


class VariantPrinter:
    """ZoVariant: the name of its code, its value or number of elements, and its flags as letters."""

    LIST = 0x2702  # the code of lists
    INT, BIG_INT, REAL, STRING, POINTER, POINT, VECTOR, DICT, SEQUENCE, GUID = range(1, 11)

    def __init__(self, value):
        self.code, self.word = int(value["code_"]), int(value["word_"])
        self.kind, self.is_reference = self.word & 31, self.word & 32 != 0
        self.payload = value["payload_"]

    def to_string(self):
        name = name_of(gdb.lookup_type("ZoTypeCode"), self.code, "code 0x%X" % self.code)
        flags = "".join(chr(ord("A") + bit) for bit in range(26) if self.word >> 6 & 1 << bit)
        return " ".join(part for part in (name, self.shown(), "flags " + flags if flags else "") if part)

    def shown(self):
        if self.kind == 0:
            return "empty"
        if self.is_reference:
            return "-> " + self.referred()
        if self.kind == self.STRING:
            return string_at(self.payload.address)
        if self.kind == self.GUID:
            return guid_at(self.payload["guid"])
        if self.kind in (self.POINT, self.VECTOR):
            return triple(self.payload["point" if self.kind == self.POINT else "vector"].dereference())
        if self.kind in (self.DICT, self.SEQUENCE):
            return self.container().to_string()
        if self.kind == self.POINTER:
            return "0x%x" % int(self.payload["pointer"])
        if self.kind == self.REAL:
            return number(self.payload["real"])
        return str(int(self.payload["bigInt"])) if self.kind in (self.INT, self.BIG_INT) else self.damaged()

    def damaged(self):
        return "damaged: no variant has kind %d" % (self.word & 63)

    def referred(self):
        if self.kind == self.STRING:
            return '"%s"' % self.payload["textRef"].dereference().string("UTF-16LE")
        variable = {self.INT: "integerRef", self.BIG_INT: "bigIntRef", self.REAL: "realRef"}.get(self.kind)
        return number(self.payload[variable].dereference()) if variable else self.damaged()

    def container(self):
        """The printer of what holds the elements: a dictionary, an array, or a list as the object or its code says."""
        pointer = self.payload["dict" if self.kind == self.DICT else "sequence"]
        if self.kind == self.DICT:
            return self.printer(HashDictPrinter, pointer, "ZoHashDict<ZoVariant, ZoString, ZoCIHashValue<ZoString> >")
        type_ = str(pointer.dereference().dynamic_type)  # neither where its DLL has no symbols
        if "ZoList" in type_ or ("ZoArray" not in type_ and self.code == self.LIST):
            return self.printer(ListPrinter, pointer, "ZoList<ZoVariant>")
        return self.printer(ArrayPrinter, pointer, "ZoArray<ZoVariant, ZoArrayTable<ZoVariant> >")

    @staticmethod
    def printer(kind, pointer, type_):
        described = type_or_none(type_)
        return kind(at(pointer, described)) if described else UndescribedPrinter(kind.kind)

    def children(self):
        if self.is_reference:
            return
        if self.kind == self.SEQUENCE:
            yield from self.container().children()
        if self.kind == self.DICT:
            for key, value in self.container().entries():
                yield string_at(key.address), value


class UndescribedPrinter:
    """A container of a type that nothing describes."""

    def __init__(self, kind):
        self.kind = kind

    def to_string(self):
        return self.kind

    def children(self):
        return iter(())

    entries = children


def counted(found, count):
    """No more than so many: what is damaged may lead in a circle."""
    return itertools.islice(found, int(count))


class SequencePrinter:
    def __init__(self, value):
        self.value = value
        self.element = value.type.strip_typedefs().template_argument(0)

    def to_string(self):
        return "%s of %d" % (self.kind, int(self.engine()["entries_"]))

    def children(self):
        for i, address in enumerate(counted(self.addresses(), self.engine()["entries_"])):
            yield "[%d]" % i, at(address, self.element)

    def display_hint(self):
        return "array"


class ArrayPrinter(SequencePrinter):
    kind = "array"

    def engine(self):
        return self.value["array_"]

    def addresses(self):
        table = self.engine()["table_"]
        if int(table) == 0:
            return
        data = int(target(table)["data_"])
        for i in range(int(self.engine()["entries_"])):
            yield data + i * self.element.sizeof


class ListPrinter(SequencePrinter):
    kind = "list"

    def engine(self):
        return self.value["list_"]

    def addresses(self):
        node = self.engine()["first_"]
        while int(node) != 0:
            yield int(node) + int(target(self.engine()["mem_"])["elementOffset_"])
            node = node.dereference()["next"]


class DictPrinter:
    kind = "dictionary"

    def __init__(self, value):
        self.value = value
        type_ = value.type.strip_typedefs()
        self.mapped, self.key = type_.template_argument(0), type_.template_argument(1)

    def children(self):
        for i, entry in enumerate(self.entries()):
            yield "[%d].key" % i, entry[0]
            yield "[%d].value" % i, entry[1]

    def display_hint(self):
        return "map"


class HashDictPrinter(DictPrinter):
    def to_string(self):
        engine = self.value["hash_"]
        return "dictionary of %d in %d buckets" % (int(engine["entries_"]), int(engine["buckets_"]))

    def entries(self):
        engine = self.value["hash_"]
        if int(engine["table_"]) == 0:
            return
        for node in counted(self.nodes(target(engine["table_"])), engine["entries_"]):
            yield pair_at(int(node) + node.dereference().type.sizeof, self.key, self.mapped)

    def nodes(self, table):
        for bucket in range(int(self.value["hash_"]["buckets_"])):
            node = table["chains_"][bucket]
            while int(node) != 0:
                yield node
                node = node.dereference()["next"]


class TreePrinter(DictPrinter):
    def to_string(self):
        return "tree of %d" % int(self.value["tree_"]["count_"])

    DEPTH = 64  # no balanced tree is deeper

    def entries(self):
        for node in counted(self.nodes(), self.value["tree_"]["count_"]):
            yield pair_at(node.dereference()["element"], self.key, self.mapped)

    def nodes(self):
        path, node = [], self.value["tree_"]["root_"]
        while path or int(node) != 0:
            while int(node) != 0 and len(path) < self.DEPTH:
                path.append(node)
                node = node.dereference()["left"]
            node = path.pop()
            yield node
            node = node.dereference()["right"]


NOT_DESCRIBED = "not described: compile the program with -g -femit-class-debug-always"


def checked(printer):
    """The printer, which says in one line where the program's debug information lacks a type. (What cannot be read gdb
    tells in a line of its own.)"""

    class Checked(printer):
        def to_string(self):
            try:
                return super().to_string()
            except gdb.MemoryError:
                raise
            except gdb.error:
                return NOT_DESCRIBED

    def children(self):
        try:
            yield from printer.children(self)
        except gdb.MemoryError:
            raise
        except gdb.error:
            yield "", NOT_DESCRIBED

    if hasattr(printer, "children"):
        Checked.children = children

    def make(value):
        try:
            return Checked(value)
        except gdb.MemoryError:
            raise
        except gdb.error:
            return UndescribedPrinter(NOT_DESCRIBED)

    return make


def register():
    printers = gdb.printing.RegexpCollectionPrettyPrinter("zo_com")
    for name, printer in (("ZoString", StringPrinter), ("ZoSubString", SubStringPrinter), ("ZoFileName", FileNamePrinter),
                          ("ZoColor", ColorPrinter), ("ZoPoint", TriplePrinter), ("ZoVector", TriplePrinter),
                          ("ZoMatrix", MatrixPrinter), ("ZoPlane", PlanePrinter), ("ZoCoSystem", CoSystemPrinter),
                          ("ZoTol", TolPrinter), ("_GUID", GuidPrinter), ("ZoVariant", VariantPrinter),
                          ("ZoArray<.*>", ArrayPrinter), ("ZoList<.*>", ListPrinter),
                          ("ZoHashDict<.*>", HashDictPrinter), ("ZoTree<.*>", TreePrinter)):
        printers.add_printer(name, "^%s$" % name, checked(printer))
    gdb.printing.register_pretty_printer(None, printers, replace=True)


register()
