#include <gtest/gtest.h>

#include <QApplication>
#include <QComboBox>
#include <QFile>
#include <QGroupBox>
#include <QImage>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>

#include "WindowPicture.h"
#include "list/FillListItem.h"
#include "list/ListFunctions.h"
#include "list/MainModel.h"
#include "media/ID3Reader.h"
#include "support/MediaMaker.h"
#include "support/MemoryClipboard.h"
#include "support/ScriptedQuestions.h"
#include "support/TestEnvironment.h"
#include "ui/ID3Tag.h"

namespace {

QByteArray readAll(const QString& path) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        return {};
    }
    return file.readAll();
}

// A text field of a tag as it stands in the file: Latin-1, blank-padded.
QByteArray field(const QByteArray& text, int length) {
    QByteArray out = text.left(length);
    out.append(QByteArray(length - out.size(), ' '));
    return out;
}

// A text field as the test maker writes it: filled up with zero bytes.
QString zeroPadded(const QString& text) {
    return text + QString(30 - text.size(), QChar(0));
}

class ID3TagTest : public ::testing::Test {
protected:
    void SetUp() override {
        if (!HaveFfmpeg()) {
            GTEST_SKIP() << "ffmpeg is needed to make the MP3 files";
        }
        ASSERT_TRUE(dir.isValid());
        NewItemList(model, QStringLiteral("MP3"));
    }

    QString makeTagged(const QString& name) {
        Mp3Options options;
        options.seconds = 1.0;
        options.id3v1 = true;
        options.metadata = {{"title", "Old Title"},     {"artist", "Old Artist"},
                            {"album", "Old Album"},     {"date", "1999"},
                            {"comment", "Old Comment"}, {"genre", "Jazz"}};
        const QString path = MakeMp3(dir.path(), name, options);
        EXPECT_FALSE(path.isEmpty()) << LastMediaMakerError().toStdString();
        return path;
    }

    QString makeUntagged(const QString& name) {
        Mp3Options options;
        options.seconds = 1.0;
        const QString path = MakeMp3(dir.path(), name, options);
        EXPECT_FALSE(path.isEmpty()) << LastMediaMakerError().toStdString();
        return path;
    }

    // Adds a row for the file and selects it.
    int addAndSelect(const QString& path) {
        const int row = model.items.addRow();
        model.items.setCell(row, 3, path);
        FillListItem(model, 0);
        model.state.setSelectedIndex(row);
        return row;
    }

    // Remove Tag in the window on the file: the window closes, and of the
    // file's last 128 bytes all but the genre byte are zero.
    void removeTagInTheWindow(const QString& path) {
        const QByteArray before = readAll(path);
        ID3Tag window(model);
        window.setFileName(path);
        window.show();
        child<QPushButton>(window, "cmdRemove")->click();
        EXPECT_FALSE(window.isVisible());
        const QByteArray after = readAll(path);
        ASSERT_EQ(after.size(), before.size());
        EXPECT_EQ(after.left(after.size() - 128), before.left(before.size() - 128));
        EXPECT_EQ(after.mid(after.size() - 128, 127), QByteArray(127, '\0'));
        EXPECT_EQ(after.back(), before.back());
    }

    template <typename T>
    static T* child(ID3Tag& window, const char* name) {
        return window.findChild<T*>(QString::fromLatin1(name));
    }

    QTemporaryDir dir;
    ScriptedQuestions questions;
    MemoryClipboard clipboard;
    MainModel model{questions, clipboard};
};

