#include "ui/AddDirectoryBox.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDir>
#include <QFileSystemModel>
#include <QHeaderView>
#include <QLabel>
#include <QPushButton>
#include <QTimer>
#include <QTreeView>

#include "app/Settings.h"
#include "list/AddFilesModule.h"
#include "list/MainModel.h"
#include "platform/Drives.h"
#include "platform/FileHelpers.h"
#include "ui/NaturalSortProxy.h"
#include "ui/ProgramLook.h"
#include "ui/Twips.h"

namespace {
constexpr int kInnerWidth = 4680;
constexpr int kInnerHeight = 4305;

// A folder path in the form DirBox keeps: clean, no trailing separator.
QString normalFolder(const QString& path) {
    QString clean = QDir::cleanPath(path);
    if (clean.size() > 1 && clean.endsWith(u'/')) {
        clean.chop(1);
    }
    return clean;
}

bool isUnder(const QString& path, const QString& root) {
    if (root == QLatin1String("/")) {
        return path.startsWith(u'/');
    }
    return path == root || path.startsWith(root + u'/');
}
}  // namespace

AddDirectoryBox::AddDirectoryBox(MainModel& model, QWidget* parent)
    : QDialog(parent), model_(model) {
    setObjectName(QStringLiteral("AddDirectoryBox"));
    ProgramLook::apply(this);
    setWindowTitle(QStringLiteral("Add Directory"));
    setModal(true);
    setFixedSize(Twips::rect(0, 0, kInnerWidth, kInnerHeight).size());

    lblInfo_ = new QLabel(QStringLiteral("Please, select a drive and folder..."), this);
    lblInfo_->setObjectName(QStringLiteral("lblInfo"));
    lblInfo_->setGeometry(Twips::rect(120, 120, 4440, 255));

    driveBox_ = new QComboBox(this);
    driveBox_->setObjectName(QStringLiteral("DriveBox"));
    driveBox_->setGeometry(Twips::rect(120, 420, 4440, 315));
    for (const QString& root : DriveRoots()) {
        driveBox_->addItem(root, root);
    }
    driveBox_->setCurrentIndex(driveBox_->findData(QStringLiteral("/")));

    folders_ = new QFileSystemModel(this);
    folders_->setFilter(QDir::AllDirs | QDir::NoDotAndDotDot);
    folders_->setReadOnly(true);
    shownFolders_ = new NaturalSortProxy(this);
    shownFolders_->setSourceModel(folders_);
    shownFolders_->sort(0);
    dirBox_ = new QTreeView(this);
    dirBox_->setObjectName(QStringLiteral("DirBox"));
    dirBox_->setGeometry(Twips::rect(120, 840, 4440, 2400));
    dirBox_->setModel(shownFolders_);
    dirBox_->setHeaderHidden(true);
    for (int column = 1; column < folders_->columnCount(); ++column) {
        dirBox_->hideColumn(column);
    }
    // The tree fills in the background; once the folders above the shown one
    // are read, it is brought into view.
    connect(folders_, &QFileSystemModel::directoryLoaded, this, [this](const QString& loaded) {
        if (path_.startsWith(loaded)) {
            showPathInTree();
            // The model sorts what it read a moment later; then it is scrolled to.
            QTimer::singleShot(50, this, [this] {
                if (dirBox_->currentIndex().isValid()) {
                    dirBox_->scrollTo(dirBox_->currentIndex(), QAbstractItemView::PositionAtCenter);
                }
            });
        }
    });
    connect(dirBox_->selectionModel(), &QItemSelectionModel::currentChanged, this,
            [this](const QModelIndex& current) {
                if (syncingTree_ || !current.isValid()) {
                    return;
                }
                setDirPath(folders_->filePath(shownFolders_->mapToSource(current)));
            });

    chkAddSubFolders_ = new QCheckBox(QStringLiteral("Also add subfolders to my list"), this);
    chkAddSubFolders_->setObjectName(QStringLiteral("chkAddSubFolders"));
    chkAddSubFolders_->setGeometry(Twips::rect(120, 3360, 4440, 300));

    cmdOk_ = new QPushButton(QStringLiteral("&Ok"), this);
    cmdOk_->setObjectName(QStringLiteral("cmdOk"));
    cmdOk_->setGeometry(Twips::rect(2520, 3780, 975, 375));
    cmdOk_->setDefault(true);
    connect(cmdOk_, &QPushButton::clicked, this, &AddDirectoryBox::confirm);

    cmdCancel_ = new QPushButton(QStringLiteral("&Cancel"), this);
    cmdCancel_->setObjectName(QStringLiteral("cmdCancel"));
    cmdCancel_->setGeometry(Twips::rect(3600, 3780, 975, 375));
    cmdCancel_->setAutoDefault(false);
    connect(cmdCancel_, &QPushButton::clicked, this, &QDialog::reject);

    setTabOrder(driveBox_, dirBox_);
    setTabOrder(dirBox_, chkAddSubFolders_);
    setTabOrder(chkAddSubFolders_, cmdOk_);
    setTabOrder(cmdOk_, cmdCancel_);

    connect(driveBox_, &QComboBox::currentIndexChanged, this, &AddDirectoryBox::onDriveChanged);

    // The load step: the remembered folder, or the root where none is set;
    // then the drive that holds it. Showing a folder does not make it its
    // drive's current folder, so when that drive is another one than DriveBox
    // starts on, the drive's change step shows the drive's current folder in
    // place of the remembered one. On the starting drive nothing changes and
    // the remembered folder stays.
    const QString remembered = Settings::DialogFolderOf(Settings::DialogFolder::AddFiles);
    loading_ = true;
    setDirPath(remembered.isEmpty() ? QStringLiteral("/") : remembered);
    loading_ = false;
    setDrive(driveOf(path_));
    driveBox_->setFocus();
}

