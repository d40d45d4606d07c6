// The main window's client area, everything below the menu bar: the list
// view, the column of image buttons, the panel of list figures and the status
// bar, placed in twips, and laid out anew when the window changes its size.
#include <QEvent>
#include <QFont>
#include <QFrame>
#include <QItemSelectionModel>
#include <QLabel>
#include <QMenu>
#include <QMenuBar>
#include <QProgressBar>
#include <QToolBar>

#include "ui/ImageButton.h"
#include "ui/LinkLabel.h"
#include "ui/ListViewControl.h"
#include "ui/MainWindow.h"
#include "ui/Pictures.h"
#include "ui/StatusBarControl.h"
#include "ui/Twips.h"

namespace {
constexpr int kToolbarHeight = 810;
constexpr int kListViewLeft = 60;
constexpr int kListViewTop = 885;
constexpr int kControlPanelTop = 900;
constexpr int kControlPanelWidth = 630;
constexpr int kControlPanelHeight = 2850;
constexpr int kImageButtonHeight = 570;
constexpr int kInfoPanelLeft = 80;
constexpr int kInfoPanelHeight = 900;
constexpr int kLabelHeight = 195;
}  // namespace

ImageButton* MainWindow::addImageButton(const QString& name, const QString& picture, int topTwips,
                                        const QString& toolTip) {
    auto* button = new ImageButton(QStringLiteral("button_%1_normal").arg(picture),
                                   QStringLiteral("button_%1_pressed").arg(picture), controlPanel_);
    button->setObjectName(name);
    button->setToolTip(toolTip);
    button->setGeometry(Twips::rect(0, topTwips, kControlPanelWidth, kImageButtonHeight));
    return button;
}

QLabel* MainWindow::addInfoLabel(const QString& name, const QString& caption, int left, int top,
                                 int width, bool bold) {
    auto* label = new QLabel(caption, infoPanel_);
    label->setObjectName(name);
    label->setTextFormat(Qt::PlainText);
    label->setGeometry(Twips::rect(left, top, width, kLabelHeight));
    if (bold) {
        QFont f = label->font();
        f.setBold(true);
        label->setFont(f);
    }
    return label;
}

