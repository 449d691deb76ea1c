# SPDX-License-Identifier: BSD-3-Clause
# metadata_test.py PROJECT RELEASED: what says of the project which version it has and where its files are says the same, and is
# read by who it is for: the package file by the index of Octave's packages, whose checks these are.
import hashlib
import json
import pathlib
import re
import sys

import yaml
from yamllint import config, linter

if not __debug__:
    sys.exit("metadata_test.py is all assertions, which python3 -O leaves out")
project, released = map(pathlib.Path, sys.argv[1:3])
build = dict(re.findall(r"^(\w+): (.*)", (project / "kelvane.build").read_text(), re.M))
version, home = build["version"], build["home"]
sums = {file.name: hashlib.sha256(file.read_bytes()).hexdigest() for file in released.iterdir()}

# The rules of the index: how the file is written, its keys and their order, and what they hold.
rules = """{extends: default, rules: {quoted-strings: {quote-type: double, required: true}, document-end: disable,
  indentation: {spaces: 2, indent-sequences: false}, line-length: {max: 80, allow-non-breakable-words: true,
  allow-non-breakable-inline-mappings: true}}}"""
text = (released / "kelvane.yaml").read_text()
problems = list(linter.run(text, config.YamlLintConfig(rules)))
assert not problems, problems
assert text.startswith("---\n") and text.endswith("\n---\n")
package = next(yaml.safe_load_all(text))
assert list(package) == ["layout", "permalink", "description", "icon", "links", "maintainers", "versions"]
assert all(isinstance(package[key], str) for key in ["layout", "permalink", "description", "icon"])
assert package["layout"] == "package" and package["permalink"] == "kelvane/" and len(package["description"]) <= 160
assert all(list(link) == ["icon", "label", "url"] and link["url"].startswith(home + "/") for link in package["links"])
assert {"BSD-3-Clause", "news", "repository"} < {link["label"] for link in package["links"]}
assert all(list(maintainer) == ["name", "contact"] for maintainer in package["maintainers"])
[entry] = package["versions"]
assert list(entry) == ["id", "date", "sha256", "url", "depends"] and "pkg" in entry["depends"]
assert all(re.fullmatch(r"[a-z]+( \((>=|<|==) [\d.]+\))?", name) for name in entry["depends"])
assert entry["id"] == version and re.fullmatch(r"\d{4}-\d\d-\d\d", entry["date"])
assert entry["url"].startswith(home) and sums[entry["url"].split("/")[-1]] == entry["sha256"]
assert (project / package["icon"].split(f"/v{version}/")[1]).exists()

bill = json.loads((released / f"kelvane-{version}.spdx.json").read_text())
listed = {p["name"]: p["checksums"][0]["checksumValue"] for p in bill["packages"] if "checksums" in p}
assert listed == {name: value for name, value in sums.items() if name.endswith((".gz", ".deb"))}
ids = [bill["SPDXID"]] + [p["SPDXID"] for p in bill["packages"]]
assert len(set(ids)) == len(ids) and all(re.fullmatch(r"SPDXRef-[\w.-]+", name) for name in ids)
assert {r[end] for r in bill["relationships"] for end in ["spdxElementId", "relatedSpdxElement"]} == set(ids)

citation = yaml.safe_load((project / "CITATION.cff").read_text())
assert citation["cff-version"] == "1.2.0" and citation["message"] and citation["title"] and citation["authors"][0]["name"]
assert str(citation["version"]) == version and citation["license"] == "BSD-3-Clause"

# A file that a page names is one of a release.
for page in [project / "README.md", *project.glob("docs/*.md")]:
    for name in re.findall(r"kelvane[-_][\d.]+\d[\w.-]*\.(?:tar\.gz|zip|deb)", page.read_text()):
        assert name in sums, f"{page}: there is no {name}"
    for name in re.findall(r"kelvane-(\d+\.\d+\.\d+)", page.read_text()):
        assert name == version, f"{page}: kelvane-{name}"
print("read and compared")