void AddDirectoryBox::setDirPath(const QString& path) {
    if (!IsDirectoryPath(path)) {
        return;
    }
    path_ = normalFolder(path);
    if (!loading_) {
        currentFolderOfDrive_.insert(driveOf(path_), path_);
    }
    showPathInTree();
}

QString AddDirectoryBox::drive() const {
    return driveBox_->currentData().toString();
}

void AddDirectoryBox::setDrive(const QString& rootPath) {
    const int index = driveBox_->findData(rootPath);
    if (index >= 0) {
        driveBox_->setCurrentIndex(index);
    }
}

QString AddDirectoryBox::driveOf(const QString& path) const {
    QString best = QStringLiteral("/");
    for (int i = 0; i < driveBox_->count(); ++i) {
        const QString root = driveBox_->itemData(i).toString();
        if (isUnder(path, root) && root.size() > best.size()) {
            best = root;
        }
    }
    return best;
}

void AddDirectoryBox::onDriveChanged(int index) {
    if (index < 0) {
        return;
    }
    const QString root = driveBox_->itemData(index).toString();
    const QString current = currentFolderOfDrive_.value(root, root);
    setDirPath(IsDirectoryPath(current) ? current : root);
}

void AddDirectoryBox::showPathInTree() {
    if (!dirBox_) {
        return;
    }
    syncingTree_ = true;
    const QString root = driveOf(path_);
    if (folders_->rootPath() != root) {
        folders_->setRootPath(root);
    }
    if (dirBox_->rootIndex() != shownIndex(root)) {
        dirBox_->setRootIndex(shownIndex(root));
    }
    const QModelIndex index = shownIndex(path_);
    if (index.isValid() && path_ != root) {
        for (QModelIndex above = index.parent(); above.isValid(); above = above.parent()) {
            dirBox_->expand(above);
        }
        dirBox_->setCurrentIndex(index);
        dirBox_->scrollTo(index, QAbstractItemView::PositionAtCenter);

    } else {
        dirBox_->clearSelection();
    }
    syncingTree_ = false;
}

QModelIndex AddDirectoryBox::shownIndex(const QString& path) const {
    return shownFolders_->mapFromSource(folders_->index(path));
}

void AddDirectoryBox::confirm() {
    driveBox_->setEnabled(false);
    dirBox_->setEnabled(false);
    chkAddSubFolders_->setEnabled(false);
    cmdOk_->setEnabled(false);
    cmdCancel_->setEnabled(false);

    QString path = path_;
    if (chkAddSubFolders_->isChecked()) {
        AddFolderTree(model_, path);
    } else {
        AddFolderFiles(model_, path);
    }
    Settings::SetDialogFolder(Settings::DialogFolder::AddFiles, path_);

    cmdCancel_->setEnabled(true);
    accept();
}

void AddDirectoryBox::done(int result) {
    if (!cmdCancel_->isEnabled()) {
        return;
    }
    QDialog::done(result);
}
