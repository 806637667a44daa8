#!/usr/bin/env python3
"""Writes the library's manual pages out of its public header.

usage: manual_pages.py HEADER VERSION DIRECTORY

DIRECTORY/man7/kavo_rolu.7 holds what the header says of the whole library, its types and statuses;
DIRECTORY/man3 holds a page for each family (kavo_rolu_vpm.3) and, for each function, a short one that
leads to its family's.
"""
import pathlib
import re
import sys
from dataclasses import dataclass, field

COMMENT = re.compile(r"/\*\*(?!<)(.*?)\*/\s*", re.S)
FUNCTION = re.compile(r"KAVO_ROLU_API\s+(ROLU_STATUS\s+(KAVO_ROLU_([A-Z0-9]+)_\w+)\([^)]*\);)")
STATUS = re.compile(r"(ROLU_STATUS_\w+) = (0x[0-9A-F]+),?\s*/\*\*<(.*?)\*/", re.S)
TAG = re.compile(r"@(param(?:\[[a-z,]+\])?|retval|return)\s+")


@dataclass
class Function:
    name: str
    prototype: str
    comment: str


@dataclass
class Section:
    subject: str
    functions: list = field(default_factory=list)


def plain(comment):
    """A comment's text without the stars at the beginnings of its lines."""
    lines = (re.sub(r"^\s*\* ?", "", line).rstrip() for line in comment.strip().splitlines())
    return "\n".join(lines).strip()


def roff(text):
    """Prose as the formatter wants it, the names of arguments in italics."""
    text = " ".join(text.split()).replace("\\", "\\e")
    text = re.sub(r"`([^`]*)`", r"\\fI\1\\fR", text)
    text = re.sub(r"#(?=[A-Z])", "", text)
    text = re.sub(r"(?<!\w)-(?=\w)", r"\\-", text)
    return "\\&" + text if text.startswith((".", "'")) else text


def code(text):
    text = text.replace("\\", "\\e").replace("-", "\\-")
    return ".EX\n" + re.sub(r"^(?=[.'])", r"\\&", text, flags=re.M) + "\n.EE\n"


def paragraphs(text):
    """Paragraphs and bullet lists, for the begin of a section."""
    page = ""
    for paragraph in re.split(r"\n\s*\n", text.strip()):
        parts = re.split(r"^- ", paragraph, flags=re.M)
        if parts[0].strip():
            page += (".PP\n" if page else "") + roff(parts[0]) + "\n"
        page += "".join(f".IP \\(bu 2\n{roff(item)}\n" for item in parts[1:])
    return page


def function_text(comment):
    """Description, then what follows the tags, then the arguments and the returned statuses."""
    start = TAG.search(comment)
    description, tagged = (comment, "") if start is None else (comment[: start.start()], comment[start.start() :])
    tagged, _, rest = tagged.partition("\n\n")
    arguments, statuses = "", ""
    pieces = TAG.split(tagged)[1:]
    for tag, text in zip(pieces[::2], pieces[1::2]):
        if tag == "return":
            statuses += f".PP\n{roff(text[0].upper() + text[1:])}\n"
            continue
        name, _, text = text.partition(" ")
        if tag == "retval":
            statuses += f".TP\n.B {name}\n{roff(text)}\n"
        else:
            direction = {"param[out]": " (output)", "param[in,out]": " (in and output)"}.get(tag, "")
            arguments += f".TP\n.IR {name} \"{direction}\"\n{roff(text)}\n"
    page = paragraphs(description + "\n\n" + rest)
    page += f".PP\nArguments:\n{arguments}" if arguments else ""
    return page + (f".PP\nReturns:\n{statuses}" if statuses else "")


def read_families(header):
    """The families in the header's order, each a list of sections with their functions."""
    families, section = {}, None
    comments = list(COMMENT.finditer(header))
    for comment in comments:
        text = plain(comment.group(1))
        heading = re.match(r"@name ([A-Z0-9]+): (.*)", text)
        if heading:
            section = Section(heading.group(2))
            families.setdefault(heading.group(1), []).append(section)
        function = FUNCTION.match(header, comment.end())
        if function:
            prototype, name, family = function.groups()
            if section is None or section not in families.get(family, []):
                sys.exit(f"manual_pages.py: {name} stands outside the sections of the family {family}")
            section.functions.append(Function(name, re.sub(r"\s+", " ", prototype), text))
    documented = sum(len(s.functions) for sections in families.values() for s in sections)
    declared = len(re.findall(r"^KAVO_ROLU_API ", header, re.M))
    if documented != declared or declared == 0:
        sys.exit(f"manual_pages.py: the header declares {declared} functions, but {documented} have a comment before them")
    return families


def head(name, section, version):
    return f".TH {name} {section} \"\" \"kavo_rolu {version}\" \"Kavo Rolu Library Manual\"\n"


def page_of(family):
    return f"kavo_rolu_{family.lower()}"


