#!/usr/bin/env python3
"""Figures of the source tree: code and test lines, file and function lengths, and the
includes that cross a library's boundary into another library's non-public headers.

    python3 tools/treestats.py [build/layers.txt]

Code is every .h/.cpp outside tests/, fuzz/ and benchmarks/ folders; tests are the files
inside tests/ folders (the project's test programs and their support)."""
import os
import re
import sys

ROOT = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
SKIP = {'build', '.git', 'samples'}


def sources():
    for top, dirs, files in os.walk(ROOT):
        dirs[:] = [d for d in dirs if d not in SKIP and not d.startswith('build')]
        for name in files:
            if name.endswith(('.h', '.cpp')):
                path = os.path.relpath(os.path.join(top, name), ROOT)
                yield path


def kind(path):
    parts = path.split('/')
    if 'tests' in parts[:-1]:
        return 'test'
    if 'fuzz' in parts[:-1] or parts[0] == 'benchmarks':
        return 'other'
    return 'code'


def longest_function(lines):
    """Lines of the longest body opened by a '{' alone at column 0 (the project's style
    for function bodies) and closed by '}' at column 0."""
    best, start = 0, None
    for i, line in enumerate(lines):
        if i > 0 and lines[i - 1].lstrip().startswith(('class ', 'struct ', 'namespace', 'enum')):
            start = None
            continue
        if line.rstrip() == '{':
            start = i
        elif line.startswith('}') and start is not None:
            best = max(best, i - start + 1)
            start = None
    return best


def library_of(path, libs):
    owner = ''
    for lib in libs:
        if path.startswith(lib + '/') and len(lib) > len(owner):
            owner = lib
    return owner


def main():
    layer_map = sys.argv[1] if len(sys.argv) > 1 else os.path.join(ROOT, 'build/layers.txt')
    libs = []
    if os.path.exists(layer_map):
        libs = [l.split('|')[0] for l in open(layer_map) if '|' in l]
    counts = {'code': 0, 'test': 0, 'other': 0}
    statements = {'code': 0, 'test': 0, 'other': 0}
    sizes, functions = [], []
    crossing = {}
    include = re.compile(r'#\s*include\s+"([^"]+)"')
    for path in sources():
        text = open(os.path.join(ROOT, path), encoding='utf-8', errors='replace').read()
        lines = text.split('\n')
        k = kind(path)
        counts[k] += len(lines)
        statements[k] += sum(1 for l in lines if l.strip() and not l.strip().startswith('//'))
        if k == 'code':
            sizes.append((len(lines), path))
            functions.append((longest_function(lines), path))
        here = library_of(path, libs) or path.split('/')[0]
        for target in include.findall(text):
            name = os.path.basename(target)
            if not (name.endswith('_p.h') or '/internal/' in target):
                continue
            there = library_of(target, libs) or target.split('/')[0]
            if there != here and not (k == 'test' and here.startswith(there)):
                key = 'private' if name.endswith('_p.h') else 'internal'
                crossing.setdefault((key, k, path.split('/')[0] if here == path.split('/')[0] and path.split('/')[0] in ('apps', 'samples', 'benchmarks', 'tests') else 'library'), []).append((path, target))
    sizes.sort(reverse=True)
    functions.sort(reverse=True)
    print(f"code lines {counts['code']}, test lines {counts['test']}, "
          f"ratio {counts['test'] / max(1, counts['code']):.2f} "
          f"(benchmarks and fuzzers {counts['other']})")
    print(f"without blank and comment lines: code {statements['code']}, "
          f"tests {statements['test']}, ratio {statements['test'] / max(1, statements['code']):.2f}")
    print(f"code files {len(sizes)}, median {sizes[len(sizes) // 2][0]} lines, "
          f"over 400 lines: {sum(1 for s, _ in sizes if s > 400)}")
    for s, p in sizes[:5]:
        print(f"  {s:5d}  {p}")
    print("longest function bodies:")
    for s, p in functions[:5]:
        print(f"  {s:5d}  {p}")
    for (key, k, who), items in sorted(crossing.items()):
        print(f"{key} headers of another library included by {k} files of {who}: {len(items)}")
        for path, target in items[:40]:
            print(f"    {path} -> {target}")


if __name__ == '__main__':
    main()
