#!/usr/bin/env bash
# tools/bench.sh: runs the benchmark programs on the generated 1,000,000-record tables and
# prints every row of the README's performance tables (the record sources, the controls):
# the figure on each back end, the goal, and the ratio to the same work done by the bare
# engine (bm_sqlite_raw: the same translated statements through SQLite's C API, which the
# sqlite3 shell cannot run because they call the dialect's functions and collations;
# bm_foxpro_raw: plain loops over the mapped table file). A figure that misses its goal is
# marked with "!".
#
#   tools/bench.sh                       every program, medians of 3 repetitions
#   tools/bench.sh --repetitions 1       quicker, noisier
#   tools/bench.sh --only navigator      only the programs whose name holds the word
#   tools/bench.sh --report DIR          print the table from the JSON of an earlier run
#
# The tables are generated on first use into $PLX_BENCH_DIR (default /tmp/plx-bench). Set
# PLX_BENCH_LOCK to a lock file to run each program under flock (a shared machine); the JSON
# of the run stays in the directory printed at the end.
set -euo pipefail
cd "$(dirname "$0")/.."

build=${PLX_BUILD_DIR:-build}
repetitions=3
only=""
report=""
while [ $# -gt 0 ]; do
    case "$1" in
        --repetitions) repetitions=$2; shift 2 ;;
        --only) only=$2; shift 2 ;;
        --report) report=$2; shift 2 ;;
        -h|--help) sed -n '2,17p' "$0"; exit 0 ;;
        *) echo "unknown option: $1 (see --help)" >&2; exit 2 ;;
    esac
done

programs=(bm_sqlite_recordsource bm_sqlite_raw bm_foxpro_recordsource bm_foxpro_raw
          bm_navigator bm_commands bm_fields bm_jet_filters bm_browsegrid bm_dialogs)

if [ -z "$report" ]; then
    report=$(mktemp -d "${TMPDIR:-/tmp}/plx-bench-run.XXXXXX")
    for program in "${programs[@]}"; do
        [[ -n "$only" && "$program" != *"$only"* ]] && continue
        binary="$build/benchmarks/$program"
        if [ ! -x "$binary" ]; then
            echo "skipped $program: $binary is not built (tools/build.sh)" >&2
            continue
        fi
        echo "running $program ..." >&2
        run=("$binary" "--benchmark_repetitions=$repetitions"
             --benchmark_report_aggregates_only=true
             "--benchmark_out=$report/$program.json" --benchmark_out_format=json)
        [ -n "${PLX_BENCH_LOCK:-}" ] && run=(flock "$PLX_BENCH_LOCK" "${run[@]}")
        if ! QT_QPA_PLATFORM=offscreen "${run[@]}" > "$report/$program.txt" 2>&1; then
            echo "$program failed: see $report/$program.txt" >&2
        fi
    done
fi

python3 - "$report" <<'PY'
import glob, json, os, sys

report = sys.argv[1]
medians = {}
for path in glob.glob(os.path.join(report, "*.json")):
    with open(path) as f:
        for b in json.load(f).get("benchmarks", []):
            if b.get("aggregate_name", "median") == "median" and not b.get("error_occurred"):
                medians[b["run_name"]] = b

SCALE = {"ns": 1e-6, "us": 1e-3, "ms": 1.0, "s": 1e3}

def ms(name, clock="real_time"):
    b = medians.get(name)
    return None if b is None else b[clock] * SCALE[b.get("time_unit", "ns")]

def counter(name, key):
    b = medians.get(name)
    return None if b is None else b.get(key)

def ratio(a, b):
    return None if a is None or b is None or b == 0 else a / b

def show_ms(v):
    if v is None:
        return "-"
    if v < 0.1:
        return "%.2f us" % (v * 1e3)
    return "%.3g ms" % v if v < 100 else "%.0f ms" % v

# A row: what is measured, how one back end's figure is read (a function of the back end's
# name parts), the bare engine's time for the same work, the goal and its test.
def timed(pattern, clock="real_time"):
    return lambda e: ms(pattern.format(**e), clock)

def wall_cpu(pattern):
    def read(e):
        wall, cpu = ms(pattern.format(**e)), ms(pattern.format(**e), "cpu_time")
        return None if wall is None else (wall, cpu)
    return read

