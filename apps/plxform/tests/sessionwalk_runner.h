// apps/plxform/tests/sessionwalk_runner.h: a session walk: seeded random user steps on the
// sample form, each checked against the model (boxes, edit state, current record, position,
// count, rows, status bar, and the table on disk read by the walk's own readers); a failing
// walk shrunk to a short script that fails the same way.
#pragma once

#include "apps/plxform/tests/sessionwalk_model.h"
#include "apps/plxform/tests/sessionwalk_script.h"
#include "apps/plxform/tests/sessionwalk_table.h"

#include <optional>

namespace plx::walk {

struct WalkOptions
{
    Backend backend = Backend::FoxPro;
    quint64 seed = 1;
    int steps = 500;
    // The table on disk is read after every step that may write and every K-th step.
    int diskCheckEvery = 10;
    // An ID another record holds must be refused on SAVE. Off by default; on with
    // PLX_WALK_REFUSE_DUPLICATE_IDS=1 (when off, the walk never types a taken ID).
    bool refuseDuplicateIDs = false;
    // The ID row takes typing (PLX_WALK_ID_ROW_TYPED=1). Off: the form makes the IDs and
    // keeps their row read only.
    bool idRowTyped = false;
    // The status bar's "Record N of M" follows the navigator.
    bool checkStatusBar = true;
    // At the end, the FoxPro table read by python3-dbf must equal the model too.
    bool crossCheckWithPython = false;
    // False: a failing step is counted and the walk goes on (to measure a whole walk).
    bool stopAtFirstFailure = true;
};

// The options of the environment: PLX_WALK_REFUSE_DUPLICATE_IDS, PLX_WALK_ID_ROW_TYPED,
// PLX_WALK_NO_STATUS_CHECK.
WalkOptions walkOptionsFromEnvironment(Backend backend);

struct WalkFailure
{
    int step = -1; // index of the failing step; -1 before the first
    QString kind; // what disagreed: "box", "edit state", "current record", "position", ...
    QString message;
};

struct WalkResult
{
    QList<Step> steps; // the steps run, the failing one last
    std::optional<WalkFailure> failure;
    int failuresPassed = 0; // failing steps the walk went on after (stopAtFirstFailure off)
};

// The sample written once per process into a temporary folder (PLX_HARROWBY_DIR points
// there); false with `error` when it cannot be made.
bool prepareSample(QString *error);
// The sample's table as the walk's own reader reads it, before any step.
const Table &pristineTable(Backend backend);
// The sample's table file (FoxPro) or database (SQLite) the copies are made from.
QString sampleTablePath(Backend backend);

// A walk of options.steps random steps from options.seed; stops at the first failure.
WalkResult runRandomWalk(const WalkOptions &options);
// Runs `steps` on a fresh copy of the sample; stops at the first failure.
WalkResult replaySteps(const WalkOptions &options, const QList<Step> &steps);
// The shortest failing script found within the budget (replays and milliseconds): steps
// and chunks are dropped while the walk still fails with the same kind of failure.
QList<Step> shrinkFailingWalk(const WalkOptions &options, const WalkResult &failing,
                              int maxReplays = 400, qint64 maxMilliseconds = 120000);
// The script with a header naming the back end, the seed and the failure.
QString failureScript(const WalkOptions &options, const QList<Step> &steps,
                      const WalkFailure &failure);

} // namespace plx::walk
