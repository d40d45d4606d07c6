#include <gtest/gtest.h>

#include <QFileInfo>

#include "ScriptTestSupport.h"
#include "app/Settings.h"
#include "join/BatchDialect.h"
#include "join/JoinCleanup.h"
#include "join/JoinScripts.h"
#include "join/RemakeProbe.h"
#include "join/ShDialect.h"
#include "mpegaudio/JoinSources.h"

namespace {

// The lines of a script file, which must end in the given line end and hold
// no other.
QStringList scriptLines(const QString& path, const QString& lineEnd) {
    const QString text = QString::fromUtf8(ScriptTestBed::readFile(path));
    EXPECT_TRUE(text.endsWith(lineEnd)) << path.toStdString();
    QStringList lines = text.split(lineEnd);
    lines.removeLast();
    if (lineEnd == QStringLiteral("\n")) {
        for (const QString& line : lines) {
            EXPECT_FALSE(line.contains(u'\r')) << line.toStdString();
        }
    }
    return lines;
}

QString q(const QString& path) {
    return ShDialect::quote(path);
}

QStringList logRecords(const QString& logFile) {
    QString text = QString::fromUtf8(ScriptTestBed::readFile(logFile));
    QStringList records = text.split(u'\n');
    if (!records.isEmpty() && records.last().isEmpty()) {
        records.removeLast();
    }
    return records;
}

class JoinScriptsTest : public ::testing::Test {
protected:
    void SetUp() override {
        bed.putDummyTools();
        items = {bed.media + QStringLiteral("/one.mp3"), bed.media + QStringLiteral("/two.mp3"),
                 bed.media + QStringLiteral("/three.mp3")};
        output = bed.dir.path() + QStringLiteral("/out/Joined File.mp3");
        temp = output + QStringLiteral(".vlr.mp3");
    }

    QString app(const QString& name) const { return bed.appData + u'/' + name; }

    // A step of an sh script as it is written: on failure its exit status and
    // number go to the record, the marker goes, the script ends; a copy's
    // error output goes to the step's log.
    QString checked(const QString& command, int step, bool errorLog) const {
        const QString line =
            errorLog ? "{ " + command + "; } 2> " + q(app("JoinStep.log")) : command;
        return line + " || { echo \"$?\" " + QString::number(step) + " > " +
               q(app("JoinStep.failed")) + "; rmdir " + q(app("JoinTemp")) + "; exit 1; }";
    }
    QString catLine(qsizetype i) const {
        const QString open = i == 0 ? "command exec 3> " + q(temp) + " && " : QString();
        return checked(open + "cat " + q(items[i]) + " >&3 < /dev/null", static_cast<int>(i) + 1,
                       true);
    }
    // The remake options: the whole join read before the streams are known.
    QString remakeOptions() const {
        return " -analyzeduration 360000000000 -probesize 5000000 -i " + q(temp) +
               " -map 0 -map -0:d -c copy";
    }
    QString win(const QString& name) const { return bed.appData + u'\\' + name; }

    // The first script of a join in the sh dialect: the items joined by cat
    // into the temporary file, each line after the check that the script is
    // still wanted.
    QStringList shCatScript() const {
        const QString stop = "[ -f " + q(app("TempFile.bat")) + " ] || exit 1";
        QStringList lines = {"#!/bin/sh", "echo Generated with Velmora",
                             "echo Visit us at: www.velmora.example"};
        for (qsizetype i = 0; i < items.size(); ++i) {
            lines << stop << catLine(i);
        }
        lines << stop << "rmdir " + q(app("JoinTemp")) + " < /dev/null"
              << "echo Joined Succesfully!"
              << "exit";
        return lines;
    }

    QString write(const ScriptDialect& dialect) {
        QString path = output;
        WriteJoinScripts(bed.model, path, dialect);
        return path;
    }

