# SPDX-License-Identifier: BSD-3-Clause
# The table of contents. It is put under the pages that hold a part of it while they are read: as they lie in the
# project they are free of Sphinx's syntax, which a code host would show.
import pathlib

parts = {
    "Use": [
        "getting_started",
        "refinement",
        "estimation",
        "rotation_types",
        "conventions",
        "cameras",
        "reports",
        "matlab",
        "cpp",
        "/examples/README",
        "from_v0.1",
    ],
    "Judge": ["performance", "/benchmarks/README", "trust", "compatibility", "/SECURITY"],
    "Understand": ["architecture", "notation", "derivations", "numerics", "decisions/README"],
    "Project": ["README </README>", "/CHANGELOG", "/CONTRIBUTING", "/packaging/README", "/examples/data/chessboard/README"],
}


def toctree(pages, caption=""):
    options = ":hidden:\n" + (f":caption: {caption}\n" if caption else "")
    return "\n\n```{toctree}\n" + options + "\n" + "\n".join(pages) + "\n```\n"


def append_contents(app, docname, source):
    if docname == app.config.root_doc:
        for caption, pages in parts.items():
            source[0] += toctree(pages, caption)
    if docname == "docs/decisions/README":
        folder = pathlib.Path(app.srcdir) / "docs" / "decisions"
        source[0] += toctree(sorted(page.stem for page in folder.glob("0*.md")))


def setup(app):
    app.connect("source-read", append_contents)
    return {"parallel_read_safe": True}
