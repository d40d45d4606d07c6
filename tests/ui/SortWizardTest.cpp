#include <gtest/gtest.h>

#include <QApplication>
#include <QComboBox>
#include <QImage>
#include <QLabel>
#include <QPushButton>
#include <QTest>
#include <algorithm>

#include "WindowPicture.h"
#include "list/Columns.h"
#include "list/ListFunctions.h"
#include "list/MainModel.h"
#include "media/ItemCells.h"
#include "support/MemoryClipboard.h"
#include "support/ScriptedQuestions.h"
#include "ui/SortWizard.h"

namespace {

class SortWizardTest : public ::testing::Test {
protected:
    void SetUp() override { NewItemList(model, QStringLiteral("MP3")); }

    void addRow(const QString& name, const QString& size, const QString& path) {
        const int row = model.items.addRow(name);
        model.items.setCell(row, 1, size);
        model.items.setCell(row, 3, path);
    }

    QStringList names() const {
        QStringList out;
        for (int row = 1; row <= model.items.count(); ++row) {
            out.append(model.items.cell(row, 0));
        }
        return out;
    }

    ScriptedQuestions questions;
    MemoryClipboard clipboard;
    MainModel model{questions, clipboard};
};

TEST_F(SortWizardTest, Controls_HaveTheirNamesCaptionsEntriesAndTabOrder) {
    SortWizard window(model);
    EXPECT_EQ(window.windowTitle(), "Sort Wizard");
    EXPECT_TRUE(window.isModal());
    EXPECT_EQ(window.findChild<QLabel*>("HeaderText")->text(), "Sort Wizard");
    EXPECT_EQ(window.findChild<QLabel*>("HeaderSubText")->text(),
              "Use this wizard to sort your list...");
    EXPECT_EQ(window.findChild<QLabel*>("InfoLabel1")->text(),
              "On which column would you like to sort?");
    EXPECT_EQ(window.findChild<QLabel*>("InfoLabel2")->text(),
              "How would you like to sort this column?");
    auto* field = window.findChild<QComboBox*>("SortField");
    auto* method = window.findChild<QComboBox*>("SortMethod");
    EXPECT_FALSE(field->isEditable());
    EXPECT_FALSE(method->isEditable());
    ASSERT_EQ(field->count(), 12);
    EXPECT_EQ(field->itemText(0), "Filename");
    EXPECT_EQ(field->itemText(3), "Filepath");
    EXPECT_EQ(field->itemText(11), "Hertz");
    EXPECT_EQ(field->currentIndex(), 0);
    ASSERT_EQ(method->count(), 2);
    EXPECT_EQ(method->itemText(0), "Ascending (ABC)");
    EXPECT_EQ(method->itemText(1), "Descending (ZYX)");
    EXPECT_EQ(method->currentIndex(), 0);
    EXPECT_EQ(window.findChild<QPushButton*>("SortButton")->text(), "&Sort List");
    EXPECT_EQ(window.findChild<QPushButton*>("CancelButton")->text(), "&Cancel");
    for (QWidget* w : window.findChildren<QWidget*>()) {
        if (w->parentWidget() == &window) {
            EXPECT_TRUE(window.rect().contains(w->geometry())) << w->objectName().toStdString();
        }
    }
    QStringList order;
    QWidget* w = field;
    do {
        if ((w->focusPolicy() & Qt::TabFocus) && w->parentWidget() == &window) {
            order.append(w->objectName());
        }
        w = w->nextInFocusChain();
    } while (w != field);
    EXPECT_EQ(order, (QStringList{"SortField", "SortMethod", "SortButton", "CancelButton"}));
}

TEST_F(SortWizardTest, MpegList_OffersSevenColumns) {
    NewItemList(model, QStringLiteral("MPEG"));
    SortWizard window(model);
    EXPECT_EQ(window.findChild<QComboBox*>("SortField")->count(), 7);
}

TEST_F(SortWizardTest, SortOnFilesizeAscending_ComparesKilobytes) {
    addRow("nine.mp3", "9 KB", "/b");
    addRow("big.mp3", "1,024 KB", "/a");
    SortWizard window(model);
    window.show();
    window.findChild<QComboBox*>("SortField")->setCurrentIndex(1);
    window.findChild<QPushButton*>("SortButton")->click();
    EXPECT_FALSE(window.isVisible());
    EXPECT_EQ(names(), (QStringList{"nine.mp3", "big.mp3"}));
}

TEST_F(SortWizardTest, SortOnFilepathDescending_WithTheEnterKey) {
    addRow("x.mp3", "1 KB", "/a/x.mp3");
    addRow("y.mp3", "1 KB", "/c/y.mp3");
    addRow("z.mp3", "1 KB", "/b/z.mp3");
    SortWizard window(model);
    window.show();
    window.findChild<QComboBox*>("SortField")->setCurrentIndex(3);
    window.findChild<QComboBox*>("SortMethod")->setCurrentIndex(1);
    QTest::keyClick(&window, Qt::Key_Return);
    EXPECT_FALSE(window.isVisible());
    EXPECT_EQ(names(), (QStringList{"y.mp3", "z.mp3", "x.mp3"}));
    // Rows added later go to the end.
    addRow("a.mp3", "1 KB", "/0");
    EXPECT_EQ(names().last(), "a.mp3");
}

TEST_F(SortWizardTest, Cancel_LeavesTheOrder) {
    addRow("b.mp3", "1 KB", "/b");
    addRow("a.mp3", "1 KB", "/a");
    SortWizard window(model);
    window.show();
    window.findChild<QPushButton*>("CancelButton")->click();
    EXPECT_FALSE(window.isVisible());
    EXPECT_EQ(names(), (QStringList{"b.mp3", "a.mp3"}));
}

TEST_F(SortWizardTest, EmptyList_SortsNothingAndCloses) {
    SortWizard window(model);
    window.show();
    window.findChild<QPushButton*>("SortButton")->click();
    EXPECT_FALSE(window.isVisible());
    EXPECT_EQ(model.items.count(), 0);
}

TEST_F(SortWizardTest, Picture_ShowsTheWindow) {
    SortWizard window(model);
    window.findChild<QComboBox*>("SortField")->setCurrentIndex(4);
    window.show();
    const QImage image = takePicture(window, "sort-wizard.png");
    EXPECT_EQ(image.size(), window.size() * window.devicePixelRatio());
    EXPECT_TRUE(hasContent(image));
}

}  // namespace

