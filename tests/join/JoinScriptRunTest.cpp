// The generated sh scripts run for real: with file names that hold every
// character a shell might act on, with the installed tools, and with a script
// that is deleted while it runs.

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QCoreApplication>
#include <QDirIterator>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QProcess>
#include <QThread>
#include <cstddef>
#include <string>

#include "ScriptTestSupport.h"
#include "join/JoinScripts.h"
#include "media/MediaInfoC.h"
#include "support/MediaMaker.h"

namespace {

// File names that a shell would split, expand, substitute or run.
const QStringList kHostileNames = {
    "blank name.mp3",
    "it's.mp3",
    "say \"hi\".mp3",
    "$(touch pwned).mp3",
    "`touch pwned2`.mp3",
    "a & b ; c | d.mp3",
    "100%PATH% *.mp3",
    "-n dash.mp3",
    QString::fromUtf8("Ünïcødé ñ 日本.mp3"),
    "new\nline.mp3",
    "'; touch pwned3; '.mp3",
    "$HOME ${IFS} \\ !.mp3",
};

// Runs a script through /bin/sh with nothing on its input, in the given
// working folder; the exit code, or -1 when it did not end within the time.
int runScript(const QString& script, const QString& workFolder, QByteArray* output = nullptr,
              int timeoutMs = 120000) {
    QProcess process;
    process.setProgram("/bin/sh");
    process.setArguments({script});
    process.setWorkingDirectory(workFolder);
    process.setStandardInputFile(QProcess::nullDevice());
    process.setProcessChannelMode(QProcess::MergedChannels);
    process.start();
    if (!process.waitForFinished(timeoutMs)) {
        process.kill();
        process.waitForFinished();
        return -1;
    }
    if (output) {
        *output = process.readAll();
    }
    return process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1;
}

// Every file or folder under root whose name starts with "pwned".
QStringList pwnedFiles(const QString& root) {
    QStringList found;
    QDirIterator it(root, {"pwned*"}, QDir::AllEntries | QDir::Hidden | QDir::System,
                    QDirIterator::Subdirectories);
    while (it.hasNext()) {
        found << it.next();
    }
    return found;
}

QStringList entries(const QString& folder) {
    return QDir(folder).entryList(QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden);
}

double ffprobeSeconds(const QString& path) {
    return RunFfprobe({"-v", "error", "-show_entries", "format=duration", "-of", "csv=p=0", path})
        .trimmed()
        .toDouble();
}

int ffprobeFrames(const QString& path, const QString& stream = "a:0") {
    return RunFfprobe({"-v", "error", "-count_packets", "-select_streams", stream, "-show_entries",
                       "stream=nb_read_packets", "-of", "csv=p=0", path})
        .trimmed()
        .toInt();
}

// The audio duration in milliseconds as MediaInfo reads it from the file's
// header.
double mediaInfoMs(const QString& path) {
    void* handle = MediaInfo_New();
    if (handle == nullptr) {
        return -1;
    }
    MediaInfo_Option(handle, L"Internet", L"no");
    const std::wstring file = path.toStdWString();
    double ms = -1;
    if (MediaInfo_Open(handle, file.c_str()) != 0) {
        MediaInfo_Option(handle, L"Inform", L"Audio;%Duration%");
        const wchar_t* text = MediaInfo_Inform(handle, 0);
        ms = text ? QString::fromWCharArray(text).toDouble() : -1;
        MediaInfo_Close(handle);
    }
    MediaInfo_Delete(handle);
    return ms;
}

class JoinScriptRunTest : public ::testing::Test {
protected:
    JoinScriptRunTest() : bed(QString::fromUtf8("App 'Data' $(touch pwned5) & Co ü")) {}

    void SetUp() override {
        work = bed.dir.path() + "/work";
        QDir().mkpath(work);
        media = bed.dir.path() + QString::fromUtf8("/m $x 'q' & ü;");
        QDir().mkpath(media);
        outFolder = bed.dir.path() + "/out `x` \"y\"";
        QDir().mkpath(outFolder);
    }

    // The three real tools under their install names, from the build's output
    // folder when it has them, else from the system.
    bool putRealTools() {
        const QString built = QCoreApplication::applicationDirPath();
        const QStringList names = {"MP3.dll", "MPEG.dll", "MPEG2.dll"};
        const QStringList system = {VELMORA_MP3_FIX_TOOL, "/usr/bin/mpgtx", "/usr/bin/ffmpeg"};
        for (int i = 0; i < names.size(); ++i) {
            QString source = built + u'/' + names[i];
            if (!QFileInfo(source).isExecutable()) {
                source = system[i];
            }
            if (!QFile::copy(source, bed.install + u'/' + names[i])) {
                return false;
            }
        }
        return true;
    }

