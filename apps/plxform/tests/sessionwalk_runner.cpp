// apps/plxform/tests/sessionwalk_runner.cpp
#include "apps/plxform/tests/sessionwalk_runner.h"

#include "tests/support/fulldisk.h"

#include "apps/plxform/sampledata.h"
#include "apps/plxform/tests/sessionwalk_driver.h"
#include "apps/plxform/tests/sessionwalk_generator.h"
#include "apps/plxform/hostform.h"

#include <QDir>
#include <QDirIterator>
#include <QElapsedTimer>
#include <QFile>
#include <QLocale>
#include <QTemporaryDir>

#include <functional>
#include <memory>

namespace plx::walk {

namespace {

struct Sample
{
    QTemporaryDir dir;
    QString root; // .../sample
    Table foxPro, sqlite;
};

Sample *sample()
{
    static std::unique_ptr<Sample> s;
    if (!s)
        s = std::make_unique<Sample>();
    return s.get();
}

bool copyTree(const QString &from, const QString &to)
{
    QDirIterator it(from, QDir::Files | QDir::NoDotAndDotDot, QDirIterator::Subdirectories);
    while (it.hasNext()) {
        const QString file = it.next();
        const QString target = to + file.mid(from.size());
        QDir().mkpath(QFileInfo(target).path());
        if (!QFile::copy(file, target))
            return false;
    }
    return true;
}

QString describeBoxes(const QList<ShownBox> &boxes)
{
    QStringList lines;
    for (const ShownBox &b : boxes)
        lines << QStringLiteral("\"%1\" (%2): \"%3\"")
                     .arg(b.title)
                     .arg(b.style)
                     .arg(QString(b.text).replace(QLatin1String("\r\n"), QLatin1String(" | ")));
    return lines.isEmpty() ? QStringLiteral("none") : lines.join(QStringLiteral("; "));
}

QString describeExpected(const QList<ExpectedBox> &boxes)
{
    QStringList lines;
    for (const ExpectedBox &b : boxes)
        lines << QStringLiteral("\"%1\" (%2): /%3/")
                     .arg(b.title)
                     .arg(b.style)
                     .arg(QString(b.text.pattern())
                              .replace(QLatin1String("\r\n"), QLatin1String(" | ")));
    return lines.isEmpty() ? QStringLiteral("none") : lines.join(QStringLiteral("; "));
}

QString stepLine(const Step &step)
{
    return formatScript({ step }).split(QLatin1Char('\n')).join(QStringLiteral(" / ")).chopped(3);
}

// One walk on a fresh copy of the sample: the form, the model and the checks between them.
class Walk
{
public:
    explicit Walk(const WalkOptions &options) : m_options(options) { }

    std::optional<WalkFailure> start();
    std::optional<WalkFailure> step(const Step &step, int index);
    std::optional<WalkFailure> finish(int index);
    const WalkModel &model() const { return *m_model; }

private:
    std::optional<WalkFailure> checkBoxes(const Expectation &e);
    std::optional<WalkFailure> checkRecord(const Expectation &e, const FormView &view);
    std::optional<WalkFailure> checkShown(const FormView &view);
    std::optional<WalkFailure> checkDisk();