namespace {

// A date cell, given as "yyyy-MM-ddTHH:mm" and written as the file reader
// writes it, in the locale the test runs in (not the one of the program's
// start, when the cases are made).
QString dateCell(const QString& isoDate) {
    return isoDate.isEmpty() ? QString()
                             : FileDateText(QDateTime::fromString(isoDate, Qt::ISODate));
}

// One column of a layout with three or more cells whose text order differs
// from the order of what they mean, given in the order the sort must put them
// ascending. Every cell is different, so the descending order is the exact
// reverse.
struct ColumnCase {
    const char* name;
    const char* listType;
    int cell;
    QStringList ascending;
    // The cells are dates, given as "yyyy-MM-ddTHH:mm".
    bool dates = false;

    QStringList cells() const {
        if (!dates) {
            return ascending;
        }
        QStringList written;
        for (const QString& date : ascending) {
            written.append(dateCell(date));
        }
        return written;
    }
};

void PrintTo(const ColumnCase& c, std::ostream* os) {
    *os << c.name;
}

const QList<ColumnCase>& columnCases() {
    static const QList<ColumnCase> cases = {
        {"Mp3Filename",
         "MP3",
         SharedCell::Filename,
         {"Track 1.mp3", "track 2.mp3", "Track 10.mp3"}},
        {"Mp3Filesize", "MP3", SharedCell::Filesize, {"", "987 KB", "1,234 KB"}},
        {"Mp3DateModified",
         "MP3",
         SharedCell::DateModified,
         {"", "1999-12-31T22:00", "2023-09-30T23:00", "2023-10-01T01:00", "2023-12-31T23:59",
          "2024-01-01T00:00"},
         true},
        {"Mp3Filepath",
         "MP3",
         SharedCell::Filepath,
         {"/m/disc 2/a.mp3", "/m/disc 9/a.mp3", "/m/Disc 10/a.mp3"}},
        {"Mp3Artist", "MP3", Mp3Cell::Artist, {"Artist 1", "artist 9", "Artist 10"}},
        {"Mp3Title", "MP3", Mp3Cell::Title, {"part 2", "Part 3", "Part 11"}},
        {"Mp3Album", "MP3", Mp3Cell::Album, {"Vol. 3", "vol. 5", "Vol. 20"}},
        {"Mp3Year", "MP3", Mp3Cell::Year, {"", "999", "2001"}},
        {"Mp3Genre", "MP3", Mp3Cell::Genre, {"Top 9", "top 40", "Top 100"}},
        {"Mp3Duration", "MP3", Mp3Cell::Duration, {"", "57 seconds", "100 seconds"}},
        {"Mp3Bitrate", "MP3", Mp3Cell::Bitrate, {" kbps", "64 kbps", "96 kbps", "320 kbps"}},
        {"Mp3Hertz",
         "MP3",
         Mp3Cell::Hertz,
         {"", "8000 (Mono)", "22050 (Stereo)", "44100 (Mono)", "44100 (Stereo)"}},
        {"MpegFilename", "MPEG", SharedCell::Filename, {"clip 2.mpg", "Clip 3.mpg", "Clip 10.mpg"}},
        {"MpegFilesize", "MPEG", SharedCell::Filesize, {"987 KB", "1,234 KB", "12,345 KB"}},
        {"MpegDateModified",
         "MPEG",
         SharedCell::DateModified,
         {"2023-09-30T23:00", "2023-10-01T01:00", "2024-01-01T00:00"},
         true},
        {"MpegFilepath", "MPEG", SharedCell::Filepath, {"/v/2.mpg", "/v/3.mpg", "/v/10.mpg"}},
        {"MpegVideoCodec", "MPEG", MpegCell::VideoCodec, {"MPEG-1V", "mpeg-2v", "MPEG-10V"}},
        {"MpegVideoSize",
         "MPEG",
         MpegCell::VideoSize,
         {"0x0", "352x288", "720x480", "720x576", "1920x1080"}},
        {"MpegDuration", "MPEG", MpegCell::Duration, {"9 seconds", "57 seconds", "100 seconds"}},
    };
    return cases;
}

class SortWizardColumnTest : public ::testing::TestWithParam<ColumnCase> {
protected:
    // Adds the cells in an order that is neither the ascending nor the
    // descending one (the descending one with its first two cells swapped),
    // and sorts through the wizard.
    QStringList sortThroughTheWizard(int method) {
        const ColumnCase& c = GetParam();
        NewItemList(model, QString::fromLatin1(c.listType));
        QStringList cells = c.cells();
        std::reverse(cells.begin(), cells.end());
        cells.swapItemsAt(0, 1);
        for (const QString& text : cells) {
            const int row = model.items.addRow(c.cell == SharedCell::Filename ? text : "x");
            model.items.setCell(row, c.cell, text);
        }
        SortWizard window(model);
        window.show();
        window.findChild<QComboBox*>("SortField")->setCurrentIndex(c.cell);
        window.findChild<QComboBox*>("SortMethod")->setCurrentIndex(method);
        window.findChild<QPushButton*>("SortButton")->click();
        QStringList sorted;
        for (int row = 1; row <= model.items.count(); ++row) {
            sorted.append(model.items.cell(row, c.cell));
        }
        return sorted;
    }

