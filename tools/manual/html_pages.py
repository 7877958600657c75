"""The manual as HTML: pages that need neither a server nor the network, with contents at the side
and a search.
"""

import concurrent.futures
import html
import html.parser
import json
import pathlib
import re
import shutil
import subprocess

import book as source
import calls

HERE = pathlib.Path(__file__).resolve().parent
MANUAL = "ZentrelK4NLib manual"
FORMAT = "markdown-smart-tex_math_dollars-citations-yaml_metadata_block-raw_tex-implicit_figures"


def pandoc(text, *options):
    return subprocess.run(
        ["pandoc", "-f", FORMAT, *options], input=text, capture_output=True, text=True, check=True
    ).stdout


def render(book):
    """The body of each page, by its name."""

    def body(page):
        made = pandoc(source.markdown(book, page), "-t", "html5", "--no-highlight", "--wrap=none")
        made = re.sub(r'href="([^":#]*)\.md(#[^"]*)?"', r'href="\1.html\2"', made)
        made = re.sub(r"<p>Kept: ", '<p class="kept"><strong>Kept:</strong> ', made)
        # Columns are as wide as their content wants; results can be linked to.
        made = re.sub(r"<colgroup>.*?</colgroup>\n", "", made, flags=re.DOTALL)
        if page.name == "reference/results":
            made = re.sub(
                r"<tr[^>]*>\s*(<td[^>]*><code>(0x[0-9A-F]{8})</code>)", r'<tr id="\2">\n\1', made
            )
        return made

    with concurrent.futures.ThreadPoolExecutor() as pool:
        return dict(zip([page.name for page in book.pages], pool.map(body, book.pages)))


class TextOf(html.parser.HTMLParser):
    """The sections of a page as [anchor, title, text, calls], for the search."""

    def __init__(self, body):
        super().__init__()
        self.sections, self.part = [["", "", "", ""]], 2
        self.feed(body)

    def handle_starttag(self, tag, attributes):
        attributes = dict(attributes)
        if tag in ("h2", "h3"):
            self.sections.append([attributes.get("id", ""), "", "", ""])
            self.part = 1
        elif tag == "table" and attributes.get("class") == "calls":
            self.part = 3
        elif tag in ("td", "th", "p", "li", "br", "dt", "dd", "pre"):
            self.handle_data(" ")

    def handle_endtag(self, tag):
        if tag in ("h2", "h3", "table"):
            self.part = 2

    def handle_data(self, text):
        self.sections[-1][self.part] += text


def full_title(page, title):
    """A member under the name by which it is reached."""
    if page.interface and source.accessors(page.interface, title):
        return f"{calls.group(page.interface)}.{title}".lstrip(".")
    return title


def search_index(book, bodies):
    rows = []
    for page in book.pages:
        if page.name == "index":
            continue
        for anchor, title, text, its_calls in TextOf(bodies[page.name]).sections:
            title, words = title.strip(), re.sub(r"\s+", " ", f"{text} {its_calls}").strip()
            rows.append(
                [
                    full_title(page, title) or page.title,
                    page.title if title else "",
                    f"{page.name}.html{'#' + anchor if anchor else ''}",
                    words,
                ]
            )
    lines = ",\n".join(json.dumps(row, ensure_ascii=False, separators=(",", ":")) for row in rows)
    return f"const searchIndex = [{lines}];\n"


def contents(book, page):
    """The contents as nested lists, with the sections of the page that is shown."""
    lines, depth = [], -1
    for entry in book.contents:
        lines += ["<ul>" if entry.depth > depth else "</li></ul>" * (depth - entry.depth) + "</li>"]
        depth = entry.depth
        title, way = html.escape(entry.title), f"{source.relative(entry.page, page.name)}.html"
        if not entry.page:
            lines.append(f'<li class="chapter">{title}')
        elif entry.page == page.name:
            sections = "".join(
                f'<li><a href="#{s.anchor}">{html.escape(s.title)}</a></li>'
                for s in page.sections
                if s.level == 2
            )
            lines.append(
                f'<li class="here"><a href="{way}">{title}</a><ul class="sections">{sections}</ul>'
            )
        else:
            lines.append(f'<li><a href="{way}">{title}</a>')
    return "\n".join(lines) + "</li></ul>" * (depth + 1)


def neighbours(book, page):
    order = [p.name for p in book.pages]
    place = order.index(page.name)
    links = []
    for step, mark in ((-1, "&larr; {}"), (1, "{} &rarr;")):
        if 0 <= place + step < len(order):
            other = book.pages[place + step]
            links.append(
                f'<a href="{source.relative(other.name, page.name)}.html">'
                f"{mark.format(html.escape(other.title))}</a>"
            )
        else:
            links.append("<span></span>")
    return f'<nav class="neighbours">{"".join(links)}</nav>'


def page_html(book, page, body):
    up = source.relative("", page.name)
    return f"""<!DOCTYPE html>
<html lang="en">
<head>
<meta charset="utf-8">
<meta name="viewport" content="width=device-width, initial-scale=1">
<title>{html.escape(page.title)} - {MANUAL}</title>
<link rel="stylesheet" href="{up}content.css">
<link rel="stylesheet" href="{up}frame.css">
</head>
<body data-up="{up}">
<header>
<a class="manual" href="{up}index.html">{MANUAL}</a>
<input id="search" type="search" placeholder="Search (press /)" autocomplete="off"
 aria-label="Search the manual">
<ol id="found" hidden></ol>
</header>
<nav id="contents">
{contents(book, page)}
</nav>
<main class="{page.name.rpartition('/')[2]}">
<h1>{html.escape(page.title)}</h1>
{body}
{neighbours(book, page)}
</main>
<script src="{up}search-index.js"></script>
<script src="{up}search.js"></script>
</body>
</html>
"""


def write(book, bodies, folder):
    for page in book.pages:
        file = folder / f"{page.name}.html"
        file.parent.mkdir(parents=True, exist_ok=True)
        file.write_text(page_html(book, page, bodies[page.name]))
    (folder / "search-index.js").write_text(search_index(book, bodies))
    for name in ("content.css", "frame.css", "search.js"):
        shutil.copyfile(HERE / name, folder / name)
    shutil.copytree(
        book.folder / "pictures", folder / "pictures", ignore=shutil.ignore_patterns("*.py", "make")
    )