    // Runs a script as the run does: marker made first, the script removes it.
    int runWithMarker(const QString& scriptName, QByteArray* output = nullptr) {
        QDir().mkpath(bed.appData + "/JoinTemp");
        return runScript(bed.appData + u'/' + scriptName, work, output);
    }

    QMap<QString, QByteArray> snapshot(const QStringList& paths) {
        QMap<QString, QByteArray> bytes;
        for (const QString& path : paths) {
            bytes[path] = ScriptTestBed::readFile(path);
        }
        return bytes;
    }

    void expectNothingLeftInAppData() {
        QStringList left = entries(bed.appData);
        left.removeAll("TempFile.bat");
        left.removeAll("MP3.bat");
        left.removeAll("MPEG2.bat");
        left.removeAll("MPEG.bat");
        left.removeAll("MP3.exe");
        left.removeAll("MPEG.exe");
        left.removeAll("MPEG2.exe");
        left.removeAll("JoinSources.txt");
        // The error output of the last copy, empty after a join that went well.
        left.removeAll("JoinStep.log");
        // Tools, scripts, the MP3 join's sources file and the step's log are
        // the run's to clean; no marker, scratch or work file, and no record of
        // a failed step.
        EXPECT_TRUE(left.isEmpty()) << left.join(", ").toStdString();
        EXPECT_TRUE(entries(work).isEmpty()) << entries(work).join(", ").toStdString();
    }

    // A join of MP3 files made with the given options, through both scripts;
    // the files take the hostile names from firstName on.
    void joinMp3s(const QList<Mp3Options>& files, int firstName, const QString& outputName) {
        ASSERT_TRUE(HaveFfmpeg());
        ASSERT_TRUE(putRealTools());
        QStringList paths;
        for (int i = 0; i < files.size(); ++i) {
            Mp3Options options = files[i];
            options.seconds = 3.0 + i * 1.5;
            options.frequencyHz = 300 + 110 * i;
            const QString path =
                MakeMp3(media, kHostileNames[(firstName + i) % kHostileNames.size()], options);
            ASSERT_FALSE(path.isEmpty()) << LastMediaMakerError().toStdString();
            paths << path;
            inputSeconds += ffprobeSeconds(path);
            inputFrames += ffprobeFrames(path);
        }
        const auto before = snapshot(paths);
        bed.makeMp3List(paths);
        output = outFolder + u'/' + outputName;
        temp = output;
        WriteJoinScripts(bed.model, temp);

        ASSERT_EQ(runWithMarker("TempFile.bat"), 0);
        EXPECT_FALSE(QFile::exists(bed.appData + "/JoinTemp"));
        QByteArray joined;
        for (const QString& path : paths) {
            joined += before[path];
        }
        ASSERT_EQ(ScriptTestBed::readFile(temp), joined);

        QByteArray log;
        EXPECT_EQ(runWithMarker("MP3.bat", &log), 0) << log.toStdString();
        EXPECT_FALSE(QFile::exists(bed.appData + "/JoinTemp"));
        ASSERT_TRUE(QFileInfo(output).size() > 0) << log.toStdString();
        EXPECT_EQ(snapshot(paths), before);
        EXPECT_TRUE(pwnedFiles(bed.dir.path()).isEmpty());
        expectNothingLeftInAppData();
    }

