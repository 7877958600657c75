"""The manual as the help file that the type library names, compiled by chmcmd. It opens at the
names of members.
"""

import html
import pathlib
import re
import struct
import subprocess
import tempfile

import book as source
import calls
import html_pages

TOPIC = """<!DOCTYPE html>
<html lang="en">
<head>
<meta http-equiv="Content-Type" content="text/html; charset=utf-8">
<meta http-equiv="X-UA-Compatible" content="IE=edge">
<title>{title}</title>
<link rel="stylesheet" type="text/css" href="{up}content.css">
</head>
<body>
<h1>{title}</h1>
{body}
</body>
</html>
"""
# The binary form of the index would hold a part of an address in the compiler's memory, another one
# each time.
PROJECT = """[OPTIONS]
Compatibility=1.1 or later
Compiled file={name}
Contents file=contents.hhc
Index file=index.hhk
Binary Index=No
Default topic=index.html
Default window=main
Full-text search=Yes
Language=0x409 English (United States)
Title={title}

[WINDOWS]
main="{title}","contents.hhc","index.hhk","index.html","index.html",,,,,\
0x63520,240,0x387e,[80,60,1180,860],0x0,,,,,,0

[FILES]
{files}
"""
LIST = """<!DOCTYPE HTML PUBLIC "-//IETF//DTD HTML//EN">
<html>
<head></head>
<body>
{}
</body>
</html>
"""


def ascii_title(text):
    """Contents and index of a help file are in the system's code page."""
    return html.escape(text.replace("`", "")).encode("ascii", "xmlcharrefreplace").decode()


def item(name, place=""):
    local = f'<param name="Local" value="{place}">' if place else ""
    named = f'<param name="Name" value="{ascii_title(name)}">{local}'
    return f'<li><object type="text/sitemap">{named}</object>'


def contents(book):
    lines, depth = [], -1
    for entry in book.contents:
        while depth > entry.depth:
            lines.append("</ul>")
            depth -= 1
        while depth < entry.depth:
            lines.append("<ul>")
            depth += 1
        lines.append(item(entry.title, entry.page and f"{entry.page}.html"))
        page = book.page(entry.page) if entry.page else None
        if page and page.interface:
            lines += [
                "<ul>",
                *(item(s.title, f"{page.name}.html#{s.anchor}") for s in page.sections),
                "</ul>",
            ]
    return LIST.format("\n".join(lines + ["</ul>"] * (depth + 1)))


def keywords(book):
    """Every name that a client meets, with the place where it is explained."""
    found = {}
    for name, (page, anchor) in book.targets.items():
        found[name] = f"{page}.html{'#' + anchor if anchor else ''}"
    for page in book.pages:
        for section in page.sections:
            place = f"{page.name}.html#{section.anchor}"
            if page.interface:
                found[f"{section.title} ({calls.group(page.interface) or 'root'})"] = place
            elif page.name != "index":
                found.setdefault(section.title, place)
        if page.name != "index":
            found.setdefault(page.title, f"{page.name}.html")
    return found


def index(book):
    names = sorted(keywords(book).items(), key=lambda entry: (entry[0].lower(), entry[0]))
    return LIST.format("\n".join(["<ul>", *(item(name, place) for name, place in names), "</ul>"]))


def raster(picture, file):
    """The viewer has no vectors of its own."""
    shape = "--width 900 --keep-aspect-ratio --background-color white".split()
    subprocess.run(["rsvg-convert", *shape, "-o", str(file), str(picture)], check=True)


def without_times(data):
    """The same content gives the same file: the compiler writes when it ran into two places, the
    file's header and the first entry of the topic #SYSTEM, which is kept uncompressed.
    """
    data = bytearray(data)
    time_entry = data.find(struct.pack("<IHH", 3, 10, 4))
    if data[:4] != b"ITSF" or time_entry < 0:
        raise RuntimeError("chmcmd's file is not laid out as expected")
    data[16:20] = data[time_entry + 8 : time_entry + 12] = bytes(4)
    return bytes(data)


def write(book, bodies, file):
    with tempfile.TemporaryDirectory() as made:
        folder = pathlib.Path(made)
        names = ["content.css"]
        (folder / "content.css").write_text((html_pages.HERE / "content.css").read_text())
        for page in book.pages:
            topic = folder / f"{page.name}.html"
            topic.parent.mkdir(parents=True, exist_ok=True)
            body = re.sub(r'(<img src="[^"]*)\.svg"', r'\1.png"', bodies[page.name])
            topic.write_text(
                TOPIC.format(
                    title=html.escape(page.title), up=source.relative("", page.name), body=body
                )
            )
            names.append(f"{page.name}.html")
        (folder / "pictures").mkdir()
        for picture in sorted((book.folder / "pictures").glob("*.svg")):
            raster(picture, folder / "pictures" / f"{picture.stem}.png")
            names.append(f"pictures/{picture.stem}.png")
        (folder / "contents.hhc").write_text(contents(book))
        (folder / "index.hhk").write_text(index(book))
        project = folder / "manual.hhp"
        project.write_text(
            PROJECT.format(name=file.name, title=html_pages.MANUAL, files="\n".join(names))
        )
        made = subprocess.run(
            ["chmcmd", "--no-html-scan", project.name], cwd=folder, capture_output=True, text=True
        )
        if made.returncode != 0 or not (folder / file.name).exists():
            raise RuntimeError(made.stdout + made.stderr)
        file.write_bytes(without_times((folder / file.name).read_bytes()))