def count(pattern, key):
    return lambda e: counter(pattern.format(**e), key)

def quotient(top, bottom):
    return lambda e: ratio(ms(top.format(**e)), ms(bottom.format(**e)))

ROWS = [
    ("Record sources", None),
    ("open + count (MoveLast, RecordCount)", timed("BM_{rs}Rs_OpenCount"),
     timed("BM_{raw}_OpenCount"), ("<=", 60.0, "ms")),
    ("sort change + FindFirst of the old ID", timed("BM_{rs}Rs_SortChange"),
     timed("BM_{raw}_SortFindId"), ("<=", 300.0, "ms")),
    ("find query UCase(NAME) LIKE 'SM*' + first ID", timed("BM_{rs}Rs_FindQuery"),
     timed("BM_{raw}_FindQuery"), ("<=", 15.0, "ms")),
    ("FindFirst by a CHR-coded ID", timed("BM_{rs}Rs_FindFirstId"),
     timed("BM_{raw}_FindFirstId"), ("<=", None, "ms", {"SQLite": 1.0, "FoxPro": 20.0})),
    ("MoveNext with all fields read", timed("BM_{rs}Rs_MoveNextFields"),
     timed("BM_{raw}_RowByKey"), ("<=", 0.005, "ms")),
    ("Edit + Update, durable (wall / CPU)", wall_cpu("BM_{rs}Rs_EditUpdate"),
     timed("BM_{write}"), ("<=", 0.5, "ms")),
    ("AddNew + Update, durable (wall / CPU)",
     wall_cpu("BM_{rs}Rs_AddNewUpdate/iterations:200"), None, ("<=", 0.5, "ms")),
    ("memory held per record (keyset)", count("BM_{rs}Rs_KeyMemory/iterations:1",
                                              "keyset_bytes_per_key"), None, ("<=", 16.0, "B")),
    ("The controls", None),
    ("navigator: attach and show the count", timed("BM_Nav_{nav}_AttachAndCount"),
     timed("BM_{raw}_OpenCount"), ("<=", 80.0, "ms")),
    ("navigator: sort change, old record current again", timed("BM_Nav_{nav}_SortChange"),
     timed("BM_{raw}_SortFindId"), ("<=", 350.0, "ms")),
    ("navigator: one find keystroke to IDChange", timed("BM_Nav_{nav}_FindKeystroke"),
     timed("BM_{raw}_FindQuery"), ("<=", 25.0, "ms")),
    ("navigator: Next click to IDChange", timed("BM_Nav_{nav}_NextClick"),
     timed("BM_{raw}_RowByKey"), ("<=", 1.0, "ms")),
    ("navigator: holding Next down (records/s)",
     count("BM_Nav_{nav}_HoldNext/iterations:2", "records_per_s"), None, (">=", 1000.0, "/s")),
    ("navigator: memory beyond its record source",
     count("BM_Nav_{nav}_Memory/iterations:1", "bytes_per_record"), None, ("<=", 4.0, "B")),
    ("fields: show a record (20 text rows + 10 checks)", timed("BM_Fields_ShowRecord_{fields}"),
     None, ("<=", 1.0, "ms")),
    ("fields: EditUpdate + Save (wall / CPU)", wall_cpu("BM_Fields_EditUpdateSave_{fields}"),
     timed("BM_{write}"), ("<=+", 2.0, "ms")),
    ("EDIT, change a field, SAVE (wall / CPU)", wall_cpu("BM_Cmd_{nav}_EditSave"),
     timed("BM_{write}"), ("<=+", 5.0, "ms")),
    ("NEW, then SAVE", timed("BM_Cmd_{nav}_NewSave/iterations:5"),
     timed("BM_{write}"), ("<=+", 5.0, "ms")),
    ("NewIDPLX with the key file present (bare: one look-up)", timed("BM_Cmd_{nav}_NewIDPLX"),
     timed("BM_{raw}_FindFirstId"), ("<=", 1.0, "ms")),
    ("filter Nz(CITY,'')='Denver' against IIF(...) (ratio)",
     quotient("BM_{filter}Filter_NzNew/min_time:2.000", "BM_{filter}Filter_NzOld/min_time:2.000"),
     None, ("<=", 1.5, "x")),
    ("grid: IDBrowseGrid to the grid painted", timed("BM_Grid_{nav}_OpenAndPaint"), None,
     ("<=", 150.0, "ms")),
    ("grid: page down, repainted", timed("BM_Grid_{nav}_PageDown"), None, ("<=", 16.0, "ms")),
    ("grid: scroll-bar jump to any row, repainted", timed("BM_Grid_{nav}_ScrollBarJump"), None,
     ("<=", 16.0, "ms")),
    ("grid: memory beyond the record source",
     count("BM_Grid_{nav}_Memory/iterations:1", "bytes_per_record"), None, ("<=", 8.0, "B")),
    ("grid: column find against the back end's FindFirst (ratio)",
     quotient("BM_Grid_{nav}_ColumnFind", "BM_Grid_{nav}_ColumnFindBackEnd"), None,
     ("<=", 1.2, "x")),
    ("value-list editor: 5,000 entries read, shown, painted",
     lambda e: ms("ValueListOpen") if e["nav"] == "SQLite" else None, None, ("<=", 50.0, "ms")),
    ("text editor: a 1 MB memo set, shown and painted",
     lambda e: ms("TextEditorOpen") if e["nav"] == "SQLite" else None, None,
     ("<=", 100.0, "ms")),
]