    ScriptTestBed bed;
    QStringList items;
    QString output;
    QString temp;
    BatchDialect batch;
    ShDialect sh;
};

// ---- batch dialect ----

TEST_F(JoinScriptsTest, Batch_Mp3List_WritesCopyLinesAndFixScriptLineForLine) {
    bed.makeMp3List(items);
    EXPECT_EQ(write(batch), temp);

    const QStringList first = scriptLines(app("TempFile.bat"), "\r\n");
    const QStringList expectedFirst = {
        "@echo off",
        "echo Generated with Velmora",
        "echo Visit us at: www.velmora.example",
        "Copy /b \"" + items[0] + "\" \"" + temp + "\"",
        "Copy /b \"" + temp + "\"+\"" + items[1] + "\" \"" + temp + "\"",
        "Copy /b \"" + temp + "\"+\"" + items[2] + "\" \"" + temp + "\"",
        "rmdir \"" + win("JoinTemp") + "\"",
        "echo Joined Succesfully!",
        "exit"};
    EXPECT_EQ(first, expectedFirst);

    const QStringList fix = scriptLines(app("MP3.bat"), "\r\n");
    const QStringList expectedFix = {
        "@echo off",
        "echo Generated with Velmora",
        "echo Visit us at: www.velmora.example",
        "echo Fixing MP3 File...",
        "\"" + win("MP3.exe") + "\" --removedId3v1 --removeId3v2 --removeUnknown --keepLame \"" +
            temp + "\" \"" + output + "\"",
        "echo MP3 File has been fixed!",
        "rmdir \"" + win("JoinTemp") + "\"",
        "exit"};
    EXPECT_EQ(fix, expectedFix);
    EXPECT_FALSE(QFile::exists(app("MPEG2.bat")));
}

TEST_F(JoinScriptsTest, Batch_Mpeg1V_WritesOneJoinerLineWithEveryItem) {
    items = {bed.media + "/a.mpg", bed.media + "/b c.mpg", bed.media + "/d.mpg"};
    bed.makeMpegList(items, "MPEG-1V");
    temp = output + ".vlr.mpg";
    EXPECT_EQ(write(batch), temp);

    const QStringList expected = {"@echo off",
                                  "echo Generated with Velmora",
                                  "echo Visit us at: www.velmora.example",
                                  "\"" + win("MPEG.exe") + "\" -j --force \"" + items[0] + "\" \"" +
                                      items[1] + "\" \"" + items[2] + "\" -o \"" + temp + "\"",
                                  "rmdir \"" + win("JoinTemp") + "\"",
                                  "echo Joined Succesfully!",
                                  "exit"};
    EXPECT_EQ(scriptLines(app("TempFile.bat"), "\r\n"), expected);
    EXPECT_FALSE(QFile::exists(app("MP3.bat")));
    EXPECT_FALSE(QFile::exists(app("MPEG2.bat")));
    EXPECT_FALSE(QFile::exists(app("MPEG.bat")));
}

TEST_F(JoinScriptsTest, Batch_Mpeg2V_WritesCopyLinesAndRemakeScriptLineForLine) {
    items = {bed.media + "/a.mpg", bed.media + "/b.mpg"};
    bed.makeMpegList(items, "MPEG-2V");
    temp = output + ".vlr.mpg";
    write(batch);

    const QStringList expectedFirst = {
        "@echo off",
        "echo Generated with Velmora",
        "echo Visit us at: www.velmora.example",
        "Copy /b \"" + items[0] + "\" \"" + temp + "\"",
        "Copy /b \"" + temp + "\"+\"" + items[1] + "\" \"" + temp + "\"",
        "rmdir \"" + win("JoinTemp") + "\"",
        "echo Joined Succesfully!",
        "exit"};
    EXPECT_EQ(scriptLines(app("TempFile.bat"), "\r\n"), expectedFirst);

    const QStringList expectedFix = {
        "@echo off",
        "echo Generated with Velmora",
        "echo Visit us at: www.velmora.example",
        "echo Fixing MPEG2 File...",
        "\"" + win("MPEG2.exe") + "\" -i \"" + temp + "\" -sameq -y \"" + output + "\"",
        "echo MPEG2 File has been fixed!",
        "rmdir \"" + win("JoinTemp") + "\"",
        "exit"};
    EXPECT_EQ(scriptLines(app("MPEG2.bat"), "\r\n"), expectedFix);
    EXPECT_FALSE(QFile::exists(app("MP3.bat")));
}

TEST_F(JoinScriptsTest, Batch_OtherMpeg_WritesCopyLinesOnlyAndCopiesNoTool) {
    items = {bed.media + "/a.mpg", bed.media + "/b.mpg"};
    bed.makeMpegList(items, "MPEG-4 Visual");
    temp = output + ".vlr.mpg";
    write(batch);

    const QStringList expected = {"@echo off",
                                  "echo Generated with Velmora",
                                  "echo Visit us at: www.velmora.example",
                                  "Copy /b \"" + items[0] + "\" \"" + temp + "\"",
                                  "Copy /b \"" + temp + "\"+\"" + items[1] + "\" \"" + temp + "\"",
                                  "rmdir \"" + win("JoinTemp") + "\"",
                                  "echo Joined Succesfully!",
                                  "exit"};
    EXPECT_EQ(scriptLines(app("TempFile.bat"), "\r\n"), expected);
    EXPECT_EQ(QDir(bed.appData).entryList(QDir::Files | QDir::NoDotAndDotDot),
              QStringList{"TempFile.bat"});
}

TEST_F(JoinScriptsTest, Batch_TwoItems_GiveExactlyTwoCopyLinesTheSecondWithPlus) {
    items = {items[0], items[1]};
    bed.makeMp3List(items);
    write(batch);
    QStringList copies;
    for (const QString& line : scriptLines(app("TempFile.bat"), "\r\n")) {
        if (line.startsWith("Copy /b")) {
            copies << line;
        }
    }
    ASSERT_EQ(copies.size(), 2);
    EXPECT_FALSE(copies[0].contains(u'+'));
    EXPECT_TRUE(copies[1].startsWith("Copy /b \"" + temp + "\"+\""));
}

// ---- sh dialect ----

TEST_F(JoinScriptsTest, Sh_Mp3List_WritesCatLinesAndFixScriptLineForLine) {
    bed.makeMp3List(items);
    EXPECT_EQ(write(sh), temp);

    EXPECT_EQ(scriptLines(app("TempFile.bat"), "\n"), shCatScript());

    const QString stopFix = "[ -f " + q(app("MP3.bat")) + " ] || exit 1";
    const QStringList expectedFix = {
        "#!/bin/sh",
        "echo Generated with Velmora",
        "echo Visit us at: www.velmora.example",
        "echo Fixing MP3 File...",
        stopFix,
        checked(q(app("MP3.exe")) + " " + q(temp) + " " + q(output) + " < /dev/null", 1, false),
        "echo MP3 File has been fixed!",
        stopFix,
        "rmdir " + q(app("JoinTemp")) + " < /dev/null",
        "exit"};
    EXPECT_EQ(scriptLines(app("MP3.bat"), "\n"), expectedFix);
}

TEST_F(JoinScriptsTest, Sh_Mpeg1V_WritesCatLinesAndItsOwnRemakeScriptLineForLine) {
    items = {bed.media + "/a.mpg", bed.media + "/-b c.mpg", bed.media + "/d.mpg"};
    bed.makeMpegList(items, "MPEG-1V");
    temp = output + ".vlr.mpg";
    write(sh);

    EXPECT_EQ(scriptLines(app("TempFile.bat"), "\n"), shCatScript());

    const QString stopFix = "[ -f " + q(app("MPEG.bat")) + " ] || exit 1";
    const QStringList expectedFix = {"#!/bin/sh",
                                     "echo Generated with Velmora",
                                     "echo Visit us at: www.velmora.example",
                                     "echo Fixing MPEG1 File...",
                                     stopFix,
                                     checked(q(app("MPEG2.exe")) + " -nostdin" + remakeOptions() +
                                                 " -f mpeg -y " + q(output) + " < /dev/null",
                                             1, false),
                                     "echo MPEG1 File has been fixed!",
                                     stopFix,
                                     "rmdir " + q(app("JoinTemp")) + " < /dev/null",
                                     "exit"};
    EXPECT_EQ(scriptLines(app("MPEG.bat"), "\n"), expectedFix);
    EXPECT_FALSE(QFile::exists(app("MP3.bat")));
    EXPECT_FALSE(QFile::exists(app("MPEG2.bat")));
}

TEST_F(JoinScriptsTest, Sh_Mpeg2V_WritesCatLinesAndRemuxScriptLineForLine) {
    items = {bed.media + "/a.mpg", bed.media + "/b.mpg"};
    bed.makeMpegList(items, "MPEG-2V");
    temp = output + ".vlr.mpg";
    write(sh);

    EXPECT_EQ(scriptLines(app("TempFile.bat"), "\n"), shCatScript());

    const QString stopFix = "[ -f " + q(app("MPEG2.bat")) + " ] || exit 1";
    const QStringList expectedFix = {
        "#!/bin/sh",
        "echo Generated with Velmora",
        "echo Visit us at: www.velmora.example",
        "echo Fixing MPEG2 File...",
        stopFix,
        checked(q(app("MPEG2.exe")) + " -nostdin -stats_period 0.1" + remakeOptions() +
                    " -f vob -y " + q(output) + " < /dev/null",
                1, false),
        "echo MPEG2 File has been fixed!",
        stopFix,
        "rmdir " + q(app("JoinTemp")) + " < /dev/null",
        "exit"};
    EXPECT_EQ(scriptLines(app("MPEG2.bat"), "\n"), expectedFix);
}

TEST_F(JoinScriptsTest, Sh_Mpeg2V_RemakeScriptWrittenAgain_HoldsTheProbeGivenAndNothingElseNew) {
    items = {bed.media + "/a.mpg", bed.media + "/b.mpg"};
    bed.makeMpegList(items, "MPEG-2V");
    temp = output + ".vlr.mpg";
    write(sh);
    QStringList expected = scriptLines(app("MPEG2.bat"), "\n");
    const QString wholeJoin = remakeOptions();
    const QString probed =
        " -fflags nobuffer -f mpeg -analyzeduration 31500000 -probesize "
        "5020000 -i " +
        q(temp) + " -map 0 -map -0:d -c copy";
    ASSERT_TRUE(expected[5].contains(wholeJoin));
    expected[5].replace(wholeJoin, probed);
    bed.model.commonDialog.fileName = output;
    WriteRemakeScript(bed.model, RemakeProbe{5020000, 31500000, true}, sh);
    EXPECT_EQ(scriptLines(app("MPEG2.bat"), "\n"), expected);
}

TEST_F(JoinScriptsTest, Mp3List_RemakeScriptWrittenAgain_WritesNothing) {
    bed.makeMp3List(items);
    bed.model.commonDialog.fileName = output;
    WriteRemakeScript(bed.model, RemakeProbe{5020000, 31500000}, sh);
    EXPECT_FALSE(QFile::exists(app("MPEG2.bat")));
    EXPECT_FALSE(QFile::exists(app("MPEG.bat")));
}

TEST_F(JoinScriptsTest, Sh_OtherMpeg_WritesCatLinesOnlyAndCopiesNoTool) {
    items = {bed.media + "/a.mpg", bed.media + "/b.mpg"};
    bed.makeMpegList(items, QString(""));
    temp = output + ".vlr.mpg";
    write(sh);

    const QString stop = "[ -f " + q(app("TempFile.bat")) + " ] || exit 1";
    const QStringList expected = {"#!/bin/sh",
                                  "echo Generated with Velmora",
                                  "echo Visit us at: www.velmora.example",
                                  stop,
                                  catLine(0),
                                  stop,
                                  catLine(1),
                                  stop,
                                  "rmdir " + q(app("JoinTemp")) + " < /dev/null",
                                  "echo Joined Succesfully!",
                                  "exit"};
    EXPECT_EQ(scriptLines(app("TempFile.bat"), "\n"), expected);
    EXPECT_EQ(QDir(bed.appData).entryList(QDir::Files | QDir::NoDotAndDotDot),
              QStringList{"TempFile.bat"});
}

TEST_F(JoinScriptsTest, PlatformDialect_IsSh) {
    bed.makeMp3List(items);
    QString path = output;
    WriteJoinScripts(bed.model, path);
    EXPECT_TRUE(ScriptTestBed::readFile(app("TempFile.bat")).startsWith("#!/bin/sh\n"));
    EXPECT_EQ(path, temp);
}

TEST_F(JoinScriptsTest, FromDialog_UsesOutputFileAndLeavesTheDialogUnchanged) {
    bed.makeMp3List(items);
    bed.model.commonDialog.fileName = output;
    WriteJoinScripts(bed.model);
    EXPECT_EQ(bed.model.commonDialog.fileName, output);
    EXPECT_TRUE(QString::fromUtf8(ScriptTestBed::readFile(app("MP3.bat"))).contains(q(output)));
}

// ---- JoinCase, suffix, OUTPUT ----

TEST_F(JoinScriptsTest, CurrentJoinCase_FollowsListTypeHeaderAndFirstCodec) {
    bed.makeMp3List(items);
    EXPECT_EQ(CurrentJoinCase(bed.model), JoinCase::MP3);
    bed.makeMpegList(items, "MPEG-1V", "MPEG-2V");
    EXPECT_EQ(CurrentJoinCase(bed.model), JoinCase::MPEG1V);
    bed.makeMpegList(items, "MPEG-2V", "MPEG-1V");
    EXPECT_EQ(CurrentJoinCase(bed.model), JoinCase::MPEG2V);
    EXPECT_TRUE(IsMpeg2VideoList(bed.model));
    bed.makeMpegList(items, "mpeg-2v");
    EXPECT_EQ(CurrentJoinCase(bed.model), JoinCase::OtherMPEG);
    // A codec cell is not enough without the header "Video Codec".
    bed.makeMpegList(items, "MPEG-2V");
    bed.model.items.clearColumns();
    for (const char* header : {"Filename", "Filesize", "Date Modified", "Filepath", "Codec"}) {
        bed.model.items.addColumn(QLatin1String(header));
    }
    EXPECT_EQ(CurrentJoinCase(bed.model), JoinCase::OtherMPEG);
    EXPECT_FALSE(IsMpeg2VideoList(bed.model));
}

TEST_F(JoinScriptsTest, Mp3ListWithCodecTextInItsCells_NeverGetsTheMpegJoiner) {
    bed.makeMp3List(items);
    // The fifth column of an MP3 list is Artist: its text decides nothing.
    bed.model.items.setCell(1, 4, "MPEG-1V");
    EXPECT_EQ(CurrentJoinCase(bed.model), JoinCase::MP3);
    write(batch);
    const QByteArray first = ScriptTestBed::readFile(app("TempFile.bat"));
    EXPECT_FALSE(first.contains("MPEG.exe"));
    EXPECT_TRUE(first.contains("Copy /b"));
    EXPECT_FALSE(QFile::exists(app("MPEG.exe")));
}

TEST_F(JoinScriptsTest, Mpeg1VFirstItem_DecidesWhateverTheOthersHold) {
    items = {bed.media + "/a.mpg", bed.media + "/b.mpg"};
    bed.makeMpegList(items, "MPEG-1V", "MPEG-2V");
    write(batch);
    const QStringList lines = scriptLines(app("TempFile.bat"), "\r\n");
    EXPECT_TRUE(lines[3].startsWith("\"" + win("MPEG.exe") + "\" -j --force "));
    EXPECT_FALSE(QFile::exists(app("MPEG2.bat")));
}

TEST_F(JoinScriptsTest, OutputWithoutExtension_GetsTheSuffixAndOutputStaysAsChosen) {
    output = bed.dir.path() + "/out/noext";
    bed.makeMpegList({bed.media + "/a.mpg", bed.media + "/b.mpg"}, "MPEG-2V");
    EXPECT_EQ(write(sh), output + ".vlr.mpg");
    const QString fix = QString::fromUtf8(ScriptTestBed::readFile(app("MPEG2.bat")));
    EXPECT_TRUE(fix.contains(" -c copy -f vob -y " + q(output) + " < /dev/null || "));
    EXPECT_TRUE(fix.contains("-i " + q(output + ".vlr.mpg") + " "));
}

TEST_F(JoinScriptsTest, TempFileHelpers_FollowTheListTypeAndTheDialog) {
    bed.model.commonDialog.fileName = output;
    bed.makeMp3List(items);
    EXPECT_EQ(TempFileSuffix(bed.model), ".vlr.mp3");
    EXPECT_EQ(OutputFilePath(bed.model), output);
    EXPECT_EQ(TempFilePath(bed.model), output + ".vlr.mp3");
    bed.makeMpegList(items, "MPEG-1V");
    EXPECT_EQ(TempFilePath(bed.model), output + ".vlr.mpg");
    EXPECT_EQ(TempFileSuffix(bed.model).size(), 8);
    EXPECT_EQ(AppDataPath("JoinTemp"), bed.appData + "/JoinTemp");
}

// ---- tools ----

TEST_F(JoinScriptsTest, Sh_Mp3List_CopiesOnlyTheFixToolRunnable) {
    bed.makeMp3List(items);
    write(sh);
    EXPECT_EQ(ScriptTestBed::readFile(app("MP3.exe")), "tool MP3.dll");
    EXPECT_TRUE(QFileInfo(app("MP3.exe")).isExecutable());
    EXPECT_FALSE(QFile::exists(app("MPEG2.exe")));
    EXPECT_FALSE(QFile::exists(app("MPEG.exe")));
    EXPECT_FALSE(QFile::exists(app("mingwm10.dll")));
}

TEST_F(JoinScriptsTest, Batch_Mp3List_CopiesFixerAndItsLibraryWhenPresent) {
    ScriptTestBed::writeFile(bed.install + "/mingwm10.dll", "lib");
    bed.makeMp3List(items);
    write(batch);
    EXPECT_EQ(ScriptTestBed::readFile(app("MP3.exe")), "tool MP3.dll");
    EXPECT_EQ(ScriptTestBed::readFile(app("mingwm10.dll")), "lib");
    EXPECT_FALSE(QFile::exists(app("MPEG2.exe")));
}

TEST_F(JoinScriptsTest, Mpeg2V_CopiesRemakeToolAndLibrary_ShMpeg1V_TooBatchMpeg1V_CopiesJoiner) {
    ScriptTestBed::writeFile(bed.install + "/pthreadGC2.dll", "pthreads");
    bed.makeMpegList({bed.media + "/a.mpg", bed.media + "/b.mpg"}, "MPEG-2V");
    write(sh);
    EXPECT_EQ(ScriptTestBed::readFile(app("MPEG2.exe")), "tool MPEG2.dll");
    EXPECT_EQ(ScriptTestBed::readFile(app("pthreadGC2.dll")), "pthreads");
    EXPECT_FALSE(QFile::exists(app("MPEG.exe")));
    EXPECT_FALSE(QFile::exists(app("MP3.exe")));

    QFile::remove(app("MPEG2.exe"));
    QFile::remove(app("pthreadGC2.dll"));
    bed.makeMpegList({bed.media + "/a.mpg", bed.media + "/b.mpg"}, "MPEG-1V");
    write(sh);
    EXPECT_EQ(ScriptTestBed::readFile(app("MPEG2.exe")), "tool MPEG2.dll");
    EXPECT_TRUE(QFileInfo(app("MPEG2.exe")).isExecutable());
    EXPECT_EQ(ScriptTestBed::readFile(app("pthreadGC2.dll")), "pthreads");
    EXPECT_FALSE(QFile::exists(app("MPEG.exe")));

    QFile::remove(app("MPEG2.exe"));
    write(batch);
    EXPECT_EQ(ScriptTestBed::readFile(app("MPEG.exe")), "tool MPEG.dll");
    EXPECT_TRUE(QFileInfo(app("MPEG.exe")).isExecutable());
    EXPECT_FALSE(QFile::exists(app("MPEG2.exe")));
}

TEST_F(JoinScriptsTest, FixScriptName_FollowsTheJoinCaseAndTheDialect) {
    bed.makeMp3List(items);
    EXPECT_EQ(FixScriptName(bed.model, sh), "MP3.bat");
    EXPECT_EQ(FixScriptName(bed.model, batch), "MP3.bat");
    bed.makeMpegList({bed.media + "/a.mpg", bed.media + "/b.mpg"}, "MPEG-2V", "MPEG-1V");
    EXPECT_EQ(FixScriptName(bed.model, sh), "MPEG2.bat");
    EXPECT_EQ(FixScriptName(bed.model, batch), "MPEG2.bat");
    bed.makeMpegList({bed.media + "/a.mpg", bed.media + "/b.mpg"}, "MPEG-1V", "MPEG-2V");
    EXPECT_EQ(FixScriptName(bed.model, sh), "MPEG.bat");
    EXPECT_EQ(FixScriptName(bed.model), "MPEG.bat");
    EXPECT_EQ(FixScriptName(bed.model, batch), QString());
    bed.makeMpegList({bed.media + "/a.mpg", bed.media + "/b.mpg"}, "MPEG-4V");
    EXPECT_EQ(FixScriptName(bed.model, sh), QString());
}

TEST_F(JoinScriptsTest, EarlierCopiesAndScripts_AreReplacedWhereWrittenAndLeftElsewhere) {
    ScriptTestBed::writeFile(app("MP3.exe"), "old tool");
    ScriptTestBed::writeFile(app("TempFile.bat"), "old script that is much longer than the new");
    bed.makeMp3List(items);
    write(sh);
    EXPECT_EQ(ScriptTestBed::readFile(app("MP3.exe")), "tool MP3.dll");
    EXPECT_TRUE(ScriptTestBed::readFile(app("TempFile.bat")).startsWith("#!/bin/sh\n"));
    // An MPEG join afterwards leaves the MP3 fix script alone.
    const QByteArray mp3Script = ScriptTestBed::readFile(app("MP3.bat"));
    bed.makeMpegList({bed.media + "/a.mpg", bed.media + "/b.mpg"}, "MPEG-2V");
    write(sh);
    EXPECT_EQ(ScriptTestBed::readFile(app("MP3.bat")), mp3Script);
}

// ---- debug-log records ----

class JoinScriptsLogTest : public JoinScriptsTest {
protected:
    void SetUp() override {
        JoinScriptsTest::SetUp();
        logFile = bed.dir.path() + "/21112026120000.log";
        StartLogging(logFile, 2);
        ASSERT_EQ(LogPath(), logFile);
    }

