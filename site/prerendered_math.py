# SPDX-License-Identifier: BSD-3-Clause
# Formulas as HTML, made by KaTeX while the site is built: a reader needs neither a script nor a network, and a formula
# that cannot be read is a warning of the build.
import json
import pathlib
import re
import shutil
import subprocess

from docutils import nodes
from sphinx.errors import ExtensionError
from sphinx.util import logging

logger = logging.getLogger(__name__)


class Katex:
    """One process for all formulas; a line of JSON goes in, a line of JSON comes out."""

    def __init__(self, folder):
        script = pathlib.Path(__file__).parent / "katex.js"
        self.process = subprocess.Popen(
            ["node", str(script), str(pathlib.Path(folder) / "katex.js")],
            stdin=subprocess.PIPE,
            stdout=subprocess.PIPE,
            text=True,
            encoding="utf-8",
        )

    def html(self, formula, is_display):
        self.process.stdin.write(json.dumps({"formula": formula, "display": is_display}) + "\n")
        self.process.stdin.flush()
        answer = json.loads(self.process.stdout.readline())
        if "error" in answer:
            raise ValueError(answer["error"])
        return answer["html"]

    def close(self):
        self.process.stdin.close()
        self.process.wait()


def start(app):
    folder = pathlib.Path(app.config.katex_folder)
    if not (folder / "katex.js").exists() or shutil.which("node") is None:
        raise ExtensionError(f"KaTeX is not in {folder}, or node is missing (Debian packages libjs-katex, nodejs)")
    app.katex = Katex(folder)


def visit(is_display):
    def visit_math(writer, node):
        try:
            html = writer.builder.app.katex.html(node.astext(), is_display)
        except ValueError as error:
            logger.warning("%s", error, location=node)
            html = writer.encode(node.astext())
        tag = "div" if is_display else "span"
        writer.body.append(f'<{tag} class="math">{html}</{tag}>')
        raise nodes.SkipNode

    return visit_math


def copy_style(app, exception):
    """The style sheet and its fonts, of which every browser reads WOFF2."""
    app.katex.close()
    if exception is not None:
        return
    source = pathlib.Path(app.config.katex_folder)
    target = pathlib.Path(app.outdir) / "_static" / "katex"
    (target / "fonts").mkdir(parents=True, exist_ok=True)
    style = (source / "katex.min.css").read_text(encoding="utf-8")
    style = re.sub(r',url\(fonts/[^)]*\.(woff|ttf)\) format\("[a-z]*"\)', "", style)
    (target / "katex.css").write_text(style, encoding="utf-8")
    for font in set(re.findall(r"url\((fonts/[^)]*)\)", style)):
        shutil.copyfile(source / font, target / font)


def setup(app):
    app.add_config_value("katex_folder", "", "env")
    app.add_html_math_renderer("katex", (visit(False), None), (visit(True), None))
    app.config.html_math_renderer = "katex"
    app.add_css_file("katex/katex.css")
    app.connect("builder-inited", start)
    app.connect("build-finished", copy_style)
    return {"parallel_read_safe": True}
