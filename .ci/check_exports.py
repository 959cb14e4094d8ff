#!/usr/bin/env python3
"""Checks that the library exports what its installed headers declare, and nothing else, and that what programs were
built against is as it was: check_exports.py PREFIX [--update]

.ci/abi.txt lists the exported symbols, with their sizes where programs know them, and the sizes of classes with virtual
functions. --update writes it anew."""
import difflib
import re
import subprocess
import sys
import tempfile
import xml.etree.ElementTree as ElementTree
from pathlib import Path

CLASSES = ("Class", "Struct", "Union")
STRUCTORS = ("Constructor", "Destructor")
NAMED = ("Function", "Method", "OperatorFunction", "OperatorMethod", "Converter", "Variable")
PREFIXES = {"Destructor": "~", "OperatorFunction": "operator", "OperatorMethod": "operator"}
COMPILER_MADE = ("vtable for ", "typeinfo for ", "typeinfo name for ", "VTT for ", "non-virtual thunk to ",
                 "virtual thunk to ", "guard variable for ")


def symbol_of(element):
    return (element.get("mangled") or element.get("name")).split()[0]


def name_in(readable):
    return re.sub(r"(operator\(\))?\(.*", r"\1", readable, count=1)


def output_of(*command, **more):
    return subprocess.run(command, check=True, stdout=subprocess.PIPE, text=True, **more).stdout


def declarations_of(include_folder):
    """All that the headers declare, members of class templates as they are instantiated there."""
    with tempfile.NamedTemporaryFile(suffix=".xml") as xml:
        subprocess.run(["castxml", "--castxml-output=1", "--castxml-cc-gnu", "(", "g++", "-std=c++17", ")", "-std=c++17",
                        "-fsized-deallocation", "-include", include_folder / "kalvo/kalvo.h", f"-I{include_folder}",
                        "-o", xml.name, "-x", "c++", "/dev/null"], check=True)
        return {element.get("id"): element for element in ElementTree.parse(xml.name).getroot()}


def abi_of(library, elements, files):
    """Tables of virtual functions are as long as they have slots."""
    symbols = (line.split() for line in output_of("nm", "-D", "-S", "--defined-only", library).splitlines())
    lines = [f"{symbol[-1]} {int(symbol[1], 16)}" if symbol[-2] in "BDRV" else symbol[-1] for symbol in symbols]
    polymorphic = {e.get("context") for e in elements.values() if e.get("virtual") == "1"}
    lines += [f"class {e.get('name')} {int(e.get('size')) // 8}" for key, e in elements.items()
              if e.tag in CLASSES and key in polymorphic and e.get("file") in files and e.get("size")]
    return sorted(set(lines))


def changes_of(abi, update):
    path = Path(__file__).with_name("abi.txt")
    if update:
        path.write_text("\n".join(abi) + "\n")
    return [line for line in difflib.unified_diff(path.read_text().splitlines(), abi, "abi.txt", "now", n=0, lineterm="")]


def main(prefix, update):
    library = next(prefix.glob("lib*/**/libkalvo.so"))
    exported = {line.split()[-1] for line in output_of("nm", "-D", "--defined-only", library).splitlines()}
    readable = output_of("c++filt", input="\n".join(exported)).splitlines()
    exported_names = {name_in(text) for text in readable}
    elements = declarations_of(prefix / "include")
    files = {key for key, element in elements.items()
             if element.tag == "File" and element.get("name").startswith(str(prefix))}

    def qualified(element):
        context = elements.get(element.get("context"))
        name = PREFIXES.get(element.tag, "") + element.get("name")
        return name if context is None or context.get("name") == "::" else f"{qualified(context)}::{name}"

    declared = [e for e in elements.values() if e.get("file") in files and e.tag in STRUCTORS + NAMED and e.get("name")]
    declared_names = {qualified(e) for e in declared}
    classes = {qualified(e) + "::" for e in elements.values() if e.get("file") in files and e.tag in CLASSES}
    faults = [f"{elements[e.get('file')].get('name')}:{e.get('line')}: not exported: {qualified(e)}" for e in declared
              if not any(e.get(trait) for trait in ("inline", "artificial", "deleted", "pure_virtual"))
              and (e.tag != "Variable" or e.get("extern"))
              and (qualified(e) not in exported_names if e.tag in STRUCTORS else symbol_of(e) not in exported)]
    faults += [f"exported, but declared in no installed header: {text}" for text in readable
               if name_in(text) not in declared_names and not text.startswith(COMPILER_MADE)
               and not any(name in name_in(text) for name in classes)]  # member templates are not listed
    faults += changes_of(abi_of(library, elements, files), update)
    print("\n".join(faults) or f"{len(exported)} symbols are exported, as declared and as ever")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main(Path(sys.argv[1]).resolve(), "--update" in sys.argv))
