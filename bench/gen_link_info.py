#!/usr/bin/env python3
"""Writes a link information file of about the given size, the same every time
for one seed: input files, object components (about five per logical group,
some of them uninitialized) and logical groups (sections) that refer to them,
laid out as the linker writes them.

usage: gen_link_info.py MEGABYTES OUTPUT [SEED]
"""
import random
import sys

SECTIONS = [".text", ".text", ".text", ".const", ".data", ".cinit", ".bss", ".stack",
            ".sysmem", ".switch", ".debug_info", ".debug_line", ".debug_abbrev", ".debug_frame"]
UNINITIALIZED = {".bss", ".stack", ".sysmem"}


def placed(rng, element, number, name, size):
    """The opening lines an object component and a logical group share."""
    address = rng.randint(0, 0xFFFFFF) & ~3
    prefix = "oc" if element == "object_component" else "lg"
    return [f'\t\t<{element} id="{prefix}-{number}">', f"\t\t\t<name>{name}</name>",
            f"\t\t\t<load_address>0x{address:x}</load_address>",
            f"\t\t\t<run_address>0x{address:x}</run_address>", f"\t\t\t<size>0x{size:x}</size>"]


def component(rng, number, section, files):
    size = rng.randint(2, 0x4000)
    name = f"{section}:fn_{rng.getrandbits(32):08x}"
    lines = placed(rng, "object_component", number, name, size)
    lines.append(f"\t\t\t<alignment>0x{rng.choice((1, 2, 4, 8)):x}</alignment>")
    if section in UNINITIALIZED:
        lines.append("\t\t\t<uninitialized>true</uninitialized>")
    lines.append(f'\t\t\t<input_file_ref idref="fl-{rng.randint(1, files)}"/>')
    lines.append("\t\t</object_component>")
    return "\n".join(lines) + "\n", size


def group(rng, number, section, refs, size):
    lines = placed(rng, "logical_group", number, section, size) + ["\t\t\t<contents>"]
    lines += [f'\t\t\t\t<object_component_ref idref="oc-{ref}"/>' for ref in refs]
    lines += ["\t\t\t</contents>", "\t\t</logical_group>"]
    return "\n".join(lines) + "\n"


def main():
    if len(sys.argv) not in (3, 4):
        sys.exit(__doc__.strip().splitlines()[-1])
    target = int(float(sys.argv[1]) * 1024 * 1024)
    rng = random.Random(int(sys.argv[3]) if len(sys.argv) == 4 else 1)
    files = max(1, target // 20000)
    head = ['<?xml version="1.0" encoding="utf-8"?>', "<link_info>",
            "\t<version>1</version>", "\t<banner>link information</banner>",
            f"\t<link_time>0x{rng.randint(0x60000000, 0x70000000):x}</link_time>",
            "\t<link_errors>0x0</link_errors>", "\t<input_file_list>"]
    for number in range(1, files + 1):
        head += [f'\t\t<input_file id="fl-{number}">',
                 f"\t\t\t<path>obj/</path><kind>object</kind><file>m{number}.obj</file>",
                 "\t\t</input_file>"]
    head.append("\t</input_file_list>")
    components, groups = [], []
    written = sum(len(line) + 1 for line in head)
    next_component = 1
    while written < target:
        section = rng.choice(SECTIONS)
        refs, total = [], 0
        for _ in range(rng.randint(1, 9)):
            text, size = component(rng, next_component, section, files)
            components.append(text)
            refs.append(next_component)
            written += len(text)
            total += size
            next_component += 1
        groups.append(group(rng, len(groups) + 1, section, refs, total))
        written += len(groups[-1])
    with open(sys.argv[2], "w", encoding="utf-8") as out:
        out.write("\n".join(head) + "\n\t<object_component_list>\n")
        out.writelines(components)
        out.write("\t</object_component_list>\n\t<logical_group_list>\n")
        out.writelines(groups)
        out.write("\t</logical_group_list>\n</link_info>\n")


if __name__ == "__main__":
    main()
