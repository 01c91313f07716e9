#!/usr/bin/env python3
"""Fills the unfinished messages of a Qt .ts catalogue from a glossary.

The glossary is tab-separated: English text, translation. A message matches a glossary entry
when the two agree after blanks and a trailing colon are set aside, so "Accuracy :" and
"Accuracy           :" share one entry; the message keeps its own leading blanks and colon.
A message with a count ("%n layers were processed") fills each of its plural forms.

The texts of the shared dialog pieces are collected under the context "Shared", but each dialog
translates them in its own context: every other context gets a copy of each shared message it
lacks, and the "Shared" context itself is dropped.
"""
import copy
import re
import sys
import xml.etree.ElementTree as ET


def key(text):
    return re.sub(r"\s+", " ", text.strip().rstrip(":").strip()).lower()


def spread_shared(root):
    shared = [c for c in root.findall("context") if c.findtext("name") == "Shared"]
    for context in shared:
        root.remove(context)
    messages = [m for c in shared for m in c.findall("message")]
    for context in root.findall("context"):
        present = {m.findtext("source") for m in context.findall("message")}
        for message in messages:
            if message.findtext("source") not in present:
                context.append(copy.deepcopy(message))


def main(ts_path, glossary_path):
    glossary = {}
    with open(glossary_path, encoding="utf-8") as f:
        for line in f:
            line = line.rstrip("\n")
            if not line or line.startswith("#") or "\t" not in line:
                continue
            english, chinese = line.split("\t", 1)
            glossary[key(english)] = chinese
    tree = ET.parse(ts_path)
    spread_shared(tree.getroot())
    filled = unknown = 0
    for message in tree.iter("message"):
        source = message.findtext("source") or ""
        translation = message.find("translation")
        if translation is None or translation.get("type") != "unfinished":
            continue
        chinese = glossary.get(key(source))
        if chinese is None:
            unknown += 1
            continue
        lead = source[: len(source) - len(source.lstrip(" "))]
        colon = " :" if source.rstrip().endswith(":") else ""
        forms = translation.findall("numerusform")
        for form in forms:
            form.text = chinese
        if not forms:
            translation.text = lead + chinese + colon
        del translation.attrib["type"]
        filled += 1
    tree.write(ts_path, encoding="utf-8", xml_declaration=True)
    print(f"{ts_path}: {filled} filled, {unknown} left in English")


if __name__ == "__main__":
    main(sys.argv[1], sys.argv[2])