    WalkOptions m_options;
    QTemporaryDir m_data;
    std::unique_ptr<FormDriver> m_form;
    std::unique_ptr<WalkModel> m_model;
};

std::optional<WalkFailure> Walk::start()
{
    if (!copyTree(sample()->root, m_data.path()))
        return WalkFailure{ -1, QStringLiteral("setup"), QStringLiteral("cannot copy the sample") };
    test::FullDisk::prepare(); // before any database opens, so a FULLSAVE can fill the disk
    m_form = std::make_unique<FormDriver>(m_options.backend, m_data.path());
    ModelOptions mo;
    mo.backend = m_options.backend;
    mo.user = form::systemUserName();
    mo.refuseDuplicateIDs = m_options.refuseDuplicateIDs;
    mo.idRowTyped = m_options.idRowTyped;
    m_model = std::make_unique<WalkModel>(pristineTable(m_options.backend), mo);
    QString error;
    if (!m_form->open(&error))
        return WalkFailure{ -1, QStringLiteral("setup"), error };
    // The form opens on the first record of the first sort.
    Expectation opening;
    opening.currentAmong = m_model->recordsAt(0);
    opening.position = 0;
    opening.setsScrollBar = true;
    if (auto f = checkBoxes(opening))
        return f;
    if (auto f = checkRecord(opening, m_form->view()))
        return f;
    return checkShown(m_form->view());
}

std::optional<WalkFailure> Walk::step(const Step &s, int index)
{
    m_form->clock().tick();
    const QDateTime now = m_form->clock().now();
    m_form->perform(s);
    const Expectation e = m_model->apply(s, now);
    std::optional<WalkFailure> failure = checkBoxes(e);
    const FormView view = m_form->view();
    if (!failure)
        failure = checkRecord(e, view);
    if (!failure)
        failure = checkShown(view);
    if (!failure && (e.touchesDisk || index % std::max(1, m_options.diskCheckEvery) == 0))
        failure = checkDisk();
    if (failure) {
        failure->step = index;
        failure->message =
            QStringLiteral("step %1 (%2): %3").arg(index + 1).arg(stepLine(s), failure->message);
    }
    return failure;
}

std::optional<WalkFailure> Walk::finish(int index)
{
    std::optional<WalkFailure> failure = checkDisk();
    if (!failure && m_options.crossCheckWithPython && m_options.backend == Backend::FoxPro) {
        Table python;
        QString error;
        if (!readFoxProWithPythonDbf(m_form->tablePath(), &python, &error))
            failure = WalkFailure{ index, QStringLiteral("python3-dbf"), error };
        else if (const QStringList d = tableDifferences(m_model->table(), python); !d.isEmpty())
            failure = WalkFailure{ index, QStringLiteral("python3-dbf"),
                                   QStringLiteral("python3-dbf reads otherwise: ")
                                       + d.join(QStringLiteral("; ")) };
    }
    return failure;
}

std::optional<WalkFailure> Walk::checkBoxes(const Expectation &e)
{
    const QList<ShownBox> shown = m_form->prompter().takeShown();
    QList<ExpectedBox> open = e.boxes;
    QList<ShownBox> unexpected;
    for (const ShownBox &b : shown) {
        const auto match = std::find_if(open.begin(), open.end(), [&b](const ExpectedBox &x) {
            return x.title == b.title && x.style == b.style && x.text.match(b.text).hasMatch();
        });
        if (match == open.end())
            unexpected << b;
        else
            open.erase(match);
    }
    if (unexpected.isEmpty() && open.isEmpty())
        return std::nullopt;
    return WalkFailure{ -1, QStringLiteral("box"),
                        QStringLiteral("boxes shown: %1; boxes the rules name: %2")
                            .arg(describeBoxes(shown), describeExpected(e.boxes)) };
}

std::optional<WalkFailure> Walk::checkRecord(const Expectation &e, const FormView &view)
{
    // NEW and COPY made a record the model names by the ID the form gave it.
    if (e.createsRecord)
        if (const QString why = m_model->acceptNewRecord(view.currentID); !why.isEmpty())
            return WalkFailure{ -1, QStringLiteral("new record"), why };

    if (view.editing != m_model->editing() || view.browsingButtons == m_model->editing()
        || view.navigationEnabled == m_model->editing())
        return WalkFailure{
            -1, QStringLiteral("edit state"),
            QStringLiteral("the form is %1 (Save %2, Edit %3, sort box %4); it should be %5")
                .arg(view.editing ? QStringLiteral("editing") : QStringLiteral("browsing"))
                .arg(view.editing ? QStringLiteral("on") : QStringLiteral("off"))
                .arg(view.browsingButtons ? QStringLiteral("on") : QStringLiteral("off"))
                .arg(view.navigationEnabled ? QStringLiteral("on") : QStringLiteral("off"))
                .arg(m_model->editing() ? QStringLiteral("editing") : QStringLiteral("browsing"))
        };
    if (!e.createsRecord && !e.currentAmong.isEmpty() && !e.currentAmong.contains(view.currentID)) {
        QStringList some = QStringList(e.currentAmong.begin(), e.currentAmong.end()).mid(0, 4);
        return WalkFailure{
            -1, QStringLiteral("current record"),
            QStringLiteral("the form shows %1 (%2); the rules give %3%4")
                .arg(view.currentID,
                     textOf(m_model->table().value(view.currentID).value(QStringLiteral("NAME"))),
                     some.join(QStringLiteral(", ")),
                     e.currentAmong.size() > 4 ? QStringLiteral(", ...") : QString())
        };
    } else if (!e.createsRecord && e.currentAmong.isEmpty()
               && view.currentID != m_model->currentID()) {
        return WalkFailure{ -1, QStringLiteral("current record"),
                            QStringLiteral("the form shows %1; the current record is %2")
                                .arg(view.currentID, m_model->currentID()) };
    }
    const auto [first, last] = m_model->positionRange(view.currentID);
    if ((e.position && view.position != *e.position) || view.position < first
        || view.position > last)
        return WalkFailure{ -1, QStringLiteral("position"),
                            QStringLiteral("the navigator stands at %1; record %2 is at %3%4")
                                .arg(view.position)
                                .arg(view.currentID)
                                .arg(first == last ? QString::number(first)
                                                   : QStringLiteral("%1..%2").arg(first).arg(last))
                                .arg(e.position ? QStringLiteral(" (expected %1)").arg(*e.position)
                                                : QString()) };
    m_model->adopt(view.currentID, view.position);
    // Whenever the user can drag it, the scroll bar stands at the record and reaches every
    // record of the query.
    const bool browsing = !m_model->editing() && m_model->count() > 0;
    if ((e.setsScrollBar || browsing) && view.scrollValue != view.position)
        return WalkFailure{ -1, QStringLiteral("scroll bar"),
                            QStringLiteral("the scroll bar stands at %1; the record is at %2")
                                .arg(view.scrollValue)
                                .arg(view.position) };
    if (browsing && view.scrollMaximum != m_model->count() - 1)
        return WalkFailure{ -1, QStringLiteral("scroll bar"),
                            QStringLiteral("the scroll bar ends at %1; the last record is at %2")
                                .arg(view.scrollMaximum)
                                .arg(m_model->count() - 1) };
    return std::nullopt;
}

std::optional<WalkFailure> Walk::checkShown(const FormView &view)
{
    if (view.countText != m_model->countText())
        return WalkFailure{ -1, QStringLiteral("count"),
                            QStringLiteral("the frame reads \"%1\"; the query holds \"%2\"")
                                .arg(view.countText, m_model->countText()) };
    for (const QString &field : WalkModel::rowFields()) {
        const QString want = plainMemo(m_model->shownText(field)).trimmed();
        const QString got = plainMemo(view.rows.value(field)).trimmed();
        const bool upper = field == QLatin1String("ID") || field == QLatin1String("STATE");
        if (got.compare(want, upper ? Qt::CaseInsensitive : Qt::CaseSensitive) != 0)
            return WalkFailure{ -1, QStringLiteral("rows"),
                                QStringLiteral("row %1 shows \"%2\"; it should show \"%3\"%4")
                                    .arg(WalkModel::caption(field), got.left(80), want.left(80),
                                         m_model->typedInto(field) ? QStringLiteral(" (typed)")
                                                                   : QString()) };
    }
    const QString status = QStringLiteral("Record %1 of %2")
                               .arg(QLocale(QLocale::English).toString(m_model->position() + 1),
                                    QLocale(QLocale::English).toString(m_model->count()));
    if (m_options.checkStatusBar && m_model->position() >= 0 && view.status != status)
        return WalkFailure{ -1, QStringLiteral("status bar"),
                            QStringLiteral(
                                "the status bar reads \"%1\"; the navigator is at \"%2\"")
                                .arg(view.status, status) };
    return std::nullopt;
}

std::optional<WalkFailure> Walk::checkDisk()
{
    Table disk;
    QString error;
    QStringList duplicates;
    if (!m_form->readTable(&disk, &error, &duplicates))
        return WalkFailure{ -1, QStringLiteral("disk"), error };
    if (!duplicates.isEmpty())
        return WalkFailure{ -1, QStringLiteral("disk"),
                            QStringLiteral("IDs held by more than one record: ")
                                + duplicates.join(QStringLiteral(", ")) };
    const QStringList d = tableDifferences(m_model->table(), disk);
    if (d.isEmpty())
        return std::nullopt;
    return WalkFailure{ -1, QStringLiteral("disk"),
                        QStringLiteral("the table on disk differs: ")
                            + d.join(QStringLiteral("; ")) };
}

} // namespace

WalkOptions walkOptionsFromEnvironment(Backend backend)
{
    WalkOptions o;
    o.backend = backend;
    o.refuseDuplicateIDs = qEnvironmentVariableIntValue("PLX_WALK_REFUSE_DUPLICATE_IDS") != 0;
    o.idRowTyped = qEnvironmentVariableIntValue("PLX_WALK_ID_ROW_TYPED") != 0;
    o.checkStatusBar = qEnvironmentVariableIntValue("PLX_WALK_NO_STATUS_CHECK") == 0;
    return o;
}

bool prepareSample(QString *error)
{
    Sample *s = sample();
    if (!s->root.isEmpty())
        return true;
    if (!s->dir.isValid()) {
        *error = QStringLiteral("no temporary folder");
        return false;
    }
    qputenv("PLX_HARROWBY_DIR", s->dir.path().toUtf8());
    QDir().mkpath(s->dir.filePath(QStringLiteral("WORK-PLX")));
    const Result<form::SamplePaths> paths =
        form::ensureSample(s->dir.filePath(QStringLiteral("made")));
    if (!paths.isOk()) {
        *error = paths.status().message();
        return false;
    }
    if (!readFoxProTable(paths.value().foxProTable, &s->foxPro, error)
        || !readSqliteTable(paths.value().sqliteFile, QStringLiteral("FACILITY"), &s->sqlite,
                            error))
        return false;
    s->root = s->dir.filePath(QStringLiteral("made/sample"));
    return true;
}

const Table &pristineTable(Backend backend)
{
    return backend == Backend::FoxPro ? sample()->foxPro : sample()->sqlite;
}

QString sampleTablePath(Backend backend)
{
    return sample()->root
        + (backend == Backend::FoxPro ? QStringLiteral("/foxpro/FACILITY.DBF")
                                      : QStringLiteral("/facility.sqlite"));
}

namespace {

// Runs a walk of at most `count` steps, step i being `stepAt(model, i)`. Past a failing
// check it goes on only when `goOnPastFailures` (a benchmark measures the same work on
// every build); the end-of-walk check runs when no step failed.
WalkResult runWalk(const WalkOptions &options, qsizetype count, bool goOnPastFailures,
                   const std::function<Step(const WalkModel &, qsizetype)> &stepAt)
{
    WalkResult result;
    QString error;
    if (!prepareSample(&error)) {
        result.failure = WalkFailure{ -1, QStringLiteral("setup"), error };
        return result;
    }
    Walk walk(options);
    result.failure = walk.start();
    for (qsizetype i = 0; !result.failure && i < count; ++i) {
        result.steps << stepAt(walk.model(), i);
        result.failure = walk.step(result.steps.last(), int(i));
        if (result.failure && goOnPastFailures) {
            ++result.failuresPassed;
            result.failure.reset();
        }
    }
    if (!result.failure)
        result.failure = walk.finish(int(result.steps.size()) - 1);
    return result;
}

} // namespace

WalkResult runRandomWalk(const WalkOptions &options)
{
    StepGenerator generator(options.seed, options.idRowTyped && options.refuseDuplicateIDs);
    return runWalk(
        options, options.steps, !options.stopAtFirstFailure,
        [&generator](const WalkModel &model, qsizetype) { return generator.next(model); });
}

WalkResult replaySteps(const WalkOptions &options, const QList<Step> &steps)
{
    return runWalk(options, steps.size(), false,
                   [&steps](const WalkModel &, qsizetype i) { return steps[i]; });
}

QList<Step> shrinkFailingWalk(const WalkOptions &options, const WalkResult &failing, int maxReplays,
                              qint64 maxMilliseconds)
{
    if (!failing.failure)
        return failing.steps;
    const QString kind = failing.failure->kind;
    QList<Step> best = failing.steps;
    QElapsedTimer clock;
    clock.start();
    int replays = 0;
    // Fails the same way: then the failing prefix is all that is kept.
    auto stillFails = [&](const QList<Step> &candidate) {
        ++replays;
        const WalkResult r = replaySteps(options, candidate);
        if (!r.failure || r.failure->kind != kind)
            return false;
        best = r.steps;
        return true;
    };
    auto withinBudget = [&] { return replays < maxReplays && clock.elapsed() < maxMilliseconds; };
    for (qsizetype chunks = 2; best.size() > 1 && withinBudget();) {
        const qsizetype size = (best.size() + chunks - 1) / chunks;
        bool dropped = false;
        // Later chunks first: the steps before a failure matter more often than those after.
        for (qsizetype i = (best.size() + size - 1) / size - 1; i >= 0 && withinBudget(); --i) {
            QList<Step> candidate = best;
            candidate.remove(i * size, std::min(size, best.size() - i * size));
            if (!candidate.isEmpty() && stillFails(candidate)) {
                dropped = true;
                break;
            }
        }
        if (dropped)
            chunks = std::max<qsizetype>(chunks - 1, 2);
        else if (chunks >= best.size())
            break;
        else
            chunks = std::min(chunks * 2, best.size());
    }
    return best;
}

QString failureScript(const WalkOptions &options, const QList<Step> &steps,
                      const WalkFailure &failure)
{
    return formatScript(
        steps,
        { QStringLiteral("session walk on plxform's sample form"),
          QStringLiteral("backend %1").arg(backendName(options.backend)),
          QStringLiteral("seed %1").arg(options.seed),
          QStringLiteral("fails: [%1] %2").arg(failure.kind, failure.message),
          QStringLiteral("replay: PLX_WALK_SCRIPT=<this file> plxform_sessionwalk_tests "
                         "--gtest_filter='*ReplaysTheScript*'") });
}

} // namespace plx::walk