    ScriptedQuestions questions;
    MemoryClipboard clipboard;
    MainModel model{questions, clipboard};
};

}  // namespace

TEST_P(SortWizardColumnTest, Ascending_SortsByWhatTheColumnMeans) {
    // The case is only worth something where the order of the texts, letter
    // case ignored, would differ.
    const QStringList ascending = GetParam().cells();
    QStringList textOrder = ascending;
    std::stable_sort(textOrder.begin(), textOrder.end(), [](const QString& a, const QString& b) {
        return a.toCaseFolded() < b.toCaseFolded();
    });
    ASSERT_GE(ascending.size(), 3);
    ASSERT_NE(textOrder, ascending);
    EXPECT_EQ(sortThroughTheWizard(0), ascending);
}

TEST_P(SortWizardColumnTest, Descending_SortsByWhatTheColumnMeansReversed) {
    QStringList descending = GetParam().cells();
    std::reverse(descending.begin(), descending.end());
    EXPECT_EQ(sortThroughTheWizard(1), descending);
}

INSTANTIATE_TEST_SUITE_P(EveryColumnOfBothLayouts, SortWizardColumnTest,
                         ::testing::ValuesIn(columnCases()),
                         [](const ::testing::TestParamInfo<ColumnCase>& info) {
                             return std::string(info.param.name);
                         });