void MainWindow::buildClientControls() {
    listView_ = new ListViewControl(client_);
    listView_->setObjectName(QStringLiteral("ListView"));
    listView_->setModel(&model_.items);
    listView_->move(Twips::point(kListViewLeft, kListViewTop));
    auto widths = [this] { listView_->applyColumnWidths(); };
    connect(&model_.items, &QAbstractItemModel::columnsInserted, this, widths);
    connect(&model_.items, &QAbstractItemModel::columnsRemoved, this, widths);
    connect(&model_.items, &QAbstractItemModel::modelReset, this, widths);
    connect(&model_.items, &QAbstractItemModel::headerDataChanged, this, widths);
    connect(listView_->selectionModel(), &QItemSelectionModel::selectionChanged, this,
            &MainWindow::selectionChangedInView);
    connect(&model_.items, &QAbstractItemModel::modelReset, this,
            &MainWindow::selectionChangedInView);
    connect(&model_.items, &QAbstractItemModel::rowsRemoved, this,
            &MainWindow::selectionChangedInView);
    connect(&model_.items, &QAbstractItemModel::rowsInserted, this,
            &MainWindow::selectionChangedInView);
    connect(&model_.items, &QAbstractItemModel::layoutChanged, this,
            &MainWindow::selectionChangedInView);
    connect(listView_, &ListViewControl::doubleClickedAnywhere, this,
            &MainWindow::playSelectedFile);
    connect(listView_, &ListViewControl::rightPressed, this, &MainWindow::showContextMenu);
    connect(listView_, &ListViewControl::filesDropped, this, &MainWindow::dropFiles);

    controlPanel_ = new QWidget(client_);
    controlPanel_->setObjectName(QStringLiteral("ControlPanel"));
    controlPanel_->setGeometry(
        Twips::rect(0, kControlPanelTop, kControlPanelWidth, kControlPanelHeight));
    ImageButton* up = addImageButton(QStringLiteral("UpButton"), QStringLiteral("up"), 0,
                                     QStringLiteral("Move Item Up"));
    ImageButton* down = addImageButton(QStringLiteral("DownButton"), QStringLiteral("down"),
                                       kImageButtonHeight, QStringLiteral("Move Item Down"));
    deleteButton_ = addImageButton(QStringLiteral("DeleteButton"), QStringLiteral("delete"),
                                   2 * kImageButtonHeight,
                                   QStringLiteral("Remove Item (right-click for more options)"));
    ImageButton* play = addImageButton(QStringLiteral("PlayButton"), QStringLiteral("play"),
                                       3 * kImageButtonHeight, QStringLiteral("Play File"));
    ImageButton* properties =
        addImageButton(QStringLiteral("PropertiesButton"), QStringLiteral("properties"),
                       4 * kImageButtonHeight, QStringLiteral("File Properties"));
    connect(up, &ImageButton::clicked, this,
            [this] { RunCommand(commands_.moveItemUp, selectedIndex()); });
    connect(down, &ImageButton::clicked, this,
            [this] { RunCommand(commands_.moveItemDown, selectedIndex()); });
    connect(deleteButton_, &ImageButton::mouseUp, this, &MainWindow::deleteButtonMouseUp);
    connect(deleteButton_, &ImageButton::clicked, this, &MainWindow::deleteButtonClick);
    connect(play, &ImageButton::clicked, this, &MainWindow::playSelectedFile);
    connect(properties, &ImageButton::clicked, this, &MainWindow::viewFileProperties);

    auto* info = new QFrame(client_);
    info->setObjectName(QStringLiteral("InfoPanel"));
    info->setFrameStyle(QFrame::Box | QFrame::Sunken);
    infoPanel_ = info;
    listTypeImage_ = new QLabel(infoPanel_);
    listTypeImage_->setObjectName(QStringLiteral("ListTypeImage"));
    listTypeImage_->setGeometry(Twips::rect(120, 150, 300, 300));
    addInfoLabel(QStringLiteral("ListTypeLabel"), QStringLiteral("List Type:"), 480, 220, 945,
                 true);
    listTypeValue_ =
        addInfoLabel(QStringLiteral("ListTypeValue"), QStringLiteral("?"), 1560, 225, 480, false);
    auto* change = new LinkLabel(QStringLiteral("(Change)"), infoPanel_);
    change->setObjectName(QStringLiteral("ChangeListType"));
    change->setToolTip(QStringLiteral("Change List Type"));
    change->setGeometry(Twips::rect(2140, 225, 810, kLabelHeight));
    connect(change, &LinkLabel::clicked, this, &MainWindow::changeListType);

    auto figureImage = [this](const QString& name, const QString& picture, int left, int top) {
        auto* image = new QLabel(infoPanel_);
        image->setObjectName(name);
        image->setGeometry(Twips::rect(left, top, 240, 240));
        image->setPixmap(Pictures::pixmap(picture, image->size()));
    };
    // The values are as wide as the panel allows, so the largest figures
    // (a million rows, 999,999,999 KB) show whole.
    figureImage(QStringLiteral("ListCountImage"), QStringLiteral("figure_count"), 180, 535);
    addInfoLabel(QStringLiteral("ListCountLabel"), QStringLiteral("Total items in list:"), 490, 560,
                 1755, true);
    listCountValue_ =
        addInfoLabel(QStringLiteral("ListCountValue"), QStringLiteral("0"), 2385, 555, 1300, false);
    figureImage(QStringLiteral("ListDurationImage"), QStringLiteral("figure_duration"), 3780, 200);
    addInfoLabel(QStringLiteral("ListDurationLabel"), QStringLiteral("Duration:"), 4080, 225, 900,
                 true);
    listDurationValue_ = addInfoLabel(QStringLiteral("ListDurationValue"),
                                      QStringLiteral("00:00:00"), 5115, 225, 1140, false);
    figureImage(QStringLiteral("ListSizeImage"), QStringLiteral("figure_size"), 3780, 535);
    addInfoLabel(QStringLiteral("ListSizeLabel"), QStringLiteral("Filesize:"), 4080, 555, 810,
                 true);
    listSizeValue_ = addInfoLabel(QStringLiteral("ListSizeValue"), QStringLiteral("0 KB"), 4950,
                                  555, 1460, false);

    statusBar_ = new StatusBarControl(client_);
    statusBar_->panel(3)->setToolTip(QStringLiteral("Status Indicator"));
    connect(statusBar_, &StatusBarControl::panelClicked, this, &MainWindow::statusPanelClicked);

    progressBar_ = new QProgressBar(statusBar_);
    progressBar_->setObjectName(QStringLiteral("AddFilesProgressBar"));
    progressBar_->setTextVisible(false);
    progressBar_->hide();

    cancelOverlay_ = new QWidget(statusBar_);
    cancelOverlay_->setObjectName(QStringLiteral("CancelOverlay"));
    cancelOverlay_->resize(Twips::size(735, 240));
    auto* cancel = new LinkLabel(QStringLiteral("(Cancel)"), cancelOverlay_);
    cancel->setObjectName(QStringLiteral("CancelLabel"));
    cancel->setToolTip(QStringLiteral("Cancel Operation"));
    cancel->setGeometry(Twips::rect(0, 0, 735, kLabelHeight));
    connect(cancel, &LinkLabel::clicked, this, &MainWindow::cancelAddingFiles);
    cancelOverlay_->hide();
}

