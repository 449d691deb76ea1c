# SPDX-License-Identifier: BSD-3-Clause
# Links from the pages to sources and folders, as a code host follows them: each such file gets a page that shows it,
# each folder one that lists it, unless it has a README among the pages.
import html
import pathlib
import subprocess

from docutils import nodes
from pygments import highlight
from pygments.formatters import HtmlFormatter
from pygments.lexers import TextLexer, get_lexer_by_name, get_lexer_for_filename
from pygments.util import ClassNotFound
from sphinx import addnodes
from sphinx.transforms import SphinxTransform


class Links_to_sources(SphinxTransform):
    default_priority = 500

    def apply(self):
        links = list(self.document.findall(addnodes.download_reference))
        links += list(self.document.findall(addnodes.pending_xref))
        for link in links:
            if link.get("reftype") == "myst":
                self.turn(link)

    def turn(self, link):
        """Links to pages stay as they are, and so do those that lead nowhere, of which Sphinx tells."""
        target = link["reftarget"]
        path = (pathlib.Path(self.env.doc2path(self.env.docname)).parent / target).resolve()
        root = pathlib.Path(self.env.srcdir).resolve()
        if "#" in target or not path.is_relative_to(root) or not path.exists():
            return
        name = path.relative_to(root).as_posix()
        if path.is_dir() and f"{name}/README" in self.env.found_docs:
            page = f"{name}/README"
        elif name.removesuffix(".md") in self.env.found_docs:
            return
        else:
            page = self.page_of(name)
        uri = self.app.builder.get_relative_uri(self.env.docname, page)
        reference = nodes.reference("", "", internal=True, refuri=uri)
        for child in link.children[0].children if link.children else []:
            reference += child.deepcopy()
        link.replace_self(reference)

    def page_of(self, name):
        if not hasattr(self.env, "linked_sources"):
            self.env.linked_sources = set()
        self.env.linked_sources.add(name)
        return f"source/{name}"


def listed(root, folder):
    """What belongs to the project: what its own repository knows, or everything in sources that were unpacked."""
    if (root / ".git").exists():
        # Whoever owns the folder: these are the sources whose scripts are running.
        command = ["git", "-c", "safe.directory=*", "ls-files", "--cached", "--others", "--exclude-standard"]
        output = subprocess.run(command, cwd=folder, check=True, capture_output=True, text=True).stdout
        names = output.split("\n")[:-1]
    else:
        names = [path.relative_to(folder).as_posix() for path in folder.rglob("*")]
    return sorted(name for name in names if (folder / name).is_file())


def page_with(name, body):
    return (f"source/{name}", {"title": name, "body": f"<h1>{html.escape(name)}</h1>\n{body}"}, "page.html")


def lexer_for(name):
    if name.endswith(".m"):  # several languages claim it
        return get_lexer_by_name("octave")
    try:
        return get_lexer_for_filename(name)
    except ClassNotFound:
        return TextLexer()


def page_of_file(path, name):
    return page_with(name, highlight(path.read_text(encoding="utf-8"), lexer_for(name), HtmlFormatter()))


def pages(app):
    root = pathlib.Path(app.srcdir)
    linked = getattr(app.env, "linked_sources", set())
    files = {name for name in linked if (root / name).is_file()}
    for folder in sorted(linked - files):
        inside = listed(root, root / folder)
        files.update(f"{folder}/{name}" for name in inside)
        rows = "".join(f'<li><a href="{folder.split("/")[-1]}/{name}.html">{name}</a></li>\n' for name in inside)
        yield page_with(folder, f"<ul>\n{rows}</ul>")
    for name in sorted(files):
        yield page_of_file(root / name, name)


def setup(app):
    app.add_transform(Links_to_sources)
    app.connect("html-collect-pages", pages)
    return {"parallel_read_safe": False}