ENGINES = [
    ("SQLite", {"rs": "Sqlite", "raw": "SqliteRaw", "nav": "SQLite", "fields": "Sqlite",
                "filter": "Sqlite", "write": "SqliteRaw_Update"}),
    # No plain loop writes a FoxPro record durably: the record source's own write stands in.
    ("FoxPro", {"rs": "FoxPro", "raw": "FoxProRaw", "nav": "FoxPro", "fields": "FoxPro",
                "filter": "FoxPro", "write": "FoxProRs_EditUpdate"}),
]

def figure_text(value, unit):
    if value is None:
        return "-"
    if isinstance(value, tuple):
        return "%s / %s" % (show_ms(value[0]), show_ms(value[1]))
    if unit == "ms":
        return show_ms(value)
    if unit == "x":
        return "%.2fx" % value
    if unit == "/s":
        return "%.0f/s" % value
    return "%.1f %s" % (value, unit)

def goal_text(goal):
    op, limit, unit = goal[:3]
    if len(goal) > 3:
        return " / ".join("%s %s" % (k, figure_text(v, unit)) for k, v in goal[3].items())
    sign = {"<=": "<=", ">=": ">=", "<=+": "<="}[op]
    return "%s %s%s" % (sign, figure_text(limit, unit), " + write" if op == "<=+" else "")

def missed(value, bare, goal, engine):
    if value is None:
        return False
    op, limit, unit = goal[:3]
    if len(goal) > 3:
        limit = goal[3][engine]
    wall = value[0] if isinstance(value, tuple) else value
    if op == ">=":
        return wall < limit
    if op == "<=+":
        return bare is not None and wall - bare > limit
    return wall > limit

widths = (58, 20, 7, 20, 7, 22)
def line(cells):
    return "  ".join(str(c).ljust(w) for c, w in zip(cells, widths)).rstrip()

print(line(["Workload", "SQLite", "/bare", "FoxPro", "/bare", "Goal"]))
for row in ROWS:
    if row[1] is None:
        print()
        print(row[0])
        continue
    title, read, bare_read, goal = row
    cells = [title]
    for engine, parts in ENGINES:
        value = read(parts)
        bare = bare_read(parts) if bare_read else None
        wall = value[0] if isinstance(value, tuple) else value
        text = figure_text(value, goal[2]) + (" !" if missed(value, bare, goal, engine) else "")
        cells += [text, "%.3gx" % (wall / bare) if wall is not None and bare else "-"]
    cells.append(goal_text(goal))
    print(line(cells))
print()
print("! misses its goal; /bare: the figure over the bare engine's time for the same work")
print("(bm_sqlite_raw, bm_foxpro_raw; for the '+ write' rows, the back end's durable write,")
print("which the goal allows on top). JSON of the run: " + report)
PY
