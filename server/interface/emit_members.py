"""The rows of the console's member table, as C++ that zk4n/members/MemberTable.cpp includes."""

WIDTH = 100
KINDS = {"get": "Kind::kGet", "put": "Kind::kPut", "method": "Kind::kMethod"}
# The others follow from the type.
DIRECTIONS = {"inout": "Direction::kInOut", "unstated": "Direction::kUnstated"}


def parameter(p):
    direction = DIRECTIONS.get(p.direction, "Direction::kIn")
    fields = [f'"{p.name}"', f'"{p.unit}"', direction, str(p.optional).lower()]
    defaults = ["", '""', "Direction::kIn", "false"]
    while fields[-1] == defaults[len(fields) - 1]:
        fields.pop()
    return "{" + ", ".join(fields) + "}"


def row(interface, member):
    parameters = [parameter(p) for p in member.parameters]
    head = f"    Row<&{interface.name}::{member.function}>("
    names = f'{KINDS[member.kind]}, "{member.name}", {{'
    row = head + names + ", ".join(parameters) + "}),\n"
    if len(row) <= WIDTH + 1:
        return row
    row = f"{head}\n        {names}"
    if len(names + ", ".join(parameters)) <= WIDTH - 11:
        return row + ", ".join(parameters) + "}),\n"
    return row + "\n            " + ",\n            ".join(parameters) + "}),\n"


def describe(interface):
    rows = "".join(row(interface, member) for member in interface.members)
    return f"Describe<{interface.name}>({{\n{rows}}}),\n"


def emit(interfaces):
    return "".join(map(describe, interfaces))