    // An MPEG list of the given number of files, a.mpg on, joined into the
    // .mpg scratch file.
    void useMpegList(int count, const QString& codec) {
        items.clear();
        for (int i = 0; i < count; ++i) {
            items << bed.media + u'/' + QChar(u'a' + i) + ".mpg";
        }
        bed.makeMpegList(items, codec);
        temp = output + ".vlr.mpg";
    }
    // The record of the line that appends item i, in each dialect.
    QString shAppend(int i) const { return "1BAT=" + catLine(i); }
    QString batchAppend(int i) const {
        return "1BAT=Copy /b \"" + temp + "\"+\"" + items[i] + "\" \"" + temp + "\"";
    }

    QString logFile;
};

TEST_F(JoinScriptsLogTest, Sh_Mp3List_LogsTempFileAndTheAppendLinesAsWritten) {
    bed.makeMp3List(items);
    write(sh);
    const QStringList expected = {"TempFile=" + temp, shAppend(1), shAppend(2)};
    EXPECT_EQ(logRecords(logFile), expected);
    // Each record is a line that the script really holds.
    const QStringList lines = scriptLines(app("TempFile.bat"), "\n");
    EXPECT_TRUE(lines.contains(expected[1].mid(5)));
    EXPECT_TRUE(lines.contains(expected[2].mid(5)));
}

TEST_F(JoinScriptsLogTest, Batch_Mpeg2V_LogsCopyLinesAndTheTwoRemakeRecords) {
    useMpegList(3, "MPEG-2V");
    write(batch);
    const QStringList expected = {
        "TempFile=" + temp, batchAppend(1), batchAppend(2),
        "2BAT=\"" + win("MPEG2.exe") + "\" -i \"" + temp + "\" -sameq -y \"" + output + "\"",
        "2BAT=del \"" + temp + "\""};
    EXPECT_EQ(logRecords(logFile), expected);
}

TEST_F(JoinScriptsLogTest, Sh_Mpeg2V_LogsTheRemuxLineAsWrittenAndTheDelete) {
    useMpegList(2, "MPEG-2V");
    write(sh);
    const QString remux = checked(q(app("MPEG2.exe")) + " -nostdin -stats_period 0.1" +
                                      remakeOptions() + " -f vob -y " + q(output) + " < /dev/null",
                                  1, false);
    const QStringList expected = {"TempFile=" + temp, shAppend(1), "2BAT=" + remux,
                                  "2BAT=rm -f " + q(temp) + " < /dev/null"};
    EXPECT_EQ(logRecords(logFile), expected);
    EXPECT_TRUE(scriptLines(app("MPEG2.bat"), "\n").contains(remux));
    EXPECT_FALSE(ScriptTestBed::readFile(app("MPEG2.bat")).contains("rm -f"));
}

TEST_F(JoinScriptsLogTest, Sh_OtherMpeg_LogsTheAppendLinesAndNoRemake) {
    useMpegList(3, "MPEG-4V");
    write(sh);
    const QStringList expected = {"TempFile=" + temp, shAppend(1), shAppend(2)};
    EXPECT_EQ(logRecords(logFile), expected);
}

TEST_F(JoinScriptsLogTest, Batch_OtherMpeg_LogsTheCopyLinesAndNoRemake) {
    useMpegList(2, "MPEG-4V");
    write(batch);
    const QStringList expected = {"TempFile=" + temp, batchAppend(1)};
    EXPECT_EQ(logRecords(logFile), expected);
}

TEST_F(JoinScriptsLogTest, Batch_Mpeg1V_LogsOnlyTheTempFile) {
    useMpegList(2, "MPEG-1V");
    write(batch);
    EXPECT_EQ(logRecords(logFile), QStringList{"TempFile=" + temp});
}

TEST_F(JoinScriptsLogTest, Sh_Mpeg1V_LogsTheAppendLinesTheRemakeLineAsWrittenAndTheDelete) {
    useMpegList(3, "MPEG-1V");
    write(sh);
    const QString remake = checked(q(app("MPEG2.exe")) + " -nostdin" + remakeOptions() +
                                       " -f mpeg -y " + q(output) + " < /dev/null",
                                   1, false);
    const QStringList expected = {"TempFile=" + temp, shAppend(1), shAppend(2), "2BAT=" + remake,
                                  "2BAT=rm -f " + q(temp) + " < /dev/null"};
    EXPECT_EQ(logRecords(logFile), expected);
    EXPECT_TRUE(scriptLines(app("MPEG.bat"), "\n").contains(remake));
    EXPECT_FALSE(ScriptTestBed::readFile(app("MPEG.bat")).contains("rm -f"));
}

TEST_F(JoinScriptsLogTest, Batch_Mp3List_LogsNothingAboutTheFixScript) {
    bed.makeMp3List(items);
    write(batch);
    const QStringList records = logRecords(logFile);
    ASSERT_EQ(records.size(), 3);
    for (const QString& record : records) {
        EXPECT_FALSE(record.contains("MP3.exe"));
    }
}

TEST_F(JoinScriptsTest, LoggingOff_WritesNoRecordAnywhere) {
    StopLogging();
    bed.makeMp3List(items);
    write(sh);
    EXPECT_TRUE(QDir(bed.appData).entryList({"*.log"}, QDir::Files).isEmpty());
}

}  // namespace

