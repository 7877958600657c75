"""The rows of the console's member table, as C++ that zk4n/members/MemberTable.cpp includes."""

KINDS = {"get": "Kind::kGet", "put": "Kind::kPut", "method": "Kind::kMethod"}
DIRECTIONS = {"inout": "Direction::kInOut", "unstated": "Direction::kUnstated"}  # the others follow from the type


def parameter(p):
    fields = [f'"{p.name}"', f'"{p.unit}"', DIRECTIONS.get(p.direction, "Direction::kIn"), str(p.optional).lower()]
    defaults = ["", '""', "Direction::kIn", "false"]
    while fields[-1] == defaults[len(fields) - 1]:
        fields.pop()
    return "{" + ", ".join(fields) + "}"


def row(interface, member):
    names = ", ".join(parameter(p) for p in member.parameters)
    return f'    Row<&{interface.name}::{member.function}>({KINDS[member.kind]}, "{member.name}", {{{names}}}),\n'


def emit(interfaces):
    return "".join(f"Describe<{interface.name}>({{\n" + "".join(row(interface, member) for member in interface.members)
                   + "}),\n" for interface in interfaces)
