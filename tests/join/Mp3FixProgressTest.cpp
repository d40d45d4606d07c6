// The wizard's size figure during Operation 2 of an MP3 join: the fix tool
// writes OutputFile as it goes, so the figure moves while it runs.
#include <gtest/gtest.h>

#include <signal.h>

#include <functional>

#include <QSet>

#include "join/JoinRunTestBed.h"
#include "join/StartJoin.h"
#include "list/FillListItem.h"
#include "list/ListTotals.h"
#include "list/ListviewLayout.h"
#include "platform/ProcessKiller.h"
#include "support/MediaMaker.h"

namespace {

// The process whose executable lies in the folder, or 0.
qint64 processIn(const QString& folder) {
    for (const qint64 pid : RunningProcessIds()) {
        if (ExecutablePathOf(pid).startsWith(folder + u'/')) {
            return pid;
        }
    }
    return 0;
}

// Lets the stopped process run for a moment at a time, calling look between two
// moments, until it has ended.
void runInSlices(qint64 pid, const QString& folder, const std::function<void()>& look) {
    while (ExecutablePathOf(pid).startsWith(folder + u'/')) {
        ::kill(pid, SIGCONT);
        QThread::usleep(300);
        ::kill(pid, SIGSTOP);
        look();
    }
    ::kill(pid, SIGCONT);
}

}  // namespace

TEST(Mp3FixProgress, Operation2_SizeFigureMovesWhileTheFixToolWrites) {
    ASSERT_TRUE(HaveFfmpeg());
    JoinRunTestBed bed;
    SetInstallFolderOverride(bed.install);
    bed.putRealTools();
    Mp3Options options;
    options.seconds = 60;
    options.vbrQuality = 4;
    const QString source = MakeMp3(bed.media, QStringLiteral("long.mp3"), options);
    ASSERT_FALSE(source.isEmpty()) << LastMediaMakerError().toStdString();
    MainModel& model = bed.model;
    model.state.setListType(QStringLiteral("MP3"));
    ClearColumns(model);
    AddSharedColumns(model);
    AddMP3Columns(model);
    for (int i = 0; i < 40; ++i) {
        const int row = model.items.addRow(QStringLiteral("long.mp3"));
        model.items.setCell(row, 3, source);
        FillListItem(model, 0);
    }
    UpdateListTotals(model);
    const QString output = bed.media + QStringLiteral("/joined.mp3");
    bed.questions.chooseFile(output);
    ASSERT_TRUE(StartJoin(model));
    JoinRun& run = bed.makeRun();
    run.load(false);

    // Once the tool is seen, it is held still and let run in short slices, with
    // a tick between two slices, so that every tick reads a size the tool is in
    // the middle of, however fast the tool is.
    QStringList seen;
    const auto look = [&] {
        run.tick();
        if (seen.isEmpty() || seen.last() != bed.state.writtenSizeText()) {
            seen << bed.state.writtenSizeText();
        }
    };
    const bool done = bed.tickUntil(
        [&] {
            if (seen.isEmpty() && bed.state.operationTag() == QStringLiteral("2")) {
                const qint64 tool = processIn(bed.appData);
                if (tool > 0 && ::kill(tool, SIGSTOP) == 0) {
                    look();
                    runInSlices(tool, bed.appData, look);
                }
            }
            return bed.finished();
        },
        120000);
    ASSERT_TRUE(done);
    EXPECT_EQ(bed.state.operationText(), QStringLiteral("Finished!"));
    seen.removeAll(QStringLiteral("0 KB"));
    EXPECT_GE(seen.size(), 2) << seen.join(QStringLiteral(", ")).toStdString();
    const qint64 finalKb = QFileInfo(output).size() / 1024;
    const auto kilobytes = [](QString text) {
        return text.remove(QStringLiteral(" KB")).remove(u',').remove(u'.').toLongLong();
    };
    if (!seen.isEmpty()) {
        EXPECT_GT(kilobytes(seen.first()), 0);
        EXPECT_LT(kilobytes(seen.first()), finalKb) << seen.first().toStdString();
    }
    run.cancelClicked();
}