TEST_F(ID3TagTest, Controls_HaveTheirNamesCaptionsLimitsAndTabOrder) {
    ID3Tag window(model);
    EXPECT_EQ(window.windowTitle(), "ID3 Tag Editor");
    EXPECT_TRUE(window.isModal());
    for (const char* name : {"txtTitle", "txtArtist", "txtAlbum", "txtComment"}) {
        ASSERT_NE(child<QLineEdit>(window, name), nullptr) << name;
        EXPECT_EQ(child<QLineEdit>(window, name)->maxLength(), 30) << name;
    }
    EXPECT_EQ(child<QLineEdit>(window, "txtYear")->maxLength(), 4);
    ASSERT_NE(child<QLineEdit>(window, "txtFilename"), nullptr);
    EXPECT_FALSE(child<QComboBox>(window, "cboGenre")->isEditable());
    EXPECT_EQ(child<QGroupBox>(window, "Frame1")->title(), "MPEG Info");
    EXPECT_EQ(child<QLabel>(window, "lblInfo")->parentWidget(), child<QGroupBox>(window, "Frame1"));
    EXPECT_EQ(child<QPushButton>(window, "cmdSave")->text(), "&Save");
    EXPECT_EQ(child<QPushButton>(window, "cmdCancel")->text(), "&Cancel");
    EXPECT_EQ(child<QPushButton>(window, "cmdRemove")->text(), "&Remove Tag");
    QStringList labels;
    for (QLabel* label : window.findChildren<QLabel*>("lblFields")) {
        labels.append(label->text());
    }
    EXPECT_EQ(labels, (QStringList{"Title", "Artist", "Album", "Year", "Genre", "Comment"}));
    for (QWidget* w : window.findChildren<QWidget*>()) {
        if (w->parentWidget() == &window) {
            EXPECT_TRUE(window.rect().contains(w->geometry())) << w->objectName().toStdString();
        }
    }
    QStringList order;
    QWidget* first = child<QLineEdit>(window, "txtFilename");
    QWidget* w = first;
    do {
        if ((w->focusPolicy() & Qt::TabFocus) && !w->objectName().isEmpty()) {
            order.append(w->objectName());
        }
        w = w->nextInFocusChain();
    } while (w != first);
    EXPECT_EQ(order.mid(0, 7), (QStringList{"txtFilename", "txtTitle", "txtArtist", "txtAlbum",
                                            "txtYear", "cboGenre", "txtComment"}));
}

TEST_F(ID3TagTest, Show_FillsTheFieldsTheGenresAndTheInfo) {
    const QString path = makeTagged("tagged.mp3");
    ID3Tag window(model);
    window.setFileName(path);
    window.show();
    // The maker pads the fields with zero bytes, and the fields show them.
    EXPECT_EQ(child<QLineEdit>(window, "txtTitle")->text(), zeroPadded("Old Title"));
    EXPECT_EQ(child<QLineEdit>(window, "txtArtist")->text(), zeroPadded("Old Artist"));
    EXPECT_EQ(child<QLineEdit>(window, "txtAlbum")->text(), zeroPadded("Old Album"));
    EXPECT_EQ(child<QLineEdit>(window, "txtYear")->text(), "1999");
    EXPECT_EQ(child<QLineEdit>(window, "txtComment")->text(), zeroPadded("Old Comment"));
    auto* genre = child<QComboBox>(window, "cboGenre");
    EXPECT_EQ(genre->count(), 148);
    EXPECT_EQ(genre->itemText(147), "Synthpop");
    EXPECT_EQ(genre->currentText(), "Jazz");
    ID3Reader reader;
    reader.setFileName(path);
    EXPECT_FALSE(reader.InfoString().isEmpty());
    EXPECT_EQ(child<QLabel>(window, "lblInfo")->text(), reader.InfoString());
    window.reject();
}

TEST_F(ID3TagTest, Save_WritesTheFieldsOverTheLast128Bytes) {
    const QString path = makeTagged("tagged.mp3");
    const QByteArray before = readAll(path);
    ID3Tag window(model);
    window.setFileName(path);
    window.show();
    child<QLineEdit>(window, "txtTitle")->setText("New Title");
    child<QLineEdit>(window, "txtArtist")->setText("New Artist");
    child<QLineEdit>(window, "txtAlbum")->setText(QString::fromLatin1("Caf\xe9"));
    child<QLineEdit>(window, "txtYear")->setText("2001");
    child<QLineEdit>(window, "txtComment")->setText("Note");
    child<QComboBox>(window, "cboGenre")->setCurrentIndex(17);  // Rock
    child<QPushButton>(window, "cmdSave")->click();
    EXPECT_FALSE(window.isVisible());

    const QByteArray after = readAll(path);
    ASSERT_EQ(after.size(), before.size());
    EXPECT_EQ(after.left(after.size() - 128), before.left(before.size() - 128));
    const QByteArray expected = "TAG" + field("New Title", 30) + field("New Artist", 30) +
                                field("Caf\xe9", 30) + field("2001", 4) + field("Note", 30) +
                                QByteArray(1, char(17));
    EXPECT_EQ(after.right(128), expected);
}