    ScriptTestBed bed;
    QString work;
    QString media;
    QString outFolder;
    QString output;
    QString temp;
    double inputSeconds = 0;
    int inputFrames = 0;
};

TEST_F(JoinScriptRunTest, HostileNames_AreJoinedByteForByteAndNothingInThemRuns) {
    bed.putDummyTools();
    QStringList paths;
    QByteArray expected;
    for (int i = 0; i < kHostileNames.size(); ++i) {
        const QString path = media + u'/' + kHostileNames[i];
        const QByteArray bytes = "item " + QByteArray::number(i) + " \x00\xff\r\n'\"$`" + "\n";
        ScriptTestBed::writeFile(path, bytes);
        ASSERT_EQ(ScriptTestBed::readFile(path), bytes) << path.toStdString();
        paths << path;
        expected += bytes;
    }
    bed.makeMpegList(paths, "MPEG-2V");
    output = outFolder + "/-out $(touch pwned6) 'x' ; `y` & %z% ü\n.mpg";
    temp = output;
    WriteJoinScripts(bed.model, temp);
    EXPECT_EQ(temp, output + ".vlr.mpg");

    QByteArray log;
    EXPECT_EQ(runWithMarker("TempFile.bat", &log), 0) << log.toStdString();
    EXPECT_EQ(ScriptTestBed::readFile(temp), expected);
    EXPECT_FALSE(QFile::exists(bed.appData + "/JoinTemp"));
    EXPECT_EQ(log,
              "Generated with Velmora\nVisit us at: www.velmora.example\nJoined "
              "Succesfully!\n");
    EXPECT_TRUE(pwnedFiles(bed.dir.path()).isEmpty())
        << pwnedFiles(bed.dir.path()).join(", ").toStdString();
    EXPECT_TRUE(entries(work).isEmpty());
    for (int i = 0; i < paths.size(); ++i) {
        EXPECT_TRUE(QFile::exists(paths[i]));
    }
}

TEST_F(JoinScriptRunTest, ScriptDeletedWhileRunning_StopsBeforeTheNextCommand) {
    bed.putDummyTools();
    const QString first = media + "/first.mp3";
    const QString pipe = media + "/second 'fifo'.mp3";
    const QString third = media + "/third.mp3";
    ScriptTestBed::writeFile(first, "AAAA");
    ScriptTestBed::writeFile(third, "CCCC");
    ASSERT_EQ(::mkfifo(QFile::encodeName(pipe).constData(), 0600), 0);
    bed.makeMp3List({first, pipe, third});
    output = outFolder + "/joined.mp3";
    temp = output;
    WriteJoinScripts(bed.model, temp);
    QDir().mkpath(bed.appData + "/JoinTemp");

    QProcess process;
    process.setProgram("/bin/sh");
    process.setArguments({bed.appData + "/TempFile.bat"});
    process.setWorkingDirectory(work);
    process.setStandardInputFile(QProcess::nullDevice());
    process.start();
    ASSERT_TRUE(process.waitForStarted());

    // The copy of the second item has started once it reads from the pipe.
    int writer = -1;
    QElapsedTimer clock;
    clock.start();
    while (writer < 0 && clock.elapsed() < 20000) {
        writer = ::open(QFile::encodeName(pipe).constData(), O_WRONLY | O_NONBLOCK);
        if (writer < 0) {
            QThread::msleep(5);
        }
    }
    ASSERT_GE(writer, 0);
    ASSERT_TRUE(QFile::remove(bed.appData + "/TempFile.bat"));
    ASSERT_EQ(::write(writer, "BBBB", 4), 4);
    ::close(writer);

    ASSERT_TRUE(process.waitForFinished(20000));
    EXPECT_EQ(process.exitCode(), 1);
    // The running copy finished; the third item and the marker's removal never ran.
    EXPECT_EQ(ScriptTestBed::readFile(temp), "AAAABBBB");
    EXPECT_TRUE(QFileInfo(bed.appData + "/JoinTemp").isDir());
}

TEST_F(JoinScriptRunTest, Mp3Cbr_FixGivesAHeaderWithTheWholeLength) {
    Mp3Options options;
    options.bitrateKbps = 128;
    joinMp3s({options, options, options, options}, 3,
             QString::fromUtf8("CBR 'joined' $(touch pwned7) ü.mp3"));
    const double seconds = ffprobeSeconds(output);
    const double ms = mediaInfoMs(output);
    EXPECT_NEAR(seconds, inputSeconds, inputSeconds * 0.01);
    EXPECT_NEAR(ms / 1000.0, inputSeconds, inputSeconds * 0.01);
    // A stream copy keeps the header frames of the later files as frames.
    const int frames = ffprobeFrames(output);
    EXPECT_GE(frames, inputFrames);
    EXPECT_LE(frames, inputFrames + 3);
    std::printf("CBR join of 4: %d frames, inputs %d, %.3f s (MediaInfo %.0f ms), inputs %.3f s\n",
                frames, inputFrames, seconds, ms, inputSeconds);
}

TEST_F(JoinScriptRunTest, Mp3Vbr_FixGivesAHeaderWithTheWholeLengthAndExactFrames) {
    Mp3Options options;
    options.vbrQuality = 4;
    joinMp3s({options, options, options}, 7, "VBR joined\n.mp3");
    const double seconds = ffprobeSeconds(output);
    const double ms = mediaInfoMs(output);
    EXPECT_NEAR(seconds, inputSeconds, inputSeconds * 0.01);
    EXPECT_NEAR(ms / 1000.0, inputSeconds, inputSeconds * 0.01);
    // The fixer drops the header frames of the later files.
    const int frames = ffprobeFrames(output);
    EXPECT_EQ(frames, inputFrames);
    std::printf("VBR join of 3: %d frames, inputs %d, %.3f s (MediaInfo %.0f ms), inputs %.3f s\n",
                frames, inputFrames, seconds, ms, inputSeconds);
}

TEST_F(JoinScriptRunTest, Mp3CbrOfTwoBitRates_FixGivesAHeaderWithTheWholeLength) {
    Mp3Options low;
    low.bitrateKbps = 128;
    Mp3Options high;
    high.bitrateKbps = 192;
    joinMp3s({low, high}, 10, "-Mixed joined.mp3");
    const double seconds = ffprobeSeconds(output);
    const double ms = mediaInfoMs(output);
    EXPECT_NEAR(seconds, inputSeconds, inputSeconds * 0.01);
    EXPECT_NEAR(ms / 1000.0, inputSeconds, inputSeconds * 0.01);
    const int frames = ffprobeFrames(output);
    EXPECT_GE(frames, inputFrames);
    EXPECT_LE(frames, inputFrames + 1);
    std::printf(
        "Mixed join of 2: %d frames, inputs %d, %.3f s (MediaInfo %.0f ms), inputs %.3f s\n",
        frames, inputFrames, seconds, ms, inputSeconds);
}

TEST_F(JoinScriptRunTest, Mpeg1V_CopyAndRemakeKeepEveryPictureAndOverwriteWithoutAsking) {
    ASSERT_TRUE(HaveFfmpeg());
    ASSERT_TRUE(putRealTools());
    QStringList paths;
    int pictures = 0;
    double seconds = 0;
    for (const QString& name : {QString("one 'a'.mpg"), QString("-two $(touch pwned8).mpg")}) {
        MpegOptions options;
        options.mpegVersion = 1;
        const QString path = MakeMpeg(media, name, options);
        ASSERT_FALSE(path.isEmpty()) << LastMediaMakerError().toStdString();
        paths << path;
        pictures += ffprobeFrames(path, "v:0");
        seconds += ffprobeSeconds(path);
    }
    const auto before = snapshot(paths);
    bed.makeMpegList(paths, "MPEG-1V");
    output = outFolder + "/joined 'x'.mpg";
    temp = output;
    WriteJoinScripts(bed.model, temp);
    ScriptTestBed::writeFile(temp, "an earlier raw join");
    ScriptTestBed::writeFile(output, "an earlier output");

    QByteArray log;
    EXPECT_EQ(runWithMarker("TempFile.bat", &log), 0) << log.toStdString();
    EXPECT_FALSE(QFile::exists(bed.appData + "/JoinTemp"));
    EXPECT_FALSE(ScriptTestBed::readFile(temp).startsWith("an earlier"));
    EXPECT_EQ(runWithMarker("MPEG.bat", &log), 0) << log.toStdString();
    EXPECT_FALSE(QFile::exists(bed.appData + "/JoinTemp"));
    EXPECT_FALSE(ScriptTestBed::readFile(output).startsWith("an earlier"));
    // Every picture of every item is in the output, and its length is theirs.
    EXPECT_NEAR(ffprobeFrames(output, "v:0"), pictures, 1) << log.toStdString();
    EXPECT_NEAR(ffprobeSeconds(output), seconds, seconds * 0.01);
    EXPECT_GT(pictures, 0);
    EXPECT_EQ(snapshot(paths), before);
    EXPECT_TRUE(pwnedFiles(bed.dir.path()).isEmpty());
    expectNothingLeftInAppData();
}

TEST_F(JoinScriptRunTest, Mpeg2V_RemuxGivesTheSumOfTheDurations) {
    ASSERT_TRUE(HaveFfmpeg());
    ASSERT_TRUE(putRealTools());
    QStringList paths;
    double seconds = 0;
    for (const QString& name : {QString("one.mpg"), QString("two `x`.mpg")}) {
        MpegOptions options;
        options.mpegVersion = 2;
        const QString path = MakeMpeg(media, name, options);
        ASSERT_FALSE(path.isEmpty()) << LastMediaMakerError().toStdString();
        paths << path;
        seconds += ffprobeSeconds(path);
    }
    bed.makeMpegList(paths, "MPEG-2V");
    output = outFolder + "/joined 'x'.mpg";
    temp = output;
    WriteJoinScripts(bed.model, temp);
    ASSERT_EQ(runWithMarker("TempFile.bat"), 0);
    QByteArray log;
    EXPECT_EQ(runWithMarker("MPEG2.bat", &log), 0) << log.toStdString();
    EXPECT_FALSE(QFile::exists(bed.appData + "/JoinTemp"));
    EXPECT_NEAR(ffprobeSeconds(output), seconds, seconds * 0.02);
    // The tool's status lines reach the output with their time figures.
    EXPECT_TRUE(log.contains("time=")) << log.toStdString();
    expectNothingLeftInAppData();
}

}  // namespace
