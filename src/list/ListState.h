#pragma once

#include <QObject>
#include <QString>

#include "list/ListGrade.h"
#include "media/ListType.h"

// The values that describe the whole list, in one place. The main window shows
// them (and nothing else keeps a copy); every routine reads and writes them
// here. Each setter emits changed() when the value really changed.
class ListState : public QObject {
    Q_OBJECT
public:
    enum class Picture { None, MP3, MPEG, Green, Orange, Red };

    explicit ListState(QObject* parent = nullptr) : QObject(parent) {}

    // The list type: the caption of ListTypeValue, "MP3" or "MPEG" ("?" before
    // the first list; any other text after a list file of an unknown type).
    const QString& listType() const { return listType_; }
    void setListType(const QString& v) { set(listType_, v); }
    // The type that caption names.
    ListType type() const { return ListTypeOf(listType_); }
    // The picture of ListTypeImage (MP3 or MPEG icon).
    Picture typeImage() const { return typeImage_; }
    void setTypeImage(Picture v) { set(typeImage_, v); }

    const QString& listFileName() const { return listFileName_; }
    void setListFileName(const QString& v) { set(listFileName_, v); }
    const QString& windowTitle() const { return windowTitle_; }
    void setWindowTitle(const QString& v) { set(windowTitle_, v); }

    // ListStatus and the status picture of panel 3 (written by SetListStatus).
    const QString& listStatus() const { return listStatus_; }
    void setListStatusText(const QString& v) { set(listStatus_, v); }
    // The grade that ListStatus names.
    Grade grade() const { return GradeOf(listStatus_); }
    Picture statusPicture() const { return statusPicture_; }
    void setStatusPicture(Picture v) { set(statusPicture_, v); }

    // The three figures of the info panel.
    const QString& countCaption() const { return countCaption_; }
    void setCountCaption(const QString& v) { set(countCaption_, v); }
    const QString& sizeCaption() const { return sizeCaption_; }
    void setSizeCaption(const QString& v) { set(sizeCaption_, v); }
    const QString& durationCaption() const { return durationCaption_; }
    void setDurationCaption(const QString& v) { set(durationCaption_, v); }

    // CancelAddFiles: 0, or -1 after the user clicked CancelLabel.
    short cancelAddFiles() const { return cancelAddFiles_; }
    void setCancelAddFiles(short v) { set(cancelAddFiles_, v); }

    // The selected row, 0 when none.
    int selectedIndex() const { return selectedIndex_; }
    void setSelectedIndex(int v) { set(selectedIndex_, v); }

    // The adding display: panel 2 of the status bar, CancelOverlay and
    // AddFilesProgressBar.
    const QString& statusPanel2() const { return statusPanel2_; }
    void setStatusPanel2(const QString& v) { set(statusPanel2_, v); }
    bool cancelOverlayVisible() const { return cancelOverlayVisible_; }
    void setCancelOverlayVisible(bool v) { set(cancelOverlayVisible_, v); }
    bool progressVisible() const { return progressVisible_; }
    void setProgressVisible(bool v) { set(progressVisible_, v); }
    int progressMax() const { return progressMax_; }
    void setProgressMax(int v) { set(progressMax_, v); }
    int progressValue() const { return progressValue_; }
    void setProgressValue(int v) { set(progressValue_, v); }

    // Asks the view of the list to take the keyboard focus (the moves end so).
    void requestListFocus() { emit listFocusRequested(); }

signals:
    void changed();
    void listFocusRequested();

private:
    template <typename T>
    void set(T& field, const T& value) {
        if (field == value) {
            return;
        }
        field = value;
        emit changed();
    }

    QString listType_ = QStringLiteral("?");
    Picture typeImage_ = Picture::None;
    QString listFileName_;
    QString windowTitle_ = QStringLiteral("Velmora");
    QString listStatus_;
    Picture statusPicture_ = Picture::None;
    QString countCaption_ = QStringLiteral("0");
    QString sizeCaption_ = QStringLiteral("0 KB");
    QString durationCaption_ = QStringLiteral("00:00:00");
    short cancelAddFiles_ = 0;
    int selectedIndex_ = 0;
    QString statusPanel2_;
    bool cancelOverlayVisible_ = false;
    bool progressVisible_ = false;
    int progressMax_ = 100;
    int progressValue_ = 0;
};