TEST_F(ID3TagTest, Save_OnAFileWithoutTag_TakesTheLast128BytesAndYearGetsBlanks) {
    const QString path = makeUntagged("plain.mp3");
    const QByteArray before = readAll(path);
    ID3Tag window(model);
    window.setFileName(path);
    window.show();
    EXPECT_EQ(child<QComboBox>(window, "cboGenre")->currentIndex(), 0);  // Blues
    EXPECT_TRUE(child<QLineEdit>(window, "txtTitle")->text().isEmpty());
    child<QLineEdit>(window, "txtTitle")->setText("T");
    child<QPushButton>(window, "cmdSave")->click();
    const QByteArray after = readAll(path);
    ASSERT_EQ(after.size(), before.size());
    EXPECT_EQ(after.left(after.size() - 128), before.left(before.size() - 128));
    EXPECT_EQ(after.right(128), "TAG" + field("T", 30) + field("", 30) + field("", 30) +
                                    field("", 4) + field("", 30) + QByteArray(1, char(0)));
}

TEST_F(ID3TagTest, RemoveTag_ZeroesTheTagButTheGenreByte) {
    const QString path = makeTagged("tagged.mp3");
    removeTagInTheWindow(path);
    ID3Reader reader;
    reader.setFileName(path);
    EXPECT_FALSE(reader.HasTag());
}

TEST_F(ID3TagTest, RemoveTag_OnAFileWithoutTag_ZeroesTheLast127BytesButOne) {
    const QString path = makeUntagged("plain.mp3");
    const QByteArray before = readAll(path);
    ASSERT_NE(before.mid(before.size() - 128, 127), QByteArray(127, '\0'));
    // No test for a tag stands before the write: the end of the audio goes.
    removeTagInTheWindow(path);
}

TEST_F(ID3TagTest, NonMpegFileInAnMp3List_InfoIsEmptyAndTheFieldsWorkAllTheSame) {
    // A text file under an MP3 name: no frame header anywhere, no tag.
    const QString path = dir.filePath("notes.mp3");
    QByteArray text;
    for (int i = 0; i < 40; ++i) {
        text += "Line of a plain text file, not MPEG audio at all.\n";
    }
    {
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(text);
    }
    ID3Tag window(model);
    window.setFileName(path);
    window.show();
    EXPECT_TRUE(window.isVisible());
    EXPECT_EQ(child<QLabel>(window, "lblInfo")->text(), "");
    EXPECT_EQ(child<QComboBox>(window, "cboGenre")->currentIndex(), 0);
    EXPECT_TRUE(child<QLineEdit>(window, "txtTitle")->text().isEmpty());
    child<QLineEdit>(window, "txtTitle")->setText("Notes");
    child<QLineEdit>(window, "txtYear")->setText("2020");
    child<QPushButton>(window, "cmdSave")->click();
    const QByteArray after = readAll(path);
    ASSERT_EQ(after.size(), text.size());
    EXPECT_EQ(after.left(text.size() - 128), text.left(text.size() - 128));
    EXPECT_EQ(after.right(128), "TAG" + field("Notes", 30) + field("", 30) + field("", 30) +
                                    field("2020", 4) + field("", 30) + QByteArray(1, char(0)));
    ID3Reader reader;
    reader.setFileName(path);
    EXPECT_TRUE(reader.HasTag());
    EXPECT_EQ(reader.Title(), "Notes");
}

TEST_F(ID3TagTest, Cancel_LeavesTheFileAsItWas) {
    const QString path = makeTagged("tagged.mp3");
    const QByteArray before = readAll(path);
    ID3Tag window(model);
    window.setFileName(path);
    window.show();
    child<QLineEdit>(window, "txtTitle")->setText("Changed");
    child<QPushButton>(window, "cmdCancel")->click();
    EXPECT_FALSE(window.isVisible());
    EXPECT_EQ(readAll(path), before);
}

TEST_F(ID3TagTest, MpegList_RefusesWithTheMessageAndChangesNothing) {
    const QString path = makeTagged("tagged.mp3");
    const QByteArray before = readAll(path);
    NewItemList(model, QStringLiteral("MPEG"));
    ID3Tag window(model);
    window.setFileName(path);
    window.show();
    QApplication::processEvents();
    ASSERT_EQ(questions.asked.size(), 1);
    EXPECT_EQ(questions.asked[0].prompt, "Cannot set an ID3 Tag on MPEG Files.");
    EXPECT_EQ(questions.asked[0].style, Msg::OkOnly + Msg::Exclamation);
    EXPECT_FALSE(window.isVisible());
    EXPECT_TRUE(child<QLineEdit>(window, "txtTitle")->text().isEmpty());
    EXPECT_EQ(readAll(path), before);
}

