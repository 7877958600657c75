"""csharp_surface_test.py EXPECTED SOURCE - the C# interfaces are the published ones: identifiers,
values, members in the order of their slots, and how each parameter travels.
"""

import difflib
import pathlib
import re
import sys

TEXT = "MarshalAs(UnmanagedType.BStr)"
ARRAY = "MarshalAs(UnmanagedType.SafeArray, SafeArraySubType = VarEnum.VT_R8)"
TRAVELS = {
    "[in] double": "double", "[out,retval] double*": "out double",
    "[in,out] double*": "[In, Out] ref double", "[in] long": "int",
    "[out,retval] long*": "out int", "[in,out] long*": "[In, Out] ref int",
    "[in] VARIANT_BOOL": "short", "[out,retval] VARIANT_BOOL*": "out short",
    "BSTR": f"[{TEXT}] string", "[in] BSTR": f"[{TEXT}] string",
    "[in,optional] BSTR": f"[{TEXT}] string", "[out,retval] BSTR*": f"[{TEXT}] out string",
    "[in,out] BSTR*": f"[In, Out, {TEXT}] ref string",
    "[in] SAFEARRAY(double)*": f"[In, Out, {ARRAY}] ref double[]",
    "[in,out] SAFEARRAY(double)*": f"[In, Out, {ARRAY}] ref double[]",
}  # fmt: skip
IDENTIFIED = re.compile(
    r'\[ComImport, Guid\("(.*?)"\), (?:InterfaceType\(ComInterfaceType\.InterfaceIsIUnknown\)|'
    r"ClassInterface\(ClassInterfaceType\.None\))\]"
)
NAMED = re.compile(r"(?:public )?(?:static )?((?:enum|interface|class) (\w+))(?: : int)?")


def parameter(text):
    kind, name = re.fullmatch(r"((?:\[[\w,]+\] )?[\w()]+\**)(?: (\w+))?", text).groups()
    of_library = re.fullmatch(r"(\[in\]|\[out,retval\]) (\w+?Enum|I\w+)\**", kind)
    if of_library:  # enumerations and interfaces
        travels = {"[in]": "", "[out,retval]": "out "}[of_library[1]] + of_library[2]
    else:
        travels = TRAVELS[kind]
    return f"{travels} {name or 'value'}"


def published(expected):
    for line in expected.splitlines():
        if found := re.match(r"(enum|interface) (\w+)(?: (\{.*?\}))?", line):
            yield " ".join(filter(None, found.groups()))
        elif found := re.fullmatch(r"  (\w+ = -?\d+)", line):
            yield found[1]
        elif found := re.match(r"  slot \d+ id \w+ (\w+) (\w+)\((.*?)\)(?: \"|$)", line):
            kind, name, parameters = found.groups()
            name = name if kind == "method" else f"{kind}_{name}"
            yield f"int {name}({', '.join(map(parameter, filter(None, parameters.split(', '))))})"
        elif found := re.match(r"coclass (\w+) (\{.*\}) creatable", line):
            yield f"class {found[1]} {found[2]}"


def declared(source, interfaces):
    previous = identifier = ""
    wanted = False
    for line in map(str.strip, source.splitlines()):
        if found := IDENTIFIED.fullmatch(line):
            identifier = f" {{{found[1]}}}"
        elif found := NAMED.fullmatch(line):
            wanted = "interface" not in line or found[2] in interfaces
            if wanted and "static" not in line:
                yield found[1] + identifier
            identifier = ""
        elif wanted and (found := re.fullmatch(r"(\w+ = -?\d+),", line)):
            yield found[1]
        elif wanted and previous == "[PreserveSig]":
            yield line.removesuffix(";")
        previous = line


def main(expected, source):
    surface = list(published(pathlib.Path(expected).read_text(encoding="utf-8")))
    interfaces = {line.split()[1] for line in surface if line.startswith("interface ")}
    found = list(declared(pathlib.Path(source).read_text(encoding="utf-8"), interfaces))
    differences = list(difflib.unified_diff(surface, found, "published", "C#", lineterm="", n=1))
    print(*differences, sep="\n")
    return 1 if differences else 0


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
