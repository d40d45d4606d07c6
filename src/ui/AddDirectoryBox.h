#pragma once

#include <QDialog>
#include <QHash>
#include <QString>

class QCheckBox;
class QComboBox;
class QFileSystemModel;
class QLabel;
class QPushButton;
class QTreeView;
class NaturalSortProxy;
struct MainModel;

// The Add Directory window: a drive list (the mounted file systems), a folder
// tree, and whether the subfolders come too. Ok adds the folder's files to the
// list and remembers the folder under Commondialog/AddFiles; while the adding
// runs the controls are disabled and the window refuses to close.
class AddDirectoryBox : public QDialog {
    Q_OBJECT
public:
    explicit AddDirectoryBox(MainModel& model, QWidget* parent = nullptr);

    // The folder of DirBox, without a trailing separator (but "/" for the root).
    QString dirPath() const { return path_; }
    // Shows a folder in DirBox; a path that is no folder leaves it as it was.
    void setDirPath(const QString& path);

    // The mount point selected in DriveBox. Choosing one shows that drive's
    // current folder in DirBox: the last folder chosen on it since the window
    // opened, else its root.
    QString drive() const;
    void setDrive(const QString& rootPath);

    // The mount point that holds a path: the longest mounted root above it.
    QString driveOf(const QString& path) const;

    // The click on cmdOk.
    void confirm();

    // Refuses to close while cmdCancel is disabled (an adding is running).
    void done(int result) override;

private:
    void onDriveChanged(int index);
    void showPathInTree();
    // The index of a folder in DirBox.
    QModelIndex shownIndex(const QString& path) const;

    MainModel& model_;
    QLabel* lblInfo_ = nullptr;
    QComboBox* driveBox_ = nullptr;
    QTreeView* dirBox_ = nullptr;
    QFileSystemModel* folders_ = nullptr;
    // The folders as DirBox shows them: in natural order.
    NaturalSortProxy* shownFolders_ = nullptr;
    QCheckBox* chkAddSubFolders_ = nullptr;
    QPushButton* cmdOk_ = nullptr;
    QPushButton* cmdCancel_ = nullptr;
    QString path_ = QStringLiteral("/");
    QHash<QString, QString> currentFolderOfDrive_;
    bool syncingTree_ = false;
    bool loading_ = false;  // the load step shows the remembered folder
};