QSize MainWindow::clientSize() const {
    return client_->size();
}

void MainWindow::setClientSize(const QSize& pixels) {
    const int menuHeight =
        menuBar()->isVisible() || !isVisible() ? menuBar()->sizeHint().height() : 0;
    resize(pixels.width(), pixels.height() + menuHeight);
    // A window not shown yet gets its layout now, so that its controls have
    // their places before the first show.
    if (!isVisible()) {
        client_->resize(pixels);
        layoutClient();
    }
}

void MainWindow::layoutClient() {
    if (isMinimized() || layingOut_) {
        return;
    }
    layingOut_ = true;
    // A normal window made smaller than its design size jumps back to the
    // design's outer size on that axis.
    if (!isMaximized() && !isFullScreen() && isVisible()) {
        const int frameWidth = frameGeometry().width() - width();
        const int frameHeight = frameGeometry().height() - height();
        int newWidth = width();
        int newHeight = height();
        if (Twips::fromPixels(client_->height()) < kDesignHeightTwips) {
            newHeight = Twips::toPixels(kOuterHeightTwips) - frameHeight;
        }
        if (Twips::fromPixels(client_->width()) < kDesignWidthTwips) {
            newWidth = Twips::toPixels(kOuterWidthTwips) - frameWidth;
        }
        if (newWidth != width() || newHeight != height()) {
            resize(newWidth, newHeight);
        }
    }
    const int w = Twips::fromPixels(client_->width());
    const int h = Twips::fromPixels(client_->height());
    toolbar_->setGeometry(0, 0, client_->width(), Twips::toPixels(kToolbarHeight));
    controlPanel_->move(Twips::toPixels(w - kControlPanelWidth - 100),
                        Twips::toPixels(kControlPanelTop));
    infoPanel_->setGeometry(Twips::toPixels(kInfoPanelLeft),
                            Twips::toPixels(h - kInfoPanelHeight - 380), Twips::toPixels(w - 170),
                            Twips::toPixels(kInfoPanelHeight));
    listView_->resize(Twips::toPixels(w - kControlPanelWidth - 270),
                      Twips::toPixels(h - kToolbarHeight - kInfoPanelHeight - 450));
    statusBar_->setGeometry(0, client_->height() - statusBar_->height(), client_->width(),
                            statusBar_->height());
    layingOut_ = false;
}

bool MainWindow::eventFilter(QObject* watched, QEvent* event) {
    if (watched == client_ && event->type() == QEvent::Resize) {
        layoutClient();
    }
    return QMainWindow::eventFilter(watched, event);
}

void MainWindow::changeEvent(QEvent* event) {
    QMainWindow::changeEvent(event);
    if (event->type() == QEvent::WindowStateChange && !isMinimized()) {
        layoutClient();
    }
}

void MainWindow::deleteButtonMouseUp(Qt::MouseButton button) {
    if (button != Qt::RightButton) {
        return;
    }
    // The submenu gets no opening event of its own, so the Edit rules run here.
    editMenuRules();
    const QPoint spot(Twips::fromPixels(listView_->width()) + 130,
                      Twips::fromPixels(listView_->y()) + 1150);
    menus_.value(QStringLiteral("EditRemoveItems"))
        ->exec(client_->mapToGlobal(Twips::point(spot.x(), spot.y())));
    deleteButton_->setTag(QStringLiteral("popup"));
}

void MainWindow::deleteButtonClick() {
    // The click that follows a right-button pop-up removes nothing.
    if (deleteButton_->tag() == QLatin1String("popup")) {
        deleteButton_->setTag(QString());
        return;
    }
    RunCommand(commands_.removeItem, selectedIndex());
}
