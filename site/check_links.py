# SPDX-License-Identifier: BSD-3-Clause
# check_links.py FOLDER: every link in the pages of a built site leads to a file that is there and a place that is in
# it, and nothing that a page needs comes from a network. Links to other sites are checked for their form only, and
# listed.
import html.parser
import pathlib
import re
import sys
import urllib.parse

needed_by_page = {("img", "src"), ("script", "src"), ("source", "src"), ("iframe", "src"), ("link", "href")}


class Page(html.parser.HTMLParser):
    def __init__(self, path):
        super().__init__()
        self.places = set()
        self.links = []  # (address, is needed to show the page)
        self.feed(path.read_text(encoding="utf-8"))

    def handle_starttag(self, tag, attributes):
        for name, value in attributes:
            if name == "id" or (tag == "a" and name == "name"):
                self.places.add(value)
            elif name in ("href", "src"):
                self.links.append((value or "", (tag, name) in needed_by_page))


def problem_of(address, is_needed, path, root, pages):
    """What is wrong with a link, or nothing."""
    parts = urllib.parse.urlsplit(address)
    if parts.scheme == "mailto" or (parts.scheme == "data" and is_needed):
        return None
    if parts.scheme or parts.netloc:
        if is_needed:
            return "comes from a network"
        return None if parts.scheme in ("http", "https") and "." in parts.netloc else "is no address"
    target = (path.parent / urllib.parse.unquote(parts.path)).resolve() if parts.path else path
    if not target.is_relative_to(root) or not target.is_file():
        return "leads to no file"
    place = urllib.parse.unquote(parts.fragment)
    if place and target in pages and place not in pages[target].places:
        return "leads to no place in its page"
    return None


def main(root):
    pages = {path: Page(path) for path in sorted(root.rglob("*.html"))}
    found, outside, failures = 0, set(), 0
    for path, page in pages.items():
        for address, is_needed in page.links:
            found += 1
            problem = problem_of(address, is_needed, path, root, pages)
            if problem:
                failures += 1
                print(f"{path.relative_to(root)}: {address} {problem}")
            elif re.match("https?:", address):
                outside.add(address)
    for path in sorted(root.rglob("*.css")):
        for address in re.findall(r"url\(['\"]?([^)'\"]*)", path.read_text(encoding="utf-8")):
            found += 1
            problem = problem_of(address, True, path, root, pages)
            if problem:
                failures += 1
                print(f"{path.relative_to(root)}: {address} {problem}")
    for address in sorted(outside):
        print(f"not visited: {address}")
    print(f"{len(pages)} pages, {found} links, {len(outside)} to other sites, {failures} dead")
    return 1 if failures or not pages else 0


sys.exit(main(pathlib.Path(sys.argv[1]).resolve()))
