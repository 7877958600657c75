"""How a member of the surface is called in COM and Python, and by which path it is reached from the
root.
"""

import re

from emit_python import enum_name, snake

ROOT = "IZentrelK4N"
# What no property leads to: interfaces that a query of the root gives, under the names that the
# clients have for them.
QUERIED = {"Identity": "IIviDriverIdentity", "Operation": "IIviDriverOperation"}
CHANNEL = '"ChannelA"'  # stands for any in paths


def python_value(enumeration, value):
    prefix = next(
        p for p in ("ZentrelK4N" + enum_name(enumeration), "E_ZENTRELK4N_") if value.startswith(p)
    )
    return snake(value[len(prefix) :]).upper()


def paths(interfaces):
    """From each interface's name to its path from the root, as a list of (member, arguments)."""
    by_name = {interface.name: interface for interface in interfaces}
    found = {ROOT: []}
    found.update({name: [(path, "")] for path, name in QUERIED.items()})
    waiting = [ROOT]
    while waiting:
        name = waiting.pop(0)
        for member in by_name[name].members:
            target = member.parameters[-1].type if member.parameters else ""
            if member.kind == "get" and target in by_name and target not in found:
                arguments = f"({CHANNEL})" if len(member.parameters) > 1 else ""
                found[target] = found[name] + [(member.name, arguments)]
                waiting.append(target)
    return found


def console_path(path):
    return ".".join(name + arguments for name, arguments in path)


def python_path(path):
    return ".".join(["gen"] + [snake(name) + arguments for name, arguments in path])


def group(interface):
    """What the interface is called where its members are spoken of: empty for the root's."""
    return re.sub(r"^(IZentrelK4N|IIviDriver)", "", interface.name)


def com_call(member):
    attributes = {"get": "[propget] ", "put": "[propput] ", "method": ""}[member.kind]
    directions = {"in": "[in] ", "inout": "[in, out] ", "retval": "[out, retval] ", "unstated": ""}
    parameters = []
    for p in member.parameters:
        direction = "[in, optional] " if p.optional else directions[p.direction]
        parameters.append(f"{direction}{p.type}{'*' * p.stars}{' ' if p.name else ''}{p.name}")
    return f"{attributes}HRESULT {member.name}({', '.join(parameters)});"


def python_call(member, path):
    place = f"{python_path(path)}.{snake(member.name)}"
    given = [snake(p.name) + ("=None" if p.optional else "") for p in member.given]
    results = [snake(p.name) for p in member.results]
    if member.kind == "put":
        return f"{place} = value"
    if member.kind == "get" and len(member.parameters) == 1:
        target = snake(member.name) if member.parameters[0].type.startswith("I") else "value"
        return f"{target} = {place}"
    return f"{', '.join(results)}{' = ' if results else ''}{place}({', '.join(given)})"
