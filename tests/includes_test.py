#!/usr/bin/env python3
"""Holds the includes of the whole tree against the two tables of docs/architecture.md, so that what the page says of a
folder is what is checked: whom it may include, and who uses which library of other people. A folder without a row, a
row without a folder and a library without a row fail, and so does a header whose guard is not named after its path.

    includes_test.py ROOT
"""
import fnmatch
import os
import re
import sys

PAGE = "docs/architecture.md"
INCLUDE = re.compile(r'\s*#\s*include\s*(?:"([^"]+)"|<([^>]+)>)')
# Headers of the languages and of the system need no row.
SYSTEM = re.compile(r"[a-z_]+|[a-z_0-9]+\.h|(arpa|linux|netinet|sys)/[a-z_0-9]+\.h")

failures = []


def fail(place, text):
    failures.append(f"{place}: {text}")


def names(text):
    return re.findall(r"`([^`]+)`", text)


def matches(path, patterns):
    """Whether a path lies in one of the folders (with a slash at the end), or is one of the files or patterns."""
    return any(path.startswith(p) if p.endswith("/") else fnmatch.fnmatchcase(path, p) for p in patterns)


def rows(title):
    """Place and cells of each row of the page's table whose first column has this title."""
    found = []
    inside = False
    with open(PAGE, encoding="utf-8") as page:
        for number, line in enumerate(page, 1):
            cells = [cell.strip() for cell in line.split("|")[1:-1]]
            if inside and cells and not set(line.strip()) <= set("|-"):
                found.append((f"{PAGE}:{number}", cells))
            inside = bool(cells) and (inside or cells[0] == title)
    if not found:
        sys.exit(f"{PAGE} has no table with the title {title}")
    return found


class Folder:
    """A row of the first table. Its last cell names folders and files that may be included, or says "anything". What
    only one file may is in brackets: (`config/enable.cpp` also `platform/`)."""

    def __init__(self, place, cell):
        self.place = place
        exceptions = re.findall(r"\(`([^`]+)` also ([^)]+)\)", cell)
        self.extra = {file: names(text) for file, text in exceptions}
        self.usual = names(re.sub(r"\(.*?\)", "", cell))
        self.anything = "anything" in cell

    def allows(self, file, included):
        return self.anything or matches(included, self.usual + self.extra.get(file, []))


def read_tree():
    """The folders of the sources, each with its files; the root is the empty name."""
    tree = {}
    for folder, inner, files in os.walk("."):
        inner[:] = [name for name in inner if name[0] != "." and name not in ("build", "__pycache__")
                    and not os.path.exists(os.path.join(folder, name, "CMakeCache.txt"))]
        tree[os.path.join(folder, "")[2:]] = sorted(files)
    return tree


def check_folders(tree, folders):
    for name, row in folders.items():
        if name not in tree:
            fail(row.place, f"there is no folder {name}")
        for file in row.extra:
            if not os.path.isfile(file):
                fail(row.place, f"there is no file {file}")
    for name, files in tree.items():
        if name not in folders and (name.count("/") == 1 or any(map(is_source, files))):
            fail(name, f"this folder has no row in {PAGE}")


def is_source(file):
    return file.endswith((".c", ".cpp", ".h", ".hpp"))


def check_guard(file, lines):
    guard = re.sub("[^A-Z0-9]", "_", file.removeprefix("include/").upper())
    directives = [line.split() for line in lines if line.startswith("#")]
    if directives[:2] != [["#ifndef", guard], ["#define", guard]]:
        fail(f"{file}:1", f"the guard of this header is {guard}")


def own_header(folder, header):
    """The file of this tree that an include names: from the root, from include/, or beside the file that includes."""
    paths = [header, f"include/{header}", os.path.normpath(folder + header)]
    return next((path for path in paths if os.path.isfile(path)), None)


def main():
    os.chdir(sys.argv[1])
    folders = {name: Folder(place, cells[2]) for place, cells in rows("Folder") for name in names(cells[0])}
    libraries = {name: (place, names(cells[1])) for place, cells in rows("Library") for name in names(cells[0])}
    tree = read_tree()
    check_folders(tree, folders)

    used = set()
    for folder, file in ((folder, folder + file) for folder, files in tree.items() for file in filter(is_source, files)):
        with open(file, encoding="utf-8") as source:
            lines = source.read().splitlines()
        if not file.endswith((".c", ".cpp")):
            check_guard(file, lines)
        for number, line in enumerate(lines, 1):
            found = INCLUDE.match(line)
            if not found:
                continue
            place = f"{file}:{number}"
            header = found[1] or found[2]
            included = own_header(folder, header)
            if included:
                own = os.path.dirname(included) + "/" == folder
                if not own and folder in folders and not folders[folder].allows(file, included):
                    fail(place, f"{folder} may not include {included}")
            elif found[1]:
                fail(place, f"{header} is no file of this tree: it is named from the root, or from include/")
            elif not SYSTEM.fullmatch(header):
                # The narrowest row counts: that of one header before that of its library.
                library = max((name for name in libraries if matches(header, [name])), key=len, default=None)
                used.add(library)
                if not library:
                    fail(place, f"{header} is of a library that has no row in {PAGE}")
                elif not matches(file, libraries[library][1]):
                    fail(place, f"{file} may not include {header}")
    for library in libraries.keys() - used:
        fail(libraries[library][0], f"nobody includes {library}")

    print("\n".join(failures))
    sys.exit(1 if failures else 0)


main()