def function_page(family, section, function, version):
    sentence = re.split(r"(?<=\.)\s", TAG.split(function.comment)[0].strip())[0]
    page = head(function.name, 3, version)
    page += f".nh\n.ad l\n.SH NAME\n{function.name} \\- {roff(section.subject)}\n"
    page += ".SH SYNOPSIS\n" + code(f"#include <kavo_rolu.h>\n\n{function.prototype}")
    page += f".SH DESCRIPTION\n{roff(sentence)}\n.SH SEE ALSO\n.BR {page_of(family)} (3)\n"
    return page + "for its arguments, its statuses and how long it blocks;\n.BR kavo_rolu (7)\n"


def family_page(family, sections, version):
    page_name = page_of(family)
    functions = [function for section in sections for function in section.functions]
    # The first section of several carries the family's subject before the first comma.
    subject = sections[0].subject if len(sections) == 1 else sections[0].subject.split(",")[0]
    page = head(page_name.upper(), 3, version)
    page += f".nh\n.ad l\n.SH NAME\n{page_name} \\- {roff(subject)}\n"
    page += ".SH SYNOPSIS\n" + code("#include <kavo_rolu.h>\n\n" + "\n".join(f.prototype for f in functions))
    page += ".PP\nLink with \\fI\\-lkavo_rolu \\-pthread\\fR.\n.SH DESCRIPTION\n"
    page += ("The statuses named \"MCU statuses\", how long a call blocks, and which calls may overlap are "
             "explained in\n.BR kavo_rolu (7).\n")
    for section in sections:
        page += f".SH \"{section.subject.upper()}\"\n" if len(sections) > 1 else ""
        for function in section.functions:
            page += f".SS {function.name}\n{code(function.prototype)}.PP\n{function_text(function.comment)}"
    return page + ".SH SEE ALSO\n.BR kavo_rolu (7),\n.BR rolu (1),\n.BR rolu\\-sim (1)\n"


def types_of(header):
    """Each type as it is declared, with its comment above it."""
    begin = header.index("/* ---- Types")
    page = ""
    for comment in COMMENT.finditer(header, begin, header.index("@name ", begin)):
        declaration = re.compile(r"typedef struct .*?\n} \w+;|KAVO_ROLU_ENUM\(\w+\)\{.*?\};", re.S).match(header, comment.end())
        if declaration:
            text = re.sub(r"/\*\*< ?", "/* ", declaration.group(0))
            text = re.sub(r"^KAVO_ROLU_ENUM\((\w+)\)\{", r"enum \1 { /* int32_t */\n  ", text)
            text = re.sub(r"(?<!\n)\};$", r"\n};", text)
            text = re.sub(r"^ +", "  ", text, flags=re.M)
            page += (".PP\n" if page else "") + paragraphs(plain(comment.group(1))) + code(text)
    return page


def library_page(header, families, version):
    opening = plain(COMMENT.search(header).group(1))
    brief = re.search(r"@brief (.*)", opening).group(1)
    general = opening[opening.index(brief) + len(brief) :]
    lead, *headed = re.split(r"^@par (.*)\n", general, flags=re.M)
    page = head("KAVO_ROLU", 7, version)
    page += f".SH NAME\nkavo_rolu \\- {roff(brief[0].lower() + brief[1:].rstrip('.'))}\n"
    page += ".SH SYNOPSIS\n" + code("#include <kavo_rolu.h>\n\ncc program.c $(pkg-config --cflags --libs kavo_rolu)")
    page += ".SH DESCRIPTION\n" + paragraphs(lead)
    for title, text in zip(headed[::2], headed[1::2]):
        page += f".SH \"{title.upper()}\"\n" + paragraphs(text)
    page += ".SH STATUSES\n"
    page += "".join(f".TP\n.BR {name} \" ({value})\"\n{roff(plain(text))}\n" for name, value, text in STATUS.findall(header))
    page += ".SH TYPES\n" + types_of(header)
    pages = [f".BR {page_of(family)} (3)" for family in families]
    return page + ".SH SEE ALSO\n" + ",\n".join(pages + [".BR rolu (1)", ".BR rolu\\-sim (1)"]) + "\n"


def main(header_file, version, directory):
    header = pathlib.Path(header_file).read_text(encoding="utf-8")
    families = read_families(header)
    man3, man7 = (pathlib.Path(directory, section) for section in ("man3", "man7"))
    for folder in (man3, man7):
        folder.mkdir(parents=True, exist_ok=True)
        for page in folder.iterdir():
            page.unlink()
    (man7 / "kavo_rolu.7").write_text(library_page(header, families, version), encoding="utf-8")
    for family, sections in families.items():
        (man3 / f"{page_of(family)}.3").write_text(family_page(family, sections, version), encoding="utf-8")
        for section in sections:
            for function in section.functions:
                page = function_page(family, section, function, version)
                (man3 / f"{function.name}.3").write_text(page, encoding="utf-8")


if __name__ == "__main__":
    if len(sys.argv) != 4:
        sys.exit(__doc__)
    main(*sys.argv[1:])
