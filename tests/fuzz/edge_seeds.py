#!/usr/bin/env python3
"""Writes seed card files that stand right at the line reader's limits, for the fuzz target.

Usage: edge_seeds.py OUT_DIR CARD_FILE...

For every section keyword found in the given card files (the first file that has it), and for
every kind of edge line below, one seed: that file with the edge line put in as the first line
behind the keyword line. "NOM :" and "GRAIN" lines also get the edge text inside the keyword line
itself. Each kind sits at a limit the readers must survive without harm:

  long-word      one word of 2100 characters (the word slots hold 2049 and a NUL)
  many-words     2100 one-character words (2048 word slots)
  longest-line   8191 characters, the longest line the reader accepts, as one word
  longest-words  8191 characters of 4096 words
  wide-numbers   numbers too long for any column, exponents out of range, "*" exponents
  table-refs     table references with huge, negative and empty ids
  separators     runs of every separator the readers cut with, and nothing else

The output depends only on the input files. Standard library only.
"""
import os
import sys

KEYWORDS = [
    "LISTE :", "NOM :", "COMMENTAIRES :", "Chemical Composition:", "Phases:", "Class",
    "Composition", "Phases", "Initial hardness", "Initial phases proportions if wire",
    "Initial phases proportions", "Units", "MaterialType", "LABELS :", "TABLES :", "MATERIAUX :",
    "METALLURGY", "REACTION", "TABLE", "TABLES", "DEF_MATERIAL", "MATERIAL", "CHIMIE :", "GRAIN",
    "PHASE",
]

EDGES = {
    "long-word": "W" * 2100 + " 1 2",
    "many-words": " ".join(["1"] * 2100),
    "longest-line": "L" * 8191,
    "longest-words": " ".join(["7"] * 4095) + " 8",
    "wide-numbers": "E " + " ".join(["1." + "3" * 300, "1e99999", "-1.2345-05", "1*-5", "1*", "*", ".",
                                     "-", "+", "1e", "0x1p3", "nan", "inf", "-0", "9" * 400]),
    "table-refs": "YIELD -&" + "9" * 40 + "& -&-1& -&& & -& &&& TABLE &" + "7" * 40 + "& 1 / -&1&",
    "separators": " / : = ( ) % - & | , \t ::: /// === %%% -&-& ",
}


def is_keyword_line(line):
    text = line.strip()
    if text.startswith("NOM :") or text.startswith("GRAIN"):
        return True
    return text in KEYWORDS or text.split(" ")[0] in ("PHASE", "TABLE", "REACTION")


def keyword_of(line):
    text = line.strip()
    for head in ("NOM :", "GRAIN", "PHASE", "TABLE ", "REACTION "):
        if text.startswith(head):
            return head.strip()
    return text


def main():
    if len(sys.argv) < 3:
        sys.stderr.write(__doc__)
        return 2
    out_dir = sys.argv[1]
    os.makedirs(out_dir, exist_ok=True)
    seen = set()
    written = 0
    for path in sorted(sys.argv[2:]):
        if not path.endswith(".mat"):
            continue
        with open(path, "rb") as handle:
            lines = handle.read().decode("latin-1").splitlines(keepends=True)
        stem = os.path.splitext(os.path.basename(path))[0]
        for index, line in enumerate(lines):
            if not is_keyword_line(line):
                continue
            keyword = keyword_of(line)
            if keyword in seen:
                continue
            seen.add(keyword)
            ending = "\r\n" if line.endswith("\r\n") else "\n"
            slug = "".join(c if c.isalnum() else "_" for c in keyword).strip("_") or "kw"
            for kind, edge in EDGES.items():
                variants = [("after", lines[:index + 1] + [edge + ending] + lines[index + 1:])]
                if keyword in ("NOM :", "GRAIN"):
                    inside = line.rstrip("\r\n") + " " + edge + ending
                    variants.append(("inside", lines[:index] + [inside] + lines[index + 1:]))
                for where, content in variants:
                    name = "edge-%s-%d-%s-%s-%s.mat" % (stem, index + 1, slug, kind, where)
                    with open(os.path.join(out_dir, name), "wb") as out:
                        out.write("".join(content).encode("latin-1"))
                    written += 1
    print("edge_seeds.py: %d seeds in %s" % (written, out_dir))
    return 0


if __name__ == "__main__":
    sys.exit(main())
