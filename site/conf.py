# SPDX-License-Identifier: BSD-3-Clause
# How Sphinx makes the site from what pages.py has laid out; scripts/site calls both.
import gc
import logging
import pathlib
import re

gc.set_threshold(500_000)  # a quarter of the time went into looking for garbage
project = "kelvane"
version = re.search(r"^version: ([\d.]+)", (pathlib.Path(__file__).parents[1] / "kelvane.build").read_text(), re.M)[1]
html_title = f"kelvane {version}"

extensions = ["myst_parser", "sphinx.ext.mathjax", "breathe"]
myst_enable_extensions = ["dollarmath"]
# The pages are those of a code host: a line that begins with a per cent sign is text there.
myst_disable_syntax = ["myst_line_comment", "myst_block_break", "myst_role"]
myst_heading_anchors = 4
smartquotes = False
root_doc = "docs/index"
highlight_language = "text"
nitpicky = True

# Formulas are made by KaTeX in the browser, from the site's own folder; MathJax's extension only marks them.
html_static_path = ["static", "/usr/share/javascript/katex"]
exclude_patterns = ["**/*.ttf", "**/*.woff", "**/*.mjs", "contrib/[!a]*", "katex.min.js", "katex.css"]
html_css_files = ["katex.min.css", "site.css"]
html_js_files = [("katex.js", {"priority": 100, "defer": "defer"})]
mathjax_path = "contrib/auto-render.js"
mathjax_options = {
    "defer": "defer",
    "onload": "document.querySelectorAll('.math').forEach((formula) => renderMathInElement(formula, {strict: 'error'}))",
}

# The C++ reference, from the XML that scripts/site names. Every page of a header opens its namespace, which Sphinx takes for a second one.
breathe_default_project = "kelvane"
logging.getLogger("sphinx.sphinx.domains.cpp").addFilter(
    lambda record: not re.search(r"Duplicate C\+\+ declaration.*cpp:type::", record.getMessage(), re.S))
nitpick_ignore_regex = [("cpp:identifier", "(cv|std)::.*|Chart")]

html_theme = "furo"
html_copy_source = False
html_show_sphinx = False
html_show_copyright = False
html_show_search_summary = False  # it fetches pages, which a browser refuses for files