TEST_F(JoinScriptsTest, Mp3List_SourcesFileListsEachItemsLengthAndPath_TagsOnOrOff) {
    ScriptTestBed::writeFile(items[0], QByteArray(1000, 'a'));
    ScriptTestBed::writeFile(items[1], QByteArray(25, 'b'));
    items[2] = bed.media + QStringLiteral("/three\nlines 100%.mp3");
    ScriptTestBed::writeFile(items[2], QByteArray(7, 'c'));
    bed.makeMp3List(items);
    write(sh);
    std::vector<JoinSource> sources;
    ASSERT_TRUE(
        ParseJoinSources(ScriptTestBed::readFile(app("JoinSources.txt")).toStdString(), sources));
    ASSERT_EQ(sources.size(), 3u);
    EXPECT_EQ(sources[0].length, 1000u);
    EXPECT_EQ(sources[0].name, items[0].toStdString());
    EXPECT_EQ(sources[1].length, 25u);
    EXPECT_EQ(sources[2].length, 7u);
    EXPECT_EQ(sources[2].name, items[2].toStdString());

    // With the box off the sources are still written, for the tool's check
    // that every source gives audio, and the fix line asks for no tag.
    Settings::SetJoinWriteTagsAndChapters(0);
    QFile::remove(app("JoinSources.txt"));
    write(sh);
    EXPECT_TRUE(QFile::exists(app("JoinSources.txt")));
    EXPECT_TRUE(ScriptTestBed::readFile(app("MP3.bat")).contains("' --no-tag '"));
    Settings::SetJoinWriteTagsAndChapters(1);
    write(sh);
    EXPECT_FALSE(ScriptTestBed::readFile(app("MP3.bat")).contains("--no-tag"));
    write(batch);
    EXPECT_TRUE(QFile::exists(app("JoinSources.txt")));
    // The clean-up removes it with the scripts.
    RemoveMarkerAndScripts();
    EXPECT_FALSE(QFile::exists(app("JoinSources.txt")));
}

TEST_F(JoinScriptsTest, MpegList_WritesNoSourcesFile) {
    bed.makeMpegList({bed.media + "/a.mpg", bed.media + "/b.mpg"}, "MPEG-2V");
    write(sh);
    EXPECT_FALSE(QFile::exists(app("JoinSources.txt")));
}
