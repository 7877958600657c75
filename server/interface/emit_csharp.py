"""The driver's surface for C#: one source file, so that a program needs no type library import."""

from xml.sax.saxutils import escape

HEAD = """// The driver's interfaces for C#: compile them into your program.
//
// Every member gives its HRESULT (PreserveSig), since some successes say more than success: 1 to 6
// are notices of the instrument, 10057 says that there is no session, and Initialize warns by
// 0x00047065 and 0x00047066. Negative ones are failures. Results.Name tells what a result is
// called, Results.Description what the driver says about it.
//
// Truth values are the numbers that travel: 0 is false, and any other one true. Some members read 1
// for true, others -1, so test for "!= 0". To set one, write -1 or 0.
//
// Pass null where a member gives an array or a text back (FetchData, ErrorQuery): the driver
// replaces what stands there, and never frees it.

using System;
using System.Runtime.InteropServices;

namespace ZentrelK4NLib
{
"""

ARRAY = "MarshalAs(UnmanagedType.SafeArray, SafeArraySubType = VarEnum.VT_R8)"
TYPES = {  # the type, and what tells how it travels
    "double": ("double", ""),
    "long": ("int", ""),
    "VARIANT_BOOL": ("short", ""),
    "BSTR": ("string", "MarshalAs(UnmanagedType.BStr)"),
    "SAFEARRAY(double)": ("double[]", ARRAY),
}
IS_INTERFACE = "InterfaceType(ComInterfaceType.InterfaceIsIUnknown)"


def document(indent, tag, text):
    element = tag.partition(" ")[0]
    return f"{indent}/// <{tag}>{escape(text)}</{element}>\n" if text else ""


def name_of(parameter):
    return parameter.name or "value"  # a put has no name for it


def way_of(parameter):
    """How it is passed. What a caller's array holds may be corrected."""
    if parameter.direction == "inout" or parameter.type.startswith("SAFEARRAY"):
        return "ref ", "In, Out"
    return ("out ", "") if parameter.direction == "retval" else ("", "")


def seen(parameter):
    """What a caller sees of it."""
    kind = TYPES.get(parameter.type, (parameter.type,))[0]
    return f"{way_of(parameter)[0]}{kind} {name_of(parameter)}"


def declaration(parameter):
    words = (way_of(parameter)[1], TYPES.get(parameter.type, ("", ""))[1])
    attributes = ", ".join(filter(None, words))
    return (f"[{attributes}] " if attributes else "") + seen(parameter)


def signature(member):
    """For a person: without what tells how the parameters travel."""
    return f"int {member.function}({', '.join(map(seen, member.parameters))});"


def about(parameter):
    if parameter.type == "VARIANT_BOOL":
        return "0: false; any other number: true"
    unit = f"In {parameter.unit}." if parameter.unit else ""
    null = "May be null." if parameter.optional else ""
    return " ".join(filter(None, (unit, null)))


def member(m):
    text = document("        ", "summary", m.help)
    for p in m.parameters:
        text += document("        ", f'param name="{name_of(p)}"', about(p))
    return (
        f"{text}        [PreserveSig]\n"
        f"        int {m.function}({', '.join(map(declaration, m.parameters))});\n"
    )


def interface(i):
    return (
        document("    ", "summary", i.help)
        + f'    [ComImport, Guid("{i.iid}"), {IS_INTERFACE}]\n'
        + f"    public interface {i.name}\n    {{\n"
        + "\n".join(map(member, i.members))
        + "    }\n"
    )


def enumeration(e):
    rows = "".join(f"        {name} = {number},\n" for name, number in e.values)
    return (
        document("    ", "summary", e.help)
        + f"    public enum {e.name} : int\n    {{\n{rows}    }}\n"
    )


def coclass(c):
    made = f"({c.interface})new {c.name}() gives an object of its own"
    return (
        document("    ", "summary", f"The driver: {made}, where the driver is registered.")
        + f'    [ComImport, Guid("{c.clsid}"), ClassInterface(ClassInterfaceType.None)]\n'
        f"    public class {c.name}\n    {{\n    }}\n"
    )


def results(names):
    cases = "".join(f'                case {code}: return "{name}";\n' for code, name in names)
    return f"""    [ComImport, Guid("1CF2B120-547D-101B-8E65-08002B2BD119"), {IS_INTERFACE}]
    interface IErrorInfo
    {{
        [PreserveSig]
        int GetGUID(out Guid guid);

        [PreserveSig]
        int GetSource([MarshalAs(UnmanagedType.BStr)] out string source);

        [PreserveSig]
        int GetDescription([MarshalAs(UnmanagedType.BStr)] out string description);
    }}

    /// <summary>What results mean.</summary>
    public static class Results
    {{
        /// <summary>The name of an HRESULT, or of a code that ErrorQuery gives.</summary>
        public static string Name(int result)
        {{
            uint bits = unchecked((uint)result);
            switch (bits)
            {{
{cases}            }}
            if (bits >= 1 && bits <= 6) return "instrument notice";
            if (bits >= 0xFFFF8000) return "instrument error code";
            return bits >> 16 == 0xBFFF ? "VISA error" : "unnamed result";
        }}

        /// <summary>The driver's words about the last failure on this thread, which it then
        /// forgets; null when there are none. Take them right after the failure. A success leaves
        /// older ones where they are.</summary>
        public static string Description()
        {{
            IErrorInfo info;
            string text;
            if (GetErrorInfo(0, out info) != 0 || info == null) return null;
            return info.GetDescription(out text) == 0 ? text : null;
        }}

        [DllImport("oleaut32.dll")]
        static extern int GetErrorInfo(int reserved, out IErrorInfo info);
    }}
"""


def emit(library, inherent, result_names):
    parts = [
        *map(enumeration, library.enumerations),
        *map(interface, library.interfaces + inherent),
        *(coclass(c) for c in library.coclasses if c.creatable),
        results(result_names),
    ]
    return HEAD + "\n".join(parts) + "}\n"
