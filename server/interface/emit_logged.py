"""The classes that the call log puts before the interfaces: driver/LoggedInterfaces.cpp includes
them.
"""

TYPES = {"long": "LONG", "SAFEARRAY(double)": "SAFEARRAY*"}  # the others are called alike


def name_of(parameter):
    return parameter.name or "value"  # a put has no name for it


def declaration(p):
    return f"{TYPES.get(p.type, p.type)}{'*' * p.stars} {name_of(p)}"


def argument(member, p):
    """How it is written: the value of a property without a name, as it is the only one."""
    way = "Out" if p.direction in ("inout", "retval") else "In"
    text = "" if member.kind != "method" and len(member.parameters) == 1 else name_of(p)
    return f'{way}{{"{text}", {name_of(p)}}}'


def function(interface, m):
    passed = "".join(f", {argument(m, p)}" for p in m.parameters)
    return (
        f"  STDMETHODIMP {m.function}({', '.join(map(declaration, m.parameters))}) override {{\n"
        f'    return Call<&{interface.name}::{m.function}>("{m.function}"{passed});\n  }}\n'
    )


def interface_name(i):
    return f'template <>\nconstexpr std::string_view kNameOf<{i.name}> = "{i.name}";\n'


def interface_class(i):
    return (
        f"template <>\nclass Logger<{i.name}> final : public Forwarder<{i.name}> {{\n"
        " public:\n  using Forwarder::Forwarder;\n"
        + "".join(function(i, m) for m in i.members)
        + "};\n"
    )


def enumeration(e):
    cases = "".join(f'    case {name}: return "{name}";\n' for name, _ in e.values)
    return (
        f"template <>\nstd::string_view ValueName({e.name} value) {{\n"
        f"  switch (value) {{\n{cases}  }}\n  return {{}};\n}}\n"
    )


def emit(library, interfaces):
    used = {p.type for i in interfaces for m in i.members for p in m.parameters}
    rows = "".join(f"    {{__uuidof({i.name}), &LoggerOf<{i.name}>}},\n" for i in interfaces)
    return (
        "".join(enumeration(e) for e in library.enumerations if e.name in used)
        + "".join(map(interface_name, interfaces))
        + "".join(map(interface_class, interfaces))
        + f"constexpr LoggedInterface kLoggedInterfaces[] = {{\n{rows}}};\n"
    )
