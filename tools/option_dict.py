#!/usr/bin/env python3
"""Writes a libFuzzer dictionary of one option table on stdout: every spelling
of its generated scan rows, as a command-file token, and every one-of word of
its generated item lists.  Usage: option_dict.py GENERATED_DIR TABLE"""
import re
import sys


def quoted(path, pattern):
    with open(path, encoding="utf-8") as source:
        return re.findall(pattern, source.read(), re.MULTILINE)


def main(generated_dir, table):
    rows = f"{generated_dir}/options/{table}.inc"
    words = ["-" + text for text in quoted(rows, r'^SCAN_ROW\("([^"]*)"')]
    words += [text.lstrip("+") for text in quoted(rows, r'OO_ITEM\("([^"]*)"')]
    for word in dict.fromkeys(words):
        escaped = word.replace("\\", "\\\\").replace('"', '\\"')
        print(f'"{escaped}"')


if __name__ == "__main__":
    main(*sys.argv[1:])
