"""Shows the values of zo_com in gdb:  (gdb) source tools/debug/zo_gdb.py

Strings print as text, containers as their elements. Reads memory only; calls nothing in the program. The types must
be described in the program's debug information: build with the debug preset, or with -femit-class-debug-always.
"""

import gdb
import gdb.printing


def at(address, type_):
    """The value of a type at an address."""
    return gdb.Value(int(address)).cast(type_.pointer()).dereference()


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


class SequencePrinter:
    def __init__(self, value):
        self.value = value
        self.element = value.type.strip_typedefs().template_argument(0)

    def to_string(self):
        return "%s of %d" % (self.kind, int(self.engine()["entries_"]))

    def children(self):
        for i, address in enumerate(self.addresses()):
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
        data = int(table.dereference()["data_"])
        for i in range(int(self.engine()["entries_"])):
            yield data + i * self.element.sizeof


class ListPrinter(SequencePrinter):
    kind = "list"

    def engine(self):
        return self.value["list_"]

    def addresses(self):
        node = self.engine()["first_"]
        while int(node) != 0:
            yield int(node) + int(self.engine()["mem_"].dereference()["elementOffset_"])
            node = node.dereference()["next"]


class DictPrinter:
    def __init__(self, value):
        self.value = value
        type_ = value.type.strip_typedefs()
        self.mapped, self.key = type_.template_argument(0), type_.template_argument(1)

    def children(self):
        for i, entry in enumerate(self.entries()):
            yield "[%d].key" % i, entry["key"]
            yield "[%d].value" % i, entry["value"]

    def type_of(self, template):
        return gdb.lookup_type("%s<%s, %s>" % (template, self.mapped, self.key))

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
        table = engine["table_"].dereference()
        for bucket in range(int(engine["buckets_"])):
            node = table["chains_"][bucket]
            while int(node) != 0:
                yield at(node, self.type_of("zo::HashNode"))
                node = node.dereference()["next"]


class TreePrinter(DictPrinter):
    def to_string(self):
        return "tree of %d" % int(self.value["tree_"]["count_"])

    def entries(self):
        path, node = [], self.value["tree_"]["root_"]
        while path or int(node) != 0:
            while int(node) != 0:
                path.append(node)
                node = node.dereference()["left"]
            node = path.pop()
            yield at(node.dereference()["element"], self.type_of("zo::TreeEntry"))
            node = node.dereference()["right"]


def register():
    printers = gdb.printing.RegexpCollectionPrettyPrinter("zo_com")
    printers.add_printer("ZoString", "^ZoString$", StringPrinter)
    printers.add_printer("ZoSubString", "^ZoSubString$", SubStringPrinter)
    printers.add_printer("ZoArray", "^ZoArray<.*>$", ArrayPrinter)
    printers.add_printer("ZoList", "^ZoList<.*>$", ListPrinter)
    printers.add_printer("ZoHashDict", "^ZoHashDict<.*>$", HashDictPrinter)
    printers.add_printer("ZoTree", "^ZoTree<.*>$", TreePrinter)
    gdb.printing.register_pretty_printer(None, printers, replace=True)


register()
