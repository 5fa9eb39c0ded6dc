"""How gdb shows the library's types: strings as their text, pointers with their count, records with their
fields, identifiers as text.

gdb finds this file by itself where the library's development files are installed in the system's own places;
elsewhere "source .../kesta-gdb.py" does it. "print /r" shows the members instead.

Values may be anything, half made or long dead: what cannot be read is said so, and nothing is ever raised.
"""

import gdb
import gdb.printing


def unreadable(problem):
    return "<unreadable: %s>" % problem


def guarded(show):
    """The text that show returns, or why there is none."""

    def guard(self):
        try:
            return show(self)
        except (gdb.error, RuntimeError, ValueError, OverflowError) as problem:
            return unreadable(problem)

    return guard


class String:
    """LightweightString: a pointer to a body, after which the characters stand."""

    def __init__(self, value):
        self.value = value
        self.body = None
        self.damage = None
        try:
            self.character = value.type.strip_typedefs().template_argument(0)
            self.body = self.find_body()
        except (gdb.error, RuntimeError) as problem:
            self.damage = unreadable(problem)

    def find_body(self):
        body = self.value["m_body"]["m_object"]
        if int(body) == 0:
            return None
        length, capacity = int(body["length"]), int(body["capacity"])
        if length > capacity > 0:  # 0 in a block with others
            self.damage = "<damaged: length %d, capacity %d>" % (length, capacity)
        return body

    def to_string(self):
        if self.damage:
            return self.damage
        if self.body is None:
            return ""
        characters = (self.body + 1).cast(self.character.pointer())
        return characters.lazy_string(length=int(self.body["length"]))

    def display_hint(self):
        return None if self.damage else "string"


class Pointer:
    """Zr::Ptr: where the count is, and where the object is."""

    def __init__(self, value):
        self.value = value

    @guarded
    def to_string(self):
        name = "Zr::Ptr<%s>" % self.value.type.strip_typedefs().template_argument(0)
        if int(self.value["m_object"]) == 0:
            return name + " (empty)"
        return "%s (%s)" % (name, self.count())

    def count(self):
        try:
            counter = gdb.lookup_type("int").pointer()
            return "count %d" % int(self.value["m_count"].cast(counter).dereference())
        except gdb.error as problem:
            return unreadable(problem)

    def children(self):
        try:
            if int(self.value["m_object"]) != 0:
                yield "get()", self.value["m_object"]
        except gdb.error:
            return


class Record:
    """dbrecord: its fields in order.

    Compilers describe a class with virtual functions only beside them, in the library, which is mostly installed
    without its description. Then the members are looked for where this version of the library has them.
    """

    FIELDS, CHANGED, TAG = 32, 56, 57  # in bytes from the record's beginning
    MOST_FIELDS = 1 << 20  # more are no record

    def __init__(self, value):
        self.value = value

    def is_described(self):
        return any(field.name == "m_fields" for field in self.value.type.strip_typedefs().fields())

    def at(self, offset, type_name):
        address = int(self.value.address) + offset
        return gdb.Value(address).cast(gdb.lookup_type(type_name).pointer())

    def mark(self, member, offset):
        if self.is_described():
            return int(self.value[member])
        return int(self.at(offset, "unsigned char").dereference())

    def fields(self):
        """The first field and how many there are."""
        if self.is_described():
            first, count = self.value["m_fields"]["m_fields"], self.value["m_fields"]["m_size"]
        else:
            text = gdb.lookup_type("LightweightString<char>").pointer()
            first = self.at(self.FIELDS, "unsigned long").dereference().cast(text)
            count = self.at(self.FIELDS + 8, "unsigned int").dereference()
        if int(count) > self.MOST_FIELDS:
            raise ValueError("no list of fields")
        return first, int(count)

    @guarded
    def to_string(self):
        text = "dbrecord of %d fields" % self.fields()[1]
        tag = self.mark("m_tag", self.TAG)
        if tag:
            text += ", tag %d" % tag
        return text + (", changed" if self.mark("m_changed", self.CHANGED) else "")

    def children(self):
        try:
            first, count = self.fields()
            for i in range(count):
                yield "[%d]" % i, (first + i).dereference()
        except (gdb.error, RuntimeError, ValueError):
            return


class Identifier:
    """Cookie: the text that Cookie::asString(false) returns."""

    def __init__(self, value):
        self.value = value

    @guarded
    def to_string(self):
        kind = int(self.value["m_type"])
        if kind == 0:
            return '""'
        octets = self.value["m_uuid"]["bytes"]
        octets = octets[octets.type.fields()[0]]  # the array in the std::array
        digits = "".join("%02x" % int(octets[i]) for i in range(16))
        return '"%s%s%02x"' % (chr(kind & 0xFF), digits, int(self.value["m_qualifier"]))


def printers():
    collection = gdb.printing.RegexpCollectionPrettyPrinter("kesta")
    collection.add_printer("LightweightString", "^LightweightString<.*>$", String)
    collection.add_printer("Zr::Ptr", "^Zr::Ptr<.*>$", Pointer)
    collection.add_printer("dbrecord", "^dbrecord$", Record)
    collection.add_printer("Cookie", "^Cookie$", Identifier)
    return collection


gdb.printing.register_pretty_printer(gdb.current_objfile(), printers(), replace=True)