TEST_F(ID3TagTest, MpegList_ModalRunEndsAfterTheMessage) {
    NewItemList(model, QStringLiteral("MPEG"));
    ID3Tag::ShowFor(model, dir.filePath("output.mpg"), nullptr);
    ASSERT_EQ(questions.asked.size(), 1);
    EXPECT_EQ(questions.asked[0].prompt, "Cannot set an ID3 Tag on MPEG Files.");
}

TEST_F(ID3TagTest, Close_FillsTheSelectedRowAgain) {
    const QString path = makeTagged("tagged.mp3");
    const int row = addAndSelect(path);
    const QString filled = model.items.cell(row, 0);
    ASSERT_EQ(filled, "tagged.mp3");
    model.items.setCell(row, 0, "stale");
    model.items.setCell(row, 1, "stale");
    ID3Tag window(model);
    window.setFileName(path);
    window.show();
    window.close();  // the close box
    EXPECT_EQ(model.items.cell(row, 0), filled);
    EXPECT_NE(model.items.cell(row, 1), "stale");
}

TEST_F(ID3TagTest, Save_RowShowsTheNewTag) {
    const QString path = makeTagged("tagged.mp3");
    const int row = addAndSelect(path);
    ID3Tag window(model);
    window.setFileName(path);
    window.show();
    child<QLineEdit>(window, "txtTitle")->setText("Fresh");
    child<QPushButton>(window, "cmdSave")->click();
    EXPECT_TRUE(model.items.cells(row).contains("Fresh"));
}

TEST_F(ID3TagTest, ViewID3Tag_WithoutSelection_ClosesUnseen) {
    addAndSelect(makeTagged("tagged.mp3"));
    model.state.setSelectedIndex(0);
    ID3Tag::ViewID3Tag(model, nullptr);  // returns at once: nothing modal ran
    EXPECT_TRUE(questions.asked.isEmpty());
}

TEST_F(ID3TagTest, ViewID3Tag_ShowsTheSelectedRowsFile) {
    const QString path = makeTagged("tagged.mp3");
    addAndSelect(path);
    QString seen;
    QTimer::singleShot(0, [&] {
        auto* window = qobject_cast<ID3Tag*>(QApplication::activeModalWidget());
        ASSERT_NE(window, nullptr);
        seen = window->fileName() + "|" + window->findChild<QLineEdit*>("txtTitle")->text();
        window->findChild<QPushButton*>("cmdCancel")->click();
    });
    ID3Tag::ViewID3Tag(model, nullptr);
    EXPECT_EQ(seen, path + "|" + zeroPadded("Old Title"));
}

TEST_F(ID3TagTest, TitleOfThirtyCharacters_TheThirtyFirstKeyIsRefused) {
    ID3Tag window(model);
    window.show();
    auto* title = child<QLineEdit>(window, "txtTitle");
    title->setFocus();
    QTest::keyClicks(title, QString(31, u'x'));
    EXPECT_EQ(title->text(), QString(30, u'x'));
    auto* year = child<QLineEdit>(window, "txtYear");
    QTest::keyClicks(year, "12345");
    EXPECT_EQ(year->text(), "1234");
    window.reject();
}

TEST_F(ID3TagTest, MissingFile_NoTagAndTheButtonsChangeNothing) {
    ID3Tag window(model);
    window.setFileName(dir.filePath("gone.mp3"));
    window.show();
    EXPECT_EQ(child<QComboBox>(window, "cboGenre")->currentIndex(), 0);
    child<QPushButton>(window, "cmdSave")->click();
    EXPECT_FALSE(QFile::exists(dir.filePath("gone.mp3")));
}

TEST_F(ID3TagTest, Picture_ShowsTheWindow) {
    const QString path = dir.filePath("Track 1.mp3");
    ASSERT_TRUE(QFile::copy(SampleMediaFolder() + "/mimetype-mp3.mp3", path));
    QFile::setPermissions(path, QFile::ReadOwner | QFile::WriteOwner);
    ID3Reader tag;
    tag.setFileName(path);
    tag.setTitle("Harbour Lights");
    tag.setArtist("The Lanterns");
    tag.setAlbum("Night Ferry");
    tag.setYear("2004");
    tag.setComments("Live take");
    tag.setGenre(17);
    ASSERT_TRUE(tag.WriteTag());
    ID3Tag window(model);
    window.setFileName(path);
    window.show();
    const QImage image = takePicture(window, "id3-tag.png");
    EXPECT_EQ(image.size(), window.size() * window.devicePixelRatio());
    EXPECT_TRUE(hasContent(image));
    window.reject();
}

}  // namespace
